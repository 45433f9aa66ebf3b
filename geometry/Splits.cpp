// CVXCoordArr::bSplits: a line is cut in two at one of its points, and both halves keep a valid
// section coding. At a plain vertex the cut is a copy of the two halves (SimpelSplits). Inside a
// curve it depends on bInKromme: without it an arc's support point or a whole circle cannot be
// cut; with it an arc is cut at its support point into two arcs with new support points, a spline
// gains two spline points on either side of the cut so its shape survives, and a circle becomes
// arcs. CheckCoords then drops neighbours that came out closer than the insertion tolerance.
#include "geometry/Tolerances.h"
#include "geometry/VXCoordArr.h"
#include "platform/Assert.h"

#include <cmath>
#include <memory>

namespace vx {

namespace {

// The spline points that go in on either side of a cut, at the thirds of an interval; the Z of
// such a point weighs the near end twice and the far end once.
enum Derde : int { nEersteDerde = 1, nTweedeDerde = 2 };
constexpr double dDelen = 3.0;
// A half that keeps fewer spline steps than this is no spline.
constexpr int nMinSplineStappen = 2;
// The points of a circle that a cut turns into straight stretches: 1, 2 and 3; point 3 closes a
// closed circle on its first point. An open circle has three points.
constexpr int nCirkelLaatste = 3;
constexpr int nPuntenOpenCirkel = 3;

// The coefficient table of nCubSplin, freed with delete[] whatever the path out.
struct CoefDeleter {
    void operator()(double (*p)[4][2]) const { delete[] p; }
};
using CoefTabel = std::unique_ptr<double[][4][2], CoefDeleter>;

// A point of spline interval nSeg (from point a to point b) at one of its thirds. It gets a Z
// only when both ends have one: the mean weighted by nearness, 2 to 1 at the near third.
CVXCoord SplinePunt(double (*pCoef)[4][2], int nSeg, Derde nDerde, const CVXCoord &a,
                    const CVXCoord &b) {
    CVXCoord p;
    const double wb = static_cast<double>(nDerde), wa = dDelen - wb;
    p.Horner(nSeg, pCoef, wb / dDelen);
    if (!std::isnan(a.m_dZ) && !std::isnan(b.m_dZ)) p.SetZ((wa * a.m_dZ + wb * b.m_dZ) / dDelen);
    p.SetSectie(nSectieSpline);
    return p;
}

void Voeg(CVXCoordArr &doel, const CVXCoord &p) {
    doel.Add(&p);
}

// Appends points nVan..nTot (inclusive) of bron.
void VoegReeks(CVXCoordArr &doel, const CVXCoordArr &bron, int nVan, int nTot) {
    for (int i = nVan; i <= nTot; ++i)
        doel.Add(&bron.Pt(i));
}

// Appends the arc start, support, end with the codes 1, 8, 8.
void VoegBoog(CVXCoordArr &doel, const CVXCoord &start, const CVXCoord &steun,
              const CVXCoord &eind) {
    const CVXCoord *const punten[3] = {&start, &steun, &eind};
    const int nEerste = doel.Add(punten, 3);
    doel.GetAt(nEerste)->SetSectie(nSectieStart);
    doel.GetAt(nEerste + 1)->SetSectie(nSectieBoog);
    doel.GetAt(nEerste + 2)->SetSectie(nSectieBoog);
}

void ZetCode(CVXCoordArr &arr, int i, int nCode) {
    if (i >= 0 && i < arr.GetSize()) arr.GetAt(i)->SetSectie(static_cast<char>(nCode));
}

} // namespace

void CVXCoordArr::SimpelSplits(CVXCoordArr &Links, CVXCoordArr &Rechts, int nI) const {
    VoegReeks(Links, *this, 0, nI);
    VoegReeks(Rechts, *this, nI, GetSize() - 1);
    ZetCode(Rechts, 0, nSectieStart);
}

void CVXCoordArr::CheckCoords() {
    int i = 1;
    while (i < GetSize()) {
        if (Pt(i - 1).dDist2D3D(Pt(i)) >= dKopieTol) {
            ++i;
            continue;
        }
        // The stretch that ends at i falls away: a curve through it falls back to straight.
        MaakKrommeRecht(nStartDeel(i));
        RemoveAt(i == GetSize() - 1 ? i - 1 : i);
    }
}

bool CVXCoordArr::bSplits(CVXCoordArr &Links, CVXCoordArr &Rechts, int nI, bool bInKromme) const {
    VX_ASSERT_TEXT(nSectieOnlyTest2() == -1, "nSectieOnlyTest2()==0xffffffff");
    Links.RemoveAll();
    Rechts.RemoveAll();
    const int nCode = nSectieVan(nI);
    const bool bLaatste = nI == GetSize() - 1;
    switch (nCode) {
    case nSectieRecht:
    case nSectieStart:
    case nSectieRecht2:
        SimpelSplits(Links, Rechts, nI);
        return true;
    case nSectieSpline: {
        if (bLaatste || nSectieVan(nI + 1) != nSectieSpline) { // the end of a spline
            SimpelSplits(Links, Rechts, nI);
            return true;
        }
        const int nStart = nStartDeel(nI);
        const int k = nI - nStart;
        if (!bInKromme) {
            // Both halves must stay splines of at least two steps.
            if (k < nMinSplineStappen || nTelSplinePunten(nStart) - k < nMinSplineStappen)
                return false;
            SimpelSplits(Links, Rechts, nI);
            return true;
        }
        double(*pRuw)[4][2] = nullptr;
        const int nRijen = nCubSplin(nStart, pRuw);
        const CoefTabel pCoef(pRuw);
        if (nRijen == 0) {
            SimpelSplits(Links, Rechts, nI);
            return true;
        }
        VoegReeks(Links, *this, 0, nI - 1);
        Voeg(Links, SplinePunt(pCoef.get(), k - 1, nEersteDerde, Pt(nI - 1), Pt(nI)));
        Voeg(Links, SplinePunt(pCoef.get(), k - 1, nTweedeDerde, Pt(nI - 1), Pt(nI)));
        Voeg(Links, Pt(nI));
        Voeg(Rechts, Pt(nI));
        Voeg(Rechts, SplinePunt(pCoef.get(), k, nEersteDerde, Pt(nI), Pt(nI + 1)));
        Voeg(Rechts, SplinePunt(pCoef.get(), k, nTweedeDerde, Pt(nI), Pt(nI + 1)));
        VoegReeks(Rechts, *this, nI + 1, GetSize() - 1);
        ZetCode(Rechts, 0, nSectieStart);
        Links.CheckCoords();
        Rechts.CheckCoords();
        return true;
    }
    case nSectieCirkel: {
        if (!bInKromme) return false;
        if (GetSize() == nPuntenOpenCirkel) {
            // An open three-point circle is closed on its first point and cut as such.
            CVXCoordArr kopie(*this);
            CVXCoord sluit(Pt(0));
            sluit.SetSectie(nSectieCirkel);
            kopie.Add(&sluit);
            return kopie.bSplits(Links, Rechts, nI, bInKromme);
        }
        CVXCoord M1, M2;
        if (nI == 1) {
            if (!bHalveSteunPunten(0, M1, M2)) {
                SimpelSplits(Links, Rechts, nI);
                return true;
            }
            VoegBoog(Links, Pt(0), M1, Pt(1));
            VoegBoog(Rechts, Pt(1), Pt(2), Pt(nCirkelLaatste));
            return true;
        }
        // Any later point cuts the circle at point 2 (kept: the cut does not move to nI).
        VoegBoog(Links, Pt(0), Pt(1), Pt(2));
        if (!bHalveSteunPunten(1, M1, M2)) {
            Links.RemoveAll();
            SimpelSplits(Links, Rechts, nI);
            return true;
        }
        VoegBoog(Rechts, Pt(2), M2, Pt(0));
        Links.CheckCoords();
        Rechts.CheckCoords();
        return true;
    }
    case nSectieBoog: {
        const int nStart = nStartDeel(nI);
        if (nI - nStart != 1) { // the end of an arc
            SimpelSplits(Links, Rechts, nI);
            return true;
        }
        if (!bInKromme) return false;
        CVXCoord M1, M2;
        if (!bHalveSteunPunten(nStart, M1, M2)) {
            SimpelSplits(Links, Rechts, nI);
            return true;
        }
        M1.SetSectie(nSectieBoog);
        M2.SetSectie(nSectieBoog);
        VoegReeks(Links, *this, 0, nI - 1);
        Voeg(Links, M1);
        Voeg(Links, Pt(nI));
        Voeg(Rechts, Pt(nI));
        Voeg(Rechts, M2);
        VoegReeks(Rechts, *this, nI + 1, GetSize() - 1);
        ZetCode(Rechts, 0, nSectieStart);
        Links.CheckCoords();
        Rechts.CheckCoords();
        return true;
    }
    default:
        VX_ASSERT_TEXT(false, "false");
        return false;
    }
}

} // namespace vx
