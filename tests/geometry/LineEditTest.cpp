// Line editing: removing points, closing, offsetting, snapping, squaring and removing doubles.
// Expected coordinates are worked out by hand in the comments beside them.
#include "geometry/GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using vx::CVXCoord;
using vx::CVXCoordArr;
using vxtest::Codes;
using vxtest::Lijn;

namespace {

// Offsets and intersections go through sines, cosines and quotients: a few ulps of 10.
constexpr double dAfronding = 1e-12;

void ExpectPunten(const CVXCoordArr &lijn, const std::vector<std::pair<double, double>> &xy,
                  double dTol = dAfronding) {
    ASSERT_EQ(lijn.GetSize(), static_cast<int>(xy.size()));
    for (int i = 0; i < lijn.GetSize(); ++i) {
        EXPECT_NEAR(lijn.Pt(i).m_dX, xy[static_cast<size_t>(i)].first, dTol) << "point " << i;
        EXPECT_NEAR(lijn.Pt(i).m_dY, xy[static_cast<size_t>(i)].second, dTol) << "point " << i;
    }
}

// Centre and radius of the arc of three points, for offsets that must keep the centre.
void ExpectBoog(const CVXCoordArr &lijn, int i, double cx, double cy, double r) {
    const CVXCoord *const boog[3] = {&lijn.Pt(i), &lijn.Pt(i + 1), &lijn.Pt(i + 2)};
    CVXCoord C;
    ASSERT_TRUE(C.bMiddelPunt(boog));
    EXPECT_NEAR(C.m_dX, cx, dAfronding);
    EXPECT_NEAR(C.m_dY, cy, dAfronding);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(C.dDist(*boog[k]), r, dAfronding);
}

} // namespace

TEST(LineEdit, RemoveFromLineRepairsTheStretchThatLosesAPoint) {
    // The end of an arc: the arc's other two points become straight.
    CVXCoordArr boog = Lijn({{0, 0, 1}, {5, 5, 8}, {10, 0, 8}, {15, 0, 0}});
    boog.RemoveFromLine(2);
    EXPECT_EQ(Codes(boog), (std::vector<int>{1, 0, 0}));
    ExpectPunten(boog, {{0, 0}, {5, 5}, {15, 0}});
    // The start of an arc as well: the new first point takes code 1.
    CVXCoordArr start = Lijn({{0, 0, 1}, {5, 5, 8}, {10, 0, 8}});
    start.RemoveFromLine(0);
    EXPECT_EQ(Codes(start), (std::vector<int>{1, 0}));
    // A spline of two points cannot lose one; a longer one can.
    CVXCoordArr kort = Lijn({{0, 0, 1}, {3, 2, 6}, {6, 0, 6}, {9, 0, 0}});
    kort.RemoveFromLine(1);
    EXPECT_EQ(Codes(kort), (std::vector<int>{1, 0, 0}));
    CVXCoordArr lang = Lijn({{0, 0, 1}, {3, 2, 6}, {6, 0, 6}, {9, 1, 6}});
    lang.RemoveFromLine(1);
    EXPECT_EQ(Codes(lang), (std::vector<int>{1, 6, 6}));
    // A closed circle becomes straight stretches.
    CVXCoordArr cirkel = Lijn({{10, 0, 1}, {0, 10, 7}, {-10, 0, 7}, {10, 0, 7}});
    cirkel.RemoveFromLine(2);
    EXPECT_EQ(Codes(cirkel), (std::vector<int>{1, 0, 0}));
}

TEST(LineEdit, RemoveDubbeleDropsNeighboursWithinTheInsertionTolerance) {
    CVXCoordArr schoon = Lijn({{0, 0, 1}, {0.0011, 0, 0}, {5, 0, 0}});
    schoon.SetUnChanged();
    EXPECT_FALSE(schoon.bRemoveDubbele());
    EXPECT_FALSE(schoon.Gewijzigd());
    EXPECT_EQ(schoon.GetSize(), 3);
    // Support and end point of an arc 0.0009 apart: the support point goes, the arc turns
    // straight; two further doubles in a row go one after the other.
    CVXCoordArr lijn =
        Lijn({{0, 0, 1}, {5, 5, 8}, {5, 5.0009, 8}, {9, 0, 0}, {9.0005, 0, 0}, {9.0009, 0, 0}});
    EXPECT_TRUE(lijn.bRemoveDubbele());
    EXPECT_EQ(Codes(lijn), (std::vector<int>{1, 0, 0}));
    ExpectPunten(lijn, {{0, 0}, {5, 5.0009}, {9.0009, 0}});
}

