#pragma once

#include "VistrelPlatform/Result.h"

#include <QByteArray>
#include <QObject>
#include <QUrl>

#include <chrono>
#include <functional>
#include <optional>

class QIODevice;

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
        /// Certificates (PEM) trusted instead of the system's; only for servers that a test runs itself.
        QByteArray testAuthorities;
    };

    /// Writes to `sink`, which is open and outlives the transfer.
    virtual void start(const Request& what, QIODevice& sink) = 0;

    /// Stops at once and reports nothing more. `sink` may go.
    virtual void cancel() = 0;

    /// With the total, -1 when it is not known.
    std::function<void(qint64 received, qint64 total)> onProgress;
    /// Called once, never from within `start`; the descriptions are for users.
    std::function<void(Result<void>)> onFinished;
};
