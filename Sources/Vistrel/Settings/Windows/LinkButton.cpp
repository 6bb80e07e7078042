#include "Settings/Windows/LinkButton.h"

#include "Settings/Windows/PageStyle.h"

#include <QStyleOptionFocusRect>
#include <QStylePainter>

LinkButton::LinkButton(const QString& text, const QString& objectName, QWidget* parent)
    : PageButton(text, objectName, parent) {
    setFlat(true);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
}

void LinkButton::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QFont shown = font();
    shown.setUnderline(underMouse() || hasFocus());
    painter.setFont(shown);
    painter.setPen(PageStyle::accentColor(palette()));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextShowMnemonic, text());
    if (!hasFocus())
        return;
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
}
