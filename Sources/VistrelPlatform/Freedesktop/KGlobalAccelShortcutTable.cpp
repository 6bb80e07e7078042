#include "VistrelPlatform/Freedesktop/KGlobalAccelShortcutTable.h"

#include "VistrelPlatform/Freedesktop/ShortcutNotation.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

namespace {

const QString service = QStringLiteral("org.kde.kglobalaccel");
const QString path = QStringLiteral("/kglobalaccel");
const QString interface = QStringLiteral("org.kde.KGlobalAccel");
const QString componentInterface = QStringLiteral("org.kde.kglobalaccel.Component");
const QString replySignature = QStringLiteral("a(ssssssaiai)");

/// The keys of every action in one component's answer.
QList<int> keysIn(const QDBusMessage& reply) {
    QList<int> keys;
    if (reply.signature() != replySignature)
        return keys;
    const auto list = reply.arguments().first().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        // Names of action, component and context, each with its title, come before the keys.
        QString name;
        QList<int> current;
        QList<int> byDefault;
        list.beginStructure();
        for (int i = 0; i < 6; ++i)
            list >> name;
        list >> current >> byDefault;
        list.endStructure();
        keys += current;
    }
    list.endArray();
    return keys;
}

} // namespace

KGlobalAccelShortcutTable::KGlobalAccelShortcutTable(QDBusConnection sessionBus,
                                                     const KeyboardLayout& keyboard,
                                                     std::chrono::milliseconds longestWait)
    : BusShortcutTable(std::move(sessionBus), keyboard, longestWait) {
    for (const QString& signal :
         {QStringLiteral("yourShortcutGotChanged"), QStringLiteral("yourShortcutsChanged")})
        bus.connect(service, path, interface, signal, this, SLOT(refresh()));
}

QDBusMessage KGlobalAccelShortcutTable::firstCall() const {
    return QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("allComponents"));
}

std::vector<QDBusMessage> KGlobalAccelShortcutTable::furtherCalls(const QDBusMessage& firstReply) const {
    std::vector<QDBusMessage> calls;
    for (const auto& component : qdbus_cast<QList<QDBusObjectPath>>(firstReply.arguments().value(0))) {
        for (const QString& method : {QStringLiteral("isActive"), QStringLiteral("allShortcutInfos")})
            calls.push_back(
                QDBusMessage::createMethodCall(service, component.path(), componentInterface, method));
    }
    return calls;
}

ShortcutTable::Entries
KGlobalAccelShortcutTable::entries(const QDBusMessage&,
                                   const std::vector<QDBusMessage>& furtherReplies) const {
    Entries result;
    for (std::size_t i = 0; i + 1 < furtherReplies.size(); i += 2) {
        // A program that is not running has its keys noted, but they are free.
        const bool active = furtherReplies[i].arguments().value(0).toBool();
        for (const int key : keysIn(furtherReplies[i + 1])) {
            if (auto shortcut = ShortcutNotation::fromCombinedKey(key, layout)) {
                shortcut->enabled = active;
                result.push_back(*shortcut);
            }
        }
    }
    return result;
}
