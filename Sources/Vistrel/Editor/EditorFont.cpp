#include "Editor/EditorFont.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QScreen>

QFont EditorFont::system(double points, QFont::Weight weight) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    // Pixel sizes are whole numbers; a typographic size keeps the fraction.
    const QScreen* screen = QGuiApplication::primaryScreen();
    const double dotsPerInch = screen ? screen->logicalDotsPerInchY() : 96;
    font.setPointSizeF(std::max(points, 1.0) * 72 / dotsPerInch);
    font.setWeight(weight);
    return font;
}
