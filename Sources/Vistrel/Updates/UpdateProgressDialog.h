#pragma once

#include <QDialog>

#include <functional>

class QLabel;
class QProgressBar;
class QPushButton;

/// Says what the updater is doing and lets the user stop it where that is possible. Main thread.
class UpdateProgressDialog : public QDialog {
    Q_OBJECT
public:
    explicit UpdateProgressDialog(QWidget* parent = nullptr);

    /// An activity of unknown length; an empty `cancel` means that it cannot be stopped.
    void showActivity(const QString& text, std::function<void()> cancel);
    /// Bytes; a negative total is unknown.
    void setProgress(qint64 received, qint64 total);
    void reject() override;

private:
    QLabel* activity;
    QProgressBar* bar;
    QLabel* amount;
    QPushButton* cancelButton;
    std::function<void()> onCancel;
};
