#include "Editor/EditorColors.h"

#include <QGuiApplication>

const QColor& EditorColors::background() {
    static const QColor color = QColor::fromRgbF(0.92F, 0.92F, 0.93F);
    return color;
}

const QColor& EditorColors::ink() {
    static const QColor color = QColor::fromRgbF(0.4F, 0.4F, 0.4F);
    return color;
}

const QColor& EditorColors::hintInk() {
    static const QColor color = QColor::fromRgbF(0.25F, 0.25F, 0.25F);
    return color;
}

QColor EditorColors::accent() {
    return QGuiApplication::palette().color(QPalette::Active, QPalette::Highlight);
}

QPalette EditorColors::palette() {
    QPalette light;
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        const QColor text =
            group == QPalette::Disabled ? QColor(ink().red(), ink().green(), ink().blue(), 102) : ink();
        light.setColor(group, QPalette::Window, background());
        light.setColor(group, QPalette::Button, background());
        light.setColor(group, QPalette::Base, Qt::white);
        light.setColor(group, QPalette::AlternateBase, background());
        light.setColor(group, QPalette::WindowText, text);
        light.setColor(group, QPalette::ButtonText, text);
        light.setColor(group, QPalette::Text, text);
        light.setColor(group, QPalette::Highlight, accent());
        light.setColor(group, QPalette::HighlightedText,
                       QGuiApplication::palette().color(QPalette::Active, QPalette::HighlightedText));
    }
    return light;
}
