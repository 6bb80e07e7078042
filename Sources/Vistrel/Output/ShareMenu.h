#pragma once

#include <QMenu>

/// A menu that opens under a pointer already pressed: the click that opened it, however many times it is
/// repeated at once, chooses nothing and does not close it. Main thread.
class ShareMenu : public QMenu {
    Q_OBJECT
public:
    using QMenu::QMenu;

protected:
    bool event(QEvent* event) override;

private:
    bool belongsToOpening(const QMouseEvent& event);

    /// A press that was meant for the menu is held.
    bool pressed = false;
    /// When the last press that was not meant for it came, in the window system's milliseconds.
    std::optional<quint64> repeatedAt;
};
