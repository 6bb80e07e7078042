#include "Desktop/VistrelOnDesktop.h"
#include "Support/Provided.h"
#include "Support/TestFiles.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

/// A panel along the lower edge that shows nothing but status items.
class PanelOnDesktop : public VistrelOnDesktop {
public:
    using VistrelOnDesktop::VistrelOnDesktop;

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
    /// Waits for an icon that reaches almost white on a dark panel, almost black on a light one.
    bool showsIcon(bool isDark) {
        return waitUntil([&] {
            const QRect place = icon();
            if (place.width() < 8 || place.height() < 8)
                return false;
            const QImage pixels = session.screenPixels(place);
            for (int i = 0; i < pixels.width() * pixels.height(); ++i) {
                const int gray = qGray(pixels.pixel(i % pixels.width(), i / pixels.width()));
                if (isDark ? gray > 220 : gray < 40)
                    return true;
            }
            return false;
        });
    }
    /// Null when no menu is open.
    QRect menu() {
        for (const MappedWindow& window : session.client().mappedWindows())
            if (window.overrideRedirect && window.rect.height() > 100 && window.rect.width() > 100 &&
                window.rect.width() < 600)
                return window.rect & QRect(0, 0, 1280, 720);
        return {};
    }

    /// Whether something stands out from the ground where a menu's first item has its icon.
    static bool hasIcon(const QImage& menuPixels) {
        const QImage place = menuPixels.copy(4, 4, 32, 24);
        const int ground = qGray(place.pixel(0, 0));
        int most = 0;
        for (int i = 0; i < place.width() * place.height(); ++i)
            most =
                std::max(most, std::abs(qGray(place.pixel(i % place.width(), i / place.width())) - ground));
        return most > 70;
    }

    /// Left click, right click, the menu by keyboard, and the left click again.
    void useIcon() {
        // A panel that has just come may still move what it took in.
        settled(strip, 30);
        const QPoint item = icon().center();
        session.input().click(item);
        ASSERT_TRUE(isReady() && closeCapture());
        session.input().click(item, 3);
        ASSERT_TRUE(waitUntil([&] { return !menu().isNull(); }));
        // It outlives the moment at which the toolkit notices that the capture is over.
        const QImage untouched = settled(menu(), 250);
        EXPECT_TRUE(hasIcon(untouched));
        ASSERT_TRUE(waitUntil([&] {
            key(Key::downArrow); // Capture Screenshot
            return waitUntil([&] { return session.screenPixels(menu()) != untouched; },
                             std::chrono::seconds(5));
        }));
        key(Key::downArrow); // Settings…, since nothing can be recorded
        key(Key::returnKey);
        ASSERT_TRUE(opens(settingsWindow));
        EXPECT_EQ(count("captureRequested"), 1);
        key(Key::escape);
        ASSERT_TRUE(closes(settingsWindow) && waitUntil([&] { return menu().isNull(); }));
        session.input().click(item);
        ASSERT_TRUE(isReady(2) && closeCapture());
    }

    static constexpr QRect strip{0, 680, 1280, 40};
    std::unique_ptr<ChildProgram> panel;
};

} // namespace

TEST(ApplicationTray, APanelThatEmbedsWindowsShowsTheItemInItsOwnColoursWheneverItComes) {
    if (!provided({"tint2"}))
        return;
    PanelOnDesktop vistrel;
    const QString settings = vistrel.session.configHome() + u"/panel"_s;
    vistrel.start();
    for (const bool isDark : {true, false}) {
        vistrel.panel.reset();
        ASSERT_TRUE(waitUntil([&] { return vistrel.icon().isNull(); }));
        writeFile(settings, QByteArray("rounded = 0\nborder_width = 0\nbackground_color = ") +
                                (isDark ? "#202020" : "#f0f0f0") +
                                " 100\npanel_items = S\npanel_position = bottom center horizontal\n"
                                "panel_size = 100% 40\npanel_background_id = 1\nsystray_padding = 8 4 8\n"
                                "systray_icon_size = 24\n");
        vistrel.panel = vistrel.session.start(u"tint2"_s, {u"-c"_s, settings});
        ASSERT_TRUE(vistrel.showsIcon(isDark)) << isDark;
    }
    vistrel.useIcon();
}

TEST(ApplicationTray, APanelThatAsksOverTheBusShowsTheItemWheneverItComes) {
    if (!provided({"lxqt-panel"}))
        return;
    PanelOnDesktop vistrel(desktopWithBus());
    vistrel.start();
    // Its menus are as dark as the panel, whatever colours the program has. The encoded colour is #202020.
    writeFile(
        vistrel.session.dataHome() + u"/lxqt/themes/night/lxqt-panel.qss"_s,
        "QMenu { background-color: #202020; color: white; } QMenu::item { padding: 4px 20px 4px 30px; } "
        "QMenu::item:selected { background-color: #4060a0; }");
    writeFile(vistrel.session.configHome() + u"/lxqt/lxqt.conf"_s, "[General]\ntheme=night\n");
    writeFile(vistrel.session.configHome() + u"/lxqt/panel.conf"_s,
              "[General]\n__userfile__=true\npanels=panel1\n[panel1]\nplugins=statusnotifier\n"
              "position=Bottom\npanelSize=40\niconSize=24\nlineCount=1\nwidth=100\nwidth-percent=true\n"
              "background-color=@Variant(\\0\\0\\0\\x43\\x1\\xff\\xff  \\x20\\x20  \\0\\0)\n"
              "[statusnotifier]\ntype=statusnotifier\nalignment=Right\n");
    vistrel.panel = vistrel.session.start(u"lxqt-panel"_s);
    ASSERT_TRUE(vistrel.showsIcon(true));
    vistrel.useIcon();
}
