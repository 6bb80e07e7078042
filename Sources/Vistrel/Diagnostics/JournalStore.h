#pragma once

#include "Diagnostics/LocalDiagnostics.h"

#include <QDateTime>
#include <QString>
#include <QUuid>

#include <functional>
#include <optional>
#include <vector>

/// The journal's three files: appending, rotation, pruning, the marker of the running session. No
/// locks: all of it happens on the journal's queue. Failures only set `writeFailed`.
class JournalStore {
public:
    JournalStore(LocalDiagnostics::Configuration options, std::function<bool()> isEnabled);

    bool writeFailed() const { return failed; }

    /// Makes the folder and, once a day, drops what is old or unreadable.
    void prepare();
    void append(Diagnostic::Action action, const Diagnostic::Details& details, const QDateTime& date);
    /// Oldest first.
    std::vector<LocalDiagnostics::Event> read() const;
    void clear();

    /// Whether another launch left its marker within the last week.
    bool previousLaunchUnfinished() const;
    void writeMarker();
    void removeMarker();

private:
    std::vector<LocalDiagnostics::Event> readFile(const QString& path) const;
    bool survives(const LocalDiagnostics::Event& event, const QDateTime& present) const;
    bool makeFolder();
    bool prune(const QString& path);
    bool rotate();
    bool writeLine(const QByteArray& line);

    LocalDiagnostics::Configuration configuration;
    std::function<bool()> enabled;
    QUuid launch = QUuid::createUuid();
    QString current;
    QString previous;
    QString marker;
    bool prepared = false;
    std::optional<QDateTime> lastPruned;
    bool failed = false;
};
