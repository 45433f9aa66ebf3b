#include "platform/Bstr.h"

#include "platform/Errors.h"

#include <cstdlib>
#include <cstring>

namespace vx {

namespace {
// The count in front of the units, as the original platform keeps it: bytes, not units.
constexpr size_t kHeader = sizeof(uint32_t);
} // namespace

BSTR SysAllocStringLen(const char16_t *text, uint32_t len) {
    const size_t bytes = static_cast<size_t>(len) * sizeof(char16_t);
    if (bytes > 0xFFFFFFF0u) throw CVXComError(E_OUTOFMEMORY, __FILE__, __LINE__);
    auto *block = static_cast<unsigned char *>(std::malloc(kHeader + bytes + sizeof(char16_t)));
    if (!block) throw CVXComError(E_OUTOFMEMORY, __FILE__, __LINE__);
    const uint32_t count = static_cast<uint32_t>(bytes);
    std::memcpy(block, &count, kHeader);
    auto *units = reinterpret_cast<char16_t *>(block + kHeader);
    if (text && len) std::memcpy(units, text, bytes);
    units[len] = 0;
    return units;
}

BSTR SysAllocString(const char16_t *text) {
    if (!text) return nullptr;
    return SysAllocStringLen(text, static_cast<uint32_t>(StrLenU(text)));
}

uint32_t SysStringLen(BSTR text) noexcept {
    if (!text) return 0;
    uint32_t count;
    std::memcpy(&count, reinterpret_cast<unsigned char *>(text) - kHeader, kHeader);
    return count / sizeof(char16_t);
}

void SysFreeString(BSTR text) noexcept {
    if (text) std::free(reinterpret_cast<unsigned char *>(text) - kHeader);
}

} // namespace vx
