// The coordinate point: guarded division, dirty flags, copies, arithmetic, comparison, distances,
// angles, constructions and text forms. Expected values are worked out by hand or, where a
// rounding matters, with an independent python3 evaluation of the same formula (noted).
#include "geometry/VXCoord.h"
#include "geometry/Deel.h"
#include "geometry/Tolerances.h"
#include "platform/Resources.h"

#include "GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace vx;
using vxtest::AssertCatcher;

namespace {
constexpr double pi = std::numbers::pi;
constexpr double dMax = 1.7976931348623157e+308;
} // namespace

TEST(Deel, GuardedDivisionGivesNaNForEveryDivisionByZeroAndHugeQuotients) {
    // 1e30/1e-10 and 1/1e-200 would fit a double but reach 2^126; NaN travels on.
    const std::pair<double, double> naarNaN[] = {{0.0, 0.0},    {1.0, 0.0},    {-1.0, -0.0},
                                                 {1e30, 1e-10}, {1.0, 1e-200}, {dNaN, 2.0},
                                                 {dNaN, 0.5},   {1.0, dNaN}};
    for (const auto &[a, b] : naarNaN)
        EXPECT_TRUE(std::isnan(dDeel(a, b))) << a << " / " << b;
    EXPECT_EQ(dDeel(1.0, 1e-30), 9.999999999999999e+29); // python3: 1/1e-30
    EXPECT_EQ(dDeel(-7.0, 0.5), -14.0);
    // The limit itself is excluded: |a| must stay below |b|·2^126.
    const double b = std::ldexp(1.0, -126);
    EXPECT_TRUE(std::isnan(dDeel(1.0, b)));
    EXPECT_EQ(dDeel(0.5, b), std::ldexp(1.0, 125));
    // The extended form stops at 2^252.
    const auto dL = [](long double x, long double y) {
        return static_cast<long double>(dDeel(LongDouble(x), LongDouble(y)));
    };
    EXPECT_EQ(dL(1.0L, std::ldexp(1.0L, -200)), std::ldexp(1.0L, 200));
    EXPECT_TRUE(std::isnan(dL(1.0L, std::ldexp(1.0L, -252))));
    EXPECT_EQ(dL(0.5L, std::ldexp(1.0L, -252)), std::ldexp(1.0L, 251));
}

TEST(Deel, DigitCountTreatsSmallNumbersLikeTheirReciprocals) {
    // 1/0.5 = 2 has one digit; 1/0.001 = 1000 has log 3, plus 2 for the sign; 1e-200's
    // reciprocal is refused by dDeel, and infinity and NaN get the fallback width 5.
    const std::pair<double, int> breedtes[] = {{10.0, 2},   {-10.0, 3},   {0.01, 3}, {0.0, 1},
                                               {dNaN, 5},   {999.0, 3},   {0.5, 1},  {-0.001, 5},
                                               {1e-200, 5}, {HUGE_VAL, 5}};
    for (const auto &[x, n] : breedtes)
        EXPECT_EQ(nCijfers(x), n) << x;
}

