#include "Capture/OnDemandScreenshotService.h"

#include "Capture/CaptureError.h"
#include "Capture/CapturePixelSize.h"
#include "VistrelPlatform/System/WhenFinished.h"

#include <QPromise>
#include <QtConcurrent>

#include <algorithm>
#include <map>

using Frozen = std::vector<FrozenDisplay>;

/// One capture under way: what was asked for, what has arrived, and whom to answer.
struct OnDemandScreenshotService::Request {
    std::vector<Screen> screens;
    std::shared_ptr<CaptureTiming> timing;
    std::stop_token stop;
    bool filtered = true;
    QPromise<Result<Frozen>> promise;
    std::map<std::uint32_t, CapturedImage> arrived;
    std::size_t outstanding = 0;
    bool answered = false;

    void record(const QString& phase, const CaptureTiming::PhaseOptions& options = {}) const {
        if (timing)
            timing->recordPhase(phase, options);
    }
};

namespace {

constexpr int displaysAtOnce = 8;

/// The builder used when none is injected: one warmed filter per display.
Result<OnDemandScreenshotService::Prepared>
makeFilters(ScreenCapturer& capturer, const std::vector<OnDemandScreenshotService::Geometry>& displays,
            const std::stop_token& stop) {
    OnDemandScreenshotService::Prepared prepared;
    for (const auto& geometry : displays) {
        if (stop.stop_requested())
            return tl::unexpected(cancelledError());
        Result<std::shared_ptr<DisplayFilter>> filter = capturer.prepare(geometry.id);
        if (!filter)
            return tl::unexpected(filter.error());
        prepared.push_back({geometry, std::move(*filter)});
    }
    return prepared;
}

} // namespace

OnDemandScreenshotService::OnDemandScreenshotService(ScreenCapturer& screenCapturer,
                                                     CaptureMethod captureMethod,
                                                     const EditorPreferences& editorPreferences,
                                                     FilterBuilder builder)
    : capturer(screenCapturer),
      method(captureMethod),
      preferences(editorPreferences),
      filterBuilder(std::move(builder)) {
    // They wait for the window system, not for a processor.
    workers.setMaxThreadCount(std::max(workers.maxThreadCount(), displaysAtOnce));
    if (!filterBuilder)
        filterBuilder = [&screenCapturer](const std::vector<Geometry>& displays,
                                          const std::stop_token& stop) {
            return makeFilters(screenCapturer, displays, stop);
        };
}

OnDemandScreenshotService::~OnDemandScreenshotService() {
    if (preparation)
        preparation->request_stop();
}

std::vector<OnDemandScreenshotService::Geometry>
OnDemandScreenshotService::geometry(const std::vector<Screen>& screens) const {
    std::vector<Geometry> result;
    for (const Screen& screen : screens) {
        if (!screen.displayID)
            continue;
        const PixelSize size =
            capturePixelSize(screen.pointSize(), screen.scale, preferences.downscaleRetinaScreenshots());
        result.push_back({*screen.displayID, size.width, size.height});
    }
    return result;
}

bool OnDemandScreenshotService::isPrepared(const std::vector<Geometry>& key) const {
    return key == preparationKey && prepared.size() == key.size();
}

QFuture<Result<void>> OnDemandScreenshotService::prepare(std::vector<Screen> screens) {
    auto promise = std::make_shared<QPromise<Result<void>>>();
    promise->start();
    QFuture<Result<void>> future = promise->future();
    prepareThen(screens, [promise](Result<void> outcome) {
        promise->addResult(std::move(outcome));
        promise->finish();
    });
    return future;
}

void OnDemandScreenshotService::prepareThen(const std::vector<Screen>& screens,
                                            std::function<void(Result<void>)> done) {
    if (method == CaptureMethod::direct)
        return done({});
    const std::vector<Geometry> key = geometry(screens);
    if (key.empty() || key.size() < screens.size())
        return done(tl::unexpected(captureError(CaptureError::noDisplay)));
    if (isPrepared(key))
        return done({});
    if (key != preparationKey) {
        invalidatePreparation();
        preparationKey = key;
    }
    waiters.push_back([this, done = std::move(done), asked = generation](const Result<Prepared>& result) {
        if (generation != asked)
            return done(tl::unexpected(cancelledError()));
        if (!result)
            return done(tl::unexpected(result.error()));
        done({});
    });
    if (!preparation)
        startPreparation(key);
}

void OnDemandScreenshotService::startPreparation(const std::vector<Geometry>& key) {
    preparation = std::make_shared<std::stop_source>();
    const auto building =
        QtConcurrent::run(&workers, [builder = filterBuilder, key, stop = preparation->get_token()] {
            return builder(key, stop);
        });
    whenFinished(building, &context, [this, task = preparation](const Result<Prepared>& result) {
        if (task != preparation)
            return; // An invalidation has answered this preparation's waiters already.
        preparation.reset();
        const std::vector<Waiter> answered = std::exchange(waiters, {});
        if (result)
            prepared = *result;
        for (const Waiter& waiter : answered)
            waiter(result);
        if (!result && !preparation)
            invalidatePreparation();
    });
}

