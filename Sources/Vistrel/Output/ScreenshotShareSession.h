#pragma once

#include "VistrelPlatform/ShareServices.h"

#include <QImage>
#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QMenu;

/// Hands one picture to one of the desktop's share services, chosen from a menu, and tells once whether it
/// was shared. Main thread. It may be destroyed from within its own callbacks.
class ScreenshotShareSession : public QObject {
    Q_OBJECT
public:
    enum class State { choosing, sharing, editingExtensions, finished };

    /// What the session does outside itself. An empty callback does nothing and answers "none" or "no".
    struct Behaviour {
        std::function<std::vector<ShareService>(const QImage&)> servicesForItems;
        /// Reports later through `didShare` or `didFailToShare`.
        std::function<void(const ShareService&, const QImage&, ScreenshotShareSession&)> performService;
        std::function<bool(ScreenshotShareSession&)> openExtensions;
    };

    /// The desktop's own; `services` is borrowed and outlives the session.
    static Behaviour desktopBehaviour(ShareServices& services);

    ScreenshotShareSession(QImage picture, Behaviour outside, QObject* parent = nullptr);
    ~ScreenshotShareSession() override;

    State state() const { return current; }

    /// The menu with its top-left corner at the anchor's, nothing preselected. Returns at once; a menu
    /// closed without a choice ends the session.
    void show(QWidget& anchor);
    /// Every service that can take the picture, then "Edit Extensions…".
    std::unique_ptr<QMenu> makeMenu(QWidget* parent = nullptr);

    void choose(const ShareService& service);
    void editExtensions();
    /// Reports of a service; those of any but the chosen one are ignored.
    void didShare(const ShareService& service);
    void didFailToShare(const ShareService& service);
    /// The settings that "Edit Extensions…" opened have been closed.
    void didEditExtensions();

    /// Ends the session; further calls do nothing.
    void finish(bool shared);
    /// Ends without calling back and takes the menu away.
    void cancel();

    /// The user committed to a service or to editing extensions: whatever covers the screen must go.
    std::function<void()> onChooseService;
    /// Called once when the session ends, except by `cancel`.
    std::function<void(bool shared)> onFinish;

private:
    void menuClosed();
    void applicationStateChanged(Qt::ApplicationState applicationState);
    bool isChosen(const ShareService& service) const;

    const QImage image;
    Behaviour behaviour;
    State current = State::choosing;
    QPointer<QMenu> menu;
    std::optional<ShareService> service;
    std::vector<QMetaObject::Connection> activationObservers;
    bool leftApplication = false;
};
