#include "Reports/ReportReceipt.h"

#include "Reports/ReportUploadError.h"
#include "VistrelPlatform/System/UuidText.h"

#include <QJsonDocument>
#include <QJsonObject>

std::optional<ReportReceipt> ReportReceipt::decode(const QByteArray& body) {
    const QJsonObject object = QJsonDocument::fromJson(body).object();
    const QJsonValue accepted = object.value(QStringLiteral("accepted"));
    const std::optional<QUuid> reportID =
        UuidText::parse(object.value(QStringLiteral("reportID")).toString());
    if (!accepted.isBool() || !reportID)
        return std::nullopt;
    return ReportReceipt{accepted.toBool(), *reportID};
}

Result<void> ReportReceipt::confirm(int status, const QByteArray& body, const QUuid& sent) {
    if (status == 429)
        return tl::unexpected(reportUploadError(ReportUploadError::rateLimited));
    if ((status == 200 || status == 201) && body.size() <= largestBody) {
        const std::optional<ReportReceipt> receipt = decode(body);
        if (receipt && receipt->accepted && receipt->reportID == sent)
            return {};
    }
    return tl::unexpected(reportUploadError(ReportUploadError::unavailable));
}
