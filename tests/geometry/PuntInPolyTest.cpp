// Point and line in polygon, CreeerCentroide and Overlap. Expected answers follow from the
// figures by hand: which side of an edge or arc a point lies, and its distance to it.
#include "geometry/PuntInPoly.h"

#include "geometry/Extents.h"
#include "geometry/GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

using vx::CVXCoord;
using vx::CVXCoordArr;
using vxtest::Lijn;

namespace {

// The flags as a short text: "B" inside, "O" on the boundary, "U" outside.
std::string Flags(const vx::PuntInPolyRes &r) {
    return std::string(r.bBinnen ? "B" : "") + (r.bOp ? "O" : "") + (r.bBuiten ? "U" : "");
}

struct Geval {
    double x, y;
    const char *flags;
};

void Check(const CVXCoordArr &poly, const std::vector<Geval> &gevallen) {
    for (const Geval &g : gevallen)
        EXPECT_EQ(Flags(poly.PuntInPolygoon(CVXCoord(g.x, g.y))), g.flags) << g.x << ", " << g.y;
}

// A straight polygon from x, y pairs, closed back on its first point.
CVXCoordArr Veelhoek(std::initializer_list<double> xy) {
    CVXCoordArr arr;
    for (auto it = xy.begin(); it + 1 < xy.end(); it += 2) {
        const CVXCoord c(it[0], it[1], static_cast<char>(arr.GetSize() == 0 ? 1 : 0));
        arr.Add(&c);
    }
    CVXCoord sluit(arr.Pt(0).m_dX, arr.Pt(0).m_dY, static_cast<char>(0));
    arr.Add(&sluit);
    return arr;
}

CVXCoordArr Vierkant() {
    return Veelhoek({0, 0, 10, 0, 10, 10, 0, 10});
}

// An L of 20 by 20 without its upper right quarter; the inner corner is (10, 10).
CVXCoordArr LVorm() {
    return Veelhoek({0, 0, 20, 0, 20, 10, 10, 10, 10, 20, 0, 20});
}

} // namespace

TEST(PuntInPoly, StraightEdgesVerticesAndStrictTolerance) {
    // 0.0005 off an edge is no longer on it; (10.0003, 10.0003) is 0.00042 off a corner.
    const CVXCoordArr sq = Vierkant();
    Check(sq, {{5, 5, "B"}, {15, 5, "U"}, {5, 0.0006, "B"}, {5, -0.0004, "O"}, {5, -0.0006, "U"}});
    Check(sq, {{5, -0.0005, "U"}, {0, 0, "O"}, {10, 10, "O"}, {10.0003, 10.0003, "O"}});
    Check(LVorm(), {{10, 10, "O"}, {15, 15, "U"}, {5, 15, "B"}});
    EXPECT_EQ(sq.nPuntInPuntArr(CVXCoord(5, 5)), 1);
    EXPECT_EQ(sq.nPuntInPuntArr(CVXCoord(15, 5)), -1);
    EXPECT_EQ(sq.nPuntInPuntArr(CVXCoord(10, 5)), 0);
    EXPECT_TRUE(sq.bPuntInPuntArr(CVXCoord(5, 5)));
    EXPECT_FALSE(sq.bPuntInPuntArr(CVXCoord(10, 5)));
}

TEST(PuntInPoly, ArcSections) {
    // Quarter disc of radius 10 about the origin, arc counter-clockwise (opening below π). Just
    // outside the circle the arc counts by its chord, so (6, 8.0003) is outside, not on it.
    const double s = 7.0710678118654755; // 10·cos 45°
    const CVXCoordArr kwart = Lijn({{0, 0, 1}, {10, 0, 0}, {s, s, 8}, {0, 10, 8}, {0, 0, 0}});
    Check(kwart, {{6, 6, "B"}, {7, 7, "B"}, {7.2, 7.2, "U"}});
    Check(kwart, {{6, 7.9997, "O"}, {6, 8.0003, "U"}, {s, s + 0.0004, "O"}});
    // Half disc above the X axis, clockwise from (-10, 0) over (0, 10): an opening of π.
    // (7, 7.1) lies 9.970 from the centre, (7.1, 7.1) 10.041.
    Check(Lijn({{-10, 0, 1}, {0, 10, 8}, {10, 0, 8}, {-10, 0, 0}}),
          {{0, 9, "B"}, {7, 7.1, "B"}, {7.1, 7.1, "U"}, {0, 10.0004, "O"}, {0, -1, "U"}});
    // Three quarters of a disc, counter-clockwise from (10, 0) over (-10, 0) to (0, -10): the
    // sum goes over the arc's middle, before it for (0, 5) and after it for (-5, -5).
    Check(Lijn({{0, 0, 1}, {10, 0, 0}, {-10, 0, 8}, {0, -10, 8}, {0, 0, 0}}),
          {{0, 5, "B"}, {-5, -5, "B"}, {5, -5, "U"}, {-8, -8, "U"}, {-10.0004, 0, "O"}});
    // Circle form: (6, 8.0004) is 0.00032 from the circle, (6, 8.001) 0.0008.
    Check(Lijn({{10, 0, 1}, {0, 10, 7}, {-10, 0, 7}}),
          {{3, 4, "B"}, {6, 8.0004, "O"}, {6, 8.001, "U"}, {20, 0, "U"}});
}

