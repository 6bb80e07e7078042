#include "VistrelPlatform/ShareTestBus.h"

#include "VistrelPlatform/Freedesktop/DefaultApplications.h"
#include "VistrelPlatform/Freedesktop/ShareApplications.h"
#include "VistrelPlatform/Freedesktop/ShareDesktopServices.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <glib.h>
#include <sys/stat.h>

namespace {

mode_t modeOf(const QString& path) {
    struct stat info {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 0777U : 0;
}

QString textOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

/// The application database reads its folders once in a process, so all tests share one set.
class ShareServicesTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        static const QTemporaryDir shared;
        root = shared.path();
        for (const char* name : {"data/applications", "config", "run", "empty"})
            QDir(root).mkpath(QString::fromLatin1(name));
        qputenv("XDG_DATA_HOME", QFile::encodeName(path("data")));
        qputenv("XDG_DATA_DIRS", QFile::encodeName(path("empty")));
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(path("config")));
        qputenv("XDG_CONFIG_DIRS", QFile::encodeName(path("empty")));
        addApplication(QStringLiteral("viewer"), QStringLiteral("echo \"$1\" > '%1/viewed'; exec sleep 2"));
        addApplication(QStringLiteral("handsOver"), QStringLiteral("exit 0"));
        addApplication(QStringLiteral("broken"), QStringLiteral("exit 7"));
        const QString applications = path("data") + QStringLiteral("/applications/");
        ShareTestBus::writeFile(
            applications + QStringLiteral("org.example.Bus.desktop"),
            QStringLiteral("[Desktop Entry]\nType=Application\nName=On the bus\nExec=true %u\n"
                           "DBusActivatable=true\nMimeType=image/png;\n"));
        ShareTestBus::writeFile(applications + QStringLiteral("blind.desktop"),
                                QStringLiteral("[Desktop Entry]\nType=Application\nName=Blind\nExec=true\n"
                                               "MimeType=image/png;\n"));
        ShareTestBus::writeFile(applications + QStringLiteral("gone.desktop"),
                                QStringLiteral("[Desktop Entry]\nType=Application\nName=Gone\n"
                                               "Exec=/nonexistent/program %f\nMimeType=image/png;\n"));
        ShareTestBus::writeFile(
            applications + QStringLiteral("mimeinfo.cache"),
            QStringLiteral(
                "[MIME Cache]\nimage/png=broken.desktop;gone.desktop;blind.desktop;handsOver.desktop;"
                "viewer.desktop;org.example.Bus.desktop;\n"));
        ShareTestBus::writeFile(path("config") + QStringLiteral("/mimeapps.list"),
                                QStringLiteral("[Default Applications]\nimage/png=viewer.desktop\n"));
    }
    static QString path(const char* name) { return root + QLatin1Char('/') + QLatin1String(name); }

    static void addApplication(const QString& name, const QString& script) {
        const QString program = path("data") + QLatin1Char('/') + name;
        QString body = script;
        if (body.contains(QLatin1String("%1")))
            body = body.arg(root);
        ShareTestBus::writeFile(program, QStringLiteral("#!/bin/sh\n%1\n").arg(body));
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        ShareTestBus::writeFile(
            path("data") + QStringLiteral("/applications/%1.desktop").arg(name),
            QStringLiteral("[Desktop Entry]\nType=Application\nName=The %1\nIcon=%1\nExec=%2 %f\n"
                           "MimeType=image/png;\n")
                .arg(name, program));
    }

    ShareServicesTests() { qputenv("XDG_RUNTIME_DIR", QFile::encodeName(path("run"))); }
    void SetUp() override {
        if (QFile::decodeName(g_get_user_data_dir()) != path("data"))
            GTEST_SKIP() << "An earlier test of this process has already read the user's folders.";
    }
    ~ShareServicesTests() override { SharePictureFile::removeLeftovers(); }

    SharedPicture picture() const { return {QByteArrayLiteral("bytes"), QStringLiteral("name.png")}; }
    QStringList picturesOnDisk() const {
        QStringList files;
        const QDir folder(path("run") + QStringLiteral("/Vistrel/Share"));
        for (const QString& each : folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot))
            files << QDir(folder.filePath(each)).entryList(QDir::Files);
        return files;
    }

    static inline QString root;
    ShareTestBus bus;
};

