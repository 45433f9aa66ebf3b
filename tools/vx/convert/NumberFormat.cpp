#include "NumberFormat.h"

#include <charconv>
#include <cstring>

namespace vxtool::convert {

char *WriteFixed(char *out, double value, int decimals) {
    const auto [end, ec] =
        std::to_chars(out, out + kMaxFixedChars, value, std::chars_format::fixed, decimals);
    if (ec != std::errc()) return out; // cannot happen for a finite value within the room
    if (*out == '-') {
        bool bAllZero = true;
        for (const char *p = out + 1; p < end && bAllZero; ++p)
            bAllZero = *p == '0' || *p == '.';
        if (bAllZero) {
            std::memmove(out, out + 1, static_cast<std::size_t>(end - out - 1));
            return end - 1;
        }
    }
    return end;
}

} // namespace vxtool::convert
