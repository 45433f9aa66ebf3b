// Projection on lines, circles and arcs, walking along stretches and heights by interpolation.
#include "geometry/LineArc.h"
#include "geometry/VXCoordArr.h"

#include "GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace vx;
using vxtest::AssertCatcher;
using vxtest::Lijn;

namespace {

constexpr double pi = std::numbers::pi;

const CSimpleBoog BovenBoog(CVXCoord(1, 0), CVXCoord(0, 1), CVXCoord(-1, 0));

// Opens the protected spatial companions for testing.
class CRuimtePunt : public CVXCoord {
public:
    using CVXCoord::HulpAs;
    using CVXCoord::LokaalSteun;
    using CVXCoord::Normaal;
};

} // namespace

TEST(ProjectLine, FootsOnTheCarrierAndWithinTheStretch) {
    const CSimpleLine lijn(CVXCoord(0, 0, 1, 1), CVXCoord(10, 0, 2, 0));
    CVXCoord voet;
    voet.Projecteer(lijn, CVXCoord(3, 7));
    EXPECT_EQ(voet.m_dX, 3.0);
    EXPECT_EQ(voet.m_dY, 0.0);
    EXPECT_EQ(voet.nGetChFlags(), 0); // written directly
    EXPECT_TRUE(std::isnan(voet.m_dZ));
    voet.Projecteer(lijn, CVXCoord(15, 2)); // no range test
    EXPECT_EQ(voet.m_dX, 15.0);

    const CSimpleLine punt(CVXCoord(2, 3, 5, 8), CVXCoord(2, 3));
    CVXCoord kopie;
    kopie.Projecteer(punt, CVXCoord(9, 9));
    EXPECT_EQ(kopie.m_dX, 2.0);
    EXPECT_EQ(kopie.m_dZ, 5.0);
    EXPECT_EQ(kopie.nGetSectie(), 8);

    // Just past the end, within the point tolerance: the end point itself, with its Z.
    CVXCoord eind(0, 0, 6);
    EXPECT_TRUE(eind.bProjecteerLijn(CVXCoord(10.0003, 0.0002), lijn));
    EXPECT_EQ(eind.m_dX, 10.0);
    EXPECT_EQ(eind.m_dZ, 2.0);
    EXPECT_EQ(eind.nGetSectie(), 6);
    EXPECT_EQ(eind.nGetChFlags(), 7);
    CVXCoord binnen(0, 0, 9, 1);
    EXPECT_TRUE(binnen.bProjecteerLijn(CVXCoord(5, 3), lijn));
    EXPECT_EQ(binnen.m_dX, 5.0);
    EXPECT_TRUE(std::isnan(binnen.m_dZ));
    CVXCoord buiten(1, 1);
    EXPECT_FALSE(buiten.bProjecteerLijn(CVXCoord(12, 0), lijn));
    EXPECT_EQ(buiten.m_dX, 1.0);

    CVXCoord op(5, 0);
    EXPECT_TRUE(op.bProjecteerLijn(lijn, 0.0));
    CVXCoord naast(5, 0.1);
    EXPECT_TRUE(naast.bProjecteerLijn(lijn, 0.1)); // exactly dTol is accepted
    EXPECT_EQ(naast.m_dY, 0.0);
    CVXCoord teVer(5, 0.1);
    EXPECT_FALSE(teVer.bProjecteerLijn(lijn, 0.09));
    EXPECT_EQ(teVer.m_dY, 0.1);
}

TEST(ProjectLine, DistanceToTheCarrierInThePlaneAndInSpace) {
    const CSimpleLine plat(CVXCoord(0, 0), CVXCoord(10, 0));
    EXPECT_EQ(CVXCoord(3, 4).Dist2D3D(plat), 4.0);
    const CSimpleLine ruimte(CVXCoord(0, 0, 0, 1), CVXCoord(10, 0, 0, 1));
    // |(10,0,0) × (−3,−4,−12)| / 10 = sqrt(16000)/10 (python3: 12.649110640673516)
    EXPECT_EQ(CVXCoord(3, 4, 12, 1).Dist2D3D(ruimte), 12.649110640673516);
    EXPECT_EQ(CVXCoord(3, 4).Dist2D3D(ruimte), 4.0); // one Z missing: planar
    const CSimpleLine nul(CVXCoord(1, 1), CVXCoord(1, 1));
    EXPECT_TRUE(std::isnan(CVXCoord(3, 4).Dist2D3D(nul)));
}

