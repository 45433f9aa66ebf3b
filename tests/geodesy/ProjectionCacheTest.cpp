// The projections keep the constants they derive from their parameters between calls. These
// tests hold the kept constants to a fresh computation through the same code (the cache bypass),
// bit for bit, on many points. Projections with different parameters are used in turn, so each
// call also proves that a change of parameters is never answered from another parameter set's
// constants; a host's change of a public field in between must be seen as well.
#include "geodesy/Angles.h"
#include "geodesy/ProjMath.h"
#include "geodesy/ProjStereo.h"
#include "geodesy/ProjTM.h"
#include "geometry/VXCoord.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <vector>

using namespace vx;

namespace {

double Rad(double deg) {
    return DegToRad(deg);
}

// Same bits, so that NaN and the sign of zero count as well.
bool Same(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

struct SResult {
    double x, y, lat, lon;
};

SResult RoundTrip(COutputSystem &p, double lat, double lon) {
    CVXCoord xy;
    p.EllToProjection(xy, CEllCoord(lat, lon, 0.0));
    CEllCoord ell;
    p.ProjectionToEll(ell, CVXCoord(xy.dGetX(), xy.dGetY(), 0.0, 1));
    return {xy.dGetX(), xy.dGetY(), ell.dGetLat(), ell.dGetLon()};
}

SResult Fresh(COutputSystem &p, double lat, double lon) {
    SetProjectionCacheBypass(true);
    const SResult r = RoundTrip(p, lat, lon);
    SetProjectionCacheBypass(false);
    return r;
}

struct SUnderTest {
    COutputSystem *p;
    double lat0, lat1, lon0, lon1; // degrees: the grid, reaching beyond the area of use
};

// The projections in turn on each point of an n x n grid; the number of points that differ.
int CountDifferences(const std::vector<SUnderTest> &all, int n) {
    int nDiff = 0;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            for (const SUnderTest &t : all) {
                const double lat = Rad(t.lat0 + (t.lat1 - t.lat0) * i / (n - 1));
                const double lon = Rad(t.lon0 + (t.lon1 - t.lon0) * j / (n - 1));
                const SResult kept = RoundTrip(*t.p, lat, lon);
                const SResult fresh = Fresh(*t.p, lat, lon);
                if (!Same(kept.x, fresh.x) || !Same(kept.y, fresh.y) ||
                    !Same(kept.lat, fresh.lat) || !Same(kept.lon, fresh.lon))
                    ++nDiff;
            }
        }
    }
    return nDiff;
}

} // namespace

TEST(ProjectionCache, SameBitsAsAFreshComputation) {
    CProjection_RD rd;
    CProjection_STEREOGRAPHIC st1(PT_STEREOGRAPHIC, Rad(25.0), Rad(46.0), 0.99975, 500000.0,
                                  500000.0, CEllipsoid(CEllipsoid::KRASSOVSKY_1940));
    CProjection_STEREOGRAPHIC st2(PT_LOCAL, Rad(5.0), Rad(-30.0), 1.0, 0.0, 0.0,
                                  CEllipsoid(CEllipsoid::BESSEL_1841));
    CProjection_TM_NORTH utm31(Rad(3.0), CEllipsoid(CEllipsoid::INTERNATIONAL));
    CProjection_TM_SOUTH utm33s(Rad(15.0), CEllipsoid(CEllipsoid::GRS_1980));
    CProjection_TM_TM tm(Rad(-2.0), Rad(49.0), 0.9996012717, 400000.0, -100000.0,
                         CEllipsoid(CEllipsoid::AIRY));
    // Only the latitude of origin differs from tm: the cache must still tell them apart.
    CProjection_TM_TM tm2(Rad(-2.0), Rad(50.0), 0.9996012717, 400000.0, -100000.0,
                          CEllipsoid(CEllipsoid::AIRY));
    // And here only the scale factor.
    CProjection_TM_TM tm3(Rad(-2.0), Rad(49.0), 0.9996, 400000.0, -100000.0,
                          CEllipsoid(CEllipsoid::AIRY));
    const std::vector<SUnderTest> all{
        {&rd, 50.0, 54.0, 2.5, 8.0},       {&st1, 40.0, 50.0, 15.0, 35.0},
        {&st2, -35.0, -25.0, 0.0, 10.0},   {&utm31, -5.0, 84.0, -1.0, 7.0},
        {&utm33s, -80.0, 0.0, 11.0, 19.0}, {&tm, 49.0, 61.0, -6.0, 2.0},
        {&tm2, 49.0, 61.0, -6.0, 2.0},     {&tm3, 49.0, 61.0, -6.0, 2.0},
    };
    EXPECT_EQ(CountDifferences(all, 60), 0);

    // At the origin the stereographic projection takes its origin test: exactly the false
    // origin comes out.
    CVXCoord xy;
    st1.EllToProjection(xy, CEllCoord(Rad(46.0), Rad(25.0), 0.0));
    EXPECT_EQ(xy.dGetX(), 500000.0);
    EXPECT_EQ(xy.dGetY(), 500000.0);
}

// A host's class that changes a parameter in place, as a loaded archive does.
class CMovableTM : public CProjection_TM_TM {
public:
    using CProjection_TM_TM::CProjection_TM_TM;
    void MoveOrigin(double lat0) { m_dLatOrigin = lat0; }
};

TEST(ProjectionCache, AChangedParameterIsSeenAtTheNextCall) {
    CMovableTM tm(Rad(-2.0), Rad(49.0), 0.9996012717, 400000.0, -100000.0,
                  CEllipsoid(CEllipsoid::AIRY));
    const double lat = Rad(52.0), lon = Rad(1.0);
    const SResult before = RoundTrip(tm, lat, lon);
    tm.MoveOrigin(Rad(50.0));
    const SResult after = RoundTrip(tm, lat, lon);
    const SResult fresh = Fresh(tm, lat, lon);
    EXPECT_FALSE(Same(before.y, after.y));
    EXPECT_TRUE(Same(after.x, fresh.x) && Same(after.y, fresh.y));
    // A latitude of origin one degree further north lowers every northing by k0 times the
    // meridian arc from 49 to 50 degrees: 111209.768 m on the Airy ellipsoid (numerical
    // integration of the meridian radius a(1-e2)/(1-e2 sin2 p)^1.5), so 111165.425 m.
    EXPECT_NEAR(before.y - after.y, 111165.425, 0.01);
}
