#pragma once

#include "VistrelPlatform/HttpsTransfer.h"

#include <QNetworkAccessManager>
#include <QPointer>
#include <QTimer>

class QNetworkReply;

/// A download through the toolkit's network library.
class QtHttpsTransfer : public HttpsTransfer {
public:
    QtHttpsTransfer();
    ~QtHttpsTransfer() override;

    void start(const Request& what, QIODevice& target) override;
    void cancel() override;

private:
    void get(const QUrl& address);
    /// Goes where the answer points to; false when it points nowhere, or where we do not go.
    bool follow();
    void receive();
    void finished();
    void fail(const QString& description);
    Result<void> outcome() const;
    void stop();

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
