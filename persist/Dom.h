// The DOM that the XML archive works on: a document and its elements, reference-counted
// interfaces found by name ("VXDOM", "VXDom"). The library ships one implementation over
// pugixml under both names; a host may register others.
#pragma once

#include "platform/VXExport.h"

#include "foundation/VXVariant.h"
#include "platform/VXString.h"

#include <utility>

namespace vx VX_API {

class IDomElement;

class IDomUnknown {
public:
    virtual long AddRef() = 0;
    virtual long Release() = 0;

protected:
    virtual ~IDomUnknown() = default;
};

class IDomNodeList : public IDomUnknown {
public:
    virtual long Count() = 0;
    // A new reference to the element at `index`, or null.
    virtual IDomElement *Item(long index) = 0;
};

class IDomElement : public IDomUnknown {
public:
    // The child elements.
    virtual IDomNodeList *Children() = 0;
    // The next sibling element, null at the end.
    virtual IDomElement *NextSibling() = 0;
    virtual CVXString Name() = 0;
    // Appends a child and returns a new reference to it.
    virtual IDomElement *AppendChild(IDomElement *child) = 0;
    virtual void SetAttribute(const CVXString &name, const VXVariant &value) = 0;
    // The attribute as a variant: the empty variant when it is missing.
    virtual VXVariant GetAttribute(const CVXString &name) = 0;

    // The same two in UTF-8 and without variants, for the archive's numbers and texts, which are
    // most of a document. The defaults go through the two above; an implementation that holds
    // UTF-8 text answers them directly.
    virtual void SetAttributeUtf8(const char *name, const char *value);
    // The attribute's text, null when it is missing; valid until the next call on this element
    // or a change of the document.
    virtual const char *AttributeUtf8(const char *name);
};

class IDomDocument : public IDomUnknown {
public:
    // Parses the text; false (and an error text) when it is not well-formed.
    virtual bool LoadXML(const CVXString &text) = 0;
    virtual bool Load(const CVXString &path) = 0;
    virtual bool Save(const CVXString &path) = 0;
    // A new reference to the root element, or null.
    virtual IDomElement *Root() = 0;
    virtual CVXString XML() = 0;
    // A new element, not yet attached.
    virtual IDomElement *CreateElement(const CVXString &name) = 0;
    virtual void SetRoot(IDomElement *element) = 0;
    virtual void Reset() = 0;
    virtual void SetOption(int option) = 0;
    // The last error text, empty if none.
    virtual CVXString LastError() = 0;
};

// Holds one reference to an interface.
template <class T>
class CVXComWrap {
public:
    CVXComWrap() = default;
    // Takes over a reference the caller already holds.
    explicit CVXComWrap(T *p) : m_p(p) {}
    CVXComWrap(const CVXComWrap &o) : m_p(o.m_p) {
        if (m_p) m_p->AddRef();
    }
    CVXComWrap(CVXComWrap &&o) noexcept : m_p(std::exchange(o.m_p, nullptr)) {}
    CVXComWrap &operator=(CVXComWrap o) noexcept {
        std::swap(m_p, o.m_p);
        return *this;
    }
    ~CVXComWrap() {
        if (m_p) m_p->Release();
    }
    T *operator->() const;
    T *get() const { return m_p; }
    explicit operator bool() const { return m_p != nullptr; }

private:
    T *m_p = nullptr;
};

// A null interface pointer used: CVXComError "Interface pointer is NULL", source "VXCOM",
// code 0x80004003.
[[noreturn]] void ThrowNullInterface();

template <class T>
T *CVXComWrap<T>::operator->() const {
    if (!m_p) ThrowNullInterface();
    return m_p;
}

using DomFactory = IDomDocument *(*)();
// Registers an implementation under a name; null removes it.
void RegisterDomImplementation(const CVXString &name, DomFactory factory);
// A new document from the implementation of that name; CVXComError when there is none.
CVXComWrap<IDomDocument> CreateDomDocument(const CVXString &name);

} // namespace VX_API
