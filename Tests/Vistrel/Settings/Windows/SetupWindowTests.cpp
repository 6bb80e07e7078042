#include "Vistrel/Settings/Windows/PanelFixture.h"

#include <QMessageBox>

using namespace Qt::StringLiterals;

namespace {

class SetupWindowTest : public ::testing::Test, protected PanelFixture {};

TEST_F(SetupWindowTest, ApplyWithATakenDefaultTellsAndStays) {
    completeSetup();
    open();
    controller->showCaptureShortcutSetup();
    ASSERT_TRUE(controller->choose(p));
    EXPECT_EQ(text(*setup, "currentShortcut"), u"Default: ⌘⇧9. Current shortcut: ⇧⌘P."_s);
    registrar.refused = {nine.keyCode};
    click(*setup, "applyCaptureShortcut");
    EXPECT_TRUE(setup->isVisible());
    const auto alerts = setup->findChildren<QMessageBox*>();
    ASSERT_EQ(alerts.size(), 1);
    EXPECT_EQ(alerts.first()->text(), u"Capture shortcut wasn't changed"_s);
    EXPECT_TRUE(alerts.first()->informativeText().endsWith(u"Active in Vistrel: ⇧⌘P."_s));
    EXPECT_TRUE(text(*setup, "shortcutMessage").startsWith(u"⇧⌘9 is already registered"_s));
    alerts.first()->close();
}

} // namespace