TEST(VXCoordFlags, ConstructorsAndWritersMarkChangesAsymmetrically) {
    // Two and three arguments mark everything; four (with a Z) mark nothing; copies keep flags.
    EXPECT_EQ(CVXCoord().nGetChFlags(), 0);
    EXPECT_EQ(CVXCoord(1, 2).nGetChFlags(), 7);
    const CVXCoord drie(1, 2, 8);
    EXPECT_EQ(drie.nGetChFlags(), 7);
    EXPECT_EQ(CVXCoord(drie).nGetSectie(), 8);
    EXPECT_EQ(CVXCoord(1, 2, 3, 1).nGetChFlags(), 0);

    CVXCoord p(0, 0, 0, 1);
    p.SetHerk(static_cast<char>(0x1B)); // only the low four bits are taken
    p.SetFixed(true);
    EXPECT_EQ(p.Parameters(), 0x010B);
    EXPECT_EQ(p.nGetChFlags(), 4);
    p.SetUnChanged();
    p.SetX(5.0); // a position change clears the origin, keeps the fixed flag
    EXPECT_EQ(p.Parameters(), 0x0100);
    EXPECT_EQ(p.nGetChFlags(), 5);
    p.SetUnChanged();
    p.SetSectie(8);
    EXPECT_TRUE(p.bOnlySecSnapChanged());
    p.SetDiepteD(2.5);
    EXPECT_EQ(p.nGetChFlags(), 6);

    CVXCoord q(0, 0, 0, 1);
    q.Parameters(0xFFFF); // the word setter marks nothing
    EXPECT_EQ(q.nGetChFlags(), 0);
    q.Set(1, 2, 3, 6);
    EXPECT_EQ(q.nGetChFlags(), 7);
    EXPECT_EQ(q.Parameters(), 0xFFF0);

    CVXCoord r(0, 0, 0, 1);
    r.PrecDX(3.0);
    r.PrecDY(4.0);
    EXPECT_EQ(r.nGetChFlags(), 4);
    EXPECT_EQ(r.PrecXY(), 5.0);
    EXPECT_TRUE(std::isnan(CVXCoord().PrecXY()));
}

TEST(VXCoordCopies, EachCopyFormKeepsOrDropsItsFields) {
    CVXCoord bron(1, 2, 3, 8);
    bron.SetHerk(5);
    bron.PrecDX(0.1);
    bron.SetCSecSnap(); // flags 6
    // Copy takes everything, flags included; the partial forms mark all (7).
    CVXCoord a(9, 9, 9, 2), b(a), c(a), d(a), e;
    a.Copy(bron);
    EXPECT_TRUE(a.bEqualXYZ(bron));
    EXPECT_EQ(a.nGetSectie(), 8);
    EXPECT_EQ(a.nGetChFlags(), 6);
    EXPECT_EQ(a.nGetHerk(), 5);
    b.CopyNoS(bron);
    EXPECT_EQ(b.m_dZ, 3.0);
    EXPECT_EQ(b.nGetSectie(), 2);
    EXPECT_EQ(b.nGetChFlags(), 7);
    EXPECT_EQ(b.PrecX(), 0.1);
    c.CopyNoZ(bron);
    EXPECT_EQ(c.m_dZ, 9.0);
    EXPECT_EQ(c.nGetSectie(), 8);
    d.CopyNoZNoS(bron);
    EXPECT_EQ(d.m_dZ, 9.0);
    EXPECT_EQ(d.nGetSectie(), 2);
    e.Copy(bron, 0);
    EXPECT_EQ(e.nGetSectie(), 0);
    EXPECT_EQ(e.nGetHerk(), 0);
    EXPECT_EQ(e.nGetChFlags(), 7);
}

TEST(VXCoordArithmetic, ResultsHaveCodeOneAndAZOnlyWhenAllInputsHaveOne) {
    const CVXCoord a2(1, 2), b2(10, 20);
    const CVXCoord a3(1, 2, 3, 8), b3(10, 20, 30, 6);
    const CVXCoord som2 = a2 + b2;
    EXPECT_EQ(som2.m_dY, 22.0);
    EXPECT_TRUE(std::isnan(som2.m_dZ));
    EXPECT_EQ(som2.nGetChFlags(), 7);
    const CVXCoord som3 = a3 + b3;
    EXPECT_EQ(som3.m_dZ, 33.0);
    EXPECT_EQ(som3.nGetChFlags(), 0);
    EXPECT_EQ(som3.nGetSectie(), 1);
    EXPECT_TRUE(std::isnan((a3 - b2).m_dZ));
    EXPECT_EQ((b3 - a3).m_dZ, 27.0);
    EXPECT_EQ((2.0 * a3).m_dZ, 6.0);
    EXPECT_EQ((a2 * 3.0).nGetChFlags(), 7);
    // (1,2,3) × (4,5,6) = (2·6 − 5·3, 3·4 − 1·6, 1·5 − 2·4) = (−3, 6, −3)
    const CVXCoord kruis = CVXCoord(1, 2, 3, 1) * CVXCoord(4, 5, 6, 1);
    EXPECT_TRUE(kruis.bEqualXYZ(CVXCoord(-3, 6, -3, 1)));
    EXPECT_EQ(a3 | b2, 50.0); // X and Y only
    // A planar factor is reported and gives the default point.
    AssertCatcher reports;
    const CVXCoord plat = CVXCoord(1, 2) * CVXCoord(4, 5, 6, 1);
    EXPECT_TRUE(reports.Has("!_isnan(A.m_dZ)&&!_isnan(B.m_dZ)"));
    EXPECT_TRUE(plat.bEqualXYZ(CVXCoord()));
}

