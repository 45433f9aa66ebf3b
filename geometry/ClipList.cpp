#include "geometry/ClipList.h"

#include "geometry/PuntInPoly.h"
#include "geometry/Tolerances.h"
#include "platform/Assert.h"
#include "platform/Errors.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace vx {

static_assert(sizeof(ClipField) == 1, "the three flags share one byte");

namespace {

// A piece of A shorter than this, before a clip point, is too short to witness its side.
constexpr double dStukMin = 0.001;

double dMidden(double a, double b) {
    return (a + b) / 2.0;
}

// The point at distance d along stretch i of a line.
CVXCoord OpLijn(const CVXCoordArr &lijn, int i, double d) {
    CVXCoord p;
    p.SchuifOverLijnDeel(lijn, i, d);
    return p;
}

bool bBinnen(const CVXCoordArr &poly, const CVXCoord &p) {
    return poly.PuntInPolygoon(p).bBinnen;
}

// Writes the clip point over vertex nIndex of a working copy, keeping the vertex's section code.
void SnapVertex(CVXCoordArr &arr, int nIndex, const CVXCoord &punt) {
    const int nCode = arr.Pt(nIndex).m_nSectie;
    arr.SetAt(nIndex, &punt);
    arr.GetAt(nIndex)->SetSectie(static_cast<char>(nCode));
}

} // namespace

// ---- CClipSnijInfo ----------------------------------------------------------------------------

void CClipSnijInfo::Set(int nIndex, double dLengte) {
    m_nIndex = nIndex;
    m_dLengte = dLengte;
}

short CClipSnijInfo::nCompare(const CClipSnijInfo &other) const {
    if (m_nIndex > other.m_nIndex) return 1;
    if (m_nIndex < other.m_nIndex) return -1;
    if (std::fabs(m_dLengte - other.m_dLengte) <= dPuntTol) return 0;
    return m_dLengte < other.m_dLengte ? -1 : 1;
}

bool CClipSnijInfo::bSmaller(const CClipSnijInfo &other, short nMode) const {
    const bool bVoor = nCompare(other) < 0;
    if (m_pNext == nullptr) return bVoor;
    return bVoor && m_pNext->GetClipSnijInfo(nMode).nCompare(other) > 0;
}

void CClipSnijInfo::Dump(CDumpContext &dc) const {
    dc << "CClipSnijInfo " << m_nIndex << " " << m_dLengte << "\n";
}

// ---- CClipsnijpunt ----------------------------------------------------------------------------

CClipsnijpunt::CClipsnijpunt(int nIndexA, int nIndexB, double dLengteA, double dLengteB,
                             const CVXCoord &Punt, int nReversedIndex)
    : m_nReversedIndex(nReversedIndex), m_SnijPunt(Punt) {
    m_Info[nModeA].Set(nIndexA, dLengteA);
    m_Info[nModeB].Set(nIndexB, dLengteB);
}

CClipSnijInfo &CClipsnijpunt::Info(short nMode) {
    if (nMode != nModeA && nMode != nModeB)
        throw CInvalidArgException("CClipsnijpunt: only modes 0 and 1 index the places");
    return m_Info[nMode];
}

const CClipSnijInfo &CClipsnijpunt::Info(short nMode) const {
    return const_cast<CClipsnijpunt *>(this)->Info(nMode);
}

CClipsnijpunt *CClipsnijpunt::pGetNext(short nMode) const {
    if (nMode == nModeA || nMode == nModeB) return m_Info[nMode].m_pNext;
    return nMode == nModeBTerug ? m_Info[nModeB].m_pPrev : nullptr;
}

CClipsnijpunt *CClipsnijpunt::pGetPrev(short nMode) const {
    if (nMode == nModeA || nMode == nModeB) return m_Info[nMode].m_pPrev;
    return nMode == nModeBTerug ? m_Info[nModeB].m_pNext : nullptr;
}

int CClipsnijpunt::nGetIndex(short nMode) const {
    if (nMode == nModeA || nMode == nModeB) return m_Info[nMode].m_nIndex;
    return nMode == nModeBTerug ? m_nReversedIndex : 0;
}

short CClipsnijpunt::nCompare(const CClipsnijpunt *p, short nMode) const {
    return Info(nMode).nCompare(p->Info(nMode));
}