TEST(PuntInPoly, DegenerateAndOpenSequences) {
    // Three collinear circle points have no centre: no flag, read as 0 and as not inside.
    const CVXCoordArr plat = Lijn({{0, 0, 1}, {1, 0, 7}, {2, 0, 7}});
    Check(plat, {{1, 5, ""}});
    EXPECT_EQ(plat.nPuntInPuntArr(CVXCoord(1, 5)), 0);
    EXPECT_FALSE(plat.bPuntInPuntArr(CVXCoord(1, 5)));
    // Open: no closing stretch, the sum of π at (5, 5) lies in the undecided band.
    Check(Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}}), {{5, 5, "O"}});
    Check(Lijn({{0, 0, 1}}), {{5, 5, "U"}, {0, 0.0004, "O"}});
    Check(CVXCoordArr(), {{5, 5, ""}});
    // Out and back along one segment: the angles cancel.
    Check(Lijn({{0, 0, 1}, {10, 0, 0}, {0, 0, 0}}), {{5, 5, "U"}, {5, 0, "O"}});
}

TEST(PuntInPoly, LineInPolygon) {
    const CVXCoordArr sq = Vierkant(), l = LVorm();
    const CVXCoordArr binnen = Lijn({{2, 2, 1}, {3, 3, 0}});
    EXPECT_EQ(Flags(sq.LijnInPolygoon(binnen, true)), "B");
    EXPECT_EQ(binnen.nPuntArrBinnenPuntArr(sq), 1);
    // Partly inside: the short form stops at the first decided point, the full one reports.
    const CVXCoordArr deels = Lijn({{5, 5, 1}, {15, 5, 0}});
    EXPECT_EQ(Flags(sq.LijnInPolygoon(deels, false)), "B");
    {
        vxtest::AssertCatcher catcher;
        EXPECT_EQ(Flags(sq.LijnInPolygoon(deels, true)), "BU");
        EXPECT_TRUE(catcher.Has("!(Res.bBinnen&&Res.bBuiten)"));
    }
    // From the boundary inwards: both flags, and 0 since bOp reads first.
    const CVXCoordArr vanRand = Lijn({{0, 5, 1}, {5, 5, 0}});
    EXPECT_EQ(Flags(sq.LijnInPolygoon(vanRand, false)), "BO");
    EXPECT_EQ(vanRand.nPuntArrBinnenPuntArr(sq), 0);
    // All vertices on the boundary: the middles decide, (15, 15) outside, (10, 5) inside.
    EXPECT_EQ(Flags(l.LijnInPolygoon(Lijn({{20, 10, 1}, {10, 20, 0}}), true)), "OU");
    EXPECT_EQ(Flags(l.LijnInPolygoon(Lijn({{0, 0, 1}, {20, 10, 0}}), false)), "BO");
    EXPECT_EQ(Flags(l.LijnInPolygoon(Lijn({{0, 0, 1}, {20, 0, 0}}), false)), "O");
}

TEST(PolyMeasures, CreeerCentroideTakesFirstGridPointInside) {
    const auto centroide = [](const CVXCoordArr &poly, double x, double y) {
        CVXCoord p;
        EXPECT_TRUE(poly.CreeerCentroide(p));
        EXPECT_EQ(p.m_dX, x);
        EXPECT_EQ(p.m_dY, y);
    };
    centroide(Vierkant(), 5, 5);
    // L: the grid of 2 hits the inner corner (on the boundary); the grid of 4 starts at (5, 5).
    centroide(LVorm(), 5, 5);
    // An arch over a notch 10..20 wide: the centre (15, 15) lies in the notch, so the first
    // point of the grid of 4, (7.5, 7.5) in the left leg, is taken.
    centroide(Veelhoek({0, 0, 10, 0, 10, 20, 20, 20, 20, 0, 30, 0, 30, 30, 0, 30}), 7.5, 7.5);

    // Ring 0..40 with the hole 10..30 walked back, joined by the seam (0, 0)-(10, 10): the grids
    // of 2 and 4 meet only the hole and its edges; in the grid of 8, (5, 5) lies on the seam.
    centroide(Veelhoek({0, 0, 40, 0, 40, 40, 0, 40, 0, 0, 10, 10, 10, 30, 30, 30, 30, 10, 10, 10}),
              10, 5);
    vxtest::AssertCatcher catcher;
    CVXCoord p;
    EXPECT_FALSE(CVXCoordArr().CreeerCentroide(p));
    EXPECT_TRUE(catcher.Has("bGesloten()"));
}

