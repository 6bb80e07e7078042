#pragma once

#include "VistrelPlatform/UserDefaults.h"

#include <QJsonValue>

#include <memory>

/// The user defaults in a file. Made, changed and destroyed on the main thread; reading is safe from any.
/// A change is readable at once and written when no other has followed for a moment, at the latest at the
/// end.
class FileUserDefaults : public UserDefaults {
public:
    /// The user's own file, "defaults.json" in `Paths::config()`.
    FileUserDefaults();
    explicit FileUserDefaults(const QString& path);
    ~FileUserDefaults() override;

    std::optional<double> number(const QString& key) const override;
    std::optional<bool> boolean(const QString& key) const override;
    std::optional<QString> string(const QString& key) const override;
    std::optional<QByteArray> data(const QString& key) const override;
    bool has(const QString& key) const override;

    void setNumber(const QString& key, double value) override;
    void setBoolean(const QString& key, bool value) override;
    void setString(const QString& key, const QString& value) override;
    void setData(const QString& key, const QByteArray& value) override;
    void remove(const QString& key) override;

    /// Writes now. False once a write of this process has failed; the values stay readable in it.
    bool synchronize();

private:
    class Store;
    QJsonValue value(const QString& key) const;
    void setValue(const QString& key, const QJsonValue& value);

    std::unique_ptr<Store> store;
};
