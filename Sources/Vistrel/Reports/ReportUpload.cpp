#include "Reports/ReportUpload.h"

#include "Reports/ReportReceipt.h"
#include "Reports/ReportUploadError.h"

#include <utility>

ReportUpload::ReportUpload(Request uploadRequest, QObject* parent)
    : QObject(parent), request(std::move(uploadRequest)), outgoing(request.report) {
    promise.start();
    session.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
    reply.reset(session.post(networkRequest(), &outgoing));
    // One byte more than is allowed tells that it is too much.
    reply->setReadBufferSize(ReportReceipt::largestBody + 1);
    connect(reply.get(), &QNetworkReply::readyRead, this, &ReportUpload::receive);
    connect(reply.get(), &QNetworkReply::finished, this, &ReportUpload::conclude);
    connect(&deadline, &QTimer::timeout, this,
            [this] { finish(tl::unexpected(reportUploadError(ReportUploadError::unavailable))); });
    deadline.setSingleShot(true);
    deadline.start(request.resourceTimeoutMS);
}

ReportUpload::~ReportUpload() {
    finish(tl::unexpected(cancelledError()));
}

QNetworkRequest ReportUpload::networkRequest() const {
    QNetworkRequest result(request.url);
    result.setSslConfiguration(request.tls);
    result.setTransferTimeout(request.requestTimeoutMS);
    result.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    result.setHeader(QNetworkRequest::ContentLengthHeader, request.report.size());
    result.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    result.setRawHeader("Accept", "application/json");
    // Left to itself the library would ask for compression and tell the user's language.
    result.setRawHeader("Accept-Encoding", "identity");
    result.setRawHeader("Accept-Language", "*");
    result.setRawHeader("User-Agent", "Vistrel");
    result.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    result.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    result.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    result.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    return result;
}

void ReportUpload::receive() {
    body += reply->read(ReportReceipt::largestBody + 1 - body.size());
    if (body.size() > ReportReceipt::largestBody)
        conclude();
}

void ReportUpload::conclude() {
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (const std::optional<Error> error = transferError(reply->error(), status.isValid())) {
        finish(tl::unexpected(*error));
        return;
    }
    body += reply->read(ReportReceipt::largestBody + 1 - body.size());
    finish(ReportReceipt::confirm(status.toInt(), body, request.reportID));
}

std::optional<Error> ReportUpload::transferError(QNetworkReply::NetworkError error, bool answered) {
    switch (error) {
    case QNetworkReply::NoError:
        break;
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    // An unreachable network has no number of its own.
    case QNetworkReply::UnknownNetworkError:
        return reportUploadError(ReportUploadError::offline);
    case QNetworkReply::ContentReSendError:
        // The connection broke, or a redirect would have had the body once more.
        return reportUploadError(answered ? ReportUploadError::unavailable : ReportUploadError::offline);
    default:
        // From here on the numbers stand for answers that the library takes for failures (4xx, 5xx).
        if (error >= QNetworkReply::ContentAccessDenied && error != QNetworkReply::ProtocolFailure &&
            answered)
            break;
        return reportUploadError(ReportUploadError::unavailable);
    }
    if (!answered)
        return reportUploadError(ReportUploadError::unavailable);
    return std::nullopt;
}

void ReportUpload::finish(const Result<void>& result) {
    if (!reply)
        return;
    deadline.stop();
    // Called from the reply's own signals, so it goes later, and what is left of the transfer with it.
    reply->disconnect(this);
    reply.release()->deleteLater();
    promise.addResult(result);
    promise.finish();
    deleteLater();
}
