#pragma once

#include <QPainterPath>
#include <QWidget>

#include <vector>

/// One floating panel: the panel colour in a shape of rounded rectangles. Outside the shape presses go to
/// the canvas below; inside it they are the panel's, whatever its controls leave over. Widget points.
class EditorPanel : public QWidget {
    Q_OBJECT
public:
    explicit EditorPanel(QWidget* parent = nullptr);

    void setShape(std::vector<QRectF> rects, double radius);
    /// The whole points that the shape touches.
    QRegion region() const;
    bool isInside(QPointF position) const;

    /// Keeps what the pointer does on a panel from the canvas below; true when the event was that.
    static bool swallow(QEvent& event);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<QRectF> pieces;
    double radius = 0;
};
