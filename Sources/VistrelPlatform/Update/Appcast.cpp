#include "VistrelPlatform/Update/Appcast.h"

#include "VistrelPlatform/Update/AppcastReader.h"
#include "VistrelPlatform/Update/UpdateError.h"

Result<std::vector<AppcastItem>> Appcast::parse(const QByteArray& feed) {
    if (feed.size() > maximumSize)
        return tl::unexpected(
            UpdateError::make(UpdateError::invalidFeed, QStringLiteral("The update feed is too large.")));
    return AppcastReader(feed).read();
}

std::optional<AppcastItem> Appcast::best(const std::vector<AppcastItem>& items, const Wanted& wanted) {
    std::optional<AppcastItem> found;
    for (const AppcastItem& item : items) {
        const bool runsHere = !item.minimumSystemVersion || !wanted.systemVersion ||
                              *item.minimumSystemVersion <= *wanted.systemVersion;
        const bool unwanted = wanted.skipped && item.version == *wanted.skipped;
        if (runsHere && !unwanted && item.version > wanted.newerThan &&
            (!found || item.version > found->version))
            found = item;
    }
    return found;
}
