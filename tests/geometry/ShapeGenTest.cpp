// Square, RemoveColinear and VoldoetBoogDeel, and the private straight self-crossing checks.
// Square's expected turn is worked from its rule (direction groups weighted by squared lengths,
// perpendicular pairs by summed lengths) on the input points, independently of the code.
#include "geometry/Extents.h"
#include "geometry/GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

using vx::CVXCoord;
using vx::CVXCoordArr;
using vx::CVXCoordArrTestToegang;
using vxtest::Codes;
using vxtest::Lijn;

namespace {

constexpr double pi = std::numbers::pi;
// Rebuilt vertices come out of line intersections in doubles.
constexpr double dAfronding = 1e-9;

double dLengte(double dx, double dy) {
    return std::hypot(dx, dy);
}

// The direction of the stretch from point i to point i + 1, modulo π, in (−π/2, π/2].
double dRichtingModPi(const CVXCoordArr &arr, int i) {
    double h = std::atan2(arr.Pt(i + 1).m_dY - arr.Pt(i).m_dY, arr.Pt(i + 1).m_dX - arr.Pt(i).m_dX);
    while (h > pi / 2)
        h -= pi;
    while (h <= -pi / 2)
        h += pi;
    return h;
}

// The cosine of the angle between stretch i and stretch i + 1 (0 for a right angle).
double dCosHoek(const CVXCoordArr &arr, int i, int j) {
    const double ax = arr.Pt(i + 1).m_dX - arr.Pt(i).m_dX, ay = arr.Pt(i + 1).m_dY - arr.Pt(i).m_dY;
    const double bx = arr.Pt(j + 1).m_dX - arr.Pt(j).m_dX, by = arr.Pt(j + 1).m_dY - arr.Pt(j).m_dY;
    return (ax * bx + ay * by) / (dLengte(ax, ay) * dLengte(bx, by));
}

} // namespace

TEST(Square, AnAxisParallelRectangleStaysAndLosesItsPrecisions) {
    CVXCoordArr rh = Lijn({{0, 0, 1}, {20, 0, 0}, {20, 10, 0}, {0, 10, 0}, {0, 0, 0}});
    rh.GetAt(1)->PrecDX(0.01);
    rh.Square();
    const double x[] = {0, 20, 20, 0, 0}, y[] = {0, 0, 10, 10, 0};
    for (int i = 0; i < 5; ++i) {
        EXPECT_NEAR(rh.Pt(i).m_dX, x[i], dAfronding) << i;
        EXPECT_NEAR(rh.Pt(i).m_dY, y[i], dAfronding) << i;
    }
    EXPECT_TRUE(std::isnan(rh.Pt(1).m_dPX));
}

TEST(Square, ASlightlyTurnedRectangleGetsExactRightAnglesAlongItsLongSides) {
    // Long sides s0 (20, 0.4) and s2 (-19.9, -0.3); short sides s1 (-0.2, 10) and s3 (0.1, -10.1).
    CVXCoordArr rh = Lijn({{0, 0, 1}, {20, 0.4, 0}, {19.8, 10.4, 0}, {-0.1, 10.1, 0}, {0, 0, 0}});
    // Group of the long sides, modulo π: atan2(0.4, 20) and atan2(0.3, 19.9), weighted by L².
    const double L0 = dLengte(20, 0.4), L2 = dLengte(19.9, 0.3);
    const double h0 = std::atan2(0.4, 20), h2 = std::atan2(0.3, 19.9);
    const double g0 = (h0 * L0 * L0 + h2 * L2 * L2) / (L0 * L0 + L2 * L2);
    // Group of the short sides, founded by the longer s3: atan2(-10.1, 0.1) and s1 taken back
    // by π, atan2(10, -0.2) - π.
    const double L3 = dLengte(0.1, 10.1), L1 = dLengte(0.2, 10);
    const double h3 = std::atan2(-10.1, 0.1), h1 = std::atan2(10, -0.2) - pi;
    const double g1 = (h3 * L3 * L3 + h1 * L1 * L1) / (L3 * L3 + L1 * L1);
    // g1 + π/2 lies nearer g0 than g1 − π/2; the summed lengths weigh the common direction.
    const double hNieuw = (g0 * (L0 + L2) + (g1 + pi / 2) * (L1 + L3)) / (L0 + L1 + L2 + L3);
    rh.Square();
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(dCosHoek(rh, i, i + 1), 0.0, dAfronding) << i;
    EXPECT_NEAR(dCosHoek(rh, 3, 0), 0.0, dAfronding);
    EXPECT_NEAR(dRichtingModPi(rh, 0), hNieuw, dAfronding);
    EXPECT_NEAR(dRichtingModPi(rh, 2), hNieuw, dAfronding);
    EXPECT_TRUE(rh.bGesloten());
}

TEST(Square, AFewPointsStayDefined) {
    // Three points do nothing; a closed triangle has three directions and no perpendicular pair,
    // so each carrier keeps its stretch and the corners come back.
    CVXCoordArr drie = Lijn({{0, 0, 1}, {5, 1, 0}, {7, 7, 0}});
    drie.Square();
    EXPECT_EQ(drie.Pt(1).m_dX, 5.0);
    CVXCoordArr drieh = Lijn({{0, 0, 1}, {10, 0, 0}, {3, 8, 0}, {0, 0, 0}});
    drieh.Square();
    EXPECT_NEAR(drieh.Pt(1).m_dX, 10.0, dAfronding);
    EXPECT_NEAR(drieh.Pt(2).m_dX, 3.0, dAfronding);
    EXPECT_NEAR(drieh.Pt(2).m_dY, 8.0, dAfronding);
    EXPECT_NEAR(drieh.Pt(0).m_dX, 0.0, dAfronding);
}

