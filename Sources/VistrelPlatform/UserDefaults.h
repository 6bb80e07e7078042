#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

/// A small typed store of the user's choices, kept as one JSON object in
/// `$XDG_CONFIG_HOME/Vistrel/defaults.json`. Main thread; `boolean(...)` may be read from any thread.
/// A file that does not parse is kept aside as `defaults.json.unreadable-<time>`, never overwritten.
class UserDefaults {
public:
    UserDefaults() = default;
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;
    virtual ~UserDefaults() = default;

    /// Absent when the key is missing or holds another type.
    virtual std::optional<double> number(const QString& key) const = 0;
    virtual std::optional<bool> boolean(const QString& key) const = 0;
    virtual std::optional<QString> string(const QString& key) const = 0;
    virtual std::optional<QByteArray> data(const QString& key) const = 0;
    /// Whether anything at all is stored under the key.
    virtual bool has(const QString& key) const = 0;

    virtual void setNumber(const QString& key, double value) = 0;
    virtual void setBoolean(const QString& key, bool value) = 0;
    virtual void setString(const QString& key, const QString& value) = 0;
    virtual void setData(const QString& key, const QByteArray& value) = 0;
    virtual void remove(const QString& key) = 0;
};
