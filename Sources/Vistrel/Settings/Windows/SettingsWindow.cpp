#include "Settings/Windows/SettingsWindow.h"

#include "Settings/Windows/AppPanel.h"
#include "Settings/Windows/LinkButton.h"
#include "Settings/Windows/PrivacyPolicyView.h"

SettingsWindow::SettingsWindow(const PanelSources& given)
    : PanelWindow(QStringLiteral("Vistrel Settings"), given.controller), sources(given) {
    setObjectName(QStringLiteral("settingsWindow"));
}

void SettingsWindow::present(SettingsTab initial) {
    auto* fresh = new AppPanel(QStringLiteral("Vistrel Settings"), sources.version(), this);
    // Made first, it comes last for the keyboard: pages are made anew behind it, and the keyboard begins with
    // the tabs.
    auto* privacy =
        new LinkButton(QStringLiteral("Privacy Polic&y"), QStringLiteral("settingsPrivacyPolicy"), fresh);
    connect(privacy, &QPushButton::clicked, this, [this] { PrivacyPolicyView::open(sources, *this); });
    fresh->addToFooter(privacy);
    view = new SettingsTabsView(
        sources, initial, [this] { close(); }, fresh);
    fresh->setContent(view);
    setPanel(fresh);
    view->setFocus();
    bringToFront();
}
