#include "Editor/AnnotationTextView.h"

#include "Annotations/AnnotationTextLayout.h"
#include "EditorTestSupport.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QPainter>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace EditorTestSupport;

class AnnotationTextViewTests : public ::testing::Test {
protected:
    void SetUp() override {
        window.resize(800, 600);
        view.setAvailableSize({600, 400});
        view.setFontSize(24);
        view.setAnchor({20, 30});
        present(window);
        view.setFocus();
    }
    void compose(const QString& preedit, const QString& commit = {}) {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(&view, &event);
    }

    Canvas window;
    AnnotationTextView view{&window};
};

const std::tuple<const char*, QString, double, Size> measureCases[] = {
    {"empty", QString(), 24, {600, 400}},
    {"fractionOfAPoint", u"Hello world"_s, 20.8333, {600, 400}},
    {"trailingLineFeed", u"one\n"_s, 24, {600, 400}},
    {"wraps", u"a longer line that has to wrap at words"_s, 24, {150, 400}},
    {"wordWiderThanTheBox", QString(60, u'W'), 24, {150, 400}},
    {"cutAtTheBottom", u"1\n2\n3\n4\n5\n6\n7\n8\n9"_s, 24, {150, 60}},
    {"trailingSpacesBeyondTheBox", u"abcdef          "_s, 24, {100, 400}},
    {"mixedDirections", u"abc שלום 123\nعربي"_s, 24, {600, 400}},
    {"nothingAvailable", u"abc"_s, 24, {0, 0}},
    {"lineSeparator", QString(u"ab"_s + QChar(0x2028) + u"c"_s), 24, {600, 400}},
};

TEST_F(AnnotationTextViewTests, theEditorMeasuresAndPaintsWhatTheLayerWill) {
    view.clearFocus(); // Without its caret.
    view.setInkColor(Qt::blue);
    view.setAnchor({20.25, 30.5});
    for (const auto& [name, text, fontSize, available] : measureCases) {
        view.setFontSize(fontSize);
        view.setAvailableSize(available);
        view.setString(text);
        const Size expected = AnnotationTextLayout::size(text, fontSize, available);
        const QRectF box = view.box();
        EXPECT_EQ(box, QRectF(20.25, 30.5, expected.width, expected.height)) << name;
        EXPECT_TRUE(QRectF(view.geometry()).contains(box)) << name;
        EXPECT_EQ(view.string(), text) << name;

        QImage typed(640, 460, QImage::Format_ARGB32_Premultiplied);
        typed.fill(Qt::white);
        QImage finished = typed;
        view.render(&typed, view.pos(), QRegion(), QWidget::DrawChildren);
        EditorAnnotation layer;
        layer.tool = AnnotationTool::text;
        layer.width = fontSize;
        layer.color = Qt::blue;
        layer.text = text;
        layer.points = {{box.left(), 460 - box.bottom()}, {box.right(), 460 - box.top()}};
        QPainter painter(&finished);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setClipRect(view.geometry());
        painter.translate(0, 460);
        painter.scale(1, -1);
        AnnotationTextLayout::draw(layer, painter);
        painter.end();

        int different = 0;
        for (int y = 0; y < typed.height(); ++y)
            for (int x = 0; x < typed.width(); ++x)
                different += std::abs(qGray(typed.pixel(x, y)) - qGray(finished.pixel(x, y))) > 24 ? 1 : 0;
        EXPECT_EQ(different, 0) << name;
    }
}

TEST_F(AnnotationTextViewTests, textBelowTheBoxIsSeenWhileItIsTyped) {
    const auto inkAt = [&](double fromTop) {
        QImage image(window.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        view.render(&image, view.pos(), QRegion(), QWidget::DrawChildren);
        // Some of the line's x-height, beside the caret.
        const QImage line = image.copy(QRect(21, qRound(fromTop) + 10, 14, 12));
        for (int y = 0; y < line.height(); ++y)
            for (int x = 0; x < line.width(); ++x)
                if (line.pixelColor(x, y) != Qt::white)
                    return true;
        return false;
    };
    view.setInkColor(Qt::blue);
    for (const double room : {5.0, 40.0}) {
        SCOPED_TRACE(room);
        view.setAvailableSize({600, room});
        view.setString({});
        for (const QChar typed : u"mm\nmm\nmm"_s) {
            if (typed == u'\n')
                QTest::keyClick(&view, Qt::Key_Return);
            else
                QTest::keyClicks(&view, typed);
            const QRectF caret = view.caretRect().translated(view.pos());
            EXPECT_LE(caret.bottom(), 30 + std::max(room, caret.height()) + 0.01);
            EXPECT_TRUE(view.geometry().contains(caret.toAlignedRect()));
            EXPECT_EQ(view.box().height(), AnnotationTextLayout::size(view.string(), 24, {600, room}).height)
                << "the layer's box stays";
        }
        EXPECT_TRUE(inkAt(view.caretRect().translated(view.pos()).top()));
        view.moveCursor(QTextCursor::Start);
        EXPECT_NEAR(view.caretRect().translated(view.pos()).top(),
                    std::min(30.0, 30 + room - view.caretRect().height()), 0.01);
    }
}

TEST_F(AnnotationTextViewTests, onlyPlainTextIsPasted) {
    auto* rich = new QMimeData;
    rich->setHtml(u"<b>bold</b>"_s);
    rich->setText(u"bold\r\nline"_s);
    QGuiApplication::clipboard()->setMimeData(rich);
    QTest::keyClick(&view, Qt::Key_V, Qt::MetaModifier);
    EXPECT_EQ(view.string(), u"bold\nline"_s);
}

TEST_F(AnnotationTextViewTests, compositionIsShownInPlaceAndTakesRoom) {
    view.setString(u"a"_s);
    const double before = view.box().width();
    compose(u"にほん"_s);
    EXPECT_EQ(view.string(), u"a"_s) << "not typed yet";
    EXPECT_EQ(view.box().width(), AnnotationTextLayout::size(u"aにほん"_s, 24, {600, 400}).width);
    EXPECT_GT(view.inputMethodQuery(Qt::ImCursorRectangle).toRectF().left(), before);
    compose({}, u"日本"_s);
    EXPECT_EQ(view.string(), u"a日本"_s);
}
