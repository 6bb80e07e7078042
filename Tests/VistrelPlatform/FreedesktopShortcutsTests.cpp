#include "VistrelPlatform/Freedesktop/DesktopSystemShortcuts.h"
#include "VistrelPlatform/Freedesktop/ShortcutNotation.h"
#include "VistrelPlatform/ShareTestBus.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <gio/gio.h>

using testing::Contains;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::UnorderedElementsAre;
using namespace std::chrono_literals;

/// One action as the service lists it.
struct AcceleratorInfo {
    QStringList names{6};
    QList<int> keys;
    QList<int> defaultKeys;
};
Q_DECLARE_METATYPE(AcceleratorInfo)

QDBusArgument& operator<<(QDBusArgument& argument, const AcceleratorInfo& info) {
    argument.beginStructure();
    for (int i = 0; i < 6; ++i)
        argument << info.names.value(i);
    argument << info.keys << info.defaultKeys;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, AcceleratorInfo&) {
    return argument;
}

namespace {

constexpr SystemShortcut superShift9{25, 0x300, true};

/// As on a German keyboard, whose Y and Z are exchanged.
class GermanLayout : public KeyboardLayout {
public:
    std::optional<TypingKey> keyTyping(char32_t character) const override {
        if (character == U'z')
            return TypingKey{16, false};
        if (character == U'/')
            return TypingKey{26, true};
        return std::nullopt;
    }
    QString textOf(KeyCode) const override { return {}; }
};

struct NotationCase {
    const char* name;
    const char* text;
    std::optional<SystemShortcut> expected;
};

/// Runs its objects in a thread of their own, so that they answer while the test waits.
class PeerThread : public QThread {
public:
    PeerThread() { start(); }
    ~PeerThread() override {
        quit();
        wait();
    }
};

/// A store in memory for this program, decided before anything reads a setting.
const bool settingsInMemory = qputenv("GSETTINGS_BACKEND", "memory");

void setAccelerators(const char* schema, const char* path, const char* key, const char* accelerator) {
    GSettings* settings = path ? g_settings_new_with_path(schema, path) : g_settings_new(schema);
    const char* list[] = {accelerator, nullptr};
    GVariant* former = g_settings_get_value(settings, key);
    if (g_variant_is_of_type(former, G_VARIANT_TYPE_STRING))
        g_settings_set_string(settings, key, accelerator);
    else
        g_settings_set_strv(settings, key, accelerator ? list : list + 1);
    g_variant_unref(former);
    g_object_unref(settings);
}

bool hasSchema(const char* name) {
    GSettingsSchema* schema =
        g_settings_schema_source_lookup(g_settings_schema_source_get_default(), name, TRUE);
    if (schema)
        g_settings_schema_unref(schema);
    return schema != nullptr;
}

} // namespace

TEST(ShortcutNotation, ReadsAccelerators) {
    const NotationCase rows[] = {
        {"plain", "<Super><Shift>9", superShift9},
        {"bareKey", "Print", SystemShortcut{Key::printScreen, 0, true}},
        {"altPrint", "<Alt>Sys_Req", SystemShortcut{Key::printScreen, 0x800, true}},
        {"primary", "<Primary><Alt>Delete", SystemShortcut{117, 0x1800, true}},
        {"otherCase", "<control><SHIFT>a", SystemShortcut{0, 0x1200, true}},
        {"upperCaseLetter", "<Super>L", SystemShortcut{37, 0x100, true}},
        {"sign", "<Ctrl>minus", SystemShortcut{27, 0x1000, true}},
        {"shiftedSign", "<Super>parenleft", superShift9},
        {"numbered", "<Mod4>F13", SystemShortcut{105, 0x100, true}},
        {"keypad", "<Super>KP_Add", SystemShortcut{69, 0x100, true}},
        {"aboveTab", "<Alt>Above_Tab", SystemShortcut{50, 0x800, true}},
        {"scanCode", "<Super>0x26", SystemShortcut{0, 0x100, true}},
        {"onRelease", "<Release><Super>p", SystemShortcut{35, 0x100, true}},
        {"modifierAlone", "Super_L", {}},
        {"disabled", "disabled", {}},
        {"empty", "", {}},
        {"unclosed", "<Super", {}},
        {"unknownModifier", "<Fn>a", {}},
        {"noKey", "<Super>", {}},
        {"aPath", "/org/gnome/custom0/", {}},
    };
    for (const NotationCase& row : rows)
        EXPECT_EQ(ShortcutNotation::fromAccelerator(QString::fromUtf8(row.text), USKeyboardLayout()),
                  row.expected)
            << row.name;
}

TEST(ShortcutNotation, FollowsTheLayoutAndElseTheUSKeyboard) {
    const GermanLayout german;
    EXPECT_EQ(ShortcutNotation::fromAccelerator(QStringLiteral("<Super>z"), german),
              (SystemShortcut{16, 0x100, true}));
    EXPECT_EQ(ShortcutNotation::fromAccelerator(QStringLiteral("<Super>slash"), german),
              (SystemShortcut{26, 0x300, true}));
    EXPECT_EQ(ShortcutNotation::fromAccelerator(QStringLiteral("<Super>a"), german),
              (SystemShortcut{0, 0x100, true}));
}

