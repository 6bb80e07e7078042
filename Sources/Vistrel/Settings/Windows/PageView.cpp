#include "Settings/Windows/PageView.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QStyle>

namespace {

constexpr int leastButtonWidth = 80;

/// Styles leave little room around a text; these windows leave the same everywhere.
class PageButton : public QPushButton {
public:
    PageButton(const QString& text, QWidget* parent) : QPushButton(text, parent) {
        // The toolkit would make a button that has had the keyboard once the default of the whole window.
        setAutoDefault(false);
    }

    QSize sizeHint() const override {
        return QPushButton::sizeHint().expandedTo(makeRoom(*this, withoutMnemonic(text())));
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (isReturn && !event->isAutoRepeat())
            click();
        else if (!isReturn)
            QPushButton::keyPressEvent(event);
    }
};

} // namespace

PageView::PageView(QWidget* parent) : QWidget(parent), pageRows(PageStyle::column(this)) {}

TextLabel* PageView::addText(const QString& text, PageStyle::TextRole role) {
    auto* label = new TextLabel(text, role, this);
    pageRows->addWidget(label);
    return label;
}

void PageView::add(QWidget* widget, Qt::Alignment alignment) {
    pageRows->addWidget(widget, 0, alignment);
}

void PageView::add(QLayout* row) {
    pageRows->addLayout(row);
}

void PageView::addSpace(int points) {
    pageRows->addSpacing(points);
}

void PageView::addDivider() {
    addSpace(PageStyle::groupSpacing);
    add(PageStyle::divider(this));
    addSpace(PageStyle::groupSpacing);
}

void PageView::addButtons(const QList<QPushButton*>& buttons) {
    auto* row = new QHBoxLayout;
    row->setSpacing(PageStyle::itemSpacing);
    row->addStretch();
    for (QPushButton* button : buttons)
        row->addWidget(button);
    pageRows->addLayout(row);
}

void PageView::setDefaultButton(QPushButton* button) {
    preferred = button;
    button->setDefault(true);
}

QString withoutMnemonic(QString text) {
    return text.remove(u'&');
}

QSize makeRoom(const QPushButton& button, const QString& text) {
    const QFontMetrics metrics = button.fontMetrics();
    return {std::max(leastButtonWidth, metrics.horizontalAdvance(text) + 4 * PageStyle::grid),
            metrics.height() + PageStyle::grid + PageStyle::grid / 2};
}

QPushButton* makeButton(const QString& text, const QString& objectName, QWidget* parent) {
    auto* button = new PageButton(text, parent);
    button->setObjectName(objectName);
    button->setAccessibleName(withoutMnemonic(text));
    return button;
}

QLayout* noteUnder(const QAbstractButton& box, const QString& text, QWidget* parent) {
    const QStyle* style = box.style();
    auto* row = new QHBoxLayout;
    row->setSpacing(0);
    row->addSpacing(style->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, &box) +
                    style->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, &box));
    row->addWidget(new TextLabel(text, PageStyle::TextRole::note, parent), 1);
    return row;
}
