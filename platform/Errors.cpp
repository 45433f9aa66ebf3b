#include "platform/Errors.h"

#include <cstdio>

namespace vx {

namespace {
const char *KnownText(HRESULT hr) {
    switch (hr) {
    case E_OUTOFMEMORY:
        return "Not enough memory";
    case E_POINTER:
        return "Invalid pointer";
    case E_INVALIDARG:
        return "Invalid argument";
    case E_FAIL:
        return "Unspecified error";
    case DISP_E_TYPEMISMATCH:
        return "Type mismatch";
    case DISP_E_OVERFLOW:
        return "Out of present range";
    default:
        return nullptr;
    }
}
} // namespace

CVXComError::CVXComError(HRESULT hr, const char *file, int line, const CVXString &description,
                         const CVXString &source)
    : m_hr(hr), m_szDescription(description), m_szSource(source), m_szFile(file), m_nLine(line) {
    char head[64];
    std::snprintf(head, sizeof head, "HRESULT 0x%08X", static_cast<unsigned>(hr));
    m_what = head;
    const CVXString text = ErrorMessage();
    m_what += ": ";
    m_what += static_cast<const char *>(text);
    if (!m_szSource.IsEmpty()) {
        m_what += " (";
        m_what += static_cast<const char *>(m_szSource);
        m_what += ")";
    }
    if (file) {
        m_what += " at ";
        m_what += file;
        m_what += ':';
        m_what += std::to_string(line);
    }
}

CVXString CVXComError::ErrorMessage() const {
    if (!m_szDescription.IsEmpty()) return m_szDescription;
    if (const char *known = KnownText(m_hr)) return CVXString(known);
    char text[64];
    std::snprintf(text, sizeof text, "Unknown error 0x%08X", static_cast<unsigned>(m_hr));
    return CVXString(text);
}

} // namespace vx