TEST(ShortcutNotation, ReadsCombinedKeys) {
    const USKeyboardLayout layout;
    const auto read = [&layout](int combined) { return ShortcutNotation::fromCombinedKey(combined, layout); };
    EXPECT_EQ(read(int(Qt::META) | Qt::Key_ParenLeft), superShift9);
    EXPECT_EQ(read(int(Qt::META) | int(Qt::SHIFT) | Qt::Key_9), superShift9);
    EXPECT_EQ(read(Qt::Key_Print), (SystemShortcut{Key::printScreen, 0, true}));
    EXPECT_EQ(read(int(Qt::CTRL) | int(Qt::ALT) | Qt::Key_T), (SystemShortcut{17, 0x1800, true}));
    EXPECT_EQ(read(int(Qt::ALT) | Qt::Key_Backtab), (SystemShortcut{48, 0xa00, true}));
    EXPECT_FALSE(read(0));
    EXPECT_FALSE(read(Qt::Key_MonBrightnessUp));
}

TEST(SystemShortcuts, AnUnknownDesktopHasNone) {
    const ShareTestBus bus;
    const USKeyboardLayout layout;
    for (const Desktop desktop : {Desktop::unknown, Desktop::lxqt})
        EXPECT_THAT(*DesktopSystemShortcuts(desktop, bus.client(), layout).read(), IsEmpty());
    EXPECT_EQ(desktopNamed({QStringLiteral("Pop"), QStringLiteral("GNOME")}), Desktop::gnome);
    EXPECT_EQ(desktopNamed({QStringLiteral("X-Cinnamon")}), Desktop::cinnamon);
    EXPECT_EQ(desktopNamed({QStringLiteral("i3")}), Desktop::unknown);
}

TEST(SystemShortcuts, SettingsSchemasAreReadAsTheyAreNow) {
    ASSERT_TRUE(settingsInMemory);
    const USKeyboardLayout layout;
    const DesktopSystemShortcuts gnome(Desktop::gnome, QDBusConnection(QString()), layout);
    EXPECT_THAT(*gnome.read(), Contains(SystemShortcut{48, 0x800, true})); // switching applications
    EXPECT_THAT(*gnome.read(), Not(Contains(superShift9)));
    setAccelerators("org.gnome.desktop.wm.keybindings", nullptr, "close", "<Super><Shift>9");
    EXPECT_THAT(*gnome.read(), Contains(superShift9));
    setAccelerators("org.gnome.desktop.wm.keybindings", nullptr, "close", nullptr);
    EXPECT_THAT(*gnome.read(), Not(Contains(superShift9)));
}

TEST(SystemShortcuts, AddedOnesAreFoundThroughTheDesktopsList) {
    constexpr const char* mediaKeys = "org.gnome.settings-daemon.plugins.media-keys";
    constexpr const char* addition = "org.gnome.settings-daemon.plugins.media-keys.custom-keybinding";
    if (!hasSchema(mediaKeys))
        GTEST_SKIP() << "gnome-settings-daemon-common is not installed";
    const USKeyboardLayout layout;
    const DesktopSystemShortcuts gnome(Desktop::gnome, QDBusConnection(QString()), layout);
    setAccelerators(addition, "/org/gnome/test/custom0/", "binding", "<Super>F13");
    EXPECT_THAT(*gnome.read(), Not(Contains(SystemShortcut{105, 0x100, true})));
    setAccelerators(mediaKeys, nullptr, "custom-keybindings", "/org/gnome/test/custom0/");
    EXPECT_THAT(*gnome.read(), Contains(SystemShortcut{105, 0x100, true}));
    // A path that the store would stop the program over.
    setAccelerators(mediaKeys, nullptr, "custom-keybindings", "broken//path");
    EXPECT_THAT(*gnome.read(), Not(Contains(SystemShortcut{105, 0x100, true})));
}

TEST(SystemShortcuts, ADesktopWithoutItsSchemasHasNone) {
    if (hasSchema("org.mate.Marco.global-keybindings"))
        GTEST_SKIP() << "MATE is installed";
    const USKeyboardLayout layout;
    EXPECT_THAT(*DesktopSystemShortcuts(Desktop::mate, QDBusConnection(QString()), layout).read(), IsEmpty());
}

class ShortcutService : public testing::Test {
protected:
    /// Makes the peer answer from its own thread.
    void serve(const QString& name, SharePeer::Answer answer) {
        peer = std::make_unique<SharePeer>(bus.peer(), name, std::move(answer));
        peer->moveToThread(&thread);
    }
    void TearDown() override {
        if (peer) {
            thread.quit();
            thread.wait();
        }
    }

    ShareTestBus bus;
    USKeyboardLayout layout;
    std::unique_ptr<SharePeer> peer;
    PeerThread thread;
    std::atomic<bool> changed = false;
};

