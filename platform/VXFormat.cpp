// printf-style formatting for CVXString: the length estimate made before printing, and the
// printing itself with arguments checked against their conversions.
//
// The estimate is an upper bound of the printed length, computed by a scan of the format. The
// string is printed into a buffer of that bound: in the rare case where the printed text is
// longer (a precision beyond the estimate's allowance, such as "%.200e"), the text is cut at the
// bound. We chose cutting over failing: the original printer's behaviour there was undefined.
#include "platform/Bstr.h"
#include "platform/CodePage.h"
#include "platform/Errors.h"
#include "platform/VXString.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace vx {

namespace {

// One conversion of a format, as read after its '%'.
struct Spec {
    bool left = false, plus = false, space = false, zero = false, hash = false;
    bool widthStar = false;
    int width = 0; // digits; 0 when none
    bool hasPrec = false, precStar = false;
    int prec = 0;
    bool int64 = false; // "I64" or "ll"
    char size = 0;      // 'h' or 'l' or 0
    char conv = 0;
};

template <class Ch>
int ReadNumber(const Ch *&p) {
    long long v = 0;
    while (*p >= '0' && *p <= '9') {
        if (v < 100000000) v = v * 10 + (*p - '0');
        ++p;
    }
    return static_cast<int>(v);
}

// Reads a conversion starting just after '%'. `hashes` counts the '#' flags (the estimate gives
// each two units for a "0x" prefix). Leaves p on the conversion character.
template <class Ch>
Spec ParseSpec(const Ch *&p, int &hashes) {
    Spec s;
    hashes = 0;
    for (;; ++p) {
        if (*p == '#') {
            s.hash = true;
            ++hashes;
        } else if (*p == '*') {
            s.widthStar = true;
        } else if (*p == '-') {
            s.left = true;
        } else if (*p == '+') {
            s.plus = true;
        } else if (*p == '0') {
            s.zero = true;
        } else if (*p == ' ') {
            s.space = true;
        } else {
            break;
        }
    }
    if (!s.widthStar) s.width = ReadNumber(p);
    if (*p == '.') {
        ++p;
        s.hasPrec = true;
        if (*p == '*') {
            s.precStar = true;
            ++p;
        } else {
            s.prec = ReadNumber(p);
        }
    }
    if (p[0] == 'I' && p[1] == '6' && p[2] == '4') {
        s.int64 = true;
        p += 3;
    } else if (p[0] == 'l' && p[1] == 'l') {
        s.int64 = true;
        p += 2;
    } else if (*p == 'h' || *p == 'l') {
        s.size = static_cast<char>(*p);
        ++p;
    } else if (*p == 'F' || *p == 'N' || *p == 'L') {
        ++p;
    }
    s.conv = *p > 0 && *p < 128 ? static_cast<char>(*p) : '?';
    return s;
}

[[noreturn]] void Mismatch(const char *what, char conv) {
    std::string text = "format: ";
    text += what;
    text += " for %";
    text += conv;
    throw CInvalidArgException(text);
}

class ArgCursor {
public:
    explicit ArgCursor(const CFormatArgs &args) : m_args(args) {}
    const CFormatArg &Next(char conv) {
        if (m_next >= m_args.nCount) Mismatch("too few arguments", conv);
        return m_args.pArgs[m_next++];
    }
    int NextInt(char conv) {
        const CFormatArg &a = Next(conv);
        if (a.kind() != CFormatArg::Int32 && a.kind() != CFormatArg::UInt32)
            Mismatch("'*' needs an int", conv);
        return static_cast<int>(a.i());
    }
    void CheckAllUsed() const {
        if (m_next != m_args.nCount)
            throw CInvalidArgException("format: more arguments than conversions");
    }

private:
    const CFormatArgs &m_args;
    size_t m_next = 0;
};

bool IsIntKind(CFormatArg::Kind k, bool int64) {
    if (int64) return k == CFormatArg::Int64 || k == CFormatArg::UInt64;
    return k == CFormatArg::Int32 || k == CFormatArg::UInt32 || k == CFormatArg::Char ||
           k == CFormatArg::AChar;
}

bool IsStringKind(CFormatArg::Kind k) {
    return k == CFormatArg::WString || k == CFormatArg::AString;
}

int StringArgLength(const CFormatArg &a, char conv) {
    if (!IsStringKind(a.kind())) Mismatch("needs a string", conv);
    if (a.kind() == CFormatArg::WString) return a.ws() ? static_cast<int>(StrLenU(a.ws())) : -1;
    return a.as() ? static_cast<int>(std::strlen(a.as())) : -1;
}

// The length the trial print of "%*.*f" gives, at the precision plus six.
int TrialFixedLength(int width, int prec, double value) {
    const int n = std::snprintf(nullptr, 0, "%*.*f", width, prec + 6, value);
    return std::max(n, 0);
}

// The scan shared by the wide estimate and the 8-bit one. `wide` selects the wide rules: the
// I64 prefix, 128 for e/g and a trial print for f; the 8-bit scan takes 32 for all of them.
template <class Ch>
int EstimateLength(const Ch *format, const CFormatArgs &args, bool wide) {
    if (!format) return 0;
    ArgCursor cursor(args);
    int total = 0;
    for (const Ch *p = format; *p; ++p) {
        if (*p != '%') {
            ++total;
            continue;
        }
        ++p;
        if (*p == '%') {
            ++total;
            continue;
        }
        if (*p == 0) throw CInvalidArgException("format: ends with a lone '%'");
        int hashes = 0;
        Spec s = ParseSpec(p, hashes);
        total += 2 * hashes;
        if (s.widthStar) s.width = cursor.NextInt(s.conv);
        if (s.precStar) s.prec = cursor.NextInt(s.conv);
        if (!wide && s.int64) Mismatch("the 8-bit estimate has no 64-bit prefix", s.conv);

        int item = 0;
        switch (s.conv) {
        case 'c':
        case 'C':
            cursor.Next(s.conv);
            item = 2;
            break;
        case 's':
        case 'S': {
            const int n = StringArgLength(cursor.Next(s.conv), s.conv);
            item = n < 0 ? 6 : std::max(1, n);
            break;
        }
        default:
            break;
        }
        if (item != 0) {
            if (s.prec != 0) item = std::min(item, s.prec);
            item = std::max(item, s.width);
        } else {
            switch (s.conv) {
            case 'd':
            case 'i':
            case 'u':
            case 'x':
            case 'X':
            case 'o':
            case 'p':
                cursor.Next(s.conv);
                item = std::max(32, s.width + s.prec);
                break;
            case 'e':
            case 'E':
            case 'g':
            case 'G':
                cursor.Next(s.conv);
                item = std::max(wide ? 128 : 32, s.width + s.prec);
                break;
            case 'f': {
                const CFormatArg &a = cursor.Next(s.conv);
                if (a.kind() != CFormatArg::Double)
                    Mismatch("needs a floating-point number", s.conv);
                if (wide)
                    item = TrialFixedLength(s.width, s.prec, a.d());
                else
                    item = std::max(32, s.width + s.prec);
                break;
            }
            case 'n':
                cursor.Next(s.conv);
                break;
            default:
                Mismatch("unknown conversion", s.conv);
            }
        }
        total += item;
    }
    return total;
}

// ---- printing ----

void AppendAscii(std::u16string &out, const char *text) {
    for (; *text; ++text)
        out.push_back(static_cast<unsigned char>(*text));
}

void AppendPadded(std::u16string &out, const char16_t *text, size_t n, const Spec &s, int width) {
    const size_t pad = width > 0 && static_cast<size_t>(width) > n ? width - n : 0;
    if (!s.left) out.append(pad, s.zero ? u'0' : u' ');
    out.append(text, n);
    if (s.left) out.append(pad, u' ');
}

std::string NarrowSpec(const Spec &s, bool withPrec, const char *lengthMod, char conv) {
    std::string f = "%";
    if (s.left) f += '-';
    if (s.plus) f += '+';
    if (s.space) f += ' ';
    if (s.zero) f += '0';
    if (s.hash) f += '#';
    f += '*';
    if (withPrec) f += ".*";
    f += lengthMod;
    f += conv;
    return f;
}

template <class T>
void AppendPrintf(std::u16string &out, const std::string &fmt, int width, int prec, bool withPrec,
                  T value) {
    std::string buf;
    const int n = withPrec ? std::snprintf(nullptr, 0, fmt.c_str(), width, prec, value)
                           : std::snprintf(nullptr, 0, fmt.c_str(), width, value);
    if (n < 0) throw CInvalidArgException("format: conversion failed");
    buf.resize(static_cast<size_t>(n) + 1);
    if (withPrec)
        std::snprintf(buf.data(), buf.size(), fmt.c_str(), width, prec, value);
    else
        std::snprintf(buf.data(), buf.size(), fmt.c_str(), width, value);
    buf.resize(static_cast<size_t>(n));
    AppendAscii(out, buf.c_str());
}

void PrintInteger(std::u16string &out, const Spec &s, const CFormatArg &a, int width, int prec,
                  bool withPrec) {
    if (!IsIntKind(a.kind(), s.int64))
        Mismatch(s.int64 ? "needs a 64-bit integer" : "needs an integer of at most 32 bits",
                 s.conv);
    const bool isSigned = s.conv == 'd' || s.conv == 'i';
    const uint64_t raw = static_cast<uint64_t>(a.i());
    if (s.int64) {
        if (isSigned)
            AppendPrintf(out, NarrowSpec(s, withPrec, "ll", s.conv), width, prec, withPrec,
                         static_cast<long long>(raw));
        else
            AppendPrintf(out, NarrowSpec(s, withPrec, "ll", s.conv), width, prec, withPrec,
                         static_cast<unsigned long long>(raw));
        return;
    }
    // Without the 64-bit prefix the value is a 32-bit int, or a 16-bit one with 'h'.
    long long v;
    if (s.size == 'h')
        v = isSigned ? static_cast<long long>(static_cast<int16_t>(raw))
                     : static_cast<long long>(static_cast<uint16_t>(raw));
    else
        v = isSigned ? static_cast<long long>(static_cast<int32_t>(raw))
                     : static_cast<long long>(static_cast<uint32_t>(raw));
    AppendPrintf(out, NarrowSpec(s, withPrec, "ll", s.conv), width, prec, withPrec, v);
}

void PrintString(std::u16string &out, const Spec &s, const CFormatArg &a, int width, int prec,
                 bool withPrec) {
    if (!IsStringKind(a.kind())) Mismatch("needs a string", s.conv);
    std::u16string text;
    if (a.kind() == CFormatArg::WString)
        text = a.ws() ? std::u16string(a.ws()) : u"(null)";
    else
        text = a.as() ? CodePageToWide(a.as(), std::strlen(a.as())) : u"(null)";
    size_t n = text.size();
    if (withPrec && prec >= 0) n = std::min(n, static_cast<size_t>(prec));
    AppendPadded(out, text.data(), n, s, width);
}

void PrintChar(std::u16string &out, const Spec &s, const CFormatArg &a, int width) {
    char16_t unit;
    switch (a.kind()) {
    case CFormatArg::AChar: {
        const char byte = static_cast<char>(a.i());
        const std::u16string w = CodePageToWide(&byte, 1);
        unit = w.empty() ? u'?' : w[0];
        break;
    }
    case CFormatArg::Char:
    case CFormatArg::Int32:
    case CFormatArg::UInt32:
        unit = static_cast<char16_t>(a.i());
        break;
    default:
        Mismatch("needs a character", s.conv);
    }
    AppendPadded(out, &unit, 1, s, width);
}

void PrintPointer(std::u16string &out, const Spec &s, const CFormatArg &a, int width) {
    const void *ptr;
    switch (a.kind()) {
    case CFormatArg::Pointer:
        ptr = a.p();
        break;
    case CFormatArg::WString:
        ptr = a.ws();
        break;
    case CFormatArg::AString:
        ptr = a.as();
        break;
    case CFormatArg::Count:
        ptr = a.pn();
        break;
    default:
        Mismatch("needs a pointer", s.conv);
    }
    // Pointers print as sixteen upper-case hexadecimal digits, as the original platform did.
    char buf[32];
    std::snprintf(buf, sizeof buf, "%016llX",
                  static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(ptr)));
    std::u16string digits;
    AppendAscii(digits, buf);
    Spec plain = s;
    plain.zero = false;
    AppendPadded(out, digits.data(), digits.size(), plain, width);
}

