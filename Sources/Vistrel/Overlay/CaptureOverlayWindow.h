#pragma once

#include "Overlay/CaptureOverlayView.h"
#include "VistrelPlatform/Screen.h"

/// The borderless window over one display, filled by its canvas. Keys that end or finish the capture
/// reach the canvas whichever control has the keyboard. Main thread.
class CaptureOverlayWindow : public QWidget {
    Q_OBJECT
public:
    CaptureOverlayWindow(const Screen& screen, EditorPreferences& preferences, Qt::WindowFlags flags);

    /// The display it was made for.
    const Screen& screen() const { return display; }
    CaptureOverlayView& view() const { return *canvas; }

    /// Gives back the memory of what was painted, a display's worth of pixels; the next paint takes new.
    void releasePixels();

    /// A dialog of ours is in front: Escape is the dialog's.
    bool dialogAttached = false;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent*) override {}

private:
    bool takesKey(QKeyEvent& event);

    Screen display;
    CaptureOverlayView* canvas;
};
