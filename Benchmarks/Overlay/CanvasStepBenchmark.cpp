// One step of the user on a canvas of 1080 or 2160 lines, from the event to the flushed pixels. Runs on
// whatever platform QT_QPA_PLATFORM names, at the scale that QT_SCALE_FACTOR names. Places are device
// pixels of the larger display.

#include "Overlay/CaptureOverlayWindow.h"
#include "Overlay/OverlayEditor.h"

#include <QApplication>
#include <QClipboard>
#include <QMouseEvent>
#include <QRandomGenerator>
#include <QScrollBar>

#include <benchmark/benchmark.h>

namespace {

constexpr int designHeight = 2160;

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

QImage desktop(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    QRandomGenerator generator(3);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = 0xff000000U | (generator.generate() & 0x3f3f3fU) | static_cast<unsigned>((x / 16) << 8);
    }
    return image;
}

/// A shown canvas of a display, with the pointer events of a user.
class Canvas {
public:
    explicit Canvas(const benchmark::State& state) : height(static_cast<int>(state.range(0))) {
        const QImage picture = desktop(pixels);
        window.view().resetSession({.image = picture, .presentation = picture, .frozen = nullptr}, scale,
                                   {pixels.width() / scale, pixels.height() / scale});
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
    void key(int code, const QString& text, Qt::KeyboardModifiers modifiers = {}) {
        QWidget* focused = QApplication::focusWidget();
        QKeyEvent event(QEvent::KeyPress, code, modifiers, text);
        QApplication::sendEvent(focused ? focused : &window.view(), &event);
        settle();
    }
    /// Everything is painted, and the window system has the pixels.
    void settle() {
        QApplication::processEvents();
        QApplication::sendPostedEvents();
        QGuiApplication::sync();
    }
    CaptureOverlayView& view() { return window.view(); }

private:
    void send(QEvent::Type type, QPoint p) {
        const bool held = type != QEvent::MouseButtonRelease;
        const QPointF points = QPointF(p) * height / designHeight / scale;
        QMouseEvent event(type, points, points, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          held ? Qt::LeftButton : Qt::NoButton, {});
        QApplication::sendEvent(&window.view(), &event);
    }

    int height;
    QSize pixels{height * 16 / 9, height};
    double scale = qApp->devicePixelRatio();
    NoDefaults defaults;
    EditorPreferences preferences{defaults};
    CaptureOverlayWindow window{{.name = QStringLiteral("bench"),
                                 .displayID = 1,
                                 .nativeRect = QRect(QPoint(0, 0), pixels),
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
    Canvas canvas(state);
    canvas.press({200, 200});
    steps(state, canvas, {2600, 1400}, 500, static_cast<int>(state.range(1)));
    canvas.release({2600, 1400});
}

void moveSelection(benchmark::State& state) {
    Canvas canvas(state);
    canvas.drag({800, 500}, {2800, 1600});
    canvas.press({1500, 1000});
    steps(state, canvas, {1500, 1000}, 300, static_cast<int>(state.range(1)));
    canvas.release({1500, 1000});
}

/// The panels follow every step.
void resizeSelection(benchmark::State& state) {
    Canvas canvas(state);
    canvas.drag({800, 500}, {2800, 1600});
    canvas.press({2800, 1600});
    steps(state, canvas, {2800, 1600}, 300, static_cast<int>(state.range(1)));
    canvas.release({2800, 1600});
}

/// A stroke that already has `range(1)` points, with the tool of the key.
void drawStroke(benchmark::State& state, int key, const char16_t* text) {
    Canvas canvas(state);
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(key, QString::fromUtf16(text));
    canvas.press({1900, 1100});
    for (int i = 0; i < state.range(1); ++i)
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

/// A rectangle is moved about, its left edge in hand.
void moveRectangle(benchmark::State& state, Canvas& canvas) {
    canvas.key(Qt::Key_R, QStringLiteral("r"));
    canvas.drag({1800, 1000}, {2000, 1200});
    canvas.key(Qt::Key_V, QStringLiteral("v"));
    canvas.press({1800, 1100});
    canvas.settle();
    steps(state, canvas, {1800, 1100}, 200, 12);
    canvas.release({1800, 1100});
}

/// A layer moved over `range(1)` finished strokes of 500 points.
void moveLayerOverStrokes(benchmark::State& state) {
    Canvas canvas(state);
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_P, QStringLiteral("p"));
    for (int layer = 0; layer < state.range(1); ++layer) {
        canvas.press({1900, 1100});
        for (int i = 0; i < 500; ++i)
            canvas.move(around({1900, 1100}, i, 200 + (i + 30 * layer) % 600, 7));
        canvas.release({1900, 1100});
    }
    moveRectangle(state, canvas);
}

/// A layer moved over a stroke of the blur tool, which lies below it and so does not change.
void moveLayerOverBlur(benchmark::State& state) {
    Canvas canvas(state);
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_B, QStringLiteral("b"));
    canvas.press({1500, 1100});
    for (int x = 1500; x < 2300; x += 20)
        canvas.move({x, 1100 + x % 60});
    canvas.release({2300, 1100});
    moveRectangle(state, canvas);
}

/// A layer moved under such a stroke, whose patch changes with every step.
void moveLayerUnderBlur(benchmark::State& state) {
    Canvas canvas(state);
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_R, QStringLiteral("r"));
    canvas.drag({1800, 1000}, {2000, 1200});
    canvas.key(Qt::Key_B, QStringLiteral("b"));
    canvas.drag({1600, 1100}, {2200, 1110});
    canvas.key(Qt::Key_V, QStringLiteral("v"));
    // Clear of the stroke, which lies on top.
    canvas.press({1800, 1180});
    canvas.settle();
    steps(state, canvas, {1800, 1180}, 100, 12);
    canvas.release({1800, 1180});
}

/// `range(1)` short strokes, spread over the selection.
void drawMany(Canvas& canvas, long count) {
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_P, QStringLiteral("p"));
    for (int layer = 0; layer < count; ++layer) {
        const QPoint start(300 + layer * 97 % 3200, 300 + layer * 53 % 1600);
        canvas.press(start);
        canvas.move(start + QPoint(20, 30));
        canvas.release(start + QPoint(40, 20));
    }
    canvas.settle();
}

