#include "VistrelPlatform/X11/DialogTitle.h"

#include <QAbstractButton>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr char titleName[] = "dialogTitle";
constexpr int padding = 6;

/// Between the dialog's background and its text, as strong as said.
QColor mixed(const QPalette& palette, double strength) {
    QColor color = palette.color(QPalette::WindowText);
    color.setAlphaF(static_cast<float>(strength));
    return color;
}

} // namespace

class DialogTitle::CloseButton : public QAbstractButton {
public:
    explicit CloseButton(QWidget* parent) : QAbstractButton(parent) {
        setObjectName(QStringLiteral("dialogClose"));
        setAccessibleName(QStringLiteral("Close"));
        setFocusPolicy(Qt::NoFocus);
        setAttribute(Qt::WA_Hover);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        constexpr double hovered = 0.12;
        constexpr double pressed = 0.25;
        constexpr double corner = 4;
        if (underMouse() || isDown()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(mixed(palette(), isDown() ? pressed : hovered));
            painter.drawRoundedRect(rect(), corner, corner);
        }
        constexpr double strokeWidth = 1.5;
        painter.setPen(QPen(palette().color(QPalette::WindowText), strokeWidth, Qt::SolidLine, Qt::RoundCap));
        const double reach = width() * 0.2;
        const QPointF middle = QRectF(rect()).center();
        for (const double side : {1.0, -1.0})
            painter.drawLine(middle - QPointF(reach, side * reach), middle + QPointF(reach, side * reach));
    }
};

void DialogTitle::addTo(QWidget& dialog) {
    if (!dialog.findChild<QWidget*>(QLatin1StringView(titleName), Qt::FindDirectChildrenOnly))
        new DialogTitle(dialog);
}

DialogTitle::DialogTitle(QWidget& dialog) : QWidget(&dialog), close(new CloseButton(this)) {
    setObjectName(QLatin1StringView(titleName));
    setFocusPolicy(Qt::NoFocus);
    QFont bold = font();
    bold.setBold(true);
    setFont(bold);
    // The dialog decides what being closed means, as with a window manager's button.
    connect(close, &QAbstractButton::clicked, &dialog, &QWidget::close);
    dialog.installEventFilter(this);
    dialog.setContentsMargins(0, designHeight(), 0, 0);
    place();
}

int DialogTitle::designHeight() const {
    return fontMetrics().height() + 2 * padding;
}

void DialogTitle::place() {
    const int height = designHeight();
    setGeometry(0, 0, parentWidget()->width(), height);
    const int side = height - padding;
    close->setGeometry(width() - side - padding / 2, padding / 2, side, side);
    raise();
}

bool DialogTitle::eventFilter(QObject*, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show)
        place();
    else if (event->type() == QEvent::WindowTitleChange)
        update();
    return false;
}

void DialogTitle::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    constexpr double shade = 0.06;
    constexpr double separator = 0.2;
    painter.fillRect(rect(), mixed(palette(), shade));
    const double line = 1 / devicePixelRatioF();
    painter.fillRect(QRectF(0, height() - line, width(), line), mixed(palette(), separator));
    painter.setPen(palette().color(QPalette::WindowText));
    const QRect room = rect().adjusted(height(), 0, -height(), 0);
    painter.drawText(room, Qt::AlignCenter,
                     fontMetrics().elidedText(parentWidget()->windowTitle(), Qt::ElideMiddle, room.width()));
}

void DialogTitle::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        grip = event->globalPosition().toPoint() - parentWidget()->pos();
}

void DialogTitle::mouseMoveEvent(QMouseEvent* event) {
    if (grip)
        parentWidget()->move(event->globalPosition().toPoint() - *grip);
}

void DialogTitle::mouseReleaseEvent(QMouseEvent*) {
    grip.reset();
}
