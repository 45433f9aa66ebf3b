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

// The circle through an arc S -> M -> E: centre, radius, the start angle and the signed sweep
// (counter-clockwise positive) from S to E through M.
struct BoogMaat {
    double cx, cy, r, a0, t;
};

inline BoogMaat Boog(const vx::CVXCoord &S, const vx::CVXCoord &M, const vx::CVXCoord &E) {
    // The centre lies at equal distance from S, M and E (two perpendicular bisectors).
    const double ax = M.m_dX - S.m_dX, ay = M.m_dY - S.m_dY;
    const double bx = E.m_dX - S.m_dX, by = E.m_dY - S.m_dY;
    const double d = 2.0 * (ax * by - ay * bx);
    const double a2 = ax * ax + ay * ay, b2 = bx * bx + by * by;
    BoogMaat b{};
    b.cx = S.m_dX + (by * a2 - ay * b2) / d;
    b.cy = S.m_dY + (ax * b2 - bx * a2) / d;
    b.r = std::hypot(S.m_dX - b.cx, S.m_dY - b.cy);
    const double twee = 2.0 * std::numbers::pi;
    auto hoek = [&](const vx::CVXCoord &p) { return std::atan2(p.m_dY - b.cy, p.m_dX - b.cx); };
    auto ccw = [&](double van, double tot) { return std::fmod(tot - van + 2.0 * twee, twee); };
    b.a0 = hoek(S);
    const double dE = ccw(b.a0, hoek(E)), dM = ccw(b.a0, hoek(M));
    b.t = dM < dE ? dE : dE - twee;
    return b;
}

// The signed contribution (1/2) of x dy - y dx along the arc S -> M -> E:
// (1/2) C x (E - S) + (1/2) r^2 t.
inline double dBoogBijdrage(const vx::CVXCoord &S, const vx::CVXCoord &M, const vx::CVXCoord &E) {
    const BoogMaat b = Boog(S, M, E);
    return dHalfKruis(b.cx, b.cy, E.m_dX - S.m_dX, E.m_dY - S.m_dY) + b.r * b.r * b.t / 2.0;
}

// The signed area (counter-clockwise positive) enclosed by a closed line of straight stretches
// (codes 0, 1, 2) and arcs (8 8).
inline double dExactOppTeken(const vx::CVXCoordArr &arr) {
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
    return dSom;
}

inline double dExactOpp(const vx::CVXCoordArr &arr) {
    return std::fabs(dExactOppTeken(arr));
}

// A straight copy of a line with arcs or of a circle: each arc becomes chords of at most dStap
// radians. The area it loses is exactly the sum over the arcs of r^2/2 (|t| - n sin(|t|/n));
// dVerlies adds it up.
inline vx::CVXCoordArr Afvlakken(const vx::CVXCoordArr &arr, double dStap, double &dVerlies) {
    vx::CVXCoordArr vlak;
    dVerlies = 0.0;
    auto voeg = [&](double x, double y) {
        const vx::CVXCoord p(
            x, y, static_cast<char>(vlak.GetSize() == 0 ? vx::nSectieStart : vx::nSectieRecht));
        vlak.Add(&p);
    };
    auto boog = [&](BoogMaat b) {
        const int n = static_cast<int>(std::ceil(std::fabs(b.t) / dStap));
        for (int k = 1; k < n; ++k)
            voeg(b.cx + b.r * std::cos(b.a0 + b.t * k / n),
                 b.cy + b.r * std::sin(b.a0 + b.t * k / n));
        dVerlies += b.r * b.r / 2.0 * (std::fabs(b.t) - n * std::sin(std::fabs(b.t) / n));
    };
    voeg(arr.Pt(0).m_dX, arr.Pt(0).m_dY);
    if (arr.bCirkel()) {
        // The whole circle through the first three points, in their sense.
        BoogMaat b = Boog(arr.Pt(0), arr.Pt(1), arr.Pt(2));
        b.t = std::copysign(2.0 * std::numbers::pi, b.t);
        boog(b);
        voeg(arr.Pt(0).m_dX, arr.Pt(0).m_dY);
        return vlak;
    }
    for (int i = 0; i + 1 < arr.GetSize();) {
        if (arr.Pt(i + 1).nGetSectie() == vx::nSectieBoog && i + 2 < arr.GetSize()) {
            boog(Boog(arr.Pt(i), arr.Pt(i + 1), arr.Pt(i + 2)));
            i += 2;
        } else {
            i += 1;
        }
        voeg(arr.Pt(i).m_dX, arr.Pt(i).m_dY);
    }
    return vlak;
}

inline bool bHeeftBoog(const vx::CVXCoordArr &arr) {
    for (int i = 0; i < arr.GetSize(); ++i)
        if (arr.Pt(i).nGetSectie() == vx::nSectieBoog) return true;
    return false;
}

} // namespace vxtest
