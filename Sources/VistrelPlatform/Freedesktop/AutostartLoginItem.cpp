#include "VistrelPlatform/Freedesktop/AutostartLoginItem.h"

#include "VistrelPlatform/Freedesktop/DesktopName.h"
#include "VistrelPlatform/System/ApplicationBundle.h"
#include "VistrelPlatform/System/AtomicFile.h"
#include "VistrelPlatform/System/Files.h"
#include "VistrelPlatform/System/Paths.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <glib.h>

#include <cerrno>
#include <memory>
#include <unistd.h>

namespace {

constexpr qint64 largestEntry = 65536;
constexpr const char* group = G_KEY_FILE_DESKTOP_GROUP;

AutostartLoginItem::Program runningProgram() {
    // A program image is mounted somewhere else at every start; what lasts is the image itself.
    const QString image = qEnvironmentVariable("APPIMAGE");
    const QString executable =
        QFileInfo(image).isExecutable() ? image : QCoreApplication::applicationFilePath();
    return {ApplicationBundle().isInstalled(), executable, currentDesktopNames()};
}

/// An entry as the desktop reads it.
class Entry {
public:
    static std::optional<Entry> read(const QString& path) {
        const Result<QByteArray> bytes = Files::read(path, largestEntry);
        if (!bytes)
            return std::nullopt;
        Entry entry;
        if (!g_key_file_load_from_data(entry.file.get(), bytes->constData(),
                                       static_cast<gsize>(bytes->size()), G_KEY_FILE_NONE, nullptr) ||
            !g_key_file_has_group(entry.file.get(), group))
            return std::nullopt;
        return entry;
    }

    std::optional<bool> boolean(const char* key) const {
        GError* error = nullptr;
        const bool value = g_key_file_get_boolean(file.get(), group, key, &error);
        if (!error)
            return value;
        g_error_free(error);
        return std::nullopt;
    }
    QStringList list(const char* key) const {
        gsize count = 0;
        gchar** values = g_key_file_get_string_list(file.get(), group, key, &count, nullptr);
        QStringList result;
        for (gsize i = 0; i < count; ++i)
            result.append(QString::fromUtf8(values[i]));
        g_strfreev(values);
        return result;
    }
    /// The program of the Exec line; empty when it has none.
    QString program() const {
        gchar* line = g_key_file_get_string(file.get(), group, G_KEY_FILE_DESKTOP_KEY_EXEC, nullptr);
        gchar** arguments = nullptr;
        QString result;
        if (line && g_shell_parse_argv(line, nullptr, &arguments, nullptr)) {
            result = QFile::decodeName(arguments[0]).replace(QStringLiteral("%%"), QStringLiteral("%"));
            g_strfreev(arguments);
        }
        g_free(line);
        return result;
    }

private:
    std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)> file{g_key_file_new(), &g_key_file_unref};
};

/// Every desktop has its own way to switch an entry off.
bool isSwitchedOff(const Entry& entry, const QStringList& desktopNames) {
    if (entry.boolean(G_KEY_FILE_DESKTOP_KEY_HIDDEN).value_or(false))
        return true;
    for (const char* key :
         {"X-GNOME-Autostart-enabled", "X-MATE-Autostart-enabled", "X-Cinnamon-Autostart-enabled"}) {
        if (!entry.boolean(key).value_or(true))
            return true;
    }
    const auto namesUs = [&desktopNames](const QStringList& names) {
        return std::ranges::any_of(names, [&](const QString& name) { return desktopNames.contains(name); });
    };
    const QStringList only = entry.list(G_KEY_FILE_DESKTOP_KEY_ONLY_SHOW_IN);
    return (!only.isEmpty() && !namesUs(only)) || namesUs(entry.list(G_KEY_FILE_DESKTOP_KEY_NOT_SHOW_IN));
}

bool canBeStarted(const QString& program) {
    return program.startsWith(u'/') ? QFileInfo(program).isExecutable()
                                    : !QStandardPaths::findExecutable(program).isEmpty();
}

} // namespace

QString desktopEntryArgument(const QString& path) {
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    QString argument = path;
    argument.replace(u'%', QStringLiteral("%%"));
    if (std::ranges::none_of(path, [](QChar character) { return reserved.contains(character); }))
        return argument;
    QString quoted;
    for (const QChar character : std::as_const(argument)) {
        if (QStringLiteral("\"`$\\").contains(character))
            quoted += u'\\';
        quoted += character;
    }
    // Once more for the file, in which every value escapes its own backslashes and line ends.
    quoted.replace(u'\\', QStringLiteral("\\\\"));
    quoted.replace(u'\n', QStringLiteral("\\n"));
    return u'"' + quoted + u'"';
}

AutostartLoginItem::AutostartLoginItem() : AutostartLoginItem(runningProgram()) {}

AutostartLoginItem::AutostartLoginItem(Program started) : program(std::move(started)) {}

QString AutostartLoginItem::entryPath() {
    return Paths::configHome() + QStringLiteral("/autostart/com.orvane.Vistrel.desktop");
}

LoginItemStatus AutostartLoginItem::status() const {
    if (!program.installed || !canBeStarted(program.executable))
        return LoginItemStatus::notFound;
    const QFileInfo file(entryPath());
    if (!file.exists() && !file.isSymLink()) {
        const QFileInfo configuration(Paths::configHome());
        return configuration.exists() && !configuration.isDir() ? LoginItemStatus::notFound
                                                                : LoginItemStatus::notRegistered;
    }
    const auto entry = Entry::read(file.filePath());
    if (!entry || !canBeStarted(entry->program()))
        return LoginItemStatus::notFound;
    return isSwitchedOff(*entry, program.desktopNames) ? LoginItemStatus::requiresApproval
                                                       : LoginItemStatus::enabled;
}

Result<void> AutostartLoginItem::enroll() {
    if (!program.installed)
        return tl::unexpected(
            Error{ErrorDomain::system, ENOENT,
                  QStringLiteral("Vistrel is not installed, so there is nothing to launch.")});
    if (!canBeStarted(program.executable))
        return tl::unexpected(Files::systemError(ENOENT));
    if (Result<void> made = Files::createFolder(QFileInfo(entryPath()).path(), 0700); !made)
        return made;
    const QString entry = QStringLiteral("[Desktop Entry]\n"
                                         "Type=Application\n"
                                         "Name=Vistrel\n"
                                         "Comment=Take and annotate screenshots\n"
                                         "Exec=%1\n"
                                         "Icon=com.orvane.Vistrel\n"
                                         "Terminal=false\n"
                                         "StartupNotify=false\n"
                                         "X-GNOME-Autostart-enabled=true\n")
                              .arg(desktopEntryArgument(program.executable));
    return writeAtomically(entryPath(), entry.toUtf8(), 0644);
}

Result<void> AutostartLoginItem::withdraw() {
    if (::unlink(QFile::encodeName(entryPath()).constData()) != 0 && errno != ENOENT)
        return tl::unexpected(Files::systemError(errno));
    return {};
}
