#include "Desktop/ApplicationOnDesktop.h"
#include "Desktop/InstalledTree.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace {

struct ModeCase {
    const char* name;
    std::vector<const char*> arguments;
    int status;
    /// What the two streams hold; "*" at the end stands for the system's own words.
    const char* output;
    const char* error;
};

const char* const runsError = "Expected: --benchmark-capture [runs from 1 to 20]\n";
const char* const methodError = "Expected --capture-method automatic, filtered, or direct\n";
const char* const profileError = "Expected: --profile-buffer width height displays maximumFPS\n";

const ModeCase modeCases[] = {
    {"noRuns", {"--benchmark-capture", "0"}, 2, "", runsError},
    {"tooManyRuns", {"--benchmark-capture", "21"}, 2, "", runsError},
    {"overflowingRuns", {"--benchmark-capture", "99999999999999999999"}, 2, "", runsError},
    {"emptyRuns", {"--benchmark-capture", ""}, 2, "", runsError},
    {"noMethod", {"--benchmark-capture", "5", "--capture-method"}, 2, "", methodError},
    {"noReport", {"--last-capture-timing"}, 1, "", "No readable capture timing report: *"},
    {"iconsetUnderAFile", {"--export-iconset", "/dev/null/icons"}, 1, "", "Icon export failed: *"},
    {"profileWord", {"--profile-buffer", "1", "2", "3", "sixty"}, 1, "", profileError},
    {"bareLogin", {"--enable-launch-at-login"}, 1, "", "Launch at login failed: *"},
    {"fallsThrough",
     {"--diagnostics", "--unknown", "", "--profile-buffer", "1", "2", "--export-iconset"},
     0,
     "Capture mode: on demand; no background stream or rewind\n*",
     ""},
};

void expectText(const QByteArray& text, QByteArray expected) {
    if (expected.endsWith('*')) {
        expected.chop(1);
        EXPECT_TRUE(text.startsWith(expected) && text.size() > expected.size() + 1 && text.endsWith('\n') &&
                    !text.endsWith("\n\n"))
            << text.constData();
    } else {
        EXPECT_EQ(text, expected);
    }
}

} // namespace

TEST(ApplicationModes, WriteTheirResultsAndFailuresToTheRightStreamAndEndWithTheirStatus) {
    ApplicationOnDesktop vistrel({.screenSize = {640, 480}});
    for (const ModeCase& row : modeCases) {
        SCOPED_TRACE(row.name);
        QStringList arguments;
        for (const char* argument : row.arguments)
            arguments << QFile::decodeName(argument);
        const auto program = vistrel.startProgram(arguments);
        EXPECT_EQ(program->waitForExit(patience), row.status);
        expectText(program->standardOutput(), row.output);
        expectText(program->standardError(), row.error);
    }
    EXPECT_FALSE(QFile::exists(vistrel.session.configHome() + QStringLiteral("/autostart")));
    EXPECT_FALSE(QFile::exists(vistrel.session.dataHome() + QStringLiteral("/Vistrel")));

    vistrel.session.setEnvironment("DISPLAY", ":4999");
    for (const QStringList& arguments : {QStringList(), {QStringLiteral("--diagnostics")}}) {
        const auto program = vistrel.startProgram(arguments);
        EXPECT_EQ(program->waitForExit(patience), 1);
        EXPECT_TRUE(program->standardError().startsWith("Vistrel needs an X11 display"));
    }
}

TEST(ApplicationModes, TheIconsetHasTenPicturesOfTheirSizesAndTheDiagnosticsEveryDisplay) {
    ApplicationOnDesktop vistrel(
        {.screenSize = {2080, 720},
         .monitors = {{QStringLiteral("L"), {0, 0, 1280, 720}}, {QStringLiteral("R"), {1280, 0, 800, 600}}},
         .scaleFactors = QStringLiteral("L=2;R=1.25")});
    const QDir icons(vistrel.session.folder(QStringLiteral("home/new/icons")));
    EXPECT_EQ(vistrel.runAgain({QStringLiteral("--export-iconset"), icons.path()}), 0);
    EXPECT_EQ(icons.entryList(QDir::Files).size(), 10);
    for (const int size : {16, 32, 128, 256, 512}) {
        for (const int scale : {1, 2}) {
            const QString name = QStringLiteral("icon_%1x%1%2.png")
                                     .arg(size)
                                     .arg(scale == 2 ? QStringLiteral("@2x") : QString());
            EXPECT_EQ(QImage(icons.filePath(name)).size(), QSize(size, size) * scale) << name.toStdString();
        }
    }

    QByteArray printed;
    EXPECT_EQ(vistrel.runAgain({QStringLiteral("--diagnostics")}, &printed), 0);
    const QList<QByteArray> lines = printed.split('\n');
    ASSERT_EQ(lines.size(), 8) << printed.constData();
    EXPECT_EQ(lines[1], "Launch at login status: 3");
    EXPECT_EQ(lines[2], "Screen capture permission: true");
    EXPECT_EQ(lines[3], "Preferred shortcut conflicts with macOS: false");
    EXPECT_EQ(lines[4], "Fallback shortcut conflicts with macOS: false");
    const auto number = [&](const char* name) {
        return QByteArray::number(vistrel.session.client().atom(name));
    };
    EXPECT_EQ(lines[5], "Display " + number("L") + ": 1280 × 720, scale 2.0");
    EXPECT_EQ(lines[6], "Display " + number("R") + ": 800 × 600, scale 1.25");
}

