// COutputSystem: the abstract base of every map projection.
//
// It holds the parameters common to all projections (radians and metres; a parameter that a
// type does not use holds -2.0), the owned ellipsoid, the names and the flags that tell a host's
// dialog which parameters may be edited. The projection mathematics comes from the two pure
// virtual operations EllToProjection and ProjectionToEll; this class derives the meridian
// convergence (by a numeric difference over 1e-6 rad of latitude) and two scale factors (over a
// 1 m step through the geocentric chord, and by Bowring's short-line inverse formula).
#pragma once

#include "platform/VXExport.h"

#include "geodesy/Ellipsoid.h"
#include "persist/RuntimeCreator.h"
#include "persist/SerObject.h"
#include "platform/VXString.h"

#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

namespace vx VX_API {

class CVXCoord;

// The constants a projection derives from its parameters, kept with the object so that they are
// computed once per parameter set (the block's type and its key live in geodesy/ProjMath.h).
// Blocks are immutable once published, so several threads may use one object at once; a change
// of parameters publishes a new block and keeps the old one alive until the object dies, for a
// reader that may still hold it. After nMaxBlocks parameter sets nothing more is kept and each
// call computes its constants afresh: slower, never wrong, and memory stays bounded. A copy
// starts empty and computes its own.
class CProjectionConstants {
public:
    struct SBlock {
        explicit SBlock(const void *pTag) : m_pTag(pTag) {}
        virtual ~SBlock() = default;
        SBlock(const SBlock &) = delete;
        SBlock &operator=(const SBlock &) = delete;
        const void *m_pTag; // tells the block types apart
    };
    static constexpr std::size_t nMaxBlocks = 8;

    CProjectionConstants() = default;
    CProjectionConstants(const CProjectionConstants &) noexcept {}
    CProjectionConstants &operator=(const CProjectionConstants &) noexcept { return *this; }
    ~CProjectionConstants() = default;

    const SBlock *pCurrent() const { return m_pCurrent.load(std::memory_order_acquire); }
    // Takes `block` and makes it current; leaves it with the caller and returns false when the
    // room for blocks is used up.
    bool bPublish(std::unique_ptr<SBlock> &block);

private:
    std::atomic<const SBlock *> m_pCurrent{nullptr};
    std::mutex m_mutex;
    std::unique_ptr<SBlock> m_aBlocks[nMaxBlocks];
    std::size_t m_nBlocks = 0;
};

// The projection types; the numbers are those of stored files and host settings.
enum ProjectionType : int32_t {
    PT_NONE = 0,
    PT_RD = 1,
    PT_LAMBERT72 = 2,
    PT_GAUSS_KRUGER = 3,
    PT_UTM_NORTH = 4,
    PT_UTM_SOUTH = 5,
    PT_LOCAL = 6,
    PT_TM = 7,
    PT_STEREOGRAPHIC = 8,
    PT_LAMBERT1 = 9,
    PT_LAMBERT2 = 10,
    PT_BRSO = 11,
    PT_MRSO = 12,
    PT_RDNAPTRANS = 13,
    PT_SWISS = 14,
    PT_LAMBERT72CORR = 15,
    PT_LAMBERT2008 = 16,
    PT_RDNAPTRANS2008 = 17,
    PT_RDNAPTRANS2004 = 18
};

// The schema of every projection class: versionable, format 2. Format 1 held the ellipsoid in
// its old layout (a, 1/f, e, keyword), which the ellipsoid's reader still takes.
inline constexpr uint32_t nProjectionSchema = VERSIONABLE_SCHEMA | 2u;

// The value of a parameter that a projection type does not use.
inline constexpr double dUnusedParameter = -2.0;

class COutputSystem : public CSerObject {
public:
    // Copies share the ellipsoid pointer (the stored layout's shallow copy is kept for hosts that
    // copy objects for reading); destroying both would free it twice, so the library copies
    // through pCopy alone.
    COutputSystem(const COutputSystem &) = default;
    COutputSystem &operator=(const COutputSystem &) = default;
    ~COutputSystem() override;

