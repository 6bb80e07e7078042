#pragma once

#include "VistrelCore/Geometry.h"

#include <QObject>
#include <QRect>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

class QScreen;

/// One connected display as it was when the list was read. A value; compare it to notice a change.
struct Screen {
    QString name;
    /// The monitor's number; absent when the window system shows no monitor for the screen.
    std::optional<std::uint32_t> displayID;
    /// Device pixels on the root window, y down.
    QRect nativeRect;
    /// Device pixels per point (1, 1.25, 2 …).
    double scale = 1;
    /// Points: the native size divided by `scale`, never rounded.
    Size pointSize() const { return {nativeRect.width() / scale, nativeRect.height() / scale}; }

    friend bool operator==(const Screen&, const Screen&) = default;
};

/// The displays of the session. Main thread.
class ScreenList : public QObject {
    Q_OBJECT
public:
    /// In the desktop's order, the primary display first.
    virtual std::vector<Screen> screens() const = 0;
    /// The pointer in device pixels on the root window, y down.
    virtual QPoint pointerPosition() const = 0;
    /// The toolkit's object for a screen; null when it has gone.
    virtual QScreen* toolkitScreen(const Screen& screen) const = 0;

Q_SIGNALS:
    /// Displays came, went, moved, or changed size or scale. Sent once per change, when it has settled.
    void changed();
};
