// Numbers written by vx convert: fixed decimals, as a surveyor's listing has them, written
// straight into the output buffer (std::to_chars: no locale, no allocation).
#pragma once

#include <cstddef>

namespace vxtool::convert {

// Room enough for any finite double in fixed notation with up to kMaxDecimals decimals.
inline constexpr int kMaxDecimals = 17;
inline constexpr std::size_t kMaxFixedChars = 340;

// Writes `value` with `decimals` decimals at `out` (at least kMaxFixedChars of room) and returns
// the end. A value that rounds to zero is written without a minus sign ("0.0000", not
// "-0.0000"): a sign on a zero would tell of a side that the number does not have.
char *WriteFixed(char *out, double value, int decimals);

} // namespace vxtool::convert