    // The seven doubles in field order, m_szProjectionName, m_szTrav3ProjectionName, then the
    // ellipsoid (binary: in the layout the object schema names). Type, edit flags, user name and
    // transformation name are not stored: the created class supplies them. Kept so on purpose,
    // as files hold no type: a LOCAL stereographic returns as STEREOGRAPHIC with its names.
    using CSerObject::SerializeX;
    void SerializeX(CArchiveX &ar) override;
    void SerializeB(CArchiveB &ar) override;
    void Dump(CDumpContext &dc) const override;

    // An independent copy of the most derived type; the caller owns it.
    virtual COutputSystem *pCopy() const = 0;
    virtual void EllToProjection(CVXCoord &xy, CEllCoord ell) = 0;
    virtual void ProjectionToEll(CEllCoord &ell, CVXCoord xy) = 0;
    // The same for n points at once, for bulk conversions: in[i] to out[i]. The results are
    // bit-identical to n single calls. This base form makes the n calls; the plain projections
    // run their formulas directly over the arrays, several points at a time, so that the
    // processor overlaps their independent chains of libm calls. A class that overrides the
    // point forms is served by this base form unless it overrides these as well.
    virtual void EllToProjectionArray(const CEllCoord *in, CVXCoord *out, std::size_t n);
    virtual void ProjectionToEllArray(const CVXCoord *in, CEllCoord *out, std::size_t n);
    // ETRS89 geographic to the local grid and back. Without a datum model of its own a
    // projection counts its geographic coordinates as ETRS89: these are the bare projection.
    virtual void ETRS2LOCAL(double lat, double lon, double h, double *x, double *y, double *z);
    virtual void ETRS2LOCAL(CVXCoord &xy, CEllCoord ell);
    virtual void LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy);

    double dGetLonOriginCM() const { return m_dLonOriginCM; }
    double dGetLatOrigin() const { return m_dLatOrigin; }
    double dGetStandPar1() const { return m_dStandPar1; }
    double dGetStandPar2() const { return m_dStandPar2; }
    double dGetProjScaleFac() const { return m_dProjScaleFac; }
    double dGetFalseEasting() const { return m_dFalseEasting; }
    double dGetFalseNorthing() const { return m_dFalseNorthing; }
    bool bGetEditLonOriginCM() const { return m_bEdit[0]; }
    bool bGetEditLatOrigin() const { return m_bEdit[1]; }
    bool bGetEditStandPar1() const { return m_bEdit[2]; }
    bool bGetEditStandPar2() const { return m_bEdit[3]; }
    bool bGetEditProjScaleFac() const { return m_bEdit[4]; }
    bool bGetEditFalseEasting() const { return m_bEdit[5]; }
    bool bGetEditFalseNorthing() const { return m_bEdit[6]; }
    bool bGetEditEllipsoid() const { return m_bEdit[7]; }
    ProjectionType nGetProjection() const { return m_nProjection; }
    ProjectionType nGetTRAVProjection() const { return m_nProjection; }

    // Forwarded to the ellipsoid.
    double dGetSemiMajAx() const { return m_pEllipsoid->dGetSemiMajAx(); }
    double dGetInvFlatt() const { return m_pEllipsoid->dGetInvFlatt(); }
    double dGetEccentr() const { return m_pEllipsoid->dGetEccentr(); }
    CEllipsoid::EllipsoidType nGetEllipsoid() const { return m_pEllipsoid->nGetEllipsoid(); }
    double dNRadCurv(double lat) const { return m_pEllipsoid->dNRadCurv(lat); }
    double dMRadCurv(double lat) const { return m_pEllipsoid->dMRadCurv(lat); }
    void EllToXYZ(double lat, double lon, double h, double &X, double &Y, double &Z) const {
        m_pEllipsoid->EllToXYZ(lat, lon, h, X, Y, Z);
    }
    void EllToXYZ(CVXCoord &xyz, const CEllCoord &ell) const { m_pEllipsoid->EllToXYZ(xyz, ell); }
    void XYZToEll(double X, double Y, double Z, double &lat, double &lon, double &h) const {
        m_pEllipsoid->XYZToEll(X, Y, Z, lat, lon, h);
    }
    void XYZToEll(CEllCoord &ell, const CVXCoord &xyz) const { m_pEllipsoid->XYZToEll(ell, xyz); }
    // A new copy of the ellipsoid that the caller owns.
    CEllipsoid *pGetNewEllipsoid() const { return m_pEllipsoid->Copy(); }

