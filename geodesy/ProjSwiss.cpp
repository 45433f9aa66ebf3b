#include "geodesy/ProjSwiss.h"

#include "geodesy/Angles.h"
#include "geodesy/ProjMath.h"
#include "geometry/VXCoord.h"

#include <cmath>

namespace vx {

namespace {

constexpr double u = dUnusedParameter;

// The fixed constants of the Swiss projection sphere. The squared eccentricity is used instead
// of the ellipsoid's, so the results keep the digits of the published definition.
constexpr double dE2 = 0.006674372230614;
constexpr double dAlpha = 1.00072913843038;
constexpr double dHalfAlpha = 0.50036456921519;
constexpr double dInvAlpha = 0.9992713928251118;
constexpr double dK = 0.0030667323772751;
constexpr double dR = 6378815.9036499998;
constexpr double dHalfR = 3189407.9518249999;

double Eccentricity() {
    return std::sqrt(dE2);
}

} // namespace

// The spherical latitude of origin b0 with its sine and cosine, kept per latitude of origin.
struct SSwissOrigin {
    double b0, sinB0, cosB0;
};

const SSwissOrigin &CProjection_SWISS::Origin(std::optional<SSwissOrigin> &scratch) const {
    const double lat0 = m_dLatOrigin;
    return KeptConstants(
        m_Constants, scratch,
        [lat0] {
            const double b0 = std::asin(std::sin(lat0) / dAlpha);
            return SSwissOrigin{b0, std::sin(b0), std::cos(b0)};
        },
        lat0);
}

CProjection_SWISS::CProjection_SWISS() : CProjection_SWISS(2600000.0, 1200000.0) {}

CProjection_SWISS::CProjection_SWISS(double east, double north)
    : COutputSystem(PT_SWISS, new CEllipsoid(CEllipsoid::BESSEL_1841),
                    {DegToRad(7.0 + 26.0 / 60 + 22.5 / 3600), DegToRad(46.95240555555556), u, u,
                     1.0, east, north},
                    "00000110") {}

COutputSystem *CProjection_SWISS::pCopy() const {
    return new CProjection_SWISS(m_dFalseEasting, m_dFalseNorthing);
}

void CProjection_SWISS::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    const double e = Eccentricity();
    const double lat = ell.dGetLat();
    const double es = e * std::sin(lat);
    const double q = std::log((1.0 + es) / (1.0 - es)) * e * dHalfAlpha +
                     std::log(std::tan(dPi / 4.0 - lat / 2.0)) * dAlpha;
    const double b = 2.0 * (std::atan(std::exp(dK - q)) - dPi / 4.0);
    std::optional<SSwissOrigin> scratch;
    const SSwissOrigin &o = Origin(scratch);
    // No wrapping here: the Swiss grid never reaches the antimeridian.
    const double l = (ell.dGetLon() - m_dLonOriginCM) * dAlpha;
    const double sb = std::sin(b) * o.cosB0 - std::cos(b) * o.sinB0 * std::cos(l);
    const double x = std::atan(std::sin(l) / (std::tan(b) * o.sinB0 + std::cos(l) * o.cosB0)) * dR +
                     m_dFalseEasting;
    const double y = std::log((1.0 + sb) / (1.0 - sb)) * dHalfR + m_dFalseNorthing;
    SetProjected(xy, x, y, ell.dGetHgt());
}

void CProjection_SWISS::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    const double e = Eccentricity();
    std::optional<SSwissOrigin> scratch;
    const SSwissOrigin &o = Origin(scratch);
    const double bb = 2.0 * (std::atan(std::exp((xy.dGetY() - m_dFalseNorthing) / dR)) - dPi / 4.0);
    const double l = (xy.dGetX() - m_dFalseEasting) / dR;
    const double b = std::asin(std::sin(bb) * o.cosB0 + std::cos(bb) * o.sinB0 * std::cos(l));
    const double lon =
        std::atan(std::sin(l) / (o.cosB0 * std::cos(l) - std::tan(bb) * o.sinB0)) / dAlpha +
        m_dLonOriginCM;
    const double iso = (std::log(std::tan(b / 2.0 + dPi / 4.0)) - dK) * dInvAlpha;
    double p = b;
    for (int i = 0; i < nLatIterRounds; ++i) {
        const double next =
            2.0 * std::atan(std::exp(
                      std::log(std::tan(std::asin(e * std::sin(p)) / 2.0 + dPi / 4.0)) * e + iso)) -
            dPi / 2.0;
        const double change = std::fabs(next - p);
        p = next;
        if (change <= dLatIterTol) break;
    }
    ell.SetLatLon(p, dLonOut(lon, false));
    ell.SetHgt(xy.dGetZ());
}

VX_IMPLEMENT_SERIAL(CProjection_SWISS, nProjectionSchema)

} // namespace vx
