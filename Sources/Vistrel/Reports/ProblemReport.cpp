#include "Reports/ProblemReport.h"

#include "Diagnostics/JournalLine.h"
#include "VistrelPlatform/System/UuidText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>

namespace {

template<class Value>
void insertIfPresent(QJsonObject& object, const QString& key, const std::optional<Value>& value) {
    if (value)
        object.insert(key, *value);
}

QJsonObject toJson(const ProblemReport::Environment& environment) {
    QJsonObject object{
        {QStringLiteral("version"), environment.version},
        {QStringLiteral("macOS"), environment.macOS},
        {QStringLiteral("architecture"), environment.architecture},
        {QStringLiteral("translated"), environment.translated},
        {QStringLiteral("screenAccess"), environment.screenAccess},
        {QStringLiteral("displayCount"), environment.displayCount},
        {QStringLiteral("panelPercent"), environment.panelPercent},
        {QStringLiteral("reduceRetina"), environment.reduceRetina},
        {QStringLiteral("saveFormat"), environment.saveFormat},
        {QStringLiteral("journalEnabled"), environment.journalEnabled},
        {QStringLiteral("journalWriteFailed"), environment.journalWriteFailed},
    };
    insertIfPresent(object, QStringLiteral("hardwareModel"), environment.hardwareModel);
    return object;
}

QJsonObject toJson(const ProblemReport::CrashSummary& crash) {
    QJsonArray frames;
    for (const auto& frame : crash.frames)
        frames.append(QJsonObject{{QStringLiteral("imageIndex"), frame.imageIndex},
                                  {QStringLiteral("imageOffset"), frame.imageOffset}});
    QJsonArray images;
    for (const auto& image : crash.images)
        images.append(QJsonObject{{QStringLiteral("index"), image.index},
                                  {QStringLiteral("uuid"), UuidText::upperCase(image.uuid)}});
    QJsonObject object{{QStringLiteral("frames"), frames}, {QStringLiteral("images"), images}};
    insertIfPresent(object, QStringLiteral("exception"), crash.exception);
    insertIfPresent(object, QStringLiteral("signal"), crash.signal);
    insertIfPresent(object, QStringLiteral("terminationNamespace"), crash.terminationNamespace);
    insertIfPresent(object, QStringLiteral("terminationCode"), crash.terminationCode);
    insertIfPresent(object, QStringLiteral("faultingThread"), crash.faultingThread);
    return object;
}

} // namespace

std::map<QString, int> ProblemReport::countsOf(const std::vector<LocalDiagnostics::Event>& events) {
    std::map<QString, int> counts;
    for (const LocalDiagnostics::Event& event : events)
        ++counts[Diagnostic::name(event.action)];
    return counts;
}

Result<QByteArray> ProblemReport::encoded() const {
    QJsonArray eventList;
    for (const LocalDiagnostics::Event& event : events) {
        const std::optional<QJsonObject> object = JournalLine::object(event);
        if (!object)
            return tl::unexpected(Error{ErrorDomain::system, EDOM, qt_error_string(EDOM)});
        eventList.append(*object);
    }
    QJsonObject countObject;
    for (const auto& [name, count] : counts)
        countObject.insert(name, count);
    QJsonObject document{
        {QStringLiteral("schema"), schema},
        {QStringLiteral("reportID"), UuidText::upperCase(reportID)},
        {QStringLiteral("installationID"), UuidText::upperCase(installationID)},
        {QStringLiteral("createdAt"), JournalLine::dateText(createdAt)},
        {QStringLiteral("comment"), comment},
        {QStringLiteral("events"), eventList},
        {QStringLiteral("counts"), countObject},
    };
    if (environment)
        document.insert(QStringLiteral("environment"), toJson(*environment));
    if (crash)
        document.insert(QStringLiteral("crash"), toJson(*crash));
    return QJsonDocument(document).toJson(QJsonDocument::Compact);
}
