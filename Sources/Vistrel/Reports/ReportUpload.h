#pragma once

#include "VistrelPlatform/HttpsUpload.h"
#include "VistrelPlatform/Result.h"

#include <QFuture>
#include <QObject>
#include <QPromise>
#include <QUuid>

#include <memory>

/// One report on its way, from the request to the checked receipt. Main thread. Deletes itself when it is
/// over.
class ReportUpload : public QObject {
    Q_OBJECT
public:
    ReportUpload(std::unique_ptr<HttpsUpload> upload, const QUuid& reportID, QObject* parent);
    ~ReportUpload() override;

    void start(const HttpsUpload::Request& request);
    QFuture<Result<void>> future() const { return promise.future(); }

private:
    Result<void> judge(const HttpsUpload::Outcome& outcome) const;
    void finish(const Result<void>& result);

    std::unique_ptr<HttpsUpload> transfer;
    QUuid id;
    QPromise<Result<void>> promise;
};
