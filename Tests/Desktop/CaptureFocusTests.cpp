#include "Desktop/ApplicationOnDesktop.h"

#include <gtest/gtest.h>

namespace {

const QString settingsWindow = QStringLiteral("Vistrel Settings");

DesktopSession::Options managedDesktop() {
    return {.screenSize = {1280, 720}, .windowManager = true, .sessionBus = true};
}

/// True when the keyboard stays with a window that covers the display, after all handing around.
bool keyboardStaysWithOverlay(DesktopSession& session) {
    constexpr int calm = 60;
    int looks = 0;
    return waitUntil([&] {
        const auto windows = session.client().mappedWindows();
        const bool held = std::ranges::any_of(
            windows, [&session, focused = session.client().focusedWindow()](const MappedWindow& window) {
                return window.id == focused && window.rect.size() == session.client().screenSize();
            });
        looks = held ? looks + 1 : 0;
        return looks == calm;
    });
}

} // namespace

// A window manager hands the keyboard around whenever a window comes or goes, sometimes a little late.
TEST(CaptureFocus, StaysWithTheOverlayWhateverOpensOrClosesBeforeIt) {
    ApplicationOnDesktop vistrel(managedDesktop());
    vistrel.start();
    constexpr int rounds = 6;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        ASSERT_EQ(vistrel.runAgain({}), 0);
        ASSERT_TRUE(vistrel.opens(settingsWindow));
        if (round % 2 == 0)
            vistrel.session.input().key(Key::escape);
        const bool ready = vistrel.capture();
        ASSERT_TRUE(ready) << vistrel.story();
        ASSERT_TRUE(keyboardStaysWithOverlay(vistrel.session));
        // Closes the overlay and nothing else.
        vistrel.session.input().key(Key::escape);
        ASSERT_TRUE(vistrel.waitFor(QStringLiteral("captureClosed"), round + 1)) << vistrel.story();
        if (round % 2 == 1) {
            ASSERT_TRUE(vistrel.opens(settingsWindow));
            vistrel.session.input().key(Key::escape);
        }
        ASSERT_TRUE(vistrel.closes(settingsWindow));
    }
}
