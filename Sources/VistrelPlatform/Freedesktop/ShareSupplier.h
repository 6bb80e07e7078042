#pragma once

#include "VistrelPlatform/Freedesktop/SharePictureFile.h"
#include "VistrelPlatform/ShareServices.h"

#include <memory>
#include <vector>

/// One kind of share service. Main thread; nothing waits for another program.
class ShareSupplier {
public:
    ShareSupplier() = default;
    ShareSupplier(const ShareSupplier&) = delete;
    ShareSupplier& operator=(const ShareSupplier&) = delete;
    virtual ~ShareSupplier() = default;

    virtual void refresh() {}
    virtual std::vector<ShareService> services() = 0;
    /// `completion` is called at most once. The supplier keeps `file` as long as its reader may need it.
    virtual void perform(const QString& identifier, std::shared_ptr<SharePictureFile> file,
                         ShareServices::Completion completion) = 0;
};
