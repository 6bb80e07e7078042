#include "Settings/Windows/PageScroller.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSlider>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

class PageScrollerTests : public ::testing::Test {
protected:
    PageScrollerTests() {
        auto* page = new QWidget;
        auto* rows = new QVBoxLayout(page);
        text = new QLabel(QStringLiteral("A sentence that needs one line here and two in less room."), page);
        text->setWordWrap(true);
        rows->addWidget(text);
        slider->setValue(50);
        picker->addItems({QStringLiteral("png"), QStringLiteral("jpg")});
        for (QWidget* control : std::initializer_list<QWidget*>{slider, picker, first, last}) {
            rows->addWidget(control);
            rows->addSpacing(60);
        }
        scroller.setPage(page);
        scroller.resize(text->sizeHint().width() + 40, 150);
        scroller.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&scroller));
    }
    bool isInSight(const QWidget& control) const {
        const QRect place(control.mapTo(scroller.viewport(), QPoint()), control.size());
        return scroller.viewport()->rect().contains(place);
    }
    bool hasBar() const { return scroller.verticalScrollBar()->isVisible(); }

    PageScroller scroller;
    QLabel* text;
    QSlider* slider = new QSlider(Qt::Horizontal);
    QComboBox* picker = new QComboBox;
    QPushButton* first = new QPushButton(QStringLiteral("&First"));
    QPushButton* last = new QPushButton(QStringLiteral("&Last"));
};

TEST_F(PageScrollerTests, whatGetsTheKeyboardComesIntoSight) {
    const auto tabTo = [this](QPushButton* control) {
        for (int step = 0; step < 10 && !control->hasFocus(); ++step)
            QTest::keyClick(&scroller, Qt::Key_Tab);
    };
    const auto give = [](QPushButton* control) { control->setFocus(); };
    const std::tuple<const char*, QPushButton*, std::function<void(QPushButton*)>> rows[] = {
        {"byTab", last, tabTo}, {"byTheProgram", first, give}};
    for (const auto& [name, control, focus] : rows) {
        scroller.verticalScrollBar()->setValue(0);
        ASSERT_FALSE(isInSight(*control)) << name;
        focus(control);
        EXPECT_TRUE(control->hasFocus() && isInSight(*control)) << name;
    }
}

TEST_F(PageScrollerTests, theWheelScrollsAndChangesNothing) {
    for (QWidget* control : std::initializer_list<QWidget*>{slider, picker}) {
        scroller.verticalScrollBar()->setValue(0);
        const QPoint place = control->rect().center();
        QWheelEvent wheel(place, control->mapToGlobal(place), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&wheel); // only those go on to the parents
        QCoreApplication::instance()->notify(control, &wheel);
        EXPECT_GT(scroller.verticalScrollBar()->value(), 0);
    }
    EXPECT_EQ(slider->value(), 50);
    EXPECT_EQ(picker->currentIndex(), 0);
}

TEST_F(PageScrollerTests, theBarIsThereOnlyWhileThePageNeedsIt) {
    EXPECT_TRUE(hasBar());
    scroller.resize(scroller.width(), scroller.heightForWidth(scroller.width()));
    QCoreApplication::processEvents();
    EXPECT_FALSE(hasBar()) << "the narrower page needed the bar itself";
    text->setText(text->text() + text->text());
    QCoreApplication::processEvents();
    EXPECT_TRUE(hasBar()) << scroller.heightForWidth(scroller.width()) << " in " << scroller.height();
}

} // namespace