TEST(VXCoordCompare, EqualityRulesAndTheStrictPointTolerance) {
    EXPECT_TRUE(CVXCoord(1, 2).bEqual(CVXCoord(1, 2, 7, 1)));
    EXPECT_FALSE(CVXCoord(1, 2).bEqual(CVXCoord(1, 2.0000001)));
    EXPECT_FALSE(CVXCoord(1, 2).bEqualXYZ(CVXCoord(1, 2, 0, 1)));
    EXPECT_TRUE(CVXCoord(dNaN, 2).bEqualXYZ(CVXCoord(dNaN, 2)));

    // A point with a height and one without are never near; the Ex form lets the planar one
    // measure in the plane.
    const CVXCoord plat(0, 0), hoog(0, 0, 5, 1);
    EXPECT_FALSE(plat.bGelijk(hoog));
    EXPECT_EQ(plat.dDist2D3D(hoog), dMax);
    EXPECT_EQ(hoog.dDist2D3DEx(plat), dMax);
    EXPECT_EQ(plat.dDist2D3DEx(hoog), 0.0);

    EXPECT_FALSE(CVXCoord(0, 0).bGelijk(CVXCoord(0.0005, 0)));
    EXPECT_TRUE(CVXCoord(0, 0).bGelijk(CVXCoord(0.00049, 0)));
    EXPECT_TRUE(CVXCoord(0, 0, 1, 1).bGelijk(CVXCoord(0, 0, 1.0004, 1)));

    // In a line, a start (1) or spline (6) code matches anything; 0 and 8 do not match.
    EXPECT_TRUE(CVXCoord(0, 0, 1).bGelijkInLijn(CVXCoord(0, 0, 8)));
    EXPECT_TRUE(CVXCoord(0, 0, 6).bGelijkInLijn(CVXCoord(0, 0, 1)));
    EXPECT_FALSE(CVXCoord(0, 0, 0).bGelijkInLijn(CVXCoord(0, 0, 8)));
    EXPECT_FALSE(CVXCoord(0, 0, 8).bGelijkInLijn(CVXCoord(1, 0, 8)));

    // Precision ranking: known beats unknown, finer beats coarser, equal planar size ties.
    CVXCoord onbekend, fijn, grof, ook;
    fijn.PrecDX(0.01);
    fijn.PrecDY(0.01);
    grof.PrecDX(0.1);
    grof.PrecDY(0.0);
    ook.PrecDX(0.0);
    ook.PrecDY(0.1);
    EXPECT_EQ(onbekend.nCompPIB(CVXCoord()), 0);
    EXPECT_EQ(fijn.nCompPIB(onbekend), 1);
    EXPECT_EQ(grof.nCompPIB(fijn), -1);
    EXPECT_EQ(grof.nCompPIB(ook), 0);
}

