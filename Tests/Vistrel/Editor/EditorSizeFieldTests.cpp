#include "Editor/EditorSizeField.h"

#include "EditorTestSupport.h"

#include <gtest/gtest.h>

using namespace EditorTestSupport;

TEST(EditorSizeFieldTests, onlyWholeDecimalNumbersCount) {
    EXPECT_EQ(EditorSizeField::number(QStringLiteral("007")), 7);
    EXPECT_EQ(EditorSizeField::number(QStringLiteral("-999999999999")), -1'000'000'000);
    for (const char* text : {"+", " 5", "5 ", "٣"})
        EXPECT_EQ(EditorSizeField::number(QString::fromUtf8(text)), std::nullopt) << text;
}

TEST(EditorSizeFieldTests, whatWasTypedIsReportedOnceAndNotOverwritten) {
    QWidget window;
    EditorSizeField field(&window);
    QWidget other(&window);
    other.setFocusPolicy(Qt::StrongFocus);
    int commits = 0;
    field.onCommit = [&] { ++commits; };
    present(window);
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, QStringLiteral("42"));
    field.showSize(9);
    EXPECT_EQ(field.text(), QStringLiteral("42")) << "it is still being typed";
    QTest::keyClick(&field, Qt::Key_Return);
    other.setFocus();
    EXPECT_EQ(commits, 1) << "nothing typed since";
    field.setFocus();
    QTest::keyClicks(&field, QStringLiteral("5"));
    other.setFocus();
    EXPECT_EQ(commits, 2);
    field.showSize(9);
    EXPECT_EQ(field.text(), QStringLiteral("9"));
}
