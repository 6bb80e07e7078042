// One pointer step on a 4K canvas, from the event to the flushed paint. Runs on whatever platform
// QT_QPA_PLATFORM names, at the scale that QT_SCALE_FACTOR names. Places are device pixels.

#include "Overlay/CaptureOverlayWindow.h"
#include "Overlay/OverlayEditor.h"

#include <QApplication>
#include <QMouseEvent>
#include <QRandomGenerator>

#include <benchmark/benchmark.h>

namespace {

constexpr int width = 3840;
constexpr int height = 2160;

/// Nothing is stored.
class NoDefaults : public UserDefaults {
public:
    std::optional<double> number(const QString&) const override { return std::nullopt; }
    std::optional<bool> boolean(const QString&) const override { return std::nullopt; }
    std::optional<QString> string(const QString&) const override { return std::nullopt; }
    std::optional<QByteArray> data(const QString&) const override { return std::nullopt; }
    bool has(const QString&) const override { return false; }
    void setNumber(const QString&, double) override {}
    void setBoolean(const QString&, bool) override {}
    void setString(const QString&, const QString&) override {}
    void setData(const QString&, const QByteArray&) override {}
    void remove(const QString&) override {}
};

QImage desktop() {
    QImage image(width, height, QImage::Format_RGB32);
    QRandomGenerator generator(3);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < width; ++x)
            line[x] = 0xff000000U | (generator.generate() & 0x3f3f3fU) | static_cast<unsigned>((x / 16) << 8);
    }
    return image;
}

/// A shown canvas of a display, with the pointer events of a user.
class Canvas {
public:
    Canvas() {
        static const QImage picture = desktop();
        window.view().resetSession({.image = picture, .presentation = picture, .frozen = nullptr}, scale,
                                   {width / scale, height / scale});
        window.show();
        settle();
    }

    void press(QPoint p) { send(QEvent::MouseButtonPress, p); }
    void move(QPoint p) { send(QEvent::MouseMove, p); }
    void release(QPoint p) { send(QEvent::MouseButtonRelease, p); }
    void drag(QPoint from, QPoint to) {
        press(from);
        move(to);
        release(to);
        settle();
    }
    void key(int code, const QString& text) {
        QKeyEvent event(QEvent::KeyPress, code, {}, text);
        QApplication::sendEvent(&window.view(), &event);
        settle();
    }
    void settle() {
        QApplication::processEvents();
        QApplication::sendPostedEvents();
    }

private:
    void send(QEvent::Type type, QPoint p) {
        const bool held = type != QEvent::MouseButtonRelease;
        const QPointF points = QPointF(p) / scale;
        QMouseEvent event(type, points, points, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          held ? Qt::LeftButton : Qt::NoButton, {});
        QApplication::sendEvent(&window.view(), &event);
    }

    double scale = qApp->devicePixelRatio();
    NoDefaults defaults;
    EditorPreferences preferences{defaults};
    CaptureOverlayWindow window{{.name = QStringLiteral("bench"),
                                 .displayID = 1,
                                 .nativeRect = {0, 0, width, height},
                                 .scale = scale},
                                preferences,
                                Qt::X11BypassWindowManagerHint};
};

/// The pointer's way around a centre: `stride` pixels per step.
QPoint around(QPoint center, int step, int radius, int stride) {
    const double angle = step * static_cast<double>(stride) / radius;
    return center + QPointF(radius * std::cos(angle), radius * std::sin(angle)).toPoint();
}

void steps(benchmark::State& state, Canvas& canvas, QPoint center, int radius, int stride) {
    int step = 0;
    for (auto _ : state) {
        canvas.move(around(center, ++step, radius, stride));
        canvas.settle();
    }
}

void dragSelection(benchmark::State& state) {
    Canvas canvas;
    canvas.press({200, 200});
    steps(state, canvas, {2600, 1400}, 500, static_cast<int>(state.range(0)));
    canvas.release({2600, 1400});
}

void moveSelection(benchmark::State& state) {
    Canvas canvas;
    canvas.drag({800, 500}, {2800, 1600});
    canvas.press({1500, 1000});
    steps(state, canvas, {1500, 1000}, 300, static_cast<int>(state.range(0)));
    canvas.release({1500, 1000});
}

void resizeSelection(benchmark::State& state) {
    Canvas canvas;
    canvas.drag({800, 500}, {2800, 1600});
    canvas.press({2800, 1600});
    steps(state, canvas, {2800, 1600}, 300, static_cast<int>(state.range(0)));
    canvas.release({2800, 1600});
}

/// A stroke that already has `range(0)` points, with the tool of the key.
void drawStroke(benchmark::State& state, int key, const char16_t* text) {
    Canvas canvas;
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(key, QString::fromUtf16(text));
    canvas.press({1900, 1100});
    for (int i = 0; i < state.range(0); ++i)
        canvas.move(around({1900, 1100}, i, 200 + i % 600, 7));
    canvas.settle();
    steps(state, canvas, {1900, 1100}, 500, 12);
    canvas.release({1900, 1100});
}

void pen(benchmark::State& state) {
    drawStroke(state, Qt::Key_P, u"p");
}
void marker(benchmark::State& state) {
    drawStroke(state, Qt::Key_H, u"h");
}
void blur(benchmark::State& state) {
    drawStroke(state, Qt::Key_B, u"b");
}

/// A layer moved over `range(0)` finished strokes of 500 points.
void moveLayerOverStrokes(benchmark::State& state) {
    Canvas canvas;
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_P, QStringLiteral("p"));
    for (int layer = 0; layer < state.range(0); ++layer) {
        canvas.press({1900, 1100});
        for (int i = 0; i < 500; ++i)
            canvas.move(around({1900, 1100}, i, 200 + (i + 30 * layer) % 600, 7));
        canvas.release({1900, 1100});
    }
    canvas.key(Qt::Key_R, QStringLiteral("r"));
    canvas.drag({1800, 1000}, {2000, 1200});
    canvas.key(Qt::Key_V, QStringLiteral("v"));
    canvas.press({1800, 1100});
    canvas.settle();
    steps(state, canvas, {1800, 1100}, 200, 12);
    canvas.release({1800, 1100});
}

void hover(benchmark::State& state) {
    Canvas canvas;
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_P, QStringLiteral("p"));
    canvas.press({1900, 1100});
    for (int i = 0; i < 5000; ++i)
        canvas.move(around({1900, 1100}, i, 200 + i % 600, 7));
    canvas.release({1900, 1100});
    canvas.key(Qt::Key_V, QStringLiteral("v"));
    steps(state, canvas, {1900, 1100}, 500, 12);
}

/// Everything painted anew, as after the first map: the upper bound.
void wholeCanvas(benchmark::State& state) {
    Canvas canvas;
    for (auto _ : state) {
        QApplication::topLevelWidgets().constFirst()->findChild<CaptureOverlayView*>()->repaint();
        canvas.settle();
    }
}

BENCHMARK(dragSelection)->Arg(4)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(moveSelection)->Arg(4)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(resizeSelection)->Arg(4)->Arg(40)->Unit(benchmark::kMillisecond);
BENCHMARK(pen)->Arg(50)->Arg(500)->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(400);
BENCHMARK(marker)->Arg(50)->Arg(500)->Arg(5000)->Unit(benchmark::kMillisecond)->Iterations(400);
BENCHMARK(blur)->Arg(50)->Arg(500)->Unit(benchmark::kMillisecond)->Iterations(400);
BENCHMARK(moveLayerOverStrokes)->Arg(1)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(hover)->Unit(benchmark::kMillisecond);
BENCHMARK(wholeCanvas)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
