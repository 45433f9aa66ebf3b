// The root object of the platform layer and its diagnostic text stream.
#pragma once

#include "platform/VXExport.h"

#include <ostream>
#include <string>
#include <typeinfo>

namespace vx VX_API {

class CVXString;

// Diagnostic output: a thin wrapper over a text stream. 8-bit text is written as it stands,
// CVXString through its 8-bit view.
class CDumpContext {
public:
    explicit CDumpContext(std::ostream &out) : m_out(out) {}
    CDumpContext &operator<<(const char *text);
    CDumpContext &operator<<(const CVXString &text);
    CDumpContext &operator<<(const std::string &text);
    CDumpContext &operator<<(int value);
    CDumpContext &operator<<(unsigned int value);
    CDumpContext &operator<<(long long value);
    CDumpContext &operator<<(unsigned long long value);
    CDumpContext &operator<<(double value);
    CDumpContext &operator<<(const void *pointer);
    std::ostream &stream() { return m_out; }

private:
    std::ostream &m_out;
};

// Root of the platform's object classes: a run-time class name and a diagnostic dump.
class CObject {
public:
    virtual ~CObject() = default;
    // The bare class name of the most derived class ("CObList", "CVXCoord").
    virtual const char *GetRuntimeClassName() const;
    virtual void Dump(CDumpContext &dc) const;
};

// The bare class name of a type: the demangled name with namespaces and template arguments'
// namespaces removed ("vx::CVXCoord" gives "CVXCoord").
std::string BareClassName(const std::type_info &type);

} // namespace VX_API
