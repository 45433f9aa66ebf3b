#include "geodesy/ProjStereo.h"

#include "geodesy/Angles.h"
#include "geodesy/ProjMath.h"
#include "geometry/VXCoord.h"

#include <cmath>
#include <typeinfo>

namespace vx {

namespace {

constexpr double u = dUnusedParameter;

} // namespace

// The conformal sphere: n the exponent of the longitude, B0 the spherical latitude of origin,
// R the radius, K the constant of the latitude mapping; sinB0 and cosB0 are kept with it so that
// the projection does not take them at every point, and so are the ellipsoid's series.
struct SStereoSphere {
    double n, B0, R, K;
    double sinB0 = 0.0, cosB0 = 0.0;
    SEccentric ecc{};
};

namespace {

SStereoSphere Completed(SStereoSphere s, double e) {
    s.sinB0 = std::sin(s.B0);
    s.cosB0 = std::cos(s.B0);
    s.ecc = EccentricOf(e);
    return s;
}

// The sphere of the Dutch national grid, fixed to the digits of its definition.
SStereoSphere RDSphere(double e) {
    return Completed({1.00047585668, DegToRad(52.121097249), 6382644.5710000005, 0.003773953832},
                     e);
}

SStereoSphere SphereAt(const CEllipsoid &ell, double lat0) {
    const double e = ell.dGetEccentr();
    const double E = e * e / (1.0 - e * e);
    const double c0 = std::cos(lat0);
    SStereoSphere s{};
    s.n = std::sqrt(1.0 + E * c0 * c0 * c0 * c0);
    s.B0 = std::asin(std::sin(lat0) / s.n);
    s.R = std::sqrt(ell.dMRadCurv(lat0) * ell.dNRadCurv(lat0));
    s.K = std::log(std::tan(dPi / 4.0 + s.B0 / 2.0)) - dIso(lat0, e) * s.n;
    return Completed(s, e);
}

struct SPlane {
    double k, FE, FN;
};

// Ellipsoid to plane. With bOriginTest the exact origin (d = 0) gives (FE, FN); without it
// (RD) the origin divides 0 by 0 and gives NaN, which is kept: stored RD results rely on the
// plain formula.
void Forward(const SStereoSphere &s, const SPlane &pl, double e, double lat, double dLon,
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
void Inverse(const SStereoSphere &s, const SPlane &pl, double e, double x, double y, double &lat,
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

// The same double projection in fewer libm calls. Through q = exp(w) of the sphere's isometric
// latitude w: sin B = tanh w, cos B = sech w; the half-angle forms of the literal formula
// become the plain stereographic ones, x = 2kR cos B sin A / (1 + cos psi) and
// y = 2kR (sin B cos B0 - cos B sin B0 cos A) / (1 + cos psi), cos psi the cosine of the
// distance from the origin on the sphere.
void ForwardFast(const SStereoSphere &s, const SPlane &pl, double lat, double dLon, double &x,
                 double &y) {
    double sl = 0.0, cl = 0.0, sa = 0.0, ca = 0.0;
    SinCos(lat, sl, cl);
    const double w = dIsoFast(s.ecc, sl, cl) * s.n + s.K;
    const double q = std::exp(w);
    const double qi = 1.0 / q;
    const double sinB = (q - qi) / (q + qi);
    const double cosB = 2.0 / (q + qi);
    const double halfA = 0.5 * dLon * s.n;
    SinCos(halfA, sa, ca);
    const double sinA = 2.0 * sa * ca;
    const double cosBcosA = cosB * (1.0 - 2.0 * sa * sa);
    const double f = 2.0 * pl.k * s.R / (1.0 + sinB * s.sinB0 + s.cosB0 * cosBcosA);
    x = cosB * sinA * f + pl.FE;
    y = (sinB * s.cosB0 - s.sinB0 * cosBcosA) * f + pl.FN;
}

// Picks the fast form where it has been proven; the poles, NaN and the central meridian (where
// the origin's 0 / 0 of RD must stay) take the literal one.
void Project(const SStereoSphere &s, const SPlane &pl, double e, double lat, double dLon,
             bool bOriginTest, double &x, double &y) {
    if (s.ecc.bSeries && std::fabs(lat) <= dFastLatLimit && dLon != 0.0 && std::fabs(dLon) <= dPi)
        ForwardFast(s, pl, lat, dLon, x, y);
    else
        Forward(s, pl, e, lat, dLon, bOriginTest, x, y);
}

// The inverse in fewer libm calls: with t = r / (2kR), sin psi = 2t / (1 + t^2) and
// cos psi = (1 - t^2) / (1 + t^2), so no angle psi is needed; the longitude on the sphere is
// atan2(dx sin psi, r cos B0 cos psi - dy sin B0 sin psi), both sides times
// (1 + t^2) / (2t) > 0, which leaves dx unrounded; the latitude comes from its isometric latitude
// directly. Falls back to the literal form as Project does.
void Unproject(const SStereoSphere &s, const SPlane &pl, double e, double x, double y, double &lat,
               double &dLon) {
    const double dx = x - pl.FE;
    const double dy = y - pl.FN;
    const double kR = pl.k * s.R;
    const double t2 = (dx * dx + dy * dy) / (4.0 * kR * kR);
    const double sinB = (s.cosB0 * dy / kR + s.sinB0 * (1.0 - t2)) / (1.0 + t2);
    const double cosB = std::sqrt((1.0 - sinB) * (1.0 + sinB));
    const double w = (std::log((1.0 + sinB) / cosB) - s.K) / s.n;
    // The longitude on the sphere by the tangent of A, whose denominator is positive within a
    // quarter turn; beyond it the literal asin form, which confines A to that quarter turn.
    const double den = kR * s.cosB0 * (1.0 - t2) - dy * s.sinB0;
    if (!s.ecc.bSeries || !(std::fabs(w) <= dFastIsoLimit) || !(den > 0.0)) {
        Inverse(s, pl, e, x, y, lat, dLon);
        return;
    }
    dLon = std::atan2(dx, den) / s.n;
    lat = dLatOfIsoFast(s.ecc, w);
}

// The plane parameters of a projection, from its public getters.
SPlane Plane(const COutputSystem *p) {
    return {p->dGetProjScaleFac(), p->dGetFalseEasting(), p->dGetFalseNorthing()};
}

// The point formulas of the array loops.
auto StereoForward(const SStereoSphere &s, const SPlane &pl, bool bOriginTest) {
    return [&s, pl, bOriginTest](double lat, double dLon, double &x, double &y) {
        Project(s, pl, s.ecc.e, lat, dLon, bOriginTest, x, y);
    };
}

auto StereoInverse(const SStereoSphere &s, const SPlane &pl, double lon0) {
    return [&s, pl, lon0](double x, double y, double &lat, double &lon) {
        double dLon = 0.0;
        Unproject(s, pl, s.ecc.e, x, y, lat, dLon);
        lon = dLon + lon0;
    };
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

// The sphere depends on the ellipsoid and the latitude of origin only: kept per parameter set.
const SStereoSphere &
CProjection_STEREOGRAPHIC::Sphere(std::optional<SStereoSphere> &scratch) const {
    const CEllipsoid &ell = *m_pEllipsoid;
    return KeptConstants(
        m_Constants, scratch, [&] { return SphereAt(ell, m_dLatOrigin); }, ell.dGetSemiMajAx(),
        ell.dGetEccentr(), m_dLatOrigin);
}

void CProjection_STEREOGRAPHIC::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    StereoEllToProjection(&ell, &xy, 1);
}

void CProjection_STEREOGRAPHIC::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    StereoProjectionToEll(&xy, &ell, 1);
}

// A host's class that overrides the point forms gets the base form of the arrays (its point
// forms), this class the direct loop.
void CProjection_STEREOGRAPHIC::EllToProjectionArray(const CEllCoord *in, CVXCoord *out,
                                                     std::size_t n) {
    if (typeid(*this) == typeid(CProjection_STEREOGRAPHIC))
        StereoEllToProjection(in, out, n);
    else
        COutputSystem::EllToProjectionArray(in, out, n);
}

void CProjection_STEREOGRAPHIC::ProjectionToEllArray(const CVXCoord *in, CEllCoord *out,
                                                     std::size_t n) {
    if (typeid(*this) == typeid(CProjection_STEREOGRAPHIC))
        StereoProjectionToEll(in, out, n);
    else
        COutputSystem::ProjectionToEllArray(in, out, n);
}

void CProjection_STEREOGRAPHIC::StereoEllToProjection(const CEllCoord *in, CVXCoord *out,
                                                      std::size_t n) {
    std::optional<SStereoSphere> scratch;
    ForwardLoop(in, out, n, StereoForward(Sphere(scratch), Plane(this), true));
}

void CProjection_STEREOGRAPHIC::StereoProjectionToEll(const CVXCoord *in, CEllCoord *out,
                                                      std::size_t n) {
    std::optional<SStereoSphere> scratch;
    InverseLoop(in, out, n, false, StereoInverse(Sphere(scratch), Plane(this), m_dLonOriginCM));
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

// The sphere is fixed; what is kept is the ellipsoid's series, which a loaded USER ellipsoid
// could change.
const SStereoSphere &CProjection_RD::Sphere(std::optional<SStereoSphere> &scratch) const {
    const double e = dGetEccentr();
    return KeptConstants(
        m_Constants, scratch, [e] { return RDSphere(e); }, e);
}

void CProjection_RD::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    RDEllToProjection(&ell, &xy, 1);
}

void CProjection_RD::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    RDProjectionToEll(&xy, &ell, 1);
}

void CProjection_RD::RDEllToProjection(const CEllCoord *in, CVXCoord *out, std::size_t n) {
    std::optional<SStereoSphere> scratch;
    ForwardLoop(in, out, n, StereoForward(Sphere(scratch), Plane(this), false));
}

void CProjection_RD::RDProjectionToEll(const CVXCoord *in, CEllCoord *out, std::size_t n) {
    std::optional<SStereoSphere> scratch;
    InverseLoop(in, out, n, false, StereoInverse(Sphere(scratch), Plane(this), m_dLonOriginCM));
}

// The grid-corrected types derive from this class and override the point forms: they get the
// base form of the arrays (their point forms), the plain RD the direct loop.
void CProjection_RD::EllToProjectionArray(const CEllCoord *in, CVXCoord *out, std::size_t n) {
    if (typeid(*this) == typeid(CProjection_RD))
        RDEllToProjection(in, out, n);
    else
        COutputSystem::EllToProjectionArray(in, out, n);
}

void CProjection_RD::ProjectionToEllArray(const CVXCoord *in, CEllCoord *out, std::size_t n) {
    if (typeid(*this) == typeid(CProjection_RD))
        RDProjectionToEll(in, out, n);
    else
        COutputSystem::ProjectionToEllArray(in, out, n);
}

VX_IMPLEMENT_SERIAL(CProjection_STEREOGRAPHIC, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_RD, nProjectionSchema)

} // namespace vx
