#pragma once

#include <QScrollBar>

/// A slim, light scroll bar: only a thumb, without arrows or track.
class LayerScrollBar : public QScrollBar {
    Q_OBJECT
public:
    explicit LayerScrollBar(QWidget* parent = nullptr);

    void setThickness(int points);
    QSize sizeHint() const override;
    QRectF thumb() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    int thickness = 8;
    std::optional<double> grabOffset;
};
