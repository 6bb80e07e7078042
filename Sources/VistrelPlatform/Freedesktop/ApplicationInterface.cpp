#include "VistrelPlatform/Freedesktop/ApplicationInterface.h"

namespace {
const QString activationToken = QStringLiteral("activation-token");
const QString startupID = QStringLiteral("desktop-startup-id");

QString tokenIn(const QVariantMap& platformData) {
    const QString token = platformData.value(activationToken).toString();
    return token.isEmpty() ? platformData.value(startupID).toString() : token;
}
} // namespace

ApplicationInterface::ApplicationInterface(QObject* object, std::function<void(const Activation&)> activated)
    : QDBusAbstractAdaptor(object), onActivated(std::move(activated)) {}

QVariantMap ApplicationInterface::platformData(const QString& token) {
    return token.isEmpty() ? QVariantMap() : QVariantMap{{activationToken, token}, {startupID, token}};
}

void ApplicationInterface::Activate(const QVariantMap& platformData) {
    onActivated({Activation::Purpose::comeForward, tokenIn(platformData)});
}

void ApplicationInterface::Open(const QStringList&, const QVariantMap& platformData) {
    Activate(platformData);
}

void ApplicationInterface::ActivateAction(const QString& name, const QVariantList&,
                                          const QVariantMap& platformData) {
    if (name == captureAction)
        onActivated({Activation::Purpose::capture, tokenIn(platformData)});
}
