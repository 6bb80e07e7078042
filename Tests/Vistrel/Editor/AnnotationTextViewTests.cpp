#include "Editor/AnnotationTextView.h"

#include "Annotations/AnnotationTextLayout.h"
#include "EditorTestSupport.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QScrollBar>
#include <gtest/gtest.h>

using namespace EditorTestSupport;

class AnnotationTextViewTests : public ::testing::Test {
protected:
    void SetUp() override {
        window.resize(800, 600);
        view.setAvailableSize({600, 400});
        view.setFontSize(24);
        view.setAnchor({20, 30});
        view.onCommit = [this] { ++commits; };
        view.onCancel = [this] { ++cancels; };
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
    int commits = 0;
    int cancels = 0;
};

struct MeasureCase {
    const char* name;
    QString text;
    double fontSize;
    Size available;
};
const MeasureCase measureCases[] = {
    {"empty", QString(), 24, {600, 400}},
    {"word", QStringLiteral("Hello"), 24, {600, 400}},
    {"fractionOfAPoint", QStringLiteral("Hello world"), 20.8333, {600, 400}},
    {"tiny", QStringLiteral("Hello world"), 1.4, {600, 400}},
    {"trailingLineFeed", QStringLiteral("one\n"), 24, {600, 400}},
    {"onlyLineFeeds", QStringLiteral("\n\n\n"), 24, {600, 400}},
    {"wraps", QStringLiteral("a longer line that has to wrap at words"), 24, {150, 400}},
    {"wordWiderThanTheBox", QString(60, u'W'), 24, {150, 400}},
    {"cutAtTheBottom", QStringLiteral("1\n2\n3\n4\n5\n6\n7\n8\n9"), 24, {150, 60}},
    {"trailingSpaces", QStringLiteral("ab      "), 24, {600, 400}},
    {"trailingSpacesBeyondTheBox", QStringLiteral("abcdef          "), 24, {100, 400}},
    {"tabs", QStringLiteral("a\tb\tc"), 24, {600, 400}},
    {"rightToLeft", QStringLiteral("שלום עולם"), 24, {600, 400}},
    {"mixedDirections", QStringLiteral("abc שלום 123\nعربي"), 24, {600, 400}},
    {"emoji", QStringLiteral("👩‍👩‍👧 ok 🎉"), 24, {600, 400}},
    {"nothingAvailable", QStringLiteral("abc"), 24, {0, 0}},
    {"lineSeparator", QString(QStringLiteral("ab") + QChar(0x2028) + QStringLiteral("c")), 24, {600, 400}},
};

TEST_F(AnnotationTextViewTests, theBoxIsTheOneOfTheFinishedLayer) {
    for (const MeasureCase& c : measureCases) {
        view.setFontSize(c.fontSize);
        view.setAvailableSize(c.available);
        view.setString(c.text);
        const Size expected = AnnotationTextLayout::size(c.text, c.fontSize, c.available);
        EXPECT_EQ(view.box(), QRectF(20, 30, expected.width, expected.height)) << c.name;
        EXPECT_TRUE(QRectF(view.geometry()).contains(view.box())) << c.name;
        EXPECT_EQ(view.string(), c.text) << c.name;
    }
}

TEST_F(AnnotationTextViewTests, theBoxFollowsEveryEditAsIfMeasuredAnew) {
    view.setAvailableSize({200, 300});
    const auto expectFit = [&](const char* what) {
        const Size expected = AnnotationTextLayout::size(view.string(), 24, {200, 300});
        EXPECT_EQ(view.box().size(), QSizeF(expected.width, expected.height)) << what;
    };
    QTest::keyClicks(&view, QStringLiteral("some words that wrap"));
    expectFit("typed");
    QTest::keyClick(&view, Qt::Key_Return);
    QTest::keyClick(&view, Qt::Key_Return);
    QTest::keyClicks(&view, QStringLiteral("end"));
    expectFit("new paragraphs");
    QTest::keyClick(&view, Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClick(&view, Qt::Key_Return);
    expectFit("split at the start");
    for (int i = 0; i < 30; ++i)
        QTest::keyClick(&view, Qt::Key_Delete);
    expectFit("paragraphs joined and words removed");
    QTest::keyClick(&view, Qt::Key_Z, Qt::ControlModifier);
    expectFit("undone");
    view.setFontSize(40);
    EXPECT_EQ(view.box().width(), AnnotationTextLayout::size(view.string(), 40, {200, 300}).width);
}

/// Editor and layer painted over each other must be the same picture.
TEST_F(AnnotationTextViewTests, theEditorPaintsWhatTheLayerWill) {
    for (const MeasureCase& c : measureCases) {
        view.clearFocus(); // Without its caret.
        view.setInkColor(Qt::blue);
        view.setFontSize(c.fontSize);
        view.setAvailableSize(c.available);
        view.setAnchor({20.25, 30.5});
        view.setString(c.text);

        QImage typed(640, 460, QImage::Format_ARGB32_Premultiplied);
        typed.fill(Qt::white);
        view.render(&typed, view.pos(), QRegion(), QWidget::DrawChildren);

        QImage finished = typed;
        finished.fill(Qt::white);
        EditorAnnotation layer;
        layer.tool = AnnotationTool::text;
        layer.width = c.fontSize;
        layer.color = Qt::blue;
        layer.text = c.text;
        const QRectF box = view.box();
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
        EXPECT_EQ(different, 0) << c.name;
    }
}

TEST_F(AnnotationTextViewTests, keysCommitCancelAndBreakLines) {
    struct KeyCase {
        const char* name;
        int key;
        Qt::KeyboardModifiers modifiers;
        int commits, cancels;
        QString text;
    };
    const QString broken = QStringLiteral("ab\n");
    const QString same = QStringLiteral("ab");
    const KeyCase cases[] = {
        {"return", Qt::Key_Return, Qt::NoModifier, 0, 0, broken},
        {"shiftReturn", Qt::Key_Return, Qt::ShiftModifier, 0, 0, broken},
        {"keypadEnter", Qt::Key_Enter, Qt::KeypadModifier, 0, 0, broken},
        {"controlReturn", Qt::Key_Return, Qt::ControlModifier, 1, 0, same},
        {"superReturn", Qt::Key_Return, Qt::MetaModifier, 1, 0, same},
        {"controlKeypadEnter", Qt::Key_Enter, Qt::ControlModifier | Qt::KeypadModifier, 1, 0, same},
        {"superKeypadEnter", Qt::Key_Enter, Qt::MetaModifier | Qt::KeypadModifier, 1, 0, same},
        {"escape", Qt::Key_Escape, Qt::NoModifier, 0, 1, same},
        {"tab", Qt::Key_Tab, Qt::NoModifier, 0, 0, QStringLiteral("ab\t")},
        {"superLetter", Qt::Key_P, Qt::MetaModifier, 0, 0, same},
    };
    for (const KeyCase& c : cases) {
        commits = cancels = 0;
        view.setString(same);
        QTest::keyClick(&view, static_cast<Qt::Key>(c.key), c.modifiers);
        EXPECT_EQ(commits, c.commits) << c.name;
        EXPECT_EQ(cancels, c.cancels) << c.name;
        EXPECT_EQ(view.string(), c.text) << c.name;
    }
}

TEST_F(AnnotationTextViewTests, textIsKeptExactlyAsTyped) {
    for (const QString& text : {QStringLiteral("  a \n\n b\n"),
                                QString(QStringLiteral("no") + QChar::Nbsp + QStringLiteral("break")),
                                QStringLiteral("\t\ttabs"), QStringLiteral("e\u0301🏳️‍🌈")}) {
        view.setString(text);
        EXPECT_EQ(view.string(), text);
    }
}

TEST_F(AnnotationTextViewTests, theClipboardCarriesPlainTextOnly) {
    view.setString(QStringLiteral("one\ntwo"));
    QTest::keyClick(&view, Qt::Key_A, Qt::MetaModifier);
    QTest::keyClick(&view, Qt::Key_C, Qt::MetaModifier);
    const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
    EXPECT_EQ(copied->text(), QStringLiteral("one\ntwo"));
    EXPECT_FALSE(copied->hasHtml());

    auto* rich = new QMimeData;
    rich->setHtml(QStringLiteral("<b>bold</b>"));
    rich->setText(QStringLiteral("bold\r\nline"));
    QGuiApplication::clipboard()->setMimeData(rich);
    QTest::keyClick(&view, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(view.string(), QStringLiteral("bold\nline"));
    QTextCursor cursor = view.textCursor();
    cursor.setPosition(1);
    EXPECT_NE(cursor.charFormat().fontWeight(), int(QFont::Bold));
}

TEST_F(AnnotationTextViewTests, compositionIsShownInPlaceAndTakesRoom) {
    view.setString(QStringLiteral("a"));
    const double before = view.box().width();
    compose(QStringLiteral("にほん"));
    EXPECT_EQ(view.string(), QStringLiteral("a")) << "not typed yet";
    EXPECT_EQ(view.box().width(),
              AnnotationTextLayout::size(QStringLiteral("aにほん"), 24, {600, 400}).width);
    EXPECT_GT(view.inputMethodQuery(Qt::ImCursorRectangle).toRectF().left(), before);
    compose({}, QStringLiteral("日本"));
    EXPECT_EQ(view.string(), QStringLiteral("a日本"));
    compose(QStringLiteral("x"));
    compose({});
    EXPECT_EQ(view.box().width(), AnnotationTextLayout::size(QStringLiteral("a日本"), 24, {600, 400}).width);
}

TEST_F(AnnotationTextViewTests, theCaretStandsWhereTheGlyphsArePainted) {
    view.setFontSize(10.45); // The font of whole pixels is smaller than the text.
    view.setString(QString(40, u'm'));
    EXPECT_NEAR(view.caretRect().center().x() + view.x(), view.box().right() - 1, 1.5);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {},
                      QPoint(qRound(view.box().width() / 2) + 4, view.height() / 2));
    EXPECT_EQ(view.textCursor().position(), 20);
}

TEST_F(AnnotationTextViewTests, aPressOnSelectedTextPlacesTheCaret) {
    view.setString(QStringLiteral("some words"));
    view.selectAll();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, QPoint(6, view.height() / 2));
    EXPECT_FALSE(view.textCursor().hasSelection());
    EXPECT_LE(view.textCursor().position(), 1);
    EXPECT_EQ(window.presses, 0);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, QPoint(8, view.height() / 2));
    EXPECT_EQ(view.textCursor().selectedText(), QStringLiteral("some"));
}

TEST_F(AnnotationTextViewTests, nothingScrollsWhenTheTextOutgrowsTheBox) {
    view.setAvailableSize({100, 60});
    for (int i = 0; i < 20; ++i) {
        QTest::keyClicks(&view, QStringLiteral("line"));
        QTest::keyClick(&view, Qt::Key_Return);
    }
    EXPECT_EQ(view.box().height(), 60);
    EXPECT_EQ(view.verticalScrollBar()->value(), 0);
    EXPECT_EQ(view.verticalScrollBar()->maximum(), 0);
}

TEST_F(AnnotationTextViewTests, growthIsReportedAfterTheBoxHasGrown) {
    std::vector<double> widths;
    view.onGrowth = [&] { widths.push_back(view.box().width()); };
    QTest::keyClicks(&view, QStringLiteral("abc"));
    ASSERT_GE(widths.size(), 3U);
    EXPECT_TRUE(std::ranges::is_sorted(widths));
    EXPECT_EQ(widths.back(), AnnotationTextLayout::size(QStringLiteral("abc"), 24, {600, 400}).width);
}
