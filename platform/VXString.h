// CVXString: the library's one text type.
//
// A value is exactly one pointer to a shared, reference-counted node that holds the UTF-16 text
// as a counted buffer (BSTR) and, once somebody asks for it, an 8-bit form in the process code
// page. Copies share the node; the empty string is the null pointer. Because a value is one
// pointer with no address-dependent state, arrays of strings move them with plain memory moves.
//
// The 8-bit form is built lazily and kept in the node. In-place edits (MakeUpper, MakeLower,
// MakeReverse, Replace of units, SetAtU) do not refresh it: callers of the original library
// relied on the pointer staying valid, so a stale 8-bit view after such an edit is kept.
//
// Threads: copies behave as independent values. The wide text of a shared node is never written
// (a write first takes a node of its own), and the 8-bit form is published once with an atomic
// compare-and-swap, so two threads converting two copies of one string both get the same, fully
// built view and nothing leaks. One CVXString object is still one thread's at a time.
#pragma once

#include "platform/VXExport.h"

#include "platform/FormatArgs.h"
#include "platform/VXTypes.h"

#include <atomic>
#include <cstdint>

namespace vx VX_API {

class VXVariant;

// The shared node. Allocated on the heap, freed by whoever releases the last reference.
struct CVXStringData {
    BSTR m_bstr = nullptr;              // the wide text, owned
    std::atomic<char *> m_psz{nullptr}; // the 8-bit form, built on demand, published once, owned
    std::atomic<int32_t> m_nRef{1};     // number of CVXString values pointing here
};

class CVXString {
public:
    CVXString() noexcept : m_pData(nullptr) {}
    CVXString(const CVXString &other) noexcept;
    CVXString(CVXString &&other) noexcept : m_pData(other.m_pData) { other.m_pData = nullptr; }
    CVXString(const char16_t *text);
    CVXString(const char *text);
    CVXString(char16_t ch);
    CVXString(char ch);
    CVXString(char16_t ch, int nRepeat);
    // With bCopy true the text is duplicated; with false the string takes ownership of the BSTR.
    CVXString(BSTR text, bool bCopy);
    CVXString(const VXVariant &value);
    ~CVXString();

    CVXString &operator=(const CVXString &other);
    CVXString &operator=(CVXString &&other) noexcept;
    CVXString &operator=(const char16_t *text);
    CVXString &operator=(const char *text);
    CVXString &operator=(char16_t ch);
    CVXString &operator=(char ch);
    CVXString &operator=(const VXVariant &value);

    // Length in 16-bit units, from the buffer's count: surrogate pairs count two.
    int GetLength() const noexcept;
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    void Empty() noexcept;

    // Units by index. An index outside 0 .. GetLength() - 1 (any index of the empty string)
    // raises CInvalidArgException instead of reading or writing outside the text.
    char16_t GetAtU(int i) const {
        CheckIndex(i);
        return m_pData->m_bstr[i];
    }
    char16_t operator[](int i) const { return GetAtU(i); }
    // One unit converted to one byte of the code page.
    char GetAtA(int i) const;
    void SetAtU(int i, char16_t ch);

    // The wide view never returns null: an empty string gives a static empty text.
    operator const char16_t *() const noexcept;
    // The 8-bit view, built once per node and kept; never null.
    operator const char *() const;

    CVXString &operator+=(const CVXString &other);
    CVXString &operator+=(const char16_t *text);
    CVXString &operator+=(char16_t ch);

    int Compare(const CVXString &other) const noexcept;
    int Compare(const char16_t *text) const noexcept;
    int CompareNoCase(const CVXString &other) const noexcept;
    int CompareNoCase(const char16_t *text) const noexcept;

    int Find(char16_t ch) const noexcept;
    int Find(char16_t ch, int nStart) const noexcept;
    int ReverseFind(char16_t ch) const noexcept;
    int Find(const char16_t *text) const noexcept;
    int Find(const char16_t *text, int nStart) const noexcept;
    int FindOneOf(const char16_t *set) const noexcept;

    CVXString Left(int n) const;
    CVXString Right(int n) const;
    CVXString Mid(int nFirst) const;
    CVXString Mid(int nFirst, int n) const;
    CVXString SpanIncluding(const char16_t *set) const;
    CVXString SpanExcluding(const char16_t *set) const;

