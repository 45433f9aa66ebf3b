// nInsertInLine on every kind of stretch. The arcs are parts of the circle of radius 10 about the
// origin, so the expected support points are points of that circle at the halved angles.
#include "geometry/GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

using vx::CVXCoord;
using vx::CVXCoordArr;
using vxtest::Codes;
using vxtest::Lijn;

namespace {

// The point of the circle of radius 10 about the origin at an angle in degrees.
CVXCoord OpCirkel(double graden) {
    const double h = graden * std::numbers::pi / 180.0;
    return CVXCoord(10.0 * std::cos(h), 10.0 * std::sin(h));
}

// Positions agree to rounding: the constructions go through angles and square roots.
constexpr double dAfronding = 1e-9;

void ExpectPunt(const CVXCoord &p, double x, double y) {
    EXPECT_NEAR(p.m_dX, x, dAfronding);
    EXPECT_NEAR(p.m_dY, y, dAfronding);
}

// The half circle from 0° over 90° to 180°, counter-clockwise.
CVXCoordArr HalveCirkel() {
    return Lijn({{10, 0, 1}, {0, 10, 8}, {-10, 0, 8}});
}

} // namespace

TEST(InsertInLine, StraightSplineAndEnd) {
    CVXCoordArr lijn = Lijn({{0, 0, 1}, {10, 0, 0}});
    EXPECT_EQ(lijn.nInsertInLine(CVXCoord(4, 0), 0, false), 1);
    EXPECT_EQ(Codes(lijn), (std::vector<int>{1, 0, 0}));
    EXPECT_EQ(lijn.Pt(1).m_dX, 4.0);
    // At the last index the point is appended with code 0.
    EXPECT_EQ(lijn.nInsertInLine(CVXCoord(12, 3), 2, false), 3);
    EXPECT_EQ(Codes(lijn), (std::vector<int>{1, 0, 0, 0}));
    // A spline stretch keeps the new point in the spline.
    CVXCoordArr spline = Lijn({{0, 0, 1}, {5, 2, 6}, {10, 0, 6}});
    EXPECT_EQ(spline.nInsertInLine(CVXCoord(7, 2), 1, false), 2);
    EXPECT_EQ(Codes(spline), (std::vector<int>{1, 6, 6, 6}));
}

TEST(InsertInLine, AVertexWithinTheInsertionToleranceIsTakenInstead) {
    // Heights on both sides, so the distance is spatial (a point with a height and one without
    // are never near).
    CVXCoordArr lijn = Lijn({{0, 0, 1, 2.0}, {10, 0, 0, 2.0}});
    // 0.0009 is within 0.001 of the vertex: nothing goes in.
    EXPECT_EQ(lijn.nInsertInLine(CVXCoord(10.0009, 0, 2.0, 0), 0, false), 1);
    EXPECT_EQ(lijn.GetSize(), 2);
    EXPECT_EQ(lijn.Pt(1).m_dX, 10.0);
    // With bCopy the vertex takes the point over but keeps its section code; the distance is
    // √(2 · 0.0006²) = 0.00085.
    EXPECT_EQ(lijn.nInsertInLine(CVXCoord(0.0006, 0, 2.0006, 6), 0, true), 0);
    EXPECT_EQ(lijn.GetSize(), 2);
    EXPECT_EQ(lijn.Pt(0).m_dX, 0.0006);
    EXPECT_EQ(lijn.Pt(0).m_dZ, 2.0006);
    EXPECT_EQ(lijn.Pt(0).nGetSectie(), 1);
    // 0.0011 away is a new point.
    EXPECT_EQ(lijn.nInsertInLine(CVXCoord(10.0011, 0, 2.0, 0), 0, false), 1);
    EXPECT_EQ(lijn.GetSize(), 3);
}

TEST(InsertInLine, AnArcIsHalvedAroundTheNewPoint) {
    // Before the support point: the new point at 45°, the first arc's support at 22.5°, the old
    // support (90°) serves the second arc.
    CVXCoordArr voor = HalveCirkel();
    EXPECT_EQ(voor.nInsertInLine(OpCirkel(45), 0, false), 2);
    EXPECT_EQ(Codes(voor), (std::vector<int>{1, 8, 8, 8, 8}));
    const CVXCoord m1 = OpCirkel(22.5), q = OpCirkel(45);
    ExpectPunt(voor.Pt(1), m1.m_dX, m1.m_dY);
    ExpectPunt(voor.Pt(2), q.m_dX, q.m_dY);
    ExpectPunt(voor.Pt(3), 0, 10);
    EXPECT_EQ(voor.nSectieOnlyTest2(), -1);
    // Behind it: the new point at 135°, the second arc's support at 157.5°.
    CVXCoordArr na = HalveCirkel();
    EXPECT_EQ(na.nInsertInLine(OpCirkel(135), 0, false), 2);
    EXPECT_EQ(Codes(na), (std::vector<int>{1, 8, 8, 8, 8}));
    const CVXCoord m2 = OpCirkel(157.5);
    ExpectPunt(na.Pt(1), 0, 10);
    ExpectPunt(na.Pt(3), m2.m_dX, m2.m_dY);
    ExpectPunt(na.Pt(4), -10, 0);
}

TEST(InsertInLine, AnArcThatCannotBeHalvedBecomesStraight) {
    // Collinear "arc": the point goes in behind the support point when farther from the start.
    CVXCoordArr ver = Lijn({{0, 0, 1}, {5, 0, 8}, {10, 0, 8}});
    EXPECT_EQ(ver.nInsertInLine(CVXCoord(7, 0), 0, false), 2);
    EXPECT_EQ(Codes(ver), (std::vector<int>{1, 0, 0, 0}));
    EXPECT_EQ(ver.Pt(2).m_dX, 7.0);
    CVXCoordArr dicht = Lijn({{0, 0, 1}, {5, 0, 8}, {10, 0, 8}});
    EXPECT_EQ(dicht.nInsertInLine(CVXCoord(3, 0), 0, false), 1);
    EXPECT_EQ(Codes(dicht), (std::vector<int>{1, 0, 0, 0}));
    EXPECT_EQ(dicht.Pt(1).m_dX, 3.0);
}

TEST(InsertInLine, ACircleBecomesTwoArcs) {
    const auto cirkel4 = [] { return Lijn({{10, 0, 1}, {0, 10, 7}, {-10, 0, 7}, {10, 0, 7}}); };
    CVXCoordArr a = cirkel4();
    EXPECT_EQ(a.nInsertInLine(OpCirkel(45), 0, false), 1); // before the old point 1
    EXPECT_EQ(Codes(a), (std::vector<int>{1, 8, 8, 8, 8}));
    ExpectPunt(a.Pt(2), 0, 10);
    CVXCoordArr b = cirkel4();
    EXPECT_EQ(b.nInsertInLine(CVXCoord(0, -10), 0, false), 3); // between 180° and the close
    ExpectPunt(b.Pt(3), 0, -10);
    ExpectPunt(b.Pt(4), 10, 0);
    EXPECT_EQ(b.nSectieOnlyTest2(), -1);
    // A circle of three points is first closed on its first point.
    CVXCoordArr c = Lijn({{10, 0, 1}, {0, 10, 7}, {-10, 0, 7}});
    EXPECT_EQ(c.nInsertInLine(OpCirkel(135), 0, false), 2);
    EXPECT_EQ(Codes(c), (std::vector<int>{1, 8, 8, 8, 8}));
    ExpectPunt(c.Pt(3), -10, 0);
    ExpectPunt(c.Pt(4), 10, 0);
}
