#pragma once

#include "Reports/ReportSending.h"

#include <QObject>
#include <QSslConfiguration>
#include <QUrl>

#include <optional>

class ApplicationBundle;

/// Posts reports to the report service over HTTPS: certificates checked, no redirects, no cookies, no
/// cache, nothing kept between calls. Main thread.
class HTTPSReportSender : public ReportSending {
public:
    /// Larger reports are refused before the network is touched.
    static constexpr qsizetype largestReport = 1048576;

    struct Configuration {
        /// The longest silence of the connection.
        int requestTimeoutMS = 20000;
        /// The longest that one upload may take.
        int resourceTimeoutMS = 30000;
        /// `TrustedAuthorities::tls` when absent.
        std::optional<QSslConfiguration> tls;
    };

    explicit HTTPSReportSender(const QUrl& serviceURL);
    HTTPSReportSender(const QUrl& serviceURL, const Configuration& options);
    /// Uploads under way end as cancelled.
    ~HTTPSReportSender() override;

    /// The service that the installed program names, path "/v1/reports" unless it names one; invalid for
    /// a program that names none, so that nothing can be sent.
    static QUrl endpoint(const ApplicationBundle& bundle);

    QFuture<Result<void>> send(const QByteArray& report, const QUuid& reportID) override;

private:
    QUrl url;
    Configuration configuration;
    QObject uploads;
};
