#include "Overlay/CaptureOverlayWindow.h"

#include "Editor/AnnotationTextView.h"
#include "Support/EmptyDefaults.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class CaptureOverlayViewTests : public ::testing::Test {
protected:
    CaptureOverlayViewTests() {
        view.onClose = [this] { ++closed; };
        view.onCopy = [this](const QImage& image) { copied = image; };
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

    EmptyDefaults defaults;
    EditorPreferences preferences{defaults};
    CaptureOverlayWindow window{{.name = u"A"_s, .displayID = 1, .nativeRect = {0, 0, 1000, 800}, .scale = 1},
                                preferences,
                                Qt::FramelessWindowHint};
    CaptureOverlayView& view = window.view();
    int closed = 0;
    QImage copied;
};

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
    costs("a letter", [&] { QTest::keyClicks(&text, u"a"_s); });
    costs("a text committed", [&] { QTest::keyClick(&text, Qt::Key_Return, Qt::ControlModifier); });
    costs("undo", [&] { QTest::keyClick(&view, Qt::Key_Z, Qt::ControlModifier); });
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

TEST_F(CaptureOverlayViewTests, onlyTheFirstButtonSelectsAndAnotherDisplayTakesOver) {
    QTest::mousePress(&view, Qt::RightButton, {}, {100, 100});
    QTest::mouseMove(&view, {300, 300});
    QTest::mouseRelease(&view, Qt::RightButton, {}, {300, 300});
    EXPECT_EQ(view.selection(), Rect());
    dragFrom({100, 100}, {500, 400});
    view.clearForOtherDisplay();
    EXPECT_EQ(view.selection(), Rect());
    EXPECT_TRUE(view.hasImage());
    EXPECT_FALSE(view.outputImage());
}

} // namespace
