#pragma once

/// A page of the desktop's own settings program.
enum class SettingsPage { keyboardShortcuts, screenRecording, loginItems };

/// Opens the desktop's settings. Main thread. Returns at once; nothing is waited for.
class SettingsPages {
public:
    SettingsPages() = default;
    SettingsPages(const SettingsPages&) = delete;
    SettingsPages& operator=(const SettingsPages&) = delete;
    virtual ~SettingsPages() = default;

    /// Whether `open` would find a program to start.
    virtual bool has(SettingsPage page) const = 0;
    /// False when no settings program with such a page could be started.
    virtual bool open(SettingsPage page) = 0;
};
