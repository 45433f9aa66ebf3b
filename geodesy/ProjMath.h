// Small shared pieces of the projection formulas. Internal to the library.
#pragma once

#include "platform/VXExport.h"

#include <array>
#include <bit>
#include <cstdint>
#include <type_traits>

namespace vx {

// Every latitude iteration of the projections stops when the change is at most this ...
inline constexpr double dLatIterTol = 1e-12;
// ... or after this many rounds, silently.
inline constexpr int nLatIterRounds = 10;

// The smallest normal float, the guard against a division by a zero distance.
inline constexpr double dFloatMinGuard = 1.1754943508222875e-38;

// Isometric latitude: ln(tan(p/2 + pi/4)) - (e/2) ln((1 + e sin p) / (1 - e sin p)).
double dIso(double p, double e);

// Makes CachedPerThread compute afresh at every call on this thread, as if nothing were kept.
// For tests that hold the kept constants to a fresh computation through the same code.
// Exported although internal: the tests reach it.
VX_API void SetProjectionCacheBypass(bool bBypass);
bool bProjectionCacheBypassed();

// The constants a projection derives from its parameters, computed by `compute` and kept per
// thread for the next call with the same parameters. The key is the exact bit pattern of every
// parameter the constants depend on, so any change (a setter, a loaded archive, another object)
// recomputes and the cache can never go stale; being per thread, concurrent callers share nothing.
// Each call site (each lambda type) has a slot of its own.
template <class F, class... P>
const std::invoke_result_t<F> &CachedPerThread(F compute, P... params) {
    using Key = std::array<std::uint64_t, sizeof...(P)>;
    struct SSlot {
        Key key{};
        std::invoke_result_t<F> value{};
        bool bValid = false;
    };
    thread_local SSlot slot;
    const Key key{std::bit_cast<std::uint64_t>(static_cast<double>(params))...};
    if (!slot.bValid || slot.key != key || bProjectionCacheBypassed()) {
        slot.value = compute();
        slot.key = key;
        slot.bValid = true;
    }
    return slot.value;
}

} // namespace vx
