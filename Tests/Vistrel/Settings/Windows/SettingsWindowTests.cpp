#include "Vistrel/Settings/Windows/PanelFixture.h"

#include "Settings/Windows/AppPanel.h"
#include "Settings/Windows/PageView.h"

#include <QTabBar>

using namespace Qt::StringLiterals;

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

TEST_F(SettingsWindowTest, DiagnosticHistoryIsSwitchedOffAndCleared) {
    openSettings(SettingsTab::appearance);
    click(*settings, "keepDiagnosticHistory");
    EXPECT_EQ(defaults.boolean(u"localDiagnosticJournalEnabled"_s), false);
    click(*settings, "clearDiagnosticHistory");
    ASSERT_TRUE(QTest::qWaitFor([this] { return !text(*settings, "diagnosticHistoryStatus").isEmpty(); }));
    EXPECT_EQ(text(*settings, "diagnosticHistoryStatus"), u"Local diagnostic history cleared."_s);
    click(*settings, "keepDiagnosticHistory");
    EXPECT_EQ(text(*settings, "diagnosticHistoryStatus"), QString());
    EXPECT_EQ(journal.snapshot().result().events.size(), 1U) << "a fresh journal begins with a launch";
}

} // namespace
