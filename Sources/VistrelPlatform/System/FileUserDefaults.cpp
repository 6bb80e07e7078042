#include "VistrelPlatform/System/FileUserDefaults.h"

#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/System/DefaultsFormat.h"
#include "VistrelPlatform/System/Log.h"
#include "VistrelPlatform/System/Paths.h"

#include <QBasicTimer>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>
#include <QSettings>

#include <cmath>

namespace {

/// Each write waits for the disk, and a slider changes its value with every step.
constexpr int pauseBeforeWritingMS = 250;

} // namespace

/// QSettings is not safe for several threads, and writes from its own event: all of it under one mutex.
class FileUserDefaults::Store : public QSettings {
public:
    explicit Store(const QString& path) : QSettings(path, DefaultsFormat::registered()) {
        setAtomicSyncRequired(true);
    }

    /// After every write: Qt makes new files readable for everybody.
    void finishWriting() {
        QFile file(fileName());
        if (file.exists() && status() == QSettings::NoError)
            file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
        logFailure();
    }

    mutable QMutex mutex;
    bool changedSince = false;

protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::UpdateRequest)
            return QSettings::event(event);
        const QMutexLocker locker(&mutex);
        changedSince = false;
        pause.start(pauseBeforeWritingMS, this);
        return true;
    }
    void timerEvent(QTimerEvent*) override {
        const QMutexLocker locker(&mutex);
        if (std::exchange(changedSince, false))
            return;
        pause.stop();
        QEvent request(QEvent::UpdateRequest);
        QSettings::event(&request);
        finishWriting();
    }

private:
    void logFailure() {
        if (failureLogged || status() != QSettings::AccessError)
            return;
        failureLogged = true;
        qCWarning(vistrelLog).noquote() << fileName() << "could not be written";
    }

    QBasicTimer pause;
    bool failureLogged = false;
};

FileUserDefaults::FileUserDefaults() : FileUserDefaults(Paths::config() + QStringLiteral("/defaults.json")) {}

FileUserDefaults::FileUserDefaults(const QString& path) : store(std::make_unique<Store>(path)) {}

FileUserDefaults::~FileUserDefaults() {
    synchronize();
}

bool FileUserDefaults::synchronize() {
    const QMutexLocker locker(&store->mutex);
    store->sync();
    store->finishWriting();
    return store->status() != QSettings::AccessError;
}

QJsonValue FileUserDefaults::value(const QString& key) const {
    const QMutexLocker locker(&store->mutex);
    return store->value(key).toJsonValue();
}

void FileUserDefaults::setValue(const QString& key, const QJsonValue& value) {
    const QMutexLocker locker(&store->mutex);
    // Each write waits for the disk, and every start stores the shortcuts again that it has read.
    if (store->contains(key) && store->value(key).toJsonValue() == value)
        return;
    store->setValue(key, QVariant::fromValue(value));
    store->changedSince = true;
}

std::optional<double> FileUserDefaults::number(const QString& key) const {
    const QJsonValue stored = value(key);
    if (!stored.isDouble())
        return std::nullopt;
    return stored.toDouble();
}

std::optional<bool> FileUserDefaults::boolean(const QString& key) const {
    const QJsonValue stored = value(key);
    if (!stored.isBool())
        return std::nullopt;
    return stored.toBool();
}

std::optional<QString> FileUserDefaults::string(const QString& key) const {
    const QJsonValue stored = value(key);
    if (!stored.isString())
        return std::nullopt;
    return stored.toString();
}

std::optional<QByteArray> FileUserDefaults::data(const QString& key) const {
    return DefaultsFormat::decodedData(value(key));
}

bool FileUserDefaults::has(const QString& key) const {
    return !value(key).isNull();
}

void FileUserDefaults::setNumber(const QString& key, double value) {
    VISTREL_PRECONDITION(std::isfinite(value), "JSON has no number for this value");
    setValue(key, value);
}

void FileUserDefaults::setBoolean(const QString& key, bool value) {
    setValue(key, value);
}

void FileUserDefaults::setString(const QString& key, const QString& value) {
    setValue(key, value);
}

void FileUserDefaults::setData(const QString& key, const QByteArray& value) {
    setValue(key, DefaultsFormat::encodedData(value));
}

void FileUserDefaults::remove(const QString& key) {
    const QMutexLocker locker(&store->mutex);
    if (store->contains(key)) {
        store->remove(key);
        store->changedSince = true;
    }
}
