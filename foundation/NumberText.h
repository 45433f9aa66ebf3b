// All traffic between numbers and text, under one strict rule: a parser accepts blanks around
// the number and nothing else behind it. Beside them stand the small string helpers of the
// library and CParseString, a restartable tokeniser for lines of text files.
#pragma once

#include "platform/VXExport.h"

#include "platform/FormatArgs.h"
#include "platform/VXString.h"
#include "platform/VXTypes.h"

#include <cstdint>

namespace vx VX_API {

class CVXODateTime;

// ---- from text ----
// Non-zero on success; `out` is undefined after a failure. The number may have blanks before
// and after it and nothing else; the decimal separator is the full stop.
bool bString2Number(int64_t *out, const char16_t *text);
bool bString2Number(uint64_t *out, const char16_t *text);
bool bString2Number(uint32_t *out, const char16_t *text);
bool bString2Number(int32_t *out, const char16_t *text);
bool bString2Number(int16_t *out, const char16_t *text);
bool bString2Number(uint16_t *out, const char16_t *text);
bool bString2Number(double *out, const char16_t *text);
bool bString2Number(float *out, const char16_t *text);
bool bString2Number(unsigned char *out, const char16_t *text);
bool bString2Number(char *out, const char16_t *text);

// The same for text a user typed: a failure shows "Invalid number" (resource 35) with the
// warning icon through the host prompt, and returns false.
bool bEnteredString2Number(double *out, const CVXString &text);
bool bEnteredString2Number(int16_t *out, const CVXString &text);
bool bEnteredString2Number(int32_t *out, const CVXString &text);
bool bEnteredString2Number(uint16_t *out, const CVXString &text);
bool bEnteredString2Number(float *out, const CVXString &text);

// ---- to text ----
CVXString szNumber2String(int64_t value);
CVXString szNumber2String(uint64_t value);
CVXString szNumber2String(int64_t value, int width);
CVXString szNumber2String(int32_t value, int width = 0);
CVXString szNumber2String(uint32_t value, int width);
CVXString szNumber2String(int16_t value, int width);
CVXString szNumber2String(uint16_t value, int width);
CVXString szNumber2String(double value, int width, int decimals);
CVXString szNumber2String(float value, int width, int decimals);

// `Format(format, value)`, or the word for unknown (resource 34) when the value is NaN.
void NanDouble2String(const char16_t *format, CVXString &out, double value);
// "%22.13f", with the floating-point rounding mode saved and restored around it.
CVXString DumpDouble(double value);
// At most 89 blanks: Left(n) of a fixed run of 89.
CVXString Spaces(int n);
// The date in local time as "YYYY-MM-DDThh:mm:ss" (Format with "%Y-%m-%dT%H:%M:%S"); a null or
// invalid date gives the word for unknown, as Format does.
CVXString szDate2String(const CVXODateTime &date);

// ---- strings ----
// Strips white space at both ends, in place.
void RemoveSpaces(char *text);
void RemoveSpaces(CVXString &text);
// Strips both (changing them), then true unless a compares above b. The test is
// Compare(a, b) <= 0 and not equality: kept, callers sort with it.
bool bCompareRemSpaces(CVXString &a, CVXString &b);
// Copies a length-prefixed 8-bit string into a zero-terminated buffer of `limit` bytes plus
// the terminator. A length byte of 0 or with the high bit set gives the empty string.
int str0ncpy(char *dest, const unsigned char *source, int limit);
// Shortens a path for display to at most maxLength characters (see the .cpp for the steps).
void AbbreviateName(CVXString &path, int maxLength, bool keepFileName);
// Every forward slash becomes a backslash, in place.
void TranslateBackslash(CVXString &text);
// The file name part of a path into `buffer` (of `size` units); with no buffer, the length the
// name needs including its terminator. Returns 0 on success when a buffer is given.
int MyGetFileName(const CVXString &path, char16_t *buffer, int size);

// ---- GUIDs: the registry form with braces ----
void GUID2String(CVXString &out, const GUID &guid);
bool String2GUID(GUID &guid, const CVXString &text);
bool IsValidGUID(const CVXString &text);

// ---- time ----
// Waits one tick of the system clock, so that two successive time stamps differ.
void SleepUntilNowIsOver();

// ---- CParseString ----
// A restartable tokeniser over one line. Each reader returns 1 for a field given, 0 at the end
// of the text, -1 for an unbalanced enclosure.
class CParseString {
public:
    enum Mode { modeWord = 0, modeEnclosed = 1, modePrimary = 2, modeWordEnclosed = 3 };

    CParseString() { InitValues(); }
    CParseString(const CVXString &text) : m_szText(text) { InitValues(); }
    CParseString(const char16_t *text) : m_szText(text) { InitValues(); }
    CParseString(const CParseString &) = default;
    CParseString &operator=(const CParseString &) = default;
    CParseString &operator=(const CVXString &text);

    // Clears everything but the text.
    void InitValues();

    int GetFirst(CVXString &out, char16_t separator);
    int GetFirst(CVXString &out, char16_t separator, bool keepEmpty);
    int GetFirst(CVXString &out, char16_t open, char16_t close);
    int GetFirstPS(CVXString &out, char16_t separator, char16_t quote);
    int GetFirst(CVXString &out, char16_t wordSeparator, char16_t open, char16_t close);
    int GetNext(CVXString &out);
    // The rest of the line from the position; empty at the end.
    int GetRemaining(CVXString &out);

    int nGetIndex() const { return m_nIndex; }
    const CVXString &GetText() const { return m_szText; }

private:
    int GetNextWord(CVXString &out);
    int GetNextEnclosed(CVXString &out);
    int GetNextPrimary(CVXString &out);
    int GetNextWordEnclosed(CVXString &out);
    int Start(int mode, CVXString &out);
    char16_t At(int i) const { return m_szText.GetAtU(i); }

    CVXString m_szText;
    int m_nIndex = 0;
    char16_t m_chOpen = 0;  // the separator, or the opening character
    char16_t m_chClose = 0; // the closing character
    char16_t m_chWord = 0;  // the word separator of the word-or-enclosed mode
    int m_nMode = modeWord;
    bool m_bKeepEmpty = false;
};

} // namespace VX_API
