// The clip list: collection, the two chains, thinning, classification, insertion, and the
// self-intersection questions built on it. Crossings are worked out by hand from the figures.
#include "geometry/ClipList.h"

#include "geometry/GeometryTestUtil.h"
#include "platform/Errors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

using vx::CClipsnijpunt;
using vx::CClipsnijpuntList;
using vx::CVXCoord;
using vx::CVXCoordArr;
using vx::POSITION;
using vxtest::Codes;
using vxtest::Lijn;

namespace {

CVXCoordArr Vierkant(double x0, double y0, double d) {
    return Lijn({{x0, y0, 1}, {x0 + d, y0, 0}, {x0 + d, y0 + d, 0}, {x0, y0 + d, 0}, {x0, y0, 0}});
}

// The points of a chain from its head, at most the list's count (a ring is walked once).
std::vector<CClipsnijpunt *> Keten(const CClipsnijpuntList &lijst, short s) {
    std::vector<CClipsnijpunt *> punten;
    CClipsnijpunt *p = lijst.pGetWorkHead(s);
    for (int n = 0; p != nullptr && n < lijst.GetCount(); ++n, p = p->pGetNext(s)) {
        punten.push_back(p);
        if (p->pGetNext(s) == lijst.pGetWorkHead(s)) break;
    }
    return punten;
}

// Collects, sorts and thins a list; returns the count before thinning.
int nVerzamelEnDun(const CVXCoordArr &A, const CVXCoordArr &B, CClipsnijpuntList &lijst) {
    A.VerzamelClipLijst(B, lijst);
    const int n = static_cast<int>(lijst.GetCount());
    lijst.Sort();
    lijst.RemoveDubbele(A, B);
    return n;
}

void ExpectSnij(const CClipsnijpunt *p, double x, double y) {
    EXPECT_NEAR(p->GetSnij().m_dX, x, 1e-12);
    EXPECT_NEAR(p->GetSnij().m_dY, y, 1e-12);
}

} // namespace

TEST(ClipList, PlacesCompareByStretchThenLengthWithinTolerance) {
    vx::CClipSnijInfo a, b;
    a.Set(1, 5.0);
    b.Set(1, 5.0005); // exactly the tolerance: still the same place
    EXPECT_EQ(a.nCompare(b), 0);
    b.Set(1, 5.0006);
    EXPECT_EQ(a.nCompare(b), -1);
    EXPECT_EQ(b.nCompare(a), 1);
    b.Set(0, 9.0);
    EXPECT_EQ(a.nCompare(b), 1);
    // Walking B backward reverses the order; modes beyond 2 know no order.
    CClipsnijpunt p(0, 3, 1.0, 2.0, CVXCoord(0, 0), 0), q(0, 3, 1.0, 4.0, CVXCoord(0, 0), 0);
    EXPECT_TRUE(p.bKleiner(q, vx::nModeB));
    EXPECT_TRUE(q.bKleiner(p, vx::nModeBTerug));
    EXPECT_FALSE(p.bKleiner(q, 3));
    EXPECT_THROW(p.dLengte(vx::nModeBTerug), vx::CInvalidArgException);
}

TEST(ClipList, TwoOverlappingSquaresGiveTwoRingsAndTheirStatuses) {
    // A = [0,10]², B = [5,15]². A's stretch 1 (x = 10) meets B's stretch 0 (y = 5) at (10, 5),
    // 5 along both; A's stretch 2 (y = 10, from x = 10) meets B's stretch 3 (x = 5, from y = 15)
    // at (5, 10), 5 along both. B's reversed indices: 5 - 0 - 2 = 3 and 5 - 3 - 2 = 0.
    CVXCoordArr A = Vierkant(0, 0, 10), B = Vierkant(5, 5, 10);
    CClipsnijpuntList lijst(true, true);
    A.VerzamelClipLijst(B, lijst);
    ASSERT_EQ(lijst.GetCount(), 2);
    POSITION pos = lijst.GetHeadPosition();
    const CClipsnijpunt *eerste = lijst.GetNext(pos), *tweede = lijst.GetNext(pos);
    ExpectSnij(eerste, 10, 5);
    EXPECT_EQ(eerste->nGetIndex(vx::nModeA), 1);
    EXPECT_EQ(eerste->nGetIndex(vx::nModeBTerug), 3);
    EXPECT_DOUBLE_EQ(eerste->dLengte(vx::nModeB), 5.0);
    ExpectSnij(tweede, 5, 10);
    EXPECT_EQ(tweede->nGetIndex(vx::nModeBTerug), 0);
    lijst.Sort();
    lijst.RemoveDubbele(A, B);
    // Both sequences are closed: both chains are rings of the two points.
    CClipsnijpunt *h = lijst.pGetWorkHead(vx::nModeA);
    EXPECT_EQ(h, eerste);
    EXPECT_EQ(h->pGetPrev(vx::nModeA), tweede);
    EXPECT_EQ(h->pGetNext(vx::nModeA), tweede);
    // Behind (10, 5) A runs up x = 10 into B (vertex (10, 10) is inside); behind (5, 10) it runs
    // along y = 10 to (0, 10) and down to (0, 0), outside B.
    CVXCoordArr A2(A), B2(B);
    lijst.SetBiBuFlags(A2, B2);
    EXPECT_EQ(eerste->Status(), vx::SegBinnen);
    EXPECT_EQ(tweede->Status(), vx::SegBuiten);
}

