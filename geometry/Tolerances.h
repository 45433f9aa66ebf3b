// The fixed tolerances of the planar geometry. They are constants, not settings: every routine
// of the geometry and the polygon code decides "same point", "parallel" and "collinear" by the
// same numbers, so that results agree between routines.
#pragma once

#include "platform/VXExport.h"

namespace vx VX_API {

// Two points closer than this are the same point; also the snap distance of a point on the end
// of a line or arc, and the chord tolerance of the area measure. Always strict: a distance of
// exactly dPuntTol is a different point.
inline constexpr double dPuntTol = 0.0005;

// Lower limit for the numerator and denominator of a line intersection.
inline constexpr double dSnijTol = 2.5e-7;

// The collinearity band of nBoogRichting: one ulp above 6.25e-14, which is what dSnijTol squared
// rounds to; the value is kept as the drawings were decided with it.
inline constexpr double dRichtingTol = 6.250000000000001e-14;

// Smallest squared sine of an arc's opening angle (acute openings only) for a trusted arc.
inline constexpr double dSpreadMin = 1e-7;

// Largest radius of a valid arc: the square root of the largest double, so that a squared
// radius still fits.
inline constexpr double dMaxStraal = 1.3407807929942596e+154;

// The guarded division gives up when the quotient would reach this magnitude (2^126) ...
inline constexpr double dDeelLimiet = 0x1p126;
// ... and in extended precision at 2^252 (exactly: a decimal literal would round below it).
inline constexpr long double ldDeelLimiet = 0x1p252L;

// Line intersection: with |det| below 1, the lines count as parallel when |det| times 2^52
// is still below |num| (the intersection would lie beyond the precision of the inputs).
inline constexpr double dParallelFactor = 0x1p52;

// Two circles touch (outside or inside) when the squared distance of their centres lies this
// close (2^-126) to the squared sum or difference of the radii.
inline constexpr double dRaakTol = 0x1p-126;

// The search distance of CVXCoordArr::CopyIfInTol.
inline constexpr double dKopieTol = 0.001;

// The fewest chords an arc becomes in bArcsToLines, once it is divided at all.
inline constexpr int nMinBoogDelen = 5;

// CreeerCentroide refines its grid by halving while the grid size stays below this.
inline constexpr int nCentroideMaxRaster = 10000;

} // namespace VX_API
