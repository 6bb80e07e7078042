#pragma once

#include "VistrelPlatform/Freedesktop/ShareProcess.h"

#include <QTimer>

#include <memory>

/// Finds out whether a program that GIO launched really runs: GIO starts a helper that turns into the
/// program, and the helper alone proves nothing. Main thread.
class ShareStart : public QObject {
public:
    ShareStart(std::unique_ptr<ShareProcess> launched, QObject* parent);

    /// Called once. False when the program ended with an error before it was seen running.
    std::function<void(bool started)> onDecided;
    /// The program if it runs; null when it has ended, as one does that hands over to its running instance.
    std::unique_ptr<ShareProcess> takeProcess() { return std::move(process); }

private:
    void look();
    void decide(bool started);

    std::unique_ptr<ShareProcess> process;
    QTimer poll;
};
