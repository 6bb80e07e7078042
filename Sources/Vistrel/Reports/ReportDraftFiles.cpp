#include "Reports/ReportDraftFiles.h"

#include "VistrelPlatform/System/Paths.h"
#include "VistrelPlatform/System/UuidText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cmath>
#include <optional>

namespace {

constexpr double lifetimeSeconds = 604800;

/// The time in a draft's name, seconds since 1970, which a "-" and an identifier follow.
std::optional<double> draftTime(const QString& name) {
    static const QRegularExpression decimal(
        QStringLiteral("^[+-]?([0-9]+\\.?[0-9]*|\\.[0-9]+)([eE][+-]?[0-9]+)?\\z"));
    const qsizetype dash = name.indexOf(u'-');
    if (dash < 0 || !UuidText::parse(name.mid(dash + 1)) || !decimal.match(name.left(dash)).hasMatch())
        return std::nullopt;
    const double seconds = name.left(dash).toDouble();
    if (!std::isfinite(seconds))
        return std::nullopt;
    return seconds;
}

void removeEntry(const QFileInfo& entry) {
    if (entry.isDir() && !entry.isSymLink())
        QDir(entry.absoluteFilePath()).removeRecursively();
    else
        QFile::remove(entry.absoluteFilePath());
}

} // namespace

void ReportDraftFiles::prune() {
    prune(Paths::cache() + QStringLiteral("/ReportDrafts"), QDateTime::currentDateTimeUtc());
}

void ReportDraftFiles::prune(const QString& folder, const QDateTime& now) {
    const double cutoff = static_cast<double>(now.toMSecsSinceEpoch()) / 1000 - lifetimeSeconds;
    const QFileInfoList entries =
        QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries) {
        if (const std::optional<double> time = draftTime(entry.fileName()); time && *time < cutoff)
            removeEntry(entry);
    }
}
