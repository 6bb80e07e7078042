#include "Desktop/VistrelOnDesktop.h"
#include "Support/TestFiles.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

#include <csignal>
#include <thread>

using namespace Qt::StringLiterals;

namespace {

const MonitorSetup whole{u"L"_s, {0, 0, 1366, 768}};
const MonitorSetup left{u"L"_s, {0, 0, 1280, 768}};
const MonitorSetup right{u"R"_s, {1280, 0, 1366, 768}};

bool isDimmed(VistrelOnDesktop& vistrel, QPoint position, QRgb pixel) {
    const QRgb shown = vistrel.session.client().pixelAt(position);
    return std::abs(qRed(shown) - qRed(dimmed(pixel))) <= 1 &&
           std::abs(qBlue(shown) - qBlue(dimmed(pixel))) <= 1;
}

} // namespace

TEST(CaptureFlow, FreezesBothDisplaysAndCopiesTheAnnotatedSelection) {
    constexpr KeyCode rKey = 15;
    VistrelOnDesktop vistrel({.screenSize = {2560, 720},
                              .monitors = {{u"L"_s, {0, 0, 1280, 720}}, {u"R"_s, {1280, 0, 1280, 720}}},
                              .windowManager = true});
    const QImage desktop = noise({2560, 720});
    XClient& client = vistrel.session.client();
    client.setRootPicture(desktop);
    vistrel.start();
    vistrel.session.input().movePointer({1900, 360});
    ASSERT_TRUE(vistrel.capture());
    EXPECT_EQ(vistrel.focusedRect(), QRect(1280, 0, 1280, 720)) << "where the pointer is";
    for (const QPoint corner : {QPoint(10, 700), QPoint(1270, 300), QPoint(1300, 700), QPoint(2550, 20)})
        EXPECT_TRUE(isDimmed(vistrel, corner, desktop.pixel(corner))) << corner.x() << ' ' << corner.y();
    // The hint's badge: its lower edge 66 points below the top, dark and centred, on each display.
    for (const int middle : {640, 1920})
        EXPECT_LT(qGray(client.pixelAt({middle - 80, 64})), 60) << middle;

    // Only one display holds a selection.
    ASSERT_TRUE(vistrel.select({100, 100, 200, 150}) && vistrel.select({1500, 200, 400, 300}));
    EXPECT_TRUE(waitUntil([&] { return isDimmed(vistrel, {200, 200}, desktop.pixel(200, 200)); }));
    vistrel.key(rKey);
    vistrel.session.input().drag({1600, 300}, {1800, 400});
    ASSERT_TRUE(vistrel.waitFor("layerCreated"));
    const QImage copied = vistrel.copy();
    ASSERT_EQ(copied.size(), QSize(400, 300));
    EXPECT_EQ(copied.pixel(5, 5), desktop.pixel(1505, 205));
    EXPECT_EQ(copied.pixel(200, 150), desktop.pixel(1700, 350)) << "the inside of a rectangle is not filled";
    const QColor stroke = copied.pixelColor(200, 100);
    EXPECT_TRUE(stroke.red() > 200 && stroke.green() < 110);
    EXPECT_EQ(vistrel.story(),
              "launch captureRequested captureReady selectionCreated selectionCleared selectionCreated "
              "toolSelected layerCreated copyRequested copySucceeded captureClosed");
    EXPECT_TRUE(waitUntil([&] { return client.pixelAt({1300, 700}) == desktop.pixel(1300, 700); }));

    // Unplugged under the overlay: the next capture covers the rest.
    ASSERT_TRUE(vistrel.capture());
    client.removeMonitor(u"R"_s);
    ASSERT_TRUE(vistrel.waitFor("displaysChanged") && vistrel.waitFor("captureClosed", 2));
    ASSERT_TRUE(vistrel.capture());
    EXPECT_EQ(vistrel.details("captureReady")[u"displays"], 1);
}

