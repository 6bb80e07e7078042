#include "Output/ScreenshotShareSession.h"

#include <QApplication>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using State = ScreenshotShareSession::State;

class ShareSessionTests : public ::testing::Test {
protected:
    ShareSessionTests() {
        ScreenshotShareSession::Behaviour behaviour;
        behaviour.servicesForItems = [this](const QImage&) { return offered; };
        behaviour.performService = [this](const ShareService& chosen, const QImage& image,
                                          ScreenshotShareSession&) {
            performed << chosen.identifier;
            EXPECT_EQ(image.size(), QSize(30, 20));
        };
        behaviour.openExtensions = [](ScreenshotShareSession&) { return false; };
        session = std::make_unique<ScreenshotShareSession>(QImage(30, 20, QImage::Format_RGB32), behaviour);
        session->onChooseService = [this] { events << u"choose"_s; };
        session->onFinish = [this](bool shared) { events << (shared ? u"shared"_s : u"not shared"_s); };
    }

    const std::vector<ShareService> offered{{u"a"_s, u"First & Co"_s, QIcon(), true},
                                            {u"b"_s, u"Second"_s, QIcon(), true}};
    QStringList performed;
    QStringList events;
    std::unique_ptr<ScreenshotShareSession> session;
};

TEST_F(ShareSessionTests, onlyTheChosenServiceEndsTheSession) {
    session->didShare(offered[0]);
    EXPECT_EQ(session->state(), State::choosing) << "nothing was chosen yet";
    session->choose(offered[0]);
    EXPECT_EQ(session->state(), State::sharing);
    session->choose(offered[1]);
    session->editExtensions();
    EXPECT_EQ(performed, QStringList(u"a"_s));
    session->didShare(offered[1]);
    session->didFailToShare(offered[1]);
    session->didEditExtensions();
    EXPECT_EQ(events, QStringList(u"choose"_s));
    session->didShare(offered[0]);
    session->finish(false);
    EXPECT_EQ(events, (QStringList{u"choose"_s, u"shared"_s}));
    EXPECT_EQ(session->state(), State::finished);
}

class ShareShownTests : public ShareSessionTests {
protected:
    ShareShownTests() {
        window.resize(400, 300);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        session->show(window);
    }
    static QMenu* menu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QWidget window;
};

TEST_F(ShareShownTests, theOwnerMayDestroyTheSessionFromItsCallbacks) {
    session->onFinish = [this](bool) {
        events << u"destroyed"_s;
        session.reset();
    };
    QTest::mouseClick(menu(), Qt::LeftButton, {}, menu()->actionGeometry(menu()->actions().last()).center());
    settle();
    EXPECT_EQ(session, nullptr);
    EXPECT_EQ(events, (QStringList{u"choose"_s, u"destroyed"_s}));
    EXPECT_EQ(menu(), nullptr);
}

TEST_F(ShareShownTests, theWindowMayGoWhileTheMenuIsOpen) {
    delete menu();
    settle();
    EXPECT_EQ(events, QStringList(u"not shared"_s));
}

} // namespace
