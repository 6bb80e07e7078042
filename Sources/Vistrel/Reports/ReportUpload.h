#pragma once

#include "Reports/ReportBody.h"
#include "VistrelPlatform/Result.h"

#include <QFuture>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPromise>
#include <QSslConfiguration>
#include <QTimer>
#include <QUrl>
#include <QUuid>

#include <memory>

/// One upload with a network session of its own, from the request to the checked receipt. Main thread.
/// Deletes itself when it is over.
class ReportUpload : public QObject {
    Q_OBJECT
public:
    struct Request {
        QUrl url;
        QByteArray report;
        QUuid reportID;
        int requestTimeoutMS = 0;
        int resourceTimeoutMS = 0;
        QSslConfiguration tls;
    };

    ReportUpload(Request uploadRequest, QObject* parent);
    ~ReportUpload() override;

    QFuture<Result<void>> future() const { return promise.future(); }

    /// What a failed transfer means; nothing when the service answered after all.
    static std::optional<Error> transferError(QNetworkReply::NetworkError error, bool answered);

private:
    QNetworkRequest networkRequest() const;
    void receive();
    void conclude();
    void finish(const Result<void>& result);

    Request request;
    QPromise<Result<void>> promise;
    ReportBody outgoing;
    QNetworkAccessManager session;
    std::unique_ptr<QNetworkReply> reply;
    QByteArray body;
    QTimer deadline;
};
