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

TEST_F(StatusItemTest, AppearsWithTheFirstHostThatComes) {
    EXPECT_FALSE(item->isReachable());
    EXPECT_TRUE(titles().isEmpty()) << "nothing is made before it can be seen";
    embedding.setPresent(true);
    EXPECT_TRUE(item->isReachable());
    EXPECT_EQ(titles().size(), 6);
    embedding.setPresent(false);
    EXPECT_FALSE(item->isReachable());
}

TEST_F(StatusItemTest, LeftClicksCaptureUnlessTheyCloseTheMenu) {
    bus.setPresent(true);
    item->activate(QSystemTrayIcon::Trigger);
    EXPECT_EQ(begun.size(), 1U);
    item->activate(QSystemTrayIcon::Context);
    item->activate(QSystemTrayIcon::MiddleClick);
    item->activate(QSystemTrayIcon::DoubleClick);
    EXPECT_EQ(begun.size(), 1U);

    item->contextMenu().popup({10, 10});
    item->activate(QSystemTrayIcon::Trigger);
    item->contextMenu().hide();
    item->activate(QSystemTrayIcon::Trigger);
    EXPECT_EQ(begun.size(), 1U);
    QApplication::processEvents();
    item->activate(QSystemTrayIcon::Trigger);
    EXPECT_EQ(begun.size(), 2U);
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

TEST_F(StatusItemTest, IconsFollowThePalette) {
    bus.setPresent(true);
    const auto ink = [this] {
        const QImage image = action(StatusMenu::Command::settings)
                                 ->icon()
                                 .pixmap(18, 18)
                                 .toImage()
                                 .convertToFormat(QImage::Format_ARGB32);
        int brightest = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (qAlpha(image.pixel(x, y)) > 200)
                    brightest = std::max(brightest, qGray(image.pixel(x, y)));
            }
        }
        return brightest;
    };
    const QPalette before = QApplication::palette();
    EXPECT_LT(ink(), 100);
    QPalette dark(Qt::white, QColor(40, 40, 40), Qt::gray, Qt::black, Qt::darkGray, Qt::white, Qt::black);
    QApplication::setPalette(dark);
    QApplication::processEvents();
    EXPECT_GT(ink(), 200);
    QApplication::setPalette(before);
}

} // namespace
