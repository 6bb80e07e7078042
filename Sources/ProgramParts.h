#pragma once

#include "App/CaptureSession.h"
#include "Capture/CaptureSessionCoordinator.h"
#include "Editor/CaptureColorWell.h"
#include "VistrelPlatform/DesktopLibrary.h"
#include "VistrelPlatform/Freedesktop/PortalScreenAccess.h"
#include "VistrelPlatform/NetworkServices.h"
#include "VistrelPlatform/System/LoadableModule.h"
#include "VistrelPlatform/X11/X11ImageClipboard.h"
#include "VistrelPlatform/X11/X11OverlayWindows.h"
#include "VistrelPlatform/X11/X11ScreenCapturer.h"
#include "VistrelPlatform/X11/X11ScreenList.h"

/// What reads the display, whichever mode needs it.
struct CaptureDisplay {
    X11ScreenList screens;
    X11ScreenCapturer capturer;
    X11OverlayWindows overlayWindows;
    X11ImageClipboard clipboard;

    CaptureDisplay() {
        CaptureColorWell::prepareDialog = [this](QWidget& dialog) { overlayWindows.prepareDialog(dialog); };
    }
    ~CaptureDisplay() { CaptureColorWell::prepareDialog = nullptr; }
    CaptureDisplay(const CaptureDisplay&) = delete;
    CaptureDisplay& operator=(const CaptureDisplay&) = delete;

    CaptureSessionCoordinator::Services sessionServices(ScreenshotCapturing& screenshots,
                                                        EditorPreferences& preferences,
                                                        LocalDiagnostics* journal) {
        return {.screenshots = screenshots,
                .screens = screens,
                .overlayWindows = overlayWindows,
                .preferences = preferences,
                .clipboard = clipboard,
                .diagnostics = journal,
                .share = nullptr,
                .hasPermission = [this] { return capturer.hasPermission(); },
                .resetCursor = {},
                .saveMeasurement = {}};
    }
};

/// What most sessions never need, or not at the start, and therefore is loaded when it is first called for.
struct Modules {
    LoadableModule network{QStringLiteral("network")};
    LoadableModule desktop{QStringLiteral("desktop")};

    NetworkSource networkSource() {
        return [this] { return network.get<NetworkServices>(); };
    }
    DesktopLibrarySource desktopSource() {
        return [this] { return desktop.get<DesktopLibrary>(); };
    }
};

/// Null outside a sandbox.
inline std::unique_ptr<PortalScreenAccess> portalInCharge() {
    const QString sandbox = PortalScreenAccess::sandboxName();
    return sandbox.isEmpty() ? nullptr
                             : std::make_unique<PortalScreenAccess>(QDBusConnection::sessionBus(), sandbox);
}

/// What the controller asks of a session.
inline CaptureSession operationsOf(CaptureSessionCoordinator& coordinator) {
    return {.begin =
                [&coordinator](CaptureTime::Instant at, std::shared_ptr<CaptureTiming> timing) {
                    coordinator.begin(at, std::move(timing));
                },
            .close = [&coordinator] { coordinator.close(); },
            .prepareOverlays = [&coordinator] { coordinator.prepareOverlays(); },
            .beginPreview = [&coordinator] { coordinator.beginPreview(); },
            .busy = [&coordinator] { return coordinator.busy(); }};
}
