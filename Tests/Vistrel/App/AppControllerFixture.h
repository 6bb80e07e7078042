#pragma once

#include "App/AppController.h"
#include "App/LaunchAtLoginService.h"
#include "Updates/UpdateService.h"
#include "VistrelPlatform/System/FileUserDefaults.h"

#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <map>

/// A controller on real services, with a window system, a desktop and windows that only write down what
/// is asked of them.
class AppControllerFixture {
public:
    class Registrar : public HotKeyBackend {
    public:
        HotKeyStatus registerHotKey(KeyCode key, ModifierMask, HotKeyId id) override {
            if (refused.contains(key))
                return hotKeyExists;
            live[id] = key;
            return hotKeyRegistered;
        }
        void unregisterHotKey(HotKeyId id) override { live.erase(id); }

        QList<KeyCode> refused;
        std::map<HotKeyId, KeyCode> live;
    };
    class Desktop : public SystemShortcuts {
    public:
        Result<std::vector<SystemShortcut>> read() const override { return table; }
        Result<std::vector<SystemShortcut>> table;
    };
    class Login : public LoginItem {
    public:
        LoginItemStatus status() const override { return LoginItemStatus::notRegistered; }
        Result<void> enroll() override { return {}; }
        Result<void> withdraw() override { return {}; }
    };
    class Pages : public SettingsPages {
    public:
        bool open(SettingsPage) override { return true; }
    };
    static inline const ScreenshotShortcut nine = ScreenshotShortcut::defaultShortcut();
    static inline const ScreenshotShortcut p{35, 768, QStringLiteral("P")};

    /// A user who has been through the setup and may capture.
    void completeSetup() {
        defaults.setNumber(QStringLiteral("onboardingVersion"), 2);
        granted = true;
    }

    AppController& make() {
        controller = std::make_unique<AppController>(services());
        const auto note = [this](const char* text) {
            return [this, text] { log << QString::fromLatin1(text); };
        };
        controller->presentation = {.showSettings = note("showSettings"),
                                    .hideSettings = note("hideSettings"),
                                    .showSetup = note("showSetup"),
                                    .hideSetup = note("hideSetup"),
                                    .closeSetup =
                                        [this] {
                                            log << QStringLiteral("closeSetup");
                                            controller->setupWindowWillClose();
                                        },
                                    .askToOpenLoginItems = {}};
        return *controller;
    }
    AppController& launch() {
        make().applicationDidFinishLaunching();
        return *controller;
    }

    /// The presentation's calls since the last look.
    QStringList takeLog() { return std::exchange(log, {}); }

    QTemporaryDir folder;
    FileUserDefaults defaults{folder.filePath(QStringLiteral("defaults.json"))};
    EditorPreferences preferences{defaults};
    Registrar registrar;
    Desktop desktop;
    HotKeyService hotkeys{registrar, desktop};
    UpdateService updates{UpdaterConfiguration{}, defaults};
    LocalDiagnostics journal{
        defaults, {folder.filePath(QStringLiteral("Journal")), QStringLiteral("development"), 524288, {}}};

    Login loginItem;
    LaunchAtLoginService login{defaults, loginItem};

    bool granted = false;
    bool busy = false;
    int begun = 0;
    std::function<void()> onNeedsPermission;
    Pages pages;
    QStringList log;
    std::unique_ptr<AppController> controller;

private:
    CaptureSession session() {
        CaptureSession session;
        session.begin = [this](CaptureTime::Instant, const std::shared_ptr<CaptureTiming>&) { ++begun; };
        session.close = [this] { log << QStringLiteral("close"); };
        session.prepareOverlays = [this] { log << QStringLiteral("prepare"); };
        session.beginPreview = [this] { log << QStringLiteral("preview"); };
        session.busy = [this] { return busy; };
        return session;
    }

    AppController::Services services() {
        return {.preferences = preferences,
                .defaults = defaults,
                .hotkeys = hotkeys,
                .launchAtLogin = login,
                .updates = updates,
                .diagnostics = journal,
                .settingsPages = pages,
                .screenAccess = {[this] { return granted; }, {}},
                .makeCaptureSession =
                    [this](std::function<void()> needsPermission) {
                        onNeedsPermission = std::move(needsPermission);
                        return session();
                    },
                .pruneReportDrafts = {},
                .terminate = [this] { log << QStringLiteral("terminate"); },
                .installed = false,
                .arguments = {}};
    }
};
