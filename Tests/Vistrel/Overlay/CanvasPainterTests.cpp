#include "Overlay/CanvasPainter.h"
#include "Overlay/OverlayExport.h"
#include "Vistrel/Annotations/TestPictures.h"
#include "Vistrel/Overlay/OverlayFixture.h"

#include <QPainter>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace {

using TestPictures::largestDifference;

class CanvasPainterTests : public OverlayFixture {
protected:
    void open(double scale, QSize pixels) {
        presentation = noise(pixels);
        document.reset(presentation, scale, {pixels.width() / scale, pixels.height() / scale});
        space = {document.viewSize, pixels};
    }
    DecorationLayout layout() const { return DecorationLayout::of(document, space, badgeText); }

    /// As the canvas does it: a widget's painter, whose units are points, made to count pixels.
    void paint(QImage& target, const QRegion& region, const DecorationLayout& shown) {
        target.setDevicePixelRatio(space.scale());
        QPainter painter(&target);
        painter.scale(1 / space.scale(), 1 / space.scale());
        painter.setClipRegion(region);
        const CanvasPainter::Picture picture = {
            .presentation = presentation, .space = space, .layout = shown};
        CanvasPainter canvas(painter, region);
        canvas.paintPicture(picture);
        canvas.paintLayers(document, editor.session.renderer, picture);
        if (decorated)
            canvas.paintDecorations(picture, badgeText, Qt::blue);
        painter.end();
        target.setDevicePixelRatio(1);
    }
    QImage painted() {
        QImage target(space.pixels, QImage::Format_RGB32);
        paint(target, QRect(QPoint(), space.pixels), layout());
        return target;
    }
    void addOneOfEach() {
        for (int tool = 1; tool < AnnotationTools::count; ++tool) {
            const double x = 26.25 + 13.75 * tool;
            add(static_cast<AnnotationTool>(tool), {{x, 60}, {x + 37.5, 91.25}}, 8).text = u"abc"_s;
        }
    }

    QImage presentation;
    CanvasSpace space;
    BadgeText badgeText;
    bool decorated = false;
};

const std::tuple<double, QSize> scaleCases[] = {
    {1, {320, 200}}, {1.1, {333, 217}}, {1.25, {401, 251}}, {1.5, {467, 301}}, {2, {640, 400}}};

TEST_F(CanvasPainterTests, whatIsShownIsWhatIsExported) {
    for (const auto& [scale, pixels] : scaleCases) {
        SCOPED_TRACE(scale);
        document.state = {};
        open(scale, pixels);
        document.selection = {30.3, 40.2, 150.5, 100.25};
        const QRect bright = space.pixelsOf(document.selection);
        EXPECT_EQ(painted().copy(bright), presentation.copy(bright)) << "bit-identical without layers";
        addOneOfEach();
        const QImage target = painted();
        // 1.1 has no exact inverse: an edge may be off by a rounding error, never by a pixel.
        const int tolerance = scale == 1.1 ? 4 : 0;
        EXPECT_LE(largestDifference(target.copy(bright), *editor.output.outputImage()), tolerance);
        for (const QPoint p : {bright.topLeft() - QPoint(1, 0), bright.topLeft() - QPoint(0, 1),
                               bright.bottomRight() + QPoint(1, 0), bright.bottomRight() + QPoint(0, 1)})
            EXPECT_NE(target.pixel(p), presentation.pixel(p)) << "dimmed right beside it";
    }
}

// The heart of painting only what changed: after any sequence of edits, the repaired picture is the one
// that a full repaint gives.
TEST_F(CanvasPainterTests, repairingTheDamageEqualsPaintingAll) {
    decorated = true;
    open(1.25, {500, 400});
    QRandomGenerator generator(11);
    const auto anywhere = [&] {
        return Point{generator.bounded(4000) / 10.0, generator.bounded(3200) / 10.0};
    };
    document.selection = {60, 60, 280, 200};
    QImage repaired = painted();
    DecorationLayout shown = layout();
    const auto repair = [&] {
        const DecorationLayout next = layout();
        const QRegion region = CanvasPainter::damage(editor.session.damage.take(), shown, next, space);
        shown = next;
        if (!region.isEmpty())
            paint(repaired, region, shown);
    };
    for (int step = 0; step < 80; ++step) {
        document.tool = static_cast<AnnotationTool>(generator.bounded(9));
        press(anywhere());
        repair();
        for (int i = 0; i < 4; ++i) {
            drag(anywhere());
            repair();
        }
        release(anywhere());
        if (generator.bounded(5) == 0)
            editor.layers.undo();
        if (generator.bounded(5) == 0)
            editor.layers.redo();
        const auto any = [&] { return QUuid(layers()[generator.bounded(quint32(layers().size()))].id); };
        if (generator.bounded(6) == 0 && !layers().empty())
            editor.layers.reorderAnnotation(any(), generator.bounded(8));
        if (generator.bounded(8) == 0 && !layers().empty())
            editor.layers.deleteAnnotation(any());
        key(Key::upArrow, {}, Modifier::shift);
        repair();
        ASSERT_EQ(repaired, painted()) << "step " << step;
    }
}

TEST_F(CanvasPainterTests, handlesAreSeenOnWhitePaper) {
    decorated = true;
    for (const auto& [scale, pixels] : scaleCases) {
        open(scale, pixels);
        presentation.fill(Qt::white);
        document.selection = document.bounds();
        document.state = {};
        addSelected(AnnotationTool::line, {{100, 50}, {160, 90}});
        const QImage target = painted();
        std::vector<QRect> handles = layout().layerHandles;
        EXPECT_EQ(handles.size(), 2U);
        handles.push_back(layout().handles[1]);
        for (const QRect& handle : handles) {
            EXPECT_EQ(target.pixelColor(handle.center()), Qt::white) << scale;
            EXPECT_LT(qGray(target.pixel(handle.left(), handle.center().y())), 200) << scale;
        }
    }
}

TEST_F(CanvasPainterTests, layersOfAReducedDisplayAreAsWideAsTheyWereDrawn) {
    document.reset(noise({200, 100}), 2, {200, 100});
    ASSERT_TRUE(document.reducedRetina);
    document.image.fill(Qt::white);
    document.selection = {0, 0, 200, 100};
    document.tool = AnnotationTool::pen;
    stroke({{20, 50}, {100, 50}, {180, 50}});
    const QImage exported = *editor.output.outputImage();
    EXPECT_EQ(exported.size(), QSize(200, 100));
    int thickness = 0;
    for (int y = 0; y < 100; ++y)
        thickness += exported.pixel(100, y) != qRgb(255, 255, 255);
    EXPECT_EQ(thickness, 6);
}

} // namespace
