#include "Updates/UpdateWindows.h"

#include "Updates/UpdateDialogStyle.h"
#include "Updates/UpdateOfferDialog.h"
#include "Updates/UpdateProgressDialog.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

namespace {

QMessageBox* message(QMessageBox::Icon icon, const QString& text, const QString& details) {
    auto* box = new QMessageBox(icon, QStringLiteral("Vistrel Update"), text, QMessageBox::NoButton);
    // A message box is application-modal unless told otherwise, and would stop a capture that it lies under.
    box->setModal(false);
    box->setObjectName(QStringLiteral("updateMessage"));
    box->setAccessibleName(text);
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(details);
    if (auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel")))
        label->setMinimumWidth(UpdateDialogStyle::textWidth);
    return box;
}

} // namespace

UpdateWindows::~UpdateWindows() {
    delete current;
}

void UpdateWindows::showCheck(std::function<void()> cancel) {
    progressDialog()->showActivity(QStringLiteral("Checking for updates…"), std::move(cancel));
}

void UpdateWindows::showUpToDate(const QString& currentVersion) {
    auto* box = message(QMessageBox::Information, QStringLiteral("Vistrel is up to date"),
                        QStringLiteral("Version %1 is the newest version available.").arg(currentVersion));
    box->addButton(QMessageBox::Ok);
    present(box, true);
}

void UpdateWindows::showOffer(const UpdateOffer& offer, std::function<void(UpdateChoice)> reply) {
    auto* dialog = new UpdateOfferDialog(offer);
    dialog->onChoice = std::move(reply);
    present(dialog, offer.userInitiated);
}

void UpdateWindows::showDownload(const QString& version, std::function<void()> cancel) {
    progressDialog()->showActivity(QStringLiteral("Downloading Vistrel %1…").arg(version), std::move(cancel));
}

void UpdateWindows::showDownloadProgress(qint64 received, qint64 total) {
    if (progress)
        progress->setProgress(received, total);
}

void UpdateWindows::showInstalling() {
    progressDialog()->showActivity(QStringLiteral("Verifying and installing the update…"), nullptr);
}

void UpdateWindows::showInstalled(const QString& version, std::function<void(bool)> reply) {
    auto* box = message(QMessageBox::Information, QStringLiteral("Vistrel %1 is installed").arg(version),
                        QStringLiteral("It is used from the next start on."));
    const QPushButton* relaunch = box->addButton(QStringLiteral("Relaunch now"), QMessageBox::AcceptRole);
    box->addButton(QStringLiteral("Later"), QMessageBox::RejectRole);
    QObject::connect(box, &QDialog::finished, box,
                     [box, relaunch, reply = std::move(reply)] { reply(box->clickedButton() == relaunch); });
    present(box, true);
}

void UpdateWindows::showError(const Error& error) {
    auto* box =
        message(QMessageBox::Warning, QStringLiteral("The update did not succeed"), error.description);
    box->addButton(QMessageBox::Ok);
    present(box, true);
}

void UpdateWindows::bringToFront() {
    if (!current)
        return;
    current->show();
    current->raise();
    current->activateWindow();
}

void UpdateWindows::dismiss() {
    if (!current)
        return;
    current->hide();
    current->deleteLater();
    current.clear();
}

UpdateProgressDialog* UpdateWindows::progressDialog() {
    if (!progress || progress != current) {
        progress = new UpdateProgressDialog;
        present(progress, true);
    }
    return progress;
}

void UpdateWindows::present(QDialog* dialog, bool activate) {
    dismiss();
    current = dialog;
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAttribute(Qt::WA_ShowWithoutActivating, !activate);
    dialog->show();
    if (activate) {
        dialog->raise();
        dialog->activateWindow();
    }
}
