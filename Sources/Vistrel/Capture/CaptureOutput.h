#pragma once

#include "Capture/OverlayPresenter.h"
#include "Diagnostics/DiagnosticRecord.h"
#include "Output/SavePanel.h"
#include "Settings/EditorPreferences.h"
#include "VistrelPlatform/ImageClipboard.h"
#include "VistrelPlatform/Result.h"

#include <QPointer>

#include <functional>

class CaptureOverlayWindow;
class QMessageBox;

/// What becomes of an exported picture: the clipboard, a file, another program. A failure leaves the
/// overlay open with everything in it. Main thread.
class CaptureOutput {
public:
    /// All are borrowed.
    CaptureOutput(OverlayPresenter& presenter, const EditorPreferences& preferences,
                  ImageClipboard& clipboard);

    void copy(const QImage& image);
    /// Asks where in a panel in front of `window`, then writes there. A save that another display asked for
    /// before and that still waits for an answer is given up.
    void save(const QImage& image, CaptureOverlayWindow& window);
    /// As if the user had cancelled it.
    void giveUpSave();
    /// Takes away whatever waits for an answer, without a word.
    void cancel();

    std::function<void(Diagnostic::Action, const Diagnostic::Details&)> onDiagnosticEvent;
    /// The picture was delivered: the capture can close.
    std::function<void()> onDone;

private:
    void record(Diagnostic::Action action, const Diagnostic::Details& details = {});
    void write(const QImage& image, ScreenshotSaveFormat format, const QString& path,
               CaptureOverlayWindow& window);
    void showSaveFailure(const QString& description, CaptureOverlayWindow& window);

    OverlayPresenter& presenter;
    const EditorPreferences& preferences;
    ImageClipboard& clipboard;
    SavePanel savePanel;
    QPointer<QMessageBox> alert;
};
