// Line editing on CVXCoordArr: removing a point, closing an open line, snapping points on to a
// line, squaring a corner and removing coinciding neighbours. Every operation keeps the section
// coding valid: a stretch that loses a point it cannot do without (an arc's third point, a
// circle's, a short spline's) falls back to straight stretches. The offsets (SchuifLijn,
// bSchuif) live in geometry/Offset.cpp.
#include "geometry/Tolerances.h"
#include "geometry/VXCoordArr.h"
#include "platform/Assert.h"

#include <cmath>
#include <memory>
#include <numbers>

namespace vx {

namespace {

constexpr double dPi = std::numbers::pi;
constexpr double dHalfPi = dPi / 2.0;
constexpr double dKwartPi = dPi / 4.0;

// The fewest points a line needs before bSluit can close it.
constexpr int nMinPuntenSluit = 3;
// A spline of this many points or fewer cannot lose one and stay a spline.
constexpr int nMaxKorteSpline = 2;
// The last point index of a closed four-point circle.
constexpr int nCirkelSluitPunt = 3;
constexpr int nPuntenCirkelGesloten = 4;
// The length of the helper stretch that turns a point and a direction into a carrier.
constexpr double dDragerStap = 1.0;

// A carrier through punt in direction h: the point and its shift by dDragerStap.
CVXCoord DragerPunt(const CVXCoord &punt, double h) {
    CVXCoord verder(punt);
    verder.Schuif(dDragerStap, h);
    return verder;
}

// The two carrier directions of bSluit: h1 through point 0, h2 through the last point.
bool bSluitRichtingen(CVXCoordArr::SluitMode nMode, double hEerste, double hLaatste, double &h1,
                      double &h2) {
    switch (nMode) {
    case CVXCoordArr::SluitEvenwijdig:
        h1 = hLaatste;
        h2 = hEerste;
        return true;
    case CVXCoordArr::SluitHaaks:
        h1 = hEerste + dHalfPi;
        h2 = hLaatste + dHalfPi;
        return true;
    case CVXCoordArr::SluitVerlengd:
        h1 = hEerste;
        h2 = hLaatste;
        return true;
    }
    return false;
}

// The deviation of direction h from the axis dHoek, folded into 0 to π/2. The second fold is
// taken after the first whether or not the first applied: a stretch at 170° to the axis lies along
// it, not across it.
double dAfwijking(double h, double dHoek) {
    double d = h - dHoek;
    if (d < 0.0) d += 2.0 * dPi;
    if (d > dPi) d = 2.0 * dPi - d;
    if (d > dHalfPi) d = dPi - d;
    return d;
}

} // namespace

void CVXCoordArr::MaakKrommeRecht(int nStart) {
    if (bBoog(nStart)) {
        GetAt(nStart + 1)->SetSectie(nSectieRecht);
        GetAt(nStart + 2)->SetSectie(nSectieRecht);
    } else if (bCirkel()) {
        // Points 1 and 2, and the closing point of a four-point circle.
        for (int i = 1; i <= nCirkelSluitPunt && i < GetSize(); ++i)
            GetAt(i)->SetSectie(nSectieRecht);
    } else if (bSpline(nStart) && nTelSplinePunten(nStart) <= nMaxKorteSpline) {
        GetAt(nStart + 1)->SetSectie(nSectieRecht);
        // Kept on purpose: the point after a spline of one point is set straight as well (that
        // line breaks the grammar, and the caller must not pass it); only the array's end stops it.
        if (nStart + 2 < GetSize()) GetAt(nStart + 2)->SetSectie(nSectieRecht);
    }
}

void CVXCoordArr::RemoveFromLine(int nI) {
    MaakKrommeRecht(nStartDeel(nI));
    RemoveAt(nI);
    if (nI == 0 && GetSize() > 0) GetAt(0)->SetSectie(nSectieStart);
}

bool CVXCoordArr::bRemoveDubbele() {
    bool bVerwijderd = false;
    int i = 0;
    while (i < GetSize() - 1) {
        if (Pt(i).dDist2D3D(Pt(i + 1)) < dKopieTol) {
            RemoveFromLine(i);
            bVerwijderd = true;
        } else {
            ++i;
        }
    }
    return bVerwijderd;
}

bool CVXCoordArr::bSluit(SluitMode nMode) {
    const int n = GetSize();
    // Kept on purpose: the end test asks bCirkelKromme at size − 2, which never holds there (an
    // arc needs two points after its start), so a line ending in an arc is closed over its last
    // chord, from the support point to the end.
    if (n < nMinPuntenSluit || bCirkelKromme(0) || bCirkelKromme(n - 2)) return false;
    const CVXCoord &eerste = Pt(0);
    const CVXCoord &laatste = Pt(n - 1);
    double h1 = 0.0, h2 = 0.0;
    if (!bSluitRichtingen(nMode, eerste.dHoek(Pt(1)), Pt(n - 2).dHoek(laatste), h1, h2))
        return false;
    CVXCoord hoek;
    if (hoek.nSnijLijn(eerste, DragerPunt(eerste, h1), laatste, DragerPunt(laatste, h2)) !=
        CVXCoord::nSnijPunten)
        return false;
    if (!std::isnan(eerste.m_dZ) && !std::isnan(laatste.m_dZ))
        hoek.SetZ((eerste.m_dZ + laatste.m_dZ) / 2.0);
    hoek.SetSectie(nSectieRecht);
    // Two points go on: the corner and a copy of point 0, so that the line ends closed.
    CVXCoord sluit(eerste);
    sluit.SetSectie(nSectieRecht);
    Add(&hoek);
    Add(&sluit);
    return true;
}

namespace {

// How one stretch of bSnapLine's walk answered.
enum class SnapStap { Gelukt, Verder, CirkelMislukt };

// Projects Punt within dTol on the stretch from nI, the spline by its chord; nVolgende becomes
// the start of the next stretch to try.
SnapStap ProjecteerOpDeel(const CVXCoordArr &lijn, int nI, CVXCoord &Punt, double dTol,
                          int &nVolgende) {
    nVolgende = nI + 1;
    switch (lijn.Pt(nI + 1).nGetSectie()) {
    case nSectieRecht:
    case nSectieRecht2:
    case nSectieSpline: {
        const CVXCoord *const deel[2] = {&lijn.Pt(nI), &lijn.Pt(nI + 1)};
        return Punt.bProjecteerLijn(deel, dTol) ? SnapStap::Gelukt : SnapStap::Verder;
    }
    case nSectieBoog:
        if (lijn.bBoog(nI)) {
            const CVXCoord *const boog[3] = {&lijn.Pt(nI), &lijn.Pt(nI + 1), &lijn.Pt(nI + 2)};
            if (Punt.bProjecteerBoog(boog, dTol)) return SnapStap::Gelukt;
            nVolgende = nI + 2;
            return SnapStap::Verder;
        }
        break;
    case nSectieCirkel:
        if (lijn.bCirkelKromme(nI)) {
            const CVXCoord *const boog[3] = {&lijn.Pt(nI), &lijn.Pt(nI + 1), &lijn.Pt(nI + 2)};
            return Punt.bProjecteerCirkel(boog, dTol) ? SnapStap::Gelukt : SnapStap::CirkelMislukt;
        }
        break;
    default:
        break;
    }
    // A code that cannot follow here (or an arc cut short by the line's end) breaks the coding;
    // the walk goes on with the next point.
    VX_ASSERT_TEXT(false, "FALSE");
    return SnapStap::Verder;
}

} // namespace

bool CVXCoordArr::bSnapLine(CVXCoord &Punt, double dTol, double dZ, bool &bOpLijn) {
    bOpLijn = false;
    const CVXCoord kopie(Punt);
    int nI = 0;
    while (nI < GetSize() - 1) {
        int nVolgende = nI + 1;
        const SnapStap stap = ProjecteerOpDeel(*this, nI, Punt, dTol, nVolgende);
        if (stap == SnapStap::CirkelMislukt) {
            Punt = kopie;
            return false;
        }
        if (stap == SnapStap::Gelukt) {
            BerekenZ(Punt, nI, kopie.m_dZ, dZ);
            bOpLijn = bPuntInLijnDeel(Punt, nI);
            nInsertInLine(Punt, nI, false);
            return true;
        }
        nI = nVolgende;
    }
    return false;
}

bool CVXCoordArr::bSnapLine(CVXCoordArr &Lijn, double dTol, int nP, double dZ, bool bProjecteer,
                            bool &bOpLijn) {
    bOpLijn = false;
    const int nJ = Lijn.nStartDeel(nP);
    const CVXCoord doel(Lijn.Pt(nP));
    for (int nI = 0; nI < GetSize() - 1; nI = nNextLinePart(nI)) {
        CVXCoord *p1 = nullptr, *p2 = nullptr;
        const int nMasker = nSnijInLijnDeel(&p1, &p2, Lijn, nI, nJ, false);
        const std::unique_ptr<CVXCoord> oplossingen[2] = {std::unique_ptr<CVXCoord>(p1),
                                                          std::unique_ptr<CVXCoord>(p2)};
        const int bits[2] = {nMasker1Hier, nMasker2Hier};
        for (int k = 0; k < 2; ++k) {
            const CVXCoord *pSnij = oplossingen[k].get();
            if (!pSnij || (nMasker & bits[k]) == 0 || !(pSnij->dDist(doel) < dTol)) continue;
            CVXCoord snap(*pSnij);
            if (bProjecteer) Projecteer(snap, nI, doel);
            BerekenZ(snap, nI, doel.m_dZ, dZ);
            bOpLijn = bPuntInLijnDeel(snap, nI);
            const int nNieuw = nInsertInLine(snap, nI, false);
            // The snapped point takes the line's vertex over, keeping its own section code.
            CVXCoord *pDoel = Lijn.GetAt(nP);
            const signed char nSectie = pDoel->m_nSectie;
            pDoel->Copy(Pt(nNieuw));
            pDoel->m_nSectie = nSectie;
            return true;
        }
    }
    return false;
}

void CVXCoordArr::VerplaatsOrtho(int nI, double dHoek) {
    VX_ASSERT_TEXT(nI < GetSize() && GetSize() > 1, "nPu<GetSize() && GetSize()>1");
    // Going on past the report would read outside the line.
    if (nI < 0 || nI >= GetSize() || GetSize() < 2) return;
    const bool bEerste = nI == 0;
    const CVXCoord &vast = Pt(bEerste ? 1 : nI - 1);
    const bool bOpvolger = !bEerste && nI < GetSize() - 1;
    const double d = dAfwijking(vast.dHoek(Pt(nI)), dHoek);
    // Nearer the square direction than the axis: the carrier runs square to dHoek.
    const double hDrager = d > dKwartPi ? dHoek + dHalfPi : dHoek;
    const CVXCoord verder = DragerPunt(vast, hDrager);
    const CVXCoord *const drager[2] = {&vast, &verder};
    CVXCoord voet;
    voet.Projecteer(drager, Pt(bOpvolger ? nI + 1 : nI));
    // Only the position moves: the point keeps its height and section code.
    GetAt(nI)->SetXY(voet.m_dX, voet.m_dY);
    m_bGewijzigd = true;
}

} // namespace vx
