#pragma once

#include <QByteArray>

#include <cstdint>
#include <functional>
#include <vector>

/// Compresses data that is made piece by piece into one zlib stream (RFC 1950), pieces side by side on
/// all cores. The bytes depend on the pieces only, not on the machine.
class ParallelDeflate {
public:
    /// Fills `bytes` with piece number `piece`; called on any thread, once per piece.
    using Fill = std::function<void(std::size_t piece, std::uint8_t* bytes)>;

    ParallelDeflate(int effort, std::vector<std::size_t> pieceSizes, Fill filler);

    /// Appends the stream to `out`; false when memory is short.
    bool appendTo(QByteArray& out);

private:
    struct Piece {
        std::vector<std::uint8_t> stream;
        std::uint32_t checksum = 1;
        bool complete = false;
    };

    void compress(std::size_t number);
    void compressAll();
    bool join(QByteArray& out) const;

    int level;
    std::vector<std::size_t> sizes;
    Fill fill;
    std::vector<Piece> pieces;
};
