#include "Desktop/ApplicationOnDesktop.h"

#include "VistrelPlatform/Keyboard.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace {

const QString settingsWindow = QStringLiteral("Vistrel Settings");

/// A panel along the lower edge that shows nothing but status items.
class PanelOnDesktop : public ApplicationOnDesktop {
public:
    explicit PanelOnDesktop(bool withBus)
        : ApplicationOnDesktop({.screenSize = {1280, 720}, .windowManager = true, .sessionBus = withBus}) {}

    void startPanel(const QString& panelProgram, const QStringList& arguments = {}) {
        panel = session.start(panelProgram, arguments);
    }
    void write(const QString& name, const QByteArray& content) {
        const QString path = session.configHome() + u'/' + name;
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    /// What stands on the panel's even ground; null when nothing does. Panels draw their own edges.
    QRect icon() {
        const QImage pixels = session.screenPixels(strip);
        const QRgb ground = pixels.pixel(pixels.width() / 2, pixels.height() / 2);
        QRect found;
        for (int y = 6; y < pixels.height() - 6; ++y)
            for (int x = 0; x < pixels.width(); ++x)
                if (std::abs(qGray(pixels.pixel(x, y)) - qGray(ground)) > 40)
                    found |= QRect(strip.x() + x, strip.y() + y, 1, 1);
        return found;
    }
    bool iconAppears() {
        return waitUntil([&] { return icon().width() >= 8 && icon().height() >= 8; });
    }
    /// The extreme of what is drawn: black or white, when the icon suits the panel.
    int ink(bool onDark) {
        const QImage pixels = session.screenPixels(icon());
        int extreme = onDark ? 0 : 255;
        for (int y = 0; y < pixels.height(); ++y)
            for (int x = 0; x < pixels.width(); ++x)
                extreme = onDark ? std::max(extreme, qGray(pixels.pixel(x, y)))
                                 : std::min(extreme, qGray(pixels.pixel(x, y)));
        return extreme;
    }
    bool menuIsOpen() {
        const auto all = session.client().mappedWindows();
        return std::ranges::any_of(all, [](const MappedWindow& window) {
            return window.overrideRedirect && window.rect.height() > 100 && window.rect.width() > 100 &&
                   window.rect.width() < 600;
        });
    }

    /// Left click, right click, the menu by keyboard, and the left click again.
    void useIcon() {
        XTestInput& input = session.input();
        const QPoint item = icon().center();
        input.click(item);
        ASSERT_TRUE(waitFor(QStringLiteral("captureReady")));
        input.key(Key::escape);
        ASSERT_TRUE(waitFor(QStringLiteral("captureClosed")));

        input.click(item, 3);
        ASSERT_TRUE(waitUntil([&] { return menuIsOpen(); }));
        input.key(Key::downArrow); // Capture Screenshot
        input.key(Key::downArrow); // Settings…, since nothing can be recorded
        input.key(Key::returnKey);
        ASSERT_TRUE(opens(settingsWindow));
        EXPECT_EQ(actions().count(QStringLiteral("captureRequested")), 1);
        input.key(Key::escape);
        ASSERT_TRUE(closes(settingsWindow));
        ASSERT_TRUE(waitUntil([&] { return !menuIsOpen(); }));

        input.click(item);
        ASSERT_TRUE(waitFor(QStringLiteral("captureReady"), 2));
        input.key(Key::escape);
        ASSERT_TRUE(waitFor(QStringLiteral("captureClosed"), 2));
    }

    static constexpr QRect strip{0, 680, 1280, 40};
    std::unique_ptr<ChildProgram> panel;
};

QByteArray embeddingPanel(const char* ground) {
    return QByteArrayLiteral("rounded = 0\nborder_width = 0\nbackground_color = ") + ground +
           " 100\npanel_items = S\npanel_position = bottom center horizontal\npanel_size = 100% 40\n"
           "panel_background_id = 1\nsystray_padding = 8 4 8\nsystray_icon_size = 24\n";
}

} // namespace

TEST(ApplicationTray, APanelThatEmbedsWindowsShowsTheItemInItsOwnColoursWheneverItComes) {
    if (QStandardPaths::findExecutable(QStringLiteral("tint2")).isEmpty())
        GTEST_SKIP() << "tint2 is not installed";
    PanelOnDesktop vistrel(false);
    vistrel.start();
    for (const bool isDark : {true, false}) {
        SCOPED_TRACE(isDark ? "dark" : "light");
        vistrel.panel.reset();
        ASSERT_TRUE(waitUntil([&] { return vistrel.icon().isNull(); }));
        vistrel.write(QStringLiteral("panel"), embeddingPanel(isDark ? "#202020" : "#f0f0f0"));
        vistrel.startPanel(QStringLiteral("tint2"),
                           {QStringLiteral("-c"), vistrel.session.configHome() + QStringLiteral("/panel")});
        ASSERT_TRUE(vistrel.iconAppears());
        EXPECT_TRUE(waitUntil([&] { return isDark ? vistrel.ink(true) > 220 : vistrel.ink(false) < 40; }));
    }
    vistrel.useIcon();
}

TEST(ApplicationTray, APanelThatAsksOverTheBusShowsTheItemWheneverItComes) {
    if (QStandardPaths::findExecutable(QStringLiteral("lxqt-panel")).isEmpty())
        GTEST_SKIP() << "lxqt-panel is not installed";
    PanelOnDesktop vistrel(true);
    vistrel.start();
    // The encoded colour is #202020.
    vistrel.write(QStringLiteral("lxqt/panel.conf"),
                  "[General]\n__userfile__=true\npanels=panel1\n[panel1]\nplugins=statusnotifier\n"
                  "position=Bottom\npanelSize=40\niconSize=24\nlineCount=1\nwidth=100\nwidth-percent=true\n"
                  "background-color=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff  \\x20\\x20  \\0\\0)\n"
                  "[statusnotifier]\ntype=statusnotifier\nalignment=Right\n");
    vistrel.startPanel(QStringLiteral("lxqt-panel"));
    ASSERT_TRUE(vistrel.iconAppears());
    EXPECT_TRUE(waitUntil([&] { return vistrel.ink(true) > 220; }));
    vistrel.useIcon();
}
