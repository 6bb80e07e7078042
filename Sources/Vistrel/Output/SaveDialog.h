#pragma once

#include "Output/FileTypesByName.h"
#include "Settings/ScreenshotSaveFormat.h"

#include <QFileDialog>

#include <functional>

class QLineEdit;

/// Keeps the toolkit from reading or writing its own settings file while it exists and is active, so
/// that where other programs saved is not shown here and nothing of ours is noted there.
class ToolkitSettingsAside {
public:
    ToolkitSettingsAside();
    ToolkitSettingsAside(const ToolkitSettingsAside&) = delete;
    ToolkitSettingsAside& operator=(const ToolkitSettingsAside&) = delete;
    ~ToolkitSettingsAside();

protected:
    void putAside();
    void putBack();

private:
    QString path;
};

/// A base, because the file dialog's threads use it until the dialog has gone.
struct SaveDialogFileTypes {
    FileTypesByName fileTypes;
};

/// The file dialog behind `SavePanel`. Every window it opens goes through `prepareDialog`; it never runs
/// an event loop of its own, and it changes nothing on the disk but for the folders the user adds.
class SaveDialog : private ToolkitSettingsAside, private SaveDialogFileTypes, public QFileDialog {
public:
    SaveDialog(QWidget* window, ScreenshotSaveFormat format, const QString& folder, const QString& name);
    ~SaveDialog() override;

    /// The path to write, once accepted.
    QString chosenPath() const { return path; }
    std::function<void(QWidget&)> prepareDialog;

    void accept() override;

private:
    void offerOnly(ScreenshotSaveFormat format);
    void offerUsualFolders();
    void replaceNewFolderButton();
    void avoidNestedLoops();
    void showNamesAndDates();
    QLineEdit& nameField() const;
    /// Absolute; empty when nothing is typed.
    QString typedPath() const;
    /// Ends in the format's suffix, which takes the place of another picture format's.
    QString withSuffix(const QString& name) const;
    void choose(const QString& file);
    void confirmReplacing(const QString& file);
    void askForNewFolder();
    void makeFolder(const QString& name);
    void present(QDialog& question);

    QStringList suffixes;
    QString path;
};
