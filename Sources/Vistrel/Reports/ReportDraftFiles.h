#pragma once

#include <QDateTime>
#include <QString>

/// The cache folder where earlier versions kept drafts of reports. Nothing is written there any more.
namespace ReportDraftFiles {

/// Removes drafts older than a week from "ReportDrafts" in the user's cache folder. Any thread.
void prune();
/// The same for a given folder and moment.
void prune(const QString& folder, const QDateTime& now);

} // namespace ReportDraftFiles
