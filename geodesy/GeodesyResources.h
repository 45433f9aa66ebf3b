// The string-table rows of the geodesy subsystem: ellipsoid and projection names, keywords and
// the grid messages, in the three languages. Internal to the library.
#pragma once

namespace vx {

// String ids of the correction-grid failure message.
enum : unsigned int { IDS_GRID_NOT_FOUND = 54, IDS_GRID_NOT_APPLIED = 55 };

// Adds the geodesy rows to the resource look-up once; every user of these ids calls it first,
// so that the rows are present however the library was linked.
void EnsureGeodesyResources();

} // namespace vx
