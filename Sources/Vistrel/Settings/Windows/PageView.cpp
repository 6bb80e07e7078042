#include "Settings/Windows/PageView.h"

#include <QHBoxLayout>
#include <QStyle>

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

QLayout* noteUnder(const QAbstractButton& box, const QString& text, QWidget* parent) {
    const QStyle* style = box.style();
    auto* row = new QHBoxLayout;
    row->setSpacing(0);
    row->addSpacing(style->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, &box) +
                    style->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, &box));
    row->addWidget(new TextLabel(text, PageStyle::TextRole::note, parent), 1);
    return row;
}