namespace {
struct ScaleCase {
    const char* name;
    std::vector<MonitorSetup> monitors;
    const char* scales;
    /// Device pixels: from where to where the pointer is dragged, and what is selected.
    QPoint from;
    QPoint to;
    QRect selection = QRect(QPoint(std::min(from.x(), to.x()), std::min(from.y(), to.y())),
                            QSize(std::abs(to.x() - from.x()), std::abs(to.y() - from.y())));
    bool reduces = false;
};
void PrintTo(const ScaleCase& row, std::ostream* out) {
    *out << row.scales;
}
const ScaleCase scaleCases[] = {
    {"plain", {whole}, "L=1", {100, 100}, {401, 303}},
    {"quarter", {whole}, "L=1.25", {301, 301}, {602, 504}},
    {"quarterBackwards", {whole}, "L=1.25", {603, 502}, {302, 299}},
    {"half", {whole}, "L=1.5", {301, 301}, {602, 504}},
    {"threeQuartersBackwards", {whole}, "L=1.75", {602, 504}, {301, 301}},
    {"double", {whole}, "L=2", {301, 301}, {602, 504}},
    {"doubleBackwards", {whole}, "L=2", {602, 504}, {301, 301}},
    {"secondOfMixed", {left, right}, "L=1;R=2", {1280 + 201, 103}, {1280 + 502, 306}},
    {"fractionalBesideDouble", {left, right}, "L=2;R=1.5", {1280 + 502, 306}, {1280 + 201, 103}},
    {"releasedOnTheOther", {left, right}, "L=2;R=1.5", {1280 + 301, 306}, {99, 103}, {1280, 103, 301, 203}},
    {"cornerToCorner", {whole}, "L=1.5", {0, 0}, {2000, 800}, whole.rect},
    {"fromTheLastPixel", {whole}, "L=2", {1365, 767}, {301, 301}, {301, 301, 1065, 467}},
    {"reducedByDefault", {whole}, "L=2", {100, 100}, {300, 240}, {100, 100, 200, 140}, true},
};
} // namespace

class ExactPixels : public ::testing::TestWithParam<ScaleCase> {};

TEST_P(ExactPixels, OfAnUnannotatedSelectionEqualTheScreens) {
    const ScaleCase& row = GetParam();
    QJsonObject defaults;
    if (!row.reduces)
        defaults.insert(u"downscaleRetinaScreenshots"_s, false);
    VistrelOnDesktop vistrel({.screenSize = {2646, 768},
                              .monitors = row.monitors,
                              .scaleFactors = QString::fromLatin1(row.scales),
                              .windowManager = true},
                             defaults);
    const QImage desktop = noise({2646, 768});
    vistrel.session.client().setRootPicture(desktop);
    vistrel.start();
    ASSERT_TRUE(vistrel.capture());
    vistrel.session.input().drag(row.from, row.to);
    ASSERT_TRUE(vistrel.waitFor("selectionCreated"));
    // What is inside the frame is shown undimmed, pixel for pixel.
    const QRect inside = QRect(row.selection.center(), QSize()).adjusted(-90, -50, 90, 50);
    EXPECT_TRUE(waitUntil([&] { return vistrel.session.screenPixels(inside) == desktop.copy(inside); }));
    const QImage copied = vistrel.copy();
    if (!row.reduces) {
        EXPECT_TRUE(copied == desktop.copy(row.selection));
        return;
    }
    // One pixel per point: each the mean of the four that it covers.
    ASSERT_EQ(copied.size(), row.selection.size() / 2);
    for (const QPoint p : {QPoint(0, 0), QPoint(50, 35), QPoint(99, 69)}) {
        int sum = 0;
        for (int i = 0; i < 4; ++i)
            sum += qRed(desktop.pixel(row.selection.topLeft() + 2 * p + QPoint(i % 2, i / 2)));
        EXPECT_NEAR(qRed(copied.pixel(p)), sum / 4.0, 1);
    }
}