TEST(LineEdit, SluitAddsTheCornerOfEachModeAndTheClosingPoint) {
    // First stretch (0,0)→(10,0) along X; last stretch (10,0)→(13,4), direction (3,4).
    const CVXCoordArr open = Lijn({{0, 0, 1, 2.0}, {10, 0, 0}, {13, 4, 0, 4.0}});
    struct Geval {
        CVXCoordArr::SluitMode nMode;
        double x, y;
    };
    // Parallels: through (0,0) along (3,4) meets y = 4 (through (13,4) along X) at (3,4).
    // Square: x = 0 (square to X at (0,0)) meets (13,4) + t(−4,3) at t = 13/4: (0, 13.75).
    // Extended: y = 0 meets (10,0) + t(3,4) at t = 0: (10,0).
    for (const Geval &g :
         {Geval{CVXCoordArr::SluitEvenwijdig, 3, 4}, Geval{CVXCoordArr::SluitHaaks, 0, 13.75},
          Geval{CVXCoordArr::SluitVerlengd, 10, 0}}) {
        CVXCoordArr lijn(open);
        ASSERT_TRUE(lijn.bSluit(g.nMode)) << g.nMode;
        ExpectPunten(lijn, {{0, 0}, {10, 0}, {13, 4}, {g.x, g.y}, {0, 0}}, 1e-9);
        EXPECT_EQ(Codes(lijn), (std::vector<int>{1, 0, 0, 0, 0}));
        EXPECT_EQ(lijn.Pt(3).m_dZ, 3.0); // the mean of 2 and 4
        EXPECT_EQ(lijn.Pt(4).m_dZ, 2.0);
    }
    // Parallel end stretches never meet when extended: false, and the line stays.
    CVXCoordArr evenwijdig = Lijn({{0, 0, 1}, {10, 0, 0}, {10, 5, 0}, {0, 5, 0}});
    EXPECT_FALSE(evenwijdig.bSluit(CVXCoordArr::SluitVerlengd));
    EXPECT_EQ(evenwijdig.GetSize(), 4);
    // Refused: two points, an arc at the start, a mode outside the table.
    CVXCoordArr kort = Lijn({{0, 0, 1}, {10, 0, 0}});
    EXPECT_FALSE(kort.bSluit(CVXCoordArr::SluitHaaks));
    CVXCoordArr boog = Lijn({{0, 0, 1}, {5, 5, 8}, {10, 0, 8}, {10, 5, 0}});
    EXPECT_FALSE(boog.bSluit(CVXCoordArr::SluitHaaks));
    CVXCoordArr lijn(open);
    EXPECT_FALSE(lijn.bSluit(static_cast<CVXCoordArr::SluitMode>(3)));
    EXPECT_EQ(lijn.GetSize(), 3);
}

TEST(LineEdit, SchuifOfAClosedSquareMovesItsCornersDiagonallyToTheRight) {
    // Clockwise: up x = 0, right along y = 10, down x = 10, back along y = 0. To the right of
    // travel is inside: every side moves in by 1, every corner by √2 along the diagonal.
    const CVXCoordArr vierkant =
        Lijn({{0, 0, 1, 5.0}, {0, 10, 0, 6.0}, {10, 10, 0, 7.0}, {10, 0, 0, 8.0}, {0, 0, 0, 5.0}});
    CVXCoordArr binnen;
    ASSERT_TRUE(binnen.bSchuif(vierkant, 1.0, -1));
    ExpectPunten(binnen, {{1, 1}, {1, 9}, {9, 9}, {9, 1}, {1, 1}});
    EXPECT_EQ(Codes(binnen), Codes(vierkant));
    EXPECT_EQ(binnen.Pt(2).m_dZ, 7.0); // heights are taken over point by point
    // A negative distance goes left: outwards.
    CVXCoordArr buiten;
    ASSERT_TRUE(buiten.bSchuif(vierkant, -2.0, -1));
    ExpectPunten(buiten, {{-2, -2}, {-2, 12}, {12, 12}, {12, -2}, {-2, -2}});
}

TEST(LineEdit, SchuifOfOneStretchStretchesItsNeighbours) {
    // Stretch 1 runs up x = 10; 2 to its right puts it on x = 12. Stretches 0 (y = 0) and 2
    // (y = 10) stay on their carriers and reach it at (12, 0) and (12, 10).
    const CVXCoordArr lijn = Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}, {20, 10, 0}});
    CVXCoordArr deel;
    ASSERT_TRUE(deel.bSchuif(lijn, 2.0, 1));
    ExpectPunten(deel, {{0, 0}, {12, 0}, {12, 10}, {20, 10}});
    // The open ends of the whole line move too: stretch 0 to y = −2, stretch 2 to y = 8.
    CVXCoordArr alles;
    ASSERT_TRUE(alles.bSchuif(lijn, 2.0, -1));
    ExpectPunten(alles, {{0, -2}, {12, -2}, {12, 8}, {20, 8}});
    // Two collinear stretches do not meet in one point: the first one's end serves.
    CVXCoordArr recht;
    ASSERT_TRUE(recht.bSchuif(Lijn({{0, 0, 1}, {4, 0, 0}, {10, 0, 0}}), 1.0, -1));
    ExpectPunten(recht, {{0, -1}, {4, -1}, {10, -1}});
}

