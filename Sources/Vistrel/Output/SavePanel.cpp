#include "Output/SavePanel.h"

#include "Output/SaveDialog.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QWidget>

QString suggestedFileName(ScreenshotSaveFormat format, const QDateTime& moment) {
    QString time = moment.toUTC().toString(Qt::ISODate);
    time.replace(QLatin1Char(':'), QLatin1Char('-'));
    return QStringLiteral("Vistrel-") + time + QLatin1Char('.') + rawValue(format);
}

SavePanel::SavePanel() = default;

SavePanel::~SavePanel() {
    cancel();
}

QString SavePanel::startFolder() const {
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    for (const QString& folder : {confirmedFolder, pictures})
        if (!folder.isEmpty() && QFileInfo(folder).isDir())
            return folder;
    return QDir::homePath();
}

void SavePanel::open(QWidget& window, ScreenshotSaveFormat format, const QDateTime& moment,
                     Completion completion) {
    cancel();
    dialog = new SaveDialog(&window, format, startFolder(), suggestedFileName(format, moment));
    dialog->prepareDialog = prepareDialog;
    QObject::connect(
        dialog, &QDialog::finished, dialog,
        [this, completion = std::move(completion)](int outcome) { finish(outcome, completion); });
    if (prepareDialog)
        prepareDialog(*dialog);
    dialog->open();
}

bool SavePanel::isOpen() const {
    return !dialog.isNull();
}

void SavePanel::finish(int outcome, const Completion& completion) {
    if (!dialog)
        return;
    std::optional<QString> path;
    if (outcome == QDialog::Accepted) {
        path = dialog->chosenPath();
        confirmedFolder = QFileInfo(*path).path();
    }
    // Kept beyond the dialog and this panel: the completion may well destroy either.
    const Completion call = completion;
    dialog->deleteLater();
    dialog.clear();
    call(path);
}

void SavePanel::cancel() {
    if (!dialog)
        return;
    dialog->disconnect();
    dialog->hide();
    dialog->deleteLater();
    dialog.clear();
}