    CVXString szGetEllipsoidName() const { return m_pEllipsoid->szGetName(); }
    CVXString szGetTrav3EllipsoidName() const { return m_pEllipsoid->szGetTrav3Name(); }
    CVXString szGetProjectionName() const { return m_szProjectionName; }
    CVXString szGetTrav3ProjectionName() const { return m_szTrav3ProjectionName; }
    CVXString szGetTransformationName() const { return m_szTransformationName; }
    CVXString szGetUserProjectionName() const { return m_szUserProjectionName; }
    void SetUserProjectionName(const CVXString &name) { m_szUserProjectionName = name; }

    void LatLonToXY(double lat, double lon, double *x, double *y);
    void XYToLatLon(double *lat, double *lon, double x, double y);

    // The angle between grid north and true north at (x, y); pi/2 when the projection does not
    // move at all.
    double dMeridianConvergence(double x, double y);
    // The point scale factor from a 1 m step in the plane and its geocentric chord.
    double ScaleFacEllToProj(const CVXCoord &p);
    double dScalefactorAtPoint(double x, double y);
    // Plane distance over ellipsoidal distance (Bowring's inverse formula for short lines).
    double ScaleFacEllDistToProj(const CVXCoord &p1, const CVXCoord &p2);

    // The fixed-width report: one line each, ending in a newline.
    CVXString szGetTRAV3Projection() const;
    CVXString szGetTRAV3LonOriginCM() const;
    CVXString szGetTRAV3LatOrigin() const;
    CVXString szGetTRAV3StandPar1() const;
    CVXString szGetTRAV3StandPar2() const;
    CVXString szGetTRAV3ProjScaleFac() const;
    CVXString szGetTRAV3FalseEasting() const;
    CVXString szGetTRAV3FalseNorthing() const;
    CVXString szGetTRAV3Ellipsoid() const;
    CVXString szGetTRAV3SemiMajAx() const;
    CVXString szGetTRAV3InvFlatt() const;

protected:
    // The parameters of one projection type, in field order; "-2.0" for unused ones.
    struct SParameters {
        double dLonOriginCM;
        double dLatOrigin;
        double dStandPar1;
        double dStandPar2;
        double dProjScaleFac;
        double dFalseEasting;
        double dFalseNorthing;
    };

    // Takes ownership of `pEllipsoid`. `szEditFlags` holds eight '1'/'0' in the order of the
    // bGetEdit... getters. Names come from the string table by the type.
    COutputSystem(ProjectionType type, CEllipsoid *pEllipsoid, const SParameters &par,
                  const char *szEditFlags);

