#include "Overlay/CaptureOverlayWindow.h"

#include "Editor/AnnotationTextView.h"
#include "Support/EmptyDefaults.h"

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(CaptureOverlayViewTests, paintsOnlyWhatAStepChanged) {
    EmptyDefaults defaults;
    EditorPreferences preferences{defaults};
    const Screen screen{.name = u"A"_s, .displayID = 1, .nativeRect = {0, 0, 1000, 800}, .scale = 1};
    CaptureOverlayWindow window{screen, preferences, Qt::FramelessWindowHint};
    CaptureOverlayView& view = window.view();
    QImage image(1000, 800, QImage::Format_RGB32);
    image.fill(Qt::gray);
    view.resetSession({.image = image, .presentation = image, .frozen = nullptr}, 1, {1000, 800});
    window.show();
    view.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
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
