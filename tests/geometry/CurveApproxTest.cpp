// Curves into other curves: arcs into chords, a circle into two arcs, the natural cubic spline.
#include "geometry/VXCoordArr.h"

#include "GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

using namespace vx;
using vxtest::AssertCatcher;
using vxtest::Codes;
using vxtest::Lijn;

namespace {
constexpr double pi = std::numbers::pi;
} // namespace

TEST(ArcsToLines, LinesWithoutArcsStayAsTheyAre) {
    CVXCoordArr lijn = Lijn({{0, 0, 1}, {1, 0, 0}, {1, 1, 6}, {2, 2, 6}});
    lijn.SetUnChanged();
    EXPECT_FALSE(lijn.bArcsToLines(0.0005));
    EXPECT_EQ(lijn.GetSize(), 4);
    EXPECT_FALSE(lijn.m_bGewijzigd);
}

TEST(ArcsToLines, ArcsBecomeChordsWithinTheTolerance) {
    // A quarter of the unit circle, counter-clockwise, with heights 0 to 10, then a straight.
    CVXCoordArr lijn =
        Lijn({{1, 0, 1, 0}, {std::sqrt(0.5), std::sqrt(0.5), 8, 5}, {0, 1, 8, 10}, {0, 5, 0}});
    ASSERT_TRUE(lijn.bArcsToLines(0.3));
    // python3: (2π/acos(0.7) + 1)·(π/2)/(2π) = 2.22, truncated to 2 and raised to 5 chords.
    ASSERT_EQ(lijn.GetSize(), 1 + 4 + 1 + 1);
    EXPECT_EQ(Codes(lijn), (std::vector<int>{1, 0, 0, 0, 0, 0, 0}));
    for (int k = 1; k <= 4; ++k) {
        const double h = k * (pi / 2) / 5;
        EXPECT_NEAR(lijn.Pt(k).m_dX, std::cos(h), 1e-15) << k;
        EXPECT_NEAR(lijn.Pt(k).m_dY, std::sin(h), 1e-15) << k;
        EXPECT_NEAR(lijn.Pt(k).m_dZ, 10.0 * k / 5, 1e-15) << k;
    }
    EXPECT_EQ(lijn.Pt(5).m_dY, 1.0); // the arc's own end point
    EXPECT_EQ(lijn.Pt(5).m_dZ, 10.0);
    EXPECT_EQ(lijn.Pt(6).m_dY, 5.0);

    // A radius at or below the tolerance: only the chord.
    CVXCoordArr klein = Lijn({{0.1, 0, 1}, {0, 0.1, 8}, {-0.1, 0, 8}});
    ASSERT_TRUE(klein.bArcsToLines(0.5));
    EXPECT_EQ(Codes(klein), (std::vector<int>{1, 0}));
    EXPECT_EQ(klein.Pt(1).m_dX, -0.1);
    // A tolerance of 0 asks for endless chords: no division is made at all.
    CVXCoordArr nul = Lijn({{1, 0, 1}, {0, 1, 8}, {-1, 0, 8}});
    ASSERT_TRUE(nul.bArcsToLines(0.0));
    EXPECT_EQ(nul.GetSize(), 2);
}

TEST(ArcsToLines, CirclesBecomeClosedPolygons) {
    CVXCoordArr cirkel = Lijn({{1, 0, 1}, {0, 1, 7}, {-1, 0, 7}, {1, 0, 7}});
    ASSERT_TRUE(cirkel.bArcsToLines(0.0005));
    // python3: int(2π/acos(0.9995) + 1) = 199 chords, so 198 points between start and end.
    ASSERT_EQ(cirkel.GetSize(), 200);
    EXPECT_TRUE(cirkel.bGesloten());
    EXPECT_TRUE(cirkel.bAlleSectiesLijn());
    for (int i = 0; i < cirkel.GetSize(); ++i)
        EXPECT_NEAR(std::hypot(cirkel.Pt(i).m_dX, cirkel.Pt(i).m_dY), 1.0, 1e-15) << i;
    EXPECT_GT(cirkel.Pt(1).m_dY, 0.0); // the circle's own sense, counter-clockwise

    // Below the tolerance a circle collapses to its first point twice: a closed chord polygon.
    CVXCoordArr stip = Lijn({{0.0001, 0, 1}, {0, 0.0001, 7}, {-0.0001, 0, 7}, {0.0001, 0, 7}});
    ASSERT_TRUE(stip.bArcsToLines(0.0005));
    EXPECT_EQ(Codes(stip), (std::vector<int>{1, 0}));
    EXPECT_TRUE(stip.bGesloten());
}

