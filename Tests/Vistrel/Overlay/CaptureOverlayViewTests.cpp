#include "Overlay/CaptureOverlayWindow.h"

#include "Editor/AnnotationTextView.h"
#include "Editor/EditorActionBar.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorSidebar.h"
#include "Overlay/SelectionCursors.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

/// Holds values for one test; nothing is written anywhere.
class MemoryDefaults : public UserDefaults {
public:
    std::optional<double> number(const QString& key) const override { return get<double>(key); }
    std::optional<bool> boolean(const QString& key) const override { return get<bool>(key); }
    std::optional<QString> string(const QString& key) const override { return get<QString>(key); }
    std::optional<QByteArray> data(const QString& key) const override { return get<QByteArray>(key); }
    bool has(const QString& key) const override { return values.contains(key); }
    void setNumber(const QString& key, double value) override { values[key] = value; }
    void setBoolean(const QString& key, bool value) override { values[key] = value; }
    void setString(const QString& key, const QString& value) override { values[key] = value; }
    void setData(const QString& key, const QByteArray& value) override { values[key] = value; }
    void remove(const QString& key) override { values.remove(key); }

private:
    template<class T>
    std::optional<T> get(const QString& key) const {
        return values.contains(key) ? std::optional(values[key].value<T>()) : std::nullopt;
    }

    QHash<QString, QVariant> values;
};

class CaptureOverlayViewTests : public ::testing::Test {
protected:
    CaptureOverlayViewTests() {
        view.onDiagnosticEvent = [this](Diagnostic::Action action, const Diagnostic::Details&) {
            actions.push_back(action);
        };
        view.onClose = [this] { ++closed; };
        view.onCopy = [this](const QImage& image) { copied = image; };
        view.onShare = [this](const QImage& image, QWidget* anchor) {
            shared = image;
            shareAnchor = anchor;
        };
        open();
    }

    void open() {
        QImage image(1000, 800, QImage::Format_RGB32);
        image.fill(QColor(40, 120, 200));
        view.resetSession({.image = image, .presentation = image, .frozen = nullptr}, 1, {1000, 800});
        window.show();
        view.setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        window.activateWindow();
    }
    void dragFrom(QPoint from, QPoint to) {
        QTest::mousePress(&view, Qt::LeftButton, {}, from);
        QTest::mouseMove(&view, (from + to) / 2);
        QTest::mouseMove(&view, to);
        QTest::mouseRelease(&view, Qt::LeftButton, {}, to);
    }
    template<class Widget>
    Widget& control(const char* name) {
        auto* found = view.findChild<Widget*>(QLatin1StringView(name));
        EXPECT_NE(found, nullptr) << name;
        return *found;
    }

    MemoryDefaults defaults;
    EditorPreferences preferences{defaults};
    CaptureOverlayWindow window{
        {.name = QStringLiteral("A"), .displayID = 1, .nativeRect = {0, 0, 1000, 800}, .scale = 1},
        preferences,
        Qt::FramelessWindowHint};
    CaptureOverlayView& view = window.view();
    std::vector<Diagnostic::Action> actions;
    int closed = 0;
    QImage copied;
    QImage shared;
    QWidget* shareAnchor = nullptr;
};

TEST_F(CaptureOverlayViewTests, tellsTheFirstDrawOnce) {
    int started = 0;
    int drawn = 0;
    view.onFirstDrawStarted = [&] {
        EXPECT_EQ(drawn, 0);
        ++started;
    };
    view.onFirstDraw = [&] { ++drawn; };
    view.repaint();
    view.repaint();
    EXPECT_EQ(started, 1);
    EXPECT_EQ(drawn, 1);
    view.onFirstDraw = [&] { ++drawn; };
    open();
    view.repaint();
    EXPECT_EQ(drawn, 1) << "a new capture forgets the old callbacks";
}

TEST_F(CaptureOverlayViewTests, paintsOnlyWhatAStepChanged) {
    QTest::mousePress(&view, Qt::LeftButton, {}, {100, 100});
    QTest::mouseMove(&view, {700, 600});
    QApplication::processEvents();
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
        long area = 0;
        for (const QRect& rect : watcher.painted)
            area += static_cast<long>(rect.width()) * rect.height();
        EXPECT_GT(area, 0) << name;
        EXPECT_LT(area, 1000 * 800 / 10) << name;
    };
    costs("two strips, the frame and the badge", [&] { QTest::mouseMove(&view, {710, 610}); });
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {710, 610});
    QTest::keyClick(&view, Qt::Key_T);
    costs("a text begun", [&] { QTest::mouseClick(&view, Qt::LeftButton, {}, {300, 300}); });
    auto& text = control<AnnotationTextView>("annotationText");
    costs("a letter", [&] { QTest::keyClicks(&text, QStringLiteral("a")); });
    costs("a text committed", [&] { QTest::keyClick(&text, Qt::Key_Return, Qt::ControlModifier); });
    costs("undo", [&] { QTest::keyClick(&view, Qt::Key_Z, Qt::ControlModifier); });
}

