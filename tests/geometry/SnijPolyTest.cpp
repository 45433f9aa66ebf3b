// The polygon clipper on small cases worked out by hand: which rings and open pieces come out,
// vertex by vertex, and when the call fails.
#include "geometry/ClipList.h"
#include "geometry/ClipTestUtil.h"
#include "geometry/GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

using vx::ClipField;
using vx::CVXCoordArr;
using vx::CVXCoordArrList;
using vxtest::Lijn;

namespace {

using vxtest::Stukken;
using vxtest::XY;
using vxtest::XYLijst;

double dOpp(const CVXCoordArr &arr) {
    double d = 0.0;
    EXPECT_TRUE(arr.bOppervlak(&d));
    return d;
}

// The square (x0, y0)-(x1, y1), counter-clockwise from its lower left corner.
CVXCoordArr Vierkant(double x0, double y0, double x1, double y1) {
    return Lijn({{x0, y0, 1}, {x1, y0, 0}, {x1, y1, 0}, {x0, y1, 0}, {x0, y0, 0}});
}

const ClipField beide(true, true, false);

} // namespace

TEST(SnijPoly, SquaresOverlappingAtACornerGiveTheOverlapAndALShapeAlongBBackward) {
    // The boundaries cross at (10,5) (A's right side, B's bottom) and (5,10) (A's top, B's left).
    // Inside: A from (10,5) up to (5,10), then B forward from (5,10) over (5,5) back to (10,5).
    // Outside: A from (5,10) round to (10,5), then B backward from (10,5) over (5,5) to (5,10).
    const CVXCoordArr A = Vierkant(0, 0, 10, 10), B = Vierkant(5, 5, 15, 15);
    CVXCoordArrList binnen, buiten;
    ASSERT_TRUE(A.bSnijPoly(binnen, buiten, B, beide, true));
    const std::vector<XYLijst> bin = {{{10, 5}, {10, 10}, {5, 10}, {5, 5}, {10, 5}}};
    const std::vector<XYLijst> bui = {
        {{5, 10}, {0, 10}, {0, 0}, {10, 0}, {10, 5}, {5, 5}, {5, 10}}};
    EXPECT_EQ(Stukken(binnen), bin);
    EXPECT_EQ(Stukken(buiten), bui);
    // 5 x 5 overlap; the L is 100 - 25.
    EXPECT_EQ(dOpp(*binnen.GetHead()), 25.0);
    EXPECT_EQ(dOpp(*buiten.GetHead()), 75.0);
    EXPECT_EQ(vxtest::Codes(*binnen.GetHead()), (std::vector<int>{1, 0, 0, 0, 0}));
}

TEST(SnijPoly, FailsWithoutAProperCrossing) {
    const CVXCoordArr A = Vierkant(0, 0, 10, 10);
    CVXCoordArrList binnen, buiten;
    // Clipped by itself, by a square apart, by one inside, and inside one.
    EXPECT_FALSE(A.bSnijPoly(binnen, buiten, A, beide, true));
    EXPECT_FALSE(A.bSnijPoly(binnen, buiten, Vierkant(20, 0, 30, 10), beide, true));
    EXPECT_FALSE(A.bSnijPoly(binnen, buiten, Vierkant(2, 2, 8, 8), beide, true));
    EXPECT_FALSE(Vierkant(2, 2, 8, 8).bSnijPoly(binnen, buiten, A, beide, true));
    // A triangle touching A's right side in the one point (10,5): a single clip point.
    const CVXCoordArr raak = Lijn({{10, 5, 1}, {15, 0, 0}, {15, 10, 0}, {10, 5, 0}});
    EXPECT_FALSE(A.bSnijPoly(binnen, buiten, raak, beide, true));
    EXPECT_TRUE(binnen.IsEmpty());
    EXPECT_TRUE(buiten.IsEmpty());
    // Without any field the call only says whether the two cross.
    EXPECT_TRUE(A.bSnijPoly(binnen, buiten, Vierkant(5, 5, 15, 15), ClipField(), true));
    EXPECT_TRUE(binnen.IsEmpty());
}

TEST(SnijPoly, TouchingContainmentDeliversNothingForAInsideAndBItselfForBInside) {
    // A: an outline with two notches whose tips touch B's bottom at (5,2) and top at (5,7).
    const CVXCoordArr A =
        Lijn({{0, 0, 1}, {5, 2, 0}, {10, 0, 0}, {10, 10, 0}, {5, 7, 0}, {0, 10, 0}, {0, 0, 0}});
    const CVXCoordArr B = Vierkant(2, 2, 8, 7);
    CVXCoordArrList binnen, buiten;
    ASSERT_TRUE(A.bSnijPoly(binnen, buiten, B, beide, true));
    // B, with the two touch points as vertices, in both lists.
    const XYLijst bMetRaak = {{2, 2}, {5, 2}, {8, 2}, {8, 7}, {5, 7}, {2, 7}, {2, 2}};
    EXPECT_EQ(Stukken(binnen), std::vector<XYLijst>{bMetRaak});
    EXPECT_EQ(Stukken(buiten), std::vector<XYLijst>{bMetRaak});

    // Turned round: B inside the notched outline touching it twice gives nothing at all.
    CVXCoordArrList binnen2, buiten2;
    ASSERT_TRUE(B.bSnijPoly(binnen2, buiten2, A, beide, true));
    EXPECT_TRUE(binnen2.IsEmpty());
    EXPECT_TRUE(buiten2.IsEmpty());
    // With both required, the covered polygon fails and the lists stay as they were.
    CVXCoordArrList binnen3, buiten3;
    binnen3.AddTail(new CVXCoordArr(B));
    EXPECT_FALSE(B.bSnijPoly(binnen3, buiten3, A, ClipField(true, true, true), true));
    EXPECT_EQ(binnen3.GetCount(), 1);
    EXPECT_TRUE(buiten3.IsEmpty());
}

