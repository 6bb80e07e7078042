#pragma once

#include <QIODevice>
#include <QJsonValue>
#include <QSettings>

#include <optional>

/// The file of the user's choices: one JSON object, binary values as `{"data": base64}`. What the
/// program does not know survives a rewrite. The functions are what QSettings calls, under its lock.
namespace DefaultsFormat {

/// The format's number, registered at first use.
QSettings::Format registered();

/// Fails when the content is no JSON object; its file is then moved aside.
bool read(QIODevice& device, QSettings::SettingsMap& map);
/// Fails rather than replace a file that could be neither read nor moved aside.
bool write(QIODevice& device, const QSettings::SettingsMap& map);

QJsonValue encodedData(const QByteArray& bytes);
std::optional<QByteArray> decodedData(const QJsonValue& value);

} // namespace DefaultsFormat