bool CClipsnijpunt::bSmaller(const CClipsnijpunt &other, short nMode) const {
    return Info(nMode).bSmaller(other.Info(nMode), nMode);
}

bool CClipsnijpunt::bKleiner(const CClipsnijpunt &other, short nMode) const {
    if (nMode == nModeA || nMode == nModeB) return m_Info[nMode].nCompare(other.m_Info[nMode]) < 0;
    if (nMode == nModeBTerug) return m_Info[nModeB].nCompare(other.m_Info[nModeB]) > 0;
    return false;
}

bool CClipsnijpunt::Nop() const {
    if (m_Status == SegOp) return true;
    const CClipsnijpunt *pPrev = pGetPrev(nModeA);
    return pPrev != nullptr && pPrev->m_Status == m_Status;
}

bool CClipsnijpunt::bDubbel() const {
    const CClipsnijpunt *pNext = pGetNext(nModeA);
    return pNext != nullptr && m_SnijPunt.dDist(pNext->m_SnijPunt) < dPuntTol;
}

void CClipsnijpunt::Remove() {
    for (short s = nModeA; s <= nModeB; ++s) {
        CClipSnijInfo &info = m_Info[s];
        if (info.m_pPrev) info.m_pPrev->m_Info[s].m_pNext = info.m_pNext;
        if (info.m_pNext) info.m_pNext->m_Info[s].m_pPrev = info.m_pPrev;
    }
}

void CClipsnijpunt::Status(CVXCoordArr &A, CVXCoordArr &B, bool bPolyB) {
    if (bSegmentOp(A, B, bPolyB))
        m_Status = SegOp;
    else
        m_Status = bSegmentBinnen(A, B, bPolyB) ? SegBinnen : SegBuiten;
    // On a vertex, both working copies take the clip point exactly.
    if (m_Info[nModeB].m_dLengte < dPuntTol) SnapVertex(B, m_Info[nModeB].m_nIndex, m_SnijPunt);
    if (m_Info[nModeA].m_dLengte < dPuntTol) SnapVertex(A, m_Info[nModeA].m_nIndex, m_SnijPunt);
}

bool CClipsnijpunt::bSegmentOp(const CVXCoordArr &A, const CVXCoordArr &B, bool bPolyB) const {
    const CClipsnijpunt *pN = pGetNext(nModeA);
    if (pN == nullptr) return false;
    const int i = m_Info[nModeA].m_nIndex;
    const CClipSnijInfo &volgend = pN->m_Info[nModeA];
    double dEind = 0.0;
    if (volgend.m_nIndex == 0 && volgend.m_dLengte < dPuntTol &&
        A.nNextLinePart(i) == A.GetSize() - 1) {
        dEind = A.dLijnLengte(i); // the ring closes on A's start
    } else if (!bKleiner(*pN, nModeA)) {
        return false;
    } else if (volgend.m_nIndex == i) {
        dEind = volgend.m_dLengte;
    } else if (volgend.m_nIndex == A.nNextLinePart(i) && volgend.m_dLengte < dPuntTol) {
        dEind = A.dLijnLengte(i);
    } else {
        return false; // a piece over more than one whole stretch is never SegOp by this test
    }
    const CVXCoord M = OpLijn(A, i, dMidden(m_Info[nModeA].m_dLengte, dEind));
    if (bPolyB) return B.nPuntInPuntArr(M) == 0;
    return B.bLineInTol(m_Info[nModeB].m_nIndex, M);
}

bool CClipsnijpunt::bSegmentBinnen(const CVXCoordArr &A, const CVXCoordArr &B, bool bPolyB) const {
    return bPolyB ? bSegmentBinnenPolyB(A, B) : bSegmentBinnenLijnB(A, B);
}

