#include "Editor/EditorSizeField.h"

#include "Editor/DevicePixels.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorColors.h"
#include "Editor/EditorFont.h"
#include "Editor/EditorHint.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>

namespace {
/// Space between the bezel and the text on every side.
constexpr int textInset = 2;
constexpr double fullDigitSize = 15.6;
} // namespace

EditorSizeField::EditorSizeField(QWidget* parent) : QLineEdit(parent) {
    setObjectName(QStringLiteral("drawingWidth"));
    setAccessibleName(QStringLiteral("Size"));
    setAlignment(Qt::AlignCenter);
    setFrame(false);
    setContextMenuPolicy(Qt::PreventContextMenu); // A menu would open below a full-screen overlay.
    setDragEnabled(false);
    setMaxLength(12);
    new EditorHint(*this);
    QPalette colors = EditorColors::palette();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled})
        colors.setColor(group, QPalette::Base, Qt::transparent); // The bezel is painted below the text.
    setPalette(colors);
    setDigits(fullDigitSize, 0);
    connect(this, &QLineEdit::textChanged, this, [this](const QString& text) {
        // Assistive technology writes into the field without giving it the keyboard.
        if (text != shownText && !hasFocus())
            commit();
    });
}

std::optional<int> EditorSizeField::number(const QString& text) {
    const int first = text.startsWith(QLatin1Char('+')) || text.startsWith(QLatin1Char('-')) ? 1 : 0;
    if (text.size() == first)
        return std::nullopt;
    long long value = 0;
    for (qsizetype i = first; i < text.size(); ++i) {
        const char16_t digit = text.at(i).unicode();
        if (digit < u'0' || digit > u'9')
            return std::nullopt;
        value = std::min(value * 10 + (digit - u'0'), 1'000'000'000LL);
    }
    return static_cast<int>(text.startsWith(QLatin1Char('-')) ? -value : value);
}

void EditorSizeField::showSize(int size) {
    if (isEditing() && isPending())
        return;
    shownText = QString::number(size);
    if (text() != shownText)
        setText(shownText);
}

bool EditorSizeField::revert() {
    if (!isEditing() || !isPending())
        return false;
    setText(shownText);
    return true;
}

bool EditorSizeField::isPending() const {
    return isModified() || text() != shownText;
}

void EditorSizeField::setDigits(double points, double covered) {
    if (digits != points) {
        digits = points;
        setFont(EditorFont::system(points, QFont::DemiBold));
    }
    // In a narrow strip two digits matter more than keeping clear of the buttons.
    const double free = (width() - QFontMetricsF(font()).horizontalAdvance(QStringLiteral("88"))) / 2;
    const int margin = static_cast<int>(std::clamp(free - 2 * textInset, 0.0, covered + textInset));
    if (textMargins().left() != margin)
        setTextMargins(margin, 0, margin, 0);
}

void EditorSizeField::setCornerRadius(double points) {
    if (radius == points)
        return;
    radius = points;
    update();
}

void EditorSizeField::commit() {
    setModified(false);
    shownText = text();
    if (onCommit)
        onCommit();
}

void EditorSizeField::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const double line = DevicePixels::one(painter);
        const QRectF bezel = DevicePixels::aligned(painter, QRectF(rect()).adjusted(1, 1, -1, -1))
                                 .adjusted(line / 2, line / 2, -line / 2, -line / 2);
        const double corner = std::max(radius - 1, 1.0);
        painter.setPen(QPen(QColor(0, 0, 0, isEnabled() ? 46 : 20), line));
        painter.setBrush(isEnabled() ? QColor(Qt::white) : QColor(255, 255, 255, 90));
        painter.drawRoundedRect(bezel, corner, corner);
        if (hasFocus()) {
            painter.setPen(QPen(EditorColors::accent(), 2));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(bezel.adjusted(0.5, 0.5, -0.5, -0.5), corner, corner);
        }
    }
    QLineEdit::paintEvent(event);
}

void EditorSizeField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        commit();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void EditorSizeField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    selectOnRelease = event->reason() == Qt::MouseFocusReason;
}

void EditorSizeField::mouseReleaseEvent(QMouseEvent* event) {
    QLineEdit::mouseReleaseEvent(event);
    // The click that begins editing marks the number, so that typing replaces it.
    if (selectOnRelease && !hasSelectedText())
        selectAll();
    selectOnRelease = false;
}

void EditorSizeField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    deselect();
    if (isPending())
        commit();
}

bool EditorSizeField::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        if (isEnabled())
            QLineEdit::event(event);
        event->accept();
        return true;
    default:
        return QLineEdit::event(event);
    }
}
