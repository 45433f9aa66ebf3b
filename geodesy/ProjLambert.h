// Lambert conformal conic projections.
//
// CProjection_LB is the one-parallel form (standard parallel p0 with scale k0); LAMBERT1 takes
// them from its parameters, LAMBERT2 derives them from two standard parallels (Parallel()).
// LAMBERT72 and LAMBERT2008 are LAMBERT2 with the fixed parameters of the Belgian grids;
// LAMBERT72Old is the older closed form of Lambert 72 with its own constants, kept for archives.
// Forward is closed; the inverse latitude is that of a fixed-point iteration (at most 10 rounds,
// to 1e-12 rad), reached by one Newton step from a series where that is proven as close (see
// geodesy/ProjMath.h). The constants of the cone are kept in the object per parameter set.
#pragma once

#include "platform/VXExport.h"

#include "geodesy/OutputSystem.h"

#include <optional>

namespace vx VX_API {

struct SLBConst;

class CProjection_LB : public COutputSystem {
public:
    // The serial forms add m_dProjScaleFac0 then m_dStandPar0 ("m_dProjScaleFac0",
    // "m_dStandPar0") behind the base fields.
    using COutputSystem::SerializeX;
    void SerializeX(CArchiveX &ar) override;
    void SerializeB(CArchiveB &ar) override;

    void EllToProjection(CVXCoord &xy, CEllCoord ell) override;
    void ProjectionToEll(CEllCoord &ell, CVXCoord xy) override;
    void EllToProjectionArray(const CEllCoord *in, CVXCoord *out, std::size_t n) override;
    void ProjectionToEllArray(const CVXCoord *in, CEllCoord *out, std::size_t n) override;

    double dGetStandPar0() const { return m_dStandPar0; }
    double dGetProjScaleFac0() const { return m_dProjScaleFac0; }

protected:
    CProjection_LB(ProjectionType type, CEllipsoid *pEllipsoid, const SParameters &par,
                   const char *szEditFlags);

    double m_dStandPar0 = 0.0;
    double m_dProjScaleFac0 = 1.0;

private:
    // The constants of the cone, kept per parameter set.
    const SLBConst &Constants(std::optional<SLBConst> &scratch) const;
    void LBEllToProjection(const CEllCoord *in, CVXCoord *out, std::size_t n);
    void LBProjectionToEll(const CVXCoord *in, CEllCoord *out, std::size_t n);
    bool bOwnPointForms() const;
};

class CProjection_LB_LAMBERT1 : public CProjection_LB {
    VX_DECLARE_SERIAL(CProjection_LB_LAMBERT1)
public:
    CProjection_LB_LAMBERT1();
    CProjection_LB_LAMBERT1(double lon, double lat, double par1, double scale, double east,
                            double north, const CEllipsoid &ellipsoid);
    COutputSystem *pCopy() const override;
};

class CProjection_LB_LAMBERT2 : public CProjection_LB {
    VX_DECLARE_SERIAL(CProjection_LB_LAMBERT2)
public:
    CProjection_LB_LAMBERT2();
    CProjection_LB_LAMBERT2(double lon, double lat, double par1, double par2, double east,
                            double north, const CEllipsoid &ellipsoid);
    COutputSystem *pCopy() const override;

protected:
    CProjection_LB_LAMBERT2(ProjectionType type, CEllipsoid *pEllipsoid, const SParameters &par);
    // The parallel p0 and scale k0 of the one-parallel form: equal parallels give that parallel
    // with scale 1; otherwise the cone through both, with scale exactly 1 on the first.
    void Parallel();
};

class CProjection_LAMBERT72 : public CProjection_LB_LAMBERT2 {
    VX_DECLARE_SERIAL(CProjection_LAMBERT72)
public:
    CProjection_LAMBERT72();
    COutputSystem *pCopy() const override;
    // Kept asymmetric: ETRS2LOCAL is the bare projection, whereas LOCAL2ETRS runs the full
    // LAMBERT72CORR chain back to ETRS89 (opening its grid files at each call).
    using COutputSystem::ETRS2LOCAL;
    void LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) override;

protected:
    // For the grid-corrected type of geodesy/NationalGrid.h.
    explicit CProjection_LAMBERT72(ProjectionType type);
};

class CProjection_LAMBERT2008 : public CProjection_LB_LAMBERT2 {
    VX_DECLARE_SERIAL(CProjection_LAMBERT2008)
public:
    CProjection_LAMBERT2008();
    COutputSystem *pCopy() const override;
    // ETRS89 is the datum of Lambert 2008: the chain is the projection plus the geoid height.
    using COutputSystem::ETRS2LOCAL;
    void ETRS2LOCAL(CVXCoord &xy, CEllCoord ell) override;
    void LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) override;
};

class CProjection_LAMBERT72Old : public COutputSystem {
    VX_DECLARE_SERIAL(CProjection_LAMBERT72Old)
public:
    CProjection_LAMBERT72Old();
    COutputSystem *pCopy() const override;
    void EllToProjection(CVXCoord &xy, CEllCoord ell) override;
    void ProjectionToEll(CEllCoord &ell, CVXCoord xy) override;
};

} // namespace VX_API
