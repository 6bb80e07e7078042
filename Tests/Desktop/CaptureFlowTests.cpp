#include "Desktop/VistrelOnDesktop.h"

#include "VistrelPlatform/Keyboard.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/stat.h>

namespace {

constexpr KeyCode rKey = 15;
const QJsonObject fullDensity{{QStringLiteral("downscaleRetinaScreenshots"), false}};

DesktopSession::Options oneDisplay() {
    return {.screenSize = {1280, 720}, .windowManager = true};
}
DesktopSession::Options twoDisplays() {
    return {
        .screenSize = {2560, 720},
        .monitors = {{QStringLiteral("L"), {0, 0, 1280, 720}}, {QStringLiteral("R"), {1280, 0, 1280, 720}}},
        .windowManager = true};
}

QStringList words(const char* list) {
    return QString::fromLatin1(list).split(u' ');
}

} // namespace

TEST(CaptureFlow, FreezesBothDisplaysAndCopiesTheAnnotatedSelection) {
    VistrelOnDesktop vistrel(twoDisplays());
    const QImage desktop = noise({2560, 720});
    vistrel.session.client().setRootPicture(desktop);
    vistrel.start();
    ASSERT_TRUE(vistrel.capture());

    for (const QPoint corner : {QPoint(10, 700), QPoint(1270, 300), QPoint(1300, 700), QPoint(2550, 20)}) {
        const QRgb shown = vistrel.session.client().pixelAt(corner);
        const QRgb expected = dimmed(desktop.pixel(corner));
        EXPECT_LE(std::abs(qRed(shown) - qRed(expected)), 1) << corner.x() << ' ' << corner.y();
        EXPECT_LE(std::abs(qBlue(shown) - qBlue(expected)), 1) << corner.x() << ' ' << corner.y();
    }
    // The hint's badge: its lower edge 66 points below the top, dark and centred, on each display.
    for (const int middle : {640, 1920}) {
        const QRgb badge = vistrel.session.client().pixelAt({middle - 80, 64});
        EXPECT_LT(qGray(badge), 60) << middle;
    }

    vistrel.session.input().drag({1500, 200}, {1900, 500});
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("selectionCreated")));
    vistrel.session.input().key(rKey);
    vistrel.session.input().drag({1600, 300}, {1800, 400});
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("layerCreated")));
    vistrel.command('c');
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));

    const QImage copied = vistrel.clipboardImage();
    ASSERT_EQ(copied.size(), QSize(400, 300));
    EXPECT_EQ(copied.pixel(5, 5), desktop.pixel(1505, 205));
    EXPECT_EQ(copied.pixel(200, 150), desktop.pixel(1700, 350)) << "the inside of a rectangle is not filled";
    const QColor stroke = copied.pixelColor(200, 100);
    EXPECT_GT(stroke.red(), 200);
    EXPECT_LT(stroke.green(), 110);
    EXPECT_EQ(vistrel.story(),
              std::string("launch captureRequested captureReady selectionCreated toolSelected layerCreated "
                          "copyRequested copySucceeded captureClosed"));
    EXPECT_TRUE(waitUntil([&] {
        return vistrel.session.client().pixelAt({1300, 700}) == desktop.pixel(1300, 700);
    }));
}

namespace {
struct ScaleCase {
    const char* name;
    std::vector<MonitorSetup> monitors;
    const char* scales;
    /// Device pixels: the selection's corners lie on whole points at every scale here.
    QRect selection;
};
const MonitorSetup whole{QStringLiteral("L"), {0, 0, 1366, 768}};
const MonitorSetup left{QStringLiteral("L"), {0, 0, 1280, 768}};
const MonitorSetup right{QStringLiteral("R"), {1280, 0, 1366, 768}};
const ScaleCase scaleCases[] = {
    {"plain", {whole}, "L=1", {100, 100, 301, 203}},
    {"quarter", {whole}, "L=1.25", {100, 100, 305, 205}},
    {"half", {whole}, "L=1.5", {90, 90, 333, 213}},
    {"double", {whole}, "L=2", {100, 100, 302, 204}},
    {"secondOfMixed", {left, right}, "L=1;R=2", {1280 + 200, 100, 302, 204}},
    {"fractionalBesideDouble", {left, right}, "L=2;R=1.25", {1280 + 100, 100, 305, 205}},
};
} // namespace