TEST(PolyMeasures, OverlapByZones) {
    const vx::CExtents box(0, 0, 10, 10);
    const auto overlap = [&box](double x0, double y0, double x1, double y1) {
        return Lijn({{x0, y0, 1}, {x1, y1, 0}}).Overlap(box);
    };
    EXPECT_TRUE(overlap(5, 5, 50, 50)); // a point in the box
    // One outer side never touches: both left, and a line on the low edge (counts as below).
    EXPECT_FALSE(overlap(-5, -5, -5, 20));
    EXPECT_FALSE(overlap(-5, 0, 15, 0));
    EXPECT_TRUE(overlap(-5, 5, 15, 5)); // opposite sides
    EXPECT_TRUE(overlap(5, 15, 5, -5));
    EXPECT_TRUE(overlap(-1, 5, 5, 11));   // left and above: y = x + 6 cuts the corner
    EXPECT_FALSE(overlap(-6, 5, 5, 16));  // y = x + 11 passes it
    EXPECT_TRUE(overlap(-5, 6, 6, -5));   // left and below: y = 1 - x cuts the corner
    EXPECT_FALSE(overlap(-5, 4, 4, -5));  // y = -1 - x passes it
    EXPECT_TRUE(overlap(-5, -5, 15, 15)); // opposite corner zones
    EXPECT_FALSE(overlap(-5, 8, 8, 25));
    // An enclosing polygon: decided by the low corner lying inside.
    EXPECT_TRUE(Veelhoek({-10, -10, 20, -10, 20, 20, -10, 20}).Overlap(box));
    // An arc about (5, 20) of radius 11.5 dips to (5, 8.5) in the box, but counts as its chord.
    EXPECT_FALSE(Lijn({{-5.806465139037947, 16.06676835175481, 1},
                       {-4.9592921435210435, 14.25, 8},
                       {15.806465139037947, 16.06676835175481, 8}})
                     .Overlap(box));
}

using vxtest::LogCatcher;

TEST(Draairichting, SimpleSequencesByTheirRawPoints) {
    LogCatcher log;
    CVXCoordArr sq = Vierkant(); // (0,0) (10,0) (10,10) (0,10): counter-clockwise
    EXPECT_EQ(sq.Draairichting(), vx::KlokTegen);
    sq.DraaiRichting();
    EXPECT_EQ(sq.Draairichting(), vx::KlokMee);
    EXPECT_EQ(Lijn({{0, 0, 1}, {1, 0, 0}}).Draairichting(), vx::KlokOnbepaald);
    // Points on one line: S = 0.
    EXPECT_EQ(Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}, {0, 0, 0}}).Draairichting(),
              vx::KlokOnbepaald);
    // The arc's middle point counts as a vertex: the half disc over the chord from (-10, 0) to
    // (10, 0) with its middle at (0, -10): S = -10·(0 + 10) + 10·(-10 - 0) + 0 = -200.
    EXPECT_EQ(Lijn({{-10, 0, 1}, {10, 0, 0}, {0, -10, 8}, {-10, 0, 8}}).Draairichting(),
              vx::KlokMee);
    EXPECT_TRUE(LogCatcher::Lines().empty());
}

TEST(Draairichting, SelfCrossingSequencesGoByTheirArea) {
    LogCatcher log;
    // A bow-tie whose lobes balance: the area is 0.
    EXPECT_EQ(Lijn({{0, 0, 1}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}, {0, 0, 0}}).Draairichting(),
              vx::KlokOnbepaald);
    ASSERT_EQ(LogCatcher::Lines().size(), 1u);
    EXPECT_EQ(LogCatcher::Lines()[0], "3 NonSimple polygon"); // level 3, information
    // Unbalanced lobes: the shoelace sum is 0 - 400 + 200 + 0 = -200, area -100: clockwise.
    EXPECT_EQ(Lijn({{0, 0, 1}, {20, 20, 0}, {20, 0, 0}, {0, 10, 0}, {0, 0, 0}}).Draairichting(),
              vx::KlokMee);
    EXPECT_EQ(LogCatcher::Lines().size(), 2u);
    // Not seen: the only crossing (stretch 1 with the last stretch) is never tested.
    EXPECT_EQ(Lijn({{0, 0, 1}, {10, 0, 0}, {0, 10, 0}, {10, 10, 0}, {0, 0, 0}}).Draairichting(),
              vx::KlokOnbepaald);
    EXPECT_EQ(LogCatcher::Lines().size(), 2u);
    // A crossing of two inner stretches (1 and 3 of six) is seen: (0,0) (10,0) (10,10) (4,-2)
    // (4,5) (0,5) (0,0); stretch 1 runs x = 10 and stretch 3 from (4,-2) to (4,5) do not
    // cross, but stretch 0 (y = 0, x 0..10) and stretch 2 from (10,10) to (4,-2) do, at (5, 0).
    Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}, {4, -2, 0}, {4, 5, 0}, {0, 5, 0}, {0, 0, 0}})
        .Draairichting();
    EXPECT_EQ(LogCatcher::Lines().size(), 3u);
    // A touch counts: stretch 3 ends at (5, 0), inside stretch 0 (nBoogRichting 0 there).
    Lijn({{0, 0, 1}, {10, 0, 0}, {10, 5, 0}, {5, 5, 0}, {5, 0, 0}, {2, 0, 0}, {0, 0, 0}})
        .Draairichting();
    EXPECT_EQ(LogCatcher::Lines().size(), 4u);
}
