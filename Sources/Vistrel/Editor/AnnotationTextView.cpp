#include "Editor/AnnotationTextView.h"

#include "Editor/AnnotationTextDocumentLayout.h"
#include "Editor/EditorColors.h"
#include "Editor/ExactPosition.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QStyleHints>
#include <QTextDocument>
#include <QTimer>

namespace {

/// Room around the box for what glyphs and caret draw beyond it.
constexpr int overhang = 4;

QString asTyped(QString raw) {
    return raw.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
}

bool isReturn(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

/// Super does in the text what Control does.
bool isEditingLetter(int key) {
    switch (key) {
    case Qt::Key_A:
    case Qt::Key_C:
    case Qt::Key_V:
    case Qt::Key_X:
    case Qt::Key_Y:
    case Qt::Key_Z:
        return true;
    default:
        return false;
    }
}

} // namespace

AnnotationTextView::AnnotationTextView(QWidget* parent) : QTextEdit(parent), blink(new QTimer(this)) {
    auto* text = new QTextDocument(this);
    textLayout = new AnnotationTextDocumentLayout(*text);
    text->setDocumentLayout(textLayout);
    text->setDocumentMargin(0);
    setDocument(text);
    textLayout->setOrigin({overhang, overhang}, 0);
    setObjectName(QStringLiteral("annotationText"));
    setAccessibleName(QStringLiteral("Text"));
    setAcceptRichText(false);
    setAcceptDrops(false);
    setUndoRedoEnabled(true);
    setLineWrapMode(NoWrap);
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setContextMenuPolicy(Qt::PreventContextMenu); // A menu would open below a full-screen overlay.
    viewport()->setAutoFillBackground(false);
    viewport()->setAcceptDrops(false);
    setInkColor(ink);
    connect(this, &QTextEdit::textChanged, this, &AnnotationTextView::fit);
    connect(this, &QTextEdit::cursorPositionChanged, this, &AnnotationTextView::restartCaret);
    connect(this, &QTextEdit::cursorPositionChanged, this, &AnnotationTextView::fit);
    connect(this, &QTextEdit::selectionChanged, viewport(), qOverload<>(&QWidget::update));
    connect(blink, &QTimer::timeout, this, [this] {
        caretOn = !caretOn;
        viewport()->update(caretRect().toAlignedRect().adjusted(-1, -1, 1, 1));
    });
}

void AnnotationTextView::setAnchor(QPointF corner) {
    topLeft = corner;
    fit();
}

void AnnotationTextView::setAvailableSize(Size size) {
    available = size;
    textLayout->setAvailable(size);
    fit();
}

void AnnotationTextView::setFontSize(double points) {
    textLayout->setFontSize(points);
    fit();
}

double AnnotationTextView::fontSize() const {
    return textLayout->fontSize();
}

void AnnotationTextView::setInkColor(const QColor& color) {
    ink = color;
    QPalette colors = palette();
    colors.setColor(QPalette::Text, color);
    colors.setColor(QPalette::Base, Qt::transparent);
    setPalette(colors);
    viewport()->update();
}

void AnnotationTextView::setString(const QString& text) {
    setPlainText(text);
    moveCursor(QTextCursor::End);
}

QString AnnotationTextView::string() const {
    return asTyped(document()->toRawText());
}

void AnnotationTextView::fit() {
    // What has no room in the box is seen at least while it is typed: the text rises with the caret.
    const double rise = hasFocus() ? textLayout->riseFor(textCursor().position(), composedCaret) : 0;
    const QRectF exact = box().adjusted(0, -rise, 0, 0);
    const QRect outer = exact.toAlignedRect().adjusted(-overhang, -overhang, overhang, overhang);
    textLayout->setOrigin(exact.topLeft() - outer.topLeft(), rise);
    setGeometry(outer);
    viewport()->update();
    if (onGrowth)
        onGrowth();
}

QRectF AnnotationTextView::box() const {
    const Size size = textLayout->box();
    return {topLeft.x(), topLeft.y(), size.width, size.height};
}

QRectF AnnotationTextView::caretRect() const {
    return textLayout->caretRect(textCursor().position(), composedCaret);
}

QVariant AnnotationTextView::inputMethodQuery(Qt::InputMethodQuery query) const {
    // The candidates of an input method open beside the caret as it is painted.
    if (query == Qt::ImCursorRectangle)
        return caretRect();
    if (query == Qt::ImAnchorRectangle)
        return textLayout->caretRect(textCursor().anchor(), 0);
    return QTextEdit::inputMethodQuery(query);
}

void AnnotationTextView::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    if (event->key() == Qt::Key_Escape) {
        if (onCancel)
            onCancel();
    } else if (isReturn(*event) && (modifiers & (Qt::ControlModifier | Qt::MetaModifier))) {
        if (onCommit)
            onCommit();
    } else if (isReturn(*event)) {
        // Shift too: a line break is always the same line feed.
        QKeyEvent plain(event->type(), Qt::Key_Return, Qt::NoModifier, QStringLiteral("\r"));
        QTextEdit::keyPressEvent(&plain);
    } else if (modifiers & Qt::MetaModifier) {
        if (isEditingLetter(event->key())) {
            QKeyEvent control(event->type(), event->key(),
                              (modifiers & ~Qt::MetaModifier) | Qt::ControlModifier);
            QTextEdit::keyPressEvent(&control);
        }
    } else {
        QTextEdit::keyPressEvent(event);
    }
    event->accept(); // The canvas below must not take typing for its own keys.
}

