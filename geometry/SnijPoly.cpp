// CVXCoordArr::bSnijPoly, the polygon clipper: this line or polygon (A) is cut by Punten (B) into
// the pieces inside B and the pieces outside it, with arcs and splines kept as they are.
//
// Method: the clip list (geometry/ClipList.h) is collected on working copies, sorted, thinned and
// classified; then the result is walked. A polygon A gives closed rings (CreeerPolys): a ring
// starts on A at a clip point where A passes to the wanted side, follows A to the next clip
// point, and changes to B (forward for the inside, backward for the outside) wherever the side
// changes, until it closes. A line A gives open pieces (CreeerSegs), one per clip point whose
// piece lies on the wanted side. Every piece is cut out of the section structure with
// nInsertInLine and bSplits, never flattened. The guard against a walk that runs away on
// inconsistent statuses is a size limit on the ring under construction (with its steps counted
// against the same limit, see CreeerPolys).
#include "geometry/ClipList.h"
#include "geometry/Extents.h"
#include "geometry/PuntInPoly.h"
#include "geometry/Tolerances.h"
#include "geometry/VXCoordArr.h"
#include "platform/Assert.h"

#include <cmath>
#include <memory>

namespace vx {

namespace {

using LijnPtr = std::unique_ptr<CVXCoordArr>;

// The two sequences a walk runs on: A (this) and B.
enum Reeks : int { nReeksA = 0, nReeksB = 1 };

// Whether every point has a finite X and Y. A line with an unknown position has no geometry to
// cut; without this the search for B's inner point would run its full grid for nothing.
bool bEindig(const CVXCoordArr &lijn) {
    for (int i = 0; i < lijn.GetSize(); ++i)
        if (!std::isfinite(lijn.Pt(i).m_dX) || !std::isfinite(lijn.Pt(i).m_dY)) return false;
    return true;
}

// Whether B has an inner point for the test "B lies within A". Its box must have width and
// height: on a box of no width or height every grid point of CreeerCentroide lies on B's line,
// so none is inside, and the search would try all of its grid (half a minute) to say so.
bool bZoekBinnenpunt(const CVXCoordArr &B, CVXCoord &centrum) {
    CExtents ext;
    B.Extents(ext, false);
    if (!(ext.m_dXrb > ext.m_dXlo) || !(ext.m_dYrb > ext.m_dYlo)) return false;
    return B.CreeerCentroide(centrum);
}

void ResetGehad(const CClipsnijpuntList &Clip) {
    for (POSITION pos = Clip.GetHeadPosition(); pos != nullptr;)
        Clip.GetNext(pos)->ResetGehad();
}

// A clip point where the walk may begin a ring: a change of side into nZoek, not yet visited
// when bBezoek is asked for.
bool bStartKandidaat(const CClipsnijpunt &p, SegStatus nZoek, bool bBezoek) {
    if (p.Nop() || p.Status() != nZoek) return false;
    return !bBezoek || !p.bGehad();
}

CClipsnijpunt *pZoekStart(const CClipsnijpuntList &Clip, SegStatus nZoek) {
    for (POSITION pos = Clip.GetHeadPosition(); pos != nullptr;) {
        CClipsnijpunt *p = Clip.GetNext(pos);
        if (bStartKandidaat(*p, nZoek, true)) return p;
    }
    return nullptr;
}

// The last point of the stretch that starts at nJ: an arc's end, a spline run's last point, or
// the next point.
int nEindVanDeel(const CVXCoordArr &lijn, int nJ) {
    if (lijn.bBoog(nJ)) return nJ + 2;
    if (lijn.bSpline(nJ)) return nJ + lijn.nTelSplinePunten(nJ);
    return nJ + 1;
}

void VoegReeks(CVXCoordArr &doel, const CVXCoordArr &bron, int nVan, int nTot) {
    for (int i = nVan; i <= nTot; ++i)
        doel.Add(&bron.Pt(i));
}

// The part of lijn behind the point p on stretch nDeel: p is made a vertex and the line is split
// there; the first half stays in Links, the second in Rechts.
void SplitsOp(CVXCoordArr &lijn, const CVXCoord &p, int nDeel, CVXCoordArr &Links,
              CVXCoordArr &Rechts) {
    const int nIndex = lijn.nInsertInLine(p, nDeel, true);
    lijn.bSplits(Links, Rechts, nIndex, true);
}

void Voeg(CVXCoordArrList &Lijst, LijnPtr lijn) {
    Lijst.AddTail(lijn.get());
    lijn.release();
}

// Where the walk goes after p on sequence nReeks, and whether it changes to the other sequence
// there. False when the chain ends or a run along the boundary never ends (reported).
struct Stap {
    CClipsnijpunt *pVolgend = nullptr;
    bool bWissel = false;
};

bool bVolgendeStap(const CClipsnijpunt &p, short nMode, int nClip, Stap &stap) {
    stap.pVolgend = p.pGetNext(nMode);
    if (stap.pVolgend == nullptr) {
        VX_ASSERT_TEXT(false, "pCP!=NULL");
        return false;
    }
    if (stap.pVolgend->Status() != SegOp) {
        stap.bWissel = !stap.pVolgend->Nop(); // a change of side
        return true;
    }
    // A run along the other boundary: the first status beyond it decides. Equal to p's status
    // means the walk has gone through to the other side of the shared stretch.
    const CClipsnijpunt *q = stap.pVolgend;
    for (int n = 0; q != nullptr && q->Status() == SegOp && n < nClip; ++n)
        q = q->pGetNext(nMode);
    if (q == nullptr || q->Status() == SegOp) {
        VX_ASSERT_TEXT(false, "pCP2!=NULL");
        return false;
    }
    stap.bWissel = q->Status() == p.Status();
    return true;
}

} // namespace

// ---- bSnijPoly --------------------------------------------------------------------------------

bool CVXCoordArr::bSnijPoly(CVXCoordArrList &Binnen, CVXCoordArrList &Buiten,
                            const CVXCoordArr &Punten, ClipField Velden, bool bPolygoon) const {
    if (!bEindig(*this) || !bEindig(Punten)) return false; // an unknown position cuts nothing
    CVXCoordArr A2(*this);
    // B2 is B's working copy; Gelijk only reads its argument.
    CVXCoordArr B2(Punten);
    if (A2.Gelijk(B2)) return false; // a polygon clipped by itself gives no result
    // Only A is turned into arcs; a circle as B stays a circle.
    if (GetSize() > 2 && nSectieVan(1) == nSectieCirkel) A2.Circle2Arcs();

    CClipsnijpuntList Clip(bPolygoon, Punten.bGesloten());
    A2.VerzamelClipLijst(Punten, Clip);
    if (Clip.IsEmpty()) return false;
    Clip.Sort();
    Clip.RemoveDubbele(A2, Punten);
    if (Clip.IsEmpty()) return false;
    if (!Velden.bBinnenDeel && !Velden.bBuitenDeel && !Velden.bBeideVerplicht)
        return true; // the caller only wanted to know whether the two meet

    Clip.SetBiBuFlags(A2, B2);
    const bool bEenPunt = Clip.GetCount() == 1;
    if (Velden.bBeideVerplicht) {
        CVXCoordArrList kladBinnen, kladBuiten;
        if (bPolygoon) {
            if (bEenPunt) return false;
            A2.CreeerPolys(kladBinnen, B2, Clip, true);
            if (kladBinnen.IsEmpty()) return false;
            ResetGehad(Clip);
            A2.CreeerPolys(kladBuiten, B2, Clip, false);
        } else {
            A2.CreeerSegs(kladBinnen, B2, Clip, true);
            if (kladBinnen.IsEmpty()) return false;
            A2.CreeerSegs(kladBuiten, B2, Clip, false);
        }
        if (kladBuiten.IsEmpty()) return false;
        // Kept on purpose: the visits of the second dry walk are not reset, so the real inside
        // walk below starts on the counts the outside walk left; callers' results depend on it.
    }
    if (bPolygoon) {
        if (bEenPunt) return false;
        if (Velden.bBinnenDeel) A2.CreeerPolys(Binnen, B2, Clip, true);
        if (Velden.bBuitenDeel) {
            if (Velden.bBinnenDeel) ResetGehad(Clip);
            A2.CreeerPolys(Buiten, B2, Clip, false);
        }
    } else {
        if (Velden.bBinnenDeel) A2.CreeerSegs(Binnen, B2, Clip, true);
        if (Velden.bBuitenDeel) A2.CreeerSegs(Buiten, B2, Clip, false);
    }
    return true;
}

// ---- rings ------------------------------------------------------------------------------------

void CVXCoordArr::CreeerPolys(CVXCoordArrList &Lijst, const CVXCoordArr &Punten,
                              CClipsnijpuntList &Clip, bool bBinnen) const {
    const SegStatus nZoek = bBinnen ? SegBinnen : SegBuiten;
    bool bOpGevonden = false, bBinnenGevonden = false, bBuitenGevonden = false;
    CClipsnijpunt *pStart = nullptr;
    for (POSITION pos = Clip.GetHeadPosition(); pos != nullptr;) {
        CClipsnijpunt *p = Clip.GetNext(pos);
        bOpGevonden = bOpGevonden || p->Status() == SegOp;
        bBinnenGevonden = bBinnenGevonden || p->Status() == SegBinnen;
        bBuitenGevonden = bBuitenGevonden || p->Status() == SegBuiten;
        if (pStart == nullptr && bStartKandidaat(*p, nZoek, false)) pStart = p;
    }
    if (pStart == nullptr) {
        if (bOpGevonden && !bBinnenGevonden && !bBuitenGevonden) {
            // The two coincide along all pieces.
            Voeg(Lijst, std::make_unique<CVXCoordArr>(*this));
        } else if (bBinnenGevonden) {
            // A lies inside B, touching it: no ring in either list.
            VX_ASSERT_TEXT(!bBuitenGevonden, "!bBuitenGevonden");
        } else {
            VX_ASSERT_TEXT(bBuitenGevonden, "bBuitenGevonden");
            CVXCoord centrum;
            if (bZoekBinnenpunt(Punten, centrum) && PuntInPolygoon(centrum).bBinnen) {
                // B lies within A, touching it: B itself, with the touch points as vertices.
                auto pB = std::make_unique<CVXCoordArr>(Punten);
                const CInsertionClipLijst invoeg(Clip, nModeB);
                for (POSITION pos = invoeg.GetTailPosition(); pos != nullptr;) {
                    const CClipsnijpunt *p = invoeg.GetPrev(pos);
                    pB->nInsertInLine(p->GetSnij(), p->nGetIndex(nModeB), false);
                }
                Voeg(Lijst, std::move(pB));
            }
        }
        return;
    }

    // The outside walks B backward, on a reversed copy that m_nReversedIndex fits.
    CVXCoordArr BTerug;
    if (!bBinnen) {
        BTerug.Copy(Punten);
        BTerug.DraaiRichting();
    }
    const CVXCoordArr *pReeks[2] = {this, bBinnen ? &Punten : &BTerug};
    const short nModes[2] = {nModeA, bBinnen ? nModeB : nModeBTerug};
    const int nClip = Clip.GetCount();
    const int nLimiet = nClip + GetSize() + Punten.GetSize() + 1;

    auto pRing = std::make_unique<CVXCoordArr>();
    int nReeks = nReeksA;
    bool bHerbezoek = false;
    // The size limit is the guard against a runaway walk. A walk whose steps add no point would
    // never reach it, so the steps are counted against the same limit: a walk that grows by at
    // least a point per step meets the size limit first, and results do not change.
    int nStappen = 0;
    for (CClipsnijpunt *p = pStart; p != nullptr;) {
        if (++nStappen > nLimiet) return;
        if (p->bGehad()) bHerbezoek = true;
        const short nMode = nModes[nReeks];
        pRing->Add(*pReeks[nReeks], p, nMode, Clip.m_bPolyA[nReeks]);
        if (pRing->GetSize() > nLimiet) return; // the walk runs away; rings delivered stay
        p->Gehad();
        if (!pRing->bGesloten()) {
            Stap stap;
            if (!bVolgendeStap(*p, nMode, nClip, stap)) return;
            if (stap.bWissel) nReeks = nReeks == nReeksA ? nReeksB : nReeksA;
            p = stap.pVolgend;
            continue;
        }
        if (bHerbezoek) {
            pRing.release()->CreeerSubLoops(Lijst);
        } else if (pRing->GetSize() > 1) {
            Voeg(Lijst, std::move(pRing));
        }
        bHerbezoek = false;
        p = pZoekStart(Clip, nZoek);
        // Every start is on A: an inside start for the inside, an outside one for the outside.
        nReeks = nReeksA;
        pRing = std::make_unique<CVXCoordArr>();
        nStappen = 0;
    }
}

void CVXCoordArr::CreeerSubLoops(CVXCoordArrList &Lijst) {
    // The ring is handed over by its walk: it goes to Lijst after the loops it gives up.
    LijnPtr pEigen(this);
    for (bool bGevonden = true; bGevonden;) {
        bGevonden = false;
        for (int i = 1; i < GetSize() - 2 && !bGevonden; ++i) {
            for (int j = i + 1; j < GetSize() - 1; ++j) {
                if (Pt(i).dDist(Pt(j)) >= dPuntTol) continue;
                auto pLus = std::make_unique<CVXCoordArr>();
                VoegReeks(*pLus, *this, i, j);
                pLus->GetAt(0)->SetSectie(nSectieStart);
                Voeg(Lijst, std::move(pLus));
                for (int k = j; k > i; --k)
                    RemoveAt(k);
                bGevonden = true;
                break;
            }
        }
    }
    Voeg(Lijst, std::move(pEigen));
}

// ---- pieces -----------------------------------------------------------------------------------

void CVXCoordArr::Add(const CVXCoordArr &Punten, CClipsnijpunt *pCP, short nMode, bool bGesloten) {
    VX_ASSERT_TEXT(!Punten.bCirkel(), "!Punten.bCirkel()");
    const int nI = pCP->nGetIndex(nMode);
    const CClipsnijpunt *pNext = pCP->pGetNext(nMode);
    const int nSize = Punten.GetSize();
    const int nJ = pNext != nullptr ? pNext->nGetIndex(nMode) : Punten.nStartDeel(nSize - 1);
    const int nEnd = nEindVanDeel(Punten, nJ);

    CVXCoordArr Temp;
    int nRel = 0;
    const bool bNaad =
        bGesloten && (nI > nJ || (nI == nJ && pNext != nullptr && pNext->bKleiner(*pCP, nMode)));
    if (bNaad) {
        // Over the ring's seam: to the end, then on from index 1 (point 0 repeats the last).
        VoegReeks(Temp, Punten, nI, nSize - 1);
        VoegReeks(Temp, Punten, 1, nEnd);
        nRel = (nSize - nI) + nJ - 1;
    } else {
        VoegReeks(Temp, Punten, nI, nEnd);
        nRel = nJ - nI;
    }
    if (Temp.IsEmpty()) return; // no stretch between the two: nothing to add
    Temp.GetAt(0)->SetSectie(nSectieStart);
    // A single spline step is a straight stretch.
    if (Temp.GetSize() == 2 && Temp.Pt(1).m_nSectie == nSectieSpline)
        Temp.GetAt(1)->SetSectie(nSectieRecht);
    VX_ASSERT_TEXT(Temp.nSectieOnlyTest2() == -1, "Temp.nSectieOnlyTest2()==0xffffffff");

    CVXCoordArr Links, Rechts;
    if (pNext != nullptr)
        SplitsOp(Temp, pNext->GetSnij(), nRel, Links, Rechts);
    else
        Links.SetCopy(Temp);
    CVXCoordArr Voor, Stuk;
    SplitsOp(Links, pCP->GetSnij(), 0, Voor, Stuk);
    if (Stuk.IsEmpty()) return;
    if (IsEmpty()) {
        Add(&Stuk);
        GetAt(0)->SetSectie(nSectieStart);
    } else {
        // The piece's first point repeats this sequence's last.
        for (int i = 1; i < Stuk.GetSize(); ++i)
            Add(&Stuk.Pt(i));
    }
}

void CVXCoordArr::AddBegin(const CVXCoordArr &Punten, CClipsnijpunt *pCP) {
    VX_ASSERT_TEXT(!Punten.bCirkel(), "!Punten.bCirkel()");
    const int nI = pCP->nGetIndex(nModeA);
    CVXCoordArr Temp;
    VoegReeks(Temp, Punten, 0, Punten.bBoog(nI) ? nI + 2 : nI + 1);
    CVXCoordArr Rest;
    SplitsOp(Temp, pCP->GetSnij(), nI, *this, Rest);
}

// ---- open pieces ------------------------------------------------------------------------------

namespace {

// The side of an open line A's start towards B, when A starts on B's boundary: a witness point a
// little way along A before the first clip point. Stretches are stepped by index one at a time
// (kept: an arc's support point then starts a "stretch" of its own; the witness only needs to be
// some point before the first clip point).
short nZijdeVanBegin(const CVXCoordArr &A, const CVXCoordArr &B, const CClipsnijpunt *pFirst) {
    short n = B.nPuntInPuntArr(A.Pt(0));
    if (n != 0 || pFirst == nullptr) return n;
    const int nFirst = pFirst->nGetIndex(nModeA);
    int i = 0;
    while (i < nFirst && A.dLijnLengte(i) / 2.0 < dPuntTol)
        ++i;
    const double dL = i == nFirst ? pFirst->dLengte(nModeA) / 2.0 : A.dLijnLengte(i) / 2.0;
    if (dL > dPuntTol) {
        CVXCoord getuige;
        getuige.SchuifOverLijnDeel(A, i, dL);
        n = B.nPuntInPuntArr(getuige);
    }
    return n;
}

} // namespace

void CVXCoordArr::CreeerSegs(CVXCoordArrList &Lijst, const CVXCoordArr &Punten,
                             CClipsnijpuntList &Clip, bool bBinnen) const {
    const SegStatus nZoek = bBinnen ? SegBinnen : SegBuiten;
    CClipsnijpunt *pFirst = Clip.pGetWorkHead(nModeA);
    const short n = nZijdeVanBegin(*this, Punten, pFirst);
    constexpr short nBinnenB = 1, nBuitenB = -1;
    if (pFirst != nullptr && n == (bBinnen ? nBinnenB : nBuitenB)) {
        // The stretch before the first clip point belongs to the result.
        auto pSeg = std::make_unique<CVXCoordArr>();
        if (pFirst->dLengte(nModeA) > dPuntTol) {
            pSeg->AddBegin(*this, pFirst);
        } else {
            CVXCoordArr Rest;
            bSplits(*pSeg, Rest, pFirst->nGetIndex(nModeA), true);
        }
        Voeg(Lijst, std::move(pSeg));
    }
    for (POSITION pos = Clip.GetHeadPosition(); pos != nullptr;) {
        CClipsnijpunt *p = Clip.GetNext(pos);
        if (p->Status() != nZoek) continue;
        auto pSeg = std::make_unique<CVXCoordArr>();
        pSeg->Add(*this, p, nModeA, false);
        Voeg(Lijst, std::move(pSeg));
    }
}

} // namespace vx
