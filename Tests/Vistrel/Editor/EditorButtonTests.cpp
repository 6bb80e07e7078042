#include "Editor/EditorActionBar.h"
#include "Editor/EditorButton.h"
#include "Editor/EditorStepButton.h"
#include "EditorTestSupport.h"

#include <gtest/gtest.h>

using namespace EditorTestSupport;

class EditorButtonTests : public ::testing::Test {
protected:
    void SetUp() override {
        canvas.resize(200, 100);
        for (EditorButton* each : {&button, static_cast<EditorButton*>(&step)})
            each->onAction = [this] { ++actions; };
        button.setGeometry(10, 10, 40, 40);
        step.setGeometry(60, 10, 20, 30);
        present(canvas);
    }

    Canvas canvas;
    EditorButton button{&canvas};
    EditorStepButton step{true, &canvas};
    int actions = 0;
};

TEST_F(EditorButtonTests, aClickActsOnTheReleaseInside) {
    QTest::mousePress(&button, Qt::LeftButton);
    EXPECT_EQ(actions, 0);
    QTest::mouseRelease(&button, Qt::LeftButton);
    EXPECT_EQ(actions, 1);
    QTest::mousePress(&button, Qt::LeftButton);
    QTest::mouseRelease(&button, Qt::LeftButton, {}, QPoint(-30, -30));
    EXPECT_EQ(actions, 1) << "released elsewhere";
}

TEST_F(EditorButtonTests, aStepActsOncePerPress) {
    QTest::mousePress(&step, Qt::LeftButton);
    EXPECT_EQ(actions, 1);
    QTest::mouseRelease(&step, Qt::LeftButton);
    EXPECT_EQ(actions, 1);
    QTest::mousePress(&step, Qt::RightButton);
    EXPECT_EQ(actions, 1);
    step.setEnabled(false);
    QTest::mousePress(&step, Qt::LeftButton);
    EXPECT_EQ(actions, 1);
}

TEST_F(EditorButtonTests, keysPressTheButtonThatHasTheKeyboard) {
    for (EditorButton* each : {&button, static_cast<EditorButton*>(&step)}) {
        each->setFocus();
        const int before = actions;
        QTest::keyClick(each, Qt::Key_Space);
        QTest::keyClick(each, Qt::Key_Return);
        EXPECT_EQ(actions, before + 2);
    }
}

TEST_F(EditorButtonTests, theCanvasBelowGetsNoPressAndNoFocusMoves) {
    canvas.setFocusPolicy(Qt::StrongFocus);
    canvas.setFocus();
    QTest::mouseClick(&button, Qt::LeftButton);
    QTest::mouseClick(&button, Qt::RightButton);
    button.setEnabled(false);
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_EQ(canvas.presses, 0);
    EXPECT_TRUE(canvas.hasFocus());
}

TEST_F(EditorButtonTests, aMarkedButtonStaysMarkedUntilItsOwnerSaysSo) {
    button.setHighlighted(true);
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_TRUE(button.isHighlighted());
    button.setHighlighted(false);
    QTest::mouseClick(&button, Qt::LeftButton);
    EXPECT_FALSE(button.isHighlighted());
}

struct GlyphCase {
    const char* name;
    QSizeF size;
    double expected;
};
const GlyphCase glyphCases[] = {
    {"roomy", {40, 32}, 14},
    {"narrow", {12, 32}, 8},
    {"low", {30, 10}, 6},
    {"nothing", {4, 20}, 0},
};

TEST(EditorStepButtonTests, glyphsFitTheirButton) {
    for (const GlyphCase& c : glyphCases)
        EXPECT_EQ(EditorStepButton::glyphLength(c.size), c.expected) << c.name;
}

class EditorActionBarTests : public ::testing::Test {
protected:
    EditorButton& addIcon(const char* name) {
        auto* button = new EditorButton;
        button->setIconImage(QLatin1String(name), QString(), 39);
        bar.addArrangedSubview(*button);
        return *button;
    }
    EditorButton& addTitle(const QString& title) {
        auto* button = new EditorButton;
        button->setText(title);
        bar.addArrangedSubview(*button);
        return *button;
    }

    EditorActionBar bar;
};

TEST_F(EditorActionBarTests, itemsWantWhatTheirKindNeeds) {
    EXPECT_EQ(bar.preferredWidth(), 0);
    addIcon("copy");
    EXPECT_EQ(bar.preferredWidth(), 42);
    addTitle(QStringLiteral("Go"));
    EXPECT_EQ(bar.preferredWidth(), 42 + 86);
    bar.addArrangedSubview(*new QWidget);
    EXPECT_EQ(bar.preferredWidth(), 42 + 86 + 32);
    const EditorButton& wide = addTitle(QStringLiteral("A title that needs more room than others"));
    EXPECT_EQ(bar.preferredWidth(), 42 + 86 + 32 + wide.naturalWidth() + 4);
}

TEST_F(EditorActionBarTests, itemsShareTheBarWithoutGapsAtAnyScale) {
    for (const char* name : {"recording", "share", "save", "copy"})
        addIcon(name);
    for (const double scale : {0.4, 0.537, 0.8, 1.0, 1.5}) {
        bar.place({10.3, 20.6, 196 * scale, 44 * scale}, scale);
        EXPECT_EQ(bar.geometry().topLeft(), QPoint(10, 21));
        int x = 0;
        for (const QWidget* item : bar.arrangedSubviews()) {
            EXPECT_EQ(item->x(), x) << scale;
            EXPECT_NEAR(item->width(), 49 * scale, 1) << scale;
            EXPECT_EQ(item->height(), bar.height()) << scale;
            x += item->width();
        }
        EXPECT_EQ(x, bar.width()) << scale;
    }
    ASSERT_EQ(bar.separatorViews().size(), 3U);
    EXPECT_EQ(bar.separatorViews()[0]->objectName(), QStringLiteral("action-separator"));
}

TEST_F(EditorActionBarTests, separatorsAreOneDevicePixelAtHalfHeight) {
    addIcon("save");
    addIcon("copy");
    bar.place({0, 0, 84, 44}, 1);
    for (const double ratio : {1.0, 1.25, 1.5, 2.0}) {
        QImage image((QSizeF(bar.size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
        bar.render(&image);
        int inked = 0;
        const int y = qRound(22 * ratio);
        for (int x = qRound(39 * ratio); x < qRound(45 * ratio); ++x)
            inked += qGray(image.pixel(x, y)) < 220 ? 1 : 0;
        EXPECT_EQ(inked, 1) << ratio;
        EXPECT_GT(qGray(image.pixel(qRound(42 * ratio), qRound(6 * ratio))), 220) << ratio;
    }
}

TEST_F(EditorActionBarTests, theBarKeepsEveryPressFromTheCanvas) {
    Canvas canvas;
    canvas.resize(400, 100);
    bar.setParent(&canvas);
    addIcon("recording").setEnabled(false);
    bar.place({10, 10, 196, 44}, 1);
    present(canvas);
    QTest::mouseClick(canvas.windowHandle(), Qt::LeftButton, {}, QPoint(60, 30));
    EXPECT_EQ(canvas.presses, 0);
    QTest::mouseClick(canvas.windowHandle(), Qt::LeftButton, {}, QPoint(300, 30));
    EXPECT_EQ(canvas.presses, 1);
    bar.setParent(nullptr);
}
