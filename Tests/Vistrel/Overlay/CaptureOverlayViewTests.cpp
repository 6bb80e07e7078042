#include "Overlay/CaptureOverlayWindow.h"

#include "Annotations/ViewFlip.h"
#include "Editor/AnnotationTextView.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorHint.h"
#include "Support/EmptyDefaults.h"
#include "Vistrel/Overlay/OverlayFixture.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// The real window over a display of 1000 × 800 points, driven through its native window as the toolkit
/// does it. The rules alone, driven the same way, are what it is held against.
class CaptureOverlayViewTests : public OverlayFixture {
protected:
    CaptureOverlayViewTests() {
        QImage image(1000, 800, QImage::Format_RGB32);
        image.fill(Qt::gray);
        view.resetSession({.image = image, .presentation = image, .frozen = nullptr}, 1, {1000, 800});
        show({1000, 800}, image.size(), 1);
        view.onDiagnosticEvent = [this](Action action, const Diagnostic::Details&) {
            reported.push_back(action);
        };
        view.onClose = [this] { ++viewClosed; };
        window.show();
        view.setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    void pressAt(QPoint p) { QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, p); }
    void moveTo(QPoint p) { QTest::mouseMove(window.windowHandle(), p); }
    void releaseAt(QPoint p) { QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, p); }

    /// The whole gesture, here and by the rules. A single point is a click.
    void gesture(const std::vector<QPoint>& path) {
        pressAt(path.front());
        press(flip.toView(path.front()));
        for (const QPoint p : path) {
            moveTo(p);
            drag(flip.toView(p));
        }
        releaseAt(path.back());
        release(flip.toView(path.back()));
    }
    void tool(QChar letter) {
        QTest::keyClick(window.windowHandle(), letter.toLatin1());
        key(KeyEvent::unknownKey, letter);
    }
    void expectTheRulesResult() {
        EXPECT_EQ(view.selection(), document.selection);
        EXPECT_EQ(view.tool(), document.tool);
        EXPECT_EQ(view.layerCount(), int(layers().size()));
        EXPECT_EQ(reported, actions);
        EXPECT_EQ(view.outputImage(), editor.output.outputImage());
    }
    QPoint middle(const QWidget& widget) const { return widget.mapTo(&window, widget.rect().center()); }
    QWidget& part(const char* objectName) { return *view.findChild<QWidget*>(QLatin1StringView(objectName)); }

    std::vector<Action> reported;
    int viewClosed = 0;
    EmptyDefaults defaults;
    EditorPreferences preferences{defaults};
    const Screen screen{.name = u"A"_s, .displayID = 1, .nativeRect = {0, 0, 1000, 800}, .scale = 1};
    CaptureOverlayWindow window{screen, preferences, Qt::FramelessWindowHint};
    CaptureOverlayView& view = window.view();
    const ViewFlip flip{800};
};

struct GestureCase {
    const char* name;
    /// Drawn first, then chosen by a click.
    QChar layer;
    /// The tool of the gesture.
    QChar tool;
    std::vector<QPoint> path;
};

// The selection is (300, 200) to (700, 500), a layer (400, 300) to (500, 400); the tools stand to the right.
const GestureCase gestureCases[] = {
    {"aSecondSelection", {}, u'v', {{100, 100}, {103, 103}, {150, 160}, {730, 300}, {250, 600}}},
    {"aSecondSelectionWithAPen", {}, u'p', {{100, 100}, {150, 160}, {250, 600}}},
    {"aClickOutside", {}, u'p', {{100, 100}}},
    {"shrunkToAClick", {}, u'v', {{100, 100}, {150, 160}, {102, 102}}},
    {"theSelectionMoved", {}, u'v', {{500, 350}, {600, 400}, {900, 700}}},
    {"anEdgeThroughTheOpposite", {}, u'v', {{700, 350}, {500, 350}, {301, 350}, {300, 350}, {200, 350}}},
    {"aCornerThroughTheOpposite", {}, u'v', {{700, 500}, {300, 200}, {200, 100}}},
    {"aLayerMoved", u'l', u'v', {{450, 350}, {500, 360}, {730, 360}, {600, 420}}},
    {"aCornerOfALayer", u'r', u'v', {{500, 400}, {730, 450}, {350, 250}}},
    {"theEndOfALine", u'l', u'v', {{500, 400}, {730, 450}, {620, 450}}},
    {"aStroke", {}, u'p', {{400, 300}, {730, 300}, {400, 450}}},
    {"aShape", {}, u'e', {{400, 300}, {730, 300}, {600, 450}}},
    {"anEffect", {}, u'x', {{400, 300}, {730, 300}, {600, 450}}},
};

