#include "geodesy/OutputSystemArray.h"

#include "geodesy/NationalGrid.h"
#include "geodesy/ProjNone.h"
#include "geodesy/ProjRSO.h"
#include "geodesy/ProjSwiss.h"
#include "geodesy/ProjTM.h"

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
    switch (i) {
    case 0:
        return new CProjection_NONE();
    case 1:
        return new CProjection_RD();
    case 2:
        return new CProjection_RD2000();
    case 3:
        return new CProjection_LAMBERT72();
    case 4:
        return new CProjection_LAMBERT72CORR();
    case 5:
        return new CProjection_LAMBERT2008();
    case 6:
        return new CProjection_TM_GAUSS_KRUGER();
    case 7:
        return new CProjection_TM_NORTH();
    case 8:
        return new CProjection_TM_SOUTH();
    case 9:
        return new CProjection_STEREOGRAPHIC(PT_LOCAL);
    case 10:
        return new CProjection_TM_TM();
    case 11:
        return new CProjection_STEREOGRAPHIC(PT_STEREOGRAPHIC);
    case 12:
        return new CProjection_LB_LAMBERT1();
    case 13:
        return new CProjection_LB_LAMBERT2();
    case 14:
        return new CProjection_BRSO();
    case 15:
        return new CProjection_MRSO();
    case 16:
        return new CProjection_SWISS();
    default:
        return nullptr;
    }
}

} // namespace vx
