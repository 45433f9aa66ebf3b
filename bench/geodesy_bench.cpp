// The plain projections against PROJ: RD (the oblique stereographic projection alone, without
// the grid correction, against sterea), Lambert 72 and Lambert 2008 (against lcc) and UTM zone 31
// (against tmerc +approx, the same kind of series), forward and inverse, each over the same
// 1,000,000 points of a grid across the area of use. The library runs point by point (the
// virtual call per point) and through the array forms. At the end one line per comparison
// gives both throughputs and the ratio ours/PROJ: above 1 means the library is faster.
#include "geodesy/ProjLambert.h"
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
        "+proj=tmerc +approx +lat_0=0 +lon_0=3 +k=0.9996 +x_0=500000 +y_0=0 +ellps=intl", 0.0, 84.0,
        0.0, 6.0);
    return c;
}

SCase &L72() {
    static SCase c(new CProjection_LAMBERT72(),
                   "+proj=lcc +lat_0=90 +lon_0=4.367486666666666 +lat_1=51.16666723333333 "
                   "+lat_2=49.8333339 +x_0=150000.013 +y_0=5400088.438 +ellps=intl",
                   49.4, 51.6, 2.5, 6.5);
    return c;
}

SCase &L2008() {
    static SCase c(new CProjection_LAMBERT2008(),
                   "+proj=lcc +lat_0=50.797815 +lon_0=4.359215833333333 +lat_1=49.83333333333334 "
                   "+lat_2=51.16666666666666 +x_0=649328 +y_0=665262 +ellps=GRS80",
                   49.4, 51.6, 2.5, 6.5);
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

// The array forms: the points are laid out as CEllCoord and CVXCoord once, outside the timing.
void OursArrayForward(benchmark::State &state, SCase &(*get)()) {
    SCase &c = get();
    std::vector<CEllCoord> in;
    for (size_t i = 0; i < c.lat.size(); ++i)
        in.emplace_back(c.lat[i], c.lon[i], 0.0);
    std::vector<CVXCoord> out(in.size());
    for (auto _ : state) {
        c.pOurs->EllToProjectionArray(in.data(), out.data(), in.size());
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(in.size()));
}

void OursArrayInverse(benchmark::State &state, SCase &(*get)()) {
    SCase &c = get();
    std::vector<CVXCoord> in;
    for (size_t i = 0; i < c.x.size(); ++i)
        in.emplace_back(c.x[i], c.y[i], 0.0, 1);
    std::vector<CEllCoord> out(in.size());
    for (auto _ : state) {
        c.pOurs->ProjectionToEllArray(in.data(), out.data(), in.size());
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(in.size()));
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

#define VX_BENCH_PROJECTION(name)                                                                  \
    BENCHMARK_CAPTURE(OursForward, name, name)->Unit(benchmark::kMillisecond);                     \
    BENCHMARK_CAPTURE(OursArrayForward, name, name)->Unit(benchmark::kMillisecond);                \
    BENCHMARK_CAPTURE(ProjForward, name, name)->Unit(benchmark::kMillisecond);                     \
    BENCHMARK_CAPTURE(OursInverse, name, name)->Unit(benchmark::kMillisecond);                     \
    BENCHMARK_CAPTURE(OursArrayInverse, name, name)->Unit(benchmark::kMillisecond);                \
    BENCHMARK_CAPTURE(ProjInverse, name, name)->Unit(benchmark::kMillisecond)

VX_BENCH_PROJECTION(RD);
VX_BENCH_PROJECTION(L72);
VX_BENCH_PROJECTION(L2008);
VX_BENCH_PROJECTION(UTM);

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

double Rate(const CRatioReporter &rep, const std::string &name) {
    const auto it = rep.m_rate.find(name);
    return it == rep.m_rate.end() ? 0.0 : it->second;
}

// One line: both throughputs in million points per second and the ratio. "fwd+inv" is a forward
// and an inverse of each point, the harmonic combination of the two rates.
void PrintLine(const char *proj, const char *what, double ours, double peer) {
    if (ours <= 0.0 || peer <= 0.0) return;
    std::printf("%-6s %-14s ours %7.2f M/s  PROJ %7.2f M/s  ours/PROJ %5.2fx\n", proj, what,
                ours / 1e6, peer / 1e6, ours / peer);
}

double Both(double fwd, double inv) {
    return fwd > 0.0 && inv > 0.0 ? 1.0 / (1.0 / fwd + 1.0 / inv) : 0.0;
}

void PrintRatios(const CRatioReporter &rep, const std::string &proj) {
    const double pf = Rate(rep, "ProjForward/" + proj);
    const double pi = Rate(rep, "ProjInverse/" + proj);
    for (const char *form : {"", "Array"}) {
        const std::string f(form);
        const double of = Rate(rep, "Ours" + f + "Forward/" + proj);
        const double oi = Rate(rep, "Ours" + f + "Inverse/" + proj);
        const std::string tag = f.empty() ? "point" : "array";
        PrintLine(proj.c_str(), (tag + " fwd").c_str(), of, pf);
        PrintLine(proj.c_str(), (tag + " inv").c_str(), oi, pi);
        PrintLine(proj.c_str(), (tag + " fwd+inv").c_str(), Both(of, oi), Both(pf, pi));
    }
}

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    CRatioReporter rep;
    benchmark::RunSpecifiedBenchmarks(&rep);
    benchmark::Shutdown();
    std::printf("\n");
    for (const char *proj : {"RD", "L72", "L2008", "UTM"})
        PrintRatios(rep, proj);
    return 0;
}