TEST(LineEdit, SchuifOfAnArcKeepsItsCentreAndChangesItsRadius) {
    // Counter-clockwise half circle about the origin, radius 10: right of travel is outwards.
    CVXCoordArr boog;
    ASSERT_TRUE(boog.bSchuif(Lijn({{10, 0, 1}, {0, 10, 8}, {-10, 0, 8}}), 2.0, -1));
    ExpectPunten(boog, {{12, 0}, {0, 12}, {-12, 0}});
    ExpectBoog(boog, 0, 0, 0, 12);
    EXPECT_EQ(Codes(boog), (std::vector<int>{1, 8, 8}));
    // A closed circle 3 to the left: inwards to radius 7, still closed with code 7.
    CVXCoordArr cirkel;
    ASSERT_TRUE(cirkel.bSchuif(Lijn({{10, 0, 1}, {0, 10, 7}, {-10, 0, 7}, {10, 0, 7}}), -3.0, -1));
    ExpectPunten(cirkel, {{7, 0}, {0, 7}, {-7, 0}, {7, 0}});
    EXPECT_EQ(Codes(cirkel), (std::vector<int>{1, 7, 7, 7}));
    // A clockwise arc followed by a straight stretch down x = 10: right is inwards (radius 8)
    // and the stretch moves to x = 8, which touches the offset arc at (8, 0). The support point
    // of the offset arc is written too. Tangency costs precision: √ε of the radius.
    CVXCoordArr samen;
    ASSERT_TRUE(samen.bSchuif(Lijn({{-10, 0, 1}, {0, 10, 8}, {10, 0, 8}, {10, -10, 0}}), 2.0, -1));
    ExpectPunten(samen, {{-8, 0}, {0, 8}, {8, 0}, {8, -10}}, 1e-6);
    // SchuifLijn alone: an arc without a sense moves square to its chord.
    CVXCoordArr plat;
    plat.SchuifLijn(Lijn({{0, 0, 1}, {5, 0, 8}, {10, 0, 8}}), 0, 1.0);
    ExpectPunten(plat, {{0, -1}, {5, -1}, {10, -1}});
}

TEST(LineEdit, SnapLineOfAPointMakesTheFootAVertex) {
    // Foot (4, 0) of (4, 0.3), 0.3 within the tolerance; its height interpolates 0 → 10 at 4/10.
    CVXCoordArr lijn = Lijn({{0, 0, 1, 0.0}, {10, 0, 0, 10.0}, {10, 10, 0, 10.0}});
    CVXCoord punt(4, 0.3);
    bool bOpLijn = false;
    ASSERT_TRUE(lijn.bSnapLine(punt, 0.5, vx::dNaN, bOpLijn));
    EXPECT_TRUE(bOpLijn);
    ExpectPunten(lijn, {{0, 0}, {4, 0}, {10, 0}, {10, 10}});
    EXPECT_EQ(lijn.Pt(1).m_dZ, 4.0);
    EXPECT_EQ(punt.m_dY, 0.0);
    // A given height wins; the second stretch (x = 10) takes (10.2, 6) after the first refused.
    CVXCoord tweede(10.2, 6);
    ASSERT_TRUE(lijn.bSnapLine(tweede, 0.5, 7.5, bOpLijn));
    EXPECT_EQ(lijn.GetSize(), 5);
    EXPECT_NEAR(lijn.Pt(3).m_dX, 10.0, dAfronding);
    EXPECT_EQ(lijn.Pt(3).m_dZ, 7.5);
    // Too far from every stretch: false, nothing inserted.
    CVXCoord ver(4, 3);
    EXPECT_FALSE(lijn.bSnapLine(ver, 0.5, vx::dNaN, bOpLijn));
    EXPECT_FALSE(bOpLijn);
    EXPECT_EQ(lijn.GetSize(), 5);
    // A circle that refuses ends the walk with the point given back.
    CVXCoordArr cirkel = Lijn({{10, 0, 1}, {0, 10, 7}, {-10, 0, 7}, {10, 0, 7}});
    CVXCoord midden(0, 1);
    EXPECT_FALSE(cirkel.bSnapLine(midden, 0.5, vx::dNaN, bOpLijn));
    EXPECT_EQ(midden.m_dX, 0.0);
    EXPECT_EQ(midden.m_dY, 1.0);
    EXPECT_EQ(cirkel.GetSize(), 4);
}

