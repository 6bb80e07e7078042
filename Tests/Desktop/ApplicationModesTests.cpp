#include "Desktop/InstalledTree.h"
#include "Desktop/VistrelOnDesktop.h"
#include "Support/Provided.h"
#include "Support/TestFiles.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// What the second copy prints, when it ends well.
QByteArray printed(VistrelOnDesktop& vistrel, const QStringList& arguments) {
    QByteArray output;
    EXPECT_EQ(vistrel.runAgain(arguments, &output), 0);
    return output;
}

QByteArrayList diagnostics(VistrelOnDesktop& vistrel) {
    return printed(vistrel, {u"--diagnostics"_s}).split('\n');
}

/// "*" at the end of `expected` stands for the system's own words.
bool fits(const QByteArray& text, QByteArray expected) {
    if (!expected.endsWith('*'))
        return text == expected;
    expected.chop(1);
    return text.startsWith(expected) && text.size() > expected.size() + 1 && text.endsWith('\n') &&
           !text.endsWith("\n\n");
}

} // namespace

TEST(ApplicationModes, WriteTheirResultsAndFailuresToTheRightStreamAndEndWithTheirStatus) {
    const char* const runsError = "Expected: --benchmark-capture [runs from 1 to 20]\n";
    const char* const methodError = "Expected --capture-method automatic, filtered, or direct\n";
    const char* const profileError = "Expected: --profile-buffer width height displays maximumFPS\n";
    const char* const feedError =
        "Update check failed: Error Domain=SUSparkleErrorDomain Code=1 \"This build of "
        "Vistrel has no update feed.\"\n";
    // Arguments stand one space apart.
    const std::tuple<const char*, int, const char*, const char*> rows[] = {
        {"--benchmark-capture 0", 2, "", runsError},
        {"--benchmark-capture 21", 2, "", runsError},
        {"--benchmark-capture 99999999999999999999", 2, "", runsError},
        {"--benchmark-capture ", 2, "", runsError},
        {"--benchmark-capture 5 --capture-method", 2, "", methodError},
        {"--last-capture-timing", 1, "", "No readable capture timing report: *"},
        {"--export-iconset /dev/null/icons", 1, "", "Icon export failed: *"},
        {"--profile-buffer 1 2 3 sixty", 1, "", profileError},
        {"--enable-launch-at-login", 1, "", "Launch at login failed: *"},
        {"--check-update-feed", 1, "", feedError},
        {"--diagnostics --unknown  --profile-buffer 1 2 --export-iconset", 0,
         "Capture mode: on demand; no background stream or rewind\n*", ""},
    };
    VistrelOnDesktop vistrel({.screenSize = {640, 480}});
    for (const auto& [arguments, status, output, error] : rows) {
        const auto program = vistrel.startProgram(QString::fromLatin1(arguments).split(u' '));
        EXPECT_EQ(program->waitForExit(patience), status) << arguments;
        EXPECT_TRUE(fits(program->standardOutput(), output))
            << arguments << program->standardOutput().constData();
        EXPECT_TRUE(fits(program->standardError(), error))
            << arguments << program->standardError().constData();
    }
    EXPECT_FALSE(QFile::exists(vistrel.session.configHome() + u"/autostart"_s));
    EXPECT_FALSE(QFile::exists(vistrel.session.dataHome() + u"/Vistrel"_s));
    const auto benchmark =
        vistrel.startProgram({u"--benchmark-capture"_s, u"2"_s, u"--capture-method"_s, u"direct"_s});
    EXPECT_EQ(benchmark->waitForExit(patience), 0);
    EXPECT_TRUE(benchmark->standardError().contains("\nCapture 2/2: "))
        << benchmark->standardError().constData();
    EXPECT_EQ(benchmark->standardOutput().count("\"capture_method_direct_rect\""), 2);
    EXPECT_TRUE(benchmark->standardOutput().endsWith("]\n\n")) << "one empty line follows the array";
    vistrel.session.setEnvironment("DISPLAY", ":4999");
    for (const QStringList& arguments : {QStringList(), {u"--diagnostics"_s}}) {
        const auto program = vistrel.startProgram(arguments);
        EXPECT_EQ(program->waitForExit(patience), 1);
        EXPECT_TRUE(program->standardError().startsWith("Vistrel needs an X11 display"));
    }
}

