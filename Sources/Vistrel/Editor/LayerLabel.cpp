#include "Editor/LayerLabel.h"

#include "Editor/EditorColors.h"
#include "Editor/EditorFont.h"
#include "Editor/EditorHint.h"

#include <QPainter>

LayerLabel::LayerLabel(QWidget* row) : QWidget(row) {
    setObjectName(QStringLiteral("layerLabel"));
    new EditorHint(*this);
}

void LayerLabel::setText(const QString& text) {
    if (content == text)
        return;
    content = text;
    setToolTip(text);
    setAccessibleName(text);
    update();
}

void LayerLabel::setMagnification(double scale) {
    setFont(EditorFont::system(fontSize * scale));
}

void LayerLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(EditorColors::ink());
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(content, Qt::ElideRight, width()));
}
