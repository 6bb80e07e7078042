#include "Capture/CapturePresentationTiming.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class CapturePresentationTimingTests : public ::testing::Test {
protected:
    std::shared_ptr<CaptureTiming> timing = std::make_shared<CaptureTiming>(CaptureTime::now(), u"hotkey"_s);
    std::vector<std::optional<QString>> completions;
    CapturePresentationTiming tracker{
        timing, [this](const std::optional<QString>& error) { completions.push_back(error); }};

    QStringList names() const {
        QStringList list;
        for (const CaptureTiming::Phase& phase : timing->phases())
            list.append(phase.name);
        return list;
    }
    void observe(bool active, bool key, bool focused) {
        tracker.observeFocus({.applicationActive = active, .windowKey = key, .canvasFocused = focused});
    }
};

TEST_F(CapturePresentationTimingTests, drawingAndFocusCompleteOnceInEitherOrder) {
    tracker.eventLoopResumed();
    EXPECT_TRUE(completions.empty());
    observe(true, false, true);
    observe(true, true, true);
    observe(true, true, true);
    tracker.expire();
    EXPECT_EQ(completions, std::vector<std::optional<QString>>{std::nullopt});
    EXPECT_EQ(names(), (QStringList{u"overlay_event_loop_resumed"_s, u"application_active_confirmed"_s,
                                    u"canvas_focus_confirmed"_s, u"overlay_key_confirmed"_s,
                                    u"selection_input_ready"_s}));
}

TEST_F(CapturePresentationTimingTests, lostFocusWithdrawsReadiness) {
    observe(true, true, true);
    observe(false, true, true);
    tracker.eventLoopResumed();
    EXPECT_TRUE(completions.empty());
    observe(true, true, true);
    EXPECT_EQ(completions, std::vector<std::optional<QString>>{std::nullopt});
}

TEST_F(CapturePresentationTimingTests, twoSecondsWithoutBothAreAnError) {
    observe(true, true, true);
    tracker.expire();
    tracker.eventLoopResumed();
    EXPECT_EQ(completions,
              std::vector<std::optional<QString>>{
                  u"Capture drawing and keyboard focus were not both confirmed within two seconds of overlay "
                  "presentation."_s});
}

TEST_F(CapturePresentationTimingTests, anAbandonedPresentationSaysNothing) {
    tracker.abandon();
    observe(true, true, true);
    tracker.eventLoopResumed();
    tracker.expire();
    EXPECT_TRUE(completions.empty());
    EXPECT_TRUE(names().isEmpty());
}

TEST(CapturePresentationTimingLifetimeTests, theCompletionMayDestroyTheTracker) {
    const auto timing = std::make_shared<CaptureTiming>(CaptureTime::now(), u"hotkey"_s);
    std::unique_ptr<CapturePresentationTiming> tracker;
    const auto renew = [&] {
        tracker = std::make_unique<CapturePresentationTiming>(
            timing, [&](const std::optional<QString>&) { tracker.reset(); });
    };
    renew();
    tracker->eventLoopResumed();
    tracker->observeFocus({.applicationActive = true, .windowKey = true, .canvasFocused = true});
    EXPECT_FALSE(tracker);
    renew();
    tracker->expire();
    EXPECT_FALSE(tracker);
}

} // namespace
