#include "persist/SerObject.h"

#include "persist/LoadedObjects.h"

#include <typeinfo>

namespace vx {

ISerObject::~ISerObject() {
    NoteSerObjectDestroyed(this);
}

void CSerObject::Dump(CDumpContext &dc) const {
    dc << "a " << BareClassName(typeid(*this)) << " at " << static_cast<const void *>(this) << "\n";
}

bool ISerObject::IsKindOf(const CRuntimeCreator *creator) const {
    // The creator registry keeps no tree of base classes: an object is of a kind only when its
    // own creator is that very creator.
    const CRuntimeCreator *own = RuntimeCreator();
    return own != nullptr && own == creator;
}

} // namespace vx