void PrintOne(std::u16string &out, Spec s, ArgCursor &cursor) {
    int width = s.widthStar ? cursor.NextInt(s.conv) : s.width;
    int prec = s.precStar ? cursor.NextInt(s.conv) : s.prec;
    bool withPrec = s.hasPrec;
    if (width < 0) {
        s.left = true;
        width = -width;
    }
    if (withPrec && prec < 0) withPrec = false;
    const CFormatArg &a = cursor.Next(s.conv);
    switch (s.conv) {
    case 'd':
    case 'i':
    case 'u':
    case 'x':
    case 'X':
    case 'o':
        PrintInteger(out, s, a, width, prec, withPrec);
        break;
    case 'e':
    case 'E':
    case 'f':
    case 'g':
    case 'G':
        if (a.kind() != CFormatArg::Double) Mismatch("needs a floating-point number", s.conv);
        AppendPrintf(out, NarrowSpec(s, withPrec, "", s.conv), width, prec, withPrec, a.d());
        break;
    case 's':
    case 'S':
        PrintString(out, s, a, width, prec, withPrec);
        break;
    case 'c':
    case 'C':
        PrintChar(out, s, a, width);
        break;
    case 'p':
        PrintPointer(out, s, a, width);
        break;
    case 'n':
        if (a.kind() != CFormatArg::Count || !a.pn()) Mismatch("needs an int pointer", s.conv);
        *a.pn() = static_cast<int>(out.size());
        break;
    default:
        Mismatch("unknown conversion", s.conv);
    }
}

