#include "Vistrel/Settings/Windows/PanelFixture.h"

#include "Settings/Windows/AppPanel.h"
#include "Settings/Windows/PrivacyPolicyView.h"

#include <QMessageBox>

namespace {

class SetupWindowTest : public ::testing::Test, protected PanelFixture {
protected:
    /// The chooser, for a user who comes from the settings.
    void openChooser() {
        completeSetup();
        open();
        controller->showCaptureShortcutSetup();
    }
    bool applyEnabled() { return find(*setup, "applyCaptureShortcut")->isEnabled(); }
    QMessageBox* alert() { return setup->findChild<QMessageBox*>(QStringLiteral("shortcutAlert")); }
};

TEST(SetupTitleTest, TellsWhereTheUserIs) {
    struct TitleCase {
        bool firstRun, granted;
        const char* title;
    };
    for (const TitleCase& row : {TitleCase{true, false, "Welcome to Vistrel"},
                                 {true, true, "Welcome to Vistrel"},
                                 {false, false, "Screen Access"},
                                 {false, true, "Capture Shortcut"}}) {
        PanelFixture panel;
        if (!row.firstRun)
            panel.completeSetup();
        panel.granted = row.granted;
        panel.open();
        panel.controller->showCaptureShortcutSetup();
        EXPECT_EQ(panel.setup->panel()->title(), QString::fromLatin1(row.title));
    }
}

TEST_F(SetupWindowTest, ScreenAccessLeadsToTheDesktopsPageAndThePrivacySheetIsDismissedAlone) {
    open();
    controller->showSettings();
    click(*setup, "privacyPolicyButton");
    ASSERT_TRUE(setup->onboarding().showingPrivacy());
    QTest::keyClick(setup->findChild<PrivacyPolicyView*>(), Qt::Key_Return);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(setup->onboarding().showingPrivacy());
    EXPECT_TRUE(setup->isVisible());

    EXPECT_TRUE(find(*setup, "openSystemSettings")->isHidden()) << "nothing was asked for yet";
    click(*setup, "allowScreenCapture");
    EXPECT_FALSE(find(*setup, "openSystemSettings")->isHidden());
    click(*setup, "openSystemSettings");
    EXPECT_FALSE(setup->isVisible());
    EXPECT_EQ(pages.asked, std::vector{SettingsPage::screenRecording});
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

TEST_F(SetupWindowTest, ApplyWaitsForAnAcceptedRecordingAndForPermission) {
    openChooser();
    auto* recorder = find(*setup, "recordShortcut");
    click(*setup, "chooseCustomShortcut");
    EXPECT_TRUE(recorder->isVisible());
    EXPECT_FALSE(applyEnabled());

    constexpr quint32 scanP = 33;
    const auto press = [&] {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_P, Qt::ControlModifier, scanP, 0, 0, QStringLiteral("p"));
        QApplication::sendEvent(recorder, &event);
        settle();
    };
    registrar.refused = {p.keyCode};
    recorder->click();
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
    EXPECT_EQ(text(*setup, "currentShortcut"), QStringLiteral("Default: ⌘⇧9. Current shortcut: ⇧⌘P."));
    registrar.refused = {nine.keyCode};
    click(*setup, "applyCaptureShortcut");
    EXPECT_TRUE(setup->isVisible());
    ASSERT_EQ(setup->findChildren<QMessageBox*>().size(), 1);
    EXPECT_EQ(alert()->text(), QStringLiteral("Capture shortcut wasn't changed"));
    EXPECT_TRUE(alert()->informativeText().endsWith(QStringLiteral("Active in Vistrel: ⇧⌘P.")));
    EXPECT_TRUE(text(*setup, "shortcutMessage").startsWith(QStringLiteral("⇧⌘9 is already registered")));
    alert()->close();
}

} // namespace
