// One step of the user on a canvas of 1080 or 2160 lines, from the event to the flushed pixels. Runs on
// whatever platform QT_QPA_PLATFORM names, at the scale that QT_SCALE_FACTOR names. Places are device
// pixels of the larger display.

#include "Canvas.h"

#include <QClipboard>
#include <QScrollBar>

#include <benchmark/benchmark.h>

namespace {

void steps(benchmark::State& state, Canvas& canvas, QPoint center, int radius, int stride) {
    int step = 0;
    for (auto _ : state) {
        canvas.move(around(center, ++step, radius, stride));
        canvas.settle();
    }
}

void dragSelection(benchmark::State& state) {
    Canvas canvas(state.range(0));
    canvas.press({200, 200});
    steps(state, canvas, {2600, 1400}, 500, static_cast<int>(state.range(1)));
    canvas.release({2600, 1400});
}

void moveSelection(benchmark::State& state) {
    Canvas canvas(state.range(0));
    canvas.drag({800, 500}, {2800, 1600});
    canvas.press({1500, 1000});
    steps(state, canvas, {1500, 1000}, 300, static_cast<int>(state.range(1)));
    canvas.release({1500, 1000});
}

/// The panels follow every step.
void resizeSelection(benchmark::State& state) {
    Canvas canvas(state.range(0));
    canvas.drag({800, 500}, {2800, 1600});
    canvas.press({2800, 1600});
    steps(state, canvas, {2800, 1600}, 300, static_cast<int>(state.range(1)));
    canvas.release({2800, 1600});
}

/// A stroke that already has `range(1)` points, with the tool of the key.
void drawStroke(benchmark::State& state, int key, const char16_t* text) {
    Canvas canvas(state.range(0));
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
    Canvas canvas(state.range(0));
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
    Canvas canvas(state.range(0));
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
    Canvas canvas(state.range(0));
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

void drawAmongLayers(benchmark::State& state) {
    Canvas canvas(state.range(0));
    drawMany(canvas, state.range(1));
    canvas.press({1900, 1100});
    steps(state, canvas, {1900, 1100}, 500, 12);
    canvas.release({1900, 1100});
}

void selectToolAmongLayers(benchmark::State& state) {
    Canvas canvas(state.range(0));
    drawMany(canvas, state.range(1));
    bool pen = false;
    for (auto _ : state) {
        pen = !pen;
        canvas.key(pen ? Qt::Key_P : Qt::Key_R, pen ? QStringLiteral("p") : QStringLiteral("r"));
    }
}

/// The list of layers scrolled by a few points, as a wheel or the bar does it.
void scrollList(benchmark::State& state) {
    Canvas canvas(state.range(0));
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
    Canvas canvas(state.range(0));
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
    Canvas canvas(state.range(0));
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
    Canvas canvas(state.range(0));
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
    Canvas canvas(state.range(0));
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
    Canvas canvas(state.range(0));
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
    Canvas canvas(state.range(0));
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
    Canvas canvas(state.range(0));
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
