#include "geodesy/ProjectionTable.h"

#include "geodesy/NationalGrid.h"
#include "geodesy/ProjLambert.h"
#include "geodesy/ProjNone.h"
#include "geodesy/ProjRSO.h"
#include "geodesy/ProjStereo.h"
#include "geodesy/ProjSwiss.h"
#include "geodesy/ProjTM.h"

#include <array>
#include <iterator>

namespace vx {

namespace {

template <class T>
COutputSystem *Default() {
    return new T();
}

template <class T>
const CRuntimeCreator *Creator() {
    return T::RTC();
}

// What each type takes from pGetNewProjection's arguments: nothing for the fixed national
// systems; lon (and east) for Gauss-Krueger and UTM; lon, lat, scale, east, north for the
// stereographic and TM types; Lambert adds one or two parallels.
COutputSystem *MakeNone(const SProjectionArgs &a) {
    return new CProjection_NONE(*a.pEllipsoid);
}
COutputSystem *MakeRD(const SProjectionArgs &) {
    return new CProjection_RD();
}
COutputSystem *MakeLambert72(const SProjectionArgs &) {
    return new CProjection_LAMBERT72();
}
COutputSystem *MakeGaussKruger(const SProjectionArgs &a) {
    return new CProjection_TM_GAUSS_KRUGER(a.lon, a.east, *a.pEllipsoid);
}
COutputSystem *MakeUtmNorth(const SProjectionArgs &a) {
    return new CProjection_TM_NORTH(a.lon, *a.pEllipsoid);
}
COutputSystem *MakeUtmSouth(const SProjectionArgs &a) {
    return new CProjection_TM_SOUTH(a.lon, *a.pEllipsoid);
}
COutputSystem *MakeLocal(const SProjectionArgs &a) {
    return new CProjection_STEREOGRAPHIC(PT_LOCAL, a.lon, a.lat, a.scale, a.east, a.north,
                                         *a.pEllipsoid);
}
COutputSystem *MakeStereographic(const SProjectionArgs &a) {
    return new CProjection_STEREOGRAPHIC(PT_STEREOGRAPHIC, a.lon, a.lat, a.scale, a.east, a.north,
                                         *a.pEllipsoid);
}
COutputSystem *MakeTM(const SProjectionArgs &a) {
    return new CProjection_TM_TM(a.lon, a.lat, a.scale, a.east, a.north, *a.pEllipsoid);
}
COutputSystem *MakeLambert1(const SProjectionArgs &a) {
    return new CProjection_LB_LAMBERT1(a.lon, a.lat, a.par1, a.scale, a.east, a.north,
                                       *a.pEllipsoid);
}
COutputSystem *MakeLambert2(const SProjectionArgs &a) {
    return new CProjection_LB_LAMBERT2(a.lon, a.lat, a.par1, a.par2, a.east, a.north,
                                       *a.pEllipsoid);
}
COutputSystem *MakeBRSO(const SProjectionArgs &a) {
    return new CProjection_BRSO(a.east, a.north);
}
COutputSystem *MakeMRSO(const SProjectionArgs &) {
    return new CProjection_MRSO();
}
COutputSystem *MakeRD2000(const SProjectionArgs &) {
    return new CProjection_RD2000();
}
COutputSystem *MakeSwiss(const SProjectionArgs &a) {
    return new CProjection_SWISS(a.east, a.north);
}
COutputSystem *MakeLambert72Corr(const SProjectionArgs &) {
    return new CProjection_LAMBERT72CORR();
}
COutputSystem *MakeLambert2008(const SProjectionArgs &) {
    return new CProjection_LAMBERT2008();
}
COutputSystem *MakeRdnaptrans2008(const SProjectionArgs &) {
    return new CProjection_RDNAPTRANS2008();
}
COutputSystem *MakeRdnaptrans2004(const SProjectionArgs &) {
    return new CProjection_RDNAPTRANS2004();
}
COutputSystem *DefaultLocal() {
    return new CProjection_STEREOGRAPHIC(PT_LOCAL);
}
COutputSystem *DefaultStereographic() {
    return new CProjection_STEREOGRAPHIC(PT_STEREOGRAPHIC);
}

// clang-format off
constexpr SProjectionEntry s_Table[] = {
// type                display                                        keyword                    ellipsoid slot create              default                             creator
{PT_NONE,           23, u"None",                             36, u"NONE",           true,  0,  MakeNone,          Default<CProjection_NONE>,           Creator<CProjection_NONE>},
{PT_RD,             24, u"RD",                               37, u"RD",             false, 1,  MakeRD,            Default<CProjection_RD>,             Creator<CProjection_RD>},
{PT_LAMBERT72,      25, u"Lambert 72",                       38, u"LAMBERT72",      false, 3,  MakeLambert72,     Default<CProjection_LAMBERT72>,      Creator<CProjection_LAMBERT72>},
{PT_GAUSS_KRUGER,   26, u"Gauss Kruger",                     39, u"GAUSS_KRUGER",   true,  6,  MakeGaussKruger,   Default<CProjection_TM_GAUSS_KRUGER>, Creator<CProjection_TM_GAUSS_KRUGER>},
{PT_UTM_NORTH,      27, u"UTM North",                        40, u"UTM_NORTH",      true,  7,  MakeUtmNorth,      Default<CProjection_TM_NORTH>,       Creator<CProjection_TM_NORTH>},
{PT_UTM_SOUTH,      28, u"UTM South",                        41, u"UTM_SOUTH",      true,  8,  MakeUtmSouth,      Default<CProjection_TM_SOUTH>,       Creator<CProjection_TM_SOUTH>},
{PT_LOCAL,          29, u"Local (stereographic)",            42, u"LOCAL",          true,  9,  MakeLocal,         DefaultLocal,                        Creator<CProjection_STEREOGRAPHIC>},
{PT_TM,             30, u"TM",                               43, u"TM",             true,  10, MakeTM,            Default<CProjection_TM_TM>,          Creator<CProjection_TM_TM>},
{PT_STEREOGRAPHIC,  31, u"Stereographic",                    44, u"STEREOGRAPHIC",  true,  11, MakeStereographic, DefaultStereographic,                Creator<CProjection_STEREOGRAPHIC>},
{PT_LAMBERT1,       32, u"Lambert1 (1 parallel)",            45, u"LAMBERT1",       true,  12, MakeLambert1,      Default<CProjection_LB_LAMBERT1>,    Creator<CProjection_LB_LAMBERT1>},
{PT_LAMBERT2,       33, u"Lambert2 (2 parallels)",           46, u"LAMBERT2",       true,  13, MakeLambert2,      Default<CProjection_LB_LAMBERT2>,    Creator<CProjection_LB_LAMBERT2>},
{PT_BRSO,           48, u"Borneo RSO",                       49, u"BRSO",           false, 14, MakeBRSO,          Default<CProjection_BRSO>,           Creator<CProjection_BRSO>},
{PT_MRSO,           50, u"Malaysian RSO",                    51, u"MRSO",           false, 15, MakeMRSO,          Default<CProjection_MRSO>,           Creator<CProjection_MRSO>},
{PT_RDNAPTRANS,     52, u"RD(incl. correction grid)",        53, u"RDNAPTRANS",     false, 2,  MakeRD2000,        Default<CProjection_RD2000>,         Creator<CProjection_RD2000>},
{PT_SWISS,          60, u"Swiss 1903",                       61, u"SWISS",          false, 16, MakeSwiss,         Default<CProjection_SWISS>,          Creator<CProjection_SWISS>},
{PT_LAMBERT72CORR,  62, u"Lambert72(incl. correction grid)", 63, u"LAMBERT72CORR",  false, 4,  MakeLambert72Corr, Default<CProjection_LAMBERT72CORR>,  Creator<CProjection_LAMBERT72CORR>},
{PT_LAMBERT2008,    66, u"Lambert 2008",                     67, u"LAMBERT2008",    false, 5,  MakeLambert2008,   Default<CProjection_LAMBERT2008>,    Creator<CProjection_LAMBERT2008>},
{PT_RDNAPTRANS2008, 68, u"RDNAPTRANS2008",                   69, u"RDNAPTRANS2008", false, -1, MakeRdnaptrans2008, Default<CProjection_RDNAPTRANS2008>, Creator<CProjection_RDNAPTRANS2008>},
{PT_RDNAPTRANS2004, 70, u"RDNAPTRANS2004",                   71, u"RDNAPTRANS2004", false, -1, MakeRdnaptrans2004, Default<CProjection_RDNAPTRANS2004>, Creator<CProjection_RDNAPTRANS2004>},
// The old closed form of Lambert 72: no keyword, no slot; its class reads old archives.
{kNoProjectionType, 0, nullptr,                              0, nullptr,            false, -1, nullptr,           Default<CProjection_LAMBERT72Old>,   Creator<CProjection_LAMBERT72Old>},
};
// clang-format on

constexpr int32_t nTypes = PT_RDNAPTRANS2004 + 1;

constexpr bool RowsInTypeOrder() {
    for (int32_t t = 0; t < nTypes; ++t)
        if (s_Table[t].nType != t) return false;
    return true;
}
static_assert(RowsInTypeOrder(), "the row of type t stands at index t");

// Two string rows per type: the display name (English only: the look-up falls back to it in the
// other languages) and the keyword (the same in every language).
std::array<SResourceText, 2 * nTypes> MakeResourceRows() {
    std::array<SResourceText, 2 * nTypes> rows{};
    for (int32_t t = 0; t < nTypes; ++t) {
        const SProjectionEntry &e = s_Table[t];
        rows[2 * t] = {e.nDisplayId, e.szDisplay, nullptr, nullptr};
        rows[2 * t + 1] = {e.nKeywordId, e.szKeyword, e.szKeyword, e.szKeyword};
    }
    return rows;
}

} // namespace

std::span<const SProjectionEntry> ProjectionTable() {
    return s_Table;
}

const SProjectionEntry *FindProjection(int32_t type) {
    return type >= 0 && type < nTypes ? &s_Table[type] : nullptr;
}

const SProjectionEntry *FindProjectionSlot(int32_t slot) {
    for (const SProjectionEntry &e : s_Table)
        if (slot >= 0 && e.nSlot == slot) return &e;
    return nullptr;
}

std::span<const SResourceText> ProjectionResourceRows() {
    static const std::array<SResourceText, 2 *nTypes> rows = MakeResourceRows();
    return rows;
}

bool bProjectionNeedsEllipsoid(ProjectionType type) {
    const SProjectionEntry *e = FindProjection(type);
    return e != nullptr && e->bNeedsEllipsoid;
}

} // namespace vx
