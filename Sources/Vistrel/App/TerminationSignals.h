#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <array>
#include <memory>

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main thread's event loop, so that the program
/// ends in order. One object per process; the signals' earlier handling comes back at its end.
class TerminationSignals : public QObject {
    Q_OBJECT
public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

Q_SIGNALS:
    void received();

private:
    void drain();

    std::array<int, 2> pipe{-1, -1};
    std::unique_ptr<QSocketNotifier> notifier;
};
