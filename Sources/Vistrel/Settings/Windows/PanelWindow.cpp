#include "Settings/Windows/PanelWindow.h"

#include "App/AppController.h"
#include "Settings/Windows/AppPanel.h"

#include <QAction>
#include <QScreen>
#include <QVBoxLayout>

PanelWindow::PanelWindow(const QString& title, AppController& owner) : controller(owner) {
    setWindowTitle(title);
    setAccessibleName(title);
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSizeConstraint(QLayout::SetFixedSize);

    addCommand(QStringLiteral("Vistrel Settings…"), QStringLiteral(","), &AppController::showSettings);
    addCommand(QStringLiteral("Quit Vistrel"), QStringLiteral("Q"), &AppController::quit);
    auto* close = new QAction(this);
    close->setShortcut(QKeySequence::Close);
    connect(close, &QAction::triggered, this, &PanelWindow::reject);
    addAction(close);
}

void PanelWindow::addCommand(const QString& text, const QString& key, void (AppController::*command)()) {
    auto* action = new QAction(text, this);
    action->setShortcuts(
        {QKeySequence(QStringLiteral("Ctrl+") + key), QKeySequence(QStringLiteral("Meta+") + key)});
    // Later: the command may put away the window whose event this is.
    connect(action, &QAction::triggered, &controller, command, Qt::QueuedConnection);
    addAction(action);
}

void PanelWindow::setPanel(AppPanel* panel) {
    delete shown;
    shown = panel;
    layout()->addWidget(panel);
}

void PanelWindow::bringToFront() {
    if (!placed) {
        placed = true;
        adjustSize();
        const QRect area = screen()->availableGeometry();
        move(area.center() - rect().center());
    }
    if (isMinimized())
        showNormal();
    show();
    raise();
    activateWindow();
}
