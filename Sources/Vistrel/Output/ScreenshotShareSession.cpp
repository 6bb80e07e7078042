#include "Output/ScreenshotShareSession.h"

#include "Output/ImageEncoder.h"
#include "Output/SavePanel.h"
#include "Output/ShareMenu.h"
#include "Output/ShareMenuStyle.h"

#include <QDateTime>
#include <QGuiApplication>
#include <QTimer>
#include <QWidget>

namespace {

/// The icon as the menu shows it; null stays null.
QIcon menuImage(const QIcon& icon, qreal devicePixelRatio) {
    const QSize size = ShareMenuStyle::iconSize;
    QPixmap pixmap = icon.pixmap(size, devicePixelRatio);
    if (pixmap.isNull())
        return {};
    const QSize pixels = size * devicePixelRatio;
    if (pixmap.size() != pixels)
        pixmap = pixmap.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return QIcon(pixmap);
}

QString menuText(QString title) {
    return title.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

} // namespace

ScreenshotShareSession::Behaviour ScreenshotShareSession::desktopBehaviour(ShareServices& services) {
    Behaviour behaviour;
    behaviour.servicesForItems = [&services](const QImage&) { return services.services(); };
    behaviour.performService = [&services](const ShareService& chosen, const QImage& picture,
                                           ScreenshotShareSession& session) {
        const auto png = ImageEncoder::encode(ScreenshotSaveFormat::png, picture);
        if (!png) {
            QTimer::singleShot(0, &session, [&session, chosen] { session.didFailToShare(chosen); });
            return;
        }
        const QString name = suggestedFileName(ScreenshotSaveFormat::png, QDateTime::currentDateTimeUtc());
        services.perform(chosen, {*png, name}, [chosen, guard = QPointer(&session)](bool shared) {
            if (!guard)
                return;
            if (shared)
                guard->didShare(chosen);
            else
                guard->didFailToShare(chosen);
        });
    };
    behaviour.openExtensions = [&services](ScreenshotShareSession& session) {
        services.onExtensionSettingsClosed = [guard = QPointer(&session)] {
            if (guard)
                guard->didEditExtensions();
        };
        return services.openExtensionSettings();
    };
    return behaviour;
}

ScreenshotShareSession::ScreenshotShareSession(QImage picture, Behaviour outside, QObject* parent)
    : QObject(parent), image(std::move(picture)), behaviour(std::move(outside)) {}

ScreenshotShareSession::~ScreenshotShareSession() {
    cancel();
}

std::unique_ptr<QMenu> ScreenshotShareSession::makeMenu(QWidget* parent) {
    auto made = std::make_unique<ShareMenu>(parent);
    made->setObjectName(QStringLiteral("shareMenu"));
    made->setAccessibleName(QStringLiteral("Share"));
    ShareMenuStyle::apply(*made);
    if (behaviour.servicesForItems) {
        for (const ShareService& each : behaviour.servicesForItems(image)) {
            if (!each.canPerform)
                continue;
            QAction* action =
                made->addAction(menuImage(each.image, made->devicePixelRatioF()), menuText(each.menuTitle));
            action->setIconVisibleInMenu(true);
            connect(action, &QAction::triggered, this, [this, each] { choose(each); });
        }
    }
    if (!made->isEmpty())
        made->addSeparator();
    connect(made->addAction(QStringLiteral("Edit Extensions…")), &QAction::triggered, this,
            &ScreenshotShareSession::editExtensions);
    return made;
}

void ScreenshotShareSession::show(QWidget& anchor) {
    menu = makeMenu(anchor.window()).release();
    // A choice is reported after the menu has gone, so the decision waits for the next turn of the loop.
    connect(menu, &QMenu::aboutToHide, this, &ScreenshotShareSession::menuClosed, Qt::QueuedConnection);
    connect(menu, &QObject::destroyed, this, &ScreenshotShareSession::menuClosed, Qt::QueuedConnection);
    menu->popup(anchor.mapToGlobal(QPoint(0, 0)));
}

void ScreenshotShareSession::menuClosed() {
    if (menu)
        menu->deleteLater();
    menu.clear();
    if (current == State::choosing)
        finish(false);
}

void ScreenshotShareSession::choose(const ShareService& chosen) {
    if (current != State::choosing)
        return;
    current = State::sharing;
    service = chosen;
    const QPointer guard(this);
    if (const auto notify = onChooseService)
        notify();
    if (guard && current == State::sharing && behaviour.performService)
        behaviour.performService(chosen, image, *this);
}

bool ScreenshotShareSession::isChosen(const ShareService& other) const {
    return current == State::sharing && service && service->identifier == other.identifier;
}

void ScreenshotShareSession::didShare(const ShareService& reporting) {
    if (isChosen(reporting))
        finish(true);
}

void ScreenshotShareSession::didFailToShare(const ShareService& reporting) {
    if (isChosen(reporting))
        finish(false);
}

void ScreenshotShareSession::editExtensions() {
    if (current != State::choosing)
        return;
    current = State::editingExtensions;
    const QPointer guard(this);
    if (const auto notify = onChooseService)
        notify();
    if (!guard || current != State::editingExtensions)
        return;
    activationObservers.push_back(connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
                                          &ScreenshotShareSession::applicationStateChanged));
    if (!behaviour.openExtensions || !behaviour.openExtensions(*this))
        finish(false);
}

void ScreenshotShareSession::applicationStateChanged(Qt::ApplicationState applicationState) {
    if (current != State::editingExtensions)
        return;
    if (applicationState != Qt::ApplicationActive)
        leftApplication = true;
    else if (leftApplication)
        finish(false);
}

void ScreenshotShareSession::didEditExtensions() {
    if (current == State::editingExtensions)
        finish(false);
}

void ScreenshotShareSession::finish(bool shared) {
    if (current == State::finished)
        return;
    current = State::finished;
    for (const QMetaObject::Connection& observer : activationObservers)
        disconnect(observer);
    activationObservers.clear();
    const auto report = std::move(onFinish);
    onFinish = nullptr;
    onChooseService = nullptr;
    service.reset();
    if (report)
        report(shared);
}

void ScreenshotShareSession::cancel() {
    onChooseService = nullptr;
    onFinish = nullptr;
    finish(false);
    if (menu) {
        menu->close();
        menu->deleteLater();
    }
    menu.clear();
}
