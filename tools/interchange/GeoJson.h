// GeoJSON of lines: a FeatureCollection with one feature per line, a LineString or, for a ring,
// a Polygon. GeoJSON has no arcs: each line is copied and its arcs and circles are turned into
// chords by bArcsToLines with the tolerance given (the largest distance between an arc and its
// chords), its splines as in Lines.h. Z is written when every point has a height.
#pragma once

#include "Lines.h"

#include <cstddef>
#include <string>

namespace vxinterchange {

// Ground units (metres): one centimetre between an arc and its chords.
inline constexpr double kDefaultArcTolerance = 0.01;

// All lines together become at most this many positions by default (about 200 MB of text);
// more (a tolerance far below the arcs' size) gives std::length_error rather than memory
// without bound.
inline constexpr size_t kMaxGeoJsonPositions = 5'000'000;

// The text of the collection; a line of fewer than two points gives std::invalid_argument.
std::string WriteGeoJson(const Lines &lines, double arcTolerance, const LineDone &done = {},
                         size_t maxPositions = kMaxGeoJsonPositions);

} // namespace vxinterchange