TEST_F(ShortcutService, KDEsComponentsAreAllRead) {
    qDBusRegisterMetaType<AcceleratorInfo>();
    qDBusRegisterMetaType<QList<AcceleratorInfo>>();
    serve(QStringLiteral("org.kde.kglobalaccel"), [this](const QDBusMessage& call) {
        QDBusMessage reply = call.createReply();
        const bool running = call.path().endsWith(QLatin1StringView("/running"));
        if (call.member() == QLatin1StringView("allComponents")) {
            reply << QVariant::fromValue(
                QList<QDBusObjectPath>{QDBusObjectPath(QStringLiteral("/component/running")),
                                       QDBusObjectPath(QStringLiteral("/component/idle"))});
        } else if (call.member() == QLatin1StringView("isActive")) {
            reply << running;
        } else {
            AcceleratorInfo first;
            first.keys = {int(Qt::META) | Qt::Key_ParenLeft, 0};
            first.defaultKeys = {Qt::Key_F5};
            AcceleratorInfo second;
            second.keys = {changed ? int(Qt::Key_F6) : int(Qt::Key_Print)};
            reply << QVariant::fromValue(running ? QList<AcceleratorInfo>{first, second}
                                                 : QList<AcceleratorInfo>{second});
        }
        bus.peer().send(reply);
    });
    const DesktopSystemShortcuts kde(Desktop::kde, bus.client(), layout, 30s);
    EXPECT_THAT(*kde.read(), UnorderedElementsAre(superShift9, SystemShortcut{Key::printScreen, 0, true},
                                                  SystemShortcut{Key::printScreen, 0, false}));
    changed = true;
    // Read in the background: this reading still gives the former one.
    EXPECT_THAT(*kde.read(), Contains(SystemShortcut{Key::printScreen, 0, true}));
    EXPECT_TRUE(waitUntil([&] {
        return *kde.read() == std::vector<SystemShortcut>{superShift9, SystemShortcut{97, 0, true},
                                                          SystemShortcut{97, 0, false}};
    }));
}

TEST_F(ShortcutService, XfcesOwnShortcutsReplaceItsDefaults) {
    serve(QStringLiteral("org.xfce.Xfconf"), [this](const QDBusMessage& call) {
        QVariantMap properties{
            {QStringLiteral("/commands/default/<Alt>F2"), QStringLiteral("xfce4-appfinder")},
            {QStringLiteral("/commands/custom/<Super>Print"), QStringLiteral("other-program")},
            {QStringLiteral("/commands/custom/<Super><Shift>9"), QString()},
            {QStringLiteral("/xfwm4/default/<Alt>F4"), QStringLiteral("close_window_key")},
            {QStringLiteral("/providers"), QStringList{QStringLiteral("xfwm4")}},
        };
        if (changed)
            properties.insert(QStringLiteral("/commands/custom/override"), true);
        QDBusMessage reply = call.createReply();
        reply << properties;
        bus.peer().send(reply);
    });
    const DesktopSystemShortcuts xfce(Desktop::xfce, bus.client(), layout, 30s);
    EXPECT_THAT(*xfce.read(),
                UnorderedElementsAre(SystemShortcut{120, 0x800, true}, SystemShortcut{118, 0x800, true}));
    changed = true;
    QDBusMessage signal =
        QDBusMessage::createSignal(QStringLiteral("/org/xfce/Xfconf"), QStringLiteral("org.xfce.Xfconf"),
                                   QStringLiteral("PropertyChanged"));
    signal << QStringLiteral("xfce4-keyboard-shortcuts") << QStringLiteral("/commands/custom/override")
           << QVariant::fromValue(QDBusVariant(true));
    bus.peer().send(signal);
    EXPECT_TRUE(waitUntil([&] { return xfce.read()->size() == 3; }));
    EXPECT_THAT(*xfce.read(),
                UnorderedElementsAre(SystemShortcut{Key::printScreen, 0x100, true},
                                     SystemShortcut{25, 0x300, false}, SystemShortcut{118, 0x800, true}));
}

TEST_F(ShortcutService, AMissingServiceIsNoTableAndASilentOneAnError) {
    for (const Desktop desktop : {Desktop::kde, Desktop::xfce}) {
        const auto missing = DesktopSystemShortcuts(desktop, bus.client(), layout, 50ms).read();
        ASSERT_TRUE(missing);
        EXPECT_THAT(*missing, IsEmpty());
        EXPECT_TRUE(DesktopSystemShortcuts(desktop, QDBusConnection(QString()), layout).read());
    }
    serve(QStringLiteral("org.xfce.Xfconf"), [this](const QDBusMessage& call) {
        if (changed)
            bus.peer().send(call.createReply(QVariantMap()));
    });
    const DesktopSystemShortcuts xfce(Desktop::xfce, bus.client(), layout, 50ms);
    const auto silent = xfce.read();
    ASSERT_FALSE(silent);
    EXPECT_FALSE(silent.error().description.isEmpty());
    changed = true;
    EXPECT_TRUE(waitUntil([&] { return xfce.read().has_value(); }));
}
