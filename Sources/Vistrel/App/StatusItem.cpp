#include "App/StatusItem.h"

#include "App/VistrelIcon.h"
#include "Editor/EditorIcons.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QScreen>
#include <QTimer>

namespace {

constexpr double menuIconSize = 18;
/// Panels show the item some time after it was offered.
constexpr int settlingTimeMS = 400;
constexpr int darkLuminance = 128;
/// Stands out from a light menu as from a dark one.
constexpr QColor neutralInk(0x8a, 0x8a, 0x8a);

QColor textColor() {
    return QGuiApplication::palette().color(QPalette::WindowText);
}

QIcon menuIcon(const QString& name, const QString& symbol, const QColor& ink) {
    QIcon icon;
    for (const double ratio : {1.0, 2.0}) {
        const auto image = EditorIcons::image(name, symbol, menuIconSize, ratio);
        if (!image)
            continue;
        QPixmap pixmap = image->pixmap(ink, ratio);
        // Thin lines in a middle tone would fade: drawn over themselves they do not.
        if (ink == neutralInk) {
            const QPixmap once = pixmap;
            QPainter painter(&pixmap);
            for (int layer = 0; layer < 2; ++layer)
                painter.drawPixmap(QPoint(), once);
        }
        icon.addPixmap(pixmap);
    }
    return icon;
}

/// Menus that draw an icon leave no room for a mark, so the icon itself shows it: a tick where the item
/// is on, and a dash for the third state, which menus do not have at all.
void addMarks(QIcon& icon, StatusMenu::Check check, const QColor& ink) {
    const bool mixed = check == StatusMenu::Check::mixed;
    for (const double ratio : {1.0, 2.0}) {
        QPixmap pixmap(QSizeF(menuIconSize, menuIconSize).toSize() * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(ink, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        if (mixed)
            painter.drawLine(QPointF(5, 9), QPointF(13, 9));
        else
            painter.drawPolyline(QPolygonF{{4.5, 9.5}, {7.5, 12.5}, {13.5, 5.5}});
        painter.end();
        icon.addPixmap(pixmap, QIcon::Normal, mixed ? QIcon::Off : QIcon::On);
    }
}

QString escaped(QString title) {
    return title.replace(u'&', QStringLiteral("&&"));
}

void apply(const StatusMenu::Item& item, QAction& action, const QColor& ink) {
    if (item.isSeparator()) {
        action.setSeparator(true);
        return;
    }
    action.setText(escaped(item.title));
    action.setEnabled(item.enabled);
    if (!item.keyEquivalent.isEmpty())
        action.setShortcut(QKeySequence(QStringLiteral("Ctrl+") + item.keyEquivalent.toUpper()));
    action.setCheckable(item.check != StatusMenu::Check::notCheckable);
    action.setChecked(item.check == StatusMenu::Check::on);
    QIcon icon;
    if (!item.icon.isEmpty() && item.check != StatusMenu::Check::mixed)
        icon = menuIcon(item.icon, item.symbol, ink);
    if (item.check != StatusMenu::Check::notCheckable)
        addMarks(icon, item.check, ink);
    action.setIcon(icon);
}

/// The brightness that most of the panel around the icon has; absent where the panel cannot be seen.
std::optional<int> panelLuminance(const QRect& icon) {
    if (icon.isEmpty())
        return std::nullopt;
    QScreen* screen = QGuiApplication::screenAt(icon.center());
    if (!screen)
        return std::nullopt;
    const QRect around = icon.adjusted(-2, -2, 2, 2).translated(-screen->geometry().topLeft());
    const QImage image =
        screen->grabWindow(0, around.x(), around.y(), around.width(), around.height()).toImage();
    std::vector<int> levels;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            levels.push_back(qGray(image.pixel(x, y)));
    }
    if (levels.empty())
        return std::nullopt;
    const auto middle = levels.begin() + static_cast<std::ptrdiff_t>(levels.size() / 2);
    std::nth_element(levels.begin(), middle, levels.end());
    return *middle;
}

} // namespace

StatusItem::StatusItem(AppController& owner, std::vector<TrayHost*> possibleHosts,
                       std::function<std::optional<int>()> panelBrightness, QObject* parent)
    : QObject(parent),
      controller(owner),
      hosts(std::move(possibleHosts)),
      panels(std::move(panelBrightness)) {
    menu.setObjectName(QStringLiteral("statusMenu"));
    menu.setAccessibleName(QStringLiteral("Vistrel"));
    connect(&owner, &AppController::statusMenuChanged, this, &StatusItem::updateMenu);
    connect(&menu, &QMenu::aboutToShow, &owner, &AppController::refreshMenu);
    // The panel may have changed its colours since.
    connect(&menu, &QMenu::aboutToShow, this, &StatusItem::updateIcon);
    // The click that closes the menu must not capture as well.
    connect(&menu, &QMenu::aboutToHide, this, [this] {
        menuJustClosed = true;
        QTimer::singleShot(0, this, [this] { menuJustClosed = false; });
    });
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) { knownState = state; });
    for (TrayHost* host : hosts)
        connect(host, &TrayHost::changed, this, &StatusItem::appearWhenPossible);
    menu.installEventFilter(this);
    appearWhenPossible();
}

