#pragma once

#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/Update/AppcastItem.h"

#include <functional>

/// A newer version, as it is put to the user.
struct UpdateOffer {
    AppcastItem item;
    QString currentVersion;
    /// False for a copy that something else looks after: the user is told where the new version is.
    bool installable = false;
    /// False when nobody asked: the keyboard stays where it is.
    bool userInitiated = true;
};

enum class UpdateChoice { install, remindLater, skip };

/// Speaks with the user for the updater. Main thread. Each `show…` takes the place of what was shown
/// before; a reply is given at most once, closing a window counts as "later" or "cancel".
class UpdateUserDriver {
public:
    UpdateUserDriver() = default;
    UpdateUserDriver(const UpdateUserDriver&) = delete;
    UpdateUserDriver& operator=(const UpdateUserDriver&) = delete;
    virtual ~UpdateUserDriver() = default;

    virtual void showCheck(std::function<void()> cancel) = 0;
    virtual void showUpToDate(const QString& currentVersion) = 0;
    virtual void showOffer(const UpdateOffer& offer, std::function<void(UpdateChoice)> reply) = 0;
    virtual void showDownload(const QString& version, std::function<void()> cancel) = 0;
    virtual void showDownloadProgress(qint64 received, qint64 total) = 0;
    virtual void showInstalling() = 0;
    virtual void showInstalled(const QString& version, std::function<void(bool relaunch)> reply) = 0;
    virtual void showError(const Error& error) = 0;
    /// Brings what is shown before the user again.
    virtual void bringToFront() = 0;
    virtual void dismiss() = 0;
};
