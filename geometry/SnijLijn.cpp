// The members of CVXCoordArr that collect clip lists and answer self-intersection questions:
// VerzamelClipLijst, SnijLijn and InsertSnijpunten, SnijdLijn, bSnijOpeenvolgende, bSnijdenDelen,
// nSnijdZichzelf2 and MakeSimple.
//
// The collection compares every stretch of A with every stretch of B. By default it first skips
// pairs whose boxes cannot meet: the box of a straight stretch holds its two points, that of an
// arc or circle its whole circle and its points, each grown by twice the point tolerance. A spline
// stretch gets no box, since its point test claims every point of the chord's carrier. Every
// common point that nSnijInLijnDeel reports lies in both boxes, so the list is the same.
#include "geometry/ClipList.h"
#include "geometry/Tolerances.h"
#include "platform/Assert.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

namespace vx {

namespace {

constexpr double dOneindig = std::numeric_limits<double>::infinity();

// The box of one stretch, within which every point its tests accept lies.
struct Doos {
    double xlo = dOneindig, ylo = dOneindig, xhi = -dOneindig, yhi = -dOneindig;

    void Punt(const CVXCoord &p) {
        xlo = std::min(xlo, p.m_dX);
        ylo = std::min(ylo, p.m_dY);
        xhi = std::max(xhi, p.m_dX);
        yhi = std::max(yhi, p.m_dY);
    }
    static Doos Alles() { return {-dOneindig, -dOneindig, dOneindig, dOneindig}; }
    // Written so that a NaN anywhere keeps the pair: only a sure gap separates.
    bool bGescheiden(const Doos &o) const {
        return xhi < o.xlo || o.xhi < xlo || yhi < o.ylo || o.yhi < ylo;
    }
};

// Twice the point tolerance, and a relative margin for the rounding of far coordinates.
constexpr double dDoosMarge = 2.0 * dPuntTol;
constexpr double dDoosRelatief = 1e-9;

Doos Gegroeid(Doos d) {
    const double m = dDoosMarge + dDoosRelatief * std::max({std::fabs(d.xlo), std::fabs(d.ylo),
                                                            std::fabs(d.xhi), std::fabs(d.yhi)});
    return {d.xlo - m, d.ylo - m, d.xhi + m, d.yhi + m};
}

Doos StukDoos(const CVXCoordArr &arr, int i) {
    if (arr.bSpline(i)) return Doos::Alles();
    Doos d;
    if (!arr.bCirkelKromme(i)) {
        d.Punt(arr.Pt(i));
        d.Punt(arr.Pt(i + 1));
        return Gegroeid(d);
    }
    for (int k = 0; k < 3; ++k)
        d.Punt(arr.Pt(i + k));
    const CVXCoord *const boog[3] = {&arr.Pt(i), &arr.Pt(i + 1), &arr.Pt(i + 2)};
    CVXCoord C;
    if (C.bMiddelPunt(boog)) {
        const double r = C.dDist(arr.Pt(i));
        if (!std::isfinite(r)) return Doos::Alles();
        d.Punt(CVXCoord(C.m_dX - r, C.m_dY - r));
        d.Punt(CVXCoord(C.m_dX + r, C.m_dY + r));
    }
    return Gegroeid(d);
}

// Both result points of one intersection, deleted when the holder goes.
struct Snijpunten {
    CVXCoord *p1 = nullptr;
    CVXCoord *p2 = nullptr;
    Snijpunten() = default;
    Snijpunten(const Snijpunten &) = delete;
    Snijpunten &operator=(const Snijpunten &) = delete;
    ~Snijpunten() {
        delete p1;
        delete p2;
    }
};

bool bHeeft(int nMasker, int nBits) {
    return (nMasker & nBits) == nBits;
}

// Keeps *pp when the mask says it is a common point (and bOok holds), deletes it otherwise.
bool bHoud(CVXCoord **pp, int nMasker, int nBits, bool bOok = true) {
    if (*pp != nullptr && bHeeft(nMasker, nBits) && bOok) return true;
    delete *pp;
    *pp = nullptr;
    return false;
}

void VoegSnijpuntToe(const CVXCoordArr &A, const CVXCoordArr &B, int nI, int nJ,
                     const CVXCoord &gevonden, CClipsnijpuntList &Lijst) {
    CVXCoord punt(gevonden);
    A.InterpoleerZ(punt, nI, dNaN); // no second value supplied
    const int nTerug = B.GetSize() - nJ - (B.bBoog(nJ) ? 3 : 2);
    Lijst.Voeg(new CClipsnijpunt(nI, nJ, A.dLengteInLijn(nI, punt), B.dLengteInLijn(nJ, punt), punt,
                                 nTerug));
}

} // namespace

// ---- collecting the clip list -----------------------------------------------------------------

void CVXCoordArr::VerzamelClipLijst(const CVXCoordArr &Punten, CClipsnijpuntList &Lijst) const {
    VerzamelClipLijst(Punten, Lijst, true);
}

void CVXCoordArr::VerzamelClipLijst(const CVXCoordArr &Punten, CClipsnijpuntList &Lijst,
                                    bool bMetDozen) const {
    std::vector<Doos> dozenB;
    if (bMetDozen)
        for (int nJ = 0; nJ < Punten.GetSize() - 1; nJ = Punten.nNextLinePart(nJ))
            dozenB.push_back(StukDoos(Punten, nJ));
    for (int nI = 0; nI < GetSize() - 1; nI = nNextLinePart(nI)) {
        const Doos doosA = bMetDozen ? StukDoos(*this, nI) : Doos::Alles();
        size_t k = 0;
        for (int nJ = 0; nJ < Punten.GetSize() - 1; nJ = Punten.nNextLinePart(nJ), ++k) {
            if (bMetDozen && doosA.bGescheiden(dozenB[k])) continue;
            Snijpunten s;
            const int nMasker = nSnijInLijnDeel(&s.p1, &s.p2, Punten, nI, nJ, true, nMetEinden);
            if (s.p1 && bHeeft(nMasker, nMaskerEerste))
                VoegSnijpuntToe(*this, Punten, nI, nJ, *s.p1, Lijst);
            if (s.p2 && bHeeft(nMasker, nMaskerTweede))
                VoegSnijpuntToe(*this, Punten, nI, nJ, *s.p2, Lijst);
        }
    }
}

void CVXCoordArr::InsertSnijpunten(int nMode, CClipsnijpuntList &Lijst, bool bCopy) {
    const auto nM = static_cast<short>(nMode);
    CClipsnijpunt *p = Lijst.pGetWorkTail(nM);
    // Working from the end keeps the indices still to come valid. The count bounds the walk in
    // case the chain is a ring, which it must not be.
    for (int32_t n = Lijst.GetCount(); p != nullptr && n > 0; --n) {
        nInsertInLine(p->GetSnij(), p->nGetIndex(nM), bCopy);
        p = p->pGetPrev(nM);
    }
}

bool CVXCoordArr::SnijLijn(CVXCoordArr &Punten, bool bCopy) {
    CClipsnijpuntList Lijst(false, false);
    VerzamelClipLijst(Punten, Lijst);
    if (Lijst.IsEmpty()) return false;
    Lijst.Sort();
    InsertSnijpunten(nModeA, Lijst, bCopy);
    Punten.InsertSnijpunten(nModeB, Lijst, bCopy);
    return true;
}

bool CVXCoordArr::SnijLijn(CVXCoordArr &Punten, bool bCopy) const {
    CClipsnijpuntList Lijst(false, false);
    VerzamelClipLijst(Punten, Lijst);
    if (Lijst.IsEmpty()) return false;
    Lijst.Sort();
    Punten.InsertSnijpunten(nModeB, Lijst, bCopy);
    return true;
}

bool CVXCoordArr::SnijdLijn(const CVXCoordArr &Punten) const {
    for (int nI = 0; nI < GetSize() - 1; nI = nNextLinePart(nI)) {
        for (int nJ = 0; nJ < Punten.GetSize() - 1; nJ = Punten.nNextLinePart(nJ)) {
            Snijpunten s;
            const int nMasker = nSnijInLijnDeel(&s.p1, &s.p2, Punten, nI, nJ, true, nZonderEinden);
            if (bHeeft(nMasker, nMaskerEerste) || bHeeft(nMasker, nMaskerTweede)) return true;
        }
    }
    return false;
}

// ---- self-intersection ------------------------------------------------------------------------

bool CVXCoordArr::bSnijOpeenvolgende(int nI, CVXCoord **pSnij1, CVXCoord **pSnij2,
                                     SnijMode nMode) const {
    VX_ASSERT_TEXT(!bCirkel(), "!bCirkel()");
    *pSnij1 = *pSnij2 = nullptr;
    int nJ = nNextLinePart(nI);
    if (nJ >= GetSize() - 1) {
        if (!bGesloten()) return false;
        nJ = 0;
    }
    const bool bI = bBoog(nI), bJ = bBoog(nJ);
    const auto gelijk = [this](int a, int b) { return Pt(a).bGelijk(Pt(b)); };
    const bool bTerugMelden = nMode == SnijMetTerugloop;
    if (!bI && !bJ && gelijk(nI, nJ + 1)) { // stretch nJ runs straight back
        if (!bTerugMelden) return false;
        *pSnij1 = new CVXCoord(Pt(nI));
        return true;
    }
    if (bI && bJ && gelijk(nI, nJ + 2)) { // the second arc returns to the first one's start
        if (!gelijk(nI + 1, nJ + 1) || !bTerugMelden) return false;
        *pSnij1 = new CVXCoord(Pt(nI));
        *pSnij2 = new CVXCoord(Pt(nI + 2));
        return true;
    }
    if (bI && !bJ && gelijk(nI, nJ + 1)) return false;
    if (!bI && bJ && gelijk(nI, nJ + 2)) return false;
    const int nMasker = nSnijInLijnDeel(pSnij1, pSnij2, *this, nI, nJ, true, nZonderEinden);
    // The shared vertex nJ itself is no crossing.
    const auto bVanHoek = [this, nJ](CVXCoord *p) { return p && p->dDist(Pt(nJ)) > dPuntTol; };
    const bool b1 = bHoud(pSnij1, nMasker, nMaskerEerste, bVanHoek(*pSnij1));
    const bool b2 = bHoud(pSnij2, nMasker, nMaskerTweede, bVanHoek(*pSnij2));
    return b1 || b2;
}

bool CVXCoordArr::bSnijOpeenvolgende(int nI, SnijMode nMode) const {
    Snijpunten s;
    return bSnijOpeenvolgende(nI, &s.p1, &s.p2, nMode);
}

bool CVXCoordArr::bSnijdenDelen(const CVXCoordArr &Punten, int nI, int nJ, CVXCoord **pSnij1,
                                CVXCoord **pSnij2) const {
    *pSnij1 = *pSnij2 = nullptr;
    if (!bCirkelKromme(nI) && !Punten.bCirkelKromme(nJ)) {
        // The cheap orientation test first; the intersection only when it says yes.
        if (!SnijRechten(Punten, nI, nJ)) return false;
        nSnijInLijnDeel(pSnij1, pSnij2, Punten, nI, nJ, true, nZonderEinden);
        return *pSnij1 != nullptr;
    }
    const int nMasker = nSnijInLijnDeel(pSnij1, pSnij2, Punten, nI, nJ, true, nZonderEinden);
    const bool b1 = bHoud(pSnij1, nMasker, nMaskerEerste);
    const bool b2 = bHoud(pSnij2, nMasker, nMaskerTweede);
    return b1 || b2;
}

bool CVXCoordArr::bSnijdenDelen(const CVXCoordArr &Punten, int nI, int nJ) const {
    Snijpunten s;
    return bSnijdenDelen(Punten, nI, nJ, &s.p1, &s.p2);
}

int CVXCoordArr::nSnijdZichzelf2(CVXCoord **pSnij1, CVXCoord **pSnij2, SnijMode nMode) const {
    *pSnij1 = *pSnij2 = nullptr;
    if (bCirkel()) return -1;
    const int n = GetSize();
    for (int nI = 0; nI < n - 1; nI = nNextLinePart(nI))
        if (bSnijOpeenvolgende(nI, pSnij1, pSnij2, nMode)) return nI;
    const int nLaatste = n > 0 ? nStartDeel(n - 1) : 0;
    for (int nI = 0; nI < n - 2; nI = nNextLinePart(nI)) {
        // Stretch 0 of a closed line adjoins the last stretch, which is left out for it.
        const int nEind = (nI == 0 && bGesloten()) ? nLaatste : nLaatste + 1;
        for (int nJ = nNextLinePart(nNextLinePart(nI)); nJ < nEind; nJ = nNextLinePart(nJ))
            if (bSnijdenDelen(*this, nI, nJ, pSnij1, pSnij2)) return nI;
    }
    return -1;
}

int CVXCoordArr::nSnijdZichzelf2(SnijMode nMode) const {
    Snijpunten s;
    return nSnijdZichzelf2(&s.p1, &s.p2, nMode);
}

// ---- MakeSimple -------------------------------------------------------------------------------

namespace {

// Coinciding crossings (closer than the insertion tolerance) become exactly equal: the earlier
// point is overwritten with the later one.
void MaakGelijk(CVXCoordArr &kopie) {
    for (int i = kopie.GetSize() - 2; i >= 2; --i)
        for (int k = i - 2; k >= 0; --k)
            if (kopie.Pt(i).dDist(kopie.Pt(k)) < dKopieTol) kopie.SetAt(k, &kopie.Pt(i));
}

// The ring of points 1 to size − 1, with a jump behind each crossing; false when no node jumps.
bool bBouwRing(CVXCoordArr &kopie, CCircularPolyList &ring) {
    CCircularPolyListNode *pVorig = nullptr;
    for (int i = 1; i < kopie.GetSize(); ++i) {
        auto *pNode = new CCircularPolyListNode;
        pNode->m_pPunt = kopie.GetAt(i);
        ring.TransferAddTail(pNode);
        if (pVorig) pVorig->m_pNext = pNode;
        pVorig = pNode;
    }
    if (pVorig == nullptr) return false;
    pVorig->m_pNext = ring.GetHead();
    bool bSprong = false;
    for (POSITION pos = ring.GetHeadPosition(); pos != nullptr;) {
        CCircularPolyListNode *pNode = ring.GetNext(pos);
        for (CCircularPolyListNode *q = pNode->m_pNext; q != pNode; q = q->m_pNext) {
            if (q->m_pPunt->bGelijk(*pNode->m_pPunt)) {
                pNode->m_pSprong = q->m_pNext;
                bSprong = true;
                break;
            }
        }
    }
    return bSprong;
}

// One loop from node s, jumping over crossings; null when it grows beyond the node count.
std::unique_ptr<CVXCoordArr> Lus(CCircularPolyListNode *s, std::unique_ptr<CVXCoordArr> lus,
                                 int nKnopen) {
    lus->Add(s->m_pPunt);
    lus->GetAt(0)->SetSectie(nSectieStart);
    s->m_bBezocht = true;
    for (CCircularPolyListNode *p = s->m_pSprong ? s->m_pSprong : s->m_pNext; p != s;
         p = p->m_pSprong ? p->m_pSprong : p->m_pNext) {
        lus->Add(p->m_pPunt);
        p->m_bBezocht = true;
        if (lus->GetSize() > nKnopen) {
            VX_ASSERT_TEXT(false, "pPoly->GetSize()<=GetSize()");
            return nullptr;
        }
    }
    lus->Add(s->m_pPunt);
    return lus;
}

} // namespace

void CVXCoordArr::MakeSimple() {
    if (!bGesloten() || bCirkel()) return;
    std::unique_ptr<CVXCoordArr> kopie(NewL(true));
    std::as_const(*this).SnijLijn(*kopie, true);
    MaakGelijk(*kopie);
    CCircularPolyList ring;
    if (!bBouwRing(*kopie, ring)) return; // simple: it stays as it is
    std::unique_ptr<CVXCoordArr> beste;
    double dBeste = 0.0;
    for (POSITION pos = ring.GetHeadPosition(); pos != nullptr;) {
        CCircularPolyListNode *s = ring.GetNext(pos);
        if (s->m_bBezocht) continue;
        std::unique_ptr<CVXCoordArr> lus =
            Lus(s, std::unique_ptr<CVXCoordArr>(NewL(false)), static_cast<int>(ring.GetCount()));
        if (!lus) return; // the extraction gives up; the line stays as it is
        double dOpp = 0.0;
        lus->bOppervlak(&dOpp);
        if (!beste || dOpp > dBeste) { // the first of equal areas
            beste = std::move(lus);
            dBeste = dOpp;
        }
    }
    if (beste) Copy(*beste);
}

} // namespace vx
