#pragma once

#include <QPainterPath>
#include <QWidget>

/// One floating panel: a fill of the panel colour in a given outline. What lies outside the outline
/// belongs to the canvas below, and so does a press on bare background.
class EditorPanel : public QWidget {
    Q_OBJECT
public:
    explicit EditorPanel(QWidget* parent = nullptr);

    /// The visible shape in widget points. `pieces` are the rectangles that hold it.
    void setOutline(const QPainterPath& path, const QRegion& pieces);
    const QPainterPath& outline() const { return path; }
    bool isInside(QPointF position) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPainterPath path;
};
