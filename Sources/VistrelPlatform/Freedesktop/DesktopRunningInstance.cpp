#include "VistrelPlatform/Freedesktop/DesktopRunningInstance.h"

#include "VistrelPlatform/Freedesktop/ApplicationInterface.h"
#include "VistrelPlatform/Freedesktop/InstanceLock.h"
#include "VistrelPlatform/System/Log.h"
#include "VistrelPlatform/System/Paths.h"

#include <QDBusMessage>

namespace {

const QString name = QStringLiteral("com.orvane.Vistrel");
const QString path = QStringLiteral("/com/orvane/Vistrel");
const QString busName = QStringLiteral("org.freedesktop.DBus");

/// Numbers of the bus protocol.
constexpr uint doNotQueue = 4;
constexpr uint primaryOwner = 1;
constexpr uint alreadyOwner = 4;
constexpr uint exists = 3;

QDBusMessage busCall(const QString& method) {
    return QDBusMessage::createMethodCall(busName, QStringLiteral("/org/freedesktop/DBus"), busName, method);
}

} // namespace

DesktopRunningInstance::Options DesktopRunningInstance::environmentOptions(Activation::Purpose purpose) {
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    return {.wanted = {purpose, token.isEmpty() ? qEnvironmentVariable("DESKTOP_STARTUP_ID") : token}};
}

DesktopRunningInstance::DesktopRunningInstance(QDBusConnection sessionBus, Options claimOptions)
    : bus(std::move(sessionBus)), options(std::move(claimOptions)) {
    new ApplicationInterface(&object, [this](const Activation& wanted) {
        if (onActivated)
            onActivated(wanted);
    });
}

DesktopRunningInstance::~DesktopRunningInstance() {
    if (!ownsName)
        return;
    bus.unregisterObject(path);
    QDBusMessage release = busCall(QStringLiteral("ReleaseName"));
    release << name;
    bus.send(release);
}

bool DesktopRunningInstance::claim() {
    const Result<QString> folder = Paths::runtime();
    if (!folder)
        qCWarning(vistrelLog).noquote() << "No runtime folder:" << folder.error().description;
    if (folder) {
        lock = std::make_unique<InstanceLock>(*folder);
        lock->onActivated = [this](const Activation& wanted) {
            if (onActivated)
                onActivated(wanted);
        };
        if (lock->acquire() == InstanceLock::Outcome::heldByAnother) {
            if (!lock->activateHolder(options.wanted, options.patience))
                askRunning(bus, options);
            return false;
        }
    }
    // Another runtime folder does not make another session: the bus has the last word.
    if (requestName() == Name::taken) {
        lock.reset();
        askRunning(bus, options);
        return false;
    }
    return true;
}

DesktopRunningInstance::Name DesktopRunningInstance::requestName() {
    if (!bus.isConnected())
        return Name::unavailable;
    // First the object, then the name: who sees the name may call at once.
    bus.registerObject(path, &object, QDBusConnection::ExportAdaptors);
    QDBusMessage request = busCall(QStringLiteral("RequestName"));
    request << name << doNotQueue;
    const QDBusMessage reply = bus.call(request, QDBus::Block, static_cast<int>(options.patience.count()));
    const uint answer = reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0).toUInt() : 0;
    ownsName = answer == primaryOwner || answer == alreadyOwner;
    if (ownsName)
        return Name::ours;
    bus.unregisterObject(path);
    return answer == exists ? Name::taken : Name::unavailable;
}

bool DesktopRunningInstance::askRunning(const QDBusConnection& sessionBus, const Options& options) {
    if (!sessionBus.isConnected())
        return false;
    const bool capture = options.wanted.purpose == Activation::Purpose::capture;
    QDBusMessage request = QDBusMessage::createMethodCall(
        name, path, QStringLiteral("org.freedesktop.Application"),
        capture ? QStringLiteral("ActivateAction") : QStringLiteral("Activate"));
    if (capture)
        request << ApplicationInterface::captureAction << QVariantList();
    request << ApplicationInterface::platformData(options.wanted.token);
    request.setAutoStartService(false);
    const QDBusMessage reply =
        sessionBus.call(request, QDBus::Block, static_cast<int>(options.patience.count()));
    return reply.type() == QDBusMessage::ReplyMessage;
}