TEST_F(ShareServicesTests, pictureIsReadableByTheUserAloneAndGoesWithItsLastOwner) {
    auto file = SharePictureFile::write(picture()).value();
    EXPECT_EQ(QFileInfo(file->path()).fileName(), QStringLiteral("name.png"));
    EXPECT_EQ(textOf(file->path()), QStringLiteral("bytes"));
    EXPECT_EQ(modeOf(file->path()), 0600U);
    EXPECT_EQ(modeOf(QFileInfo(file->path()).path()), 0700U);
    EXPECT_EQ(modeOf(path("run") + QStringLiteral("/Vistrel/Share")), 0700U);
    const QString folder = QFileInfo(file->path()).path();
    file.reset();
    EXPECT_FALSE(QFileInfo::exists(folder));
}

TEST_F(ShareServicesTests, pictureNameCannotLeaveItsFolder) {
    const auto file = SharePictureFile::write({"x", QStringLiteral("../../../escaped.png")}).value();
    EXPECT_TRUE(file->path().startsWith(path("run") + QStringLiteral("/Vistrel/Share/")));
    EXPECT_EQ(QFileInfo(file->path()).fileName(), QStringLiteral("escaped.png"));
}

TEST_F(ShareServicesTests, whatIsStillHeldAtTheEndGoesAtTheNextLaunch) {
    {
        ShareRetention retention;
        retention.keep(SharePictureFile::write(picture()).value());
    }
    EXPECT_EQ(picturesOnDisk(), QStringList(QStringLiteral("name.png")));
    ShareDesktopServices().removeLeftovers();
    EXPECT_TRUE(picturesOnDisk().isEmpty());
}

TEST_F(ShareServicesTests, pictureOfARunningProgramGoesWhenTheProgramEnds) {
    ShareRetention retention({std::chrono::milliseconds(0), std::chrono::hours(1)});
    auto process = ShareProcess::start({QStringLiteral("sleep"), QStringLiteral("60")});
    ASSERT_TRUE(process);
    const auto pid = static_cast<pid_t>((*process)->pid());
    retention.keepWhileRunning(SharePictureFile::write(picture()).value(), std::move(*process));
    QCoreApplication::processEvents();
    EXPECT_EQ(picturesOnDisk().size(), 1);
    ::kill(pid, SIGTERM);
    EXPECT_TRUE(waitUntil([this] { return picturesOnDisk().isEmpty(); }));
}

TEST_F(ShareServicesTests, pictureHandedOverByAShortProgramStaysForItsReader) {
    ShareRetention retention({std::chrono::hours(1), std::chrono::milliseconds(1)});
    auto process = ShareProcess::start({QStringLiteral("true")});
    ASSERT_TRUE(process);
    auto file = SharePictureFile::write(picture()).value();
    const std::weak_ptr<SharePictureFile> alive = file;
    retention.keepWhileRunning(std::move(file), std::move(*process));
    // Only the second time, which began when the program had ended, removes it.
    EXPECT_TRUE(waitUntil([&] { return alive.expired(); }));
    EXPECT_TRUE(picturesOnDisk().isEmpty());
}

TEST_F(ShareServicesTests, startingReportsAProgramThatIsNotThere) {
    EXPECT_FALSE(ShareProcess::start({QStringLiteral("/nonexistent/program")}));
    auto process =
        ShareProcess::start({QStringLiteral("sh"), QStringLiteral("-c"), QStringLiteral("exit 5")});
    ASSERT_TRUE(process);
    int status = -1;
    (*process)->onExit = [&](int exit) { status = exit; };
    ASSERT_TRUE(waitUntil([&] { return status >= 0; }));
    EXPECT_EQ(status, 5);
}

TEST_F(ShareServicesTests, listsApplicationsOfTheTypeThePreferredFirst) {
    ShareRetention retention;
    ShareApplications applications(bus.client(), retention);
    QStringList titles;
    QStringList unable;
    for (const ShareService& service : applications.services()) {
        titles << service.menuTitle;
        if (!service.canPerform)
            unable << service.menuTitle;
    }
    ASSERT_FALSE(titles.isEmpty());
    EXPECT_EQ(titles.first(), QStringLiteral("The viewer"));
    titles.sort();
    EXPECT_EQ(titles, (QStringList{QStringLiteral("Blind"), QStringLiteral("On the bus"),
                                   QStringLiteral("The broken"), QStringLiteral("The handsOver"),
                                   QStringLiteral("The viewer")}));
    EXPECT_EQ(unable, QStringList(QStringLiteral("Blind")));
}

