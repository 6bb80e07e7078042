// Measures the milliseconds from a key press to the frozen overlay being visible on every display, for the
// program and for the bare reference in the same run. Key and eyes are other clients of the same server.

#include "DisplayConfigurations.h"
#include "Program/ResidentProgram.h"

#include "Desktop/Fixture/Waiting.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <poll.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <set>

namespace {

constexpr KeyCode keyNine = 25;
constexpr ModifierMask chordModifiers = Modifier::command | Modifier::shift;

double milliseconds(std::chrono::steady_clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

/// A window over each display, below everything that comes later, that is told when it is covered.
class Watcher {
public:
    Watcher(DesktopSession& desktop, const DisplayConfiguration& configuration)
        : client(desktop.displayName()) {
        desktop.client().setRootPicture(detailedPicture(configuration.screenSize));
        for (const MonitorSetup& monitor : configuration.monitors) {
            const xcb_window_t window =
                client.createWindow({.rect = monitor.rect, .eventMask = XCB_EVENT_MASK_VISIBILITY_CHANGE});
            const std::uint32_t parentRelative = XCB_BACK_PIXMAP_PARENT_RELATIVE;
            xcb_change_window_attributes(client.connection(), window, XCB_CW_BACK_PIXMAP, &parentRelative);
            client.map(window);
            windows.insert(window);
            samples.push_back(monitor.rect.center());
            plain.push_back(client.pixelAt(samples.back()));
        }
    }

    /// When the last display was covered and showed other pixels than before.
    std::chrono::steady_clock::time_point awaitCovered() {
        await(XCB_VISIBILITY_FULLY_OBSCURED);
        while (!allDimmed()) {
        }
        return std::chrono::steady_clock::now();
    }
    void awaitUncovered() { await(XCB_VISIBILITY_UNOBSCURED); }

private:
    void await(std::uint8_t state) {
        std::set<xcb_window_t> waiting = windows;
        const auto end = std::chrono::steady_clock::now() + patience;
        while (!waiting.empty()) {
            while (const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event{
                xcb_poll_for_event(client.connection()), &std::free}) {
                const auto& notice = reinterpret_cast<const xcb_visibility_notify_event_t&>(*event);
                if ((event->response_type & 0x7F) == XCB_VISIBILITY_NOTIFY && notice.state == state)
                    waiting.erase(notice.window);
            }
            pollfd readable{xcb_get_file_descriptor(client.connection()), POLLIN, 0};
            if (!waiting.empty())
                poll(&readable, 1, 1000);
            if (std::chrono::steady_clock::now() > end)
                qFatal("the overlay did not %s", state == XCB_VISIBILITY_UNOBSCURED ? "go" : "come");
        }
    }

    bool allDimmed() {
        for (std::size_t index = 0; index < samples.size(); ++index)
            if (client.pixelAt(samples[index]) == plain[index])
                return false;
        return true;
    }

    XClient client;
    std::set<xcb_window_t> windows;
    std::vector<QPoint> samples;
    std::vector<QRgb> plain;
};

/// For a program that keeps no journal.
void awaitReady(ChildProgram& program) {
    const bool ready = waitUntil([&] {
        if (!program.isRunning())
            qFatal("the program ended: %s", program.standardError().constData());
        return program.standardOutput().startsWith("ready");
    });
    if (!ready)
        qFatal("the program did not take its shortcut");
}

std::vector<double> measure(const QString& program, bool isReference,
                            const DisplayConfiguration& configuration, int runs) {
    DesktopSession desktop({.screenSize = configuration.screenSize,
                            .monitors = configuration.monitors,
                            .scaleFactors = {},
                            .sessionBus = true});
    ResidentProgram::writeDefaults(desktop);
    Watcher watcher(desktop, configuration);
    const auto child = isReference ? desktop.start(program) : ResidentProgram::start(desktop, program);
    if (isReference)
        awaitReady(*child);
    std::vector<double> figures;
    for (int run = 0; run < runs; ++run) {
        // What the program does after it has started or after a capture is not part of the next one.
        waitUntil([] { return false; }, std::chrono::milliseconds(400));
        XTestInput& input = desktop.input();
        input.pressModifiers(chordModifiers);
        const auto pressed = std::chrono::steady_clock::now();
        input.pressKey(keyNine);
        const auto visible = watcher.awaitCovered();
        figures.push_back(milliseconds(visible - pressed));
        input.releaseKey(keyNine);
        input.releaseModifiers(chordModifiers);
        waitUntil([] { return false; }, std::chrono::milliseconds(200));
        input.key(Key::escape);
        watcher.awaitUncovered();
    }
    return figures;
}

QJsonObject described(const std::vector<double>& figures) {
    QJsonArray all;
    for (const double figure : figures)
        all.append(figure);
    const std::vector<double> later(figures.begin() + 1, figures.end());
    return {{QStringLiteral("firstMS"), figures.front()},
            {QStringLiteral("medianMS"), median(later)},
            {QStringLiteral("allMS"), all}};
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption(
        {QStringLiteral("program"), QStringLiteral("The program to measure."), QStringLiteral("path")});
    parser.addOption(
        {QStringLiteral("reference"), QStringLiteral("The bare reference."), QStringLiteral("path")});
    parser.addOption({QStringLiteral("output"), QStringLiteral("Where the JSON goes; else standard output."),
                      QStringLiteral("file")});
    parser.addOption({QStringLiteral("runs"), QStringLiteral("Captures per configuration."),
                      QStringLiteral("count"), QStringLiteral("11")});
    parser.process(application);
    const int runs = std::max(2, parser.value(QStringLiteral("runs")).toInt());

    QJsonArray rows;
    std::vector<DisplayConfiguration> configurations = displayConfigurations();
    std::ranges::move(growingConfigurations(), std::back_inserter(configurations));
    for (const DisplayConfiguration& configuration : configurations) {
        QJsonObject row{{QStringLiteral("displays"), QLatin1String(configuration.name)}};
        for (const QLatin1StringView kind : {QLatin1StringView("reference"), QLatin1StringView("program")}) {
            const QString path = parser.value(kind);
            if (!path.isEmpty())
                row[kind] =
                    described(measure(path, kind == QLatin1StringView("reference"), configuration, runs));
        }
        const auto medianOf = [&row](QLatin1StringView kind) {
            return row.value(kind).toObject().value(QLatin1StringView("medianMS")).toDouble();
        };
        const double reference = medianOf(QLatin1StringView("reference"));
        const double program = medianOf(QLatin1StringView("program"));
        if (reference > 0 && program > 0)
            row[QStringLiteral("ratio")] = program / reference;
        rows.append(row);
    }
    const QByteArray json = QJsonDocument(rows).toJson();
    QFile file(parser.value(QStringLiteral("output")));
    if (file.fileName().isEmpty()) {
        std::fputs(json.constData(), stdout);
        return 0;
    }
    return file.open(QIODevice::WriteOnly) && file.write(json) == json.size() ? 0 : 1;
}