// B is an open line: its stretch before the clip point is tested against A.
bool CClipsnijpunt::bSegmentBinnenLijnB(const CVXCoordArr &A, const CVXCoordArr &B) const {
    const CClipSnijInfo &hier = m_Info[nModeB];
    int nSeg = hier.m_nIndex;
    double dL = 0.0;
    bool bStart = false;
    if (const CClipsnijpunt *pPrev = pGetPrev(nModeB)) {
        const CClipSnijInfo &vorig = pPrev->m_Info[nModeB];
        if (vorig.m_nIndex == nSeg) {
            dL = dMidden(vorig.m_dLengte, hier.m_dLengte);
        } else if (hier.m_dLengte < dPuntTol) {
            nSeg = vorig.m_nIndex;
            dL = dMidden(vorig.m_dLengte, B.dLijnLengte(nSeg));
        }
    } else if (hier.m_dLengte > dPuntTol) {
        dL = hier.m_dLengte / 2.0;
    } else {
        // On B's first vertex: the piece after the point must do.
        const CClipsnijpunt *pN = pGetNext(nModeB);
        if (pN == nullptr) {
            VX_ASSERT_TEXT(false, "FALSE");
            return false;
        }
        if (pN->m_Info[nModeB].m_nIndex == nSeg) {
            dL = dMidden(pN->m_Info[nModeB].m_dLengte, hier.m_dLengte);
            bStart = true;
        }
    }
    return bBinnen(A, OpLijn(B, nSeg, dL)) && !bStart;
}

// B is a polygon: the stretch of A after the clip point is tested against B.
bool CClipsnijpunt::bSegmentBinnenPolyB(const CVXCoordArr &A, const CVXCoordArr &B) const {
    const int i = m_Info[nModeA].m_nIndex;
    const double dHier = m_Info[nModeA].m_dLengte;
    const CClipsnijpunt *pN = pGetNext(nModeA);
    if (pN == nullptr) { // the last clip point of an open A
        const int nNext = A.nNextLinePart(i);
        if (nNext < A.GetSize() && B.nPuntInPuntArr(A.Pt(nNext)) != 0)
            return B.nPuntInPuntArr(A.Pt(nNext)) == 1;
        const double dL = A.dLijnLengte(i) - dHier;
        VX_ASSERT_TEXT(dL > 0.0, "dL>0.0");
        return bBinnen(B, OpLijn(A, i, dHier + dL * 0.5));
    }
    const CClipSnijInfo &volgend = pN->m_Info[nModeA];
    if (volgend.m_nIndex == i) {
        // A next point before this one: the chain has passed the ring's seam.
        if (volgend.m_dLengte < dHier) return bBinnen(B, A.Pt(A.nNextLinePart(i)));
        return bBinnen(B, OpLijn(A, i, dMidden(dHier, volgend.m_dLengte)));
    }
    const int j = volgend.m_nIndex;
    if (volgend.m_dLengte > dPuntTol) return bBinnen(B, A.Pt(j));
    const int n = A.GetSize();
    const bool bBuren = j == A.nNextLinePart(i) || (j == 0 && A.nNextLinePart(i) == n - 1);
    if (!bBuren) {
        // Any vertex in between will do, not necessarily the piece's middle.
        const int m = i < j ? (i + j) / 2 : ((i + j + n) / 2) % n;
        if (!(m == n - 1 && j == 0 && A.bGesloten())) return B.bPuntInPuntArr(A.Pt(m));
    }
    // Too short to test after the point: the piece before it, inverted.
    if (const CClipsnijpunt *pPrev = pGetPrev(nModeA)) {
        const CClipSnijInfo &vorig = pPrev->m_Info[nModeA];
        if (vorig.m_nIndex != i) {
            if (dHier > dStukMin) return B.nPuntInPuntArr(OpLijn(A, i, dHier / 2.0)) == -1;
        } else {
            const double dL = dHier - vorig.m_dLengte;
            VX_ASSERT_TEXT(dL >= 0.0, "dL>=0.0");
            if (dL > dStukMin)
                return B.nPuntInPuntArr(OpLijn(A, i, vorig.m_dLengte + dL * 0.5)) == -1;
        }
    }
    return B.bPuntInPuntArr(OpLijn(A, i, A.dLijnLengte(i) / 2.0));
}

void CClipsnijpunt::Dump(CDumpContext &dc) const {
    dc << "CClipsnijpunt " << static_cast<int>(m_Status) << " " << m_SnijPunt.m_dX << " "
       << m_SnijPunt.m_dY << " " << static_cast<int>(m_nGehad) << "\n";
    m_Info[nModeA].Dump(dc);
    m_Info[nModeB].Dump(dc);
}

