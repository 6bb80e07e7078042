#pragma once

#include "VistrelPlatform/DesktopLibrary.h"

/// The desktop's application database and settings as GIO reads them.
class GioDesktopLibrary : public DesktopLibrary {
public:
    std::vector<Application> applicationsOpening(const QByteArray& type) override;
    bool opensAddresses(const QByteArray& scheme) override;
    std::optional<Activation> activation(const QString& identifier) override;
    qint64 launch(const QString& identifier, const QString& file, const QString& startupID) override;
    std::unique_ptr<SettingsSchema> settingsSchema(const QByteArray& name) override;
};