TEST_F(CaptureOverlayViewTests, everyGestureEndsAsTheRulesSayWithThePanelsShown) {
    for (const GestureCase& row : gestureCases) {
        SCOPED_TRACE(row.name);
        tool(u'v');
        gesture({{5, 5}, {20, 20}});
        gesture({{300, 200}, {700, 500}});
        if (!row.layer.isNull()) {
            tool(row.layer);
            gesture({{400, 300}, {500, 400}});
        }
        tool(row.tool);
        if (!row.layer.isNull())
            gesture({row.layer == u'l' ? QPoint(450, 350) : QPoint(450, 300)});
        expectTheRulesResult();
        ASSERT_TRUE(part("toolsPanel").isVisible());
        gesture(row.path);
        moveTo({20, 700});
        expectTheRulesResult();
        EXPECT_TRUE(part("toolsPanel").isVisible());
    }
}

TEST_F(CaptureOverlayViewTests, onlyADoubleClickWhollyOnTheCanvasCloses) {
    gesture({{300, 200}, {700, 500}});
    tool(u'r');
    for (const int x : {350, 450, 550})
        gesture({{x, 250}, {x + 50, 300}});
    QWidget* lowest = nullptr;
    for (QWidget* bin : view.findChildren<QWidget*>(u"layerTrash"_s))
        if (bin->isVisible() && (!lowest || middle(*bin).y() > middle(*lowest).y()))
            lowest = bin;
    ASSERT_TRUE(lowest);
    const QPoint place = middle(*lowest);
    QTest::mouseDClick(window.windowHandle(), Qt::LeftButton, {}, place);
    EXPECT_EQ(view.layerCount(), 2);
    ASSERT_EQ(view.childAt(place), nullptr) << "the second press must have been the canvas's";
    EXPECT_EQ(viewClosed, 0);
    QTest::mouseDClick(window.windowHandle(), Qt::LeftButton, {}, place);
    EXPECT_EQ(viewClosed, 1);
}

TEST_F(CaptureOverlayViewTests, aStrokeWhoseReleaseIsLostIsDone) {
    gesture({{300, 200}, {700, 500}});
    tool(u'p');
    QDialog dialog(&window);
    dialog.setModal(true);
    view.onSave = [&](const QImage&) { dialog.show(); };
    const std::pair<const char*, std::function<void()>> interruptions[] = {
        {"saved", [&] { QTest::keyClick(window.windowHandle(), Qt::Key_S, Qt::ControlModifier); }},
        {"a dialog that nobody asked for", [&] { dialog.show(); }},
    };
    for (const auto& [name, interrupt] : interruptions) {
        SCOPED_TRACE(name);
        reported.clear();
        pressAt({400, 300});
        moveTo({450, 350});
        interrupt();
        releaseAt({500, 400});
        dialog.hide();
        moveTo({600, 450});
        EXPECT_EQ(reported, std::vector{Action::layerCreated});
        QTest::keyClick(window.windowHandle(), Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(view.layerCount(), 0);
    }
}

TEST_F(CaptureOverlayViewTests, aTypedSizeIsTakenOverOrPutBack) {
    gesture({{300, 200}, {700, 500}});
    tool(u'p');
    auto& field = static_cast<QLineEdit&>(part("drawingWidth"));
    int size = 0;
    view.onCopy = view.onSave = [&](const QImage&) { size = view.drawingSize(); };
    for (const auto& [key, digit] : {std::pair(Qt::Key_C, 5), std::pair(Qt::Key_S, 7)}) {
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, middle(field));
        QTest::keyClick(window.windowHandle(), char('0' + digit));
        QTest::keyClick(window.windowHandle(), key, Qt::ControlModifier);
        EXPECT_EQ(size, digit);
    }
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, middle(field));
    QTest::keyClick(window.windowHandle(), '9');
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    EXPECT_EQ(field.text(), u"7"_s);
    EXPECT_EQ(view.drawingSize(), 7);
    EXPECT_EQ(viewClosed, 0);
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    EXPECT_EQ(viewClosed, 1);
}