TEST(ClipList, ACrossingAtAVertexOfAIsKeptOnce) {
    // B's stretch 0 from (8, 8) to (12, 12) passes A's corner (10, 10): found on A's stretch 1
    // (at 10) and stretch 2 (at 0). B's stretch 2 from (12, 4) to (8, 8) crosses x = 10 at
    // (10, 6).
    const CVXCoordArr A = Vierkant(0, 0, 10);
    const CVXCoordArr B = Lijn({{8, 8, 1}, {12, 12, 0}, {12, 4, 0}, {8, 8, 0}});
    CClipsnijpuntList lijst(true, true);
    EXPECT_EQ(nVerzamelEnDun(A, B, lijst), 3);
    const auto keten = Keten(lijst, vx::nModeA);
    ASSERT_EQ(keten.size(), 2u);
    ExpectSnij(keten[0], 10, 6);
    ExpectSnij(keten[1], 10, 10);
    EXPECT_EQ(keten[1]->nGetIndex(vx::nModeA), 2); // the one on the following stretch stays
}

TEST(ClipList, OpenLinesLoseTheirEndsAndASinglePointMakesNoRing) {
    const CVXCoordArr B = Vierkant(0, 0, 10);
    // A starts on B's left edge: no crossing there; the one at (10, 5) stays.
    const CVXCoordArr A = Lijn({{0, 5, 1}, {15, 5, 0}});
    CClipsnijpuntList lijst(false, true);
    EXPECT_EQ(nVerzamelEnDun(A, B, lijst), 2);
    ASSERT_EQ(lijst.GetCount(), 1);
    ExpectSnij(lijst.pGetWorkHead(vx::nModeA), 10, 5);
    // A single clip point when sorted forms no ring, although B is closed.
    CClipsnijpuntList enkel(false, true);
    Lijn({{5, 5, 1}, {15, 5, 0}}).VerzamelClipLijst(B, enkel);
    enkel.Sort();
    ASSERT_EQ(enkel.GetCount(), 1);
    EXPECT_EQ(enkel.pGetWorkHead(vx::nModeB)->pGetNext(vx::nModeB), nullptr);

    // An open B that starts inside polygon A loses its first crossing along B: (10, 5). It
    // leaves through (10, 8) and (5, 10) and ends outside, so those stay.
    const CVXCoordArr poly = Vierkant(0, 0, 10);
    const CVXCoordArr lijn = Lijn({{5, 5, 1}, {15, 5, 0}, {15, 8, 0}, {5, 8, 0}, {5, 20, 0}});
    CClipsnijpuntList clip(true, false);
    EXPECT_EQ(nVerzamelEnDun(poly, lijn, clip), 3);
    const auto keten = Keten(clip, vx::nModeB);
    ASSERT_EQ(keten.size(), 2u);
    ExpectSnij(keten[0], 10, 8);
    ExpectSnij(keten[1], 5, 10);
}

TEST(ClipList, SortBreaksTiesByListOrderAndRemoveWithoutPositionOnlyUnlinks) {
    CClipsnijpuntList lijst(false, false);
    auto *a = new CClipsnijpunt(1, 0, 5.0003, 9.0, CVXCoord(1, 0), 0);
    auto *b = new CClipsnijpunt(1, 0, 5.0, 7.0, CVXCoord(2, 0), 0);
    auto *c = new CClipsnijpunt(0, 0, 8.0, 8.0, CVXCoord(3, 0), 0);
    lijst.Voeg(a);
    lijst.Voeg(b);
    lijst.Voeg(c);
    lijst.Sort();
    // Chain 0: c (stretch 0), then a and b, equal places, in list order.
    EXPECT_EQ(Keten(lijst, vx::nModeA), (std::vector<CClipsnijpunt *>{c, a, b}));
    // Chain 1: by length on B, 7 then 8 then 9.
    EXPECT_EQ(Keten(lijst, vx::nModeB), (std::vector<CClipsnijpunt *>{b, c, a}));
    // No position recorded yet: a is only unlinked and stays in the body.
    lijst.Remove(a);
    EXPECT_EQ(lijst.GetCount(), 3);
    EXPECT_EQ(Keten(lijst, vx::nModeA), (std::vector<CClipsnijpunt *>{c, b}));
    EXPECT_EQ(lijst.pGetWorkTail(vx::nModeB), c);
}

