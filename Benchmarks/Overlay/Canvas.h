#pragma once

#include "Overlay/CaptureOverlayWindow.h"
#include "Overlay/OverlayEditor.h"
#include "Support/EmptyDefaults.h"

#include <QApplication>
#include <QMouseEvent>
#include <QRandomGenerator>

/// Places on the canvas are told in pixels of a display with so many lines.
inline constexpr int designHeight = 2160;

/// Some detail everywhere.
inline QImage desktop(QSize size) {
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
    explicit Canvas(std::int64_t lines) : height(static_cast<int>(lines)) {
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
    EmptyDefaults defaults;
    EditorPreferences preferences{defaults};
    CaptureOverlayWindow window{{.name = QStringLiteral("bench"),
                                 .displayID = 1,
                                 .nativeRect = QRect(QPoint(0, 0), pixels),
                                 .scale = scale},
                                preferences,
                                Qt::X11BypassWindowManagerHint};
};

/// The pointer's way around a centre: `stride` pixels per step.
inline QPoint around(QPoint center, int step, int radius, int stride) {
    const double angle = step * static_cast<double>(stride) / radius;
    return center + QPointF(radius * std::cos(angle), radius * std::sin(angle)).toPoint();
}

/// Short strokes, spread over the selection.
inline void drawMany(Canvas& canvas, long count) {
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
