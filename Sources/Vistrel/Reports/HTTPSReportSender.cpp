#include "Reports/HTTPSReportSender.h"

#include "Reports/ReportReceipt.h"
#include "Reports/ReportUpload.h"
#include "Reports/ReportUploadError.h"
#include "VistrelPlatform/System/ApplicationBundle.h"

#include <QPromise>

namespace {

QFuture<Result<void>> failed(ReportUploadError error) {
    QPromise<Result<void>> promise;
    promise.start();
    promise.addResult(tl::unexpected(reportUploadError(error)));
    promise.finish();
    return promise.future();
}

} // namespace

HTTPSReportSender::HTTPSReportSender(const QUrl& serviceURL, NetworkSource source)
    : HTTPSReportSender(serviceURL, std::move(source), Configuration{}) {}

HTTPSReportSender::HTTPSReportSender(const QUrl& serviceURL, NetworkSource source, Configuration options)
    : url(serviceURL), network(std::move(source)), configuration(std::move(options)) {}

HTTPSReportSender::~HTTPSReportSender() = default;

QUrl HTTPSReportSender::endpoint(const ApplicationBundle& bundle) {
    QUrl service(bundle.string(ApplicationBundle::reportURLKey).value_or(QString()), QUrl::StrictMode);
    if (service.isValid() && (service.path().isEmpty() || service.path() == QLatin1StringView("/")))
        service.setPath(QStringLiteral("/v1/reports"));
    return service;
}

bool HTTPSReportSender::hasAddress() const {
    return url.scheme() == QLatin1StringView("https");
}

QFuture<Result<void>> HTTPSReportSender::send(const QByteArray& report, const QUuid& reportID) {
    if (report.size() > largestReport)
        return failed(ReportUploadError::tooLarge);
    if (!hasAddress())
        return failed(ReportUploadError::unavailable);
    const Result<NetworkServices*> services = network();
    if (!services)
        return failed(ReportUploadError::unavailable);
    auto* upload = new ReportUpload((*services)->makeUpload(), reportID, &uploads);
    upload->start({.address = url,
                   .document = report,
                   .largestAnswer = ReportReceipt::largestBody,
                   .silence = std::chrono::milliseconds(configuration.requestTimeoutMS),
                   .total = std::chrono::milliseconds(configuration.resourceTimeoutMS),
                   .testAuthorities = configuration.testAuthorities});
    return upload->future();
}
