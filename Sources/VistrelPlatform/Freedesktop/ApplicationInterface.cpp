#include "VistrelPlatform/Freedesktop/ApplicationInterface.h"

namespace {
const QString activationToken = QStringLiteral("activation-token");
const QString startupID = QStringLiteral("desktop-startup-id");
} // namespace

ApplicationInterface::ApplicationInterface(QObject* object, std::function<void(const QString&)> activated)
    : QDBusAbstractAdaptor(object), onActivated(std::move(activated)) {}

QVariantMap ApplicationInterface::platformData(const QString& token) {
    return token.isEmpty() ? QVariantMap() : QVariantMap{{activationToken, token}, {startupID, token}};
}

void ApplicationInterface::Activate(const QVariantMap& platformData) {
    const QString token = platformData.value(activationToken).toString();
    onActivated(token.isEmpty() ? platformData.value(startupID).toString() : token);
}

void ApplicationInterface::Open(const QStringList&, const QVariantMap& platformData) {
    Activate(platformData);
}

void ApplicationInterface::ActivateAction(const QString&, const QVariantList&,
                                          const QVariantMap& platformData) {
    Activate(platformData);
}
