// libFuzzer target: the WKT reader on arbitrary text. A read either gives lines or an error
// whose position lies within the text or just after it; the lines are written as WKT, and that
// text reads back into lines that are written the same way (writing is a fixed point).
#include "Wkt.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > 1u << 16) return 0;
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    vxinterchange::Lines lines;
    try {
        lines = vxinterchange::ReadWkt(text);
    } catch (const vxinterchange::CWktError &e) {
        if (e.Position() < 1 || e.Position() > size + 1) __builtin_trap();
        return 0;
    }
    if (lines.empty()) return 0;
    const std::string once = vxinterchange::WriteWkt(lines);
    const std::string twice = vxinterchange::WriteWkt(vxinterchange::ReadWkt(once));
    if (once != twice) __builtin_trap();
    return 0;
}
