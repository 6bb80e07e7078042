#include "Editor/LayerListRules.h"

#include <gtest/gtest.h>

TEST(LayerListRulesTests, targetCountsFromTheOldestWithoutTheMovedLayer) {
    struct TargetCase {
        const char* name;
        int from, insertion;
        std::optional<int> expected;
    };
    for (const TargetCase& row : {TargetCase{"newestBelowOldest", 0, 3, 0},
                                  {"oldestAboveNewest", 2, 0, 2},
                                  {"ontoItsOwnUpperHalf", 1, 1, std::nullopt},
                                  {"ontoItsOwnLowerHalf", 1, 2, std::nullopt},
                                  {"insertionBeyondTheEnd", 0, 9, 0},
                                  {"rowThatIsGone", 3, 0, std::nullopt}})
        EXPECT_EQ(LayerListRules::annotationIndex(row.from, row.insertion, 3), row.expected) << row.name;
}
