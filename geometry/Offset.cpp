// Offsetting a line sideways: SchuifLijn moves one stretch, bSchuif the whole line (or one stretch
// of it, its neighbours stretching to meet it). A positive distance goes to the right of the
// direction of travel. A straight stretch moves square to itself; an arc keeps its centre and its
// radius changes by the distance; consecutive offset stretches are joined where their carriers
// meet, the one nearest the earlier stretch's end when there are two.
#include "geometry/Tolerances.h"
#include "geometry/VXCoordArr.h"
#include "platform/Assert.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

namespace vx {

namespace {

constexpr double dHalfPi = std::numbers::pi / 2.0;

constexpr int nPuntenRecht = 2;  // start, end
constexpr int nPuntenBoog = 3;   // start, support, end
constexpr int nPuntenCirkel = 4; // three on the circle and the closing point

// The direction in which a point moves for an offset of dAfstand from a stretch of direction h:
// to the right for a positive distance, to the left for a negative one.
double dZijwaarts(double h, double dAfstand) {
    return dAfstand > 0.0 ? h - dHalfPi : h + dHalfPi;
}

// Point i of doel := bron moved sideways from a stretch of direction h, section code included.
void ZetZijwaarts(CVXCoordArr &doel, int i, const CVXCoord &bron, double h, double dAfstand) {
    CVXCoord p;
    p.Schuif(bron, std::fabs(dAfstand), dZijwaarts(h, dAfstand), true);
    doel.SetAt(i, &p);
}

// Whether stretch nI of Punten may be offset as an arc about its centre: it has a sense and a
// centre, and C holds that centre.
bool bBoogMetMiddelpunt(const CVXCoord *const *boog, CVXCoord &C, int &nRichting) {
    nRichting = CVXCoord::nBoogRichting(boog);
    return nRichting != 0 && C.bMiddelPunt(boog);
}

// A line that is one stretch: two points, a circle, or a single arc.
bool bEenDeel(const CVXCoordArr &Punten) {
    const int n = Punten.GetSize();
    return n == nPuntenRecht || Punten.bCirkel() || (n == nPuntenBoog && Punten.bBoog(0));
}

} // namespace

void CVXCoordArr::SchuifLijn(const CVXCoordArr &Punten, int nI, double dAfstand) {
    if (&Punten == this) {
        // Resizing this sequence would delete the points being read.
        const CVXCoordArr kopie(Punten);
        SchuifLijn(kopie, nI, dAfstand);
        return;
    }
    if (!Punten.bCirkelKromme(nI)) {
        // A straight stretch; a spline stretch moves as its chord.
        SetSize(nPuntenRecht);
        const double h = Punten.Pt(nI).dHoek(Punten.Pt(nI + 1));
        for (int k = 0; k < nPuntenRecht; ++k) {
            if (dAfstand == 0.0)
                SetAt(k, &Punten.Pt(nI + k));
            else
                ZetZijwaarts(*this, k, Punten.Pt(nI + k), h, dAfstand);
        }
        return;
    }
    const bool bCirkelVorm = !Punten.bBoog(nI);
    SetSize(bCirkelVorm ? nPuntenCirkel : nPuntenBoog);
    const CVXCoord *const boog[3] = {&Punten.Pt(nI), &Punten.Pt(nI + 1), &Punten.Pt(nI + 2)};
    CVXCoord C;
    int s = 0;
    if (dAfstand == 0.0) {
        for (int k = 0; k < nPuntenBoog; ++k)
            SetAt(k, boog[k]);
    } else if (bBoogMetMiddelpunt(boog, C, s)) {
        // Radially about the centre: towards it on a clockwise arc (s = 1), away on the other.
        for (int k = 0; k < nPuntenBoog; ++k) {
            CVXCoord p;
            p.Schuif(*boog[k], -s * dAfstand, C.dHoek(*boog[k]), true);
            SetAt(k, &p);
        }
    } else {
        // No sense or no centre: the arc moves as its chord from start to end.
        const double h = boog[0]->dHoek(*boog[2]);
        for (int k = 0; k < nPuntenBoog; ++k)
            ZetZijwaarts(*this, k, *boog[k], h, dAfstand);
    }
    if (bCirkelVorm) {
        // The closing point repeats the (moved) first one.
        CVXCoord sluit(Pt(0));
        sluit.SetSectie(nSectieCirkel);
        SetAt(nPuntenCirkel - 1, &sluit);
    }
}

bool CVXCoordArr::bGetClosest(CVXCoord *pPunt, const CVXCoordArr &Punten) const {
    CVXCoord *p1 = nullptr, *p2 = nullptr;
    const int nRes = nSnij(&p1, &p2, Punten, 0, 0);
    const std::unique_ptr<CVXCoord> eerste(p1), tweede(p2);
    if (nRes != CVXCoord::nSnijPunten || !eerste) return false;
    const CVXCoord *pKeus = eerste.get();
    if (tweede) {
        const CVXCoord &eind = Pt(GetSize() - 1);
        // The first wins only when strictly nearer: on a tie the second is taken.
        if (!(eerste->dDist(eind) < tweede->dDist(eind))) pKeus = tweede.get();
    }
    pPunt->Copy(*pKeus);
    return true;
}

bool CVXCoordArr::bCopyToDest(int nI, const CVXCoordArr &Links, const CVXCoordArr &Rechts) {
    const auto bIsBoog = [](const CVXCoordArr &deel) {
        return deel.GetSize() > nPuntenRecht && deel.Pt(1).nGetSectie() == nSectieBoog;
    };
    const bool bL = bIsBoog(Links);
    const bool bR = bIsBoog(Rechts);
    CVXCoord join;
    if (!Links.bGetClosest(&join, Rechts)) {
        if (!bL && !bR) {
            // Two straight stretches that do not meet are parallel: the earlier one's end serves.
            join = Links.Pt(1);
        } else {
            // An arc that misses its neighbour may still touch it end to start.
            const CVXCoord &eind = Links.Pt(bL ? nPuntenBoog - 1 : 1);
            if (eind.dDist(Rechts.Pt(0)) > dPuntTol) return false;
            join = Rechts.Pt(0);
        }
    }
    // The support point of the offset arc before the join.
    if (bL) SetAt(nI - 1, &Links.Pt(1));
    SetAt(nI, &join);
    m_bGewijzigd = true;
    return true;
}

void CVXCoordArr::CopySectiesZ(const CVXCoordArr &Punten) {
    VX_ASSERT_TEXT(GetSize() == Punten.GetSize(), "GetSize()==Punten.GetSize()");
    const bool bCirkelVorm = Punten.bCirkel();
    // After the report, the points beyond the shorter of the two keep what they have.
    const int nOvername =
        std::min({GetSize(), Punten.GetSize(), bCirkelVorm ? nPuntenBoog : GetSize()});
    for (int i = 0; i < nOvername; ++i) {
        CVXCoord *p = GetAt(i);
        p->SetSectie(static_cast<char>(Punten.Pt(i).nGetSectie()));
        p->m_dZ = Punten.Pt(i).m_dZ;
    }
    if (bCirkelVorm && GetSize() == nPuntenCirkel) {
        CVXCoord sluit(Pt(0));
        sluit.SetSectie(nSectieCirkel);
        SetAt(nPuntenCirkel - 1, &sluit);
    }
}

bool CVXCoordArr::bSchuif(const CVXCoordArr &Punten, double dAfstand, int nDeel) {
    // A line of fewer than two points has no stretch to offset.
    if (Punten.GetSize() < nPuntenRecht) return false;
    if (&Punten == this) {
        const CVXCoordArr kopie(Punten);
        return bSchuif(kopie, dAfstand, nDeel);
    }
    VX_ASSERT_TEXT(Punten.nSectieOnlyTest2() == -1, "Punten.nSectieOnlyTest2()==0xffffffff");
    SetSize(Punten.GetSize());
    if (bEenDeel(Punten)) {
        // One stretch: nDeel is not consulted.
        SchuifLijn(Punten, 0, dAfstand);
        CopySectiesZ(Punten);
        m_bGewijzigd = true;
        return true;
    }
    const auto dVan = [&](int nStretch) {
        return nDeel == -1 || nDeel == nStretch ? dAfstand : 0.0;
    };
    const bool bDicht = Punten.bGesloten();
    const int nLaatste = Punten.GetSize() - 1;
    CVXCoordArr Huidig, Vorig, Eerste;
    Huidig.SchuifLijn(Punten, 0, dVan(0));
    int i = 0;
    bool bEersteJoin = true;
    while (Punten.nNextLinePart(i) < nLaatste) {
        i = Punten.nNextLinePart(i);
        Vorig = Huidig;
        Huidig.SchuifLijn(Punten, i, dVan(i));
        if (!bCopyToDest(i, Vorig, Huidig)) return false;
        if (bEersteJoin) {
            bEersteJoin = false;
            // A closed line joins its last stretch to the first at the end; an open one starts
            // at the first offset stretch's start.
            if (bDicht)
                Eerste = Vorig;
            else
                SetAt(0, &Vorig.Pt(0));
        }
    }
    if (bDicht) {
        if (!bCopyToDest(Punten.nNextLinePart(i), Huidig, Eerste)) return false;
        SetAt(0, &Pt(nLaatste));
    } else {
        for (int k = 1; k < Huidig.GetSize() && i + k <= nLaatste; ++k)
            SetAt(i + k, &Huidig.Pt(k));
    }
    CopySectiesZ(Punten);
    m_bGewijzigd = true;
    return true;
}

} // namespace vx
