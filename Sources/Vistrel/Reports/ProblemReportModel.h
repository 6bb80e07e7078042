#pragma once

#include "Diagnostics/LocalDiagnostics.h"
#include "Reports/ProblemReport.h"
#include "Reports/ReportSending.h"
#include "Settings/EditorPreferences.h"
#include "VistrelPlatform/System/MachineFacts.h"
#include "VistrelPlatform/UserDefaults.h"

#include <QObject>

#include <functional>
#include <optional>

/// The state behind the "Report a problem" form: one report, one attempt at a time, the same bytes again
/// at a retry. Main thread. Every assignment emits the property's signal.
class ProblemReportModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString message READ message WRITE setMessage NOTIFY messageChanged)
    Q_PROPERTY(bool working READ working NOTIFY workingChanged)
    Q_PROPERTY(QString status READ status NOTIFY statusChanged)
public:
    /// Everything borrowed outlives the model.
    struct Services {
        LocalDiagnostics& journal;
        EditorPreferences& preferences;
        UserDefaults& defaults;
        ReportSending& sender;
        /// Whether the screen may be read, without asking the user.
        std::function<bool()> hasScreenAccess;
        /// The toolkit's screens when empty.
        std::function<int()> displayCount;
        /// This machine's when empty.
        std::function<MachineFacts()> machine;
    };

    explicit ProblemReportModel(Services reportServices, QObject* parent = nullptr);

    /// The comment as it is typed; sent cut to its first 5,000 Unicode scalar values.
    const QString& message() const { return comment; }
    void setMessage(const QString& text);
    bool working() const { return isWorking; }
    const QString& status() const { return statusLine; }
    /// The report that the service confirmed.
    std::optional<QUuid> sentReportID() const { return confirmed; }

    /// False in a build that has nowhere to send reports; the status says so.
    bool canSend() const { return services.sender.hasAddress(); }
    /// Does nothing then, nor while an attempt is under way or after a confirmed one.
    void send();

    static QString limitedComment(const QString& text);
    /// The random identifier of this installation, made and stored when there is none.
    static QUuid installationID(UserDefaults& defaults);
    /// Kept only when it is letters, digits and commas.
    static std::optional<QString> hardwareModel(const std::optional<QString>& productName);

Q_SIGNALS:
    void messageChanged();
    void workingChanged();
    void statusChanged();
    void sentReportIDChanged();

private:
    struct Pending {
        QUuid id;
        QByteArray data;
    };

    ProblemReport makeReport(const QString& text, LocalDiagnostics::Snapshot snapshot) const;
    ProblemReport::Environment environment(bool journalWriteFailed) const;
    void build(const QString& text, LocalDiagnostics::Snapshot snapshot);
    void upload(const QString& text);
    void conclude(const QString& text, const QUuid& id, const Result<void>& result);
    void setWorking(bool working);
    /// Before anything was tried.
    QString idleStatus() const;
    void setStatus(const QString& text);
    void setConfirmed(std::optional<QUuid> reportID);

    Services services;
    QString comment;
    bool isWorking = false;
    QString statusLine;
    std::optional<QUuid> confirmed;
    std::optional<Pending> pending;
};
