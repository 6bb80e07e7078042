#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

/// Where a complete DEFLATE stream (RFC 1951) ends, in bits from its start. Any thread.
struct DeflateEnd {
    /// The flag that marks the last block as the last.
    std::size_t finalFlag = 0;
    /// The first bit behind the last block.
    std::size_t end = 0;
};

/// Walks through the blocks without expanding them, which costs a fraction of compressing. Absent when
/// the bytes are no complete stream.
std::optional<DeflateEnd> findDeflateEnd(const std::uint8_t* bytes, std::size_t size);
