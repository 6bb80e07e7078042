#pragma once

#include "Capture/CaptureMethod.h"
#include "Capture/ScreenshotCapturing.h"
#include "Settings/EditorPreferences.h"

#include <QObject>
#include <QThreadPool>

#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

/// Takes one still picture of every display when asked, with filters that were prepared before and are
/// kept as long as the displays stay as they are. Main thread; filters are built and pictures taken on
/// worker threads.
class OnDemandScreenshotService : public ScreenshotCapturing {
public:
    /// A display and the pixels a capture of it has.
    struct Geometry {
        std::uint32_t id = 0;
        int width = 0;
        int height = 0;

        friend bool operator==(const Geometry&, const Geometry&) = default;
    };
    struct PreparedDisplay {
        Geometry geometry;
        std::shared_ptr<DisplayFilter> filter;
    };
    using Prepared = std::vector<PreparedDisplay>;
    /// Runs on a worker thread; looks at the token between displays.
    using FilterBuilder = std::function<Result<Prepared>(const std::vector<Geometry>&, std::stop_token)>;

    /// `capturer` and `preferences` are borrowed. Without a builder the capturer prepares the filters.
    OnDemandScreenshotService(ScreenCapturer& capturer, CaptureMethod method,
                              const EditorPreferences& preferences, FilterBuilder filterBuilder = {});
    ~OnDemandScreenshotService() override;

    QFuture<Result<void>> prepare(std::vector<Screen> screens) override;
    QFuture<Result<std::vector<FrozenDisplay>>> capture(std::vector<Screen> screens,
                                                        std::shared_ptr<CaptureTiming> timing,
                                                        std::stop_token stop) override;
    void invalidatePreparation() override;

private:
    struct Request;
    using Waiter = std::function<void(const Result<Prepared>&)>;

    std::vector<Geometry> geometry(const std::vector<Screen>& screens) const;
    bool isPrepared(const std::vector<Geometry>& key) const;
    void prepareThen(const std::vector<Screen>& screens, std::function<void(Result<void>)> done);
    void startPreparation(const std::vector<Geometry>& key);
    void captureFiltered(const std::shared_ptr<Request>& request);
    void captureDirect(const std::shared_ptr<Request>& request);
    void captureOne(const std::shared_ptr<Request>& request, const Geometry& geometry,
                    std::function<Result<CapturedImage>(PixelSize)> take);
    void received(const std::shared_ptr<Request>& request, const Geometry& geometry,
                  CaptureTime::Instant since, Result<CapturedImage> captured);
    void finish(const std::shared_ptr<Request>& request, Result<std::vector<FrozenDisplay>> outcome);

    ScreenCapturer& capturer;
    const CaptureMethod method;
    const EditorPreferences& preferences;
    FilterBuilder filterBuilder;
    Prepared prepared;
    std::vector<Geometry> preparationKey;
    /// Set while a preparation runs; everyone who needs it waits for the same one.
    std::shared_ptr<std::stop_source> preparation;
    std::vector<Waiter> waiters;
    int generation = 0;
    /// Results of workers come back through this object, so none arrives after our end.
    QObject context;
    /// One worker per display. Last, so that its end waits for those that still use what we borrow.
    QThreadPool workers;
};
