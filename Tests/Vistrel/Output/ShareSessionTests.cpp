#include "Output/ScreenshotShareSession.h"

#include <QGuiApplication>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using State = ScreenshotShareSession::State;

ShareService service(const char* identifier, const char* title, bool canPerform = true) {
    QPixmap large(64, 64);
    large.fill(Qt::red);
    return {QString::fromLatin1(identifier), QString::fromLatin1(title), QIcon(large), canPerform};
}

class ShareSessionTests : public ::testing::Test {
protected:
    ShareSessionTests() { start(); }

    void start() {
        ScreenshotShareSession::Behaviour behaviour;
        behaviour.servicesForItems = [this](const QImage&) { return offered; };
        behaviour.performService = [this](const ShareService& chosen, const QImage& image,
                                          ScreenshotShareSession&) {
            performed << chosen.identifier;
            performedSize = image.size();
        };
        behaviour.openExtensions = [this](ScreenshotShareSession&) { return settingsOpen; };
        session = std::make_unique<ScreenshotShareSession>(QImage(30, 20, QImage::Format_RGB32), behaviour);
        session->onChooseService = [this] { events << QStringLiteral("choose"); };
        session->onFinish = [this](bool shared) {
            events << (shared ? QStringLiteral("shared") : QStringLiteral("not shared"));
        };
    }

    static void setApplicationState(Qt::ApplicationState state) {
        Q_EMIT qGuiApp->applicationStateChanged(state);
    }

    std::vector<ShareService> offered{service("a", "First & Co"), service("b", "Unable", false),
                                      service("c", "Third")};
    bool settingsOpen = true;
    QStringList performed;
    QSize performedSize;
    QStringList events;
    std::unique_ptr<ScreenshotShareSession> session;
};

struct MenuCase {
    const char* name;
    std::vector<ShareService> (*offered)();
    QStringList titles;
};

class ShareMenuTests : public ShareSessionTests, public ::testing::WithParamInterface<MenuCase> {};

TEST_P(ShareMenuTests, listsWhatCanTakeThePictureThenTheExtensions) {
    offered = GetParam().offered();
    const auto menu = session->makeMenu();
    QStringList titles;
    for (const QAction* action : menu->actions()) {
        EXPECT_TRUE(action->isEnabled());
        EXPECT_TRUE(action->shortcut().isEmpty());
        titles << (action->isSeparator() ? QStringLiteral("---") : action->text());
    }
    EXPECT_EQ(titles, GetParam().titles);
}

INSTANTIATE_TEST_SUITE_P(Menus, ShareMenuTests,
                         ::testing::Values(MenuCase{"services",
                                                    [] {
                                                        return std::vector{service("a", "First & Co"),
                                                                           service("b", "Unable", false),
                                                                           service("c", "Third")};
                                                    },
                                                    {QStringLiteral("First && Co"), QStringLiteral("Third"),
                                                     QStringLiteral("---"),
                                                     QStringLiteral("Edit Extensions…")}},
                                           MenuCase{"none",
                                                    [] { return std::vector<ShareService>(); },
                                                    {QStringLiteral("Edit Extensions…")}},
                                           MenuCase{"noneThatCan",
                                                    [] { return std::vector{service("b", "Unable", false)}; },
                                                    {QStringLiteral("Edit Extensions…")}}),
                         [](const auto& entry) { return std::string(entry.param.name); });

TEST_F(ShareSessionTests, imagesAreEighteenPointsWhateverTheServiceHas) {
    QPixmap small(9, 9);
    small.fill(Qt::blue);
    offered = {service("a", "Large"),
               {QStringLiteral("s"), QStringLiteral("Small"), QIcon(small)},
               {QStringLiteral("n"), QStringLiteral("None"), QIcon()}};
    const auto menu = session->makeMenu();
    const auto actions = menu->actions();
    for (int index : {0, 1}) {
        const QIcon icon = actions.at(index)->icon();
        ASSERT_EQ(icon.availableSizes(), QList{QSize(18, 18)}) << index;
        EXPECT_EQ(icon.pixmap(18, 18).toImage().pixelColor(9, 9),
                  index == 0 ? QColor(Qt::red) : QColor(Qt::blue));
    }
    EXPECT_TRUE(actions.at(2)->icon().isNull());
}

TEST_F(ShareSessionTests, onlyTheChosenServiceEndsTheSession) {
    session->choose(offered[0]);
    EXPECT_EQ(session->state(), State::sharing);
    session->choose(offered[2]);
    session->editExtensions();
    EXPECT_EQ(performed, QStringList(QStringLiteral("a")));
    EXPECT_EQ(performedSize, QSize(30, 20));
    session->didShare(offered[2]);
    session->didFailToShare(offered[2]);
    session->didEditExtensions();
    EXPECT_EQ(events, QStringList(QStringLiteral("choose")));
    session->didShare(offered[0]);
    session->didFailToShare(offered[0]);
    session->finish(false);
    EXPECT_EQ(events, (QStringList{QStringLiteral("choose"), QStringLiteral("shared")}));
    EXPECT_EQ(session->state(), State::finished);
}

