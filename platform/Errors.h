// The exceptions of the platform layer: the COM-style failure with an HRESULT, and the
// invalid-argument failure that stands for an index or argument the caller got wrong.
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"
#include "platform/VXTypes.h"

#include <stdexcept>
#include <string>

namespace vx VX_API {

// A failure of a COM-facing operation: an HRESULT, a description, the source component, and
// the source file and line where it was raised.
class CVXComError : public std::exception {
public:
    explicit CVXComError(HRESULT hr, const char *file = nullptr, int line = 0,
                         const CVXString &description = CVXString(),
                         const CVXString &source = CVXString());

    HRESULT Error() const noexcept { return m_hr; }
    const CVXString &Description() const noexcept { return m_szDescription; }
    const CVXString &Source() const noexcept { return m_szSource; }
    const char *File() const noexcept { return m_szFile; }
    int Line() const noexcept { return m_nLine; }
    // The text of the error: the description, or a generic text naming the HRESULT.
    CVXString ErrorMessage() const;
    const char *what() const noexcept override { return m_what.c_str(); }

private:
    HRESULT m_hr;
    CVXString m_szDescription;
    CVXString m_szSource;
    const char *m_szFile;
    int m_nLine;
    std::string m_what;
};

// An index out of range or an argument that breaks an operation's contract.
class CInvalidArgException : public std::invalid_argument {
public:
    explicit CInvalidArgException(const std::string &what) : std::invalid_argument(what) {}
};

} // namespace VX_API
