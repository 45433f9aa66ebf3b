// The transverse Mercator family: CProjection_TM and its four types, which differ only in their
// defaults (TM, Gauss-Krueger, UTM north and south).
//
// Method: the Gauss-Krueger series to the 8th order in the longitude difference, with the
// meridian arc in powers of the second eccentricity squared; the inverse through the footpoint
// latitude by the reverted series. Within 3 degrees of the central meridian forward and inverse
// agree with the exact transverse Mercator to well below a millimetre.
#pragma once

#include "platform/VXExport.h"

#include "geodesy/OutputSystem.h"

#include <optional>

namespace vx VX_API {

struct STMFixed;

class CProjection_TM : public COutputSystem {
public:
    void EllToProjection(CVXCoord &xy, CEllCoord ell) override;
    void ProjectionToEll(CEllCoord &ell, CVXCoord xy) override;
    void EllToProjectionArray(const CEllCoord *in, CVXCoord *out, std::size_t n) override;
    void ProjectionToEllArray(const CVXCoord *in, CEllCoord *out, std::size_t n) override;

protected:
    using COutputSystem::COutputSystem;

private:
    // The constants of the ellipsoid and the arc to the latitude of origin, kept per parameter
    // set.
    const STMFixed &Fixed(std::optional<STMFixed> &scratch) const;
    void TMEllToProjection(const CEllCoord *in, CVXCoord *out, std::size_t n);
    void TMProjectionToEll(const CVXCoord *in, CEllCoord *out, std::size_t n);
    bool bOwnPointForms() const;
};

class CProjection_TM_TM : public CProjection_TM {
    VX_DECLARE_SERIAL(CProjection_TM_TM)
public:
    CProjection_TM_TM();
    CProjection_TM_TM(double lon, double lat, double scale, double east, double north,
                      const CEllipsoid &ellipsoid);
    COutputSystem *pCopy() const override;
};

class CProjection_TM_GAUSS_KRUGER : public CProjection_TM {
    VX_DECLARE_SERIAL(CProjection_TM_GAUSS_KRUGER)
public:
    CProjection_TM_GAUSS_KRUGER();
    CProjection_TM_GAUSS_KRUGER(double lon, double east, const CEllipsoid &ellipsoid);
    COutputSystem *pCopy() const override;
};

class CProjection_TM_NORTH : public CProjection_TM {
    VX_DECLARE_SERIAL(CProjection_TM_NORTH)
public:
    CProjection_TM_NORTH();
    CProjection_TM_NORTH(double lon, const CEllipsoid &ellipsoid);
    COutputSystem *pCopy() const override;
};

class CProjection_TM_SOUTH : public CProjection_TM {
    VX_DECLARE_SERIAL(CProjection_TM_SOUTH)
public:
    CProjection_TM_SOUTH();
    CProjection_TM_SOUTH(double lon, const CEllipsoid &ellipsoid);
    COutputSystem *pCopy() const override;
};

} // namespace VX_API
