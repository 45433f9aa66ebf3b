// The bounding box: the empty box, growth by points, circles and arcs, closed predicates,
// clipping a carrier to the box, grids, and the lists of boxes.
#include "geometry/Extents.h"
#include "geometry/LineArc.h"
#include "geometry/VXCoordArr.h"

#include "GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace vx;
using vxtest::Codes;
using vxtest::Lijn;

namespace {
constexpr double dMax = 1.7976931348623157e+308;

void ExpectBox(const CExtents &e, double xlo, double ylo, double xrb, double yrb) {
    EXPECT_EQ(e.m_dXlo, xlo);
    EXPECT_EQ(e.m_dYlo, ylo);
    EXPECT_EQ(e.m_dXrb, xrb);
    EXPECT_EQ(e.m_dYrb, yrb);
}
} // namespace

TEST(Extents, TheEmptyBoxGrowsWithoutAFirstPointCase) {
    CExtents e;
    ExpectBox(e, dMax, dMax, -dMax, -dMax);
    EXPECT_FALSE(e.bCorrect());
    EXPECT_LT(e.dGetSizeX(), 0.0);
    EXPECT_FALSE(e.bBinnen(CVXCoord(0, 0)));
    EXPECT_FALSE(e.bOverlap(CExtents(-1, -1, 1, 1)));
    e.SetX(3.0);
    EXPECT_EQ(e.m_dXlo, 3.0);
    EXPECT_EQ(e.m_dXrb, 3.0);
    e.SetY(-2.0);
    EXPECT_TRUE(e.bCorrect());
    e.Punt(CVXCoord(5, 1));
    ExpectBox(e, 3, -2, 5, 1);
    e.SetMinX(4.0); // would shrink: ignored
    e.SetMaxY(0.0);
    ExpectBox(e, 3, -2, 5, 1);
    e.SetMinY(-3.0);
    e.SetMaxX(6.0);
    ExpectBox(e, 3, -3, 6, 1);
    e.SetExt(CExtents(0, 0, 1, 9));
    ExpectBox(e, 0, -3, 6, 9);
    e.Reset();
    EXPECT_FALSE(e.bCorrect());
    e.Reset(1, 2, 3, 4);
    ExpectBox(e, 1, 2, 3, 4);
    ExpectBox(CExtents(CVXCoord(10, 20), 2.5), 7.5, 17.5, 12.5, 22.5);
}

TEST(Extents, ShiftPanGrowAndCorners) {
    CExtents e(0, 0, 10, 4);
    e.Schuif(1, -1);
    ExpectBox(e, 1, -1, 11, 3);
    e.Pan(CVXCoord(5, 5), CVXCoord(6, 3)); // by a − b = (−1, 2)
    ExpectBox(e, 0, 1, 10, 5);
    e.Vergroot(1, 2);
    ExpectBox(e, -1, -1, 11, 7);
    EXPECT_EQ(e.dGetSizeX(), 12.0);
    EXPECT_EQ(e.dGetSizeY(), 8.0);

    CVXCoord c(0, 0, 0, 1);
    e.GetCenter(&c);
    EXPECT_EQ(c.m_dX, 5.0);
    EXPECT_EQ(c.m_dY, 3.0);
    EXPECT_EQ(c.nGetChFlags(), 5);
    e.Getlb(&c);
    EXPECT_EQ(c.m_dX, -1.0);
    EXPECT_EQ(c.m_dY, 7.0);
    e.Getro(&c);
    EXPECT_EQ(c.m_dX, 11.0);
    EXPECT_EQ(c.m_dY, -1.0);

    CVXCoordArr rand;
    CExtents(0, 0, 2, 1).CreateBoundingBox(rand);
    ASSERT_EQ(rand.GetSize(), 5);
    EXPECT_EQ(Codes(rand), (std::vector<int>{1, 1, 1, 1, 1})); // no codes written
    EXPECT_TRUE(rand.bGesloten());
    EXPECT_EQ(rand.Pt(1).m_dX, 2.0);
    EXPECT_EQ(rand.Pt(1).m_dY, 0.0);
    EXPECT_EQ(rand.Pt(2).m_dY, 1.0);
    EXPECT_EQ(rand.Pt(3).m_dX, 0.0);
}

