// Angle units and their text forms.
//
// Inside the library angles are radians; degrees, degrees-minutes-seconds and gon occur only at
// the edges. The conversions use pi = 3.141592653589793 and divide first (d / 180 * pi), so the
// results are bit-exact reproductions of the stored values of older data. Hoekfuncties turns the
// library's mathematical angles (radians, counter-clockwise from the X axis) into surveyors' gon
// text (clockwise, directions from north) and back.
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"

namespace vx VX_API {

inline constexpr double dPi = 3.141592653589793;

double DegToRad(double d);
double RadToDeg(double r);
double GonToRad(double g);
double RadToGon(double r);

// The sign may sit on whichever of d, m, s leads; see the implementation for the exact rule.
double DmsToRad(int d, int m, double s);
void RadToDms(double rad, int *sign, int *d, int *m, double *s);
// Prepares (d, m, s) for printing with nDegDigits degree digits and nSecDecimals second decimals:
// seconds that would print as 60 carry over, and a value too large becomes the all-nines image.
void MaxDmsImage(int *d, int *m, double *s, unsigned int nDegDigits, unsigned int nSecDecimals);
// " " for a positive sign, "-" otherwise.
void SignToString(int sign, CVXString &out);
// The angle as "sDDD MM SS.SSSSS", right-aligned in 16 characters.
void DmsToString(CVXString &out, double rad);

// The inverse hyperbolic functions in their plain textbook forms (no special care near the
// poles of the formulas); in namespace vx beside, not instead of, std::atanh and std::acosh.
double atanh(double x);
double acosh(double x);

namespace Hoekfuncties {

// A rotation in gon text to radians in [-pi, pi]; unparsable text gives the unknown value.
double StrRotToRad(const CVXString &text);
// A direction from north in gon text to radians in [-pi, pi]; unparsable text gives unknown.
double StrArgToRad(const CVXString &text);
// Radians to gon text in [0, 400), width 8 and 5 decimals.
CVXString StrRotToGrad(double a);
CVXString StrArgToGrad(double a);
// A small correction to gon text in [-200, 200].
CVXString StrCorToGrad(double a);

} // namespace Hoekfuncties

} // namespace VX_API
