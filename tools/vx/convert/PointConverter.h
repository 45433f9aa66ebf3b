// The coordinate side of vx convert: runs of points through one projection, in one direction.
//
// A plain keyword runs the projection alone (EllToProjection, ProjectionToEll) over the whole
// run through the library's array entries. A national grid runs its full chain from ETRS89
// (ETRS2LOCAL, LOCAL2ETRS) point by point, with the heights handled here rather than by the
// chain: without a geoid model a height passes through unchanged in both directions, with one
// H = h - N going in and h = H + N coming back. The chain's own way back counts the grid height
// as a height on the local ellipsoid and so adds the separation of the two ellipsoids (some
// 43 m in the Netherlands); the library keeps that, and the tool must not pass it on.
#pragma once

#include "Keywords.h"

#include "geodesy/Ellipsoid.h"
#include "geometry/VXCoord.h"

#include <vector>

namespace vxtool::convert {

struct SPoint {
    double a = 0.0, b = 0.0, h = 0.0;    // in: lat lon h (degrees) or x y z (metres)
    bool bHeight = false;                // the line has a height
    double ra = 0.0, rb = 0.0, rh = 0.0; // out: x y z or lat lon h
    const char *error = nullptr;         // why the point has no result
};

class CPointConverter {
public:
    // `bGeoid`: a geoid model is registered under the keyword's model number.
    CPointConverter(vx::COutputSystem &projection, const SKeyword &keyword, bool bForward,
                    bool bGeoid);

    void Convert(std::vector<SPoint> &points);

private:
    void PlainForward(std::vector<SPoint> &points);
    void PlainBackward(std::vector<SPoint> &points);
    void DatumForward(SPoint &p);
    void DatumBackward(SPoint &p);
    // The geoid height N at a point in degrees, or false when the model has none there.
    bool bGeoidHeight(double latDeg, double lonDeg, double &n) const;

    vx::COutputSystem &m_projection;
    const SKeyword &m_keyword;
    bool m_bForward;
    bool m_bGeoid;
    std::vector<vx::CEllCoord> m_ell;
    std::vector<vx::CVXCoord> m_xy;
};

// A longitude in degrees brought into (-180, 180].
double NormalisedLongitude(double lonDeg);

} // namespace vxtool::convert