TEST(RemoveColinear, StraightRunsFlatArcsAndTheGrid) {
    // Each middle point lies 0.0001 off its chord.
    CVXCoordArr lijn = Lijn({{0, 0, 1}, {3, 0.0001, 0}, {6, 0, 0}, {9, 0.0001, 0}, {12, 0, 0}});
    lijn.RemoveColinear(0.00001, false, nullptr);
    EXPECT_EQ(lijn.GetSize(), 5);
    // The first pass removes (3, ·) and (9, ·), the second (6, 0), which is then on the chord.
    lijn.RemoveColinear(0.001, false, nullptr);
    EXPECT_EQ(lijn.GetSize(), 2);
    EXPECT_EQ(lijn.Pt(1).m_dX, 12.0);
    // A flat arc becomes its chord only with bBogen.
    CVXCoordArr boog = Lijn({{0, 0, 1}, {5, 0.0001, 8}, {10, 0, 8}});
    boog.RemoveColinear(0.001, false, nullptr);
    EXPECT_EQ(boog.GetSize(), 3);
    boog.RemoveColinear(0.001, true, nullptr);
    EXPECT_EQ(Codes(boog), (std::vector<int>{1, 0}));
    // With a grid of step 5 (Y lines at 0.5 + 5k): (5, 0.0001) lies on X line 1 and goes,
    // (4, 0.0001) lies on no grid line and stays.
    vx::CGridDef grid(0.01, 5.0, 5.0, 0.0, 0.5);
    CVXCoordArr opRaster = Lijn({{0, 0, 1}, {5, 0.0001, 0}, {10, 0, 0}});
    opRaster.RemoveColinear(0.001, false, &grid);
    EXPECT_EQ(opRaster.GetSize(), 2);
    CVXCoordArr naastRaster = Lijn({{0, 0, 1}, {4, 0.0001, 0}, {10, 0, 0}});
    naastRaster.RemoveColinear(0.001, false, &grid);
    EXPECT_EQ(naastRaster.GetSize(), 3);
}

TEST(VoldoetBoogDeel, PointsOnACircleWithEqualChords) {
    // Radius 10, every 10° from 0° to 60°: chords 2·10·sin 5° = 1.7431, six of them 10.4587;
    // the arc over 60° is 10π/3 = 10.4720, 0.13 % longer.
    CVXCoordArr lijn;
    for (int k = 0; k <= 6; ++k) {
        const double h = k * 10.0 * pi / 180.0;
        const CVXCoord p(10.0 * std::cos(h), 10.0 * std::sin(h), static_cast<char>(k == 0 ? 1 : 0));
        lijn.Add(&p);
    }
    EXPECT_TRUE(CVXCoordArrTestToegang::VoldoetBoogDeel(lijn, 0, 6, 0.001, 0.01, 100.0));
    EXPECT_FALSE(CVXCoordArrTestToegang::VoldoetBoogDeel(lijn, 0, 6, 0.001, 0.001, 100.0));
    EXPECT_FALSE(CVXCoordArrTestToegang::VoldoetBoogDeel(lijn, 0, 6, 0.001, 0.01, 9.9));
    // Point 1 pushed 0.1 outward: off the circle through points 0, 3 and 6.
    lijn.GetAt(1)->SetXY(lijn.Pt(1).m_dX * 1.01, lijn.Pt(1).m_dY * 1.01);
    EXPECT_FALSE(CVXCoordArrTestToegang::VoldoetBoogDeel(lijn, 0, 6, 0.05, 0.5, 100.0));
    const CVXCoordArr recht = Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}});
    EXPECT_FALSE(CVXCoordArrTestToegang::VoldoetBoogDeel(recht, 0, 2, 1.0, 1.0, 100.0));
}

TEST(SectieCheck, StraightSelfCrossingTestSkipsTheLastStretch) {
    using T = CVXCoordArrTestToegang;
    EXPECT_FALSE(
        T::SnijdtZichzelfSimple(Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}})));
    EXPECT_TRUE(
        T::SnijdtZichzelfSimple(Lijn({{0, 0, 1}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}, {0, 0, 0}})));
    // The only crossing is stretch 1 with the last stretch: not seen.
    EXPECT_FALSE(
        T::SnijdtZichzelfSimple(Lijn({{0, 0, 1}, {10, 0, 0}, {0, 10, 0}, {10, 10, 0}, {0, 0, 0}})));
    // Four points are not examined at all.
    EXPECT_FALSE(T::SnijdtZichzelfSimple(Lijn({{0, 0, 1}, {10, 0, 0}, {5, 0, 0}, {0, 0, 0}})));
    // Two lines overlapping collinearly: the checks read point and stretch from Punten alone,
    // (20, 0) and (5, 0) are the ends of Punten's own stretch, so nothing counts.
    const CVXCoordArr a = Lijn({{0, 0, 1}, {10, 0, 0}});
    const CVXCoordArr b = Lijn({{5, 0, 1}, {20, 0, 0}});
    EXPECT_FALSE(T::SnijRechten(a, b, 0, 0));
    // Read from one line the same overlap counts: (5, 0) lies inside stretch 0.
    const CVXCoordArr ab = Lijn({{0, 0, 1}, {10, 0, 0}, {5, 0, 0}, {20, 0, 0}});
    EXPECT_TRUE(T::SnijRechten(ab, ab, 0, 2));
    EXPECT_TRUE(T::SnijRechten(a, Lijn({{5, -5, 1}, {5, 5, 0}}), 0, 0));
}