TEST(LineEdit, SnapLineOfAnotherLinesPointInsertsEvenBeyondTheEnd) {
    // Lijn's stretch (11.1, 1.3) → (10.1, 0.3) runs along (−1, −1) and crosses y = 0 at (9.8, 0),
    // inside stretch 0 and 0.3·√2 = 0.42 from (10.1, 0.3).
    const CVXCoordArr basis = Lijn({{0, 0, 1}, {10, 0, 0}});
    const CVXCoordArr anders = Lijn({{11.1, 1.3, 1}, {10.1, 0.3, 0}});
    // Without projection the crossing itself goes in.
    CVXCoordArr lijn(basis), andere(anders);
    bool bOpLijn = false;
    ASSERT_TRUE(lijn.bSnapLine(andere, 0.5, 1, vx::dNaN, false, bOpLijn));
    EXPECT_TRUE(bOpLijn);
    ExpectPunten(lijn, {{0, 0}, {9.8, 0}, {10, 0}}, 1e-9);
    EXPECT_NEAR(andere.Pt(1).m_dX, 9.8, 1e-9);
    EXPECT_EQ(andere.Pt(1).nGetSectie(), 0);
    // With projection the foot of (10.1, 0.3) is (10.1, 0), beyond the end: it still goes in
    // (behind the end point, as the stretch's new second point), and bOpLijn says it is off.
    CVXCoordArr lijn2(basis), andere2(anders);
    ASSERT_TRUE(lijn2.bSnapLine(andere2, 0.5, 1, vx::dNaN, true, bOpLijn));
    EXPECT_FALSE(bOpLijn);
    ExpectPunten(lijn2, {{0, 0}, {10.1, 0}, {10, 0}}, 1e-9);
    EXPECT_NEAR(andere2.Pt(1).m_dX, 10.1, 1e-9);
    // A tolerance below 0.42 snaps nothing.
    CVXCoordArr lijn3(basis), andere3(anders);
    EXPECT_FALSE(lijn3.bSnapLine(andere3, 0.4, 1, vx::dNaN, true, bOpLijn));
    EXPECT_EQ(lijn3.GetSize(), 2);
}

TEST(LineEdit, VerplaatsOrthoSquaresTheCornerOnTheNearerAxis) {
    // (0,0) → (10,1) lies 0.0997 rad off axis 0: the carrier is y = 0 and the point moves to
    // the foot of its successor (20, 1): (20, 0), so the next stretch stands square on it.
    CVXCoordArr langs = Lijn({{0, 0, 1}, {10, 1, 0}, {20, 1, 0}});
    langs.VerplaatsOrtho(1, 0.0);
    ExpectPunten(langs, {{0, 0}, {20, 0}, {20, 1}});
    // (0,0) → (1,10) lies 1.47 rad off: the carrier is x = 0, the foot of (5, 12) is (0, 12).
    CVXCoordArr haaks = Lijn({{0, 0, 1}, {1, 10, 0}, {5, 12, 0}});
    haaks.VerplaatsOrtho(1, 0.0);
    ExpectPunten(haaks, {{0, 0}, {0, 12}, {5, 12}});
    // The last point has no successor: its own foot. (10,0) → (13,9) is 1.25 rad off: x = 10.
    CVXCoordArr eind = Lijn({{0, 0, 1}, {10, 0, 0}, {13, 9, 0, 4.0}});
    eind.VerplaatsOrtho(2, 0.0);
    ExpectPunten(eind, {{0, 0}, {10, 0}, {10, 9}});
    EXPECT_EQ(eind.Pt(2).m_dZ, 4.0);
    // Point 0 moves about point 1. (0,0) → (−10,1) is 3.04 rad off, folded to π − 3.04 = 0.0997:
    // along the axis, so (−10, 1) drops to (−10, 0).
    CVXCoordArr terug = Lijn({{-10, 1, 1}, {0, 0, 0}});
    terug.VerplaatsOrtho(0, 0.0);
    ExpectPunten(terug, {{-10, 0}, {0, 0}});
    // Outside the line: reported, nothing moves.
    vxtest::AssertCatcher reports;
    terug.VerplaatsOrtho(2, 0.0);
    EXPECT_TRUE(reports.Has("nPu<GetSize() && GetSize()>1"));
}
