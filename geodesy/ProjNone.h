// CProjection_NONE: geographic coordinates carried over unchanged, latitude and longitude (in
// radians) in the coordinate's x and y, the height in its z.
#pragma once

#include "platform/VXExport.h"

#include "geodesy/OutputSystem.h"

namespace vx VX_API {

class CProjection_NONE : public COutputSystem {
    VX_DECLARE_SERIAL(CProjection_NONE)
public:
    CProjection_NONE();
    explicit CProjection_NONE(const CEllipsoid &ellipsoid);

    COutputSystem *pCopy() const override;
    void EllToProjection(CVXCoord &xy, CEllCoord ell) override;
    void ProjectionToEll(CEllCoord &ell, CVXCoord xy) override;
};

} // namespace VX_API
