#include "Vistrel/Settings/Windows/PanelFixture.h"

#include "Settings/Windows/AppPanel.h"
#include "Settings/Windows/EditorShortcutEntry.h"
#include "Settings/Windows/PageStyle.h"
#include "Settings/Windows/PageView.h"
#include "Updates/UpdateService.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QSlider>
#include <QTabBar>

namespace {

class SettingsWindowTest : public ::testing::Test, protected PanelFixture {
protected:
    /// What Alt and a letter reach in the page that is shown, the tabs included.
    void expectOneControlPerLetter() {
        QStringList texts;
        const auto* bar = find<QTabBar>(*settings, "settingsTabs");
        for (int index = 0; index < bar->count(); ++index)
            texts << bar->tabText(index);
        for (const auto* button : settings->findChildren<QAbstractButton*>())
            texts << button->text();
        for (const auto* label : settings->findChildren<QLabel*>())
            texts << (label->buddy() ? label->text() : QString());
        QStringList letters;
        for (const QString& text : std::as_const(texts)) {
            const QString keys = QKeySequence::mnemonic(text).toString();
            EXPECT_FALSE(letters.contains(keys)) << qPrintable(text);
            if (!keys.isEmpty())
                letters << keys;
        }
    }
};

TEST_F(SettingsWindowTest, OpensOnTheShortcutsAndFitsEveryPage) {
    completeSetup();
    open();
    controller->showSettings();
    SettingsTabsView& tabs = settings->tabs();
    EXPECT_EQ(tabs.selection(), SettingsTab::shortcuts);
    EXPECT_EQ(settings->windowTitle(), QStringLiteral("Vistrel Settings"));
    const auto* bar = find<QTabBar>(*settings, "settingsTabs");
    QStringList labels;
    QList<int> heights;
    for (int index = 0; index < bar->count(); ++index) {
        labels << withoutMnemonic(bar->tabText(index));
        tabs.select(static_cast<SettingsTab>(index));
        settle();
        EXPECT_EQ(settings->size(), settings->panel()->size());
        EXPECT_EQ(settings->panel()->height(), settings->panel()->heightForWidth(settings->width()));
        EXPECT_FALSE(heights.contains(settings->height())) << "the window follows its page";
        heights << settings->height();
    }
    EXPECT_EQ(labels, (QStringList{QStringLiteral("Shortcuts"), QStringLiteral("Appearance"),
                                   QStringLiteral("Updates"), QStringLiteral("Support")}));
    controller->showSettings();
    EXPECT_EQ(settings->tabs().selection(), SettingsTab::shortcuts) << "every presentation starts anew";
}

TEST_F(SettingsWindowTest, EverythingHasANameForScreenReadersAndTheKeyboard) {
    completeSetup();
    open();
    for (const SettingsTab tab :
         {SettingsTab::shortcuts, SettingsTab::appearance, SettingsTab::updates, SettingsTab::support}) {
        settings->present(tab);
        const QList<QWidget*> widgets = settings->findChildren<QWidget*>();
        for (const QWidget* widget : widgets) {
            if (widget->focusPolicy() == Qt::NoFocus || widget->inherits("QLabel") || !widget->isVisible())
                continue;
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
            EXPECT_FALSE(widget->objectName().isEmpty()) << widget->metaObject()->className();
            EXPECT_TRUE(widget->focusPolicy() & Qt::TabFocus) << qPrintable(widget->objectName());
        }
        expectOneControlPerLetter();
    }
}

TEST_F(SettingsWindowTest, KeysOfTheProgramWorkInItsWindows) {
    openSettings(SettingsTab::updates);
    const auto present = [this] {
        settings->present();
        QApplication::setActiveWindow(settings.get());
    };
    QApplication::setActiveWindow(settings.get());
    takeLog();
    QTest::keyClick(settings.get(), Qt::Key_Comma, Qt::ControlModifier);
    settle();
    EXPECT_EQ(settings->tabs().selection(), SettingsTab::shortcuts) << "shown anew";
    EXPECT_EQ(takeLog(), QStringList{QStringLiteral("close")});
    QTest::keyClick(settings.get(), Qt::Key_Return);
    EXPECT_FALSE(settings->isVisible()) << "Done is the default button";
    present();
    QTest::keyClick(settings.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(settings->isVisible());
    present();
    QTest::keyClick(settings.get(), Qt::Key_Q, Qt::ControlModifier);
    settle();
    EXPECT_TRUE(takeLog().contains(QStringLiteral("terminate")));
}

TEST_F(SettingsWindowTest, NotesStayReadableInBothPalettes) {
    const QPalette light(Qt::black, QColor(239, 239, 239), Qt::white, Qt::darkGray, Qt::gray, Qt::black,
                         Qt::white);
    const QPalette dark(Qt::white, QColor(43, 45, 48), Qt::gray, Qt::black, Qt::darkGray, Qt::white,
                        Qt::black);
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double value) {
            return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const QPalette before = QApplication::palette();
    openSettings(SettingsTab::updates);
    const auto* note =
        settings->findChild<QWidget*>(QStringLiteral("updatesPage"))->findChildren<TextLabel*>().last();
    for (const QPalette& palette : {light, dark}) {
        QApplication::setPalette(palette);
        settle();
        const double ink = luminance(note->palette().color(QPalette::WindowText));
        const double paper = luminance(palette.color(QPalette::Window));
        EXPECT_GE((std::max(ink, paper) + 0.05) / (std::min(ink, paper) + 0.05), 4.5);
    }
    QApplication::setPalette(before);
}

// Shortcuts

TEST_F(SettingsWindowTest, TheReferenceListsTheToolsByTheirKeys) {
    QStringList tools;
    for (const EditorShortcutEntry& entry : EditorShortcutEntry::tools())
        tools << entry.title + u' ' + entry.keys;
    EXPECT_EQ(tools.join(u','), QStringLiteral("Select V,Pen P,Line L,Arrow A,Rectangle R,Ellipse E,Marker H,"
                                               "Blur Marker B,Pixelate X,Text T"));
    EXPECT_EQ(EditorShortcutEntry::actions().size(), 11U);
}

TEST_F(SettingsWindowTest, ChangingTheCaptureShortcutLeadsThroughTheSetupAndBack) {
    openSettings(SettingsTab::shortcuts);
    EXPECT_EQ(text(*settings, "captureShortcut"), QStringLiteral("⇧⌘9"));
    controller->choose(p);
    EXPECT_EQ(text(*settings, "captureShortcut"), QStringLiteral("⇧⌘P"));
    click(*settings, "changeCaptureShortcut");
    EXPECT_FALSE(settings->isVisible());
    EXPECT_TRUE(setup->isVisible());
    setup->close();
    EXPECT_TRUE(settings->isVisible());
    EXPECT_FALSE(setup->isVisible());
}

// Appearance

TEST_F(SettingsWindowTest, ThePanelSizeIsSetByTheSliderAndReset) {
    openSettings(SettingsTab::appearance);
    auto* slider = find<QSlider>(*settings, "editorPanelSize");
    auto* reset = find(*settings, "resetEditorPanelSize");
    EXPECT_FALSE(reset->isEnabled());
    slider->setValue(101);
    EXPECT_EQ(preferences.scalePercent(), 101);
    EXPECT_EQ(text(*settings, "editorPanelPercent"), QStringLiteral("101%"));
    EXPECT_TRUE(reset->isEnabled());
    reset->click();
    EXPECT_EQ(slider->value(), 100);
    EXPECT_FALSE(reset->isEnabled());

    preferences.setScalePercent(99.6);
    EXPECT_TRUE(reset->isEnabled()) << "only exactly 100 needs no reset";
    EXPECT_EQ(text(*settings, "editorPanelPercent"), QStringLiteral("100%"));
    EXPECT_EQ(preferences.scalePercent(), 99.6) << "showing a value does not round it";
    slider->setValue(50);
    EXPECT_EQ(preferences.scalePercent(), 50);
}

TEST_F(SettingsWindowTest, ChoicesAreStoredAndFollowChangesMadeElsewhere) {
    openSettings(SettingsTab::appearance);
    auto* cancels = find(*settings, "doubleClickOutsideToCancel");
    auto* reduces = find(*settings, "downscaleRetinaScreenshots");
    auto* format = find<QComboBox>(*settings, "saveFormat");
    EXPECT_TRUE(cancels->isChecked() && reduces->isChecked());
    cancels->click();
    reduces->click();
    EXPECT_FALSE(preferences.doubleClickOutsideToCancel() || preferences.downscaleRetinaScreenshots());
    preferences.setDownscaleRetinaScreenshots(true);
    EXPECT_TRUE(reduces->isChecked());

    EXPECT_EQ(format->currentText(), QStringLiteral("png"));
    QTest::keyClick(format, Qt::Key_Down);
    EXPECT_EQ(preferences.saveFormat(), ScreenshotSaveFormat::jpg);
    EXPECT_EQ(defaults.string(QStringLiteral("screenshotSaveFormat")), QStringLiteral("jpg"));
    preferences.setSaveFormat(ScreenshotSaveFormat::png);
    EXPECT_EQ(format->currentText(), QStringLiteral("png"));
}

TEST_F(SettingsWindowTest, DiagnosticHistoryIsSwitchedOffAndCleared) {
    openSettings(SettingsTab::appearance);
    click(*settings, "keepDiagnosticHistory");
    EXPECT_EQ(defaults.boolean(QStringLiteral("localDiagnosticJournalEnabled")), false);
    EXPECT_TRUE(journalled().empty());
    click(*settings, "clearDiagnosticHistory");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !text(*settings, "diagnosticHistoryStatus").isEmpty(); }));
    EXPECT_EQ(text(*settings, "diagnosticHistoryStatus"),
              QStringLiteral("Local diagnostic history cleared."));
    click(*settings, "keepDiagnosticHistory");
    EXPECT_EQ(text(*settings, "diagnosticHistoryStatus"), QString());
    EXPECT_EQ(journalled(), std::vector{Diagnostic::Action::launch}) << "a fresh journal";
}

