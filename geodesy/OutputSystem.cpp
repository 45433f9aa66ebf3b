#include "geodesy/OutputSystem.h"

#include "geodesy/Angles.h"
#include "geodesy/GeodesyResources.h"
#include "geodesy/ProjMath.h"
#include "geodesy/ProjectionTable.h"
#include "geometry/VXCoord.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"

#include <cmath>
#include <memory>

namespace vx {

namespace {

constexpr double dTwoPi = 6.283185307179586;
// The latitude step of the meridian convergence.
constexpr double dConvergenceStep = 1e-06;
// Width of the key column of the report.
constexpr int nKeyWidth = 20;

bool bUnused(double v) {
    return v == -1.0 || v == -2.0;
}

// "key <dms>\n", or "key \n" for an unused parameter.
CVXString AngleLine(const char16_t *key, double v) {
    CVXString line;
    if (bUnused(v)) {
        line.Format(u"%s \n", key);
        return line;
    }
    CVXString dms;
    DmsToString(dms, v);
    line.Format(u"%-*s%s\n", nKeyWidth, key, dms);
    return line;
}

// "key <number>\n" with the given width and decimals; "key \n" for an unused parameter when
// bCheckUnused.
CVXString NumberLine(const char16_t *key, double v, int nDecimals, bool bCheckUnused) {
    CVXString line;
    if (bCheckUnused && bUnused(v))
        line.Format(u"%s \n", key);
    else
        line.Format(u"%-*s%*.*f\n", nKeyWidth, key, 16, nDecimals, v);
    return line;
}

CVXString TextLine(const char16_t *key, const CVXString &value) {
    CVXString line;
    line.Format(u"%-*s%s\n", nKeyWidth, key, value);
    return line;
}

} // namespace

std::atomic<bool> g_bProjectionCacheBypass{false};

void SetProjectionCacheBypass(bool bBypass) {
    g_bProjectionCacheBypass.store(bBypass, std::memory_order_relaxed);
}

double dIso(double p, double e) {
    const double es = e * std::sin(p);
    return std::log(std::tan(p / 2.0 + dPi / 4.0)) - (e / 2.0) * std::log((1.0 + es) / (1.0 - es));
}

SEccentric EccentricOf(double e) {
    SEccentric k;
    k.e = e;
    k.e2 = e * e;
    k.bSeries = std::fabs(e) <= dFastMaxEcc;
    double pw = k.e2;
    for (int i = 0; i < nEccTerms; ++i) {
        k.c[i] = pw / (2 * i + 1);
        pw *= k.e2;
    }
    k.dInvOneMinusE2 = 1.0 / (1.0 - k.e2);
    const double e2 = k.e2;
    const double e4 = e2 * e2;
    const double e6 = e4 * e2;
    const double e8 = e4 * e4;
    k.a2 = e2 / 2 + 5 * e4 / 24 + e6 / 12 + 13 * e8 / 360;
    k.a4 = 7 * e4 / 48 + 29 * e6 / 240 + 811 * e8 / 11520;
    k.a6 = 7 * e6 / 120 + 81 * e8 / 1120;
    k.a8 = 4279 * e8 / 161280;
    return k;
}

COutputSystem::COutputSystem(ProjectionType type, CEllipsoid *pEllipsoid, const SParameters &par,
                             const char *szEditFlags)
    : m_pEllipsoid(pEllipsoid), m_dLonOriginCM(par.dLonOriginCM), m_dLatOrigin(par.dLatOrigin),
      m_dStandPar1(par.dStandPar1), m_dStandPar2(par.dStandPar2),
      m_dProjScaleFac(par.dProjScaleFac), m_dFalseEasting(par.dFalseEasting),
      m_dFalseNorthing(par.dFalseNorthing), m_nProjection(type) {
    for (int i = 0; i < 8; ++i)
        m_bEdit[i] = szEditFlags[i] == '1';
    EnsureGeodesyResources();
    if (const SProjectionEntry *e = FindProjection(type)) {
        m_szProjectionName.LoadString(e->nDisplayId);
        m_szTrav3ProjectionName.LoadString(e->nKeywordId);
    }
}

bool CProjectionConstants::bPublish(std::unique_ptr<SBlock> &block) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_nBlocks == nMaxBlocks) return false;
    m_aBlocks[m_nBlocks] = std::move(block);
    m_pCurrent.store(m_aBlocks[m_nBlocks].get(), std::memory_order_release);
    ++m_nBlocks;
    return true;
}

void COutputSystem::EllToProjectionArray(const CEllCoord *in, CVXCoord *out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        EllToProjection(out[i], in[i]);
}

void COutputSystem::ProjectionToEllArray(const CVXCoord *in, CEllCoord *out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        ProjectionToEll(out[i], in[i]);
}

COutputSystem::~COutputSystem() {
    delete m_pEllipsoid;
}

