#pragma once

#include "Settings/ScreenshotSaveFormat.h"

#include <QDateTime>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QWidget;
class SaveDialog;

/// "Vistrel-2026-11-16T10-15-00Z.png": the moment in UTC to the second, fit for every file system.
QString suggestedFileName(ScreenshotSaveFormat format, const QDateTime& moment);

/// Asks where a picture goes. Main thread. At most one panel at a time; it writes nothing to the disk,
/// its last confirmed folder is kept in memory only.
class SavePanel {
public:
    /// Called once with the confirmed path, or with nothing when the user cancelled.
    using Completion = std::function<void(std::optional<QString>)>;

    SavePanel();
    SavePanel(const SavePanel&) = delete;
    SavePanel& operator=(const SavePanel&) = delete;
    /// As `cancel`.
    ~SavePanel();

    /// Shows the panel for `window` and returns at once; an open panel is cancelled first.
    void open(QWidget& window, ScreenshotSaveFormat format, const QDateTime& moment, Completion completion);
    bool isOpen() const;
    /// Takes the panel away without calling back.
    void cancel();

    /// Called before any window of the panel is shown, its questions included.
    std::function<void(QWidget&)> prepareDialog;

private:
    QString startFolder() const;
    void finish(int outcome, const Completion& completion);

    QPointer<SaveDialog> dialog;
    QString confirmedFolder;
};
