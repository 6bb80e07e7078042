#include "VistrelPlatform/System/UuidText.h"

QString UuidText::upperCase(const QUuid& uuid) {
    return uuid.toString(QUuid::WithoutBraces).toUpper();
}

QString UuidText::lowerCase(const QUuid& uuid) {
    return uuid.toString(QUuid::WithoutBraces);
}

std::optional<QUuid> UuidText::parse(const QString& text) {
    const QUuid uuid = QUuid::fromString(text);
    // The parser also takes braces and stops early; what it writes tells whether it took all of it.
    if (lowerCase(uuid).compare(text, Qt::CaseInsensitive) != 0)
        return std::nullopt;
    return uuid;
}
