#include "Settings/Windows/PageButton.h"

#include "Settings/Windows/PageStyle.h"

#include <QKeyEvent>

namespace {

constexpr int leastWidth = 80;

} // namespace

PageButton::PageButton(const QString& text, const QString& objectName, QWidget* parent)
    : QPushButton(text, parent) {
    setObjectName(objectName);
    setAccessibleName(withoutMnemonic(text));
    // The toolkit would make a button that has had the keyboard once the default of the whole window.
    setAutoDefault(false);
}

QSize PageButton::sizeHint() const {
    // Styles leave little room around a text.
    return QPushButton::sizeHint().expandedTo(makeRoom(*this, withoutMnemonic(text())));
}

void PageButton::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && !event->isAutoRepeat())
        click();
    else if (!isReturn)
        QPushButton::keyPressEvent(event);
}

QString withoutMnemonic(QString text) {
    return text.remove(u'&');
}

QSize makeRoom(const QPushButton& button, const QString& text) {
    const QFontMetrics metrics = button.fontMetrics();
    return {std::max(leastWidth, metrics.horizontalAdvance(text) + 4 * PageStyle::grid),
            metrics.height() + PageStyle::grid + PageStyle::grid / 2};
}