TEST(ProjectCircle, NearestPointsOnCirclesAndArcs) {
    CVXCoord c;
    EXPECT_TRUE(c.bProjecteerCirkel(CVXCoord(0, 0), BovenBoog)); // the centre itself
    EXPECT_EQ(c.m_dX, 1.0);
    EXPECT_EQ(c.m_dY, 0.0);
    CVXCoord d;
    EXPECT_TRUE(d.bProjecteerCirkel(CVXCoord(0, -5), BovenBoog));
    EXPECT_NEAR(d.m_dX, 0.0, 1e-16);
    EXPECT_EQ(d.m_dY, -1.0);
    const CSimpleBoog recht(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(2, 0));
    EXPECT_FALSE(d.bProjecteerCirkel(CVXCoord(0, -5), recht));

    CVXCoord zelf(0, 1.5);
    EXPECT_TRUE(zelf.bProjecteerCirkel(BovenBoog, 0.5));
    EXPECT_EQ(zelf.m_dY, 1.0);
    CVXCoord ver(0, 1.5);
    EXPECT_FALSE(ver.bProjecteerCirkel(BovenBoog, 0.4));
    EXPECT_EQ(ver.m_dY, 1.5);

    CVXCoord opBoog, onder;
    EXPECT_TRUE(opBoog.bProjecteerBoog(CVXCoord(0, 3), BovenBoog));
    EXPECT_EQ(opBoog.m_dY, 1.0);
    EXPECT_FALSE(onder.bProjecteerBoog(CVXCoord(0, -3), BovenBoog));
    CVXCoord dicht(0.0002, 1.0003);
    EXPECT_TRUE(dicht.bProjecteerBoog(BovenBoog, 0.001));
    CVXCoord onderTol(0, -1.0001);
    EXPECT_FALSE(onderTol.bProjecteerBoog(BovenBoog, 0.001));
}

TEST(ProjectLine, AlongALineTheIndexAdvancesPerStretch) {
    const CVXCoordArr lijn = Lijn({{1, 0, 1}, {0, 1, 8}, {-1, 0, 8}, {-1, -5, 0}});
    CVXCoord p;
    int i = 0;
    EXPECT_FALSE(p.bProjecteer(CVXCoord(0, -3), lijn, &i)); // below the arc
    EXPECT_EQ(i, 2);
    EXPECT_TRUE(p.bProjecteer(CVXCoord(0, -3), lijn, &i));
    EXPECT_EQ(i, 3);
    EXPECT_EQ(p.m_dX, -1.0);
    EXPECT_EQ(p.m_dY, -3.0);

    const CVXCoordArr cirkel = Lijn({{1, 0, 1}, {0, 1, 7}, {-1, 0, 7}, {1, 0, 7}});
    int k = 0;
    EXPECT_TRUE(p.bProjecteer(CVXCoord(0, -3), cirkel, &k));
    EXPECT_EQ(k, 2);
    EXPECT_EQ(p.m_dY, -1.0);

    // The line's own projection: on the arc when it can, else an unbounded foot on the chord.
    CVXCoord q;
    lijn.Projecteer(q, 1, CVXCoord(0, 3));
    EXPECT_EQ(q.m_dY, 1.0);
    lijn.Projecteer(q, 1, CVXCoord(0, -3)); // t = ((−1)(−1) + 1(−3))/2 = −1 on (1,0)-(0,1)
    EXPECT_EQ(q.m_dX, 2.0);
    EXPECT_EQ(q.m_dY, -1.0);
    cirkel.Projecteer(q, 2, CVXCoord(-3, 0));
    EXPECT_EQ(q.m_dX, -1.0);

    AssertCatcher reports;
    int laatste = 3;
    EXPECT_THROW(p.bProjecteer(CVXCoord(0, 0), lijn, &laatste), std::exception);
    EXPECT_TRUE(reports.Has("*pnIndex<Lijn.GetSize()-1"));
}

TEST(Construct, MiddleOfATriangleAndWalkingOverArcs) {
    const CSimpleBoog driehoek(CVXCoord(0, 0), CVXCoord(4, 0), CVXCoord(1, 6));
    CVXCoord m;
    EXPECT_EQ(m.ZwaartePunt(driehoek), 6.0);
    EXPECT_NEAR(m.m_dX, 2.0, 1e-15); // halfway up the height over the middle of the base
    EXPECT_EQ(m.m_dY, 3.0);
    const CSimpleBoog plat(CVXCoord(0, 0), CVXCoord(4, 0), CVXCoord(1, 0));
    EXPECT_EQ(m.ZwaartePunt(plat), 0.0);
    EXPECT_EQ(m.m_dX, 1.0);

    CVXCoord w;
    w.DraaiOverBoog(BovenBoog, pi / 2); // a quarter along the counter-clockwise arc
    EXPECT_NEAR(w.m_dX, 0.0, 1e-16);
    EXPECT_EQ(w.m_dY, 1.0);
    const CSimpleBoog recht(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(2, 0));
    w.DraaiOverBoog(recht, 1.5);
    EXPECT_EQ(w.m_dX, 1.5);
    EXPECT_EQ(w.m_dY, 0.0);
}

