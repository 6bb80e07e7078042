#pragma once

#include "VistrelPlatform/CaptureTime.h"
#include "VistrelPlatform/Keyboard.h"

#include <cstdint>
#include <functional>

using HotKeyId = std::uint32_t;
using HotKeyStatus = std::int32_t;

inline constexpr HotKeyStatus hotKeyRegistered = 0;
/// The chord is held by another program.
inline constexpr HotKeyStatus hotKeyExists = -9878;

/// Registers key chords with the window system. Main thread. Every id is registered at most once.
class HotKeyBackend {
public:
    HotKeyBackend() = default;
    HotKeyBackend(const HotKeyBackend&) = delete;
    HotKeyBackend& operator=(const HotKeyBackend&) = delete;
    virtual ~HotKeyBackend() = default;

    /// 0 when the chord is ours from now on; `hotKeyExists` when another program holds it; another
    /// negative number for any other refusal. A refused chord leaves nothing registered.
    virtual HotKeyStatus registerHotKey(KeyCode key, ModifierMask modifiers, HotKeyId id) = 0;
    /// An id that is not registered is ignored.
    virtual void unregisterHotKey(HotKeyId id) = 0;

    /// Called with the id and the instant of the physical press.
    std::function<void(HotKeyId, CaptureTime::Instant)> onPressed;
};
