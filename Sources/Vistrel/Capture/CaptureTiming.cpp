#include "Capture/CaptureTiming.h"

#include "VistrelPlatform/System/AtomicFile.h"
#include "VistrelPlatform/System/Files.h"
#include "VistrelPlatform/System/Log.h"
#include "VistrelPlatform/System/Paths.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <utility>

namespace {

const QString sourceKey = QStringLiteral("source");
const QString phasesKey = QStringLiteral("phases");
const QString totalKey = QStringLiteral("totalMS");
const QString errorKey = QStringLiteral("error");
const QString boundaryKey = QStringLiteral("boundary");
const QString nameKey = QStringLiteral("name");
const QString displayKey = QStringLiteral("displayID");
const QString offsetKey = QStringLiteral("offsetMS");
const QString durationKey = QStringLiteral("durationMS");
const QString widthKey = QStringLiteral("width");
const QString heightKey = QStringLiteral("height");

QJsonObject toJson(const CaptureTiming::Phase& phase) {
    QJsonObject object{{nameKey, phase.name}, {offsetKey, phase.offsetMS}, {durationKey, phase.durationMS}};
    if (phase.displayID)
        object.insert(displayKey, static_cast<qint64>(*phase.displayID));
    if (phase.width)
        object.insert(widthKey, *phase.width);
    if (phase.height)
        object.insert(heightKey, *phase.height);
    return object;
}

QJsonObject toJson(const CaptureTiming::Report& report) {
    QJsonArray phases;
    for (const CaptureTiming::Phase& phase : report.phases)
        phases.append(toJson(phase));
    QJsonObject object{{sourceKey, report.source},
                       {phasesKey, phases},
                       {totalKey, report.totalMS},
                       {boundaryKey, report.boundary}};
    if (report.error)
        object.insert(errorKey, *report.error);
    return object;
}

/// False when something is there that is no whole number of the field's type; absent and null are fine.
template<class Integer>
bool readOptional(const QJsonValue& value, std::optional<Integer>& field) {
    if (value.isUndefined() || value.isNull())
        return true;
    const double number = value.toDouble(std::nan(""));
    if (!(number >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
          number <= static_cast<double>(std::numeric_limits<Integer>::max())) ||
        number != std::trunc(number))
        return false;
    field = static_cast<Integer>(number);
    return true;
}

std::optional<CaptureTiming::Phase> phaseFrom(const QJsonObject& object) {
    const QJsonValue name = object.value(nameKey);
    const QJsonValue offset = object.value(offsetKey);
    const QJsonValue duration = object.value(durationKey);
    CaptureTiming::Phase phase{.name = name.toString(),
                               .displayID = std::nullopt,
                               .offsetMS = offset.toDouble(),
                               .durationMS = duration.toDouble(),
                               .width = std::nullopt,
                               .height = std::nullopt};
    if (!name.isString() || !offset.isDouble() || !duration.isDouble() ||
        !readOptional(object.value(displayKey), phase.displayID) ||
        !readOptional(object.value(widthKey), phase.width) ||
        !readOptional(object.value(heightKey), phase.height))
        return std::nullopt;
    return phase;
}

} // namespace

CaptureTiming::CaptureTiming(Instant start, QString source)
    : startInstant(start), sourceName(std::move(source)) {}

void CaptureTiming::recordPhase(const QString& name, const PhaseOptions& options) {
    const Instant now = CaptureTime::now();
    const Phase phase{.name = name,
                      .displayID = options.displayID,
                      .offsetMS = CaptureTime::milliseconds(now - startInstant),
                      .durationMS = options.since ? CaptureTime::milliseconds(now - *options.since) : 0,
                      .width = options.width,
                      .height = options.height};
    recorded.push_back(phase);
    if (onPhase)
        onPhase(phase);
}

std::optional<CaptureTiming::Report> CaptureTiming::finish(const std::optional<QString>& error) {
    if (std::exchange(finished, true))
        return std::nullopt;
    return Report{.source = sourceName,
                  .phases = recorded,
                  .totalMS = CaptureTime::milliseconds(CaptureTime::now() - startInstant),
                  .error = error,
                  .boundary = QStringLiteral("Image availability, AppKit drawing, event-loop resumption and "
                                             "confirmed application/key-window/canvas focus; not pixel "
                                             "exposure or physical display scanout.")};
}

QByteArray CaptureTiming::encode(const Report& report) {
    return QJsonDocument(toJson(report)).toJson(QJsonDocument::Indented);
}

QByteArray CaptureTiming::encode(const std::vector<Report>& reports) {
    QJsonArray array;
    for (const Report& report : reports)
        array.append(toJson(report));
    return QJsonDocument(array).toJson(QJsonDocument::Indented);
}

std::optional<CaptureTiming::Report> CaptureTiming::decode(const QByteArray& bytes) {
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    const QJsonValue error = object.value(errorKey);
    if (!object.value(sourceKey).isString() || !object.value(phasesKey).isArray() ||
        !object.value(totalKey).isDouble() || !object.value(boundaryKey).isString() ||
        !(error.isString() || error.isUndefined() || error.isNull()))
        return std::nullopt;
    Report report{.source = object.value(sourceKey).toString(),
                  .phases = {},
                  .totalMS = object.value(totalKey).toDouble(),
                  .error = error.isString() ? std::optional(error.toString()) : std::nullopt,
                  .boundary = object.value(boundaryKey).toString()};
    const QJsonArray phases = object.value(phasesKey).toArray();
    for (const auto& value : phases) {
        const std::optional<Phase> phase = phaseFrom(value.toObject());
        if (!phase)
            return std::nullopt;
        report.phases.push_back(*phase);
    }
    return report;
}

QString CaptureTiming::reportPath() {
    return Paths::data() + QStringLiteral("/last-capture-timing.json");
}

void CaptureTiming::save(const Report& report) {
    const QString path = reportPath();
    const Result<void> saved = Files::createFolder(QFileInfo(path).path()).and_then([&] {
        return writeAtomically(path, encode(report));
    });
    if (!saved)
        qCWarning(vistrelLog).noquote() << "Vistrel timing report:" << saved.error().description;
}
