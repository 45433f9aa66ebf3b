// The oblique stereographic double projection: the ellipsoid first onto a conformal sphere
// (Gauss), then stereographically onto the plane tangent at the origin.
//
// CProjection_STEREOGRAPHIC derives the sphere from the latitude of origin (once per parameter
// set, kept in the object); CProjection_RD uses the fixed constants of the Dutch national grid.
// Forward is closed; the inverse latitude is that of a fixed-point iteration (at most 10 rounds,
// to 1e-12 rad), which the library reaches by one Newton step from a series where that is proven
// as close (see geodesy/ProjMath.h).
#pragma once

#include "platform/VXExport.h"

#include "geodesy/OutputSystem.h"

#include <optional>

namespace vx VX_API {

struct SStereoSphere;

class CProjection_STEREOGRAPHIC : public COutputSystem {
    VX_DECLARE_SERIAL(CProjection_STEREOGRAPHIC)
public:
    // `type` is PT_LOCAL (6) or PT_STEREOGRAPHIC (8): the same mathematics under two names.
    explicit CProjection_STEREOGRAPHIC(ProjectionType type = PT_STEREOGRAPHIC);
    CProjection_STEREOGRAPHIC(ProjectionType type, double lon, double lat, double scale,
                              double east, double north, const CEllipsoid &ellipsoid);

    COutputSystem *pCopy() const override;
    void EllToProjection(CVXCoord &xy, CEllCoord ell) override;
    void ProjectionToEll(CEllCoord &ell, CVXCoord xy) override;
    void EllToProjectionArray(const CEllCoord *in, CVXCoord *out, std::size_t n) override;
    void ProjectionToEllArray(const CVXCoord *in, CEllCoord *out, std::size_t n) override;

private:
    const SStereoSphere &Sphere(std::optional<SStereoSphere> &scratch) const;
    void StereoEllToProjection(const CEllCoord *in, CVXCoord *out, std::size_t n);
    void StereoProjectionToEll(const CVXCoord *in, CEllCoord *out, std::size_t n);
};

class CProjection_RD : public COutputSystem {
    VX_DECLARE_SERIAL(CProjection_RD)
public:
    CProjection_RD();

    COutputSystem *pCopy() const override;
    void EllToProjection(CVXCoord &xy, CEllCoord ell) override;
    void ProjectionToEll(CEllCoord &ell, CVXCoord xy) override;
    void EllToProjectionArray(const CEllCoord *in, CVXCoord *out, std::size_t n) override;
    void ProjectionToEllArray(const CVXCoord *in, CEllCoord *out, std::size_t n) override;
    // Kept asymmetric: ETRS2LOCAL is the bare projection (the base operation), whereas
    // LOCAL2ETRS runs the full RDNAPTRANS2008 chain back to ETRS89.
    using COutputSystem::ETRS2LOCAL;
    void LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) override;

protected:
    // For the grid-corrected RD types of geodesy/NationalGrid.h.
    explicit CProjection_RD(ProjectionType type);

private:
    const SStereoSphere &Sphere(std::optional<SStereoSphere> &scratch) const;
    void RDEllToProjection(const CEllCoord *in, CVXCoord *out, std::size_t n);
    void RDProjectionToEll(const CVXCoord *in, CEllCoord *out, std::size_t n);
};

} // namespace VX_API
