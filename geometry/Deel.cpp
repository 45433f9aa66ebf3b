#include "geometry/Deel.h"

#include "geometry/Tolerances.h"

#include <cmath>

namespace vx {

double dDeel(double a, double b) {
    const double absB = std::fabs(b);
    // A NaN b fails the comparison and divides: the NaN travels on.
    if (!(absB < 1.0)) return a / b;
    if (std::fabs(a) < absB * dDeelLimiet) return a / b;
    return dNaN;
}

LongDouble dDeel(LongDouble a, LongDouble b) {
    const long double absB = std::fabs(b.m_ld);
    if (!(absB < 1.0L)) return LongDouble(a.m_ld / b.m_ld);
    if (std::fabs(a.m_ld) < absB * ldDeelLimiet) return LongDouble(a.m_ld / b.m_ld);
    return LongDouble(static_cast<long double>(dNaN));
}

unsigned short nCijfers(double v) {
    constexpr unsigned short nOnbekend = 5;
    if (std::isnan(v)) return nOnbekend;
    if (v == 0.0) return 1;
    const double absV = std::fabs(v);
    const double w = absV >= 1.0 ? absV : dDeel(1.0, absV);
    // An infinite width has no digit count either; it is treated as the unknown value.
    if (!std::isfinite(w)) return nOnbekend;
    const auto nLog = static_cast<unsigned short>(std::trunc(std::log10(w)));
    return static_cast<unsigned short>(nLog + (v < 0.0 ? 2 : 1));
}

} // namespace vx
