// vx convert's keywords there and back: every keyword over a grid of points in its area of use,
// its class defaults and options, and the heights with and without a geoid model.
#include "convert/ConvertOptions.h"
#include "convert/Keywords.h"
#include "convert/PointConverter.h"

#include "geodesy/Angles.h"
#include "geodesy/Geoid.h"
#include "support/NoGridFiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace vxtool::convert;

namespace {

// 1e-9 degrees is 0.11 mm on the meridian; the grid corrections are evaluated at points that
// differ by the correction itself in the two directions, which the tolerance leaves room for.
constexpr double kDegreeTolerance = 1e-9;
constexpr int kSteps = 5; // a kSteps x kSteps grid over each area

// The Belgian shift runs on published constants whose two directions differ (the y translation
// by 0.88 mm): its round trip closes to some 0.15 mm, which this bound (0.3 mm) takes in.
constexpr double kBelgianShiftTolerance = 3e-9;

struct SArea {
    const char *keyword;
    std::vector<std::string> options; // as on the command line
    double lat0, lat1, lon0, lon1;
    double tolerance = kDegreeTolerance;
};

// Each keyword's area of use (for the parametric ones, an area about the origin they are given).
const std::vector<SArea> &Areas() {
    static const std::vector<SArea> areas = {
        {"NONE", {}, 50.0, 54.0, 3.0, 7.0},
        {"RD", {}, 50.8, 53.5, 3.4, 7.2},
        {"LAMBERT72", {}, 49.6, 51.5, 2.6, 6.4},
        {"GAUSS_KRUGER", {"--lon0", "9", "--fe", "3500000"}, 47.0, 55.0, 7.5, 10.5},
        {"UTM_NORTH", {"--zone", "31"}, 40.0, 60.0, 0.0, 6.0},
        {"UTM_SOUTH", {"--zone", "34"}, -35.0, -10.0, 18.0, 24.0},
        {"UTM_NORTH", {"--zone", "34", "--south"}, -35.0, -10.0, 18.0, 24.0},
        {"LOCAL", {"--lat0", "52", "--lon0", "5", "--fe", "1000"}, 51.0, 53.0, 4.0, 6.0},
        // A TM zone is some 6 degrees wide: the series holds 0.1 mm within 3 degrees of it.
        {"TM", {}, -5.0, 5.0, -3.0, 3.0},
        {"STEREOGRAPHIC",
         {"--lat0", "46", "--lon0", "25", "--k", "0.99975"},
         44.0,
         48.0,
         21.0,
         29.0},
        {"LAMBERT1", {"--par1", "52", "--lat0", "52", "--lon0", "5"}, 48.0, 56.0, 1.0, 9.0},
        {"LAMBERT2", {"--par1", "49", "--par2", "53", "--lat0", "51"}, 48.0, 56.0, -4.0, 4.0},
        {"BRSO", {}, 1.0, 7.0, 109.0, 119.0},
        {"MRSO", {}, 1.3, 6.7, 99.6, 104.6},
        {"RDNAPTRANS", {}, 50.8, 53.5, 3.4, 7.2},
        {"SWISS", {}, 45.8, 47.8, 5.9, 10.5},
        {"LAMBERT72CORR", {}, 49.6, 51.5, 2.6, 6.4, kBelgianShiftTolerance},
        {"LAMBERT2008", {}, 49.6, 51.5, 2.6, 6.4},
        {"RDNAPTRANS2008", {}, 50.8, 53.5, 3.4, 7.2},
        {"RDNAPTRANS2004", {}, 50.8, 53.5, 3.4, 7.2},
    };
    return areas;
}

class ConvertKeywords : public vxtest::NoGridFiles {
protected:
    std::unique_ptr<vx::COutputSystem> Make(const std::string &name,
                                            const std::vector<std::string> &args,
                                            const SKeyword *&keyword, std::string &error) {
        SProjectionOptions options;
        std::vector<std::string> all = args;
        for (std::size_t i = 0; i < all.size() && error.empty(); ++i)
            EXPECT_TRUE(bTakeProjectionOption(all, i, options, error)) << all[i];
        keyword = FindKeyword(name);
        EXPECT_NE(keyword, nullptr) << name;
        return keyword ? MakeProjection(keyword, options, error) : nullptr;
    }
};

// The lateral distance of two geographic points in degrees, a longitude degree scaled by the
// cosine of the latitude as the meridian degree is not.
double Apart(double lat0, double lon0, double lat1, double lon1) {
    const double dLon = NormalisedLongitude(lon1 - lon0) * std::cos(vx::DegToRad(lat0));
    return std::hypot(lat1 - lat0, dLon);
}

} // namespace

