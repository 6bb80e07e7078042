#pragma once

#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QTimer>

class QWidget;

/// Shows a control's tool tip in a bubble beside it after a short hover. The bubble is a child of the
/// control's window, so that it stands above a full-screen overlay, and never takes the mouse.
class EditorHint : public QObject {
    Q_OBJECT
public:
    static constexpr int delayMilliseconds = 350;
    static constexpr double height = 22.4;

    /// Watches `control` from now on and is owned by it.
    explicit EditorHint(QWidget& control);
    ~EditorHint() override;

    bool isHovered() const { return hovered; }
    bool isPending() const { return delay.isActive(); }
    bool isShown() const { return !bubble.isNull(); }
    /// Null while nothing is shown.
    QWidget* shownBubble() const { return bubble; }

    /// What the delay ends in: shows the bubble if the control is still hovered and can be seen.
    void show();
    void dismiss();

    /// Removes the bubble of every control in the tree.
    static void dismissAll(QWidget& root);
    /// Where the bubble goes: beside the control, held inside `visible`. All in the same y-down points.
    static QRectF frame(const QRectF& control, const QRectF& visible, double labelWidth);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget& control;
    QTimer delay;
    QPointer<QWidget> bubble;
    bool hovered = false;
};
