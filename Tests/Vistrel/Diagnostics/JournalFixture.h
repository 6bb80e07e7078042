#pragma once

#include "Diagnostics/LocalDiagnostics.h"
#include "VistrelPlatform/System/AtomicFile.h"
#include "VistrelPlatform/System/FileUserDefaults.h"
#include "VistrelPlatform/System/Files.h"

#include <QTemporaryDir>
#include <QTimeZone>

#include <atomic>
#include <gtest/gtest.h>
#include <sys/stat.h>

/// A journal in a temporary folder with a clock that the test sets.
class JournalFixture : public ::testing::Test {
protected:
    using Action = Diagnostic::Action;
    using Actions = std::vector<Action>;

    static constexpr qint64 day = 86400;

    QTemporaryDir home;
    const QString folder = home.filePath(QStringLiteral("data/Vistrel/Diagnostics"));
    const QString current = folder + QStringLiteral("/events.jsonl");
    const QString previous = folder + QStringLiteral("/events-previous.jsonl");
    const QString marker = folder + QStringLiteral("/active-session.json");
    FileUserDefaults defaults{home.filePath(QStringLiteral("defaults.json"))};
    /// 2026-03-01 12:00:00.250 UTC
    std::atomic<qint64> nowMS = 1772366400250;

    QDateTime now() const { return QDateTime::fromMSecsSinceEpoch(nowMS, QTimeZone::utc()); }
    void advance(qint64 seconds) { nowMS += seconds * 1000; }

    std::unique_ptr<LocalDiagnostics> makeJournal(qint64 limit = 524288,
                                                  const QString& version = QStringLiteral("1.4.2")) {
        return std::make_unique<LocalDiagnostics>(
            defaults, LocalDiagnostics::Configuration{folder, version, limit, [this] { return now(); }});
    }

    static LocalDiagnostics::Snapshot snapshot(LocalDiagnostics& journal) {
        return journal.snapshot().result();
    }
    static Actions actions(const std::vector<LocalDiagnostics::Event>& events) {
        Actions list;
        for (const LocalDiagnostics::Event& event : events)
            list.push_back(event.action);
        return list;
    }
    static Actions actions(LocalDiagnostics& journal) { return actions(snapshot(journal).events); }

    static QByteArray content(const QString& path) {
        return Files::read(path, 1 << 24).value_or(QByteArray());
    }
    static QList<QByteArray> lines(const QString& path) {
        QList<QByteArray> list = content(path).split('\n');
        list.removeAll(QByteArray());
        return list;
    }
    void write(const QString& path, const QByteArray& bytes) const {
        ASSERT_TRUE(Files::createFolder(folder));
        ASSERT_TRUE(writeAtomically(path, bytes, 0644));
    }
    static unsigned mode(const QString& path) {
        struct stat facts {};
        return ::stat(QFile::encodeName(path).constData(), &facts) == 0 ? facts.st_mode & 0777 : 0;
    }

    /// A line of another launch, as the program writes it.
    static QByteArray line(const QByteArray& date, const QByteArray& version = "1.4.2",
                           const QByteArray& details = "{}", const QByteArray& action = "undo") {
        return R"({"action":")" + action + R"(","date":")" + date + R"(","details":)" + details +
               R"(,"launch":"0E984725-C51C-4BF4-9960-E1C80E27ABA0","version":")" + version + "\"}\n";
    }
};
