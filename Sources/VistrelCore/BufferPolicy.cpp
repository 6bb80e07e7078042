#include "VistrelCore/BufferPolicy.h"

#include "VistrelCore/CheckedArithmetic.h"

#include <algorithm>

std::optional<BufferPolicy> BufferPolicy::fitting(const Request& request) {
    using CheckedArithmetic::product;
    using CheckedArithmetic::sum;
    constexpr std::int64_t rowAlignment = 64;
    constexpr std::int64_t fewestSlots = 3;
    constexpr std::int64_t lowestFPS = 10;
    constexpr std::int64_t highestFPS = 60;
    constexpr std::int64_t historiesPerSecond = std::chrono::seconds(1) / history;
    constexpr std::int64_t framesInFlight = streamQueueDepth + 1;

    if (request.width < 1 || request.height < 1 || request.displayCount < 1)
        return std::nullopt;
    const std::int64_t rowBytes = sum(request.width, rowAlignment - 1) & ~(rowAlignment - 1);
    const std::int64_t frameBytes =
        sum(product(rowBytes, request.height), product(rowBytes, sum(request.height, 1) / 2));
    const std::int64_t slots = request.totalBudget / request.displayCount / frameBytes - framesInFlight;
    if (slots < fewestSlots)
        return std::nullopt;
    const std::int64_t budgetFPS = product(slots - 1, historiesPerSecond);
    // Tested before the rate is capped.
    const std::int64_t candidate = std::min(std::max<std::int64_t>(request.maximumFPS, 1), budgetFPS);
    if (candidate < lowestFPS)
        return std::nullopt;

    BufferPolicy policy;
    policy.framesPerSecond = std::min(candidate, highestFPS);
    policy.maximumFrames = (policy.framesPerSecond + historiesPerSecond - 1) / historiesPerSecond + 1;
    policy.estimatedBytes = product(policy.maximumFrames + framesInFlight, frameBytes);
    return policy;
}
