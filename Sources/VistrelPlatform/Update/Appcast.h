#pragma once

#include "VistrelPlatform/Result.h"
#include "VistrelPlatform/Update/AppcastItem.h"

#include <vector>

/// The update feed: RSS with the usual version attributes in the `sparkle` prefix. Any thread.
namespace Appcast {

/// No feed is larger.
inline constexpr qint64 maximumSize = 1024LL * 1024;

/// The items that this system could use. Left out are items of a named channel or another operating
/// system and items without version, size, signature or an https archive. A feed with a document type is
/// refused, so nothing in it can be expanded.
Result<std::vector<AppcastItem>> parse(const QByteArray& feed);

struct Wanted {
    UpdateVersion newerThan;
    std::optional<UpdateVersion> systemVersion;
    /// A version the user does not want to hear of.
    std::optional<UpdateVersion> skipped;
};

/// The highest version that fits.
std::optional<AppcastItem> best(const std::vector<AppcastItem>& items, const Wanted& wanted);

} // namespace Appcast