TEST_F(CaptureOverlayViewTests, panelsComeWithTheSelectionAndGoWithTheCapture) {
    EXPECT_EQ(view.findChild<EditorSidebar*>(), nullptr) << "made when they are needed";
    QTest::mousePress(&view, Qt::LeftButton, {}, {100, 100});
    QTest::mouseMove(&view, {500, 400});
    EXPECT_EQ(view.findChild<EditorSidebar*>(), nullptr) << "not while the selection is dragged out";
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {500, 400});
    ASSERT_NE(view.findChild<EditorSidebar*>(), nullptr);
    EXPECT_TRUE(view.findChild<EditorSidebar*>()->isVisible());
    EXPECT_TRUE(view.findChild<EditorActionBar*>()->isVisible());
    EXPECT_FALSE(control<EditorButton>("recording").isEnabled());
    open();
    EXPECT_FALSE(view.findChild<EditorSidebar*>()->isVisible());
    EXPECT_FALSE(view.findChild<EditorActionBar*>()->isVisible());
}

TEST_F(CaptureOverlayViewTests, theControlsAreJoinedToTheRules) {
    dragFrom({100, 100}, {500, 400});
    auto& undo = control<EditorButton>("undo");
    EXPECT_FALSE(undo.isEnabled());
    control<EditorButton>("pen").click();
    EXPECT_EQ(view.tool(), AnnotationTool::pen);
    dragFrom({200, 200}, {260, 240});
    EXPECT_EQ(view.layerCount(), 1);
    EXPECT_TRUE(undo.isEnabled());

    auto& size = control<QLineEdit>("drawingWidth");
    EXPECT_EQ(size.text(), QStringLiteral("3"));
    control<EditorButton>("increaseSize").click();
    EXPECT_EQ(size.text(), QStringLiteral("4"));
    size.setFocus();
    size.selectAll();
    QTest::keyClicks(&size, QStringLiteral("abc"));
    QTest::keyClick(&size, Qt::Key_Return);
    EXPECT_EQ(size.text(), QStringLiteral("4"));
    EXPECT_TRUE(view.hasFocus()) << "the canvas gets the keyboard back";
    size.setFocus();
    size.selectAll();
    QTest::keyClicks(&size, QStringLiteral("250"));
    QTest::keyClick(&size, Qt::Key_Return);
    EXPECT_EQ(view.drawingSize(), 99);

    size.setFocus();
    size.selectAll();
    QTest::keyClicks(&size, QStringLiteral("7"));
    control<EditorButton>("marker").click();
    EXPECT_EQ(view.drawingSize(), 16);
    control<EditorButton>("pen").click();
    EXPECT_EQ(view.drawingSize(), 7) << "a size half typed belongs to the tool it was typed for";

    undo.click();
    EXPECT_EQ(view.layerCount(), 0);
    EXPECT_FALSE(undo.isEnabled());
    control<EditorButton>("redo").click();
    EXPECT_EQ(view.layerCount(), 1);
    control<EditorButton>("copy").click();
    EXPECT_EQ(copied.size(), QSize(400, 300));
    control<EditorButton>("share").click();
    EXPECT_EQ(shareAnchor, &control<EditorButton>("share"));
    EXPECT_EQ(shared, copied);
}

