// The inner loops of clipping: intersecting one stretch with another (straight and arc), and
// the arc parameters that every arc routine recomputes.
#include "geometry/LineArc.h"
#include "geometry/VXCoordArr.h"

#include <benchmark/benchmark.h>

#include <cmath>

using namespace vx;

namespace {

// A line from its points.
CVXCoordArr Lijn(std::initializer_list<CVXCoord> punten) {
    CVXCoordArr arr;
    for (const CVXCoord &p : punten)
        arr.Add(&p);
    return arr;
}

// Owns the result points of one call.
void Vrij(CVXCoord *p1, CVXCoord *p2) {
    delete p1;
    delete p2;
}

void BM_SnijInLijnDeel_Rechte(benchmark::State &state) {
    const CVXCoordArr a = Lijn({CVXCoord(0, 0, 1), CVXCoord(10, 3, 0)});
    const CVXCoordArr b = Lijn({CVXCoord(5, -5, 1), CVXCoord(4, 8, 0)});
    for (auto _ : state) {
        CVXCoord *p1 = nullptr, *p2 = nullptr;
        benchmark::DoNotOptimize(a.nSnijInLijnDeel(&p1, &p2, b, 0, 0, true));
        Vrij(p1, p2);
    }
}
BENCHMARK(BM_SnijInLijnDeel_Rechte);

void BM_SnijInLijnDeel_RechteBoog(benchmark::State &state) {
    const CVXCoordArr a = Lijn({CVXCoord(-2, 0.5, 1), CVXCoord(2, 0.5, 0)});
    const CVXCoordArr b = Lijn({CVXCoord(1, 0, 1), CVXCoord(0, 1, 8), CVXCoord(-1, 0, 8)});
    for (auto _ : state) {
        CVXCoord *p1 = nullptr, *p2 = nullptr;
        benchmark::DoNotOptimize(a.nSnijInLijnDeel(&p1, &p2, b, 0, 0, true));
        Vrij(p1, p2);
    }
}
BENCHMARK(BM_SnijInLijnDeel_RechteBoog);

void BM_SnijInLijnDeel_BoogBoog(benchmark::State &state) {
    const CVXCoordArr a = Lijn({CVXCoord(1, 0, 1), CVXCoord(0, 1, 8), CVXCoord(-1, 0, 8)});
    const CVXCoordArr b = Lijn({CVXCoord(2, 0, 1), CVXCoord(1, 1, 8), CVXCoord(0, 0, 8)});
    for (auto _ : state) {
        CVXCoord *p1 = nullptr, *p2 = nullptr;
        benchmark::DoNotOptimize(a.nSnijInLijnDeel(&p1, &p2, b, 0, 0, true));
        Vrij(p1, p2);
    }
}
BENCHMARK(BM_SnijInLijnDeel_BoogBoog);

void BM_SnijInLijnDeel_Samenvallend(benchmark::State &state) {
    const CVXCoordArr a = Lijn({CVXCoord(0, 0, 1), CVXCoord(10, 0, 0)});
    const CVXCoordArr b = Lijn({CVXCoord(5, 0, 1), CVXCoord(15, 0, 0)});
    for (auto _ : state) {
        CVXCoord *p1 = nullptr, *p2 = nullptr;
        benchmark::DoNotOptimize(a.nSnijInLijnDeel(&p1, &p2, b, 0, 0, true));
        Vrij(p1, p2);
    }
}
BENCHMARK(BM_SnijInLijnDeel_Samenvallend);

void BM_BoogPar(benchmark::State &state) {
    const CSimpleBoog boog(CVXCoord(std::cos(0.3), std::sin(0.3)), CVXCoord(-1, 0.2),
                           CVXCoord(std::cos(-1.2), std::sin(-1.2)));
    CVXCoord C;
    double r = 0;
    short n = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(C.BoogPar(r, n, boog));
        benchmark::DoNotOptimize(r);
    }
}
BENCHMARK(BM_BoogPar);

} // namespace

BENCHMARK_MAIN();
