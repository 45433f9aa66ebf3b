#include "platform/VXString.h"

#include "platform/Bstr.h"
#include "platform/CodePage.h"
#include "platform/Errors.h"
#include "platform/Resources.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwctype>
#include <new>
#include <string>

namespace vx {

namespace {

const char16_t kEmptyW[1] = {0};
const char kEmptyA[1] = {0};

CVXStringData *NewNode(BSTR text) {
    auto *node = new (std::nothrow) CVXStringData;
    if (!node) {
        SysFreeString(text);
        throw CVXComError(E_OUTOFMEMORY, __FILE__, __LINE__);
    }
    node->m_bstr = text;
    return node;
}

// The C library's wide search functions, for char16_t.
const char16_t *StrChrU(const char16_t *s, char16_t ch) {
    for (;; ++s) {
        if (*s == ch) return s;
        if (*s == 0) return nullptr;
    }
}

const char16_t *StrStrU(const char16_t *hay, const char16_t *needle) {
    if (!*needle) return hay;
    const size_t n = StrLenU(needle);
    for (; *hay; ++hay)
        if (*hay == *needle && std::char_traits<char16_t>::compare(hay, needle, n) == 0) return hay;
    return nullptr;
}

size_t StrSpnU(const char16_t *s, const char16_t *set, bool inside) {
    size_t i = 0;
    for (; s[i]; ++i)
        if ((StrChrU(set, s[i]) != nullptr) != inside) break;
    return i;
}

char16_t LowerU(char16_t c) {
    return static_cast<char16_t>(std::towlower(c));
}
char16_t UpperU(char16_t c) {
    return static_cast<char16_t>(std::towupper(c));
}

int CompareUnits(const char16_t *a, int na, const char16_t *b, int nb, bool noCase) {
    const int n = std::min(na, nb);
    for (int i = 0; i < n; ++i) {
        const int ca = noCase ? LowerU(a[i]) : a[i];
        const int cb = noCase ? LowerU(b[i]) : b[i];
        if (ca != cb) return ca - cb;
    }
    return na < nb ? -1 : (na > nb ? 1 : 0);
}

// Compare of two texts given by their node text pointers and lengths. Equal pointers (both
// null included) are equal before anything is read.
int CompareTexts(const char16_t *a, int na, const char16_t *b, int nb, bool noCase) {
    if (a == b) return 0;
    if (!a) return -1;
    if (!b) return 1;
    return CompareUnits(a, na, b, nb, noCase);
}

bool IsSpaceU(char16_t c) {
    return c != 0 && std::iswspace(c);
}

} // namespace

// ---- construction and release ----

CVXString::CVXString(const CVXString &other) noexcept : m_pData(other.m_pData) {
    if (m_pData) m_pData->m_nRef.fetch_add(1, std::memory_order_relaxed);
}

CVXString::CVXString(const char16_t *text) : m_pData(nullptr) {
    if (text && *text) AssignText(text, static_cast<int>(StrLenU(text)));
}

CVXString::CVXString(const char *text) : m_pData(nullptr) {
    if (text && *text) {
        const std::u16string wide = CodePageToWide(text, std::strlen(text));
        AssignText(wide.data(), static_cast<int>(wide.size()));
    }
}

CVXString::CVXString(char16_t ch) : m_pData(nullptr) {
    AssignText(&ch, 1);
}

CVXString::CVXString(char ch) : m_pData(nullptr) {
    const std::u16string wide = CodePageToWide(&ch, 1);
    AssignText(wide.data(), static_cast<int>(wide.size()));
}

CVXString::CVXString(char16_t ch, int nRepeat) : m_pData(nullptr) {
    if (nRepeat > 0) {
        const std::u16string text(static_cast<size_t>(nRepeat), ch);
        AssignText(text.data(), nRepeat);
    }
}

CVXString::CVXString(BSTR text, bool bCopy) : m_pData(nullptr) {
    if (bCopy)
        AssignText(text, static_cast<int>(SysStringLen(text)));
    else
        AssignBstr(text);
}

CVXString::~CVXString() {
    Release();
}

void CVXString::Release() noexcept {
    if (!m_pData) return;
    if (m_pData->m_nRef.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        SysFreeString(m_pData->m_bstr);
        std::free(m_pData->m_psz.load(std::memory_order_relaxed));
        delete m_pData;
    }
    m_pData = nullptr;
}

// Gives this string a new node holding `len` units of `text`. The new node is built before the
// old one is released, so `text` may point into the old node.
void CVXString::AssignText(const char16_t *text, int len) {
    if (len <= 0 || !text) {
        Release();
        return;
    }
    AssignBstr(SysAllocStringLen(text, static_cast<uint32_t>(len)));
}

// Takes ownership of a BSTR as the new node; then the emptiness test.
void CVXString::AssignBstr(BSTR text) {
    CVXStringData *node = text ? NewNode(text) : nullptr;
    Release();
    m_pData = node;
    ChkLen();
}

// Empty is null: a node without text or with text of length 0 is released.
void CVXString::ChkLen() noexcept {
    if (m_pData && (!m_pData->m_bstr || SysStringLen(m_pData->m_bstr) == 0)) Release();
}

void CVXString::AllocCopy(CVXString &dest, int nStart, int n) const {
    if (n <= 0) {
        dest.Release();
        return;
    }
    dest.AssignText(m_pData->m_bstr + nStart, n);
}

void CVXString::CopyBeforeWrite() {
    if (m_pData->m_nRef.load(std::memory_order_acquire) < 2) return;
    // The 8-bit form is not copied: the new node builds its own when asked.
    BSTR copy = SysAllocStringLen(m_pData->m_bstr, SysStringLen(m_pData->m_bstr));
    CVXStringData *node = NewNode(copy);
    Release();
    m_pData = node;
}

// ---- assignment ----

CVXString &CVXString::operator=(const CVXString &other) {
    if (m_pData != other.m_pData) {
        if (other.m_pData) other.m_pData->m_nRef.fetch_add(1, std::memory_order_relaxed);
        Release();
        m_pData = other.m_pData;
    }
    ChkLen();
    return *this;
}

CVXString &CVXString::operator=(CVXString &&other) noexcept {
    if (this != &other) {
        Release();
        m_pData = other.m_pData;
        other.m_pData = nullptr;
    }
    return *this;
}

CVXString &CVXString::operator=(const char16_t *text) {
    // Assigning the node's own wide text is a no-op.
    if (m_pData && text == m_pData->m_bstr) return *this;
    AssignText(text, text ? static_cast<int>(StrLenU(text)) : 0);
    return *this;
}

CVXString &CVXString::operator=(const char *text) {
    // Assigning the node's own 8-bit form is a no-op.
    if (m_pData && text && text == m_pData->m_psz.load(std::memory_order_acquire)) return *this;
    if (!text || !*text) {
        Release();
        return *this;
    }
    const std::u16string wide = CodePageToWide(text, std::strlen(text));
    AssignText(wide.data(), static_cast<int>(wide.size()));
    return *this;
}

CVXString &CVXString::operator=(char16_t ch) {
    AssignText(&ch, 1);
    return *this;
}

CVXString &CVXString::operator=(char ch) {
    const std::u16string wide = CodePageToWide(&ch, 1);
    AssignText(wide.data(), static_cast<int>(wide.size()));
    return *this;
}

// ---- reading ----

int CVXString::GetLength() const noexcept {
    return m_pData ? static_cast<int>(SysStringLen(m_pData->m_bstr)) : 0;
}

void CVXString::Empty() noexcept {
    Release();
}

void CVXString::ThrowBadIndex(int i) const {
    throw CInvalidArgException("CVXString: index " + std::to_string(i) + " outside a text of " +
                               std::to_string(GetLength()) + " units");
}

char CVXString::GetAtA(int i) const {
    return WideCharToCodePage(GetAtU(i));
}

void CVXString::SetAtU(int i, char16_t ch) {
    CheckIndex(i);
    CopyBeforeWrite();
    m_pData->m_bstr[i] = ch;
}

CVXString::operator const char16_t *() const noexcept {
    return m_pData && m_pData->m_bstr ? m_pData->m_bstr : kEmptyW;
}

CVXString::operator const char *() const {
    if (!m_pData) return kEmptyA;
    if (char *view = m_pData->m_psz.load(std::memory_order_acquire)) return view;
    // Built from the wide text up to its first zero unit and kept in the node, so every sharer
    // sees the same pointer for as long as the node lives. Sharers in other threads may build it
    // at the same time: the first to publish wins and the others free their copy.
    const BSTR w = m_pData->m_bstr;
    const std::string narrow = WideToCodePage(w, StrLenU(w));
    char *copy = static_cast<char *>(std::malloc(narrow.size() + 1));
    if (!copy) throw CVXComError(E_OUTOFMEMORY, __FILE__, __LINE__);
    std::memcpy(copy, narrow.c_str(), narrow.size() + 1);
    char *expected = nullptr;
    if (m_pData->m_psz.compare_exchange_strong(expected, copy, std::memory_order_acq_rel,
                                               std::memory_order_acquire))
        return copy;
    std::free(copy);
    return expected;
}

// ---- concatenation ----

CVXString &CVXString::operator+=(const CVXString &other) {
    const int n1 = GetLength(), n2 = other.GetLength();
    if (n1 + n2 == 0) return *this;
    BSTR joined = SysAllocStringLen(nullptr, static_cast<uint32_t>(n1 + n2));
    if (n1) std::memcpy(joined, m_pData->m_bstr, n1 * sizeof(char16_t));
    if (n2) std::memcpy(joined + n1, other.m_pData->m_bstr, n2 * sizeof(char16_t));
    AssignBstr(joined);
    return *this;
}

CVXString &CVXString::operator+=(const char16_t *text) {
    return *this += CVXString(text);
}

CVXString &CVXString::operator+=(char16_t ch) {
    return *this += CVXString(ch);
}

CVXString operator+(const CVXString &a, const CVXString &b) {
    CVXString r(a);
    r += b;
    return r;
}
CVXString operator+(const CVXString &a, const char16_t *b) {
    return a + CVXString(b);
}
CVXString operator+(const char16_t *a, const CVXString &b) {
    return CVXString(a) + b;
}
CVXString operator+(const CVXString &a, char16_t b) {
    return a + CVXString(b);
}
CVXString operator+(char16_t a, const CVXString &b) {
    return CVXString(a) + b;
}

// ---- comparison ----

int CVXString::Compare(const CVXString &other) const noexcept {
    return CompareTexts(m_pData ? m_pData->m_bstr : nullptr, GetLength(),
                        other.m_pData ? other.m_pData->m_bstr : nullptr, other.GetLength(), false);
}

// The argument is taken as it stands, without the emptiness test: an empty string compared
// with a non-null empty literal is -1, not 0. Kept: callers distinguish "no text" this way.
int CVXString::Compare(const char16_t *text) const noexcept {
    return CompareTexts(m_pData ? m_pData->m_bstr : nullptr, GetLength(), text,
                        text ? static_cast<int>(StrLenU(text)) : 0, false);
}

int CVXString::CompareNoCase(const CVXString &other) const noexcept {
    return CompareTexts(m_pData ? m_pData->m_bstr : nullptr, GetLength(),
                        other.m_pData ? other.m_pData->m_bstr : nullptr, other.GetLength(), true);
}

int CVXString::CompareNoCase(const char16_t *text) const noexcept {
    return CompareTexts(m_pData ? m_pData->m_bstr : nullptr, GetLength(), text,
                        text ? static_cast<int>(StrLenU(text)) : 0, true);
}

// ---- searching ----

int CVXString::Find(char16_t ch) const noexcept {
    return Find(ch, 0);
}

int CVXString::Find(char16_t ch, int nStart) const noexcept {
    if (nStart >= GetLength()) return -1;
    const char16_t *w = *this;
    const char16_t *hit = StrChrU(w + std::max(nStart, 0), ch);
    return hit ? static_cast<int>(hit - w) : -1;
}

int CVXString::ReverseFind(char16_t ch) const noexcept {
    const char16_t *w = *this;
    const char16_t *last = nullptr;
    for (const char16_t *p = w;; ++p) {
        if (*p == ch) last = p;
        if (*p == 0) break;
    }
    return last ? static_cast<int>(last - w) : -1;
}

int CVXString::Find(const char16_t *text) const noexcept {
    return Find(text, 0);
}

int CVXString::Find(const char16_t *text, int nStart) const noexcept {
    if (nStart > GetLength()) return -1;
    const char16_t *w = *this;
    const char16_t *hit = StrStrU(w + std::max(nStart, 0), text ? text : kEmptyW);
    return hit ? static_cast<int>(hit - w) : -1;
}

int CVXString::FindOneOf(const char16_t *set) const noexcept {
    const char16_t *w = *this;
    const size_t n = StrSpnU(w, set, false);
    return w[n] ? static_cast<int>(n) : -1;
}

// ---- substrings ----

CVXString CVXString::Mid(int nFirst) const {
    return Mid(nFirst, GetLength() - nFirst);
}

CVXString CVXString::Mid(int nFirst, int n) const {
    const int len = GetLength();
    nFirst = std::max(nFirst, 0);
    n = std::max(n, 0);
    if (nFirst + n > len) n = len - nFirst;
    if (nFirst > len) n = 0;
    if (nFirst == 0 && n == len) return *this;
    CVXString dest;
    AllocCopy(dest, nFirst, n);
    return dest;
}

CVXString CVXString::Left(int n) const {
    n = std::max(n, 0);
    if (n >= GetLength()) return *this;
    CVXString dest;
    AllocCopy(dest, 0, n);
    return dest;
}

CVXString CVXString::Right(int n) const {
    n = std::max(n, 0);
    const int len = GetLength();
    if (n >= len) return *this;
    CVXString dest;
    AllocCopy(dest, len - n, n);
    return dest;
}

CVXString CVXString::SpanIncluding(const char16_t *set) const {
    return Left(static_cast<int>(StrSpnU(*this, set, true)));
}

CVXString CVXString::SpanExcluding(const char16_t *set) const {
    return Left(static_cast<int>(StrSpnU(*this, set, false)));
}

// ---- in-place edits (the 8-bit form is deliberately left as it was) ----

void CVXString::MakeUpper() {
    if (IsEmpty()) return;
    CopyBeforeWrite();
    for (char16_t *p = m_pData->m_bstr; *p; ++p)
        *p = UpperU(*p);
}

void CVXString::MakeLower() {
    if (IsEmpty()) return;
    CopyBeforeWrite();
    for (char16_t *p = m_pData->m_bstr; *p; ++p)
        *p = LowerU(*p);
}

void CVXString::MakeReverse() {
    if (IsEmpty()) return;
    CopyBeforeWrite();
    char16_t *p = m_pData->m_bstr;
    std::reverse(p, p + StrLenU(p));
}

int CVXString::Replace(char16_t from, char16_t to) {
    if (IsEmpty() || from == to) return 0;
    CopyBeforeWrite();
    int count = 0;
    const int len = GetLength();
    for (int i = 0; i < len; ++i) {
        if (m_pData->m_bstr[i] == from) {
            m_pData->m_bstr[i] = to;
            ++count;
        }
    }
    return count;
}

// ---- edits that build a new node ----

void CVXString::Trim() {
    TrimLeft();
    TrimRight();
}

void CVXString::TrimLeft() {
    const char16_t *w = *this;
    int n = 0;
    while (IsSpaceU(w[n]))
        ++n;
    if (n) *this = Mid(n);
}

void CVXString::TrimLeft(char16_t ch) {
    const int len = GetLength();
    const char16_t *w = *this;
    int n = 0;
    while (n < len && w[n] == ch)
        ++n;
    if (n) *this = Mid(n);
}

void CVXString::TrimLeft(const char16_t *set) {
    // The set is searched with its terminator, so the scan is bounded by the text's length.
    const int len = GetLength();
    const char16_t *w = *this;
    int n = 0;
    while (n < len && StrChrU(set, w[n]))
        ++n;
    if (n) *this = Mid(n);
}

namespace {
// Start of the trailing run of qualifying units before the first zero unit, or -1.
template <class Pred>
int TrailingRunStart(const char16_t *w, Pred qualifies) {
    int mark = -1;
    for (int i = 0; w[i]; ++i) {
        if (qualifies(w[i])) {
            if (mark < 0) mark = i;
        } else {
            mark = -1;
        }
    }
    return mark;
}
} // namespace

void CVXString::TrimRight() {
    const int mark = TrailingRunStart(*this, IsSpaceU);
    if (mark >= 0) *this = Left(mark);
}

void CVXString::TrimRight(char16_t ch) {
    const int mark = TrailingRunStart(*this, [ch](char16_t c) { return c == ch; });
    if (mark >= 0) *this = Left(mark);
}

void CVXString::TrimRight(const char16_t *set) {
    const int mark = TrailingRunStart(*this, [set](char16_t c) { return StrChrU(set, c); });
    if (mark >= 0) *this = Left(mark);
}

int CVXString::Replace(const char16_t *from, const char16_t *to) {
    const int nFrom = from ? static_cast<int>(StrLenU(from)) : 0;
    if (nFrom == 0 || IsEmpty()) return 0;
    const int nTo = to ? static_cast<int>(StrLenU(to)) : 0;
    const int len = GetLength();
    const char16_t *w = m_pData->m_bstr;
    const char16_t *end = w + len;

    // First pass: non-overlapping matches, continuing past embedded zero units.
    int count = 0;
    for (const char16_t *start = w; start < end; start += StrLenU(start) + 1) {
        for (const char16_t *hit; (hit = StrStrU(start, from)) != nullptr; start = hit + nFrom)
            ++count;
    }
    if (count == 0) return 0;

    // Second pass into one new buffer; it stops where no further match is found and copies the
    // remainder behind it as it stands.
    const int newLen = len + (nTo - nFrom) * count;
    std::u16string out;
    out.reserve(static_cast<size_t>(std::max(newLen, 0)));
    const char16_t *src = w;
    for (const char16_t *hit; (hit = StrStrU(src, from)) != nullptr; src = hit + nFrom) {
        out.append(src, hit);
        out.append(to ? to : kEmptyW, static_cast<size_t>(nTo));
    }
    out.append(src, end);
    out.resize(static_cast<size_t>(std::max(newLen, 0)), u'\0');
    AssignText(out.data(), static_cast<int>(out.size()));
    return count;
}

int CVXString::Remove(char16_t ch) {
    const int len = GetLength();
    if (len == 0) return 0;
    std::u16string kept;
    kept.reserve(static_cast<size_t>(len));
    for (int i = 0; i < len; ++i)
        if (m_pData->m_bstr[i] != ch) kept.push_back(m_pData->m_bstr[i]);
    const int removed = len - static_cast<int>(kept.size());
    if (removed) AssignText(kept.data(), static_cast<int>(kept.size()));
    return removed;
}

int CVXString::Insert(int index, char16_t ch) {
    const int len = GetLength();
    const int newLen = len + 1;
    // The cut is to the new length: an index of length + 1 lets the old terminator into the
    // text and the unit itself falls outside it. Kept as the string has always behaved.
    index = std::clamp(index, 0, newLen);
    std::u16string out(static_cast<size_t>(newLen), u'\0');
    const char16_t *w = *this;
    for (int i = 0; i < newLen; ++i) {
        if (i < index)
            out[i] = i < len ? w[i] : u'\0';
        else if (i == index)
            out[i] = ch;
        else
            out[i] = w[i - 1];
    }
    AssignText(out.data(), newLen);
    return GetLength();
}

int CVXString::Insert(int index, const char16_t *text) {
    const int n = text ? static_cast<int>(StrLenU(text)) : 0;
    const int len = GetLength();
    if (n == 0) return len;
    index = std::clamp(index, 0, len);
    std::u16string out(static_cast<const char16_t *>(*this), static_cast<size_t>(index));
    out.append(text, static_cast<size_t>(n));
    out.append(static_cast<const char16_t *>(*this) + index, static_cast<size_t>(len - index));
    AssignText(out.data(), static_cast<int>(out.size()));
    return GetLength();
}

int CVXString::Delete(int index, int count) {
    index = std::max(index, 0);
    const int len = GetLength();
    if (count >= 1 && index <= len) {
        // The count is not cut down to what lies behind the index: asking for more is the
        // caller's error, reported rather than read past the buffer.
        if (count > len - index)
            throw CInvalidArgException("CVXString::Delete: count runs past the end of the text");
        std::u16string out(static_cast<const char16_t *>(*this), static_cast<size_t>(index));
        out.append(static_cast<const char16_t *>(*this) + index + count,
                   static_cast<size_t>(len - index - count));
        AssignText(out.data(), static_cast<int>(out.size()));
    }
    ChkLen();
    return GetLength();
}

CVXString CVXString::Enquote() const {
    CVXString s(*this);
    s.MakeUpper();
    s.Remove(u'"');
    return u'"' + s + u'"';
}

// ---- resources ----

int CVXString::LoadStringA(unsigned int id) {
    CVXString text;
    if (!LoadResourceString(id, text)) {
        Release();
        return 0;
    }
    *this = text;
    return 1;
}

void CVXString::FormatV(unsigned int resourceId, const CFormatArgs &args) {
    CVXString templ;
    templ.LoadStringA(resourceId);
    FormatV(templ, args);
}

CFormatArg::CFormatArg(const CVXString &v) : m_kind(WString) {
    m_ws = v;
}

} // namespace vx
