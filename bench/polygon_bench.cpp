// Polygon operations against GEOS in the same run: containment of points in a polygon of 10,000
// straight vertices (our winding sum against GEOS's plain contains, no prepared geometry), and
// the clip list of two 1,000-vertex polygons (with and without skipping stretch pairs by their
// boxes) against GEOS's intersection of the two boundaries. At the end the time ratios are
// printed, ours over GEOS: below 1 means ours is faster.
#include "geometry/ClipList.h"
#include "geometry/GeosPeer.h"
#include "geometry/PuntInPoly.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
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

    Clip() {
        std::mt19937 rng(nSeed + 1);
        A = vxtest::SterVeelhoek(rng, nClipPunten, 0.0, 0.0, 500.0, 1000.0);
        B = vxtest::SterVeelhoek(rng, nClipPunten, 300.0, 200.0, 500.0, 1000.0);
        const vxtest::GeosGeom gA = vxtest::GeosPolygoon(geos, A);
        const vxtest::GeosGeom gB = vxtest::GeosPolygoon(geos, B);
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

BENCHMARK(Ours_PuntInPolygoon)->Unit(benchmark::kMicrosecond);
BENCHMARK(Geos_PuntInPolygoon)->Unit(benchmark::kMicrosecond);
BENCHMARK(Ours_VerzamelClipLijst)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);
BENCHMARK(Geos_VerzamelClipLijst)->Unit(benchmark::kMillisecond);

// The console output as usual, keeping each run's CPU time per iteration for the ratios
// (the machine is shared, so wall time is noisier).
class CRatioReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> m_tijd;
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &r : runs)
            if (r.run_type == Run::RT_Iteration && r.iterations > 0)
                m_tijd[r.benchmark_name()] = r.cpu_accumulated_time / r.iterations;
        ConsoleReporter::ReportRuns(runs);
    }
};

void PrintRatio(const CRatioReporter &rep, const std::string &ours, const std::string &geos) {
    const auto a = rep.m_tijd.find(ours);
    const auto b = rep.m_tijd.find(geos);
    if (a == rep.m_tijd.end() || b == rep.m_tijd.end() || b->second <= 0.0) return;
    std::printf("%-30s ours/GEOS time: %.3f\n", ours.c_str(), a->second / b->second);
}

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    CRatioReporter rep;
    benchmark::RunSpecifiedBenchmarks(&rep);
    benchmark::Shutdown();
    std::printf("\n");
    PrintRatio(rep, "Ours_PuntInPolygoon", "Geos_PuntInPolygoon");
    PrintRatio(rep, "Ours_VerzamelClipLijst/1", "Geos_VerzamelClipLijst");
    PrintRatio(rep, "Ours_VerzamelClipLijst/0", "Geos_VerzamelClipLijst");
    return 0;
}
