#include "Diagnostics/JournalStore.h"

#include "Diagnostics/JournalLine.h"
#include "Diagnostics/SessionMarker.h"
#include "VistrelPlatform/System/AtomicFile.h"
#include "VistrelPlatform/System/FileDescriptor.h"
#include "VistrelPlatform/System/Files.h"

#include <QFile>

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

using Event = LocalDiagnostics::Event;

namespace {

constexpr qint64 historySeconds = 604800;
constexpr qint64 pruningIntervalSeconds = 86400;
constexpr qint64 toleratedFutureSeconds = 60;
constexpr qsizetype longestVersion = 30;
constexpr mode_t folderMode = 0700;
constexpr mode_t fileMode = 0600;

bool exists(const QString& path) {
    struct stat facts {};
    return ::lstat(QFile::encodeName(path).constData(), &facts) == 0;
}

std::optional<qint64> sizeOf(const QString& path) {
    struct stat facts {};
    if (::stat(QFile::encodeName(path).constData(), &facts) != 0)
        return std::nullopt;
    return facts.st_size;
}

bool removeFile(const QString& path) {
    return ::unlink(QFile::encodeName(path).constData()) == 0;
}

FileDescriptor openFile(const QString& path, int flags) {
    // Without O_NONBLOCK a pipe in the file's place would hold up the queue for ever.
    return FileDescriptor(
        ::open(QFile::encodeName(path).constData(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, fileMode));
}

} // namespace

JournalStore::JournalStore(LocalDiagnostics::Configuration options, std::function<bool()> isEnabled)
    : configuration(std::move(options)),
      enabled(std::move(isEnabled)),
      current(configuration.directory + QStringLiteral("/events.jsonl")),
      previous(configuration.directory + QStringLiteral("/events-previous.jsonl")),
      marker(configuration.directory + QStringLiteral("/active-session.json")) {}

bool JournalStore::makeFolder() {
    const bool made = Files::createFolder(configuration.directory, folderMode).has_value();
    if (!made)
        failed = true;
    return made;
}

void JournalStore::prepare() {
    if (!enabled())
        return;
    if (!prepared && !makeFolder())
        return;
    prepared = true;
    const QDateTime present = configuration.now();
    if (lastPruned && lastPruned->secsTo(present) < pruningIntervalSeconds)
        return;
    // A pass that failed is tried again at the next opportunity.
    if (prune(previous) && prune(current))
        lastPruned = configuration.now();
}

bool JournalStore::prune(const QString& path) {
    removeInterruptedWrites(path);
    if (!exists(path))
        return true;
    if (const std::optional<qint64> size = sizeOf(path); size && *size > configuration.limit) {
        const bool removed = removeFile(path);
        failed = failed || !removed;
        return removed;
    }
    QByteArray lines;
    for (const Event& event : readFile(path))
        lines += JournalLine::encode(event).value_or(QByteArray());
    const bool written = writeAtomically(path, lines, fileMode).has_value();
    failed = failed || !written;
    return written;
}

void JournalStore::append(Diagnostic::Action action, const Diagnostic::Details& details,
                          const QDateTime& date) {
    const std::optional<QByteArray> line =
        JournalLine::encode({date, launch, configuration.version, action, details});
    if (!line) {
        failed = true;
        return;
    }
    if (line->size() > configuration.limit)
        return;
    if (sizeOf(current).value_or(0) + line->size() > configuration.limit && !rotate()) {
        failed = true;
        return;
    }
    if (!writeLine(*line))
        failed = true;
}

bool JournalStore::rotate() {
    removeFile(previous);
    return !exists(current) ||
           std::rename(QFile::encodeName(current).constData(), QFile::encodeName(previous).constData()) == 0;
}

bool JournalStore::writeLine(const QByteArray& line) {
    const FileDescriptor file = openFile(current, O_WRONLY | O_APPEND | O_CREAT);
    struct stat before {};
    if (!file.isOpen() || ::fstat(file.get(), &before) != 0)
        return false;
    qsizetype written = 0;
    while (written < line.size()) {
        const ssize_t count =
            ::write(file.get(), line.constData() + written, static_cast<size_t>(line.size() - written));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            // Half a line would spoil the next one too.
            if (written > 0 && ::ftruncate(file.get(), before.st_size) != 0)
                return false;
            return false;
        }
        written += count;
    }
    return ::fsync(file.get()) == 0;
}

std::vector<Event> JournalStore::read() const {
    std::vector<Event> events = readFile(previous);
    for (Event& event : readFile(current))
        events.push_back(std::move(event));
    return events;
}

std::vector<Event> JournalStore::readFile(const QString& path) const {
    const Result<QByteArray> bytes = Files::read(path, configuration.limit);
    if (!bytes)
        return {};
    const QDateTime present = configuration.now();
    std::vector<Event> events;
    for (const QByteArray& line : bytes->split('\n')) {
        if (line.isEmpty())
            continue;
        std::optional<Event> event = JournalLine::decode(line);
        if (event && survives(*event, present))
            events.push_back(std::move(*event));
    }
    return events;
}

bool JournalStore::survives(const Event& event, const QDateTime& present) const {
    const bool ours = event.version == QLatin1StringView("development") ||
                      (event.version.size() <= longestVersion && JournalLine::isVersionNumber(event.version));
    return ours && event.date >= present.addSecs(-historySeconds) &&
           event.date <= present.addSecs(toleratedFutureSeconds);
}

void JournalStore::clear() {
    failed = false;
    for (const QString& path : {current, previous, marker}) {
        removeInterruptedWrites(path);
        if (exists(path) && !removeFile(path))
            failed = true;
    }
    if (enabled())
        writeMarker();
    prepared = false;
}

bool JournalStore::previousLaunchUnfinished() const {
    const Result<QByteArray> bytes = Files::read(marker, SessionMarker::largestFile);
    const std::optional<SessionMarker> found = bytes ? SessionMarker::decode(*bytes) : std::nullopt;
    return found && found->launch != launch &&
           found->date >= SessionMarker::secondsOf(configuration.now()) - static_cast<double>(historySeconds);
}

void JournalStore::writeMarker() {
    if (!makeFolder())
        return;
    const SessionMarker session{launch, SessionMarker::secondsOf(configuration.now())};
    if (!writeAtomically(marker, session.encoded(), fileMode))
        failed = true;
}

void JournalStore::removeMarker() {
    removeFile(marker);
}