struct StartCase {
    const char* name;
    bool shared;
    bool pictureStays;
};

class ShareStartTests : public ShareServicesTests, public ::testing::WithParamInterface<StartCase> {};

TEST_P(ShareStartTests, isSharedOnlyWhenTheProgramStarted) {
    ShareDesktopServices services([this] { return bus.client(); }, [this] { return bus.client(); });
    std::optional<bool> outcome;
    const ShareService service{
        QStringLiteral("application:%1.desktop").arg(QLatin1String(GetParam().name)), {}, {}};
    services.perform(service, picture(), [&](bool shared) { outcome = shared; });
    EXPECT_FALSE(outcome);
    ASSERT_TRUE(waitUntil([&] { return outcome.has_value(); }));
    EXPECT_EQ(*outcome, GetParam().shared);
    // Whoever held the file lets go of it in the next turns of the loop.
    EXPECT_TRUE(waitUntil([this] { return !picturesOnDisk().isEmpty() == GetParam().pictureStays; }));
}

INSTANTIATE_TEST_SUITE_P(Programs, ShareStartTests,
                         ::testing::Values(StartCase{"viewer", true, true},
                                           StartCase{"handsOver", true, true},
                                           StartCase{"gone", false, false},
                                           StartCase{"unknown", false, false}),
                         [](const auto& entry) { return std::string(entry.param.name); });

TEST_F(ShareServicesTests, applicationOnTheBusIsSharedWhenItAnswers) {
    QStringList opened;
    const SharePeer application(bus.peer(), QStringLiteral("org.example.Bus"), [&](const QDBusMessage& call) {
        EXPECT_EQ(call.path(), QStringLiteral("/org/example/Bus"));
        opened = call.arguments().first().toStringList();
        bus.peer().send(call.createReply());
    });
    ShareDesktopServices services([this] { return bus.client(); }, [this] { return bus.client(); });
    std::optional<bool> outcome;
    services.perform({QStringLiteral("application:org.example.Bus.desktop"), {}, {}}, picture(),
                     [&](bool shared) { outcome = shared; });
    ASSERT_TRUE(waitUntil([&] { return outcome.has_value(); }));
    EXPECT_TRUE(*outcome);
    ASSERT_EQ(opened.size(), 1);
    EXPECT_TRUE(opened.first().endsWith(QLatin1String("/name.png")));
}

TEST_F(ShareServicesTests, applicationOnTheBusThatCannotStartIsNotShared) {
    ShareDesktopServices services([this] { return bus.client(); }, [this] { return bus.client(); });
    std::optional<bool> outcome;
    services.perform({QStringLiteral("application:org.example.Bus.desktop"), {}, {}}, picture(),
                     [&](bool shared) { outcome = shared; });
    ASSERT_TRUE(waitUntil([&] { return outcome.has_value(); }));
    EXPECT_FALSE(*outcome);
    EXPECT_TRUE(waitUntil([this] { return picturesOnDisk().isEmpty(); }));
}

TEST(ShareDefaultApplicationsTests, runningDesktopsPageComesFirst) {
    const auto first = [](const char* desktop) {
        return DefaultApplications::settingsCommands(QString::fromLatin1(desktop))
            .front()
            .join(QLatin1Char(' '));
    };
    EXPECT_EQ(first("GNOME"), QStringLiteral("gnome-control-center default-apps"));
    EXPECT_EQ(first("ubuntu:GNOME"), QStringLiteral("gnome-control-center default-apps"));
    EXPECT_EQ(first("X-Cinnamon"), QStringLiteral("cinnamon-settings default"));
    EXPECT_EQ(first("XFCE"), QStringLiteral("xfce4-mime-settings"));
    // Every desktop's page is tried in the end, the running one's front page before others'.
    const auto commands = DefaultApplications::settingsCommands(QStringLiteral("XFCE"));
    EXPECT_EQ(commands.at(1), QStringList(QStringLiteral("xfce4-settings-manager")));
    EXPECT_GT(commands.size(), 8U);
}

} // namespace
