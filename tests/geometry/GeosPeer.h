// GEOS as an independent peer for the polygon code, in the tests and the benchmarks only: random
// simple polygons, their GEOS form, and the crossings GEOS finds between two boundaries.
#pragma once

#include "geometry/VXCoordArr.h"

#include <geos_c.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <random>
#include <utility>
#include <vector>

namespace vxtest {

// One reentrant GEOS context for the life of the object.
class GeosContext {
public:
    GeosContext() : m_ctx(GEOS_init_r()) {}
    ~GeosContext() { GEOS_finish_r(m_ctx); }
    GeosContext(const GeosContext &) = delete;
    GeosContext &operator=(const GeosContext &) = delete;
    GEOSContextHandle_t Get() const { return m_ctx; }

private:
    GEOSContextHandle_t m_ctx;
};

// A GEOS geometry owned together with the context that made it.
struct GeosDeleter {
    GEOSContextHandle_t ctx;
    void operator()(GEOSGeometry *g) const { GEOSGeom_destroy_r(ctx, g); }
};
using GeosGeom = std::unique_ptr<GEOSGeometry, GeosDeleter>;

// The polygon of a closed straight line (every point is a vertex).
inline GeosGeom GeosPolygoon(const GeosContext &geos, const vx::CVXCoordArr &arr) {
    GEOSContextHandle_t ctx = geos.Get();
    const auto n = static_cast<unsigned>(arr.GetSize());
    GEOSCoordSequence *seq = GEOSCoordSeq_create_r(ctx, n, 2);
    for (unsigned i = 0; i < n; ++i)
        GEOSCoordSeq_setXY_r(ctx, seq, i, arr.Pt(static_cast<int>(i)).m_dX,
                             arr.Pt(static_cast<int>(i)).m_dY);
    GEOSGeometry *ring = GEOSGeom_createLinearRing_r(ctx, seq);
    return GeosGeom(GEOSGeom_createPolygon_r(ctx, ring, nullptr, 0), GeosDeleter{ctx});
}

inline GeosGeom GeosPunt(const GeosContext &geos, double x, double y) {
    return GeosGeom(GEOSGeom_createPointFromXY_r(geos.Get(), x, y), GeosDeleter{geos.Get()});
}

inline GeosGeom GeosRand(const GeosContext &geos, const GEOSGeometry *g) {
    return GeosGeom(GEOSBoundary_r(geos.Get(), g), GeosDeleter{geos.Get()});
}

// The points of a GEOS geometry that are points (crossings of two boundaries); parts that are
// lines (shared stretches) are left out.
inline std::vector<std::pair<double, double>> GeosPunten(const GeosContext &geos,
                                                         const GEOSGeometry *g) {
    GEOSContextHandle_t ctx = geos.Get();
    std::vector<std::pair<double, double>> punten;
    const int n = GEOSGetNumGeometries_r(ctx, g);
    for (int i = 0; i < n; ++i) {
        const GEOSGeometry *deel = GEOSGetGeometryN_r(ctx, g, i);
        if (GEOSGeomTypeId_r(ctx, deel) != GEOS_POINT) continue;
        double x = 0.0, y = 0.0;
        GEOSGeomGetX_r(ctx, deel, &x);
        GEOSGeomGetY_r(ctx, deel, &y);
        punten.emplace_back(x, y);
    }
    return punten;
}

// The crossings of the boundaries of two polygons, as GEOS finds them.
inline std::vector<std::pair<double, double>>
GeosSnijpunten(const GeosContext &geos, const GEOSGeometry *a, const GEOSGeometry *b) {
    const GeosGeom ra = GeosRand(geos, a), rb = GeosRand(geos, b);
    const GeosGeom s(GEOSIntersection_r(geos.Get(), ra.get(), rb.get()), GeosDeleter{geos.Get()});
    return GeosPunten(geos, s.get());
}

// A random simple polygon of n straight vertices: star-shaped about (cx, cy), with increasing
// angles (each in its own sector of 2π/n) and radii between rMin and rMax; closed.
inline vx::CVXCoordArr SterVeelhoek(std::mt19937 &rng, int n, double cx, double cy, double rMin,
                                    double rMax) {
    std::uniform_real_distribution<double> fractie(0.1, 0.9), straal(rMin, rMax);
    vx::CVXCoordArr arr;
    for (int k = 0; k < n; ++k) {
        const double h = 2.0 * std::numbers::pi * (k + fractie(rng)) / n;
        const double r = straal(rng);
        const vx::CVXCoord p(cx + r * std::cos(h), cy + r * std::sin(h),
                             static_cast<char>(k == 0 ? vx::nSectieStart : vx::nSectieRecht));
        arr.Add(&p);
    }
    vx::CVXCoord sluit(arr.Pt(0).m_dX, arr.Pt(0).m_dY, static_cast<char>(vx::nSectieRecht));
    arr.Add(&sluit);
    return arr;
}

} // namespace vxtest