TEST_F(ShareSessionTests, failureOfTheServiceEndsItAsNotShared) {
    session->choose(offered[0]);
    session->didFailToShare(offered[0]);
    EXPECT_EQ(events, (QStringList{QStringLiteral("choose"), QStringLiteral("not shared")}));
}

TEST_F(ShareSessionTests, reportsBeforeAChoiceAreIgnored) {
    session->didShare(offered[0]);
    session->didEditExtensions();
    setApplicationState(Qt::ApplicationInactive);
    setApplicationState(Qt::ApplicationActive);
    EXPECT_EQ(session->state(), State::choosing);
    EXPECT_TRUE(events.isEmpty());
}

TEST_F(ShareSessionTests, comingBackEndsEditingOnlyAfterLeaving) {
    session->editExtensions();
    setApplicationState(Qt::ApplicationActive);
    EXPECT_EQ(session->state(), State::editingExtensions);
    setApplicationState(Qt::ApplicationInactive);
    EXPECT_EQ(session->state(), State::editingExtensions);
    setApplicationState(Qt::ApplicationActive);
    setApplicationState(Qt::ApplicationInactive);
    setApplicationState(Qt::ApplicationActive);
    EXPECT_EQ(events, (QStringList{QStringLiteral("choose"), QStringLiteral("not shared")}));
}

TEST_F(ShareSessionTests, closingTheSettingsEndsEditing) {
    session->editExtensions();
    session->didEditExtensions();
    EXPECT_EQ(events, (QStringList{QStringLiteral("choose"), QStringLiteral("not shared")}));
}

TEST_F(ShareSessionTests, settingsThatCannotBeOpenedEndEditingAtOnce) {
    settingsOpen = false;
    session->editExtensions();
    EXPECT_EQ(session->state(), State::finished);
    EXPECT_EQ(events, (QStringList{QStringLiteral("choose"), QStringLiteral("not shared")}));
}

TEST_F(ShareSessionTests, cancelCallsNobody) {
    for (const bool sharing : {false, true}) {
        start();
        events.clear();
        if (sharing)
            session->choose(offered[0]);
        session->cancel();
        session->finish(true);
        EXPECT_EQ(session->state(), State::finished);
        EXPECT_EQ(events, sharing ? QStringList(QStringLiteral("choose")) : QStringList());
    }
}

// The menu on a window

class ShareShownTests : public ShareSessionTests {
protected:
    ShareShownTests() {
        window.resize(400, 300);
        anchor.setParent(&window);
        anchor.setGeometry(50, 60, 40, 30);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        session->show(anchor);
    }
    static QMenu* menu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QWidget window;
    QWidget anchor;
};

TEST_F(ShareShownTests, menuStartsAtTheAnchorsCornerWithNothingPreselected) {
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(menu()->pos(), anchor.mapToGlobal(QPoint(0, 0)));
    EXPECT_EQ(menu()->activeAction(), nullptr);
}

TEST_F(ShareShownTests, escapeDismissesAndEndsTheSession) {
    QTest::keyClick(menu(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(events, QStringList(QStringLiteral("not shared")));
    EXPECT_EQ(menu(), nullptr);
}

TEST_F(ShareShownTests, aChoiceFromTheKeyboardIsNotADismissal) {
    QTest::keyClick(menu(), Qt::Key_Down);
    QTest::keyClick(menu(), Qt::Key_Return);
    settle();
    EXPECT_EQ(performed, QStringList(QStringLiteral("a")));
    EXPECT_EQ(session->state(), State::sharing);
}

TEST_F(ShareShownTests, aClickOnTheLastEntryEditsExtensions) {
    QTest::mouseClick(menu(), Qt::LeftButton, {}, menu()->actionGeometry(menu()->actions().last()).center());
    settle();
    EXPECT_EQ(session->state(), State::editingExtensions);
    EXPECT_EQ(events, QStringList(QStringLiteral("choose")));
}

TEST_F(ShareShownTests, cancelTakesTheMenuAway) {
    session->cancel();
    settle();
    EXPECT_EQ(menu(), nullptr);
    EXPECT_TRUE(events.isEmpty());
}

TEST_F(ShareShownTests, theOwnerMayDestroyTheSessionFromItsCallbacks) {
    settingsOpen = false;
    session->onFinish = [this](bool) {
        events << QStringLiteral("destroyed");
        session.reset();
    };
    QTest::mouseClick(menu(), Qt::LeftButton, {}, menu()->actionGeometry(menu()->actions().last()).center());
    settle();
    EXPECT_EQ(session, nullptr);
    EXPECT_EQ(events, (QStringList{QStringLiteral("choose"), QStringLiteral("destroyed")}));
    EXPECT_EQ(menu(), nullptr);
}

TEST_F(ShareShownTests, theWindowMayGoWhileTheMenuIsOpen) {
    delete menu();
    settle();
    EXPECT_EQ(events, QStringList(QStringLiteral("not shared")));
}

} // namespace
