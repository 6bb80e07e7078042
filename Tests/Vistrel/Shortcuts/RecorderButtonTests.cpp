#include "Shortcuts/RecorderButton.h"

#include <QApplication>
#include <QKeyEvent>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

constexpr quint32 scanA = 38;
constexpr quint32 scan9 = 18;
constexpr quint32 scanComma = 59;
constexpr quint32 scanPrint = 107;
constexpr quint32 scanF13 = 191;
constexpr quint32 scanTab = 23;
constexpr quint32 scanEscape = 9;
constexpr quint32 scanLeft = 113;
constexpr quint32 scanSuper = 133;

const QString idle = QStringLiteral("Set Shortcut…");
const QString waiting = QStringLiteral("Press shortcut… (Esc cancels)");
const QString refused = QStringLiteral("Use ⌘, ⌃, or Print Screen");

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

struct PressCase {
    const char* name;
    int key;
    quint32 scanCode;
    Qt::KeyboardModifiers modifiers;
    ScreenshotShortcut expected;
};

} // namespace

TEST_F(RecorderButtonTest, RefusesThenAccepts) {
    EXPECT_EQ(button->text(), idle);
    button->click();
    EXPECT_EQ(button->text(), waiting);
    EXPECT_TRUE(button->hasFocus());
    press(Qt::Key_A, scanA, {}, QStringLiteral("a"));
    EXPECT_EQ(button->text(), refused);
    EXPECT_TRUE(button->recording());
    press(Qt::Key_Left, scanLeft, Qt::ControlModifier);
    EXPECT_TRUE(recorded.empty());
    press(Qt::Key_A, scanA, Qt::ControlModifier, QStringLiteral("\x01"));
    EXPECT_EQ(recorded, (std::vector<ScreenshotShortcut>{{0, 4096, QStringLiteral("A")}}));
    EXPECT_EQ(button->text(), idle);
    EXPECT_EQ(button->accessibleName(), idle);
}

TEST_F(RecorderButtonTest, RecordsWhatWasPressed) {
    const PressCase rows[] = {
        {"comma", Qt::Key_Comma, scanComma, Qt::MetaModifier, {43, 256, QStringLiteral(",")}},
        {"shiftedDigit",
         Qt::Key_ParenLeft,
         scan9,
         Qt::MetaModifier | Qt::ShiftModifier,
         {25, 768, QStringLiteral("9")}},
        {"print", Qt::Key_Print, scanPrint, {}, {Key::printScreen, 0, QStringLiteral("Print Screen")}},
        {"altPrint",
         Qt::Key_SysReq,
         scanPrint,
         Qt::AltModifier,
         {Key::printScreen, 0x800, QStringLiteral("Print Screen")}},
        {"F13", Qt::Key_F13, scanF13, {}, {105, 0, QStringLiteral("Print Screen (F13)")}},
        {"tab", Qt::Key_Tab, scanTab, Qt::ControlModifier, {48, 4096, QStringLiteral("TAB")}},
        {"otherLetters", 0x0444, scanA, Qt::ControlModifier, {0, 4096, QStringLiteral("Ф")}},
    };
    for (const PressCase& row : rows) {
        button->click();
        press(Qt::Key_Super_L, scanSuper);
        EXPECT_EQ(button->text(), waiting) << row.name;
        press(row.key, row.scanCode, row.modifiers);
        ASSERT_EQ(recorded.size(), 1U) << row.name;
        EXPECT_EQ(recorded.front(), row.expected) << row.name << qPrintable(recorded.front().keyLabel);
        recorded.clear();
    }
}

TEST_F(RecorderButtonTest, WhileRecordingNoShortcutOfThePageGetsTheKey) {
    QKeyEvent before(QEvent::ShortcutOverride, Qt::Key_Comma, Qt::MetaModifier, scanComma, 0, 0);
    before.ignore();
    QApplication::sendEvent(button, &before);
    EXPECT_FALSE(before.isAccepted());
    button->click();
    QKeyEvent during(QEvent::ShortcutOverride, Qt::Key_Comma, Qt::MetaModifier, scanComma, 0, 0);
    during.ignore();
    QApplication::sendEvent(button, &during);
    EXPECT_TRUE(during.isAccepted());
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
