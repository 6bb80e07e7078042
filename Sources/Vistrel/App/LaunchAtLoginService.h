#pragma once

#include "VistrelPlatform/LoginItem.h"
#include "VistrelPlatform/UserDefaults.h"

/// Keeps the program a login item, by itself only once: after the first launch the user decides.
/// Main thread.
class LaunchAtLoginService {
public:
    static inline const QString configuredKey = QStringLiteral("launchAtLoginConfigured");

    /// Both are borrowed and outlive the service.
    LaunchAtLoginService(UserDefaults& store, LoginItem& loginItem, QString key = configuredKey);

    LoginItemStatus status() const { return item.status(); }
    /// Enrols at the first launch. After a failure the next launch tries again.
    Result<void> configureDefault();
    /// The user's choice, which counts as configured.
    Result<void> setEnabled(bool enabled);
    /// The opposite of what is; waiting for approval counts as on.
    Result<void> toggle();

private:
    bool isEnrolled() const;

    UserDefaults& defaults;
    LoginItem& item;
    QString flag;
};
