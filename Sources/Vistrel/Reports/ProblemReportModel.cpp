#include "Reports/ProblemReportModel.h"

#include "Reports/ReportUploadError.h"
#include "VistrelPlatform/System/UuidText.h"
#include "VistrelPlatform/System/WhenFinished.h"

#include <QGuiApplication>
#include <QRegularExpression>

#include <utility>

namespace {

const QString installationIDKey = QStringLiteral("diagnosticReportInstallationID");
constexpr int longestComment = 5000;
constexpr qsizetype longestModel = 126;

} // namespace

ProblemReportModel::ProblemReportModel(Services reportServices, QObject* parent)
    : QObject(parent), services(std::move(reportServices)) {
    if (!services.displayCount)
        services.displayCount = [] { return static_cast<int>(QGuiApplication::screens().size()); };
    if (!services.machine)
        services.machine = MachineFacts::current;
    statusLine = idleStatus();
}

void ProblemReportModel::setMessage(const QString& text) {
    const bool changed = comment != text;
    comment = text;
    Q_EMIT messageChanged();
    // A confirmation stays on screen; anything else was about another comment.
    if (!changed || confirmed)
        return;
    pending.reset();
    setStatus(idleStatus());
}

void ProblemReportModel::send() {
    if (isWorking || confirmed || !canSend())
        return;
    setWorking(true);
    setStatus(QStringLiteral("Sending…"));
    setConfirmed(std::nullopt);
    const QString text = limitedComment(comment);
    if (pending) {
        upload(text);
        return;
    }
    whenFinished(services.journal.snapshot(), this,
                 [this, text](const LocalDiagnostics::Snapshot& snapshot) { build(text, snapshot); });
}

void ProblemReportModel::build(const QString& text, LocalDiagnostics::Snapshot snapshot) {
    const ProblemReport report = makeReport(text, std::move(snapshot));
    const Result<QByteArray> bytes = report.encoded();
    if (!bytes) {
        conclude(text, report.reportID, tl::unexpected(bytes.error()));
        return;
    }
    pending = Pending{report.reportID, *bytes};
    upload(text);
}

void ProblemReportModel::upload(const QString& text) {
    whenFinished(services.sender.send(pending->data, pending->id), this,
                 [this, text, id = pending->id](const Result<void>& result) { conclude(text, id, result); });
}

void ProblemReportModel::conclude(const QString& text, const QUuid& id, const Result<void>& result) {
    if (result) {
        setConfirmed(id);
        setStatus(QStringLiteral("Report sent. ID: ") + UuidText::lowerCase(id));
        pending.reset();
    } else {
        if (limitedComment(comment) != text)
            pending.reset();
        setStatus(reportFailureText(result.error()));
    }
    setWorking(false);
}

ProblemReport ProblemReportModel::makeReport(const QString& text, LocalDiagnostics::Snapshot snapshot) const {
    ProblemReport report;
    report.reportID = QUuid::createUuid();
    report.installationID = installationID(services.defaults);
    report.createdAt = QDateTime::currentDateTimeUtc();
    report.comment = text;
    report.environment = environment(snapshot.writeFailed);
    report.counts = ProblemReport::countsOf(snapshot.events);
    report.events = std::move(snapshot.events);
    return report;
}

ProblemReport::Environment ProblemReportModel::environment(bool journalWriteFailed) const {
    const MachineFacts machine = services.machine();
    return {.version = services.journal.version(),
            .macOS = machine.systemVersion,
            .architecture = machine.architecture,
            .hardwareModel = hardwareModel(machine.productName),
            .translated = machine.translated,
            .screenAccess = services.hasScreenAccess && services.hasScreenAccess(),
            .displayCount = services.displayCount(),
            .panelPercent = static_cast<int>(services.preferences.scalePercent()),
            .reduceRetina = services.preferences.downscaleRetinaScreenshots(),
            .saveFormat = rawValue(services.preferences.saveFormat()),
            .journalEnabled = services.journal.enabled(),
            .journalWriteFailed = journalWriteFailed};
}

QString ProblemReportModel::limitedComment(const QString& text) {
    qsizetype end = 0;
    for (int scalars = 0; scalars < longestComment && end < text.size(); ++scalars) {
        const bool pair =
            text.at(end).isHighSurrogate() && end + 1 < text.size() && text.at(end + 1).isLowSurrogate();
        end += pair ? 2 : 1;
    }
    return text.left(end);
}

QUuid ProblemReportModel::installationID(UserDefaults& defaults) {
    const QString stored = defaults.string(installationIDKey).value_or(QString());
    if (const std::optional<QUuid> known = UuidText::parse(stored))
        return *known;
    const QUuid made = QUuid::createUuid();
    defaults.setString(installationIDKey, UuidText::upperCase(made));
    return made;
}

std::optional<QString> ProblemReportModel::hardwareModel(const std::optional<QString>& productName) {
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9,]+\\z"));
    if (!productName || productName->size() > longestModel || !plain.match(*productName).hasMatch())
        return std::nullopt;
    return productName;
}

void ProblemReportModel::setWorking(bool working) {
    isWorking = working;
    Q_EMIT workingChanged();
}

QString ProblemReportModel::idleStatus() const {
    return canSend() ? QString() : QStringLiteral("This build of Vistrel has nowhere to send reports.");
}

void ProblemReportModel::setStatus(const QString& text) {
    statusLine = text;
    Q_EMIT statusChanged();
}

void ProblemReportModel::setConfirmed(std::optional<QUuid> reportID) {
    confirmed = reportID;
    Q_EMIT sentReportIDChanged();
}
