// bSplits: cutting a line at a vertex, in a spline, at an arc's support point and in a circle.
#include "geometry/ClipTestUtil.h"
#include "geometry/GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

using vx::CVXCoordArr;
using vxtest::Codes;
using vxtest::Lijn;
using vxtest::XY;
using vxtest::XYLijst;

namespace {

// Rotations by half angles and the spline's solve: a few ulps.
constexpr double dUlps = 1e-12;

void ExpectPunten(const CVXCoordArr &arr, const XYLijst &verwacht) {
    ASSERT_EQ(arr.GetSize(), static_cast<int>(verwacht.size()));
    for (int i = 0; i < arr.GetSize(); ++i) {
        EXPECT_NEAR(arr.Pt(i).m_dX, verwacht[static_cast<size_t>(i)].first, dUlps) << i;
        EXPECT_NEAR(arr.Pt(i).m_dY, verwacht[static_cast<size_t>(i)].second, dUlps) << i;
    }
}

const double r2 = 10.0 / std::numbers::sqrt2; // 10 cos 45

} // namespace

TEST(Splits, AtAVertexTheHalvesShareThePoint) {
    const CVXCoordArr lijn = Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 2}});
    CVXCoordArr L = Lijn({{5, 5, 1}}), R = Lijn({{5, 5, 1}});
    ASSERT_TRUE(lijn.bSplits(L, R, 1, false));
    EXPECT_EQ(XY(L), (XYLijst{{0, 0}, {10, 0}}));
    EXPECT_EQ(XY(R), (XYLijst{{10, 0}, {10, 10}}));
    EXPECT_EQ(Codes(R), (std::vector<int>{1, 2}));
    // At the last point: all of the line, and a Rechts of that one point.
    ASSERT_TRUE(lijn.bSplits(L, R, 2, true));
    EXPECT_EQ(XY(L), XY(lijn));
    EXPECT_EQ(XY(R), (XYLijst{{10, 10}}));
    EXPECT_EQ(Codes(R), (std::vector<int>{1}));
}

TEST(Splits, AnArcIsCutAtItsSupportPointOnlyInsideTheCurve) {
    // Half circle of radius 10 about the origin, counter-clockwise from (10,0) over (0,10).
    const CVXCoordArr boog = Lijn({{10, 0, 1}, {0, 10, 8}, {-10, 0, 8}, {-10, -5, 0}});
    CVXCoordArr L = Lijn({{1, 1, 1}}), R = Lijn({{1, 1, 1}});
    EXPECT_FALSE(boog.bSplits(L, R, 1, false));
    EXPECT_EQ(L.GetSize(), 0);
    EXPECT_EQ(R.GetSize(), 0);
    // Inside the curve: two quarter arcs with support points at 45 and 135 degrees.
    ASSERT_TRUE(boog.bSplits(L, R, 1, true));
    ExpectPunten(L, {{10, 0}, {r2, r2}, {0, 10}});
    ExpectPunten(R, {{0, 10}, {-r2, r2}, {-10, 0}, {-10, -5}});
    EXPECT_EQ(Codes(L), (std::vector<int>{1, 8, 8}));
    EXPECT_EQ(Codes(R), (std::vector<int>{1, 8, 8, 0}));
    // At the arc's end it is a plain vertex.
    ASSERT_TRUE(boog.bSplits(L, R, 2, false));
    EXPECT_EQ(XY(R), (XYLijst{{-10, 0}, {-10, -5}}));
}

