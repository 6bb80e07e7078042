#include "VistrelPlatform/X11/X11HotKeyBackend.h"

#include "VistrelPlatform/KeyCodes.h"
#include "VistrelPlatform/X11/X11TestSession.h"

#include <gtest/gtest.h>

namespace {

constexpr KeyCode nine = 25;
constexpr KeyCode capsLock = 57;
constexpr KeyCode numLock = 71;
constexpr ModifierMask superShift = Modifier::command | Modifier::shift;
constexpr std::uint32_t superShiftState = XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT;
using Presses = std::vector<HotKeyId>;

class X11HotKeyBackendTest : public ::testing::Test {
protected:
    X11HotKeyBackendTest() {
        backend->onPressed = [this](HotKeyId id, CaptureTime::Instant instant) {
            pressed.push_back(id);
            lastInstant = instant;
        };
    }

    /// What has been pressed up to now, the server's events included.
    Presses pressedSoFar() {
        settle();
        return std::exchange(pressed, {});
    }
    Presses press() {
        input.chord(superShift, nine);
        return pressedSoFar();
    }
    bool isFree() {
        const bool free = client.grabKey(superShiftState, nineCode) == 0;
        client.ungrabKey(superShiftState, nineCode);
        return free;
    }

    XClient& client = testSession().client();
    XTestInput& input = testSession().input();
    std::unique_ptr<X11HotKeyBackend> backend = std::make_unique<X11HotKeyBackend>();
    Presses pressed;
    CaptureTime::Instant lastInstant;
    std::uint8_t nineCode = static_cast<std::uint8_t>(*scanCodeForKeyCode(nine));
};

} // namespace

TEST_F(X11HotKeyBackendTest, TellsTheInstantAndLooksAtModifiersButNotAtLocks) {
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 7), hotKeyRegistered);
    for (const std::vector<KeyCode>& locks :
         {std::vector<KeyCode>{}, {capsLock}, {numLock}, {capsLock, numLock}}) {
        SCOPED_TRACE(locks.size());
        for (const KeyCode lock : locks)
            input.key(lock);
        const auto before = CaptureTime::now();
        EXPECT_EQ(press(), Presses{7});
        // The server counts whole milliseconds.
        EXPECT_GE(lastInstant, before - std::chrono::milliseconds(2));
        EXPECT_LE(lastInstant, CaptureTime::now());
        for (const KeyCode lock : locks)
            input.key(lock);
    }
    input.chord(superShift | Modifier::control, nine);
    input.chord(Modifier::command, nine);
    input.key(nine);
    EXPECT_EQ(pressedSoFar(), Presses{});
}

TEST_F(X11HotKeyBackendTest, AHeldKeyFiresOnce) {
    ASSERT_EQ(backend->registerHotKey(nine, Modifier::command, 1), hotKeyRegistered);
    struct RepeatCounter : QAbstractNativeEventFilter {
        int presses = 0;
        bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
            presses += (static_cast<xcb_generic_event_t*>(message)->response_type & 0x7F) == XCB_KEY_PRESS;
            return false;
        }
    } counter;
    QCoreApplication::instance()->installNativeEventFilter(&counter);
    input.pressModifiers(Modifier::command);
    input.pressKey(nine);
    EXPECT_TRUE(waitUntil([&] { return counter.presses >= 4; }));
    EXPECT_EQ(pressedSoFar(), Presses{1});
    input.releaseKey(nine);
    input.key(nine);
    input.releaseModifiers(Modifier::command);
    EXPECT_EQ(pressedSoFar(), Presses{1});
}

TEST_F(X11HotKeyBackendTest, AChordIsHadAsAWholeOrNotAtAllAndGivenUpAgain) {
    // Another program holds one of the lock variants only.
    ASSERT_EQ(client.grabKey(superShiftState | XCB_MOD_MASK_2, nineCode), 0);
    EXPECT_EQ(backend->registerHotKey(nine, superShift, 1), hotKeyExists);
    EXPECT_EQ(press(), Presses{});
    EXPECT_TRUE(isFree()) << "something of ours was left behind";
    client.ungrabKey(superShiftState | XCB_MOD_MASK_2, nineCode);

    EXPECT_EQ(backend->registerHotKey(nine, superShift, 1), hotKeyRegistered);
    // The same chord under another id, as when only its label changes.
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 2), hotKeyRegistered);
    backend->unregisterHotKey(1);
    EXPECT_EQ(press(), Presses{2});
    EXPECT_FALSE(isFree());
    backend->unregisterHotKey(2);
    EXPECT_TRUE(waitUntil([&] { return isFree(); }));

    ASSERT_EQ(backend->registerHotKey(nine, superShift, 3), hotKeyRegistered);
    backend.reset();
    EXPECT_TRUE(waitUntil([&] { return isFree(); }));
}

TEST_F(X11HotKeyBackendTest, FollowsTheModifiersToAnotherPlace) {
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 1), hotKeyRegistered);
    for (const auto& [former, now] : {std::pair("clear mod4", "add mod3 = Super_L"),
                                      {"clear mod3", "add mod4 = Super_L Super_R Hyper_L"}}) {
        const auto remap =
            testSession().start(QStringLiteral("xmodmap"), {QStringLiteral("-e"), QLatin1String(former),
                                                            QStringLiteral("-e"), QLatin1String(now)});
        ASSERT_EQ(remap->waitForExit(patience), 0);
        // The change is obeyed once it has come to rest.
        Presses told;
        EXPECT_TRUE(waitUntil([&] { return !(told = press()).empty(); })) << now;
        EXPECT_EQ(told, Presses{1}) << now;
    }
}

TEST(X11ServerTime, FollowsTheHostClockHere) {
    const X11ServerTime time = X11ServerTime::measure(testSession().displayName().constData());
    EXPECT_TRUE(time.isExact());
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(CaptureTime::hostTime());
    // Five seconds back, also across the wrap of the server's 32 bits.
    const auto earlier = static_cast<std::uint32_t>(now.count()) - 5000U;
    EXPECT_NEAR(CaptureTime::milliseconds(CaptureTime::now() - time.instantOf(earlier)), 5000, 500);
    const X11ServerTime unknown(false);
    EXPECT_LT(CaptureTime::milliseconds(CaptureTime::now() - unknown.instantOf(earlier)), 500);
    EXPECT_FALSE(X11ServerTime::measure(":123456").isExact());
}
