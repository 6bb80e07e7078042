#pragma once

#include "VistrelPlatform/Update/UpdateVersion.h"
#include "VistrelPlatform/UserDefaults.h"

#include <QDateTime>

#include <chrono>

/// What the user chose about update checks and when the last one was. Main thread; `defaults` is borrowed.
class UpdateSchedule {
public:
    explicit UpdateSchedule(UserDefaults& store) : defaults(store) {}

    /// On until the user switches it off.
    bool automaticallyChecks() const;
    void setAutomaticallyChecks(bool checks);

    std::optional<UpdateVersion> skippedVersion() const;
    void skip(const UpdateVersion& version);

    void noteCheck(const QDateTime& now);
    /// How long until the next check. The first one of a new installation comes a whole interval after its
    /// first start, so that there is time to switch checks off.
    std::chrono::milliseconds delay(const QDateTime& now, std::chrono::milliseconds interval);

private:
    UserDefaults& defaults;
};
