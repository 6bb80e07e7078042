#pragma once

#include <QWidget>

#include <vector>

/// The size strip above the tools: a minus button, the size field under both, a plus button.
class EditorSizeControls : public QWidget {
    Q_OBJECT
public:
    static constexpr double minimumDigits = 12;

    explicit EditorSizeControls(QWidget* parent = nullptr);

    /// Adds a control at a place in the strip's order, behind those already there; takes ownership.
    void insertArrangedSubview(QWidget& view, int index);
    void addArrangedSubview(QWidget& view) { insertArrangedSubview(view, int(items.size())); }
    const std::vector<QWidget*>& arrangedSubviews() const { return items; }

    /// Magnification of the panel; 1 at first.
    void setMagnification(double scale);
    double magnification() const { return scale; }

    static double stepWidth(double scale, double stripWidth);
    static double digitSize(double scale);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void layoutItems();

    double scale = 1;
    std::vector<QWidget*> items;
};
