#pragma once

#include "VistrelPlatform/Update/Updater.h"

#include <chrono>
#include <functional>
#include <memory>

/// Looks once whether the update feed can be read and what it offers, with no window. Main thread.
class UpdateProbe : public UpdaterDelegate {
public:
    struct Options {
        std::chrono::milliseconds deadline = std::chrono::seconds(30);
        /// Take lines without their end. Standard output and standard error when empty.
        std::function<void(const QString&)> print;
        std::function<void(const QString&)> printError;
    };

    /// `store` is borrowed.
    UpdateProbe(UpdaterConfiguration whatToUpdate, UserDefaults& store)
        : UpdateProbe(std::move(whatToUpdate), store, Options()) {}
    UpdateProbe(UpdaterConfiguration whatToUpdate, UserDefaults& store, Options probeOptions);

    /// Runs the event loop until the outcome is printed; returns the process status.
    int run();

    void didFindValidUpdate(const AppcastItem& item) override;
    void didFinishUpdateCycle(const std::optional<Error>& error) override;

private:
    void fail(const Error& error);

    Options options;
    Updater controller;
    bool finished = false;
    int status = 0;
};