TEST(SnijPoly, ACopyRunningTheOtherWayCoincidesEverywhereAndGivesAItself) {
    // Gelijk matches a reversed copy only when the first points differ; a reversed closed square
    // starts on the same corner, so the clip runs. Every piece lies on B's boundary (SegOp), and
    // both walks deliver A itself.
    const CVXCoordArr A = Vierkant(0, 0, 10, 10);
    CVXCoordArr terug(A);
    terug.DraaiRichting();
    CVXCoordArrList binnen, buiten;
    ASSERT_TRUE(A.bSnijPoly(binnen, buiten, terug, beide, true));
    EXPECT_EQ(Stukken(binnen), std::vector<XYLijst>{XY(A)});
    EXPECT_EQ(Stukken(buiten), std::vector<XYLijst>{XY(A)});
}

TEST(SnijPoly, PolygonsSharingOneEdgeKeepAWholeOutsideAndNoInside) {
    // Side by side along x = 10: the shared stretch is SegOp; A minus B is A itself (area 100).
    const CVXCoordArr A = Vierkant(0, 0, 10, 10), B = Vierkant(10, 0, 20, 10);
    CVXCoordArrList binnen, buiten;
    ASSERT_TRUE(A.bSnijPoly(binnen, buiten, B, beide, true));
    EXPECT_TRUE(binnen.IsEmpty());
    ASSERT_EQ(buiten.GetCount(), 1);
    EXPECT_EQ(dOpp(*buiten.GetHead()), 100.0);
}

TEST(SnijPoly, ACircleIsCutIntoPiecesThatHoldArcs) {
    // The circle of radius 10 about the origin, cut by the half plane x >= 0 (a big square).
    const CVXCoordArr cirkel = Lijn({{10, 0, 1}, {0, 10, 7}, {-10, 0, 7}, {10, 0, 7}});
    const CVXCoordArr B = Vierkant(0, -20, 20, 20);
    CVXCoordArrList binnen, buiten;
    ASSERT_TRUE(cirkel.bSnijPoly(binnen, buiten, B, beide, true));
    ASSERT_EQ(binnen.GetCount(), 1);
    ASSERT_EQ(buiten.GetCount(), 1);
    // Half the disc each: pi r^2 / 2 = 50 pi, by the exact area of arcs and chords; the new
    // support points are rotations by half angles, good to a few ulps, hence 1e-9.
    const double dHalf = 50.0 * std::numbers::pi;
    for (const CVXCoordArrList *l : {&binnen, &buiten}) {
        const CVXCoordArr &stuk = *l->GetHead();
        EXPECT_NEAR(vxtest::dExactOpp(stuk), dHalf, 1e-9);
        EXPECT_EQ(stuk.nSectieOnlyTest2(), -1);
        EXPECT_TRUE(stuk.bGesloten());
        EXPECT_TRUE(vxtest::bHeeftBoog(stuk));
    }
    // The inside half keeps the points (0,-10) and (0,10) of the cut on its straight side.
    const XYLijst bin = XY(*binnen.GetHead());
    EXPECT_NE(std::find(bin.begin(), bin.end(), std::make_pair(0.0, 10.0)), bin.end());
}

TEST(SnijPoly, ALineCrossingAPolygonGivesOpenPiecesPerSide) {
    const CVXCoordArr B = Vierkant(0, 0, 10, 10);
    // Straight through: in at (0,5), out at (10,5).
    const CVXCoordArr door = Lijn({{-5, 5, 1}, {15, 5, 0}});
    CVXCoordArrList binnen, buiten;
    ASSERT_TRUE(door.bSnijPoly(binnen, buiten, B, beide, false));
    EXPECT_EQ(Stukken(binnen), (std::vector<XYLijst>{{{0, 5}, {10, 5}}}));
    EXPECT_EQ(Stukken(buiten), (std::vector<XYLijst>{{{-5, 5}, {0, 5}}, {{10, 5}, {15, 5}}}));

    // Starting inside, out at (10,5), back in at (10,8), ending inside at (8,8): the first inside
    // piece comes from the start of the line (AddBegin).
    const CVXCoordArr haak = Lijn({{5, 5, 1}, {15, 5, 0}, {15, 8, 0}, {8, 8, 0}});
    CVXCoordArrList binnen2, buiten2;
    ASSERT_TRUE(haak.bSnijPoly(binnen2, buiten2, B, beide, false));
    EXPECT_EQ(Stukken(binnen2), (std::vector<XYLijst>{{{5, 5}, {10, 5}}, {{10, 8}, {8, 8}}}));
    EXPECT_EQ(Stukken(buiten2), (std::vector<XYLijst>{{{10, 5}, {15, 5}, {15, 8}, {10, 8}}}));
}

