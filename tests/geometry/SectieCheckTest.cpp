// The section grammar, the arc-chain plausibility check and the search for repeated stretches.
// Expected values come from the grammar by hand and from the geometry of a half circle of radius
// 10 about the origin.
#include "geometry/GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <vector>

using vx::CVXCoordArr;
using vxtest::Lijn;

namespace {

// A line with the given section codes; the points run along X so that no two coincide.
CVXCoordArr MetCodes(const std::vector<int> &codes) {
    CVXCoordArr arr;
    double x = 0.0;
    for (int c : codes) {
        vx::CVXCoord p(x, x * x, static_cast<char>(c));
        arr.Add(&p);
        x += 1.0;
    }
    return arr;
}

struct Grammatica {
    std::vector<int> codes;
    int nVerwacht;
};

} // namespace

TEST(SectieCheck, GrammarAnswersTheFirstOffendingIndex) {
    const std::vector<Grammatica> gevallen = {
        {{1}, -1},
        {{1, 0, 0}, -1},
        {{0, 0}, 0}, // the first point must start the line
        {{1, 8, 8, 8, 8}, -1},
        {{1, 8, 8, 8}, 3}, // ends between two 8s
        {{1, 8}, 1},
        {{1, 6, 6}, -1},
        {{1, 6}, 1}, // a single 6 at the end
        {{1, 7, 7}, -1},
        {{1, 7, 7, 7}, -1},
        {{1, 7, 7, 7, 7}, 3}, // nothing may follow a circle
        {{1, 0, 7}, 2},       // a 7 only directly after the start
        {{1, 6, 6, 8, 8}, -1},
        {{1, 6, 6, 8}, 3},
        {{1, 6, 6, 6, 0, 2}, -1},
        {{1, 1}, 1},
        {{1, 0, 9, 0}, 2}, // a forced point
        {{1, 0, 3}, 2},
        {{1, 8, 0}, 2},
        {{1, 7, 0}, 2},
        {{1, 7, 7, 0}, 3},
    };
    for (const Grammatica &g : gevallen) {
        const CVXCoordArr arr = MetCodes(g.codes);
        EXPECT_EQ(arr.nSectieOnlyTest2(), g.nVerwacht)
            << ::testing::PrintToString(vxtest::Codes(arr));
        EXPECT_EQ(static_cast<unsigned>(arr.nSectieOnlyTest2()) == 0xffffffffu, g.nVerwacht == -1);
    }
}

TEST(SectieCheck, SectieTest2AlsoFindsCoincidingNeighbours) {
    EXPECT_EQ(Lijn({{0, 0, 1}, {0, 0, 0}}).nSectieTest2(), 0);
    EXPECT_EQ(Lijn({{0, 0, 1}, {1, 0, 0}, {1, 0.0004, 0}}).nSectieTest2(), 1);
    EXPECT_EQ(Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}}).nSectieTest2(), -1);
    // The grammar comes first: bad codes are reported before equal points.
    EXPECT_EQ(Lijn({{0, 0, 1}, {0, 0, 0}, {1, 0, 3}}).nSectieTest2(), 2);
}