TEST(CircleToArcs, ACircleBecomesTwoArcs) {
    CVXCoordArr cirkel = Lijn({{1, 0, 1}, {0, 1, 7}, {-1, 0, 7}, {1, 0, 7}});
    cirkel.Circle2Arcs();
    ASSERT_EQ(cirkel.GetSize(), 5);
    EXPECT_EQ(Codes(cirkel), (std::vector<int>{1, 8, 8, 8, 8}));
    // The middle of the half from (−1, 0) to (1, 0) in the circle's sense.
    EXPECT_NEAR(cirkel.Pt(3).m_dX, 0.0, 1e-15);
    EXPECT_NEAR(cirkel.Pt(3).m_dY, -1.0, 1e-15);
    EXPECT_FALSE(cirkel.bCirkel());
    EXPECT_NEAR(cirkel.dLengte(), 2 * pi, 1e-14);

    AssertCatcher reports;
    CVXCoordArr lijn = Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}});
    lijn.Circle2Arcs();
    EXPECT_TRUE(reports.Has("bCirkel()"));
    EXPECT_EQ(lijn.GetSize(), 3);
}

TEST(CubicSpline, NaturalSplineThroughASymmetricRun) {
    // Points (0,0), (1,1), (2,0) with chord-length knots h = √2: the second derivative in the
    // middle is M = 6((−1/√2) − (1/√2)) / (4√2) = −1.5 for Y and 0 for X, so per unit interval
    // Y = 1.5t − 0.5t³ then Y = 1 − 1.5t² + 0.5t³, and X = t then X = 1 + t.
    const CVXCoordArr lijn = Lijn({{0, 0, 1}, {1, 1, 6}, {2, 0, 6}, {3, 0, 0}});
    double(*c)[4][2] = nullptr;
    ASSERT_EQ(lijn.nCubSplin(0, c), 2);
    ASSERT_NE(c, nullptr);
    const double verwacht[2][4][2] = {{{0, 0}, {1, 1.5}, {0, 0}, {0, -0.5}},
                                      {{1, 1}, {1, 0}, {0, -1.5}, {0, 0.5}}};
    for (int i = 0; i < 2; ++i)
        for (int k = 0; k < 4; ++k)
            for (int as = 0; as < 2; ++as)
                EXPECT_NEAR(c[i][k][as], verwacht[i][k][as], 1e-14) << i << k << as;
    CVXCoord p;
    p.Horner(1, c, 1.0);
    EXPECT_NEAR(p.m_dX, 2.0, 1e-14);
    EXPECT_NEAR(p.m_dY, 0.0, 1e-14);
    delete[] c;
}

TEST(CubicSpline, InterpolatesWithContinuousSlopeAndCurvature) {
    const CVXCoordArr lijn =
        Lijn({{0, 0, 1}, {1, 2, 6}, {3, 3, 6}, {4, 1, 6}, {7, 2, 6}, {8, 5, 6}});
    double(*c)[4][2] = nullptr;
    const int n = lijn.nCubSplin(0, c);
    ASSERT_EQ(n, 5);
    for (int i = 0; i < n; ++i) {
        const double h0 = lijn.Pt(i).dDist(lijn.Pt(i + 1));
        for (int as = 0; as < 2; ++as) {
            const double v0 = as == 0 ? lijn.Pt(i).m_dX : lijn.Pt(i).m_dY;
            const double v1 = as == 0 ? lijn.Pt(i + 1).m_dX : lijn.Pt(i + 1).m_dY;
            // Through both ends of the interval.
            EXPECT_NEAR(c[i][0][as], v0, 1e-13);
            EXPECT_NEAR(c[i][0][as] + c[i][1][as] + c[i][2][as] + c[i][3][as], v1, 1e-13);
            if (i + 1 < n) {
                // Slope and curvature per unit of chord length agree at the joint.
                const double h1 = lijn.Pt(i + 1).dDist(lijn.Pt(i + 2));
                const double d1Eind = (c[i][1][as] + 2 * c[i][2][as] + 3 * c[i][3][as]) / h0;
                const double d1Start = c[i + 1][1][as] / h1;
                EXPECT_NEAR(d1Eind, d1Start, 1e-12);
                const double d2Eind = (2 * c[i][2][as] + 6 * c[i][3][as]) / (h0 * h0);
                const double d2Start = 2 * c[i + 1][2][as] / (h1 * h1);
                EXPECT_NEAR(d2Eind, d2Start, 1e-12);
            }
        }
    }
    // Natural ends: no curvature at the first and the last point.
    EXPECT_EQ(c[0][2][0], 0.0);
    EXPECT_EQ(c[0][2][1], 0.0);
    EXPECT_NEAR(2 * c[n - 1][2][1] + 6 * c[n - 1][3][1], 0.0, 1e-12);
    delete[] c;
}

TEST(CubicSpline, RunsThatCannotCarryASpline) {
    double(*c)[4][2] = nullptr;
    EXPECT_EQ(Lijn({{0, 0, 1}, {1, 1, 6}, {2, 0, 0}}).nCubSplin(0, c), 0); // a single 6
    EXPECT_EQ(c, nullptr);
    EXPECT_EQ(Lijn({{0, 0, 1}, {1, 1, 6}, {1, 1, 6}}).nCubSplin(0, c), 0); // coinciding points
    EXPECT_EQ(Lijn({{0, 0, 1}, {1, 1, 0}, {2, 0, 0}}).nCubSplin(0, c), 0);
    EXPECT_EQ(Lijn({{0, 0, 1}, {1, 1, 6}, {2, 0, 6}}).nCubSplin(-1, c), 0);
    EXPECT_EQ(c, nullptr);
}