void drawAmongLayers(benchmark::State& state) {
    Canvas canvas(state);
    drawMany(canvas, state.range(1));
    canvas.press({1900, 1100});
    steps(state, canvas, {1900, 1100}, 500, 12);
    canvas.release({1900, 1100});
}

void selectToolAmongLayers(benchmark::State& state) {
    Canvas canvas(state);
    drawMany(canvas, state.range(1));
    bool pen = false;
    for (auto _ : state) {
        pen = !pen;
        canvas.key(pen ? Qt::Key_P : Qt::Key_R, pen ? QStringLiteral("p") : QStringLiteral("r"));
    }
}

/// The list of layers scrolled by a few points, as a wheel or the bar does it.
void scrollList(benchmark::State& state) {
    Canvas canvas(state);
    drawMany(canvas, state.range(1));
    QScrollBar& bar = *canvas.view().findChild<QScrollBar*>(QStringLiteral("layerScrollBar"));
    int step = 0;
    for (auto _ : state) {
        bar.setValue(++step * 7 % bar.maximum());
        canvas.settle();
    }
}

/// Back and forth through a full history.
void undoAndRedo(benchmark::State& state) {
    Canvas canvas(state);
    drawMany(canvas, state.range(1));
    int step = 0;
    for (auto _ : state) {
        const bool back = step++ % 200 < 100;
        canvas.key(Qt::Key_Z, {}, Qt::ControlModifier | (back ? Qt::NoModifier : Qt::ShiftModifier));
    }
}

/// A scribble over half the display, about ten pixels a step, that crosses itself again and again.
QPoint scribble(int step) {
    return QPoint(1900, 1100) +
           QPointF(900 * std::sin(step * 0.0081), 700 * std::sin(step * 0.0107 + 1)).toPoint();
}

/// Back and forth over one stroke of `range(1)` points.
void undoStroke(benchmark::State& state) {
    Canvas canvas(state);
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_P, QStringLiteral("p"));
    canvas.press(scribble(0));
    for (int i = 0; i < state.range(1); ++i)
        canvas.move(scribble(i));
    canvas.release(scribble(static_cast<int>(state.range(1))));
    canvas.settle();
    bool back = false;
    for (auto _ : state) {
        back = !back;
        canvas.key(Qt::Key_Z, {}, Qt::ControlModifier | (back ? Qt::NoModifier : Qt::ShiftModifier));
    }
}

