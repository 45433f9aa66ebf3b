// The projections keep the constants they derive from their parameters between calls. These
// tests hold the cached path to the plain computation it replaced, bit for bit, on many points:
// below is that computation as it was, taking every constant afresh at each call. Projections
// with different parameters are used in turn, so each call also proves that a change of
// parameters is never answered from another parameter set's constants.
#include "geodesy/Angles.h"
#include "geodesy/ProjMath.h"
#include "geodesy/ProjStereo.h"
#include "geodesy/ProjTM.h"
#include "geometry/VXCoord.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

using namespace vx;

namespace {

constexpr double dP = 3.1415926535897931;

double Rad(double deg) {
    return deg * dP / 180.0;
}

// ---- The previous computation ------------------------------------------------------------

double WrapLon(double lon, double lon0) {
    const double d = lon - lon0;
    double q = d * 0.5 / dP;
    q += q > 0.0 ? 0.5 : -0.5;
    q = q > 0.0 ? std::floor(q) : std::ceil(q);
    return d - q * (2.0 * dP);
}

double LonOut(double lon, bool bAtFullTurn) {
    if (lon < 0.0)
        lon += 2.0 * dP;
    else if (bAtFullTurn ? lon >= 2.0 * dP : lon > 2.0 * dP)
        lon -= 2.0 * dP;
    return lon;
}

struct SSphere {
    double n, B0, R, K;
};

SSphere SphereAt(const CEllipsoid &ell, double lat0) {
    const double e = ell.dGetEccentr();
    const double E = e * e / (1.0 - e * e);
    const double c0 = std::cos(lat0);
    SSphere s{};
    s.n = std::sqrt(1.0 + E * c0 * c0 * c0 * c0);
    s.B0 = std::asin(std::sin(lat0) / s.n);
    s.R = std::sqrt(ell.dMRadCurv(lat0) * ell.dNRadCurv(lat0));
    s.K = std::log(std::tan(dP / 4.0 + s.B0 / 2.0)) - dIso(lat0, e) * s.n;
    return s;
}

void StereoForward(const SSphere &s, const COutputSystem &o, double lat, double lon,
                   bool bOriginTest, double &x, double &y) {
    const double k = o.dGetProjScaleFac(), FE = o.dGetFalseEasting(), FN = o.dGetFalseNorthing();
    const double B = 2.0 * std::atan(std::exp(dIso(lat, o.dGetEccentr()) * s.n + s.K)) - dP / 2.0;
    const double A = WrapLon(lon, o.dGetLonOriginCM()) * s.n;
    const double sb = std::sin((B - s.B0) / 2.0);
    const double sa = std::sin(A / 2.0);
    const double s2 = sb * sb + sa * sa * std::cos(B) * std::cos(s.B0);
    const double sq = std::sqrt(s2);
    const double c = std::sqrt(1.0 - sq * sq);
    const double d = 2.0 * sq * c;
    if (bOriginTest && d == 0.0) {
        x = FE;
        y = FN;
        return;
    }
    const double r = 2.0 * k * s.R * sq / c;
    x = (std::sin(A) * std::cos(B) / d) * r + FE;
    y = ((std::sin(B) - std::sin(s.B0) * (1.0 - 2.0 * sq * sq)) / (std::cos(s.B0) * d)) * r + FN;
}

void StereoInverse(const SSphere &s, const COutputSystem &o, double x, double y, double &lat,
                   double &lon) {
    const double e = o.dGetEccentr();
    const double k = o.dGetProjScaleFac();
    const double dx = x - o.dGetFalseEasting();
    const double dy = y - o.dGetFalseNorthing();
    double r = std::sqrt(dx * dx + dy * dy);
    if (r < dFloatMinGuard) r = dFloatMinGuard;
    const double psi = 2.0 * std::atan(r / (2.0 * k * s.R));
    const double sinB = std::cos(s.B0) * (dy / r) * std::sin(psi) + std::sin(s.B0) * std::cos(psi);
    const double B = std::asin(sinB);
    const double dLon = std::asin(std::sin(psi) * (dx / r) / std::cos(B)) / s.n;
    const double w = (std::log(std::tan(B / 2.0 + dP / 4.0)) - s.K) / s.n;
    double p = std::asin(std::tanh(w));
    for (int i = 0; i < nLatIterRounds; ++i) {
        const double es = e * std::sin(p);
        const double next = std::asin(std::tanh(w + (e / 2.0) * std::log((1.0 + es) / (1.0 - es))));
        const double change = std::fabs(next - p);
        p = next;
        if (change <= dLatIterTol) break;
    }
    lat = p;
    lon = LonOut(dLon + o.dGetLonOriginCM(), false);
}

struct STMConst {
    double a, e, E, G, A1, A2, A3, A4, B1, B2, B3, B4;
};

STMConst TMConst(double a, double e) {
    STMConst k{};
    k.a = a;
    k.e = e;
    const double E = e * e / (1.0 - e * e);
    const double b = a * std::sqrt(1.0 - e * e);
    const double c = a / std::sqrt(1.0 - e * e);
    const double n = (a - b) / (a + b);
    const double E4 = E * E * E * E;
    k.E = E;
    k.G = (n * n * 0.25 + 1.0) * a / (1.0 + n);
    k.A1 = ((((11025.0 - E * 10828.125) * 0.015625 * E - 175.0) * 0.25 * E + 45.0) * 0.0625 * E -
            3.0) *
           0.25 * E * c;
    k.A2 = (((3675.0 - E * 4331.25) * 0.00390625 * E - 14.583333333333334) * E + 15.0) * 0.03125 *
           E * E * c;
    k.A3 = (E * 735.0 - 746.5) * c * 0.00048828125 * E * E * E;
    k.A4 = c * (315.0 - E * 866.25) * 0.0009765625 * E4;
    k.B1 =
        ((((E * 16384.0 - 11025.0) * 0.015625 * E + 175.0) * 0.25 * E - 45.0) * 0.0625 * E + 3.0) *
        0.25 * E;
    k.B2 = (((19413.0 - 170539.34166666667 * E) * 0.125 * E - 1477.0) * 0.03125 * E + 21.0) *
           0.03125 * E * E;
    k.B3 = (((E * 169183.60714285713 - 17121.0) * 0.03125 * E + 151.0) / 192.0) * E * E * E;
    k.B4 = (1097.0 - 12207.914285714285 * E) * 0.0009765625 * E4;
    return k;
}

double Arc(const STMConst &k, double p) {
    const double C = std::cos(p) * std::cos(p);
    return k.G * p +
           std::sin(p) * std::cos(p) * (k.A1 + k.A2 * C + k.A3 * C * C + k.A4 * C * C * C);
}

void TMForward(const COutputSystem &o, double phi, double lon, double &x, double &y) {
    const STMConst c = TMConst(o.dGetSemiMajAx(), o.dGetEccentr());
    const double k = o.dGetProjScaleFac();
    const double sphi = std::sin(phi);
    const double N = k * c.a / std::sqrt(1.0 - c.e * c.e * sphi * sphi);
    const double t = std::tan(phi);
    const double t2 = t * t;
    const double t4 = t2 * t2;
    const double h = c.E * std::cos(phi) * std::cos(phi);
    const double L = WrapLon(lon, o.dGetLonOriginCM()) * std::cos(phi);
    const double L2 = L * L;
    x = N * L *
            (1.0 +
             L2 *
                 ((1.0 - t2 + h) * 0.16666666666666666 +
                  L2 * ((5.0 - 18.0 * t2 + t4 + (14.0 - 58.0 * t2) * h) * 0.0083333333333333332 +
                        (61.0 - 479.0 * t2 + 179.0 * t4 - t4 * t2) * 0.0001984126984126984 * L2))) +
        o.dGetFalseEasting();
    y = k * Arc(c, phi) - k * Arc(c, o.dGetLatOrigin()) + o.dGetFalseNorthing() +
        N * 0.5 * t * L2 *
            (1.0 + L2 * (((4.0 * h + 9.0) * h + 5.0 - t2) * 0.083333333333333329 +
                         ((270.0 - 330.0 * t2) * h + 61.0 - 58.0 * t2 + t4) *
                             0.0027777777777777779 * L2));
}

void TMInverse(const COutputSystem &o, double x, double y, double &lat, double &lon) {
    const STMConst c = TMConst(o.dGetSemiMajAx(), o.dGetEccentr());
    const double k = o.dGetProjScaleFac();
    const double m = ((y - o.dGetFalseNorthing()) + k * Arc(c, o.dGetLatOrigin())) / (k * c.G);
    const double C = std::cos(m) * std::cos(m);
    const double f =
        m + std::sin(m) * std::cos(m) * (c.B1 + c.B2 * C + c.B3 * C * C + c.B4 * C * C * C);
    const double sf = std::sin(f);
    const double t = std::tan(f);
    const double t2 = t * t;
    const double t4 = t2 * t2;
    const double h = c.E * std::cos(f) * std::cos(f);
    const double Q = (x - o.dGetFalseEasting()) / (k * c.a / std::sqrt(1.0 - c.e * c.e * sf * sf));
    const double Q2 = Q * Q;
    lat = f -
          0.5 * t * (h + 1.0) * Q2 *
              (1.0 +
               Q2 * (-(5.0 + 3.0 * t2 + (1.0 - 9.0 * t2) * h - 4.0 * h * h) * 0.083333333333333329 +
                     (61.0 + 90.0 * t2 + 45.0 * t4 + (46.0 - 252.0 * t2 - 90.0 * t4) * h) *
                         0.0027777777777777779 * Q2));
    lon = o.dGetLonOriginCM() +
          Q *
              (1.0 + Q2 * (-(1.0 + 2.0 * t2 + h) * 0.16666666666666666 +
                           Q2 * ((5.0 + 28.0 * t2 + 24.0 * t4 + (6.0 + 8.0 * t2) * h) *
                                     0.0083333333333333332 -
                                 (61.0 + 662.0 * t2 + 1320.0 * t4 + 720.0 * t4 * t2) *
                                     0.0001984126984126984 * Q2))) /
              std::cos(f);
    lon = LonOut(lon, true);
}

// ---- The comparison --------------------------------------------------------------------------

using FFwd = void (*)(const COutputSystem &, double, double, double &, double &);
using FInv = void (*)(const COutputSystem &, double, double, double &, double &);

struct SUnderTest {
    COutputSystem *p;
    FFwd fwd;
    FInv inv;
    double lat0, lat1, lon0, lon1; // degrees: the grid, reaching beyond the area of use
};

// Same bits, so that NaN and the sign of zero count as well.
bool Same(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// The projections in turn on each point of an n x n grid; the number of points that differ.
int CountDifferences(const std::vector<SUnderTest> &all, int n) {
    int nDiff = 0;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            for (const SUnderTest &t : all) {
                const double lat = Rad(t.lat0 + (t.lat1 - t.lat0) * i / (n - 1));
                const double lon = Rad(t.lon0 + (t.lon1 - t.lon0) * j / (n - 1));
                double x = 0.0, y = 0.0, la = 0.0, lo = 0.0;
                t.fwd(*t.p, lat, lon, x, y);
                CVXCoord xy;
                t.p->EllToProjection(xy, CEllCoord(lat, lon, 0.0));
                t.inv(*t.p, x, y, la, lo);
                CEllCoord ell;
                t.p->ProjectionToEll(ell, CVXCoord(x, y, 0.0, 1));
                if (!Same(xy.dGetX(), x) || !Same(xy.dGetY(), y) || !Same(ell.dGetLat(), la) ||
                    !Same(ell.dGetLon(), lo))
                    ++nDiff;
            }
        }
    }
    return nDiff;
}

