#pragma once

#include "VistrelPlatform/X11/TopLevelWindows.h"

#include <chrono>
#include <optional>
#include <vector>

/// Keeps an overlay above other programs' windows without burying our own popups and dialogs over it.
/// Main thread.
class OverlayStacking {
public:
    explicit OverlayStacking(xcb_connection_t* toolkit);

    /// Raises the overlay, and ours above it, where another program's window has come over it. A window
    /// that covers the whole overlay keeps its place: so do screen lockers.
    void restore(xcb_window_t overlay, QRect rect);
    /// Such a window lies over the overlay.
    bool isCovered(xcb_window_t overlay, QRect rect);

private:
    /// The overlay and whatever lies over it, lowest first.
    std::vector<TopLevelWindow> stackFrom(xcb_window_t overlay, QRect rect);
    bool mayRaise();

    xcb_connection_t* toolkit;
    /// Made when it is first needed: the start of the program would wait for it.
    std::shared_ptr<X11Connection> connection;
    std::optional<TopLevelWindows> windows;
    /// When raises happened lately: two programs that both insist must not go on for ever.
    std::vector<std::chrono::steady_clock::time_point> raises;
};
