// The common ground of the interchange formats: a set of lines as the library models them, the
// shape questions every writer asks (is it a ring, where are its arcs), splines turned into
// chords, and numbers in their shortest exact text.
#pragma once

#include "geometry/VXCoordArr.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vxinterchange {

using LinePtr = std::unique_ptr<vx::CVXCoordArr>;
using Lines = std::vector<LinePtr>;
// Called once for every line a writer has finished, so that a caller can show progress.
using LineDone = std::function<void()>;

// Each spline interval is written as this many chords: a spline has no counterpart in WKT,
// GeoJSON or SVG, and the spline through the points is evaluated at equal parameter steps.
inline constexpr int kSplineChords = 16;

// A stretch of a line as the writers see it: straight (to `end`) or a three-point arc
// (`support`, `end`). Splines have been turned into straight stretches before.
struct Stretch {
    bool arc;
    int support; // -1 for a straight stretch
    int end;
};

// The stretches of a line, in order, by the section codes (an arc where bBoog holds, else a
// straight stretch to the next point). A whole circle is not split here: see IsCircle.
std::vector<Stretch> StretchesOf(const vx::CVXCoordArr &line);

// A whole circle (the section code 7 form).
bool IsCircle(const vx::CVXCoordArr &line);

// A ring: at least four points, the last exactly on the first; a circle is a ring too. The
// library has no polygon flag, so a closed line is always written as a polygon. The test is
// exact rather than the library's bGesloten (within dPuntTol): a writer does not move a point
// to close a ring, so a line that ends near its start stays an open line.
bool IsRing(const vx::CVXCoordArr &line);

// True when every point has a height, so that Z can be written.
bool AllHaveZ(const vx::CVXCoordArr &line);

// A copy of the line with every spline run replaced by kSplineChords straight stretches per
// interval through the spline's own points (nCubSplin). A run whose spline cannot be fitted
// (two coinciding points) becomes the straight stretches between its points.
vx::CVXCoordArr WithoutSplines(const vx::CVXCoordArr &line);

// The point opposite point 0 of a whole circle, through the centre of its first three points.
// When point 2 already lies there (within dPuntTol) it is returned as it is, so that a circle
// read from WKT is written back with its own numbers. False when the points give no centre.
bool OppositePoint(const vx::CVXCoordArr &circle, vx::CVXCoord &opposite);

// The shortest text that reads back as the same double (std::to_chars).
std::string NumberText(double value);

} // namespace vxinterchange
