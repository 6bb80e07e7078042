#pragma once

#include "App/AppController.h"
#include "VistrelPlatform/TrayHost.h"

#include <QMenu>
#include <QSystemTrayIcon>

#include <memory>
#include <vector>

/// The program's item in the panel: a left click captures, a right click opens the menu. Main thread.
/// It appears as soon as some host can show it, which may be long after the start.
class StatusItem : public QObject {
    Q_OBJECT
public:
    /// Everything is borrowed. The first host, when present, draws the icon in the panel's own colours.
    StatusItem(AppController& owner, std::vector<TrayHost*> possibleHosts, QObject* parent = nullptr);
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
    void correctChecks();
    void updateIcon();

    AppController& controller;
    std::vector<TrayHost*> hosts;
    QMenu menu;
    std::vector<StatusMenu::Item> shown;
    std::unique_ptr<QSystemTrayIcon> tray;
    bool menuJustClosed = false;
};
