#include "geodesy/ProjTM.h"

#include "geodesy/Angles.h"
#include "geodesy/ProjMath.h"
#include "geometry/VXCoord.h"

#include <cmath>

namespace vx {

namespace {

constexpr double u = dUnusedParameter;

// The constants of one ellipsoid: E the second eccentricity squared, G the mean radius of the
// meridian arc, A1..A4 the arc series and B1..B4 the reverted (footpoint) series.
struct STMConst {
    double a, e, E, G;
    double A1, A2, A3, A4;
    double B1, B2, B3, B4;
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
    k.A2 =
        (((3675.0 - E * 4331.25) * 0.00390625 * E - (175.0 / 12)) * E + 15.0) * 0.03125 * E * E * c;
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

// The meridian arc from the equator to latitude p.
double Arc(const STMConst &k, double p) {
    const double C = std::cos(p) * std::cos(p);
    return k.G * p +
           std::sin(p) * std::cos(p) * (k.A1 + k.A2 * C + k.A3 * C * C + k.A4 * C * C * C);
}

// What depends on the parameters alone: the ellipsoid's constants and the scaled meridian arc to
// the latitude of origin, computed once per parameter set instead of at every point.
struct STMFixed {
    STMConst c;
    double kArc0;
};

const STMFixed &Fixed(double a, double e, double lat0, double k) {
    return CachedPerThread(
        [&] {
            STMFixed fx{TMConst(a, e), 0.0};
            fx.kArc0 = k * Arc(fx.c, lat0);
            return fx;
        },
        a, e, lat0, k);
}

// The footpoint latitude of the rectifying latitude m.
double Footpoint(const STMConst &k, double m) {
    const double C = std::cos(m) * std::cos(m);
    return m + std::sin(m) * std::cos(m) * (k.B1 + k.B2 * C + k.B3 * C * C + k.B4 * C * C * C);
}

} // namespace

void CProjection_TM::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    const STMFixed &fx = Fixed(dGetSemiMajAx(), dGetEccentr(), m_dLatOrigin, m_dProjScaleFac);
    const STMConst &c = fx.c;
    const double k = m_dProjScaleFac;
    const double phi = ell.dGetLat();
    const double sphi = std::sin(phi);
    const double N = k * c.a / std::sqrt(1.0 - c.e * c.e * sphi * sphi);
    const double t = std::tan(phi);
    const double t2 = t * t;
    const double t4 = t2 * t2;
    const double h = c.E * std::cos(phi) * std::cos(phi);
    const double L = dWrapLon(ell.dGetLon()) * std::cos(phi);
    const double L2 = L * L;
    const double x =
        N * L *
            (1.0 + L2 * ((1.0 - t2 + h) * (1.0 / 6) +
                         L2 * ((5.0 - 18.0 * t2 + t4 + (14.0 - 58.0 * t2) * h) * (1.0 / 120) +
                               (61.0 - 479.0 * t2 + 179.0 * t4 - t4 * t2) * (1.0 / 5040) * L2))) +
        m_dFalseEasting;
    const double y =
        k * Arc(c, phi) - fx.kArc0 + m_dFalseNorthing +
        N * 0.5 * t * L2 *
            (1.0 + L2 * (((4.0 * h + 9.0) * h + 5.0 - t2) * (1.0 / 12) +
                         ((270.0 - 330.0 * t2) * h + 61.0 - 58.0 * t2 + t4) * (1.0 / 360) * L2));
    SetProjected(xy, x, y, ell.dGetHgt());
}

void CProjection_TM::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    const STMFixed &fx = Fixed(dGetSemiMajAx(), dGetEccentr(), m_dLatOrigin, m_dProjScaleFac);
    const STMConst &c = fx.c;
    const double k = m_dProjScaleFac;
    const double m = ((xy.dGetY() - m_dFalseNorthing) + fx.kArc0) / (k * c.G);
    const double f = Footpoint(c, m);
    const double sf = std::sin(f);
    const double t = std::tan(f);
    const double t2 = t * t;
    const double t4 = t2 * t2;
    const double h = c.E * std::cos(f) * std::cos(f);
    const double Q =
        (xy.dGetX() - m_dFalseEasting) / (k * c.a / std::sqrt(1.0 - c.e * c.e * sf * sf));
    const double Q2 = Q * Q;
    const double lat =
        f - 0.5 * t * (h + 1.0) * Q2 *
                (1.0 + Q2 * (-(5.0 + 3.0 * t2 + (1.0 - 9.0 * t2) * h - 4.0 * h * h) * (1.0 / 12) +
                             (61.0 + 90.0 * t2 + 45.0 * t4 + (46.0 - 252.0 * t2 - 90.0 * t4) * h) *
                                 (1.0 / 360) * Q2));
    const double lon =
        m_dLonOriginCM +
        Q *
            (1.0 + Q2 * (-(1.0 + 2.0 * t2 + h) * (1.0 / 6) +
                         Q2 * ((5.0 + 28.0 * t2 + 24.0 * t4 + (6.0 + 8.0 * t2) * h) * (1.0 / 120) -
                               (61.0 + 662.0 * t2 + 1320.0 * t4 + 720.0 * t4 * t2) * (1.0 / 5040) *
                                   Q2))) /
            std::cos(f);
    ell.SetLatLon(lat, dLonOut(lon, true));
    ell.SetHgt(xy.dGetZ());
}

