#include "persist/ArchiveX.h"

#include "foundation/NumberText.h"
#include "foundation/VXFile.h"
#include "foundation/VXODateTime.h"
#include "persist/LoadedObjects.h"
#include "persist/RuntimeCreator.h"
#include "persist/SerObject.h"
#include "platform/CodePage.h"
#include "platform/Errors.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <string>

namespace vx {

namespace {

constexpr int kFloatDigits = 7;
constexpr int kDoubleDigits = 15;
// Room for any number's text: a double's 15 digits with sign, point and exponent, an int64.
constexpr size_t kNumberText = 32;
// Field names are short: longer ones (or non-ASCII ones) take the general road.
constexpr size_t kShortName = 64;
constexpr uint64_t kQuietNaNBits = 0x7FF8000000000000ull;
// Up to 18 decimal digits an int64 holds whatever they are, so no overflow needs checking.
constexpr size_t kSafeDigits = 18;

// The text printf's "%.<precision>g" gives, NaN and infinities included: std::to_chars with a
// precision formats as printf does in the C locale, without the formatting machinery, and
// numbers are most of what an archive writes.
void GeneralText(double value, int precision, char (&text)[kNumberText]) {
    *std::to_chars(text, text + kNumberText - 1, value, std::chars_format::general, precision).ptr =
        '\0';
}

// The decimal text of an integer, as the variant of the integer would print it.
void IntegerText(int64_t value, char (&text)[kNumberText]) {
    *std::to_chars(text, text + kNumberText - 1, value).ptr = '\0';
}

// A field name in UTF-8: on the stack when it is short ASCII, as every name of the library is.
class CUtf8Name {
public:
    explicit CUtf8Name(std::u16string_view name) {
        if (name.size() < kShortName &&
            std::all_of(name.begin(), name.end(), [](char16_t c) { return c < 0x80; })) {
            std::transform(name.begin(), name.end(), m_short,
                           [](char16_t c) { return static_cast<char>(c); });
            m_short[name.size()] = '\0';
            m_text = m_short;
        } else {
            m_long = WideToUtf8(name.data(), name.size());
            m_text = m_long.c_str();
        }
    }
    CUtf8Name(const CUtf8Name &) = delete;
    CUtf8Name &operator=(const CUtf8Name &) = delete;
    const char *c_str() const { return m_text; }

private:
    char m_short[kShortName];
    std::string m_long;
    const char *m_text;
};

std::u16string_view View(const CVXString &s) {
    const char16_t *p = s;
    return p ? std::u16string_view(p, static_cast<size_t>(s.GetLength())) : std::u16string_view();
}

CVXString Named(std::u16string_view name) {
    return CVXString(std::u16string(name).c_str());
}

// The plain decimal integers that a document written by the archive holds: an optional minus
// and at most kSafeDigits digits. Anything else (blanks, a plus, "True", more digits) is for the
// general conversion, which gives the same number for these.
bool PlainInteger(const char *text, int64_t &value) {
    const char *end = text + std::strlen(text);
    const char *digits = text + (*text == '-');
    if (digits == end || static_cast<size_t>(end - digits) > kSafeDigits) return false;
    const auto r = std::from_chars(text, end, value);
    return r.ec == std::errc() && r.ptr == end;
}

// A decimal number from_chars reads to the end: the same value strtod gives, without the copy
// to a wide text and back. Hexadecimal, "nan", blanks and the like start otherwise and take the
// general road.
bool PlainDouble(const char *text, double &value) {
    // The unknown value is saved as "-nan" (its sign bit set), a plain NaN as "nan": strtod
    // reads them as the quiet NaN with the sign as written, and so does this.
    if (std::strcmp(text, "nan") == 0 || std::strcmp(text, "-nan") == 0) {
        const double nan = std::bit_cast<double>(kQuietNaNBits);
        value = *text == '-' ? -nan : nan;
        return true;
    }
    const char *end = text + std::strlen(text);
    const char *first = text + (*text == '-');
    if (first == end || *first < '0' || *first > '9') return false;
    const auto r = std::from_chars(text, end, value);
    return r.ec == std::errc() && r.ptr == end;
}

const char16_t kTypeAttr[] = u"MFC_RUNTIME_TYPE";
const char16_t kSchemaAttr[] = u"MFC_RUNTIME_TYPE_SCHEMA";
const char16_t kFileRoot[] = u"VXXMLArchive";
const char16_t kMemoryRoot[] = u"VXA";

// The float NaN of a failed load: the bits 0xFFF80000.
const float kFloatNaN = std::bit_cast<float>(0xFFF80000u);

struct TypeName {
    const char16_t *name;
    int value;
};
// The names are file content: they never change.
const TypeName kVariantTypes[] = {
    {u"adEmpty", 0},
    {u"adBigInt", 20},
    {u"adBinary", 128},
    {u"adBoolean", 11},
    {u"adBSTR", 8},
    {u"adChar", 129},
    {u"adCurrency", 6},
    {u"adDate", 7},
    {u"adDBDate", 133},
    {u"adDBTime", 134},
    {u"adDBTimeStamp", 135},
    {u"adDecimal", 14},
    {u"adDouble", 5},
    {u"adInteger", 3},
    {u"adNumeric", 131},
    {u"adSingle", 4},
    {u"adSmallInt", 2},
    {u"adTinyInt", 16},
    {u"adUnsignedBigInt", 21},
    {u"adUnsignedInt", 19},
    {u"adUnsignedSmallInt", 18},
    {u"adUnsignedTinyInt", 17},
    {u"adWChar", 130},
    {u"adLongVarBinary", 205},
    {u"adLongVarChar", 201},
    {u"adLongVarWChar", 203},
    {u"adVarBinary", 204},
    {u"adVarChar", 200},
    {u"adVarWChar", 202},
    {u"adGUID", 72},
};

bool IsDateType(int t) {
    return t == adDate || t == adDBDate || t == adDBTime || t == adDBTimeStamp;
}

const char16_t *const kDateAttrs[] = {u"Day",    u"Month",  u"Year",        u"Hour",
                                      u"Minute", u"Second", u"Milliseconds"};

} // namespace

// Restores the current element when a step down ends, also by an exception.
class CArchiveX::CurrentGuard {
public:
    explicit CurrentGuard(CArchiveX &ar) : m_ar(ar), m_saved(ar.m_current) {}
    ~CurrentGuard() { m_ar.m_current = m_saved; }
    CurrentGuard(const CurrentGuard &) = delete;
    CurrentGuard &operator=(const CurrentGuard &) = delete;

private:
    CArchiveX &m_ar;
    CVXComWrap<IDomElement> m_saved;
};

int VariantTypeFromName(const CVXString &name) {
    for (const TypeName &t : kVariantTypes)
        if (name.Compare(t.name) == 0) return t.value;
    return 0;
}

const char16_t *VariantTypeName(int type) {
    for (const TypeName &t : kVariantTypes)
        if (t.value == type) return t.name;
    return u"adEmpty";
}

// ---- construction ----

void CArchiveX::Open(const CVXString &domName, bool loading) {
    m_document = CreateDomDocument(domName);
    m_bLoading = loading;
}

void CArchiveX::MakeRoot(const char16_t *name) {
    CVXComWrap<IDomElement> root(m_document->CreateElement(CVXString(name)));
    m_document->SetRoot(root.get());
    m_current = root;
}

CArchiveX::CArchiveX(bool loading) {
    Open(CVXString(u"VXDOM"), loading);
    if (loading)
        m_document->Reset();
    else
        MakeRoot(kMemoryRoot);
}

CArchiveX::CArchiveX(const CVXString &path, bool loading) : m_strFileName(path) {
    Open(CVXString(u"VXDOM"), loading);
    if (!loading) {
        MakeRoot(kFileRoot);
        return;
    }
    m_document->Reset();
    m_document->Load(path);
    m_current = CVXComWrap<IDomElement>(m_document->Root());
}

CArchiveX::CArchiveX(const CVXString &path) : m_strFileName(path), m_bUpdate(true) {
    Open(CVXString(u"VXDom"), false);
    m_document->SetOption(1);
    if (bExists(path, 0)) {
        m_document->Reset();
        m_document->Load(path);
        m_current = CVXComWrap<IDomElement>(m_document->Root());
    } else {
        MakeRoot(kFileRoot);
    }
}

CArchiveX::~CArchiveX() noexcept(false) {
    // Copies share the document and each writes it.
    if ((m_bLoading && !m_bUpdate) || m_strFileName.IsEmpty() || !m_document) return;
    if (m_document->Save(m_strFileName) || std::uncaught_exceptions() != 0) return;
    throw CVXComError(E_FAIL, __FILE__, __LINE__, m_document->LastError(), CVXString(u"VXDOM"));
}

bool CArchiveX::IsValid() const {
    return m_document->LastError().IsEmpty();
}

CVXString CArchiveX::XML() const {
    return m_document->XML();
}

void CArchiveX::XML(const CVXString &text) {
    m_document->LoadXML(text);
    m_current = CVXComWrap<IDomElement>(m_document->Root());
}

// ---- attributes ----

void CArchiveX::SetAttr(const CVXString &name, const VXVariant &value) {
    m_current->SetAttribute(name, value);
}

VXVariant CArchiveX::GetAttr(const CVXString &name) const {
    if (!m_current) return VXVariant();
    return m_current->GetAttribute(name);
}

bool CArchiveX::AttributeExists(const CVXString &name) const {
    return !GetAttr(name).IsEmpty();
}

void CArchiveX::SetText(std::u16string_view name, const char *utf8) {
    const CUtf8Name key(name);
    m_current->SetAttributeUtf8(key.c_str(), utf8);
}

const char *CArchiveX::GetText(std::u16string_view name) const {
    if (!m_current) return nullptr;
    const CUtf8Name key(name);
    return m_current->AttributeUtf8(key.c_str());
}

template <class T>
void CArchiveX::SaveInteger(std::u16string_view name, T value) {
    char text[kNumberText];
    IntegerText(static_cast<int64_t>(value), text);
    SetText(name, text);
}

// The variant's text of a bool.
void CArchiveX::SaveField(std::u16string_view name, bool value) {
    SetText(name, value ? "-1" : "0");
}
void CArchiveX::SaveField(std::u16string_view name, unsigned char value) {
    SaveInteger(name, value);
}
void CArchiveX::SaveField(std::u16string_view name, int16_t value) {
    SaveInteger(name, value);
}
void CArchiveX::SaveField(std::u16string_view name, uint16_t value) {
    SaveInteger(name, value);
}
void CArchiveX::SaveField(std::u16string_view name, int32_t value) {
    SaveInteger(name, value);
}
void CArchiveX::SaveField(std::u16string_view name, uint32_t value) {
    SaveInteger(name, value);
}
void CArchiveX::SaveField(std::u16string_view name, char16_t value) {
    SaveInteger(name, value);
}
void CArchiveX::SaveField(std::u16string_view name, int64_t value) {
    SaveInteger(name, value);
}
void CArchiveX::SaveField(std::u16string_view name, float value) {
    char text[kNumberText];
    GeneralText(value, kFloatDigits, text);
    SetText(name, text);
}
void CArchiveX::SaveField(std::u16string_view name, double value) {
    char text[kNumberText];
    GeneralText(value, kDoubleDigits, text);
    SetText(name, text);
}

void CArchiveX::Save(const CVXString &name, bool value) {
    SaveField(View(name), value);
}
void CArchiveX::Save(const CVXString &name, unsigned char value) {
    SaveField(View(name), value);
}
void CArchiveX::Save(const CVXString &name, int16_t value) {
    SaveField(View(name), value);
}
void CArchiveX::Save(const CVXString &name, uint16_t value) {
    SaveField(View(name), value);
}
void CArchiveX::Save(const CVXString &name, int32_t value) {
    SaveField(View(name), value);
}
void CArchiveX::Save(const CVXString &name, uint32_t value) {
    SaveField(View(name), value);
}
void CArchiveX::Save(const CVXString &name, char16_t value) {
    SaveField(View(name), value);
}
void CArchiveX::Save(const CVXString &name, int64_t value) {
    SaveField(View(name), value);
}
void CArchiveX::Save(const CVXString &name, float value) {
    SaveField(View(name), value);
}
void CArchiveX::Save(const CVXString &name, double value) {
    SaveField(View(name), value);
}

void CArchiveX::Save(const CVXString &name, const CVXString &value) {
    SetText(View(name), WideToUtf8(value, static_cast<size_t>(value.GetLength())).c_str());
}

void CArchiveX::Save(const CVXString &name, const GUID &value) {
    CVXString text;
    GUID2String(text, value);
    SetAttr(name, VXVariant(text));
}

// Each 5-bit channel shifted up by 3 into one of the three low bytes: the channel in the high
// bits of the 15 to the third byte, the one in the low bits to the first.
void CArchiveX::Save(const CVXString &name, const CRGB15Base &value) {
    const uint32_t v = value.m_nRGB;
    const uint32_t low = (v & 0x1F) << 3, mid = ((v >> 5) & 0x1F) << 3,
                   high = ((v >> 10) & 0x1F) << 3;
    SetAttr(name, VXVariant(static_cast<uint32_t>(low | (mid << 8) | (high << 16))));
}

template <class T>
void CArchiveX::LoadInteger(std::u16string_view name, T &value, int64_t lo, int64_t hi) {
    int64_t n;
    const char *text = GetText(name);
    if (!text || !PlainInteger(text, n)) n = GetAttr(Named(name)).ToInt64();
    if (n < lo || n > hi) throw CVXComError(DISP_E_OVERFLOW, __FILE__, __LINE__);
    value = static_cast<T>(n);
}

// What bString2Number gives for the text, or `failed` when it is no number.
template <class T>
void CArchiveX::LoadFloating(std::u16string_view name, T &value, T failed) {
    double d;
    const char *text = GetText(name);
    if (text && PlainDouble(text, d)) {
        value = static_cast<T>(d);
        return;
    }
    T general;
    value = bString2Number(&general, GetAttr(Named(name)).ToString()) ? general : failed;
}

void CArchiveX::LoadField(std::u16string_view name, bool &value) {
    int64_t n;
    const char *text = GetText(name);
    value = text && PlainInteger(text, n) ? n != 0 : GetAttr(Named(name)).ToBool();
}
void CArchiveX::LoadField(std::u16string_view name, unsigned char &value) {
    LoadInteger(name, value, 0, UINT8_MAX);
}
void CArchiveX::LoadField(std::u16string_view name, int16_t &value) {
    LoadInteger(name, value, INT16_MIN, INT16_MAX);
}
void CArchiveX::LoadField(std::u16string_view name, uint16_t &value) {
    LoadInteger(name, value, 0, UINT16_MAX);
}
void CArchiveX::LoadField(std::u16string_view name, int32_t &value) {
    LoadInteger(name, value, INT32_MIN, INT32_MAX);
}
void CArchiveX::LoadField(std::u16string_view name, uint32_t &value) {
    LoadInteger(name, value, 0, UINT32_MAX);
}
void CArchiveX::LoadField(std::u16string_view name, char16_t &value) {
    LoadInteger(name, value, 0, UINT16_MAX);
}
void CArchiveX::LoadField(std::u16string_view name, int64_t &value) {
    LoadInteger(name, value, INT64_MIN, INT64_MAX);
}
void CArchiveX::LoadField(std::u16string_view name, float &value) {
    LoadFloating(name, value, kFloatNaN);
}
void CArchiveX::LoadField(std::u16string_view name, double &value) {
    LoadFloating(name, value, dNaN);
}

void CArchiveX::Load(const CVXString &name, bool &value) {
    LoadField(View(name), value);
}
void CArchiveX::Load(const CVXString &name, unsigned char &value) {
    LoadField(View(name), value);
}
void CArchiveX::Load(const CVXString &name, int16_t &value) {
    LoadField(View(name), value);
}
void CArchiveX::Load(const CVXString &name, uint16_t &value) {
    LoadField(View(name), value);
}
void CArchiveX::Load(const CVXString &name, int32_t &value) {
    LoadField(View(name), value);
}
void CArchiveX::Load(const CVXString &name, uint32_t &value) {
    LoadField(View(name), value);
}
void CArchiveX::Load(const CVXString &name, char16_t &value) {
    LoadField(View(name), value);
}
void CArchiveX::Load(const CVXString &name, int64_t &value) {
    LoadField(View(name), value);
}
void CArchiveX::Load(const CVXString &name, float &value) {
    LoadField(View(name), value);
}
void CArchiveX::Load(const CVXString &name, double &value) {
    LoadField(View(name), value);
}

void CArchiveX::Load(const CVXString &name, CVXString &value) {
    const char *text = GetText(View(name));
    value = text ? CVXString(Utf8ToWide(text, std::strlen(text)).c_str()) : CVXString();
}

void CArchiveX::Load(const CVXString &name, GUID &value) {
    const CVXString text = GetAttr(name).ToString();
    if (!text.IsEmpty()) String2GUID(value, text);
}

void CArchiveX::Load(const CVXString &name, CRGB15Base &value) {
    const uint32_t v = GetAttr(name).ToUInt64() & 0xFFFFFFu;
    const uint32_t low = (v >> 3) & 0x1F, mid = (v >> 11) & 0x1F, high = (v >> 19) & 0x1F;
    value.m_nRGB = static_cast<uint16_t>(low | (mid << 5) | (high << 10));
}

// ---- dates and variants ----

void CArchiveX::Save(const CVXString &name, const CVXODateTime &value) {
    SYSTEMTIME st{};
    value.GetAsSystemTime(st);
    CArchiveXMLChild child(*this, name);
    const uint16_t fields[] = {st.wDay,    st.wMonth,  st.wYear,        st.wHour,
                               st.wMinute, st.wSecond, st.wMilliseconds};
    for (int i = 0; i < 7; ++i)
        Save(CVXString(kDateAttrs[i]), fields[i]);
}

void CArchiveX::Load(const CVXString &name, CVXODateTime &value) {
    SYSTEMTIME st{};
    {
        CurrentGuard guard(*this);
        if (!SeekElement(name)) return;
        uint16_t *fields[] = {&st.wDay,    &st.wMonth,  &st.wYear,        &st.wHour,
                              &st.wMinute, &st.wSecond, &st.wMilliseconds};
        for (int i = 0; i < 7; ++i)
            Load(CVXString(kDateAttrs[i]), *fields[i]);
    }
    value.FromSystemTime(st);
}

void CArchiveX::SaveDate(const CVXString &name, double oleDate) {
    CVXODateTime date;
    date.m_dt = oleDate;
    date.SetStatus(COleDateTime::valid);
    Save(name, date);
}

bool CArchiveX::LoadDate(const CVXString &name, double &oleDate) {
    CVXODateTime date;
    date.SetStatus(COleDateTime::null);
    Load(name, date);
    if (date.GetStatus() != COleDateTime::valid) return false;
    oleDate = date.m_dt;
    return true;
}

void CArchiveX::Save(const CVXString &name, const VXVariant &value) {
    SetAttr(name + u"_VXType", VXVariant(CVXString(VariantTypeName(value.Type()))));
    if (value.IsDate())
        SaveDate(name, value.ToDate());
    else
        SetAttr(name, value);
}

void CArchiveX::Load(const CVXString &name, VXVariant &value) {
    int type;
    const CVXString typeName = GetAttr(name + u"_VXType").ToString();
    if (typeName.IsEmpty()) {
        // Files from before the type names hold the number under "_Type".
        const VXVariant old = GetAttr(name + u"_Type");
        if (old.IsEmpty() || old.ToString().IsEmpty()) return;
        type = old.ToInt32();
    } else {
        type = VariantTypeFromName(typeName);
    }
    if (IsDateType(type)) {
        double d;
        if (LoadDate(name, d)) value = VXVariant::FromDate(d, static_cast<DataTypeEnum>(type));
        return;
    }
    VXVariant v = GetAttr(name);
    if (!v.IsEmpty()) v.ChangeType(static_cast<DataTypeEnum>(type));
    value = v;
}

// ---- objects ----

CVXString CArchiveX::ToName(const CVXString &name, int n) {
    CVXString s;
    s.Format(u"%s%d", name, n);
    return s;
}

CVXComWrap<IDomElement> CArchiveX::AppendChild(const CVXString &name) {
    CVXComWrap<IDomElement> element(m_document->CreateElement(name));
    return CVXComWrap<IDomElement>(m_current->AppendChild(element.get()));
}

bool CArchiveX::SeekElement(const CVXString &name) {
    if (!m_current) return false;
    CVXComWrap<IDomNodeList> children(m_current->Children());
    const long count = children->Count();
    for (long i = 0; i < count; ++i) {
        CVXComWrap<IDomElement> child(children->Item(i));
        if (child && child->Name().Compare(name) == 0) {
            m_current = child;
            return true;
        }
    }
    return false;
}

void CArchiveX::Save(const CVXString &name, const ISerObject *object) {
    auto *obj = const_cast<ISerObject *>(object);
    CurrentGuard guard(*this);
    m_current = AppendChild(name);
    if (const CRuntimeCreator *creator = obj->RuntimeCreator()) {
        Save(CVXString(kTypeAttr), creator->ClassName());
        Save(CVXString(kSchemaAttr), creator->Schema());
    }
    obj->SerializeX(*this);
}

void CArchiveX::Save(const CVXString &name, ISerObject &object) {
    SerializeIt(name, &object);
}

void CArchiveX::Load(const CVXString &name, ISerObject &object) {
    SerializeIt(name, &object);
}

void CArchiveX::Save(const CVXString &name, CSerObject &object, uint32_t n) {
    SerializeIt(ToName(name, static_cast<int>(n)), &object);
}

void CArchiveX::Load(const CVXString &name, CSerObject &object, uint32_t n) {
    SerializeIt(ToName(name, static_cast<int>(n)), &object);
}

void CArchiveX::SerializeIt(const CVXString &name, ISerObject *object) {
    CurrentGuard guard(*this);
    if (m_bLoading) {
        if (!SeekElement(name)) return;
    } else {
        m_current = AppendChild(name);
    }
    object->SerializeX(*this);
}

// Counts the nesting of objects being read; the binary archive's limit holds here too, so that a
// hostile document cannot exhaust the stack.
class CArchiveX::DepthGuard {
public:
    explicit DepthGuard(int &depth) : m_depth(depth) {
        if (m_depth >= kMaxDepth)
            throw CVXComError(E_FAIL, __FILE__, __LINE__,
                              CVXString(u"objects nested too deeply in the XML archive"),
                              CVXString(u"VXCOM"));
        ++m_depth;
    }
    ~DepthGuard() { --m_depth; }
    DepthGuard(const DepthGuard &) = delete;
    DepthGuard &operator=(const DepthGuard &) = delete;

private:
    int &m_depth;
};

ISerObject *CArchiveX::ReadCurrent() {
    CVXString className;
    Load(CVXString(kTypeAttr), className);
    uint32_t schema = 0;
    Load(CVXString(kSchemaAttr), schema);
    m_nSchema = static_cast<int32_t>(schema);
    const CRuntimeCreator *creator = CRuntimeCreator::RuntimeCreator(className);
    if (!creator) return nullptr; // an unknown class: the element is skipped
    const DepthGuard depth(m_nDepth);
    std::unique_ptr<ISerObject> object(creator->CreateObject());
    if (!object) return nullptr;
    NoteLoadedObject(object.get());
    RunNestedLoad(m_nDepth, [&] { object->SerializeX(*this); });
    return object.release();
}

void CArchiveX::Load(const CVXString &name, ISerObject *&object) {
    CurrentGuard guard(*this);
    if (!SeekElement(name)) return;
    object = ReadCurrent();
}

void CArchiveX::Load(const CVXString &name, ISerObject *&object, CVXComWrap<IDomElement> &cursor) {
    object = nullptr;
    CurrentGuard guard(*this);
    if (!cursor) {
        if (!SeekElement(name)) return;
    } else {
        // Walking off the end uses a null element: the count beside the run must be right.
        CVXComWrap<IDomElement> next(cursor->NextSibling());
        while (next->Name().Compare(name) != 0)
            next = CVXComWrap<IDomElement>(next->NextSibling());
        m_current = next;
    }
    cursor = m_current;
    object = ReadCurrent();
}

// ---- child scope ----

CArchiveXMLChild::CArchiveXMLChild(CArchiveX &archive, const CVXString &name)
    : m_saved(archive.GetCurrent()), m_archive(archive) {
    if (archive.IsLoading())
        archive.SeekElement(name);
    else
        archive.SetCurrent(archive.AppendChild(name));
}

CArchiveXMLChild::~CArchiveXMLChild() {
    m_archive.SetCurrent(m_saved);
}

} // namespace vx

namespace vx {

// The named form of every serialisable object: its fields as the element `name`.
void ISerObject::SerializeX(const CVXString &name, CArchiveX &ar) {
    ar.SerializeIt(name, this);
}

} // namespace vx
