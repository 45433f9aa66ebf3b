// Small shared pieces of the projection formulas. Internal to the library.
#pragma once

#include "platform/VXExport.h"

#include "geodesy/OutputSystem.h"

#include <array>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace vx {

// Every latitude iteration of the projections stops when the change is at most this ...
inline constexpr double dLatIterTol = 1e-12;
// ... or after this many rounds, silently.
inline constexpr int nLatIterRounds = 10;

// The smallest normal float, the guard against a division by a zero distance.
inline constexpr double dFloatMinGuard = 1.1754943508222875e-38;

// Isometric latitude: ln(tan(p/2 + pi/4)) - (e/2) ln((1 + e sin p) / (1 - e sin p)).
double dIso(double p, double e);

// Makes KeptConstants compute afresh at every call, as if nothing were kept. For tests that hold
// the kept constants to a fresh computation through the same code. One switch for the process
// (a relaxed atomic: a plain load at every call, where a thread_local of a shared library would
// cost a call).
// Exported although internal: the tests reach it.
VX_API void SetProjectionCacheBypass(bool bBypass);
extern std::atomic<bool> g_bProjectionCacheBypass;
inline bool bProjectionCacheBypassed() {
    return g_bProjectionCacheBypass.load(std::memory_order_relaxed);
}

// One kept block: the constants and the exact bits of the parameters they were made from.
template <class T, std::size_t N>
struct SKeptBlock final : CProjectionConstants::SBlock {
    static constexpr char cTag = 0; // one address per block type
    SKeptBlock(const std::array<std::uint64_t, N> &k, const T &v)
        : SBlock(&cTag), key(k), value(v) {}
    std::array<std::uint64_t, N> key;
    T value;
};

// The constants a projection derives from its parameters: the object's kept block when its key,
// the exact bit pattern of every parameter they depend on, matches the values now; otherwise
// `compute()`, kept for the next call. So a setter, a loaded archive or a host writing a field
// is always seen and no result can come from stale constants. `scratch` holds the result when
// nothing can be kept (bypass, or the object's room for blocks used up).
template <class T, class F, class... P>
const T &KeptConstants(CProjectionConstants &kept, std::optional<T> &scratch, F compute,
                       P... params) {
    using Block = SKeptBlock<T, sizeof...(P)>;
    const std::array<std::uint64_t, sizeof...(P)> key{
        std::bit_cast<std::uint64_t>(static_cast<double>(params))...};
    if (bProjectionCacheBypassed()) return scratch.emplace(compute());
    const CProjectionConstants::SBlock *pCur = kept.pCurrent();
    if (pCur && pCur->m_pTag == &Block::cTag) {
        const Block *p = static_cast<const Block *>(pCur);
        // Word by word: std::array's == ends in a memcmp call, a seventh of a TM point.
        std::uint64_t diff = 0;
        for (std::size_t i = 0; i < key.size(); ++i)
            diff |= p->key[i] ^ key[i];
        if (diff == 0) return p->value;
    }
    auto block = std::make_unique<Block>(key, compute());
    const Block *pNew = block.get();
    std::unique_ptr<CProjectionConstants::SBlock> base(std::move(block));
    if (kept.bPublish(base)) return pNew->value;
    return scratch.emplace(pNew->value);
}

// ---- the isometric latitude, fast ----
//
// The faster forms below compute the same mathematics as the literal formulas with fewer libm
// calls: ln(tan(p/2 + pi/4)) as ln((1 + sin p) / cos p), the eccentric term (e/2) ln((1 + e s) /
// (1 - e s)) by its power series in s, and the inverse (the latitude of an isometric latitude)
// through the conformal latitude, the classic series in e^2 to e^8 for the geodetic latitude
// and one Newton step, instead of fixed-point rounds. The tests hold them, over the area of use
// of each projection, to within 1e-8 m and 1e-13 rad of the literal formulas and at least as
// close as those to an extended-precision evaluation. Outside the limits below (poles, NaN) the
// callers run the literal formulas, so the results there stay as they were.

// The series form serves eccentricities up to this (the earth's is 0.08) ...
inline constexpr double dFastMaxEcc = 0.1;
// ... with this many terms: at e = 0.1 the first term left out is below 1e-21.
inline constexpr int nEccTerms = 9;
// The fast forms serve latitudes up to this magnitude (89 degrees) ...
inline constexpr double dFastLatLimit = 1.5533430342749532;
// ... and isometric latitudes up to this one (about 89.2 degrees).
inline constexpr double dFastIsoLimit = 5.0;

// sin x and cos x in one call. glibc's sincos computes each as sin and cos do (the compiler makes
// the same merge when it sees both side by side, but not always).
inline void SinCos(double x, double &s, double &c) {
#if defined(__GLIBC__)
    ::sincos(x, &s, &c);
#else
    s = std::sin(x);
    c = std::cos(x);
#endif
}

struct SEccentric {
    double e = 0.0;
    double e2 = 0.0;
    bool bSeries = false;                  // e small enough for the fast forms
    double c[nEccTerms] = {};              // e atanh(e s) = s (c0 + c1 s^2 + c2 s^4 + ...)
    double dInvOneMinusE2 = 0.0;           // 1 / (1 - e^2)
    double a2 = 0, a4 = 0, a6 = 0, a8 = 0; // geodetic minus conformal latitude: sum a2k sin(2k chi)
};

SEccentric EccentricOf(double e);

// (e/2) ln((1 + e s) / (1 - e s)) for s = sin p; the series needs bSeries.
inline double dEccTermFast(const SEccentric &k, double s) {
    const double s2 = s * s;
    double p = k.c[nEccTerms - 1];
    for (int i = nEccTerms - 2; i >= 0; --i)
        p = p * s2 + k.c[i];
    return s * p;
}

// The isometric latitude from sin p and cos p (cos p > 0).
inline double dIsoFast(const SEccentric &k, double s, double c) {
    return std::log((1.0 + s) / c) - dEccTermFast(k, s);
}

// The latitude whose isometric latitude is psi, for bSeries and |psi| <= dFastIsoLimit.
inline double dLatOfIsoFast(const SEccentric &k, double psi) {
    const double q = std::exp(psi);
    const double qi = 1.0 / q;
    const double sh = 0.5 * (q - qi);
    const double chInv = 2.0 / (q + qi);
    const double chi = std::atan(sh);
    // sin(2k chi) by Clenshaw's sum, from sin chi = tanh psi and cos chi = sech psi.
    const double sc = sh * chInv;
    const double cc = chInv;
    const double s2x = 2.0 * sc * cc;
    const double c2x2 = 2.0 * (cc - sc) * (cc + sc);
    double b1 = k.a8;
    double b2 = 0.0;
    for (const double a : {k.a6, k.a4, k.a2}) {
        const double b0 = a + c2x2 * b1 - b2;
        b2 = b1;
        b1 = b0;
    }
    const double p0 = chi + b1 * s2x;
    double s = 0.0;
    double c = 0.0;
    SinCos(p0, s, c);
    const double f = dIsoFast(k, s, c) - psi;
    return p0 - f * (1.0 - k.e2 * s * s) * c * k.dInvOneMinusE2;
}

} // namespace vx
