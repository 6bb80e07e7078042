#include "Output/ParallelDeflate.h"

#include <QtEndian>

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <random>

namespace {

enum class Content { noise, repeated, text, zeros };

QByteArray content(Content kind, qsizetype size) {
    std::mt19937 random(3);
    QByteArray bytes(size, '\0');
    for (qsizetype i = 0; i < size; ++i) {
        if (kind == Content::noise)
            bytes[i] = static_cast<char>(random());
        else if (kind == Content::repeated)
            bytes[i] = static_cast<char>(i % 251);
        else if (kind == Content::text)
            bytes[i] = static_cast<char>('a' + random() % 7 * (random() % 3));
    }
    return bytes;
}

/// The toolkit's zlib reads what ours wrote, checksum included.
QByteArray inflated(const QByteArray& zlib, qsizetype size) {
    QByteArray withSize(4, '\0');
    qToBigEndian(static_cast<quint32>(size), withSize.data());
    return qUncompress(withSize + zlib);
}

} // namespace

TEST(ParallelDeflate, PiecesBecomeOneStream) {
    using Pieces = std::vector<std::size_t>;
    for (const auto& [kind, pieces] : {std::pair(Content::text, Pieces{1, 1, 1, 1}),
                                       {Content::noise, {300000, 1, 70000, 65536}},
                                       {Content::text, {200000, 400001, 17}},
                                       {Content::repeated, {100000, 100000, 3}},
                                       {Content::zeros, {1U << 20U, 1U << 20U, 5}}}) {
        for (const int level : {1, 6, 12}) {
            Pieces starts(pieces.size() + 1);
            std::partial_sum(pieces.begin(), pieces.end(), starts.begin() + 1);
            const QByteArray bytes = content(kind, static_cast<qsizetype>(starts.back()));
            ParallelDeflate deflate(level, pieces, [&](std::size_t piece, std::uint8_t* out) {
                std::memcpy(out, bytes.constData() + starts[piece], starts[piece + 1] - starts[piece]);
            });
            QByteArray stream;
            ASSERT_TRUE(deflate.appendTo(stream)) << bytes.size();
            EXPECT_TRUE(inflated(stream, bytes.size()) == bytes) << bytes.size() << " at level " << level;
        }
    }
}
