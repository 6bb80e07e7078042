#include "Settings/Windows/PanelWindow.h"

#include "App/AppController.h"
#include "App/VistrelIcon.h"
#include "Settings/Windows/AppPanel.h"
#include "Settings/Windows/PageStyle.h"

#include <QAction>
#include <QCheckBox>
#include <QKeyEvent>
#include <QRadioButton>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

namespace {

/// Control is the desktop's habit, Super the key that the shortcuts are named after.
QList<QKeySequence> withCommandKey(const QString& key) {
    return {QKeySequence(QStringLiteral("Ctrl+") + key), QKeySequence(QStringLiteral("Meta+") + key)};
}

} // namespace

PanelWindow::PanelWindow(const QString& title, AppController& owner) : controller(owner) {
    setWindowTitle(title);
    setAccessibleName(title);
    setWindowIcon(QIcon::fromTheme(QStringLiteral("com.orvane.Vistrel"),
                                   VistrelIcon::icon(PageStyle::accentColor(palette()))));
    setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSizeConstraint(QLayout::SetFixedSize);

    addCommand(QStringLiteral("Vistrel Settings…"), QStringLiteral(","), &AppController::showSettings);
    addCommand(QStringLiteral("Quit Vistrel"), QStringLiteral("Q"), &AppController::quit);
    auto* close = new QAction(this);
    close->setShortcuts(withCommandKey(QStringLiteral("W")));
    connect(close, &QAction::triggered, this, &PanelWindow::reject);
    addAction(close);
}

void PanelWindow::addCommand(const QString& text, const QString& key, void (AppController::*command)()) {
    auto* action = new QAction(text, this);
    action->setShortcuts(withCommandKey(key));
    // Later: the command may put away the window whose event this is.
    connect(action, &QAction::triggered, &controller, command, Qt::QueuedConnection);
    addAction(action);
}

void PanelWindow::setPanel(AppPanel* panel) {
    delete shown;
    shown = panel;
    layout()->addWidget(panel);
}

bool PanelWindow::eventFilter(QObject* watched, QEvent* event) {
    // Some desktops' themes let Return press whatever box has the keyboard; here it is the default button's.
    if (event->type() == QEvent::KeyPress && watched == windowHandle()) {
        auto* press = static_cast<QKeyEvent*>(event);
        const bool isReturn = press->key() == Qt::Key_Return || press->key() == Qt::Key_Enter;
        const QWidget* focused = focusWidget();
        if (isReturn &&
            (qobject_cast<const QCheckBox*>(focused) || qobject_cast<const QRadioButton*>(focused))) {
            keyPressEvent(press);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void PanelWindow::keyPressEvent(QKeyEvent* event) {
    // A Return held down in one window must not press the default button of the next.
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn || !event->isAutoRepeat())
        QDialog::keyPressEvent(event);
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
    windowHandle()->installEventFilter(this);
    raise();
    activateWindow();
}
