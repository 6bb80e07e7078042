#include "Capture/CaptureError.h"
#include "Capture/CapturePixelSize.h"
#include "Capture/OnDemandScreenshotService.h"
#include "Support/EmptyDefaults.h"

#include <QSemaphore>
#include <QTest>

#include <gtest/gtest.h>

#include <atomic>

using namespace Qt::StringLiterals;

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
            return tl::unexpected(Error{ErrorDomain::windowSystem, 8, u"The display is gone."_s});
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

    template<class T>
    static T wait(QFuture<T> future) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return future.isFinished(); }));
        return future.result();
    }
    Outcome capture(ScreenshotCapturing& service, std::stop_token stop = {}) {
        timing = std::make_shared<CaptureTiming>(CaptureTime::now(), u"menu_bar"_s);
        return wait(service.capture(screens, timing, std::move(stop)));
    }
    QStringList phases() const {
        QStringList names;
        for (const auto& phase : timing->phases())
            names << phase.name;
        return names;
    }

    std::vector<Screen> screens = {{u"L"_s, 7, {0, 0, 200, 100}, 2}, {u"R"_s, 9, {200, 0, 300, 100}, 1}};
    EmptyDefaults defaults;
    EditorPreferences preferences{defaults};
    FakeCapturer capturer;
    std::shared_ptr<CaptureTiming> timing;
};

} // namespace

TEST(CapturePixelSize, FollowsScaleAndReduction) {
    EXPECT_EQ(capturePixelSize({1920, 1080}, 1, true), (PixelSize{1920, 1080}))
        << "never below one per point";
    EXPECT_EQ(capturePixelSize({0.2, 0.2}, 1, false), (PixelSize{1, 1}));
    EXPECT_EQ(capturePixelSize({1512, 982}, 3, true), (PixelSize{2268, 1473}));
    EXPECT_EQ(capturePixelSize({1366 / 1.5, 768 / 1.5}, 1.5, false), (PixelSize{1366, 768}));
    for (const double scale : {1.25, 1.5, 1.75})
        EXPECT_EQ(capturePixelSize({1366 / scale, 768 / scale}, scale, true), (PixelSize{1366, 768}))
            << scale;
    EXPECT_EQ(capturePixelSize({1365 / 2.0, 768 / 2.0}, 2, true), (PixelSize{683, 384})) << "halves round up";
}

TEST_F(OnDemandScreenshotServiceTests, PreparesOnceAndThenCapturesFromTheCache) {
    OnDemandScreenshotService service(capturer, CaptureMethod::automatic, preferences);
    const Outcome first = capture(service);
    ASSERT_TRUE(first);
    ASSERT_EQ(first->size(), 2U);
    EXPECT_EQ((*first)[0].captured.image.size(), QSize(100, 50)); // reduced: two pixels per point
    EXPECT_EQ((*first)[1].captured.image.size(), QSize(300, 100));
    EXPECT_EQ(phases().first(2),
              QStringList({u"capture_method_filtered_parallel"_s, u"capture_metadata_preparation"_s}));
    ASSERT_TRUE(capture(service));
    EXPECT_EQ(phases().value(1), u"capture_metadata_cached"_s);
    EXPECT_EQ(phases().count(u"display_image_available"_s), 2);
    EXPECT_EQ(capturer.preparations, 2); // one per display

    preferences.setDownscaleRetinaScreenshots(false); // other pixels, so other filters
    const Outcome full = capture(service);
    EXPECT_EQ(phases().value(1), u"capture_metadata_preparation"_s);
    EXPECT_EQ((*full)[0].captured.image.size(), QSize(200, 100));
}

TEST_F(OnDemandScreenshotServiceTests, ConcurrentCallersShareOnePreparationAndAnInvalidationCancelsThem) {
    QSemaphore release;
    std::atomic<int> built = 0;
    const auto builder = [&](const std::vector<OnDemandScreenshotService::Geometry>& key,
                             const std::stop_token&) {
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
    EXPECT_TRUE(QTest::qWaitFor([&] { return built == 1; })) << "both wait for one that has begun";
    service.invalidatePreparation();
    for (const auto& stale : {first, second})
        EXPECT_TRUE(isCancelled(wait(stale).error()));
    auto third = service.prepare(screens);
    auto fourth = service.prepare(screens);
    release.release(2);
    EXPECT_TRUE(wait(third));
    EXPECT_TRUE(wait(fourth));
    EXPECT_EQ(built, 2); // the stale one and the one that third and fourth share
    EXPECT_TRUE(capture(service));
    EXPECT_EQ(phases().value(1), u"capture_metadata_cached"_s);
}

TEST_F(OnDemandScreenshotServiceTests, FailuresAreValuesAndDropTheCache) {
    OnDemandScreenshotService service(capturer, CaptureMethod::filtered, preferences);
    ASSERT_TRUE(capture(service));
    capturer.growth = 1;
    EXPECT_EQ(capture(service).error(), captureError(CaptureError::imageDimensions));
    capturer.growth = 0;
    capturer.failing = 9;
    EXPECT_EQ(capture(service).error().domain, ErrorDomain::windowSystem);
    EXPECT_EQ(phases().value(1), u"capture_metadata_preparation"_s);
    screens.push_back({u"U"_s, std::nullopt, {500, 0, 10, 10}, 1});
    EXPECT_EQ(capture(service).error(), captureError(CaptureError::noDisplay));
}

TEST_F(OnDemandScreenshotServiceTests, ADirectCaptureFailsAsTheDisplaysDoAndPreparesNothing) {
    OnDemandScreenshotService service(capturer, CaptureMethod::direct, preferences);
    ASSERT_TRUE(capture(service));
    EXPECT_EQ(phases().first(), u"capture_method_direct_rect"_s);
    capturer.growth = 1;
    EXPECT_EQ(capture(service).error(), captureError(CaptureError::imageDimensions));
    capturer.growth = 0;
    capturer.failing = 7;
    EXPECT_EQ(capture(service).error().domain, ErrorDomain::windowSystem);
    EXPECT_EQ(capturer.preparations, 0);
    capturer.direct = false;
    EXPECT_EQ(capture(service).error(), captureError(CaptureError::directUnavailable));
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
    EXPECT_TRUE(isCancelled(wait(future).error()));
    capturer.held = nullptr;
    ASSERT_TRUE(capture(service));
    EXPECT_EQ(phases().value(1), u"capture_metadata_cached"_s);
}
