#include "Capture/CapturePresentationTiming.h"

#include <QStringList>

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

    QStringList names() const {
        QStringList list;
        for (const CaptureTiming::Phase& phase : timing->phases())
            list.append(phase.name);
        return list;
    }
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

TEST_F(CapturePresentationTimingTests, everyPhaseIsRecordedOnce) {
    tracker->eventLoopResumed();
    observe(true, false);
    observe(true, false);
    observe(true, true);
    EXPECT_EQ(names(), (QStringList{u"overlay_event_loop_resumed"_s, u"application_active_confirmed"_s,
                                    u"canvas_focus_confirmed"_s, u"overlay_key_confirmed"_s,
                                    u"selection_input_ready"_s}));
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
    EXPECT_TRUE(completions.empty() && names().isEmpty());
}

} // namespace
