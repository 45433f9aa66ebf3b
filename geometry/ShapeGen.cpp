// Shape generators of CVXCoordArr: Square turns a rough outline into a right-angled one,
// RemoveColinear thins a line, VoldoetBoogDeel judges whether a run of points may be one arc.
//
// Square: every stretch gets a direction modulo π and an angular tolerance that is tight for long
// stretches and wide for short ones. Taken longest first, stretches group by direction; a group's
// direction is the mean weighted by the squared lengths. Two groups nearly perpendicular (within
// 5π/200 of a right angle) are made exactly perpendicular, their common turn weighted by their
// summed lengths. Each stretch then becomes a carrier through its midpoint in its new direction,
// and neighbouring carriers meet in the new vertices.
#include "geometry/Extents.h"
#include "geometry/Tolerances.h"
#include "geometry/VXCoordArr.h"
#include "platform/Assert.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace vx {

namespace {

constexpr double dPi = std::numbers::pi;
constexpr double d2Pi = 2.0 * dPi;
constexpr double dHalfPi = dPi / 2.0;
constexpr double d3HalfPi = 4.71238898038469; // 3π/2 as the drawings were squared with it

// The angular tolerance of a stretch of length L: (100 / (L + 1)² + 5) · π / 200.
constexpr double dTolSchaal = 100.0;
constexpr double dTolBasis = 5.0;
constexpr double dTolDeel = dPi / 200.0;
// Two group directions this far apart, inclusive, are meant to be perpendicular.
constexpr double dHaaksMin = 95.0 * dPi / 200.0;
constexpr double dHaaksMax = 105.0 * dPi / 200.0;
// No new direction yet.
constexpr double dGeenRichting = 1e100;
// The second point of a carrier lies this far from its first.
constexpr double dDragerLengte = 10.0;

struct Stuk {
    short nIndex;
    short nGroep = -1;
    double dLengte;
    double dHoek;
    double dNieuw = dGeenRichting;
    double dTolHoek;
};

double dModuloPi(double h) {
    if (h > dHalfPi && h <= d3HalfPi) return h - dPi;
    if (h > d3HalfPi && h <= d2Pi) return h - d2Pi;
    return h;
}

double dNormaal(double h) {
    while (h < 0.0)
        h += d2Pi;
    while (h >= d2Pi)
        h -= d2Pi;
    return h;
}

std::vector<Stuk> Tabel(const CVXCoordArr &arr) {
    std::vector<Stuk> tabel;
    for (int i = 0; i + 1 < arr.GetSize(); ++i) {
        const double L = arr.Pt(i).dDist(arr.Pt(i + 1));
        const double tol = (dTolSchaal / ((L + 1.0) * (L + 1.0)) + dTolBasis) * dTolDeel;
        tabel.push_back({static_cast<short>(i), -1, L, dModuloPi(arr.Pt(i).dPosHoek(arr.Pt(i + 1))),
                         dGeenRichting, tol});
    }
    // Longest first; stable, so that equal lengths keep the order of the line.
    std::stable_sort(tabel.begin(), tabel.end(),
                     [](const Stuk &a, const Stuk &b) { return a.dLengte > b.dLengte; });
    tabel.front().dTolHoek = 0.0;
    return tabel;
}

// Groups by direction, founders in table order; returns the number of groups.
int nGroepeer(std::vector<Stuk> &tabel) {
    int nGroepen = 0;
    for (size_t i = 0; i < tabel.size(); ++i) {
        if (tabel[i].nGroep != -1) continue;
        tabel[i].nGroep = static_cast<short>(nGroepen);
        const double a = tabel[i].dHoek;
        for (size_t j = i + 1; j < tabel.size(); ++j) {
            Stuk &s = tabel[j];
            if (s.nGroep != -1) continue;
            const double t = s.dTolHoek / 2.0;
            double b = s.dHoek - dPi;
            if (b < -dHalfPi) b += d2Pi;
            if (std::fabs(a - s.dHoek) <= t) {
                s.nGroep = tabel[i].nGroep;
            } else if (std::fabs(a - b) <= t) {
                s.nGroep = tabel[i].nGroep;
                s.dHoek = b;
            }
        }
        ++nGroepen;
    }
    return nGroepen;
}

struct Groep {
    double dRichting = 0.0;
    double dSom = 0.0; // summed lengths, unsquared
};

std::vector<Groep> Groepen(const std::vector<Stuk> &tabel, int nGroepen) {
    std::vector<Groep> groepen(static_cast<size_t>(nGroepen));
    std::vector<double> gewicht(static_cast<size_t>(nGroepen), 0.0);
    for (const Stuk &s : tabel) {
        const auto g = static_cast<size_t>(s.nGroep);
        const double w = s.dLengte * s.dLengte;
        groepen[g].dRichting += s.dHoek * w;
        gewicht[g] += w;
        groepen[g].dSom += s.dLengte;
    }
    for (size_t g = 0; g < groepen.size(); ++g)
        groepen[g].dRichting /= gewicht[g];
    return groepen;
}

void SchrijfNieuw(std::vector<Stuk> &tabel, size_t g, double h) {
    for (Stuk &s : tabel)
        if (static_cast<size_t>(s.nGroep) == g) s.dNieuw = h;
}

// Pairs of nearly perpendicular groups become exactly perpendicular. A later pair may overwrite
// an earlier one; the group directions themselves stay.
void MaakHaaks(std::vector<Stuk> &tabel, const std::vector<Groep> &groepen) {
    for (size_t u = 0; u < groepen.size(); ++u) {
        for (size_t v = u + 1; v < groepen.size(); ++v) {
            const double hu = groepen[u].dRichting, hv = groepen[v].dRichting;
            const double d = std::fabs(hu - hv);
            if (d < dHaaksMin || d > dHaaksMax) continue;
            const double plus = hv + dHalfPi, min = hv - dHalfPi;
            const bool bMin = std::fabs(min - hu) <= std::fabs(plus - hu); // a tie takes minus
            const double Su = groepen[u].dSom, Sv = groepen[v].dSom;
            const double hNieuw = (hu * Su + (bMin ? min : plus) * Sv) / (Su + Sv);
            SchrijfNieuw(tabel, u, dNormaal(hNieuw));
            SchrijfNieuw(tabel, v, dNormaal(bMin ? hNieuw + dHalfPi : hNieuw - dHalfPi));
        }
    }
    for (Stuk &s : tabel)
        if (s.dNieuw == dGeenRichting) s.dNieuw = groepen[static_cast<size_t>(s.nGroep)].dRichting;
}

struct Drager {
    CVXCoord p[2];
    double dRichting;
    double dHalf; // half the stretch's length
    double dOud;  // the stretch's own direction
};

// The new vertex between stretches a and b. Collinear carriers (exactly equal directions): the
// point lies on a's carrier, half a's length beyond its midpoint along the stretch.
CVXCoord Hoekpunt(const Drager &a, const Drager &b, const char *szRegel) {
    CVXCoord punt;
    if (a.dRichting == b.dRichting) {
        double h = a.dRichting;
        if (h < 0.0) h += d2Pi;
        // Compared around the circle: 0.01 and 6.27 are nearly the same direction.
        double dVerschil = std::fabs(h - a.dOud);
        if (dVerschil > dPi) dVerschil = d2Pi - dVerschil;
        if (dVerschil > dHalfPi) h = dNormaal(h + dPi);
        punt.Schuif(a.p[0], a.dHalf, h, false);
        return punt;
    }
    // Without an intersection the vertex takes whatever the local point holds.
    const int nRes = punt.nSnijLijn(a.p[0], a.p[1], b.p[0], b.p[1]);
    VX_ASSERT_TEXT(nRes == CVXCoord::nSnijPunten, szRegel);
    return punt;
}

void ZetHoek(CVXCoordArr &arr, int i, const CVXCoord &punt) {
    CVXCoord *p = arr.GetAt(i);
    p->SetXY(punt.m_dX, punt.m_dY);
    p->m_dPX = p->m_dPY = p->m_dPZ = dNaN;
}

} // namespace

