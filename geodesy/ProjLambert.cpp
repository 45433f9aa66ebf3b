#include "geodesy/ProjLambert.h"

#include "geodesy/Angles.h"
#include "geodesy/ProjMath.h"
#include "geometry/VXCoord.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"

#include <cmath>
#include <typeinfo>

namespace vx {

namespace {

constexpr double u = dUnusedParameter;

// I(p) = ln(tan(p/2 + pi/4) ((1 - e sin p) / (1 + e sin p))^(e/2)), the isometric latitude in the
// product form of the Lambert formulas.
double IsoLB(double p, double e) {
    const double es = e * std::sin(p);
    return std::log(std::tan(p / 2.0 + dPi / 4.0) * std::pow((1.0 - es) / (1.0 + es), e / 2.0));
}

// Runs p = step(p) until the change is at most the tolerance or the round limit is reached.
template <class STEP>
double IterateLatitude(double p, STEP step) {
    for (int i = 0; i < nLatIterRounds; ++i) {
        const double next = step(p);
        const double change = std::fabs(next - p);
        p = next;
        if (change <= dLatIterTol) break;
    }
    return p;
}

// The constants of the old closed form of Lambert 72.
constexpr double dL72Radius = 11565915.812935;
constexpr double dL72Cone = 0.7716421928;
constexpr double dL72InvCone = 1.2959374297190454;
constexpr double dL72Theta0 = 0.000142043;
constexpr double dL72DeltaX = 0.01256;
constexpr double dL72DeltaY = 88.4378;

} // namespace

CProjection_LB::CProjection_LB(ProjectionType type, CEllipsoid *pEllipsoid, const SParameters &par,
                               const char *szEditFlags)
    : COutputSystem(type, pEllipsoid, par, szEditFlags) {}

void CProjection_LB::SerializeX(CArchiveX &ar) {
    COutputSystem::SerializeX(ar);
    ar.Serialize(u"m_dProjScaleFac0", m_dProjScaleFac0);
    ar.Serialize(u"m_dStandPar0", m_dStandPar0);
}

void CProjection_LB::SerializeB(CArchiveB &ar) {
    COutputSystem::SerializeB(ar);
    if (ar.IsStoring())
        ar << m_dProjScaleFac0 << m_dStandPar0;
    else
        ar >> m_dProjScaleFac0 >> m_dStandPar0;
}

// The constants of the one-parallel form, kept per parameter set: s0 = sin p0, T the radius
// of the parallel p0 over tan p0, I0 = I(p0), g0 the cone's factor at the latitude of origin,
// Tg0 = T (1 - g0) the northing offset of the origin, and the ellipsoid's series.
struct SLBConst {
    double e, s0, T, I0, g0, Tg0;
    SEccentric ecc;
};

namespace {

SLBConst LBConst(const CEllipsoid &ell, double p0, double k0, double lat0) {
    SLBConst c{};
    c.e = ell.dGetEccentr();
    c.s0 = std::sin(p0);
    c.T = ell.dNRadCurv(p0) * k0 / std::tan(p0);
    c.I0 = IsoLB(p0, c.e);
    c.g0 = std::exp(-c.s0 * (IsoLB(lat0, c.e) - c.I0));
    c.Tg0 = c.T * (1.0 - c.g0);
    c.ecc = EccentricOf(c.e);
    return c;
}

struct SLBPlane {
    double lon0, FE, FN;
};

// The literal forward, for the poles and NaN.
void ForwardLiteral(const SLBConst &c, const SLBPlane &pl, double lat, double dLon, double &x,
                    double &y) {
    const double g = std::exp(-c.s0 * (IsoLB(lat, c.e) - c.I0));
    const double th = c.s0 * dLon;
    x = c.T * g * std::sin(th) + pl.FE;
    y = c.T * (1.0 - g * std::cos(th)) + pl.FN - c.Tg0;
}

// The forward with the isometric latitude in its fast form (geodesy/ProjMath.h).
void Forward(const SLBConst &c, const SLBPlane &pl, double lat, double dLon, double &x, double &y) {
    if (!c.ecc.bSeries || !(std::fabs(lat) <= dFastLatLimit)) {
        ForwardLiteral(c, pl, lat, dLon, x, y);
        return;
    }
    double sl = 0.0, cl = 0.0, sth = 0.0, cth = 0.0;
    SinCos(lat, sl, cl);
    const double th = c.s0 * dLon;
    SinCos(th, sth, cth);
    const double g = std::exp(-c.s0 * (dIsoFast(c.ecc, sl, cl) - c.I0));
    x = c.T * g * sth + pl.FE;
    y = c.T * (1.0 - g * cth) + pl.FN - c.Tg0;
}

// The literal inverse: the fixed-point rounds on the latitude.
void InverseLiteral(const SLBConst &c, const SLBPlane &pl, double x, double y, double &lat,
                    double &lon) {
    const double e = c.e;
    const double Y = c.T - (c.Tg0 + y - pl.FN);
    const double th = std::atan((x - pl.FE) / Y);
    lon = th / c.s0 + pl.lon0;
    const double rho = Y / std::cos(th);
    const double uIso = -std::log(rho / c.T) / c.s0 + c.I0;
    lat = IterateLatitude(uIso, [&](double p) {
        const double es = e * std::sin(p);
        return 2.0 * std::atan(std::pow((1.0 + es) / (1.0 - es), e / 2.0) * std::exp(uIso)) -
               dPi / 2.0;
    });
}

// The inverse with rho = Y / cos(atan(X / Y)) as sign(Y) sqrt(X^2 + Y^2) and the latitude of
// the isometric latitude in its fast form; the apex (Y = 0), the poles and NaN take the literal
// form.
void Inverse(const SLBConst &c, const SLBPlane &pl, double x, double y, double &lat, double &lon) {
    const double X = x - pl.FE;
    const double Y = c.T - (c.Tg0 + y - pl.FN);
    const double rho = std::copysign(std::sqrt(X * X + Y * Y), Y);
    const double uIso = -std::log(rho / c.T) / c.s0 + c.I0;
    if (!c.ecc.bSeries || Y == 0.0 || !(std::fabs(uIso) <= dFastIsoLimit)) {
        InverseLiteral(c, pl, x, y, lat, lon);
        return;
    }
    lon = std::atan(X / Y) / c.s0 + pl.lon0;
    lat = dLatOfIsoFast(c.ecc, uIso);
}

} // namespace

const SLBConst &CProjection_LB::Constants(std::optional<SLBConst> &scratch) const {
    const CEllipsoid &ell = *m_pEllipsoid;
    return KeptConstants(
        m_Constants, scratch,
        [&] { return LBConst(ell, m_dStandPar0, m_dProjScaleFac0, m_dLatOrigin); },
        ell.dGetSemiMajAx(), ell.dGetEccentr(), m_dStandPar0, m_dProjScaleFac0, m_dLatOrigin);
}

void CProjection_LB::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    LBEllToProjection(&ell, &xy, 1);
}