INSTANTIATE_TEST_SUITE_P(AtEveryScale, ExactPixels, ::testing::ValuesIn(scaleCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CaptureFlow, TheTimingReportListsThePhasesInOrderAndIsPrintedByteForByte) {
    VistrelOnDesktop vistrel;
    vistrel.start();
    // The first capture may come before its preparation; the second finds it.
    for (int time = 0; time < 2; ++time) {
        QFile::remove(vistrel.reportPath());
        ASSERT_TRUE(vistrel.capture());
        ASSERT_TRUE(waitUntil([&] { return QFile::exists(vistrel.reportPath()); }));
        ASSERT_TRUE(vistrel.closeCapture());
    }
    const QByteArray bytes = readFile(vistrel.reportPath());
    const QJsonObject report = QJsonDocument::fromJson(bytes).object();
    EXPECT_EQ(report[u"source"], u"hotkey"_s);
    EXPECT_FALSE(report.contains(u"error"));
    QStringList names;
    double last = 0;
    for (const auto& phase : report[u"phases"].toArray()) {
        names << phase[u"name"].toString();
        EXPECT_GE(phase[u"offsetMS"].toDouble(), last);
        last = phase[u"offsetMS"].toDouble();
    }
    EXPECT_EQ(names.first(12).join(u' ').toStdString(),
              "hotkey_handler_entered shortcut_validation permission_check capture_task_started "
              "capture_method_filtered_parallel capture_metadata_cached display_image_available "
              "all_images_available overlay_window_prepared all_overlay_windows_prepared "
              "application_activation_requested selection_input_configured");
    for (const char* name :
         {"overlay_display_submitted", "all_overlay_displays_submitted", "overlay_draw_started",
          "overlay_first_draw", "overlay_event_loop_resumed", "application_active_confirmed",
          "overlay_key_confirmed", "canvas_focus_confirmed", "selection_input_ready"})
        EXPECT_EQ(names.count(QLatin1String(name)), 1) << name;
    QByteArray printed;
    EXPECT_EQ(vistrel.runAgain({u"--last-capture-timing"_s}, &printed), 0);
    EXPECT_EQ(printed, bytes + '\n');
}

TEST(CaptureFlow, ASecondStartEscapeAndABusyShortcutLeaveOneProgramAndNoOutput) {
    VistrelOnDesktop vistrel(desktopWithBus());
    vistrel.start();
    EXPECT_EQ(vistrel.runAgain(), 0);
    ASSERT_TRUE(vistrel.program->isRunning() && vistrel.capture());
    vistrel.pressShortcut();
    ASSERT_TRUE(vistrel.waitFor("captureBusy") && vistrel.closeCapture());
    EXPECT_FALSE(vistrel.session.clipboard(u"image/png"_s));
    EXPECT_EQ(vistrel.end(), 0);
    EXPECT_EQ(vistrel.story(), "launch captureRequested captureReady captureBusy captureClosed quit");
    EXPECT_FALSE(QFile::exists(vistrel.journalFolder() + u"/active-session.json"_s));
}

TEST(CaptureFlow, ACommandCapturesInTheRunningProgramAndStartsItWhenNoneRuns) {
    for (const bool bus : {true, false}) {
        VistrelOnDesktop vistrel(bus ? desktopWithBus() : plainDesktop());
        vistrel.launch({u"--capture"_s});
        ASSERT_TRUE(vistrel.waitFor("captureReady") && vistrel.closeCapture()) << bus;
        EXPECT_EQ(vistrel.runAgain({u"--capture"_s}), 0);
        ASSERT_TRUE(vistrel.waitFor("captureReady", 2)) << bus;
        EXPECT_EQ(vistrel.runAgain({u"--capture"_s}), 0);
        ASSERT_TRUE(vistrel.waitFor("captureBusy") && vistrel.closeCapture()) << bus;
        EXPECT_EQ(vistrel.end(), 0);
    }
}

TEST(CaptureFlow, SavesByKeyboardAndKeepsEverythingOnCancelAndFailure) {
    VistrelOnDesktop vistrel;
    const QImage desktop = noise({1280, 720});
    vistrel.session.client().setRootPicture(desktop);
    vistrel.start();
    ASSERT_TRUE(vistrel.capture() && vistrel.select({100, 100, 200, 150}));
    const xcb_window_t overlay = vistrel.nextFocus();
    const auto overlayHasFocus = [&] {
        return waitUntil([&] { return vistrel.session.client().focusedWindow() == overlay; });
    };
    // In the dialog that comes, which has the keyboard.
    const auto saveAs = [&](const QString& name) {
        vistrel.command('s');
        const xcb_window_t dialog = vistrel.nextFocus(overlay);
        EXPECT_NE(dialog, XCB_NONE);
        EXPECT_NE(vistrel.windows().back().id, overlay) << "the dialog is hidden";
        vistrel.command('a');
        vistrel.type(name);
        vistrel.key(name.isEmpty() ? Key::escape : Key::returnKey);
        return dialog;
    };
    saveAs({});
    ASSERT_TRUE(vistrel.waitFor("saveCancelled") && overlayHasFocus());
    // Longer than any file system takes.
    const xcb_window_t dialog = saveAs(QString(300, u'x') + u".png"_s);
    ASSERT_TRUE(vistrel.waitFor("saveFailed"));
    ASSERT_TRUE(waitUntil([&] { return vistrel.nextFocus(overlay) != dialog; })) << "the alert";
    vistrel.key(Key::returnKey);
    ASSERT_TRUE(overlayHasFocus());
    saveAs(vistrel.session.folder(u"kept.png"_s));
    ASSERT_TRUE(vistrel.waitFor("captureClosed"));
    EXPECT_EQ(vistrel.story(),
              "launch captureRequested captureReady selectionCreated saveRequested saveCancelled "
              "saveRequested saveFailed saveRequested saveSucceeded captureClosed");
    EXPECT_TRUE(pictureIn(readFile(vistrel.session.folder(u"kept.png"_s))) ==
                desktop.copy(100, 100, 200, 150));
}

TEST(CaptureFlow, BrokenFilesAKilledProgramAFullDiskAndALostServerDoNoHarm) {
    VistrelOnDesktop vistrel;
    const QString journal = vistrel.journalFolder() + u"/events.jsonl"_s;
    writeFile(vistrel.defaultsPath(), "{\"onboardingVersion\": 2,");
    writeFile(journal, QByteArray(10 << 20, 'x'));
    vistrel.program = vistrel.startProgram();
    ASSERT_TRUE(
        waitUntil([&] { return QFileInfo(journal).size() < (1 << 20) && vistrel.count("launch") == 1; }));
    EXPECT_EQ(
        entriesOf(QFileInfo(vistrel.defaultsPath()).path()).filter(u"defaults.json.unreadable-"_s).size(), 1);
    EXPECT_FALSE(QFile::permissions(journal) & (QFile::ReadGroup | QFile::ReadOther));
    ASSERT_TRUE(vistrel.opens(VistrelOnDesktop::setupWindow));
    vistrel.key(Key::returnKey);
    ASSERT_TRUE(vistrel.closes(VistrelOnDesktop::setupWindow) && vistrel.capture());

    vistrel.program->sendSignal(SIGKILL);
    ASSERT_TRUE(vistrel.program->waitForExit(patience));
    vistrel.start();
    EXPECT_EQ(vistrel.count("previousLaunchUnfinished"), 1);

    // No file of the journal can grow or be made any more.
    ASSERT_TRUE(waitUntil([&] {
        return QDir(vistrel.journalFolder()).removeRecursively() &&
               QFile(vistrel.journalFolder()).open(QIODevice::NewOnly);
    }));
    QFile::remove(vistrel.reportPath());
    vistrel.pressShortcut();
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(vistrel.reportPath()); }));
    vistrel.session.input().drag({100, 100}, {200, 180});
    vistrel.command('c');
    EXPECT_TRUE(waitUntil([&] { return vistrel.clipboardImage().size() == QSize(100, 80); }));

    vistrel.session.killServer();
    const std::optional<int> status = vistrel.program->waitForExit(patience);
    ASSERT_TRUE(status);
    EXPECT_GE(*status, 0) << "ended by a signal: " << vistrel.program->standardError().constData();
}