TEST(Construct, WalkingAlongLinesCarriesTheHeight) {
    const CVXCoordArr lijn = Lijn({{0, 0, 1, 10}, {10, 0, 0, 20}, {10, 10, 0, 40}});
    CVXCoord p;
    p.SchuifOverLijnDeel(lijn, 0, 2.5);
    EXPECT_EQ(p.m_dX, 2.5);
    EXPECT_EQ(p.m_dZ, 12.5);
    p.SchuifOverLijnDeel(lijn, 0, 0.0);
    EXPECT_EQ(p.m_dZ, 15.0); // the mean at d = 0, kept on purpose

    EXPECT_EQ(p.nSchuifOverLijn(lijn, 15.0), 1);
    EXPECT_EQ(p.m_dX, 10.0);
    EXPECT_EQ(p.m_dY, 5.0);
    EXPECT_EQ(p.m_dZ, 30.0);
    EXPECT_EQ(p.nSchuifOverLijn(lijn, 0.0), 0);
    EXPECT_EQ(p.m_dZ, 10.0); // the mean first, then z(0) exactly through bInterpoleerZ
    // Beyond the end: measured from the start of the last stretch, by the overshoot of 5.
    EXPECT_EQ(p.nSchuifOverLijn(lijn, 25.0), 1);
    EXPECT_EQ(p.m_dY, 5.0);

    const CVXCoordArr half = Lijn({{0, 0, 1, 10}, {10, 0, 0}});
    CVXCoord h;
    h.SchuifOverLijnDeel(half, 0, 4.0);
    EXPECT_EQ(h.m_dZ, 10.0); // the start's Z comes with the copy, nothing more

    const CVXCoordArr boog = Lijn({{1, 0, 1, 0}, {0, 1, 8, 10}, {-1, 0, 8, 20}});
    CVXCoord b;
    EXPECT_EQ(b.nSchuifOverLijn(boog, 3 * pi / 4), 0);
    EXPECT_NEAR(b.m_dX, -std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(b.m_dY, std::sqrt(0.5), 1e-15);
    // t = (3π/4)/π of the whole arc, over the half after the support point (Z 10 to 20):
    // 10 + 10·0.75 = 17.5. The walked angle carries rounding of order 1e-16.
    EXPECT_NEAR(b.m_dZ, 17.5, 1e-13);
}

TEST(Interpolate, HeightsFromStretchesAndTriangles) {
    const CVXCoordArr lijn = Lijn({{0, 0, 1, 0}, {10, 0, 0, 10}, {20, 0, 0}});
    CVXCoord p(2, 0, 5, 1);
    EXPECT_TRUE(p.bInterpoleerZ(&lijn, 0));
    EXPECT_EQ(p.m_dZ, 2.0);
    EXPECT_EQ(p.nGetChFlags(), 0); // written directly
    CVXCoord q(15, 0, 5, 1);
    EXPECT_FALSE(q.bInterpoleerZ(&lijn, 1));
    EXPECT_EQ(q.m_dZ, 5.0);
    {
        AssertCatcher reports;
        CVXCoord r(50, 0, 5, 1);
        r.bInterpoleerZ(&lijn, 0);
        EXPECT_EQ(reports.Count(), 1u);
    }

    CVXCoord s(2, 0);
    lijn.InterpoleerZ(s, 0, 7.0);
    EXPECT_EQ(s.m_dZ, 2.0); // the interpolation overwrites the given Z
    CVXCoord t(15, 0);
    lijn.InterpoleerZ(t, 1, 7.0);
    EXPECT_EQ(t.m_dZ, 7.0);
    lijn.BerekenZ(t, 0, dNaN, 3.0);
    EXPECT_EQ(t.m_dZ, 3.0);
    lijn.BerekenZ(t, 0, dNaN, dNaN);
    EXPECT_EQ(t.m_dZ, 10.0 * 15.0 / 20.0); // d0 = 15, d1 = 5
    const CVXCoordArr nul = Lijn({{0, 0, 1, 0}, {0, 0, 0, 10}});
    CVXCoord u(0, 0);
    nul.InterpoleerZ(u, 0, dNaN);
    EXPECT_TRUE(std::isnan(u.m_dZ)); // a plain 0/0

    // The plane z = x + 2y through three vertices.
    const CSimpleBoog vlak(CVXCoord(0, 0, 0, 1), CVXCoord(10, 0, 10, 1), CVXCoord(0, 10, 20, 1));
    CVXCoord v(2, 3);
    EXPECT_TRUE(v.ZUitDriehoek(vlak));
    EXPECT_EQ(v.m_dZ, 8.0); // python3: t = 0.5, s = 0.3, 0.5·10 + 0.3·10
    const CSimpleBoog lijnVlak(CVXCoord(0, 0, 0, 1), CVXCoord(1, 1, 1, 1), CVXCoord(2, 2, 2, 1));
    EXPECT_FALSE(v.ZUitDriehoek(lijnVlak));
}

TEST(Interpolate, HalvingArcsAndDirectionsAlongLines) {
    const CVXCoordArr boog = Lijn({{1, 0, 1, 0}, {0, 1, 8, 10}, {-1, 0, 8, 20}});
    CVXCoord a, b;
    ASSERT_TRUE(boog.bHalveSteunPunten(0, a, b));
    EXPECT_NEAR(a.m_dX, std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(a.m_dY, std::sqrt(0.5), 1e-15);
    EXPECT_EQ(a.m_dZ, 5.0);
    EXPECT_NEAR(b.m_dX, -std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(b.m_dY, std::sqrt(0.5), 1e-15);
    EXPECT_EQ(b.m_dZ, 15.0);
    EXPECT_EQ(a.nGetSectie(), 1);
    {
        AssertCatcher reports;
        const CVXCoordArr recht = Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}});
        EXPECT_FALSE(recht.bHalveSteunPunten(0, a, b));
        EXPECT_TRUE(reports.Has("bCirkel() || bBoog(nI)"));
    }

    EXPECT_EQ(boog.dHoekInLijn(CVXCoord(0, 1), 0), pi); // counter-clockwise: heading −X
    const CVXCoordArr rechtsom = Lijn({{-1, 0, 1}, {0, 1, 8}, {1, 0, 8}});
    EXPECT_EQ(rechtsom.dHoekInLijn(CVXCoord(0, 1), 0), 0.0);
    const CVXCoordArr lijn = Lijn({{0, 0, 1}, {0, 5, 0}});
    EXPECT_EQ(lijn.dHoekInLijn(CVXCoord(0, 1), 0), pi / 2);
}