TEST(VXCoordDistance, PlanarSpatialAndMixedDistances) {
    EXPECT_EQ(CVXCoord(1, 1, 100, 1).dDist(CVXCoord(4, 5)), 5.0);
    EXPECT_EQ(CVXCoord(1, 1).dDist2D3D(CVXCoord(4, 5)), 5.0);
    EXPECT_EQ(CVXCoord(0, 0, 0, 1).dDist2D3DEx(CVXCoord(2, 3, 6, 1)), 7.0);
    double dx = 0, dy = 0, dz = 0;
    EXPECT_EQ(CVXCoord(1, 1, 1, 1).dDist2D3D(CVXCoord(3, 4, 7, 1), dx, dy, dz), 7.0);
    EXPECT_TRUE(CVXCoord(dx, dy, dz, 1).bEqualXYZ(CVXCoord(2, 3, 6, 1)));
    EXPECT_EQ(CVXCoord(2, 3, 6, 1).dLengte(), 7.0);
    EXPECT_TRUE(std::isnan(CVXCoord(3, 4).dLengte()));
}

TEST(VXCoordAngle, DirectionsAndTheAngleAtAVertex) {
    const CVXCoord o(0, 0);
    EXPECT_EQ(o.dHoek(o), 0.0);
    EXPECT_EQ(CVXCoord(-0.0, -0.0).dHoek(o), 0.0);
    EXPECT_EQ(o.dHoek(CVXCoord(-1, 0)), pi);
    EXPECT_EQ(o.dHoek(CVXCoord(0, -1)), -pi / 2);
    EXPECT_EQ(o.dPosHoek(CVXCoord(0, -1)), 4.71238898038469); // python3 -pi/2 + 2*pi

    // Two coinciding points: the cosine rule has no answer, the angle is 0.
    EXPECT_EQ(CVXCoord::dHoek(o, o, CVXCoord(1, 0)), 0.0);
    // A right angle at B. Down then right is a counter-clockwise turn (sense −1), so the angle
    // is negative; right to left then up is clockwise and positive.
    // python3: a=1, c=1, b=hypot(1,1); acos((a*a+c*c-b*b)/(2*a*c)) == 1.5707963267948968
    EXPECT_EQ(CVXCoord::dHoek(CVXCoord(0, 1), o, CVXCoord(1, 0)), -1.5707963267948968);
    EXPECT_EQ(CVXCoord::dHoek(CVXCoord(1, 0), o, CVXCoord(0, 1)), 1.5707963267948968);
    EXPECT_EQ(CVXCoord::dPosHoek(CVXCoord(0, 1), o, CVXCoord(1, 0)), -1.5707963267948968 + 2 * pi);
    // Collinear, straight on: the sense counts as 1 and the angle is π.
    EXPECT_EQ(CVXCoord::dHoek(CVXCoord(-1, 0), o, CVXCoord(1, 0)), pi);
}

TEST(VXCoordAngle, TurningSenseWithItsCollinearBand) {
    const CVXCoord A(0, 0), B(0, 1), C(1, 0);
    EXPECT_EQ(CVXCoord::nBoogRichting(A, B, C), 1); // up, then right: clockwise
    EXPECT_EQ(CVXCoord::nBoogRichting(C, B, A), -1);
    EXPECT_EQ(CVXCoord::nBoogRichting(A, CVXCoord(1, 1), CVXCoord(2, 2)), 0);
    EXPECT_EQ(CVXCoord::nBoogRichting(CVXCoord(dNaN, 0), CVXCoord(dNaN, 1), CVXCoord(1, dNaN)), 0);
    // v = B.Y·C.X for A at the origin and B on the Y axis: the band is ±6.250000000000001e-14.
    const std::pair<double, int> band[] = {{7e-14, 1}, {6e-14, 0}, {-6e-14, 0}, {-7e-14, -1}};
    for (const auto &[x, n] : band)
        EXPECT_EQ(CVXCoord::nBoogRichting(A, B, CVXCoord(x, 0)), n) << x;
}

