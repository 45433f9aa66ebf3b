// The plain projections against PROJ: RD (the oblique stereographic projection alone, without
// the grid correction) and UTM zone 31, forward and inverse, each over the same 1,000,000 points
// of a grid across the area of use. At the end the throughput ratios are printed, ours over
// PROJ's: above 1 means the library is faster.
#include "geodesy/ProjStereo.h"
#include "geodesy/ProjTM.h"
#include "geometry/VXCoord.h"

#include <benchmark/benchmark.h>
#include <proj.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace vx;

namespace {

constexpr int nSide = 1000; // nSide * nSide points per run
constexpr double dPiB = 3.141592653589793;

// One projection set up in both libraries, with the grid of geographic input points (radians)
// and the projected points PROJ makes of them, which are the input of the inverse runs.
struct SCase {
    std::unique_ptr<COutputSystem> pOurs;
    PJ_CONTEXT *ctx = nullptr;
    PJ *pj = nullptr;
    std::vector<double> lat, lon, x, y;

    SCase(COutputSystem *ours, const char *def, double lat0, double lat1, double lon0, double lon1)
        : pOurs(ours) {
        ctx = proj_context_create();
        pj = proj_create(ctx, def);
        if (!pj) {
            std::fprintf(stderr, "PROJ rejects %s\n", def);
            std::exit(1);
        }
        for (int i = 0; i < nSide; ++i) {
            for (int j = 0; j < nSide; ++j) {
                lat.push_back((lat0 + (lat1 - lat0) * i / (nSide - 1)) * dPiB / 180.0);
                lon.push_back((lon0 + (lon1 - lon0) * j / (nSide - 1)) * dPiB / 180.0);
            }
        }
        x = lon;
        y = lat;
        Proj(PJ_FWD, x, y);
    }
    ~SCase() {
        proj_destroy(pj);
        proj_context_destroy(ctx);
    }
    SCase(const SCase &) = delete;
    SCase &operator=(const SCase &) = delete;

    // PROJ in place on the two arrays (longitude or x first).
    void Proj(PJ_DIRECTION dir, std::vector<double> &a, std::vector<double> &b) const {
        proj_trans_generic(pj, dir, a.data(), sizeof(double), a.size(), b.data(), sizeof(double),
                           b.size(), nullptr, 0, 0, nullptr, 0, 0);
    }
};

SCase &RD() {
    static SCase c(new CProjection_RD(),
                   "+proj=sterea +lat_0=52.156160556 +lon_0=5.387638889 +k=0.9999079 "
                   "+x_0=155000 +y_0=463000 +ellps=bessel",
                   50.7, 53.7, 3.2, 7.3);
    return c;
}

SCase &UTM() {
    static SCase c(
        new CProjection_TM_NORTH(3.0 * dPiB / 180.0, CEllipsoid(CEllipsoid::INTERNATIONAL)),
        "+proj=utm +zone=31 +ellps=intl", 0.0, 84.0, 0.0, 6.0);
    return c;
}

void OursForward(benchmark::State &state, SCase &(*get)()) {
    SCase &c = get();
    std::vector<double> x(c.lat.size()), y(c.lat.size());
    CVXCoord xy;
    for (auto _ : state) {
        for (size_t i = 0; i < c.lat.size(); ++i) {
            c.pOurs->EllToProjection(xy, CEllCoord(c.lat[i], c.lon[i], 0.0));
            x[i] = xy.dGetX();
            y[i] = xy.dGetY();
        }
        benchmark::DoNotOptimize(x.data());
        benchmark::DoNotOptimize(y.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(c.lat.size()));
}

void OursInverse(benchmark::State &state, SCase &(*get)()) {
    SCase &c = get();
    std::vector<double> lat(c.x.size()), lon(c.x.size());
    CEllCoord ell;
    for (auto _ : state) {
        for (size_t i = 0; i < c.x.size(); ++i) {
            c.pOurs->ProjectionToEll(ell, CVXCoord(c.x[i], c.y[i], 0.0, 1));
            lat[i] = ell.dGetLat();
            lon[i] = ell.dGetLon();
        }
        benchmark::DoNotOptimize(lat.data());
        benchmark::DoNotOptimize(lon.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(c.x.size()));
}

// PROJ transforms in place, so each run first copies the input: a plain memory copy, small
// against the projection work, and the library's runs write their output arrays as well.
void ProjForward(benchmark::State &state, SCase &(*get)()) {
    SCase &c = get();
    std::vector<double> a, b;
    for (auto _ : state) {
        a = c.lon;
        b = c.lat;
        c.Proj(PJ_FWD, a, b);
        benchmark::DoNotOptimize(a.data());
        benchmark::DoNotOptimize(b.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(c.lat.size()));
}

void ProjInverse(benchmark::State &state, SCase &(*get)()) {
    SCase &c = get();
    std::vector<double> a, b;
    for (auto _ : state) {
        a = c.x;
        b = c.y;
        c.Proj(PJ_INV, a, b);
        benchmark::DoNotOptimize(a.data());
        benchmark::DoNotOptimize(b.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(c.x.size()));
}

BENCHMARK_CAPTURE(OursForward, RD, RD)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ProjForward, RD, RD)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OursInverse, RD, RD)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ProjInverse, RD, RD)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OursForward, UTM, UTM)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ProjForward, UTM, UTM)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(OursInverse, UTM, UTM)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ProjInverse, UTM, UTM)->Unit(benchmark::kMillisecond);

// The console output as usual, keeping each run's points per second for the ratios.
class CRatioReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> m_rate;
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &r : runs) {
            const auto it = r.counters.find("items_per_second");
            if (it != r.counters.end() && r.run_type == Run::RT_Iteration)
                m_rate[r.benchmark_name()] = it->second;
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

void PrintRatio(const CRatioReporter &rep, const char *dir, const char *proj) {
    const std::string ours = std::string("Ours") + dir + "/" + proj;
    const std::string theirs = std::string("Proj") + dir + "/" + proj;
    const auto a = rep.m_rate.find(ours);
    const auto b = rep.m_rate.find(theirs);
    if (a == rep.m_rate.end() || b == rep.m_rate.end() || b->second <= 0.0) return;
    std::printf("%-4s %-8s ours/PROJ throughput: %.2fx\n", proj, dir, a->second / b->second);
}

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    CRatioReporter rep;
    benchmark::RunSpecifiedBenchmarks(&rep);
    benchmark::Shutdown();
    std::printf("\n");
    for (const char *proj : {"RD", "UTM"})
        for (const char *dir : {"Forward", "Inverse"})
            PrintRatio(rep, dir, proj);
    return 0;
}