void RDFwd(const COutputSystem &o, double lat, double lon, double &x, double &y) {
    const SSphere s{1.0004758566800001, DegToRad(52.121097249000002), 6382644.5710000005,
                    0.0037739538320000002};
    StereoForward(s, o, lat, lon, false, x, y);
}
void RDInv(const COutputSystem &o, double x, double y, double &lat, double &lon) {
    const SSphere s{1.0004758566800001, DegToRad(52.121097249000002), 6382644.5710000005,
                    0.0037739538320000002};
    StereoInverse(s, o, x, y, lat, lon);
}
void StFwd(const COutputSystem &o, double lat, double lon, double &x, double &y) {
    const CEllipsoid *pEll = o.pGetNewEllipsoid();
    StereoForward(SphereAt(*pEll, o.dGetLatOrigin()), o, lat, lon, true, x, y);
    delete pEll;
}
void StInv(const COutputSystem &o, double x, double y, double &lat, double &lon) {
    const CEllipsoid *pEll = o.pGetNewEllipsoid();
    StereoInverse(SphereAt(*pEll, o.dGetLatOrigin()), o, x, y, lat, lon);
    delete pEll;
}

} // namespace

TEST(ProjectionCache, SameBitsAsTheComputationPerCall) {
    CProjection_RD rd;
    CProjection_STEREOGRAPHIC st1(PT_STEREOGRAPHIC, Rad(25.0), Rad(46.0), 0.99975, 500000.0,
                                  500000.0, CEllipsoid(CEllipsoid::KRASSOVSKY_1940));
    CProjection_STEREOGRAPHIC st2(PT_LOCAL, Rad(5.0), Rad(-30.0), 1.0, 0.0, 0.0,
                                  CEllipsoid(CEllipsoid::BESSEL_1841));
    CProjection_TM_NORTH utm31(Rad(3.0), CEllipsoid(CEllipsoid::INTERNATIONAL));
    CProjection_TM_SOUTH utm33s(Rad(15.0), CEllipsoid(CEllipsoid::GRS_1980));
    CProjection_TM_TM tm(Rad(-2.0), Rad(49.0), 0.9996012717, 400000.0, -100000.0,
                         CEllipsoid(CEllipsoid::AIRY));
    // Only the latitude of origin differs from tm: the cache must still tell them apart.
    CProjection_TM_TM tm2(Rad(-2.0), Rad(50.0), 0.9996012717, 400000.0, -100000.0,
                          CEllipsoid(CEllipsoid::AIRY));
    // And here only the scale factor.
    CProjection_TM_TM tm3(Rad(-2.0), Rad(49.0), 0.9996, 400000.0, -100000.0,
                          CEllipsoid(CEllipsoid::AIRY));
    const std::vector<SUnderTest> all{
        {&rd, RDFwd, RDInv, 50.0, 54.0, 2.5, 8.0},
        {&st1, StFwd, StInv, 40.0, 50.0, 15.0, 35.0},
        {&st2, StFwd, StInv, -35.0, -25.0, 0.0, 10.0},
        {&utm31, TMForward, TMInverse, -5.0, 84.0, -1.0, 7.0},
        {&utm33s, TMForward, TMInverse, -80.0, 0.0, 11.0, 19.0},
        {&tm, TMForward, TMInverse, 49.0, 61.0, -6.0, 2.0},
        {&tm2, TMForward, TMInverse, 49.0, 61.0, -6.0, 2.0},
        {&tm3, TMForward, TMInverse, 49.0, 61.0, -6.0, 2.0},
    };
    EXPECT_EQ(CountDifferences(all, 120), 0);

    // The origins themselves, where the stereographic projection takes its origin test.
    double x = 0.0, y = 0.0;
    CVXCoord xy;
    const double lat0 = DegToRad(52.156160556000003);
    const double lon0 = DegToRad(5.3876388889999998);
    rd.EllToProjection(xy, CEllCoord(lat0, lon0, 0.0));
    RDFwd(rd, lat0, lon0, x, y);
    EXPECT_TRUE(Same(xy.dGetX(), x) && Same(xy.dGetY(), y));
    st1.EllToProjection(xy, CEllCoord(Rad(46.0), Rad(25.0), 0.0));
    EXPECT_EQ(xy.dGetX(), 500000.0);
    EXPECT_EQ(xy.dGetY(), 500000.0);
}
