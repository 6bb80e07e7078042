#pragma once

#include "VistrelPlatform/X11/X11Connection.h"

#include <QObject>
#include <QTimer>

#include <memory>

class QWindow;

/// The dynamic property that marks overlay windows among the program's own.
inline constexpr char overlayWindowProperty[] = "vistrelOverlay";

/// Where no compositor runs, the parts of windows that ours hide have no pixels. While one of our windows
/// is open the server is made to keep every window's contents, from before ours appears. Main thread.
class WindowRedirection : public QObject {
public:
    explicit WindowRedirection(std::shared_ptr<X11Connection> connection);
    ~WindowRedirection() override;

    bool isActive() const { return active; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void begin();
    void end();
    bool compositorRuns() const;
    static bool overlayShown();
    static bool anyWindowShown(const QWindow* except);

    std::shared_ptr<X11Connection> connection;
    bool active = false;
    QTimer lingering;
};
