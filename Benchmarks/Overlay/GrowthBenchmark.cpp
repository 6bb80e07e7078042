// How the cost of one step grows with what is already there: layers, effects, points of the stroke, undo.
// On a canvas of 2160 lines.

#include "Canvas.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

namespace {

constexpr QPoint corner(3000, 1700);

void steps(benchmark::State& state, Canvas& canvas, QPoint center, int radius) {
    int step = 0;
    for (auto _ : state) {
        canvas.move(around(center, ++step, radius, 12));
        canvas.settle();
    }
}

/// A further stroke, where nothing else is, above `range(0)` layers.
void drawAboveLayers(benchmark::State& state) {
    Canvas canvas(designHeight);
    drawMany(canvas, state.range(0));
    canvas.press(corner);
    steps(state, canvas, corner, 150);
    canvas.release(corner);
}

/// Blur strokes side by side on the left, each over whatever the ones before it show.
void drawEffects(Canvas& canvas, std::int64_t count) {
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_B, QStringLiteral("b"));
    for (int layer = 0; layer < count; ++layer) {
        const QPoint start(300 + layer % 10 * 200, 300 + layer / 10 * 150);
        canvas.drag(start, start + QPoint(180, 60));
    }
}

void drawBesideEffects(benchmark::State& state) {
    Canvas canvas(designHeight);
    drawEffects(canvas, state.range(0));
    canvas.key(Qt::Key_P, QStringLiteral("p"));
    canvas.press(corner);
    steps(state, canvas, corner, 150);
    canvas.release(corner);
}

/// A line drawn across the first effect: what it hides is computed anew, the others are not.
void drawAcrossOneEffect(benchmark::State& state) {
    Canvas canvas(designHeight);
    drawEffects(canvas, state.range(0));
    canvas.key(Qt::Key_R, QStringLiteral("r"));
    canvas.press({350, 250});
    steps(state, canvas, {390, 330}, 60);
    canvas.release({390, 330});
}

/// The next point of a stroke of `range(0)` points.
void growPen(benchmark::State& state) {
    Canvas canvas(designHeight);
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_P, QStringLiteral("p"));
    canvas.press({1900, 1100});
    for (int i = 0; i < state.range(0); ++i)
        canvas.move(around({1900, 1100}, i, 200 + i % 600, 7));
    // What was drawn so far arrives in more than one turn.
    for (int turn = 0; turn < 3; ++turn)
        canvas.settle();
    steps(state, canvas, {1900, 1100}, 500);
    canvas.release({1900, 1100});
}

/// A finished stroke of `range(0)` points is moved, so that all of it is painted anew.
void moveStroke(benchmark::State& state) {
    Canvas canvas(designHeight);
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_P, QStringLiteral("p"));
    const auto scribble = [](int i) { return around({1900, 1100}, i, 200 + i % 600, 7); };
    canvas.press(scribble(0));
    for (int i = 1; i < state.range(0); ++i)
        canvas.move(scribble(i));
    canvas.release(scribble(static_cast<int>(state.range(0)) - 1));
    canvas.key(Qt::Key_V, QStringLiteral("v"));
    canvas.settle();
    const QPoint grip = scribble(0);
    canvas.press(grip);
    int step = 0;
    for (auto _ : state) {
        ++step;
        canvas.move(grip + QPoint(step % 40, step % 30));
        canvas.settle();
    }
    canvas.release(grip);
}

/// What `range(0)` further steps of undo keep in memory, above a document of 50 strokes of 500 points.
void undoMemory(benchmark::State& state) {
    Canvas canvas(designHeight);
    canvas.drag({200, 200}, {3600, 2000});
    canvas.key(Qt::Key_P, QStringLiteral("p"));
    for (int layer = 0; layer < 50; ++layer) {
        canvas.press({1900, 1100});
        for (int i = 0; i < 500; ++i)
            canvas.move(around({1900, 1100}, i, 200 + (i + 30 * layer) % 600, 7));
        canvas.release({1900, 1100});
    }
    canvas.settle();
    const std::size_t before = mallinfo2().uordblks;
    for (auto _ : state)
        for (int step = 0; step < state.range(0); ++step)
            canvas.drag(corner + QPoint(step, 0), corner + QPoint(step, 40));
    const std::size_t after = mallinfo2().uordblks;
    state.counters["bytes_per_step"] =
        static_cast<double>(after - std::min(before, after)) / static_cast<double>(state.range(0));
}

[[maybe_unused]] const bool registered = [] {
    const auto add = [](const char* name, void (*run)(benchmark::State&), std::int64_t first) {
        return benchmark::RegisterBenchmark(name, run)
            ->RangeMultiplier(10)
            ->Range(first, first * 100)
            ->Unit(benchmark::kMillisecond);
    };
    add("drawAboveLayers", drawAboveLayers, 10)->Iterations(200);
    add("drawBesideEffects", drawBesideEffects, 1)->Iterations(200);
    add("drawAcrossOneEffect", drawAcrossOneEffect, 1)->Iterations(200);
    add("growPen", growPen, 100)->Iterations(200);
    add("moveStroke", moveStroke, 100)->Iterations(20);
    add("undoMemory", undoMemory, 1)->Iterations(1);
    return true;
}();

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
