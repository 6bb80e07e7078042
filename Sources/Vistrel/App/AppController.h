#pragma once

#include "App/CaptureSession.h"
#include "App/Notice.h"
#include "App/OnboardingFlow.h"
#include "App/ScreenAccessRequest.h"
#include "App/ShortcutSetupAlert.h"
#include "App/StatusMenu.h"
#include "Diagnostics/LocalDiagnostics.h"
#include "Settings/EditorPreferences.h"
#include "Shortcuts/HotKeyService.h"
#include "Shortcuts/ScreenshotShortcut.h"
#include "VistrelPlatform/SettingsPages.h"
#include "VistrelPlatform/UserDefaults.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

class LaunchAtLoginService;
class UpdateService;

/// The resident program: starts the services, turns hot keys and the status item into captures, keeps
/// the shortcuts registered and stored, and drives the first-run setup. Main thread. It knows no
/// window; what has to be shown goes through `Presentation`. Signals follow every assignment.
class AppController : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString shortcutLabel READ shortcutLabel NOTIFY shortcutLabelChanged)
    Q_PROPERTY(bool permissionGranted READ permissionGranted NOTIFY permissionGrantedChanged)
    Q_PROPERTY(QString shortcutMessage READ shortcutMessage NOTIFY shortcutMessageChanged)
    Q_PROPERTY(bool shortcutChangeFailed READ shortcutChangeFailed NOTIFY shortcutChangeFailedChanged)
    Q_PROPERTY(bool firstRun READ firstRun NOTIFY firstRunChanged)
    Q_PROPERTY(
        bool screenAccessSetupPending READ screenAccessSetupPending NOTIFY screenAccessSetupPendingChanged)
public:
    /// References are borrowed and outlive the controller.
    struct Services {
        EditorPreferences& preferences;
        UserDefaults& defaults;
        HotKeyService& hotkeys;
        LaunchAtLoginService& launchAtLogin;
        UpdateService& updates;
        LocalDiagnostics& diagnostics;
        SettingsPages& settingsPages;
        ScreenAccessRequest screenAccess;
        /// Called once, on first use, with what to do when a request finds no permission.
        std::function<CaptureSession(std::function<void()>)> makeCaptureSession;
        /// Runs on a worker thread.
        std::function<void()> pruneReportDrafts;
        /// Ends the event loop.
        std::function<void()> terminate;
        /// Installed, with an information file of its own; a bare executable never touches login items.
        bool installed = false;
        QStringList arguments;
    };

    /// Filled by whoever owns the windows. An empty callback is skipped.
    struct Presentation {
        std::function<void()> showSettings;
        std::function<void()> hideSettings;
        std::function<void()> showSetup;
        std::function<void()> hideSetup;
        /// As if the user had closed it; `setupWindowWillClose` follows.
        std::function<void()> closeSetup;
        std::function<void(const Notice&)> tell;
    };

    explicit AppController(Services supplied, QObject* parent = nullptr);
    ~AppController() override;

    Presentation presentation;

    const QString& shortcutLabel() const { return label; }
    bool permissionGranted() const { return granted; }
    const QString& shortcutMessage() const { return message; }
    bool shortcutChangeFailed() const { return changeFailed; }
    const std::optional<ShortcutSetupAlert>& shortcutAlert() const { return alert; }
    bool firstRun() const { return isFirstRun; }
    bool screenAccessSetupPending() const { return setupPending; }
    const OnboardingFlow& onboarding() const { return flow; }
    bool needsSetup() const { return isFirstRun || !granted || setupPending; }

    std::vector<ScreenshotShortcut> registeredShortcuts() const;
    EditorPreferences& editorPreferences() { return services.preferences; }
    UserDefaults& userDefaults() { return services.defaults; }
    UpdateService& updates() { return services.updates; }
    LocalDiagnostics& diagnostics() { return services.diagnostics; }

    void applicationDidFinishLaunching();
    void applicationDidBecomeActive();
    /// Ends the journal; returns when it is on the disk.
    void applicationWillTerminate();
    void setupWindowWillClose();

    void captureNow();
    /// A desktop's binding asks for a capture: as the shortcut does, whatever of ours is open.
    void captureAsked();
    void showSettings();
    void toggleLaunchAtLogin();
    void openLoginItems();
    void quit();
    void perform(StatusMenu::Command command);
    /// Reads the login item anew; `statusMenuChanged` follows.
    void refreshMenu();
    const std::vector<StatusMenu::Item>& statusMenu() const { return menu; }

    /// Registers only `shortcut`; false leaves what was registered and raises `shortcutAlert`.
    bool choose(const ScreenshotShortcut& shortcut);
    void clearShortcutAlert();
    /// While one is recorded, the registered chords reach the recorder instead of capturing.
    void setRecordingShortcut(bool recording);
    void requestPermission();
    void completeOnboarding();
    void showCaptureShortcutSetup();
    bool hasSettings(SettingsPage page) const { return services.settingsPages.has(page); }
    /// Opens a page of the desktop's settings; where there is none, `shortcutMessage` says the way.
    void openSettings(SettingsPage page);
    void presentSettingsWindow();
    /// Puts the setup window away while the user is in the desktop's own settings.
    void hideWindows();

Q_SIGNALS:
    void shortcutLabelChanged();
    void permissionGrantedChanged();
    void shortcutMessageChanged();
    void shortcutChangeFailedChanged();
    void shortcutAlertChanged();
    void firstRunChanged();
    void screenAccessSetupPendingChanged();
    void onboardingChanged();
    /// The setup is over and nothing else is shown.
    void onboardingCompleted();
    void statusMenuChanged();

private:
    CaptureSession& session();
    void hotKeyPressed(CaptureTime::Instant instant);
    void readSetupState();
    void applyLaunchAtLoginDefault();
    void tell(const Notice& notice);
    void journal(Diagnostic::Action action, const Diagnostic::Details& details = {});

    void registerStoredShortcuts();
    void registerDefaultIfNothingIs();
    void revalidateShortcuts();
    void persistShortcuts();
    void reportShortcutFailure(const Error& error);
    void refreshState();
    QString joinedLabels() const;

    void presentSetupWindow(bool returnToSettings);
    void finishPermissionRequest(bool isGranted);
    void updatePermission();

    void setShortcutMessage(const QString& text);
    void setShortcutChangeFailed(bool failed);
    void setShortcutAlert(std::optional<ShortcutSetupAlert> shown);
    void setPermissionGranted(bool isGranted);
    void setFirstRun(bool first);
    void setScreenAccessSetupPending(bool pending);
    void setOnboardingStep(OnboardingFlow::Step step);

    Services services;
    std::optional<CaptureSession> captureSession;
    QString label = QStringLiteral("Not registered");
    QString message;
    std::optional<ShortcutSetupAlert> alert;
    std::vector<StatusMenu::Item> menu;
    OnboardingFlow flow;
    bool granted = false;
    bool changeFailed = false;
    bool isFirstRun = false;
    bool setupPending = false;
    bool requestingScreenAccess = false;
    bool diagnosticSessionStarted = false;
    bool returnToSettingsAfterSetup = false;
};
