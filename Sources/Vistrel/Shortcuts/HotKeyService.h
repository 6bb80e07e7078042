#pragma once

#include "Shortcuts/ShortcutRegistrationFailure.h"
#include "VistrelPlatform/HotKeyBackend.h"
#include "VistrelPlatform/SystemShortcuts.h"

#include <functional>
#include <vector>

/// Keeps a set of shortcuts registered as global hot keys and reports their presses. Main thread.
/// Refuses chords that the desktop itself uses.
class HotKeyService {
public:
    /// Both are borrowed and outlive the service; it is the backend's only listener.
    HotKeyService(HotKeyBackend& registrar, const SystemShortcuts& desktop);
    HotKeyService(const HotKeyService&) = delete;
    HotKeyService& operator=(const HotKeyService&) = delete;
    ~HotKeyService();

    /// Replaces the registered set. A failure is a `ShortcutRegistrationFailure` and leaves the earlier
    /// set in force, except for a chord that the desktop has taken since.
    Result<void> registerShortcuts(const std::vector<ScreenshotShortcut>& requested);
    void unregister();
    /// What is registered, in the order it was asked for.
    std::vector<ScreenshotShortcut> shortcuts() const;

    /// Lets the chords go without forgetting them, so that they can be typed into the recorder. A chord
    /// that another program took meanwhile is dropped from the set when it is resumed.
    void setPaused(bool paused);

    /// Whether an enabled shortcut of the desktop has exactly this key and these modifiers. An
    /// unreadable table is a `cannotInspectSystemShortcuts`.
    static Result<bool> conflictsWithSystem(const ScreenshotShortcut& shortcut,
                                            const SystemShortcuts& desktop);

    /// Called with the instant of the physical press.
    std::function<void(CaptureTime::Instant)> onActivation;

private:
    struct Registration {
        ScreenshotShortcut shortcut;
        HotKeyId id = 0;
    };
    using Registrations = std::vector<Registration>;

    static HotKeyId takeNextID();
    Result<void> checkConflicts(const std::vector<ScreenshotShortcut>& requested);
    Result<Registrations> registerMissing(const std::vector<ScreenshotShortcut>& requested);
    void drop(const ScreenshotShortcut& shortcut);
    void activate(HotKeyId id, CaptureTime::Instant instant) const;

    HotKeyBackend& backend;
    const SystemShortcuts& system;
    Registrations registrations;
    bool isPaused = false;
};