TEST(SectieCheck, CheckLinesArcsOnAHalfCircle) {
    // Half circle of radius 10 from (10, 0) over (0, 10) to (-10, 0). Its middle H is (0, 10),
    // chord c = 10·√2 = 14.142; the quarter point Q at 45° lies r(1 − cos 45°) = 2.9289 from
    // the chord to H (the sagitta p). p / r = 0.29289.
    const CVXCoordArr boog = Lijn({{10, 0, 1}, {0, 10, 8}, {-10, 0, 8}});
    int nI = 0;
    EXPECT_FALSE(boog.bCheckLinesArcs(nI, 14.0, 2.0, 100.0, 0.1, 100.0, 5)); // chord too long
    EXPECT_EQ(nI, 0);
    nI = 0;
    EXPECT_TRUE(boog.bCheckLinesArcs(nI, 15.0, 2.9, 1.0, 0.9, 100.0, 5)); // p > dGrens passes
    EXPECT_EQ(nI, 2);
    nI = 0;
    EXPECT_FALSE(boog.bCheckLinesArcs(nI, 15.0, 3.0, 9.9, 0.1, 100.0, 5)); // r > dMaxR
    nI = 0;
    EXPECT_TRUE(boog.bCheckLinesArcs(nI, 15.0, 3.0, 10.1, 0.29, 100.0, 5));
    nI = 0;
    EXPECT_FALSE(boog.bCheckLinesArcs(nI, 15.0, 3.0, 10.1, 0.3, 100.0, 5)); // p / r too small
    nI = 0;
    // dGrens is compared with the radius as well: 10.5 exceeds p, then r = 10 is below it.
    EXPECT_FALSE(boog.bCheckLinesArcs(nI, 15.0, 10.5, 100.0, 0.0, 100.0, 5));
}

TEST(SectieCheck, CheckLinesArcsCountsStraightStretchesInARow) {
    // Straight 3, straight 4, the half circle, straight 5.
    const CVXCoordArr lijn =
        Lijn({{17, 0, 1}, {14, 0, 0}, {10, 0, 0}, {0, 10, 8}, {-10, 0, 8}, {-10, -5, 0}});
    int nI = 0;
    EXPECT_FALSE(lijn.bCheckLinesArcs(nI, 15.0, 2.0, 100.0, 0.0, 100.0, 0));
    EXPECT_EQ(nI, 0); // nMaxRechten 0 fails at the first straight stretch
    nI = 0;
    EXPECT_FALSE(lijn.bCheckLinesArcs(nI, 15.0, 2.0, 100.0, 0.0, 100.0, 1));
    EXPECT_EQ(nI, 1);
    nI = 0;
    // The arc resets the counter, so the last stretch is the first of a new row.
    EXPECT_TRUE(lijn.bCheckLinesArcs(nI, 15.0, 2.0, 100.0, 0.0, 100.0, 2));
    EXPECT_EQ(nI, 5);
    nI = 0;
    EXPECT_FALSE(lijn.bCheckLinesArcs(nI, 15.0, 2.0, 100.0, 0.0, 4.5, 2)); // 5 > 4.5
    EXPECT_EQ(nI, 4);
    // Resuming behind a failure: from stretch 2 on only the arc and the last stretch count.
    nI = 2;
    EXPECT_TRUE(lijn.bCheckLinesArcs(nI, 15.0, 2.0, 100.0, 0.0, 100.0, 1));
}

TEST(SectieCheck, RepeatedStretchesForwardOrBackward) {
    EXPECT_TRUE(Lijn({{0, 0, 1}, {10, 0, 0}, {10, 5, 0}, {10, 0, 2}}).BevatIdentiekeLijndelen());
    EXPECT_TRUE(Lijn({{0, 0, 1}, {1, 0, 0}, {0, 0, 0}, {1, 0, 0}}).BevatIdentiekeLijndelen());
    EXPECT_FALSE(Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}})
                     .BevatIdentiekeLijndelen());
    // An arc and the same arc backward.
    EXPECT_TRUE(Lijn({{10, 0, 1}, {0, 10, 8}, {-10, 0, 8}, {0, 10, 8}, {10, 0, 8}})
                    .BevatIdentiekeLijndelen());
    // An arc is never compared with a straight stretch over the same ends, nor a spline.
    EXPECT_FALSE(Lijn({{10, 0, 1}, {0, 10, 8}, {-10, 0, 8}, {10, 0, 0}}).BevatIdentiekeLijndelen());
    EXPECT_FALSE(Lijn({{0, 0, 1}, {1, 0, 6}, {0, 0, 6}, {1, 0, 6}}).BevatIdentiekeLijndelen());
    EXPECT_FALSE(Lijn({{0, 0, 1}, {1, 1, 7}, {2, 0, 7}}).BevatIdentiekeLijndelen());
}
