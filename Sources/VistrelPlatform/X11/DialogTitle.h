#pragma once

#include <QWidget>

#include <optional>

/// The title of a dialog that no window manager frames: its text, a button that closes it, and what it is
/// moved by. Takes its room from the dialog's margin, follows the dialog's size and belongs to it.
class DialogTitle : public QWidget {
public:
    /// Gives the dialog its title, once. Before the dialog is shown.
    static void addTo(QWidget& dialog);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    explicit DialogTitle(QWidget& dialog);
    int designHeight() const;
    void place();

    class CloseButton;
    CloseButton* close;
    /// From the dialog's corner to where it is held.
    std::optional<QPoint> grip;
};