// Updates

TEST_F(SettingsWindowTest, WithoutAnUpdaterNothingCanBeChecked) {
    openSettings(SettingsTab::updates);
    EXPECT_FALSE(find(*settings, "checkForUpdates")->isEnabled());
    auto* automatic = find(*settings, "automaticallyChecks");
    automatic->click();
    EXPECT_TRUE(updates.automaticallyChecks());
    updates.setAutomaticallyChecks(false);
    EXPECT_FALSE(automatic->isChecked());
}

// Support

TEST_F(SettingsWindowTest, AReportIsSentOnceAndThanksTakeTheFormsPlace) {
    SettingsTabsView& tabs = openSettings(SettingsTab::support);
    find<QPlainTextEdit>(*settings, "problemReportComment")->setPlainText(QStringLiteral("It blinks."));
    click(*settings, "sendProblemReport");
    EXPECT_EQ(text(*settings, "problemReportStatus"), QStringLiteral("Sending…"));
    EXPECT_FALSE(find(*settings, "sendProblemReport")->isEnabled());
    ASSERT_TRUE(QTest::qWaitFor([this] { return !sender.ids.empty(); }));
    sender.answer(tl::unexpected(Error{ErrorDomain::system, 1, QStringLiteral("?")}));
    ASSERT_TRUE(QTest::qWaitFor([this] { return find(*settings, "sendProblemReport")->isEnabled(); }));
    EXPECT_EQ(text(*settings, "problemReportStatus"),
              QStringLiteral("Couldn’t confirm delivery. Please try again."));

    click(*settings, "sendProblemReport");
    ASSERT_TRUE(QTest::qWaitFor([this] { return sender.ids.size() == 2; }));
    sender.answer({});
    ASSERT_TRUE(QTest::qWaitFor(
        [this] { return settings->findChild<QLabel*>(QStringLiteral("problemReportID")) != nullptr; }));
    settle();
    EXPECT_EQ(text(*settings, "problemReportID"),
              QStringLiteral("Report ID: ") + sender.ids.back().toString(QUuid::WithoutBraces));
    EXPECT_EQ(settings->findChild<QWidget*>(QStringLiteral("sendProblemReport")), nullptr);
    EXPECT_EQ(settings->size(), settings->panel()->size()) << "the window shrinks to the thanks";

    tabs.select(SettingsTab::updates);
    tabs.select(SettingsTab::support);
    EXPECT_EQ(find<QPlainTextEdit>(*settings, "problemReportComment")->toPlainText(), QString());
    EXPECT_EQ(text(*settings, "problemReportStatus"), QString());
}

TEST_F(SettingsWindowTest, ReturnInTheThanksClosesTheWindow) {
    openSettings(SettingsTab::support);
    click(*settings, "sendProblemReport");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !sender.ids.empty(); }));
    sender.answer({});
    ASSERT_TRUE(QTest::qWaitFor(
        [this] { return settings->findChild<QLabel*>(QStringLiteral("problemReportID")) != nullptr; }));
    settle();
    QTest::keyClick(settings.get(), Qt::Key_Return);
    EXPECT_FALSE(settings->isVisible());
}

} // namespace
