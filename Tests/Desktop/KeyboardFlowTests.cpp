#include "Desktop/EditorOnDesktop.h"
#include "Support/TestFiles.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Editor = EditorOnDesktop;

constexpr QRect wideArea(300, 120, 600, 440);

struct Manager {
    const char* name;
    /// Without a command there is no window manager.
    const char* command;

    friend void PrintTo(const Manager& manager, std::ostream* out) { *out << manager.name; }
};

const Manager managers[] = {
    {"none", ""},
    {"openbox", "openbox --sm-disable"},
    {"i3", "i3"},
    {"xfwm4", "xfwm4 --compositor=off"},
    {"metacity", "metacity --no-composite"},
    {"mutter", "mutter --x11"},
    {"kwin", "kwin_x11"},
};

DesktopSession::Options desktopOf(const Manager& manager) {
    return {.screenSize = {1280, 720},
            .managerCommand = QString::fromLatin1(manager.command).split(u' '),
            .sessionBus = true};
}

/// A capture over another program's window that had the keyboard.
class KeyboardFlow : public ::testing::TestWithParam<Manager> {
protected:
    explicit KeyboardFlow(const Manager& manager = GetParam()) : editor(desktopOf(manager)) {
        if (*manager.command) {
            writeFile(editor.session.configHome() + u"/i3/config"_s, "# i3 config file (v4)\nfont fixed\n");
            editor.session.startWindowManager();
        }
        terminal = openWindow({100, 100, 600, 400});
        if (!*manager.command)
            other.focus(terminal);
        EXPECT_TRUE(waitUntil([&] { return terminalIsActive(); }));
        EXPECT_TRUE(editor.edit(wideArea));
        overlay = editor.nextFocus();
        other.pressedKeys();
    }

    xcb_window_t openWindow(QRect rect) {
        const xcb_window_t window = other.createWindow(
            {.rect = rect, .overrideRedirect = false, .eventMask = XCB_EVENT_MASK_KEY_PRESS});
        other.map(window);
        return window;
    }
    bool hasFocus(xcb_window_t window) { return editor.session.client().focusedWindow() == window; }
    /// The window manager, if there is one, must think so, too.
    bool terminalIsActive() {
        const auto active = other.windowProperty(other.root(), "_NET_ACTIVE_WINDOW");
        return hasFocus(terminal) && (active.empty() || active.front() == terminal);
    }
    /// A window comes up, as a message does, and the program beneath asks for the keyboard as well.
    void intrude() {
        openWindow({900, 10, 200, 100});
        other.focus(terminal);
    }
    /// The dialog that follows `before`, with everything that wants the keyboard of it.
    xcb_window_t dialogAfter(xcb_window_t before) {
        xcb_window_t dialog = overlay;
        EXPECT_TRUE(waitUntil([&] { return (dialog = editor.nextFocus(before)) != overlay; }));
        intrude();
        return dialog;
    }
    bool comesBackTo(xcb_window_t window) {
        return waitUntil([&] { return hasFocus(window); });
    }
    void enterName(const QString& name) {
        editor.command('a');
        editor.type(name);
        editor.key(Key::returnKey);
    }
    /// Chooses the pen, or the arrow.
    bool canvasTakes(char tool) {
        const int before = editor.count("toolSelected");
        editor.type(QString(QLatin1Char(tool)));
        return editor.waitFor("toolSelected", before + 1);
    }
    bool terminalGets(int keys) {
        editor.type(QString(keys, u'a'));
        int pressed = 0;
        return waitUntil([&] { return (pressed += other.pressedKeys()) == keys; });
    }

    Editor editor;
    XClient other{editor.session.displayName()};
    xcb_window_t terminal = XCB_NONE;
    xcb_window_t overlay = XCB_NONE;
};

class KeyboardFlowAlone : public KeyboardFlow {
protected:
    KeyboardFlowAlone() : KeyboardFlow(managers[0]) {}
};

} // namespace

TEST_P(KeyboardFlow, EveryKeyGoesToTheFrontWindowAndTheOneBeforeHasThemAgain) {
    const QString taken = editor.session.folder(u"taken.png"_s);
    writeFile(taken, "taken");
    editor.command('s');
    const xcb_window_t panel = dialogAfter(overlay);
    enterName(taken);
    dialogAfter(panel);
    editor.key(Key::escape);
    ASSERT_TRUE(comesBackTo(panel));
    // Longer than any file system takes.
    enterName(QString(300, u'x') + u".png"_s);
    ASSERT_TRUE(editor.waitFor("saveFailed"));
    dialogAfter(panel);
    editor.key(Key::returnKey);
    ASSERT_TRUE(comesBackTo(overlay) && canvasTakes('p'));
    EXPECT_EQ(readFile(taken), "taken");

    editor.command('s');
    dialogAfter(overlay);
    editor.key(Key::escape);
    ASSERT_TRUE(editor.waitFor("saveCancelled") && comesBackTo(overlay));

    editor.click(editor.colorWell());
    dialogAfter(overlay);
    editor.key(Key::escape);
    ASSERT_TRUE(comesBackTo(overlay));
    for (int round = 0; round < 12; ++round) {
        other.focus(terminal);
        ASSERT_TRUE(canvasTakes(round % 2 == 0 ? 'a' : 'p'));
    }
    ASSERT_TRUE(editor.closeCapture());
    EXPECT_EQ(other.pressedKeys(), 0);
    EXPECT_TRUE(waitUntil([&] { return terminalIsActive(); }))
        << std::hex << terminal << " lost to " << other.focusedWindow();
    EXPECT_TRUE(terminalGets(3));
}

INSTANTIATE_TEST_SUITE_P(Managers, KeyboardFlow, ::testing::ValuesIn(managers),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(KeyboardFlowAlone, AClickOnAPanelTakesTheKeyboardFromAProgramThatInsistsOnIt) {
    // As often as it is taken back without one.
    for (int round = 0; round < 10; ++round) {
        other.focus(terminal);
        ASSERT_TRUE(comesBackTo(overlay)) << round;
    }
    other.focus(terminal);
    editor.click(editor.toolButton(Editor::pen));
    EXPECT_TRUE(waitUntil([&] { return hasFocus(overlay); }, std::chrono::seconds(2)));
}

TEST_F(KeyboardFlowAlone, AnOpenMenuOfAnotherProgramKeepsItsKeysUntilItCloses) {
    ASSERT_TRUE(editor.closeCapture() && other.grabKeyboard() && editor.capture() && editor.select(wideArea));
    other.pressedKeys();
    EXPECT_TRUE(terminalGets(1));
    other.ungrabKeyboard();
    ASSERT_TRUE(waitUntil([&] {
        const bool ours = !other.grabKeyboard();
        other.ungrabKeyboard();
        return ours;
    }));
    other.focus(terminal);
    EXPECT_TRUE(canvasTakes('p'));
    EXPECT_EQ(other.pressedKeys(), 0);
}
