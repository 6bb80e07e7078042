#include "Output/DeflateEnd.h"
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

/// A raw stream from another compressor.
QByteArray deflated(const QByteArray& bytes, int level) {
    const QByteArray zlib = qCompress(bytes, level).mid(4);
    return zlib.mid(2, zlib.size() - 6);
}

std::optional<DeflateEnd> endOf(const QByteArray& stream) {
    return findDeflateEnd(reinterpret_cast<const std::uint8_t*>(stream.constData()),
                          static_cast<std::size_t>(stream.size()));
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

TEST(DeflateEnd, IsFoundInWhatAnotherCompressorWrote) {
    for (const Content kind : {Content::noise, Content::repeated, Content::text, Content::zeros}) {
        for (const int level : {0, 1, 6, 9}) {
            for (const qsizetype size : {1, 20, 1000, 200000}) {
                const QByteArray stream = deflated(content(kind, size), level);
                const auto end = endOf(stream);
                ASSERT_TRUE(end) << level << ' ' << size;
                EXPECT_EQ((end->end + 7) / 8, static_cast<std::size_t>(stream.size()));
                EXPECT_LT(end->finalFlag, end->end);
            }
        }
    }
}

TEST(DeflateEnd, DamageIsNoticedOrHarmless) {
    const QByteArray stream = deflated(content(Content::text, 1200), 6);
    for (qsizetype length = 0; length < stream.size(); ++length)
        EXPECT_FALSE(endOf(stream.first(length))) << length;
    std::mt19937 random(11);
    for (int round = 0; round < 800; ++round) {
        QByteArray damaged = stream;
        for (int i = 0; i < 3; ++i)
            damaged[static_cast<qsizetype>(random() % static_cast<unsigned>(stream.size()))] =
                static_cast<char>(random());
        const auto end = endOf(damaged);
        EXPECT_TRUE(!end || end->end <= static_cast<std::size_t>(damaged.size()) * 8);
    }
}
