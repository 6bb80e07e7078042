#include "Capture/CaptureError.h"
#include "Capture/CapturePixelSize.h"
#include "Capture/OnDemandScreenshotService.h"
#include "Support/EmptyDefaults.h"

#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <map>

namespace {

/// Displays whose pictures have the asked-for size, unless told to misbehave.
class FakeCapturer : public ScreenCapturer {
public:
    struct Filter : DisplayFilter {
        Filter(FakeCapturer& fakeCapturer, std::uint32_t display) : capturer(fakeCapturer), id(display) {}
        Result<CapturedImage> capture(PixelSize size) override { return capturer.picture(id, size); }
        FakeCapturer& capturer;
        std::uint32_t id;
    };

    bool hasPermission() const override { return true; }
    bool supportsDirect() const override { return direct; }
    Result<std::shared_ptr<DisplayFilter>> prepare(std::uint32_t id) override {
        ++preparations;
        return std::make_shared<Filter>(*this, id);
    }
    Result<CapturedImage> captureDirect(std::uint32_t id, PixelSize size) override {
        return picture(id, size);
    }
    Result<CapturedImage> picture(std::uint32_t id, PixelSize size) {
        if (held)
            held->acquire();
        if (failing == id)
            return tl::unexpected(
                Error{ErrorDomain::windowSystem, 8, QStringLiteral("The display is gone.")});
        const QImage image(size.width + growth, size.height, QImage::Format_RGB32);
        return CapturedImage{image, image, nullptr};
    }

    std::atomic<int> preparations = 0;
    bool direct = true;
    int growth = 0;
    std::uint32_t failing = 0;
    /// When set, no picture is ready before it is released.
    QSemaphore* held = nullptr;
};

class OnDemandScreenshotServiceTests : public ::testing::Test {
protected:
    using Outcome = Result<std::vector<FrozenDisplay>>;

    static Screen screen(std::optional<std::uint32_t> id, QRect rect, double scale) {
        return {QStringLiteral("S"), id, rect, scale};
    }
    std::vector<Screen> screens = {screen(7, {0, 0, 200, 100}, 2), screen(9, {200, 0, 300, 100}, 1)};

    template<class T>
    static T wait(QFuture<T> future) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return future.isFinished(); }));
        return future.result();
    }
    Outcome capture(ScreenshotCapturing& service, std::stop_token stop = {}) {
        timing = std::make_shared<CaptureTiming>(CaptureTime::now(), QStringLiteral("menu_bar"));
        return wait(service.capture(screens, timing, std::move(stop)));
    }
    QStringList phases() const {
        QStringList names;
        for (const auto& phase : timing->phases())
            names << phase.name;
        return names;
    }

    EmptyDefaults defaults;
    EditorPreferences preferences{defaults};
    FakeCapturer capturer;
    std::shared_ptr<CaptureTiming> timing;
};

} // namespace

TEST(CapturePixelSize, FollowsScaleAndReduction) {
    struct PixelSizeCase {
        const char* name;
        Size point;
        double scale;
        bool downscale;
        PixelSize expected;
    };
    const PixelSizeCase cases[] = {
        {"plainIsNeverReduced", {1920, 1080}, 1.0, true, {1920, 1080}},
        {"atLeastOnePixel", {0.2, 0.2}, 1.0, false, {1, 1}},
        {"threefoldReduced", {1512, 982}, 3.0, true, {2268, 1473}},
        {"fractionalNative", {1366 / 1.5, 768 / 1.5}, 1.5, false, {1366, 768}},
        {"halvesRoundUp", {1365 / 1.5, 768 / 1.5}, 1.5, true, {683, 384}},
    };
    for (const PixelSizeCase& row : cases)
        EXPECT_EQ(capturePixelSize(row.point, row.scale, row.downscale), row.expected) << row.name;
}

TEST_F(OnDemandScreenshotServiceTests, PreparesOnceAndThenCapturesFromTheCache) {
    OnDemandScreenshotService service(capturer, CaptureMethod::automatic, preferences);
    const Outcome first = capture(service);
    ASSERT_TRUE(first);
    ASSERT_EQ(first->size(), 2U);
    EXPECT_EQ((*first)[0].displayID, 7U);
    EXPECT_EQ((*first)[0].captured.image.size(), QSize(100, 50)); // reduced: two pixels per point
    EXPECT_EQ((*first)[1].captured.image.size(), QSize(300, 100));
    EXPECT_EQ(phases().first(2), QStringList({QStringLiteral("capture_method_filtered_parallel"),
                                              QStringLiteral("capture_metadata_preparation")}));
    ASSERT_TRUE(capture(service));
    EXPECT_EQ(phases().value(1), QStringLiteral("capture_metadata_cached"));
    EXPECT_EQ(phases().count(QStringLiteral("display_image_available")), 2);
    EXPECT_EQ(capturer.preparations, 2); // one per display

    preferences.setDownscaleRetinaScreenshots(false); // other pixels, so other filters
    const Outcome full = capture(service);
    EXPECT_EQ(phases().value(1), QStringLiteral("capture_metadata_preparation"));
    EXPECT_EQ((*full)[0].captured.image.size(), QSize(200, 100));
}

