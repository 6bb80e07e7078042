#pragma once

#include "VistrelPlatform/Result.h"

#include <QByteArray>
#include <QUuid>

#include <optional>

/// The service's answer to a report. A value.
struct ReportReceipt {
    /// Longer answers are not read.
    static constexpr qint64 largestBody = 4096;

    bool accepted = false;
    QUuid reportID;

    static std::optional<ReportReceipt> decode(const QByteArray& body);

    /// What an answer means for the report that was sent; a `ReportUploadError` unless it was confirmed.
    static Result<void> confirm(int status, const QByteArray& body, const QUuid& sent);
};
