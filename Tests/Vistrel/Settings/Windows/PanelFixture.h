#pragma once

#include "Vistrel/App/AppControllerFixture.h"

#include "Reports/ProblemReportModel.h"
#include "Settings/Windows/PageView.h"
#include "Settings/Windows/SettingsWindow.h"
#include "Settings/Windows/SetupWindow.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>

/// Settings and setup windows on a controller whose presentation they are, as in the program.
class PanelFixture : public AppControllerFixture {
public:
    /// Never answers.
    class Sender : public ReportSending {
    public:
        QFuture<Result<void>> send(const QByteArray&, const QUuid&) override { return {}; }
    };

    /// Joins windows and controller.
    void open() {
        launch();
        sources = std::make_unique<PanelSources>(PanelSources{
            *controller,
            ApplicationBundle(folder.filePath(QStringLiteral("bin/vistrel"))),
            [this] {
                return std::make_unique<ProblemReportModel>(ProblemReportModel::Services{
                    journal, preferences, defaults, sender, [] { return true; }, [] { return 1; }, {}});
            },
            {}});
        settings = std::make_unique<SettingsWindow>(*sources);
        setup = std::make_unique<SetupWindow>(*sources);
        controller->presentation = {.showSettings = [this] { settings->present(); },
                                    .hideSettings = [this] { settings->hide(); },
                                    .showSetup = [this] { setup->present(); },
                                    .hideSetup = [this] { setup->hide(); },
                                    .closeSetup = [this] { setup->reject(); },
                                    .askToOpenLoginItems = {}};
    }
    /// The settings window on a tab, for a user past the setup.
    void openSettings(SettingsTab tab) {
        completeSetup();
        open();
        settings->present(tab);
    }

    template<class Widget = QAbstractButton>
    static Widget* find(const QWidget& root, const char* name) {
        auto* widget = root.findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    static QString text(const QWidget& root, const char* name) { return find<QLabel>(root, name)->text(); }
    /// What follows a click comes with the event loop.
    static void click(const QWidget& root, const char* name) {
        find(root, name)->click();
        settle();
    }
    static void settle() {
        for (int round = 0; round < 3; ++round)
            QApplication::processEvents();
    }

    Sender sender;
    std::unique_ptr<PanelSources> sources;
    std::unique_ptr<SettingsWindow> settings;
    std::unique_ptr<SetupWindow> setup;
};
