#include "Desktop/InstalledTree.h"
#include "Desktop/VistrelOnDesktop.h"
#include "Support/TLSTestServer.h"
#include "VistrelPlatform/Keyboard.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <csignal>

namespace {

constexpr KeyCode tabKey = 48;
constexpr KeyCode spaceKey = 49;
constexpr int updatesTab = 2;

QByteArray fileContent(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// An installed copy, a publisher with a key of their own, and their server.
class UpdateFlow : public ::testing::Test {
protected:
    UpdateFlow()
        : tree(vistrel.session.folder(QStringLiteral("home/Vistrel"))),
          key(vistrel.session.folder(QStringLiteral("publisher.pem"))) {
        QFile certificate(vistrel.session.folder(QStringLiteral("authority.pem")));
        EXPECT_TRUE(certificate.open(QIODevice::WriteOnly));
        certificate.write(authority.certificate().toPem());
        const QByteArray publicKey = signUpdate({QStringLiteral("keys"), key}).trimmed();
        tree.inform({{QStringLiteral("CFBundleShortVersionString"), QStringLiteral("1.0")},
                     {QStringLiteral("SUFeedURL"), server.url(QStringLiteral("/feed.xml")).toString()},
                     {QStringLiteral("SUPublicEDKey"), QString::fromLatin1(publicKey)}});
        vistrel.programPath = tree.program();
        server.answer = [this](QTcpSocket& socket, const TLSTestServer::Request& request) {
            const auto body = published.constFind(request.path);
            if (body == published.constEnd())
                TLSTestServer::respond(socket, 404, {});
            else if (!body->isEmpty()) // nothing published under the name: no answer at all
                TLSTestServer::respond(socket, 200, *body);
        };
    }

    static QByteArray signUpdate(const QStringList& arguments) {
        return InstalledTree::run(QStringLiteral(VISTREL_SOURCE_DIR "/Scripts/sign-update"), arguments);
    }
    void trustTheServer() {
        vistrel.session.setEnvironment("SSL_CERT_FILE",
                                       vistrel.session.folder(QStringLiteral("authority.pem")).toStdString());
    }
    /// Publishes the archive as `version`, with the attributes that the publisher's script prints.
    void publish(const QByteArray& version, const QString& archive) {
        const QByteArray attributes = signUpdate({QStringLiteral("sign"), key, archive}).trimmed();
        published[QByteArrayLiteral("/archive")] = fileContent(archive);
        published[QByteArrayLiteral("/feed.xml")] =
            "<rss version=\"2.0\" xmlns:sparkle=\"urn:vistrel:appcast\"><channel><item><sparkle:version>" +
            version + "</sparkle:version><description>News</description><enclosure url=\"" +
            server.url(QStringLiteral("/archive")).toEncoded() + "\" " + attributes +
            "/></item></channel></rss>";
    }
    /// The tree as the publisher packs it.
    QString archiveOf(const QByteArray& version) {
        const QString folder =
            vistrel.session.folder(QStringLiteral("vistrel-") + QString::fromLatin1(version));
        tree.copied(folder).inform(
            {{QStringLiteral("CFBundleShortVersionString"), QString::fromLatin1(version)}});
        InstalledTree::run(QStringLiteral("tar"),
                           {QStringLiteral("-C"), vistrel.session.folder(), QStringLiteral("-cf"),
                            folder + QStringLiteral(".tar"), QFileInfo(folder).fileName()});
        return folder + QStringLiteral(".tar");
    }

    VistrelOnDesktop vistrel{{.screenSize = {1280, 720}, .windowManager = true}};
    const TestAuthority authority;
    TLSTestServer server{authority.issue()};
    const InstalledTree tree;
    const QString key;
    QMap<QByteArray, QByteArray> published;
};

} // namespace

TEST_F(UpdateFlow, TheFeedIsCheckedFromTheCommandLine) {
    const QString archive = vistrel.session.folder(QStringLiteral("small"));
    QFile file(archive);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("never fetched");
    file.close();
    const QStringList check{QStringLiteral("--check-update-feed")};
    // The TLS library gives up its lists of the network thread too late for the leak checker.
    vistrel.session.setEnvironment("ASAN_OPTIONS", "detect_leaks=0");

    // A server that nobody vouches for is told nothing.
    publish("9.9", archive);
    const auto distrusting = vistrel.startProgram(check);
    EXPECT_EQ(distrusting->waitForExit(patience), 1);
    EXPECT_TRUE(distrusting->standardError().startsWith("Update check failed: ")) << "on standard error";
    EXPECT_EQ(distrusting->standardOutput().toStdString(), "");
    EXPECT_TRUE(server.requests.empty());

    trustTheServer();
    QByteArray output;
    EXPECT_EQ(vistrel.runAgain(check, &output), 0);
    EXPECT_EQ(output.toStdString(), "Available update: 9.9\nUpdate feed check completed\n");
    publish("1.0", archive);
    EXPECT_EQ(vistrel.runAgain(check, &output), 0);
    EXPECT_EQ(output.toStdString(), "Vistrel is up to date\n");

    published[QByteArrayLiteral("/feed.xml")].clear();
    const auto began = std::chrono::steady_clock::now();
    const auto waiting = vistrel.startProgram(check);
    EXPECT_EQ(waiting->waitForExit(std::chrono::minutes(2)), 1);
    EXPECT_EQ(waiting->standardError().toStdString(), "Update check timed out\n");
    EXPECT_EQ(waiting->standardOutput().toStdString(), "");
    EXPECT_GE(std::chrono::steady_clock::now() - began, std::chrono::seconds(30));
    EXPECT_EQ(server.requests.size(), 3U);
    for (const TLSTestServer::Request& request : server.requests)
        EXPECT_EQ(request.path, QByteArray("/feed.xml"));
}

TEST_F(UpdateFlow, ASignedArchiveTakesThePlaceOfThePrivateCopyAndIsRelaunched) {
    trustTheServer();
    publish("9.9", archiveOf("9.9"));
    vistrel.start();
    ASSERT_TRUE(vistrel.openSettings(updatesTab));
    XTestInput& input = vistrel.session.input();
    input.key(tabKey); // "Automatically check for updates"
    input.key(tabKey); // "Check for Updates…"
    EXPECT_EQ(server.connections, 0) << "nothing is asked before the user asks";
    input.key(spaceKey);

    ASSERT_TRUE(waitUntil([&] { return !server.requests.empty(); }));
    // The window of the check gives way to the offer; Return is "Install" there and nothing before.
    const auto fetched = [&] { return server.requests.back().path == QByteArrayLiteral("/archive"); };
    ASSERT_TRUE(waitUntil([&] {
        input.key(Key::returnKey);
        return fetched();
    }));
    // Then "Relaunch now".
    ASSERT_TRUE(waitUntil([&] {
        input.key(Key::returnKey);
        return !vistrel.program->isRunning();
    })) << vistrel.program->standardError().constData();
    EXPECT_EQ(vistrel.program->waitForExit(patience), 0);
    EXPECT_EQ(tree.information()[QLatin1StringView("CFBundleShortVersionString")].toString(),
              QStringLiteral("9.9"));
    EXPECT_EQ(QDir(vistrel.session.folder(QStringLiteral("home")))
                  .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList(QStringLiteral("Vistrel")))
        << "nothing is left beside it";
    EXPECT_TRUE(QDir(vistrel.session.cacheHome() + QStringLiteral("/Vistrel/Update")).isEmpty());

    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("launch"), 2));
    EXPECT_EQ(vistrel.events().back()[QLatin1StringView("version")].toString(), QStringLiteral("9.9"));
    QByteArray output;
    EXPECT_EQ(vistrel.runAgain({QStringLiteral("--check-update-feed")}, &output), 0);
    EXPECT_EQ(output.toStdString(), "Vistrel is up to date\n");
    // The new program is no child of the test's: it ends as its user would end it.
    vistrel.session.killServer();
    EXPECT_TRUE(vistrel.waitFor(QStringLiteral("quit"), 2));
}
