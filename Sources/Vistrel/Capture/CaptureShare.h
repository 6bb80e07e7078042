#pragma once

#include "Capture/OverlayPresenter.h"
#include "Diagnostics/DiagnosticRecord.h"
#include "Output/ScreenshotShareSession.h"
#include "VistrelPlatform/ShareServices.h"

#include <functional>
#include <memory>

class CaptureOverlayWindow;

/// One share at a time of the exported picture: makes room for the menu and the chosen program, brings
/// the overlay back when nothing was shared. Main thread.
class CaptureShare {
public:
    /// Both are borrowed.
    CaptureShare(OverlayPresenter& presenter, ShareServices& services);
    ~CaptureShare();

    /// Asks the desktop what there is to share with, which takes it a moment. Once per capture, when it is
    /// shown.
    void prepare();
    /// Opens the menu of services at the anchor. Nothing while another share is under way.
    void share(const QImage& image, QWidget& anchor, CaptureOverlayWindow& window);
    /// A capture was asked for: a user who is away in the desktop's settings comes back.
    void endEditingExtensions();
    /// Ends without a word, as when the capture closes.
    void cancel();

    std::function<void(Diagnostic::Action)> onDiagnosticEvent;
    /// The picture was handed over: the capture can close.
    std::function<void()> onDone;

private:
    void finished(bool shared, CaptureOverlayWindow& window);

    OverlayPresenter& presenter;
    ShareServices& services;
    std::unique_ptr<ScreenshotShareSession> session;
};
