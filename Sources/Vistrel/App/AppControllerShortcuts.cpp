#include "App/AppController.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

const QString listKey = QStringLiteral("screenshotShortcuts");
const QString singleKey = QStringLiteral("screenshotShortcut");

} // namespace

std::vector<ScreenshotShortcut> AppController::registeredShortcuts() const {
    return services.hotkeys.shortcuts();
}

void AppController::registerStoredShortcuts() {
    const std::vector<ScreenshotShortcut> stored =
        ScreenshotShortcut::initialSet(services.defaults.data(listKey), services.defaults.data(singleKey));
    if (const auto registered = services.hotkeys.registerShortcuts(stored); !registered) {
        setShortcutMessage(registered.error().description);
        for (const ScreenshotShortcut& shortcut : stored) {
            std::vector<ScreenshotShortcut> wanted = registeredShortcuts();
            wanted.push_back(shortcut);
            // What this one cannot have has been said above.
            static_cast<void>(services.hotkeys.registerShortcuts(wanted));
        }
        registerDefaultIfNothingIs();
    }
    if (!registeredShortcuts().empty())
        persistShortcuts();
}

void AppController::registerDefaultIfNothingIs() {
    if (registeredShortcuts().empty())
        static_cast<void>(services.hotkeys.registerShortcuts({ScreenshotShortcut::defaultShortcut()}));
}

void AppController::revalidateShortcuts() {
    if (const auto registered = services.hotkeys.registerShortcuts(registeredShortcuts()); !registered) {
        setShortcutMessage(registered.error().description);
        registerDefaultIfNothingIs();
    }
    refreshState();
}

void AppController::persistShortcuts() {
    const std::vector<ScreenshotShortcut> shortcuts = registeredShortcuts();
    services.defaults.setData(listKey, ScreenshotShortcut::encodeList(shortcuts));
    if (!shortcuts.empty())
        services.defaults.setData(singleKey, shortcuts.front().encode());
}

bool AppController::choose(const ScreenshotShortcut& shortcut) {
    setShortcutChangeFailed(false);
    setShortcutAlert(std::nullopt);
    if (const auto registered = services.hotkeys.registerShortcuts({shortcut}); !registered) {
        reportShortcutFailure(registered.error());
        return false;
    }
    persistShortcuts();
    setShortcutMessage(QStringLiteral("Shortcut is ready."));
    journal(Diagnostic::Action::shortcutChanged);
    refreshState();
    return true;
}

void AppController::reportShortcutFailure(const Error& error) {
    journal(Diagnostic::Action::shortcutFailed,
            LocalDiagnostics::error(error, Diagnostic::ErrorKind::hotkey));
    setShortcutChangeFailed(true);
    setShortcutMessage(error.description);
    const QString active = registeredShortcuts().empty()
                               ? QStringLiteral("No capture shortcut is active in Vistrel.")
                               : QStringLiteral("Active in Vistrel: ") + joinedLabels() + u'.';
    setShortcutAlert(ShortcutSetupAlert{QUuid::createUuid(), message + QStringLiteral("\n\n") + active});
}

void AppController::setRecordingShortcut(bool recording) {
    services.hotkeys.setPaused(recording);
    // A chord that another program took meanwhile is no longer among ours.
    if (!recording)
        refreshState();
}

void AppController::clearShortcutAlert() {
    setShortcutAlert(std::nullopt);
}

void AppController::refreshState() {
    label = registeredShortcuts().empty() ? QStringLiteral("Not registered") : joinedLabels();
    Q_EMIT shortcutLabelChanged();
    refreshMenu();
}

QString AppController::joinedLabels() const {
    QStringList labels;
    for (const ScreenshotShortcut& shortcut : registeredShortcuts())
        labels << shortcut.label();
    return labels.join(QStringLiteral(" / "));
}

void AppController::setShortcutMessage(const QString& text) {
    message = text;
    Q_EMIT shortcutMessageChanged();
}

void AppController::setShortcutChangeFailed(bool failed) {
    changeFailed = failed;
    Q_EMIT shortcutChangeFailedChanged();
}

void AppController::setShortcutAlert(std::optional<ShortcutSetupAlert> shown) {
    alert = std::move(shown);
    Q_EMIT shortcutAlertChanged();
}
