#include "VistrelPlatform/Freedesktop/ShareRetention.h"

#include <QTimer>

ShareRetention::ShareRetention(Times retentionTimes, QObject* parent)
    : QObject(parent), times(retentionTimes) {}

ShareRetention::~ShareRetention() {
    for (auto& [key, entry] : held)
        entry.file->keepUntilNextLaunch();
}

void ShareRetention::keep(std::shared_ptr<SharePictureFile> file) {
    const int key = nextKey++;
    held[key] = {std::move(file), nullptr};
    QTimer::singleShot(times.unknownReader, Qt::VeryCoarseTimer, this, [this, key] { held.erase(key); });
}

void ShareRetention::keepWhileRunning(std::shared_ptr<SharePictureFile> file,
                                      std::unique_ptr<ShareProcess> process) {
    const int key = nextKey++;
    process->onExit = [this, key](int) { processEnded(key); };
    held[key] = {std::move(file), std::move(process)};
}

void ShareRetention::processEnded(int key) {
    const auto entry = held.find(key);
    if (entry == held.end())
        return;
    Held ended = std::move(entry->second);
    held.erase(entry);
    const bool handedOver = ended.process->age() < times.handOver;
    // The process is reporting its end at this moment.
    ended.process.release()->deleteLater();
    if (handedOver)
        keep(std::move(ended.file));
}
