#include "Desktop/EditorOnDesktop.h"
#include "Desktop/InstalledTree.h"
#include "Support/TLSTestServer.h"
#include "VistrelPlatform/Keyboard.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

namespace {

constexpr KeyCode tabKey = 48;
constexpr int supportTab = 3;

/// Holds back its answers until the test gives them.
class ReportService {
public:
    explicit ReportService(const TestAuthority& authority) : server(authority.issue()) {
        server.answer = [this](QTcpSocket& socket, const TLSTestServer::Request&) { waiting = &socket; };
    }

    bool receives(std::size_t count) {
        return waitUntil([&] { return server.requests.size() >= count; });
    }
    QJsonObject report(std::size_t index) const {
        return QJsonDocument::fromJson(server.requests[index].body).object();
    }
    QString reportID(std::size_t index) const {
        return report(index)[QLatin1StringView("reportID")].toString();
    }
    /// Answers the last request and waits until the program has read the answer and hung up.
    bool answer(int status, const QByteArray& body = {}) {
        TLSTestServer::respond(*waiting, status, body);
        return waitUntil([this] { return server.openConnections == 0; });
    }
    bool confirm(std::size_t index) {
        return answer(201, R"({"accepted":true,"reportID":")" + reportID(index).toLatin1() + "\"}");
    }

    TLSTestServer server;

private:
    QTcpSocket* waiting = nullptr;
};

} // namespace

TEST(ReportFlow, OnePressOneReportThatTellsNothingOfTheUsersWork) {
    EditorOnDesktop vistrel;
    const QString secret = QStringLiteral("zebra77");
    const TestAuthority authority;
    ReportService service(authority);
    QFile certificate(vistrel.session.folder(QStringLiteral("authority.pem")));
    ASSERT_TRUE(certificate.open(QIODevice::WriteOnly));
    certificate.write(authority.certificate().toPem());
    certificate.close();
    vistrel.session.setEnvironment("SSL_CERT_FILE", certificate.fileName().toStdString());
    const InstalledTree tree(vistrel.session.folder(QStringLiteral("installed")));
    tree.inform({{QStringLiteral("VistrelReportURL"), service.server.url({}).toString()}});
    vistrel.programPath = tree.program();

    // A session: a text is typed, the picture copied, and then saved under a telling name.
    ASSERT_TRUE(vistrel.edit({100, 100, 400, 300}));
    vistrel.type("t");
    vistrel.click({200, 200});
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("textEditingStarted")));
    vistrel.session.input().type(secret);
    vistrel.session.input().chord(Modifier::control, Key::returnKey);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("textCommitted")));
    vistrel.command('c');
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));
    const QByteArray picture =
        vistrel.session.clipboard(QStringLiteral("image/png")).value_or(QByteArray()).mid(1000, 12);
    ASSERT_EQ(picture.size(), 12);
    ASSERT_TRUE(vistrel.capture());
    vistrel.drag({100, 100}, {300, 250});
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("selectionCreated"), 2));
    const xcb_window_t overlay = vistrel.nextFocus();
    vistrel.command('s');
    ASSERT_NE(vistrel.nextFocus(overlay), XCB_NONE);
    vistrel.command('a');
    vistrel.session.input().type(vistrel.session.folder(secret + QStringLiteral(".png")));
    vistrel.session.input().key(Key::returnKey);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed"), 2));
    EXPECT_EQ(vistrel.actions().count(QStringLiteral("saveSucceeded")), 1);

    // Two quick presses.
    ASSERT_TRUE(vistrel.openSettings(supportTab));
    XTestInput& input = vistrel.session.input();
    input.key(tabKey);
    input.type(QStringLiteral("it flickers"));
    EXPECT_EQ(service.server.connections, 0) << "nothing is sent before the button is pressed";
    input.key(tabKey);
    input.key(Key::returnKey);
    input.key(Key::returnKey);
    ASSERT_TRUE(service.receives(1));
    const TLSTestServer::Request sent = service.server.requests.front();
    EXPECT_EQ(sent.method, QByteArray("POST"));
    EXPECT_EQ(sent.path, QByteArray("/v1/reports"));
    const QJsonObject report = service.report(0);
    EXPECT_EQ(report[QLatin1StringView("comment")].toString(), QStringLiteral("it flickers"));
    const QJsonObject counts = report[QLatin1StringView("counts")].toObject();
    for (const char* action : {"textCommitted", "copySucceeded", "saveSucceeded"})
        EXPECT_EQ(counts[QLatin1StringView(action)].toInt(), 1) << action;
    for (const QByteArray& word :
         {secret.toUtf8(), vistrel.session.folder().toUtf8(), QDir::tempPath().toUtf8(), picture,
          picture.toBase64().left(12), picture.toHex(), QByteArray(".png"), QByteArray("IHDR"),
          QByteArray("iVBOR"), qgetenv("HOME"), QSysInfo::machineHostName().toUtf8()})
        EXPECT_TRUE(word.size() < 3 || !sent.body.contains(word)) << word.constData();

    // An outage, and the same report once more.
    ASSERT_TRUE(service.answer(500));
    EXPECT_EQ(service.server.requests.size(), 1U);
    input.key(Key::returnKey);
    ASSERT_TRUE(service.receives(2));
    EXPECT_EQ(service.server.requests[1].body, sent.body);
    ASSERT_TRUE(service.confirm(1));

    // Thanks, with the number for the clipboard.
    EXPECT_TRUE(waitUntil([&] {
        input.chord(Modifier::shift, tabKey);
        vistrel.command('a');
        vistrel.command('c');
        return vistrel.session.clipboard(QStringLiteral("UTF8_STRING")) ==
               "Report ID: " + service.reportID(0).toLower().toUtf8();
    }));
    EXPECT_EQ(service.server.requests.size(), 2U);
    input.key(Key::returnKey); // "OK" is the default
    ASSERT_TRUE(waitUntil([&] { return vistrel.windows().empty(); }));

    // A page opened again is a new, empty form.
    ASSERT_TRUE(vistrel.openSettings(supportTab));
    input.key(Key::returnKey);
    ASSERT_TRUE(service.receives(3));
    EXPECT_NE(service.reportID(2), service.reportID(0));
    EXPECT_EQ(service.report(2)[QLatin1StringView("comment")].toString(), QString());
    EXPECT_EQ(service.report(2)[QLatin1StringView("installationID")],
              service.report(0)[QLatin1StringView("installationID")]);
}
