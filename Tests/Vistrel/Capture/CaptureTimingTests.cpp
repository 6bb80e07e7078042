#include "Capture/CaptureTiming.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using std::chrono::milliseconds;

const CaptureTiming::Report sample{
    .source = u"hotkey"_s,
    .phases = {{u"hotkey_handler_entered"_s, {}, 0.1, 0, {}, {}},
               {u"display_image_available"_s, 4294967295U, 12.345678, 8.5, 3840, 2160}},
    .totalMS = 33.00000000000001,
    .error = std::nullopt,
    .boundary = u"x"_s,
};

TEST(CaptureTimingTests, onlyTheFirstFinishReports) {
    CaptureTiming timing(CaptureTime::now() - milliseconds(40), u"menu_bar"_s);
    timing.recordPhase(u"permission_check"_s, {.since = CaptureTime::now() - milliseconds(20)});
    EXPECT_GE(timing.phases().front().offsetMS, 40);
    EXPECT_GE(timing.phases().front().durationMS, 20);
    EXPECT_LT(timing.phases().front().durationMS, timing.phases().front().offsetMS);
    const std::optional<CaptureTiming::Report> report = timing.finish(u"why"_s);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->phases, timing.phases());
    EXPECT_EQ(report->error, u"why"_s);
    EXPECT_GE(report->totalMS, 40);
    timing.recordPhase(u"late"_s);
    EXPECT_EQ(timing.finish(std::nullopt), std::nullopt);
}

TEST(CaptureTimingTests, theReportIsIndentedJSONWithSortedKeysAndExactNumbers) {
    EXPECT_EQ(CaptureTiming::encode(sample).toStdString(), R"({
    "boundary": "x",
    "phases": [
        {
            "durationMS": 0,
            "name": "hotkey_handler_entered",
            "offsetMS": 0.1
        },
        {
            "displayID": 4294967295,
            "durationMS": 8.5,
            "height": 2160,
            "name": "display_image_available",
            "offsetMS": 12.345678,
            "width": 3840
        }
    ],
    "source": "hotkey",
    "totalMS": 33.00000000000001
}
)");
}

TEST(CaptureTimingTests, aReportIsReadAsItWasWrittenOrNotAtAll) {
    CaptureTiming::Report failed = sample;
    failed.error = u"No display"_s;
    for (const CaptureTiming::Report& report : {sample, failed})
        EXPECT_EQ(CaptureTiming::decode(CaptureTiming::encode(report)), report);
    const QByteArray whole = CaptureTiming::encode(sample);
    for (const char* key : {"source", "phases", "totalMS", "boundary", "name", "offsetMS", "durationMS"}) {
        const QByteArray bytes = QByteArray(whole).replace("\"" + QByteArray(key) + "\"", "\"other\"");
        EXPECT_EQ(CaptureTiming::decode(bytes), std::nullopt) << key;
    }
    for (const char* value : {"-1", "4294967296", "1.5", "\"7\""})
        EXPECT_EQ(CaptureTiming::decode(QByteArray(whole).replace("4294967295", value)), std::nullopt)
            << value;
}

} // namespace
