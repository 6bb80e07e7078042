#include "Settings/Windows/UpdateSettingsView.h"

#include "Updates/UpdateService.h"

#include <QCheckBox>

using PageStyle::TextRole;

UpdateSettingsView::UpdateSettingsView(UpdateService& updates, QWidget* parent) : PageView(parent) {
    setObjectName(QStringLiteral("updatesPage"));
    addText(QStringLiteral("Vistrel updates"), TextRole::heading);
    addSpace(PageStyle::itemSpacing);

    auto* automatic = new QCheckBox(QStringLiteral("Automatically check for updates"), this);
    automatic->setObjectName(QStringLiteral("automaticallyChecks"));
    automatic->setAccessibleName(automatic->text());
    automatic->setChecked(updates.automaticallyChecks());
    connect(automatic, &QCheckBox::toggled, &updates, &UpdateService::setAutomaticallyChecks);
    connect(&updates, &UpdateService::automaticallyChecksChanged, automatic,
            [automatic, &updates] { automatic->setChecked(updates.automaticallyChecks()); });
    add(automatic);
    addSpace(PageStyle::grid / 2);
    const QString server =
        updates.updateHost().isEmpty() ? QStringLiteral("the update server") : updates.updateHost();
    add(noteUnder(
        *automatic,
        QStringLiteral("Checks contact %1 for version information. Screenshots and drawings are never "
                       "included. Installing an update always asks for your confirmation.")
            .arg(server),
        this));
    addSpace(PageStyle::groupSpacing);

    QPushButton* check =
        new PageButton(QStringLiteral("Check for Updates…"), QStringLiteral("checkForUpdates"), this);
    check->setEnabled(updates.canCheck());
    connect(&updates, &UpdateService::canCheckChanged, check,
            [check, &updates] { check->setEnabled(updates.canCheck()); });
    connect(check, &QPushButton::clicked, &updates, &UpdateService::checkForUpdates);
    add(check, Qt::AlignLeading);
}