TEST(ClipList, VerwijderAndTheInsertionView) {
    CClipsnijpuntList lijst(false, false);
    auto *a = new CClipsnijpunt(0, 2, 1.0, 3.0, CVXCoord(1, 0), 0);
    auto *b = new CClipsnijpunt(0, 1, 2.0, 0.0004, CVXCoord(2, 0), 0);
    auto *c = new CClipsnijpunt(1, 1, 1.0, 2.0, CVXCoord(3, 0), 0);
    auto *d = new CClipsnijpunt(2, 0, 1.0, 4.0, CVXCoord(4, 0), 0);
    for (CClipsnijpunt *p : {a, b, c, d})
        lijst.Voeg(p);
    lijst.Sort();
    // Ascending on B: d (0, 4), c (1, 2), a (2, 3); b sits on B's vertex 1 and is skipped.
    vx::CInsertionClipLijst invoeg(lijst, vx::nModeB);
    std::vector<CClipsnijpunt *> volgorde;
    for (POSITION pos = invoeg.GetHeadPosition(); pos != nullptr;)
        volgorde.push_back(invoeg.GetNext(pos));
    EXPECT_EQ(volgorde, (std::vector<CClipsnijpunt *>{d, c, a}));
    // Verwijder follows chain 0: b and c go (positions are recorded by RemoveDubbele first).
    for (POSITION p = lijst.GetHeadPosition(); p != nullptr;) {
        const POSITION hier = p;
        lijst.GetNext(p)->m_Pos = hier;
    }
    lijst.Verwijder(b, c);
    EXPECT_EQ(lijst.GetCount(), 2);
    EXPECT_EQ(Keten(lijst, vx::nModeA), (std::vector<CClipsnijpunt *>{a, d}));
}

TEST(ClipList, SnijLijnInsertsTheCrossingsInBothLines) {
    CVXCoordArr A = Lijn({{0, 0, 1}, {10, 0, 0}});
    CVXCoordArr B = Lijn({{5, -5, 1}, {5, 5, 0}, {8, 5, 0}, {8, -5, 0}});
    EXPECT_TRUE(A.SnijLijn(B, false));
    ASSERT_EQ(A.GetSize(), 4);
    EXPECT_EQ(A.Pt(1).m_dX, 5.0);
    EXPECT_EQ(A.Pt(2).m_dX, 8.0);
    EXPECT_EQ(Codes(A), (std::vector<int>{1, 0, 0, 0}));
    ASSERT_EQ(B.GetSize(), 6);
    EXPECT_EQ(B.Pt(4).m_dY, 0.0);
    // The const form inserts in the argument only.
    const CVXCoordArr C = Lijn({{0, 1, 1}, {10, 1, 0}});
    CVXCoordArr D = Lijn({{5, -5, 1}, {5, 5, 0}});
    EXPECT_TRUE(C.SnijLijn(D, false));
    EXPECT_EQ(C.GetSize(), 2);
    EXPECT_EQ(D.GetSize(), 3);
    CVXCoordArr E = Lijn({{20, 20, 1}, {30, 20, 0}});
    EXPECT_FALSE(A.SnijLijn(E, false));
    // SnijdLijn counts only points inside both stretches: a touch at an end is none.
    EXPECT_TRUE(Lijn({{0, 0, 1}, {10, 0, 0}}).SnijdLijn(Lijn({{5, -5, 1}, {5, 5, 0}})));
    EXPECT_FALSE(Lijn({{0, 0, 1}, {10, 0, 0}}).SnijdLijn(Lijn({{10, 0, 1}, {10, 5, 0}})));
}