// A height steps through 0, a cellar, a roof and a mountain; with no geoid model it must come
// back bit for bit, and the plane must go back to the start within 1e-9 degrees.
TEST_F(ConvertKeywords, EveryKeywordRoundTripsOverItsArea) {
    const double heights[] = {0.0, -7.25, 43.27, 2500.5};
    for (const SArea &area : Areas()) {
        const SKeyword *keyword = nullptr;
        std::string error;
        const auto p = Make(area.keyword, area.options, keyword, error);
        ASSERT_TRUE(p) << area.keyword << ": " << error;
        std::vector<SPoint> points;
        for (int i = 0; i < kSteps; ++i)
            for (int j = 0; j < kSteps; ++j) {
                SPoint pt;
                pt.a = area.lat0 + (area.lat1 - area.lat0) * i / (kSteps - 1);
                pt.b = area.lon0 + (area.lon1 - area.lon0) * j / (kSteps - 1);
                pt.h = heights[(i + j) % 4];
                pt.bHeight = true;
                points.push_back(pt);
            }
        CPointConverter forward(*p, *keyword, true, false);
        CPointConverter backward(*p, *keyword, false, false);
        std::vector<SPoint> back = points;
        forward.Convert(back);
        for (SPoint &b : back) {
            ASSERT_EQ(b.error, nullptr) << area.keyword;
            b = SPoint{b.ra, b.rb, b.rh, true};
        }
        backward.Convert(back);
        for (std::size_t k = 0; k < points.size(); ++k) {
            const SPoint &in = points[k];
            const SPoint &out = back[k];
            ASSERT_EQ(out.error, nullptr) << area.keyword;
            EXPECT_LE(Apart(in.a, in.b, out.ra, out.rb), area.tolerance)
                << area.keyword << " at " << in.a << " " << in.b << " h " << in.h << ": back at "
                << out.ra << " " << out.rb;
            EXPECT_EQ(out.rh, in.h) << area.keyword;
        }
    }
}

// The class's own defaults: the Swiss origin (Bern, 46d57'08.66"N 7d26'22.50"E) lies at the
// false origin 2600000 / 1200000 of the current Swiss frame by the projection's definition; a
// UTM zone's central meridian is 6 z - 183 degrees and its false easting 500000 m.
TEST_F(ConvertKeywords, OptionsStartFromTheClassDefaults) {
    const SKeyword *keyword = nullptr;
    std::string error;
    const auto swiss = Make("SWISS", {}, keyword, error);
    ASSERT_TRUE(swiss) << error;
    SPoint bern;
    bern.a = 46.0 + 57.0 / 60 + 8.66 / 3600;
    bern.b = 7.0 + 26.0 / 60 + 22.50 / 3600;
    std::vector<SPoint> one{bern};
    CPointConverter(*swiss, *keyword, true, false).Convert(one);
    EXPECT_NEAR(one[0].ra, 2600000.0, 0.01);
    EXPECT_NEAR(one[0].rb, 1200000.0, 0.01);

    const auto utm = Make("UTM_NORTH", {"--zone", "31", "--south"}, keyword, error);
    ASSERT_TRUE(utm) << error;
    EXPECT_EQ(keyword->type, vx::PT_UTM_SOUTH);
    EXPECT_EQ(utm->dGetLonOriginCM(), vx::DegToRad(3.0)); // 6 * 31 - 183
    EXPECT_EQ(utm->dGetFalseEasting(), 500000.0);
    EXPECT_EQ(utm->dGetFalseNorthing(), 10000000.0);
    EXPECT_EQ(utm->dGetProjScaleFac(), 0.9996);

    const auto tm = Make("TM", {"--lon0", "9d30'", "--k", "0.9999"}, keyword, error);
    ASSERT_TRUE(tm) << error;
    EXPECT_EQ(tm->dGetLonOriginCM(), vx::DegToRad(9.5));
    EXPECT_EQ(tm->dGetProjScaleFac(), 0.9999);
    EXPECT_EQ(tm->dGetFalseEasting(), 0.0);
}

