#pragma once

#include <QString>

#include <functional>

/// Something that the user is told without having asked for it.
struct Notice {
    QString text;
    QString details;
    /// What may be done about it, and what does it; nothing when empty.
    QString choice{};
    std::function<void()> onChoice{};
};