TEST(SnijPoly, EveryPieceKeepsAValidSectionCodingWithArcsAndSplines) {
    // A: a spline bottom (a run of four 6s), a straight right side, an arc over the top and a
    // straight left side. Each B crosses it at different places, as a polygon and as a line.
    const CVXCoordArr A = Lijn({{0, 0, 1},
                                {5, -2, 6},
                                {10, 1, 6},
                                {15, -1, 6},
                                {20, 0, 6},
                                {20, 10, 0},
                                {10, 20, 8},
                                {0, 10, 8},
                                {0, 0, 0}});
    const std::vector<CVXCoordArr> bs = {Vierkant(8, -5, 12, 25), Vierkant(-5, 5, 25, 15),
                                         Vierkant(12, -5, 30, 30), Vierkant(-3, 12, 3, 30),
                                         Lijn({{5, -5, 1}, {15, 25, 0}, {25, -5, 0}, {5, -5, 0}})};
    int nSpline = 0, nBoog = 0, nStukken = 0;
    for (const CVXCoordArr &B : bs) {
        for (const bool bPolygoon : {true, false}) {
            CVXCoordArrList binnen, buiten;
            ASSERT_TRUE(A.bSnijPoly(binnen, buiten, B, beide, bPolygoon));
            for (const CVXCoordArrList *l : {&binnen, &buiten}) {
                for (vx::POSITION pos = l->GetHeadPosition(); pos != nullptr;) {
                    const CVXCoordArr &stuk = *l->GetNext(pos);
                    ++nStukken;
                    EXPECT_EQ(stuk.nSectieOnlyTest2(), -1);
                    EXPECT_TRUE(stuk.bGesloten() || !bPolygoon);
                    const std::vector<int> codes = vxtest::Codes(stuk);
                    nSpline += std::count(codes.begin(), codes.end(), vx::nSectieSpline) > 0;
                    nBoog += std::count(codes.begin(), codes.end(), vx::nSectieBoog) > 0;
                }
            }
        }
    }
    // Pieces were cut, and curves came through as curves in some of them.
    EXPECT_GT(nStukken, 20);
    EXPECT_GT(nSpline, 0);
    EXPECT_GT(nBoog, 0);
}

TEST(SnijPoly, ARingThroughAPointTwiceIsSplitIntoItsLoops) {
    // The ring passes (10,10) at index 2 and 5: the loop 2..5 is cut out first, then the rest
    // (points 3, 4, 5 removed) follows. Ends take no part in the search.
    auto *pRing = new CVXCoordArr(Lijn({{0, 0, 1},
                                        {10, 0, 0},
                                        {10, 10, 0},
                                        {20, 10, 0},
                                        {20, 20, 0},
                                        {10, 10, 0},
                                        {0, 10, 0},
                                        {0, 0, 0}}));
    CVXCoordArrList lijst;
    vx::CVXCoordArrTestToegang::CreeerSubLoops(pRing, lijst);
    EXPECT_EQ(Stukken(lijst), (std::vector<XYLijst>{{{10, 10}, {20, 10}, {20, 20}, {10, 10}},
                                                    {{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}}));
    EXPECT_EQ(vxtest::Codes(*lijst.GetHead()), (std::vector<int>{1, 0, 0, 0}));
}

TEST(SnijPoly, UnknownPositionsCutNothingAndAFlatBEndsAtOnce) {
    const CVXCoordArr A = Vierkant(0, 0, 10, 10);
    CVXCoordArr nan = Vierkant(5, 5, 15, 15);
    vx::CVXCoord p = nan.Pt(2);
    p.SetX(vx::dNaN);
    nan.SetAt(2, &p);
    CVXCoordArrList binnen, buiten;
    EXPECT_FALSE(A.bSnijPoly(binnen, buiten, nan, beide, true));
    EXPECT_FALSE(nan.bSnijPoly(binnen, buiten, A, beide, true));
    // B runs along y = 5 and back: it crosses A's sides at (0,5) and (10,5) but encloses
    // nothing. Both pieces of A behind the crossings lie outside B, so no walk starts; B has no
    // inner point to lie within A. Nothing is delivered.
    const CVXCoordArr plat = Lijn({{-5, 5, 1}, {5, 5, 0}, {15, 5, 0}, {-5, 5, 0}});
    EXPECT_TRUE(A.bSnijPoly(binnen, buiten, plat, beide, true));
    EXPECT_TRUE(binnen.IsEmpty());
    EXPECT_TRUE(buiten.IsEmpty());
}
