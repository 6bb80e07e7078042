#pragma once

#include "VistrelPlatform/UserDefaults.h"

/// Nothing is stored, and nothing is kept.
class EmptyDefaults : public UserDefaults {
public:
    std::optional<double> number(const QString&) const override { return std::nullopt; }
    std::optional<bool> boolean(const QString&) const override { return std::nullopt; }
    std::optional<QString> string(const QString&) const override { return std::nullopt; }
    std::optional<QByteArray> data(const QString&) const override { return std::nullopt; }
    bool has(const QString&) const override { return false; }
    void setNumber(const QString&, double) override {}
    void setBoolean(const QString&, bool) override {}
    void setString(const QString&, const QString&) override {}
    void setData(const QString&, const QByteArray&) override {}
    void remove(const QString&) override {}
};
