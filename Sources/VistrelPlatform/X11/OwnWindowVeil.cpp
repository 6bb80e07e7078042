#include "VistrelPlatform/X11/OwnWindowVeil.h"

#include <chrono>
#include <thread>

namespace {

using namespace std::chrono_literals;

/// Compositors answer with their next frame or two; one that fades takes longer.
constexpr auto answerTime = 200ms;
constexpr auto restTime = 35ms;
constexpr auto longestFade = 600ms;
constexpr auto pollTime = 4ms;
/// Points looked at per window and axis.
constexpr int sampleCount = 6;

} // namespace

OwnWindowVeil::OwnWindowVeil(std::shared_ptr<X11Connection> server) : connection(std::move(server)) {}

OwnWindowVeil::Lowered::Lowered(OwnWindowVeil& owner, std::vector<xcb_window_t> transparent)
    : veil(owner), windows(std::move(transparent)) {
    const std::lock_guard lock(veil.mutex);
    for (const xcb_window_t window : windows)
        if (veil.holders[window]++ == 0)
            veil.setTransparent(window, true);
    xcb_flush(veil.connection->get());
}

OwnWindowVeil::Lowered::~Lowered() {
    const std::lock_guard lock(veil.mutex);
    for (const xcb_window_t window : windows)
        if (--veil.holders[window] == 0) {
            veil.holders.erase(window);
            veil.setTransparent(window, false);
        }
    xcb_flush(veil.connection->get());
}

void OwnWindowVeil::setTransparent(xcb_window_t window, bool transparent) const {
    const std::uint32_t opacity = 0;
    if (transparent)
        xcb_change_property(connection->get(), XCB_PROP_MODE_REPLACE, window, connection->atoms().opacity,
                            XCB_ATOM_CARDINAL, 32, 1, &opacity);
    else
        xcb_delete_property(connection->get(), window, connection->atoms().opacity);
}

std::vector<std::uint32_t> OwnWindowVeil::samples(const std::vector<TopLevelWindow>& shown) const {
    xcb_connection_t* xcb = connection->get();
    std::vector<xcb_get_image_cookie_t> asked;
    for (const TopLevelWindow& window : shown)
        for (int row = 0; row < sampleCount; ++row)
            for (int column = 0; column < sampleCount; ++column) {
                const QPoint point =
                    window.rect.topLeft() + QPoint(window.rect.width() * (2 * column + 1) / (2 * sampleCount),
                                                   window.rect.height() * (2 * row + 1) / (2 * sampleCount));
                asked.push_back(xcb_get_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, connection->root(),
                                              xcbCoordinate(point.x()), xcbCoordinate(point.y()), 1, 1, ~0U));
            }
    std::vector<std::uint32_t> pixels;
    for (const xcb_get_image_cookie_t cookie : asked) {
        const auto reply = xcbReply<xcb_get_image_reply>(xcb, cookie);
        const bool whole = reply && xcb_get_image_data_length(reply.get()) >= 4;
        pixels.push_back(whole ? *reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()))
                               : 0);
    }
    return pixels;
}

std::unique_ptr<OwnWindowVeil::Lowered> OwnWindowVeil::lower(const std::vector<TopLevelWindow>& shown,
                                                             const std::vector<xcb_window_t>& clients) {
    using Clock = std::chrono::steady_clock;
    std::vector<xcb_window_t> windows = clients;
    for (const TopLevelWindow& window : shown)
        windows.push_back(window.id);
    const std::vector<std::uint32_t> before = samples(shown);
    auto lowered = std::make_unique<Lowered>(*this, std::move(windows));

    const auto start = Clock::now();
    std::vector<std::uint32_t> current = before;
    while (current == before) {
        if (Clock::now() - start > answerTime)
            return nullptr;
        std::this_thread::sleep_for(pollTime);
        current = samples(shown);
    }
    auto lastChange = Clock::now();
    while (Clock::now() - lastChange < restTime && Clock::now() - start < longestFade) {
        std::this_thread::sleep_for(pollTime);
        if (std::vector<std::uint32_t> next = samples(shown); next != current) {
            current = std::move(next);
            lastChange = Clock::now();
        }
    }
    return lowered;
}
