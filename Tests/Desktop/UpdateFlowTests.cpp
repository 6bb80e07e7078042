#include "Desktop/InstalledTree.h"
#include "Desktop/VistrelOnDesktop.h"
#include "Support/TLSTestServer.h"
#include "Support/TestFiles.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// An installed copy, a publisher with a key of their own, and their server.
class UpdateFlow : public ::testing::Test {
protected:
    UpdateFlow() {
        writeFile(vistrel.session.folder(u"authority.pem"_s), authority.certificate().toPem());
        const QByteArray publicKey = signUpdate({u"keys"_s, key}).trimmed();
        EXPECT_FALSE(QFile::permissions(key) & (QFile::ReadGroup | QFile::ReadOther));
        tree.inform({{u"CFBundleShortVersionString"_s, u"1.0"_s},
                     {u"SUFeedURL"_s, server.url(u"/feed.xml"_s).toString()},
                     {u"SUPublicEDKey"_s, QString::fromLatin1(publicKey)}});
        vistrel.programPath = tree.program();
        server.answer = [this](QTcpSocket& socket, const TLSTestServer::Request& request) {
            const QByteArray body = published.value(request.path);
            if (!body.isEmpty()) // nothing published under the name: no answer at all
                TLSTestServer::respond(socket, 200, body);
        };
    }

    static QByteArray signUpdate(const QStringList& arguments) {
        return InstalledTree::run(QStringLiteral(VISTREL_SOURCE_DIR "/Scripts/sign-update"), arguments);
    }
    void trustTheServer() {
        vistrel.session.setEnvironment("SSL_CERT_FILE",
                                       vistrel.session.folder(u"authority.pem"_s).toStdString());
    }
    /// Publishes the archive as `version`, with the attributes that the publisher's script prints.
    void publish(const QByteArray& version, const QString& archive) {
        const QByteArray attributes = signUpdate({u"sign"_s, key, archive}).trimmed();
        published["/archive"] = readFile(archive);
        published["/feed.xml"] =
            "<rss version=\"2.0\" xmlns:sparkle=\"urn:vistrel:appcast\"><channel><item><sparkle:version>" +
            version + "</sparkle:version><description>News</description><enclosure url=\"" +
            server.url(u"/archive"_s).toEncoded() + "\" " + attributes + "/></item></channel></rss>";
    }
    /// What a check from the command line prints, with its status.
    std::string check() {
        const auto program = vistrel.startProgram({u"--check-update-feed"_s});
        const auto status = program->waitForExit(std::chrono::minutes(2));
        return std::to_string(status.value_or(-1)) + ' ' + program->standardOutput().toStdString() + '|' +
               program->standardError().toStdString();
    }

    VistrelOnDesktop vistrel;
    const TestAuthority authority;
    TLSTestServer server{authority.issue()};
    const InstalledTree tree{vistrel.session.folder(u"home/Vistrel"_s)};
    const QString key = vistrel.session.folder(u"publisher.pem"_s);
    QMap<QByteArray, QByteArray> published;
};

} // namespace

TEST_F(UpdateFlow, TheFeedIsCheckedFromTheCommandLine) {
    const QString archive = vistrel.session.folder(u"small"_s);
    writeFile(archive, "never fetched");
    // The TLS library gives up its lists of the network thread too late for the leak checker.
    vistrel.session.setEnvironment("ASAN_OPTIONS", "detect_leaks=0");

    publish("9.9", archive);
    EXPECT_TRUE(check().starts_with("1 |Update check failed: "));
    EXPECT_TRUE(server.requests.empty()) << "a server that nobody vouches for is told nothing";
    trustTheServer();
    const QString network = tree.prefix + QStringLiteral("/lib/vistrel/network.so");
    ASSERT_TRUE(QFile::rename(network, network + u'~'));
    const std::string incomplete = check();
    EXPECT_TRUE(incomplete.starts_with("1 |")) << incomplete << " is no crash";
    EXPECT_NE(incomplete.find(network.toStdString()), std::string::npos) << incomplete;
    ASSERT_TRUE(QFile::rename(network + u'~', network));
    EXPECT_EQ(check(), "0 Available update: 9.9\nUpdate feed check completed\n|");
    publish("1.0", archive);
    EXPECT_EQ(check(), "0 Vistrel is up to date\n|");

    published.clear();
    const auto began = std::chrono::steady_clock::now();
    EXPECT_EQ(check(), "1 |Update check timed out\n");
    EXPECT_GE(std::chrono::steady_clock::now() - began, std::chrono::seconds(30));
    EXPECT_EQ(server.requests.size(), 3U);
    for (const TLSTestServer::Request& request : server.requests)
        EXPECT_EQ(request.path, "/feed.xml");
    server.answer = [](QTcpSocket& socket, const auto&) { TLSTestServer::respond(socket, 500, {}); };
    EXPECT_TRUE(
        check().starts_with("1 |Update check failed: Error Domain=SUSparkleErrorDomain Code=1002 \""));
}

TEST_F(UpdateFlow, ASignedArchiveTakesThePlaceOfThePrivateCopyAndIsRelaunched) {
    constexpr int updatesTab = 2;
    const QString version = u"CFBundleShortVersionString"_s;
    const QString archive = vistrel.session.folder(u"vistrel-9.9.tar"_s);
    InstalledTree(tree, vistrel.session.folder(u"vistrel-9.9"_s)).inform({{version, u"9.9"_s}});
    InstalledTree::run(u"tar"_s, {u"-C"_s, vistrel.session.folder(), u"-cf"_s, archive, u"vistrel-9.9"_s});
    trustTheServer();
    publish("9.9", archive);
    vistrel.start();
    ASSERT_TRUE(vistrel.openSettings(updatesTab));
    vistrel.key(tabKey); // "Automatically check for updates"
    vistrel.key(tabKey); // "Check for Updates…"
    EXPECT_EQ(server.connections, 0) << "nothing is asked before the user asks";
    vistrel.key(spaceKey);

    ASSERT_TRUE(waitUntil([&] { return !server.requests.empty(); }));
    // The window of the check gives way to the offer; Return is "Install" there and nothing before.
    ASSERT_TRUE(waitUntil([&] {
        vistrel.key(Key::returnKey);
        return server.requests.back().path == "/archive";
    }));
    // Then "Relaunch now".
    ASSERT_TRUE(waitUntil([&] {
        vistrel.key(Key::returnKey);
        return !vistrel.program->isRunning();
    })) << vistrel.program->standardError().constData();
    EXPECT_EQ(vistrel.program->waitForExit(patience), 0);
    EXPECT_EQ(tree.information()[version], u"9.9"_s);
    EXPECT_EQ(entriesOf(vistrel.session.folder(u"home"_s)), QStringList(u"Vistrel"_s))
        << "nothing is left beside it";
    EXPECT_TRUE(entriesOf(vistrel.session.cacheHome() + u"/Vistrel/Update"_s).isEmpty());
    ASSERT_TRUE(vistrel.waitFor("launch", 2));
    EXPECT_EQ(vistrel.events().back()[u"version"], u"9.9"_s);
    EXPECT_EQ(check(), "0 Vistrel is up to date\n|");
    // The new program is no child of the test's: it ends as its user would end it.
    vistrel.session.killServer();
    EXPECT_TRUE(vistrel.waitFor("quit", 2));
}
