#pragma once

#include "VistrelPlatform/Result.h"

#include <QByteArray>
#include <QFuture>
#include <QUuid>

/// Delivers one encoded report. Main thread; the future finishes on it.
class ReportSending {
public:
    ReportSending() = default;
    ReportSending(const ReportSending&) = delete;
    ReportSending& operator=(const ReportSending&) = delete;
    virtual ~ReportSending() = default;

    /// False in a build that names no service: every attempt would fail.
    virtual bool hasAddress() const = 0;
    /// Succeeds only when the service confirmed this very report; otherwise mostly a `ReportUploadError`.
    virtual QFuture<Result<void>> send(const QByteArray& report, const QUuid& reportID) = 0;
};