void CProjection_LB::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    LBProjectionToEll(&xy, &ell, 1);
}

void CProjection_LB::LBEllToProjection(const CEllCoord *in, CVXCoord *out, std::size_t n) {
    std::optional<SLBConst> scratch;
    const SLBConst &c = Constants(scratch);
    const SLBPlane pl{m_dLonOriginCM, m_dFalseEasting, m_dFalseNorthing};
    ForwardLoop(in, out, n, [&c, pl](double lat, double dLon, double &x, double &y) {
        Forward(c, pl, lat, dLon, x, y);
    });
}

void CProjection_LB::LBProjectionToEll(const CVXCoord *in, CEllCoord *out, std::size_t n) {
    std::optional<SLBConst> scratch;
    const SLBConst &c = Constants(scratch);
    const SLBPlane pl{m_dLonOriginCM, m_dFalseEasting, m_dFalseNorthing};
    InverseLoop(in, out, n, false, [&c, pl](double x, double y, double &lat, double &lon) {
        Inverse(c, pl, x, y, lat, lon);
    });
}

// The grid-corrected Lambert 72 overrides the point forms and gets the base form of the arrays
// (its point forms), as does a host's class; the plain types the direct loop.
void CProjection_LB::EllToProjectionArray(const CEllCoord *in, CVXCoord *out, std::size_t n) {
    if (bOwnPointForms())
        LBEllToProjection(in, out, n);
    else
        COutputSystem::EllToProjectionArray(in, out, n);
}

