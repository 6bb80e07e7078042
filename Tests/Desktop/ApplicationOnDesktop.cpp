#include "Desktop/ApplicationOnDesktop.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

#include <csignal>

QJsonObject ApplicationOnDesktop::defaults() const {
    QFile file(defaultsPath());
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

void ApplicationOnDesktop::setDefaults(const QJsonObject& all) {
    QFile file(defaultsPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QJsonDocument(all).toJson());
}

QString ApplicationOnDesktop::storedShortcut() const {
    const QJsonValue data = defaults()[QLatin1StringView("screenshotShortcuts")][QLatin1StringView("data")];
    QStringList labels;
    for (const QJsonValue& shortcut :
         QJsonDocument::fromJson(QByteArray::fromBase64(data.toString().toLatin1())).array())
        labels << QStringLiteral("%1+%2")
                      .arg(shortcut[QLatin1StringView("modifiers")].toInt())
                      .arg(shortcut[QLatin1StringView("keyLabel")].toString());
    return labels.join(u' ');
}

QJsonObject ApplicationOnDesktop::details(const char* action) const {
    QJsonObject result;
    for (const QJsonObject& event : events())
        if (event[QLatin1StringView("action")] == QLatin1StringView(action))
            result = event[QLatin1StringView("details")].toObject();
    return result;
}

void ApplicationOnDesktop::launch() {
    const auto launches = actions().count(QStringLiteral("launch"));
    program = startProgram();
    ASSERT_TRUE(waitFor(QStringLiteral("launch"), static_cast<int>(launches) + 1));
}

std::optional<int> ApplicationOnDesktop::end() {
    program->sendSignal(SIGTERM);
    return program->waitForExit(patience);
}

bool ApplicationOnDesktop::opens(const QString& title) {
    return waitUntil([&] {
        const auto window = session.client().windowTitled(title);
        return window && session.client().focusedWindow() == window->id;
    });
}

bool ApplicationOnDesktop::closes(const QString& title) {
    return waitUntil([&] { return !isOpen(title); });
}

bool ApplicationOnDesktop::isReleased(std::uint32_t modifiers, std::uint8_t scanCode) {
    const bool isFree = waitUntil([&] { return session.client().grabKey(modifiers, scanCode) == 0; });
    session.client().ungrabKey(modifiers, scanCode);
    return isFree;
}
