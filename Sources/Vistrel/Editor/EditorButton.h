#pragma once

#include "Editor/EditorIcons.h"

#include <QPushButton>

#include <functional>

class EditorHint;

/// A borderless button of the editor panels with a hover highlight and a delayed hint (its tool tip).
/// Sizes are widget points; the panel that holds it magnifies them. Never takes focus from the mouse.
class EditorButton : public QPushButton {
    Q_OBJECT
public:
    explicit EditorButton(QWidget* parent = nullptr);

    /// Called once for every click, key press or accessible press.
    std::function<void()> onAction;

    /// The icon shown, at a size in points before magnification.
    void setIconImage(const QString& name, const QString& symbol, double size);
    bool hasIconImage() const { return !iconName.isEmpty(); }
    /// Magnification of icon and text.
    void setMagnification(double scale);
    double magnification() const { return scale; }
    /// Size of the title's font in points before magnification.
    void setTitleSize(double points);
    /// Acts on the press itself instead of on the release.
    void setFiresOnPress(bool fires) { firesOnPress = fires; }
    /// Corner radius of highlights; 6 unless set.
    void setHoverRadius(double radius);
    double hoverRadius() const { return radius; }
    /// Marks the current choice: a wash of the accent colour.
    void setHighlighted(bool highlighted);
    bool isHighlighted() const { return isChecked(); }
    /// Makes the button one that can be marked.
    void setHighlightable(bool highlightable) { setCheckable(highlightable); }
    bool isHovered() const;
    EditorHint& hint() { return *bubble; }

    /// Width that icon and title need at magnification 1.
    double naturalWidth() const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {}; }

    /// The ring around a control that has the keyboard.
    static void paintFocusRing(QPainter& painter, const QRectF& bounds, double radius);
    /// Removes the hint of every button in the tree.
    static void dismissHints(QWidget& root);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void nextCheckState() override {}
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    /// Icon and title; the highlights are painted before and after it.
    virtual void paintContent(QPainter& painter);

private:
    EditorHint* bubble;
    QString iconName;
    QString iconSymbol;
    double iconSize = 0;
    double titleSize = 13;
    double scale = 1;
    double radius = 6;
    bool firesOnPress = false;
};