void COutputSystem::SerializeB(CArchiveB &ar) {
    // Read once, before anything else: a second call would give "not set".
    const int schema = static_cast<int>(ar.GetObjectSchema());
    double *const fields[] = {&m_dLonOriginCM,  &m_dLatOrigin,    &m_dStandPar1,    &m_dStandPar2,
                              &m_dProjScaleFac, &m_dFalseEasting, &m_dFalseNorthing};
    if (ar.IsStoring()) {
        for (double *d : fields)
            ar << *d;
        ar << m_szProjectionName << m_szTrav3ProjectionName;
    } else {
        for (double *d : fields)
            ar >> *d;
        ar >> m_szProjectionName >> m_szTrav3ProjectionName;
    }
    m_pEllipsoid->SerializeB(ar, schema);
}

void COutputSystem::SerializeX(CArchiveX &ar) {
    ar.Serialize(u"m_dLonOriginCM", m_dLonOriginCM);
    ar.Serialize(u"m_dLatOrigin", m_dLatOrigin);
    ar.Serialize(u"m_dStandPar1", m_dStandPar1);
    ar.Serialize(u"m_dStandPar2", m_dStandPar2);
    ar.Serialize(u"m_dProjScaleFac", m_dProjScaleFac);
    ar.Serialize(u"m_dFalseEasting", m_dFalseEasting);
    ar.Serialize(u"m_dFalseNorthing", m_dFalseNorthing);
    ar.Serialize(u"m_szProjectionName", m_szProjectionName);
    ar.Serialize(u"m_szTrav3ProjectionName", m_szTrav3ProjectionName);
    m_pEllipsoid->SerializeX(ar);
}

void COutputSystem::Dump(CDumpContext &dc) const {
    dc << "COutputSystem " << m_szTrav3ProjectionName << " lon0 " << m_dLonOriginCM << " lat0 "
       << m_dLatOrigin << " par1 " << m_dStandPar1 << " par2 " << m_dStandPar2 << " k "
       << m_dProjScaleFac << " FE " << m_dFalseEasting << " FN " << m_dFalseNorthing << "\n";
}

void COutputSystem::ETRS2LOCAL(double lat, double lon, double h, double *x, double *y, double *z) {
    CVXCoord p;
    ETRS2LOCAL(p, CEllCoord(lat, lon, h));
    *x = p.dGetX();
    *y = p.dGetY();
    *z = p.dGetZ();
}

void COutputSystem::ETRS2LOCAL(CVXCoord &xy, CEllCoord ell) {
    EllToProjection(xy, ell);
}

void COutputSystem::LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) {
    ProjectionToEll(ell, xy);
}

double COutputSystem::dWrapLonFull(double d) {
    double q = d * 0.5 / dPi;
    q += q > 0.0 ? 0.5 : -0.5;
    q = q > 0.0 ? std::floor(q) : std::ceil(q);
    return d - q * dTwoPi;
}

void COutputSystem::SetProjected(CVXCoord &xy, double x, double y, double h) {
    xy.SetXY(x, y);
    xy.SetZ(h);
}

void COutputSystem::LatLonToXY(double lat, double lon, double *x, double *y) {
    CVXCoord p;
    EllToProjection(p, CEllCoord(lat, lon, 0.0));
    *x = p.dGetX();
    *y = p.dGetY();
}

void COutputSystem::XYToLatLon(double *lat, double *lon, double x, double y) {
    CEllCoord ell;
    ProjectionToEll(ell, CVXCoord(x, y));
    *lat = ell.dGetLat();
    *lon = ell.dGetLon();
}

double COutputSystem::dMeridianConvergence(double x, double y) {
    double lat = 0.0;
    double lon = 0.0;
    XYToLatLon(&lat, &lon, x, y);
    double x2 = 0.0;
    double y2 = 0.0;
    LatLonToXY(lat + dConvergenceStep, lon, &x2, &y2);
    const double dx = x2 - x;
    const double dy = y2 - y;
    if (dx == 0.0 && dy == 0.0) return dPi * 0.5;
    return -std::atan2(dx, dy);
}

double COutputSystem::ScaleFacEllToProj(const CVXCoord &p) {
    CVXCoord p1(p);
    if (std::isnan(p1.dGetZ())) p1.SetZ(0.0);
    CVXCoord p2(p1);
    p2.SetXY(p1.dGetX() + std::cos(dPi * 0.25), p1.dGetY() + std::sin(dPi * 0.25));
    CEllCoord e1;
    CEllCoord e2;
    ProjectionToEll(e1, p1);
    ProjectionToEll(e2, p2);
    CVXCoord g1;
    CVXCoord g2;
    EllToXYZ(g1, e1);
    EllToXYZ(g2, e2);
    const double dist = std::sqrt((g1.dGetX() - g2.dGetX()) * (g1.dGetX() - g2.dGetX()) +
                                  (g1.dGetY() - g2.dGetY()) * (g1.dGetY() - g2.dGetY()) +
                                  (g1.dGetZ() - g2.dGetZ()) * (g1.dGetZ() - g2.dGetZ()));
    return 1.0 / dist;
}

double COutputSystem::dScalefactorAtPoint(double x, double y) {
    return ScaleFacEllToProj(CVXCoord(x, y, 0.0, 1));
}

