#include "foundation/NumberText.h"

#include "foundation/VXODateTime.h"

#include "platform/Bstr.h"
#include "platform/Guid.h"
#include "platform/Resources.h"
#include "platform/UserPrompt.h"

#include <cctype>
#include <cfenv>
#include <chrono>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <cwctype>
#include <locale.h>
#include <string>
#include <thread>

namespace vx {

namespace {

// ---- the scanner ----
// The parse follows the wide scanf family with the formats " %<conv> %n": blanks, the number,
// blanks, and then the count of units read must be the whole text.

bool IsBlank(char16_t c) {
    return c != 0 && std::iswspace(c);
}

const char16_t *SkipBlanks(const char16_t *p) {
    while (IsBlank(*p))
        ++p;
    return p;
}

// What follows the number may only be blanks up to the end of the text.
bool OnlyBlanksLeft(const char16_t *p) {
    return *SkipBlanks(p) == 0;
}

// A decimal integer with an optional sign, accumulated modulo 2^64 as the C library's scan
// does for the unsigned conversions and for overflowing signed ones.
bool ScanInteger(const char16_t *text, uint64_t &value) {
    const char16_t *p = SkipBlanks(text);
    bool negative = false;
    if (*p == u'+' || *p == u'-') {
        negative = *p == u'-';
        ++p;
    }
    if (*p < u'0' || *p > u'9') return false;
    uint64_t v = 0;
    for (; *p >= u'0' && *p <= u'9'; ++p)
        v = v * 10 + static_cast<uint64_t>(*p - u'0');
    value = negative ? 0 - v : v;
    return OnlyBlanksLeft(p);
}

locale_t CLocale() {
    static locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return c;
}

// A floating-point number in the C locale: decimal with exponent, hexadecimal, inf, nan.
bool ScanDouble(const char16_t *text, double &value) {
    const char16_t *p = SkipBlanks(text);
    std::string ascii;
    for (const char16_t *q = p; *q; ++q) {
        if (*q >= 0x80) break;
        ascii.push_back(static_cast<char>(*q));
    }
    if (ascii.empty()) return false;
    char *end = nullptr;
    value = strtod_l(ascii.c_str(), &end, CLocale());
    if (end == ascii.c_str()) return false;
    return OnlyBlanksLeft(p + (end - ascii.c_str()));
}

template <class T>
bool ScanAs(T *out, const char16_t *text) {
    if (!text) return false;
    uint64_t raw;
    if (!ScanInteger(text, raw)) return false;
    *out = static_cast<T>(raw);
    return true;
}

template <class T>
bool EnteredNumber(T *out, const CVXString &text) {
    if (bString2Number(out, text)) return true;
    CVXString message;
    message.LoadStringA(IDS_INVALID_NUMBER);
    GetUserPrompt().ShowMessage(message, IUserPrompt::IconWarning);
    return false;
}

CVXString FormatOne(const char16_t *format, int width, int64_t value) {
    CVXString s;
    s.Format(format, width, value);
    return s;
}

} // namespace

bool bString2Number(int64_t *out, const char16_t *text) {
    return ScanAs(out, text);
}
bool bString2Number(uint64_t *out, const char16_t *text) {
    return ScanAs(out, text);
}
bool bString2Number(uint32_t *out, const char16_t *text) {
    return ScanAs(out, text);
}
bool bString2Number(int32_t *out, const char16_t *text) {
    return ScanAs(out, text);
}
// 16-bit: the scan stores the low bits of what it read; 70000 passes and is cut.
bool bString2Number(int16_t *out, const char16_t *text) {
    return ScanAs(out, text);
}
bool bString2Number(uint16_t *out, const char16_t *text) {
    return ScanAs(out, text);
}

bool bString2Number(double *out, const char16_t *text) {
    return text && ScanDouble(text, *out);
}

bool bString2Number(float *out, const char16_t *text) {
    double d;
    if (!bString2Number(&d, text)) return false;
    *out = static_cast<float>(d);
    return true;
}

bool bString2Number(unsigned char *out, const char16_t *text) {
    uint16_t v;
    if (!bString2Number(&v, text) || v > 255) return false;
    *out = static_cast<unsigned char>(v);
    return true;
}

bool bString2Number(char *out, const char16_t *text) {
    int16_t v;
    if (!bString2Number(&v, text) || v < -128 || v > 127) return false;
    *out = static_cast<char>(v);
    return true;
}

bool bEnteredString2Number(double *out, const CVXString &text) {
    return EnteredNumber(out, text);
}
bool bEnteredString2Number(int16_t *out, const CVXString &text) {
    return EnteredNumber(out, text);
}
bool bEnteredString2Number(int32_t *out, const CVXString &text) {
    return EnteredNumber(out, text);
}
bool bEnteredString2Number(uint16_t *out, const CVXString &text) {
    return EnteredNumber(out, text);
}
bool bEnteredString2Number(float *out, const CVXString &text) {
    return EnteredNumber(out, text);
}

// ---- to text ----

CVXString szNumber2String(int64_t value) {
    CVXString s;
    s.Format(u"%I64d", value);
    return s;
}

CVXString szNumber2String(uint64_t value) {
    CVXString s;
    s.Format(u"%I64u", value);
    return s;
}

CVXString szNumber2String(int64_t value, int width) {
    return FormatOne(u"%*I64d", width, value);
}

CVXString szNumber2String(int32_t value, int width) {
    CVXString s;
    s.Format(u"%*ld", width, value);
    return s;
}

CVXString szNumber2String(uint32_t value, int width) {
    CVXString s;
    s.Format(u"%*lu", width, value);
    return s;
}

CVXString szNumber2String(int16_t value, int width) {
    return szNumber2String(static_cast<int32_t>(value), width);
}

CVXString szNumber2String(uint16_t value, int width) {
    return szNumber2String(static_cast<uint32_t>(value), width);
}

CVXString szNumber2String(double value, int width, int decimals) {
    CVXString s;
    s.Format(u"%*.*f", width, decimals, value);
    return s;
}

CVXString szNumber2String(float value, int width, int decimals) {
    return szNumber2String(static_cast<double>(value), width, decimals);
}

void NanDouble2String(const char16_t *format, CVXString &out, double value) {
    if (std::isnan(value))
        out.LoadStringA(IDS_UNKNOWN);
    else
        out.Format(format, value);
}

CVXString DumpDouble(double value) {
    const int mode = std::fegetround();
    CVXString s;
    s.Format(u"%22.13f", value);
    std::fesetround(mode);
    return s;
}

CVXString Spaces(int n) {
    static const CVXString blanks(u' ', 89);
    return blanks.Left(n);
}

CVXString szDate2String(const CVXODateTime &date) {
    return date.Format("%Y-%m-%dT%H:%M:%S");
}

// ---- strings ----

void RemoveSpaces(char *text) {
    if (!text) return;
    char *start = text;
    while (*start && std::isspace(static_cast<unsigned char>(*start)))
        ++start;
    size_t n = std::strlen(start);
    while (n > 0 && std::isspace(static_cast<unsigned char>(start[n - 1])))
        --n;
    std::memmove(text, start, n);
    text[n] = '\0';
}

void RemoveSpaces(CVXString &text) {
    text.Trim();
}

bool bCompareRemSpaces(CVXString &a, CVXString &b) {
    RemoveSpaces(a);
    RemoveSpaces(b);
    return a.Compare(b) <= 0;
}

int str0ncpy(char *dest, const unsigned char *source, int limit) {
    const unsigned char len = source[0];
    int n = 0;
    if (len != 0 && (len & 0x80) == 0) n = std::min(static_cast<int>(len), limit);
    if (n > 0) std::memcpy(dest, source + 1, static_cast<size_t>(n));
    dest[std::max(n, 0)] = '\0';
    return std::max(n, 0);
}

void TranslateBackslash(CVXString &text) {
    text.Replace(u'/', u'\\');
}

namespace {
// Index of the first unit of the file name part: behind the last backslash, slash or colon.
int FileNameStart(const char16_t *path, int len) {
    for (int i = len - 1; i >= 0; --i)
        if (path[i] == u'\\' || path[i] == u'/' || path[i] == u':') return i + 1;
    return 0;
}
} // namespace

int MyGetFileName(const CVXString &path, char16_t *buffer, int size) {
    const int len = path.GetLength();
    const int start = FileNameStart(path, len);
    const int need = len - start + 1;
    if (!buffer) return need;
    if (size < need) return need;
    std::memcpy(buffer, static_cast<const char16_t *>(path) + start,
                static_cast<size_t>(need - 1) * sizeof(char16_t));
    buffer[need - 1] = 0;
    return 0;
}

// The steps: a path that fits stays; a file name longer than the limit gives the name or
// nothing; otherwise the volume part is kept (the drive and one directory, or for a UNC path the
// server and the share), then "\..." and as many trailing directories as fit.
void AbbreviateName(CVXString &path, int maxLength, bool keepFileName) {
    const int len = path.GetLength();
    const char16_t *p = path;
    const int nameStart = FileNameStart(p, len);
    const int nameLen = len - nameStart;
    if (maxLength >= len) return;
    if (maxLength < nameLen) {
        path = keepFileName ? path.Mid(nameStart) : CVXString();
        return;
    }
    const CVXString fileName = path.Mid(nameStart);
    // A path without the separators the walk expects shortens to its file name.
    auto nextBackslash = [&](int i) {
        while (i < len && p[i] != u'\\')
            ++i;
        return i;
    };
    int cur = 2; // behind "c:" or the leading "\\" of a UNC path
    if (len > 2 && p[0] == u'\\' && p[1] == u'\\') cur = nextBackslash(cur);
    if (len - nameLen > 3) cur = nextBackslash(cur + 1);
    if (cur >= len || p[cur] != u'\\') {
        path = fileName;
        return;
    }
    const int volume = cur;
    if (maxLength < volume + 5 + nameLen) {
        path = fileName;
        return;
    }
    while (volume + 4 + (len - cur) > maxLength) {
        cur = nextBackslash(cur + 1);
        if (cur >= len) {
            path = fileName;
            return;
        }
    }
    path = path.Left(volume) + u"\\..." + path.Mid(cur);
}

// ---- GUIDs ----

void GUID2String(CVXString &out, const GUID &guid) {
    out = StringFromCLSID(guid);
}

bool String2GUID(GUID &guid, const CVXString &text) {
    if (text.GetLength() > 0 && text.GetAtU(0) == u'{') return CLSIDFromString(text, &guid) == S_OK;
    return CLSIDFromString(u"{" + text + u"}", &guid) == S_OK;
}

bool IsValidGUID(const CVXString &text) {
    GUID guid;
    return CLSIDFromString(text, &guid) == S_OK;
}

// ---- time ----

// The tick is the clock's resolution rounded up to whole milliseconds, plus one: time stamps of
// the library have millisecond resolution, so one millisecond more always makes them differ.
void SleepUntilNowIsOver() {
    timespec res{};
    clock_getres(CLOCK_REALTIME, &res);
    const long tickMs = res.tv_sec * 1000 + (res.tv_nsec + 999999) / 1000000 + 1;
    std::this_thread::sleep_for(std::chrono::milliseconds(tickMs));
}

} // namespace vx