    // The wrapped difference lon - lon0 in [-pi, pi]; absorbs the [0, 2*pi) longitudes of
    // XYZToEll. Below 3 in magnitude the rule leaves d = lon - lon0 as it is (the quotient
    // rounds to 0, and d - 0 * 2pi turns -0 into +0, as d + 0.0 does): that case, nearly every
    // point, is taken here without the two roundings.
    double dWrapLon(double lon) const {
        const double d = lon - m_dLonOriginCM;
        return std::fabs(d) < dWrapShortcut ? d + 0.0 : dWrapLonFull(d);
    }
    static constexpr double dWrapShortcut = 3.0;
    // The rule itself on a difference d.
    static double dWrapLonFull(double d);
    // An output longitude into [0, 2*pi): below 0 gains 2*pi, above 2*pi (at or above for the
    // TM family, bAtFullTurn) loses it.
    static double dLonOut(double lon, bool bAtFullTurn) {
        if (lon < 0.0)
            lon += dFullTurn;
        else if (bAtFullTurn ? lon >= dFullTurn : lon > dFullTurn)
            lon -= dFullTurn;
        return lon;
    }
    static constexpr double dFullTurn = 6.283185307179586;
    // The loops of the array forms over a point formula: fwd(lat, dLon, x, y) gets the wrapped
    // longitude difference, inv(x, y, lat, lon) gives the longitude before it is brought into
    // [0, 2*pi) (bAtFullTurn as in dLonOut); heights are carried over.
    // (The plane point is a template parameter, CVXCoord, as this header only declares it.)
    template <class XY, class FWD>
    void ForwardLoop(const CEllCoord *in, XY *out, std::size_t n, FWD fwd) const {
        for (std::size_t i = 0; i < n; ++i) {
            double x = 0.0;
            double y = 0.0;
            fwd(in[i].dGetLat(), dWrapLon(in[i].dGetLon()), x, y);
            SetProjected(out[i], x, y, in[i].dGetHgt());
        }
    }
    template <class XY, class INV>
    static void InverseLoop(const XY *in, CEllCoord *out, std::size_t n, bool bAtFullTurn, INV inv);
    // Stores a projected position and the height, marking x and y as known.
    static void SetProjected(CVXCoord &xy, double x, double y, double h);

    CEllipsoid *m_pEllipsoid;
    // Derived constants of the concrete projection (not stored; see CProjectionConstants).
    mutable CProjectionConstants m_Constants;
    double m_dLonOriginCM;
    double m_dLatOrigin;
    double m_dStandPar1;
    double m_dStandPar2;
    double m_dProjScaleFac;
    double m_dFalseEasting;
    double m_dFalseNorthing;
    bool m_bEdit[8];
    ProjectionType m_nProjection;
    CVXString m_szProjectionName;
    CVXString m_szUserProjectionName;
    CVXString m_szTrav3ProjectionName;
    CVXString m_szTransformationName;
};

template <class XY, class INV>
void COutputSystem::InverseLoop(const XY *in, CEllCoord *out, std::size_t n, bool bAtFullTurn,
                                INV inv) {
    for (std::size_t i = 0; i < n; ++i) {
        double lat = 0.0;
        double lon = 0.0;
        inv(in[i].dGetX(), in[i].dGetY(), lat, lon);
        out[i].SetLatLon(lat, dLonOut(lon, bAtFullTurn));
        out[i].SetHgt(in[i].dGetZ());
    }
}

// Finds the projection type of a keyword ("RD", "UTM_NORTH", ...), by the keyword texts of the
// string table in table order.
bool bGetProjectionType(const CVXString &keyword, ProjectionType &type);

// True for the types made on an ellipsoid of the caller's choice (0 and 3 to 10): the plain
// projections. The national systems bring their own.
bool bProjectionNeedsEllipsoid(ProjectionType type);

// A new projection of `type` with the parameters that type uses (see the projection table);
// the ellipsoid is copied. Types that need an ellipsoid give null without one, as do unknown
// types. The caller owns the result.
COutputSystem *pGetNewProjection(ProjectionType type, double lon, double lat, double par1,
                                 double par2, double scale, double east, double north,
                                 const CEllipsoid *pEllipsoid);
// The same by keyword, with the ellipsoid by keyword (a and invFlatt count for "USER").
COutputSystem *pGetNewProjection(const CVXString &keyword, double lon, double lat, double par1,
                                 double par2, double scale, double east, double north,
                                 const CVXString &ellipsoidKeyword, double a, double invFlatt);

} // namespace VX_API
