#include "geodesy/Angles.h"

#include "foundation/NumberText.h"
#include "platform/VXTypes.h"

#include <climits>
#include <cmath>

namespace vx {

namespace {

constexpr double dTwoPi = 6.283185307179586;
constexpr double dHalfPi = 1.5707963267948966;

// Beyond this magnitude (10000 turns of gon) the normalising loops would take long, and from
// about 2^53 on they would never end, since adding a turn no longer changes the value. Such
// values are first reduced by an exact remainder; ordinary angles keep the plain loops.
constexpr double dLoopLimitGon = 4.0e6;
constexpr double dLoopLimitRad = 2.0e4 * dTwoPi;

// Into [0, 400): add 400 while below 0, then subtract 400 while not below 400. NaN passes.
double GonInFullCircle(double v) {
    if (std::fabs(v) > dLoopLimitGon) v = std::fmod(v, 400.0);
    while (v < 0.0)
        v += 400.0;
    while (v >= 400.0)
        v -= 400.0;
    return v;
}

// Into [-200, 200]: add 400 while below -200, subtract 400 while above 200. NaN passes.
double GonInHalfCircle(double v) {
    if (std::fabs(v) > dLoopLimitGon) v = std::fmod(v, 400.0);
    while (v < -200.0)
        v += 400.0;
    while (v > 200.0)
        v -= 400.0;
    return v;
}

// Into [-pi, pi]: add 2*pi while below -pi, subtract 2*pi while above pi. NaN passes.
double RadInHalfCircle(double v) {
    if (std::fabs(v) > dLoopLimitRad) v = std::fmod(v, dTwoPi);
    while (v < -dPi)
        v += dTwoPi;
    while (v > dPi)
        v -= dTwoPi;
    return v;
}

// The conversion of a double to int the way the x86 truncating conversion does it: values out
// of range (NaN included) give INT_MIN. The callers limit the value first where they must.
int TruncToInt(double v) {
    if (!(v > -2147483649.0 && v < 2147483648.0)) return INT_MIN;
    return static_cast<int>(v);
}

CVXString GonText(double v) {
    return szNumber2String(v, 8, 5);
}

} // namespace

double DegToRad(double d) {
    return d / 180.0 * dPi;
}
double RadToDeg(double r) {
    return r / dPi * 180.0;
}
double GonToRad(double g) {
    return g / 200.0 * dPi;
}
double RadToGon(double r) {
    return r / dPi * 200.0;
}

// The leading non-zero part carries the magnitude; a negative sign on any part negates the whole.
// Thus (0, 0, -30) is positive (the negative seconds are negated once more) and (1, -30, 0) is
// computed with the negative minutes and then negated: both are kept on purpose, since stored
// angles were made this way.
double DmsToRad(int d, int m, double s) {
    double v;
    if (d != 0)
        v = (std::fabs(static_cast<double>(d)) + (m + s / 60.0) / 60.0) * dPi / 180.0;
    else if (m != 0)
        v = (std::fabs(static_cast<double>(m)) + s / 60.0) * dPi / 10800.0;
    else
        v = s * dPi / 648000.0;
    if (d < 0 || m < 0 || s < 0.0) v = -v;
    return v;
}

void RadToDms(double rad, int *sign, int *d, int *m, double *s) {
    *sign = rad < 0.0 ? -1 : 1;
    const double D = std::fabs(RadToDeg(rad));
    const double fd = std::floor(D);
    *d = fd > 2147483647.0 ? INT_MAX : TruncToInt(fd);
    const double frac = D - fd;
    const double fm = std::floor(frac * 60.0);
    *m = fm < -2147483648.0 ? INT_MIN : TruncToInt(fm);
    *s = std::fabs((frac - *m / 60.0) * 3600.0);
}

void MaxDmsImage(int *d, int *m, double *s, unsigned int nDegDigits, unsigned int nSecDecimals) {
    const double u = std::pow(10.0, -static_cast<double>(nSecDecimals));
    const double p = std::pow(10.0, static_cast<double>(nDegDigits));
    const int dmax = p > 2147483647.0 ? INT_MAX : static_cast<int>(p) - 1;
    if (60.0 - *s <= 0.5 * u) {
        *s = 0.0;
        if (*m < INT_MAX) ++*m;
        if (*m == 60) {
            *m = 0;
            if (*d < INT_MAX) ++*d;
        }
    }
    // The all-nines image is the deliberate picture of a value that does not fit.
    if (*d > dmax) {
        *d = dmax;
        *m = 99;
        *s = 100.0 - u;
    }
}

void SignToString(int sign, CVXString &out) {
    out = sign > 0 ? u" " : u"-";
}

void DmsToString(CVXString &out, double rad) {
    int sign = 0;
    int d = 0;
    int m = 0;
    double s = 0.0;
    RadToDms(rad, &sign, &d, &m, &s);
    MaxDmsImage(&d, &m, &s, 3, 5);
    CVXString szSign;
    SignToString(sign, szSign);
    CVXString text;
    text.Format(u"%s%d %02d %0*.*f", szSign, d, m, 8, 5, s);
    out.Format(u"%*s", 16, text);
}

double atanh(double x) {
    return 0.5 * std::log((1.0 + x) / (1.0 - x));
}
double acosh(double x) {
    return std::log(x + std::sqrt(x * x - 1.0));
}

namespace Hoekfuncties {

double StrRotToRad(const CVXString &text) {
    double v = 0.0;
    if (!bString2Number(&v, static_cast<const char16_t *>(text))) return dNaN;
    return RadInHalfCircle(-(v / 200.0 * dPi));
}

double StrArgToRad(const CVXString &text) {
    double v = 0.0;
    if (!bString2Number(&v, static_cast<const char16_t *>(text))) return dNaN;
    return RadInHalfCircle(-((v - 100.0) / 200.0 * dPi));
}

CVXString StrRotToGrad(double a) {
    return GonText(GonInFullCircle(a * -200.0 / dPi));
}

CVXString StrArgToGrad(double a) {
    return GonText(GonInFullCircle((a - dHalfPi) * -200.0 / dPi));
}

CVXString StrCorToGrad(double a) {
    return GonText(GonInHalfCircle(GonInFullCircle(a * -200.0 / dPi)));
}

} // namespace Hoekfuncties

} // namespace vx
