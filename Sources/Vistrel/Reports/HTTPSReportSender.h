#pragma once

#include "Reports/ReportSending.h"
#include "VistrelPlatform/NetworkServices.h"

#include <QObject>
#include <QUrl>

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
        /// Certificates (PEM) trusted instead of the system's; only for servers that a test runs itself.
        QByteArray testAuthorities;
    };

    /// The network is asked for at the first upload.
    HTTPSReportSender(const QUrl& serviceURL, NetworkSource source);
    HTTPSReportSender(const QUrl& serviceURL, NetworkSource source, Configuration options);
    /// Uploads under way end as cancelled.
    ~HTTPSReportSender() override;

    /// The service that the installed program names, path "/v1/reports" unless it names one; invalid for
    /// a program that names none, so that nothing can be sent.
    static QUrl endpoint(const ApplicationBundle& bundle);

    bool hasAddress() const override;
    QFuture<Result<void>> send(const QByteArray& report, const QUuid& reportID) override;

private:
    QUrl url;
    NetworkSource network;
    Configuration configuration;
    QObject uploads;
};
