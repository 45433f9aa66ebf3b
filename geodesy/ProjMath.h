// Small shared pieces of the projection formulas. Internal to the library.
#pragma once

namespace vx {

// Every latitude iteration of the projections stops when the change is at most this ...
inline constexpr double dLatIterTol = 9.9999999999999998e-13;
// ... or after this many rounds, silently.
inline constexpr int nLatIterRounds = 10;

// The smallest normal float, the guard against a division by a zero distance.
inline constexpr double dFloatMinGuard = 1.1754943508222875e-38;

// Isometric latitude: ln(tan(p/2 + pi/4)) - (e/2) ln((1 + e sin p) / (1 - e sin p)).
double dIso(double p, double e);

} // namespace vx
