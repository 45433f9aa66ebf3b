// Type-safe arguments for the printf-style formatting of CVXString::Format and nEstimateMaxLen.
//
// Each argument is captured with its kind and size, and the formatter checks it against the
// conversion that consumes it: a mismatch (a double for %d, a 64-bit integer for %d without I64,
// too few or too many arguments) raises CInvalidArgException instead of reading garbage.
#pragma once

#include "platform/VXExport.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace vx VX_API {

class CVXString;

class CFormatArg {
public:
    enum Kind : uint8_t {
        Int32,   // int, short, signed char, bool, a `long` of the stored formats (int32_t)
        UInt32,  // unsigned int, unsigned short, unsigned char
        Int64,   // int64_t, long long (and the host's 64-bit long)
        UInt64,  // uint64_t, unsigned long long
        Double,  // double, float, long double
        WString, // const char16_t * or CVXString (null prints "(null)")
        AString, // const char *: 8-bit text in the code page
        Char,    // char16_t: one unit for %c
        AChar,   // char: one 8-bit unit of the code page for %c
        Pointer, // any other object pointer, for %p
        Count    // int *, for %n
    };

    CFormatArg(bool v) : m_kind(Int32) { m_i = v ? 1 : 0; }
    CFormatArg(char v) : m_kind(AChar) { m_i = static_cast<unsigned char>(v); }
    CFormatArg(char16_t v) : m_kind(Char) { m_i = v; }
    CFormatArg(signed char v) : m_kind(Int32) { m_i = v; }
    CFormatArg(unsigned char v) : m_kind(UInt32) { m_i = v; }
    CFormatArg(short v) : m_kind(Int32) { m_i = v; }
    CFormatArg(unsigned short v) : m_kind(UInt32) { m_i = v; }
    CFormatArg(int v) : m_kind(Int32) { m_i = v; }
    CFormatArg(unsigned int v) : m_kind(UInt32) { m_i = v; }
    CFormatArg(long v) : m_kind(sizeof(long) == 4 ? Int32 : Int64) { m_i = v; }
    CFormatArg(unsigned long v) : m_kind(sizeof(long) == 4 ? UInt32 : UInt64) {
        m_i = static_cast<int64_t>(v);
    }
    CFormatArg(long long v) : m_kind(Int64) { m_i = v; }
    CFormatArg(unsigned long long v) : m_kind(UInt64) { m_i = static_cast<int64_t>(v); }
    CFormatArg(float v) : m_kind(Double) { m_d = v; }
    CFormatArg(double v) : m_kind(Double) { m_d = v; }
    CFormatArg(long double v) : m_kind(Double) { m_d = static_cast<double>(v); }
    CFormatArg(const char16_t *v) : m_kind(WString) { m_ws = v; }
    CFormatArg(const char *v) : m_kind(AString) { m_as = v; }
    CFormatArg(std::nullptr_t) : m_kind(WString) { m_ws = nullptr; }
    CFormatArg(int *v) : m_kind(Count) { m_pn = v; }
    CFormatArg(const CVXString &v);
    template <class T>
    requires(!std::is_same_v<std::remove_cv_t<T>, char> &&
             !std::is_same_v<std::remove_cv_t<T>, char16_t>) CFormatArg(T *v)
        : m_kind(Pointer) {
        m_p = static_cast<const void *>(v);
    }

    Kind kind() const { return m_kind; }
    int64_t i() const { return m_i; }
    double d() const { return m_d; }
    const char16_t *ws() const { return m_ws; }
    const char *as() const { return m_as; }
    const void *p() const { return m_p; }
    int *pn() const { return m_pn; }

private:
    Kind m_kind;
    union {
        int64_t m_i;
        double m_d;
        const char16_t *m_ws;
        const char *m_as;
        const void *m_p;
        int *m_pn;
    };
};

// A view of the captured arguments of one call.
struct CFormatArgs {
    const CFormatArg *pArgs = nullptr;
    size_t nCount = 0;
};

// Upper bound of the printed length of an 8-bit format (the scan of CVXString::Format, with the
// 8-bit rules: no I64 prefix, 32 for the floating conversions).
int nEstimateMaxLen(const char *format, const CFormatArgs &args);
template <class... Args>
int nEstimateMaxLen(const char *format, const Args &...args) {
    const CFormatArg list[] = {CFormatArg(args)..., CFormatArg(0)};
    return nEstimateMaxLen(format, CFormatArgs{list, sizeof...(Args)});
}

} // namespace VX_API