void CProjection_LB::ProjectionToEllArray(const CVXCoord *in, CEllCoord *out, std::size_t n) {
    if (bOwnPointForms())
        LBProjectionToEll(in, out, n);
    else
        COutputSystem::ProjectionToEllArray(in, out, n);
}

bool CProjection_LB::bOwnPointForms() const {
    const std::type_info &t = typeid(*this);
    return t == typeid(CProjection_LB_LAMBERT1) || t == typeid(CProjection_LB_LAMBERT2) ||
           t == typeid(CProjection_LAMBERT72) || t == typeid(CProjection_LAMBERT2008);
}

CProjection_LB_LAMBERT1::CProjection_LB_LAMBERT1()
    : CProjection_LB_LAMBERT1(0.0, 0.0, 0.0, 1.0, 0.0, 0.0, CEllipsoid(CEllipsoid::BESSEL_1841)) {}

CProjection_LB_LAMBERT1::CProjection_LB_LAMBERT1(double lon, double lat, double par1, double scale,
                                                 double east, double north,
                                                 const CEllipsoid &ellipsoid)
    : CProjection_LB(PT_LAMBERT1, ellipsoid.Copy(), {lon, lat, par1, u, scale, east, north},
                     "11101111") {
    m_dStandPar0 = par1;
    m_dProjScaleFac0 = scale;
}

COutputSystem *CProjection_LB_LAMBERT1::pCopy() const {
    return new CProjection_LB_LAMBERT1(m_dLonOriginCM, m_dLatOrigin, m_dStandPar1, m_dProjScaleFac,
                                       m_dFalseEasting, m_dFalseNorthing, *m_pEllipsoid);
}

CProjection_LB_LAMBERT2::CProjection_LB_LAMBERT2()
    : CProjection_LB_LAMBERT2(0.0, 0.0, 0.0, 0.0, 0.0, 0.0, CEllipsoid(CEllipsoid::BESSEL_1841)) {}

CProjection_LB_LAMBERT2::CProjection_LB_LAMBERT2(double lon, double lat, double par1, double par2,
                                                 double east, double north,
                                                 const CEllipsoid &ellipsoid)
    : CProjection_LB_LAMBERT2(PT_LAMBERT2, ellipsoid.Copy(),
                              {lon, lat, par1, par2, u, east, north}) {}

CProjection_LB_LAMBERT2::CProjection_LB_LAMBERT2(ProjectionType type, CEllipsoid *pEllipsoid,
                                                 const SParameters &par)
    : CProjection_LB(type, pEllipsoid, par, type == PT_LAMBERT2 ? "11110111" : "00000000") {
    Parallel();
}

COutputSystem *CProjection_LB_LAMBERT2::pCopy() const {
    return new CProjection_LB_LAMBERT2(m_dLonOriginCM, m_dLatOrigin, m_dStandPar1, m_dStandPar2,
                                       m_dFalseEasting, m_dFalseNorthing, *m_pEllipsoid);
}

void CProjection_LB_LAMBERT2::Parallel() {
    const double P1 = m_dStandPar1;
    const double P2 = m_dStandPar2;
    if (P1 == P2) {
        m_dStandPar0 = P1;
        m_dProjScaleFac0 = 1.0;
        return;
    }
    const double e = dGetEccentr();
    const double N1cos = dNRadCurv(P1) * std::cos(P1);
    const double N2cos = dNRadCurv(P2) * std::cos(P2);
    const double s0 = (std::log(N1cos) - std::log(N2cos)) / (IsoLB(P2, e) - IsoLB(P1, e));
    const double p0 = std::asin(s0);
    m_dStandPar0 = p0;
    m_dProjScaleFac0 =
        N1cos * std::exp(s0 * (IsoLB(P1, e) - IsoLB(p0, e))) / (dNRadCurv(p0) * std::cos(p0));
}