TEST(VXCoordAngle, SpreadIsTheSquaredSineWithItsSector) {
    const CVXCoord C(0, 0);
    CVXCoord::SectorType type = CVXCoord::Stomp;
    EXPECT_EQ(CVXCoord::Spread(CVXCoord(1, 0), CVXCoord(0, 1), C, type), 1.0);
    EXPECT_EQ(type, CVXCoord::Recht);
    EXPECT_EQ(CVXCoord::Spread(CVXCoord(1, 0), CVXCoord(1, 1), C, type), 0.5);
    EXPECT_EQ(type, CVXCoord::Scherp);
    EXPECT_EQ(CVXCoord::Spread(CVXCoord(1, 0), CVXCoord(-1, 1), C, type), 0.5);
    EXPECT_EQ(type, CVXCoord::Stomp);
    EXPECT_TRUE(std::isnan(CVXCoord::Spread(C, CVXCoord(1, 1), C, type)));
}

TEST(VXCoordConstruct, MiddleShiftTransformAndHorner) {
    CVXCoord m(0, 0, 9, 1);
    m.Midden(CVXCoord(1, 2), CVXCoord(3, 8));
    EXPECT_TRUE(m.bEqualXYZ(CVXCoord(2, 5, 9, 1))); // Z is left alone
    EXPECT_EQ(m.nGetChFlags(), 5);

    const CVXCoord basis(5, 5, 2, 8);
    CVXCoord t(0, 0, 6);
    t.Schuif(basis, 1.0, 0.0, false);
    EXPECT_TRUE(t.bEqualXYZ(CVXCoord(6, 5, 2, 1)));
    EXPECT_EQ(t.nGetSectie(), 6);
    t.Schuif(basis, 1.0, 0.0, true);
    EXPECT_EQ(t.nGetSectie(), 8);

    // (3,4) − (1,1) = (2,3), doubled and moved to (10,20): (14, 26).
    CVXCoord tr(3, 4, 7, 1);
    tr.Transform(CVXCoord(1, 1), CVXCoord(10, 20), 0.0, 2.0);
    EXPECT_TRUE(tr.bEqualXYZ(CVXCoord(14, 26, 7, 1)));
    CVXCoord rot(2, 1);
    rot.Transform(CVXCoord(1, 1), CVXCoord(1, 1), pi / 2, 1.0);
    // cos(π/2) is 6.1e-17, not 0: a quarter turn lands within 1e-15 of (1, 2).
    EXPECT_NEAR(rot.m_dX, 1.0, 1e-15);
    EXPECT_NEAR(rot.m_dY, 2.0, 1e-15);

    // Segment 1: X = 1 + 2t + 3t² + 4t³, Y = −1 + 0t + 0t² + 1t³, at t = 0.5:
    // X = 1 + 1 + 0.75 + 0.5 = 3.25, Y = −1 + 0.125 = −0.875.
    double tabel[2][4][2] = {{{0, 0}, {0, 0}, {0, 0}, {0, 0}}, {{1, -1}, {2, 0}, {3, 0}, {4, 1}}};
    CVXCoord h;
    h.SetHerk(3);
    h.Horner(1, tabel, 0.5);
    EXPECT_EQ(h.m_dX, 3.25);
    EXPECT_EQ(h.m_dY, -0.875);
    EXPECT_EQ(h.nGetHerk(), 0);
}