StatusItem::~StatusItem() = default;

bool StatusItem::isReachable() const {
    return std::any_of(hosts.begin(), hosts.end(), [](const TrayHost* host) { return host->isPresent(); });
}

void StatusItem::appearWhenPossible() {
    if (!isReachable())
        return;
    if (!tray) {
        // Not earlier: the toolkit decides for good, with the first item, how items are shown.
        hostDrawsMenu = std::any_of(hosts.begin(), hosts.end(), [](const TrayHost* host) {
            return host->isPresent() && host->drawsMenus();
        });
        rebuildMenu();
        tray = std::make_unique<QSystemTrayIcon>();
        tray->setToolTip(QStringLiteral("Click to capture. Right-click for menu."));
        tray->setContextMenu(&menu);
        connect(tray.get(), &QSystemTrayIcon::activated, this, &StatusItem::activate);
        updateIcon();
        tray->show();
    }
    QTimer::singleShot(settlingTimeMS, this, &StatusItem::updateIcon);
}

void StatusItem::activate(QSystemTrayIcon::ActivationReason reason) {
    if (reason != QSystemTrayIcon::Trigger)
        return;
    controller.refreshMenu();
    if (!menu.isVisible() && !menuJustClosed)
        controller.captureNow();
}

void StatusItem::updateMenu() {
    if (!tray || shown == controller.statusMenu())
        return;
    const std::vector<StatusMenu::Item>& items = controller.statusMenu();
    const QList<QAction*> actions = menu.actions();
    const bool sameCommands =
        std::equal(items.begin(), items.end(), shown.begin(), shown.end(),
                   [](const auto& left, const auto& right) { return left.command == right.command; });
    if (!sameCommands)
        return rebuildMenu();
    // The menu may be open: what is there stays where it is.
    for (std::size_t index = 0; index < items.size(); ++index)
        apply(items[index], *actions[static_cast<qsizetype>(index)], menuInk());
    shown = items;
}

void StatusItem::rebuildMenu() {
    menu.clear();
    shown = controller.statusMenu();
    for (const StatusMenu::Item& item : shown) {
        QAction* action = menu.addAction(QString());
        apply(item, *action, menuInk());
        // Later: the command may build this menu anew.
        connect(
            action, &QAction::triggered, this,
            [this, command = item.command] {
                controller.perform(command);
                correctChecks();
            },
            Qt::QueuedConnection);
    }
}

QColor StatusItem::menuInk() const {
    return hostDrawsMenu ? neutralInk : menu.palette().color(QPalette::WindowText);
}

void StatusItem::correctChecks() {
    // A click turns the mark over by itself, whatever came of the command.
    const QList<QAction*> actions = menu.actions();
    for (std::size_t index = 0; index < shown.size(); ++index)
        actions[static_cast<qsizetype>(index)]->setChecked(shown[index].check == StatusMenu::Check::on);
}

void StatusItem::updateIcon() {
    if (!tray)
        return;
    // Only hosts that embed a window tell where it is.
    auto luminance = panelLuminance(tray->geometry());
    if (!luminance && panels)
        luminance = panels();
    if (luminance)
        tray->setIcon(VistrelIcon::icon(*luminance < darkLuminance ? Qt::white : Qt::black));
    else
        tray->setIcon(
            QIcon::fromTheme(QStringLiteral("com.orvane.Vistrel-symbolic"), VistrelIcon::icon(textColor())));
}

bool StatusItem::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &menu && event->type() == QEvent::PaletteChange) {
        if (tray)
            rebuildMenu();
        updateIcon();
    }
    // The toolkit learns some time after a capture that its windows have lost the keyboard, and then closes
    // every menu. This one has the keyboard for itself, and may have been opened since.
    const bool isDeactivating = QGuiApplication::applicationState() != knownState;
    if (watched == &menu && event->type() == QEvent::Close && isDeactivating) {
        event->ignore();
        return true;
    }
    return QObject::eventFilter(watched, event);
}
