#include "Shortcuts/RecorderButton.h"

#include <QApplication>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr quint32 scanA = 38;
constexpr quint32 scan9 = 18;
constexpr quint32 scanPrint = 107;
constexpr quint32 scanF13 = 191;
constexpr quint32 scanTab = 23;
constexpr quint32 scanEscape = 9;
constexpr quint32 scanLeft = 113;
constexpr quint32 scanSuper = 133;

const QString idle = u"Set Shortcut…"_s;
const QString waiting = u"Press shortcut… (Esc cancels)"_s;
const QString refused = u"Use ⌘, ⌃, or Print Screen"_s;

class RecorderButtonTest : public testing::Test {
protected:
    void SetUp() override {
        ShortcutRecorder recorder;
        recorder.onChange = [this](const ScreenshotShortcut& shortcut) { recorded.push_back(shortcut); };
        recorder.onListening = [this](bool listening) { listenings.append(listening); };
        button = recorder.makeButton(&page);
        other = new QPushButton(&page);
        auto* layout = new QVBoxLayout(&page);
        layout->addWidget(button);
        layout->addWidget(other);
        page.show();
        QApplication::setActiveWindow(&page);
    }

    void press(int key, quint32 scanCode, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
               const QString& text = {}) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, scanCode, 0, 0, text);
        QApplication::sendEvent(button, &event);
    }

    std::vector<ScreenshotShortcut> recorded;
    QList<bool> listenings;
    QWidget page;
    RecorderButton* button = nullptr;
    QPushButton* other = nullptr;
};

} // namespace

TEST_F(RecorderButtonTest, RefusesThenAccepts) {
    EXPECT_EQ(button->text(), idle);
    button->click();
    EXPECT_EQ(button->text(), waiting);
    EXPECT_TRUE(button->hasFocus());
    press(Qt::Key_A, scanA, {}, u"a"_s);
    EXPECT_EQ(button->text(), refused);
    EXPECT_TRUE(button->recording());
    press(Qt::Key_Left, scanLeft, Qt::ControlModifier);
    EXPECT_TRUE(recorded.empty());
    press(Qt::Key_A, scanA, Qt::ControlModifier, u"\x01"_s);
    EXPECT_EQ(recorded, (std::vector<ScreenshotShortcut>{{0, 4096, u"A"_s}}));
    EXPECT_EQ(button->text(), idle);
    button->click();
    press(Qt::Key_Escape, scanEscape, Qt::MetaModifier);
    EXPECT_FALSE(button->recording());
    EXPECT_EQ(recorded.size(), 1U) << "Escape ends without a shortcut";
}

TEST_F(RecorderButtonTest, RecordsWhatWasPressed) {
    struct PressCase {
        int key;
        quint32 scanCode;
        Qt::KeyboardModifiers modifiers;
        ScreenshotShortcut expected;
    };
    constexpr auto superShift = Qt::MetaModifier | Qt::ShiftModifier;
    const PressCase rows[] = {
        {Qt::Key_ParenLeft, scan9, superShift, {25, 768, u"9"_s}},
        {Qt::Key_SysReq, scanPrint, Qt::AltModifier, {Key::printScreen, 0x800, u"Print Screen"_s}},
        {Qt::Key_F13, scanF13, {}, {105, 0, u"Print Screen (F13)"_s}},
        {Qt::Key_Tab, scanTab, Qt::ControlModifier, {48, 4096, u"TAB"_s}},
        {0x0444, scanA, Qt::ControlModifier, {0, 4096, u"Ф"_s}},
    };
    for (const PressCase& row : rows) {
        button->click();
        press(Qt::Key_Super_L, scanSuper);
        EXPECT_EQ(button->text(), waiting) << row.key;
        press(row.key, row.scanCode, row.modifiers);
        ASSERT_EQ(recorded.size(), 1U) << row.key;
        EXPECT_EQ(recorded.front(), row.expected) << qPrintable(recorded.front().keyLabel);
        recorded.clear();
    }
}

TEST_F(RecorderButtonTest, WhileRecordingNoShortcutOfThePageGetsTheKey) {
    for (const bool recording : {false, true}) {
        if (recording)
            button->click();
        QKeyEvent event(QEvent::ShortcutOverride, Qt::Key_Comma, Qt::MetaModifier, 59, 0, 0);
        event.ignore();
        QApplication::sendEvent(button, &event);
        EXPECT_EQ(event.isAccepted(), recording);
    }
}

TEST_F(RecorderButtonTest, HotKeysAreAskedToRestOnlyWhileItListens) {
    button->click();
    EXPECT_EQ(listenings, QList<bool>{true});
    other->setFocus();
    EXPECT_TRUE(button->recording());
    EXPECT_EQ(listenings, (QList<bool>{true, false}));
    button->setFocus();
    press(Qt::Key_A, scanA, Qt::ControlModifier);
    EXPECT_EQ(listenings, (QList<bool>{true, false, true, false}));
    button->click();
    page.hide();
    EXPECT_FALSE(button->recording());
    button->click();
    delete button;
    EXPECT_FALSE(listenings.last());
}