TEST(ApplicationModes, TheIconsetHasTenPicturesOfTheirSizesAndTheDiagnosticsEveryDisplay) {
    VistrelOnDesktop vistrel({.screenSize = {2080, 720},
                              .monitors = {{u"L"_s, {0, 0, 1280, 720}}, {u"R"_s, {1280, 0, 800, 600}}},
                              .scaleFactors = u"L=2;R=1.25"_s});
    const QDir icons(vistrel.session.folder(u"home/new/icons"_s));
    printed(vistrel, {u"--export-iconset"_s, icons.path()});
    EXPECT_EQ(entriesOf(icons.path()).size(), 10);
    for (const int size : {16, 32, 128, 256, 512})
        for (const int scale : {1, 2}) {
            const QString name = u"icon_%1x%1%2.png"_s.arg(size).arg(scale == 2 ? u"@2x"_s : QString());
            EXPECT_EQ(QImage(icons.filePath(name)).size(), QSize(size, size) * scale) << name.toStdString();
        }
    const auto number = [&](const char* name) {
        return QByteArray::number(vistrel.session.client().atom(name));
    };
    EXPECT_EQ(diagnostics(vistrel).mid(1),
              (QByteArrayList{"Launch at login status: 3", "Screen capture permission: true",
                              "Preferred shortcut conflicts with macOS: false",
                              "Fallback shortcut conflicts with macOS: false",
                              "Display " + number("L") + ": 1280 × 720, scale 2.0",
                              "Display " + number("R") + ": 800 × 600, scale 1.25", ""}));
}

TEST(ApplicationModes, TheDiagnosticsAskTheDesktopThatRuns) {
    if (!provided({"xfconf-query", "kglobalaccel5"}))
        return;
    VistrelOnDesktop vistrel({.screenSize = {640, 480}, .sessionBus = true});
    const auto conflicts = [&](const char* desktop) {
        vistrel.session.setEnvironment("XDG_CURRENT_DESKTOP", desktop);
        const QByteArrayList lines = diagnostics(vistrel);
        return (lines.value(3).split(' ').last() + ' ' + lines.value(4).split(' ').last()).toStdString();
    };
    for (const QStringList& property : {QStringList{u"<Super><Shift>9"_s, u"string"_s, u"x"_s},
                                        QStringList{u"override"_s, u"bool"_s, u"true"_s}}) {
        const auto setter =
            vistrel.session.start(u"xfconf-query"_s, {u"-c"_s, u"xfce4-keyboard-shortcuts"_s, u"-p"_s,
                                                      u"/commands/custom/"_s + property[0], u"-n"_s, u"-t"_s,
                                                      property[1], u"-s"_s, property[2]});
        ASSERT_EQ(setter->waitForExit(patience), 0) << setter->standardError().constData();
    }
    EXPECT_EQ(conflicts("XFCE"), "false true");
    writeFile(vistrel.session.dataHome() + u"/applications/org.test.Shot.desktop"_s,
              "[Desktop Entry]\nType=Application\nName=Shot\nExec=true\nX-KDE-Shortcuts=Meta+Shift+4\n");
    writeFile(vistrel.session.configHome() + u"/kglobalshortcutsrc"_s,
              "[org.test.Shot.desktop]\n_k_friendly_name=Shot\n_launch=Meta+Shift+4,none,Shot\n");
    const auto service = vistrel.session.start(u"kglobalaccel5"_s);
    EXPECT_TRUE(waitUntil([&] { return conflicts("KDE") == "true false"; }));
    EXPECT_EQ(conflicts("i3"), "false false");
}

TEST(ApplicationModes, AnInstalledProgramEntersTheLoginOnceAndNeverOverrulesItsUser) {
    VistrelOnDesktop vistrel;
    const InstalledTree tree(vistrel.session.folder(u"home/own apps"_s));
    const QString entry = vistrel.session.configHome() + u"/autostart/com.orvane.Vistrel.desktop"_s;
    const auto status = [&] { return diagnostics(vistrel).value(1).toStdString(); };
    vistrel.start();
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_FALSE(QFile::exists(entry)) << "a bare executable is no login item";

    vistrel.programPath = tree.program();
    EXPECT_EQ(status(), "Launch at login status: 0");
    vistrel.launch();
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(entry); }));
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_EQ(status(), "Launch at login status: 1");
    EXPECT_TRUE(readFile(entry).contains("\nExec=\"" + tree.program().toUtf8() + "\"\n"));
    // An update puts another file in the executable's place.
    const QString fresh = tree.program() + u".new"_s;
    ASSERT_TRUE(QFile::copy(tree.program(), fresh) && QFile::remove(tree.program()) &&
                QFile::rename(fresh, tree.program()));
    EXPECT_EQ(status(), "Launch at login status: 1");
    writeFile(entry, readFile(entry) + "Hidden=true\n");
    EXPECT_EQ(status(), "Launch at login status: 2");

    ASSERT_TRUE(QFile::remove(entry));
    vistrel.launch();
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_FALSE(QFile::exists(entry)) << "it was switched off by the user";
    EXPECT_EQ(printed(vistrel, {u"--enable-launch-at-login"_s}), "Launch at login status: 1\n");
    EXPECT_TRUE(QFile::exists(entry));
}
