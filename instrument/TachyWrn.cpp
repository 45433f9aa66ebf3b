#include "instrument/TachyWrn.h"

#include "platform/Guid.h"

#include <cmath>
#include <numbers>

namespace vx {

namespace {

constexpr double dPi = std::numbers::pi;
constexpr double dVolleCirkelRad = 2.0 * dPi;
constexpr double dVolleCirkelGon = 400.0;
constexpr double dGonPerHalveCirkel = 200.0;
// Beyond this many circles the loops below would run for a very long time (and from 2^53 on,
// forever): such a value is first reduced by a remainder. Ordinary angles never get there.
constexpr double dMaxCirkels = 10000.0;

// Brings a into [0, full) by repeated adding and subtracting of the full circle, the way stored
// land angles have always been normalised; the last bits differ from a remainder's. NaN passes.
double InCirkel(double a, double full) {
    if (std::fabs(a) > dMaxCirkels * full) a = std::fmod(a, full);
    while (a < 0.0)
        a += full;
    while (a >= full)
        a -= full;
    return a;
}

double MathToLandRad(double math) {
    return InCirkel((math - dPi / 2.0) * -1.0, dVolleCirkelRad);
}

double MathToGons(double math) {
    return InCirkel((math - dPi / 2.0) * -dGonPerHalveCirkel / dPi, dVolleCirkelGon);
}

} // namespace

CTachyWrnBase::CTachyWrnBase() {
    CoCreateGuid(&m_Guid);
}

bool CTachyWrnBase::HIsKnown() const {
    return !std::isnan(m_dH);
}
void CTachyWrnBase::HUnknown() {
    m_dH = dNaN;
}
double CTachyWrnBase::HinLandRad() const {
    return MathToLandRad(m_dH);
}
double CTachyWrnBase::HinGons() const {
    return MathToGons(m_dH);
}

bool CTachyWrnBase::VIsKnown() const {
    return !std::isnan(m_dV);
}
void CTachyWrnBase::VUnknown() {
    m_dV = dNaN;
}
double CTachyWrnBase::VinLandRad() const {
    return MathToLandRad(m_dV);
}
double CTachyWrnBase::VinGons() const {
    return MathToGons(m_dV);
}

} // namespace vx