TEST_F(CaptureOverlayViewTests, typesText) {
    dragFrom({100, 100}, {500, 400});
    QTest::keyClick(&view, Qt::Key_T);
    QTest::mouseClick(&view, Qt::LeftButton, {}, {200, 200});
    auto* editor = view.findChild<AnnotationTextView*>();
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(editor->hasFocus());
    QTest::keyClicks(editor, QStringLiteral("pv"));
    QInputMethodEvent composing(QStringLiteral("か"), {});
    QApplication::sendEvent(editor, &composing);
    EXPECT_EQ(view.tool(), AnnotationTool::text) << "letters are text, not tools";
    QInputMethodEvent chosen;
    chosen.setCommitString(QStringLiteral("蚊"));
    QApplication::sendEvent(editor, &chosen);
    QTest::keyClick(editor, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(view.layerCount(), 1);
    EXPECT_TRUE(view.hasFocus());
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(view.findChild<AnnotationTextView*>(), nullptr);

    QTest::mouseClick(&view, Qt::LeftButton, {}, {300, 300});
    view.cancelOperation();
    EXPECT_EQ(closed, 0);
    EXPECT_EQ(view.layerCount(), 1);
    view.cancelOperation();
    EXPECT_EQ(closed, 1);
}

TEST_F(CaptureOverlayViewTests, aTextOfAHundredThousandCharactersComesBackWhole) {
    dragFrom({100, 100}, {500, 400});
    QTest::keyClick(&view, Qt::Key_T);
    QTest::mouseClick(&view, Qt::LeftButton, {}, {200, 200});
    QString text;
    while (text.size() < 100000)
        text += QStringLiteral("line %1 of many\n").arg(text.size());
    QGuiApplication::clipboard()->setText(text);
    QTest::keyClick(&control<AnnotationTextView>("annotationText"), Qt::Key_V, Qt::ControlModifier);
    QTest::keyClick(&control<AnnotationTextView>("annotationText"), Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(view.layerCount(), 1);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTest::keyClick(&view, Qt::Key_V);
    QTest::mouseDClick(&view, Qt::LeftButton, {}, {220, 220});
    EXPECT_EQ(control<AnnotationTextView>("annotationText").string(), text);
}

TEST_F(CaptureOverlayViewTests, escapeAndCommandsReachTheCanvasFromAnyControl) {
    dragFrom({100, 100}, {500, 400});
    control<QLineEdit>("drawingWidth").setFocus();
    QTest::keyClick(window.windowHandle(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(copied.size(), QSize(400, 300));
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    EXPECT_EQ(closed, 1);
    window.dialogAttached = true;
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    EXPECT_EQ(closed, 1) << "Escape is the dialog's";
    window.dialogAttached = false;
    view.resetSession({}, 1, {1000, 800});
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    EXPECT_EQ(closed, 1) << "there is no capture";
}

TEST_F(CaptureOverlayViewTests, anotherDisplayTakesOver) {
    dragFrom({100, 100}, {500, 400});
    QTest::keyClick(&view, Qt::Key_P);
    dragFrom({200, 200}, {260, 240});
    view.clearForOtherDisplay();
    EXPECT_EQ(view.selection(), Rect());
    EXPECT_EQ(view.layerCount(), 0);
    EXPECT_EQ(view.tool(), AnnotationTool::select);
    EXPECT_FALSE(view.findChild<EditorSidebar*>()->isVisible());
    EXPECT_TRUE(view.hasImage());
    EXPECT_FALSE(view.outputImage());
}

TEST_F(CaptureOverlayViewTests, mouseButtonsOtherThanTheFirstDoNothing) {
    QTest::mousePress(&view, Qt::RightButton, {}, {100, 100});
    QTest::mouseMove(&view, {300, 300});
    QTest::mouseRelease(&view, Qt::RightButton, {}, {300, 300});
    EXPECT_EQ(view.selection(), Rect());
}

TEST_F(CaptureOverlayViewTests, aDoubleClickOutsideCloses) {
    dragFrom({100, 100}, {500, 400});
    QTest::mouseDClick(&view, Qt::LeftButton, {}, {900, 30});
    EXPECT_EQ(closed, 1);
    preferences.setDoubleClickOutsideToCancel(false);
    QTest::mouseDClick(&view, Qt::LeftButton, {}, {900, 30});
    EXPECT_EQ(closed, 1);
}

TEST(SelectionCursorsTests, shapesAndSizes) {
    EXPECT_EQ(SelectionCursors::resize(5, 1).shape(), Qt::SizeVerCursor);
    EXPECT_EQ(SelectionCursors::resize(7, 1).shape(), Qt::SizeHorCursor);
    EXPECT_EQ(SelectionCursors::brush(9.9, 1).shape(), Qt::CrossCursor);
    struct BrushCase {
        double diameter;
        double ratio;
        int pixels;
        int hotSpot;
    };
    for (const BrushCase& row : {BrushCase{10, 1, 24, 12}, {30, 1, 36, 18}, {30, 2, 72, 36}}) {
        const QCursor brush = SelectionCursors::brush(row.diameter, row.ratio);
        EXPECT_EQ(brush.pixmap().width(), row.pixels);
        EXPECT_EQ(brush.hotSpot(), QPoint(row.hotSpot, row.hotSpot));
    }
    // Rising and falling diagonals mirror each other.
    const QImage rising = SelectionCursors::resize(0, 2).pixmap().toImage();
    EXPECT_EQ(rising, SelectionCursors::resize(4, 2).pixmap().toImage());
    EXPECT_EQ(rising.mirrored(true, false).pixelColor(12, 12),
              SelectionCursors::resize(2, 2).pixmap().toImage().pixelColor(12, 12));
    EXPECT_GT(rising.pixelColor(10, 38).alpha(), 200) << "the lower left end";
    EXPECT_EQ(rising.pixelColor(10, 10).alpha(), 0) << "nothing at the upper left";
}

} // namespace