TEST(Construct, ArcsInSpace) {
    CVXCoord m;
    // Chord from B (0,0,0) to A (2,0,0) in the plane spanned with (0,0,1): a half circle.
    ASSERT_TRUE(
        m.BoogSteun3D(CVXCoord(2, 0, 0, 1), CVXCoord(0, 0, 0, 1), CVXCoord(0, 0, 1, 1), 1.0, true));
    EXPECT_EQ(m.m_dX, 1.0);
    EXPECT_EQ(m.m_dY, 1.0);
    EXPECT_EQ(m.m_dZ, 0.0);
    ASSERT_TRUE(m.BoogSteun3D(CVXCoord(2, 0, 0, 1), CVXCoord(0, 0, 0, 1), CVXCoord(0, 0, 1, 1), 0.1,
                              false)); // the radius grows to half the chord
    EXPECT_EQ(m.m_dY, -1.0);
    EXPECT_FALSE(
        m.BoogSteun3D(CVXCoord(2, 0), CVXCoord(0, 0, 0, 1), CVXCoord(0, 0, 1, 1), 1.0, true));
    EXPECT_FALSE(m.BoogSteun3D(CVXCoord(2, 0, 0, 1), CVXCoord(0, 0, 0, 1), CVXCoord(1, 0, 0, 1),
                               1.0, true)); // C along the chord

    CRuimtePunt n;
    ASSERT_TRUE(n.Normaal(CVXCoord(0, 0, 0, 1), CVXCoord(1, 0, 0, 1), CVXCoord(0, 1, 0, 1)));
    EXPECT_EQ(n.m_dZ, 1.0);
    EXPECT_FALSE(n.Normaal(CVXCoord(0, 0, 0, 1), CVXCoord(1, 0, 0, 1), CVXCoord(2, 0, 0, 1)));
    // ((2,0,0) × (0,1,0)) × (2,0,0) = (0,4,0), scaled to |AB| = 2.
    ASSERT_TRUE(n.HulpAs(CVXCoord(0, 0, 0, 1), CVXCoord(2, 0, 0, 1), CVXCoord(0, 1, 0, 1)));
    EXPECT_EQ(n.m_dX, 0.0);
    EXPECT_EQ(n.m_dY, 2.0);
    EXPECT_EQ(n.m_dZ, 0.0);
    ASSERT_TRUE(n.LokaalSteun(0.5, true));
    EXPECT_EQ(n.m_dX, 0.5);
    EXPECT_EQ(n.m_dY, 0.5);
    EXPECT_FALSE(n.LokaalSteun(0.25, true)); // no arc of that radius spans the unit chord
}
