#pragma once

/// Where the first-run setup stands.
struct OnboardingFlow {
    enum class Step { screenAccess, shortcut };
    Step step = Step::screenAccess;

    friend bool operator==(const OnboardingFlow&, const OnboardingFlow&) = default;
};