TEST(ClipList, ConsecutiveStretchesThatRunBack) {
    using vx::SnijMetTerugloop;
    using vx::SnijZonderTerugloop;
    CVXCoord *p1 = nullptr, *p2 = nullptr;
    const CVXCoordArr terug = Lijn({{0, 0, 1}, {10, 0, 0}, {0, 0, 0}});
    EXPECT_TRUE(terug.bSnijOpeenvolgende(0, &p1, &p2, SnijMetTerugloop));
    ASSERT_NE(p1, nullptr);
    EXPECT_EQ(p1->m_dX, 0.0);
    delete p1;
    delete p2;
    EXPECT_FALSE(terug.bSnijOpeenvolgende(0, SnijZonderTerugloop));
    // Halfway back: the overlap ends at (5, 0), inside stretch 0 and 5 from the shared vertex.
    const CVXCoordArr half = Lijn({{0, 0, 1}, {10, 0, 0}, {5, 0, 0}});
    EXPECT_TRUE(half.bSnijOpeenvolgende(0, &p1, &p2, SnijZonderTerugloop));
    ASSERT_NE(p1, nullptr);
    EXPECT_EQ(p1->m_dX, 5.0);
    delete p1;
    delete p2;
    // An arc followed by itself backward.
    const CVXCoordArr bogen = Lijn({{10, 0, 1}, {0, 10, 8}, {-10, 0, 8}, {0, 10, 8}, {10, 0, 8}});
    EXPECT_TRUE(bogen.bSnijOpeenvolgende(0, SnijMetTerugloop));
    EXPECT_FALSE(bogen.bSnijOpeenvolgende(0, SnijZonderTerugloop));
}

TEST(ClipList, SelfIntersection) {
    using vx::SnijMetTerugloop;
    EXPECT_EQ(Lijn({{10, 0, 1}, {0, 10, 7}, {-10, 0, 7}}).nSnijdZichzelf2(SnijMetTerugloop), -1);
    EXPECT_EQ(Vierkant(0, 0, 10).nSnijdZichzelf2(SnijMetTerugloop), -1);
    CVXCoord *p1 = nullptr, *p2 = nullptr;
    const CVXCoordArr strik = Lijn({{0, 0, 1}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}, {0, 0, 0}});
    EXPECT_EQ(strik.nSnijdZichzelf2(&p1, &p2, SnijMetTerugloop), 0);
    ASSERT_NE(p1, nullptr);
    EXPECT_NEAR(p1->m_dX, 5.0, 1e-12);
    EXPECT_NEAR(p1->m_dY, 5.0, 1e-12);
    delete p1;
    delete p2;
    // Open: the last stretch from (10, 10) to (5, -5) crosses stretch 0 at x = 10 - 5·10/15.
    const CVXCoordArr open = Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}, {5, -5, 0}});
    EXPECT_EQ(open.nSnijdZichzelf2(SnijMetTerugloop), 0);
    // Closed, the last stretch only touches stretch 0 at their common vertex: not reported.
    const CVXCoordArr dicht = Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}, {5, 12, 0}, {0, 0, 0}});
    EXPECT_EQ(dicht.nSnijdZichzelf2(SnijMetTerugloop), -1);
}

TEST(ClipList, MakeSimpleKeepsTheLargestLoop) {
    // The bow-tie (0,0) (20,20) (20,0) (0,10) crosses itself where y = x meets y = 10 - x/2, at
    // (20/3, 20/3). The lobe over (20,20) and (20,0) has area 133.3, the other 33.3.
    CVXCoordArr strik = Lijn({{0, 0, 1}, {20, 20, 0}, {20, 0, 0}, {0, 10, 0}, {0, 0, 0}});
    strik.MakeSimple();
    ASSERT_EQ(strik.GetSize(), 4);
    EXPECT_TRUE(strik.Pt(0).bEqualXYZ(CVXCoord(20, 20)));
    EXPECT_TRUE(strik.Pt(1).bEqualXYZ(CVXCoord(20, 0)));
    EXPECT_NEAR(strik.Pt(2).m_dX, 20.0 / 3.0, 1e-12);
    EXPECT_NEAR(strik.Pt(2).m_dY, 20.0 / 3.0, 1e-12);
    EXPECT_EQ(Codes(strik), (std::vector<int>{1, 0, 0, 0}));
    // An open line stays as it is.
    CVXCoordArr open = Lijn({{0, 0, 1}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}});
    open.MakeSimple();
    EXPECT_EQ(open.GetSize(), 4);
}

TEST(ClipList, ClipFieldHoldsItsFlagsInTheLowBitsOfOneByte) {
    const vx::ClipField veld(true, false, true);
    unsigned char byte = 0;
    std::memcpy(&byte, &veld, 1);
    EXPECT_EQ(byte & 0x7, 0x5); // bit 0 inside, bit 1 outside, bit 2 both required
}
