// Fixed-size types of the stored formats, the library's unknown value and the small Windows
// structs that the rest of the library uses by name.
//
// The stored formats were defined on a platform where `long` is 4 bytes; here a `long` of those
// formats is `int32_t` and an `unsigned long` is `uint32_t`, in every archive and field.
#pragma once

#include "platform/VXExport.h"

#include <bit>
#include <cstdint>

namespace vx VX_API {

// The one sentinel for a missing number: the negative quiet NaN 0xFFF8000000000000. It is never
// compared; test it with std::isnan.
inline constexpr double dNaN = std::bit_cast<double>(0xFFF8000000000000ull);

// The largest finite double, the "no distance" answer of the geometry routines.
inline constexpr double dMaxDouble = 1.7976931348623157e+308;

using HRESULT = int32_t;
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003u);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005u);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057u);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = static_cast<HRESULT>(0x80020005u);
inline constexpr HRESULT DISP_E_OVERFLOW = static_cast<HRESULT>(0x8002000Au);

// A counted UTF-16 buffer with a zero unit behind it (see platform/Bstr.h).
using BSTR = char16_t *;

// Opaque position in a list; null is past the end.
struct __POSITION {};
using POSITION = __POSITION *;

// Holder of one extended-precision value (80-bit on x86-64).
struct LongDouble {
    long double m_ld = 0.0L;
    LongDouble() = default;
    LongDouble(long double v) : m_ld(v) {}
    operator long double() const { return m_ld; }
};

struct GUID {
    uint32_t Data1 = 0;
    uint16_t Data2 = 0;
    uint16_t Data3 = 0;
    uint8_t Data4[8] = {};
    friend bool operator==(const GUID &, const GUID &) = default;
};

struct SYSTEMTIME {
    uint16_t wYear = 0;
    uint16_t wMonth = 0;
    uint16_t wDayOfWeek = 0;
    uint16_t wDay = 0;
    uint16_t wHour = 0;
    uint16_t wMinute = 0;
    uint16_t wSecond = 0;
    uint16_t wMilliseconds = 0;
};

} // namespace VX_API
