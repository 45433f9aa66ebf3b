#include "geodesy/GeodesyResources.h"

#include "geodesy/ProjectionTable.h"
#include "platform/Resources.h"

#include <iterator>
#include <mutex>

namespace vx {

namespace {

// The projections' names and keywords come from the projection table (ProjectionTable.cpp).
constexpr SResourceText s_GeodesyTexts[] = {
    // Ellipsoid display names.
    {1, u"Airy", u"Airy", u"艾拉里 (Airy)"},
    {2, u"Modified Airy", u"Airy gewijzigd", u"修订的艾拉里 (Modified Airy)"},
    {3, u"Australian National", u"Australian national", u"澳大利亚国家 (Australian National)"},
    {4, u"Bessel 1841", u"Bessel 1841", u"贝塞尔 1841(Bessel 1841)"},
    {5, u"Modified Bessel", u"Bessel gewijzigd", u"修订的贝塞尔 (Modified Bessel)"},
    {6, u"Clarke 1866", u"Clarke 1866", u"克拉克1866 (Clarke 1866)"},
    {7, u"Clarke 1880", u"Clarke 1880", u"克拉克1880 (Clarke 1880)"},
    {8, u"Everest", u"Everest", u"埃弗瑞斯特 (Everest)"},
    {9, u"Modified Everest", u"Everest gewijzigd", u"修改的埃弗瑞斯特 (Modified Everest)"},
    {10, u"Fisher 1960", u"Fisher 1960", u"菲舍尔1960 (Fisher 1960)"},
    {11, u"Modified Fisher 1960", u"Fisher 1960 gewijzigd",
     u"修订的 菲舍尔 1960 (Modified Fisher 1960)"},
    {12, u"Fisher 1968", u"Fisher 1968", u"菲舍尔 1968 (Fisher 1968)"},
    {13, u"GRS 1967", u"GRS 1967", u"GRS 1967"},
    {14, u"GRS 1980", u"GRS 1980", u"GRS 1980"},
    {15, u"Helmert 1906", u"Helmert 1906", u"赫尔墨特 1906 (Helmert 1906)"},
    {16, u"Hough", u"Hough", u"豪科 (Hough)"},
    {17, u"International (Hayford)", u"Internationaal (Hayford)",
     u"国际海佛特 (International Hayford)"},
    {18, u"Krassovsky 1940", u"Krassovsky 1940", u"克拉索夫斯基 1940 (Krassovsky 1940)"},
    {19, u"South American 1969", u"Zuid Amerika 1969", u"南美 1969"},
    {20, u"WGS 72", u"WGS 72", u"WGS 72"},
    {21, u"WGS 84", u"WGS 84", u"WGS 84"},
    {22, u"User defined", u"Gebruiker gedefinieerd", u"用户定义"},
    {47, u"Timbalai Everest", u"Timbalai Everest", u"廷巴拉艾菲渃斯特 (Timbalai Everest)"},
    {64, u"IAG75", u"IAG75", u"IAG75"},
    {65, u"IUGG75", u"IUGG75", u"IUGG75"},
    // Correction-grid messages.
    {IDS_GRID_NOT_FOUND, u"not found", u"niet gevonden", nullptr},
    {IDS_GRID_NOT_APPLIED, u"RDNAPTRANS grid correction cannot be applied!",
     u"RDNAPTRANS grid correctie kan niet worden toegepast!", nullptr},
};

} // namespace

void EnsureGeodesyResources() {
    static std::once_flag once;
    std::call_once(once, [] {
        RegisterResourceTable(s_GeodesyTexts, static_cast<unsigned int>(std::size(s_GeodesyTexts)));
        const std::span<const SResourceText> projections = ProjectionResourceRows();
        RegisterResourceTable(projections.data(), static_cast<unsigned int>(projections.size()));
    });
}

} // namespace vx
