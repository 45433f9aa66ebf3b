#include "Lines.h"

#include "geometry/Tolerances.h"

#include <charconv>
#include <cmath>
#include <memory>

namespace vxinterchange {

namespace {

using vx::CVXCoord;
using vx::CVXCoordArr;

// The coefficient table of nCubSplin, freed with delete[].
struct CoefDeleter {
    void operator()(double (*p)[4][2]) const { delete[] p; }
};
using CoefTable = std::unique_ptr<double[][4][2], CoefDeleter>;

void AddStraight(CVXCoordArr &out, const CVXCoord &p) {
    const int i = out.Add(&p);
    out.GetAt(i)->SetSectie(vx::nSectieRecht);
}

// The height between two points at parameter t, when both have one.
double HeightBetween(const CVXCoord &a, const CVXCoord &b, double t) {
    if (std::isnan(a.m_dZ) || std::isnan(b.m_dZ)) return vx::dNaN;
    return a.m_dZ + (b.m_dZ - a.m_dZ) * t;
}

// Appends the chords of the spline run after point i (its start is in `out` already); returns
// the index of the run's last point.
int AddSplineRun(const CVXCoordArr &line, int i, CVXCoordArr &out) {
    const int runLength = line.nTelSplinePunten(i);
    double(*raw)[4][2] = nullptr;
    const int intervals = line.nCubSplin(i, raw);
    const CoefTable coef(raw);
    for (int k = 0; k < runLength; ++k) {
        const CVXCoord &from = line.Pt(i + k);
        const CVXCoord &to = line.Pt(i + k + 1);
        for (int s = 1; intervals == runLength && s < kSplineChords; ++s) {
            const double t = static_cast<double>(s) / kSplineChords;
            CVXCoord p;
            p.Horner(k, coef.get(), t);
            AddStraight(out, CVXCoord(p.m_dX, p.m_dY, HeightBetween(from, to, t),
                                      static_cast<char>(vx::nSectieRecht)));
        }
        AddStraight(out, to);
    }
    return i + runLength;
}

} // namespace

std::vector<Stretch> StretchesOf(const CVXCoordArr &line) {
    std::vector<Stretch> out;
    for (int i = 0; i < line.GetSize() - 1;) {
        if (line.bBoog(i)) {
            out.push_back({true, i + 1, i + 2});
            i += 2;
        } else {
            out.push_back({false, -1, i + 1});
            ++i;
        }
    }
    return out;
}

bool IsCircle(const CVXCoordArr &line) {
    return line.bCirkel();
}

bool IsRing(const CVXCoordArr &line) {
    constexpr int kFewestRingPoints = 4;
    if (IsCircle(line)) return true;
    if (line.GetSize() < kFewestRingPoints) return false;
    const CVXCoord &first = line.Pt(0);
    const CVXCoord &last = line.Pt(line.GetSize() - 1);
    return first.m_dX == last.m_dX && first.m_dY == last.m_dY;
}

bool AllHaveZ(const CVXCoordArr &line) {
    for (int i = 0; i < line.GetSize(); ++i)
        if (std::isnan(line.Pt(i).m_dZ)) return false;
    return true;
}

CVXCoordArr WithoutSplines(const CVXCoordArr &line) {
    if (IsCircle(line) || line.GetSize() == 0) return line;
    CVXCoordArr out;
    out.Add(&line.Pt(0));
    for (int i = 0; i < line.GetSize() - 1;) {
        if (line.bSpline(i)) {
            i = AddSplineRun(line, i, out);
        } else {
            out.Add(&line.Pt(i + 1));
            ++i;
        }
    }
    return out;
}

bool OppositePoint(const CVXCoordArr &circle, CVXCoord &opposite) {
    const CVXCoord *const pts[3] = {&circle.Pt(0), &circle.Pt(1), &circle.Pt(2)};
    CVXCoord centre;
    if (!centre.bMiddelPunt(pts)) return false;
    const CVXCoord computed(2.0 * centre.m_dX - pts[0]->m_dX, 2.0 * centre.m_dY - pts[0]->m_dY,
                            pts[2]->m_dZ, static_cast<char>(vx::nSectieCirkel));
    opposite = pts[2]->dDist(computed) < vx::dPuntTol ? *pts[2] : computed;
    return true;
}

std::string NumberText(double value) {
    char buffer[64];
    const std::to_chars_result r = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, r.ptr);
}

} // namespace vxinterchange
