// Seeded random properties against GEOS as the independent peer: containment of points well away
// from the boundary of random simple polygons. "Well away" is 0.01, twenty times the boundary
// tolerance of 0.0005, so the boundary band of the winding sum plays no part and both answers
// must agree exactly.
#ifdef VX_HAVE_GEOS

#include "geometry/GeosPeer.h"
#include "geometry/PuntInPoly.h"

#include <gtest/gtest.h>

using vx::CVXCoord;
using vx::CVXCoordArr;

namespace {

constexpr unsigned nSeed = 20261124;
constexpr int nVeelhoeken = 200;
constexpr int nPuntenPerVeelhoek = 10;
constexpr double dVerVanRand = 0.01;

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

#endif
