#pragma once

#include <QByteArray>
#include <QObject>
#include <QUrl>

#include <chrono>
#include <functional>

#include <tl/expected.hpp>

/// One JSON document on its way to a service over verified TLS, without redirections, cookies, caches,
/// compression or a second attempt. Main thread. Destroying it stops it silently.
class HttpsUpload : public QObject {
public:
    struct Request {
        QUrl address;
        QByteArray document;
        /// Of an answer that is longer, one byte more is read.
        qint64 largestAnswer = 0;
        /// Without a byte, and altogether.
        std::chrono::milliseconds silence{};
        std::chrono::milliseconds total{};
        /// Certificates (PEM) trusted instead of the system's; only for servers that a test runs itself.
        QByteArray testAuthorities;
    };
    struct Answer {
        int status = 0;
        QByteArray body;
    };
    enum class Failure { offline, unavailable };
    using Outcome = tl::expected<Answer, Failure>;

    virtual void start(const Request& what) = 0;

    /// Called once, never from within `start`.
    std::function<void(const Outcome&)> onFinished;
};
