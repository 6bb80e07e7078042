#include "Output/SaveDialog.h"

#include <QBoxLayout>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QInputDialog>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPixmapCache>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QToolButton>
#include <QTreeView>
#include <QUrl>

#include <algorithm>
#include <filesystem>

ToolkitSettingsAside::ToolkitSettingsAside() {
    putAside();
}

ToolkitSettingsAside::~ToolkitSettingsAside() {
    putBack();
}

void ToolkitSettingsAside::putAside() {
    if (!path.isNull())
        return;
    path =
        QFileInfo(
            QSettings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("QtProject")).fileName())
            .path();
    // Nothing can be below a file, not even for root.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
}

void ToolkitSettingsAside::putBack() {
    if (path.isNull())
        return;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, path);
    path = QString();
}

SaveDialog::SaveDialog(QWidget* window, ScreenshotSaveFormat format, const QString& folder,
                       const QString& name)
    : QFileDialog(window) {
    setObjectName(QStringLiteral("savePanel"));
    setAccessibleName(QStringLiteral("Save screenshot"));
    setWindowTitle(QStringLiteral("Save Screenshot"));
    // Read-only: the dialog's own ways to rename and delete ask in windows that would stay below the
    // overlay. New folders and replacing are ours for the same reason.
    setOptions(DontUseNativeDialog | ReadOnly | DontConfirmOverwrite | DontUseCustomDirectoryIcons);
    setIconProvider(&fileTypes);
    setAcceptMode(AcceptSave);
    setFileMode(AnyFile);
    offerOnly(format);
    offerUsualFolders();
    replaceNewFolderButton();
    avoidNestedLoops();
    showNamesAndDates();
    setDirectory(folder);
    selectFile(name);
    putBack();
}

SaveDialog::~SaveDialog() {
    // The base class notes folder, history and layout when it goes.
    putAside();
    // Each dialog has icons of its own, so the cache would only keep those of dialogs that are gone.
    QPixmapCache::clear();
}

void SaveDialog::offerOnly(ScreenshotSaveFormat format) {
    const bool png = format == ScreenshotSaveFormat::png;
    suffixes =
        png ? QStringList{QStringLiteral("png")} : QStringList{QStringLiteral("jpg"), QStringLiteral("jpeg")};
    setNameFilter(png ? QStringLiteral("PNG image (*.png)") : QStringLiteral("JPEG image (*.jpg *.jpeg)"));
}

void SaveDialog::offerUsualFolders() {
    QList<QUrl> places;
    for (const auto location :
         {QStandardPaths::HomeLocation, QStandardPaths::DesktopLocation, QStandardPaths::PicturesLocation,
          QStandardPaths::DocumentsLocation, QStandardPaths::DownloadLocation}) {
        const QUrl place = QUrl::fromLocalFile(QStandardPaths::writableLocation(location));
        if (QFileInfo(place.toLocalFile()).isDir() && !places.contains(place))
            places.append(place);
    }
    places.append(QUrl::fromLocalFile(QDir::rootPath()));
    setSidebarUrls(places);
    constexpr int widest = 220;
    constexpr int iconSide = 16;
    constexpr int margin = 12;
    if (auto* sidebar = findChild<QListView*>(QStringLiteral("sidebar"))) {
        sidebar->setIconSize({iconSide, iconSide});
        sidebar->setMinimumWidth(
            std::min(widest, sidebar->sizeHintForColumn(0) + 2 * sidebar->frameWidth() + margin));
    }
}

void SaveDialog::replaceNewFolderButton() {
    auto* original = findChild<QToolButton*>(QStringLiteral("newFolderButton"));
    const auto layouts = findChildren<QBoxLayout*>();
    const auto row = std::ranges::find_if(
        layouts, [original](QBoxLayout* layout) { return original && layout->indexOf(original) >= 0; });
    if (row == layouts.end())
        return;
    auto* button = new QToolButton(original->parentWidget());
    button->setObjectName(QStringLiteral("createFolder"));
    button->setAccessibleName(QStringLiteral("Create New Folder"));
    button->setToolTip(QStringLiteral("Create New Folder"));
    button->setIcon(original->icon());
    button->setAutoRaise(original->autoRaise());
    button->setFocusPolicy(original->focusPolicy());
    (*row)->insertWidget((*row)->indexOf(original), button);
    setTabOrder(original, button);
    original->hide();
    connect(button, &QToolButton::clicked, this, [this] { askForNewFolder(); });
}

void SaveDialog::avoidNestedLoops() {
    // The lists' own menus and drags run an event loop each, and the dialog may be taken away meanwhile.
    for (QAbstractItemView* view : findChildren<QAbstractItemView*>()) {
        view->setContextMenuPolicy(Qt::NoContextMenu);
        view->setDragDropMode(QAbstractItemView::NoDragDrop);
    }
}

