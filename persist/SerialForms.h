// Helpers shared by the serial forms of collections: the counted runs of elements and of
// attributes in the XML archive, with the checks that keep a hostile document from sizing an
// array beyond what it holds.
#pragma once

#include "foundation/VXString.h"

#include <cstdint>

namespace vx {

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

} // namespace serial
} // namespace vx