class ExactPixels : public ::testing::TestWithParam<ScaleCase> {};

TEST_P(ExactPixels, OfAnUnannotatedSelectionEqualTheScreens) {
    const ScaleCase& row = GetParam();
    VistrelOnDesktop vistrel({.screenSize = {2646, 768},
                              .monitors = row.monitors,
                              .scaleFactors = QString::fromLatin1(row.scales),
                              .windowManager = true},
                             fullDensity);
    const QImage desktop = noise({2646, 768});
    vistrel.session.client().setRootPicture(desktop);
    vistrel.start();
    ASSERT_TRUE(vistrel.capture());
    vistrel.session.input().drag(row.selection.topLeft(),
                                 row.selection.topLeft() +
                                     QPoint(row.selection.width(), row.selection.height()));
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("selectionCreated")));
    // What is inside the frame is shown undimmed, pixel for pixel.
    const QRect inside = row.selection.adjusted(20, 20, -20, -20);
    EXPECT_TRUE(waitUntil([&] { return vistrel.session.screenPixels(inside) == desktop.copy(inside); }));
    vistrel.command('c');
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("copySucceeded")));
    const QImage copied = vistrel.clipboardImage();
    ASSERT_EQ(copied.size(), row.selection.size());
    EXPECT_EQ(largestDifference(copied, desktop.copy(row.selection)), 0);
}

INSTANTIATE_TEST_SUITE_P(AtEveryScale, ExactPixels, ::testing::ValuesIn(scaleCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CaptureFlow, ReducesADenseDisplayToOnePixelPerPointByDefault) {
    VistrelOnDesktop vistrel({.screenSize = {1366, 768},
                              .monitors = {whole},
                              .scaleFactors = QStringLiteral("L=2"),
                              .windowManager = true});
    const QImage desktop = noise({1366, 768});
    vistrel.session.client().setRootPicture(desktop);
    vistrel.start();
    ASSERT_TRUE(vistrel.capture());
    vistrel.session.input().drag({100, 100}, {300, 240});
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("selectionCreated")));
    vistrel.command('c');
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("copySucceeded")));
    const QImage copied = vistrel.clipboardImage();
    ASSERT_EQ(copied.size(), QSize(100, 70));
    const auto mean = [&](int x, int y) {
        int sum = 0;
        for (int i = 0; i < 4; ++i)
            sum += qRed(desktop.pixel(100 + 2 * x + i % 2, 100 + 2 * y + i / 2));
        return sum / 4.0;
    };
    for (const QPoint p : {QPoint(0, 0), QPoint(50, 35), QPoint(99, 69)})
        EXPECT_NEAR(qRed(copied.pixel(p)), mean(p.x(), p.y()), 1);
}

TEST(CaptureFlow, TheTimingReportListsThePhasesInOrderAndIsPrintedByteForByte) {
    VistrelOnDesktop vistrel(oneDisplay());
    vistrel.start();
    // The first capture may come before its preparation; the second finds it.
    ASSERT_TRUE(vistrel.capture());
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(vistrel.reportPath()); }));
    vistrel.session.input().key(Key::escape);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));
    ASSERT_TRUE(QFile::remove(vistrel.reportPath()));
    ASSERT_TRUE(vistrel.capture());
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(vistrel.reportPath()); }));
    QFile file(vistrel.reportPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    const QJsonObject report = QJsonDocument::fromJson(bytes).object();
    EXPECT_EQ(report[QLatin1StringView("source")].toString(), QStringLiteral("hotkey"));
    EXPECT_FALSE(report.contains(QLatin1StringView("error")));
    QStringList names;
    double last = 0;
    for (const QJsonValue& phase : report[QLatin1StringView("phases")].toArray()) {
        names << phase[QLatin1StringView("name")].toString();
        EXPECT_GE(phase[QLatin1StringView("offsetMS")].toDouble(), last);
        last = phase[QLatin1StringView("offsetMS")].toDouble();
    }
    EXPECT_EQ(names.first(12),
              words("hotkey_handler_entered shortcut_validation permission_check capture_task_started "
                    "capture_method_filtered_parallel capture_metadata_cached display_image_available "
                    "all_images_available overlay_window_prepared all_overlay_windows_prepared "
                    "application_activation_requested selection_input_configured"));
    for (const QString& name :
         words("overlay_display_submitted all_overlay_displays_submitted overlay_draw_started "
               "overlay_first_draw overlay_event_loop_resumed application_active_confirmed "
               "overlay_key_confirmed canvas_focus_confirmed selection_input_ready"))
        EXPECT_EQ(names.count(name), 1) << name.toStdString();

    QByteArray printed;
    EXPECT_EQ(vistrel.runAgain({QStringLiteral("--last-capture-timing")}, &printed), 0);
    EXPECT_EQ(printed, bytes + '\n');
}

