#pragma once

#include <cstdint>

/// Integer arithmetic on sizes that must not overflow: an overflow stops the program.
namespace CheckedArithmetic {

std::int64_t sum(std::int64_t a, std::int64_t b);
std::int64_t product(std::int64_t a, std::int64_t b);
/// Stops the program with this text unless the condition holds.
void require(bool condition, const char* text);

} // namespace CheckedArithmetic
