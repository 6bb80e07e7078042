#include "Settings/Windows/DiagnosticHistoryModel.h"

#include "VistrelPlatform/System/WhenFinished.h"

DiagnosticHistoryModel::DiagnosticHistoryModel(LocalDiagnostics& localJournal, UserDefaults& journalDefaults,
                                               QObject* parent)
    : QObject(parent), journal(localJournal), defaults(journalDefaults), isEnabled(journal.enabled()) {}

void DiagnosticHistoryModel::setEnabled(bool on) {
    isEnabled = on;
    Q_EMIT enabledChanged();
    defaults.setBoolean(QStringLiteral("localDiagnosticJournalEnabled"), on);
    if (on)
        journal.start();
    else
        journal.clear();
    setStatus(QString());
}

void DiagnosticHistoryModel::clear() {
    journal.clear();
    // The journal works in order: this answer comes after the clearing.
    whenFinished(journal.snapshot(), this, [this](const LocalDiagnostics::Snapshot& snapshot) {
        setStatus(snapshot.writeFailed ? QStringLiteral("Couldn’t clear all local diagnostics.")
                                       : QStringLiteral("Local diagnostic history cleared."));
    });
}

void DiagnosticHistoryModel::setStatus(const QString& text) {
    statusText = text;
    Q_EMIT statusChanged();
}