TEST(Splits, ASplineKeepsItsShapeWithTwoHornerPointsOnEitherSide) {
    // Knots (0,0) (1,1) (2,0) (3,1): every chord is sqrt 2 long, so the parameter steps are equal.
    // x is linear in the knots: x = k + t. For y the natural spline's second derivatives, in units
    // of h^2 (m0 = m3 = 0): m0 + 4 m1 + m2 = 6 (y0 - 2 y1 + y2) = -12, m1 + 4 m2 + m3 = 12, so
    // m1 = -4, m2 = 4. On interval i, y = y_i + b t + m_i/2 t^2 + (m_i+1 - m_i)/6 t^3 with
    // b = y_i+1 - y_i - (2 m_i + m_i+1)/6.
    //   interval 1: b = -1 + 4/6 = -1/3: y(1/3) = 1 - 1/9 - 2/9 + 4/81 = 58/81,
    //               y(2/3) = 1 - 2/9 - 8/9 + 32/81 = 23/81;
    //   interval 2: b = 1 - 8/6 = -1/3: y(1/3) = -1/9 + 2/9 - 2/81 = 7/81,
    //               y(2/3) = -2/9 + 8/9 - 16/81 = 38/81.
    // Z (10 20 30 40 at the knots) weighs the near knot twice: (2*20 + 30)/3 = 70/3 and so on.
    const CVXCoordArr spline =
        Lijn({{0, 0, 1, 10}, {1, 1, 6, 20}, {2, 0, 6, 30}, {3, 1, 6, 40}, {4, 1, 0, 50}});
    CVXCoordArr L, R;
    ASSERT_TRUE(spline.bSplits(L, R, 2, true));
    ExpectPunten(L, {{0, 0}, {1, 1}, {4.0 / 3, 58.0 / 81}, {5.0 / 3, 23.0 / 81}, {2, 0}});
    ExpectPunten(R, {{2, 0}, {7.0 / 3, 7.0 / 81}, {8.0 / 3, 38.0 / 81}, {3, 1}, {4, 1}});
    EXPECT_EQ(Codes(L), (std::vector<int>{1, 6, 6, 6, 6}));
    EXPECT_EQ(Codes(R), (std::vector<int>{1, 6, 6, 6, 0}));
    EXPECT_DOUBLE_EQ(L.Pt(2).m_dZ, 70.0 / 3);
    EXPECT_DOUBLE_EQ(L.Pt(3).m_dZ, 80.0 / 3);
    EXPECT_DOUBLE_EQ(R.Pt(1).m_dZ, 100.0 / 3);
    EXPECT_DOUBLE_EQ(R.Pt(2).m_dZ, 110.0 / 3);

    // A knot without Z leaves the new points of its intervals without one.
    const CVXCoordArr zonderZ = Lijn({{0, 0, 1, 10}, {1, 1, 6, 20}, {2, 0, 6}, {3, 1, 6, 40}});
    ASSERT_TRUE(zonderZ.bSplits(L, R, 2, true));
    EXPECT_TRUE(std::isnan(L.Pt(2).m_dZ));
    EXPECT_TRUE(std::isnan(R.Pt(2).m_dZ));

    // Outside the curve a plain cut is allowed only when both halves keep two spline steps.
    EXPECT_FALSE(spline.bSplits(L, R, 2, false));
    const CVXCoordArr lang = Lijn({{0, 0, 1}, {1, 1, 6}, {2, 0, 6}, {3, 1, 6}, {4, 0, 6}});
    ASSERT_TRUE(lang.bSplits(L, R, 2, false));
    EXPECT_EQ(Codes(L), (std::vector<int>{1, 6, 6}));
    EXPECT_EQ(Codes(R), (std::vector<int>{1, 6, 6}));
    // The spline's last point is a vertex.
    ASSERT_TRUE(spline.bSplits(L, R, 3, false));
    EXPECT_EQ(XY(R), (XYLijst{{3, 1}, {4, 1}}));
}

TEST(Splits, ACircleIsCutIntoArcs) {
    const CVXCoordArr cirkel = Lijn({{10, 0, 1}, {0, 10, 7}, {-10, 0, 7}, {10, 0, 7}});
    CVXCoordArr L, R;
    EXPECT_FALSE(cirkel.bSplits(L, R, 1, false));
    // At point 1: the quarter from (10,0) with its middle at 45 degrees, and the three quarters
    // from (0,10) over (-10,0) back to (10,0).
    ASSERT_TRUE(cirkel.bSplits(L, R, 1, true));
    ExpectPunten(L, {{10, 0}, {r2, r2}, {0, 10}});
    ExpectPunten(R, {{0, 10}, {-10, 0}, {10, 0}});
    EXPECT_EQ(Codes(L), (std::vector<int>{1, 8, 8}));
    EXPECT_EQ(Codes(R), (std::vector<int>{1, 8, 8}));
    // At any later point the cut is at point 2: the half over (0,10), and the half from (-10,0)
    // over (0,-10) back to the start.
    ASSERT_TRUE(cirkel.bSplits(L, R, 3, true));
    ExpectPunten(L, {{10, 0}, {0, 10}, {-10, 0}});
    ExpectPunten(R, {{-10, 0}, {0, -10}, {10, 0}});
    EXPECT_EQ(Codes(R), (std::vector<int>{1, 8, 8}));
    // An open three-point circle is closed first, with the same result.
    const CVXCoordArr open = Lijn({{10, 0, 1}, {0, 10, 7}, {-10, 0, 7}});
    CVXCoordArr L2, R2;
    ASSERT_TRUE(open.bSplits(L2, R2, 1, true));
    ASSERT_TRUE(cirkel.bSplits(L, R, 1, true));
    EXPECT_EQ(XY(L2), XY(L));
    EXPECT_EQ(XY(R2), XY(R));
}

TEST(Splits, NeighboursCloserThanTheInsertionToleranceAreMerged) {
    // A vertex 0.0008 behind the cut point, closer than the insertion tolerance of 0.001.
    const CVXCoordArr lijn = Lijn({{0, 0, 1}, {10, 0, 0}, {10.0008, 0, 0}, {20, 0, 0}});
    CVXCoordArr L, R;
    ASSERT_TRUE(lijn.bSplits(L, R, 1, true));
    // Plain vertex cuts copy as they are; CheckCoords runs only behind curve cuts.
    EXPECT_EQ(R.GetSize(), 3);
    // Behind an arc cut: the arc (0,0) (5,5) (10,0), its end followed at 0.0008 by a vertex.
    const CVXCoordArr boog = Lijn({{0, 0, 1}, {5, 5, 8}, {10, 0, 8}, {10.0008, 0, 0}, {20, 0, 0}});
    ASSERT_TRUE(boog.bSplits(L, R, 1, true));
    EXPECT_EQ(R.GetSize(), 4); // (5,5), new support, (10,0), (20,0): (10.0008,0) is gone
    EXPECT_EQ(R.Pt(3).m_dX, 20.0);
    EXPECT_EQ(Codes(R), (std::vector<int>{1, 8, 8, 0}));
}
