#pragma once

#include <QString>

#include <optional>

/// What a problem report tells about the machine. A value, read on any thread.
struct MachineFacts {
    /// Three decimal numbers joined by points: the distribution's, or the kernel's where it has none.
    QString systemVersion;
    /// The processor the program was built for ("x86_64", "arm64").
    QString architecture;
    /// The maker's name for the machine, at most 127 bytes; absent where the firmware tells none.
    std::optional<QString> productName;
    /// The kernel runs on a processor of another kind than the program was built for.
    bool translated = false;

    static MachineFacts current();

    /// The first three numbers of a text that starts with one, missing ones as 0.
    static std::optional<QString> versionTriple(const QString& text);
    static std::optional<QString> productNameIn(const QString& file);
    /// Whether a program built for one architecture is translated on a kernel of the other.
    static bool isTranslated(const QString& built, const QString& kernel);
};
