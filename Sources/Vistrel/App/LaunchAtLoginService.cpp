#include "App/LaunchAtLoginService.h"

LaunchAtLoginService::LaunchAtLoginService(UserDefaults& store, LoginItem& loginItem, QString key)
    : defaults(store), item(loginItem), flag(std::move(key)) {}

bool LaunchAtLoginService::isEnrolled() const {
    const LoginItemStatus now = item.status();
    return now == LoginItemStatus::enabled || now == LoginItemStatus::requiresApproval;
}

Result<void> LaunchAtLoginService::configureDefault() {
    if (defaults.boolean(flag).value_or(false))
        return {};
    return setEnabled(true);
}

Result<void> LaunchAtLoginService::setEnabled(bool enabled) {
    if (enabled != isEnrolled()) {
        if (Result<void> changed = enabled ? item.enroll() : item.withdraw(); !changed)
            return changed;
    }
    defaults.setBoolean(flag, true);
    return {};
}

Result<void> LaunchAtLoginService::toggle() {
    return setEnabled(!isEnrolled());
}