TEST_F(OnDemandScreenshotServiceTests, ConcurrentCallersShareOnePreparationAndAnInvalidationCancelsThem) {
    QSemaphore release;
    std::atomic<int> built = 0;
    const auto builder = [&](const std::vector<OnDemandScreenshotService::Geometry>& key, std::stop_token) {
        ++built;
        release.acquire();
        OnDemandScreenshotService::Prepared prepared;
        for (const auto& geometry : key)
            prepared.push_back({geometry, std::make_shared<FakeCapturer::Filter>(capturer, geometry.id)});
        return Result<OnDemandScreenshotService::Prepared>(prepared);
    };
    OnDemandScreenshotService service(capturer, CaptureMethod::filtered, preferences, builder);
    auto first = service.prepare(screens);
    auto second = service.prepare(screens);
    service.invalidatePreparation();
    for (auto* stale : {&first, &second}) {
        const Result<void> outcome = wait(*stale);
        ASSERT_FALSE(outcome);
        EXPECT_TRUE(isCancelled(outcome.error()));
    }
    auto third = service.prepare(screens);
    auto fourth = service.prepare(screens);
    release.release(2);
    EXPECT_TRUE(wait(third));
    EXPECT_TRUE(wait(fourth));
    EXPECT_EQ(built, 2); // the stale one and the one that third and fourth share
    EXPECT_TRUE(capture(service));
    EXPECT_EQ(phases().value(1), QStringLiteral("capture_metadata_cached"));
}

TEST_F(OnDemandScreenshotServiceTests, FailuresAreValuesAndDropTheCache) {
    OnDemandScreenshotService service(capturer, CaptureMethod::filtered, preferences);
    ASSERT_TRUE(capture(service));
    capturer.growth = 1;
    const Outcome wrongSize = capture(service);
    ASSERT_FALSE(wrongSize);
    EXPECT_EQ(wrongSize.error(), captureError(CaptureError::imageDimensions));
    capturer.growth = 0;
    capturer.failing = 9;
    const Outcome gone = capture(service);
    EXPECT_EQ(phases().value(1), QStringLiteral("capture_metadata_preparation"));
    ASSERT_FALSE(gone);
    EXPECT_EQ(gone.error().domain, ErrorDomain::windowSystem);

    screens.push_back(screen(std::nullopt, {500, 0, 10, 10}, 1));
    const Outcome unnumbered = capture(service);
    ASSERT_FALSE(unnumbered);
    EXPECT_EQ(unnumbered.error(), captureError(CaptureError::noDisplay));
}

TEST_F(OnDemandScreenshotServiceTests, StoppingKeepsTheCacheAndAnswersWithACancellation) {
    OnDemandScreenshotService service(capturer, CaptureMethod::filtered, preferences);
    ASSERT_TRUE(capture(service));
    std::stop_source stop;
    QSemaphore release;
    capturer.held = &release;
    auto future = service.capture(screens, nullptr, stop.get_token());
    stop.request_stop();
    release.release(2);
    const Outcome stopped = wait(future);
    ASSERT_FALSE(stopped);
    EXPECT_TRUE(isCancelled(stopped.error()));
    capturer.held = nullptr;
    ASSERT_TRUE(capture(service));
    EXPECT_EQ(phases().value(1), QStringLiteral("capture_metadata_cached"));
}

TEST_F(OnDemandScreenshotServiceTests, DirectSkipsScreensWithoutANumberAndNeedsASessionThatCanDoIt) {
    OnDemandScreenshotService service(capturer, CaptureMethod::direct, preferences);
    screens.push_back(screen(std::nullopt, {500, 0, 10, 10}, 1));
    EXPECT_TRUE(wait(service.prepare(screens)));
    const Outcome taken = capture(service);
    ASSERT_TRUE(taken);
    EXPECT_EQ(taken->size(), 2U);
    EXPECT_EQ(phases().value(0), QStringLiteral("capture_method_direct_rect"));
    EXPECT_EQ(capturer.preparations, 0);

    capturer.direct = false;
    const Outcome refused = capture(service);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), captureError(CaptureError::directUnavailable));
    EXPECT_TRUE(phases().isEmpty());
}
