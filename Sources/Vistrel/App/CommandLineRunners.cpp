#include "App/CommandLineRunners.h"

#include "App/BufferProfiler.h"
#include "App/LaunchAtLoginService.h"
#include "App/VistrelIcon.h"

#include <QFile>

#include <charconv>
#include <cmath>

namespace CommandLineRunners {
namespace {

constexpr ModifierMask commandShift = Modifier::command | Modifier::shift;
const ScreenshotShortcut preferredShortcut{21, commandShift, QStringLiteral("4")};
const ScreenshotShortcut fallbackShortcut{25, commandShift, QStringLiteral("9")};

QString word(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString conflictWord(const Diagnosis& diagnosis, const ScreenshotShortcut& shortcut) {
    const Result<bool> conflict = diagnosis.conflictsWithSystem(shortcut);
    return conflict ? word(*conflict) : QStringLiteral("unknown");
}

/// The fewest digits that read back as the same value, with at least one after the point.
QString shortestDecimal(double value) {
    std::array<char, 32> digits{};
    const auto [end, fault] = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    QString text = QString::fromLatin1(digits.data(), fault == std::errc() ? end - digits.data() : 0);
    if (!text.contains(u'.') && !text.contains(u'e'))
        text += QStringLiteral(".0");
    return text;
}

QString displayLine(const Screen& screen) {
    const auto pixels = [&screen](double points) {
        return std::max(1LL, std::llround(points * screen.scale));
    };
    return QStringLiteral("Display %1: %2 × %3, scale %4")
        .arg(screen.displayID.value_or(0))
        .arg(pixels(screen.pointSize().width))
        .arg(pixels(screen.pointSize().height))
        .arg(shortestDecimal(screen.scale));
}

} // namespace

int reportUsage(const CommandLineMode::UsageError& error, const Console& console) {
    console.printErrorLine(error.text);
    return error.status;
}

int printLastCaptureTiming(const QString& path, const Console& console) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        console.printErrorLine(QStringLiteral("No readable capture timing report: ") + file.errorString());
        return 1;
    }
    const QByteArray report = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        console.printErrorLine(QStringLiteral("No readable capture timing report: ") + file.errorString());
        return 1;
    }
    console.output(report);
    console.output("\n");
    return 0;
}

int exportIconset(const CommandLineMode::ExportIconset& mode, const Console& console) {
    if (const auto exported = VistrelIcon::exportIconset(mode.directory); !exported) {
        console.printErrorLine(QStringLiteral("Icon export failed: ") + exported.error().description);
        return 1;
    }
    return 0;
}

int profileBuffer(const CommandLineMode::ProfileBuffer& mode, const Console& console) {
    const BufferProfiler::Request request{mode.width, mode.height, mode.displays, mode.maximumFPS};
    if (const auto profiled = BufferProfiler::run(request, console); !profiled) {
        console.printErrorLine(QStringLiteral("Buffer profiling failed: ") + profiled.error().description);
        return 1;
    }
    return 0;
}

int enableLaunchAtLogin(LaunchAtLoginService& service, const Console& console) {
    if (const auto enabled = service.setEnabled(true); !enabled) {
        console.printErrorLine(QStringLiteral("Launch at login failed: ") + enabled.error().description);
        return 1;
    }
    console.printLine(QStringLiteral("Launch at login status: %1").arg(static_cast<int>(service.status())));
    return 0;
}

int printDiagnostics(const Diagnosis& diagnosis, const Console& console) {
    console.printLine(QStringLiteral("Capture mode: on demand; no background stream or rewind"));
    console.printLine(
        QStringLiteral("Launch at login status: %1").arg(static_cast<int>(diagnosis.loginItem)));
    console.printLine(QStringLiteral("Screen capture permission: ") + word(diagnosis.screenCaptureGranted));
    console.printLine(QStringLiteral("Preferred shortcut conflicts with macOS: ") +
                      conflictWord(diagnosis, preferredShortcut));
    console.printLine(QStringLiteral("Fallback shortcut conflicts with macOS: ") +
                      conflictWord(diagnosis, fallbackShortcut));
    for (const Screen& screen : diagnosis.screens)
        console.printLine(displayLine(screen));
    return 0;
}

} // namespace CommandLineRunners
