// The projections compute their formulas in faster forms of the same mathematics (one logarithm
// and a series for the isometric latitude, one Newton step for its inverse, sin and cos of the
// sphere derived algebraically). Over a dense grid of each area of use, its edges included, the
// results must (1) lie within 1e-8 m and 1e-13 rad of the literal formulas
// (tests/geodesy/ProjectionLiteral.h) and (2) be at least as close as those to the same
// mathematics evaluated in long double, the worst point of the grid against the worst point.
// The extended evaluation takes the derived constants (sphere, cone) as the library holds them
// in double: what is compared is the per-point formula, which is what changed.
#include "ProjectionLiteral.h"

#include "geodesy/Angles.h"
#include "geodesy/ProjLambert.h"
#include "geodesy/ProjStereo.h"
#include "geodesy/ProjTM.h"
#include "geometry/VXCoord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

using namespace vx;
using LD = long double;

namespace {

constexpr double dMaxDiffMetre = 1e-8;
constexpr double dMaxDiffRad = 1e-13;
constexpr double dTwoPi = 6.283185307179586;
constexpr int nGrid = 201; // points per side: 40401 per projection and direction

// One way of projecting, in double or in extended precision, returning the longitude
// difference from the central meridian in the inverse.
struct SFormulas {
    std::function<void(double lat, double dLon, double &x, double &y)> fwd;
    std::function<void(LD lat, LD dLon, LD &x, LD &y)> fwdExt;
    std::function<void(double x, double y, double &lat, double &dLon)> inv;
    std::function<void(LD x, LD y, LD &lat, LD &dLon)> invExt;
};

struct SWorst {
    double lit = 0.0, fast = 0.0;
    void Add(double litErr, double fastErr) {
        lit = std::max(lit, litErr);
        fast = std::max(fast, fastErr);
    }
};

double Err(double v, LD ext) {
    return static_cast<double>(std::fabs(static_cast<LD>(v) - ext));
}

// Runs both checks over the grid [lat0, lat1] x [lon0, lon1] (degrees) of `p`.
void CheckExactness(const char *name, COutputSystem &p, const SFormulas &lit, double lat0,
                    double lat1, double lon0, double lon1) {
    SCOPED_TRACE(name);
    const double cm = p.dGetLonOriginCM();
    SWorst fx, fy, ilat, ilon;
    double maxFwd = 0.0, maxInv = 0.0;
    for (int i = 0; i < nGrid; ++i) {
        for (int j = 0; j < nGrid; ++j) {
            const double lat = DegToRad(lat0 + (lat1 - lat0) * i / (nGrid - 1));
            const double lon = DegToRad(lon0 + (lon1 - lon0) * j / (nGrid - 1));
            double x = 0.0, y = 0.0;
            lit.fwd(lat, lon - cm, x, y);
            LD xe = 0.0, ye = 0.0;
            lit.fwdExt(lat, static_cast<LD>(lon) - cm, xe, ye);
            CVXCoord xy;
            p.EllToProjection(xy, CEllCoord(lat, lon, 0.0));
            maxFwd = std::max({maxFwd, std::fabs(xy.dGetX() - x), std::fabs(xy.dGetY() - y)});
            fx.Add(Err(x, xe), Err(xy.dGetX(), xe));
            fy.Add(Err(y, ye), Err(xy.dGetY(), ye));

            // The inverse from the literal forward's plane point.
            double la = 0.0, dl = 0.0;
            lit.inv(x, y, la, dl);
            LD lae = 0.0, dle = 0.0;
            lit.invExt(x, y, lae, dle);
            CEllCoord ell;
            p.ProjectionToEll(ell, CVXCoord(x, y, 0.0, 1));
            // The longitude as the library hands it out, lon0 added.
            // West of Greenwich the library turns it into [0, 2 pi) by adding 2 pi.
            const double turn = dl + cm < 0.0 ? dTwoPi : 0.0;
            const double lonLit = dl + cm + turn;
            const LD lonExt = dle + cm + turn;
            maxInv = std::max(
                {maxInv, std::fabs(ell.dGetLat() - la), std::fabs(ell.dGetLon() - lonLit)});
            ilat.Add(Err(la, lae), Err(ell.dGetLat(), lae));
            ilon.Add(Err(lonLit, lonExt), Err(ell.dGetLon(), lonExt));
        }
    }
    EXPECT_LE(maxFwd, dMaxDiffMetre);
    EXPECT_LE(maxInv, dMaxDiffRad);
    EXPECT_LE(fx.fast, fx.lit) << "x: literal " << fx.lit << " m, fast " << fx.fast;
    EXPECT_LE(fy.fast, fy.lit) << "y: literal " << fy.lit << " m, fast " << fy.fast;
    EXPECT_LE(ilat.fast, ilat.lit) << "lat: literal " << ilat.lit << ", fast " << ilat.fast;
    EXPECT_LE(ilon.fast, ilon.lit) << "lon: literal " << ilon.lit << ", fast " << ilon.fast;
}

template <class T>
literal::SSphere<LD> Widen(const literal::SSphere<T> &s) {
    return {s.n, s.B0, s.R, s.K, s.sinB0, s.cosB0};
}

SFormulas StereoFormulas(const literal::SSphere<double> &s, double k, double FE, double FN,
                         double e) {
    const literal::SSphere<LD> se = Widen(s);
    return {[=](double lat, double dLon, double &x, double &y) {
                literal::StereoForward<double>(s, k, FE, FN, e, lat, dLon, x, y);
            },
            [=](LD lat, LD dLon, LD &x, LD &y) {
                literal::StereoForward<LD>(se, k, FE, FN, e, lat, dLon, x, y);
            },
            [=](double x, double y, double &lat, double &dLon) {
                literal::StereoInverse<double>(s, k, FE, FN, e, x, y, lat, dLon);
            },
            [=](LD x, LD y, LD &lat, LD &dLon) {
                literal::StereoInverse<LD>(se, k, FE, FN, e, x, y, lat, dLon);
            }};
}

SFormulas LambertFormulas(const CProjection_LB &p) {
    const literal::SCone<double> c =
        literal::ConeOf<double>(p.dGetSemiMajAx(), p.dGetEccentr(), p.dGetStandPar0(),
                                p.dGetProjScaleFac0(), p.dGetLatOrigin());
    const literal::SCone<LD> ce{c.e, c.s0, c.T, c.I0, c.g0};
    const double FE = p.dGetFalseEasting(), FN = p.dGetFalseNorthing();
    return {
        [=](double lat, double dLon, double &x, double &y) {
            literal::LBForward<double>(c, FE, FN, lat, dLon, x, y);
        },
        [=](LD lat, LD dLon, LD &x, LD &y) { literal::LBForward<LD>(ce, FE, FN, lat, dLon, x, y); },
        [=](double x, double y, double &lat, double &dLon) {
            literal::LBInverse<double>(c, FE, FN, x, y, lat, dLon);
        },
        [=](LD x, LD y, LD &lat, LD &dLon) {
            literal::LBInverse<LD>(ce, FE, FN, x, y, lat, dLon);
        }};
}

SFormulas TMFormulas(const COutputSystem &p) {
    const literal::STM<double> c = literal::TMOf<double>(p.dGetSemiMajAx(), p.dGetEccentr());
    const literal::STM<LD> ce = literal::TMOf<LD>(p.dGetSemiMajAx(), p.dGetEccentr());
    const double k = p.dGetProjScaleFac(), FE = p.dGetFalseEasting(), FN = p.dGetFalseNorthing();
    const double kArc0 = k * literal::TMArc<double>(c, p.dGetLatOrigin());
    const LD kArc0e = k * literal::TMArc<LD>(ce, p.dGetLatOrigin());
    return {[=](double lat, double dLon, double &x, double &y) {
                literal::TMForward<double>(c, k, kArc0, FE, FN, lat, dLon, x, y);
            },
            [=](LD lat, LD dLon, LD &x, LD &y) {
                literal::TMForward<LD>(ce, k, kArc0e, FE, FN, lat, dLon, x, y);
            },
            [=](double x, double y, double &lat, double &dLon) {
                literal::TMInverse<double>(c, k, kArc0, FE, FN, x, y, lat, dLon);
            },
            [=](LD x, LD y, LD &lat, LD &dLon) {
                literal::TMInverse<LD>(ce, k, kArc0e, FE, FN, x, y, lat, dLon);
            }};
}

} // namespace

