#include "Annotations/AnnotationRenderer.h"

#include "Annotations/ImageSpace.h"
#include "Vistrel/Annotations/TestPictures.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <functional>
#include <numbers>
#include <random>

using namespace Qt::StringLiterals;

namespace {

using Layers = std::vector<EditorAnnotation>;

EditorAnnotation layer(AnnotationTool tool, std::vector<Point> points, double width = 4,
                       const QColor& color = Qt::red) {
    return {
        .id = QUuid::createUuid(), .tool = tool, .width = width, .color = color, .points = std::move(points)};
}

/// A picture of the given pixels in a view at a scale, all of it selected.
struct Scene {
    QImage image;
    double scale = 1;
    Rect selection = {-1e6, -1e6, 2e6, 2e6};

    Rect bounds() const { return {0, 0, image.width() / scale, image.height() / scale}; }
    ImageSpace space() const { return {image.size(), bounds()}; }
    /// Pixels as an area of the view.
    Rect view(const QRect& pixels) const { return space().view(pixels); }
    std::vector<Point> corners(const QRect& pixels) const {
        const Rect r = view(pixels);
        return {{r.minX(), r.minY()}, {r.maxX(), r.maxY()}};
    }

    void draw(AnnotationRenderer& renderer, const Layers& layers, QPainter& painter) const {
        ViewFlip{bounds().height}.apply(painter);
        renderer.draw(layers, painter, {image, bounds(), selection});
    }
    /// The picture's pixels in `area` with the layers over them, as they are exported.
    QImage painted(AnnotationRenderer& renderer, const Layers& layers, const QRect& area) const {
        QImage result = image.copy(area).convertToFormat(QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&result);
        painter.translate(-area.topLeft());
        painter.scale(scale, scale);
        draw(renderer, layers, painter);
        painter.end();
        return result.convertToFormat(QImage::Format_RGB32);
    }
    QImage painted(const Layers& layers) const {
        AnnotationRenderer renderer;
        return painted(renderer, layers, image.rect());
    }
};

constexpr double scales[] = {1, 1.25, 2};

Scene noisyScene(double scale = 1, QSize size = {320, 240}) {
    return {noise(size, 11), scale};
}

Scene plainScene(double scale = 1, QSize size = {320, 240}) {
    Scene scene = {QImage(size, QImage::Format_RGB32), scale};
    scene.image.fill(Qt::white);
    return scene;
}

/// Every tool somewhere, effects over one another, in pixels of the scene.
Layers manyLayers(const Scene& scene, unsigned seed, int count) {
    std::mt19937 random(seed);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    const auto point = [&] {
        return Point{below(scene.image.width()) / scene.scale, below(scene.image.height()) / scene.scale};
    };
    Layers layers;
    for (int i = 0; i < count; ++i) {
        const auto tool = static_cast<AnnotationTool>(1 + i % 9);
        std::vector<Point> points = {point(), point()};
        if (AnnotationTools::isFreehand(tool)) {
            const int length = below(120);
            for (int p = 0; p < length; ++p)
                points.push_back(points.back() + Point{below(21) - 10.0, below(21) - 10.0});
        }
        layers.push_back(layer(tool, std::move(points), (2 + below(16)) / scene.scale,
                               QColor(below(256), below(256), below(256))));
        if (tool == AnnotationTool::text)
            layers.back().text = u"some text\nto see"_s;
    }
    return layers;
}

} // namespace

TEST(AnnotationRenderer, pixelateShowsTheExactBlocksAndCoversEveryPixelThatItTouches) {
    for (const double scale : scales) {
        // No whole number of blocks high: the cut ones are at the top.
        const Scene scene = noisyScene(scale, {320, 245});
        const QRect area(37, 0, 101, 167);
        std::vector<Point> corners = scene.corners(area);
        corners[0] = corners[0] + Point{0.4 / scale, 0.4 / scale};
        corners[1] = corners[1] - Point{0.4 / scale, 0.4 / scale};
        // A size of 12 as the editor turns it into points, with its rounding.
        const double width = 12 * (scene.bounds().width / scene.image.width());
        const QImage result = scene.painted({layer(AnnotationTool::pixelate, corners, width)});
        QImage expected = scene.image.copy();
        QPainter(&expected).drawImage(
            area.topLeft(),
            TestPictures::exactBlocks(scene.image, EffectFilters::Blocks{12, scene.image.height()})
                .copy(area));
        EXPECT_EQ(result, expected) << scale;
    }
}

