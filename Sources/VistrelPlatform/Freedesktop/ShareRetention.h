#pragma once

#include "VistrelPlatform/Freedesktop/SharePictureFile.h"
#include "VistrelPlatform/Freedesktop/ShareProcess.h"

#include <QObject>

#include <chrono>
#include <map>

/// Keeps shared pictures on disk as long as the programs that got them may read them. Main thread. What is
/// still held at the end of the process stays until the next launch.
class ShareRetention : public QObject {
public:
    struct Times {
        /// A program that ends sooner has handed the picture to another that goes on.
        std::chrono::milliseconds handOver = std::chrono::seconds(30);
        /// How long such a picture, or one that a mail still refers to, is kept.
        std::chrono::milliseconds unknownReader = std::chrono::hours(24);
    };

    explicit ShareRetention(QObject* parent = nullptr) : ShareRetention(Times(), parent) {}
    explicit ShareRetention(Times retentionTimes, QObject* parent = nullptr);
    ~ShareRetention() override;

    /// For a reader that cannot be watched.
    void keep(std::shared_ptr<SharePictureFile> file);
    /// Until `process` has ended, which may already be watched; its `onExit` is taken over.
    void keepWhileRunning(std::shared_ptr<SharePictureFile> file, std::unique_ptr<ShareProcess> process);

private:
    struct Held {
        std::shared_ptr<SharePictureFile> file;
        std::unique_ptr<ShareProcess> process;
    };

    void processEnded(int key);

    Times times;
    std::map<int, Held> held;
    int nextKey = 0;
};
