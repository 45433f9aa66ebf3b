// Geoid heights for the national height systems.
//
// A host registers a geoid model per model number (7 for RDNAPTRANS 2004, 18 for RDNAPTRANS
// 2008, 9 for the Belgian grids); the national-grid projections ask it for the geoid height N at
// a point. With no model registered the answer is 999.999 ("no value") and heights are left
// uncorrected. CGtxGeoidModel is a shipped model that interpolates a GTX vertical grid
// bilinearly.
#pragma once

#include "platform/VXExport.h"

#include "platform/VXString.h"

#include <vector>

namespace vx VX_API {

// The answer for "no geoid height here".
inline constexpr double dNoGeoidHeight = 999.999;

class IGeoidModel {
public:
    virtual ~IGeoidModel() = default;
    // The geoid height in metres at a latitude and longitude in degrees, or 999.999.
    virtual double GeoidHeight(double latDeg, double lonDeg) = 0;
};

// Installs `model` under `nModel`; null unregisters. The library does not own the model.
void RegisterGeoidModel(int nModel, IGeoidModel *model);
// The height of the model registered under `nModel`, or 999.999 when there is none.
double dGetGeoidHeight(int nModel, double latDeg, double lonDeg);

// A GTX grid: a 40-byte big-endian header (latitude and longitude of the south-west node,
// latitude and longitude spacing as doubles in degrees, rows and columns as 32-bit integers),
// then rows x columns big-endian floats from south to north, west to east. Values of -88.8888 and
// below mark no data. A grid that spans the whole circle wraps in longitude.
class CGtxGeoidModel : public IGeoidModel {
public:
    // Loads the grid; a missing or malformed file leaves a model that answers 999.999.
    explicit CGtxGeoidModel(const CVXString &path);

    bool bIsLoaded() const { return !m_Values.empty(); }
    double GeoidHeight(double latDeg, double lonDeg) override;

private:
    double NodeValue(int row, int col) const;

    double m_dLat0 = 0.0;
    double m_dLon0 = 0.0;
    double m_dDLat = 0.0;
    double m_dDLon = 0.0;
    int m_nRows = 0;
    int m_nCols = 0;
    bool m_bWrap = false;
    std::vector<float> m_Values;
};

} // namespace VX_API
