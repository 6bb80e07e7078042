#include "Desktop/EditorOnDesktop.h"
#include "Desktop/InstalledTree.h"
#include "Support/TLSTestServer.h"
#include "Support/TestFiles.h"

#include <QJsonDocument>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// Holds back its answers until the test gives them.
class ReportService {
public:
    explicit ReportService(const TestAuthority& authority) : server(authority.issue()) {
        server.answer = [this](QTcpSocket& socket, const TLSTestServer::Request&) { waiting = &socket; };
    }

    bool receives(std::size_t count, std::chrono::milliseconds deadline = patience) {
        return waitUntil([&] { return server.requests.size() >= count; }, deadline);
    }
    QJsonObject report(std::size_t index) const {
        return QJsonDocument::fromJson(server.requests[index].body).object();
    }
    QByteArray reportID(std::size_t index) const { return report(index)[u"reportID"].toString().toLatin1(); }
    /// Answers the last request and waits until the program has read the answer and hung up.
    bool answer(int status, const QByteArray& body = {}) {
        TLSTestServer::respond(*waiting, status, body);
        return waitUntil([this] { return server.openConnections == 0; });
    }

    TLSTestServer server;

private:
    QTcpSocket* waiting = nullptr;
};

} // namespace

TEST(ReportFlow, OnePressOneReportThatTellsNothingOfTheUsersWork) {
    constexpr int supportTab = 3;
    const QString secret = u"zebra77"_s;
    const TestAuthority authority;
    ReportService service(authority);
    EditorOnDesktop vistrel;
    const QString certificate = vistrel.session.folder(u"authority.pem"_s);
    writeFile(certificate, authority.certificate().toPem());
    vistrel.session.setEnvironment("SSL_CERT_FILE", certificate.toStdString());
    const InstalledTree tree(vistrel.session.folder(u"installed"_s));
    tree.inform({{u"VistrelReportURL"_s, service.server.url({}).toString()}});
    vistrel.programPath = tree.program();

    // A session: a text is typed, the picture copied, and then another saved under a telling name.
    ASSERT_TRUE(vistrel.edit({100, 100, 400, 300}));
    vistrel.type(u"t"_s);
    vistrel.click({200, 200});
    ASSERT_TRUE(vistrel.waitFor("textEditingStarted"));
    vistrel.type(secret);
    vistrel.key(Key::returnKey, Modifier::control);
    ASSERT_TRUE(vistrel.waitFor("textCommitted"));
    vistrel.copy();
    const QByteArray picture = vistrel.session.clipboard(u"image/png"_s).value_or(QByteArray()).mid(1000, 12);
    ASSERT_EQ(picture.size(), 12);
    ASSERT_TRUE(vistrel.capture() && vistrel.select({100, 100, 200, 150}));
    const xcb_window_t overlay = vistrel.nextFocus();
    vistrel.command('s');
    ASSERT_NE(vistrel.nextFocus(overlay), XCB_NONE);
    vistrel.command('a');
    vistrel.type(vistrel.session.folder(secret + u".png"_s));
    vistrel.key(Key::returnKey);
    ASSERT_TRUE(vistrel.waitFor("captureClosed", 2));

    // Two quick presses. Return elsewhere is no press, not even after the button has had the keyboard.
    ASSERT_TRUE(vistrel.openSettings(supportTab));
    vistrel.key(Key::returnKey);
    for (const ModifierMask direction : {ModifierMask{0}, ModifierMask{Modifier::shift}})
        for (int step = 0; step < 2; ++step)
            vistrel.key(tabKey, direction);
    vistrel.key(Key::returnKey);
    vistrel.key(tabKey);
    vistrel.type(u"it flickers"_s);
    EXPECT_EQ(service.server.connections, 0) << "nothing is sent before the button is pressed";
    vistrel.key(tabKey);
    vistrel.key(Key::returnKey);
    vistrel.key(Key::returnKey);
    ASSERT_TRUE(service.receives(1));
    const TLSTestServer::Request sent = service.server.requests.front();
    EXPECT_EQ(sent.method + ' ' + sent.path, "POST /v1/reports");
    EXPECT_EQ(service.report(0)[u"comment"], u"it flickers"_s);
    for (const char* action : {"textCommitted", "copySucceeded", "saveSucceeded"})
        EXPECT_EQ(service.report(0)[u"counts"][QLatin1String(action)], 1) << action;
    for (const QByteArray& word :
         {secret.toUtf8(), vistrel.session.folder().toUtf8(), QDir::tempPath().toUtf8(), picture,
          picture.toBase64().left(12), picture.toHex(), QByteArray(".png"), QByteArray("IHDR"),
          QByteArray("iVBOR"), qgetenv("HOME"), QSysInfo::machineHostName().toUtf8()})
        EXPECT_TRUE(word.size() < 3 || !sent.body.contains(word)) << word.constData();

    // An outage, and the same report once more.
    ASSERT_TRUE(service.answer(500));
    EXPECT_EQ(service.server.requests.size(), 1U);
    // It can be pressed again once the program has told of the failure; while one is under way, in vain.
    ASSERT_TRUE(waitUntil([&] {
        vistrel.key(Key::returnKey);
        return service.receives(2, std::chrono::seconds(3));
    }));
    EXPECT_EQ(service.server.requests[1].body, sent.body);
    ASSERT_TRUE(service.answer(201, R"({"accepted":true,"reportID":")" + service.reportID(1) + "\"}"));
    // Thanks, with the number for the clipboard.
    EXPECT_TRUE(waitUntil([&] {
        vistrel.key(tabKey, Modifier::shift);
        vistrel.command('a');
        vistrel.command('c');
        return vistrel.session.clipboard(u"UTF8_STRING"_s) == "Report ID: " + service.reportID(0).toLower();
    }));
    EXPECT_EQ(service.server.requests.size(), 2U);
    vistrel.key(Key::returnKey); // "OK" is the default
    ASSERT_TRUE(waitUntil([&] { return vistrel.windows().empty(); }));

    // A page opened again is a new, empty form.
    ASSERT_TRUE(vistrel.openSettings(supportTab));
    vistrel.key(tabKey);
    vistrel.key(tabKey);
    vistrel.key(Key::returnKey);
    ASSERT_TRUE(service.receives(3));
    EXPECT_NE(service.reportID(2), service.reportID(0));
    EXPECT_EQ(service.report(2)[u"comment"], QString());
    EXPECT_EQ(service.report(2)[u"installationID"], service.report(0)[u"installationID"]);
}
