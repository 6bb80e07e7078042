#pragma once

#include <QWidget>

/// The edge of a dialog that no window manager frames: one device pixel all around, above its contents.
/// Follows the dialog's size and belongs to it.
class DialogEdge : public QWidget {
public:
    /// Gives the dialog its edge, once.
    static void addTo(QWidget& dialog);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    explicit DialogEdge(QWidget& dialog);
    void surround();
};
