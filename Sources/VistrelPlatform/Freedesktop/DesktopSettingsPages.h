#pragma once

#include "VistrelPlatform/Freedesktop/DesktopName.h"
#include "VistrelPlatform/SettingsPages.h"

#include <QStringList>

#include <vector>

/// Starts the running desktop's settings program with its page. Main thread.
class DesktopSettingsPages : public SettingsPages {
public:
    DesktopSettingsPages();
    explicit DesktopSettingsPages(Desktop running);

    bool has(SettingsPage page) const override;
    bool open(SettingsPage page) override;

private:
    /// Of the installed programs, with their arguments, best first.
    std::vector<QStringList> commands(SettingsPage page) const;

    Desktop desktop;
};