TEST(CaptureFlow, ASecondStartEscapeAndABusyShortcutLeaveOneProgramAndNoOutput) {
    auto options = oneDisplay();
    options.sessionBus = true;
    VistrelOnDesktop vistrel(options);
    vistrel.start();
    EXPECT_EQ(vistrel.runAgain({}), 0);
    ASSERT_TRUE(vistrel.program->isRunning());
    ASSERT_TRUE(vistrel.capture());
    vistrel.pressShortcut();
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureBusy")));
    vistrel.session.input().key(Key::escape);
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));
    EXPECT_EQ(vistrel.story(), std::string("launch captureRequested captureReady captureBusy captureClosed"));
    EXPECT_FALSE(vistrel.session.clipboard(QStringLiteral("image/png")));
    vistrel.program->sendSignal(SIGTERM);
    EXPECT_EQ(vistrel.program->waitForExit(patience), 0);
    EXPECT_EQ(vistrel.actions().last(), QStringLiteral("quit"));
    EXPECT_FALSE(QFile::exists(vistrel.journalFolder() + QStringLiteral("/active-session.json")));
}

TEST(CaptureFlow, SavesByKeyboardAndKeepsEverythingOnCancelAndFailure) {
    for (const char* format : {"png", "jpg"}) {
        SCOPED_TRACE(format);
        VistrelOnDesktop vistrel(oneDisplay(),
                                 {{QStringLiteral("screenshotSaveFormat"), QString::fromLatin1(format)}});
        const QImage desktop = noise({1280, 720});
        vistrel.session.client().setRootPicture(desktop);
        vistrel.start();
        ASSERT_TRUE(vistrel.capture());
        XTestInput& input = vistrel.session.input();
        input.drag({100, 100}, {300, 250});
        ASSERT_TRUE(vistrel.waitFor(QStringLiteral("selectionCreated")));
        const xcb_window_t overlay = vistrel.session.client().focusedWindow();
        xcb_window_t last = overlay;
        // Each dialog is a window of its own; a window manager's own focus holder is a pixel somewhere.
        const auto dialogHasFocus = [&] {
            return waitUntil([&] {
                const xcb_window_t focused = vistrel.session.client().focusedWindow();
                const auto windows = vistrel.session.client().mappedWindows();
                const bool isNew = focused != overlay && focused != last &&
                                   std::ranges::any_of(windows, [focused](const MappedWindow& window) {
                                       return window.id == focused && window.rect.width() > 50;
                                   });
                last = isNew ? focused : last;
                return isNew;
            });
        };
        const auto overlayHasFocus = [&] {
            return waitUntil([&] { return vistrel.session.client().focusedWindow() == overlay; });
        };

        vistrel.command('s');
        ASSERT_TRUE(dialogHasFocus());
        input.key(Key::escape);
        ASSERT_TRUE(vistrel.waitFor(QStringLiteral("saveCancelled")));
        ASSERT_TRUE(overlayHasFocus());

        vistrel.command('s');
        ASSERT_TRUE(dialogHasFocus());
        vistrel.command('a');
        // Longer than any file system takes.
        input.type(QString(300, u'x') + u'.' + QString::fromLatin1(format));
        input.key(Key::returnKey);
        ASSERT_TRUE(vistrel.waitFor(QStringLiteral("saveFailed")));
        ASSERT_TRUE(dialogHasFocus());
        input.key(Key::returnKey); // the alert's one button
        ASSERT_TRUE(overlayHasFocus());

        const QString path = vistrel.session.folder(QStringLiteral("kept.") + QString::fromLatin1(format));
        vistrel.command('s');
        ASSERT_TRUE(dialogHasFocus());
        vistrel.command('a');
        input.type(path);
        input.key(Key::returnKey);
        ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));
        EXPECT_EQ(vistrel.story(),
                  std::string("launch captureRequested captureReady selectionCreated saveRequested "
                              "saveCancelled "
                              "saveRequested saveFailed saveRequested saveSucceeded captureClosed"));
        const QImage saved(path);
        ASSERT_EQ(saved.size(), QSize(200, 150));
        if (QString::fromLatin1(format) == QLatin1StringView("png")) {
            EXPECT_EQ(largestDifference(saved, desktop.copy(100, 100, 200, 150)), 0);
        }
    }
}

