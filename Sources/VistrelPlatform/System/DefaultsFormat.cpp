#include "VistrelPlatform/System/DefaultsFormat.h"

#include "VistrelPlatform/System/Files.h"
#include "VistrelPlatform/System/Log.h"

#include <QDateTime>
#include <QFile>
#include <QFileDevice>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>

namespace {

/// Far beyond what the choices ever need.
constexpr qint64 largestFile = 4 << 20;
constexpr int asideAttempts = 100;
const QString dataKey = QStringLiteral("data");

std::optional<QJsonObject> parse(const QByteArray& bytes) {
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (!document.isObject())
        return std::nullopt;
    return document.object();
}

/// Renaming keeps the very file, whatever is wrong with it. Never over another one.
bool moveAside(const QString& path) {
    const QString base = path + QStringLiteral(".unreadable-") +
                         QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
    for (int attempt = 1; attempt <= asideAttempts; ++attempt) {
        const QString target = attempt == 1 ? base : base + u'-' + QString::number(attempt);
        if (QFile::exists(target))
            continue;
        if (!QFile::rename(path, target))
            return false;
        qCWarning(vistrelLog).noquote() << path << "could not be understood and is kept as" << target;
        return true;
    }
    return false;
}

/// False when a file is there, cannot be understood and cannot be moved away either.
bool pathIsSafeToReplace(const QString& path) {
    const Result<QByteArray> bytes = Files::read(path, largestFile);
    if (!bytes && bytes.error().code == ENOENT)
        return true;
    // An empty file holds nothing that could be lost.
    if (bytes && (bytes->isEmpty() || parse(*bytes)))
        return true;
    return moveAside(path);
}

} // namespace

QSettings::Format DefaultsFormat::registered() {
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("json"), read, write, Qt::CaseSensitive);
    return format;
}

bool DefaultsFormat::read(QIODevice& device, QSettings::SettingsMap& map) {
    std::optional<QJsonObject> object;
    if (device.size() <= largestFile)
        object = parse(device.readAll());
    if (!object) {
        if (const auto* file = qobject_cast<QFileDevice*>(&device))
            moveAside(file->fileName());
        return false;
    }
    for (auto entry = object->constBegin(); entry != object->constEnd(); ++entry)
        map.insert(entry.key(), QVariant::fromValue(QJsonValue(entry.value())));
    return true;
}

bool DefaultsFormat::write(QIODevice& device, const QSettings::SettingsMap& map) {
    if (const auto* file = qobject_cast<QFileDevice*>(&device);
        file && !pathIsSafeToReplace(file->fileName()))
        return false;
    QJsonObject object;
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry)
        object.insert(entry.key(), entry.value().toJsonValue());
    const QByteArray bytes = QJsonDocument(object).toJson(QJsonDocument::Indented);
    return device.write(bytes) == bytes.size();
}

QJsonValue DefaultsFormat::encodedData(const QByteArray& bytes) {
    return QJsonObject{{dataKey, QString::fromLatin1(bytes.toBase64())}};
}

std::optional<QByteArray> DefaultsFormat::decodedData(const QJsonValue& value) {
    const QJsonValue text = value.toObject().value(dataKey);
    if (!text.isString())
        return std::nullopt;
    const auto decoded =
        QByteArray::fromBase64Encoding(text.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return std::nullopt;
    return *decoded;
}
