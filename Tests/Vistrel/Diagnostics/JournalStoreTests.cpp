#include "Support/ScopedEnvironment.h"
#include "Vistrel/Diagnostics/JournalFixture.h"

#include <csignal>
#include <sys/resource.h>
#include <time.h>

using namespace Qt::StringLiterals;

namespace {

class JournalStoreTests : public JournalFixture {};

TEST_F(JournalStoreTests, aFullFileBecomesThePreviousOne) {
    // Both lines below are this long; the file may be filled to the last byte.
    const qint64 length = line("2026-03-01T12:00:00Z").size();
    auto journal = makeJournal(2 * length);
    for (int index = 0; index < 2; ++index)
        journal->record(Action::undo);
    snapshot(*journal);
    EXPECT_EQ(lines(current).size(), 2);
    EXPECT_FALSE(QFile::exists(previous));
    for (int index = 0; index < 3; ++index)
        journal->record(Action::redo);
    EXPECT_EQ(actions(*journal), (Actions{Action::redo, Action::redo, Action::redo}))
        << "the first two went with the file they stood in";
    EXPECT_EQ(lines(previous).size(), 2);
    EXPECT_EQ(lines(current).size(), 1);
    EXPECT_EQ(mode(current), 0600U);
    EXPECT_FALSE(snapshot(*journal).writeFailed);
}

TEST_F(JournalStoreTests, onlyLinesOfOursWithinAWeekAreReadAndKept) {
    const QByteArray good = "2026-03-01T11:00:00Z";
    const std::tuple<const char*, QByteArray, bool> rows[] = {
        {"good", line(good), true},
        {"exactlyAWeekOld", line("2026-02-22T12:00:01Z"), true},
        {"aWeekAndASecondOld", line("2026-02-22T11:59:59Z"), false},
        {"twoMinutesAhead", line("2026-03-01T12:02:00Z"), false},
        {"fiveNumbers", line(good, "1.2.3.4.5"), false},
        {"longestVersion", line(good, "1." + QByteArray(28, '0')), true},
        {"details", line(good, "1.0", R"({"durationMS":1.5,"source":"hotkey","tool":3.0})"), true},
        {"fractionForInteger", line(good, "1.0", R"({"tool":3.5})"), false},
        {"textForInteger", line(good, "1.0", R"({"tool":"3"})"), false},
        {"detailsMissing", line(good).replace("\"details\":{},", ""), false},
        {"unknownAction", line(good, "1.0", "{}", "screenshot"), false},
        {"dateThatNeverWas", line("2026-02-30T11:00:00Z"), false},
        {"launchNoIdentifier", line(good).replace("0E984725", "0E98472"), false},
        {"launchInBraces", line(good).replace("\"0E98", "\"{0E98").replace("ABA0\"", "ABA0}\""), false},
        {"cutOff", line(good).left(60) + '\n', false},
        {"notUTF8", line(good, "\xff\xfe"), false},
        {"nested", QByteArray(5000, '[') + '\n', false},
    };
    for (const auto& [name, bytes, kept] : rows) {
        SCOPED_TRACE(name);
        write(current, "\n" + bytes + "\n");
        auto journal = makeJournal();
        const LocalDiagnostics::Snapshot result = snapshot(*journal);
        EXPECT_EQ(result.events.size(), kept ? 1U : 0U);
        EXPECT_EQ(lines(current).size(), kept ? 1 : 0) << "the file is rewritten with what survives";
        EXPECT_EQ(mode(current), 0600U);
    }
}

TEST_F(JournalStoreTests, anHourThatTheLocalClockSkipsIsReadAsItStands) {
    const ScopedEnvironment zone("TZ", "Europe/Berlin");
    ::tzset();
    nowMS = 1774747800000; // 2026-03-29 01:30:00 UTC
    write(current, line("2026-03-29T02:30:00Z") + line("2026-03-29T01:30:00Z"));
    advance(3600);
    EXPECT_EQ(actions(*makeJournal()).size(), 2U);
}

TEST_F(JournalStoreTests, pruningHappensAtFirstAndThenOnceADay) {
    auto journal = makeJournal();
    journal->record(Action::undo);
    snapshot(*journal);
    const auto appendOld = [this] { write(current, content(current) + line("2026-01-01T00:00:00Z")); };
    appendOld();
    advance(day - 1);
    journal->record(Action::redo);
    snapshot(*journal);
    EXPECT_EQ(lines(current).size(), 3) << "not yet";
    advance(1);
    journal->record(Action::redo);
    snapshot(*journal);
    EXPECT_EQ(lines(current).size(), 3) << "the old line went, the new one came";
    advance(8 * day);
    EXPECT_TRUE(snapshot(*journal).events.empty());
    EXPECT_EQ(content(current), QByteArray());
}

TEST_F(JournalStoreTests, aMarkerTellsOfAnUnfinishedLaunchForAWeek) {
    // The clock stands at 794059200.25 seconds after the beginning of 2001.
    const auto marked = [](const QByteArray& date) {
        return R"({"launch":"0E984725-C51C-4BF4-9960-E1C80E27ABA0","date":)" + date + "}";
    };
    const std::pair<QByteArray, bool> rows[] = {
        {marked("793454400.25"), true},
        {marked("793454400.2"), false},
        {marked("9e15"), true},
        {marked("794059200").leftJustified(1023, ' '), true},
        {marked("794059200").leftJustified(1024, ' '), false},
        {marked("\"2026-03-01T11:00:00Z\""), false},
        {R"({"launch":"x","date":794059200})", false},
        {"[]", false},
    };
    for (const auto& [bytes, unfinished] : rows) {
        SCOPED_TRACE(bytes.trimmed().toStdString());
        QDir(folder).removeRecursively();
        write(marker, bytes);
        auto journal = makeJournal();
        journal->start();
        EXPECT_EQ(actions(*journal), unfinished ? (Actions{Action::previousLaunchUnfinished, Action::launch})
                                                : Actions{Action::launch});
        EXPECT_EQ(mode(marker), 0600U);
        EXPECT_TRUE(content(marker).contains("\"date\":794059200.25")) << content(marker).constData();
        journal->start();
        EXPECT_EQ(actions(*journal).back(), Action::launch) << "its own marker is no other launch";
        journal->finish();
        EXPECT_FALSE(QFile::exists(marker));
    }
}

TEST_F(JournalStoreTests, onAFullDiskNoHalfLineStaysAndTheJournalGoesOnLater) {
    auto journal = makeJournal();
    journal->record(Action::undo);
    snapshot(*journal);
    const qsizetype length = content(current).size();
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{static_cast<rlim_t>(length + length / 2), before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    journal->record(Action::redo);
    const bool failed = snapshot(*journal).writeFailed;
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_TRUE(failed);
    EXPECT_EQ(content(current).size(), length);
    journal->record(Action::redo);
    const LocalDiagnostics::Snapshot later = snapshot(*journal);
    EXPECT_EQ(actions(later.events), (Actions{Action::undo, Action::redo}));
    EXPECT_TRUE(later.writeFailed) << "a later success does not take the failure back";
    journal->clear();
    EXPECT_FALSE(snapshot(*journal).writeFailed);
}

TEST_F(JournalStoreTests, aPipeInTheJournalsPlaceHoldsNothingUp) {
    auto journal = makeJournal();
    journal->record(Action::undo);
    snapshot(*journal);
    ASSERT_TRUE(QFile::remove(current));
    ASSERT_EQ(::mkfifo(QFile::encodeName(current).constData(), 0600), 0);
    journal->record(Action::redo);
    const LocalDiagnostics::Snapshot result = snapshot(*journal);
    EXPECT_TRUE(result.events.empty());
    EXPECT_TRUE(result.writeFailed);
}

} // namespace
