#pragma once

#include "VistrelPlatform/HttpsUpload.h"
#include "VistrelPlatform/Network/UploadBody.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <memory>
#include <optional>

/// An upload through the toolkit's network library, with a network session of its own.
class QtHttpsUpload : public HttpsUpload {
public:
    QtHttpsUpload();
    ~QtHttpsUpload() override;

    void start(const Request& what) override;

private:
    void receive();
    void conclude();
    void finish(const Outcome& outcome);
    void drop();

    std::unique_ptr<UploadBody> outgoing;
    QNetworkAccessManager session;
    std::unique_ptr<QNetworkReply> reply;
    QByteArray body;
    qint64 mostToRead = 0;
    QTimer deadline;
};
