#include "Support/LinkedDesktop.h"
#include "Support/Provided.h"
#include "VistrelPlatform/Freedesktop/DesktopSystemShortcuts.h"
#include "VistrelPlatform/Freedesktop/ShortcutNotation.h"
#include "VistrelPlatform/ShareTestBus.h"

#include <QDBusVariant>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <gio/gio.h>

using testing::Contains;
using testing::Not;
using testing::UnorderedElementsAre;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr SystemShortcut superShift9{25, 0x300, true};
constexpr SystemShortcut printKey{Key::printScreen, 0, true};
constexpr SystemShortcut superF13{105, 0x100, true};

/// As on a German keyboard, whose Y and Z are exchanged.
class GermanLayout : public KeyboardLayout {
public:
    std::optional<TypingKey> keyTyping(char32_t character) const override {
        if (character == U'z')
            return TypingKey{16, false};
        return character == U'/' ? std::optional(TypingKey{26, true}) : std::nullopt;
    }
    QString textOf(KeyCode) const override { return {}; }
};

/// A store in memory for this program, decided before anything reads a setting.
const bool settingsInMemory = qputenv("GSETTINGS_BACKEND", "memory");

void setAccelerator(const char* schema, const char* path, const char* key, const char* accelerator) {
    GSettings* settings = path ? g_settings_new_with_path(schema, path) : g_settings_new(schema);
    const char* list[] = {accelerator, nullptr};
    if (path)
        g_settings_set_string(settings, key, accelerator);
    else
        g_settings_set_strv(settings, key, list);
    g_object_unref(settings);
}

/// A desktop whose service answers from a thread of its own, while the test waits.
class SystemShortcutsTests : public testing::Test {
protected:
    void serve(const QString& name, SharePeer::Answer answer) {
        peer = std::make_unique<SharePeer>(bus.peer(), name, std::move(answer));
        peer->moveToThread(&thread);
        thread.start();
    }
    void TearDown() override {
        thread.quit();
        thread.wait();
    }

    ShareTestBus bus;
    USKeyboardLayout layout;
    QThread thread;
    std::unique_ptr<SharePeer> peer;
    std::atomic<bool> changed = false;
};

} // namespace

TEST(ShortcutNotation, ReadsAccelerators) {
    const struct {
        const char* name;
        const char* text;
        std::optional<SystemShortcut> expected;
    } rows[] = {
        {"plain", "<Super><Shift>9", superShift9},
        {"bareKey", "Print", printKey},
        {"altPrint", "<Alt>Sys_Req", SystemShortcut{Key::printScreen, 0x800, true}},
        {"primary", "<Primary><Alt>Delete", SystemShortcut{117, 0x1800, true}},
        {"otherCase", "<control><SHIFT>a", SystemShortcut{0, 0x1200, true}},
        {"upperCaseLetter", "<Super>L", SystemShortcut{37, 0x100, true}},
        {"sign", "<Ctrl>minus", SystemShortcut{27, 0x1000, true}},
        {"shiftedSign", "<Super>parenleft", superShift9},
        {"numbered", "<Mod4>F13", superF13},
        {"keypad", "<Super>KP_Add", SystemShortcut{69, 0x100, true}},
        {"aboveTab", "<Alt>Above_Tab", SystemShortcut{50, 0x800, true}},
        {"scanCode", "<Super>0x26", SystemShortcut{0, 0x100, true}},
        {"onRelease", "<Release><Super>p", SystemShortcut{35, 0x100, true}},
        {"modifierAlone", "Super_L", {}},
        {"empty", "", {}},
        {"unclosed", "<Super", {}},
        {"unknownModifier", "<Fn>a", {}},
        {"noKey", "<Super>", {}},
        {"aPath", "/org/gnome/custom0/", {}},
    };
    const auto read = [](const char* text, const KeyboardLayout& layout) {
        return ShortcutNotation::fromAccelerator(QString::fromUtf8(text), layout);
    };
    for (const auto& row : rows)
        EXPECT_EQ(read(row.text, USKeyboardLayout()), row.expected) << row.name;
    // The user's layout decides, and else the US keyboard.
    EXPECT_EQ(read("<Super>z", GermanLayout()), (SystemShortcut{16, 0x100, true}));
    EXPECT_EQ(read("<Super>slash", GermanLayout()), (SystemShortcut{26, 0x300, true}));
    EXPECT_EQ(read("<Super>a", GermanLayout()), (SystemShortcut{0, 0x100, true}));
}

