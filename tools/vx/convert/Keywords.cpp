#include "Keywords.h"

#include "foundation/VXString.h"
#include "geodesy/Angles.h"
#include "geodesy/OutputSystemArray.h"
#include "geometry/VXCoord.h"

#include <algorithm>
#include <cmath>

namespace vxtool::convert {

namespace {

using namespace vx;

constexpr unsigned kPlaneOptions = kOptLon0 | kOptLat0 | kOptScale | kOptEast | kOptNorth |
                                   kOptEllipsoid; // the stereographic and TM types
constexpr unsigned kUtmOptions = kOptLon0 | kOptZone | kOptSouth | kOptEllipsoid;

// The geoid model numbers of the national height systems.
constexpr int kGeoidRD2008 = 18;
constexpr int kGeoidRD2004 = 7;
constexpr int kGeoidBelgium = 9;

constexpr const char *kRDGrids = "X2c.grd Y2c.grd";
constexpr const char *kLb72Grids = "x_grid_Lb72.grd y_grid_Lb72.grd";

// One row per projection type, in type order.
// clang-format off
constexpr SKeyword kKeywords[] = {
{PT_NONE,           KeywordKind::plain, kOptEllipsoid, 0, 0, nullptr, nullptr, "x y = lat lon in radians", true},
{PT_RD,             KeywordKind::plain, 0, 0, 0, nullptr, nullptr, "RD x y, bare projection", false},
{PT_LAMBERT72,      KeywordKind::plain, 0, 0, 0, nullptr, nullptr, "Lambert 72 x y, bare projection", false},
{PT_GAUSS_KRUGER,   KeywordKind::plain, kOptLon0 | kOptEast | kOptEllipsoid, 0, 0, nullptr, nullptr, "Gauss-Krueger x y", false},
{PT_UTM_NORTH,      KeywordKind::plain, kUtmOptions, kOptZone, 0, nullptr, nullptr, "UTM x y (northern)", false},
{PT_UTM_SOUTH,      KeywordKind::plain, kUtmOptions, kOptZone, 0, nullptr, nullptr, "UTM x y (southern)", false},
{PT_LOCAL,          KeywordKind::plain, kPlaneOptions, 0, 0, nullptr, nullptr, "local stereographic x y", false},
{PT_TM,             KeywordKind::plain, kPlaneOptions, 0, 0, nullptr, nullptr, "transverse Mercator x y", false},
{PT_STEREOGRAPHIC,  KeywordKind::plain, kPlaneOptions, 0, 0, nullptr, nullptr, "stereographic x y", false},
{PT_LAMBERT1,       KeywordKind::plain, kPlaneOptions | kOptPar1, kOptPar1, 0, nullptr, nullptr, "Lambert x y, one parallel", false},
{PT_LAMBERT2,       KeywordKind::plain, (kPlaneOptions & ~kOptScale) | kOptPar1 | kOptPar2, kOptPar1 | kOptPar2, 0, nullptr, nullptr, "Lambert x y, two parallels", false},
{PT_BRSO,           KeywordKind::plain, kOptEast | kOptNorth, 0, 0, nullptr, nullptr, "Borneo RSO x y", false},
{PT_MRSO,           KeywordKind::plain, 0, 0, 0, nullptr, nullptr, "Malaysian RSO x y", false},
{PT_RDNAPTRANS,     KeywordKind::datum, kOptGeoid, 0, kGeoidRD2008, kRDGrids, "2008", "RD x y, NAP H (as RDNAPTRANS2008)", false},
{PT_SWISS,          KeywordKind::plain, kOptEast | kOptNorth, 0, 0, nullptr, nullptr, "Swiss x y", false},
{PT_LAMBERT72CORR,  KeywordKind::datum, kOptGeoid, 0, kGeoidBelgium, kLb72Grids, "BD72", "Lambert 72 x y, TAW H", false},
{PT_LAMBERT2008,    KeywordKind::datum, kOptGeoid, 0, kGeoidBelgium, nullptr, nullptr, "Lambert 2008 x y, TAW H", false},
{PT_RDNAPTRANS2008, KeywordKind::datum, kOptGeoid, 0, kGeoidRD2008, kRDGrids, "2008", "RD x y, NAP H", false},
{PT_RDNAPTRANS2004, KeywordKind::datum, kOptGeoid, 0, kGeoidRD2004, kRDGrids, "2004", "RD x y, NAP H", false},
};
// clang-format on
static_assert(std::size(kKeywords) == PT_RDNAPTRANS2004 + 1, "one row per projection type");

struct SOptionName {
    unsigned bit;
    const char *name;
};
constexpr SOptionName kOptionNames[] = {
    {kOptLon0, "--lon0"},   {kOptLat0, "--lat0"},
    {kOptPar1, "--par1"},   {kOptPar2, "--par2"},
    {kOptScale, "--k"},     {kOptEast, "--fe"},
    {kOptNorth, "--fn"},    {kOptEllipsoid, "--ellipsoid"},
    {kOptZone, "--zone"},   {kOptSouth, "--south"},
    {kOptGeoid, "--geoid"},
};

// The UTM zones and their central meridians: zone z has 6z - 183 degrees.
constexpr int kFirstZone = 1;
constexpr int kLastZone = 60;
constexpr double kZoneWidth = 6.0;
constexpr double kZoneOffset = 183.0;
// The limits of the angle options, in degrees.
constexpr double kMaxLatitude = 90.0;
constexpr double kMaxLongitude = 360.0;
// The probe of the parameters: this far from the origin, and never nearer a pole than kProbeLat.
constexpr double kProbeOffset = 0.5;
constexpr double kProbeLat = 80.0;

// The class's default object of a type (types 17 and 18 take no parameters at all).
std::unique_ptr<COutputSystem> DefaultObject(ProjectionType type) {
    COutputSystemPtrArray all;
    const int32_t pos = all.nGetPosition(type);
    std::unique_ptr<COutputSystem> p(
        pos >= 0 ? all.GetAt(pos)->pCopy()
                 : pGetNewProjection(type, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, nullptr));
    all.DeleteAll();
    return p;
}

std::string KeywordText(ProjectionType type) {
    const std::unique_ptr<COutputSystem> p = DefaultObject(type);
    return static_cast<const char *>(p->szGetTrav3ProjectionName());
}

double RadOr(const SProjectionOptions &o, unsigned bit, double deg, double fallbackRad) {
    return (o.given & bit) ? DegToRad(deg) : fallbackRad;
}
double Or(const SProjectionOptions &o, unsigned bit, double value, double fallback) {
    return (o.given & bit) ? value : fallback;
}

// Checks the ranges of the given options; an error text, empty when all are usable.
std::string RangeError(const SProjectionOptions &o) {
    const auto beyond = [&](unsigned bit, double v, double limit) {
        return (o.given & bit) && std::fabs(v) > limit;
    };
    if (beyond(kOptLat0, o.lat0, kMaxLatitude) || beyond(kOptPar1, o.par1, kMaxLatitude) ||
        beyond(kOptPar2, o.par2, kMaxLatitude))
        return "--lat0, --par1 and --par2 lie within -90 and 90 degrees";
    if (beyond(kOptLon0, o.lon0, kMaxLongitude)) return "--lon0 lies within -360 and 360 degrees";
    if ((o.given & kOptScale) && !(o.scale > 0.0)) return "--k must be above 0";
    if ((o.given & kOptZone) && (o.zone < kFirstZone || o.zone > kLastZone))
        return "--zone takes a UTM zone from 1 to 60";
    if ((o.given & kOptZone) && (o.given & kOptLon0))
        return "--zone and --lon0 both set the central meridian: give one";
    return {};
}

// The plain parametric types: the default object's values under the given options.
COutputSystem *MakeParametric(ProjectionType type, const COutputSystem &d,
                              const SProjectionOptions &o, std::string &error) {
    std::unique_ptr<CEllipsoid> ell(d.pGetNewEllipsoid());
    if (o.given & kOptEllipsoid) {
        ell.reset(pGetNewEllipsoid(CVXString(o.ellipsoid.c_str()), 0.0, 0.0));
        if (!ell) {
            error = "unknown ellipsoid keyword '" + o.ellipsoid + "'";
            return nullptr;
        }
    }
    double lon = RadOr(o, kOptLon0, o.lon0, d.dGetLonOriginCM());
    if (o.given & kOptZone) lon = DegToRad(kZoneWidth * o.zone - kZoneOffset);
    return pGetNewProjection(type, lon, RadOr(o, kOptLat0, o.lat0, d.dGetLatOrigin()),
                             RadOr(o, kOptPar1, o.par1, d.dGetStandPar1()),
                             RadOr(o, kOptPar2, o.par2, d.dGetStandPar2()),
                             Or(o, kOptScale, o.scale, d.dGetProjScaleFac()),
                             Or(o, kOptEast, o.east, d.dGetFalseEasting()),
                             Or(o, kOptNorth, o.north, d.dGetFalseNorthing()), ell.get());
}

// A point near the origin must go there and back to finite values; degenerate parameters (a
// cone on the equator, an origin at the pole) give NaN instead.
bool bFiniteNearOrigin(COutputSystem &p) {
    const double lat = std::clamp(RadToDeg(p.dGetLatOrigin()), -kProbeLat, kProbeLat);
    const double lon = RadToDeg(p.dGetLonOriginCM());
    CVXCoord xy;
    p.EllToProjection(xy, CEllCoord(DegToRad(lat + kProbeOffset), DegToRad(lon + kProbeOffset), 0));
    CEllCoord back;
    p.ProjectionToEll(back, xy);
    return std::isfinite(xy.dGetX()) && std::isfinite(xy.dGetY()) &&
           std::isfinite(back.dGetLat()) && std::isfinite(back.dGetLon());
}

std::string Join(const std::string &a, const std::string &b) {
    return a.empty() ? b : a + " " + b;
}

} // namespace

const SKeyword *FindKeyword(const std::string &keyword) {
    ProjectionType type = PT_NONE;
    if (!bGetProjectionType(CVXString(keyword.c_str()), type)) return nullptr;
    return &KeywordOf(type);
}

const SKeyword &KeywordOf(ProjectionType type) {
    return kKeywords[type];
}

std::string KnownKeywords() {
    std::string list;
    for (const SKeyword &k : kKeywords)
        list = Join(list, KeywordText(k.type));
    return list;
}

unsigned OptionBit(const std::string &name) {
    for (const SOptionName &o : kOptionNames)
        if (name == o.name) return o.bit;
    return 0;
}

std::string OptionNames(unsigned bits) {
    std::string names;
    for (const SOptionName &o : kOptionNames)
        if (bits & o.bit) names = Join(names, o.name);
    return names;
}

std::unique_ptr<COutputSystem> MakeProjection(const SKeyword *&keyword, const SProjectionOptions &o,
                                              std::string &error) {
    const std::string name = KeywordText(keyword->type);
    const unsigned unused = o.given & ~keyword->options;
    if (unused != 0) {
        const std::string takes = OptionNames(keyword->options);
        error = "option " + OptionNames(unused) + " is not used by " + name +
                (takes.empty() ? " (it takes no options)" : " (it takes: " + takes + ")");
        return nullptr;
    }
    // A central meridian given in degrees serves as well as a zone.
    const unsigned given = (o.given & kOptLon0) ? o.given | kOptZone : o.given;
    if ((given & keyword->required) != keyword->required) {
        error = name + " needs " + OptionNames(keyword->required) +
                (keyword->required == kOptZone
                     ? " (or --lon0): the class's central meridian of 0 degrees is no zone's"
                     : ": the class's default parallels of 0 degrees are degenerate");
        return nullptr;
    }
    error = RangeError(o);
    if (!error.empty()) return nullptr;
    // --south: the southern UTM type, whose false northing is 10000000 m.
    if ((o.given & kOptSouth) && keyword->type == PT_UTM_NORTH) keyword = &KeywordOf(PT_UTM_SOUTH);
    const ProjectionType type = keyword->type;
    std::unique_ptr<COutputSystem> d = DefaultObject(type);
    if ((o.given & ~kOptGeoid) == 0) return d;
    std::unique_ptr<COutputSystem> p(
        bProjectionNeedsEllipsoid(type)
            ? MakeParametric(type, *d, o, error)
            : pGetNewProjection(type, 0.0, 0.0, 0.0, 0.0, 1.0,
                                Or(o, kOptEast, o.east, d->dGetFalseEasting()),
                                Or(o, kOptNorth, o.north, d->dGetFalseNorthing()), nullptr));
    if (p && bProjectionNeedsEllipsoid(type) && !bFiniteNearOrigin(*p)) {
        error = "the parameters of " + name +
                " are degenerate: a point near its origin has no finite result";
        return nullptr;
    }
    return p;
}

void PrintKeywordList(std::FILE *out) {
    std::fprintf(out, "%-15s %-29s %-34s %-6s %-32s %-5s %s\n", "KEYWORD", "GEOGRAPHIC SIDE",
                 "PLANE SIDE", "SHIFT", "GRID FILES", "GEOID", "OPTIONS");
    for (const SKeyword &k : kKeywords) {
        const std::unique_ptr<COutputSystem> d = DefaultObject(k.type);
        const std::string ell = static_cast<const char *>(d->szGetTrav3EllipsoidName());
        const std::string geographic =
            k.kind == KeywordKind::datum ? "ETRS89 lat lon h" : "lat lon h on " + ell;
        const std::string geoid = k.nGeoidModel ? std::to_string(k.nGeoidModel) : "-";
        const std::string options = k.options ? OptionNames(k.options) : "-";
        std::fprintf(out, "%-15s %-29s %-34s %-6s %-32s %-5s %s\n", KeywordText(k.type).c_str(),
                     geographic.c_str(), k.plane, k.shift ? k.shift : "-", k.grids ? k.grids : "-",
                     geoid.c_str(), options.c_str());
    }
}

} // namespace vxtool::convert