    void MakeUpper();
    void MakeLower();
    void MakeReverse();

    void Trim();
    void TrimLeft();
    void TrimLeft(char16_t ch);
    void TrimLeft(const char16_t *set);
    void TrimRight();
    void TrimRight(char16_t ch);
    void TrimRight(const char16_t *set);

    int Replace(char16_t from, char16_t to);
    int Replace(const char16_t *from, const char16_t *to);
    int Remove(char16_t ch);
    int Insert(int index, char16_t ch);
    int Insert(int index, const char16_t *text);
    int Delete(int index, int count = 1);

    // An upper-case copy with every double quote removed and one put before and after.
    CVXString Enquote() const;

    // printf-style formatting with type-checked arguments; the result replaces this string.
    template <class... Args>
    void Format(const char16_t *format, const Args &...args) {
        const CFormatArg list[] = {CFormatArg(args)..., CFormatArg(0)};
        FormatV(format, CFormatArgs{list, sizeof...(Args)});
    }
    // The same with the template loaded from the string resources.
    template <class... Args>
    void Format(unsigned int resourceId, const Args &...args) {
        const CFormatArg list[] = {CFormatArg(args)..., CFormatArg(0)};
        FormatV(resourceId, CFormatArgs{list, sizeof...(Args)});
    }
    void FormatV(const char16_t *format, const CFormatArgs &args);
    void FormatV(unsigned int resourceId, const CFormatArgs &args);

    // Loads string resource `id` in the current resource language. Non-zero on success; a
    // failure leaves the string empty.
    int LoadStringA(unsigned int id);
    int LoadString(unsigned int id) { return LoadStringA(id); }

    // Raw access to the node, for the library's own containers and tests.
    const CVXStringData *GetData() const noexcept { return m_pData; }

private:
    void CheckIndex(int i) const {
        if (static_cast<unsigned>(i) >= static_cast<unsigned>(GetLength())) ThrowBadIndex(i);
    }
    [[noreturn]] void ThrowBadIndex(int i) const;
    void Release() noexcept;
    void AssignText(const char16_t *text, int len);
    void AssignBstr(BSTR text);
    void ChkLen() noexcept;
    void AllocCopy(CVXString &dest, int nStart, int n) const;
    void CopyBeforeWrite();

    CVXStringData *m_pData;
};

static_assert(sizeof(CVXString) == sizeof(void *), "a CVXString value is one pointer");

CVXString operator+(const CVXString &a, const CVXString &b);
CVXString operator+(const CVXString &a, const char16_t *b);
CVXString operator+(const char16_t *a, const CVXString &b);
CVXString operator+(const CVXString &a, char16_t b);
CVXString operator+(char16_t a, const CVXString &b);

inline bool operator==(const CVXString &a, const CVXString &b) {
    return a.Compare(b) == 0;
}
inline bool operator==(const CVXString &a, const char16_t *b) {
    return a.Compare(b) == 0;
}
inline bool operator==(const char16_t *a, const CVXString &b) {
    return b.Compare(a) == 0;
}
inline bool operator!=(const CVXString &a, const CVXString &b) {
    return a.Compare(b) != 0;
}
inline bool operator!=(const CVXString &a, const char16_t *b) {
    return a.Compare(b) != 0;
}
inline bool operator!=(const char16_t *a, const CVXString &b) {
    return b.Compare(a) != 0;
}
inline bool operator<(const CVXString &a, const CVXString &b) {
    return a.Compare(b) < 0;
}

// Fills the `%1`..`%9`, `%A`..`%Z` markers of resource `id` with the given strings.
void AfxFormatString1(CVXString &out, unsigned int id, const char16_t *s1);
void AfxFormatString2(CVXString &out, unsigned int id, const char16_t *s1, const char16_t *s2);
// The marker filling itself, on a template text: exposed for hosts with templates of their own.
void AfxFormatStringText(CVXString &out, const char16_t *templ, const char16_t *const *strings,
                         int nStrings);

// Upper bound of the printed length of a wide format, by the scan Format uses before printing.
int nEstimateFormatLen(const char16_t *format, const CFormatArgs &args);

} // namespace VX_API
