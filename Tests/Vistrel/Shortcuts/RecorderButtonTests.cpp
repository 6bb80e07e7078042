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
constexpr quint32 scanSuper = 133;

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

    void press(int key, quint32 scanCode, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers, scanCode, 0, 0);
        QApplication::sendEvent(button, &event);
    }

    std::vector<ScreenshotShortcut> recorded;
    QList<bool> listenings;
    QWidget page;
    RecorderButton* button = nullptr;
    QPushButton* other = nullptr;
};

} // namespace

TEST_F(RecorderButtonTest, RecordsWhatWasPressed) {
    constexpr auto superShift = Qt::MetaModifier | Qt::ShiftModifier;
    const std::tuple<int, quint32, Qt::KeyboardModifiers, ScreenshotShortcut> rows[] = {
        {Qt::Key_ParenLeft, scan9, superShift, {25, 768, u"9"_s}},
        {Qt::Key_SysReq, scanPrint, Qt::AltModifier, {Key::printScreen, 0x800, u"Print Screen"_s}},
        {Qt::Key_F13, scanF13, {}, {105, 0, u"Print Screen (F13)"_s}},
        {Qt::Key_Tab, scanTab, Qt::ControlModifier, {48, 4096, u"TAB"_s}},
        {0x0444, scanA, Qt::ControlModifier, {0, 4096, u"Ф"_s}},
    };
    for (const auto& [key, scanCode, modifiers, expected] : rows) {
        button->click();
        press(Qt::Key_Super_L, scanSuper);
        EXPECT_TRUE(button->recording()) << key;
        press(key, scanCode, modifiers);
        ASSERT_EQ(recorded.size(), 1U) << key;
        EXPECT_EQ(recorded.front(), expected) << qPrintable(recorded.front().keyLabel);
        recorded.clear();
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
