#include "Editor/EditorSizeField.h"

#include "EditorTestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace EditorTestSupport;

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
    QTest::keyClicks(&field, u"42"_s);
    field.showSize(9);
    EXPECT_EQ(field.text(), u"42"_s) << "it is still being typed";
    QTest::keyClick(&field, Qt::Key_Return);
    other.setFocus();
    EXPECT_EQ(commits, 1) << "nothing typed since";
    field.setFocus();
    QTest::keyClicks(&field, u"5"_s);
    other.setFocus();
    EXPECT_EQ(commits, 2);
    field.showSize(9);
    EXPECT_EQ(field.text(), u"9"_s);
}
