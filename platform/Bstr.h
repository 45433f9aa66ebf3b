// The counted UTF-16 buffer that strings are made of: a 32-bit byte count, the units, and a zero
// unit behind them. The pointer handed out points at the first unit, so the text reads as an
// ordinary zero-terminated UTF-16 string while its length is known without scanning.
#pragma once

#include "platform/VXExport.h"

#include "platform/VXTypes.h"

#include <cstddef>

namespace vx VX_API {

// Allocates a buffer of `len` units, copying them from `text` when it is not null. Raises
// CVXComError(E_OUTOFMEMORY) when the memory cannot be had.
BSTR SysAllocStringLen(const char16_t *text, uint32_t len);
// Allocates a copy of a zero-terminated text; null gives null.
BSTR SysAllocString(const char16_t *text);
// Length in units; 0 for null.
uint32_t SysStringLen(BSTR text) noexcept;
void SysFreeString(BSTR text) noexcept;

// Length of a zero-terminated UTF-16 text (wcslen for char16_t).
inline size_t StrLenU(const char16_t *s) noexcept {
    const char16_t *p = s;
    while (*p)
        ++p;
    return static_cast<size_t>(p - s);
}

} // namespace VX_API
