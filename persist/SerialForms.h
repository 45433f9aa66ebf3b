// Helpers shared by the serial forms of collections: the counted runs of elements and of
// attributes in the XML archive, with the checks that keep a hostile document from sizing an
// array beyond what it holds.
#pragma once

#include "platform/VXExport.h"

#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "platform/VXString.h"

#include <cstdint>

namespace vx VX_API {

class CArchiveX;
class CArchiveB;
class ISerObject;
class CSerObject;

namespace serial {

// The count saved under `name`, checked against the child elements of the current element: a
// count beyond them raises the archive's "Interface pointer is NULL" failure before anything is
// sized by it, as walking off the end of the run would.
int32_t LoadElementCount(CArchiveX &ar, const CVXString &name);
// The count saved under `name` of a run of attributes prefix0, prefix1...: a count whose last
// attribute is missing raises CVXComError(E_INVALIDARG) before anything is sized by it.
int32_t LoadAttributeCount(CArchiveX &ar, const CVXString &name, const CVXString &prefix);
// Saves an element of a run; a null element becomes an empty element without a class, which
// loads back as null.
void SaveRunElement(CArchiveX &ar, const CVXString &name, const ISerObject *object);
// A loaded object as a CSerObject. An object of another root is deleted: in the binary archive
// that is a badClass failure, in the XML archive a null element.
CSerObject *AsSerObjectB(CArchiveB &ar, ISerObject *object);
CSerObject *AsSerObjectX(ISerObject *object);

// The same for the elements of one run, which are mostly of one class: the class of the last
// element found to be a CSerObject is kept, and an element whose creator is that class needs no
// dynamic_cast (a search of the type's bases by name across the shared library, 17% of reading
// a million points). A creator belongs to one class, and every object that answers it is of
// that class or derived from it, so the answer holds for it too.
class CSerObjectRun {
public:
    CSerObject *AsSerObjectB(CArchiveB &ar, ISerObject *object);
    CSerObject *AsSerObjectX(ISerObject *object);

private:
    // The object as a CSerObject, or null when it is of another root.
    CSerObject *Checked(ISerObject *object);
    const CRuntimeCreator *m_pChecked = nullptr;
};

// A counted array in the binary archive: the count, then each element by `write`; loading sizes
// the array by the checked count (each element takes at least `minBytes` of the stream) and
// fills each slot by `read`.
template <class Array, class Write, class Read>
void CountedArrayB(Array &a, CArchiveB &ar, unsigned int minBytes, Write write, Read read) {
    if (ar.IsStoring()) {
        ar.WriteCount(static_cast<uint32_t>(a.GetSize()));
        for (int32_t i = 0; i < a.GetSize(); ++i)
            write(a.GetAt(i));
        return;
    }
    a.SetSize(static_cast<int32_t>(ar.ReadCount(minBytes)));
    for (int32_t i = 0; i < a.GetSize(); ++i)
        a.SetAt(i, read());
}

// A counted list in the binary archive: the count, then head to tail; loading appends to what
// the list holds already.
template <class List, class Write, class Read>
void CountedListB(List &l, CArchiveB &ar, unsigned int minBytes, Write write, Read read) {
    if (ar.IsStoring()) {
        ar.WriteCount(static_cast<uint32_t>(l.GetCount()));
        for (POSITION pos = l.GetHeadPosition(); pos;)
            write(l.GetNext(pos));
        return;
    }
    const uint32_t n = ar.ReadCount(minBytes);
    for (uint32_t i = 0; i < n; ++i)
        l.AddTail(read());
}

// A run of values as the attributes prefix0, prefix1... beside a count under `countName`.
template <class Array>
void AttributeRunX(Array &a, CArchiveX &ar, const char16_t *countName, const char16_t *prefix) {
    if (ar.IsStoring()) {
        ar.Save(countName, a.GetSize());
        for (int32_t i = 0; i < a.GetSize(); ++i)
            ar.Save(CArchiveX::ToName(prefix, i), a.GetData()[i]);
        return;
    }
    a.SetSize(LoadAttributeCount(ar, countName, prefix));
    for (int32_t i = 0; i < a.GetSize(); ++i)
        ar.Load(CArchiveX::ToName(prefix, i), a.GetData()[i]);
}

} // namespace serial
} // namespace VX_API
