#include "Capture/CapturePresentationTiming.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class CapturePresentationTimingTests : public ::testing::Test {
protected:
    using Completions = std::vector<std::optional<QString>>;

    std::shared_ptr<CaptureTiming> timing = std::make_shared<CaptureTiming>(CaptureTime::now(), u"hotkey"_s);
    Completions completions;
    /// It goes with its completion, as the coordinator lets it go.
    std::unique_ptr<CapturePresentationTiming> tracker =
        std::make_unique<CapturePresentationTiming>(timing, [this](const std::optional<QString>& error) {
            completions.push_back(error);
            tracker.reset();
        });

    void observe(bool active, bool key) {
        tracker->observeFocus({.applicationActive = active, .windowKey = key, .canvasFocused = true});
    }
};

TEST_F(CapturePresentationTimingTests, drawingAndFocusCompleteTogetherAndLostFocusWithdrawsReadiness) {
    observe(true, true);
    observe(false, true);
    tracker->eventLoopResumed();
    EXPECT_TRUE(completions.empty());
    observe(true, true);
    EXPECT_EQ(completions, Completions{std::nullopt});
}

TEST_F(CapturePresentationTimingTests, twoSecondsWithoutBothAreAnError) {
    observe(true, true);
    tracker->expire();
    EXPECT_EQ(completions, Completions{u"Capture drawing and keyboard focus were not both confirmed within "
                                       "two seconds of overlay presentation."_s});
}

TEST_F(CapturePresentationTimingTests, anAbandonedPresentationSaysNothing) {
    tracker->abandon();
    observe(true, true);
    tracker->eventLoopResumed();
    tracker->expire();
    EXPECT_TRUE(completions.empty() && timing->phases().empty());
}

} // namespace
