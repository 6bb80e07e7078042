#include "Annotations/AnnotationRenderer.h"
#include "Annotations/EffectFilters.h"
#include "Annotations/ViewFlip.h"

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <QGuiApplication>
#include <QPainter>

#include <random>

namespace {

using Layers = std::vector<EditorAnnotation>;

QImage noise(QSize size) {
    std::mt19937 random(1);
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = static_cast<QRgb>(random()) | 0xff000000U;
    }
    return image;
}

const QImage& picture(benchmark::State& state) {
    static QImage image;
    const QSize size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    if (image.size() != size)
        image = noise(size);
    return image;
}

void countPixels(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}

void blurOurs(benchmark::State& state) {
    const QImage& image = picture(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(state.range(2) == 1
                                     ? EffectFilters::blurOnOneThread({image, {}, image.size()}, image.rect())
                                     : EffectFilters::blur({image, {}, image.size()}, image.rect()));
    countPixels(state);
}

void blurOpenCV(benchmark::State& state) {
    const QImage& image = picture(state);
    cv::setNumThreads(static_cast<int>(state.range(2)));
    const cv::Mat source(image.height(), image.width(), CV_8UC4, const_cast<uchar*>(image.constBits()),
                         static_cast<std::size_t>(image.bytesPerLine()));
    for (auto _ : state) {
        cv::Mat result;
        cv::GaussianBlur(source, result, {0, 0}, EffectFilters::blurSigma, 0, cv::BORDER_REPLICATE);
        benchmark::DoNotOptimize(result.data);
    }
    countPixels(state);
}

void pixelate(benchmark::State& state) {
    const QImage& image = picture(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(EffectFilters::pixelate({image, {}, image.size()}, image.rect(),
                                                         EffectFilters::Blocks::ofEdge(12, image.height())));
    countPixels(state);
}

/// The canvas of a 4K display, painted on as the overlay does.
class Canvas {
public:
    Canvas() { screen.fill(Qt::black); }

    void repaint(const Layers& layers, const Rect& area) {
        QPainter painter(&screen);
        painter.setClipRect(flip.toWidget(area));
        painter.drawImage(0, 0, image);
        flip.apply(painter);
        renderer.draw(layers, painter, {image, bounds, bounds});
    }

    QImage image = noise({3840, 2160});
    Rect bounds = {0, 0, 3840, 2160};
    AnnotationRenderer renderer;

private:
    QImage screen{3840, 2160, QImage::Format_RGB32};
    ViewFlip flip{2160};
};

EditorAnnotation stroke(AnnotationTool tool, int count, double width) {
    EditorAnnotation layer = {.id = QUuid::createUuid(), .tool = tool, .width = width, .color = Qt::red};
    for (int i = 0; i < count; ++i)
        layer.points.push_back({1900 + 1800 * std::cos(i * 0.01), 1000 + 900 * std::sin(i * 0.0237)});
    return layer;
}

/// One step of a drag with a freehand tool whose stroke is already long.
void growStroke(benchmark::State& state) {
    Canvas canvas;
    Layers layers = {
        stroke(static_cast<AnnotationTool>(state.range(0)), static_cast<int>(state.range(1)), 24)};
    canvas.repaint(layers, canvas.bounds);
    for (auto _ : state) {
        std::vector<Point>& points = layers[0].points;
        const Point next = points.back() + Point{points.size() % 2 == 0 ? 8.0 : -7.0, 5};
        const Rect step = {std::min(points.back().x, next.x), points.back().y, 8, 5};
        points.push_back(next);
        canvas.repaint(layers, step.insetBy(-14));
    }
}

/// One step of dragging out a pixelate box over the whole display.
void growBox(benchmark::State& state) {
    Canvas canvas;
    Layers layers = {{.id = QUuid::createUuid(), .tool = AnnotationTool::pixelate, .width = 12}};
    int step = 0;
    for (auto _ : state) {
        const double size = 1000 + 3 * (step++ % 300);
        layers[0].points = {{100, 100}, {100 + size, 100 + size}};
        canvas.repaint(layers, {100 + size - 5, 100, 10, size + 5});
    }
}

/// A scribble as a hand makes it: short steps that turn slowly.
EditorAnnotation scribble(AnnotationTool tool, int count, double width) {
    EditorAnnotation layer = {.id = QUuid::createUuid(), .tool = tool, .width = width, .color = Qt::red};
    std::mt19937 random(4);
    double direction = 0;
    Point at = {1900, 1000};
    for (int i = 0; i < count; ++i) {
        direction += (static_cast<double>(random() % 1000) - 500) / 1500;
        at = at + Point{4 * std::cos(direction), 4 * std::sin(direction)};
        at = {std::clamp(at.x, 20.0, 3820.0), std::clamp(at.y, 20.0, 2140.0)};
        layer.points.push_back(at);
    }
    return layer;
}

/// The first paint of one long stroke on the whole display, with nothing computed yet.
void firstPaint(benchmark::State& state) {
    Canvas canvas;
    const auto tool = static_cast<AnnotationTool>(state.range(0));
    const double width = static_cast<double>(state.range(1));
    const Layers layers = {state.range(2) == 0 ? stroke(tool, 10000, width) : scribble(tool, 10000, width)};
    for (auto _ : state) {
        canvas.renderer.clearPatches();
        canvas.repaint(layers, canvas.bounds);
    }
}

/// A full repaint of thousands of layers, and one of a small area of them.
void manyLayers(benchmark::State& state) {
    Canvas canvas;
    std::mt19937 random(3);
    Layers layers;
    for (int i = 0; i < 3000; ++i) {
        const Point at = {double(random() % 3700), double(random() % 2000)};
        layers.push_back({.id = QUuid::createUuid(),
                          .tool = static_cast<AnnotationTool>(1 + i % 8),
                          .width = 8,
                          .color = Qt::blue,
                          .points = {at, at + Point{120, 90}}});
    }
    canvas.repaint(layers, canvas.bounds);
    const double edge = static_cast<double>(state.range(0));
    for (auto _ : state)
        canvas.repaint(layers, {1000, 800, edge, edge});
}

/// Effects one over the other, none computed yet.
void effectStack(benchmark::State& state) {
    Canvas canvas;
    Layers layers;
    for (int i = 0; i < state.range(0); ++i) {
        const Point at = {500.0 + i, 500.0 + i};
        layers.push_back({.id = QUuid::createUuid(),
                          .tool = i % 2 == 0 ? AnnotationTool::blur : AnnotationTool::pixelate,
                          .width = 24,
                          .points = {at, at + Point{300, 200}}});
    }
    for (auto _ : state) {
        canvas.renderer.clearPatches();
        canvas.repaint(layers, canvas.bounds);
    }
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    for (const int threads : {1, 2})
        for (const auto& [width, height] : {std::pair{1000, 1000}, std::pair{3840, 2160}})
            benchmark->Args({width, height, threads});
    benchmark->ArgNames({"width", "height", "threads"})->UseRealTime()->Unit(benchmark::kMillisecond);
}

} // namespace

BENCHMARK(blurOurs)->Apply(sizes);
BENCHMARK(blurOpenCV)->Apply(sizes);
BENCHMARK(pixelate)->Args({1000, 1000})->Args({3840, 2160})->Unit(benchmark::kMillisecond);
BENCHMARK(growStroke)
    ->ArgNames({"tool", "points"})
    ->ArgsProduct({{static_cast<int>(AnnotationTool::pen), static_cast<int>(AnnotationTool::marker),
                    static_cast<int>(AnnotationTool::blur)},
                   {100, 10000}})
    ->Iterations(300)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(growBox)->Iterations(300)->Unit(benchmark::kMillisecond);
BENCHMARK(firstPaint)
    ->ArgNames({"tool", "width", "byHand"})
    ->ArgsProduct({{static_cast<int>(AnnotationTool::pen), static_cast<int>(AnnotationTool::blur)},
                   {3, 24},
                   {0, 1}})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(manyLayers)->ArgName("edge")->Arg(50)->Arg(2160)->Unit(benchmark::kMillisecond);
BENCHMARK(effectStack)->ArgName("layers")->Arg(10)->Arg(100)->Arg(400)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
