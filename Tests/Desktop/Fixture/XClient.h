#pragma once

#include <QByteArray>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

#include <xcb/xcb.h>

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

/// A monitor as the server is told to have it. Device pixels.
struct MonitorSetup {
    QString name;
    QRect rect;
};

/// A top-level window that is on the screen.
struct MappedWindow {
    xcb_window_t id = XCB_NONE;
    QRect rect;
    bool overrideRedirect = false;
};

/// Another program on the same X server, as a test needs one: looks at the screen, paints the root, opens
/// windows, holds keys. Any one thread at a time; each object has its own connection.
class XClient {
public:
    /// Stops the test program when the server cannot be reached.
    explicit XClient(const QByteArray& displayName);
    ~XClient();
    XClient(const XClient&) = delete;
    XClient& operator=(const XClient&) = delete;

    xcb_connection_t* connection() const { return xcb; }
    xcb_window_t root() const { return screen->root; }
    QSize screenSize() const { return {screen->width_in_pixels, screen->height_in_pixels}; }
    xcb_atom_t atom(const QByteArray& name);
    /// Returns when the server has handled everything sent so far.
    void synchronize();

    /// What the screen shows, without the pointer; the whole root when `rect` is null.
    QImage pixels(QRect rect = {});
    QRgb pixelAt(QPoint position);
    /// Becomes the root's background, announced as desktops do it.
    void setRootPicture(const QImage& picture);

    /// The first monitor takes over the server's output; others stand without one.
    void setMonitors(const std::vector<MonitorSetup>& monitors);
    void removeMonitor(const QString& name);
    /// Cuts or extends the root, up to the size the server was started with; monitors stay as they are.
    void setRootSize(QSize size);

    struct WindowOptions {
        QRect rect;
        QRgb color = 0xFF000000;
        bool overrideRedirect = true;
        std::uint32_t eventMask = 0;
    };
    /// Not mapped yet.
    xcb_window_t createWindow(const WindowOptions& options);
    void map(xcb_window_t window);
    void destroy(xcb_window_t window);
    /// Cuts the window to the rectangles.
    void setShape(xcb_window_t window, const std::vector<QRect>& rects);
    /// Children of the root that can be seen, lowest first.
    std::vector<MappedWindow> mappedWindows();
    xcb_window_t focusedWindow();
    void focus(xcb_window_t window);
    /// How many keys went down in this client's windows since it was asked last; other events are dropped.
    int pressedKeys();
    /// Wakes whoever watches the root's properties.
    void touchRoot();
    std::vector<std::uint32_t> windowProperty(xcb_window_t window, const QByteArray& name);
    /// Of a program's own window, managed or not, that is on the screen under this title.
    std::optional<MappedWindow> windowTitled(const QString& title);

    /// 0, or the X error's number.
    int grabKey(std::uint32_t modifiers, std::uint8_t keyCode);
    void ungrabKey(std::uint32_t modifiers, std::uint8_t keyCode);
    /// True when the whole keyboard belongs to this client now.
    bool grabKeyboard();
    void ungrabKeyboard();
    /// Whether a key that is held is sent again and again.
    void setKeyRepeat(bool repeats);

private:
    xcb_pixmap_t upload(const QImage& picture);
    std::optional<MappedWindow> viewable(xcb_window_t window);

    xcb_connection_t* xcb = nullptr;
    xcb_screen_t* screen = nullptr;
    xcb_pixmap_t rootPicture = XCB_NONE;
    std::map<QByteArray, xcb_atom_t> atoms;
};
