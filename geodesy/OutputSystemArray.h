// COutputSystemPtrArray: one default object of each projection a host offers in its choice
// list, in a fixed order (types 17 and 18 are not offered). Like every array of the library it
// does not delete its elements by itself: the owner calls DeleteAll.
#pragma once

#include "platform/VXExport.h"

#include "geodesy/OutputSystem.h"
#include "persist/SerCollections.h"

#include <cstdint>

namespace vx VX_API {

class COutputSystemPtrArray : public CTypedPtrArray<CSerObArray, COutputSystem *> {
public:
    // Fills the 17 slots with pMakeNewProjection(0) ... pMakeNewProjection(16).
    COutputSystemPtrArray();

    // The first index whose projection has `type`, else -1. Not to be called after DeleteAll.
    int32_t nGetPosition(int type) const;
    // Deletes each element and clears its slot; the count stays.
    void DeleteAll();

    static constexpr int32_t nSlots = 17;

protected:
    // The default object of slot i: 0 NONE, 1 RD, 2 RD2000, 3 LAMBERT72, 4 LAMBERT72CORR,
    // 5 LAMBERT2008, 6 GAUSS_KRUGER, 7 UTM north, 8 UTM south, 9 LOCAL (stereographic), 10 TM,
    // 11 STEREOGRAPHIC, 12 LAMBERT1, 13 LAMBERT2, 14 BRSO, 15 MRSO, 16 SWISS.
    virtual COutputSystem *pMakeNewProjection(int32_t i);
};

} // namespace VX_API
