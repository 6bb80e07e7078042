#include "ProcessFacts.h"

#include <QDir>
#include <QFile>

#include <sys/syscall.h>

namespace {

QString folderOf(pid_t process) {
    return QStringLiteral("/proc/%1").arg(process);
}

QByteArrayList linesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().split('\n') : QByteArrayList{};
}

/// The sum of the numbers behind `name`, which stands at the start of a line.
std::int64_t sum(const QByteArrayList& lines, const QByteArray& name) {
    std::int64_t total = 0;
    for (const QByteArray& line : lines)
        if (line.startsWith(name))
            total += line.sliced(name.size()).simplified().split(' ').first().toLongLong();
    return total;
}

} // namespace

ProcessFacts ProcessFacts::of(pid_t process) {
    const QString folder = folderOf(process);
    const QByteArrayList memory = linesOf(folder + QStringLiteral("/smaps_rollup"));
    ProcessFacts facts;
    facts.proportionalKiB = sum(memory, "Pss:");
    facts.privateKiB = sum(memory, "Private_Clean:") + sum(memory, "Private_Dirty:");
    facts.openFiles = QDir(folder + QStringLiteral("/fd"))
                          .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
                          .size();
    for (const QByteArray& line : linesOf(folder + QStringLiteral("/maps")))
        facts.mappedSegments += line.contains("/memfd:") || line.contains("/SYSV") ? 1 : 0;
    const QDir threads(folder + QStringLiteral("/task"));
    for (const QString& thread : threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        facts.sleeps +=
            sum(linesOf(threads.filePath(thread) + QStringLiteral("/status")), "voluntary_ctxt_switches:");
    return facts;
}

bool waitsForEvents(pid_t process) {
    QFile file(folderOf(process) + QStringLiteral("/syscall"));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArrayList words = file.readAll().split(' ');
    const int call = words.first().toInt();
    if (words.size() < 9 || (call != SYS_poll && call != SYS_ppoll))
        return false;
    const qulonglong descriptors = words[1].toULongLong(nullptr, 16);
    const qulonglong stack = words[7].toULongLong(nullptr, 16);
    constexpr qulonglong largestStack = 8 << 20;
    return descriptors < stack || descriptors > stack + largestStack;
}
