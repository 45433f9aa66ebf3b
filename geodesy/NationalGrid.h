// The national grids with correction grids: the whole road from ETRS89 geographic coordinates to
// a national grid coordinate with a national height, and back.
//
// ETRS2LOCAL: ETRS89 geocentric, a similarity transformation to the local datum (Bessel 1841 for
// the Netherlands, International 1924 for Belgium), the projection, the correction grid of the
// plane coordinates, and the geoid height from the registered geoid model. EllToProjection and
// ProjectionToEll stay on the local datum. The Dutch grid is interpolated bicubically over 4 x 4
// nodes (1 km spacing), the Belgian one bilinearly; each value is read from its file on demand,
// so an object holds a file position and belongs to one thread at a time.
//
// The grid files are found in the directory of the library binary, or in the directory named by
// the environment variable VXCOMMON_DATA, read each time such an object is constructed. A missing
// file leaves the object working without corrections; the user is told once, at the first use.
#pragma once

#include "platform/VXExport.h"

#include "geodesy/ProjLambert.h"
#include "geodesy/ProjStereo.h"
#include "platform/File.h"

namespace vx VX_API {

class CProjection_RDNAPTRANS2004 : public CProjection_RD {
    VX_DECLARE_SERIAL(CProjection_RDNAPTRANS2004)
public:
    CProjection_RDNAPTRANS2004();
    CProjection_RDNAPTRANS2004(const CProjection_RDNAPTRANS2004 &) = delete;
    CProjection_RDNAPTRANS2004 &operator=(const CProjection_RDNAPTRANS2004 &) = delete;

    COutputSystem *pCopy() const override;
    // The RD projection with the grid correction (subtracted forward, added backward).
    void EllToProjection(CVXCoord &xy, CEllCoord ell) override;
    void ProjectionToEll(CEllCoord &ell, CVXCoord xy) override;
    using COutputSystem::ETRS2LOCAL;
    void ETRS2LOCAL(CVXCoord &xy, CEllCoord ell) override;
    void LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) override;

    // ETRS89 to RD with NAP height (the linearised datum shift of 2004) ...
    void RDNAPTRANS(CVXCoord &xy, CEllCoord ell);
    void RDNAPTRANS(double lat, double lon, double h, double *x, double *y, double *z);
    // ... and back.
    void RDNAP2WGS(CEllCoord &ell, const CVXCoord &xy);

protected:
    // A geocentric datum shift, in place.
    using DatumShift = void (*)(double &X, double &Y, double &Z);

    CProjection_RDNAPTRANS2004(ProjectionType type, const char16_t *szTransformationName);

    // The grid correction at p (bicubic over 4 x 4 nodes); 0 off the grid, on a no-data node or
    // without grid files.
    void RD2000Correction(CVXCoord p, double &dx, double &dy);
    // The two directions of the chain, for a given geoid model and shift.
    void EtrsToRD(CVXCoord &xy, CEllCoord ell, int nGeoidModel, DatumShift shift);
    void RDToEtrs(CEllCoord &ell, const CVXCoord &xy, int nGeoidModel, DatumShift shift);

private:
    bool m_bWarnOnce = true;
    CVXString m_szFailMessage;
    CFile m_FileX;
    CFile m_FileY;
};

class CProjection_RDNAPTRANS2008 : public CProjection_RDNAPTRANS2004 {
    VX_DECLARE_SERIAL(CProjection_RDNAPTRANS2008)
public:
    CProjection_RDNAPTRANS2008();

    COutputSystem *pCopy() const override;
    using COutputSystem::ETRS2LOCAL;
    void ETRS2LOCAL(CVXCoord &xy, CEllCoord ell) override;
    void LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) override;

    // ETRS89 to RD with NAP height through the rigorous similarity transformation ...
    void RDNAPTRANS(CVXCoord &xy, CEllCoord ell);
    void RDNAPTRANS(double lat, double lon, double h, double *x, double *y, double *z);
    // ... and back.
    void RDNAP2WGS(CEllCoord &ell, const CVXCoord &xy);

    // The similarity transformation about the point (x0, y0, z0): rotations alpha, beta, gamma
    // (radians) about X, Y and Z, scale change delta, translation (tx, ty, tz).
    static void sim_trans(double X, double Y, double Z, double tx, double ty, double tz,
                          double alpha, double beta, double gamma, double delta, double x0,
                          double y0, double z0, double &Xout, double &Yout, double &Zout);

protected:
    CProjection_RDNAPTRANS2008(ProjectionType type, const char16_t *szTransformationName);
};

// Type 13 ("RDNAPTRANS", "RD(incl. correction grid)"), the name older files and hosts use; it
// computes exactly as RDNAPTRANS2008.
class CProjection_RD2000 : public CProjection_RDNAPTRANS2008 {
    VX_DECLARE_SERIAL(CProjection_RD2000)
public:
    CProjection_RD2000();
    COutputSystem *pCopy() const override;
};

class CProjection_LAMBERT72CORR : public CProjection_LAMBERT72 {
    VX_DECLARE_SERIAL(CProjection_LAMBERT72CORR)
public:
    CProjection_LAMBERT72CORR();
    CProjection_LAMBERT72CORR(const CProjection_LAMBERT72CORR &) = delete;
    CProjection_LAMBERT72CORR &operator=(const CProjection_LAMBERT72CORR &) = delete;

    COutputSystem *pCopy() const override;
    // Lambert 72 with the grid correction (added forward, removed backward: the opposite sign
    // to the Dutch grid).
    void EllToProjection(CVXCoord &xy, CEllCoord ell) override;
    void ProjectionToEll(CEllCoord &ell, CVXCoord xy) override;
    using COutputSystem::ETRS2LOCAL;
    void ETRS2LOCAL(CVXCoord &xy, CEllCoord ell) override;
    void LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) override;

    // The bilinear grid correction at p; 0 off the grid, on a no-data node or without files.
    void Correction(CVXCoord p, double &dx, double &dy);

private:
    // Origin, spacing and size of one grid file, from its header.
    struct SGridHeader {
        double dXMin = 0.0;
        double dYMin = 0.0;
        double dDX = 0.0;
        double dDY = 0.0;
        int nCols = 0;
        int nRows = 0;
    };
    bool bValue(CFile &file, const SGridHeader &hdr, double x, double y, double &value);

    bool m_bWarnOnce = true;
    CVXString m_szFailMessage;
    CFile m_FileX;
    CFile m_FileY;
    SGridHeader m_HeaderX;
    SGridHeader m_HeaderY;
};

} // namespace VX_API
