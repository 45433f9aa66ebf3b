// Seeded random properties against GEOS as the independent peer.
// Containment: points well away from the boundary of random simple polygons. "Well away" is 0.01,
// twenty times the boundary tolerance of 0.0005, so the boundary band of the winding sum plays no
// part and both answers must agree exactly.
// The clip list: every crossing of two random polygons' boundaries that GEOS reports is in the
// list once after RemoveDubbele, and nothing else is. Both compute the same intersection of two
// segments in doubles, by different formulas: positions agree to 1e-6, far below the tolerance.
#ifdef VX_HAVE_GEOS

#include "geometry/ClipList.h"
#include "geometry/GeosPeer.h"
#include "geometry/PuntInPoly.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>
#include <vector>

using vx::CClipsnijpuntList;
using vx::CVXCoord;
using vx::CVXCoordArr;

namespace {

constexpr unsigned nSeed = 20261124;
constexpr int nVeelhoeken = 200;
constexpr int nPuntenPerVeelhoek = 10;
constexpr double dVerVanRand = 0.01;
constexpr int nParen = 300;
constexpr double dZelfdePunt = 1e-6;
// Crossings closer together than this are one for RemoveDubbele; such pairs are left out.
constexpr double dApart = 0.002;

using Punten = std::vector<std::pair<double, double>>;

bool bApart(const Punten &punten) {
    for (size_t i = 0; i < punten.size(); ++i)
        for (size_t k = i + 1; k < punten.size(); ++k)
            if (std::hypot(punten[i].first - punten[k].first, punten[i].second - punten[k].second) <
                dApart)
                return false;
    return true;
}

Punten Lijstpunten(const CClipsnijpuntList &lijst) {
    Punten punten;
    for (vx::POSITION pos = lijst.GetHeadPosition(); pos != nullptr;) {
        const vx::CClipsnijpunt *p = lijst.GetNext(pos);
        punten.emplace_back(p->GetSnij().m_dX, p->GetSnij().m_dY);
    }
    return punten;
}

int nTreffers(const Punten &punten, const std::pair<double, double> &q) {
    int n = 0;
    for (const auto &p : punten)
        if (std::hypot(p.first - q.first, p.second - q.second) < dZelfdePunt) ++n;
    return n;
}

} // namespace

TEST(GeosProperty, PointsWellAwayFromTheBoundaryClassifyAsGeosContains) {
    vxtest::GeosContext geos;
    std::mt19937 rng(nSeed);
    std::uniform_int_distribution<int> hoeken(3, 40);
    std::uniform_real_distribution<double> coord(-120.0, 120.0);
    int nBinnen = 0, nBuiten = 0;
    for (int v = 0; v < nVeelhoeken; ++v) {
        const CVXCoordArr poly = vxtest::SterVeelhoek(rng, hoeken(rng), 0.0, 0.0, 20.0, 100.0);
        const vxtest::GeosGeom g = vxtest::GeosPolygoon(geos, poly);
        const vxtest::GeosGeom rand = vxtest::GeosRand(geos, g.get());
        for (int k = 0; k < nPuntenPerVeelhoek; ++k) {
            const double x = coord(rng), y = coord(rng);
            const vxtest::GeosGeom p = vxtest::GeosPunt(geos, x, y);
            double d = 0.0;
            ASSERT_EQ(GEOSDistance_r(geos.Get(), rand.get(), p.get(), &d), 1);
            if (d <= dVerVanRand) continue;
            const bool bGeos = GEOSContains_r(geos.Get(), g.get(), p.get()) == 1;
            const vx::PuntInPolyRes r = poly.PuntInPolygoon(CVXCoord(x, y));
            EXPECT_EQ(r.bBinnen, bGeos) << "polygon " << v << " point " << x << ", " << y;
            EXPECT_EQ(r.bBuiten, !bGeos) << "polygon " << v << " point " << x << ", " << y;
            EXPECT_FALSE(r.bOp);
            (bGeos ? nBinnen : nBuiten)++;
        }
    }
    // The sample must exercise both answers.
    EXPECT_GT(nBinnen, 200);
    EXPECT_GT(nBuiten, 200);
}

TEST(GeosProperty, TheClipListHoldsEveryBoundaryCrossingOnce) {
    vxtest::GeosContext geos;
    std::mt19937 rng(nSeed + 1);
    std::uniform_int_distribution<int> hoeken(3, 30);
    std::uniform_real_distribution<double> midden(-60.0, 60.0);
    int nGetest = 0, nKruisingen = 0;
    for (int v = 0; v < nParen; ++v) {
        const CVXCoordArr A = vxtest::SterVeelhoek(rng, hoeken(rng), 0.0, 0.0, 20.0, 100.0);
        const CVXCoordArr B =
            vxtest::SterVeelhoek(rng, hoeken(rng), midden(rng), midden(rng), 20.0, 100.0);
        const vxtest::GeosGeom ga = vxtest::GeosPolygoon(geos, A),
                               gb = vxtest::GeosPolygoon(geos, B);
        const Punten verwacht = vxtest::GeosSnijpunten(geos, ga.get(), gb.get());
        if (!bApart(verwacht)) continue;
        CClipsnijpuntList lijst(true, true), volledig(true, true);
        A.VerzamelClipLijst(B, lijst);
        // Skipping pairs by their boxes changes nothing, order included.
        A.VerzamelClipLijst(B, volledig, false);
        ASSERT_EQ(Lijstpunten(lijst), Lijstpunten(volledig)) << "pair " << v;
        lijst.Sort();
        lijst.RemoveDubbele(A, B);
        const Punten gevonden = Lijstpunten(lijst);
        EXPECT_EQ(gevonden.size(), verwacht.size()) << "pair " << v;
        for (const auto &q : verwacht)
            EXPECT_EQ(nTreffers(gevonden, q), 1)
                << "pair " << v << " at " << q.first << ", " << q.second;
        ++nGetest;
        nKruisingen += static_cast<int>(verwacht.size());
    }
    EXPECT_GT(nGetest, nParen * 9 / 10);
    EXPECT_GT(nKruisingen, 1000);
}

#endif
