#include "VistrelPlatform/Network/QtHttpsTransfer.h"

#include "VistrelPlatform/Network/TrustedAuthorities.h"

#include <QNetworkCookieJar>
#include <QNetworkReply>
#include <QSslError>

namespace {

/// Connections and servers; the description says it all.
const QString domain = QStringLiteral("network");

constexpr int maximumRedirections = 5;
/// What belongs to an answer that is no file, such as an error page, is read no further.
constexpr qint64 maximumOtherAnswer = 64LL * 1024;

bool isSecure(const QUrl& address) {
    return address.isValid() && address.scheme() == QLatin1String("https") && !address.host().isEmpty() &&
           address.userInfo().isEmpty();
}

bool isSamePeer(const QUrl& a, const QUrl& b) {
    constexpr int httpsPort = 443;
    return a.host() == b.host() && a.port(httpsPort) == b.port(httpsPort);
}

QString unexpectedStatus(int status) {
    return QStringLiteral("The server answered with status %1.").arg(status);
}

QNetworkRequest networkRequest(const HttpsTransfer::Request& what, const QUrl& address) {
    QNetworkRequest request(address);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    // One request needs no multiplexing, and a plain answer has a length that can be checked.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setRawHeader("Accept-Encoding", "identity");
    request.setRawHeader("Accept", what.accept);
    // Left to itself the library would tell the user's language.
    request.setRawHeader("Accept-Language", "*");
    request.setRawHeader("User-Agent", what.userAgent);
    request.setTransferTimeout(static_cast<int>(what.silence.count()));

    request.setSslConfiguration(TrustedAuthorities::tls(what.testAuthorities));
    return request;
}

} // namespace

QtHttpsTransfer::QtHttpsTransfer() {
    deadline.setSingleShot(true);
    connect(&deadline, &QTimer::timeout, this,
            [this] { fail(QStringLiteral("The server takes too long to answer.")); });
}

QtHttpsTransfer::~QtHttpsTransfer() {
    stop();
}

void QtHttpsTransfer::cancel() {
    stop();
}

void QtHttpsTransfer::stop() {
    onProgress = nullptr;
    onFinished = nullptr;
    sink.clear();
    deadline.stop();
    if (reply) {
        reply->disconnect(this);
        reply->abort();
    }
}

void QtHttpsTransfer::start(const Request& what, QIODevice& target) {
    request = what;
    sink = &target;
    if (!isSecure(what.address)) {
        QTimer::singleShot(0, this, [this] {
            failure = QStringLiteral("The address is not a secure one.");
            finished();
        });
        return;
    }
    get(what.address);
    deadline.start(what.total);
}

void QtHttpsTransfer::get(const QUrl& address) {
    reply = manager.get(networkRequest(request, address));
    reply->setReadBufferSize(256LL * 1024);
    connect(reply, &QNetworkReply::readyRead, this, &QtHttpsTransfer::receive);
    connect(reply, &QNetworkReply::sslErrors, this, [this](const QList<QSslError>& errors) {
        if (failure.isEmpty() && !errors.isEmpty())
            failure = QStringLiteral("The server cannot be trusted: %1").arg(errors.first().errorString());
    });
    connect(reply, &QNetworkReply::finished, this, &QtHttpsTransfer::finished);
}

bool QtHttpsTransfer::follow() {
    const QVariant location = reply->attribute(QNetworkRequest::RedirectionTargetAttribute);
    if (!failure.isEmpty() || reply->error() != QNetworkReply::NoError || !location.isValid())
        return false;
    const QUrl target = reply->url().resolved(location.toUrl());
    if (!isSecure(target) || !isSamePeer(target, request.address)) {
        failure = QStringLiteral("The server sends us elsewhere, to %1.").arg(target.host());
        return false;
    }
    if (++redirections > maximumRedirections) {
        failure = QStringLiteral("The server sends us in circles.");
        return false;
    }
    reply->deleteLater();
    discarded = 0;
    get(target);
    return true;
}

void QtHttpsTransfer::receive() {
    if (!failure.isEmpty() || !reply || !sink)
        return;
    const QByteArray data = reply->readAll();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status != 200) {
        discarded += data.size();
        if (discarded > maximumOtherAnswer)
            fail(unexpectedStatus(status));
        return;
    }
    received += data.size();
    if (received > request.exactLength.value_or(request.limit)) {
        fail(QStringLiteral("The server sends more than it should."));
        return;
    }
    if (sink->write(data) != data.size()) {
        fail(sink->errorString());
        return;
    }
    if (onProgress) {
        const QVariant total = reply->header(QNetworkRequest::ContentLengthHeader);
        onProgress(received, request.exactLength.value_or(total.isValid() ? total.toLongLong() : -1));
    }
}

void QtHttpsTransfer::fail(const QString& description) {
    if (failure.isEmpty())
        failure = description;
    if (reply)
        reply->abort(); // which ends in `finished`
}

Result<void> QtHttpsTransfer::outcome() const {
    const auto failed = [](const QString& description) {
        return tl::unexpected(Error{domain, 0, description});
    };
    if (!failure.isEmpty())
        return failed(failure);
    if (reply->error() == QNetworkReply::OperationCanceledError)
        return failed(QStringLiteral("The server does not answer."));
    if (reply->error() != QNetworkReply::NoError)
        return failed(reply->errorString());
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status != 200)
        return failed(unexpectedStatus(status));
    const QVariant announced = reply->header(QNetworkRequest::ContentLengthHeader);
    const qint64 expected =
        request.exactLength.value_or(announced.isValid() ? announced.toLongLong() : received);
    if (received != expected)
        return failed(QStringLiteral("The server's answer is incomplete."));
    return {};
}

void QtHttpsTransfer::finished() {
    if (reply && follow())
        return;
    deadline.stop();
    if (reply && reply->error() == QNetworkReply::NoError)
        receive();
    const Result<void> result = outcome();
    if (reply)
        reply->deleteLater();
    const auto report = std::move(onFinished);
    onFinished = nullptr;
    if (report)
        report(result);
}
