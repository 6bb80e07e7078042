#pragma once

#include "Capture/CaptureMethod.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <variant>

/// What the arguments ask for. Pure; decided from the whole list, the program's own path included.
namespace CommandLineMode {

struct CheckUpdateFeed {
    friend bool operator==(const CheckUpdateFeed&, const CheckUpdateFeed&) = default;
};
struct BenchmarkCapture {
    int runs = 3;
    CaptureMethod method = CaptureMethod::automatic;

    friend bool operator==(const BenchmarkCapture&, const BenchmarkCapture&) = default;
};
struct LastCaptureTiming {
    friend bool operator==(const LastCaptureTiming&, const LastCaptureTiming&) = default;
};
struct ExportIconset {
    QString directory;

    friend bool operator==(const ExportIconset&, const ExportIconset&) = default;
};
struct ProfileBuffer {
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::int64_t displays = 0;
    std::int64_t maximumFPS = 0;

    friend bool operator==(const ProfileBuffer&, const ProfileBuffer&) = default;
};
struct EnableLaunchAtLogin {
    friend bool operator==(const EnableLaunchAtLogin&, const EnableLaunchAtLogin&) = default;
};
struct PrintDiagnostics {
    friend bool operator==(const PrintDiagnostics&, const PrintDiagnostics&) = default;
};
/// Captures in the running program, or starts it and captures.
struct Capture {
    friend bool operator==(const Capture&, const Capture&) = default;
};
/// No mode at all: the resident program.
struct Resident {
    friend bool operator==(const Resident&, const Resident&) = default;
};
/// A mode that was asked for with values it cannot take.
struct UsageError {
    /// Without its newline; goes to standard error.
    QString text;
    int status = 1;

    friend bool operator==(const UsageError&, const UsageError&) = default;
};

using Mode = std::variant<CheckUpdateFeed, BenchmarkCapture, LastCaptureTiming, ExportIconset, ProfileBuffer,
                          EnableLaunchAtLogin, PrintDiagnostics, Capture, Resident, UsageError>;

/// The first mode, in a fixed order, that the list asks for. Unknown arguments are ignored.
Mode parse(const QStringList& arguments);

} // namespace CommandLineMode
