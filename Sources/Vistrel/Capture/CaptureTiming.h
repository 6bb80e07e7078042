#pragma once

#include "VistrelPlatform/CaptureTime.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

/// One capture's measurement: named phases in the order they were recorded. Main thread; shared by
/// everyone who records into it. All values in milliseconds from `start`.
class CaptureTiming {
public:
    using Instant = CaptureTime::Instant;

    struct Phase {
        QString name;
        std::optional<std::uint32_t> displayID;
        double offsetMS = 0;
        double durationMS = 0;
        std::optional<int> width;
        std::optional<int> height;

        friend bool operator==(const Phase&, const Phase&) = default;
    };

    struct Report {
        QString source;
        std::vector<Phase> phases;
        double totalMS = 0;
        std::optional<QString> error;
        QString boundary;

        friend bool operator==(const Report&, const Report&) = default;
    };

    /// What a phase may carry beside its name.
    struct PhaseOptions {
        std::optional<std::uint32_t> displayID = std::nullopt;
        /// Taken just before the work the phase measures; without it the duration is 0.
        std::optional<Instant> since = std::nullopt;
        std::optional<int> width = std::nullopt;
        std::optional<int> height = std::nullopt;
    };

    /// `source` is "hotkey", "menu_bar" or "terminal_benchmark".
    CaptureTiming(Instant start, QString source);

    Instant start() const { return startInstant; }
    const QString& source() const { return sourceName; }
    const std::vector<Phase>& phases() const { return recorded; }

    void recordPhase(const QString& name, const PhaseOptions& options);
    void recordPhase(const QString& name) { recordPhase(name, PhaseOptions{}); }
    /// A report the first time, nothing afterwards.
    std::optional<Report> finish(const std::optional<QString>& error);

    /// Called with every phase right after it was appended.
    std::function<void(const Phase&)> onPhase;

    /// Indented JSON with sorted keys; absent values have no key.
    static QByteArray encode(const Report& report);
    /// Several reports as one JSON array, written the same way.
    static QByteArray encode(const std::vector<Report>& reports);
    /// Nothing for anything that `encode` of one report could not have written.
    static std::optional<Report> decode(const QByteArray& bytes);
    /// "Vistrel/last-capture-timing.json" in the user's data folder.
    static QString reportPath();
    /// Replaces the last report on disk. A failure is logged and otherwise ignored.
    static void save(const Report& report);

private:
    Instant startInstant;
    QString sourceName;
    std::vector<Phase> recorded;
    bool finished = false;
};
