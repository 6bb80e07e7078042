#include "Updates/UpdateProgressDialog.h"

#include "Updates/UpdateDialogStyle.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

UpdateProgressDialog::UpdateProgressDialog(QWidget* parent)
    : QDialog(parent),
      activity(new QLabel(this)),
      bar(new QProgressBar(this)),
      amount(new QLabel(this)),
      cancelButton(new QPushButton(QStringLiteral("Cancel"), this)) {
    setWindowTitle(QStringLiteral("Vistrel Update"));
    setObjectName(QStringLiteral("updateProgress"));
    setAccessibleName(QStringLiteral("Vistrel Update"));
    setMinimumWidth(UpdateDialogStyle::textWidth + 2 * UpdateDialogStyle::margin);
    activity->setFont(UpdateDialogStyle::heading(activity->font()));
    activity->setObjectName(QStringLiteral("updateActivity"));
    bar->setObjectName(QStringLiteral("updateProgressBar"));
    bar->setAccessibleName(QStringLiteral("Progress"));
    bar->setTextVisible(false);
    // Return belongs to nobody here: a download is not stopped in passing.
    cancelButton->setAutoDefault(false);
    cancelButton->setObjectName(QStringLiteral("updateCancel"));
    connect(cancelButton, &QPushButton::clicked, this, &UpdateProgressDialog::reject);

    auto* below = new QHBoxLayout;
    below->addWidget(amount, 1);
    below->addWidget(cancelButton);
    auto* layout = new QVBoxLayout(this);
    UpdateDialogStyle::apply(*layout);
    layout->addWidget(activity);
    layout->addWidget(bar);
    layout->addLayout(below);
}

void UpdateProgressDialog::showActivity(const QString& text, std::function<void()> cancel) {
    activity->setText(text);
    setAccessibleDescription(text);
    amount->clear();
    bar->setRange(0, 0);
    onCancel = std::move(cancel);
    cancelButton->setEnabled(static_cast<bool>(onCancel));
}

void UpdateProgressDialog::setProgress(qint64 received, qint64 total) {
    constexpr int steps = 1000;
    const QLocale locale;
    if (total <= 0) {
        amount->setText(locale.formattedDataSize(received));
        return;
    }
    bar->setRange(0, steps);
    bar->setValue(static_cast<int>(received * steps / total));
    amount->setText(
        QStringLiteral("%1 of %2").arg(locale.formattedDataSize(received), locale.formattedDataSize(total)));
}

void UpdateProgressDialog::reject() {
    // What cannot be stopped is not left alone either.
    if (!cancelButton->isEnabled())
        return;
    const auto cancel = std::move(onCancel);
    onCancel = nullptr;
    QDialog::reject();
    if (cancel)
        cancel();
}
