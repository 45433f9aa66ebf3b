#include "platform/Object.h"

#include "platform/VXString.h"

#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <mutex>
#include <string_view>
#include <typeindex>
#include <typeinfo>
#include <unordered_map>

namespace vx {

namespace {

// The demangled name of a type, or the mangled one when the run-time cannot demangle it.
std::string Demangle(const char *mangled) {
    int status = 0;
    std::unique_ptr<char, void (*)(void *)> demangled(
        abi::__cxa_demangle(mangled, nullptr, nullptr, &status), std::free);
    return status == 0 && demangled ? std::string(demangled.get()) : std::string(mangled);
}

// A character that ends a qualified name when walking back from a "::".
bool IsNameBoundary(char ch) {
    return ch == '<' || ch == ',' || ch == ' ' || ch == '(' || ch == '*' || ch == '&';
}

// Removes every qualifier ("vx::", "(anonymous namespace)::", "Outer::") from a demangled name,
// also inside template arguments.
std::string StripQualifiers(std::string_view name) {
    constexpr std::string_view anonymous = "(anonymous namespace)";
    std::string out;
    out.reserve(name.size());
    for (size_t i = 0; i < name.size(); ++i) {
        if (name.compare(i, 2, "::") != 0) {
            out += name[i];
            continue;
        }
        if (out.size() >= anonymous.size() &&
            std::string_view(out).substr(out.size() - anonymous.size()) == anonymous)
            out.resize(out.size() - anonymous.size());
        while (!out.empty() && !IsNameBoundary(out.back()))
            out.pop_back();
        ++i; // the second ':'
    }
    return out;
}

} // namespace

std::string BareClassName(const std::type_info &type) {
    return StripQualifiers(Demangle(type.name()));
}

const char *CObject::GetRuntimeClassName() const {
    // Names are computed once per type and kept for the life of the process, so the pointer
    // handed out stays valid.
    static std::mutex lock;
    static std::unordered_map<std::type_index, std::string> names;
    const std::type_info &type = typeid(*this);
    std::lock_guard<std::mutex> guard(lock);
    auto it = names.find(type);
    if (it == names.end()) it = names.emplace(type, BareClassName(type)).first;
    return it->second.c_str();
}

void CObject::Dump(CDumpContext &dc) const {
    dc << "a " << GetRuntimeClassName() << " at " << static_cast<const void *>(this) << "\n";
}

CDumpContext &CDumpContext::operator<<(const char *text) {
    m_out << (text ? text : "(null)");
    return *this;
}

CDumpContext &CDumpContext::operator<<(const CVXString &text) {
    m_out << static_cast<const char *>(text);
    return *this;
}

CDumpContext &CDumpContext::operator<<(const std::string &text) {
    m_out << text;
    return *this;
}

CDumpContext &CDumpContext::operator<<(int value) {
    m_out << value;
    return *this;
}

CDumpContext &CDumpContext::operator<<(unsigned int value) {
    m_out << value;
    return *this;
}

CDumpContext &CDumpContext::operator<<(long long value) {
    m_out << value;
    return *this;
}

CDumpContext &CDumpContext::operator<<(unsigned long long value) {
    m_out << value;
    return *this;
}

CDumpContext &CDumpContext::operator<<(double value) {
    m_out << value;
    return *this;
}

CDumpContext &CDumpContext::operator<<(const void *pointer) {
    m_out << pointer;
    return *this;
}

} // namespace vx