/// Opens a text and puts one of `range(1)` characters onto the clipboard.
void beginText(benchmark::State& state, Canvas& canvas) {
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_T, QStringLiteral("t"));
    canvas.press({400, 400});
    canvas.release({400, 400});
    QString text;
    while (text.size() < state.range(1))
        text += QStringLiteral("So many words, and every one of them was typed by somebody.\n");
    QGuiApplication::clipboard()->setText(text.left(state.range(1)));
}

/// The text is pasted into an empty field; taking it out again does not count.
void pasteText(benchmark::State& state) {
    Canvas canvas(state);
    beginText(state, canvas);
    for (auto _ : state) {
        canvas.key(Qt::Key_V, {}, Qt::ControlModifier);
        state.PauseTiming();
        canvas.key(Qt::Key_A, {}, Qt::ControlModifier);
        canvas.key(Qt::Key_Delete, {});
        state.ResumeTiming();
    }
}

/// The text becomes a layer; undoing that and typing it again does not count.
void commitText(benchmark::State& state) {
    Canvas canvas(state);
    beginText(state, canvas);
    canvas.key(Qt::Key_V, {}, Qt::ControlModifier);
    for (auto _ : state) {
        canvas.key(Qt::Key_Return, {}, Qt::ControlModifier);
        state.PauseTiming();
        canvas.key(Qt::Key_Z, {}, Qt::ControlModifier);
        canvas.press({400, 400});
        canvas.release({400, 400});
        canvas.key(Qt::Key_V, {}, Qt::ControlModifier);
        state.ResumeTiming();
    }
}

/// A character typed at the end of a text that has `range(1)` already.
void typeText(benchmark::State& state) {
    Canvas canvas(state);
    beginText(state, canvas);
    canvas.key(Qt::Key_V, {}, Qt::ControlModifier);
    for (auto _ : state)
        canvas.key(Qt::Key_A, QStringLiteral("a"));
    if (canvas.view().layerCount() != 0)
        state.SkipWithError("the text was committed");
    canvas.key(Qt::Key_Return, {}, Qt::ControlModifier);
    if (canvas.view().layerCount() != 1)
        state.SkipWithError("no text was typed");
}

void hover(benchmark::State& state) {
    Canvas canvas(state);
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
    Canvas canvas(state);
    for (auto _ : state) {
        canvas.view().repaint();
        canvas.settle();
    }
}

const std::vector<std::int64_t> heights = {1080, designHeight};

void both(benchmark::internal::Benchmark* registered, const char* name, std::vector<std::int64_t> values) {
    registered->Unit(benchmark::kMillisecond)->ArgNames({"lines", name});
    registered->ArgsProduct({heights, std::move(values)});
}

[[maybe_unused]] const bool registered = [] {
    const auto add = [](const char* name, void (*run)(benchmark::State&)) {
        return benchmark::RegisterBenchmark(name, run);
    };
    both(add("dragSelection", dragSelection), "stride", {4, 40});
    both(add("moveSelection", moveSelection), "stride", {4, 40});
    both(add("resizeSelection", resizeSelection), "stride", {4, 40});
    both(add("pen", pen)->Iterations(400), "points", {50, 5000});
    both(add("marker", marker)->Iterations(400), "points", {50, 5000});
    both(add("blur", blur)->Iterations(400), "points", {50, 500});
    both(add("moveLayerOverStrokes", moveLayerOverStrokes), "strokes", {1, 20});
    both(add("moveLayerOverBlur", moveLayerOverBlur), "", {0});
    both(add("moveLayerUnderBlur", moveLayerUnderBlur), "", {0});
    both(add("drawAmongLayers", drawAmongLayers)->Iterations(200), "layers", {100, 1000});
    both(add("selectToolAmongLayers", selectToolAmongLayers)->Iterations(50), "layers", {100, 1000});
    both(add("scrollList", scrollList), "layers", {100, 1000});
    both(add("undoAndRedo", undoAndRedo)->Iterations(200), "layers", {101, 1000});
    both(add("undoStroke", undoStroke)->Iterations(100), "points", {50, 5000});
    both(add("pasteText", pasteText)->Iterations(20), "characters", {100, 100000});
    both(add("commitText", commitText)->Iterations(20), "characters", {100, 100000});
    both(add("typeText", typeText)->Iterations(50), "characters", {100, 100000});
    both(add("hover", hover), "", {0});
    both(add("wholeCanvas", wholeCanvas), "", {0});
    return true;
}();

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
