#pragma once

#include <QCoreApplication>

#include <chrono>
#include <thread>

/// Longest time a test waits for something that normally takes milliseconds.
inline constexpr std::chrono::seconds patience{30};

/// Polls until `condition` holds; false when `deadline` has passed. Qt events are handled meanwhile where
/// there is an application object.
template<class Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds deadline = patience) {
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        if (QCoreApplication::instance())
            QCoreApplication::processEvents();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}
