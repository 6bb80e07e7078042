#include "Output/DeflateEnd.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

namespace {

constexpr unsigned longestCode = 15;
constexpr std::size_t literalCodes = 288;
constexpr std::size_t distanceCodes = 32;
constexpr std::size_t codeLengthCodes = 19;
constexpr unsigned endOfBlock = 256;

/// Bits in the order of the stream, the first in the lowest place.
class BitReader {
public:
    BitReader(const std::uint8_t* from, std::size_t size) : bytes(from), bitCount(size * 8) {}

    std::size_t position() const { return at; }
    /// Reading past the end gives zeros and is noticed here.
    bool overrun() const { return at > bitCount; }

    /// The next bits, at least 56 of them where the stream has as many.
    std::uint64_t peek() const {
        const std::size_t byte = at / 8;
        const std::size_t left = byte < bitCount / 8 ? bitCount / 8 - byte : 0;
        std::uint64_t word = 0;
        if (left >= sizeof word)
            std::memcpy(&word, bytes + byte, sizeof word);
        else if (left > 0)
            std::memcpy(&word, bytes + byte, left);
        if constexpr (std::endian::native == std::endian::big)
            word = __builtin_bswap64(word);
        return word >> (at % 8);
    }
    void skip(std::size_t bits) { at += bits; }
    unsigned take(unsigned bits) {
        const auto value = static_cast<unsigned>(peek() & ((std::uint64_t(1) << bits) - 1));
        skip(bits);
        return value;
    }
    void alignToByte() { at = (at + 7) / 8 * 8; }

private:
    const std::uint8_t* bytes;
    std::size_t bitCount;
    std::size_t at = 0;
};

/// A prefix code as one table over the longest code's bits.
class PrefixCode {
public:
    /// False when the lengths describe no code that could be decoded without doubt.
    bool build(const std::uint8_t* lengths, std::size_t count) {
        std::array<unsigned, longestCode + 1> perLength{};
        for (std::size_t symbol = 0; symbol < count; ++symbol)
            ++perLength[lengths[symbol]];
        perLength[0] = 0;
        bits = longestCode;
        while (bits > 1 && perLength[bits] == 0)
            --bits;
        std::array<unsigned, longestCode + 2> next{};
        for (unsigned length = 1; length <= longestCode; ++length) {
            next[length + 1] = (next[length] + perLength[length]) << 1U;
            if (next[length] + perLength[length] > (1U << length))
                return false;
        }
        table.assign(std::size_t(1) << bits, Entry{});
        for (std::size_t symbol = 0; symbol < count; ++symbol) {
            if (const unsigned length = lengths[symbol])
                fill(reversed(next[length]++, length), length, symbol);
        }
        return true;
    }

    /// The next symbol and the bits it took; a length of 0 when there is no such code.
    struct Entry {
        std::uint16_t symbol = 0;
        std::uint16_t length = 0;
    };
    Entry find(std::uint64_t word) const { return table[word & (table.size() - 1)]; }

private:
    static unsigned reversed(unsigned code, unsigned length) {
        unsigned result = 0;
        for (unsigned bit = 0; bit < length; ++bit)
            result |= ((code >> bit) & 1U) << (length - 1 - bit);
        return result;
    }
    void fill(unsigned start, unsigned length, std::size_t symbol) {
        for (std::size_t i = start; i < table.size(); i += std::size_t(1) << length)
            table[i] = {static_cast<std::uint16_t>(symbol), static_cast<std::uint16_t>(length)};
    }

