// libFuzzer target: bString2Number of every target type on arbitrary text. A parser may only
// answer true or false; the value must not depend on anything but the text.
#include "FuzzSupport.h"
#include "foundation/NumberText.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

template <class T>
void Parse(const char16_t *text) {
    T first{}, second{};
    const bool ok = vx::bString2Number(&first, text);
    // The same text gives the same answer and the same value: no hidden state.
    if (ok != vx::bString2Number(&second, text)) __builtin_trap();
    if (ok && std::memcmp(&first, &second, sizeof(T)) != 0) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > 1u << 16) return 0;
    const std::u16string units = vxfuzz::Units(data, size);
    const char16_t *text = units.c_str();
    Parse<int64_t>(text);
    Parse<uint64_t>(text);
    Parse<uint32_t>(text);
    Parse<int32_t>(text);
    Parse<int16_t>(text);
    Parse<uint16_t>(text);
    Parse<double>(text);
    Parse<float>(text);
    Parse<unsigned char>(text);
    Parse<char>(text);
    return 0;
}