TEST(CaptureFlow, TheShortcutsKeysMayBeLetGoInAnyOrderAndLate) {
    constexpr KeyCode nineKey = 25;
    constexpr ModifierMask superShift = Modifier::command | Modifier::shift;
    VistrelOnDesktop vistrel;
    vistrel.start();
    XTestInput& input = vistrel.session.input();
    int captures = 0;
    for (const ModifierMask early : {Modifier::command, superShift, ModifierMask{0}}) {
        SCOPED_TRACE(early);
        input.pressModifiers(superShift);
        input.pressKey(nineKey);
        input.releaseModifiers(early);
        ASSERT_TRUE(vistrel.waitFor("captureReady", ++captures));
        EXPECT_TRUE(vistrel.closeCapture()) << "while the key is down";
        input.releaseKey(nineKey);
        input.releaseModifiers(superShift & ~early);
        vistrel.type(u"9(("_s);
    }
    ASSERT_TRUE(vistrel.capture());
    EXPECT_EQ(vistrel.story(),
              "launch captureRequested captureReady captureClosed captureRequested captureReady "
              "captureClosed captureRequested captureReady captureClosed captureRequested "
              "captureReady");
}

TEST(CaptureFlow, ACopyThatTheServerRefusesLeavesEverythingOpen) {
    VistrelOnDesktop vistrel;
    const QImage desktop = noise({1280, 720});
    vistrel.session.client().setRootPicture(desktop);
    vistrel.start();
    ASSERT_TRUE(vistrel.capture() && vistrel.select({100, 60, 1000, 600}));
    {
        // Takes the clipboard again and again, also between the key press and the end of the encoding.
        const std::jthread other([&](const std::stop_token& stop) {
            XClient client(vistrel.session.displayName());
            const xcb_window_t window = client.createWindow({.rect = {0, 0, 1, 1}});
            while (!stop.stop_requested()) {
                xcb_set_selection_owner(client.connection(), window, client.atom("CLIPBOARD"),
                                        XCB_CURRENT_TIME);
                client.synchronize();
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
        vistrel.command('c');
        ASSERT_TRUE(vistrel.waitFor("copyFailed"));
    }
    EXPECT_TRUE(vistrel.copy() == desktop.copy(100, 60, 1000, 600));
    EXPECT_EQ(vistrel.story(),
              "launch captureRequested captureReady selectionCreated copyRequested copyFailed "
              "copyRequested copySucceeded captureClosed");
}

// A window manager hands the keyboard around whenever a window comes or goes, sometimes a little late.
TEST(CaptureFlow, TheKeyboardStaysWithTheOverlayWhateverOpensOrClosesBeforeIt) {
    VistrelOnDesktop vistrel(desktopWithBus());
    vistrel.start();
    for (int round = 0; round < 6; ++round) {
        SCOPED_TRACE(round);
        ASSERT_TRUE(vistrel.openSettings());
        if (round % 2 == 0)
            vistrel.key(Key::escape);
        ASSERT_TRUE(vistrel.capture());
        int looks = 0;
        ASSERT_TRUE(waitUntil([&] {
            looks = vistrel.focusedRect() == QRect(0, 0, 1280, 720) ? looks + 1 : 0;
            return looks == 60;
        }));
        // Closes the overlay and nothing else.
        ASSERT_TRUE(vistrel.closeCapture());
        if (round % 2 == 1) {
            ASSERT_TRUE(vistrel.opens(VistrelOnDesktop::settingsWindow));
            vistrel.key(Key::escape);
        }
        ASSERT_TRUE(vistrel.closes(VistrelOnDesktop::settingsWindow));
    }
}
