#include "Support/LinkedDesktop.h"
#include "VistrelPlatform/Freedesktop/ShareApplications.h"
#include "VistrelPlatform/Freedesktop/ShareDesktopServices.h"
#include "VistrelPlatform/ShareTestBus.h"

#include <gtest/gtest.h>

#include <csignal>
#include <glib.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The application database reads its folders once in a process, so all tests share one set.
class ShareServicesTests : public ::testing::Test {
public:
    ~ShareServicesTests() override { SharePictureFile::removeLeftovers(); }

protected:
    static void SetUpTestSuite() {
        static const QTemporaryDir shared;
        root = shared.path();
        QDir(root).mkpath(u"run"_s);
        for (const auto& [variable, name] : {std::pair("XDG_DATA_HOME", "data"),
                                             {"XDG_CONFIG_HOME", "config"},
                                             {"XDG_DATA_DIRS", "none"},
                                             {"XDG_CONFIG_DIRS", "none"}})
            qputenv(variable, QFile::encodeName(path(name)));
        addEntry("viewer", "Exec=" + program("viewer", "exec sleep 2") + " %f");
        addEntry("handsOver", "Exec=" + program("handsOver", "exit 0") + " %f");
        addEntry("org.example.Bus", "Exec=true %u\nDBusActivatable=true");
        addEntry("blind", "Exec=true");
        addEntry("gone", "Exec=/nonexistent/program %f");
        writeFile(path("data/applications/mimeinfo.cache"),
                  "[MIME Cache]\nimage/png=gone.desktop;blind.desktop;handsOver.desktop;viewer.desktop;"
                  "org.example.Bus.desktop;\n");
        writeFile(path("config/mimeapps.list"), "[Default Applications]\nimage/png=viewer.desktop\n");
    }
    static QString path(const char* name) { return root + u'/' + QLatin1String(name); }
    static QByteArray program(const char* name, const QByteArray& script) {
        writeFile(path(name), "#!/bin/sh\n" + script + "\n", true);
        return path(name).toUtf8();
    }
    static void addEntry(const QByteArray& name, const QByteArray& lines) {
        writeFile(path("data/applications/" + name + ".desktop"),
                  "[Desktop Entry]\nType=Application\nName=The " + name + "\n" + lines +
                      "\nMimeType=image/png;\n");
    }

    ShareServicesTests() { qputenv("XDG_RUNTIME_DIR", QFile::encodeName(path("run"))); }
    void SetUp() override {
        if (QFile::decodeName(g_get_user_data_dir()) != path("data"))
            GTEST_SKIP() << "An earlier test of this process has already read the user's folders.";
    }

    static SharedPicture picture() { return {QByteArrayLiteral("bytes"), u"name.png"_s}; }
    QStringList picturesOnDisk() const {
        QStringList files;
        for (const QString& each : entriesOf(path("run/Vistrel/Share")))
            files << entriesOf(path("run/Vistrel/Share/") + each);
        return files;
    }
    bool shares(const char* application) {
        ShareDesktopServices services([this] { return bus.client(); }, [this] { return bus.client(); },
                                      linkedDesktop);
        std::optional<bool> outcome;
        services.perform({u"application:%1.desktop"_s.arg(QLatin1String(application)), {}, {}}, picture(),
                         [&](bool shared) { outcome = shared; });
        EXPECT_FALSE(outcome);
        EXPECT_TRUE(waitUntil([&] { return outcome.has_value(); }));
        // Whoever held the file lets go of it in the next turns of the loop.
        EXPECT_TRUE(waitUntil([&] { return picturesOnDisk().isEmpty() != outcome; })) << application;
        SharePictureFile::removeLeftovers();
        return *outcome;
    }

    static inline QString root;
    ShareTestBus bus;
};

} // namespace

TEST_F(ShareServicesTests, aPictureCannotLeaveItsFolderAndGoesWithItsLastOwner) {
    auto file = SharePictureFile::write({"x", u"../../../escaped.png"_s}).value();
    EXPECT_TRUE(file->path().startsWith(path("run/Vistrel/Share/")));
    EXPECT_EQ(picturesOnDisk(), QStringList(u"escaped.png"_s));
    file.reset();
    EXPECT_EQ(entriesOf(path("run/Vistrel/Share")), QStringList());
}

TEST_F(ShareServicesTests, pictureOfARunningProgramGoesWhenTheProgramEnds) {
    ShareRetention retention({0ms, 1h});
    auto process = ShareProcess::start({u"sleep"_s, u"60"_s});
    ASSERT_TRUE(process);
    const auto pid = static_cast<pid_t>((*process)->pid());
    retention.keepWhileRunning(SharePictureFile::write(picture()).value(), std::move(*process));
    QCoreApplication::processEvents();
    EXPECT_EQ(picturesOnDisk().size(), 1);
    ::kill(pid, SIGTERM);
    EXPECT_TRUE(waitUntil([this] { return picturesOnDisk().isEmpty(); }));
}

TEST_F(ShareServicesTests, pictureHandedOverByAShortProgramStaysForItsReader) {
    ShareRetention retention({1h, 1ms});
    auto process = ShareProcess::start({u"true"_s});
    ASSERT_TRUE(process);
    retention.keepWhileRunning(SharePictureFile::write(picture()).value(), std::move(*process));
    // Only the second time, which began when the program had ended, removes it.
    EXPECT_TRUE(waitUntil([&] { return picturesOnDisk().isEmpty(); }));
}

TEST_F(ShareServicesTests, whatCanOpenPicturesIsListedAndSharedWithOnceItStarted) {
    ShareRetention retention;
    ShareApplications applications(bus.client(), retention, linkedDesktop);
    QStringList titles;
    for (const ShareService& service : applications.services())
        titles << service.menuTitle + (service.canPerform ? QString() : u" (cannot)"_s);
    ASSERT_FALSE(titles.isEmpty());
    EXPECT_EQ(titles.takeFirst(), u"The viewer"_s) << "the preferred one";
    titles.sort();
    EXPECT_EQ(titles, (QStringList{u"The blind (cannot)"_s, u"The handsOver"_s, u"The org.example.Bus"_s}));

    EXPECT_TRUE(ShareApplications(bus.client(), retention, missingDesktop).services().empty());

    EXPECT_TRUE(shares("viewer"));
    EXPECT_TRUE(shares("handsOver"));
    EXPECT_FALSE(shares("gone"));
    EXPECT_FALSE(shares("unknown"));
    EXPECT_FALSE(shares("org.example.Bus")) << "nobody can start it";
    QStringList opened;
    const SharePeer application(bus.peer(), u"org.example.Bus"_s, [&](const QDBusMessage& call) {
        EXPECT_EQ(call.path(), u"/org/example/Bus"_s);
        opened = call.arguments().first().toStringList();
        bus.peer().send(call.createReply());
    });
    EXPECT_TRUE(shares("org.example.Bus"));
    EXPECT_TRUE(opened.size() == 1 && opened.first().endsWith(u"/name.png"));
}
