#include "Settings/Windows/DiagnosticHistorySettingsView.h"

#include "Settings/Windows/PageView.h"

#include <QCheckBox>
#include <QHBoxLayout>

using PageStyle::TextRole;

DiagnosticHistorySettingsView::DiagnosticHistorySettingsView(LocalDiagnostics& journal,
                                                             UserDefaults& defaults, QWidget* parent)
    : QWidget(parent), model(journal, defaults) {
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(new TextLabel(QStringLiteral("Diagnostics"), TextRole::heading, this));
    rows->addSpacing(PageStyle::itemSpacing);

    auto* keep = new QCheckBox(QStringLiteral("&Keep diagnostic history locally"), this);
    keep->setObjectName(QStringLiteral("keepDiagnosticHistory"));
    keep->setAccessibleName(withoutMnemonic(keep->text()));
    keep->setChecked(model.enabled());
    connect(keep, &QCheckBox::toggled, &model, &DiagnosticHistoryModel::setEnabled);
    rows->addWidget(keep);
    rows->addSpacing(PageStyle::grid / 2);
    rows->addLayout(noteUnder(
        *keep,
        QStringLiteral("Up to 7 days within 1 MB. Turning this off clears the history. Reports are sent "
                       "only when you press Send Report in Support."),
        this));

    rows->addSpacing(PageStyle::groupSpacing);
    auto* row = new QHBoxLayout;
    row->setSpacing(PageStyle::groupSpacing);
    QPushButton* clear =
        new PageButton(QStringLiteral("Clear &History"), QStringLiteral("clearDiagnosticHistory"), this);
    connect(clear, &QPushButton::clicked, &model, &DiagnosticHistoryModel::clear);
    auto* status = new TextLabel(QString(), TextRole::note, this);
    status->setObjectName(QStringLiteral("diagnosticHistoryStatus"));
    status->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    connect(&model, &DiagnosticHistoryModel::statusChanged, status,
            [status, this] { status->setText(model.status()); });
    row->addWidget(clear);
    row->addWidget(status, 1);
    rows->addLayout(row);
}