TEST(AnnotationRenderer, blurShowsTheExactBlurUnderTheStroke) {
    const QImage exact = TestPictures::exactBlur(noisyScene(1, {300, 200}).image, EffectFilters::blurSigma);
    for (const double scale : scales) {
        const Scene scene = noisyScene(scale, {300, 200});
        const double width = 24 / scale;
        // Its lower edge reaches a little into the next tiles, which begin at row 128.
        const EditorAnnotation blur =
            layer(AnnotationTool::blur,
                  {{0, 81 / scale}, {200 / scale, 81 / scale}, {290 / scale, 199 / scale}}, width);
        const QImage result = scene.painted({blur});
        for (const QRect& inside : {QRect(0, 109, 195, 20), QRect(242, 57, 6, 6), QRect(286, 0, 12, 4)})
            EXPECT_LE(TestPictures::largestDifference(result, exact, inside), 1) << scale;
        EXPECT_EQ(result.copy(0, 133, 300, 67), scene.image.copy(0, 133, 300, 67)) << scale;
    }
}

TEST(AnnotationRenderer, effectsActOnWhatIsSeenBelowThem) {
    const Scene scene = noisyScene();
    const EditorAnnotation arrow = layer(AnnotationTool::arrow, {{20, 120}, {290, 100}}, 10);
    const EditorAnnotation fine = layer(AnnotationTool::pixelate, {{0, 60}, {320, 180}}, 5);
    const EditorAnnotation coarse = layer(AnnotationTool::pixelate, {{40, 80}, {240, 160}}, 12);
    const EditorAnnotation blur = layer(AnnotationTool::blur, {{60, 110}, {260, 110}}, 40);

    const QImage underCoarse = scene.painted({arrow, fine});
    EXPECT_EQ(scene.painted({arrow, fine, coarse}).copy(40, 80, 200, 80),
              TestPictures::exactBlocks(underCoarse, EffectFilters::Blocks{12, 240}).copy(40, 80, 200, 80));

    const QImage underBlur = scene.painted({arrow, fine, coarse});
    const QImage result = scene.painted({arrow, fine, coarse, blur});
    EXPECT_LE(TestPictures::largestDifference(
                  result, TestPictures::exactBlur(underBlur, EffectFilters::blurSigma), {60, 112, 200, 36}),
              1);
}

TEST(AnnotationRenderer, nothingIsPaintedOutsideTheSelection) {
    for (const double scale : scales) {
        Scene scene = noisyScene(scale);
        const QRect selected(50, 60, 130, 90);
        scene.selection = scene.view(selected);
        const QImage result = scene.painted(manyLayers(scene, 3, 60));
        QImage restored = result;
        QPainter(&restored).drawImage(selected.topLeft(), scene.image.copy(selected));
        EXPECT_EQ(restored, scene.image) << scale;
        EXPECT_GT(TestPictures::largestDifference(result, scene.image, selected), 100);
    }
}

