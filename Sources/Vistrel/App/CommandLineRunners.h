#pragma once

#include "App/CommandLineMode.h"
#include "App/Console.h"
#include "Shortcuts/ScreenshotShortcut.h"
#include "VistrelPlatform/LoginItem.h"
#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/Screen.h"

#include <functional>
#include <vector>

class LaunchAtLoginService;

/// The bodies of the command-line modes. Each returns the exit status of the process.
namespace CommandLineRunners {

int reportUsage(const CommandLineMode::UsageError& error, const Console& console);
/// Writes the file's bytes as they are, then an empty line.
int printLastCaptureTiming(const QString& path, const Console& console);
int exportIconset(const CommandLineMode::ExportIconset& mode, const Console& console);
int profileBuffer(const CommandLineMode::ProfileBuffer& mode, const Console& console);
int enableLaunchAtLogin(LaunchAtLoginService& service, const Console& console);

struct Diagnosis {
    LoginItemStatus loginItem = LoginItemStatus::notRegistered;
    bool screenCaptureGranted = false;
    std::vector<Screen> screens;
    /// Fails when the desktop's shortcuts cannot be read.
    std::function<Result<bool>(const ScreenshotShortcut&)> conflictsWithSystem;
};
int printDiagnostics(const Diagnosis& diagnosis, const Console& console);

} // namespace CommandLineRunners