// Bowring's inverse formula is evaluated with the second point as its first operand: phi is the
// latitude of p2 and the differences run from p2 to p1. The distance is symmetric up to rounding.
double COutputSystem::ScaleFacEllDistToProj(const CVXCoord &p1, const CVXCoord &p2) {
    const double S = std::hypot(p1.dGetX() - p2.dGetX(), p1.dGetY() - p2.dGetY());
    const double a = dGetSemiMajAx();
    const double b = a * (1.0 - 1.0 / dGetInvFlatt());
    const double e2 = (a * a - b * b) / (b * b);
    CEllCoord g1;
    CEllCoord g2;
    ProjectionToEll(g1, p2);
    ProjectionToEll(g2, p1);
    const double phi = g1.dGetLat();
    const double dphi = g2.dGetLat() - g1.dGetLat();
    const double dlam = g2.dGetLon() - g1.dGetLon();
    const double c = std::cos(phi);
    const double A = std::sqrt(1.0 + e2 * c * c * c * c);
    const double B = std::sqrt(1.0 + e2 * c * c);
    const double C = std::sqrt(1.0 + e2);
    const double w = dlam * A * 0.5;
    const double D =
        dphi / (2.0 * B) *
        (1.0 + 0.25 * 3.0 * e2 * dphi / (B * B) * std::sin(2.0 * phi + 2.0 * dphi / 3.0));
    const double E = std::sin(D) * std::cos(w);
    const double F = std::sin(w) * (B * c * std::cos(D) - std::sin(phi) * std::sin(D)) / A;
    const double sigma = 2.0 * std::asin(std::sqrt(E * E + F * F));
    const double s = a * C * sigma / (B * B);
    return S / s;
}

CVXString COutputSystem::szGetTRAV3Projection() const {
    return TextLine(u"Projection", m_szTrav3ProjectionName);
}
CVXString COutputSystem::szGetTRAV3LonOriginCM() const {
    return AngleLine(u"LonOriginCm", m_dLonOriginCM);
}
CVXString COutputSystem::szGetTRAV3LatOrigin() const {
    return AngleLine(u"LatOrigin", m_dLatOrigin);
}
CVXString COutputSystem::szGetTRAV3StandPar1() const {
    return AngleLine(u"StandPar1", m_dStandPar1);
}
CVXString COutputSystem::szGetTRAV3StandPar2() const {
    return AngleLine(u"StandPar2", m_dStandPar2);
}
CVXString COutputSystem::szGetTRAV3ProjScaleFac() const {
    return NumberLine(u"ProjScaleFac", m_dProjScaleFac, 9, true);
}
CVXString COutputSystem::szGetTRAV3FalseEasting() const {
    return NumberLine(u"FalseEasting", m_dFalseEasting, 4, true);
}
CVXString COutputSystem::szGetTRAV3FalseNorthing() const {
    return NumberLine(u"FalseNorthing", m_dFalseNorthing, 4, true);
}
CVXString COutputSystem::szGetTRAV3Ellipsoid() const {
    return TextLine(u"Ellipsoid", m_pEllipsoid->szGetTrav3Name());
}
CVXString COutputSystem::szGetTRAV3SemiMajAx() const {
    return NumberLine(u"SemiMajAx", dGetSemiMajAx(), 4, false);
}
CVXString COutputSystem::szGetTRAV3InvFlatt() const {
    return NumberLine(u"InvFlatt", dGetInvFlatt(), 9, false);
}

bool bGetProjectionType(const CVXString &keyword, ProjectionType &type) {
    EnsureGeodesyResources();
    for (const SProjectionEntry &e : ProjectionTable()) {
        if (e.nType == kNoProjectionType) continue;
        CVXString text;
        text.LoadString(e.nKeywordId);
        if (keyword.Compare(text) == 0) {
            type = static_cast<ProjectionType>(e.nType);
            return true;
        }
    }
    return false;
}

// What each type takes from the arguments is written beside its maker in ProjectionTable.cpp.
COutputSystem *pGetNewProjection(ProjectionType type, double lon, double lat, double par1,
                                 double par2, double scale, double east, double north,
                                 const CEllipsoid *pEllipsoid) {
    const SProjectionEntry *e = FindProjection(type);
    if (e == nullptr || (e->bNeedsEllipsoid && pEllipsoid == nullptr)) return nullptr;
    return e->pCreate({lon, lat, par1, par2, scale, east, north, pEllipsoid});
}

COutputSystem *pGetNewProjection(const CVXString &keyword, double lon, double lat, double par1,
                                 double par2, double scale, double east, double north,
                                 const CVXString &ellipsoidKeyword, double a, double invFlatt) {
    ProjectionType type = PT_NONE;
    if (!bGetProjectionType(keyword, type)) return nullptr;
    const std::unique_ptr<CEllipsoid> pEllipsoid(pGetNewEllipsoid(ellipsoidKeyword, a, invFlatt));
    return pGetNewProjection(type, lon, lat, par1, par2, scale, east, north, pEllipsoid.get());
}

} // namespace vx
