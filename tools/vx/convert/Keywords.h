// The keywords of vx convert: for each projection type of the library, what its keyword means
// on the command line (the same in both directions), which options it takes, and its datum
// shift, grid files and geoid model. The projection objects come from the library's own default
// objects, so that an option left out keeps the class's default value.
#pragma once

#include "geodesy/OutputSystem.h"

#include <cstdio>
#include <memory>
#include <string>

namespace vxtool::convert {

// The options that set projection parameters, as bits.
enum : unsigned {
    kOptLon0 = 1u << 0,
    kOptLat0 = 1u << 1,
    kOptPar1 = 1u << 2,
    kOptPar2 = 1u << 3,
    kOptScale = 1u << 4,
    kOptEast = 1u << 5,
    kOptNorth = 1u << 6,
    kOptEllipsoid = 1u << 7,
    kOptZone = 1u << 8,
    kOptSouth = 1u << 9,
    kOptGeoid = 1u << 10,
};

// What a keyword is: a plain projection between geographic coordinates on its own ellipsoid and
// its plane (EllToProjection, ProjectionToEll), or a national grid between ETRS89 and the grid
// with its height system (ETRS2LOCAL, LOCAL2ETRS).
enum class KeywordKind { plain, datum };

struct SKeyword {
    vx::ProjectionType type;
    KeywordKind kind;
    unsigned options;   // the options it takes
    unsigned required;  // the options without which its parameters are degenerate
                        // (--lon0 serves for --zone)
    int nGeoidModel;    // the geoid model number its heights use; 0 for none
    const char *grids;  // its correction grid files, or nullptr
    const char *shift;  // the datum shift from ETRS89 it runs, or nullptr
    const char *plane;  // what its plane side is
    bool bPlaneRadians; // its plane side holds radians (NONE), not metres
};

// The row of a keyword as the library spells it ("RD", "UTM_NORTH"); null when unknown.
const SKeyword *FindKeyword(const std::string &keyword);
// The row of a type (every type has one).
const SKeyword &KeywordOf(vx::ProjectionType type);
// The known keywords, separated by blanks.
std::string KnownKeywords();

// The values of the options; NaN (or empty) when not given. Angles in degrees.
struct SProjectionOptions {
    unsigned given = 0;
    double lon0 = 0.0, lat0 = 0.0, par1 = 0.0, par2 = 0.0, scale = 0.0, east = 0.0, north = 0.0;
    int zone = 0;
    std::string ellipsoid;
    std::string geoid;
};

// The option bit of "--lon0" and the others; 0 for a text that is no projection option.
unsigned OptionBit(const std::string &name);
// The option names of a set of bits, such as "--lon0 --fe".
std::string OptionNames(unsigned bits);

// The projection of a keyword with the options applied over the class's defaults. Options the
// keyword does not take, missing required ones, a bad zone or ellipsoid, and parameters that
// give no finite result near the origin are errors: null with `error` set. --south turns
// UTM_NORTH into UTM_SOUTH, so `keyword` may come back as another row.
std::unique_ptr<vx::COutputSystem>
MakeProjection(const SKeyword *&keyword, const SProjectionOptions &options, std::string &error);

// The table of vx convert --list.
void PrintKeywordList(std::FILE *out);

} // namespace vxtool::convert
