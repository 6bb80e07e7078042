#pragma once

#include "VistrelPlatform/Freedesktop/DesktopName.h"
#include "VistrelPlatform/SettingsPages.h"

/// Starts the running desktop's settings program with its page. Main thread.
class DesktopSettingsPages : public SettingsPages {
public:
    DesktopSettingsPages();
    explicit DesktopSettingsPages(Desktop running);

    bool open(SettingsPage page) override;

private:
    Desktop desktop;
};
