#pragma once

#include "VistrelPlatform/Result.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <type_traits>

/// Replies of the X server as owned values, and its failures as errors of the domain `windowSystem`.
struct XcbFree {
    void operator()(void* pointer) const { std::free(pointer); }
};
template<class T>
using XcbOwned = std::unique_ptr<T, XcbFree>;

/// Codes above those of X errors, which are one byte.
enum class WindowSystemFault {
    connectionLost = 1000,
    displayMissing = 1001,
    pixelFormat = 1002,
    noMemory = 1003,
    shortReply = 1004,
};

Error windowSystemError(WindowSystemFault fault);
/// The reason why a reply did not come: the X error, or without one the lost connection.
Error windowSystemError(const xcb_generic_error_t* error);

/// Waits for a reply: `xcbResult<xcb_get_geometry_reply>(connection, cookie)`.
template<auto function, class Cookie>
auto xcbResult(xcb_connection_t* connection, Cookie cookie) {
    using Reply = std::remove_pointer_t<decltype(function(connection, cookie, nullptr))>;
    xcb_generic_error_t* raw = nullptr;
    XcbOwned<Reply> reply(function(connection, cookie, &raw));
    const XcbOwned<xcb_generic_error_t> error(raw);
    if (!reply)
        return Result<XcbOwned<Reply>>(tl::unexpected(windowSystemError(error.get())));
    return Result<XcbOwned<Reply>>(std::move(reply));
}

/// The same where the reason does not matter; null when there is no reply.
template<auto function, class Cookie>
auto xcbReply(xcb_connection_t* connection, Cookie cookie) {
    using Reply = std::remove_pointer_t<decltype(function(connection, cookie, nullptr))>;
    xcb_generic_error_t* raw = nullptr;
    XcbOwned<Reply> reply(function(connection, cookie, &raw));
    std::free(raw);
    return reply;
}

/// The protocol's 16-bit numbers. Screens are smaller than their range.
inline std::int16_t xcbCoordinate(int value) {
    return static_cast<std::int16_t>(value);
}
inline std::uint16_t xcbLength(int value) {
    return static_cast<std::uint16_t>(value);
}

/// The connection of the toolkit; null when it does not run on X.
xcb_connection_t* toolkitConnection();
xcb_window_t rootWindow(xcb_connection_t* connection);
/// XCB_NONE when the server cannot be asked.
xcb_atom_t internAtom(xcb_connection_t* connection, const char* name);
