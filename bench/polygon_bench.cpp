// Polygon operations against GEOS in the same run: containment of points in a polygon of 10,000
// straight vertices (our winding sum against GEOS's plain contains, no prepared geometry), and
// the clip list of two 1,000-vertex polygons (with and without skipping stretch pairs by their
// boxes) against GEOS's intersection of the two boundaries, and the whole clip of those two
// polygons (bSnijPoly with the inside and the outside) against GEOS's intersection plus
// difference. At the end the time ratios are printed, ours over GEOS (wall clock, then CPU):
// below 1 means ours is faster.
#include "geometry/ClipList.h"
#include "geometry/GeosPeer.h"
#include "geometry/PuntInPoly.h"

#include "BenchRatio.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <vector>

using namespace vx;

namespace {

constexpr unsigned nSeed = 4242;
constexpr int nVeelhoekPunten = 10000;
constexpr int nClipPunten = 1000;
constexpr int nVragen = 64;

struct Containment {
    vxtest::GeosContext geos;
    CVXCoordArr poly;
    vxtest::GeosGeom gPoly{nullptr, vxtest::GeosDeleter{nullptr}};
    std::vector<CVXCoord> punten;
    std::vector<vxtest::GeosGeom> gPunten;

    Containment() {
        std::mt19937 rng(nSeed);
        poly = vxtest::SterVeelhoek(rng, nVeelhoekPunten, 0.0, 0.0, 500.0, 1000.0);
        gPoly = vxtest::GeosPolygoon(geos, poly);
        std::uniform_real_distribution<double> coord(-1000.0, 1000.0);
        for (int k = 0; k < nVragen; ++k) {
            punten.emplace_back(coord(rng), coord(rng));
            gPunten.push_back(vxtest::GeosPunt(geos, punten.back().m_dX, punten.back().m_dY));
        }
    }
};

Containment &GetContainment() {
    static Containment c;
    return c;
}

struct Clip {
    vxtest::GeosContext geos;
    CVXCoordArr A, B;
    vxtest::GeosGeom rA{nullptr, vxtest::GeosDeleter{nullptr}};
    vxtest::GeosGeom rB{nullptr, vxtest::GeosDeleter{nullptr}};
    vxtest::GeosGeom gA{nullptr, vxtest::GeosDeleter{nullptr}};
    vxtest::GeosGeom gB{nullptr, vxtest::GeosDeleter{nullptr}};

    Clip() {
        std::mt19937 rng(nSeed + 1);
        A = vxtest::SterVeelhoek(rng, nClipPunten, 0.0, 0.0, 500.0, 1000.0);
        B = vxtest::SterVeelhoek(rng, nClipPunten, 300.0, 200.0, 500.0, 1000.0);
        gA = vxtest::GeosPolygoon(geos, A);
        gB = vxtest::GeosPolygoon(geos, B);
        rA = vxtest::GeosRand(geos, gA.get());
        rB = vxtest::GeosRand(geos, gB.get());
    }
};

Clip &GetClip() {
    static Clip c;
    return c;
}

void Ours_PuntInPolygoon(benchmark::State &state) {
    const Containment &c = GetContainment();
    for (auto _ : state)
        for (const CVXCoord &p : c.punten)
            benchmark::DoNotOptimize(c.poly.PuntInPolygoon(p));
    state.SetItemsProcessed(state.iterations() * nVragen);
}

void Geos_PuntInPolygoon(benchmark::State &state) {
    const Containment &c = GetContainment();
    for (auto _ : state)
        for (const vxtest::GeosGeom &p : c.gPunten)
            benchmark::DoNotOptimize(GEOSContains_r(c.geos.Get(), c.gPoly.get(), p.get()));
    state.SetItemsProcessed(state.iterations() * nVragen);
}

void Ours_VerzamelClipLijst(benchmark::State &state) {
    const Clip &c = GetClip();
    const bool bMetDozen = state.range(0) != 0;
    for (auto _ : state) {
        CClipsnijpuntList lijst(true, true);
        c.A.VerzamelClipLijst(c.B, lijst, bMetDozen);
        benchmark::DoNotOptimize(lijst.GetCount());
    }
    state.SetItemsProcessed(state.iterations());
}

void Geos_VerzamelClipLijst(benchmark::State &state) {
    const Clip &c = GetClip();
    for (auto _ : state) {
        const vxtest::GeosGeom s(GEOSIntersection_r(c.geos.Get(), c.rA.get(), c.rB.get()),
                                 vxtest::GeosDeleter{c.geos.Get()});
        benchmark::DoNotOptimize(s.get());
    }
    state.SetItemsProcessed(state.iterations());
}

void Ours_SnijPoly(benchmark::State &state) {
    const Clip &c = GetClip();
    for (auto _ : state) {
        CVXCoordArrList binnen, buiten;
        benchmark::DoNotOptimize(
            c.A.bSnijPoly(binnen, buiten, c.B, ClipField(true, true, false), true));
        benchmark::DoNotOptimize(binnen.GetCount() + buiten.GetCount());
    }
    state.SetItemsProcessed(state.iterations());
}

void Geos_SnijPoly(benchmark::State &state) {
    const Clip &c = GetClip();
    for (auto _ : state) {
        const vxtest::GeosGeom d(GEOSIntersection_r(c.geos.Get(), c.gA.get(), c.gB.get()),
                                 vxtest::GeosDeleter{c.geos.Get()});
        const vxtest::GeosGeom v(GEOSDifference_r(c.geos.Get(), c.gA.get(), c.gB.get()),
                                 vxtest::GeosDeleter{c.geos.Get()});
        benchmark::DoNotOptimize(d.get());
        benchmark::DoNotOptimize(v.get());
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(Ours_PuntInPolygoon)->Unit(benchmark::kMicrosecond);
BENCHMARK(Geos_PuntInPolygoon)->Unit(benchmark::kMicrosecond);
BENCHMARK(Ours_VerzamelClipLijst)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(Geos_VerzamelClipLijst)->Unit(benchmark::kMillisecond);
BENCHMARK(Ours_SnijPoly)->Unit(benchmark::kMillisecond);
BENCHMARK(Geos_SnijPoly)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    vxbench::CRatioReporter rep;
    benchmark::RunSpecifiedBenchmarks(&rep);
    benchmark::Shutdown();
    std::printf("\n");
    rep.PrintRatio("PuntInPolygoon, 10,000 vertices", "Ours_PuntInPolygoon", "Geos_PuntInPolygoon",
                   1.0);
    rep.PrintRatio("VerzamelClipLijst, boxes", "Ours_VerzamelClipLijst/1",
                   "Geos_VerzamelClipLijst");
    rep.PrintRatio("VerzamelClipLijst, every pair", "Ours_VerzamelClipLijst/0",
                   "Geos_VerzamelClipLijst");
    rep.PrintRatio("bSnijPoly inside + outside, 1,000 vertices", "Ours_SnijPoly", "Geos_SnijPoly",
                   3.0);
    return 0;
}