// A fast hand leaves many short steps under a wide brush: nothing may be missing or tinted twice. Where
// edges cross within a pixel, another rasterizer tells the covered area more finely.
TEST(AnnotationRenderer, longStrokesArePaintedLikeOnePath) {
    for (const auto& [scale, pixels] : {std::pair(1.0, 14.0), {1.25, 48.0}}) {
        const Scene scene = plainScene(scale, {500, 360});
        EditorAnnotation marker = layer(AnnotationTool::marker, {}, pixels / scale, Qt::black);
        for (int i = 0; i < 900; ++i)
            marker.points.push_back(
                {(250 + 240 * std::cos(i * 0.031)) / scale, (180 + 170 * std::sin(i * 0.07)) / scale});
        QImage expected = scene.image;
        QPainter painter(&expected);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scale, scale);
        ViewFlip{scene.bounds().height}.apply(painter);
        painter.strokePath(marker.path(), QPen(QColor::fromRgbF(0, 0, 0, 0.35F), pixels / scale,
                                               Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.end();
        const QImage painted = scene.painted({marker});
        int darkest = 255;
        int covered = 0;
        int different = 0;
        for (int y = 0; y < painted.height(); ++y)
            for (int x = 0; x < painted.width(); ++x) {
                const int wanted = qGreen(expected.pixel(x, y));
                const int level = qGreen(painted.pixel(x, y));
                darkest = std::min(darkest, level);
                covered += wanted < 255 ? 1 : 0;
                different += std::abs(level - wanted) > 8 ? 1 : 0;
            }
        EXPECT_EQ(darkest, 166) << scale;
        EXPECT_LE(different, covered / 200) << scale;
    }
}

// However small the shape and thick its line: painted is what lies within half the width of the outline.
TEST(AnnotationRenderer, outlinesCoverAllThatIsNearThem) {
    const std::tuple<const char*, AnnotationTool, Size, double> rows[] = {
        {"disc", AnnotationTool::ellipse, {8, 8}, 24},
        {"flatDisc", AnnotationTool::ellipse, {30, 8}, 14},
        {"sharpBend", AnnotationTool::ellipse, {48, 16}, 8},
        {"line", AnnotationTool::ellipse, {0, 30}, 12},
        {"dot", AnnotationTool::ellipse, {0, 0}, 20},
        {"ring", AnnotationTool::ellipse, {40, 30}, 5},
        {"square", AnnotationTool::rectangle, {9, 9}, 30},
        {"bar", AnnotationTool::rectangle, {40, 6}, 14},
        {"frame", AnnotationTool::rectangle, {40, 30}, 5},
    };
    constexpr Point center = {35.3, 28.7};
    constexpr int samples = 200;
    for (const auto& [name, tool, size, width] : rows) {
        std::vector<Point> outline;
        for (int i = 0; i < samples; ++i) {
            const double angle = 2 * std::numbers::pi * i / samples;
            Point way = {std::cos(angle), std::sin(angle)};
            if (const double longest = std::max(std::abs(way.x), std::abs(way.y));
                tool == AnnotationTool::rectangle)
                way = {way.x / longest, way.y / longest};
            outline.push_back(center + Point{way.x * size.width / 2, way.y * size.height / 2});
        }
        for (const double scale : scales) {
            const Scene scene = plainScene(scale, QSizeF(72 * scale, 56 * scale).toSize());
            const Point half = {size.width / 2, size.height / 2};
            const QImage image =
                scene.painted({layer(tool, {center - half, center + half}, width, Qt::black)});
            int wrong = 0;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x) {
                    const Point p = {(x + 0.5) / scale, scene.bounds().height - (y + 0.5) / scale};
                    double squared = 1e9;
                    for (const Point on : outline)
                        squared =
                            std::min(squared, (p.x - on.x) * (p.x - on.x) + (p.y - on.y) * (p.y - on.y));
                    const double outside = (std::sqrt(squared) - width / 2) * scale; // pixels
                    const int level = qGreen(image.pixel(x, y));
                    wrong += (outside < -1 && level != 0) || (outside > 1 && level != 255) ? 1 : 0;
                }
            EXPECT_EQ(wrong, 0) << name << " at " << scale;
        }
    }
}

// Whatever is done to the layers, the kept pixels give the same picture as computing all anew.
TEST(AnnotationRenderer, keptPixelsAreNeverOutdated) {
    Scene scene = noisyScene(1.25, {260, 190});
    Layers layers = manyLayers(scene, 23, 18);
    AnnotationRenderer kept;
    std::mt19937 random(9);
    const auto any = [&](std::size_t count) { return static_cast<std::size_t>(random()) % count; };
    const auto anyLayer = [&]() -> EditorAnnotation& { return layers[any(layers.size())]; };
    const std::vector<std::function<void()>> edits = {
        // Small steps: what comes near an effect without touching it counts, too.
        [&] {
            EditorAnnotation& moved = anyLayer();
            moved = moved.movedBy({7, -5});
        },
        [&] {
            EditorAnnotation& moved = anyLayer();
            moved = moved.movedBy({-130, 70});
        },
        [&] {
            EditorAnnotation& grown = anyLayer();
            grown.points.push_back(grown.points.back() + Point{9, 4});
        },
        [&] { anyLayer().width += 1.5; },
        [&] { anyLayer().color = QColor(int(any(256)), 10, 200); },
        [&] { layers.erase(layers.begin() + std::ptrdiff_t(any(layers.size()))); },
        [&] { layers.push_back(manyLayers(scene, unsigned(random()), 9)[any(9)]); },
        [&] { std::swap(anyLayer(), anyLayer()); },
        [&] { scene.selection = scene.view(QRect(int(any(80)), int(any(80)), 160, 110)); },
        [&] { scene.image = noise(scene.image.size(), unsigned(random())); },
    };
    for (std::size_t round = 0; round < 3 * edits.size(); ++round) {
        edits[round % edits.size()]();
        const QRect area(int(any(120)), int(any(90)), 140, 100);
        AnnotationRenderer fresh;
        EXPECT_EQ(scene.painted(kept, layers, area), scene.painted(fresh, layers, area)) << "round " << round;
    }
}

TEST(AnnotationRenderer, anEffectSeesWhatComesNearWithoutTouchingIt) {
    const Scene scene = plainScene();
    AnnotationRenderer kept;
    Layers layers = {layer(AnnotationTool::line, {{20, 20}, {20, 220}}, 8),
                     layer(AnnotationTool::blur, {{160, 120}, {160, 120}}, 60)};
    for (int step = 0; step < 10; ++step) {
        EXPECT_EQ(scene.painted(kept, layers, scene.image.rect()), scene.painted(layers)) << step;
        layers[0] = layers[0].movedBy({12, 0});
    }
}