TEST(ProjectionExactness, TransverseMercator) {
    // The zone's 6 degrees from the equator to 84 degrees north, and a southern zone on another
    // ellipsoid; a Gauss-Krueger strip of 3 degrees with a latitude of origin.
    CProjection_TM_NORTH utm32(DegToRad(9.0), CEllipsoid(CEllipsoid::INTERNATIONAL));
    CheckExactness("UTM 32", utm32, TMFormulas(utm32), 0.0, 84.0, 6.0, 12.0);
    CProjection_TM_SOUTH utm33s(DegToRad(15.0), CEllipsoid(CEllipsoid::GRS_1980));
    CheckExactness("UTM 33 south", utm33s, TMFormulas(utm33s), -80.0, 0.0, 12.0, 18.0);
    CProjection_TM_TM tm(DegToRad(-2.0), DegToRad(49.0), 0.9996012717, 400000.0, -100000.0,
                         CEllipsoid(CEllipsoid::AIRY));
    CheckExactness("TM", tm, TMFormulas(tm), 49.0, 61.0, -3.5, -0.5);
}

TEST(ProjectionExactness, RDAndStereographic) {
    CProjection_RD rd;
    const literal::SSphere<double> rdSphere = literal::FixedSphere<double>(
        1.00047585668, DegToRad(52.121097249), 6382644.5710000005, 0.003773953832);
    // The Netherlands with a margin of half a degree and more.
    CheckExactness("RD", rd,
                   StereoFormulas(rdSphere, rd.dGetProjScaleFac(), rd.dGetFalseEasting(),
                                  rd.dGetFalseNorthing(), rd.dGetEccentr()),
                   50.0, 54.0, 2.5, 8.0);

    const CEllipsoid kr(CEllipsoid::KRASSOVSKY_1940);
    CProjection_STEREOGRAPHIC st(PT_STEREOGRAPHIC, DegToRad(25.0), DegToRad(46.0), 0.99975,
                                 500000.0, 500000.0, kr);
    const literal::SSphere<double> s =
        literal::SphereAt<double>(kr.dGetSemiMajAx(), kr.dGetEccentr(), DegToRad(46.0));
    CheckExactness("Stereo 70", st,
                   StereoFormulas(s, 0.99975, 500000.0, 500000.0, kr.dGetEccentr()), 43.0, 49.0,
                   20.0, 30.0);
}

