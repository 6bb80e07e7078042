#include "Diagnostics/SessionMarker.h"

#include "VistrelPlatform/System/UuidText.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {
constexpr qint64 referenceMS = 978'307'200'000; // 2001-01-01 in milliseconds since 1970
const QString launchKey = QStringLiteral("launch");
const QString dateKey = QStringLiteral("date");
} // namespace

double SessionMarker::secondsOf(const QDateTime& date) {
    return static_cast<double>(date.toMSecsSinceEpoch() - referenceMS) / 1000.0;
}

std::optional<SessionMarker> SessionMarker::decode(const QByteArray& bytes) {
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    const std::optional<QUuid> launch = UuidText::parse(object.value(launchKey).toString());
    const QJsonValue date = object.value(dateKey);
    if (!launch || !date.isDouble() || !std::isfinite(date.toDouble()))
        return std::nullopt;
    return SessionMarker{*launch, date.toDouble()};
}

QByteArray SessionMarker::encoded() const {
    const QJsonObject object{{launchKey, UuidText::upperCase(launch)}, {dateKey, date}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}
