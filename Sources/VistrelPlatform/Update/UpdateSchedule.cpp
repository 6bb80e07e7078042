#include "VistrelPlatform/Update/UpdateSchedule.h"

namespace {

const QString automaticKey = QStringLiteral("SUEnableAutomaticChecks");
const QString lastCheckKey = QStringLiteral("SULastCheckTime");
const QString skippedKey = QStringLiteral("SUSkippedVersion");

} // namespace

bool UpdateSchedule::automaticallyChecks() const {
    return defaults.boolean(automaticKey).value_or(true);
}

void UpdateSchedule::setAutomaticallyChecks(bool checks) {
    defaults.setBoolean(automaticKey, checks);
}

std::optional<UpdateVersion> UpdateSchedule::skippedVersion() const {
    return UpdateVersion::parse(defaults.string(skippedKey).value_or(QString()));
}

void UpdateSchedule::skip(const UpdateVersion& version) {
    defaults.setString(skippedKey, version.text());
}

void UpdateSchedule::noteCheck(const QDateTime& now) {
    defaults.setNumber(lastCheckKey, static_cast<double>(now.toSecsSinceEpoch()));
}

std::chrono::milliseconds UpdateSchedule::delay(const QDateTime& now, std::chrono::milliseconds interval) {
    const std::optional<double> last = defaults.number(lastCheckKey);
    const double seconds = static_cast<double>(now.toSecsSinceEpoch());
    // A time that lies ahead comes from a clock that has been put back since.
    if (!last || *last > seconds) {
        noteCheck(now);
        return interval;
    }
    const double elapsed = (seconds - *last) * 1000;
    const double whole = static_cast<double>(interval.count());
    return std::chrono::milliseconds(static_cast<std::int64_t>(std::max(0.0, whole - elapsed)));
}
