// CProjection_SWISS: the oblique conformal cylindrical projection of the Swiss survey (Bessel
// ellipsoid onto a sphere, then an oblique Mercator), with its fixed constants. Forward is
// closed; the inverse latitude is a fixed-point iteration (at most 10 rounds, to 1e-12 rad).
#pragma once

#include "platform/VXExport.h"

#include "geodesy/OutputSystem.h"

#include <optional>

namespace vx VX_API {

struct SSwissOrigin;

class CProjection_SWISS : public COutputSystem {
    VX_DECLARE_SERIAL(CProjection_SWISS)
public:
    CProjection_SWISS();
    CProjection_SWISS(double east, double north);

    COutputSystem *pCopy() const override;
    void EllToProjection(CVXCoord &xy, CEllCoord ell) override;
    void ProjectionToEll(CEllCoord &ell, CVXCoord xy) override;

private:
    // The spherical latitude of origin, kept per latitude of origin.
    const SSwissOrigin &Origin(std::optional<SSwissOrigin> &scratch) const;
};

} // namespace VX_API
