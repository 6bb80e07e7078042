#pragma once

#include <QTemporaryFile>

#include <memory>

/// Where an update is kept between its download and its installation. Any thread.
namespace UpdateDownloadFile {

/// A new file in `folder`, both readable by the user alone, and nothing else in it. Null when it cannot be
/// made. Removed when it is destroyed.
std::unique_ptr<QTemporaryFile> create(const QString& folder);

} // namespace UpdateDownloadFile
