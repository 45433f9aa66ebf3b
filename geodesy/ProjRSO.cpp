#include "geodesy/ProjRSO.h"

#include "geodesy/Angles.h"
#include "geodesy/ProjMath.h"
#include "geometry/VXCoord.h"

#include <cmath>

namespace vx {

namespace {

constexpr double u = dUnusedParameter;

// Below this magnitude a cosine or denominator counts as zero ...
constexpr double dRSOZero = 1e-30;
// ... and the arctangent's argument becomes this limit, so the pole of the line raises no fault.
constexpr double dRSOLimit = 1e+30;
// dIsoToGeoLat starts at four degrees and stops when the step is below this ...
constexpr double dIsoTol = 1e-15;
// ... or, far from the tropics where the plain step no longer contracts, after this many steps,
// so that a point off the projection's area ends instead of hanging.
constexpr int nIsoMaxRounds = 100;

// atan(num / den), with a vanishing denominator taken as the limit.
double GuardedAtan(double num, double den) {
    if (std::fabs(den) < dRSOZero) return std::atan(dRSOLimit);
    return std::atan(num / den);
}

} // namespace

// The constants of the aposphere for one ellipsoid, origin and scale.
struct SRSOConst {
    double e;     // first eccentricity
    double B;     // exponent of the conformal mapping
    double A;     // radius of the aposphere, times the scale
    double lnH;   // acosh(D) - B Iso(lat0): the offset of the isometric latitudes
    double dLon0; // longitude of the natural origin minus that of the centre
};

namespace {

SRSOConst RSOConst(double a, double invFlatt, double lat0, double k, double g) {
    const double b = (1.0 - 1.0 / invFlatt) * a;
    const double e2 = (a * a - b * b) / (a * a);
    const double E = (a * a - b * b) / (b * b);
    const double s0 = std::sin(lat0);
    const double c0 = std::cos(lat0);
    const double M0 = a * (1.0 - e2) / std::pow(1.0 - e2 * s0 * s0, 1.5);
    const double N0 = a / std::sqrt(1.0 - e2 * s0 * s0);
    SRSOConst c{};
    c.e = std::sqrt(e2);
    c.B = std::sqrt(1.0 + E * c0 * c0 * c0 * c0);
    c.A = k * c.B * std::sqrt(M0 * N0);
    const double D = c.B * std::sqrt(M0 * N0) / (N0 * c0);
    const double lnF = acosh(D);
    c.lnH = lnF - c.B * CProjection_RSO::dGeoLatToIso(lat0, c.e);
    const double G = (std::exp(lnF) - std::exp(-lnF)) / 2.0;
    c.dLon0 = -std::asin(G * std::tan(g)) / c.B;
    return c;
}

} // namespace

CProjection_RSO::CProjection_RSO(ProjectionType type, CEllipsoid *pEllipsoid,
                                 const SParameters &par, const char *szEditFlags, double dSkew)
    : COutputSystem(type, pEllipsoid, par, szEditFlags), m_dSkew(dSkew) {}

double CProjection_RSO::dGeoLatToIso(double lat, double e) {
    return dIso(lat, e);
}

double CProjection_RSO::dIsoToGeoLat(double iso, double e) {
    double p = 4.0 * dPi / 180.0;
    for (int i = 0; i < nIsoMaxRounds; ++i) {
        const double step = iso - dIso(p, e);
        p = p + step;
        if (std::fabs(step) < dIsoTol) break;
    }
    return p;
}

const SRSOConst &CProjection_RSO::Constants(std::optional<SRSOConst> &scratch) const {
    const double a = dGetSemiMajAx();
    const double invFlatt = dGetInvFlatt();
    return KeptConstants(
        m_Constants, scratch,
        [&] { return RSOConst(a, invFlatt, m_dLatOrigin, m_dProjScaleFac, m_dSkew); }, a, invFlatt,
        m_dLatOrigin, m_dProjScaleFac, m_dSkew);
}

void CProjection_RSO::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    const double g = m_dSkew;
    std::optional<SRSOConst> scratch;
    const SRSOConst &c = Constants(scratch);
    const double Q = std::exp(c.lnH + c.B * dGeoLatToIso(ell.dGetLat(), c.e));
    const double S = (Q - 1.0 / Q) / 2.0;
    const double T = (Q + 1.0 / Q) / 2.0;
    const double BL = c.B * (dWrapLon(ell.dGetLon()) - c.dLon0);
    const double V = std::sin(BL);
    const double U = (-V * std::cos(g) + S * std::sin(g)) / T;
    const double v = c.A * std::log((1.0 - U) / (1.0 + U)) / (2.0 * c.B);
    const double uu = c.A * GuardedAtan(S * std::cos(g) + V * std::sin(g), std::cos(BL)) / c.B;
    const double x = v * std::cos(g) + uu * std::sin(g) + m_dFalseEasting;
    const double y = uu * std::cos(g) - v * std::sin(g) + m_dFalseNorthing;
    SetProjected(xy, x, y, ell.dGetHgt());
}

void CProjection_RSO::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    const double g = m_dSkew;
    std::optional<SRSOConst> scratch;
    const SRSOConst &c = Constants(scratch);
    const double dx = xy.dGetX() - m_dFalseEasting;
    const double dy = xy.dGetY() - m_dFalseNorthing;
    const double v = dx * std::cos(g) - dy * std::sin(g);
    const double uu = dx * std::sin(g) + dy * std::cos(g);
    const double Q = std::exp(-c.B * v / c.A);
    const double S = (Q - 1.0 / Q) / 2.0;
    const double T = (Q + 1.0 / Q) / 2.0;
    const double Bu = c.B * uu / c.A;
    const double V = std::sin(Bu);
    const double U = (V * std::cos(g) + S * std::sin(g)) / T;
    const double iso = (0.5 * std::log((1.0 + U) / (1.0 - U)) - c.lnH) / c.B;
    const double lat = dIsoToGeoLat(iso, c.e);
    const double lon = m_dLonOriginCM + c.dLon0 -
                       GuardedAtan(S * std::cos(g) - V * std::sin(g), std::cos(Bu)) / c.B;
    ell.SetLatLon(lat, dLonOut(lon, false));
    ell.SetHgt(xy.dGetZ());
}

CProjection_BRSO::CProjection_BRSO() : CProjection_BRSO(2000000.0, 5000000.0) {}

CProjection_BRSO::CProjection_BRSO(double east, double north)
    : CProjection_RSO(PT_BRSO, new CEllipsoid(CEllipsoid::TIMBALAI_EVEREST),
                      {DegToRad(115.0), DegToRad(4.0), u, u, 0.99984, east, north}, "00000110",
                      dPi * 53.130102222 / 180.0) {}

COutputSystem *CProjection_BRSO::pCopy() const {
    return new CProjection_BRSO(m_dFalseEasting, m_dFalseNorthing);
}

CProjection_MRSO::CProjection_MRSO()
    : CProjection_RSO(PT_MRSO, new CEllipsoid(CEllipsoid::MODIFIED_EVEREST),
                      {DegToRad(102.25), DegToRad(4.0), u, u, 0.99984, 804671.29980000004, 0.0},
                      "00000000", dPi * -36.869897646 / 180.0) {}

COutputSystem *CProjection_MRSO::pCopy() const {
    return new CProjection_MRSO();
}

VX_IMPLEMENT_SERIAL(CProjection_BRSO, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_MRSO, nProjectionSchema)

} // namespace vx
