#include "Vistrel/Settings/Windows/PanelFixture.h"

#include "Settings/Windows/AppPanel.h"
#include "Settings/Windows/PageStyle.h"
#include "Settings/Windows/PageView.h"

#include <QCheckBox>
#include <QComboBox>
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

TEST_F(SettingsWindowTest, EveryPageFitsAndHasNamesForScreenReadersAndTheKeyboard) {
    completeSetup();
    open();
    QList<int> heights;
    for (const SettingsTab tab :
         {SettingsTab::shortcuts, SettingsTab::appearance, SettingsTab::updates, SettingsTab::support}) {
        settings->present(tab);
        settle();
        EXPECT_EQ(settings->size(), settings->panel()->size());
        EXPECT_EQ(settings->panel()->height(), settings->panel()->heightForWidth(settings->width()));
        EXPECT_FALSE(heights.contains(settings->height())) << "the window follows its page";
        heights << settings->height();
        const QList<QWidget*> widgets = settings->findChildren<QWidget*>();
        for (const QWidget* widget : widgets) {
            if (widget->focusPolicy() == Qt::NoFocus || widget->inherits("QLabel") || !widget->isVisible())
                continue;
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
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

TEST_F(SettingsWindowTest, ThePanelSizeIsSetByTheSliderAndReset) {
    openSettings(SettingsTab::appearance);
    auto* slider = find<QSlider>(*settings, "editorPanelSize");
    auto* reset = find(*settings, "resetEditorPanelSize");
    slider->setValue(101);
    EXPECT_EQ(preferences.scalePercent(), 101);
    EXPECT_EQ(text(*settings, "editorPanelPercent"), QStringLiteral("101%"));
    reset->click();
    EXPECT_EQ(slider->value(), 100);
    EXPECT_FALSE(reset->isEnabled());
    preferences.setScalePercent(99.6);
    EXPECT_TRUE(reset->isEnabled()) << "only exactly 100 needs no reset";
    EXPECT_EQ(text(*settings, "editorPanelPercent"), QStringLiteral("100%"));
    EXPECT_EQ(preferences.scalePercent(), 99.6) << "showing a value does not round it";
}

TEST_F(SettingsWindowTest, ChoicesAreStoredAndFollowChangesMadeElsewhere) {
    openSettings(SettingsTab::appearance);
    auto* cancels = find(*settings, "doubleClickOutsideToCancel");
    auto* reduces = find(*settings, "downscaleRetinaScreenshots");
    auto* format = find<QComboBox>(*settings, "saveFormat");
    cancels->click();
    reduces->click();
    EXPECT_FALSE(preferences.doubleClickOutsideToCancel() || preferences.downscaleRetinaScreenshots());
    preferences.setDownscaleRetinaScreenshots(true);
    EXPECT_TRUE(reduces->isChecked());
    QTest::keyClick(format, Qt::Key_Down);
    EXPECT_EQ(preferences.saveFormat(), ScreenshotSaveFormat::jpg);
    preferences.setSaveFormat(ScreenshotSaveFormat::png);
    EXPECT_EQ(format->currentText(), QStringLiteral("png"));
}

TEST_F(SettingsWindowTest, DiagnosticHistoryIsSwitchedOffAndCleared) {
    openSettings(SettingsTab::appearance);
    click(*settings, "keepDiagnosticHistory");
    EXPECT_EQ(defaults.boolean(QStringLiteral("localDiagnosticJournalEnabled")), false);
    click(*settings, "clearDiagnosticHistory");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !text(*settings, "diagnosticHistoryStatus").isEmpty(); }));
    EXPECT_EQ(text(*settings, "diagnosticHistoryStatus"),
              QStringLiteral("Local diagnostic history cleared."));
    click(*settings, "keepDiagnosticHistory");
    EXPECT_EQ(text(*settings, "diagnosticHistoryStatus"), QString());
    EXPECT_EQ(journal.snapshot().result().events.size(), 1U) << "a fresh journal begins with a launch";
}

} // namespace
