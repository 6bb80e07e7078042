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

} // namespace
