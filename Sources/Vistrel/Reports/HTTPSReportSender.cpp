#include "Reports/HTTPSReportSender.h"

#include "Reports/ReportUpload.h"
#include "Reports/ReportUploadError.h"
#include "VistrelPlatform/Network/TrustedAuthorities.h"
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

HTTPSReportSender::HTTPSReportSender(const QUrl& serviceURL)
    : HTTPSReportSender(serviceURL, Configuration{}) {}

HTTPSReportSender::HTTPSReportSender(const QUrl& serviceURL, const Configuration& options)
    : url(serviceURL), configuration(options) {}

HTTPSReportSender::~HTTPSReportSender() = default;

QUrl HTTPSReportSender::endpoint(const ApplicationBundle& bundle) {
    QUrl service(bundle.string(ApplicationBundle::reportURLKey).value_or(QString()), QUrl::StrictMode);
    if (service.isValid() && (service.path().isEmpty() || service.path() == QLatin1StringView("/")))
        service.setPath(QStringLiteral("/v1/reports"));
    return service;
}

QFuture<Result<void>> HTTPSReportSender::send(const QByteArray& report, const QUuid& reportID) {
    if (report.size() > largestReport)
        return failed(ReportUploadError::tooLarge);
    if (url.scheme() != QLatin1StringView("https"))
        return failed(ReportUploadError::unavailable);
    auto* upload =
        new ReportUpload({.url = url,
                          .report = report,
                          .reportID = reportID,
                          .requestTimeoutMS = configuration.requestTimeoutMS,
                          .resourceTimeoutMS = configuration.resourceTimeoutMS,
                          // Found here and not earlier: it loads the TLS library.
                          .tls = configuration.tls ? *configuration.tls : TrustedAuthorities::tls()},
                         &uploads);
    return upload->future();
}
