#include "Editor/LayerListRules.h"

#include "EditorTestSupport.h"

#include <gtest/gtest.h>

using EditorTestSupport::layer;

namespace {

struct InsertionCase {
    const char* name;
    double y;
    int rows;
    int expected;
};
const InsertionCase insertionCases[] = {
    {"aboveTheFirstRow", -0.5, 3, 0},
    {"upperHalfOfFirst", 15.9, 3, 0},
    {"middleOfFirstCountsAsLower", 16, 3, 1},
    {"lowerHalfOfFirst", 31, 3, 1},
    {"upperHalfOfLast", 64, 3, 2},
    {"lowerHalfOfLast", 95, 3, 3},
    {"justBelowTheRows", 96, 3, 3},
    {"farBelow", 1e12, 3, 3},
    {"noRows", 10, 0, 0},
};

struct TargetCase {
    const char* name;
    int from;
    int insertion;
    int rows;
    std::optional<int> expected;
};
const TargetCase targetCases[] = {
    {"newestBelowOldest", 0, 3, 3, 0},
    {"oldestAboveNewest", 2, 0, 3, 2},
    {"middleUp", 1, 0, 3, 2},
    {"middleDown", 1, 3, 3, 0},
    {"ontoItsOwnUpperHalf", 1, 1, 3, std::nullopt},
    {"ontoItsOwnLowerHalf", 1, 2, 3, std::nullopt},
    {"insertionBeyondTheEnd", 0, 9, 3, 0},
    {"onlyLayer", 0, 1, 1, std::nullopt},
    {"rowThatIsGone", 3, 0, 3, std::nullopt},
    {"negativeRow", -1, 0, 3, std::nullopt},
};

} // namespace

TEST(LayerListRulesTests, insertionFollowsTheHalvesOfTheRows) {
    for (const InsertionCase& c : insertionCases)
        EXPECT_EQ(LayerListRules::insertion(c.y, 32, c.rows), c.expected) << c.name;
    EXPECT_EQ(LayerListRules::insertion(50, 0, 3), 0) << "a list without height";
}

TEST(LayerListRulesTests, targetCountsFromTheOldestWithoutTheMovedLayer) {
    for (const TargetCase& c : targetCases)
        EXPECT_EQ(LayerListRules::annotationIndex(c.from, c.insertion, c.rows), c.expected) << c.name;
}

TEST(LayerListRulesTests, rowsAreNewestFirstAndDifferOnlyInWhatTheyShow) {
    std::vector<EditorAnnotation> layers = {layer(AnnotationTool::pen),
                                            layer(AnnotationTool::text, QStringLiteral("a")),
                                            layer(AnnotationTool::blur)};
    const std::vector<LayerRow> rows = LayerListRules::rows(layers);
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows.front().id, layers.back().id);
    EXPECT_EQ(rows.back().tool, AnnotationTool::pen);
    EXPECT_FALSE(LayerListRules::differ(rows, layers));

    layers[0].points = {{1, 2}, {3, 4}};
    layers[2].width = 40;
    EXPECT_FALSE(LayerListRules::differ(rows, layers)) << "points and width are not shown";

    auto retyped = layers;
    retyped[1].text = QStringLiteral("b");
    EXPECT_TRUE(LayerListRules::differ(rows, retyped));
    auto swapped = layers;
    std::swap(swapped[0], swapped[1]);
    EXPECT_TRUE(LayerListRules::differ(rows, swapped));
    layers.pop_back();
    EXPECT_TRUE(LayerListRules::differ(rows, layers));
    EXPECT_FALSE(LayerListRules::differ({}, {}));
}

TEST(LayerListRulesTests, labelsShowTheToolOrTheTextInOneLine) {
    EXPECT_EQ(LayerListRules::label({{}, AnnotationTool::blur, {}}), QStringLiteral("Blur Marker"));
    EXPECT_EQ(LayerListRules::label({{}, AnnotationTool::text, QStringLiteral("one\ntwo\n\n✓")}),
              QStringLiteral("Text: one two  ✓"));
    EXPECT_LT(LayerListRules::label({{}, AnnotationTool::text, QString(100000, u'x')}).size(), 1000);
}

TEST(LayerListRulesTests, autoScrollStartsAtTheEdgesAndStaysWithinItsPace) {
    EXPECT_EQ(LayerListRules::autoScroll(80, 160), 0);
    EXPECT_LT(LayerListRules::autoScroll(4, 160), 0);
    EXPECT_GT(LayerListRules::autoScroll(156, 160), 0);
    EXPECT_LT(LayerListRules::autoScroll(-20, 160), LayerListRules::autoScroll(-5, 160));
    EXPECT_EQ(LayerListRules::autoScroll(5000, 160), -LayerListRules::autoScroll(-5000, 160));
}
