#pragma once

#include <QPainterPath>
#include <QWidget>

#include <vector>

/// One floating panel: the panel colour in a shape of rounded rectangles. Outside the shape, and on its
/// bare background, presses go to the canvas below. Sizes are widget points.
class EditorPanel : public QWidget {
    Q_OBJECT
public:
    explicit EditorPanel(QWidget* parent = nullptr);

    void setShape(std::vector<QRectF> rects, double radius);
    /// The whole points that the shape touches.
    QRegion region() const;
    bool isInside(QPointF position) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<QRectF> pieces;
    double radius = 0;
};
