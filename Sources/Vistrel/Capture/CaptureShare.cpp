#include "Capture/CaptureShare.h"

#include "Overlay/CaptureOverlayWindow.h"

using Diagnostic::Action;

CaptureShare::CaptureShare(OverlayPresenter& overlayPresenter, ShareServices& shareServices)
    : presenter(overlayPresenter), services(shareServices) {}

CaptureShare::~CaptureShare() {
    cancel();
}

void CaptureShare::prepare() {
    services.refresh();
}

void CaptureShare::share(const QImage& image, QWidget& anchor, CaptureOverlayWindow& window) {
    if (session)
        return;
    onDiagnosticEvent(Action::shareRequested);
    presenter.suspend();
    session =
        std::make_unique<ScreenshotShareSession>(image, ScreenshotShareSession::desktopBehaviour(services));
    session->onChooseService = [this] { presenter.orderOut(); };
    session->onFinish = [this, &window](bool shared) { finished(shared, window); };
    session->show(anchor);
}

void CaptureShare::finished(bool shared, CaptureOverlayWindow& window) {
    // The session reports from within its own work, so it goes when that is done.
    session.release()->deleteLater();
    onDiagnosticEvent(shared ? Action::shareSucceeded : Action::shareCancelled);
    if (shared)
        onDone();
    else
        presenter.resume(window);
}

void CaptureShare::endEditingExtensions() {
    if (session && session->state() == ScreenshotShareSession::State::editingExtensions)
        session->finish(false);
}

void CaptureShare::cancel() {
    if (const auto ending = std::exchange(session, nullptr))
        ending->cancel();
}