TEST(ProjectionExactness, Lambert) {
    CProjection_LAMBERT72 l72;
    CheckExactness("Lambert 72", l72, LambertFormulas(l72), 49.0, 52.0, 2.0, 7.0);
    CProjection_LAMBERT2008 l08;
    CheckExactness("Lambert 2008", l08, LambertFormulas(l08), 49.0, 52.0, 2.0, 7.0);
    // A cone far from Belgium, south of the equator, on another ellipsoid.
    CProjection_LB_LAMBERT2 south(DegToRad(135.0), DegToRad(-32.0), DegToRad(-18.0),
                                  DegToRad(-36.0), 1000000.0, 9000000.0,
                                  CEllipsoid(CEllipsoid::GRS_1980));
    CheckExactness("Lambert south", south, LambertFormulas(south), -45.0, -10.0, 112.0, 155.0);
}

// Where the fast forms do not serve, the literal formulas still run: the edge cases keep their
// results bit for bit.
TEST(ProjectionExactness, EdgeCasesKeepTheLiteralResults) {
    CProjection_RD rd;
    const literal::SSphere<double> s = literal::FixedSphere<double>(
        1.00047585668, DegToRad(52.121097249), 6382644.5710000005, 0.003773953832);
    const SFormulas f =
        StereoFormulas(s, rd.dGetProjScaleFac(), 155000.0, 463000.0, rd.dGetEccentr());
    // On the central meridian, where the origin's 0 / 0 of RD lives, the literal formula serves:
    // here next to the origin (closer cannot come from a geographic input).
    CVXCoord xy;
    double x = 0.0, y = 0.0;
    f.fwd(0.9102967268985049, 0.0, x, y);
    rd.EllToProjection(xy, CEllCoord(0.9102967268985049, rd.dGetLonOriginCM(), 0.0));
    EXPECT_EQ(xy.dGetX(), x);
    EXPECT_EQ(xy.dGetY(), y);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    rd.EllToProjection(xy, CEllCoord(nan, 0.1, 0.0));
    EXPECT_TRUE(std::isnan(xy.dGetX()) && std::isnan(xy.dGetY()));
    CEllCoord ell;
    rd.ProjectionToEll(ell, CVXCoord(nan, 463000.0, 0.0, 1));
    EXPECT_TRUE(std::isnan(ell.dGetLat()));

    // At the pole the literal formulas serve, and agree with the literal copy bit for bit.
    const double pole = DegToRad(90.0);
    f.fwd(pole, 0.05, x, y);
    rd.EllToProjection(xy, CEllCoord(pole, rd.dGetLonOriginCM() + 0.05, 0.0));
    EXPECT_EQ(xy.dGetX(), x);
    EXPECT_EQ(xy.dGetY(), y);

    // The false origin of Lambert 72 lies 3 micrometres from the apex of the cone: the pole.
    CProjection_LAMBERT72 l72;
    const SFormulas fl = LambertFormulas(l72);
    double lat = 0.0, dLon = 0.0;
    fl.inv(150000.01300000001, 5400088.4380000001, lat, dLon);
    l72.ProjectionToEll(ell, CVXCoord(150000.01300000001, 5400088.4380000001, 0.0, 1));
    EXPECT_EQ(ell.dGetLat(), lat);
    EXPECT_EQ(lat, DegToRad(90.0));
}
