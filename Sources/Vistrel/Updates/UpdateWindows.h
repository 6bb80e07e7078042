#pragma once

#include "VistrelPlatform/Update/UpdateUserDriver.h"

#include <QDialog>
#include <QPointer>

class UpdateProgressDialog;

/// The updater's windows, one at a time. Main thread.
class UpdateWindows : public UpdateUserDriver {
public:
    UpdateWindows() = default;
    ~UpdateWindows() override;

    void showCheck(std::function<void()> cancel) override;
    void showUpToDate(const QString& currentVersion) override;
    void showOffer(const UpdateOffer& offer, std::function<void(UpdateChoice)> reply) override;
    void showDownload(const QString& version, std::function<void()> cancel) override;
    void showDownloadProgress(qint64 received, qint64 total) override;
    void showInstalling() override;
    void showInstalled(const QString& version, std::function<void(bool)> reply) override;
    void showError(const Error& error) override;
    void bringToFront() override;
    void dismiss() override;

    /// The window at the moment; null when there is none.
    QDialog* window() const { return current; }

private:
    void present(QDialog* dialog, bool activate);
    UpdateProgressDialog* progressDialog();

    QPointer<QDialog> current;
    QPointer<UpdateProgressDialog> progress;
};
