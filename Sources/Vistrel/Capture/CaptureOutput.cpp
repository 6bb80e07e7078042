#include "Capture/CaptureOutput.h"

#include "Capture/CaptureError.h"
#include "Diagnostics/LocalDiagnostics.h"
#include "Output/ImageEncoder.h"
#include "Output/ImageFile.h"
#include "Overlay/CaptureOverlayWindow.h"

#include <QGuiApplication>
#include <QMessageBox>

using Diagnostic::Action;

CaptureOutput::CaptureOutput(OverlayPresenter& overlayPresenter, const EditorPreferences& editorPreferences,
                             ImageClipboard& imageClipboard)
    : presenter(overlayPresenter), preferences(editorPreferences), clipboard(imageClipboard) {
    savePanel.prepareDialog = [this](QWidget& dialog) { presenter.prepareDialog(dialog); };
}

void CaptureOutput::record(Action action, const Diagnostic::Details& details) {
    if (onDiagnosticEvent)
        onDiagnosticEvent(action, details);
}

void CaptureOutput::copy(const QImage& image) {
    record(Action::copyRequested);
    const Result<QByteArray> png = ImageEncoder::encode(ScreenshotSaveFormat::png, image);
    if (!png || !clipboard.copyPNG(*png))
        return record(Action::copyFailed);
    record(Action::copySucceeded);
    onDone();
}

void CaptureOutput::save(const QImage& image, CaptureOverlayWindow& window) {
    giveUpSave();
    record(Action::saveRequested);
    const ScreenshotSaveFormat format = preferences.saveFormat();
    presenter.beginDialog(window);
    savePanel.open(window, format, QDateTime::currentDateTimeUtc(),
                   [this, image, format, &window](const std::optional<QString>& path) {
                       if (path)
                           return write(image, format, *path, window);
                       record(Action::saveCancelled);
                       presenter.endDialog(window);
                   });
}

void CaptureOutput::write(const QImage& image, ScreenshotSaveFormat format, const QString& path,
                          CaptureOverlayWindow& window) {
    Result<void> outcome = saveImage(path, format, image);
    if (!outcome && outcome.error().domain == ImageEncoder::errorDomain)
        outcome = tl::unexpected(captureError(CaptureError::encode));
    if (outcome) {
        record(Action::saveSucceeded);
        presenter.endDialog(window);
        return onDone();
    }
    record(Action::saveFailed, LocalDiagnostics::error(outcome.error(), Diagnostic::ErrorKind::encoding));
    showSaveFailure(outcome.error().description, window);
}

void CaptureOutput::showSaveFailure(const QString& description, CaptureOverlayWindow& window) {
    alert = new QMessageBox(QMessageBox::Warning, QGuiApplication::applicationDisplayName(),
                            QStringLiteral("Couldn’t save the screenshot"), QMessageBox::Ok, &window);
    alert->setObjectName(QStringLiteral("saveFailure"));
    alert->setInformativeText(description);
    alert->setAttribute(Qt::WA_DeleteOnClose);
    presenter.prepareDialog(*alert);
    QObject::connect(alert, &QDialog::finished, alert, [this, &window] { presenter.endDialog(window); });
    alert->open();
}

void CaptureOutput::giveUpSave() {
    if (savePanel.isOpen())
        record(Action::saveCancelled);
    cancel();
}

void CaptureOutput::cancel() {
    savePanel.cancel();
    if (!alert)
        return;
    alert->disconnect();
    alert->hide();
    alert->deleteLater();
    alert.clear();
}
