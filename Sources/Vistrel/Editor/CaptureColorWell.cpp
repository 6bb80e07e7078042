#include "Editor/CaptureColorWell.h"

#include "Editor/DevicePixels.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorColors.h"
#include "Editor/EditorHint.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QColorDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QRegularExpression>
#include <QScreen>
#include <QValidator>

#include <algorithm>

std::function<void(QWidget&)> CaptureColorWell::prepareDialog;
std::function<void(QWidget&)> CaptureColorWell::restoreDialog;

namespace {

QPointer<CaptureColorWell> pickerOwner;

/// Three or six hexadecimal digits; the number sign before them need not be typed.
class HexCode : public QValidator {
public:
    using QValidator::QValidator;

    State validate(QString& text, int& cursor) const override {
        if (!text.isEmpty() && !text.startsWith(QLatin1Char('#'))) {
            text = QLatin1Char('#') + text.trimmed();
            cursor = std::min(cursor + 1, static_cast<int>(text.size()));
        }
        static const QRegularExpression begun(QStringLiteral("^#?[0-9A-Fa-f]{0,6}$"));
        if (!begun.match(text).hasMatch())
            return Invalid;
        constexpr qsizetype lengths[] = {4, 7};
        return std::ranges::find(lengths, text.size()) != std::end(lengths) ? Acceptable : Intermediate;
    }
};

class ColorPickerDialog : public QColorDialog {
public:
    ColorPickerDialog() {
        setObjectName(QStringLiteral("drawingColorPicker"));
        setWindowTitle(QStringLiteral("Drawing color"));
        setOptions(DontUseNativeDialog | NoButtons);
        for (QLineEdit* field : findChildren<QLineEdit*>())
            if (!qobject_cast<QAbstractSpinBox*>(field->parent()))
                field->setValidator(new HexCode(field));
        // Return in a field belongs to the field.
        for (QPushButton* button : findChildren<QPushButton*>())
            button->setAutoDefault(false);
    }
};

QPointer<ColorPickerDialog> pickerDialog;

} // namespace

QColorDialog& CaptureColorWell::sharedDialog() {
    if (!pickerDialog) {
        pickerDialog = new ColorPickerDialog;
        QObject::connect(pickerDialog, &QColorDialog::currentColorChanged, pickerDialog,
                         [](const QColor& color) {
                             if (pickerOwner)
                                 pickerOwner->dialogChanged(color);
                         });
        QObject::connect(pickerDialog, &QDialog::finished, pickerDialog, [] {
            if (pickerOwner)
                pickerOwner->closePicker();
        });
        // Widgets have to go before the application does.
        qAddPostRoutine([] { delete pickerDialog.data(); });
    }
    return *pickerDialog;
}

CaptureColorWell::CaptureColorWell(QWidget* parent) : QPushButton(parent), bubble(new EditorHint(*this)) {
    setObjectName(QStringLiteral("drawingColor"));
    setAccessibleName(QStringLiteral("Drawing color"));
    setAutoDefault(false);
    setFocusPolicy(Qt::TabFocus);
    connect(this, &QAbstractButton::clicked, this, &CaptureColorWell::activate);
}

CaptureColorWell::~CaptureColorWell() {
    onPickerClosed = nullptr;
    onColor = nullptr;
    closePicker();
}

bool CaptureColorWell::isHovered() const {
    return bubble->isHovered();
}

bool CaptureColorWell::isActive() const {
    return pickerOwner == this;
}

void CaptureColorWell::setColor(const QColor& color) {
    QColor opaque = color;
    opaque.setAlpha(255);
    known = opaque;
    if (shown == opaque)
        return;
    shown = opaque;
    update();
    if (isActive() && !unreported) {
        const QSignalBlocker quiet(&sharedDialog());
        sharedDialog().setCurrentColor(shown);
    }
}

QPoint CaptureColorWell::dialogPosition(const QRect& well, QSize size, const QRect& screen) {
    constexpr int gap = 12;
    int x = well.right() + 1 + gap;
    if (x + size.width() > screen.right() + 1)
        x = well.left() - gap - size.width();
    x = std::max(std::min(x, screen.right() + 1 - size.width()), screen.left());
    const int y = std::max(std::min(well.top(), screen.bottom() + 1 - size.height()), screen.top());
    return {x, y};
}

