// libFuzzer target: CParseString in each of its modes over arbitrary text. The first three
// units choose the mode and its characters; the tokeniser must end within one call per unit.
#include "FuzzSupport.h"
#include "foundation/NumberText.h"

#include <cstddef>
#include <cstdint>

namespace {

constexpr size_t kSetupUnits = 4;

int First(vx::CParseString &p, vx::CVXString &out, const std::u16string &setup) {
    const char16_t a = setup[1], b = setup[2], c = setup[3];
    switch (setup[0] % 6) {
    case 0:
        return p.GetFirst(out, a);
    case 1:
        return p.GetFirst(out, a, (setup[0] & 0x100) != 0);
    case 2:
        return p.GetFirst(out, a, b);
    case 3:
        return p.GetFirstPS(out, a, b);
    case 4:
        return p.GetFirst(out, a, b, c);
    default:
        return p.GetRemaining(out);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > 1u << 16) return 0;
    std::u16string units = vxfuzz::Units(data, size);
    if (units.size() < kSetupUnits) return 0;
    const std::u16string setup = units.substr(0, kSetupUnits);
    vx::CParseString parser(vxfuzz::Text(units.substr(kSetupUnits)));
    vx::CVXString field;
    int r = First(parser, field, setup);
    // Every field consumes at least one unit of the line, so a walk ends within its length.
    const size_t bound = parser.GetText().GetLength() + 2;
    for (size_t i = 0; r == 1 && i < bound; ++i)
        r = parser.GetNext(field);
    if (r == 1) __builtin_trap();
    parser.GetRemaining(field);
    return 0;
}
