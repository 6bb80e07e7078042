#pragma once

#include "VistrelPlatform/X11/TopLevelWindows.h"

#include <map>
#include <memory>
#include <mutex>
#include <vector>

/// Asks a running compositor to leave this program's windows out of the picture for a moment: only it knows
/// the desktop's background, the shadows and the translucency around them. Any thread.
class OwnWindowVeil {
public:
    explicit OwnWindowVeil(std::shared_ptr<X11Connection> connection);

    /// Invisible windows as long as the object lives.
    class Lowered {
    public:
        Lowered(OwnWindowVeil& owner, std::vector<xcb_window_t> transparent);
        ~Lowered();
        Lowered(const Lowered&) = delete;
        Lowered& operator=(const Lowered&) = delete;

    private:
        OwnWindowVeil& veil;
        std::vector<xcb_window_t> windows;
    };

    /// Waits until the screen has changed under the windows and come to rest. Null when nothing changed:
    /// then the compositor knows nothing of transparency.
    std::unique_ptr<Lowered> lower(const std::vector<TopLevelWindow>& shown,
                                   const std::vector<xcb_window_t>& clients);

private:
    void setTransparent(xcb_window_t window, bool transparent) const;
    std::vector<std::uint32_t> samples(const std::vector<TopLevelWindow>& shown) const;

    std::shared_ptr<X11Connection> connection;
    std::mutex mutex;
    /// Captures of several displays may need the same window gone at once.
    std::map<xcb_window_t, int> holders;
};
