#include "Output/PNGEncoder.h"

#include "Output/ImageEncoder.h"
#include "Output/ParallelDeflate.h"

#include <QtEndian>

#include <libdeflate.h>

#include <cstring>
#ifdef __x86_64__
#include <tmmintrin.h>
#endif
#include <vector>

namespace {

constexpr uchar filterUp = 2;
/// Higher levels save a few percent and cost a multiple of the time.
constexpr int compressionLevel = 1;
/// Large enough that starting afresh costs nothing, small enough that every core gets its share.
constexpr size_t bandBytes = size_t(3) << 20U;
constexpr int chunkLengthBytes = 4;
constexpr int chunkTypeBytes = 4;
constexpr int chunkCRCBytes = 4;
constexpr qsizetype largestChunk = 0x7fffffff;

/// Straight 32-bit pixels; without `alpha` their fourth byte means nothing.
struct Source {
    QImage pixels;
    bool alpha = false;
};

size_t samples(const Source& source) {
    return source.alpha ? 4 : 3;
}

bool isOpaque(const QImage& image) {
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        QRgb common = 0xff000000U;
        for (int x = 0; x < image.width(); ++x)
            common &= row[x];
        if (common != 0xff000000U)
            return false;
    }
    return true;
}

Source straightPixels(const QImage& image) {
    if (!image.hasAlphaChannel())
        return {image.convertToFormat(QImage::Format_RGB32), false};
    // Opaque pixels are the same numbers with and without premultiplication.
    if (image.format() == QImage::Format_ARGB32_Premultiplied && isOpaque(image))
        return {image, false};
    const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
    return {straight, !isOpaque(straight)};
}

void packRGBA(const QRgb* pixels, size_t width, uchar* bytes) {
    for (size_t x = 0; x < width; ++x)
        qToBigEndian<quint32>((pixels[x] << 8U) | (pixels[x] >> 24U), bytes + 4 * x);
}

/// Red, green and blue in the low three bytes, in the order of the file.
quint32 fileOrder(QRgb pixel) {
    return qToLittleEndian(qToBigEndian<quint32>(pixel << 8U));
}

#ifdef __x86_64__
/// Four pixels at a time while sixteen bytes can be written; the number that is done.
__attribute__((target("ssse3"))) size_t packRGBInVectors(const QRgb* pixels, size_t width, uchar* bytes) {
    const __m128i order = _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    size_t x = 0;
    for (; x + 6 <= width; x += 4) {
        const __m128i four = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + x));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes + 3 * x), _mm_shuffle_epi8(four, order));
    }
    return x;
}

size_t packRGBFast(const QRgb* pixels, size_t width, uchar* bytes) {
    return __builtin_cpu_supports("ssse3") ? packRGBInVectors(pixels, width, bytes) : 0;
}
#else
size_t packRGBFast(const QRgb*, size_t, uchar*) {
    return 0;
}
#endif

void packRGB(const QRgb* pixels, size_t width, uchar* bytes) {
    size_t x = packRGBFast(pixels, width, bytes);
    bytes += 3 * x;
    for (; x + 4 <= width; x += 4, bytes += 12) {
        const quint32 a = fileOrder(pixels[x]);
        const quint32 b = fileOrder(pixels[x + 1]);
        const quint32 c = fileOrder(pixels[x + 2]);
        const quint32 d = fileOrder(pixels[x + 3]);
        qToLittleEndian<quint32>(a | (b << 24U), bytes);
        qToLittleEndian<quint32>((b >> 8U) | (c << 16U), bytes + 4);
        qToLittleEndian<quint32>((c >> 16U) | (d << 8U), bytes + 8);
    }
    for (; x < width; ++x) {
        *bytes++ = static_cast<uchar>(qRed(pixels[x]));
        *bytes++ = static_cast<uchar>(qGreen(pixels[x]));
        *bytes++ = static_cast<uchar>(qBlue(pixels[x]));
    }
}

void subtract(const uchar* __restrict current, const uchar* __restrict above, uchar* __restrict out,
              size_t count) {
    for (size_t i = 0; i < count; ++i)
        out[i] = static_cast<uchar>(current[i] - above[i]);
}

