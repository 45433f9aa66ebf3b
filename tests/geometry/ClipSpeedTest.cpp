// The two speed-ups of the clipper must not change a single answer: the chains Sort builds
// against the plain selection written out here, and the quick containment answer for closed
// straight sequences against the angle walk.
#include "geometry/ClipList.h"
#include "geometry/GeometryTestUtil.h"
#include "geometry/PuntInPoly.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

using vx::CClipsnijpunt;
using vx::CClipsnijpuntList;
using vx::CVXCoord;
using vx::CVXCoordArr;

namespace {

constexpr unsigned nSeed = 77;

// The selection as the rule states it: among the points not yet taken, in body order, the first
// unless a later one is strictly before it (another stretch by index, the same stretch by more
// than 0.0005 of length).
std::vector<const CClipsnijpunt *> Selectie(const std::vector<const CClipsnijpunt *> &body,
                                            short s) {
    auto voor = [s](const CClipsnijpunt *p, const CClipsnijpunt *q) {
        const auto &a = p->m_Info[s], &b = q->m_Info[s];
        if (a.m_nIndex != b.m_nIndex) return a.m_nIndex < b.m_nIndex;
        return std::fabs(a.m_dLengte - b.m_dLengte) > 0.0005 && a.m_dLengte < b.m_dLengte;
    };
    std::vector<const CClipsnijpunt *> rest = body, keten;
    while (!rest.empty()) {
        size_t nBeste = 0;
        for (size_t k = 1; k < rest.size(); ++k)
            if (voor(rest[k], rest[nBeste])) nBeste = k;
        keten.push_back(rest[nBeste]);
        rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(nBeste));
    }
    return keten;
}

std::vector<const CClipsnijpunt *> Keten(const CClipsnijpuntList &lijst, short s) {
    std::vector<const CClipsnijpunt *> keten;
    const CClipsnijpunt *p = lijst.pGetWorkHead(s);
    for (int n = 0; p != nullptr && n < lijst.GetCount(); ++n, p = p->pGetNext(s))
        keten.push_back(p);
    return keten;
}

// A closed star-shaped polygon of n straight vertices about the origin.
CVXCoordArr Ster(std::mt19937 &rng, int n) {
    std::uniform_real_distribution<double> fractie(0.1, 0.9), straal(20.0, 100.0);
    CVXCoordArr arr;
    for (int k = 0; k <= n; ++k) {
        const double h = 2.0 * std::numbers::pi * (k % n + fractie(rng)) / n;
        const double r = straal(rng);
        const CVXCoord p =
            k < n ? CVXCoord(r * std::cos(h), r * std::sin(h), static_cast<char>(k == 0 ? 1 : 0))
                  : CVXCoord(arr.Pt(0).m_dX, arr.Pt(0).m_dY, static_cast<char>(0));
        arr.Add(&p);
    }
    return arr;
}

} // namespace

TEST(ClipSpeed, SortBuildsTheChainsOfThePlainSelection) {
    std::mt19937 rng(nSeed);
    // Lengths on a grid of 0.0003: neighbours fall within the tolerance of 0.0005, the next but
    // one does not, so ties and chains of ties are common.
    std::uniform_int_distribution<int> index(0, 6), stap(0, 40), aantal(1, 60);
    for (int ronde = 0; ronde < 300; ++ronde) {
        CClipsnijpuntList lijst(ronde % 2 == 0, ronde % 3 == 0);
        const int n = aantal(rng);
        for (int k = 0; k < n; ++k)
            lijst.Voeg(new CClipsnijpunt(index(rng), index(rng), stap(rng) * 0.0003,
                                         stap(rng) * 0.0003, CVXCoord(k, 0.0), 0));
        std::vector<const CClipsnijpunt *> body;
        for (vx::POSITION pos = lijst.GetHeadPosition(); pos != nullptr;)
            body.push_back(lijst.GetNext(pos));
        lijst.Sort();
        for (short s = 0; s <= 1; ++s) {
            ASSERT_EQ(Keten(lijst, s), Selectie(body, s)) << "round " << ronde << " chain " << s;
            const bool bRing = lijst.m_bPolyA[s] && n > 1;
            EXPECT_EQ(lijst.pGetWorkHead(s)->pGetPrev(s), bRing ? lijst.pGetWorkTail(s) : nullptr);
        }
    }
}

TEST(ClipSpeed, QuickContainmentAnswersAsTheAngleWalk) {
    // The same polygon, once closed exactly (the quick answer may apply) and once with its last
    // point 1e-13 off the first (still closed for the library, but the quick answer needs exact
    // closure, so the angle walk runs). The two differ by far less than any point's distance to
    // the gap, so every answer must be the same, on the boundary band and beside it included.
    std::mt19937 rng(nSeed + 1);
    std::uniform_int_distribution<int> hoeken(3, 30);
    std::uniform_real_distribution<double> coord(-110.0, 110.0), t(0.0, 1.0), band(-0.0015, 0.0015);
    int nOp = 0, nBinnen = 0, nBuiten = 0;
    for (int v = 0; v < 200; ++v) {
        const CVXCoordArr poly = Ster(rng, hoeken(rng));
        CVXCoordArr kier(poly);
        CVXCoord laatste = kier.Pt(kier.GetSize() - 1);
        laatste.SetX(laatste.m_dX + 1e-13);
        kier.SetAt(kier.GetSize() - 1, &laatste);
        for (int k = 0; k < 40; ++k) {
            CVXCoord p(coord(rng), coord(rng));
            if (k % 2 == 1) { // near a stretch: on it, then moved across it by up to 0.0015
                const int i = static_cast<int>(t(rng) * (poly.GetSize() - 1));
                const CVXCoord &a = poly.Pt(i), &b = poly.Pt(i + 1);
                const double f = t(rng), d = band(rng), l = a.dDist(b);
                p = CVXCoord(a.m_dX + f * (b.m_dX - a.m_dX) - d * (b.m_dY - a.m_dY) / l,
                             a.m_dY + f * (b.m_dY - a.m_dY) + d * (b.m_dX - a.m_dX) / l);
            }
            const vx::PuntInPolyRes snel = poly.PuntInPolygoon(p), walk = kier.PuntInPolygoon(p);
            ASSERT_EQ(snel.bBinnen, walk.bBinnen) << v << " " << k;
            ASSERT_EQ(snel.bOp, walk.bOp) << v << " " << k;
            ASSERT_EQ(snel.bBuiten, walk.bBuiten) << v << " " << k;
            nOp += walk.bOp;
            nBinnen += walk.bBinnen;
            nBuiten += walk.bBuiten;
        }
    }
    // All three answers occurred.
    EXPECT_GT(nOp, 100);
    EXPECT_GT(nBinnen, 100);
    EXPECT_GT(nBuiten, 100);
}
