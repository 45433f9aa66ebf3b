// VXVariant: a tagged value over the data type numbers of the XML archive's type table
// (adInteger 3, adDouble 5, adBSTR 8, adDate 7, ...), converting to and from number, text and
// date. A conversion that cannot be made raises CVXComError (DISP_E_TYPEMISMATCH, or
// DISP_E_OVERFLOW for a number out of the target's range).
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"

#include <cstdint>

namespace vx VX_API {

enum DataTypeEnum : int {
    adEmpty = 0,
    adSmallInt = 2,
    adInteger = 3,
    adSingle = 4,
    adDouble = 5,
    adCurrency = 6,
    adDate = 7,
    adBSTR = 8,
    adBoolean = 11,
    adDecimal = 14,
    adTinyInt = 16,
    adUnsignedTinyInt = 17,
    adUnsignedSmallInt = 18,
    adUnsignedInt = 19,
    adBigInt = 20,
    adUnsignedBigInt = 21,
    adGUID = 72,
    adBinary = 128,
    adChar = 129,
    adWChar = 130,
    adNumeric = 131,
    adDBDate = 133,
    adDBTime = 134,
    adDBTimeStamp = 135,
    adVarChar = 200,
    adLongVarChar = 201,
    adVarWChar = 202,
    adLongVarWChar = 203,
    adVarBinary = 204,
    adLongVarBinary = 205
};

class VXVariant {
public:
    VXVariant() = default;
    VXVariant(bool v) : m_type(adBoolean) { m_i = v ? 1 : 0; }
    VXVariant(unsigned char v) : m_type(adUnsignedTinyInt) { m_i = v; }
    VXVariant(int16_t v) : m_type(adSmallInt) { m_i = v; }
    VXVariant(uint16_t v) : m_type(adUnsignedSmallInt) { m_i = v; }
    VXVariant(char16_t v) : m_type(adUnsignedSmallInt) { m_i = v; }
    VXVariant(int32_t v) : m_type(adInteger) { m_i = v; }
    VXVariant(uint32_t v) : m_type(adUnsignedInt) { m_i = v; }
    VXVariant(int64_t v) : m_type(adBigInt) { m_i = v; }
    VXVariant(uint64_t v) : m_type(adUnsignedBigInt) { m_i = static_cast<int64_t>(v); }
    VXVariant(float v) : m_type(adSingle) { m_d = v; }
    VXVariant(double v) : m_type(adDouble) { m_d = v; }
    VXVariant(const CVXString &v) : m_type(adBSTR), m_s(v) {}
    VXVariant(const char16_t *v) : m_type(adBSTR), m_s(v) {}
    // A date: the OLE date number (days since 1899-12-30) of the given date type.
    static VXVariant FromDate(double oleDate, DataTypeEnum type = adDate);

    DataTypeEnum Type() const { return m_type; }
    bool IsEmpty() const { return m_type == adEmpty; }
    bool IsDate() const;
    bool IsText() const;

    // Conversions; each raises CVXComError when the value cannot be had.
    double ToDouble() const;
    int64_t ToInt64() const;
    uint64_t ToUInt64() const;
    int32_t ToInt32() const;
    bool ToBool() const;
    CVXString ToString() const;
    // The OLE date number.
    double ToDate() const;

    // Converts to another type in place, raising CVXComError when it cannot.
    void ChangeType(DataTypeEnum type);

    friend bool operator==(const VXVariant &a, const VXVariant &b);

private:
    DataTypeEnum m_type = adEmpty;
    union {
        int64_t m_i = 0;
        double m_d;
    };
    CVXString m_s;
};

} // namespace VX_API
