// ISerObject, the root of everything that goes into an archive, and CSerObject, which gives its
// virtual operations an empty default.
#pragma once

#include "platform/VXExport.h"

#include "platform/Object.h"

namespace vx VX_API {

class CArchiveX;
class CArchiveB;
class CRuntimeCreator;
class CVXString;

class ISerObject {
public:
    // Tells any CLoadedObjects that holds this object that it is gone.
    virtual ~ISerObject();
    virtual void SerializeX(CArchiveX &ar) = 0;
    virtual void SerializeB(CArchiveB &ar) = 0;
    // The creator of the most derived class; null for classes without one.
    virtual const CRuntimeCreator *RuntimeCreator() const = 0;

    // The named form: saves or loads this object as the element `name` of the XML archive.
    void SerializeX(const CVXString &name, CArchiveX &ar);

    // True when this object's creator is `creator`. The registry keeps no tree of base classes,
    // so an object is of a kind only when its own creator is that very creator; without a
    // creator of its own an object is of no registered kind. Callers check it before a cast of
    // what an archive handed them: the archive does not check the class it was asked for.
    bool IsKindOf(const CRuntimeCreator *creator) const;
};

class CSerObject : public ISerObject {
public:
    void SerializeX(CArchiveX &) override {}
    void SerializeB(CArchiveB &) override {}
    const CRuntimeCreator *RuntimeCreator() const override { return nullptr; }
    virtual void Dump(CDumpContext &dc) const;

    using ISerObject::SerializeX;
};

} // namespace VX_API
