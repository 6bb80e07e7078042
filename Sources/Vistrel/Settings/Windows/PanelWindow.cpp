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

/// What window managers put around a window, as long as this one's are not known. Points.
constexpr int frameAllowance = 40;

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
    rows->setSizeConstraint(QLayout::SetNoConstraint);

    addCommand(QStringLiteral("Vistrel Settings…"), QStringLiteral(","), &AppController::showSettings);
    addCommand(QStringLiteral("Quit Vistrel"), QStringLiteral("Q"), &AppController::quit);
    auto* close = new QAction(this);
    close->setShortcuts(withCommandKey(QStringLiteral("W")));
    connect(close, &QAction::triggered, this, &PanelWindow::reject);
    addAction(close);
}

QList<QKeySequence> PanelWindow::withCommandKey(const QString& key) {
    return {QKeySequence(QStringLiteral("Ctrl+") + key), QKeySequence(QStringLiteral("Meta+") + key)};
}

int PanelWindow::roomOn(const QScreen& screen, const QMargins& frame) {
    return screen.availableGeometry().height() - std::max(frameAllowance, frame.top() + frame.bottom());
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

void PanelWindow::fit() {
    if (!shown)
        return;
    const QRect area = screen()->availableGeometry();
    connect(screen(), &QScreen::availableGeometryChanged, this, &PanelWindow::fit, Qt::UniqueConnection);
    const QMargins frame = windowHandle() ? windowHandle()->frameMargins() : QMargins();
    const int width =
        std::min(PageStyle::pageWidth(shown->font()), area.width() - frame.left() - frame.right());
    shown->setFixedWidth(width);
    setFixedSize(width, std::min(shown->heightForWidth(width), roomOn(*screen(), frame)));
    // A page that is taller than the one before must not end below the screen.
    if (const int below = frameGeometry().bottom() - area.bottom(); placed && below > 0)
        move(x(), std::max(area.top(), y() - below));
}

bool PanelWindow::event(QEvent* event) {
    const bool handled = QDialog::event(event);
    if (event->type() == QEvent::LayoutRequest)
        fit();
    return handled;
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
        fit();
        const QRect area = screen()->availableGeometry();
        move(area.left() + (area.width() - width()) / 2,
             area.top() + std::max(0, (area.height() - height() - frameAllowance) / 2));
        placed = true;
    }
    if (isMinimized())
        showNormal();
    show();
    windowHandle()->installEventFilter(this);
    connect(windowHandle(), &QWindow::screenChanged, this, &PanelWindow::fit, Qt::UniqueConnection);
    raise();
    activateWindow();
}