TEST_F(ConvertKeywords, RefusesOptionsItDoesNotUseAndDegenerateParameters) {
    const auto refuses = [&](const char *name, std::vector<std::string> args, const char *text) {
        const SKeyword *keyword = nullptr;
        std::string error;
        EXPECT_FALSE(Make(name, args, keyword, error)) << name;
        EXPECT_NE(error.find(text), std::string::npos) << name << ": " << error;
    };
    refuses("RD", {"--k", "1"}, "option --k is not used by RD (it takes no options)");
    refuses("UTM_NORTH", {"--zone", "31", "--fe", "0"}, "--fe is not used by UTM_NORTH");
    refuses("SWISS", {"--ellipsoid", "WGS84"}, "--ellipsoid is not used by SWISS");
    refuses("LAMBERT72CORR", {"--lon0", "4"}, "--lon0 is not used");
    refuses("TM", {"--geoid", "g.gtx"}, "--geoid is not used by TM");
    refuses("UTM_NORTH", {}, "needs --zone");
    refuses("UTM_NORTH", {"--zone", "61"}, "zone from 1 to 60");
    refuses("UTM_NORTH", {"--zone", "31", "--lon0", "3"}, "give one");
    refuses("LAMBERT1", {}, "needs --par1");
    refuses("LAMBERT2", {"--par1", "50"}, "needs --par1 --par2");
    // A cone tangent on the equator has no apex: sin(0) = 0 divides.
    refuses("LAMBERT1", {"--par1", "0"}, "degenerate");
    refuses("TM", {"--lat0", "91"}, "within -90 and 90");
    refuses("TM", {"--ellipsoid", "NOPE"}, "unknown ellipsoid");
    refuses("TM", {"--k", "0"}, "above 0");
}

namespace {

// A geoid 43.25 m above the ellipsoid over the Netherlands (a value a float holds exactly), no
// value elsewhere.
class CFlatGeoid : public vx::IGeoidModel {
public:
    double GeoidHeight(double lat, double lon) override {
        return lat > 50.0 && lat < 54.0 && lon > 3.0 && lon < 8.0 ? 43.25 : vx::dNoGeoidHeight;
    }
};

} // namespace

// With a model, H = h - N going in and h = H + N coming back: 50 - 43.25 = 6.75 and back.
TEST_F(ConvertKeywords, GeoidModelConvertsHeightsBothWays) {
    const SKeyword *keyword = nullptr;
    std::string error;
    const auto p = Make("RDNAPTRANS2008", {}, keyword, error);
    ASSERT_TRUE(p) << error;
    CFlatGeoid geoid;
    vx::RegisterGeoidModel(keyword->nGeoidModel, &geoid);
    std::vector<SPoint> pts(2);
    pts[0].a = 52.1551744;
    pts[0].b = 5.3872036;
    pts[0].h = 50.0;
    pts[0].bHeight = true;
    pts[1] = pts[0];
    pts[1].a = 49.0; // south of the model
    CPointConverter(*p, *keyword, true, true).Convert(pts);
    EXPECT_EQ(pts[0].rh, 6.75);
    EXPECT_NE(pts[1].error, nullptr);
    std::vector<SPoint> back{SPoint{pts[0].ra, pts[0].rb, pts[0].rh, true}};
    CPointConverter(*p, *keyword, false, true).Convert(back);
    EXPECT_EQ(back[0].rh, 50.0);
    EXPECT_LE(Apart(52.1551744, 5.3872036, back[0].ra, back[0].rb), kDegreeTolerance);
    vx::RegisterGeoidModel(keyword->nGeoidModel, nullptr);
}
