#pragma once

#include "VistrelPlatform/Screen.h"

#include <QTimer>

#include <cstdint>
#include <map>

/// The toolkit's screens joined by name with the X server's monitors, which alone know the true pixel
/// rectangles. Main thread; needs the application object on the xcb platform.
class X11ScreenList : public ScreenList {
    Q_OBJECT
public:
    X11ScreenList();

    std::vector<Screen> screens() const override;
    QPoint pointerPosition() const override;
    QScreen* toolkitScreen(const Screen& screen) const override;

private:
    void watch(QScreen* screen);
    void replaced();
    void announceChange();
    QString monitorName(std::uint32_t atom) const;

    /// Atoms never change their names, so each is asked for once.
    mutable std::map<std::uint32_t, QString> monitorNames;
    QTimer settled;
    std::vector<Screen> announced;
    /// The toolkit has taken windows from a display that went, even if it is back by now.
    bool windowsMoved = false;
};
