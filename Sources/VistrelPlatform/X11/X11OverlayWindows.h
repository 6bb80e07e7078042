#pragma once

#include "VistrelPlatform/OverlayWindows.h"
#include "VistrelPlatform/X11/FrontKeyboard.h"
#include "VistrelPlatform/X11/OverlayStacking.h"
#include "VistrelPlatform/X11/X11FrozenPicture.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QTimer>

#include <map>
#include <memory>

/// Overlays as override-redirect windows, the only kind that covers panels on every monitor at once under
/// every window manager. The server itself draws their first frame. Main thread.
class X11OverlayWindows : public QObject, public OverlayWindows, private QAbstractNativeEventFilter {
public:
    /// Needs the application object on the xcb platform.
    X11OverlayWindows();
    ~X11OverlayWindows() override;

    Qt::WindowFlags windowFlags() const override;
    void prepare(QWidget& window, const Screen& screen) override;
    void setFrozenPicture(QWidget& window, std::shared_ptr<FrozenPicture> picture) override;
    void show(const std::vector<QWidget*>& windows) override;
    void hide(QWidget& window) override;
    void setLevel(QWidget& window, OverlayLevel level) override;
    void takeFocus(QWidget& window) override;
    bool hasKeyboardFocus(const QWidget& window) const override;
    void prepareDialog(QWidget& dialog) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Overlay {
        QRect nativeRect;
        /// Kept while the server may still draw from it.
        std::shared_ptr<X11FrozenPicture> frozen;
        /// Once: later the toolkit paints what the window shows.
        bool frozenDrawn = false;
        OverlayLevel level = OverlayLevel::aboveEverything;
        bool shown = false;
    };

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    void map(QWidget& window);
    void forceGeometry(xcb_window_t id, const Overlay& overlay) const;
    void dropBackground(QWidget& window);
    /// One was shown, hidden or destroyed.
    void overlaysChanged();
    void restoreStacking();
    QWidget* widgetOf(const QObject& handle) const;
    void bringForward(QWidget& dialog);

    xcb_connection_t* connection;
    xcb_window_t root = XCB_NONE;
    /// What the toolkit itself listens to on the root.
    std::uint32_t rootEventMask = 0;
    OverlayStacking stacking;
    FrontKeyboard keyboard;
    std::map<QWidget*, Overlay> overlays;
    QTimer restackSoon;
};
