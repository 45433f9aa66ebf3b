// Clip two parcels: parcel A, a rectangle with one arc side, is cut by parcel B, which overlaps
// it and has an arc of its own. bSnijPoly delivers the part of A inside B and the part outside,
// and the arcs stay arcs in both pieces (only the part of an arc that lies in a piece is kept).
#include "vxcommon.h"

#include <cstdio>

namespace {

using namespace vx;

constexpr char kStart = nSectieStart, kStraight = nSectieRecht, kArc = nSectieBoog;

// A line from its points, given with their section codes.
template <size_t N>
void Build(CVXCoordArr &line, const CVXCoord (&points)[N]) {
    for (const CVXCoord &p : points)
        line.Add(&p);
}

void Print(const char *label, const CVXCoordArrList &pieces) {
    POSITION pos = pieces.GetHeadPosition();
    while (pos) {
        const CVXCoordArr *piece = pieces.GetNext(pos);
        double area = 0.0;
        piece->bOppervlak(&area);
        int arcs = 0;
        for (int i = 0; i < piece->GetSize() - 1; i = piece->nNextLinePart(i))
            arcs += piece->bBoog(i) ? 1 : 0;
        std::printf("%s: %d points, %d arc%s, area %.1f\n", label,
                    static_cast<int>(piece->GetSize()), arcs, arcs == 1 ? "" : "s", area);
    }
}

} // namespace

int main() {
    // The corners of A: (0 0) to (40 30), the east side an arc through (50 15).
    const CVXCoord a[] = {{0, 0, kStart}, {40, 0, kStraight}, {50, 15, kArc},
                          {40, 30, kArc}, {0, 30, kStraight}, {0, 0, kStraight}};
    // B: (20 10) to (70 40), the north side an arc through (45 50).
    const CVXCoord b[] = {{20, 10, kStart}, {70, 10, kStraight}, {70, 40, kStraight},
                          {45, 50, kArc},   {20, 40, kArc},      {20, 10, kStraight}};
    CVXCoordArr parcelA, parcelB;
    Build(parcelA, a);
    Build(parcelB, b);

    CVXCoordArrList inside, outside;         // the lists own the pieces
    const ClipField both(true, true, false); // inside and outside pieces, neither required
    if (!parcelA.bSnijPoly(inside, outside, parcelB, both, parcelA.bGesloten())) {
        std::printf("the parcels do not cut each other\n");
        return 1;
    }
    Print("inside B", inside);
    Print("outside B", outside);
    return 0;
}
