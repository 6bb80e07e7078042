#pragma once

#include "Desktop/Fixture/XClient.h"

/// Another program with a window of its own: it had the keyboard before, gets it back afterwards, and sees
/// every key that goes astray meanwhile.
class Bystander {
public:
    explicit Bystander(const QByteArray& displayName);

    xcb_window_t window() const { return own; }
    bool hasKeyboard() { return client.focusedWindow() == own; }
    void takeKeyboard();
    /// The keys pressed in its window since the last time, by their server numbers.
    std::vector<int> keys();
    /// Puts a window above all others.
    xcb_window_t cover(QRect rect);
    void uncover(xcb_window_t cover) { client.destroy(cover); }
    /// Asks the window's program whether it is still there, as window managers do, and waits for its answer:
    /// everything sent to it before has then reached its event loop.
    bool answers(xcb_window_t asked);

private:
    void collect();

    XClient client;
    xcb_window_t own;
    std::vector<int> pressed;
    std::uint32_t asked = 0;
    std::uint32_t answered = 0;
};