/// Rows `first` to `last`, each as its filter and its difference to the one above it: that suits windows
/// and text and is the cheapest.
void filterRows(const Source& source, int first, int last, uchar* out) {
    const auto width = static_cast<size_t>(source.pixels.width());
    const size_t rowBytes = width * samples(source);
    const auto pack = [&source, width](int y, std::vector<uchar>& bytes) {
        const auto* row = reinterpret_cast<const QRgb*>(source.pixels.constScanLine(y));
        if (source.alpha)
            packRGBA(row, width, bytes.data());
        else
            packRGB(row, width, bytes.data());
    };
    std::vector<uchar> above(rowBytes, 0);
    std::vector<uchar> current(rowBytes);
    if (first > 0)
        pack(first - 1, above);
    for (int y = first; y < last; ++y) {
        pack(y, current);
        *out++ = filterUp;
        subtract(current.data(), above.data(), out, rowBytes);
        out += rowBytes;
        current.swap(above);
    }
}

/// The filtered rows as one zlib stream, compressed in bands side by side.
bool appendRows(QByteArray& file, const Source& source) {
    const int height = source.pixels.height();
    const size_t rowBytes = static_cast<size_t>(source.pixels.width()) * samples(source) + 1;
    const int bandHeight = static_cast<int>(std::max<size_t>(1, bandBytes / rowBytes));
    std::vector<size_t> sizes;
    for (int y = 0; y < height; y += bandHeight)
        sizes.push_back(rowBytes * static_cast<size_t>(std::min(bandHeight, height - y)));
    ParallelDeflate deflate(compressionLevel, sizes, [&](size_t band, uchar* bytes) {
        const int first = static_cast<int>(band) * bandHeight;
        filterRows(source, first, std::min(first + bandHeight, height), bytes);
    });
    return deflate.appendTo(file);
}

void putNumber(char* at, quint32 number) {
    qToBigEndian(number, at);
}

/// Seals the chunk that starts at `start` and holds `length` bytes of data already in place.
void sealChunk(char* start, const char* type, quint32 length) {
    putNumber(start, length);
    std::memcpy(start + chunkLengthBytes, type, chunkTypeBytes);
    const quint32 checksum = libdeflate_crc32(0, start + chunkLengthBytes, chunkTypeBytes + length);
    putNumber(start + chunkLengthBytes + chunkTypeBytes + length, checksum);
}

void appendChunk(QByteArray& file, const char* type, const QByteArray& data) {
    const qsizetype start = file.size();
    file.resize(start + chunkLengthBytes + chunkTypeBytes + data.size() + chunkCRCBytes);
    std::memcpy(file.data() + start + chunkLengthBytes + chunkTypeBytes, data.constData(),
                static_cast<size_t>(data.size()));
    sealChunk(file.data() + start, type, static_cast<quint32>(data.size()));
}

QByteArray header(const Source& source) {
    QByteArray data(13, '\0');
    putNumber(data.data(), static_cast<quint32>(source.pixels.width()));
    putNumber(data.data() + 4, static_cast<quint32>(source.pixels.height()));
    data[8] = 8;                    // bits per sample
    data[9] = source.alpha ? 6 : 2; // RGBA or RGB
    return data;
}

tl::unexpected<Error> failure(const QString& description) {
    return tl::unexpected(
        Error{ImageEncoder::errorDomain, static_cast<int>(ScreenshotSaveFormat::png), description});
}

} // namespace

Result<QByteArray> ImageEncoder::encodePNG(const QImage& image) {
    const Source source = straightPixels(image);
    if (source.pixels.isNull())
        return failure(QStringLiteral("There is not enough memory for the picture."));
    QByteArray file("\x89PNG\r\n\x1a\n", 8);
    appendChunk(file, "IHDR", header(source));
    appendChunk(file, "sRGB", QByteArray(1, '\0'));

    const qsizetype start = file.size();
    file.append(chunkLengthBytes + chunkTypeBytes, '\0');
    if (!appendRows(file, source))
        return failure(QStringLiteral("There is not enough memory for the picture."));
    const qsizetype length = file.size() - start - chunkLengthBytes - chunkTypeBytes;
    if (length > largestChunk)
        return failure(QStringLiteral("The picture is too large for the format."));
    file.append(chunkCRCBytes, '\0');
    sealChunk(file.data() + start, "IDAT", static_cast<quint32>(length));
    appendChunk(file, "IEND", {});
    // The clipboard keeps these bytes for hours.
    file.squeeze();
    return file;
}
