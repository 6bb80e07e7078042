// Many captures in one life of the program: drawn on, copied, saved, cancelled, with a monitor that comes and
// goes. Reports what the program, the X server and the journal hold before and after; ends with 1 on growth.

#include "ClientResources.h"
#include "ProcessFacts.h"
#include "ResidentProgram.h"

#include "Desktop/Fixture/Waiting.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

using namespace std::chrono_literals;

constexpr int warmUp = 10;
constexpr int capturesPerPlug = 10;
constexpr int strokes = 3;
constexpr std::int64_t toleratedKiB = 2048;
constexpr KeyCode keyR = 15;
constexpr KeyCode keyP = 35;
constexpr KeyCode keyB = 11;
constexpr KeyCode keyC = 8;
constexpr KeyCode keyS = 1;
constexpr KeyCode keyA = 0;

const MonitorSetup left{QStringLiteral("left"), {0, 0, 1280, 720}};
const MonitorSetup right{QStringLiteral("right"), {1280, 0, 1280, 720}};

struct Holdings {
    ProcessFacts process;
    ClientResources server;
};

/// The journal of the whole life, as far as it is kept.
struct Story {
    int lines = 0;
    int unreadable = 0;
    QMap<QString, int> actions;
    /// What happened in captures in which not every stroke became a layer.
    QStringList odd;
};

class Soak {
public:
    Soak(const QString& program, int captureCount)
        : captures(captureCount),
          desktop(
              {.screenSize = {2560, 720}, .monitors = {left}, .windowManager = true, .sessionBus = true}) {
        ResidentProgram::writeDefaults(desktop);
        child = ResidentProgram::start(desktop, program);
    }

    void run() {
        for (int number = 1; number <= captures; ++number) {
            if (number % capturesPerPlug == 0)
                plugOrUnplug();
            captureOnce(number);
            if (number == warmUp)
                before = holdings();
            if (number % 50 == 0)
                std::fprintf(stderr, "%d captures, %lld KiB\n", number,
                             static_cast<long long>(ProcessFacts::of(child->id()).proportionalKiB));
        }
        if (monitors == 2)
            plugOrUnplug();
        after = holdings();
        child->end();
        exitStatus = child->waitForExit(patience).value_or(-1);
    }

    QJsonObject report() const;
    bool hasGrown() const {
        return after.process.proportionalKiB > before.process.proportionalKiB + toleratedKiB ||
               after.process.openFiles > before.process.openFiles ||
               after.process.mappedSegments > before.process.mappedSegments ||
               after.server.count > before.server.count ||
               after.server.pixmapBytes > before.server.pixmapBytes;
    }
    bool isConsistent() const {
        const Story told = story();
        const int opened = told.actions.value(QStringLiteral("captureRequested"));
        return told.unreadable == 0 && told.odd.isEmpty() && exitStatus == 0 &&
               std::abs(told.actions.value(QStringLiteral("captureClosed")) - opened) <= 1 &&
               !told.actions.contains(QStringLiteral("captureFailed")) &&
               !told.actions.contains(QStringLiteral("copyFailed")) &&
               !told.actions.contains(QStringLiteral("saveFailed")) && unreadablePictures == 0;
    }

private:
    void plugOrUnplug() {
        if (monitors == 1)
            desktop.client().setMonitors({left, right});
        else
            desktop.client().removeMonitor(right.name);
        monitors = monitors == 1 ? 2 : 1;
        waitUntil([] { return false; }, 700ms);
    }

    void captureOnce(int number) {
        XTestInput& input = desktop.input();
        input.movePointer({640, 400});
        ResidentProgram::capture(desktop, monitors);
        const bool focused = waitUntil([&] {
            const auto windows = desktop.client().mappedWindows();
            return std::ranges::any_of(
                windows, [focus = desktop.client().focusedWindow()](const auto& window) {
                    return window.id == focus && window.rect.width() == left.rect.width();
                });
        });
        if (!focused)
            qFatal("the overlay has no keyboard");
        input.drag({200, 150}, {900, 600}, 12);
        for (const auto& [key, from, to] : {std::tuple{keyR, QPoint(250, 200), QPoint(500, 350)},
                                            {keyP, QPoint(300, 300), QPoint(800, 550)},
                                            {keyB, QPoint(260, 500), QPoint(700, 220)}}) {
            input.key(key);
            input.drag(from, to, 12);
        }
        switch (number % 5) {
        case 0:
            save(number);
            break;
        case 1:
            input.key(Key::escape); // the selection, then the overlay
            input.key(Key::escape);
            input.key(Key::escape);
            break;
        default:
            input.chord(Modifier::control, keyC);
        }
        ResidentProgram::awaitClosed(desktop);
        if (number % 25 == 2)
            check(QImage::fromData(desktop.clipboard(QStringLiteral("image/png")).value_or(QByteArray())));
    }