CProjection_TM_TM::CProjection_TM_TM()
    : CProjection_TM(PT_TM, new CEllipsoid(CEllipsoid::BESSEL_1841),
                     {0.0, 0.0, u, u, 1.0, 0.0, 0.0}, "11001111") {}

CProjection_TM_TM::CProjection_TM_TM(double lon, double lat, double scale, double east,
                                     double north, const CEllipsoid &ellipsoid)
    : CProjection_TM(PT_TM, ellipsoid.Copy(), {lon, lat, u, u, scale, east, north}, "11001111") {}

COutputSystem *CProjection_TM_TM::pCopy() const {
    return new CProjection_TM_TM(m_dLonOriginCM, m_dLatOrigin, m_dProjScaleFac, m_dFalseEasting,
                                 m_dFalseNorthing, *m_pEllipsoid);
}

CProjection_TM_GAUSS_KRUGER::CProjection_TM_GAUSS_KRUGER()
    : CProjection_TM_GAUSS_KRUGER(0.0, 0.0, CEllipsoid(CEllipsoid::BESSEL_1841)) {}

CProjection_TM_GAUSS_KRUGER::CProjection_TM_GAUSS_KRUGER(double lon, double east,
                                                         const CEllipsoid &ellipsoid)
    : CProjection_TM(PT_GAUSS_KRUGER, ellipsoid.Copy(), {lon, 0.0, u, u, 1.0, east, 0.0},
                     "10000101") {}

COutputSystem *CProjection_TM_GAUSS_KRUGER::pCopy() const {
    return new CProjection_TM_GAUSS_KRUGER(m_dLonOriginCM, m_dFalseEasting, *m_pEllipsoid);
}

CProjection_TM_NORTH::CProjection_TM_NORTH()
    : CProjection_TM_NORTH(0.0, CEllipsoid(CEllipsoid::INTERNATIONAL)) {}

CProjection_TM_NORTH::CProjection_TM_NORTH(double lon, const CEllipsoid &ellipsoid)
    : CProjection_TM(PT_UTM_NORTH, ellipsoid.Copy(), {lon, 0.0, u, u, 0.9996, 500000.0, 0.0},
                     "10000001") {}

COutputSystem *CProjection_TM_NORTH::pCopy() const {
    return new CProjection_TM_NORTH(m_dLonOriginCM, *m_pEllipsoid);
}

CProjection_TM_SOUTH::CProjection_TM_SOUTH()
    : CProjection_TM_SOUTH(0.0, CEllipsoid(CEllipsoid::INTERNATIONAL)) {}

CProjection_TM_SOUTH::CProjection_TM_SOUTH(double lon, const CEllipsoid &ellipsoid)
    : CProjection_TM(PT_UTM_SOUTH, ellipsoid.Copy(), {lon, 0.0, u, u, 0.9996, 500000.0, 10000000.0},
                     "10000001") {}

COutputSystem *CProjection_TM_SOUTH::pCopy() const {
    return new CProjection_TM_SOUTH(m_dLonOriginCM, *m_pEllipsoid);
}

VX_IMPLEMENT_SERIAL(CProjection_TM_TM, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_TM_GAUSS_KRUGER, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_TM_NORTH, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_TM_SOUTH, nProjectionSchema)

} // namespace vx
