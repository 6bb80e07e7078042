#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// Where a command-line mode writes. Any thread, one writer at a time.
struct Console {
    std::function<void(const QByteArray&)> output;
    std::function<void(const QByteArray&)> error;

    void printLine(const QString& line) const;
    void printErrorLine(const QString& line) const;

    /// The process's own streams, flushed with every write.
    static Console standard();
};
