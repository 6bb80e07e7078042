#include "Diagnostics/JournalLine.h"
#include "Reports/ProblemReportModel.h"
#include "Require.h"

#include <QJsonArray>
#include <QJsonDocument>

/// The first line is the comment, the others a journal: whatever they hold, the document is whole.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QByteArray content(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    QList<QByteArray> lines = content.split('\n');
    ProblemReport report;
    report.comment = ProblemReportModel::limitedComment(QString::fromUtf8(lines.takeFirst()));
    for (const QByteArray& line : lines) {
        if (auto event = JournalLine::decode(line))
            report.events.push_back(std::move(*event));
    }
    report.counts = ProblemReport::countsOf(report.events);
    const auto encoded = report.encoded();
    FUZZ_REQUIRE(encoded);
    const QJsonObject document = QJsonDocument::fromJson(*encoded).object();
    FUZZ_REQUIRE(document.value(QStringLiteral("comment")).toString() == report.comment);
    const QJsonArray events = document.value(QStringLiteral("events")).toArray();
    FUZZ_REQUIRE(events.size() == static_cast<qsizetype>(report.events.size()));
    for (qsizetype index = 0; index < events.size(); ++index) {
        const QByteArray line = QJsonDocument(events.at(index).toObject()).toJson(QJsonDocument::Compact);
        FUZZ_REQUIRE(JournalLine::decode(line) == report.events.at(static_cast<std::size_t>(index)));
    }
    return 0;
}
