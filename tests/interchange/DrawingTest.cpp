// GeoJSON and SVG: the flattened arcs stay within their tolerance, the SVG arc flags follow the
// three points, and the view box and legend are where they should be.
#include "GeoJson.h"
#include "Svg.h"
#include "Wkt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

namespace {

using vxinterchange::Lines;
using vxinterchange::ReadWkt;

std::vector<std::string> Tokens(const std::string &text) {
    std::istringstream in(text);
    std::vector<std::string> out;
    for (std::string t; in >> t;)
        out.push_back(t);
    return out;
}

// The numbers of every "[x,y]" position in the text (brackets around a comma, no brackets
// within).
std::vector<std::pair<double, double>> Positions(const std::string &json) {
    std::vector<std::pair<double, double>> out;
    for (size_t open = json.find('['); open != std::string::npos; open = json.find('[', open + 1)) {
        const size_t close = json.find(']', open);
        const std::string inner = json.substr(open + 1, close - open - 1);
        const size_t comma = inner.find(',');
        if (inner.empty() || inner.find('[') != std::string::npos || comma == std::string::npos)
            continue;
        out.emplace_back(std::stod(inner.substr(0, comma)), std::stod(inner.substr(comma + 1)));
    }
    return out;
}

TEST(GeoJson, StraightLinesAndRingsAreWrittenAsTheyAre) {
    const Lines lines = ReadWkt("LINESTRING Z (0 0 1, 2.5 0 2) POLYGON ((0 0, 4 0, 4 4, 0 0))");
    EXPECT_EQ(vxinterchange::WriteGeoJson(lines, 0.01),
              "{\"type\":\"FeatureCollection\",\"features\":[\n"
              "{\"type\":\"Feature\",\"properties\":{},\"geometry\":{\"type\":\"LineString\","
              "\"coordinates\":[[0,0,1],[2.5,0,2]]}},\n"
              "{\"type\":\"Feature\",\"properties\":{},\"geometry\":{\"type\":\"Polygon\","
              "\"coordinates\":[[[0,0],[4,0],[4,4],[0,0]]]}}\n"
              "]}\n");
}

TEST(GeoJson, ArcsBecomeChordsWithinTheTolerance) {
    // A half circle of radius 10 about the origin, from (10 0) over (0 10) to (-10 0).
    const Lines arc = ReadWkt("CIRCULARSTRING (10 0, 0 10, -10 0)");
    for (const double tol : {0.5, 0.01}) {
        const auto pts = Positions(vxinterchange::WriteGeoJson(arc, tol));
        ASSERT_GE(pts.size(), 3u);
        EXPECT_EQ(pts.front(), std::make_pair(10.0, 0.0));
        EXPECT_EQ(pts.back(), std::make_pair(-10.0, 0.0));
        for (size_t i = 0; i + 1 < pts.size(); ++i) {
            // Every vertex on the circle (to rounding), every chord's middle within tol of it.
            EXPECT_NEAR(std::hypot(pts[i].first, pts[i].second), 10.0, 1e-9);
            const double mx = (pts[i].first + pts[i + 1].first) / 2;
            const double my = (pts[i].second + pts[i + 1].second) / 2;
            EXPECT_LE(10.0 - std::hypot(mx, my), tol);
            EXPECT_GE(pts[i].second, 0.0); // the upper half, where the support point lies
        }
    }
}

TEST(GeoJson, ChordsBeyondTheBudgetAreRefusedNotAllocated) {
    // Half circles of radius 100 at a tolerance of 1e-6: each becomes about
    // π / acos(1 - 1e-8) ≈ 22200 chords, so 10 of them pass a budget of 200 000 positions,
    // and 8 stay within it.
    std::string wkt = "CIRCULARSTRING (0 0";
    for (int k = 0; k < 10; ++k)
        wkt += ", " + std::to_string(200 * k + 100) + (k % 2 ? " -100, " : " 100, ") +
               std::to_string(200 * k + 200) + " 0";
    const Lines arcs = ReadWkt(wkt + ")");
    EXPECT_THROW(vxinterchange::WriteGeoJson(arcs, 1e-6, {}, 200000), std::length_error);
    const Lines fewer = ReadWkt(wkt.substr(0, wkt.find(", 1700 ")) + ")");
    EXPECT_NO_THROW(vxinterchange::WriteGeoJson(fewer, 1e-6, {}, 200000));
}

TEST(Svg, ArcFlagsFollowTheThreePoints) {
    // On the circle of radius 10 about the origin, Y negated in the drawing. (6 8) lies between
    // 0° and 90°, (-6 -8) on the far side. SVG's positive sense turns from its X axis towards
    // its Y axis, which points down: clockwise as the map is seen, so a clockwise arc on the
    // map has sweep 1 and a counter-clockwise one sweep 0.
    struct Case {
        const char *wkt;
        const char *large;
        const char *sweep;
        const char *end;
    };
    const Case cases[] = {
        {"CIRCULARSTRING (10 0, 6 8, 0 10)", "0", "0", "-10"},   // quarter, counter-clockwise
        {"CIRCULARSTRING (0 10, 6 8, 10 0)", "0", "1", "0"},     // quarter, clockwise
        {"CIRCULARSTRING (10 0, -6 -8, 0 10)", "1", "1", "-10"}, // three quarters, clockwise
        {"CIRCULARSTRING (0 10, -6 -8, 10 0)", "1", "0", "0"},   // three quarters, counter-
    };
    for (const Case &c : cases) {
        const std::vector<std::string> t = Tokens(vxinterchange::SvgPathData(*ReadWkt(c.wkt)[0]));
        // M x y A r r 0 large sweep x y
        ASSERT_EQ(t.size(), 11u) << c.wkt;
        EXPECT_EQ(t[3], "A");
        EXPECT_NEAR(std::stod(t[4]), 10.0, 1e-12) << c.wkt;
        EXPECT_EQ(t[6], "0");
        EXPECT_EQ(t[7], c.large) << c.wkt;
        EXPECT_EQ(t[8], c.sweep) << c.wkt;
        EXPECT_EQ(t[10], c.end) << c.wkt;
    }
}

TEST(Svg, CirclesAndRingsArePathsOfTheirOwn) {
    // The circle through (0 0), (1 1), (2 0) runs clockwise on the map: sweep 1 in the drawing.
    vx::CVXCoordArr circle;
    const vx::CVXCoord pts[] = {{0, 0, 1}, {1, 1, 7}, {2, 0, 7}};
    for (const vx::CVXCoord &p : pts)
        circle.Add(&p);
    EXPECT_EQ(vxinterchange::SvgPathData(circle), "M 0 0 A 1 1 0 0 1 2 0 A 1 1 0 0 1 0 0 Z");
    EXPECT_EQ(vxinterchange::SvgPathData(*ReadWkt("POLYGON ((0 0, 4 0, 4 3, 0 0))")[0]),
              "M 0 0 L 4 0 L 4 -3 L 0 0 Z");
}

TEST(Svg, TheViewBoxHoldsEveryCurveAndTheLegendNamesTheLayers) {
    // A half circle bulging to y = 10 beyond its end points (y = 0): extents 20 by 10, margin
    // 5 % of 20 = 1, so the drawing spans x -11..11 and (Y negated) y -11..1, 22 by 12. The
    // legend's text is 22 / 32 = 0.6875 high, its band 0.6875 × (2 × 1.5 + 0.5) = 2.40625 above:
    // the box starts at (-11, -13.40625) and is 22 by 14.40625; 800 px wide, 800 × 14.40625 / 22
    // = 523.9 px high; strokes 2 px = 2 × 22 / 800 = 0.055 units.
    const Lines arc = ReadWkt("CIRCULARSTRING (-10 0, 0 10, 10 0)");
    const Lines none;
    const std::string svg = vxinterchange::WriteSvg(
        {{&arc, "arc <1> & co", "#123456", false}, {&none, "nothing", "red", true}});
    EXPECT_NE(svg.find("width=\"800\" height=\"524\" viewBox=\"-11 -13.40625 22 14.40625\""),
              std::string::npos);
    EXPECT_NE(svg.find("stroke-width=\"0.055\""), std::string::npos);
    EXPECT_NE(svg.find("font-size=\"0.6875\""), std::string::npos);
    EXPECT_NE(svg.find(">arc &lt;1&gt; &amp; co</text>"), std::string::npos);
    EXPECT_NE(svg.find(">nothing</text>"), std::string::npos);
    EXPECT_NE(svg.find("stroke=\"#123456\""), std::string::npos);
}

} // namespace
