#include "Vistrel/App/AppControllerFixture.h"

#include "App/StatusItem.h"

#include <QApplication>

namespace {

class Host : public TrayHost {
public:
    bool isPresent() const override { return present; }
    void setPresent(bool isPresent) {
        present = isPresent;
        Q_EMIT changed();
    }

private:
    bool present = false;
};

class StatusItemTest : public ::testing::Test, protected AppControllerFixture {
protected:
    StatusItemTest() {
        completeSetup();
        launch();
        item = std::make_unique<StatusItem>(*controller, std::vector<TrayHost*>{&bus, &embedding});
    }

    QStringList titles() {
        QStringList list;
        for (const QAction* action : item->contextMenu().actions())
            list << action->text();
        return list;
    }
    QAction* action(StatusMenu::Command command) {
        const auto& entries = controller->statusMenu();
        for (std::size_t index = 0; index < entries.size(); ++index) {
            if (entries[index].command == command)
                return item->contextMenu().actions().at(static_cast<qsizetype>(index));
        }
        return nullptr;
    }

    void choose(StatusMenu::Command command) {
        action(command)->trigger();
        QApplication::processEvents();
    }

    Host bus;
    Host embedding;
    std::unique_ptr<StatusItem> item;
};

TEST_F(StatusItemTest, LeftClicksCaptureUnlessTheyCloseTheMenu) {
    bus.setPresent(true);
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
    bus.setPresent(true);
    ASSERT_TRUE(controller->choose({22, 768, QStringLiteral("&")}));
    EXPECT_EQ(titles().front(), QStringLiteral("Capture Screenshot  ⇧⌘&&")) << "no mnemonic";
    EXPECT_FALSE(item->contextMenu().actions().at(1)->isEnabled());
    EXPECT_EQ(action(StatusMenu::Command::settings)->shortcut(), QKeySequence(QStringLiteral("Ctrl+,")));
    EXPECT_EQ(action(StatusMenu::Command::quit)->shortcut(), QKeySequence(QStringLiteral("Ctrl+Q")));
    EXPECT_FALSE(action(StatusMenu::Command::toggleLaunchAtLogin)->isChecked());

    // Changed elsewhere: seen when the menu opens.
    loginItem.now = LoginItemStatus::requiresApproval;
    item->contextMenu().popup({10, 10});
    EXPECT_EQ(titles().size(), 7);
    EXPECT_EQ(titles().at(4), QStringLiteral("Approve Launch at Login…"));
    item->contextMenu().hide();

    choose(StatusMenu::Command::toggleLaunchAtLogin);
    EXPECT_EQ(loginItem.now, LoginItemStatus::notRegistered);
    EXPECT_EQ(titles().size(), 6);
    EXPECT_FALSE(action(StatusMenu::Command::toggleLaunchAtLogin)->isChecked())
        << "what the menu shows is what is, whatever the click did to the mark";
    loginItem.fault = Error{ErrorDomain::system, 13, QStringLiteral("Permission denied")};
    choose(StatusMenu::Command::toggleLaunchAtLogin);
    EXPECT_FALSE(action(StatusMenu::Command::toggleLaunchAtLogin)->isChecked());
}

} // namespace
