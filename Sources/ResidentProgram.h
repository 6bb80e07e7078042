#pragma once

#include "App/AppController.h"
#include "App/LaunchAtLoginService.h"
#include "App/NoticeWindow.h"
#include "App/StatusItem.h"
#include "App/TerminationSignals.h"
#include "Capture/CaptureSessionCoordinator.h"
#include "Capture/OnDemandScreenshotService.h"
#include "ProgramParts.h"
#include "Reports/HTTPSReportSender.h"
#include "Reports/ProblemReportModel.h"
#include "Settings/Windows/SettingsWindow.h"
#include "Settings/Windows/SetupWindow.h"
#include "Updates/UpdateService.h"
#include "VistrelPlatform/Freedesktop/AutostartLoginItem.h"
#include "VistrelPlatform/Freedesktop/DesktopSettingsPages.h"
#include "VistrelPlatform/Freedesktop/DesktopSystemShortcuts.h"
#include "VistrelPlatform/Freedesktop/PortalScreenAccess.h"
#include "VistrelPlatform/Freedesktop/ShareDesktopServices.h"
#include "VistrelPlatform/Freedesktop/StatusNotifierHost.h"
#include "VistrelPlatform/RunningInstance.h"
#include "VistrelPlatform/System/FileUserDefaults.h"
#include "VistrelPlatform/System/Paths.h"
#include "VistrelPlatform/X11/X11HotKeyBackend.h"
#include "VistrelPlatform/X11/X11KeyboardLayout.h"
#include "VistrelPlatform/X11/X11OverlayWindows.h"
#include "VistrelPlatform/X11/X11Panels.h"
#include "VistrelPlatform/X11/X11ScreenCapturer.h"
#include "VistrelPlatform/X11/X11ScreenList.h"
#include "VistrelPlatform/X11/X11TrayHost.h"

/// The resident program: every service in the order in which it is needed, and how they are joined.
class ResidentProgram {
public:
    explicit ResidentProgram(QStringList commandLine);
    ~ResidentProgram();

    int run();
    /// The desktop, or another start, asks for something.
    void activate(const Activation& wanted);

private:
    void comeForward();
    AppController::Services services(QStringList commandLine);
    bool mayCapture() const { return display.capturer.hasPermission() && (!portal || portal->isGranted()); }
    ScreenAccessRequest screenAccess();
    AppController::Presentation presentation();
    CaptureSession makeCaptureSession(std::function<void()> needsPermission);
    std::unique_ptr<ProblemReportModel> makeReportModel();
    SettingsWindow& settingsWindow();
    SetupWindow& setupWindow();
    void sayWhereTheProgramIs();
    static void saveAtExit();

    /// The one whose journal is saved when the toolkit ends the process, which it does without returning
    /// here when the connection to the display breaks.
    static inline ResidentProgram* saved = nullptr;

    Modules modules;
    ApplicationBundle bundle;
    FileUserDefaults defaults;
    EditorPreferences preferences{defaults};
    LocalDiagnostics journal{defaults,
                             {Paths::data() + QStringLiteral("/Diagnostics"),
                              bundle.string(ApplicationBundle::shortVersionKey).value_or(QString()),
                              524288,
                              {}}};
    CaptureDisplay display;
    std::unique_ptr<PortalScreenAccess> portal = portalInCharge();
    X11KeyboardLayout keyboard;
    X11HotKeyBackend hotKeyBackend;
    DesktopSystemShortcuts systemShortcuts{desktopNamed(currentDesktopNames()),
                                           {QDBusConnection::sessionBus(), modules.desktopSource()},
                                           keyboard};
    HotKeyService hotkeys{hotKeyBackend, systemShortcuts};
    AutostartLoginItem loginItem;
    LaunchAtLoginService launchAtLogin{defaults, loginItem};
    UpdateService updates{UpdaterConfiguration::ofRunningProgram(modules.networkSource()), defaults};
    DesktopSettingsPages settingsPages;
    HTTPSReportSender reportSender{HTTPSReportSender::endpoint(bundle), modules.networkSource()};
    OnDemandScreenshotService screenshots{display.capturer, CaptureMethod::automatic, preferences};
    ShareDesktopServices shareServices{modules.desktopSource()};
    std::unique_ptr<CaptureSessionCoordinator> coordinator;
    AppController controller;
    PanelSources panelSources;
    std::unique_ptr<SettingsWindow> settings;
    std::unique_ptr<SetupWindow> setup;
    StatusNotifierHost busPanels;
    X11TrayHost embeddingPanels;
    StatusItem statusItem;
    TerminationSignals signals;
    NoticeWindow notice;
};
