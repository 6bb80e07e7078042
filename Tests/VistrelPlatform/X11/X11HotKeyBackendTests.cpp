#include "VistrelPlatform/X11/X11HotKeyBackend.h"

#include "VistrelPlatform/KeyCodes.h"
#include "VistrelPlatform/X11/X11TestSession.h"

#include <QLineEdit>

#include <gtest/gtest.h>

namespace {

constexpr KeyCode nine = 25;
constexpr KeyCode leftShift = 56;
constexpr KeyCode leftSuper = 55;
constexpr KeyCode capsLock = 57;
constexpr KeyCode numLock = 71;
constexpr ModifierMask superShift = Modifier::command | Modifier::shift;
constexpr std::uint32_t superShiftState = XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT;
using Presses = std::vector<HotKeyId>;

/// What comes from the server.
struct EventCounter : QAbstractNativeEventFilter {
    int presses = 0;
    int marks = 0;

    EventCounter() { QCoreApplication::instance()->installNativeEventFilter(this); }
    bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
        const auto* event = static_cast<const xcb_property_notify_event_t*>(message);
        const int kind = event->response_type & 0x7F;
        presses += kind == XCB_KEY_PRESS;
        marks += kind == XCB_PROPERTY_NOTIFY && event->window == testSession().client().root() &&
                 event->state == XCB_PROPERTY_NEW_VALUE;
        return false;
    }
};

class X11HotKeyBackendTest : public ::testing::Test {
protected:
    X11HotKeyBackendTest() {
        backend->onPressed = [this](HotKeyId id, CaptureTime::Instant instant) {
            pressed.push_back(id);
            lastInstant = instant;
        };
    }

    /// Every event up to now has arrived, and what was asked of the server because of them is done.
    void catchUp() {
        const int former = counter.marks;
        client.touchRoot();
        ASSERT_TRUE(waitUntil([&] { return counter.marks > former; }));
        xcbReply<xcb_get_input_focus_reply>(toolkitConnection(), xcb_get_input_focus(toolkitConnection()));
    }
    Presses pressedSoFar() {
        catchUp();
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
    // Before the backend, which keeps some from whoever comes later.
    EventCounter counter;
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

TEST_F(X11HotKeyBackendTest, OnlyTheWholeChordFiresInWhateverOrderItsKeysAreLetGo) {
    const struct {
        const char* name;
        KeyCode key;
        ModifierMask modifiers;
    } chords[] = {{"twoModifiers", nine, superShift},
                  {"oneModifier", nine, Modifier::command},
                  {"controlAndAlt", nine, Modifier::control | Modifier::option},
                  {"bare", Key::printScreen, 0}};
    const struct {
        const char* name;
        ModifierMask beforeTheKey;
    } orders[] = {{"keyFirst", 0},
                  {"shiftOrAltFirst", Modifier::shift | Modifier::option},
                  {"superOrControlFirst", Modifier::command | Modifier::control},
                  {"modifiersFirst", Modifier::all}};
    const auto expectOnlyTheChord = [this](KeyCode key, ModifierMask chord, ModifierMask early, bool quick) {
        input.pressModifiers(chord);
        input.pressKey(key);
        if (!quick)
            catchUp();
        input.releaseModifiers(chord & early);
        input.releaseKey(key);
        EXPECT_EQ(pressedSoFar(), Presses{1});
        const ModifierMask kept = chord & ~early;
        input.key(key);
        EXPECT_EQ(pressedSoFar(), Presses(kept == chord, 1)) << "with what was not let go";
        input.releaseModifiers(kept);
        input.key(key);
        EXPECT_EQ(pressedSoFar(), Presses(chord == 0, 1)) << "alone";
        input.chord(Modifier::shift, key);
        EXPECT_EQ(pressedSoFar(), Presses{}) << "with Shift";
    };
    for (const auto& chord : chords) {
        ASSERT_EQ(backend->registerHotKey(chord.key, chord.modifiers, 1), hotKeyRegistered);
        for (const auto& order : orders) {
            for (const bool quick : {false, true}) {
                SCOPED_TRACE(testing::Message()
                             << chord.name << ' ' << order.name << (quick ? " quick" : " slow"));
                expectOnlyTheChord(chord.key, chord.modifiers, order.beforeTheKey, quick);
                ASSERT_TRUE(client.grabKeyboard());
                SCOPED_TRACE("while another program holds the keyboard");
                expectOnlyTheChord(chord.key, chord.modifiers, order.beforeTheKey, quick);
                client.ungrabKeyboard();
            }
        }
        backend->unregisterHotKey(1);
    }
}

TEST_F(X11HotKeyBackendTest, AHeldKeyFiresOnce) {
    ASSERT_EQ(backend->registerHotKey(nine, Modifier::command, 1), hotKeyRegistered);
    input.pressModifiers(Modifier::command);
    input.pressKey(nine);
    EXPECT_TRUE(waitUntil([&] { return counter.presses >= 4; }));
    EXPECT_EQ(pressedSoFar(), Presses{1});
    input.releaseKey(nine);
    input.key(nine);
    input.releaseModifiers(Modifier::command);
    EXPECT_EQ(pressedSoFar(), Presses{1});
}

TEST_F(X11HotKeyBackendTest, AKeyThatIsDownWhenItIsRegisteredFiresWithItsNextPress) {
    input.pressModifiers(superShift);
    input.pressKey(nine);
    catchUp();
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 1), hotKeyRegistered);
    EXPECT_TRUE(waitUntil([&] { return counter.presses >= 4; }));
    EXPECT_EQ(pressedSoFar(), Presses{});
    input.releaseKey(nine);
    input.key(nine);
    input.releaseModifiers(superShift);
    EXPECT_EQ(pressedSoFar(), Presses{1});
}

