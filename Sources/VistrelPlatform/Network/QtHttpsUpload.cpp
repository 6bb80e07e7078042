#include "VistrelPlatform/Network/QtHttpsUpload.h"

#include "VistrelPlatform/Network/TrustedAuthorities.h"

#include <utility>

namespace {

QNetworkRequest networkRequest(const HttpsUpload::Request& what) {
    QNetworkRequest result(what.address);
    result.setSslConfiguration(TrustedAuthorities::tls(what.testAuthorities));
    result.setTransferTimeout(static_cast<int>(what.silence.count()));
    result.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    result.setHeader(QNetworkRequest::ContentLengthHeader, what.document.size());
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

/// What a failed transfer means; nothing when the service answered after all.
std::optional<HttpsUpload::Failure> failureOf(QNetworkReply::NetworkError error, bool answered) {
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
        return HttpsUpload::Failure::offline;
    case QNetworkReply::ContentReSendError:
        // The connection broke, or a redirect would have had the body once more.
        return answered ? HttpsUpload::Failure::unavailable : HttpsUpload::Failure::offline;
    default:
        // From here on the numbers stand for answers that the library takes for failures (4xx, 5xx).
        if (error >= QNetworkReply::ContentAccessDenied && error != QNetworkReply::ProtocolFailure &&
            answered)
            break;
        return HttpsUpload::Failure::unavailable;
    }
    if (!answered)
        return HttpsUpload::Failure::unavailable;
    return std::nullopt;
}

} // namespace

QtHttpsUpload::QtHttpsUpload() {
    session.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
    connect(&deadline, &QTimer::timeout, this, [this] { finish(tl::unexpected(Failure::unavailable)); });
    deadline.setSingleShot(true);
}

QtHttpsUpload::~QtHttpsUpload() {
    drop();
}

void QtHttpsUpload::start(const Request& what) {
    outgoing = std::make_unique<UploadBody>(what.document);
    // One byte more than is allowed tells that it is too much.
    mostToRead = what.largestAnswer + 1;
    reply.reset(session.post(networkRequest(what), outgoing.get()));
    reply->setReadBufferSize(mostToRead);
    connect(reply.get(), &QNetworkReply::readyRead, this, &QtHttpsUpload::receive);
    connect(reply.get(), &QNetworkReply::finished, this, &QtHttpsUpload::conclude);
    deadline.start(what.total);
}

void QtHttpsUpload::receive() {
    body += reply->read(mostToRead - body.size());
    if (body.size() >= mostToRead)
        conclude();
}

void QtHttpsUpload::conclude() {
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (const auto failure = failureOf(reply->error(), status.isValid())) {
        finish(tl::unexpected(*failure));
        return;
    }
    body += reply->read(mostToRead - body.size());
    finish(Answer{status.toInt(), body});
}

void QtHttpsUpload::finish(const Outcome& outcome) {
    drop();
    const auto report = std::move(onFinished);
    onFinished = nullptr;
    if (report)
        report(outcome);
}

void QtHttpsUpload::drop() {
    deadline.stop();
    if (!reply)
        return;
    // Called from the reply's own signals, so it goes later, and what is left of the transfer with it.
    reply->disconnect(this);
    reply.release()->deleteLater();
}