TEST(VXCoordConstruct, UnitVectorPerpendicularAndMeanHeight) {
    const CVXCoord van(1, 1);
    CVXCoord uit(0, 0, 0, 1);
    EXPECT_TRUE(van.BepaalEenheidsVector2D(uit, CVXCoord(4, 5)));
    // python3: 3*math.sqrt(1/25), 4*math.sqrt(1/25)
    EXPECT_EQ(uit.m_dX, 0.6000000000000001);
    EXPECT_EQ(uit.m_dY, 0.8);
    CVXCoord nul(7, 7, 0, 1);
    EXPECT_FALSE(van.BepaalEenheidsVector2D(nul, van));
    EXPECT_EQ(nul.m_dX, 0.0);
    EXPECT_EQ(nul.nGetChFlags(), 0);

    // (1, 2, 3): t = (1 + 2)/−3 = −1 in Z, and (1, 1, −1)·(1, 2, 3) = 0.
    CVXCoord lood(9, 9, 9, 1);
    EXPECT_TRUE(CVXCoord(1, 2, 3, 1).Lood3D(lood));
    EXPECT_TRUE(lood.bEqualXYZ(CVXCoord(1, 1, -1, 1)));
    EXPECT_EQ(lood.nGetChFlags(), 0); // no flag of its own
    // Z = 0: the second form, t = (X + Z)/−Y = (2 + 0)/−4 = −0.5 into Y.
    EXPECT_TRUE(CVXCoord(2, 4, 0, 1).Lood3D(lood));
    EXPECT_TRUE(lood.bEqualXYZ(CVXCoord(1, -0.5, 1, 1)));
    // Y = Z = 0: the third form, t = (Y + Z)/−X = 0, lands in Y as well (not perpendicular).
    EXPECT_TRUE(CVXCoord(5, 0, 0, 1).Lood3D(lood));
    EXPECT_TRUE(lood.bEqualXYZ(CVXCoord(1, 0, 1, 1)));
    EXPECT_FALSE(CVXCoord(0, 0, 0, 1).Lood3D(lood));
    EXPECT_TRUE(lood.bEqualXYZ(CVXCoord(0, 0, 0, 1)));
    CVXCoord ongemoeid(4, 4, 4, 1);
    EXPECT_FALSE(CVXCoord(1, 2).Lood3D(ongemoeid));
    EXPECT_EQ(ongemoeid.m_dX, 4.0);

    CVXCoord z;
    z.InterpoleerZ(CVXCoord(0, 0, 2, 1), CVXCoord(0, 0, 5, 1));
    EXPECT_EQ(z.m_dZ, 3.5);
    EXPECT_EQ(z.nGetChFlags(), 5);
    z.InterpoleerZ(CVXCoord(0, 0, 2, 1), CVXCoord(0, 0));
    EXPECT_TRUE(std::isnan(z.m_dZ));
}

TEST(VXCoordText, FixedWidthsAndTheLocalisedUnknown) {
    const CVXCoord p(1234.5678, -2.25, 10.0, 1);
    EXPECT_TRUE(p.szGetX() == u"    1234.568");
    EXPECT_TRUE(p.szGetY() == u"      -2.250");
    EXPECT_TRUE(p.szGetZ() == u"   10.000");
    CVXCoord prec;
    prec.PrecDX(0.25);
    EXPECT_TRUE(prec.szGetPrecX() == u"  0.250");

    const int nTaal = GetResourceLanguage();
    SetResourceLanguage(LANG_ENGLISH_US);
    EXPECT_TRUE(prec.szGetPrecY() == u"Unknown");
    SetResourceLanguage(LANG_DUTCH);
    EXPECT_TRUE(CVXCoord(1, 2).szGetZ() == u"Onbekend");
    SetResourceLanguage(LANG_CHINESE);
    EXPECT_TRUE(CVXCoord(1, 2).szGetZ() == u"未知的");
    SetResourceLanguage(nTaal);
}

TEST(C2DVector, ResultsAreCleanPlanarVectors) {
    const C2DVector a(1, 2), b(4, 6);
    const C2DVector d = b - a;
    EXPECT_EQ(d.dKwadraat(), 25.0); // (3, 4)
    EXPECT_EQ(d.nGetChFlags(), 0);
    EXPECT_TRUE(std::isnan(d.m_dZ));
    EXPECT_EQ((a * 2.0).nGetChFlags(), 0);
    EXPECT_EQ(a | b, 16.0);
    C2DVector c(0, 0);
    c.SetSectie(8);
    c.SetZ(3);
    c = a;
    EXPECT_EQ(c.m_dX, 1.0);
    EXPECT_EQ(c.m_dZ, 3.0); // only X and Y are assigned
    EXPECT_EQ(c.nGetSectie(), 8);
}
