// Helpers of the clipping tests: the vertices of result pieces, and the exact area of a closed
// line with straight stretches and arcs, computed here on its own (the library's own area
// flattens arcs to a chord tolerance first).
#pragma once

#include "geometry/VXCoordArr.h"

#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace vxtest {

using XYLijst = std::vector<std::pair<double, double>>;

inline XYLijst XY(const vx::CVXCoordArr &arr) {
    XYLijst xy;
    for (int i = 0; i < arr.GetSize(); ++i)
        xy.emplace_back(arr.Pt(i).m_dX, arr.Pt(i).m_dY);
    return xy;
}

inline std::vector<XYLijst> Stukken(const vx::CVXCoordArrList &lijst) {
    std::vector<XYLijst> stukken;
    for (vx::POSITION pos = lijst.GetHeadPosition(); pos != nullptr;)
        stukken.push_back(XY(*lijst.GetNext(pos)));
    return stukken;
}

// (1/2) a x b.
inline double dHalfKruis(double ax, double ay, double bx, double by) {
    return (ax * by - ay * bx) / 2.0;
}

// The signed contribution (1/2) of x dy - y dx along the arc S -> M -> E. With centre C, radius
// r and signed sweep t (counter-clockwise positive): (1/2) C x (E - S) + (1/2) r^2 t.
inline double dBoogBijdrage(const vx::CVXCoord &S, const vx::CVXCoord &M, const vx::CVXCoord &E) {
    // The centre: equal distance to S, M and E (two perpendicular bisectors).
    const double ax = M.m_dX - S.m_dX, ay = M.m_dY - S.m_dY;
    const double bx = E.m_dX - S.m_dX, by = E.m_dY - S.m_dY;
    const double d = 2.0 * (ax * by - ay * bx);
    const double a2 = ax * ax + ay * ay, b2 = bx * bx + by * by;
    const double cx = S.m_dX + (by * a2 - ay * b2) / d;
    const double cy = S.m_dY + (ax * b2 - bx * a2) / d;
    const double r = std::hypot(S.m_dX - cx, S.m_dY - cy);
    const double twee = 2.0 * std::numbers::pi;
    auto hoek = [&](const vx::CVXCoord &p) { return std::atan2(p.m_dY - cy, p.m_dX - cx); };
    auto ccw = [&](double van, double tot) { return std::fmod(tot - van + 2.0 * twee, twee); };
    const double dE = ccw(hoek(S), hoek(E)), dM = ccw(hoek(S), hoek(M));
    const double t = dM < dE ? dE : dE - twee;
    return dHalfKruis(cx, cy, E.m_dX - S.m_dX, E.m_dY - S.m_dY) + r * r * t / 2.0;
}

// The area enclosed by a closed line of straight stretches (codes 0, 1, 2) and arcs (8 8).
inline double dExactOpp(const vx::CVXCoordArr &arr) {
    double dSom = 0.0;
    for (int i = 0; i + 1 < arr.GetSize();) {
        const vx::CVXCoord &S = arr.Pt(i);
        if (arr.Pt(i + 1).nGetSectie() == vx::nSectieBoog && i + 2 < arr.GetSize()) {
            dSom += dBoogBijdrage(S, arr.Pt(i + 1), arr.Pt(i + 2));
            i += 2;
        } else {
            const vx::CVXCoord &E = arr.Pt(i + 1);
            dSom += dHalfKruis(S.m_dX, S.m_dY, E.m_dX, E.m_dY);
            i += 1;
        }
    }
    return std::fabs(dSom);
}

inline bool bHeeftBoog(const vx::CVXCoordArr &arr) {
    for (int i = 0; i < arr.GetSize(); ++i)
        if (arr.Pt(i).nGetSectie() == vx::nSectieBoog) return true;
    return false;
}

} // namespace vxtest
