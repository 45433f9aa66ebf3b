// The intersection list of polygon clipping: every point where two point sequences A (`this` of
// the operation) and B (its argument) meet, each knowing its place on both, threaded on two
// doubly linked chains over the same objects, one in the order of A and one in the order of B.
//
// Method: all stretch pairs are intersected with nSnijInLijnDeel; the list body keeps the order
// of discovery, Sort builds both chains by selection (quadratic in the number of points, the list
// order deciding ties), and a chain is closed to a ring only where its sequence is closed.
// Places compare with the point tolerance dPuntTol: two lengths on one stretch that differ by at
// most 0.0005 are one place. RemoveDubbele thins the sorted list, SetBiBuFlags classifies the
// piece behind every point. A clip list never outlives the operation that made it.
//
// Walking modes (a short everywhere): 0 walks A forward, 1 walks B forward, 2 walks B backward
// (on a reversed copy of B, which m_nReversedIndex fits).
#pragma once

#include "platform/VXExport.h"

#include "geometry/VXCoord.h"
#include "geometry/VXCoordArr.h"
#include "persist/SerCollections.h"
#include "platform/Lists.h"

#include <cstdint>
#include <vector>

namespace vx VX_API {

// The walking modes of a clip point.
enum : short { nModeA = 0, nModeB = 1, nModeBTerug = 2 };

// The class of the piece that follows a clip point.
enum SegStatus : int32_t {
    SegOnbepaald = 0, // not classified yet
    SegOp = 1,        // the piece runs along the other sequence's boundary
    SegBinnen = 2,    // the piece lies inside the other sequence
    SegBuiten = 3     // the piece lies outside the other sequence
};

// How the self-intersection tests treat a stretch that runs straight back over its predecessor:
// only 0 reports it.
enum SnijMode : int { SnijMetTerugloop = 0, SnijZonderTerugloop = 1 };

// What the clipper delivers: three flags in the low bits of one byte.
struct ClipField {
    bool bBinnenDeel : 1 = false;     // the pieces inside B
    bool bBuitenDeel : 1 = false;     // the pieces outside B
    bool bBeideVerplicht : 1 = false; // fail unless both an inside and an outside result exist

    ClipField() = default;
    ClipField(bool bBinnen, bool bBuiten, bool bBeide)
        : bBinnenDeel(bBinnen), bBuitenDeel(bBuiten), bBeideVerplicht(bBeide) {}
};

class CClipsnijpunt;

// The place of a clip point on one sequence and its links in that sequence's chain.
class CClipSnijInfo : public CObject {
public:
    int m_nIndex = 0;                 // first point of the stretch that holds the clip point
    double m_dLengte = 0.0;           // distance along that stretch from its first point
    CClipsnijpunt *m_pNext = nullptr; // not owned
    CClipsnijpunt *m_pPrev = nullptr; // not owned

    void Set(int nIndex, double dLengte);
    void SetNext(CClipsnijpunt *p) { m_pNext = p; }
    void SetPrev(CClipsnijpunt *p) { m_pPrev = p; }
    int nGetIndex() const { return m_nIndex; }
    // -1, 0 or 1: by stretch index, then by length, equal within dPuntTol.
    short nCompare(const CClipSnijInfo &other) const;
    // Strictly before other, and, when this place has a next point, other falls strictly
    // between this place and the next one in the chain of nMode.
    bool bSmaller(const CClipSnijInfo &other, short nMode) const;
    void Dump(CDumpContext &dc) const override;
};

// One clip point: its place on A and on B, its status and its remaining visits.
class CClipsnijpunt : public CObject {
public:
    SegStatus m_Status = SegOnbepaald;
    CClipSnijInfo m_Info[2];
    int m_nReversedIndex = 0; // index of B's stretch in the reversed copy of B
    CVXCoord m_SnijPunt;
    short m_nGehad = 1;       // remaining visits; 0 means fully visited
    POSITION m_Pos = nullptr; // place in the owning list, once RemoveDubbele recorded it

    CClipsnijpunt() = default;
    CClipsnijpunt(int nIndexA, int nIndexB, double dLengteA, double dLengteB, const CVXCoord &Punt,
                  int nReversedIndex);
    CClipsnijpunt(const CClipsnijpunt &) = delete;
    CClipsnijpunt &operator=(const CClipsnijpunt &) = delete;

    // Modes 0 and 1 read m_Info[mode]; mode 2 reads m_Info[1] with next and previous exchanged
    // and the reversed index. Any larger mode yields null or 0.
    CClipsnijpunt *pGetNext(short nMode) const;
    CClipsnijpunt *pGetPrev(short nMode) const;
    int nGetIndex(short nMode) const;
    // These index m_Info directly: modes 0 and 1 only (others raise CInvalidArgException).
    double dLengte(short nMode) const { return Info(nMode).m_dLengte; }
    const CClipSnijInfo &GetClipSnijInfo(short nMode) const { return Info(nMode); }
    void SetNext(CClipsnijpunt *p, short nMode) { Info(nMode).SetNext(p); }
    void SetPrev(CClipsnijpunt *p, short nMode) { Info(nMode).SetPrev(p); }

