#pragma once

#include "Settings/Windows/PageView.h"

class UpdateService;

/// The Updates page.
class UpdateSettingsView : public PageView {
    Q_OBJECT
public:
    explicit UpdateSettingsView(UpdateService& updates, QWidget* parent = nullptr);
};
