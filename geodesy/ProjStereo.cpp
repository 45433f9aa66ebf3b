#include "geodesy/ProjStereo.h"

#include "geodesy/Angles.h"
#include "geodesy/ProjMath.h"
#include "geometry/VXCoord.h"

#include <cmath>

namespace vx {

namespace {

constexpr double u = dUnusedParameter;

// The conformal sphere: n the exponent of the longitude, B0 the spherical latitude of origin,
// R the radius, K the constant of the latitude mapping; sinB0 and cosB0 are kept with it so that
// the projection does not take them at every point.
struct SSphere {
    double n, B0, R, K;
    double sinB0 = 0.0, cosB0 = 0.0;
};

SSphere WithTrig(SSphere s) {
    s.sinB0 = std::sin(s.B0);
    s.cosB0 = std::cos(s.B0);
    return s;
}

// The sphere of the Dutch national grid, fixed to the digits of its definition.
const SSphere &RDSphere() {
    static const SSphere s =
        WithTrig({1.00047585668, DegToRad(52.121097249), 6382644.5710000005, 0.003773953832});
    return s;
}

SSphere SphereAt(const CEllipsoid &ell, double lat0) {
    const double e = ell.dGetEccentr();
    const double E = e * e / (1.0 - e * e);
    const double c0 = std::cos(lat0);
    SSphere s{};
    s.n = std::sqrt(1.0 + E * c0 * c0 * c0 * c0);
    s.B0 = std::asin(std::sin(lat0) / s.n);
    s.R = std::sqrt(ell.dMRadCurv(lat0) * ell.dNRadCurv(lat0));
    s.K = std::log(std::tan(dPi / 4.0 + s.B0 / 2.0)) - dIso(lat0, e) * s.n;
    return WithTrig(s);
}

struct SPlane {
    double k, FE, FN;
};

// Ellipsoid to plane. With bOriginTest the exact origin (d = 0) gives (FE, FN); without it
// (RD) the origin divides 0 by 0 and gives NaN, which is kept: stored RD results rely on the
// plain formula.
void Forward(const SSphere &s, const SPlane &pl, double e, double lat, double dLon,
             bool bOriginTest, double &x, double &y) {
    const double B = 2.0 * std::atan(std::exp(dIso(lat, e) * s.n + s.K)) - dPi / 2.0;
    const double A = dLon * s.n;
    const double sb = std::sin((B - s.B0) / 2.0);
    const double sa = std::sin(A / 2.0);
    const double s2 = sb * sb + sa * sa * std::cos(B) * s.cosB0;
    const double sq = std::sqrt(s2);
    const double c = std::sqrt(1.0 - sq * sq);
    const double d = 2.0 * sq * c;
    if (bOriginTest && d == 0.0) {
        x = pl.FE;
        y = pl.FN;
        return;
    }
    const double r = 2.0 * pl.k * s.R * sq / c;
    x = (std::sin(A) * std::cos(B) / d) * r + pl.FE;
    y = ((std::sin(B) - s.sinB0 * (1.0 - 2.0 * sq * sq)) / (s.cosB0 * d)) * r + pl.FN;
}

// Plane to ellipsoid; dLon is the longitude difference from the central meridian.
void Inverse(const SSphere &s, const SPlane &pl, double e, double x, double y, double &lat,
             double &dLon) {
    const double dx = x - pl.FE;
    const double dy = y - pl.FN;
    double r = std::sqrt(dx * dx + dy * dy);
    if (r < dFloatMinGuard) r = dFloatMinGuard;
    const double psi = 2.0 * std::atan(r / (2.0 * pl.k * s.R));
    const double sinB = s.cosB0 * (dy / r) * std::sin(psi) + s.sinB0 * std::cos(psi);
    const double B = std::asin(sinB);
    // The asin confines the longitude difference to a quarter turn on the sphere.
    dLon = std::asin(std::sin(psi) * (dx / r) / std::cos(B)) / s.n;
    const double w = (std::log(std::tan(B / 2.0 + dPi / 4.0)) - s.K) / s.n;
    double p = std::asin(std::tanh(w));
    for (int i = 0; i < nLatIterRounds; ++i) {
        const double es = e * std::sin(p);
        const double next = std::asin(std::tanh(w + (e / 2.0) * std::log((1.0 + es) / (1.0 - es))));
        const double change = std::fabs(next - p);
        p = next;
        if (change <= dLatIterTol) break;
    }
    lat = p;
}

// The sphere of a general stereographic projection depends on the ellipsoid and the latitude of
// origin only: taken once per parameter set.
const SSphere &CachedSphere(const CEllipsoid &ell, double lat0) {
    return CachedPerThread([&] { return SphereAt(ell, lat0); }, ell.dGetSemiMajAx(),
                           ell.dGetEccentr(), lat0);
}

} // namespace

CProjection_STEREOGRAPHIC::CProjection_STEREOGRAPHIC(ProjectionType type)
    : CProjection_STEREOGRAPHIC(type, 0.0, 0.0, 1.0, 0.0, 0.0,
                                CEllipsoid(CEllipsoid::BESSEL_1841)) {}

CProjection_STEREOGRAPHIC::CProjection_STEREOGRAPHIC(ProjectionType type, double lon, double lat,
                                                     double scale, double east, double north,
                                                     const CEllipsoid &ellipsoid)
    : COutputSystem(type, ellipsoid.Copy(), {lon, lat, u, u, scale, east, north}, "11001111") {}

COutputSystem *CProjection_STEREOGRAPHIC::pCopy() const {
    return new CProjection_STEREOGRAPHIC(m_nProjection, m_dLonOriginCM, m_dLatOrigin,
                                         m_dProjScaleFac, m_dFalseEasting, m_dFalseNorthing,
                                         *m_pEllipsoid);
}

void CProjection_STEREOGRAPHIC::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    double x = 0.0;
    double y = 0.0;
    Forward(CachedSphere(*m_pEllipsoid, m_dLatOrigin),
            {m_dProjScaleFac, m_dFalseEasting, m_dFalseNorthing}, dGetEccentr(), ell.dGetLat(),
            dWrapLon(ell.dGetLon()), true, x, y);
    SetProjected(xy, x, y, ell.dGetHgt());
}

