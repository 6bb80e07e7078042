#include "Settings/Windows/PrivacyPolicyView.h"

#include "App/AppController.h"
#include "Settings/Windows/PageStyle.h"
#include "Settings/Windows/PageView.h"
#include "Settings/Windows/PanelWindow.h"
#include "Updates/UpdateService.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QVBoxLayout>

using PageStyle::TextRole;

namespace {

constexpr int visibleHeight = 360;

QWidget* makeColumn(const std::vector<PrivacyPolicyView::Section>& sections, QWidget* parent) {
    auto* column = new QWidget(parent);
    auto* rows = new QVBoxLayout(column);
    rows->setContentsMargins(PageStyle::margin, PageStyle::groupSpacing, PageStyle::margin,
                             PageStyle::groupSpacing);
    rows->setSpacing(PageStyle::itemSpacing);
    for (const PrivacyPolicyView::Section& section : sections) {
        if (&section != &sections.front())
            rows->addSpacing(PageStyle::itemSpacing);
        rows->addWidget(new TextLabel(section.heading, TextRole::heading, column));
        for (const QString& paragraph : section.paragraphs)
            rows->addWidget(new TextLabel(paragraph, TextRole::body, column));
    }
    rows->addStretch();
    return column;
}

} // namespace

PrivacyPolicyView::PrivacyPolicyView(const Publisher& publisher, QWidget* parent) : QDialog(parent) {
    const QString title = QStringLiteral("Vistrel Privacy Policy");
    setObjectName(QStringLiteral("privacyPolicy"));
    setWindowTitle(title);
    setAccessibleName(title);
    setFixedWidth(PageStyle::pageWidth(font()));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* header = new QHBoxLayout;
    header->setContentsMargins(PageStyle::margin, PageStyle::groupSpacing, PageStyle::margin,
                               PageStyle::groupSpacing);
    header->addWidget(new TextLabel(title, TextRole::title, this));
    layout->addLayout(header);
    layout->addWidget(PageStyle::divider(this));

    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("privacyText"));
    scroll->setAccessibleName(title);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::StrongFocus);
    scroll->setWidget(makeColumn(sections(publisher), scroll));
    layout->addWidget(scroll, 1);
    layout->addWidget(PageStyle::divider(this));

    QPushButton* done = new PageButton(QStringLiteral("&Done"), QStringLiteral("privacyDone"), this);
    done->setDefault(true);
    connect(done, &QPushButton::clicked, this, &PrivacyPolicyView::accept);
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(PageStyle::margin, PageStyle::groupSpacing, PageStyle::margin,
                                PageStyle::groupSpacing);
    buttons->addStretch();
    buttons->addWidget(done);
    layout->addLayout(buttons);
    for (const QKeySequence& key : PanelWindow::withCommandKey(QStringLiteral("W")))
        connect(new QShortcut(key, this), &QShortcut::activated, this, &PrivacyPolicyView::reject);
    const int rest = layout->totalMinimumSize().height() - scroll->minimumSizeHint().height();
    resize(width(), std::min(rest + visibleHeight, PanelWindow::roomOn(*screen())));
}

void PrivacyPolicyView::open(const PanelSources& sources, QWidget& over) {
    const QString maker = sources.bundle.string(ApplicationBundle::makerKey).value_or(QString());
    auto* sheet = new PrivacyPolicyView({sources.controller.updates().updateHost(), maker}, &over);
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->QDialog::open();
}
