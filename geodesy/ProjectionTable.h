// The one list of the library's projections: for each type its names in the string table, the
// keyword, whether it needs an ellipsoid, its slot in COutputSystemPtrArray, how to make it from
// pGetNewProjection's arguments and by default, and its class's creator. pGetNewProjection,
// pMakeNewProjection, the class registration, the resource rows and bProjectionNeedsEllipsoid
// all read this list; adding a projection is adding a row (docs/ARCHITECTURE.md). Internal to
// the library.
#pragma once

#include "geodesy/OutputSystem.h"
#include "platform/Resources.h"

#include <cstdint>
#include <span>

namespace vx {

class CRuntimeCreator;

// The arguments of pGetNewProjection, in its order.
struct SProjectionArgs {
    double lon, lat, par1, par2, scale, east, north;
    const CEllipsoid *pEllipsoid; // never null for a type that needs one
};

struct SProjectionEntry {
    int32_t nType;             // a ProjectionType, or kNoProjectionType for a class kept only
                               // to read old archives
    unsigned int nDisplayId;   // string ids of the display name and the keyword
    const char16_t *szDisplay; // the display name (English; the other languages fall back)
    unsigned int nKeywordId;
    const char16_t *szKeyword; // the same in every language
    bool bNeedsEllipsoid;
    int32_t nSlot; // index in COutputSystemPtrArray, or -1
    COutputSystem *(*pCreate)(const SProjectionArgs &args);
    COutputSystem *(*pCreateDefault)();
    const CRuntimeCreator *(*pCreator)();
};

inline constexpr int32_t kNoProjectionType = -1;

// Every row, in ProjectionType order (the row of type t stands at index t), then the rows
// without a type.
std::span<const SProjectionEntry> ProjectionTable();
// The row of a type; null for a value that is no type.
const SProjectionEntry *FindProjection(int32_t type);
// The row of a slot of COutputSystemPtrArray; null for an unused slot.
const SProjectionEntry *FindProjectionSlot(int32_t slot);
// The display name and keyword rows of every type, for the string table.
std::span<const SResourceText> ProjectionResourceRows();

} // namespace vx
