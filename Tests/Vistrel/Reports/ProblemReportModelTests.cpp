#include "Reports/ProblemReportModel.h"
#include "Reports/ReportUploadError.h"
#include "VistrelPlatform/System/FileUserDefaults.h"
#include "VistrelPlatform/System/Files.h"
#include "VistrelPlatform/System/UuidText.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPromise>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <deque>
#include <gtest/gtest.h>

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
};

class ProblemReportModelTests : public ::testing::Test {
protected:
    QTemporaryDir home;
    FileUserDefaults defaults{home.filePath(QStringLiteral("defaults.json"))};
    const QString folder = home.filePath(QStringLiteral("Diagnostics"));
    LocalDiagnostics journal{defaults, {.directory = folder, .version = QStringLiteral("1.4.2")}};
    EditorPreferences preferences{defaults};
    HeldSender sender;
    MachineFacts machine{QStringLiteral("12.0.0"), QStringLiteral("x86_64"), QStringLiteral("20XW0055GE"),
                         false};
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
    model->setMessage(QStringLiteral("It’s \"broken\"\n"));
    press(1);
    QString bytes = QString::fromUtf8(sender.uploads.back().data);
    // What differs every time is told by its form.
    bytes.replace(QRegularExpression(QStringLiteral(R"("\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ")")),
                  QStringLiteral("date"));
    bytes.replace(UuidText::upperCase(sender.uploads.back().id), QStringLiteral("this report"));
    bytes.replace(*defaults.string(QStringLiteral("diagnosticReportInstallationID")),
                  QStringLiteral("this installation"));
    bytes.replace(QRegularExpression(QStringLiteral(R"("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}")")),
                  QStringLiteral("launch"));
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

TEST_F(ProblemReportModelTests, onePressOneUploadOneConfirmation) {
    model->send();
    EXPECT_EQ(model->status(), QStringLiteral("Sending…"));
    press(1);
    press(1);
    EXPECT_EQ(sender.uploads.size(), 1U);
    fail(ReportUploadError::rateLimited);
    EXPECT_EQ(model->status(), QStringLiteral("Too many reports. Please try again later."));
    press(2);
    answer(tl::unexpected(cancelledError()));
    EXPECT_EQ(model->status(), QStringLiteral("Couldn’t confirm delivery. Please try again."));
    press(3);
    answer({});
    EXPECT_EQ(model->sentReportID(), sender.uploads.back().id);
    const QString confirmation =
        QStringLiteral("Report sent. ID: ") + UuidText::lowerCase(sender.uploads.back().id);
    EXPECT_EQ(model->status(), confirmation);
    model->setMessage(QStringLiteral("afterwards"));
    EXPECT_EQ(model->status(), confirmation);
    model->send();
    EXPECT_FALSE(model->working());
    EXPECT_EQ(sender.uploads.size(), 3U);
}

TEST_F(ProblemReportModelTests, aRetrySendsTheSameBytesAndAnEditANewReport) {
    model->setMessage(QStringLiteral("first"));
    press(1);
    fail(ReportUploadError::offline);
    EXPECT_FALSE(model->sentReportID());
    model->setMessage(QStringLiteral("first"));
    EXPECT_FALSE(model->status().isEmpty()) << "nothing was edited";
    journal.record(Action::undo);
    press(2);
    EXPECT_EQ(sender.uploads[1].data, sender.uploads[0].data);
    EXPECT_EQ(sender.uploads[1].id, sender.uploads[0].id);
    fail(ReportUploadError::unavailable);

    model->setMessage(QStringLiteral("second"));
    EXPECT_EQ(model->status(), QString());
    press(3);
    EXPECT_NE(sender.uploads[2].id, sender.uploads[0].id);
    EXPECT_EQ(document().value(QStringLiteral("comment")).toString(), QStringLiteral("second"));
}

TEST_F(ProblemReportModelTests, anEditBeforeTheJournalAnsweredIsSentAtTheNextAttempt) {
    model->setMessage(QStringLiteral("before"));
    model->send();
    model->setMessage(QStringLiteral("meanwhile"));
    process([&] { return sender.uploads.size() == 1; });
    EXPECT_EQ(document().value(QStringLiteral("comment")).toString(), QStringLiteral("before"));
    fail(ReportUploadError::offline);
    press(2);
    EXPECT_EQ(document().value(QStringLiteral("comment")).toString(), QStringLiteral("meanwhile"));
}

TEST_F(ProblemReportModelTests, aMalformedInstallationIdentifierIsReplacedOnce) {
    const QString key = QStringLiteral("diagnosticReportInstallationID");
    for (const char* malformed : {"", "no identifier", "{0e984725-c51c-4bf4-9960-e1c80e27aba0}"}) {
        defaults.setString(key, QString::fromLatin1(malformed));
        const QUuid made = ProblemReportModel::installationID(defaults);
        EXPECT_EQ(ProblemReportModel::installationID(defaults), made);
        EXPECT_EQ(defaults.string(key), UuidText::upperCase(made));
    }
}

TEST_F(ProblemReportModelTests, theCommentIsCutAtFiveThousandScalars) {
    const QString pair = QStringLiteral("𝄞"); // two code units
    model->setMessage(pair.repeated(4999) + QString(1000, u'x'));
    press(1);
    EXPECT_EQ(document().value(QStringLiteral("comment")).toString(), pair.repeated(4999) + u'x');
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
    machine.productName.reset();
    press(1);
    EXPECT_FALSE(
        document().value(QStringLiteral("environment")).toObject().contains(QStringLiteral("hardwareModel")));
}

TEST_F(ProblemReportModelTests, aModelThatIsGoneIsNotCalled) {
    press(1);
    model.reset();
    sender.answer({});
    QCoreApplication::processEvents();
}

TEST(ProblemReportTests, crashDataHasItsPlaceInTheDocument) {
    ProblemReport report;
    report.crash = ProblemReport::CrashSummary{.exception = QStringLiteral("E"),
                                               .signal = std::nullopt,
                                               .terminationNamespace = std::nullopt,
                                               .terminationCode = 11,
                                               .faultingThread = 0,
                                               .frames = {{1, 4096}},
                                               .images = {{1, QUuid()}}};
    EXPECT_TRUE(report.encoded().value().contains(
        R"("crash":{"exception":"E","faultingThread":0,"frames":[{"imageIndex":1,"imageOffset":4096}],)"
        R"("images":[{"index":1,"uuid":"00000000-0000-0000-0000-000000000000"}],"terminationCode":11})"));
}

TEST_F(ProblemReportModelTests, nothingOfAUsersWorkReachesTheJournalOrTheReport) {
    const QString secret = QStringLiteral("Zebra7");
    const QString path = home.path() + QStringLiteral("/Pictures/%1.png").arg(secret);
    defaults.setString(QStringLiteral("lastFolder"), path);
    machine.productName = secret + QStringLiteral("’s laptop");
    // What the system says about a failing save names the file.
    const Error told{ErrorDomain::system, ENOENT, path + QStringLiteral(": No such file")};
    journal.record(Action::saveFailed, LocalDiagnostics::error(told, Diagnostic::ErrorKind::encoding));
    press(1);
    const QByteArray bytes =
        sender.uploads.back().data + Files::read(folder + QStringLiteral("/events.jsonl"), 1 << 20).value();
    EXPECT_TRUE(bytes.contains("saveFailed"));
    for (const QString& word : {secret, home.path(), QStringLiteral("Pictures")})
        EXPECT_FALSE(bytes.contains(word.toUtf8())) << word.toStdString();
}

} // namespace
