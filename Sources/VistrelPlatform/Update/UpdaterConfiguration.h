#pragma once

#include "VistrelPlatform/NetworkServices.h"

#include <QString>

#include <chrono>

/// What the updater has to know about the program it updates. A value.
struct UpdaterConfiguration {
    /// False for a program that runs from its build tree: nothing can be updated then.
    bool installed = false;
    QString feedAddress;
    /// Base64 of the Ed25519 key that archives are signed with; empty when the build has none.
    QString publicKey;
    QString version;
    /// Compared with an item's minimum; one that is no version admits every item.
    QString systemVersion;
    /// The running program, and the AppImage it came from, if any.
    QString executable;
    QString appImage;
    /// Where downloads are kept until they are installed.
    QString downloadFolder;

    std::chrono::milliseconds checkInterval = std::chrono::hours(24);
    /// Each check is put off by a random part of this, so that not everybody comes at once.
    std::chrono::milliseconds checkJitter = std::chrono::hours(1);
    /// No check comes by itself so soon after the launch, nor again so soon after one was put off.
    std::chrono::milliseconds quietTime = std::chrono::minutes(2);

    /// Asked for at the first check.
    NetworkSource network;
    /// Certificates (PEM) trusted instead of the system's; only for servers that a test runs itself.
    QByteArray testAuthorities;

    /// Of the running program, from its information file and environment.
    static UpdaterConfiguration ofRunningProgram(NetworkSource network);
};