    void save(int number) {
        const xcb_window_t overlay = desktop.client().focusedWindow();
        desktop.input().chord(Modifier::control, keyS);
        const bool opened = waitUntil([&] {
            const auto windows = desktop.client().mappedWindows();
            return std::ranges::any_of(
                windows, [overlay, focus = desktop.client().focusedWindow()](const MappedWindow& window) {
                    return window.id == focus && focus != overlay && window.rect.width() > 50;
                });
        });
        if (!opened)
            qFatal("the save panel did not come");
        const QString path = desktop.folder(QStringLiteral("kept%1.png").arg(number));
        desktop.input().chord(Modifier::control, keyA);
        desktop.input().type(path);
        desktop.input().key(Key::returnKey);
        ResidentProgram::awaitClosed(desktop);
        check(QImage(path));
        QFile::remove(path);
    }

    void check(const QImage& picture) {
        if (picture.size() != QSize(700, 450))
            ++unreadablePictures;
    }

    Holdings holdings() {
        waitUntil([] { return false; }, 3s);
        return {ProcessFacts::of(child->id()), ClientResources::of(desktop.client(), child->id())};
    }

    Story story() const {
        Story told;
        QStringList current;
        for (const char* name : {"events-previous.jsonl", "events.jsonl"}) {
            QFile file(desktop.dataHome() + QStringLiteral("/Vistrel/Diagnostics/") + QLatin1String(name));
            if (!file.open(QIODevice::ReadOnly))
                continue;
            while (!file.atEnd()) {
                const QJsonObject event = QJsonDocument::fromJson(file.readLine()).object();
                ++told.lines;
                told.unreadable += event.isEmpty() ? 1 : 0;
                const QString action = event.value(QLatin1StringView("action")).toString();
                ++told.actions[action];
                if (action == QStringLiteral("captureRequested"))
                    current.clear();
                if (action != QStringLiteral("capturePhase"))
                    current.append(action);
                if (action == QStringLiteral("captureClosed") &&
                    current.first() == QStringLiteral("captureRequested") &&
                    current.count(QStringLiteral("layerCreated")) != strokes)
                    told.odd.append(current.join(u' '));
            }
        }
        return told;
    }

    int captures;
    DesktopSession desktop;
    std::unique_ptr<ChildProgram> child;
    int monitors = 1;
    int unreadablePictures = 0;
    int exitStatus = -1;
    Holdings before;
    Holdings after;
};

QJsonObject Soak::report() const {
    const auto pair = [](std::int64_t from, std::int64_t to) {
        return QJsonObject{{QStringLiteral("afterWarmUp"), static_cast<qint64>(from)},
                           {QStringLiteral("atTheEnd"), static_cast<qint64>(to)}};
    };
    const Story told = story();
    QJsonObject actions;
    for (auto action = told.actions.begin(); action != told.actions.end(); ++action)
        actions[action.key()] = action.value();
    return {
        {QStringLiteral("captures"), captures},
        {QStringLiteral("memoryKiB"), pair(before.process.proportionalKiB, after.process.proportionalKiB)},
        {QStringLiteral("privateKiB"), pair(before.process.privateKiB, after.process.privateKiB)},
        {QStringLiteral("openFiles"), pair(before.process.openFiles, after.process.openFiles)},
        {QStringLiteral("sharedSegments"), pair(before.process.mappedSegments, after.process.mappedSegments)},
        {QStringLiteral("serverResources"), pair(before.server.count, after.server.count)},
        {QStringLiteral("serverPixmapBytes"), pair(before.server.pixmapBytes, after.server.pixmapBytes)},
        {QStringLiteral("wrongPictures"), unreadablePictures},
        {QStringLiteral("exitStatus"), exitStatus},
        {QStringLiteral("journal"), QJsonObject{{QStringLiteral("lines"), told.lines},
                                                {QStringLiteral("unreadable"), told.unreadable},
                                                {QStringLiteral("actions"), actions}}},
        {QStringLiteral("grown"), hasGrown()},
        {QStringLiteral("consistent"), isConsistent()}};
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption({QStringLiteral("program"), QString(), QStringLiteral("path")});
    parser.addOption({QStringLiteral("output"), QString(), QStringLiteral("file")});
    parser.addOption({QStringLiteral("captures"), QString(), QStringLiteral("count"), QStringLiteral("500")});
    parser.process(application);

    Soak soak(parser.value(QStringLiteral("program")),
              std::max(warmUp + 1, parser.value(QStringLiteral("captures")).toInt()));
    soak.run();
    const QByteArray json = QJsonDocument(soak.report()).toJson();
    std::fputs(json.constData(), stdout);
    QFile file(parser.value(QStringLiteral("output")));
    if (!file.fileName().isEmpty() && !(file.open(QIODevice::WriteOnly) && file.write(json) == json.size()))
        qFatal("the report cannot be written");
    return soak.hasGrown() || !soak.isConsistent() ? 1 : 0;
}
