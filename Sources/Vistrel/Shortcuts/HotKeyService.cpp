#include "Shortcuts/HotKeyService.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <limits>

namespace {

using Reason = ShortcutRegistrationError::Reason;

tl::unexpected<Error> failed(const ScreenshotShortcut& shortcut, Reason reason, HotKeyStatus status = 0) {
    return tl::unexpected(ShortcutRegistrationFailure{shortcut, {reason, status}}.error());
}

bool isTaken(const ScreenshotShortcut& shortcut, const std::vector<SystemShortcut>& table) {
    return std::ranges::any_of(table, [&shortcut](const SystemShortcut& entry) {
        return entry.enabled && entry.keyCode == shortcut.keyCode && entry.modifiers == shortcut.modifiers;
    });
}

std::vector<ScreenshotShortcut> withoutRepeats(const std::vector<ScreenshotShortcut>& requested) {
    std::vector<ScreenshotShortcut> unique;
    for (const ScreenshotShortcut& shortcut : requested) {
        if (std::ranges::none_of(unique, [&](const auto& other) { return other.sameChord(shortcut); }))
            unique.push_back(shortcut);
    }
    return unique;
}

} // namespace

HotKeyService::HotKeyService(HotKeyBackend& registrar, const SystemShortcuts& desktop)
    : backend(registrar), system(desktop) {
    backend.onPressed = [this](HotKeyId id, CaptureTime::Instant instant) { activate(id, instant); };
}

HotKeyService::~HotKeyService() {
    unregister();
    backend.onPressed = nullptr;
}

HotKeyId HotKeyService::takeNextID() {
    // Shared by every service of the process, so that a late press of a released chord is never taken
    // for one of a newer chord.
    static HotKeyId nextID = 0;
    VISTREL_PRECONDITION(nextID < std::numeric_limits<HotKeyId>::max(), "out of hot key identifiers");
    return ++nextID;
}

Result<void> HotKeyService::registerShortcuts(const std::vector<ScreenshotShortcut>& requested) {
    VISTREL_PRECONDITION(QThread::currentThread() == QCoreApplication::instance()->thread(),
                         "hot keys belong to the main thread");
    const std::vector<ScreenshotShortcut> wanted = withoutRepeats(requested);
    if (auto checked = checkConflicts(wanted); !checked)
        return checked;
    const Result<Registrations> updated = registerMissing(wanted);
    if (!updated)
        return tl::unexpected(updated.error());
    for (const Registration& registration : registrations) {
        if (std::ranges::none_of(wanted, [&](const auto& s) { return s.sameChord(registration.shortcut); }))
            backend.unregisterHotKey(registration.id);
    }
    registrations = *updated;
    return {};
}

Result<void> HotKeyService::checkConflicts(const std::vector<ScreenshotShortcut>& requested) {
    if (requested.empty())
        return {};
    const auto table = system.read();
    if (!table)
        return failed(requested.front(), Reason::cannotInspectSystemShortcuts);
    for (const ScreenshotShortcut& shortcut : requested) {
        if (!isTaken(shortcut, *table))
            continue;
        // It must not stay ours behind the desktop's back.
        drop(shortcut);
        return failed(shortcut, Reason::systemConflict);
    }
    return {};
}

Result<HotKeyService::Registrations>
HotKeyService::registerMissing(const std::vector<ScreenshotShortcut>& requested) {
    Registrations updated;
    std::vector<HotKeyId> added;
    for (const ScreenshotShortcut& shortcut : requested) {
        const auto current = std::ranges::find_if(
            registrations, [&shortcut](const Registration& r) { return r.shortcut.sameChord(shortcut); });
        if (current != registrations.end()) {
            updated.push_back({shortcut, current->id});
            continue;
        }
        const HotKeyId id = takeNextID();
        const HotKeyStatus status =
            isPaused ? hotKeyRegistered : backend.registerHotKey(shortcut.keyCode, shortcut.modifiers, id);
        if (status != hotKeyRegistered) {
            for (const HotKeyId earlier : added)
                backend.unregisterHotKey(earlier);
            return failed(shortcut, Reason::unavailable, status);
        }
        added.push_back(id);
        updated.push_back({shortcut, id});
    }
    return updated;
}

void HotKeyService::drop(const ScreenshotShortcut& shortcut) {
    std::erase_if(registrations, [this, &shortcut](const Registration& registration) {
        if (!registration.shortcut.sameChord(shortcut))
            return false;
        backend.unregisterHotKey(registration.id);
        return true;
    });
}

void HotKeyService::unregister() {
    for (const Registration& registration : registrations)
        backend.unregisterHotKey(registration.id);
    registrations.clear();
}

std::vector<ScreenshotShortcut> HotKeyService::shortcuts() const {
    std::vector<ScreenshotShortcut> result;
    for (const Registration& registration : registrations)
        result.push_back(registration.shortcut);
    return result;
}

void HotKeyService::setPaused(bool paused) {
    if (paused == isPaused)
        return;
    isPaused = paused;
    if (paused) {
        for (const Registration& registration : registrations)
            backend.unregisterHotKey(registration.id);
        return;
    }
    std::erase_if(registrations, [this](Registration& registration) {
        registration.id = takeNextID();
        return backend.registerHotKey(registration.shortcut.keyCode, registration.shortcut.modifiers,
                                      registration.id) != hotKeyRegistered;
    });
}

Result<bool> HotKeyService::conflictsWithSystem(const ScreenshotShortcut& shortcut,
                                                const SystemShortcuts& desktop) {
    const auto table = desktop.read();
    if (!table)
        return failed(shortcut, Reason::cannotInspectSystemShortcuts);
    return isTaken(shortcut, *table);
}

void HotKeyService::activate(HotKeyId id, CaptureTime::Instant instant) const {
    const bool ours = std::ranges::any_of(registrations, [id](const Registration& r) { return r.id == id; });
    if (ours && onActivation)
        onActivation(instant);
}
