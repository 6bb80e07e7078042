#include "Reports/ReportDraftFiles.h"
#include "Support/ScopedEnvironment.h"
#include "Support/TestFiles.h"

#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString identifier = u"0E984725-C51C-4BF4-9960-E1C80E27ABA0"_s;
constexpr qint64 present = 1772366400;
constexpr qint64 week = 604800;

TEST(ReportDraftFilesTests, onlyDraftsOlderThanAWeekGo) {
    const std::pair<QString, bool> rows[] = {
        {QString::number(present - week - 86400) + u'-' + identifier.toLower(), false},
        {u"1000.5-"_s + identifier, false},
        {u"1e3-"_s + identifier, false},
        {QString::number(present - week) + u'-' + identifier, true},
        {u"1000-"_s + identifier + u".json"_s, true},
        {u"1000-notes"_s, true},
        {u"-1000-"_s + identifier, true},
        {u"nan-"_s + identifier, true},
        {u" 1000-"_s + identifier, true},
    };
    QTemporaryDir folder;
    QStringList kept;
    for (const auto& [name, stays] : rows) {
        writeFile(folder.filePath(name), "x");
        if (stays)
            kept.append(name);
    }
    const QDateTime now = QDateTime::fromSecsSinceEpoch(present, QTimeZone::utc());
    ReportDraftFiles::prune(folder.path(), now);
    kept.sort();
    EXPECT_EQ(entriesOf(folder.path()), kept);
}

TEST(ReportDraftFilesTests, aDraftFolderGoesWholeAndALinkGoesAlone) {
    QTemporaryDir cache;
    const ScopedEnvironment environment("XDG_CACHE_HOME", QFile::encodeName(cache.path()));
    ReportDraftFiles::prune(); // nothing there yet
    const QDir drafts(cache.filePath(u"Vistrel/ReportDrafts"_s));
    const QString elsewhere = cache.filePath(u"precious"_s);
    writeFile(elsewhere + u"/file"_s, "x");
    ASSERT_TRUE(drafts.mkpath(u"1000-"_s + identifier + u"/inner"_s));
    ASSERT_TRUE(QFile::link(elsewhere, drafts.filePath(u"2000-"_s + identifier)));
    ReportDraftFiles::prune();
    EXPECT_EQ(entriesOf(drafts.path()), QStringList());
    EXPECT_TRUE(QFile::exists(elsewhere + u"/file"_s));
}

} // namespace
