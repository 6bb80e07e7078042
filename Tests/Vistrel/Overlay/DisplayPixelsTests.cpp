#include "Desktop/Fixture/Noise.h"
#include "Editor/AnnotationTextView.h"
#include "Overlay/CaptureOverlayWindow.h"
#include "Support/EmptyDefaults.h"

#include <QApplication>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// The real window on a display of that scale, and a hand that presses on its pixels as the window system
/// reports it.
class HandOnDisplay {
public:
    HandOnDisplay(QSize pixels, double displayScale) : scale(displayScale), picture(noise(pixels)) {
        window.view().resetSession({.image = picture, .presentation = picture, .frozen = nullptr}, scale,
                                   screen.pointSize());
        window.view().onClose = [this] { ++closed; };
        window.show();
        window.view().setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    void move(QPoint pixel) { send(pixel, QEvent::MouseMove, Qt::NoButton); }
    void press(QPoint pixel) {
        held = Qt::LeftButton;
        send(pixel, QEvent::MouseButtonPress, Qt::LeftButton);
    }
    void release(QPoint pixel) {
        held = Qt::NoButton;
        send(pixel, QEvent::MouseButtonRelease, Qt::LeftButton);
    }
    void drag(QPoint from, QPoint to) {
        pause();
        move(from);
        press(from);
        move((from + to) / 2);
        move(to);
        release(to);
    }
    void doubleClick(QPoint pixel) {
        pause();
        for (int i = 0; i < 2; ++i) {
            press(pixel);
            release(pixel);
        }
    }
    /// Longer than a double click lasts.
    void pause() { time += 10000; }
    void type(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(window.windowHandle(), key, modifiers);
    }

    double scale;
    QImage picture;
    EmptyDefaults defaults;
    EditorPreferences preferences{defaults};
    Screen screen{.name = u"A"_s, .displayID = 1, .nativeRect = picture.rect(), .scale = scale};
    CaptureOverlayWindow window{screen, preferences, Qt::FramelessWindowHint};
    CaptureOverlayView& view = window.view();
    int closed = 0;

private:
    void send(QPoint pixel, QEvent::Type type, Qt::MouseButton button) {
        // No display of the test has a scale of its own, so the window takes points with their fraction.
        const QPointF point = QPointF(pixel) / scale;
        qt_handleMouseEvent(window.windowHandle(), point, window.mapToGlobal(point), held, button, type, {},
                            ++time);
        QApplication::processEvents();
    }

    Qt::MouseButtons held;
    int time = 0;
};

TEST(DisplayPixelsTests, everyPixelIsReachedAtEveryScaleFromEitherSide) {
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0}) {
        SCOPED_TRACE(scale);
        for (const bool backwards : {false, true}) {
            HandOnDisplay hand({1366, 768}, scale);
            const QPoint corners[] = {{301, 301}, {602, 504}};
            hand.drag(corners[backwards], corners[!backwards]);
            EXPECT_EQ(hand.view.outputImage(), hand.picture.copy(QRect(301, 301, 301, 203)));
        }
        HandOnDisplay hand({1366, 768}, scale);
        hand.drag({1365, 767}, {-5, -5});
        EXPECT_EQ(hand.view.outputImage(), hand.picture) << "the last row and column mean the edge";
        hand.type(Qt::Key_P);
        for (const QPoint edge : {QPoint(700, 0), QPoint(0, 300), QPoint(1365, 300), QPoint(700, 767)}) {
            hand.doubleClick(edge);
            EXPECT_EQ(hand.closed, 0) << "nothing is outside: " << edge.x() << ' ' << edge.y();
            const int before = hand.view.layerCount();
            hand.drag(edge, {600, 300});
            EXPECT_EQ(hand.view.layerCount(), before + 1);
        }
    }
}

TEST(DisplayPixelsTests, theEdgesOfASelectionBelongToThePixelsInIt) {
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0}) {
        SCOPED_TRACE(scale);
        HandOnDisplay hand({1366, 768}, scale);
        hand.drag({301, 301}, {602, 504});
        hand.type(Qt::Key_T);
        for (const auto& [pixel, inside] : {std::pair(QPoint(301, 400), true),
                                            {{300, 400}, false},
                                            {{601, 400}, true},
                                            {{602, 400}, false},
                                            {{450, 301}, true},
                                            {{450, 300}, false},
                                            {{450, 503}, true},
                                            {{450, 504}, false}}) {
            SCOPED_TRACE(testing::Message() << pixel.x() << ' ' << pixel.y());
            hand.move(pixel);
            EXPECT_EQ(hand.view.cursor().shape(), inside ? Qt::IBeamCursor : Qt::CrossCursor);
            hand.pause();
            hand.press(pixel);
            hand.release(pixel);
            EXPECT_EQ(hand.view.findChild<AnnotationTextView*>() != nullptr, inside);
            hand.type(Qt::Key_Escape);
            QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
}

} // namespace
