// The projections keep the constants they derive from their parameters in the object, keyed by
// the exact bits of those parameters. These tests hold the kept constants to a fresh computation
// through the same code (the cache bypass), bit for bit, on many points. Projections with
// different parameters are used in turn, so each call also proves that one object's constants
// never answer for another; a host's change of a field in between must be seen as well, also
// after more changes than the object keeps blocks for, and from several threads at once.
#include "geodesy/Angles.h"
#include "geodesy/ProjLambert.h"
#include "geodesy/ProjMath.h"
#include "geodesy/ProjRSO.h"
#include "geodesy/ProjStereo.h"
#include "geodesy/ProjSwiss.h"
#include "geodesy/ProjTM.h"
#include "geometry/VXCoord.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <thread>
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
    CProjection_LAMBERT72 l72;
    CProjection_LAMBERT2008 l08;
    CProjection_LB_LAMBERT1 lb1(Rad(4.0), Rad(50.0), Rad(50.5), 0.9999, 100.0, 200.0,
                                CEllipsoid(CEllipsoid::GRS_1980));
    CProjection_BRSO brso;
    CProjection_MRSO mrso;
    CProjection_SWISS swiss;
    const std::vector<SUnderTest> all{
        {&rd, 50.0, 54.0, 2.5, 8.0},       {&st1, 40.0, 50.0, 15.0, 35.0},
        {&st2, -35.0, -25.0, 0.0, 10.0},   {&utm31, -5.0, 84.0, -1.0, 7.0},
        {&utm33s, -80.0, 0.0, 11.0, 19.0}, {&tm, 49.0, 61.0, -6.0, 2.0},
        {&tm2, 49.0, 61.0, -6.0, 2.0},     {&tm3, 49.0, 61.0, -6.0, 2.0},
        {&l72, 49.0, 52.0, 2.0, 7.0},      {&l08, 49.0, 52.0, 2.0, 7.0},
        {&lb1, 45.0, 55.0, 0.0, 8.0},      {&brso, 1.0, 7.0, 109.0, 119.0},
        {&mrso, 1.0, 7.0, 99.0, 105.0},    {&swiss, 45.5, 48.0, 5.5, 10.5},
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

// Lambert keeps the cone per parallel, scale, latitude of origin and ellipsoid.
class CMovableLambert : public CProjection_LB_LAMBERT1 {
public:
    using CProjection_LB_LAMBERT1::CProjection_LB_LAMBERT1;
    void Move(double lat0, double par0) {
        m_dLatOrigin = lat0;
        m_dStandPar0 = par0;
    }
};

TEST(ProjectionCache, MoreChangesThanKeptBlocksStayExact) {
    // Twenty parameter sets in turn, more than an object keeps blocks for: past that point each
    // call computes afresh, and every result still equals the fresh computation.
    CMovableTM tm(Rad(-2.0), Rad(49.0), 0.9996012717, 400000.0, -100000.0,
                  CEllipsoid(CEllipsoid::AIRY));
    CMovableLambert lb(Rad(4.0), Rad(50.0), Rad(50.5), 1.0, 0.0, 0.0,
                       CEllipsoid(CEllipsoid::GRS_1980));
    int nDiff = 0;
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < 20; ++i) {
            tm.MoveOrigin(Rad(40.0 + i));
            lb.Move(Rad(45.0 + 0.25 * i), Rad(48.0 + 0.25 * i));
            for (COutputSystem *p :
                 {static_cast<COutputSystem *>(&tm), static_cast<COutputSystem *>(&lb)}) {
                const SResult kept = RoundTrip(*p, Rad(51.0), Rad(3.0));
                const SResult fresh = Fresh(*p, Rad(51.0), Rad(3.0));
                nDiff += !Same(kept.x, fresh.x) || !Same(kept.y, fresh.y) ||
                         !Same(kept.lat, fresh.lat) || !Same(kept.lon, fresh.lon);
            }
        }
    }
    EXPECT_EQ(nDiff, 0);
    // Moving the latitude of origin of the cone by 1 degree moves the false origin along the
    // central meridian: the northing of a point drops by nearly the meridian arc, 111.2 km.
    lb.Move(Rad(50.0), Rad(50.5));
    const SResult a = RoundTrip(lb, Rad(51.0), Rad(4.0));
    lb.Move(Rad(51.0), Rad(50.5));
    const SResult b = RoundTrip(lb, Rad(51.0), Rad(4.0));
    EXPECT_NEAR(a.y - b.y, 111.2e3, 0.2e3);
    EXPECT_NEAR(b.y, 0.0, 1e-6); // the point on the central meridian at lat0 is the origin
}

TEST(ProjectionCache, OneObjectFromSeveralThreads) {
    // Four threads share one object from its first use on (they race to keep the constants);
    // each must see the results of a single thread, bit for bit.
    constexpr int nThreads = 4;
    constexpr int nPoints = 400;
    CProjection_LAMBERT2008 shared;
    CProjection_LAMBERT2008 alone;
    std::vector<SResult> expected;
    for (int i = 0; i < nPoints; ++i)
        expected.push_back(RoundTrip(alone, Rad(49.5 + i * 0.005), Rad(2.5 + i * 0.01)));
    std::vector<int> nDiff(nThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < nThreads; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < nPoints; ++i) {
                const SResult r = RoundTrip(shared, Rad(49.5 + i * 0.005), Rad(2.5 + i * 0.01));
                nDiff[t] += !Same(r.x, expected[i].x) || !Same(r.y, expected[i].y) ||
                            !Same(r.lat, expected[i].lat) || !Same(r.lon, expected[i].lon);
            }
        });
    }
    for (std::thread &th : threads)
        th.join();
    for (int t = 0; t < nThreads; ++t)
        EXPECT_EQ(nDiff[t], 0) << "thread " << t;
}

// The wrap of the longitude takes |d| < 3 without its roundings: the same bits as the rule.
class CWrapProbe : public CProjection_TM_TM {
public:
    double Wrap(double lon) const { return dWrapLon(lon); }
    static double Rule(double d) { return dWrapLonFull(d); }
};

TEST(ProjectionCache, WrapShortcutKeepsTheRulesBits) {
    const CWrapProbe probe; // lon0 = 0
    int nDiff = 0;
    for (double d : {0.0, -0.0, 1e-300, -1e-300, 2.9999999999999996, -2.9999999999999996, 3.0, -3.0,
                     3.1415926535897931, -3.1415926535897931, 1.0, -2.5})
        nDiff += !Same(probe.Wrap(d), CWrapProbe::Rule(d));
    for (int i = -4000; i <= 4000; ++i)
        nDiff += !Same(probe.Wrap(i * 7.5e-4), CWrapProbe::Rule(i * 7.5e-4));
    EXPECT_EQ(nDiff, 0);
    // -0 comes out as +0 either way (d - 0 * 2pi), and 4 wraps to 4 - 2pi.
    EXPECT_TRUE(Same(probe.Wrap(-0.0), 0.0));
    EXPECT_EQ(probe.Wrap(4.0), 4.0 - 6.283185307179586);
}
