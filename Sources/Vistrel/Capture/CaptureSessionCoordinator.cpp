#include "Capture/CaptureSessionCoordinator.h"

#include "Capture/CaptureError.h"
#include "Capture/CaptureOutput.h"
#include "Capture/CaptureShare.h"
#include "Capture/PreviewImage.h"
#include "VistrelPlatform/System/WhenFinished.h"

#include <QGuiApplication>
#include <QMessageBox>
#include <QPointer>

#include <algorithm>
#include <cmath>

namespace {

std::optional<double> ifFinite(double value) {
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

int imageCount(const CaptureTiming::Report& report) {
    return static_cast<int>(std::ranges::count_if(report.phases, [](const CaptureTiming::Phase& phase) {
        return phase.name == QLatin1StringView("display_image_available");
    }));
}

} // namespace

CaptureSessionCoordinator::CaptureSessionCoordinator(Services coordinatorServices, QObject* parent)
    : QObject(parent),
      services(std::move(coordinatorServices)),
      presenter({services.screens, services.overlayWindows, services.preferences}),
      output(std::make_unique<CaptureOutput>(presenter, services.preferences, services.clipboard)) {
    if (!services.resetCursor)
        services.resetCursor = [] {
            while (QGuiApplication::overrideCursor())
                QGuiApplication::restoreOverrideCursor();
        };
    if (!services.saveMeasurement)
        services.saveMeasurement = CaptureTiming::save;
    wirePresenter();
    connect(&services.screens, &ScreenList::changed, this, &CaptureSessionCoordinator::displaysChanged);
}

CaptureSessionCoordinator::~CaptureSessionCoordinator() {
    captureTask.request_stop();
}

void CaptureSessionCoordinator::wirePresenter() {
    const auto journal = [this](Diagnostic::Action action, const Diagnostic::Details& details) {
        record(action, details);
    };
    presenter.onDiagnosticEvent = journal;
    presenter.onClose = [this] { close(); };
    presenter.onCopy = [this](const QImage& image) { output->copy(image); };
    presenter.onSave = [this](const QImage& image, CaptureOverlayWindow& window) {
        output->save(image, window);
    };
    output->onDiagnosticEvent = journal;
    output->onDone = [this] { close(); };
    if (!services.share)
        return;
    share = std::make_unique<CaptureShare>(presenter, *services.share);
    share->onDiagnosticEvent = [this](Diagnostic::Action action) { record(action); };
    share->onDone = [this] { close(); };
    presenter.onShare = [this](const QImage& image, QWidget& anchor, CaptureOverlayWindow& window) {
        if (!isBusy)
            return;
        output->giveUpSave();
        share->share(image, anchor, window);
    };
}

void CaptureSessionCoordinator::record(Diagnostic::Action action, const Diagnostic::Details& details) {
    if (services.diagnostics)
        services.diagnostics->record(action, details);
}

void CaptureSessionCoordinator::begin(CaptureTime::Instant at, std::shared_ptr<CaptureTiming> timing) {
    if (isBusy) {
        record(Diagnostic::Action::captureBusy);
        if (share)
            share->endEditingExtensions();
        return;
    }
    if (!timing)
        timing = std::make_shared<CaptureTiming>(at, QStringLiteral("menu_bar"));
    const bool fromHotkey = timing->source() == QLatin1StringView("hotkey");
    record(Diagnostic::Action::captureRequested,
           {.displays = static_cast<int>(services.screens.screens().size()),
            .source = fromHotkey ? Diagnostic::Source::hotkey : Diagnostic::Source::menuBar});
    journalPhases(*timing);

    const CaptureTime::Instant since = CaptureTime::now();
    const bool granted = !services.hasPermission || services.hasPermission();
    timing->recordPhase(QStringLiteral("permission_check"), {.since = since});
    if (!granted) {
        record(Diagnostic::Action::permissionMissing);
        completeMeasurement(timing,
                            QStringLiteral("Screen capture permission is missing for this launch context."));
        if (onNeedsPermission)
            onNeedsPermission();
        return;
    }
    if (!onPresent)
        prepareOverlays();
    isBusy = true;
    alert.reset();
    startCapture(timing);
}

void CaptureSessionCoordinator::journalPhases(CaptureTiming& timing) {
    timing.onPhase = [guard = QPointer(this)](const CaptureTiming::Phase& phase) {
        const std::optional<Diagnostic::Phase> known = Diagnostic::phaseNamed(phase.name);
        if (!guard || !known)
            return;
        guard->record(Diagnostic::Action::capturePhase, {.width = phase.width,
                                                         .height = phase.height,
                                                         .durationMS = ifFinite(phase.durationMS),
                                                         .offsetMS = ifFinite(phase.offsetMS),
                                                         .phase = known});
    };
    for (const CaptureTiming::Phase& phase : timing.phases())
        timing.onPhase(phase);
}

void CaptureSessionCoordinator::startCapture(const Timing& timing) {
    captureTask = std::stop_source();
    timing->recordPhase(QStringLiteral("capture_task_started"));
    const auto pictures =
        services.screenshots.capture(services.screens.screens(), timing, captureTask.get_token());
    whenFinished(pictures, this,
                 [this, timing, stop = captureTask.get_token()](const Result<Frozen>& result) {
                     if (!stop.stop_requested())
                         captured(result, timing);
                 });
}

void CaptureSessionCoordinator::captured(const Result<Frozen>& result, const Timing& timing) {
    if (!result)
        return failed(result.error(), timing);
    if (result->empty())
        return failed(captureError(CaptureError::noDisplay), timing);
    timing->recordPhase(QStringLiteral("all_images_available"));
    if (!onPresent)
        return present(*result, timing);
    onPresent(*result);
    completeMeasurement(timing, std::nullopt);
}

void CaptureSessionCoordinator::failed(const Error& error, const Timing& timing) {
    record(Diagnostic::Action::captureError, LocalDiagnostics::error(error, Diagnostic::ErrorKind::capture));
    close();
    completeMeasurement(timing, error.description);
    if (onError)
        onError(error);
    else
        showAlert(error.description);
}

void CaptureSessionCoordinator::showAlert(const QString& description) {
    alert = std::make_unique<QMessageBox>(QMessageBox::Warning, QGuiApplication::applicationDisplayName(),
                                          QStringLiteral("Couldn’t capture the screen"), QMessageBox::Ok);
    alert->setObjectName(QStringLiteral("captureFailure"));
    alert->setInformativeText(description);
    // It may stand there unanswered while the next capture is on the screen.
    alert->setModal(false);
    alert->show();
}

void CaptureSessionCoordinator::present(const Frozen& displays, const Timing& timing) {
    presenter.onReady = [this, timing](const std::optional<QString>& error) {
        completeMeasurement(timing, error);
        if (share)
            share->prepare();
    };
    presenter.show(displays, timing);
}

void CaptureSessionCoordinator::completeMeasurement(const Timing& timing,
                                                    const std::optional<QString>& error) {
    const std::optional<CaptureTiming::Report> report = timing->finish(error);
    if (!report)
        return;
    record(error ? Diagnostic::Action::captureFailed : Diagnostic::Action::captureReady,
           {.displays = imageCount(*report), .durationMS = ifFinite(report->totalMS)});
    services.saveMeasurement(*report);
    if (onMeasured)
        onMeasured(*report);
}

void CaptureSessionCoordinator::prepareOverlays() {
    const std::vector<Screen> screens = services.screens.screens();
    if (presenter.matches(screens) || isBusy)
        return;
    presenter.rebuild(screens);
    if (!services.hasPermission || services.hasPermission())
        services.screenshots.prepare(screens);
}

void CaptureSessionCoordinator::displaysChanged() {
    record(Diagnostic::Action::displaysChanged);
    close();
    presenter.destroyWindows();
    services.screenshots.invalidatePreparation();
    prepareOverlays();
}

void CaptureSessionCoordinator::close() {
    const bool wasBusy = isBusy;
    output->cancel();
    if (share)
        share->cancel();
    captureTask.request_stop();
    presenter.hide();
    isBusy = false;
    if (!wasBusy)
        return;
    record(Diagnostic::Action::captureClosed);
    services.resetCursor();
}

void CaptureSessionCoordinator::beginPreview() {
    prepareOverlays();
    Frozen displays;
    for (const Screen& screen : services.screens.screens())
        if (screen.displayID)
            displays.push_back({screen, *screen.displayID, previewImage(screen)});
    presenter.show(displays, nullptr);
}
