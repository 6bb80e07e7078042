#pragma once

#include "Diagnostics/DiagnosticRecord.h"
#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/UserDefaults.h"

#include <QDateTime>
#include <QFuture>
#include <QUuid>

#include <functional>
#include <memory>
#include <vector>

/// The private journal of what the user did and what went wrong. All file work happens on its own
/// serial queue; `record` returns at once from any thread, only `finish` waits for the disk.
class LocalDiagnostics {
public:
    struct Event {
        QDateTime date; // UTC, whole seconds
        QUuid launch;
        QString version;
        Diagnostic::Action action = Diagnostic::Action::launch;
        Diagnostic::Details details;

        friend bool operator==(const Event&, const Event&) = default;
    };

    struct Snapshot {
        std::vector<Event> events; // oldest first, at most 2,000
        bool writeFailed = false;
    };

    struct Configuration {
        /// Where the three files live; empty means "Diagnostics" in the user's data folder.
        QString directory = {};
        /// The program's own version; anything but two to four numbers counts as "development".
        QString version;
        /// Bytes per file.
        qint64 limit = 524288;
        /// The clock, called on any thread; the system's when empty.
        std::function<QDateTime()> now = {};
    };

    /// `defaults` is borrowed and outlives this object.
    LocalDiagnostics(UserDefaults& defaults, Configuration configuration);
    LocalDiagnostics(const LocalDiagnostics&) = delete;
    LocalDiagnostics& operator=(const LocalDiagnostics&) = delete;
    ~LocalDiagnostics();

    /// The user's switch, read from the defaults at every use.
    bool enabled() const;
    /// Sets the switch and nothing else. Main thread.
    void setEnabled(bool enabled);
    /// What every event is signed with.
    const QString& version() const;

    /// Once, at launch: notes an unfinished previous launch, then this one.
    void start();
    void record(Diagnostic::Action action, const Diagnostic::Details& details = {});
    /// Notes the end and waits until everything is on the disk.
    void finish();
    void clear();
    QFuture<Snapshot> snapshot();

    /// An error as journal details: its code, and its family where the domain tells, else `kind`.
    static Diagnostic::Details error(const Error& error, Diagnostic::ErrorKind kind);

private:
    class Journal;
    std::unique_ptr<Journal> journal;
};
