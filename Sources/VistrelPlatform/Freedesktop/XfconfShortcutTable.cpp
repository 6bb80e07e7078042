#include "VistrelPlatform/Freedesktop/XfconfShortcutTable.h"

#include "VistrelPlatform/Freedesktop/ShortcutNotation.h"

#include <QDBusArgument>

namespace {

const QString service = QStringLiteral("org.xfce.Xfconf");
const QString path = QStringLiteral("/org/xfce/Xfconf");
const QString interface = QStringLiteral("org.xfce.Xfconf");
const QString channel = QStringLiteral("xfce4-keyboard-shortcuts");

} // namespace

XfconfShortcutTable::XfconfShortcutTable(QDBusConnection sessionBus, const KeyboardLayout& keyboard,
                                         std::chrono::milliseconds longestWait)
    : BusShortcutTable(std::move(sessionBus), keyboard, longestWait) {
    for (const QString& signal : {QStringLiteral("PropertyChanged"), QStringLiteral("PropertyRemoved")})
        bus.connect(service, path, interface, signal, {channel}, QString(), this, SLOT(refresh()));
}

QDBusMessage XfconfShortcutTable::firstCall() const {
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("GetAllProperties"));
    call << channel << QStringLiteral("/");
    return call;
}

std::vector<QDBusMessage> XfconfShortcutTable::furtherCalls(const QDBusMessage&) const {
    return {};
}

ShortcutTable::Entries XfconfShortcutTable::entries(const QDBusMessage& firstReply,
                                                    const std::vector<QDBusMessage>&) const {
    const auto properties = qdbus_cast<QVariantMap>(firstReply.arguments().value(0));
    Entries result;
    for (const QString& provider : {QStringLiteral("/commands/"), QStringLiteral("/xfwm4/")}) {
        // Once the user has changed anything, the provider's defaults no longer count.
        const QString own = provider + QStringLiteral("custom/");
        const bool overridden = properties.value(own + QStringLiteral("override")).toBool();
        const QString inForce = overridden ? own : provider + QStringLiteral("default/");
        for (auto property = properties.cbegin(); property != properties.cend(); ++property) {
            if (!property.key().startsWith(inForce))
                continue;
            const QString chord = property.key().section(u'/', 3, 3);
            if (auto shortcut = ShortcutNotation::fromAccelerator(chord, layout)) {
                shortcut->enabled = !property.value().toString().isEmpty();
                result.push_back(*shortcut);
            }
        }
    }
    return result;
}