TEST(Extents, PredicatesUseClosedBounds) {
    const CExtents e(0, 0, 10, 10);
    EXPECT_TRUE(e.bBinnen(CVXCoord(10, 5)));
    EXPECT_TRUE(e.bBinnen(CVXCoord(0, 0)));
    EXPECT_FALSE(e.bBinnen(CVXCoord(10.0000001, 5)));
    EXPECT_TRUE(e.bBinnen(CExtents(0, 0, 10, 10)));
    EXPECT_FALSE(e.bBinnen(CExtents(-1, 0, 5, 5)));
    EXPECT_TRUE(e.bOverlap(CExtents(10, 10, 20, 20))); // one shared corner
    EXPECT_FALSE(e.bOverlap(CExtents(10.5, 0, 20, 20)));
    EXPECT_TRUE(e.bMogelijkBinnen(CExtents(2, 2, 3, 3)));
    EXPECT_FALSE(e.bMogelijkBinnen(CExtents(20, 20, 30, 30)));

    bool bBinnen = false, bBuiten = true;
    CExtents(2, 2, 3, 3).BinnenBuiten(&bBinnen, &bBuiten, e);
    EXPECT_TRUE(bBinnen);
    EXPECT_FALSE(bBuiten);
    e.BinnenBuiten(&bBinnen, &bBuiten, CExtents(20, 20, 30, 30));
    EXPECT_FALSE(bBinnen);
    EXPECT_TRUE(bBuiten);

    ExpectBox(e.Overlap(CExtents(5, -5, 15, 5)), 5, 0, 10, 5);
    EXPECT_FALSE(e.Overlap(CExtents(20, 20, 30, 30)).bCorrect());
}

TEST(Extents, CirclesAndArcsGrowExactly) {
    CExtents c;
    c.Cirkel(CSimpleBoog(CVXCoord(1, 0), CVXCoord(0, 1), CVXCoord(-1, 0)));
    ExpectBox(c, -1, -1, 1, 1);
    CExtents recht;
    recht.Cirkel(CSimpleBoog(CVXCoord(0, 0), CVXCoord(2, 1), CVXCoord(4, 2)));
    ExpectBox(recht, 0, 0, 4, 2);

    // From 0.1 to 0.2 rad the short way: only the two ends.
    const CVXCoord a(std::cos(0.1), std::sin(0.1)), m(std::cos(0.15), std::sin(0.15)),
        b(std::cos(0.2), std::sin(0.2));
    CExtents kort;
    kort.Boog(CSimpleBoog(a, m, b));
    ExpectBox(kort, b.m_dX, a.m_dY, a.m_dX, b.m_dY);
    // The same ends the long way round, over (−1, 0): all four extremes.
    CExtents lang;
    lang.Boog(CSimpleBoog(a, CVXCoord(-1, 0), b));
    EXPECT_NEAR(lang.m_dXlo, -1.0, 1e-15); // the centre carries rounding of order 1e-16
    EXPECT_NEAR(lang.m_dYlo, -1.0, 1e-15);
    EXPECT_NEAR(lang.m_dXrb, 1.0, 1e-15);
    EXPECT_NEAR(lang.m_dYrb, 1.0, 1e-15);

    // The upper half, counter-clockwise from 0 to π: the ends and the top.
    CExtents boven;
    boven.Boog(CSimpleBoog(CVXCoord(1, 0), CVXCoord(0, 1), CVXCoord(-1, 0)));
    ExpectBox(boven, -1, 0, 1, 1);
    // The lower half from π (quadrant 2) clockwise is the other way round: the bottom.
    CExtents onder;
    onder.Boog(CSimpleBoog(CVXCoord(-1, 0), CVXCoord(0, -1), CVXCoord(1, 0)));
    ExpectBox(onder, -1, -1, 1, 0);
    // From 0.3 rad counter-clockwise over the top and the left to −1.2 rad: quadrant 0 to
    // quadrant 3 the long way, so the top, the left and the bottom extremes; the right side
    // comes from the start point.
    const CVXCoord s(std::cos(0.3), std::sin(0.3)), e(std::cos(-1.2), std::sin(-1.2));
    CExtents drie;
    drie.Boog(CSimpleBoog(s, CVXCoord(-1, 0), e));
    EXPECT_EQ(drie.m_dXrb, s.m_dX);
    EXPECT_NEAR(drie.m_dYrb, 1.0, 1e-15); // C ± r: the centre carries rounding of order 1e-16
    EXPECT_NEAR(drie.m_dXlo, -1.0, 1e-15);
    EXPECT_NEAR(drie.m_dYlo, -1.0, 1e-15);

    CExtents fout;
    fout.Boog(CSimpleBoog(CVXCoord(0, 0), CVXCoord(1, 1), CVXCoord(2, 2)));
    ExpectBox(fout, 0, 0, 2, 2);
}

