#include "Settings/Windows/ScreenAccessPage.h"

#include "App/AppController.h"
#include "Settings/Windows/LinkButton.h"
#include "Settings/Windows/SettingsSymbols.h"

#include <QHBoxLayout>

using PageStyle::TextRole;

namespace {

constexpr int symbolSize = 20;

} // namespace

ScreenAccessPage::ScreenAccessPage(AppController& owner, std::function<void()> showPrivacy, QWidget* parent)
    : PageView(parent), controller(owner) {
    setObjectName(QStringLiteral("screenAccessPage"));
    addText(QStringLiteral("Allow Vistrel to capture your screen?"), TextRole::heading);
    addSpace(PageStyle::itemSpacing);
    addText(QStringLiteral("Screen Recording permission lets Vistrel take screenshots only when you ask."),
            TextRole::body);
    addSpace(PageStyle::groupSpacing);

    grantedRow = new QWidget(this);
    grantedRow->setObjectName(QStringLiteral("screenAccessGranted"));
    auto* row = new QHBoxLayout(grantedRow);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(PageStyle::itemSpacing);
    row->addWidget(new SymbolView(SettingsSymbols::Symbol::checkmark, symbolSize, QString(), grantedRow));
    row->addWidget(new TextLabel(QStringLiteral("Screen access is enabled"), TextRole::body, grantedRow), 1);
    add(grantedRow);
    instructions = addText(
        QStringLiteral(
            "Vistrel will hide this window so you can approve the macOS request. Open System Settings "
            "from the prompt, enable Vistrel, and reopen it if asked. Shortcut setup will open "
            "automatically."),
        TextRole::note);
    addDivider();
    addPrivacyRow(std::move(showPrivacy));
    addSpace(PageStyle::margin);

    systemSettings =
        new LinkButton(QStringLiteral("Open System &Settings"), QStringLiteral("openSystemSettings"), this);
    connect(systemSettings, &QPushButton::clicked, this, &ScreenAccessPage::openSystemSettings);
    QPushButton* allow =
        new PageButton(QStringLiteral("&Allow Screen Capture"), QStringLiteral("allowScreenCapture"), this);
    // Later: the answer may replace this page.
    connect(allow, &QPushButton::clicked, &controller, &AppController::requestPermission,
            Qt::QueuedConnection);
    addButtons({systemSettings, allow});
    setDefaultButton(allow);

    connect(&controller, &AppController::permissionGrantedChanged, this, &ScreenAccessPage::refresh);
    connect(&controller, &AppController::screenAccessSetupPendingChanged, this, &ScreenAccessPage::refresh);
    refresh();
}

void ScreenAccessPage::addPrivacyRow(std::function<void()> showPrivacy) {
    auto* row = new QHBoxLayout;
    row->setSpacing(PageStyle::groupSpacing);
    row->addWidget(new SymbolView(SettingsSymbols::Symbol::shield, symbolSize, QString(), this), 0,
                   Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(PageStyle::grid / 2);
    texts->addWidget(new TextLabel(QStringLiteral("Private by design"), TextRole::heading, this));
    texts->addWidget(new TextLabel(
        QStringLiteral(
            "Screenshots and drawings are processed on your Mac. You choose what to save, copy, or "
            "share. Diagnostic history stays on this Mac unless you choose to send a report."),
        TextRole::note, this));
    row->addLayout(texts, 1);
    QPushButton* policy =
        new PageButton(QStringLiteral("&Privacy Policy"), QStringLiteral("privacyPolicyButton"), this);
    connect(policy, &QPushButton::clicked, this, [showPrivacy = std::move(showPrivacy)] { showPrivacy(); });
    row->addWidget(policy, 0, Qt::AlignTop);
    add(row);
}

void ScreenAccessPage::openSystemSettings() {
    controller.hideWindows();
    controller.openSettings(SettingsPage::screenRecording);
}

void ScreenAccessPage::refresh() {
    grantedRow->setVisible(controller.permissionGranted());
    instructions->setVisible(!controller.permissionGranted());
    systemSettings->setVisible(controller.screenAccessSetupPending() &&
                               controller.hasSettings(SettingsPage::screenRecording));
}
