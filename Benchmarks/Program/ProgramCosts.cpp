// What the program costs when nothing is captured: the time from its start to its event loop, against an
// empty program with windows, in turns; the memory and the wake-ups of rest, before and after a capture.

#include "ProcessFacts.h"
#include "ResidentProgram.h"

#include "Desktop/Fixture/Waiting.h"
#include "Freeze/DisplayConfigurations.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

using namespace std::chrono_literals;

void rest(std::chrono::milliseconds duration) {
    waitUntil([] { return false; }, duration);
}

double millisecondsToEventLoop(DesktopSession& desktop, const QString& program) {
    const auto start = std::chrono::steady_clock::now();
    const auto child = desktop.start(program);
    while (!waitsForEvents(child->id()))
        if (!child->isRunning() || std::chrono::steady_clock::now() - start > patience)
            qFatal("%s has no event loop: %s", qPrintable(program), child->standardError().constData());
    const auto taken = std::chrono::steady_clock::now() - start;
    rest(300ms);
    return std::chrono::duration<double, std::milli>(taken).count();
}

QJsonObject startRow(DesktopSession& desktop, const QString& program, const QString& reference, int runs) {
    std::vector<double> figures;
    std::vector<double> references;
    for (int run = 0; run < runs; ++run) {
        references.push_back(millisecondsToEventLoop(desktop, reference));
        figures.push_back(millisecondsToEventLoop(desktop, program));
    }
    return {{QStringLiteral("name"), QStringLiteral("start to event loop")},
            {QStringLiteral("unit"), QStringLiteral("ms")},
            {QStringLiteral("value"), median(figures)},
            {QStringLiteral("reference"), median(references)},
            {QStringLiteral("ratio"), median(figures) / median(references)}};
}

void addRestRows(QJsonArray& rows, const QString& when, const ChildProgram& child,
                 std::chrono::seconds duration) {
    rest(4s);
    const ProcessFacts before = ProcessFacts::of(child.id());
    rest(duration);
    const ProcessFacts after = ProcessFacts::of(child.id());
    const auto row = [&](const QString& what, const QString& unit, double value) {
        rows.append(QJsonObject{{QStringLiteral("name"), what + when},
                                {QStringLiteral("unit"), unit},
                                {QStringLiteral("value"), value}});
    };
    constexpr double kibibytesPerMebibyte = 1024;
    row(QStringLiteral("idle PSS "), QStringLiteral("MiB"),
        static_cast<double>(after.proportionalKiB) / kibibytesPerMebibyte);
    row(QStringLiteral("idle private memory "), QStringLiteral("MiB"),
        static_cast<double>(after.privateKiB) / kibibytesPerMebibyte);
    row(QStringLiteral("idle wake-ups "), QStringLiteral("in %1 s").arg(duration.count()),
        static_cast<double>(after.sleeps - before.sleeps));
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    for (const char* name : {"program", "reference", "output"})
        parser.addOption({QString::fromLatin1(name), QString(), QStringLiteral("path")});
    parser.addOption({QStringLiteral("runs"), QString(), QStringLiteral("count"), QStringLiteral("15")});
    parser.process(application);
    const QString program = parser.value(QStringLiteral("program"));
    const QString reference = parser.value(QStringLiteral("reference"));

    DesktopSession desktop({.windowManager = true, .sessionBus = true});
    ResidentProgram::writeDefaults(desktop);
    QJsonArray rows{
        startRow(desktop, program, reference, std::max(1, parser.value(QStringLiteral("runs")).toInt()))};
    {
        const auto empty = desktop.start(reference);
        addRestRows(rows, QStringLiteral("of an empty program"), *empty, 10s);
    }
    const auto child = ResidentProgram::start(desktop, program);
    addRestRows(rows, QStringLiteral("after the start"), *child, 10s);
    ResidentProgram::capture(desktop);
    desktop.input().key(Key::escape);
    ResidentProgram::awaitClosed(desktop);
    addRestRows(rows, QStringLiteral("after a capture"), *child, 10s);

    const QByteArray json = QJsonDocument(rows).toJson();
    QFile file(parser.value(QStringLiteral("output")));
    if (file.fileName().isEmpty())
        return std::fputs(json.constData(), stdout) < 0;
    return file.open(QIODevice::WriteOnly) && file.write(json) == json.size() ? 0 : 1;
}