TEST_F(CaptureOverlayViewTests, aPanelsButtonPressedInVainLeavesTheKeyboardToTheText) {
    gesture({{300, 200}, {700, 500}});
    tool(u't');
    gesture({{400, 300}});
    pressAt(middle(part("copy")));
    moveTo({10, 10});
    releaseAt({10, 10});
    QTest::keyClick(window.windowHandle(), 'p');
    const auto* text = view.findChild<AnnotationTextView*>(u"annotationText"_s);
    ASSERT_NE(text, nullptr) << "the letter chose a tool";
    EXPECT_EQ(text->string(), u"p"_s);
}

TEST_F(CaptureOverlayViewTests, nothingOfACaptureOutlivesIt) {
    gesture({{300, 200}, {700, 500}});
    tool(u't');
    gesture({{400, 300}});
    for (const char letter : {'s', 'e', 'c', 'r', 'e', 't'})
        QTest::keyClick(window.windowHandle(), letter);
    QTest::keyClick(window.windowHandle(), Qt::Key_Return, Qt::ControlModifier);
    const auto secrets = [&] {
        return std::ranges::count_if(view.findChildren<QWidget*>(), [](const QWidget* widget) {
            return (widget->accessibleName() + widget->toolTip()).contains(u"secret"_s);
        });
    };
    ASSERT_GT(secrets(), 0);
    const QPoint icon = middle(part("layerIcon"));
    pressAt(icon);
    moveTo(icon + QPoint(0, 8));
    const auto ticks = [&] {
        return std::ranges::any_of(part("layerTable").findChildren<QTimer*>(), &QTimer::isActive);
    };
    ASSERT_TRUE(ticks());
    view.resetSession({}, 1, {1000, 800});
    window.hide();
    EXPECT_FALSE(ticks());
    EXPECT_EQ(secrets(), 0);
}

TEST_F(CaptureOverlayViewTests, hintsGoWithTheirButtonAndWithTheWindow) {
    gesture({{300, 200}, {500, 400}});
    auto& share = static_cast<EditorButton&>(part("share"));
    const auto hover = [&] {
        moveTo(middle(share));
        share.hint().show();
        return share.hint().isShown();
    };
    ASSERT_TRUE(hover());
    QTest::keyClick(window.windowHandle(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_FALSE(share.hint().isShown());
    moveTo({10, 10});
    ASSERT_TRUE(hover());
    window.hide();
    EXPECT_FALSE(share.hint().isShown());
}

TEST_F(CaptureOverlayViewTests, paintsOnlyWhatAStepChanged) {
    QTest::mousePress(&view, Qt::LeftButton, {}, {100, 100});
    QTest::mouseMove(&view, {700, 600});
    struct Watcher : QObject {
        QRegion painted;
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint)
                painted += static_cast<QPaintEvent*>(event)->region();
            return false;
        }
    } watcher;
    view.installEventFilter(&watcher);
    const auto costs = [&](const char* name, const std::function<void()>& step) {
        QApplication::processEvents();
        watcher.painted = {};
        step();
        QApplication::processEvents();
        int area = 0;
        for (const QRect& rect : watcher.painted)
            area += rect.width() * rect.height();
        EXPECT_GT(area, 0) << name;
        EXPECT_LT(area, 1000 * 800 / 10) << name;
    };
    costs("two strips, the frame and the badge", [&] { QTest::mouseMove(&view, {710, 610}); });
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {710, 610});
    QTest::keyClick(&view, Qt::Key_T);
    costs("a text begun", [&] { QTest::mouseClick(&view, Qt::LeftButton, {}, {300, 300}); });
    auto* text = view.findChild<AnnotationTextView*>(u"annotationText"_s);
    ASSERT_NE(text, nullptr);
    costs("a letter", [&] { QTest::keyClicks(text, u"a"_s); });
    costs("a text committed", [&] { QTest::keyClick(text, Qt::Key_Return, Qt::ControlModifier); });
    costs("undo", [&] { QTest::keyClick(&view, Qt::Key_Z, Qt::ControlModifier); });
}

} // namespace
