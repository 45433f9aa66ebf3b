// Project a point: geographic coordinates on GRS 1980 to UTM zone 31 and back, and an ETRS89
// position through the whole Dutch national chain to RD coordinates.
#include "vxcommon.h"

#include <cstdio>
#include <memory>

int main() {
    using namespace vx;
    // Angles are radians inside the library; degrees only in text.
    const CEllipsoid grs80(CEllipsoid::GRS_1980);
    CProjection_TM_NORTH utm31(DegToRad(3.0), grs80);
    CVXCoord xy;
    utm31.EllToProjection(xy, CEllCoord(DegToRad(52.0), DegToRad(5.0), 0.0));
    std::printf("UTM 31N: E %.3f  N %.3f\n", xy.dGetX(), xy.dGetY());

    CEllCoord back;
    utm31.ProjectionToEll(back, xy);
    std::printf("back:    lat %.9f  lon %.9f\n", RadToDeg(back.dGetLat()),
                RadToDeg(back.dGetLon()));

    // A national system by keyword, as a host finds it in its settings. Without the correction
    // grid files (VXCOMMON_DATA) the grid correction is left out and the library says so once.
    const std::unique_ptr<COutputSystem> rd(
        pGetNewProjection(u"RDNAPTRANS2008", 0, 0, 0, 0, 1, 0, 0, u"", 0, 0));
    if (!rd) return 1;
    double x = 0, y = 0, z = 0;
    rd->ETRS2LOCAL(DegToRad(52.1551744), DegToRad(5.3872036), 43.27, &x, &y, &z);
    std::printf("RD:      X %.3f  Y %.3f\n", x, y);
    return 0;
}