void OnDemandScreenshotService::invalidatePreparation() {
    ++generation;
    if (preparation)
        preparation->request_stop();
    preparation.reset();
    prepared.clear();
    preparationKey.clear();
    const std::vector<Waiter> stale = std::exchange(waiters, {});
    for (const Waiter& waiter : stale)
        waiter(tl::unexpected(cancelledError()));
}

QFuture<Result<Frozen>> OnDemandScreenshotService::capture(std::vector<Screen> screens,
                                                           std::shared_ptr<CaptureTiming> timing,
                                                           std::stop_token stop) {
    auto request = std::make_shared<Request>();
    request->screens = std::move(screens);
    request->timing = std::move(timing);
    request->stop = std::move(stop);
    request->filtered = method != CaptureMethod::direct;
    request->promise.start();
    QFuture<Result<Frozen>> future = request->promise.future();
    if (request->stop.stop_requested())
        finish(request, tl::unexpected(cancelledError()));
    else if (request->filtered)
        captureFiltered(request);
    else if (capturer.supportsDirect())
        captureDirect(request);
    else
        finish(request, tl::unexpected(captureError(CaptureError::directUnavailable)));
    return future;
}

void OnDemandScreenshotService::captureFiltered(const std::shared_ptr<Request>& request) {
    request->record(QStringLiteral("capture_method_filtered_parallel"));
    const CaptureTime::Instant since = CaptureTime::now();
    const bool cached = isPrepared(geometry(request->screens));
    prepareThen(request->screens, [this, request, since, cached](const Result<void>& outcome) {
        if (!outcome)
            return finish(request, tl::unexpected(outcome.error()));
        request->record(cached ? QStringLiteral("capture_metadata_cached")
                               : QStringLiteral("capture_metadata_preparation"),
                        {.since = since});
        if (prepared.empty())
            return finish(request, Frozen{});
        request->outstanding = prepared.size();
        for (const PreparedDisplay& display : prepared)
            captureOne(request, display.geometry,
                       [filter = display.filter](PixelSize size) { return filter->capture(size); });
    });
}

void OnDemandScreenshotService::captureDirect(const std::shared_ptr<Request>& request) {
    request->record(QStringLiteral("capture_method_direct_rect"));
    const std::vector<Geometry> displays = geometry(request->screens);
    if (displays.empty())
        return finish(request, Frozen{});
    request->outstanding = displays.size();
    for (const Geometry& display : displays)
        captureOne(request, display, [&screenCapturer = capturer, id = display.id](PixelSize size) {
            return screenCapturer.captureDirect(id, size);
        });
}

void OnDemandScreenshotService::captureOne(const std::shared_ptr<Request>& request, const Geometry& display,
                                           std::function<Result<CapturedImage>(PixelSize)> take) {
    const CaptureTime::Instant since = CaptureTime::now();
    const auto taking = QtConcurrent::run(
        &workers, [take = std::move(take), display, stop = request->stop]() -> Result<CapturedImage> {
            if (stop.stop_requested())
                return tl::unexpected(cancelledError());
            return take({display.width, display.height});
        });
    whenFinished(taking, &context, [this, request, display, since](Result<CapturedImage> captured) {
        received(request, display, since, std::move(captured));
    });
}

void OnDemandScreenshotService::received(const std::shared_ptr<Request>& request, const Geometry& display,
                                         CaptureTime::Instant since, Result<CapturedImage> captured) {
    if (request->answered)
        return;
    if (request->stop.stop_requested())
        return finish(request, tl::unexpected(cancelledError()));
    if (!captured)
        return finish(request, tl::unexpected(captured.error()));
    const QImage& image = captured->image;
    if (image.width() != display.width || image.height() != display.height)
        return finish(request, tl::unexpected(captureError(CaptureError::imageDimensions)));
    request->record(
        QStringLiteral("display_image_available"),
        {.displayID = display.id, .since = since, .width = image.width(), .height = image.height()});
    request->arrived[display.id] = std::move(*captured);
    if (--request->outstanding > 0)
        return;
    Frozen frozen;
    for (const Screen& screen : request->screens) {
        const auto found =
            screen.displayID ? request->arrived.find(*screen.displayID) : request->arrived.end();
        if (found != request->arrived.end())
            frozen.push_back({screen, *screen.displayID, found->second});
    }
    finish(request, std::move(frozen));
}

void OnDemandScreenshotService::finish(const std::shared_ptr<Request>& request, Result<Frozen> outcome) {
    if (std::exchange(request->answered, true))
        return;
    const bool failed = !outcome && !isCancelled(outcome.error()) && !request->stop.stop_requested();
    if (failed && request->filtered)
        invalidatePreparation();
    request->promise.addResult(std::move(outcome));
    request->promise.finish();
}
