#include "Reports/ProblemReportModel.h"
#include "Reports/ReportUploadError.h"
#include "VistrelPlatform/System/FileUserDefaults.h"
#include "VistrelPlatform/System/UuidText.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPromise>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <deque>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using Action = Diagnostic::Action;

/// Answers when the test says so.
class HeldSender : public ReportSending {
public:
    struct Upload {
        QByteArray data;
        QUuid id;
        QPromise<Result<void>> promise;
    };

    bool hasAddress() const override { return reachable; }
    QFuture<Result<void>> send(const QByteArray& report, const QUuid& reportID) override {
        Upload& upload = uploads.emplace_back();
        upload.data = report;
        upload.id = reportID;
        upload.promise.start();
        return upload.promise.future();
    }
    void answer(const Result<void>& result) {
        uploads.back().promise.addResult(result);
        uploads.back().promise.finish();
    }

    std::deque<Upload> uploads;
    bool reachable = true;
};

class ProblemReportModelTests : public ::testing::Test {
protected:
    QTemporaryDir home;
    FileUserDefaults defaults{home.filePath(u"defaults.json"_s)};
    const QString folder = home.filePath(u"Diagnostics"_s);
    LocalDiagnostics journal{defaults, {.directory = folder, .version = u"1.4.2"_s}};
    EditorPreferences preferences{defaults};
    HeldSender sender;
    MachineFacts machine{u"12.0.0"_s, u"x86_64"_s, u"20XW0055GE"_s, false};
    std::unique_ptr<ProblemReportModel> model{
        new ProblemReportModel({.journal = journal,
                                .preferences = preferences,
                                .defaults = defaults,
                                .sender = sender,
                                .hasScreenAccess = [] { return true; },
                                .displayCount = [] { return 2; },
                                .machine = [this] { return machine; }})};

    /// Presses the button and lets the journal answer until the sender was called `uploads` times.
    void press(std::size_t uploads) {
        model->send();
        process([&] { return sender.uploads.size() >= uploads; });
    }
    void answer(const Result<void>& result) {
        sender.answer(result);
        process([&] { return !model->working(); });
    }
    void fail(ReportUploadError error) { answer(tl::unexpected(reportUploadError(error))); }
    static void process(const std::function<bool()>& done) {
        while (!done())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    }
    QJsonObject document() const { return QJsonDocument::fromJson(sender.uploads.back().data).object(); }
};

TEST_F(ProblemReportModelTests, theDocumentIsCompactSortedAndComplete) {
    Diagnostic::Details details;
    details.tool = 9;
    journal.record(Action::undo, details);
    journal.record(Action::copyRequested);
    preferences.setScalePercent(99.9);
    preferences.setSaveFormat(ScreenshotSaveFormat::jpg);
    model->setMessage(u"It’s \"broken\"\n"_s);
    press(1);
    QString bytes = QString::fromUtf8(sender.uploads.back().data);
    // What differs every time is told by its form.
    bytes.replace(QRegularExpression(uR"("\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ")"_s), u"date"_s);
    bytes.replace(UuidText::upperCase(sender.uploads.back().id), u"this report"_s);
    bytes.replace(*defaults.string(u"diagnosticReportInstallationID"_s), u"this installation"_s);
    bytes.replace(QRegularExpression(uR"("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}")"_s), u"launch"_s);
    EXPECT_EQ(bytes.toStdString(),
              R"({"comment":"It’s \"broken\"\n","counts":{"copyRequested":1,"undo":1},"createdAt":date,)"
              R"("environment":{"architecture":"x86_64","displayCount":2,"hardwareModel":"20XW0055GE",)"
              R"("journalEnabled":true,"journalWriteFailed":false,"macOS":"12.0.0","panelPercent":99,)"
              R"("reduceRetina":true,"saveFormat":"jpg","screenAccess":true,"translated":false,)"
              R"("version":"1.4.2"},"events":[)"
              R"({"action":"undo","date":date,"details":{"tool":9},"launch":launch,"version":"1.4.2"},)"
              R"({"action":"copyRequested","date":date,"details":{},"launch":launch,"version":"1.4.2"}],)"
              R"("installationID":"this installation","reportID":"this report","schema":2})");
}

TEST_F(ProblemReportModelTests, aBuildWithoutAnAddressSaysSoAndTriesNothing) {
    sender.reachable = false;
    ProblemReportModel nowhere({journal, preferences, defaults, sender, {}, {}, {}});
    const QString said = nowhere.status();
    EXPECT_TRUE(said.contains(u"nowhere"_s)) << said.toStdString();
    nowhere.setMessage(u"typed"_s);
    nowhere.send();
    EXPECT_FALSE(nowhere.working());
    EXPECT_EQ(nowhere.status(), said);
}

TEST_F(ProblemReportModelTests, anEditAfterAFailureIsANewReport) {
    model->setMessage(u"first"_s);
    press(1);
    fail(ReportUploadError::offline);
    model->setMessage(u"first"_s);
    EXPECT_FALSE(model->status().isEmpty()) << "nothing was edited";
    model->setMessage(u"second"_s);
    EXPECT_EQ(model->status(), QString());
    press(2);
    EXPECT_NE(sender.uploads[1].id, sender.uploads[0].id);
    EXPECT_EQ(document().value(u"comment"_s).toString(), u"second"_s);
}

TEST_F(ProblemReportModelTests, anEditBeforeTheJournalAnsweredIsSentAtTheNextAttempt) {
    model->setMessage(u"before"_s);
    model->send();
    model->setMessage(u"meanwhile"_s);
    process([&] { return sender.uploads.size() == 1; });
    EXPECT_EQ(document().value(u"comment"_s).toString(), u"before"_s);
    fail(ReportUploadError::offline);
    press(2);
    EXPECT_EQ(document().value(u"comment"_s).toString(), u"meanwhile"_s);
}

TEST_F(ProblemReportModelTests, theCommentIsCutAtFiveThousandScalars) {
    const QString pair = u"𝄞"_s; // two code units
    model->setMessage(pair.repeated(4999) + QString(1000, u'x'));
    press(1);
    EXPECT_EQ(document().value(u"comment"_s).toString(), pair.repeated(4999) + u'x');
    EXPECT_EQ(ProblemReportModel::limitedComment(pair), pair);
    EXPECT_EQ(ProblemReportModel::limitedComment(QString(5000, u'y') + u'z'), QString(5000, u'y'));
    EXPECT_EQ(ProblemReportModel::limitedComment(QString(6000, QChar(0xD834))).size(), 5000);
}

TEST_F(ProblemReportModelTests, aTellingMachineNameIsLeftOut) {
    const std::pair<const char*, bool> rows[] = {
        {"Mac14,2", true}, {"20XW0055GE", true}, {"ThinkPad X1", false},
        {"A-1", false},    {"Größe", false},     {"", false},
    };
    for (const auto& [name, kept] : rows)
        EXPECT_EQ(ProblemReportModel::hardwareModel(QString::fromUtf8(name)).has_value(), kept) << name;
    EXPECT_FALSE(ProblemReportModel::hardwareModel(QString(127, u'x')));
}

TEST_F(ProblemReportModelTests, aModelThatIsGoneIsNotCalled) {
    press(1);
    model.reset();
    sender.answer({});
    QCoreApplication::processEvents();
}

} // namespace
