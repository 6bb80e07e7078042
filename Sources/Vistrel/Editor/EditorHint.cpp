#include "Editor/EditorHint.h"

#include "Editor/EditorColors.h"
#include "Editor/EditorFont.h"

#include <QEvent>
#include <QFontMetricsF>
#include <QPainter>
#include <QWidget>

namespace {

constexpr double hintFontSize = 13.44;
constexpr double sidePadding = 8;
constexpr double hintRadius = 6;
constexpr double hintGap = 6;
/// Room around the bubble for its shadow.
constexpr int shadowReach = 10;

class HintBubble : public QWidget {
public:
    HintBubble(const QString& hintText, QWidget& window) : QWidget(&window), text(hintText) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setObjectName(QStringLiteral("editorHint"));
        setAccessibleName(hintText);
        setFont(EditorFont::system(hintFontSize));
    }

    double labelWidth() const { return QFontMetricsF(font()).horizontalAdvance(text); }

    void place(const QRectF& wanted) {
        const QRectF whole = wanted.adjusted(-shadowReach, -shadowReach, shadowReach, shadowReach);
        setGeometry(whole.toAlignedRect());
        frame = wanted.translated(-geometry().topLeft());
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        // A soft shadow out of widening, overlapping layers.
        for (int spread = shadowReach - 2; spread > 0; --spread) {
            painter.setBrush(QColor(0, 0, 0, 5));
            const QRectF layer = frame.adjusted(-spread, -spread, spread, spread).translated(0, 2);
            painter.drawRoundedRect(layer, hintRadius + spread, hintRadius + spread);
        }
        painter.setBrush(EditorColors::background());
        painter.drawRoundedRect(frame, hintRadius, hintRadius);
        painter.setPen(EditorColors::hintInk());
        painter.drawText(frame.adjusted(sidePadding, 0, -sidePadding / 2, 0),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
    }

private:
    QString text;
    QRectF frame;
};

} // namespace

EditorHint::EditorHint(QWidget& watchedControl) : QObject(&watchedControl), control(watchedControl) {
    delay.setSingleShot(true);
    delay.setInterval(delayMilliseconds);
    connect(&delay, &QTimer::timeout, this, &EditorHint::show);
    control.installEventFilter(this);
}

EditorHint::~EditorHint() {
    dismiss();
}

QRectF EditorHint::frame(const QRectF& control, const QRectF& visible, double labelWidth) {
    const double width = std::ceil(labelWidth) + 2 * sidePadding;
    const double x = std::min(std::max(control.right() + hintGap, visible.left()), visible.right() - width);
    const double y =
        std::max(std::min(control.center().y() - height / 2, visible.bottom() - height), visible.top());
    return {x, y, width, height};
}

void EditorHint::show() {
    delay.stop();
    if (!hovered || control.toolTip().isEmpty() || !control.isVisible())
        return;
    dismiss();
    QWidget& window = *control.window();
    auto* made = new HintBubble(control.toolTip(), window);
    const QRectF place(control.mapTo(&window, QPoint(0, 0)), control.size());
    made->place(frame(place, window.rect(), made->labelWidth()));
    bubble = made;
    made->show();
    made->raise();
}

void EditorHint::dismiss() {
    delay.stop();
    if (QWidget* shown = bubble.data()) {
        bubble.clear();
        // Not at once: the window may be going through its children to hide them.
        shown->hide();
        shown->deleteLater();
    }
}

void EditorHint::dismissAll(QWidget& root) {
    for (EditorHint* hint : root.findChildren<EditorHint*>())
        hint->dismiss();
}

bool EditorHint::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Enter:
        hovered = true;
        dismiss();
        delay.start();
        control.update();
        break;
    case QEvent::Leave:
    case QEvent::Hide:
        hovered = false;
        dismiss();
        control.update();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::ParentAboutToChange:
        dismiss();
        break;
    case QEvent::ToolTip:
        return true; // The bubble takes the place of the toolkit's own tip.
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}