void CProjection_STEREOGRAPHIC::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    double lat = 0.0;
    double dLon = 0.0;
    Inverse(CachedSphere(*m_pEllipsoid, m_dLatOrigin),
            {m_dProjScaleFac, m_dFalseEasting, m_dFalseNorthing}, dGetEccentr(), xy.dGetX(),
            xy.dGetY(), lat, dLon);
    ell.SetLatLon(lat, dLonOut(dLon + m_dLonOriginCM, false));
    ell.SetHgt(xy.dGetZ());
}

CProjection_RD::CProjection_RD() : CProjection_RD(PT_RD) {}

CProjection_RD::CProjection_RD(ProjectionType type)
    : COutputSystem(
          type, new CEllipsoid(CEllipsoid::BESSEL_1841),
          {DegToRad(5.387638889), DegToRad(52.156160556), u, u, 0.9999079, 155000.0, 463000.0},
          "00000000") {}

COutputSystem *CProjection_RD::pCopy() const {
    return new CProjection_RD();
}

void CProjection_RD::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    double x = 0.0;
    double y = 0.0;
    Forward(RDSphere(), {m_dProjScaleFac, m_dFalseEasting, m_dFalseNorthing}, dGetEccentr(),
            ell.dGetLat(), dWrapLon(ell.dGetLon()), false, x, y);
    SetProjected(xy, x, y, ell.dGetHgt());
}

void CProjection_RD::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    double lat = 0.0;
    double dLon = 0.0;
    Inverse(RDSphere(), {m_dProjScaleFac, m_dFalseEasting, m_dFalseNorthing}, dGetEccentr(),
            xy.dGetX(), xy.dGetY(), lat, dLon);
    ell.SetLatLon(lat, dLonOut(dLon + m_dLonOriginCM, false));
    ell.SetHgt(xy.dGetZ());
}

VX_IMPLEMENT_SERIAL(CProjection_STEREOGRAPHIC, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_RD, nProjectionSchema)

} // namespace vx
