// Where a point or a line lies relative to a closed CVXCoordArr. Containment is decided by the
// winding angle summed at the tested point, with arcs followed along their curve, and with a
// wide band of undecided sums that counts as lying on the boundary; every "within tolerance"
// test is strict against dPuntTol. The members themselves are declared in CVXCoordArr.
#pragma once

#include "platform/VXExport.h"

#include "geometry/VXCoordArr.h"

#include <cstdint>

namespace vx VX_API {

// The answer of every containment question: three independent flags in the low three bits of
// one byte. A single point sets exactly one of them or none; LijnInPolygoon accumulates several.
struct PuntInPolyRes {
    bool bBinnen : 1 = false; // strictly inside
    bool bOp : 1 = false;     // on the boundary, within tolerance
    bool bBuiten : 1 = false; // strictly outside

    PuntInPolyRes operator|=(const PuntInPolyRes &o) {
        bBinnen = bBinnen || o.bBinnen;
        bOp = bOp || o.bOp;
        bBuiten = bBuiten || o.bBuiten;
        return *this;
    }
};

// The turning sense of a closed sequence; callers compare the numeric values.
enum KlokRichting : int32_t {
    KlokTegen = 0,    // counter-clockwise with X to the right and Y upward
    KlokMee = 1,      // clockwise
    KlokOnbepaald = 2 // no direction can be given
};

} // namespace VX_API
