// The guarded division and the digit count on which the geometry and the text forms rest.
//
// dDeel(a, b) is a/b unless |b| is below 1 and the quotient would reach 2^126 in magnitude (2^252
// in extended precision); then, and for every division by zero, it gives the unknown value NaN.
// No floating-point exception can be raised. Callers treat NaN as "no solution".
#pragma once

#include "platform/VXExport.h"

#include "platform/VXTypes.h"

namespace vx VX_API {

double dDeel(double a, double b);
LongDouble dDeel(LongDouble a, LongDouble b);

// The rough number of characters of v in text, to estimate a printed width: NaN gives 5, 0
// gives 1; otherwise the truncated log10 of |v| (or of 1/|v| below 1), plus 1, plus 1 more for
// a negative v.
unsigned short nCijfers(double v);

} // namespace VX_API
