#include "Reports/ReportUpload.h"

#include "Reports/ReportReceipt.h"
#include "Reports/ReportUploadError.h"

#include <utility>

ReportUpload::ReportUpload(std::unique_ptr<HttpsUpload> upload, const QUuid& reportID, QObject* parent)
    : QObject(parent), transfer(std::move(upload)), id(reportID) {
    promise.start();
}

ReportUpload::~ReportUpload() {
    if (!transfer)
        return;
    transfer.reset();
    finish(tl::unexpected(cancelledError()));
}

void ReportUpload::start(const HttpsUpload::Request& request) {
    transfer->onFinished = [this](const HttpsUpload::Outcome& outcome) {
        transfer.release()->deleteLater(); // it is reporting at this moment
        deleteLater();
        finish(judge(outcome));
    };
    transfer->start(request);
}

Result<void> ReportUpload::judge(const HttpsUpload::Outcome& outcome) const {
    if (outcome)
        return ReportReceipt::confirm(outcome->status, outcome->body, id);
    return tl::unexpected(reportUploadError(outcome.error() == HttpsUpload::Failure::offline
                                                ? ReportUploadError::offline
                                                : ReportUploadError::unavailable));
}

void ReportUpload::finish(const Result<void>& result) {
    promise.addResult(result);
    promise.finish();
}
