#include "Diagnostics/JournalLine.h"

#include "VistrelPlatform/System/UuidText.h"

#include <QJsonDocument>
#include <QTimeZone>

#include <array>
#include <cmath>
#include <limits>

using Diagnostic::Details;
using Event = LocalDiagnostics::Event;

namespace {

struct IntegerField {
    QLatin1StringView key;
    std::optional<int> Details::*member;
};
const std::array integerFields = {
    IntegerField{QLatin1StringView("tool"), &Details::tool},
    IntegerField{QLatin1StringView("size"), &Details::size},
    IntegerField{QLatin1StringView("layers"), &Details::layers},
    IntegerField{QLatin1StringView("width"), &Details::width},
    IntegerField{QLatin1StringView("height"), &Details::height},
    IntegerField{QLatin1StringView("displays"), &Details::displays},
    IntegerField{QLatin1StringView("displayIndex"), &Details::displayIndex},
    IntegerField{QLatin1StringView("errorCode"), &Details::errorCode},
};

struct DurationField {
    QLatin1StringView key;
    std::optional<double> Details::*member;
};
const std::array durationFields = {
    DurationField{QLatin1StringView("durationMS"), &Details::durationMS},
    DurationField{QLatin1StringView("offsetMS"), &Details::offsetMS},
};

constexpr QLatin1StringView phaseKey("phase");
constexpr QLatin1StringView sourceKey("source");
constexpr QLatin1StringView errorKindKey("errorKind");
constexpr QLatin1StringView dateKey("date");
constexpr QLatin1StringView launchKey("launch");
constexpr QLatin1StringView versionKey("version");
constexpr QLatin1StringView actionKey("action");
constexpr QLatin1StringView detailsKey("details");

const QString dateFormat = QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'");

bool isAbsent(const QJsonValue& value) {
    return value.isUndefined() || value.isNull();
}

std::optional<QJsonObject> detailsObject(const Details& details) {
    QJsonObject object;
    for (const IntegerField& field : integerFields) {
        if (const std::optional<int> value = details.*field.member)
            object.insert(field.key, *value);
    }
    for (const DurationField& field : durationFields) {
        const std::optional<double> value = details.*field.member;
        if (value && !std::isfinite(*value))
            return std::nullopt;
        if (value)
            object.insert(field.key, *value);
    }
    if (details.phase)
        object.insert(phaseKey, Diagnostic::name(*details.phase));
    if (details.source)
        object.insert(sourceKey, Diagnostic::name(*details.source));
    if (details.errorKind)
        object.insert(errorKindKey, Diagnostic::name(*details.errorKind));
    return object;
}

bool readInteger(const QJsonValue& value, std::optional<int>& field) {
    if (isAbsent(value))
        return true;
    const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
    if (!(number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max()) ||
        number != std::trunc(number))
        return false;
    field = static_cast<int>(number);
    return true;
}

bool readDuration(const QJsonValue& value, std::optional<double>& field) {
    if (isAbsent(value))
        return true;
    if (!value.isDouble() || !std::isfinite(value.toDouble()))
        return false;
    field = value.toDouble();
    return true;
}

template<class Case>
bool readCase(const QJsonValue& value, std::optional<Case> (*named)(const QString&),
              std::optional<Case>& field) {
    if (isAbsent(value))
        return true;
    field = value.isString() ? named(value.toString()) : std::nullopt;
    return field.has_value();
}

std::optional<Details> detailsFrom(const QJsonValue& value) {
    if (!value.isObject())
        return std::nullopt;
    const QJsonObject object = value.toObject();
    Details details;
    for (const IntegerField& field : integerFields) {
        if (!readInteger(object.value(field.key), details.*field.member))
            return std::nullopt;
    }
    for (const DurationField& field : durationFields) {
        if (!readDuration(object.value(field.key), details.*field.member))
            return std::nullopt;
    }
    if (!readCase(object.value(phaseKey), Diagnostic::phaseNamed, details.phase) ||
        !readCase(object.value(sourceKey), Diagnostic::sourceNamed, details.source) ||
        !readCase(object.value(errorKindKey), Diagnostic::errorKindNamed, details.errorKind))
        return std::nullopt;
    return details;
}

std::optional<QDateTime> dateFrom(const QString& text) {
    // In parts: read as a whole it would pass through local time, which has gaps.
    const QDateTime date(QDate::fromString(text.left(10), Qt::ISODate),
                         QTime::fromString(text.mid(11, 8), Qt::ISODate), QTimeZone::utc());
    if (!date.isValid() || JournalLine::dateText(date) != text)
        return std::nullopt;
    return date;
}

} // namespace

QString JournalLine::dateText(const QDateTime& date) {
    return date.toUTC().toString(dateFormat);
}

bool JournalLine::isVersionNumber(const QString& text) {
    const QStringList numbers = text.split(u'.');
    const auto isNumber = [](const QString& number) {
        return !number.isEmpty() &&
               std::ranges::all_of(number, [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
    };
    return numbers.size() >= 2 && numbers.size() <= 4 && std::ranges::all_of(numbers, isNumber);
}

std::optional<QJsonObject> JournalLine::object(const Event& event) {
    const std::optional<QJsonObject> details = detailsObject(event.details);
    if (!details)
        return std::nullopt;
    return QJsonObject{{dateKey, dateText(event.date)},
                       {launchKey, UuidText::upperCase(event.launch)},
                       {versionKey, event.version},
                       {actionKey, Diagnostic::name(event.action)},
                       {detailsKey, *details}};
}

std::optional<QByteArray> JournalLine::encode(const Event& event) {
    const std::optional<QJsonObject> line = object(event);
    if (!line)
        return std::nullopt;
    return QJsonDocument(*line).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<Event> JournalLine::decode(const QByteArray& line) {
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    const std::optional<QDateTime> date = dateFrom(object.value(dateKey).toString());
    const std::optional<QUuid> launch = UuidText::parse(object.value(launchKey).toString());
    const std::optional<Diagnostic::Action> action =
        Diagnostic::actionNamed(object.value(actionKey).toString());
    const std::optional<Details> details = detailsFrom(object.value(detailsKey));
    if (!date || !launch || !action || !details || !object.value(versionKey).isString())
        return std::nullopt;
    return Event{*date, *launch, object.value(versionKey).toString(), *action, *details};
}