TEST_F(X11HotKeyBackendTest, WhatOpensGetsEveryKeyButTheHeldOne) {
    constexpr KeyCode p = 35;
    QLineEdit field;
    field.setWindowFlag(Qt::X11BypassWindowManagerHint);
    ASSERT_EQ(backend->registerHotKey(nine, Modifier::command, 1), hotKeyRegistered);
    backend->onPressed = [&](HotKeyId, CaptureTime::Instant) {
        field.show();
        xcb_set_input_focus(toolkitConnection(), XCB_INPUT_FOCUS_PARENT,
                            static_cast<xcb_window_t>(field.winId()), XCB_CURRENT_TIME);
    };
    input.pressModifiers(Modifier::command);
    input.pressKey(nine);
    ASSERT_TRUE(waitUntil([&] { return field.hasFocus(); }));
    // The keyboard is free for whoever wants it whole.
    EXPECT_TRUE(client.grabKeyboard());
    client.ungrabKeyboard();
    input.releaseModifiers(Modifier::command);
    const int former = counter.presses;
    EXPECT_TRUE(waitUntil([&] { return counter.presses >= former + 4; }));
    input.key(p);
    EXPECT_TRUE(waitUntil([&] { return !field.text().isEmpty(); }));
    input.releaseKey(nine);
    input.key(nine);
    EXPECT_TRUE(waitUntil([&] { return field.text().size() > 1; }));
    EXPECT_EQ(field.text(), QStringLiteral("p9"));
}

TEST_F(X11HotKeyBackendTest, ModifiersThatAreTappedOneAfterTheOtherCount) {
    // As where one hand types everything: a tapped modifier holds until the next key.
    const auto keyboard = [](const char* extra) {
        const QString map = QStringLiteral("xkb_keymap { xkb_keycodes { include \"evdev\" };"
                                           "xkb_types { include \"complete\" };"
                                           "xkb_compat { include \"complete\" };"
                                           "xkb_symbols { include \"pc+us+inet(evdev)\" %1 }; };");
        const auto compiler = testSession().start(
            QStringLiteral("sh"),
            {QStringLiteral("-c"), QStringLiteral("printf %s \"$1\" | xkbcomp -w0 - \"$DISPLAY\""),
             QStringLiteral("sh"), map.arg(QLatin1String(extra))});
        ASSERT_EQ(compiler->waitForExit(patience), 0) << compiler->standardError().constData();
        settle();
    };
    keyboard("key <LWIN> { [Super_L], [LatchMods(modifiers=Mod4)] };"
             "key <LFSH> { [Shift_L], [LatchMods(modifiers=Shift)] };");
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 1), hotKeyRegistered);
    for (const bool othersKeyboard : {false, true}) {
        SCOPED_TRACE(othersKeyboard);
        ASSERT_TRUE(!othersKeyboard || client.grabKeyboard());
        for (const KeyCode key : {leftSuper, leftShift, nine, nine, leftShift, nine})
            input.key(key);
        EXPECT_EQ(pressedSoFar(), Presses{1});
        client.ungrabKeyboard();
    }
    keyboard("");
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

TEST_F(X11HotKeyBackendTest, FollowsALayoutThatChangesUnderTheHeldChord) {
    ASSERT_EQ(backend->registerHotKey(nine, superShift, 1), hotKeyRegistered);
    const ModifierMask usual = superShift;
    const ModifierMask swapped = Modifier::option | Modifier::shift;
    for (const auto& [former, option, now] :
         {std::tuple(usual, "altwin:swap_alt_win", swapped), {swapped, "", usual}}) {
        SCOPED_TRACE(option);
        input.pressModifiers(former);
        input.pressKey(nine);
        EXPECT_EQ(pressedSoFar(), Presses{1});
        const auto change = testSession().start(QStringLiteral("setxkbmap"),
                                                {QStringLiteral("us"), QStringLiteral("-option"), QString(),
                                                 QStringLiteral("-option"), QLatin1String(option)});
        ASSERT_EQ(change->waitForExit(patience), 0);
        settle();
        input.releaseModifiers(former);
        input.releaseKey(nine);
        for (const ModifierMask other : {former, Modifier::shift, ModifierMask{0}})
            input.chord(other, nine);
        EXPECT_EQ(pressedSoFar(), Presses{});
        for (const bool othersKeyboard : {false, true}) {
            ASSERT_TRUE(!othersKeyboard || client.grabKeyboard());
            input.chord(now, nine);
            EXPECT_EQ(pressedSoFar(), Presses{1});
            client.ungrabKeyboard();
        }
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
