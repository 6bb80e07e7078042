#include "Vistrel/App/AppControllerFixture.h"

#include "App/StatusItem.h"

#include <QApplication>

using namespace Qt::StringLiterals;

namespace {

class Host : public TrayHost {
public:
    bool isPresent() const override { return true; }
};

class StatusItemTest : public ::testing::Test, protected AppControllerFixture {
protected:
    StatusItemTest() {
        completeSetup();
        launch();
        item = std::make_unique<StatusItem>(*controller, std::vector<TrayHost*>{&host});
    }

    QStringList titles() {
        QStringList list;
        for (const QAction* action : item->contextMenu().actions())
            list << action->text();
        return list;
    }
    const QAction* launchAtLogin() { return item->contextMenu().actions().at(3); }
    void toggleLaunchAtLogin() {
        item->contextMenu().actions().at(3)->trigger();
        QApplication::processEvents();
    }

    Host host;
    std::unique_ptr<StatusItem> item;
};

TEST_F(StatusItemTest, LeftClicksCaptureUnlessTheyCloseTheMenu) {
    item->activate(QSystemTrayIcon::Trigger);
    EXPECT_EQ(begun, 1);
    item->activate(QSystemTrayIcon::Context);
    item->activate(QSystemTrayIcon::MiddleClick);
    item->activate(QSystemTrayIcon::DoubleClick);
    EXPECT_EQ(begun, 1);

    item->contextMenu().popup({10, 10});
    item->activate(QSystemTrayIcon::Trigger);
    item->contextMenu().hide();
    item->activate(QSystemTrayIcon::Trigger);
    EXPECT_EQ(begun, 1);
    QApplication::processEvents();
    item->activate(QSystemTrayIcon::Trigger);
    EXPECT_EQ(begun, 2);
}

TEST_F(StatusItemTest, TheMenuFollowsTheController) {
    ASSERT_TRUE(controller->choose({22, 768, u"&"_s}));
    EXPECT_EQ(titles().front(), u"Capture Screenshot  ⇧⌘&&"_s) << "no mnemonic";

    // Changed elsewhere: seen when the menu opens.
    loginItem.now = LoginItemStatus::requiresApproval;
    item->contextMenu().popup({10, 10});
    EXPECT_EQ(titles().at(4), u"Approve Launch at Login…"_s);
    item->contextMenu().hide();

    toggleLaunchAtLogin();
    EXPECT_EQ(loginItem.now, LoginItemStatus::notRegistered);
    EXPECT_EQ(titles().size(), 6);
    EXPECT_FALSE(launchAtLogin()->isChecked())
        << "what the menu shows is what is, whatever the click did to the mark";
    loginItem.fault = Error{ErrorDomain::system, 13, u"Permission denied"_s};
    toggleLaunchAtLogin();
    EXPECT_FALSE(launchAtLogin()->isChecked());
}

} // namespace