TEST(ApplicationModes, TheDiagnosticsAskTheDesktopThatRuns) {
    ApplicationOnDesktop vistrel({.screenSize = {640, 480}, .sessionBus = true});
    const auto missing = [](const char* program) {
        return QStandardPaths::findExecutable(QLatin1StringView(program)).isEmpty();
    };
    const auto conflicts = [&](const char* desktop) {
        vistrel.session.setEnvironment("XDG_CURRENT_DESKTOP", desktop);
        QByteArray printed;
        EXPECT_EQ(vistrel.runAgain({QStringLiteral("--diagnostics")}, &printed), 0);
        const QList<QByteArray> lines = printed.split('\n');
        return (lines.value(3).split(' ').last() + ' ' + lines.value(4).split(' ').last()).toStdString();
    };
    if (missing("xfconf-query") || missing("kglobalaccel5"))
        GTEST_SKIP() << "xfconf or libkf5globalaccel-bin is not installed";

    const QString commands = QStringLiteral("/commands/custom/");
    for (const QStringList& property :
         {QStringList{QStringLiteral("<Super><Shift>9"), QStringLiteral("string"), QStringLiteral("x")},
          QStringList{QStringLiteral("override"), QStringLiteral("bool"), QStringLiteral("true")}}) {
        const auto setter =
            vistrel.session.start(QStringLiteral("xfconf-query"),
                                  {QStringLiteral("-c"), QStringLiteral("xfce4-keyboard-shortcuts"),
                                   QStringLiteral("-p"), commands + property[0], QStringLiteral("-n"),
                                   QStringLiteral("-t"), property[1], QStringLiteral("-s"), property[2]});
        ASSERT_EQ(setter->waitForExit(patience), 0) << setter->standardError().constData();
    }
    EXPECT_EQ(conflicts("XFCE"), "false true");

    QDir().mkpath(vistrel.session.dataHome() + QStringLiteral("/applications"));
    QFile entry(vistrel.session.dataHome() + QStringLiteral("/applications/org.test.Shot.desktop"));
    ASSERT_TRUE(entry.open(QIODevice::WriteOnly));
    entry.write("[Desktop Entry]\nType=Application\nName=Shot\nExec=true\nX-KDE-Shortcuts=Meta+Shift+4\n");
    entry.close();
    QFile shortcuts(vistrel.session.configHome() + QStringLiteral("/kglobalshortcutsrc"));
    ASSERT_TRUE(shortcuts.open(QIODevice::WriteOnly));
    shortcuts.write("[org.test.Shot.desktop]\n_k_friendly_name=Shot\n_launch=Meta+Shift+4,none,Shot\n");
    shortcuts.close();
    const auto service = vistrel.session.start(QStringLiteral("kglobalaccel5"));
    EXPECT_TRUE(waitUntil([&] { return conflicts("KDE") == "true false"; }));
    EXPECT_EQ(conflicts("i3"), "false false");
}

TEST(ApplicationModes, AnInstalledProgramEntersTheLoginOnceAndNeverOverrulesItsUser) {
    ApplicationOnDesktop vistrel({.screenSize = {1280, 720}, .windowManager = true});
    const InstalledTree tree(vistrel.session.folder(QStringLiteral("home/own apps")));
    const QString entry =
        vistrel.session.configHome() + QStringLiteral("/autostart/com.orvane.Vistrel.desktop");
    const auto status = [&] {
        QByteArray printed;
        EXPECT_EQ(vistrel.runAgain({QStringLiteral("--diagnostics")}, &printed), 0);
        return printed.split('\n').value(1);
    };

    vistrel.start();
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_FALSE(QFile::exists(entry)) << "a bare executable is no login item";

    vistrel.programPath = tree.program();
    EXPECT_EQ(status(), "Launch at login status: 0");
    vistrel.launch();
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(entry); }));
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_EQ(status(), "Launch at login status: 1");
    QFile file(entry);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray text = file.readAll();
    file.close();
    EXPECT_TRUE(text.contains("\nExec=\"" + tree.program().toUtf8() + "\"\n")) << text.constData();

    // An update puts another file in the executable's place.
    const QString fresh = tree.program() + QStringLiteral(".new");
    ASSERT_TRUE(QFile::copy(tree.program(), fresh) && QFile::remove(tree.program()) &&
                QFile::rename(fresh, tree.program()));
    EXPECT_EQ(status(), "Launch at login status: 1");

    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(text + "Hidden=true\n");
    file.close();
    EXPECT_EQ(status(), "Launch at login status: 2");

    ASSERT_TRUE(QFile::remove(entry));
    vistrel.launch();
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_FALSE(QFile::exists(entry)) << "it was switched off by the user";

    QByteArray printed;
    EXPECT_EQ(vistrel.runAgain({QStringLiteral("--enable-launch-at-login")}, &printed), 0);
    EXPECT_EQ(printed, "Launch at login status: 1\n");
    EXPECT_TRUE(QFile::exists(entry));
}
