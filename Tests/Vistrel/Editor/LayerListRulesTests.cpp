#include "Editor/LayerListRules.h"

#include "EditorTestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using EditorTestSupport::layer;

namespace {

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
    {"ontoItsOwnUpperHalf", 1, 1, 3, std::nullopt},
    {"ontoItsOwnLowerHalf", 1, 2, 3, std::nullopt},
    {"insertionBeyondTheEnd", 0, 9, 3, 0},
    {"rowThatIsGone", 3, 0, 3, std::nullopt},
};

} // namespace

TEST(LayerListRulesTests, insertionFollowsTheHalvesOfTheRows) {
    for (const auto& [y, expected] :
         {std::pair(-0.5, 0), {15.9, 0}, {16.0, 1}, {64.0, 2}, {96.0, 3}, {1e12, 3}})
        EXPECT_EQ(LayerListRules::insertion(y, 32, 3), expected) << y;
    EXPECT_EQ(LayerListRules::insertion(10, 32, 0), 0);
}

TEST(LayerListRulesTests, targetCountsFromTheOldestWithoutTheMovedLayer) {
    for (const TargetCase& c : targetCases)
        EXPECT_EQ(LayerListRules::annotationIndex(c.from, c.insertion, c.rows), c.expected) << c.name;
}

TEST(LayerListRulesTests, rowsAreNewestFirstAndDifferOnlyInWhatTheyShow) {
    std::vector<EditorAnnotation> layers = {layer(AnnotationTool::pen), layer(AnnotationTool::text, u"a"_s),
                                            layer(AnnotationTool::blur)};
    const std::vector<LayerRow> rows = LayerListRules::rows(layers);
    EXPECT_EQ(rows.front().id, layers.back().id);
    EXPECT_FALSE(LayerListRules::differ(rows, layers));
    layers[0].points = {{1, 2}, {3, 4}};
    layers[2].width = 40;
    EXPECT_FALSE(LayerListRules::differ(rows, layers)) << "points and width are not shown";

    auto retyped = layers;
    retyped[1].text = u"b"_s;
    EXPECT_TRUE(LayerListRules::differ(rows, retyped));
    auto swapped = layers;
    std::swap(swapped[0], swapped[1]);
    EXPECT_TRUE(LayerListRules::differ(rows, swapped));
    layers.pop_back();
    EXPECT_TRUE(LayerListRules::differ(rows, layers));
}