TEST(Extents, LinesAddThemselvesByPointsOrByCurves) {
    const double h = std::sqrt(0.5);
    const CVXCoordArr lijn = Lijn({{1, 0, 1}, {h, h, 8}, {-1, 0, 8}, {-1, -3, 0}});
    CExtents punten, kromme;
    lijn.Extents(punten, true);
    ExpectBox(punten, -1, -3, 1, h);
    lijn.Extents(kromme, false);
    EXPECT_EQ(kromme.m_dXlo, -1.0);
    EXPECT_EQ(kromme.m_dYlo, -3.0);
    EXPECT_EQ(kromme.m_dXrb, 1.0);
    EXPECT_NEAR(kromme.m_dYrb, 1.0, 1e-15); // the top of the arc, C.Y + r
    const CVXCoordArr cirkel = Lijn({{2, 0, 1}, {0, 2, 7}, {-2, 0, 7}, {2, 0, 7}});
    CExtents rond;
    cirkel.Extents(rond, false);
    ExpectBox(rond, -2, -2, 2, 2);
    CExtents leeg;
    CVXCoordArr().Extents(leeg, false);
    EXPECT_FALSE(leeg.bCorrect());
}

TEST(Extents, ClippingACarrierToTheBox) {
    const CExtents e(0, 0, 10, 10);
    CVXCoord a, b;
    CVXCoord *pp[2] = {&a, &b};
    const CSimpleLine horizontaal(CVXCoord(-5, 5), CVXCoord(15, 5));
    EXPECT_TRUE(e.bSnij(pp, horizontaal));
    EXPECT_EQ(a.m_dX, 0.0);
    EXPECT_EQ(a.m_dY, 5.0);
    EXPECT_EQ(b.m_dX, 10.0);
    const CSimpleLine boven(CVXCoord(-5, 20), CVXCoord(15, 20));
    EXPECT_FALSE(e.bSnij(pp, boven));
    const CSimpleLine steil(CVXCoord(5, -5), CVXCoord(6, 15));
    EXPECT_TRUE(e.bSnij(pp, steil));
    EXPECT_EQ(a.m_dY, 0.0);
    EXPECT_EQ(a.m_dX, 5.25);
    EXPECT_EQ(b.m_dY, 10.0);
    EXPECT_EQ(b.m_dX, 5.75);
    const CSimpleLine naast(CVXCoord(20, -5), CVXCoord(21, 15));
    EXPECT_FALSE(e.bSnij(pp, naast));
}

TEST(Extents, GridNumbersRoundHalvesAwayFromTheOrigin) {
    const CGridDef grid(0.01, 1.0, 5.0, 0.0, 100.0);
    double dN = 0;
    EXPECT_FALSE(grid.OnGrid(CVXCoord(2.5, 0), true, dN));
    EXPECT_EQ(dN, 3.0);
    EXPECT_FALSE(grid.OnGrid(CVXCoord(-2.5, 0), true, dN));
    EXPECT_EQ(dN, -3.0);
    EXPECT_TRUE(grid.OnGrid(CVXCoord(2.004, 0), true, dN));
    EXPECT_EQ(dN, 2.0);
    EXPECT_TRUE(grid.OnGrid(CVXCoord(0, 110.003), false, dN));
    EXPECT_EQ(dN, 2.0);
    EXPECT_FALSE(grid.OnGrid(CVXCoord(0, 102.0), false, dN));
    EXPECT_TRUE(grid.OnSameGrid(CVXCoord(0, 109.995), false, 2.0));
    EXPECT_FALSE(grid.OnSameGrid(CVXCoord(0, 110.003), false, 3.0));
    CGridDef kopie;
    kopie = grid;
    EXPECT_EQ(kopie.m_dOrigY, 100.0);
}

TEST(Extents, DiffsAndOwningLists) {
    CDiffs d(1, 2, 3, 4);
    d.SetXlo(100); // stored as it is, no comparison
    d.SetYrb(-100);
    ExpectBox(d, 100, 2, 3, -100);
    {
        CExtList lijst;
        lijst.AddTail(new CExtents(0, 0, 1, 1));
        lijst.AddHead(new CExtents(2, 2, 3, 3));
        EXPECT_EQ(lijst.GetHead()->m_dXlo, 2.0);
        lijst.RemoveAll();
        EXPECT_TRUE(lijst.IsEmpty());
        lijst.AddTail(new CExtents());
    } // the destructor deletes the rest
    CExtListX lijstX;
    lijstX.AddTail(new CExtents(0, 0, 1, 1));
    EXPECT_EQ(lijstX.GetCount(), 1);
}