TEST(ShortcutNotation, ReadsCombinedKeys) {
    const USKeyboardLayout layout;
    const auto read = [&layout](int combined) { return ShortcutNotation::fromCombinedKey(combined, layout); };
    EXPECT_EQ(read(int(Qt::META) | Qt::Key_ParenLeft), superShift9);
    EXPECT_EQ(read(int(Qt::META) | int(Qt::SHIFT) | Qt::Key_9), superShift9);
    EXPECT_EQ(read(Qt::Key_Print), printKey);
    EXPECT_EQ(read(int(Qt::CTRL) | int(Qt::ALT) | Qt::Key_T), (SystemShortcut{17, 0x1800, true}));
    EXPECT_EQ(read(int(Qt::ALT) | Qt::Key_Backtab), (SystemShortcut{48, 0xa00, true}));
    EXPECT_FALSE(read(0));
    EXPECT_FALSE(read(Qt::Key_MonBrightnessUp));
}

TEST_F(SystemShortcutsTests, AddedOnesAreFoundThroughTheDesktopsList) {
    if (!provided({"/usr/share/glib-2.0/schemas/org.gnome.settings-daemon.plugins.media-keys.gschema.xml"}))
        return;
    ASSERT_TRUE(settingsInMemory);
    constexpr const char* mediaKeys = "org.gnome.settings-daemon.plugins.media-keys";
    constexpr const char* addition = "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding";
    const DesktopSystemShortcuts gnome(Desktop::gnome, {QDBusConnection(QString()), linkedDesktop}, layout);
    setAccelerator(addition, "/org/gnome/test/custom0/", "binding", "<Super>F13");
    EXPECT_THAT(*gnome.read(), Not(Contains(superF13)));
    setAccelerator(mediaKeys, nullptr, "custom-keybindings", "/org/gnome/test/custom0/");
    EXPECT_THAT(*gnome.read(), Contains(superF13));
    // A path that the store would stop the program over.
    setAccelerator(mediaKeys, nullptr, "custom-keybindings", "broken//path");
    EXPECT_THAT(*gnome.read(), Not(Contains(superF13)));
}

TEST_F(SystemShortcutsTests, XfcesOwnShortcutsReplaceItsDefaults) {
    serve(u"org.xfce.Xfconf"_s, [this](const QDBusMessage& call) {
        QVariantMap properties{{u"/commands/default/<Alt>F2"_s, u"xfce4-appfinder"_s},
                               {u"/commands/custom/<Super>Print"_s, u"other-program"_s},
                               {u"/commands/custom/<Super><Shift>9"_s, QString()},
                               {u"/xfwm4/default/<Alt>F4"_s, u"close_window_key"_s},
                               {u"/providers"_s, QStringList{u"xfwm4"_s}}};
        if (changed)
            properties.insert(u"/commands/custom/override"_s, true);
        bus.peer().send(call.createReply(properties));
    });
    const DesktopSystemShortcuts xfce(Desktop::xfce, {bus.client(), linkedDesktop}, layout, 30s);
    const SystemShortcut altF4{118, 0x800, true};
    EXPECT_THAT(*xfce.read(), UnorderedElementsAre(SystemShortcut{120, 0x800, true}, altF4));
    changed = true;
    QDBusMessage signal =
        QDBusMessage::createSignal(u"/org/xfce/Xfconf"_s, u"org.xfce.Xfconf"_s, u"PropertyChanged"_s);
    signal << u"xfce4-keyboard-shortcuts"_s << u"/commands/custom/override"_s
           << QVariant::fromValue(QDBusVariant(true));
    bus.peer().send(signal);
    EXPECT_TRUE(waitUntil([&] { return xfce.read()->size() == 3; }));
    EXPECT_THAT(*xfce.read(), UnorderedElementsAre(SystemShortcut{Key::printScreen, 0x100, true},
                                                   SystemShortcut{25, 0x300, false}, altF4));
}

TEST_F(SystemShortcutsTests, AMissingServiceIsNoTableAndASilentOneAnError) {
    for (const Desktop desktop : {Desktop::kde, Desktop::xfce, Desktop::unknown, Desktop::lxqt}) {
        const auto missing =
            DesktopSystemShortcuts(desktop, {bus.client(), linkedDesktop}, layout, 50ms).read();
        EXPECT_TRUE(missing && missing->empty());
        EXPECT_TRUE(
            DesktopSystemShortcuts(desktop, {QDBusConnection(QString()), linkedDesktop}, layout).read());
    }
    EXPECT_FALSE(
        DesktopSystemShortcuts(Desktop::gnome, {QDBusConnection(QString()), missingDesktop}, layout).read());
    serve(u"org.xfce.Xfconf"_s, [this](const QDBusMessage& call) {
        if (changed)
            bus.peer().send(call.createReply(QVariantMap()));
    });
    const DesktopSystemShortcuts xfce(Desktop::xfce, {bus.client(), linkedDesktop}, layout, 50ms);
    const auto silent = xfce.read();
    ASSERT_FALSE(silent);
    EXPECT_FALSE(silent.error().description.isEmpty());
    changed = true;
    EXPECT_TRUE(waitUntil([&] { return xfce.read().has_value(); }));
}
