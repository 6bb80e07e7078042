#include "Vistrel/Diagnostics/JournalFixture.h"

#include "VistrelPlatform/System/UuidText.h"

#include <thread>

using namespace Qt::StringLiterals;

namespace {

class LocalDiagnosticsTests : public JournalFixture {};

TEST_F(LocalDiagnosticsTests, aLineIsOneObjectWithSortedKeys) {
    auto journal = makeJournal();
    Diagnostic::Details details;
    details.tool = 9;
    details.layers = 0;
    details.height = -1;
    details.durationMS = 12.75;
    details.offsetMS = 0.1;
    details.phase = Diagnostic::Phase::overlay_first_draw;
    details.source = Diagnostic::Source::menuBar;
    details.errorKind = Diagnostic::ErrorKind::screenCaptureKit;
    details.errorCode = -9878;
    journal->record(Action::capturePhase, details);
    journal->record(Action::textCommitted);
    const std::vector<LocalDiagnostics::Event> events = snapshot(*journal).events;
    const QByteArray launch = UuidText::upperCase(events.at(0).launch).toLatin1();
    EXPECT_EQ(content(current),
              R"({"action":"capturePhase","date":"2026-03-01T12:00:00Z","details":{"durationMS":12.75,)"
              R"("errorCode":-9878,"errorKind":"screenCaptureKit","height":-1,"layers":0,"offsetMS":0.1,)"
              R"("phase":"overlay_first_draw","source":"menuBar","tool":9},"launch":")" +
                  launch + "\",\"version\":\"1.4.2\"}\n" +
                  R"({"action":"textCommitted","date":"2026-03-01T12:00:00Z","details":{},"launch":")" +
                  launch + "\",\"version\":\"1.4.2\"}\n");
    EXPECT_EQ(events.at(0).details, details) << "what is written is what is read";
    EXPECT_EQ(mode(folder), 0700U);
    EXPECT_EQ(mode(current), 0600U);
}

TEST_F(LocalDiagnosticsTests, everyCaseHasANameOfItsOwn) {
    for (int index = 0; index <= static_cast<int>(Action::permissionRequested); ++index)
        EXPECT_EQ(Diagnostic::actionNamed(Diagnostic::name(static_cast<Action>(index))),
                  static_cast<Action>(index));
    for (int index = 0; index <= static_cast<int>(Diagnostic::Phase::overlay_event_loop_resumed); ++index) {
        const auto phase = static_cast<Diagnostic::Phase>(index);
        EXPECT_EQ(Diagnostic::phaseNamed(Diagnostic::name(phase)), phase);
    }
}

TEST_F(LocalDiagnosticsTests, switchedOffNothingIsWrittenOrRead) {
    auto journal = makeJournal();
    journal->start();
    journal->record(Action::undo);
    snapshot(*journal);
    journal->setEnabled(false);
    const QByteArray before = content(current);
    journal->record(Action::redo);
    EXPECT_TRUE(snapshot(*journal).events.empty());
    EXPECT_EQ(content(current), before);
    EXPECT_TRUE(QFile::exists(marker));
    journal->finish();
    EXPECT_FALSE(QFile::exists(marker)) << "the marker goes even when the journal is off";
    EXPECT_EQ(content(current), before);
}

TEST_F(LocalDiagnosticsTests, clearRemovesEverythingAndGuardsTheSessionAgain) {
    write(previous, line("2026-03-01T11:00:00Z"));
    auto journal = makeJournal();
    journal->start();
    snapshot(*journal);
    write(folder + u"/.events.jsonl.vistrel-cutoff"_s, line("2026-03-01T11:00:00Z"));
    journal->clear();
    EXPECT_TRUE(snapshot(*journal).events.empty());
    EXPECT_EQ(QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{u"active-session.json"_s});
    journal->setEnabled(false);
    journal->clear();
    snapshot(*journal);
    ASSERT_TRUE(QDir(folder).removeRecursively());
    journal->setEnabled(true);
    journal->record(Action::undo);
    EXPECT_EQ(actions(*journal), Actions{Action::undo}) << "the folder is made again";
}

TEST_F(LocalDiagnosticsTests, aSnapshotHoldsTheNewestTwoThousand) {
    QByteArray bytes;
    for (int index = 0; index < 2500; ++index)
        bytes += line("2026-03-01T11:00:00Z", "1.4.2", "{\"size\":" + QByteArray::number(index) + "}");
    write(previous, bytes);
    auto journal = makeJournal();
    journal->record(Action::redo);
    const std::vector<LocalDiagnostics::Event> events = snapshot(*journal).events;
    ASSERT_EQ(events.size(), 2000U);
    EXPECT_EQ(events.front().details.size, 501);
    EXPECT_EQ(events.back().action, Action::redo);
}

TEST_F(LocalDiagnosticsTests, threadsRecordWhileOthersRead) {
    auto journal = makeJournal();
    journal->start();
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&, thread] {
            Diagnostic::Details details;
            details.tool = thread;
            for (int index = 0; index < 50; ++index) {
                details.size = index;
                journal->record(Action::sizeChanged, details);
            }
        });
    for (int index = 0; index < 20; ++index) {
        snapshot(*journal);
        defaults.setNumber(u"other"_s, index);
        advance(1);
    }
    for (std::thread& thread : threads)
        thread.join();
    std::array<int, 4> next{};
    int sizes = 0;
    for (const LocalDiagnostics::Event& event : snapshot(*journal).events) {
        if (event.action != Action::sizeChanged)
            continue;
        ++sizes;
        EXPECT_EQ(event.details.size, next.at(static_cast<std::size_t>(event.details.tool.value()))++)
            << "one thread's events keep their order";
    }
    EXPECT_EQ(sizes, 200);
}

} // namespace