void CaptureColorWell::activate() {
    if (!isEnabled())
        return;
    if (pickerOwner && pickerOwner != this)
        pickerOwner->closePicker();
    bubble->dismiss();
    const bool opens = pickerOwner != this;
    pickerOwner = this;
    if (opens)
        openDialog();
    sharedDialog().raise();
    sharedDialog().activateWindow();
    update();
}

void CaptureColorWell::openDialog() {
    QColorDialog& picker = sharedDialog();
    {
        const QSignalBlocker quiet(&picker);
        picker.setCurrentColor(shown);
    }
    if (onPickerOpened)
        onPickerOpened();
    if (prepareDialog)
        prepareDialog(picker);
    picker.adjustSize();
    // Level with the well, but clear of the whole panel around it.
    const QWidget& panel = isWindow() ? *this : *parentWidget();
    QRect place(mapToGlobal(QPoint(0, 0)), size());
    place.setLeft(panel.mapToGlobal(QPoint(0, 0)).x());
    place.setWidth(panel.width());
    picker.move(dialogPosition(place, picker.size(), screen()->geometry()));
    picker.show();
    qApp->installEventFilter(this);
}

void CaptureColorWell::closePicker() {
    if (!isActive())
        return;
    qApp->removeEventFilter(this);
    reportChoice();
    pickerOwner.clear();
    if (pickerDialog) {
        pickerDialog->hide();
        if (restoreDialog)
            restoreDialog(*pickerDialog);
    }
    update();
    if (onPickerClosed)
        onPickerClosed();
}

void CaptureColorWell::dialogChanged(const QColor& color) {
    shown = color;
    shown.setAlpha(255);
    unreported = shown;
    update();
    if (!isStillChoosing())
        reportChoice();
}

// While the pointer goes through the dialog's colours, or those of the screen, only the well follows.
bool CaptureColorWell::isStillChoosing() {
    const bool picksFromScreen = pickerDialog && QWidget::mouseGrabber() == pickerDialog;
    return picksFromScreen || (QGuiApplication::mouseButtons() & Qt::LeftButton);
}

void CaptureColorWell::reportChoice() {
    const std::optional<QColor> choice = std::exchange(unreported, std::nullopt);
    if (!choice || *choice == known)
        return;
    known = *choice;
    if (onColor)
        onColor(*choice);
}

bool CaptureColorWell::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease || event->type() == QEvent::KeyPress) {
        const auto* widget = qobject_cast<QWidget*>(watched);
        // The control that gets the event has its last word first.
        if (widget && widget->window() == pickerDialog)
            QMetaObject::invokeMethod(
                this,
                [this] {
                    if (!isStillChoosing())
                        reportChoice();
                },
                Qt::QueuedConnection);
    }
    return QPushButton::eventFilter(watched, event);
}

bool CaptureColorWell::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        if (isEnabled() && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
            bubble->dismiss();
            activate();
        }
        [[fallthrough]];
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        event->accept();
        return true;
    case QEvent::Hide:
        closePicker();
        return QPushButton::event(event);
    default:
        return QPushButton::event(event);
    }
}

void CaptureColorWell::keyPressEvent(QKeyEvent* event) {
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && event->modifiers() == 0)
        click();
    else
        QPushButton::keyPressEvent(event);
}

void CaptureColorWell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double radius = std::min(width() / 7.0, 6.0);
    // The outline lies around a path one point inside the edge; its own edges are whole device pixels.
    const double pixel = DevicePixels::one(painter);
    const double line = std::max(std::round(1 / pixel), 1.0) * pixel;
    const double outside = std::max(std::round(0.5 / pixel), 1.0) * pixel;
    const double inset = outside + line / 2;
    const QRectF bounds =
        DevicePixels::aligned(painter, QRectF(rect())).adjusted(inset, inset, -inset, -inset);
    QColor outline = EditorColors::accent();
    if (!isActive()) {
        outline = EditorColors::ink();
        outline.setAlphaF(0.4F);
    }
    painter.setPen(QPen(outline, line));
    painter.setBrush(isEnabled() ? shown : EditorColors::background());
    painter.drawRoundedRect(bounds, radius, radius);
    if (isHovered() && isEnabled()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 26));
        painter.drawRoundedRect(bounds, radius, radius);
    }
    if (hasFocus())
        EditorButton::paintFocusRing(painter, rect(), radius);
}
