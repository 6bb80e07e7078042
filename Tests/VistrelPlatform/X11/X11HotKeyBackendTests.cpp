#include "VistrelPlatform/X11/X11HotKeyBackend.h"

#include "Desktop/Fixture/Waiting.h"
#include "VistrelPlatform/KeyCodes.h"
#include "VistrelPlatform/X11/X11TestSession.h"

#include <gtest/gtest.h>

namespace {

constexpr KeyCode nine = 25;
constexpr KeyCode capsLock = 57;
constexpr KeyCode numLock = 71;
constexpr ModifierMask superShift = Modifier::command | Modifier::shift;
constexpr std::uint32_t superShiftState = XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT;

class X11HotKeyBackendTest : public ::testing::Test {
protected:
    X11HotKeyBackendTest() {
        backend->onPressed = [this](HotKeyId id, CaptureTime::Instant instant) {
            pressed.push_back(id);
            lastInstant = instant;
        };
    }

    /// What has been pressed up to now, the server's events included.
    std::vector<HotKeyId> pressedSoFar() {
        waitUntil([] { return false; }, std::chrono::milliseconds(60));
        return std::exchange(pressed, {});
    }

    XClient& client = testSession().client();
    XTestInput& input = testSession().input();
    std::unique_ptr<X11HotKeyBackend> backend = std::make_unique<X11HotKeyBackend>();
    std::vector<HotKeyId> pressed;
    CaptureTime::Instant lastInstant;
    std::uint8_t nineCode = static_cast<std::uint8_t>(*scanCodeForKeyCode(nine));
};

TEST_F(X11HotKeyBackendTest, TellsTheInstantOfThePress) {
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 7), hotKeyRegistered);
    const auto before = CaptureTime::now();
    input.chord(superShift, nine);
    const auto after = CaptureTime::now();
    EXPECT_EQ(pressedSoFar(), std::vector<HotKeyId>{7});
    // The server counts whole milliseconds.
    EXPECT_GE(lastInstant, before - std::chrono::milliseconds(2));
    EXPECT_LE(lastInstant, after);
}

TEST_F(X11HotKeyBackendTest, LocksDoNotMatterOtherModifiersDo) {
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 1), hotKeyRegistered);
    for (const std::vector<KeyCode>& locks :
         {std::vector<KeyCode>{}, {capsLock}, {numLock}, {capsLock, numLock}}) {
        SCOPED_TRACE(locks.size());
        for (const KeyCode lock : locks)
            input.key(lock);
        input.chord(superShift, nine);
        EXPECT_EQ(pressedSoFar(), std::vector<HotKeyId>{1});
        for (const KeyCode lock : locks)
            input.key(lock);
    }
    input.chord(superShift | Modifier::control, nine);
    input.chord(Modifier::command, nine);
    input.chord(0, nine);
    EXPECT_TRUE(pressedSoFar().empty());
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
    EXPECT_EQ(pressedSoFar(), std::vector<HotKeyId>{1});
    input.releaseKey(nine);
    input.pressKey(nine);
    input.releaseKey(nine);
    input.releaseModifiers(Modifier::command);
    EXPECT_EQ(pressedSoFar(), std::vector<HotKeyId>{1});
}

TEST_F(X11HotKeyBackendTest, ServesWhileAnotherProgramHoldsTheKeyboard) {
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 3), hotKeyRegistered);
    ASSERT_TRUE(client.grabKeyboard());
    input.chord(superShift, nine);
    input.chord(superShift | Modifier::option, nine);
    EXPECT_EQ(pressedSoFar(), std::vector<HotKeyId>{3});
    client.ungrabKeyboard();
    input.chord(superShift, nine);
    EXPECT_EQ(pressedSoFar(), std::vector<HotKeyId>{3});
}

TEST_F(X11HotKeyBackendTest, AChordHeldByAnotherProgramIsRefusedAsAWhole) {
    // The other program holds one of the lock variants only.
    ASSERT_EQ(client.grabKey(superShiftState | XCB_MOD_MASK_2, nineCode), 0);
    EXPECT_EQ(backend->registerHotKey(nine, superShift, 1), hotKeyExists);
    input.chord(superShift, nine);
    EXPECT_TRUE(pressedSoFar().empty());
    // Nothing of ours was left behind.
    EXPECT_EQ(client.grabKey(superShiftState, nineCode), 0);
    client.ungrabKey(superShiftState | XCB_MOD_MASK_2, nineCode);
    client.ungrabKey(superShiftState, nineCode);
    EXPECT_EQ(backend->registerHotKey(nine, superShift, 1), hotKeyRegistered);
    EXPECT_EQ(client.grabKey(superShiftState, nineCode), XCB_ACCESS);
}

TEST_F(X11HotKeyBackendTest, GivesUpWhatIsUnregistered) {
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 1), hotKeyRegistered);
    // The same chord under another id, as when only its label changes.
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 2), hotKeyRegistered);
    backend->unregisterHotKey(1);
    backend->unregisterHotKey(99);
    input.chord(superShift, nine);
    EXPECT_EQ(pressedSoFar(), std::vector<HotKeyId>{2});
    backend->unregisterHotKey(2);
    EXPECT_EQ(client.grabKey(superShiftState, nineCode), 0);
    client.ungrabKey(superShiftState, nineCode);

    ASSERT_EQ(backend->registerHotKey(nine, superShift, 3), hotKeyRegistered);
    backend.reset();
    EXPECT_EQ(client.grabKey(superShiftState, nineCode), 0);
    client.ungrabKey(superShiftState, nineCode);
}

TEST_F(X11HotKeyBackendTest, AKeyThatIsNotThereIsRefused) {
    const HotKeyStatus status = backend->registerHotKey(52, superShift, 1);
    EXPECT_LT(status, 0);
    EXPECT_NE(status, hotKeyExists);
}

TEST_F(X11HotKeyBackendTest, FollowsTheModifiersToAnotherPlace) {
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 1), hotKeyRegistered);
    const auto remap = [&](const QStringList& expressions) {
        QStringList arguments;
        for (const QString& expression : expressions)
            arguments << QStringLiteral("-e") << expression;
        return testSession().start(QStringLiteral("xmodmap"), arguments)->waitForExit(patience) == 0;
    };
    ASSERT_TRUE(remap({QStringLiteral("clear mod4"), QStringLiteral("add mod3 = Super_L")}));
    pressedSoFar();
    input.chord(superShift, nine);
    EXPECT_EQ(pressedSoFar(), std::vector<HotKeyId>{1});
    ASSERT_TRUE(remap({QStringLiteral("clear mod3"), QStringLiteral("add mod4 = Super_L Super_R Hyper_L")}));
    pressedSoFar();
    input.chord(superShift, nine);
    EXPECT_EQ(pressedSoFar(), std::vector<HotKeyId>{1});
}

TEST(X11ServerTime, FollowsTheHostClockHere) {
    const X11ServerTime time = X11ServerTime::measure(testSession().displayName().constData());
    EXPECT_TRUE(time.isExact());
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(CaptureTime::hostTime());
    // Five seconds back, also across the wrap of the server's 32 bits.
    const auto earlier = static_cast<std::uint32_t>(now.count()) - 5000U;
    const auto age = CaptureTime::now() - time.instantOf(earlier);
    EXPECT_NEAR(CaptureTime::milliseconds(age), 5000, 500);
    const X11ServerTime unknown(false);
    EXPECT_LT(CaptureTime::milliseconds(CaptureTime::now() - unknown.instantOf(earlier)), 500);
    EXPECT_FALSE(X11ServerTime::measure(":123456").isExact());
}

} // namespace
