#include "Editor/EditorHint.h"

#include "EditorTestSupport.h"

#include <gtest/gtest.h>

TEST(EditorHint, StandsBesideTheHoveredControlWithinTheWindow) {
    const QRectF window(0, 0, 800, 600);
    const std::tuple<const char*, QRectF, QRectF> rows[] = {
        {"beside", {100, 100, 40, 40}, {146, 108.8, 66, 22.4}},
        {"atTheRight", {780, 100, 20, 40}, {734, 108.8, 66, 22.4}},
        {"atTheTop", {100, -20, 40, 20}, {146, 0, 66, 22.4}},
        {"atTheBottom", {100, 590, 40, 20}, {146, 577.6, 66, 22.4}},
    };
    for (const auto& [name, control, expected] : rows)
        EXPECT_EQ(EditorHint::frame(control, window, 49.2), expected) << name;
}

TEST(EditorHint, IsThereOnlyWhileTheControlIsHoveredAndNotPressed) {
    EditorTestSupport::Canvas window;
    QWidget control(&window);
    control.move(100, 100);
    control.setToolTip(QStringLiteral("Pen (P)"));
    EditorHint& hint = *new EditorHint(control);
    EditorTestSupport::present(window);
    hint.show();
    EXPECT_FALSE(hint.isShown()) << "nobody is there";
    const std::function<void()> ends[] = {
        [&] {
            QEvent leave(QEvent::Leave);
            QCoreApplication::sendEvent(&control, &leave);
        },
        [&] { QTest::mousePress(&control, Qt::LeftButton); },
        [&] { window.hide(); },
    };
    for (const auto& end : ends) {
        QEnterEvent enter({}, {}, {});
        QCoreApplication::sendEvent(&control, &enter);
        ASSERT_TRUE(hint.isPending());
        hint.show();
        ASSERT_TRUE(hint.isShown() && hint.shownBubble()->parentWidget() == &window);
        end();
        EXPECT_FALSE(hint.isShown() || hint.isPending());
    }
}