    const CVXCoord &GetSnij() const { return m_SnijPunt; }
    SegStatus Status() const { return m_Status; }
    bool bGehad() const { return m_nGehad == 0; }
    void Gehad() {
        if (m_nGehad > 0) --m_nGehad;
    }
    void ResetGehad() { m_nGehad = 1; }
    void IncGehad() { ++m_nGehad; }

    short nCompare(const CClipsnijpunt *p, short nMode) const;
    bool bSmaller(const CClipsnijpunt &other, short nMode) const;
    // Before other in the walking order of nMode (mode 2: B backward).
    bool bKleiner(const CClipsnijpunt &other, short nMode) const;
    // No change of side: SegOp, or the status of the previous point in chain 0.
    bool Nop() const;
    // The next point in chain 0 lies within dPuntTol.
    bool bDubbel() const;
    // Unlinks the point from both chains; its own links stay as they were.
    void Remove();

    // Classifies the piece that follows the point and snaps the two working copies on to it
    // where it lies on a vertex.
    void Status(CVXCoordArr &A, CVXCoordArr &B, bool bPolyB);
    bool bSegmentBinnen(const CVXCoordArr &A, const CVXCoordArr &B, bool bPolyB) const;
    bool bSegmentOp(const CVXCoordArr &A, const CVXCoordArr &B, bool bPolyB) const;

    void Dump(CDumpContext &dc) const override;

private:
    CClipSnijInfo &Info(short nMode);
    const CClipSnijInfo &Info(short nMode) const;
    bool bSegmentBinnenLijnB(const CVXCoordArr &A, const CVXCoordArr &B) const;
    bool bSegmentBinnenPolyB(const CVXCoordArr &A, const CVXCoordArr &B) const;
};

// The clip list: owns its points; the body keeps the order of discovery, the chains the order
// along A and along B.
class CClipsnijpuntList : public CObList {
public:
    bool m_bPolyA[2]; // per sequence: its chain is a ring
    CClipsnijpunt *m_pLast[2] = {nullptr, nullptr};
    CClipsnijpunt *m_pHead[2] = {nullptr, nullptr};

    CClipsnijpuntList(bool bPolyA, bool bPolyB);
    CClipsnijpuntList(const CClipsnijpuntList &) = delete;
    CClipsnijpuntList &operator=(const CClipsnijpuntList &) = delete;
    ~CClipsnijpuntList() override;

    // Appends a point to the body; the list owns it from here on.
    void Voeg(CClipsnijpunt *p);
    CClipsnijpunt *GetNext(POSITION &pos) const;

    void Sort();
    void RemoveDubbele(const CVXCoordArr &A, const CVXCoordArr &B);
    void SetBiBuFlags(CVXCoordArr &A, CVXCoordArr &B);
    // Unlinks p from both chains; deletes it from the body only when its position is recorded.
    void Remove(CClipsnijpunt *p);
    // Removes the points from pVan up to and including pTot along chain 0.
    void Verwijder(CClipsnijpunt *pVan, CClipsnijpunt *pTot);
    CClipsnijpunt *pGetWorkHead(short s) const { return m_pHead[s]; }
    CClipsnijpunt *pGetWorkTail(short s) const { return m_pLast[s]; }

private:
    // The points in the order of chain s, as Sort links them.
    std::vector<CClipsnijpunt *> KetenVolgorde(short s) const;
};

// A second view of a clip list, sorted by the place in one mode, used to insert the points in a
// sequence from the tail. It does not own its elements.
class CInsertionClipLijst : public CVXTypedPtrList<CObList, CClipsnijpunt *> {
public:
    CInsertionClipLijst(const CClipsnijpuntList &Lijst, short nMode);
    // Inserts p in ascending place; a point on an existing vertex (length at most dPuntTol) is
    // skipped.
    void VoegIn(CClipsnijpunt *p, short nMode);
};

// One node of the ring that MakeSimple walks.
struct CCircularPolyListNode {
    CVXCoord *m_pPunt = nullptr;                // not owned
    CCircularPolyListNode *m_pNext = nullptr;   // the ring's next node
    CCircularPolyListNode *m_pSprong = nullptr; // the jump past a loop; null when no crossing
    bool m_bBezocht = false;
};

// The ring of MakeSimple; owns its nodes.
class CCircularPolyList : public CVXTypedPtrList<CPtrList, CCircularPolyListNode *> {
public:
    CCircularPolyList() = default;
    CCircularPolyList(const CCircularPolyList &) = delete;
    CCircularPolyList &operator=(const CCircularPolyList &) = delete;
    ~CCircularPolyList() override;
};

} // namespace VX_API
