#pragma once

#include "App/AppController.h"
#include "VistrelPlatform/TrayHost.h"

#include <QMenu>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// The program's item in the panel: a left click captures, a right click opens the menu. Main thread.
/// It appears as soon as some host can show it, which may be long after the start.
class StatusItem : public QObject {
    Q_OBJECT
public:
    /// Everything is borrowed. `panelBrightness` tells, 0 to 255, what the icon is going to stand on; absent
    /// where the panel draws items in its own colours or cannot be seen.
    StatusItem(AppController& owner, std::vector<TrayHost*> possibleHosts,
               std::function<std::optional<int>()> panelBrightness = {}, QObject* parent = nullptr);
    ~StatusItem() override;

    /// Whether the user can reach the item at the moment.
    bool isReachable() const;
    /// What the hosts show, for tests and for the panel's accessibility.
    QMenu& contextMenu() { return menu; }
    void activate(QSystemTrayIcon::ActivationReason reason);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void appearWhenPossible();
    void updateMenu();
    void rebuildMenu();
    QColor menuInk() const;
    void correctChecks();
    void updateIcon();

    AppController& controller;
    std::vector<TrayHost*> hosts;
    std::function<std::optional<int>()> panels;
    QMenu menu;
    std::vector<StatusMenu::Item> shown;
    std::unique_ptr<QSystemTrayIcon> tray;
    bool hostDrawsMenu = false;
    bool menuJustClosed = false;
    Qt::ApplicationState knownState = Qt::ApplicationInactive;
};
