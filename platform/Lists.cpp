#include "platform/Lists.h"

#include "platform/Errors.h"

namespace vx {

namespace detail {
void ThrowCollectionError(const char *what) {
    throw CInvalidArgException(what);
}
} // namespace detail

void CObList::Dump(CDumpContext &dc) const {
    CObject::Dump(dc);
    DumpElements(dc);
}

void CPtrList::Dump(CDumpContext &dc) const {
    CObject::Dump(dc);
    DumpElements(dc);
}

void CObArray::Dump(CDumpContext &dc) const {
    CObject::Dump(dc);
    DumpElements(dc);
}

} // namespace vx
