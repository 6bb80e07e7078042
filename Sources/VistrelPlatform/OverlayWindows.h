#pragma once

#include "VistrelPlatform/Screen.h"
#include "VistrelPlatform/ScreenCapturer.h"

#include <functional>
#include <memory>
#include <vector>

class QWidget;

/// Where an overlay window stands: above everything, or lowered so that our own dialog is in front.
enum class OverlayLevel { aboveEverything, belowDialogs };

/// Covers displays exactly and holds the keyboard, whatever window manager runs. Main thread.
/// All windows given to it are top-level widgets created with `windowFlags()`.
class OverlayWindows {
public:
    OverlayWindows() = default;
    OverlayWindows(const OverlayWindows&) = delete;
    OverlayWindows& operator=(const OverlayWindows&) = delete;
    virtual ~OverlayWindows() = default;

    /// What an overlay window is constructed with.
    virtual Qt::WindowFlags windowFlags() const = 0;
    /// Creates the native window of `window`, hidden, and gives it exactly the display's native rectangle.
    virtual void prepare(QWidget& window, const Screen& screen) = 0;
    /// The picture the window shows, dimmed as it is before a selection, from when it is shown until its
    /// first paint. Null goes back to the plain background colour. Kept until replaced.
    virtual void setFrozenPicture(QWidget& window, std::shared_ptr<FrozenPicture> picture) = 0;
    /// Maps the windows above everything and flushes, so that all pictures are visible before any paint.
    virtual void show(const std::vector<QWidget*>& windows) = 0;
    virtual void hide(QWidget& window) = 0;
    virtual void setLevel(QWidget& window, OverlayLevel level) = 0;
    /// Activates the window and takes the keyboard for it, with the time of the triggering event.
    virtual void takeFocus(QWidget& window) = 0;
    /// Read back from the window system, not assumed.
    virtual bool hasKeyboardFocus(const QWidget& window) const = 0;
    /// Makes a dialog of ours appear above lowered overlays and take the keyboard. Call before `show`.
    virtual void prepareDialog(QWidget& dialog) = 0;

    /// An overlay window has got the keyboard, at first or again. The toolkit does not tell when a window
    /// manager took it for a moment only.
    std::function<void()> onKeyboardFocus;
};
