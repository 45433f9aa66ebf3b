#include "geodesy/ProjTM.h"

#include "geodesy/Angles.h"
#include "geodesy/ProjMath.h"
#include "geometry/VXCoord.h"

#include <cmath>
#include <typeinfo>

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

// The meridian arc from the equator to latitude p, from sin p and cos p.
double Arc(const STMConst &k, double p, double sp, double cp) {
    const double C = cp * cp;
    return k.G * p + sp * cp * (k.A1 + k.A2 * C + k.A3 * C * C + k.A4 * C * C * C);
}

// The footpoint latitude of the rectifying latitude m.
double Footpoint(const STMConst &k, double m) {
    double sm = 0.0, cm = 0.0;
    SinCos(m, sm, cm);
    const double C = cm * cm;
    return m + sm * cm * (k.B1 + k.B2 * C + k.B3 * C * C + k.B4 * C * C * C);
}

} // namespace

// What depends on the parameters alone: the ellipsoid's constants and the scaled meridian arc to
// the latitude of origin, computed once per parameter set and kept in the object.
struct STMFixed {
    STMConst c;
    double kArc0;
};

namespace {

STMFixed TMFixed(double a, double e, double lat0, double k) {
    STMFixed fx{TMConst(a, e), 0.0};
    fx.kArc0 = k * Arc(fx.c, lat0, std::sin(lat0), std::cos(lat0));
    return fx;
}

// The plane parameters of one call.
struct STMPlane {
    double k, FE, FN;
};

// The series forward. sin and cos of the latitude are taken once and tan is their quotient; the
// literal form took the cosine six times (the compiler may not merge libm calls, which may set
// errno) and the tangent by its own call. The quotient differs from tan in the last bit at most;
// the tests hold the results to the literal series and to its long double evaluation.
void Forward(const STMFixed &fx, const STMPlane &pl, double phi, double dLon, double &x,
             double &y) {
    const STMConst &c = fx.c;
    const double k = pl.k;
    double sphi = 0.0, cphi = 0.0;
    SinCos(phi, sphi, cphi);
    const double N = k * c.a / std::sqrt(1.0 - c.e * c.e * sphi * sphi);
    const double t = sphi / cphi;
    const double t2 = t * t;
    const double t4 = t2 * t2;
    const double h = c.E * cphi * cphi;
    const double L = dLon * cphi;
    const double L2 = L * L;
    x = N * L *
            (1.0 + L2 * ((1.0 - t2 + h) * (1.0 / 6) +
                         L2 * ((5.0 - 18.0 * t2 + t4 + (14.0 - 58.0 * t2) * h) * (1.0 / 120) +
                               (61.0 - 479.0 * t2 + 179.0 * t4 - t4 * t2) * (1.0 / 5040) * L2))) +
        pl.FE;
    y = k * Arc(c, phi, sphi, cphi) - fx.kArc0 + pl.FN +
        N * 0.5 * t * L2 *
            (1.0 + L2 * (((4.0 * h + 9.0) * h + 5.0 - t2) * (1.0 / 12) +
                         ((270.0 - 330.0 * t2) * h + 61.0 - 58.0 * t2 + t4) * (1.0 / 360) * L2));
}

// The series inverse; lon is the longitude before it is brought into [0, 2*pi).
void Inverse(const STMFixed &fx, const STMPlane &pl, double lon0, double x, double y, double &lat,
             double &lon) {
    const STMConst &c = fx.c;
    const double k = pl.k;
    const double m = ((y - pl.FN) + fx.kArc0) / (k * c.G);
    const double f = Footpoint(c, m);
    double sf = 0.0, cf = 0.0;
    SinCos(f, sf, cf);
    const double t = sf / cf;
    const double t2 = t * t;
    const double t4 = t2 * t2;
    const double h = c.E * cf * cf;
    const double Q = (x - pl.FE) / (k * c.a / std::sqrt(1.0 - c.e * c.e * sf * sf));
    const double Q2 = Q * Q;
    lat =
        f - 0.5 * t * (h + 1.0) * Q2 *
                (1.0 + Q2 * (-(5.0 + 3.0 * t2 + (1.0 - 9.0 * t2) * h - 4.0 * h * h) * (1.0 / 12) +
                             (61.0 + 90.0 * t2 + 45.0 * t4 + (46.0 - 252.0 * t2 - 90.0 * t4) * h) *
                                 (1.0 / 360) * Q2));
    lon =
        lon0 +
        Q *
            (1.0 + Q2 * (-(1.0 + 2.0 * t2 + h) * (1.0 / 6) +
                         Q2 * ((5.0 + 28.0 * t2 + 24.0 * t4 + (6.0 + 8.0 * t2) * h) * (1.0 / 120) -
                               (61.0 + 662.0 * t2 + 1320.0 * t4 + 720.0 * t4 * t2) * (1.0 / 5040) *
                                   Q2))) /
            cf;
}

} // namespace

const STMFixed &CProjection_TM::Fixed(std::optional<STMFixed> &scratch) const {
    const double a = dGetSemiMajAx();
    const double e = dGetEccentr();
    const double lat0 = m_dLatOrigin;
    const double k = m_dProjScaleFac;
    return KeptConstants(
        m_Constants, scratch, [&] { return TMFixed(a, e, lat0, k); }, a, e, lat0, k);
}

void CProjection_TM::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    TMEllToProjection(&ell, &xy, 1);
}

void CProjection_TM::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    TMProjectionToEll(&xy, &ell, 1);
}

void CProjection_TM::TMEllToProjection(const CEllCoord *in, CVXCoord *out, std::size_t n) {
    std::optional<STMFixed> scratch;
    const STMFixed &fx = Fixed(scratch);
    const STMPlane pl{m_dProjScaleFac, m_dFalseEasting, m_dFalseNorthing};
    ForwardLoop(in, out, n, [&fx, pl](double lat, double dLon, double &x, double &y) {
        Forward(fx, pl, lat, dLon, x, y);
    });
}

void CProjection_TM::TMProjectionToEll(const CVXCoord *in, CEllCoord *out, std::size_t n) {
    std::optional<STMFixed> scratch;
    const STMFixed &fx = Fixed(scratch);
    const STMPlane pl{m_dProjScaleFac, m_dFalseEasting, m_dFalseNorthing};
    const double lon0 = m_dLonOriginCM;
    InverseLoop(in, out, n, true, [&fx, pl, lon0](double x, double y, double &lat, double &lon) {
        Inverse(fx, pl, lon0, x, y, lat, lon);
    });
}

// The four types share the point forms; a host's class that overrides those gets the base form
// of the arrays (its point forms).
void CProjection_TM::EllToProjectionArray(const CEllCoord *in, CVXCoord *out, std::size_t n) {
    if (bOwnPointForms())
        TMEllToProjection(in, out, n);
    else
        COutputSystem::EllToProjectionArray(in, out, n);
}

void CProjection_TM::ProjectionToEllArray(const CVXCoord *in, CEllCoord *out, std::size_t n) {
    if (bOwnPointForms())
        TMProjectionToEll(in, out, n);
    else
        COutputSystem::ProjectionToEllArray(in, out, n);
}

bool CProjection_TM::bOwnPointForms() const {
    const std::type_info &t = typeid(*this);
    return t == typeid(CProjection_TM_TM) || t == typeid(CProjection_TM_GAUSS_KRUGER) ||
           t == typeid(CProjection_TM_NORTH) || t == typeid(CProjection_TM_SOUTH);
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
