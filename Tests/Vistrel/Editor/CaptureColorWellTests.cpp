#include "Editor/CaptureColorWell.h"

#include "EditorTestSupport.h"

#include <QColorDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QWindow>
#include <gtest/gtest.h>

using namespace EditorTestSupport;

TEST(CaptureColorWellTests, choicesAreOpaqueAndReportedOncePerGesture) {
    Canvas window;
    CaptureColorWell well{&window};
    std::vector<QColor> colors;
    well.onColor = [&](const QColor& color) { colors.push_back(color); };
    present(window);
    well.activate();
    QColorDialog& dialog = CaptureColorWell::sharedDialog();
    dialog.setCurrentColor(QColor(10, 20, 30, 128));
    EXPECT_EQ(colors, std::vector{QColor(10, 20, 30)});
    EXPECT_EQ(well.color(), QColor(10, 20, 30));

    colors.clear();
    QTest::mousePress(dialog.windowHandle(), Qt::LeftButton, {}, QPoint(2, 2));
    for (int level = 1; level <= 50; ++level)
        dialog.setCurrentColor(QColor(level, 0, 0));
    EXPECT_TRUE(colors.empty());
    EXPECT_EQ(well.color(), QColor(50, 0, 0)) << "the well follows";
    QTest::mouseRelease(dialog.windowHandle(), Qt::LeftButton, {}, QPoint(2, 2));
    QCoreApplication::processEvents();
    EXPECT_EQ(colors, std::vector{QColor(50, 0, 0)});
    well.closePicker();
}

TEST(CaptureColorWellTests, aColourPickedFromTheScreenIsOneChoice) {
    Canvas window;
    CaptureColorWell well{&window};
    std::vector<QColor> colors;
    well.onColor = [&](const QColor& color) { colors.push_back(color); };
    present(window);
    const std::tuple<const char*, Qt::Key, std::vector<QColor>> endings[] = {
        {"taken", Qt::Key_Return, {QColor(50, 0, 0)}},
        {"given up", Qt::Key_Escape, {}},
    };
    for (const auto& [name, key, expected] : endings) {
        SCOPED_TRACE(name);
        well.setColor(Qt::green);
        colors.clear();
        well.activate();
        QColorDialog& dialog = CaptureColorWell::sharedDialog();
        auto* pick = dialog.findChildren<QPushButton*>().first();
        for (QPushButton* button : dialog.findChildren<QPushButton*>())
            if (button->text().contains(QStringLiteral("Screen")))
                pick = button;
        QTest::mouseClick(pick, Qt::LeftButton);
        ASSERT_EQ(QWidget::mouseGrabber(), &dialog);
        for (int level = 1; level <= 50; ++level)
            dialog.setCurrentColor(QColor(level, 0, 0));
        EXPECT_TRUE(colors.empty());
        QTest::keyClick(dialog.windowHandle(), key);
        QCoreApplication::processEvents();
        EXPECT_EQ(QWidget::mouseGrabber(), nullptr);
        EXPECT_EQ(colors.size(), expected.size());
        well.closePicker();
    }
}

TEST(CaptureColorWellTests, theWindowTakesThePickerAlong) {
    Canvas window;
    CaptureColorWell well{&window};
    present(window);
    well.activate();
    ASSERT_TRUE(well.isActive());
    window.hide();
    EXPECT_FALSE(well.isActive());
}

TEST(CaptureColorWellTests, aCodeIsTypedWithOrWithoutItsSign) {
    Canvas window;
    CaptureColorWell well{&window};
    present(window);
    for (const auto& [typed, color] : {std::pair("1a2B3c", QColor(0x1A, 0x2B, 0x3C)),
                                       {"#00ff00", QColor(0, 255, 0)},
                                       {"f0f", QColor(255, 0, 255)}}) {
        well.activate();
        const auto fields = CaptureColorWell::sharedDialog().findChildren<QLineEdit*>();
        const auto code = std::ranges::find_if(
            fields, [](const QLineEdit* field) { return !qobject_cast<QSpinBox*>(field->parent()); });
        ASSERT_NE(code, fields.end());
        (*code)->selectAll();
        QTest::keyClicks(*code, QString::fromLatin1(typed));
        // Also no button of the dialog.
        QTest::keyClick(*code, Qt::Key_Return);
        EXPECT_EQ(well.color(), color) << typed;
        well.closePicker();
    }
}