// ---- CClipsnijpuntList ------------------------------------------------------------------------

CClipsnijpuntList::CClipsnijpuntList(bool bPolyA, bool bPolyB) : m_bPolyA{bPolyA, bPolyB} {}

CClipsnijpuntList::~CClipsnijpuntList() {
    for (POSITION pos = GetHeadPosition(); pos != nullptr;)
        delete GetNext(pos);
}

void CClipsnijpuntList::Voeg(CClipsnijpunt *p) {
    try {
        AddTail(p);
    } catch (...) {
        delete p;
        throw;
    }
}

CClipsnijpunt *CClipsnijpuntList::GetNext(POSITION &pos) const {
    return static_cast<CClipsnijpunt *>(CObList::GetNext(pos));
}

// The order of chain s, the same as a selection that repeatedly takes, among the points not yet
// linked, the first in the body unless a later one is strictly smaller. Across stretches the
// comparison is exact, so the selection always lands in the bucket of the lowest stretch index,
// and there it is the running minimum (with the tolerance) over that bucket in body order. So
// the points are bucketed by stretch (a stable sort keeps body order) and the selection runs per
// bucket: the same order as a selection over the whole list, without its quadratic cost.
std::vector<CClipsnijpunt *> CClipsnijpuntList::KetenVolgorde(short s) const {
    std::vector<CClipsnijpunt *> punten;
    for (POSITION pos = GetHeadPosition(); pos != nullptr;) {
        CClipsnijpunt *p = GetNext(pos);
        if (p->pGetPrev(s) == nullptr) punten.push_back(p); // a fresh list: none is linked yet
    }
    std::stable_sort(punten.begin(), punten.end(),
                     [s](const CClipsnijpunt *a, const CClipsnijpunt *b) {
                         return a->nGetIndex(s) < b->nGetIndex(s);
                     });
    std::vector<CClipsnijpunt *> keten;
    keten.reserve(punten.size());
    for (size_t begin = 0; begin < punten.size();) {
        size_t eind = begin;
        while (eind < punten.size() && punten[eind]->nGetIndex(s) == punten[begin]->nGetIndex(s))
            ++eind;
        std::vector<CClipsnijpunt *> bak(punten.begin() + static_cast<std::ptrdiff_t>(begin),
                                         punten.begin() + static_cast<std::ptrdiff_t>(eind));
        while (!bak.empty()) {
            size_t nBeste = 0;
            // Unlinked points have no next link: a plain strict comparison, so of two equal
            // places the one found first in the body wins.
            for (size_t k = 1; k < bak.size(); ++k)
                if (bak[k]->bSmaller(*bak[nBeste], s)) nBeste = k;
            keten.push_back(bak[nBeste]);
            bak.erase(bak.begin() + static_cast<std::ptrdiff_t>(nBeste));
        }
        begin = eind;
    }
    return keten;
}

void CClipsnijpuntList::Sort() {
    for (short s = nModeA; s <= nModeB; ++s) {
        const std::vector<CClipsnijpunt *> keten = KetenVolgorde(s);
        m_pHead[s] = keten.empty() ? nullptr : keten.front();
        m_pLast[s] = keten.empty() ? nullptr : keten.back();
        for (size_t k = 1; k < keten.size(); ++k) {
            keten[k - 1]->SetNext(keten[k], s);
            keten[k]->SetPrev(keten[k - 1], s);
        }
    }
    if (GetCount() < 2) return; // a single point forms no ring
    for (short s = nModeA; s <= nModeB; ++s) {
        if (!m_bPolyA[s] || m_pHead[s] == nullptr) continue;
        m_pHead[s]->SetPrev(m_pLast[s], s);
        m_pLast[s]->SetNext(m_pHead[s], s);
    }
}

