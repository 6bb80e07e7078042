#pragma once

#include <functional>

/// How the session answers whether the screen may be read, and how it is asked. Main thread.
struct ScreenAccessRequest {
    /// Without asking anybody.
    std::function<bool()> isGranted;
    /// Shows the desktop's own question and calls back with its answer, once, possibly at once. Empty
    /// where the desktop has no such question.
    std::function<void(std::function<void(bool)>)> prompt;
};
