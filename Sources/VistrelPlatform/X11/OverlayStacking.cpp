#include "VistrelPlatform/X11/OverlayStacking.h"

#include <algorithm>

namespace {

constexpr std::size_t mostRaises = 20;
constexpr std::chrono::seconds raisePeriod{2};

} // namespace

OverlayStacking::OverlayStacking(xcb_connection_t* toolkitOfOverlay) : toolkit(toolkitOfOverlay) {}

std::vector<TopLevelWindow> OverlayStacking::stackFrom(xcb_window_t overlay, QRect rect) {
    if (!windows) {
        connection = std::make_shared<X11Connection>(QByteArray());
        windows.emplace(connection, TopLevelWindows::Client::of(toolkit));
    }
    connection->discardEvents();
    std::vector<TopLevelWindow> all = windows->visible(rect);
    all.erase(all.begin(), std::ranges::find(all, overlay, &TopLevelWindow::id));
    return all;
}

bool OverlayStacking::isCovered(xcb_window_t overlay, QRect rect) {
    return std::ranges::any_of(stackFrom(overlay, rect), [&](const TopLevelWindow& window) {
        return !window.own && window.rect.contains(rect);
    });
}

void OverlayStacking::restore(xcb_window_t overlay, QRect rect) {
    const std::vector<TopLevelWindow> stack = stackFrom(overlay, rect);
    const auto covering = [&](const TopLevelWindow& window) {
        return !window.own && !window.rect.contains(rect);
    };
    if (std::ranges::none_of(stack, covering) || !mayRaise())
        return;
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    for (const TopLevelWindow& window : stack)
        if (window.own)
            xcb_configure_window(toolkit, window.id, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_flush(toolkit);
}

bool OverlayStacking::mayRaise() {
    const auto now = std::chrono::steady_clock::now();
    std::erase_if(raises, [&](auto time) { return now - time > raisePeriod; });
    if (raises.size() >= mostRaises)
        return false;
    raises.push_back(now);
    return true;
}
