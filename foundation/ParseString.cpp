#include "foundation/NumberText.h"

namespace vx {

CParseString &CParseString::operator=(const CVXString &text) {
    m_szText = text;
    InitValues();
    return *this;
}

void CParseString::InitValues() {
    m_nIndex = 0;
    m_chOpen = 0;
    m_chClose = 0;
    m_chWord = 0;
    m_nMode = modeWord;
    m_bKeepEmpty = false;
}

int CParseString::Start(int mode, CVXString &out) {
    m_nMode = mode;
    m_nIndex = 0;
    return GetNext(out);
}

int CParseString::GetFirst(CVXString &out, char16_t separator) {
    return GetFirst(out, separator, false);
}

int CParseString::GetFirst(CVXString &out, char16_t separator, bool keepEmpty) {
    m_chOpen = m_chClose = separator;
    m_bKeepEmpty = keepEmpty;
    return Start(modeWord, out);
}

int CParseString::GetFirst(CVXString &out, char16_t open, char16_t close) {
    m_chOpen = open;
    m_chClose = close;
    return Start(modeEnclosed, out);
}

int CParseString::GetFirstPS(CVXString &out, char16_t separator, char16_t quote) {
    m_chOpen = separator;
    m_chClose = quote;
    return Start(modePrimary, out);
}

int CParseString::GetFirst(CVXString &out, char16_t wordSeparator, char16_t open, char16_t close) {
    m_chWord = wordSeparator;
    m_chOpen = open;
    m_chClose = close;
    return Start(modeWordEnclosed, out);
}

int CParseString::GetNext(CVXString &out) {
    switch (m_nMode) {
    case modeEnclosed:
        return GetNextEnclosed(out);
    case modePrimary:
        return GetNextPrimary(out);
    case modeWordEnclosed:
        return GetNextWordEnclosed(out);
    default:
        return GetNextWord(out);
    }
}

// The rest of the line is consumed: the position moves to the end.
int CParseString::GetRemaining(CVXString &out) {
    const int len = m_szText.GetLength();
    if (m_nIndex >= len) {
        out.Empty();
        return 0;
    }
    out = m_szText.Mid(m_nIndex);
    m_nIndex = len;
    return 1;
}

int CParseString::GetNextWord(CVXString &out) {
    const int len = m_szText.GetLength();
    const char16_t sep = m_nMode == modeWordEnclosed ? m_chWord : m_chOpen;
    if (m_nIndex >= len) return 0;
    if (!m_bKeepEmpty) {
        while (m_nIndex < len && At(m_nIndex) == sep)
            ++m_nIndex;
        if (m_nIndex >= len) return 0;
    }
    int end = m_nIndex;
    while (end < len && At(end) != sep)
        ++end;
    out = m_szText.Mid(m_nIndex, end - m_nIndex);
    m_nIndex = end < len ? end + 1 : end;
    return 1;
}

int CParseString::GetNextPrimary(CVXString &out) {
    const int len = m_szText.GetLength();
    const char16_t sep = m_chOpen, quote = m_chClose;
    while (m_nIndex < len && At(m_nIndex) == sep)
        ++m_nIndex;
    if (m_nIndex >= len) return 0;
    if (At(m_nIndex) == quote) {
        // A quoted field runs to the next quote; nothing escapes a quote inside it.
        const int start = m_nIndex + 1;
        int end = start;
        while (end < len && At(end) != quote)
            ++end;
        out = m_szText.Mid(start, end - start);
        m_nIndex = end < len ? end + 1 : end;
        return 1;
    }
    int end = m_nIndex;
    while (end < len && At(end) != sep)
        ++end;
    out = m_szText.Mid(m_nIndex, end - m_nIndex);
    m_nIndex = end < len ? end + 1 : end;
    return 1;
}

int CParseString::GetNextEnclosed(CVXString &out) {
    const int len = m_szText.GetLength();
    while (m_nIndex < len && At(m_nIndex) != m_chOpen)
        ++m_nIndex;
    if (m_nIndex >= len) return 0;
    const int start = ++m_nIndex;
    int depth = 1;
    for (; m_nIndex < len; ++m_nIndex) {
        // The closing character is tested first, so that a pair of equal characters (quotes)
        // closes instead of nesting.
        if (At(m_nIndex) == m_chClose)
            --depth;
        else if (At(m_nIndex) == m_chOpen)
            ++depth;
        if (depth == 0) break;
    }
    if (depth > 0) return -1;
    out = m_szText.Mid(start, m_nIndex - start);
    ++m_nIndex;
    return 1;
}

int CParseString::GetNextWordEnclosed(CVXString &out) {
    const int len = m_szText.GetLength();
    while (m_nIndex < len && At(m_nIndex) == m_chWord)
        ++m_nIndex;
    if (m_nIndex >= len) return 0;
    if (At(m_nIndex) == m_chOpen) return GetNextEnclosed(out);
    return GetNextWord(out);
}

} // namespace vx
