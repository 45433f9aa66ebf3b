#include "foundation/VXVariant.h"

#include "foundation/NumberText.h"
#include "platform/Errors.h"

#include <cmath>
#include <limits>

namespace vx {

namespace {

[[noreturn]] void Fail(HRESULT hr, const char *file, int line) {
    throw CVXComError(hr, file, line, CVXString(), CVXString(u"VXVariant"));
}

bool IsDateType(DataTypeEnum t) {
    return t == adDate || t == adDBDate || t == adDBTime || t == adDBTimeStamp;
}

bool IsTextType(DataTypeEnum t) {
    switch (t) {
    case adBSTR:
    case adChar:
    case adWChar:
    case adVarChar:
    case adLongVarChar:
    case adVarWChar:
    case adLongVarWChar:
    case adGUID:
        return true;
    default:
        return false;
    }
}

bool IsFloatType(DataTypeEnum t) {
    return t == adSingle || t == adDouble || t == adCurrency || t == adDecimal || t == adNumeric ||
           IsDateType(t);
}

// Text to number: plain decimal (what the archive's files hold), "True" and "False".
double TextToDouble(const CVXString &text) {
    double d;
    if (bString2Number(&d, text)) return d;
    CVXString t(text);
    t.Trim();
    if (t.CompareNoCase(u"true") == 0) return -1.0;
    if (t.CompareNoCase(u"false") == 0) return 0.0;
    Fail(DISP_E_TYPEMISMATCH, __FILE__, __LINE__);
}

// A double as an integer of the range [lo, hi], rounded half away from zero.
int64_t RoundedInRange(double d, double lo, double hi) {
    if (std::isnan(d)) Fail(DISP_E_TYPEMISMATCH, __FILE__, __LINE__);
    const double r = std::round(d);
    if (r < lo || r > hi) Fail(DISP_E_OVERFLOW, __FILE__, __LINE__);
    return static_cast<int64_t>(r);
}

} // namespace

VXVariant VXVariant::FromDate(double oleDate, DataTypeEnum type) {
    VXVariant v;
    v.m_type = IsDateType(type) ? type : adDate;
    v.m_d = oleDate;
    return v;
}

bool VXVariant::IsDate() const {
    return IsDateType(m_type);
}

bool VXVariant::IsText() const {
    return IsTextType(m_type);
}

double VXVariant::ToDouble() const {
    if (m_type == adEmpty) return 0.0;
    if (IsTextType(m_type)) return TextToDouble(m_s);
    if (IsFloatType(m_type)) return m_d;
    if (m_type == adBoolean) return m_i ? -1.0 : 0.0;
    if (m_type == adUnsignedBigInt) return static_cast<double>(static_cast<uint64_t>(m_i));
    if (m_type == adBinary || m_type == adVarBinary || m_type == adLongVarBinary)
        Fail(DISP_E_TYPEMISMATCH, __FILE__, __LINE__);
    return static_cast<double>(m_i);
}

int64_t VXVariant::ToInt64() const {
    if (m_type == adEmpty) return 0;
    if (m_type == adBoolean) return m_i ? -1 : 0;
    if (m_type == adBigInt || (!IsFloatType(m_type) && !IsTextType(m_type) &&
                               m_type != adUnsignedBigInt && m_type != adBinary))
        return m_i;
    if (m_type == adUnsignedBigInt) {
        if (static_cast<uint64_t>(m_i) > static_cast<uint64_t>(INT64_MAX))
            Fail(DISP_E_OVERFLOW, __FILE__, __LINE__);
        return m_i;
    }
    if (IsTextType(m_type)) {
        int64_t v;
        if (bString2Number(&v, m_s)) return v;
    }
    return RoundedInRange(ToDouble(), -9223372036854775808.0, 9223372036854774784.0);
}

uint64_t VXVariant::ToUInt64() const {
    if (m_type == adUnsignedBigInt) return static_cast<uint64_t>(m_i);
    if (IsTextType(m_type)) {
        uint64_t v;
        CVXString t(m_s);
        t.Trim();
        if (!t.IsEmpty() && t.GetAtU(0) != u'-' && bString2Number(&v, t)) return v;
    }
    const int64_t v = ToInt64();
    if (v < 0) Fail(DISP_E_OVERFLOW, __FILE__, __LINE__);
    return static_cast<uint64_t>(v);
}

int32_t VXVariant::ToInt32() const {
    const int64_t v = ToInt64();
    if (v < INT32_MIN || v > INT32_MAX) Fail(DISP_E_OVERFLOW, __FILE__, __LINE__);
    return static_cast<int32_t>(v);
}

bool VXVariant::ToBool() const {
    return ToDouble() != 0.0;
}

double VXVariant::ToDate() const {
    if (IsDateType(m_type)) return m_d;
    return ToDouble();
}

CVXString VXVariant::ToString() const {
    CVXString s;
    switch (m_type) {
    case adEmpty:
        return s;
    case adBoolean:
        return CVXString(m_i ? u"-1" : u"0");
    case adSingle:
        s.Format(u"%.7g", m_d);
        return s;
    case adDouble:
    case adCurrency:
    case adDecimal:
    case adNumeric:
        s.Format(u"%.15g", m_d);
        return s;
    case adUnsignedBigInt:
        s.Format(u"%I64u", static_cast<uint64_t>(m_i));
        return s;
    default:
        break;
    }
    if (IsTextType(m_type)) return m_s;
    if (IsDateType(m_type)) {
        s.Format(u"%.15g", m_d);
        return s;
    }
    if (m_type == adBinary || m_type == adVarBinary || m_type == adLongVarBinary)
        Fail(DISP_E_TYPEMISMATCH, __FILE__, __LINE__);
    s.Format(u"%I64d", m_i);
    return s;
}

void VXVariant::ChangeType(DataTypeEnum type) {
    if (type == m_type) return;
    VXVariant r;
    r.m_type = type;
    switch (type) {
    case adEmpty:
        break;
    case adBoolean:
        r.m_i = ToBool() ? 1 : 0;
        break;
    case adTinyInt:
        r.m_i = RoundedInRange(ToDouble(), -128, 127);
        break;
    case adUnsignedTinyInt:
        r.m_i = RoundedInRange(ToDouble(), 0, 255);
        break;
    case adSmallInt:
        r.m_i = RoundedInRange(ToDouble(), -32768, 32767);
        break;
    case adUnsignedSmallInt:
        r.m_i = RoundedInRange(ToDouble(), 0, 65535);
        break;
    case adInteger:
        r.m_i = ToInt32();
        break;
    case adUnsignedInt:
        r.m_i = RoundedInRange(ToDouble(), 0, 4294967295.0);
        break;
    case adBigInt:
        r.m_i = ToInt64();
        break;
    case adUnsignedBigInt:
        r.m_i = static_cast<int64_t>(ToUInt64());
        break;
    case adSingle:
        r.m_d = static_cast<float>(ToDouble());
        break;
    default:
        if (IsTextType(type))
            r.m_s = ToString();
        else if (IsFloatType(type))
            r.m_d = ToDate();
        else
            Fail(DISP_E_TYPEMISMATCH, __FILE__, __LINE__);
    }
    *this = r;
}

bool operator==(const VXVariant &a, const VXVariant &b) {
    if (a.m_type != b.m_type) return false;
    if (IsTextType(a.m_type)) return a.m_s == b.m_s;
    if (IsFloatType(a.m_type)) return a.m_d == b.m_d;
    return a.m_i == b.m_i;
}

// The string's constructor and assignment from a variant: empty gives the empty string,
// every other kind its text.
CVXString::CVXString(const VXVariant &value) : m_pData(nullptr) {
    *this = value.ToString();
}

CVXString &CVXString::operator=(const VXVariant &value) {
    return *this = value.ToString();
}

} // namespace vx
