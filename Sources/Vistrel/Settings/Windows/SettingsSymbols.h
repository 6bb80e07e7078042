#pragma once

#include <QColor>
#include <QIcon>
#include <QWidget>

/// The small drawings of the settings and setup windows, as paths in a square of 20 points.
namespace SettingsSymbols {

enum class Symbol { keyboard, palette, cycle, ladybug, checkmark, warning, shield };

/// Crisp at every device pixel ratio.
QPixmap pixmap(Symbol symbol, const QColor& color, int size, double devicePixelRatio);
void paint(QPainter& painter, Symbol symbol, const QRectF& square, const QColor& color);

} // namespace SettingsSymbols

/// One symbol as a widget, in a colour that suits the palette.
class SymbolView : public QWidget {
    Q_OBJECT
public:
    /// `description` is what a screen reader says; empty for decoration.
    SymbolView(SettingsSymbols::Symbol shown, int size, const QString& description,
               QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SettingsSymbols::Symbol symbol;
};
