// Hotine's rectified skew orthomorphic projection (RSO) for the natural origin: the ellipsoid
// onto the aposphere of constant total curvature, then a skew Mercator whose rectified grid is
// turned by the skew angle. BRSO and MRSO are the Borneo and Malaysian grids.
//
// The longitude of origin is the longitude of the projection centre on the initial line; the
// skew angle serves both as the angle of the initial line on the aposphere at the centre and as
// the angle from the rectified to the skew grid, so the azimuth of the initial line follows from
// it. Constants are derived from a and 1/f once per parameter set and kept. Forward is closed; the
// inverse latitude comes from the isometric latitude by fixed-point steps to 1e-15.
#pragma once

#include "platform/VXExport.h"

#include "geodesy/OutputSystem.h"

#include <optional>

namespace vx VX_API {

struct SRSOConst;

class CProjection_RSO : public COutputSystem {
public:
    void EllToProjection(CVXCoord &xy, CEllCoord ell) override;
    void ProjectionToEll(CEllCoord &ell, CVXCoord xy) override;

    double dGetSkew() const { return m_dSkew; }

    // Isometric latitude and its inverse on an ellipsoid of eccentricity e.
    static double dGeoLatToIso(double lat, double e);
    static double dIsoToGeoLat(double iso, double e);

protected:
    CProjection_RSO(ProjectionType type, CEllipsoid *pEllipsoid, const SParameters &par,
                    const char *szEditFlags, double dSkew);

    double m_dSkew;

private:
    // The constants of the aposphere, kept per parameter set (the skew included).
    const SRSOConst &Constants(std::optional<SRSOConst> &scratch) const;
};

class CProjection_BRSO : public CProjection_RSO {
    VX_DECLARE_SERIAL(CProjection_BRSO)
public:
    CProjection_BRSO();
    CProjection_BRSO(double east, double north);
    COutputSystem *pCopy() const override;
};

class CProjection_MRSO : public CProjection_RSO {
    VX_DECLARE_SERIAL(CProjection_MRSO)
public:
    CProjection_MRSO();
    COutputSystem *pCopy() const override;
};

} // namespace VX_API