    unsigned bits = 1;
    std::vector<Entry> table;
};

struct BlockCodes {
    PrefixCode literals;
    PrefixCode distances;
};

bool buildFixed(BlockCodes& codes) {
    std::array<std::uint8_t, literalCodes> literals{};
    for (std::size_t symbol = 0; symbol < literals.size(); ++symbol)
        literals[symbol] = symbol < 144 ? 8 : symbol < 256 ? 9 : symbol < 280 ? 7 : 8;
    std::array<std::uint8_t, distanceCodes> distances{};
    distances.fill(5);
    return codes.literals.build(literals.data(), literals.size()) &&
           codes.distances.build(distances.data(), distances.size());
}

/// The code lengths of a block that brings its own codes, themselves compressed.
bool readLengths(BitReader& in, const PrefixCode& code, std::uint8_t* lengths, std::size_t count) {
    for (std::size_t i = 0; i < count;) {
        const PrefixCode::Entry entry = code.find(in.peek());
        if (entry.length == 0 || in.overrun())
            return false;
        in.skip(entry.length);
        if (entry.symbol < 16) {
            lengths[i++] = static_cast<std::uint8_t>(entry.symbol);
            continue;
        }
        const std::uint8_t repeated = entry.symbol == 16 && i > 0 ? lengths[i - 1] : 0;
        const std::size_t times = entry.symbol == 16   ? 3 + in.take(2)
                                  : entry.symbol == 17 ? 3 + in.take(3)
                                                       : 11 + in.take(7);
        if ((entry.symbol == 16 && i == 0) || i + times > count)
            return false;
        std::memset(lengths + i, repeated, times);
        i += times;
    }
    return true;
}

bool buildOwn(BitReader& in, BlockCodes& codes) {
    static constexpr std::array<std::uint8_t, codeLengthCodes> order = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                                                        11, 4,  12, 3, 13, 2, 14, 1, 15};
    const std::size_t literals = 257 + in.take(5);
    const std::size_t distances = 1 + in.take(5);
    const std::size_t lengthCodes = 4 + in.take(4);
    std::array<std::uint8_t, codeLengthCodes> codeLengths{};
    for (std::size_t i = 0; i < lengthCodes; ++i)
        codeLengths[order[i]] = static_cast<std::uint8_t>(in.take(3));
    PrefixCode lengthCode;
    std::array<std::uint8_t, literalCodes + distanceCodes> lengths{};
    return literals <= literalCodes && lengthCode.build(codeLengths.data(), codeLengths.size()) &&
           readLengths(in, lengthCode, lengths.data(), literals + distances) &&
           codes.literals.build(lengths.data(), literals) &&
           codes.distances.build(lengths.data() + literals, distances);
}

/// The length's and the distance's codes and extra bits that follow in `word`; 0 when there are none.
unsigned matchBits(const BlockCodes& codes, PrefixCode::Entry length, std::uint64_t word) {
    if (length.symbol > 285)
        return 0;
    const unsigned lengthExtra =
        length.symbol < 265 || length.symbol == 285 ? 0U : (length.symbol - 261U) / 4U;
    const unsigned used = length.length + lengthExtra;
    const PrefixCode::Entry distance = codes.distances.find(word >> used);
    if (distance.length == 0 || distance.symbol > 29)
        return 0;
    return used + distance.length + (distance.symbol < 4 ? 0U : distance.symbol / 2U - 1U);
}

bool skipSymbols(BitReader& in, const BlockCodes& codes) {
    // One look of 56 bits holds a match of the longest kind, 48 bits, or three of the longest literals.
    constexpr unsigned literalsPerLook = 3;
    for (;;) {
        std::uint64_t word = in.peek();
        unsigned used = 0;
        PrefixCode::Entry entry = codes.literals.find(word);
        for (unsigned count = 1; count < literalsPerLook && entry.symbol < endOfBlock && entry.length > 0;
             ++count) {
            used += entry.length;
            word >>= entry.length;
            entry = codes.literals.find(word);
        }
        if (entry.length == 0 || in.overrun())
            return false;
        if (entry.symbol <= endOfBlock) {
            in.skip(used + entry.length);
            if (entry.symbol == endOfBlock)
                return true;
            continue;
        }
        in.skip(used);
        const unsigned match = matchBits(codes, entry, used > 0 ? in.peek() : word);
        if (match == 0)
            return false;
        in.skip(match);
    }
}

bool skipStored(BitReader& in) {
    in.alignToByte();
    const unsigned length = in.take(16);
    if ((length ^ in.take(16)) != 0xffffU)
        return false;
    in.skip(std::size_t(length) * 8);
    return true;
}

} // namespace

std::optional<DeflateEnd> findDeflateEnd(const std::uint8_t* bytes, std::size_t size) {
    BitReader in(bytes, size);
    BlockCodes codes;
    for (;;) {
        const std::size_t flag = in.position();
        const bool last = in.take(1) != 0;
        const unsigned type = in.take(2);
        const bool skipped = type == 0   ? skipStored(in)
                             : type == 1 ? buildFixed(codes) && skipSymbols(in, codes)
                             : type == 2 ? buildOwn(in, codes) && skipSymbols(in, codes)
                                         : false;
        if (!skipped || in.overrun())
            return std::nullopt;
        if (last)
            return DeflateEnd{flag, in.position()};
    }
}
