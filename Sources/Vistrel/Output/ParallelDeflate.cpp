#include "Output/ParallelDeflate.h"

#include "Output/DeflateEnd.h"

#include <QtEndian>

#include <libdeflate.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <sys/mman.h>
#include <thread>

namespace {

constexpr std::uint32_t adlerModulus = 65521;

/// The checksum of two pieces in a row from those of each.
std::uint32_t joinedAdler(std::uint32_t first, std::uint32_t second, std::size_t secondSize) {
    const std::uint64_t length = secondSize % adlerModulus;
    const std::uint64_t firstSum = first & 0xffffU;
    const std::uint64_t sum = firstSum + (second & 0xffffU) + adlerModulus - 1;
    const std::uint64_t sumOfSums =
        length * firstSum + (first >> 16U) + (second >> 16U) + adlerModulus - length;
    return static_cast<std::uint32_t>((sum % adlerModulus) | ((sumOfSums % adlerModulus) << 16U));
}

/// Memory that is written once and given back: in large pages, since a 4K picture would otherwise spend
/// a tenth of its time on page faults.
struct Scratch {
    explicit Scratch(std::size_t wanted) {
        constexpr std::size_t largePage = std::size_t(2) << 20U;
        const std::size_t rounded = (wanted + largePage - 1) / largePage * largePage;
        bytes.reset(static_cast<std::uint8_t*>(std::aligned_alloc(largePage, rounded)));
        if (bytes && wanted >= largePage / 2)
            ::madvise(bytes.get(), rounded, MADV_HUGEPAGE);
    }

    struct Free {
        void operator()(std::uint8_t* memory) const { std::free(memory); }
    };
    std::unique_ptr<std::uint8_t, Free> bytes;
};

/// Makes another block follow: the last block is no longer the last, and an empty stored block brings
/// the stream to the next byte, where stored blocks of the next piece may stand.
void makeContinuable(std::vector<std::uint8_t>& stream, const DeflateEnd& end) {
    constexpr std::size_t blockHeaderBits = 3;
    stream[end.finalFlag / 8] &= static_cast<std::uint8_t>(~(1U << (end.finalFlag % 8)));
    if (end.end % 8 != 0)
        stream[end.end / 8] &= static_cast<std::uint8_t>((1U << (end.end % 8)) - 1U);
    stream.resize((end.end + blockHeaderBits + 7) / 8);
    stream.insert(stream.end(), {0x00, 0x00, 0xff, 0xff});
}

} // namespace

ParallelDeflate::ParallelDeflate(int effort, std::vector<std::size_t> pieceSizes, Fill filler)
    : level(effort), sizes(std::move(pieceSizes)), fill(std::move(filler)) {}

void ParallelDeflate::compress(std::size_t number) {
    const std::size_t size = sizes[number];
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(level), &libdeflate_free_compressor);
    const Scratch data(size);
    if (!compressor || !data.bytes)
        return;
    fill(number, data.bytes.get());
    const std::size_t bound = libdeflate_deflate_compress_bound(compressor.get(), size);
    const Scratch compressed(bound);
    if (!compressed.bytes)
        return;
    const std::size_t length =
        libdeflate_deflate_compress(compressor.get(), data.bytes.get(), size, compressed.bytes.get(), bound);
    Piece& piece = pieces[number];
    piece.stream.assign(compressed.bytes.get(), compressed.bytes.get() + length);
    if (number + 1 < sizes.size()) {
        const auto end = findDeflateEnd(piece.stream.data(), length);
        if (!end)
            return;
        makeContinuable(piece.stream, *end);
    }
    piece.checksum = libdeflate_adler32(1, data.bytes.get(), size);
    piece.complete = length > 0;
}

void ParallelDeflate::compressAll() {
    std::atomic<std::size_t> next = 0;
    const auto work = [this, &next] {
        for (std::size_t number = next++; number < sizes.size(); number = next++)
            compress(number);
    };
    const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::jthread> helpers;
    for (std::size_t helper = 1; helper < std::min(cores, sizes.size()); ++helper)
        helpers.emplace_back(work);
    work();
}

bool ParallelDeflate::join(QByteArray& out) const {
    out.append("\x78\x01", 2);
    std::uint32_t checksum = 1;
    for (std::size_t number = 0; number < pieces.size(); ++number) {
        const Piece& piece = pieces[number];
        if (!piece.complete)
            return false;
        out.append(reinterpret_cast<const char*>(piece.stream.data()),
                   static_cast<qsizetype>(piece.stream.size()));
        checksum = joinedAdler(checksum, piece.checksum, sizes[number]);
    }
    const quint32 trailer = qToBigEndian(checksum);
    out.append(reinterpret_cast<const char*>(&trailer), sizeof trailer);
    return true;
}

bool ParallelDeflate::appendTo(QByteArray& out) {
    pieces.assign(sizes.size(), Piece{});
    compressAll();
    return join(out);
}
