#include "PointConverter.h"

#include "geodesy/Angles.h"
#include "geodesy/Geoid.h"

#include <cmath>

namespace vxtool::convert {

namespace {

using namespace vx;

constexpr double kHalfTurnDeg = 180.0;
constexpr double kFullTurnDeg = 360.0;
// The section code of a plain point of a line.
constexpr char kPointCode = 1;

const char *const kNoResult = "the point has no finite result in this projection";
const char *const kNoGeoid = "the geoid model has no height here: the height cannot be converted";

bool bFinite(double a, double b, double c) {
    return std::isfinite(a) && std::isfinite(b) && std::isfinite(c);
}

} // namespace

double NormalisedLongitude(double lonDeg) {
    lonDeg = std::fmod(lonDeg, kFullTurnDeg);
    if (lonDeg > kHalfTurnDeg) lonDeg -= kFullTurnDeg;
    if (lonDeg <= -kHalfTurnDeg) lonDeg += kFullTurnDeg;
    return lonDeg;
}

CPointConverter::CPointConverter(COutputSystem &projection, const SKeyword &keyword, bool bForward,
                                 bool bGeoid)
    : m_projection(projection), m_keyword(keyword), m_bForward(bForward), m_bGeoid(bGeoid) {}

void CPointConverter::Convert(std::vector<SPoint> &points) {
    if (m_keyword.kind == KeywordKind::plain) {
        if (m_bForward)
            PlainForward(points);
        else
            PlainBackward(points);
    } else {
        for (SPoint &p : points)
            m_bForward ? DatumForward(p) : DatumBackward(p);
    }
    for (SPoint &p : points)
        if (!p.error && !bFinite(p.ra, p.rb, p.rh)) p.error = kNoResult;
}

void CPointConverter::PlainForward(std::vector<SPoint> &points) {
    m_ell.clear();
    for (const SPoint &p : points)
        m_ell.emplace_back(DegToRad(p.a), DegToRad(p.b), p.h);
    m_xy.resize(points.size());
    m_projection.EllToProjectionArray(m_ell.data(), m_xy.data(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i].ra = m_xy[i].dGetX();
        points[i].rb = m_xy[i].dGetY();
        points[i].rh = points[i].h; // a plain projection carries the height over
    }
}

void CPointConverter::PlainBackward(std::vector<SPoint> &points) {
    m_xy.clear();
    for (const SPoint &p : points)
        m_xy.emplace_back(p.a, p.b, p.h, kPointCode);
    m_ell.resize(points.size());
    m_projection.ProjectionToEllArray(m_xy.data(), m_ell.data(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        points[i].ra = RadToDeg(m_ell[i].dGetLat());
        points[i].rb = NormalisedLongitude(RadToDeg(m_ell[i].dGetLon()));
        points[i].rh = points[i].h;
    }
}

bool CPointConverter::bGeoidHeight(double latDeg, double lonDeg, double &n) const {
    n = dGetGeoidHeight(m_keyword.nGeoidModel, latDeg, lonDeg);
    return n != dNoGeoidHeight;
}

void CPointConverter::DatumForward(SPoint &p) {
    CVXCoord xy;
    m_projection.ETRS2LOCAL(xy, CEllCoord(DegToRad(p.a), DegToRad(p.b), p.h));
    p.ra = xy.dGetX();
    p.rb = xy.dGetY();
    p.rh = p.h;
    double n = 0.0;
    if (m_bGeoid && p.bHeight) {
        if (bGeoidHeight(p.a, p.b, n))
            p.rh = p.h - n;
        else
            p.error = kNoGeoid;
    }
}

// Two runs of the chain: the first, at height 0 on the local ellipsoid, finds the ETRS89
// height of the local ellipsoid there (its separation s); the second starts from the local
// height that belongs to the wanted ETRS89 height h, h - s. So the horizontal result is the one
// whose forward conversion at height h gives the input again, to well below 0.1 mm (s changes
// by millimetres per kilometre).
void CPointConverter::DatumBackward(SPoint &p) {
    CEllCoord first;
    m_projection.LOCAL2ETRS(first, CVXCoord(p.a, p.b, 0.0, kPointCode));
    const double latDeg = RadToDeg(first.dGetLat());
    const double lonDeg = RadToDeg(first.dGetLon());
    double n = 0.0;
    const bool bN = m_bGeoid && bGeoidHeight(latDeg, lonDeg, n);
    // The chain adds N where the model has it; the separation is what remains.
    const double s = first.dGetHgt() - (bN ? n : 0.0);
    double h = p.h;
    if (m_bGeoid && p.bHeight) {
        if (!bN) p.error = kNoGeoid;
        h = p.h + n;
    }
    CEllCoord ell;
    m_projection.LOCAL2ETRS(ell, CVXCoord(p.a, p.b, h - s, kPointCode));
    p.ra = RadToDeg(ell.dGetLat());
    p.rb = NormalisedLongitude(RadToDeg(ell.dGetLon()));
    p.rh = h;
    if (m_bGeoid && p.bHeight && bN && bGeoidHeight(p.ra, p.rb, n)) p.rh = p.h + n;
}

} // namespace vxtool::convert