void CClipsnijpuntList::RemoveDubbele(const CVXCoordArr &A, const CVXCoordArr &B) {
    const bool bOpenA = !m_bPolyA[nModeA];
    const int nLaatsteA = A.nStartDeel(A.GetSize() - 1);
    for (POSITION pos = GetHeadPosition(); pos != nullptr;) {
        const POSITION hier = pos;
        CClipsnijpunt *p = GetNext(pos);
        p->m_Pos = hier;
        const CClipsnijpunt *pNext = p->pGetNext(nModeA);
        const CClipSnijInfo &info = p->m_Info[nModeA];
        if (pNext != nullptr && info.nCompare(pNext->m_Info[nModeA]) == 0) {
            Remove(p);
        } else if (p->bDubbel()) {
            Remove(p);
        } else if (bOpenA) {
            // The ends of an open line are no crossings.
            const bool bBegin = info.m_nIndex == 0 && p->m_SnijPunt.dDist(A.Pt(0)) < dPuntTol;
            const bool bEind =
                info.m_nIndex == nLaatsteA && p->m_SnijPunt.dDist(A.Pt(A.GetSize() - 1)) < dPuntTol;
            if (bBegin || bEind) Remove(p);
        }
    }
    if (IsEmpty() || !m_bPolyA[nModeA] || m_bPolyA[nModeB]) return;
    // An open line B that starts or ends inside polygon A loses that first or last crossing.
    if (bBinnen(A, B.Pt(0)) && m_pHead[nModeB] != nullptr) Remove(m_pHead[nModeB]);
    if (bBinnen(A, B.Pt(B.GetSize() - 1)) && m_pLast[nModeB] != nullptr) Remove(m_pLast[nModeB]);
}

void CClipsnijpuntList::Remove(CClipsnijpunt *p) {
    for (short s = nModeA; s <= nModeB; ++s) {
        if (m_pHead[s] == p) m_pHead[s] = p->pGetNext(s);
        if (m_pLast[s] == p) m_pLast[s] = p->pGetPrev(s);
        // The last point of a ring is its own neighbour: the chain is empty then.
        if (m_pHead[s] == p) m_pHead[s] = nullptr;
        if (m_pLast[s] == p) m_pLast[s] = nullptr;
    }
    p->Remove();
    if (p->m_Pos == nullptr) return;
    RemoveAt(p->m_Pos);
    delete p;
}

void CClipsnijpuntList::Verwijder(CClipsnijpunt *pVan, CClipsnijpunt *pTot) {
    CClipsnijpunt *p = pVan;
    // Bounded by the count, so that a pTot outside the chain cannot make a ring run forever.
    for (int32_t n = GetCount(); p != nullptr && n > 0; --n) {
        CClipsnijpunt *pNext = p->pGetNext(nModeA);
        const bool bLaatste = p == pTot || pNext == p;
        Remove(p);
        if (bLaatste) return;
        p = pNext;
    }
}

void CClipsnijpuntList::SetBiBuFlags(CVXCoordArr &A, CVXCoordArr &B) {
    CClipsnijpunt *pHead = m_pHead[nModeA];
    CClipsnijpunt *p = pHead;
    for (int32_t n = GetCount(); p != nullptr && n > 0; --n) {
        p->Status(A, B, m_bPolyA[nModeB]);
        p = p->pGetNext(nModeA);
        if (p == pHead) return;
    }
}

// ---- CInsertionClipLijst, CCircularPolyList ---------------------------------------------------

CInsertionClipLijst::CInsertionClipLijst(const CClipsnijpuntList &Lijst, short nMode) {
    for (POSITION pos = Lijst.GetHeadPosition(); pos != nullptr;)
        VoegIn(Lijst.GetNext(pos), nMode);
}

void CInsertionClipLijst::VoegIn(CClipsnijpunt *p, short nMode) {
    if (p->dLengte(nMode) <= dPuntTol) return; // it sits on an existing vertex
    const int nIndex = p->nGetIndex(nMode);
    for (POSITION pos = GetHeadPosition(); pos != nullptr;) {
        const POSITION hier = pos;
        const CClipsnijpunt *q = GetNext(pos);
        const int nQ = q->nGetIndex(nMode);
        if (nQ > nIndex || (nQ == nIndex && q->dLengte(nMode) > p->dLengte(nMode))) {
            InsertBefore(hier, p);
            return;
        }
    }
    AddTail(p);
}

CCircularPolyList::~CCircularPolyList() {
    for (POSITION pos = GetHeadPosition(); pos != nullptr;)
        delete GetNext(pos);
}

} // namespace vx
