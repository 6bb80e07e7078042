#include "Vistrel/Settings/Windows/PanelFixture.h"

#include "Settings/Windows/AppPanel.h"
#include "Settings/Windows/PrivacyPolicyView.h"

#include <QMessageBox>

using namespace Qt::StringLiterals;

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
    QMessageBox* alert() { return setup->findChild<QMessageBox*>(u"shortcutAlert"_s); }
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
    const PrivacyPolicyView::Publisher example{u"updates.example"_s, u"Example"_s};
    for (const auto& [publisher, contact, receiver] :
         {std::tuple(example, "updates.example", "Example"), {{}, "the update server", "Orvane"}}) {
        const auto sections = PrivacyPolicyView::sections(publisher);
        EXPECT_TRUE(sections[3].paragraphs.front().startsWith(
            u"Update checks contact %1."_s.arg(QLatin1String(contact))));
        EXPECT_TRUE(sections[4].paragraphs.back().contains(
            u"to %1 through its hosting provider"_s.arg(QLatin1String(receiver))));
    }
}

TEST_F(SetupWindowTest, ApplyWaitsForAnAcceptedRecording) {
    openChooser();
    auto* recorder = find(*setup, "recordShortcut");
    click(*setup, "chooseCustomShortcut");
    EXPECT_TRUE(recorder->isVisible());
    EXPECT_FALSE(applyEnabled());

    constexpr quint32 scanP = 33;
    const auto press = [&] {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_P, Qt::ControlModifier, scanP, 0, 0, u"p"_s);
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
    EXPECT_FALSE(find<QWidget>(*setup, "shortcutWarning")->isHidden());

    registrar.refused.clear();
    recorder->click();
    press();
    EXPECT_TRUE(applyEnabled());
    EXPECT_TRUE(find<QWidget>(*setup, "shortcutWarning")->isHidden());
    EXPECT_EQ(controller->shortcutLabel(), u"⌃P"_s);
}

TEST_F(SetupWindowTest, ApplyWithATakenDefaultTellsAndStays) {
    openChooser();
    ASSERT_TRUE(controller->choose(p));
    EXPECT_EQ(text(*setup, "currentShortcut"), u"Default: ⌘⇧9. Current shortcut: ⇧⌘P."_s);
    registrar.refused = {nine.keyCode};
    click(*setup, "applyCaptureShortcut");
    EXPECT_TRUE(setup->isVisible());
    ASSERT_EQ(setup->findChildren<QMessageBox*>().size(), 1);
    EXPECT_EQ(alert()->text(), u"Capture shortcut wasn't changed"_s);
    EXPECT_TRUE(alert()->informativeText().endsWith(u"Active in Vistrel: ⇧⌘P."_s));
    EXPECT_TRUE(text(*setup, "shortcutMessage").startsWith(u"⇧⌘9 is already registered"_s));
    alert()->close();
}

} // namespace
