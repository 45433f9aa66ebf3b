#include "platform/Guid.h"

#include <array>
#include <cstddef>
#include <random>

namespace vx {

namespace {

// The registry form: "{" 8 "-" 4 "-" 4 "-" 4 "-" 12 "}", 38 units.
constexpr int kGuidTextLength = 38;
constexpr std::array<int, 4> kDashPositions = {9, 14, 19, 24};

// The 16 bytes of a GUID in text order: Data1, Data2, Data3 big-endian, then Data4.
std::array<uint8_t, 16> TextOrderBytes(const GUID &g) {
    std::array<uint8_t, 16> b{};
    for (int i = 0; i < 4; ++i)
        b[i] = static_cast<uint8_t>(g.Data1 >> (24 - 8 * i));
    b[4] = static_cast<uint8_t>(g.Data2 >> 8);
    b[5] = static_cast<uint8_t>(g.Data2);
    b[6] = static_cast<uint8_t>(g.Data3 >> 8);
    b[7] = static_cast<uint8_t>(g.Data3);
    for (int i = 0; i < 8; ++i)
        b[8 + i] = g.Data4[i];
    return b;
}

GUID FromTextOrderBytes(const std::array<uint8_t, 16> &b) {
    GUID g;
    g.Data1 = uint32_t(b[0]) << 24 | uint32_t(b[1]) << 16 | uint32_t(b[2]) << 8 | b[3];
    g.Data2 = static_cast<uint16_t>(b[4] << 8 | b[5]);
    g.Data3 = static_cast<uint16_t>(b[6] << 8 | b[7]);
    for (int i = 0; i < 8; ++i)
        g.Data4[i] = b[8 + i];
    return g;
}

int HexValue(char16_t ch) {
    if (ch >= u'0' && ch <= u'9') return ch - u'0';
    if (ch >= u'A' && ch <= u'F') return ch - u'A' + 10;
    if (ch >= u'a' && ch <= u'f') return ch - u'a' + 10;
    return -1;
}

bool IsDashPosition(int i) {
    for (int pos : kDashPositions)
        if (i == pos) return true;
    return false;
}

} // namespace

HRESULT CoCreateGuid(GUID *pGuid) {
    if (!pGuid) return E_POINTER;
    std::random_device device;
    std::array<uint8_t, 16> b{};
    for (size_t i = 0; i < b.size(); i += 4) {
        const uint32_t r = device();
        for (size_t k = 0; k < 4; ++k)
            b[i + k] = static_cast<uint8_t>(r >> (8 * k));
    }
    b[6] = static_cast<uint8_t>((b[6] & 0x0F) | 0x40); // version 4: random
    b[8] = static_cast<uint8_t>((b[8] & 0x3F) | 0x80); // variant 1 (RFC 4122)
    *pGuid = FromTextOrderBytes(b);
    return S_OK;
}

CVXString StringFromCLSID(const GUID &guid) {
    static constexpr char16_t kHex[] = u"0123456789ABCDEF";
    const std::array<uint8_t, 16> b = TextOrderBytes(guid);
    char16_t text[kGuidTextLength + 1];
    int pos = 0;
    text[pos++] = u'{';
    for (size_t i = 0; i < b.size(); ++i) {
        if (IsDashPosition(pos)) text[pos++] = u'-';
        text[pos++] = kHex[b[i] >> 4];
        text[pos++] = kHex[b[i] & 0x0F];
    }
    text[pos++] = u'}';
    text[pos] = 0;
    return CVXString(text);
}

HRESULT CLSIDFromString(const char16_t *text, GUID *pGuid) {
    if (!text || !pGuid) return E_POINTER;
    if (text[0] != u'{') return CO_E_CLASSSTRING;
    std::array<uint8_t, 16> b{};
    size_t nDigits = 0;
    int i = 1;
    for (; i < kGuidTextLength - 1; ++i) {
        if (IsDashPosition(i)) {
            if (text[i] != u'-') return CO_E_CLASSSTRING;
            continue;
        }
        const int v = HexValue(text[i]); // also stops at a terminator: 0 is no hex digit
        if (v < 0) return CO_E_CLASSSTRING;
        b[nDigits / 2] = static_cast<uint8_t>(b[nDigits / 2] << 4 | v);
        ++nDigits;
    }
    if (text[i] != u'}' || text[i + 1] != 0) return CO_E_CLASSSTRING;
    *pGuid = FromTextOrderBytes(b);
    return S_OK;
}

} // namespace vx