void AnnotationTextView::inputMethodEvent(QInputMethodEvent* event) {
    composedCaret = int(event->preeditString().size());
    caretHidden = false;
    for (const QInputMethodEvent::Attribute& attribute : event->attributes()) {
        if (attribute.type == QInputMethodEvent::Cursor) {
            composedCaret = attribute.start;
            caretHidden = attribute.length == 0;
        }
    }
    composing = !event->preeditString().isEmpty();
    if (!composing)
        composedCaret = 0;
    QTextEdit::inputMethodEvent(event);
    restartCaret();
    fit(); // What is being composed takes room too.
}

bool AnnotationTextView::viewportEvent(QEvent* event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick: {
        const auto& seen = static_cast<const QMouseEvent&>(*event);
        QMouseEvent exact(seen.type(), ExactPosition::of(seen, *viewport()), seen.scenePosition(),
                          seen.globalPosition(), seen.button(), seen.buttons(), seen.modifiers(),
                          seen.source(), seen.pointingDevice());
        exact.setTimestamp(seen.timestamp());
        const bool handled = QTextEdit::viewportEvent(&exact);
        event->setAccepted(exact.isAccepted());
        return handled;
    }
    default:
        return QTextEdit::viewportEvent(event);
    }
}

void AnnotationTextView::mousePressEvent(QMouseEvent* event) {
    // A press on selected text would begin to drag it away instead of placing the caret.
    QTextCursor cursor = textCursor();
    const int hit = textLayout->hitTest(event->position(), Qt::FuzzyHit);
    if (event->button() == Qt::LeftButton && !(event->modifiers() & Qt::ShiftModifier) &&
        hit >= cursor.selectionStart() && hit <= cursor.selectionEnd()) {
        cursor.clearSelection();
        setTextCursor(cursor);
    }
    QTextEdit::mousePressEvent(event);
    event->accept();
}

void AnnotationTextView::mouseMoveEvent(QMouseEvent* event) {
    QTextEdit::mouseMoveEvent(event);
    event->accept();
}

void AnnotationTextView::mouseReleaseEvent(QMouseEvent* event) {
    QTextEdit::mouseReleaseEvent(event);
    event->accept();
}

void AnnotationTextView::mouseDoubleClickEvent(QMouseEvent* event) {
    QTextEdit::mouseDoubleClickEvent(event);
    event->accept();
}

void AnnotationTextView::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void AnnotationTextView::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette = palette();
    context.palette.setColor(QPalette::Text, ink);
    if (textCursor().hasSelection()) {
        QAbstractTextDocumentLayout::Selection selection;
        selection.cursor = textCursor();
        QColor wash = EditorColors::accent();
        wash.setAlphaF(0.35F);
        selection.format.setBackground(wash);
        context.selections.append(selection);
    }
    textLayout->draw(&painter, context);
    if (caretOn && !caretHidden)
        painter.fillRect(caretRect(), ink);
}

void AnnotationTextView::restartCaret() {
    caretOn = hasFocus();
    const int cycle = QGuiApplication::styleHints()->cursorFlashTime();
    if (caretOn && cycle >= 2)
        blink->start(cycle / 2);
    else
        blink->stop();
    viewport()->update();
}

void AnnotationTextView::focusInEvent(QFocusEvent* event) {
    QTextEdit::focusInEvent(event);
    restartCaret();
    fit();
}

void AnnotationTextView::focusOutEvent(QFocusEvent* event) {
    QTextEdit::focusOutEvent(event);
    restartCaret();
    fit();
}

QMimeData* AnnotationTextView::createMimeDataFromSelection() const {
    auto* plain = new QMimeData;
    plain->setText(asTyped(textCursor().selectedText()));
    return plain;
}

bool AnnotationTextView::canInsertFromMimeData(const QMimeData* source) const {
    return source->hasText();
}

void AnnotationTextView::insertFromMimeData(const QMimeData* source) {
    textCursor().insertText(source->text());
}