void CVXCoordArr::Square() {
    const int n = GetSize();
    constexpr int nMinPunten = 4;
    if (n < nMinPunten) return;
    std::vector<Stuk> tabel = Tabel(*this);
    const int nGroepen = nGroepeer(tabel);
    MaakHaaks(tabel, Groepen(tabel, nGroepen));
    std::vector<Drager> dragers(static_cast<size_t>(n - 1));
    for (const Stuk &s : tabel) {
        Drager &d = dragers[static_cast<size_t>(s.nIndex)];
        d.p[0].Midden(Pt(s.nIndex), Pt(s.nIndex + 1));
        d.p[1].Schuif(d.p[0], dDragerLengte, s.dNieuw, false);
        d.dRichting = s.dNieuw;
        d.dHalf = s.dLengte / 2.0;
        d.dOud = Pt(s.nIndex).dPosHoek(Pt(s.nIndex + 1));
    }
    for (int i = 0; i < n - 2; ++i)
        ZetHoek(*this, i + 1,
                Hoekpunt(dragers[static_cast<size_t>(i)], dragers[static_cast<size_t>(i) + 1],
                         "SnijPunt.nSnijLijn(Arr1[0],Arr1[1],Arr2[0],Arr2[1])==1"));
    // The last stretch and the first close the outline.
    const CVXCoord sluit = Hoekpunt(dragers.back(), dragers.front(),
                                    "SnijPunt.nSnijLijn(Arr3[0],Arr3[1],Arr2[0],Arr2[1])==1");
    ZetHoek(*this, 0, sluit);
    ZetHoek(*this, n - 1, sluit);
}

