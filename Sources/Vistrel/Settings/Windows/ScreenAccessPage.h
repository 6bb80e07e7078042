#pragma once

#include "Settings/Windows/PageView.h"

#include <functional>

class AppController;
class LinkButton;

/// The setup's first step: asks for the permission to read the screen.
class ScreenAccessPage : public PageView {
    Q_OBJECT
public:
    ScreenAccessPage(AppController& owner, std::function<void()> showPrivacy, QWidget* parent = nullptr);

private:
    void addPrivacyRow(std::function<void()> showPrivacy);
    void openSystemSettings();
    void refresh();

    AppController& controller;
    QWidget* grantedRow = nullptr;
    TextLabel* instructions = nullptr;
    LinkButton* systemSettings = nullptr;
};
