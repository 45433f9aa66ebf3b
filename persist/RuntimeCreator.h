// The creator registry: one static CRuntimeCreator per serialisable class, holding the class
// name as archives hold it, a function that makes a default object, and the schema number.
//
// Creators register themselves during static initialisation. Until the host hands over a tree
// (SetRTCTree) they wait in a list; look-ups work on either. Names are the bare class names
// ("CVXCoord"), derived from the type information without namespaces: they are file content,
// so renaming a class breaks old files.
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"

#include <cstdint>
#include <typeinfo>

namespace vx VX_API {

class ISerObject;
class CArchiveB;
class CRTCTree;

// The high bit of a schema: the class is versionable, and an archive may hold another version.
inline constexpr uint32_t VERSIONABLE_SCHEMA = 0x80000000u;

class CRuntimeCreator {
public:
    using CreatorFunction = ISerObject *(*)();

    // Fills in the fields and registers the creator.
    CRuntimeCreator(const std::type_info *type, CreatorFunction creator, uint32_t schema);
    // A probe for look-ups: a name and no function. Not registered.
    explicit CRuntimeCreator(const CVXString &name);
    CRuntimeCreator(const CRuntimeCreator &) = delete;
    CRuntimeCreator &operator=(const CRuntimeCreator &) = delete;

    const CVXString &ClassName() const { return m_szClassName; }
    uint32_t Schema() const { return m_nSchema; }
    // A new default object of the class; null for a probe.
    ISerObject *CreateObject() const { return m_pfnCreate ? m_pfnCreate() : nullptr; }

    // The creator registered under `name`, or null.
    static const CRuntimeCreator *RuntimeCreator(const CVXString &name);

    // The stream form: u16 the low 16 bits of the schema, u16 the name's length, the name's
    // 8-bit form without terminator.
    void Store(CArchiveB &ar) const;
    // Reads a class definition; null (with `schema` set) for a name of 64 characters or more,
    // a short read, or an unknown class. A null `schema` gives null at once.
    static const CRuntimeCreator *Load(CArchiveB &ar, unsigned int *schema);

private:
    CVXString m_szClassName;
    CreatorFunction m_pfnCreate;
    uint32_t m_nSchema;
};

// Hands the host's tree to the registry: the waiting creators move into it, in order, and later
// ones go there directly. The tree stays the host's.
void SetRTCTree(CRTCTree *tree);

// Makes sure every class of the library has registered: under static linking the linker keeps
// only object files something refers to, and a class that is only ever read from archives
// would otherwise be missing. The look-up calls it once by itself.
void RegisterLibraryClasses();

} // namespace VX_API

// In the class body of a serialisable class: the creator access and the virtual look-up.
#define VX_DECLARE_SERIAL(ClassName)                                                               \
public:                                                                                            \
    static const ::vx::CRuntimeCreator *RTC();                                                     \
    static ::vx::ISerObject *CreateThisObject();                                                   \
    const ::vx::CRuntimeCreator *RuntimeCreator() const override;

// In the class's source file, at namespace scope of its namespace: the static creator.
#define VX_IMPLEMENT_SERIAL(ClassName, schema)                                                     \
    ::vx::ISerObject *ClassName::CreateThisObject() {                                              \
        return new ClassName;                                                                      \
    }                                                                                              \
    namespace {                                                                                    \
    const ::vx::CRuntimeCreator g_rtc_##ClassName(&typeid(ClassName),                              \
                                                  &ClassName::CreateThisObject, (schema));         \
    }                                                                                              \
    const ::vx::CRuntimeCreator *ClassName::RTC() {                                                \
        return &g_rtc_##ClassName;                                                                 \
    }                                                                                              \
    const ::vx::CRuntimeCreator *ClassName::RuntimeCreator() const {                               \
        return &g_rtc_##ClassName;                                                                 \
    }
