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
    struct Case {
        const char* name;
        Content kind;
        std::vector<std::size_t> pieces;
    };
    for (const Case& row :
         {Case{"one", Content::text, {1000}}, Case{"single bytes", Content::text, {1, 1, 1, 1}},
          Case{"noise", Content::noise, {300000, 1, 70000, 65536}},
          Case{"text", Content::text, {200000, 400001, 17}},
          Case{"repeated", Content::repeated, {100000, 100000, 3}},
          Case{"zeros", Content::zeros, {1U << 20U, 1U << 20U, 5}}}) {
        for (const int level : {1, 6, 12}) {
            std::size_t size = 0;
            for (const std::size_t piece : row.pieces)
                size += piece;
            const QByteArray bytes = content(row.kind, static_cast<qsizetype>(size));
            ParallelDeflate deflate(level, row.pieces, [&](std::size_t piece, std::uint8_t* out) {
                const auto start =
                    std::accumulate(row.pieces.begin(),
                                    row.pieces.begin() + static_cast<std::ptrdiff_t>(piece), std::size_t(0));
                std::memcpy(out, bytes.constData() + start, row.pieces[piece]);
            });
            QByteArray stream;
            ASSERT_TRUE(deflate.appendTo(stream)) << row.name;
            EXPECT_TRUE(inflated(stream, bytes.size()) == bytes) << row.name << " at level " << level;
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
