#pragma once

#include <QWidget>

#include <vector>

/// The bar with the actions that end a capture: its items share the width in proportion, with hairlines
/// between them. Design sizes are magnified by the scale given to `place`.
class EditorActionBar : public QWidget {
    Q_OBJECT
public:
    explicit EditorActionBar(QWidget* parent = nullptr);

    /// Appends an item and takes ownership of it.
    void addArrangedSubview(QWidget& view);
    const std::vector<QWidget*>& arrangedSubviews() const { return items; }
    /// Width that the items want at scale 1.
    double preferredWidth() const;
    /// Stands at a frame in the parent's y-down points, magnified.
    void place(const QRectF& frame, double scale);
    double magnification() const { return scale; }
    /// The hairlines between neighbours, left to right.
    const std::vector<QWidget*>& separatorViews() const { return separators; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void layoutItems();

    double scale = 1;
    std::vector<QWidget*> items;
    std::vector<QWidget*> separators;
};
