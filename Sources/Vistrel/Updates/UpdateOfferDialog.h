#pragma once

#include "VistrelPlatform/Update/UpdateUserDriver.h"

#include <QDialog>

class QLabel;
class QVBoxLayout;

/// Puts a newer version to the user: what is in it, and what to do about it. Main thread.
class UpdateOfferDialog : public QDialog {
    Q_OBJECT
public:
    explicit UpdateOfferDialog(const UpdateOffer& offer, QWidget* parent = nullptr);

    /// Called once; closing the window means "later".
    std::function<void(UpdateChoice)> onChoice;
    /// Opens a page in the user's browser.
    std::function<void(const QUrl&)> onOpenPage;

    void done(int result) override;

private:
    void addTexts(const UpdateOffer& offer, QVBoxLayout& layout);
    void addNotes(const UpdateOffer& offer, QVBoxLayout& layout);
    void addButtons(const UpdateOffer& offer, QVBoxLayout& layout);
    void choose(UpdateChoice choice);

    UpdateChoice chosen = UpdateChoice::remindLater;
};