void CVXCoordArr::RemoveColinear(double dTol, bool bBogen, CGridDef *pGrid) {
    const auto bRechtCode = [this](int i) {
        const int c = Pt(i).m_nSectie;
        return c == nSectieRecht || c == nSectieRecht2;
    };
    const auto bBinnenTol = [dTol](const CVXCoord &p, const CVXCoord &a, const CVXCoord &b) {
        const CVXCoord *const line[2] = {&a, &b};
        const double d = p.Dist2D3D(line);
        return !std::isnan(d) && d < dTol;
    };
    for (bool bWeg = true; bWeg;) {
        bWeg = false;
        for (int i = 0; i < GetSize() - 1; i = nNextLinePart(i)) {
            if (i + 2 < GetSize() && bRechtCode(i + 1) && bRechtCode(i + 2)) {
                double dN = 0.0;
                // With a grid, only points on a grid line (in X or in Y) are candidates.
                if (pGrid && !pGrid->OnGrid(Pt(i + 1), true, dN) &&
                    !pGrid->OnGrid(Pt(i + 1), false, dN))
                    continue;
                if (!bBinnenTol(Pt(i + 1), Pt(i), Pt(i + 2))) continue;
                RemoveAt(i + 1);
                bWeg = true;
            } else if (bBogen && bBoog(i) && bBinnenTol(Pt(i + 1), Pt(i), Pt(i + 2))) {
                GetAt(i + 2)->SetSectie(nSectieRecht);
                RemoveAt(i + 1);
                bWeg = true;
            }
        }
    }
}

bool CVXCoordArr::VoldoetBoogDeel(int nVan, int nTot, double dAfstandTol, double dLengteTol,
                                  double dMaxR) const {
    const int nMidden = (nVan + nTot) / 2;
    CVXCoordArr boog;
    boog.Add(&Pt(nVan));
    boog.Add(&Pt(nMidden));
    boog.Add(&Pt(nTot));
    const CVXCoord *const pts[3] = {&boog.Pt(0), &boog.Pt(1), &boog.Pt(2)};
    CVXCoord C;
    if (CVXCoord::nBoogRichting(pts) == 0 || !C.bMiddelPunt(pts)) return false;
    const double r = C.dDist(Pt(nVan));
    if (r > dMaxR) return false;
    const double L = dLijnLengte(nVan);
    double dPad = 0.0;
    for (int i = nVan; i < nTot; ++i) {
        const int c = Pt(i).m_nSectie;
        if (c != nSectieRecht && c != nSectieStart) return false;
        const double l = dLijnLengte(i);
        if (std::min(l, L) / std::max(l, L) < 1.0 - dLengteTol) return false;
        if (i != nVan && i != nMidden && std::fabs(Pt(i).dDist(C) - r) > dAfstandTol) return false;
        dPad += l;
    }
    boog.GetAt(0)->SetSectie(nSectieRecht);
    boog.GetAt(1)->SetSectie(nSectieBoog);
    boog.GetAt(2)->SetSectie(nSectieBoog);
    // The last comparison is our own reading: the arc is as long as the run of chords it
    // replaces, within the length tolerance.
    const double dBoog = boog.dLijnLengte(0);
    return std::fabs(dBoog - dPad) <= dLengteTol * dBoog;
}

} // namespace vx
