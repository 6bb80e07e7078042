#include "Output/ImageEncoder.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QPainter>

#include <benchmark/benchmark.h>

#include <random>

namespace {

/// Something like a desktop: a soft wallpaper with a little grain, windows of text, a photograph.
QImage desktop(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, width * 0.4, height);
    sky.setColorAt(0, QColor(28, 62, 110));
    sky.setColorAt(0.6, QColor(96, 130, 170));
    sky.setColorAt(1, QColor(214, 190, 160));
    painter.fillRect(image.rect(), sky);

    std::mt19937 random(7);
    const auto number = [&random](int below) {
        return static_cast<int>(random() % static_cast<unsigned>(below));
    };
    QFont font;
    font.setPixelSize(height / 90);
    painter.setFont(font);
    for (int window = 0; window < 4; ++window) {
        const QRect frame(width * (window % 2) / 2 + width / 40, height * (window / 2) / 2 + height / 30,
                          width * 9 / 20, height * 8 / 20);
        painter.fillRect(frame, window == 1 ? QColor(30, 30, 34) : QColor(250, 250, 250));
        painter.setPen(window == 1 ? QColor(220, 220, 210) : QColor(30, 30, 30));
        const int lineHeight = height / 64;
        for (int y = frame.top() + lineHeight; y < frame.bottom() - lineHeight && window != 3;
             y += lineHeight) {
            QString line;
            for (int word = 3 + number(14); word > 0; --word) {
                for (int letter = 1 + number(9); letter > 0; --letter)
                    line.append(QChar('a' + number(26)));
                line.append(u' ');
            }
            painter.drawText(frame.left() + lineHeight, y + lineHeight, line);
        }
    }
    painter.end();
    for (int y = height * 16 / 30; y < height * 9 / 10; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = width * 11 / 20; x < width * 3 / 4; ++x) {
            const double wave = std::sin(x * 0.011) * 60 + std::cos(y * 0.017) * 50;
            const int grey = 120 + static_cast<int>(wave) + number(5);
            row[x] =
                qRgb(std::clamp(grey + 20, 0, 255), std::clamp(grey, 0, 255), std::clamp(grey - 30, 0, 255));
        }
    }
    // What a capture looks like: the fourth byte is zero.
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            row[x] &= 0x00ffffffU;
    }
    return image;
}

void setFigures(benchmark::State& state, qsizetype bytes) {
    state.counters["bytes"] = static_cast<double>(bytes);
}

void ourPNG(benchmark::State& state) {
    const QImage image = desktop(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    qsizetype bytes = 0;
    for (auto _ : state)
        bytes = ImageEncoder::encode(ScreenshotSaveFormat::png, image)->size();
    setFigures(state, bytes);
}

void toolkitPNG(benchmark::State& state) {
    const QImage image = desktop(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    qsizetype bytes = 0;
    for (auto _ : state) {
        QByteArray data;
        QBuffer buffer(&data);
        image.save(&buffer, "PNG");
        bytes = data.size();
    }
    setFigures(state, bytes);
}

void ourJPEG(benchmark::State& state) {
    const QImage image = desktop(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    qsizetype bytes = 0;
    for (auto _ : state)
        bytes = ImageEncoder::encode(ScreenshotSaveFormat::jpg, image)->size();
    setFigures(state, bytes);
}

} // namespace

BENCHMARK(toolkitPNG)->Args({1920, 1080})->Args({3840, 2160})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ourPNG)->Args({1920, 1080})->Args({3840, 2160})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ourJPEG)->Args({1920, 1080})->Args({3840, 2160})->Unit(benchmark::kMillisecond)->UseRealTime();

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
