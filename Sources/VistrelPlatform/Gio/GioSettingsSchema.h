#pragma once

#include "VistrelPlatform/DesktopLibrary.h"
#include "VistrelPlatform/Gio/GObjectPointer.h"

#include <map>

/// A GSettings schema with the objects of it that were read.
class GioSettingsSchema : public SettingsSchema {
public:
    /// Null when it is not installed.
    static std::unique_ptr<GioSettingsSchema> find(const QByteArray& name);
    ~GioSettingsSchema() override;

    QByteArray name() const override;
    void eachText(const QByteArray& path, const Visitor& visit) override;

private:
    explicit GioSettingsSchema(GSettingsSchema* found);

    GSettingsSchema* schema;
    gchar** keys;
    std::map<QByteArray, GObjectPointer<GSettings>> objects;
};
