#pragma once

#include <QString>
#include <QUuid>

#include <optional>

/// Identifiers as they are written everywhere: canonical text of 36 characters, no braces.
namespace UuidText {

QString upperCase(const QUuid& uuid);
QString lowerCase(const QUuid& uuid);
/// Either case; nothing for anything but the canonical text.
std::optional<QUuid> parse(const QString& text);

} // namespace UuidText
