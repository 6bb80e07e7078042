#pragma once

#include "Diagnostics/LocalDiagnostics.h"
#include "VistrelPlatform/Result.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QUuid>

#include <map>
#include <optional>
#include <vector>

/// What the user sends on purpose: the comment, recent events and facts about program and machine. A
/// value; never pictures, typed text, paths or anything that names the user.
struct ProblemReport {
    struct Environment {
        QString version;
        QString macOS; // the operating system's version
        QString architecture;
        std::optional<QString> hardwareModel;
        bool translated = false;
        bool screenAccess = false;
        int displayCount = 0;
        int panelPercent = 0;
        bool reduceRetina = false;
        QString saveFormat;
        bool journalEnabled = false;
        bool journalWriteFailed = false;

        friend bool operator==(const Environment&, const Environment&) = default;
    };

    /// Reserved: part of the document, not filled by this program.
    struct CrashSummary {
        struct Frame {
            qint64 imageIndex = 0;
            qint64 imageOffset = 0;

            friend bool operator==(const Frame&, const Frame&) = default;
        };
        struct Image {
            qint64 index = 0;
            QUuid uuid;

            friend bool operator==(const Image&, const Image&) = default;
        };
        std::optional<QString> exception;
        std::optional<QString> signal;
        std::optional<QString> terminationNamespace;
        std::optional<qint64> terminationCode;
        std::optional<qint64> faultingThread;
        std::vector<Frame> frames;
        std::vector<Image> images;

        friend bool operator==(const CrashSummary&, const CrashSummary&) = default;
    };

    int schema = 2;
    QUuid reportID;
    QUuid installationID;
    QDateTime createdAt;
    QString comment;
    std::optional<Environment> environment;
    std::vector<LocalDiagnostics::Event> events; // oldest first
    std::map<QString, int> counts;               // events by the name of their action
    std::optional<CrashSummary> crash;

    friend bool operator==(const ProblemReport&, const ProblemReport&) = default;

    static std::map<QString, int> countsOf(const std::vector<LocalDiagnostics::Event>& events);

    /// One JSON object without indentation, keys sorted at every level, absent values left out. Fails
    /// when an event's duration is no number.
    Result<QByteArray> encoded() const;
};