std::u16string PrintFormat(const char16_t *format, const CFormatArgs &args) {
    std::u16string out;
    ArgCursor cursor(args);
    for (const char16_t *p = format; *p; ++p) {
        if (*p != u'%') {
            out.push_back(*p);
            continue;
        }
        ++p;
        if (*p == u'%') {
            out.push_back(u'%');
            continue;
        }
        int hashes = 0;
        const Spec s = ParseSpec(p, hashes);
        PrintOne(out, s, cursor);
    }
    cursor.CheckAllUsed();
    return out;
}

} // namespace

int nEstimateFormatLen(const char16_t *format, const CFormatArgs &args) {
    return EstimateLength(format, args, true);
}

int nEstimateMaxLen(const char *format, const CFormatArgs &args) {
    return EstimateLength(format, args, false);
}

void CVXString::FormatV(const char16_t *format, const CFormatArgs &args) {
    if (!format) {
        Empty();
        return;
    }
    const int bound = EstimateLength(format, args, true);
    std::u16string text = PrintFormat(format, args);
    if (text.size() > static_cast<size_t>(bound)) text.resize(static_cast<size_t>(bound));
    AssignText(text.data(), static_cast<int>(text.size()));
}

// ---- marker templates ----

void AfxFormatStringText(CVXString &out, const char16_t *templ, const char16_t *const *strings,
                         int nStrings) {
    auto markerIndex = [](char16_t c) -> int {
        if (c >= u'1' && c <= u'9') return c - u'1';
        if (c >= u'A' && c <= u'Z') return c - u'A' + 9;
        return -1;
    };
    std::u16string text;
    for (const char16_t *p = templ ? templ : u""; *p; ++p) {
        const int index = *p == u'%' ? markerIndex(p[1]) : -1;
        if (index < 0) {
            text.push_back(*p);
            continue;
        }
        ++p;
        if (index >= nStrings)
            text.push_back(u'?');
        else if (strings[index])
            text.append(strings[index]);
    }
    out = CVXString(text.c_str());
}

void AfxFormatString1(CVXString &out, unsigned int id, const char16_t *s1) {
    CVXString templ;
    templ.LoadStringA(id);
    const char16_t *strings[] = {s1};
    AfxFormatStringText(out, templ, strings, 1);
}

void AfxFormatString2(CVXString &out, unsigned int id, const char16_t *s1, const char16_t *s2) {
    CVXString templ;
    templ.LoadStringA(id);
    const char16_t *strings[] = {s1, s2};
    AfxFormatStringText(out, templ, strings, 2);
}

} // namespace vx
