#include "geodesy/OutputSystemArray.h"

#include "geodesy/ProjectionTable.h"

namespace vx {

COutputSystemPtrArray::COutputSystemPtrArray() {
    SetSize(nSlots);
    // pMakeNewProjection is virtual, but during construction this class's own version runs,
    // which is the one meant here.
    for (int32_t i = 0; i < nSlots; ++i)
        SetAt(i, COutputSystemPtrArray::pMakeNewProjection(i));
}

int32_t COutputSystemPtrArray::nGetPosition(int type) const {
    for (int32_t i = 0; i < GetSize(); ++i)
        if (GetAt(i)->nGetProjection() == type) return i;
    return -1;
}

void COutputSystemPtrArray::DeleteAll() {
    for (int32_t i = 0; i < GetSize(); ++i) {
        delete GetAt(i);
        SetAt(i, nullptr);
    }
}

COutputSystem *COutputSystemPtrArray::pMakeNewProjection(int32_t i) {
    const SProjectionEntry *e = FindProjectionSlot(i);
    return e ? e->pCreateDefault() : nullptr;
}

} // namespace vx
