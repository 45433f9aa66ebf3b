// CVXCoordArr::CreeerCentroide and CVXCoordArr::Overlap: the two members of the shape family
// that rest on PuntInPolygoon.
#include "geometry/Extents.h"
#include "geometry/PuntInPoly.h"
#include "geometry/Tolerances.h"
#include "platform/Assert.h"

namespace vx {

namespace {

// The zone of a point around a box: three times its column plus its row. Column 0 at or left of
// the low X bound, 2 right of the high one; row 0 above the high Y bound, 2 at or below the low
// one. The low bounds count as outside, so zone 4, the box, is half open.
int nZone(const CVXCoord &p, const CExtents &box) {
    const int nKolom = p.m_dX <= box.m_dXlo ? 0 : (p.m_dX > box.m_dXrb ? 2 : 1);
    const int nRij = p.m_dY > box.m_dYrb ? 0 : (p.m_dY <= box.m_dYlo ? 2 : 1);
    return 3 * nKolom + nRij;
}

// Two zones on the same outer side of the box (both left, right, above or below): a stretch
// between them cannot touch the box.
bool bZelfdeBuitenkant(int a, int b) {
    const int ka = a / 3, kb = b / 3, ra = a % 3, rb = b % 3;
    return (ka == kb && ka != 1) || (ra == rb && ra != 1);
}

// The stretch from A to B, whose zones differ, lie outside the box and share no outer side,
// meets the box exactly when its carrier does: the box then lies between the two ends in one
// axis, or each end is outside in one axis where the other is inside, so the part of the carrier
// in the box lies between A and B. The carrier misses the box when all four corners lie
// strictly on one side of it. This stands for the whole nine-by-nine table of zone pairs.
bool bStukRaaktBox(const CVXCoord &A, const CVXCoord &B, const CExtents &box) {
    CVXCoord hoek[4];
    box.Getlo(&hoek[0]);
    box.Getlb(&hoek[1]);
    box.Getrb(&hoek[2]);
    box.Getro(&hoek[3]);
    bool bLinks = false, bRechts = false;
    for (const CVXCoord &h : hoek) {
        const int s = CVXCoord::nBoogRichting(A, B, h);
        if (s == 0) return true;
        (s > 0 ? bRechts : bLinks) = true;
    }
    return bLinks && bRechts;
}

bool bStukOverlap(const CVXCoord &A, const CVXCoord &B, const CExtents &box) {
    const int a = nZone(A, box), b = nZone(B, box);
    if (a == b || bZelfdeBuitenkant(a, b)) return false;
    return bStukRaaktBox(A, B, box);
}

} // namespace

bool CVXCoordArr::CreeerCentroide(CVXCoord &Punt) const {
    VX_ASSERT(bGesloten());
    // Not in the grid search below: an empty sequence has no extents and nothing inside, and
    // would cost the full search for nothing.
    if (GetSize() == 0) return false;
    CExtents ext;
    Extents(ext, false);
    const double dDX = ext.m_dXrb - ext.m_dXlo;
    const double dDY = ext.m_dYrb - ext.m_dYlo;
    // Coarser candidates come back at every finer grid: kept, the search must find the same
    // first point as it always did.
    for (int g = 2; g < nCentroideMaxRaster; g *= 2) {
        for (int r = 1; r < g; ++r) {
            for (int c = 1; c < g; ++c) {
                Punt.SetXY(ext.m_dXlo + dDX * c / g, ext.m_dYlo + dDY * r / g);
                if (PuntInPolygoon(Punt).bBinnen) return true;
            }
        }
    }
    return false;
}

bool CVXCoordArr::Overlap(const CExtents &Ext) const {
    for (int i = 0; i < GetSize(); ++i)
        if (nZone(Pt(i), Ext) == 4) return true;
    // Stretches count as chords: an arc by its two end points.
    for (int i = 0; i + 1 < GetSize();) {
        const int e = bBoog(i) ? i + 2 : i + 1;
        if (bStukOverlap(Pt(i), Pt(e), Ext)) return true;
        i = e;
    }
    CVXCoord lo;
    Ext.Getlo(&lo);
    return PuntInPolygoon(lo).bBinnen;
}

} // namespace vx