void SaveDialog::showNamesAndDates() {
    constexpr int nameColumn = 0;
    constexpr int typeColumn = 2;
    constexpr int dateColumn = 3;
    auto* files = findChild<QTreeView*>(QStringLiteral("treeView"));
    if (!files)
        return;
    // There is only the one type.
    files->hideColumn(typeColumn);
    files->header()->setStretchLastSection(false);
    files->header()->setSectionResizeMode(nameColumn, QHeaderView::Stretch);
    files->header()->setSectionResizeMode(dateColumn, QHeaderView::ResizeToContents);
}

QString SaveDialog::withSuffix(const QString& name) const {
    const QString suffix = QFileInfo(name).suffix();
    if (suffixes.contains(suffix, Qt::CaseInsensitive))
        return name;
    static const QStringList pictures{QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("jpeg")};
    const bool isPicture = pictures.contains(suffix, Qt::CaseInsensitive);
    return (isPicture ? name.chopped(suffix.size()) : name + QLatin1Char('.')) + suffixes.first();
}

QLineEdit& SaveDialog::nameField() const {
    return *findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
}

QString SaveDialog::typedPath() const {
    QString name = nameField().text();
    if (name == QLatin1Char('~') || name.startsWith(QLatin1StringView("~/")))
        name.replace(0, 1, QDir::homePath());
    return name.isEmpty() ? QString() : QDir::cleanPath(directory().absoluteFilePath(name));
}

void SaveDialog::accept() {
    const QString typed = typedPath();
    if (typed.isEmpty())
        return;
    if (QFileInfo(typed).isDir()) {
        setDirectory(typed);
        nameField().clear();
        return;
    }
    const QString file = withSuffix(typed);
    if (QFileInfo::exists(file))
        confirmReplacing(file);
    else
        choose(file);
}

void SaveDialog::choose(const QString& file) {
    path = file;
    // The file dialog's own would look at its widgets again and ask what was asked already.
    QDialog::accept(); // NOLINT(bugprone-parent-virtual-call)
}

void SaveDialog::present(QDialog& question) {
    question.setAttribute(Qt::WA_DeleteOnClose);
    if (prepareDialog)
        prepareDialog(question);
    question.open();
}

void SaveDialog::confirmReplacing(const QString& file) {
    auto* question = new QMessageBox(
        QMessageBox::Warning, QStringLiteral("Replace File"),
        QStringLiteral("“%1” already exists. Do you want to replace it?").arg(QFileInfo(file).fileName()),
        QMessageBox::Cancel, this);
    question->setObjectName(QStringLiteral("replaceFile"));
    question->setInformativeText(QStringLiteral("Replacing it overwrites its current contents."));
    question->setTextFormat(Qt::PlainText);
    QPushButton* replace = question->addButton(QStringLiteral("&Replace"), QMessageBox::AcceptRole);
    replace->setObjectName(QStringLiteral("replace"));
    question->setDefaultButton(QMessageBox::Cancel);
    connect(replace, &QPushButton::clicked, this, [this, file] { choose(file); });
    present(*question);
}

void SaveDialog::askForNewFolder() {
    auto* question = new QInputDialog(this);
    question->setObjectName(QStringLiteral("newFolder"));
    question->setWindowTitle(QStringLiteral("New Folder"));
    question->setLabelText(QStringLiteral("Name of the new folder:"));
    question->setOkButtonText(QStringLiteral("&Create"));
    connect(question, &QInputDialog::textValueSelected, this,
            [this](const QString& name) { makeFolder(name); });
    present(*question);
}

void SaveDialog::makeFolder(const QString& name) {
    if (name.isEmpty())
        return;
    const QString folder = directory().filePath(name);
    std::error_code error;
    const bool nested = name.contains(QLatin1Char('/'));
    if (nested)
        error = std::make_error_code(std::errc::invalid_argument);
    else if (!std::filesystem::create_directory(QFile::encodeName(folder).toStdString(), error) && !error)
        error = std::make_error_code(std::errc::file_exists);
    if (!error) {
        setDirectory(folder);
        return;
    }
    auto* message = new QMessageBox(QMessageBox::Warning, QStringLiteral("New Folder"),
                                    QStringLiteral("The folder “%1” could not be created.").arg(name),
                                    QMessageBox::Ok, this);
    message->setObjectName(QStringLiteral("newFolderFailed"));
    message->setTextFormat(Qt::PlainText);
    message->setInformativeText(QString::fromLocal8Bit(error.message().c_str()));
    present(*message);
}
