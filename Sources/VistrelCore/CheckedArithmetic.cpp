#include "VistrelCore/CheckedArithmetic.h"

#include <cstdio>
#include <cstdlib>

void CheckedArithmetic::require(bool condition, const char* text) {
    if (condition)
        return;
    std::fprintf(stderr, "%s\n", text);
    std::abort();
}

std::int64_t CheckedArithmetic::sum(std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    require(!__builtin_add_overflow(a, b, &result), "Arithmetic overflow in a sum");
    return result;
}

std::int64_t CheckedArithmetic::product(std::int64_t a, std::int64_t b) {
    std::int64_t result = 0;
    require(!__builtin_mul_overflow(a, b, &result), "Arithmetic overflow in a product");
    return result;
}
