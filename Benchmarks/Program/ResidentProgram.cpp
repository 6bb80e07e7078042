#include "ResidentProgram.h"

#include "Desktop/Fixture/Waiting.h"

#include <QDir>
#include <QFile>

namespace {

constexpr KeyCode keyNine = 25;

/// Nothing else on these screens is as large and beyond the reach of a window manager.
std::vector<MappedWindow> overlays(DesktopSession& desktop) {
    std::vector<MappedWindow> windows = desktop.client().mappedWindows();
    std::erase_if(windows, [](const MappedWindow& window) {
        return !window.overrideRedirect || window.rect.width() < 800 || window.rect.height() < 600;
    });
    return windows;
}

/// Keys that come earlier go to whoever has the keyboard.
bool haveKeyboard(DesktopSession& desktop) {
    const xcb_window_t focused = desktop.client().focusedWindow();
    return std::ranges::any_of(overlays(desktop),
                               [focused](const auto& window) { return window.id == focused; });
}

/// Ends the meter with the last that the program told its journal.
[[noreturn]] void giveUp(const DesktopSession& desktop, const char* what) {
    QFile journal(desktop.dataHome() + QStringLiteral("/Vistrel/Diagnostics/events.jsonl"));
    constexpr int lines = 20;
    if (journal.open(QIODevice::ReadOnly))
        for (const QByteArray& line : journal.readAll().split('\n').last(lines))
            std::fprintf(stderr, "%s\n", line.constData());
    qFatal("%s", what);
}

} // namespace

void ResidentProgram::writeDefaults(const DesktopSession& desktop, const QByteArray& more) {
    QDir().mkpath(desktop.configHome() + QStringLiteral("/Vistrel"));
    QFile file(desktop.configHome() + QStringLiteral("/Vistrel/defaults.json"));
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(R"({"onboardingVersion": 2, "onboardingComplete": true)" + more + "}") < 0)
        qFatal("the defaults cannot be written");
}

std::unique_ptr<ChildProgram> ResidentProgram::start(DesktopSession& desktop, const QString& program) {
    auto child = desktop.start(program);
    QFile journal(desktop.dataHome() + QStringLiteral("/Vistrel/Diagnostics/events.jsonl"));
    const bool launched = waitUntil([&] {
        if (!child->isRunning())
            qFatal("the program ended: %s", child->standardError().constData());
        const bool told = journal.open(QIODevice::ReadOnly) && journal.readAll().contains("\"launch\"");
        journal.close();
        return told;
    });
    if (!launched)
        qFatal("the program did not tell its journal that it runs");
    // Preparation follows the launch.
    waitUntil([] { return false; }, std::chrono::seconds(1));
    return child;
}

void ResidentProgram::capture(DesktopSession& desktop, int displays) {
    desktop.input().chord(Modifier::command | Modifier::shift, keyNine);
    if (!waitUntil([&] { return std::ssize(overlays(desktop)) == displays && haveKeyboard(desktop); }))
        giveUp(desktop, "the overlay did not come with the keyboard");
}

void ResidentProgram::awaitClosed(DesktopSession& desktop) {
    if (!waitUntil([&] { return overlays(desktop).empty(); }))
        giveUp(desktop, "the overlay did not go");
}