CProjection_LAMBERT72::CProjection_LAMBERT72() : CProjection_LAMBERT72(PT_LAMBERT72) {}

// The offsets of 150000.013 and 5400088.438 and the latitude of origin of 90 degrees fold the
// constants of the old closed form (CProjection_LAMBERT72Old) into the general cone.
CProjection_LAMBERT72::CProjection_LAMBERT72(ProjectionType type)
    : CProjection_LB_LAMBERT2(type, new CEllipsoid(CEllipsoid::INTERNATIONAL),
                              {DegToRad(4.367486666666666), DegToRad(90.0), DegToRad(49.8333339),
                               DegToRad(51.166667233333335), u, 150000.01300000001,
                               5400088.4380000001}) {}

COutputSystem *CProjection_LAMBERT72::pCopy() const {
    return new CProjection_LAMBERT72();
}

CProjection_LAMBERT2008::CProjection_LAMBERT2008()
    : CProjection_LB_LAMBERT2(PT_LAMBERT2008, new CEllipsoid(CEllipsoid::GRS_1980),
                              {DegToRad(4.359215833333333), DegToRad(50.797815),
                               DegToRad(49.0 + 50.0 / 60), DegToRad(51.0 + 10.0 / 60), u, 649328.0,
                               665262.0}) {
    m_szTransformationName = u"ETRS89 - Lambert 2008+TAW";
}

COutputSystem *CProjection_LAMBERT2008::pCopy() const {
    return new CProjection_LAMBERT2008();
}

CProjection_LAMBERT72Old::CProjection_LAMBERT72Old()
    : COutputSystem(PT_LAMBERT72, new CEllipsoid(CEllipsoid::INTERNATIONAL),
                    {DegToRad(4.356939722), DegToRad(50.799362222), DegToRad(49.833333333),
                     DegToRad(51.166666667), u, 150000.0, 5400000.0},
                    "00000000") {}

COutputSystem *CProjection_LAMBERT72Old::pCopy() const {
    return new CProjection_LAMBERT72Old();
}

void CProjection_LAMBERT72Old::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    const double e = dGetEccentr();
    const double lat = ell.dGetLat();
    const double es = e * std::sin(lat);
    const double rho = dL72Radius * std::pow(std::tan(dPi / 4.0 - lat / 2.0) *
                                                 std::pow((1.0 + es) / (1.0 - es), e / 2.0),
                                             dL72Cone);
    const double th = dL72Cone * dWrapLon(ell.dGetLon()) - dL72Theta0;
    const double x = rho * std::sin(th) + m_dFalseEasting + dL72DeltaX;
    const double y = m_dFalseNorthing + dL72DeltaY - rho * std::cos(th);
    SetProjected(xy, x, y, ell.dGetHgt());
}

void CProjection_LAMBERT72Old::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    const double e = dGetEccentr();
    const double X = xy.dGetX() - (m_dFalseEasting + dL72DeltaX);
    const double Y = xy.dGetY() - (m_dFalseNorthing + dL72DeltaY);
    const double lon = (std::atan(X / -Y) + dL72Theta0) * dL72InvCone + m_dLonOriginCM;
    const double v = std::pow(std::sqrt(X * X + Y * Y) / dL72Radius, dL72InvCone);
    const double lat = IterateLatitude(dPi / 2.0 - 2.0 * std::atan(v), [&](double p) {
        const double es = e * std::sin(p);
        return dPi / 2.0 - 2.0 * std::atan(v * std::pow((1.0 - es) / (1.0 + es), e / 2.0));
    });
    ell.SetLatLon(lat, dLonOut(lon, false));
    ell.SetHgt(xy.dGetZ());
}

VX_IMPLEMENT_SERIAL(CProjection_LB_LAMBERT1, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_LB_LAMBERT2, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_LAMBERT72, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_LAMBERT2008, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_LAMBERT72Old, nProjectionSchema)

} // namespace vx
