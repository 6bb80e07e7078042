#include "Vistrel/Settings/Windows/PanelFixture.h"

#include "Settings/Windows/AppPanel.h"
#include "Settings/Windows/PrivacyPolicyView.h"
#include "Settings/Windows/ScreenshotShortcutSettings.h"

#include <QMessageBox>

namespace {

class SetupWindowTest : public ::testing::Test, protected PanelFixture {
protected:
    /// The chooser, for a user who comes from the settings.
    ScreenshotShortcutSettings& openChooser() {
        completeSetup();
        open();
        controller->showCaptureShortcutSetup();
        return *static_cast<ScreenshotShortcutSettings*>(setup->onboarding().page());
    }
    bool applyEnabled() { return find(*setup, "applyCaptureShortcut")->isEnabled(); }
    QMessageBox* alert() { return setup->findChild<QMessageBox*>(QStringLiteral("shortcutAlert")); }
};

struct TitleCase {
    const char* name;
    bool firstRun;
    bool granted;
    const char* title;
};

void PrintTo(const TitleCase& row, std::ostream* stream) {
    *stream << row.name;
}

class SetupTitleTest : public ::testing::TestWithParam<TitleCase>, protected PanelFixture {};

TEST_P(SetupTitleTest, TellsWhereTheUserIs) {
    if (!GetParam().firstRun)
        completeSetup();
    granted = GetParam().granted;
    open();
    controller->showCaptureShortcutSetup();
    EXPECT_EQ(setup->panel()->title(), QString::fromLatin1(GetParam().title));
}

const TitleCase titleCases[] = {
    {"newUser", true, false, "Welcome to Vistrel"},
    {"newUserWithPermission", true, true, "Welcome to Vistrel"},
    {"returningUserWithoutPermission", false, false, "Screen Access"},
    {"returningUser", false, true, "Capture Shortcut"},
};

INSTANTIATE_TEST_SUITE_P(Table, SetupTitleTest, ::testing::ValuesIn(titleCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(SetupWindowTest, LeadsANewUserFromScreenAccessToTheShortcut) {
    open();
    controller->showSettings();
    EXPECT_TRUE(setup->isVisible());
    EXPECT_TRUE(find(*setup, "openSystemSettings")->isHidden()) << "nothing was asked for yet";
    click(*setup, "allowScreenCapture");
    EXPECT_FALSE(find(*setup, "openSystemSettings")->isHidden());
    EXPECT_TRUE(find<QWidget>(*setup, "screenAccessGranted")->isHidden());

    granted = true;
    QTest::keyClick(setup.get(), Qt::Key_Return);
    settle();
    EXPECT_EQ(controller->onboarding().step, OnboardingFlow::Step::shortcut);
    EXPECT_EQ(setup->size(), setup->panel()->size());
    QTest::keyClick(setup.get(), Qt::Key_Return);
    settle();
    EXPECT_FALSE(setup->isVisible());
    EXPECT_FALSE(settings->isVisible()) << "a first setup ends in silence";
    EXPECT_FALSE(controller->needsSetup());
}

TEST_F(SetupWindowTest, TheLinkOpensTheDesktopsPageWithOurWindowsAway) {
    defaults.setBoolean(QStringLiteral("screenAccessSetupPending"), true);
    open();
    controller->showSettings();
    click(*setup, "openSystemSettings");
    EXPECT_FALSE(setup->isVisible());
    EXPECT_EQ(pages.asked, std::vector{SettingsPage::screenRecording});
}

TEST_F(SetupWindowTest, ThePrivacySheetIsDismissedAlone) {
    open();
    controller->showSettings();
    click(*setup, "privacyPolicyButton");
    ASSERT_TRUE(setup->onboarding().showingPrivacy());
    auto* sheet = setup->findChild<PrivacyPolicyView*>();
    EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);
    QTest::keyClick(sheet, Qt::Key_Return);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(setup->onboarding().showingPrivacy());
    EXPECT_TRUE(setup->isVisible());
}

TEST_F(SetupWindowTest, ThePrivacyTextNamesThePublisher) {
    const auto named =
        PrivacyPolicyView::sections({QStringLiteral("updates.example"), QStringLiteral("Example")});
    const auto general = PrivacyPolicyView::sections({});
    ASSERT_EQ(named.size(), 6U);
    EXPECT_TRUE(
        named[3].paragraphs.front().startsWith(QStringLiteral("Update checks contact updates.example.")));
    EXPECT_TRUE(
        named[4].paragraphs.back().contains(QStringLiteral("to Example through its hosting provider")));
    EXPECT_TRUE(
        general[3].paragraphs.front().startsWith(QStringLiteral("Update checks contact the update server.")));
    EXPECT_TRUE(
        general[4].paragraphs.back().contains(QStringLiteral("to Orvane through its hosting provider")));
}

TEST_F(SetupWindowTest, WhatIsShownStaysWhileItIsVisible) {
    open();
    controller->showSettings();
    const OnboardingView* before = &setup->onboarding();
    controller->applicationDidBecomeActive();
    EXPECT_EQ(&setup->onboarding(), before);
    setup->close();
    controller->showSettings();
    EXPECT_TRUE(setup->isVisible());
}

// The chooser

TEST_F(SetupWindowTest, TheChooserOpensOnWhatIsRegistered) {
    EXPECT_EQ(openChooser().choice(), ScreenshotShortcutSettings::Choice::keepDefault);
    EXPECT_TRUE(applyEnabled());
    setup->close();
    ASSERT_TRUE(controller->choose(p));
    controller->showCaptureShortcutSetup();
    auto* chooser = static_cast<ScreenshotShortcutSettings*>(setup->onboarding().page());
    EXPECT_EQ(chooser->choice(), ScreenshotShortcutSettings::Choice::custom);
    EXPECT_TRUE(chooser->customChosen());
    EXPECT_TRUE(applyEnabled());
    EXPECT_EQ(text(*setup, "currentShortcut"), QStringLiteral("Default: ⌘⇧9. Current shortcut: ⇧⌘P."));
}

TEST_F(SetupWindowTest, ApplyWaitsForAnAcceptedRecordingAndForPermission) {
    openChooser();
    auto* recorder = find(*setup, "recordShortcut");
    EXPECT_TRUE(recorder->isHidden() || !recorder->isVisible());
    click(*setup, "chooseCustomShortcut");
    EXPECT_TRUE(recorder->isVisible());
    EXPECT_FALSE(applyEnabled());
    click(*setup, "keepDefaultShortcut");
    EXPECT_TRUE(applyEnabled());
    click(*setup, "chooseCustomShortcut");

    constexpr quint32 scanP = 33;
    const auto press = [&] {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_P, Qt::ControlModifier, scanP, 0, 0, QStringLiteral("p"));
        QApplication::sendEvent(recorder, &event);
        settle();
    };
    registrar.refused = {p.keyCode};
    recorder->click();
    EXPECT_TRUE(registrar.live.empty()) << "the chord must reach the recorder";
    press();
    EXPECT_FALSE(applyEnabled());
    ASSERT_NE(alert(), nullptr);
    alert()->close();
    settle();
    EXPECT_FALSE(controller->shortcutAlert());
    EXPECT_FALSE(find<QWidget>(*setup, "shortcutWarning")->isHidden());

    registrar.refused.clear();
    recorder->click();
    press();
    EXPECT_TRUE(applyEnabled());
    EXPECT_TRUE(find<QWidget>(*setup, "shortcutWarning")->isHidden());
    EXPECT_EQ(controller->shortcutLabel(), QStringLiteral("⌃P"));

    granted = false;
    controller->applicationDidBecomeActive();
    EXPECT_EQ(setup->panel()->title(), QStringLiteral("Screen Access"));
}

TEST_F(SetupWindowTest, ApplyWithATakenDefaultTellsAndStays) {
    openChooser();
    ASSERT_TRUE(controller->choose(p));
    registrar.refused = {nine.keyCode};
    click(*setup, "applyCaptureShortcut");
    EXPECT_TRUE(setup->isVisible());
    ASSERT_EQ(setup->findChildren<QMessageBox*>().size(), 1);
    EXPECT_EQ(alert()->text(), QStringLiteral("Capture shortcut wasn't changed"));
    EXPECT_TRUE(alert()->informativeText().endsWith(QStringLiteral("Active in Vistrel: ⇧⌘P.")));
    EXPECT_TRUE(text(*setup, "shortcutMessage").startsWith(QStringLiteral("⇧⌘9 is already registered")));
    alert()->close();

    click(*setup, "openKeyboardShortcuts");
    EXPECT_EQ(pages.asked, std::vector{SettingsPage::keyboardShortcuts});
}

} // namespace