TEST(CaptureFlow, ADisplayUnpluggedUnderTheOverlayClosesItAndTheNextCaptureCoversTheRest) {
    VistrelOnDesktop vistrel(twoDisplays());
    vistrel.start();
    ASSERT_TRUE(vistrel.capture());
    vistrel.session.client().removeMonitor(QStringLiteral("R"));
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("displaysChanged")));
    ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed")));
    ASSERT_TRUE(vistrel.program->isRunning());
    ASSERT_TRUE(vistrel.capture());
    const auto events = vistrel.events();
    const auto ready = std::find_if(events.rbegin(), events.rend(), [](const QJsonObject& event) {
        return event[QLatin1StringView("action")].toString() == QLatin1StringView("captureReady");
    });
    ASSERT_NE(ready, events.rend());
    EXPECT_EQ((*ready)[QLatin1StringView("details")][QLatin1StringView("displays")].toInt(), 1);
}

TEST(CaptureFlow, AKilledProgramIsNotedAtTheNextLaunchAndALostServerIsNoCrash) {
    VistrelOnDesktop vistrel(oneDisplay());
    vistrel.start();
    ASSERT_TRUE(vistrel.capture());
    vistrel.program->sendSignal(SIGKILL);
    ASSERT_TRUE(vistrel.program->waitForExit(patience));
    vistrel.start();
    EXPECT_TRUE(vistrel.actions().contains(QStringLiteral("previousLaunchUnfinished")));
    ASSERT_TRUE(waitUntil(
        [&] { return vistrel.session.client().mappedWindows().empty() || vistrel.program->isRunning(); }));

    vistrel.session.killServer();
    const std::optional<int> status = vistrel.program->waitForExit(patience);
    ASSERT_TRUE(status);
    EXPECT_GE(*status, 0) << "ended by a signal: " << vistrel.program->standardError().constData();
}

TEST(CaptureFlow, BrokenFilesOfAnEarlierRunAreKeptAsideOrRewritten) {
    VistrelOnDesktop vistrel(oneDisplay());
    QFile defaults(vistrel.session.configHome() + QStringLiteral("/Vistrel/defaults.json"));
    ASSERT_TRUE(defaults.open(QIODevice::WriteOnly));
    defaults.write("{\"onboardingVersion\": 2,");
    defaults.close();
    QDir().mkpath(vistrel.journalFolder());
    QFile journal(vistrel.journalFolder() + QStringLiteral("/events.jsonl"));
    ASSERT_TRUE(journal.open(QIODevice::WriteOnly));
    journal.write(QByteArray(10 << 20, 'x'));
    journal.close();

    vistrel.program = vistrel.startProgram();
    ASSERT_TRUE(waitUntil([&] {
        return QFileInfo(journal.fileName()).size() < (1 << 20) &&
               vistrel.actions().contains(QStringLiteral("launch"));
    }));
    const QStringList kept = QDir(vistrel.session.configHome() + QStringLiteral("/Vistrel"))
                                 .entryList({QStringLiteral("defaults.json.unreadable-*")});
    EXPECT_EQ(kept.size(), 1);
    struct stat information {};
    ASSERT_EQ(stat(journal.fileName().toUtf8().constData(), &information), 0);
    EXPECT_EQ(information.st_mode & 0777, 0600U);
}

TEST(CaptureFlow, AFullDiskUnderTheJournalStopsNoCapture) {
    VistrelOnDesktop vistrel(oneDisplay());
    vistrel.start();
    // No file of the journal can grow or be made any more.
    QDir(vistrel.journalFolder()).removeRecursively();
    QFile blocker(vistrel.journalFolder());
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    vistrel.pressShortcut();
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(vistrel.reportPath()); }));
    vistrel.session.input().drag({100, 100}, {200, 180});
    vistrel.command('c');
    EXPECT_TRUE(waitUntil([&] { return vistrel.clipboardImage().size() == QSize(100, 80); }));
    EXPECT_TRUE(vistrel.program->isRunning());
}
