#pragma once

#include "VistrelPlatform/Result.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QSslCertificate>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <functional>
#include <optional>

class QIODevice;
class QNetworkReply;

/// One download over verified TLS, without cookies, caches, compression or stored passwords. Main thread.
/// Redirections stay on the same host and port. Destroying it stops it silently.
class HttpsTransfer : public QObject {
public:
    struct Request {
        QUrl address;
        QByteArray accept;
        QByteArray userAgent;
        /// Longer answers are broken off.
        qint64 limit = 0;
        /// The only acceptable length, when it is known beforehand.
        std::optional<qint64> exactLength;
        /// Without a byte, and altogether.
        std::chrono::milliseconds silence = std::chrono::seconds(60);
        std::chrono::milliseconds total = std::chrono::minutes(5);
        /// Trusted instead of the system's; only for servers that a test runs itself.
        QList<QSslCertificate> testAuthorities;
    };

    explicit HttpsTransfer(QObject* parent = nullptr);
    ~HttpsTransfer() override;

    /// Writes to `sink`, which is open and outlives the transfer.
    void start(const Request& what, QIODevice& sink);

    /// Stops at once and reports nothing more. `sink` may go.
    void cancel();

    /// With the total, -1 when it is not known.
    std::function<void(qint64 received, qint64 total)> onProgress;
    /// Called once, never from within `start`; the descriptions are for users.
    std::function<void(Result<void>)> onFinished;

private:
    void get(const QUrl& address);
    /// Goes where the answer points to; false when it points nowhere, or where we do not go.
    bool follow();
    void receive();
    void finished();
    void fail(const QString& description);
    Result<void> outcome() const;

    QNetworkAccessManager manager;
    QPointer<QNetworkReply> reply;
    QPointer<QIODevice> sink;
    Request request;
    QTimer deadline;
    qint64 received = 0;
    qint64 discarded = 0;
    int redirections = 0;
    QString failure;
};
