// The WKT writer: text -> line -> text round trips, the forms chosen for each shape, shortest
// exact numbers, splines as chords.
#include "Wkt.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstring>
#include <random>
#include <string>

namespace {

using vxinterchange::Lines;
using vxinterchange::ReadWkt;
using vxinterchange::WriteWkt;

std::string RoundTrip(const std::string &text) {
    return WriteWkt(ReadWkt(text));
}

vx::CVXCoordArr LineOf(std::initializer_list<vx::CVXCoord> points) {
    vx::CVXCoordArr line;
    for (const vx::CVXCoord &p : points)
        line.Add(&p);
    return line;
}

TEST(WktWrite, CanonicalTextsComeBackUnchanged) {
    const char *const texts[] = {
        "LINESTRING (0 0, 1.5 -2, 1e+20 3)",
        "LINESTRING Z (0 0 1, 1 1 2.25)",
        "CIRCULARSTRING (0 0, 1 1, 2 0, 3 -1, 4 0)",
        "COMPOUNDCURVE ((0 0, 1 0), CIRCULARSTRING (1 0, 2 1, 3 0), (3 0, 4 0, 5 0))",
        "COMPOUNDCURVE (CIRCULARSTRING (0 0, 1 1, 2 0), (2 0, 3 0))",
        "POLYGON ((0 0, 4 0, 4 4, 0 0))",
        "CURVEPOLYGON (CIRCULARSTRING (0 0, 2 -2, 4 0, 2 2, 0 0))",
        "CURVEPOLYGON (COMPOUNDCURVE (CIRCULARSTRING (0 0, 2 -2, 4 0), (4 0, 4 4, 0 4, 0 0)))",
        "CURVEPOLYGON (CIRCULARSTRING (0 0, 2 0, 0 0))",
        "CURVEPOLYGON Z (CIRCULARSTRING Z (0.1 0.2 3, 2.7 -0.3 4, 0.1 0.2 3))",
        "CURVEPOLYGON Z (COMPOUNDCURVE Z ((0 0 1, 4 0 1), CIRCULARSTRING Z (4 0 1, 5 2 1, 4 4 1), "
        "(4 4 1, 0 0 1)))",
    };
    for (const char *text : texts)
        EXPECT_EQ(RoundTrip(text), std::string(text) + "\n") << text;
    // Two geometries: one per line of text, in order.
    EXPECT_EQ(RoundTrip("LINESTRING (0 0, 1 1) POLYGON ((0 0, 1 0, 1 1, 0 0))"),
              "LINESTRING (0 0, 1 1)\nPOLYGON ((0 0, 1 0, 1 1, 0 0))\n");
}

TEST(WktWrite, TheLibraryHasNoPolygonFlagSoClosedLinesArePolygons) {
    // A closed LINESTRING reads as a closed line and is written as the polygon it is.
    EXPECT_EQ(RoundTrip("LINESTRING (0 0, 1 0, 1 1, 0 0)"), "POLYGON ((0 0, 1 0, 1 1, 0 0))\n");
    // A bare circular string that ends on its start is a circle: a curve polygon.
    EXPECT_EQ(RoundTrip("CIRCULARSTRING (0 0, 2 0, 0 0)"),
              "CURVEPOLYGON (CIRCULARSTRING (0 0, 2 0, 0 0))\n");
    // Closed only within the library's tolerance: no point is moved, the line stays open
    // (and 0.0001 is written in its shortest form, "1e-04").
    const vx::CVXCoordArr nearly = LineOf({{0, 0, 1}, {4, 0, 0}, {4, 4, 0}, {0.0001, 0, 0}});
    EXPECT_EQ(WriteWkt(nearly), "LINESTRING (0 0, 4 0, 4 4, 1e-04 0)");
}

TEST(WktWrite, ACircleFromTheLibraryIsWrittenThroughItsOppositePoint) {
    // Through (0 0), (1 1), (1 -1): centre (1 0), so the point opposite (0 0) is (2 0).
    const vx::CVXCoordArr circle = LineOf({{0, 0, 1}, {1, 1, 7}, {1, -1, 7}});
    EXPECT_EQ(WriteWkt(circle), "CURVEPOLYGON (CIRCULARSTRING (0 0, 2 0, 0 0))");
    // Heights are written only when every point has one.
    vx::CVXCoordArr mixed = LineOf({{0, 0, 1}, {3, 0, 0}});
    mixed.GetAt(0)->m_dZ = 7.0;
    EXPECT_EQ(WriteWkt(mixed), "LINESTRING (0 0, 3 0)");
    EXPECT_THROW(WriteWkt(LineOf({{0, 0, 1}})), std::invalid_argument);
}

TEST(WktWrite, NumbersAreTheShortestTextThatReadsBackExactly) {
    std::mt19937_64 random(20240611);
    std::uniform_int_distribution<uint64_t> bits;
    for (int i = 0; i < 2000; ++i) {
        double x = 0.0;
        do {
            const uint64_t b = bits(random);
            std::memcpy(&x, &b, sizeof x);
        } while (!std::isfinite(x));
        const std::string text = vxinterchange::NumberText(x);
        double back = 0.0;
        std::from_chars(text.data(), text.data() + text.size(), back);
        EXPECT_EQ(std::memcmp(&back, &x, sizeof x), 0) << text;
    }
    EXPECT_EQ(vxinterchange::NumberText(0.1), "0.1");
    EXPECT_EQ(vxinterchange::NumberText(155000.125), "155000.125");
    EXPECT_EQ(vxinterchange::NumberText(1e-7), "1e-07");
}

TEST(WktWrite, SplinesAreWrittenAsSixteenChordsPerInterval) {
    // The spline through (0 0), (1 1), (2 0): two intervals, 16 chords each, through the
    // spline's own points at 0, 16 and 32. The natural spline through three points symmetric
    // about x = 1 stays symmetric: point 8 mirrors point 24.
    const vx::CVXCoordArr spline = LineOf({{0, 0, 1}, {1, 1, 6}, {2, 0, 6}});
    const Lines back = ReadWkt(WriteWkt(spline));
    const vx::CVXCoordArr &l = *back[0];
    ASSERT_EQ(l.GetSize(), 33);
    EXPECT_EQ(l.Pt(16).m_dX, 1.0);
    EXPECT_EQ(l.Pt(16).m_dY, 1.0);
    EXPECT_EQ(l.Pt(32).m_dX, 2.0);
    EXPECT_NEAR(l.Pt(8).m_dX + l.Pt(24).m_dX, 2.0, 1e-12);
    EXPECT_NEAR(l.Pt(8).m_dY, l.Pt(24).m_dY, 1e-12);
    EXPECT_GT(l.Pt(8).m_dY, 0.5); // above the chord from (0 0) to (1 1) at x ≈ 0.5
}

} // namespace
