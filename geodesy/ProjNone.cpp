#include "geodesy/ProjNone.h"

#include "geometry/VXCoord.h"

namespace vx {

namespace {

constexpr double u = dUnusedParameter;
constexpr const char *szNoneEdit = "00000001";

} // namespace

CProjection_NONE::CProjection_NONE() : CProjection_NONE(CEllipsoid(CEllipsoid::BESSEL_1841)) {}

CProjection_NONE::CProjection_NONE(const CEllipsoid &ellipsoid)
    : COutputSystem(PT_NONE, ellipsoid.Copy(), {u, u, u, u, u, u, u}, szNoneEdit) {}

COutputSystem *CProjection_NONE::pCopy() const {
    return new CProjection_NONE(*m_pEllipsoid);
}

void CProjection_NONE::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    SetProjected(xy, ell.dGetLat(), ell.dGetLon(), ell.dGetHgt());
}

void CProjection_NONE::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    ell.SetLatLon(xy.dGetX(), xy.dGetY());
    ell.SetHgt(xy.dGetZ());
}

VX_IMPLEMENT_SERIAL(CProjection_NONE, nProjectionSchema)

} // namespace vx
