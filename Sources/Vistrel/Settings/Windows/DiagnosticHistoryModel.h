#pragma once

#include "Diagnostics/LocalDiagnostics.h"
#include "VistrelPlatform/UserDefaults.h"

#include <QObject>

/// The state of the "Diagnostics" section: the journal's switch, and what came of clearing it. Main thread.
class DiagnosticHistoryModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool enabled READ enabled WRITE setEnabled NOTIFY enabledChanged)
    Q_PROPERTY(QString status READ status NOTIFY statusChanged)
public:
    /// Both are borrowed; `journalDefaults` is the journal's own store.
    DiagnosticHistoryModel(LocalDiagnostics& localJournal, UserDefaults& journalDefaults,
                           QObject* parent = nullptr);

    bool enabled() const { return isEnabled; }
    const QString& status() const { return statusText; }
    /// Turning the history off clears it.
    void setEnabled(bool on);
    /// The status follows when the journal is done.
    void clear();

Q_SIGNALS:
    void enabledChanged();
    void statusChanged();

private:
    void setStatus(const QString& text);

    LocalDiagnostics& journal;
    UserDefaults& defaults;
    bool isEnabled;
    QString statusText;
};
