#pragma once

#include <QString>

#include <functional>
#include <memory>

class QMessageBox;

/// Tells that the login item could not be changed, and why. It blocks nothing: a capture may come and go
/// while it waits for its answer. Main thread.
class LoginItemAlert {
public:
    LoginItemAlert();
    ~LoginItemAlert();

    /// `openLoginItems` is called when the user wants to see the desktop's page; takes the place of an alert
    /// that is still there.
    void ask(const QString& description, std::function<void()> openLoginItems);

private:
    std::unique_ptr<QMessageBox> box;
};
