// The WKT reader: section codes, heights, every geometry form, and exact error positions.
#include "Wkt.h"

#include "InterchangeTest.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

namespace {

using vxinterchange::CWktError;
using vxinterchange::Lines;
using vxinterchange::ReadWkt;

using vxinterchangetest::Codes;

// The 1-based position and the text of the error the reader raises, or 0 when it reads.
struct ErrorAt {
    size_t position = 0;
    std::string expected;
};
ErrorAt ErrorOf(const std::string &text) {
    try {
        ReadWkt(text);
    } catch (const CWktError &e) {
        return {e.Position(), e.Expected()};
    }
    return {};
}

TEST(WktRead, StraightLinesKeepTheirNumbersAndHeights) {
    const Lines plain = ReadWkt("LINESTRING (1 2, 3.5 -4, 1e3 +0.25)");
    ASSERT_EQ(plain.size(), 1u);
    const vx::CVXCoordArr &l = *plain[0];
    EXPECT_EQ(Codes(l), (std::vector<int>{1, 0, 0}));
    EXPECT_EQ(l.Pt(1).m_dX, 3.5);
    EXPECT_EQ(l.Pt(1).m_dY, -4.0);
    EXPECT_EQ(l.Pt(2).m_dX, 1000.0);
    EXPECT_EQ(l.Pt(2).m_dY, 0.25);
    EXPECT_TRUE(std::isnan(l.Pt(0).m_dZ));

    // Z goes into the height; M is read and dropped; keywords in any case, any white space.
    const Lines z = ReadWkt("linestring z(0 0 5,1 1 6)");
    EXPECT_EQ(z[0]->Pt(1).m_dZ, 6.0);
    const Lines m = ReadWkt("LineString M (0 0 5, 1 1 6)");
    EXPECT_TRUE(std::isnan(m[0]->Pt(1).m_dZ));
    EXPECT_EQ(m[0]->Pt(1).m_dY, 1.0);
    const Lines zm = ReadWkt("\tLINESTRING ZM\n(0 0 5 9, 1 1 6 9)\r\n");
    EXPECT_EQ(zm[0]->Pt(0).m_dZ, 5.0);
}

TEST(WktRead, CircularStringsAreThreePointArcs) {
    const Lines l = ReadWkt("CIRCULARSTRING (0 0, 1 1, 2 0, 3 -1, 4 0)");
    EXPECT_EQ(Codes(*l[0]), (std::vector<int>{1, 8, 8, 8, 8}));
    EXPECT_TRUE(l[0]->bBoog(0));
    EXPECT_TRUE(l[0]->bBoog(2));
    // Two half circles of radius 1: length 2π.
    EXPECT_NEAR(l[0]->dLengte(), 2 * std::numbers::pi, 1e-12);
}

TEST(WktRead, AClosedThreePointCircularStringIsAWholeCircle) {
    // Start (0 0), opposite (2 0): centre (1 0); the start turned a quarter counter-clockwise
    // about it is (1 - (0 - 0), 0 + (0 - 1)) = (1 -1).
    const Lines l = ReadWkt("CIRCULARSTRING Z (0 0 10, 2 0 20, 0 0 10)");
    const vx::CVXCoordArr &c = *l[0];
    EXPECT_EQ(Codes(c), (std::vector<int>{1, 7, 7, 7}));
    EXPECT_TRUE(c.bCirkel());
    EXPECT_EQ(c.Pt(1).m_dX, 1.0);
    EXPECT_EQ(c.Pt(1).m_dY, -1.0);
    EXPECT_EQ(c.Pt(1).m_dZ, 15.0); // the mean of the two given heights
    EXPECT_EQ(c.Pt(2).m_dX, 2.0);
    EXPECT_EQ(c.Pt(3).m_dX, 0.0);
    EXPECT_NEAR(c.dLengte(), 2 * std::numbers::pi, 1e-12);
    // The same circle as the ring of a curve polygon.
    const Lines p = ReadWkt("CURVEPOLYGON (CIRCULARSTRING (0 0, 2 0, 0 0))");
    EXPECT_EQ(Codes(*p[0]), (std::vector<int>{1, 7, 7, 7}));
}

TEST(WktRead, CompoundCurvesJoinTheirParts) {
    const Lines l = ReadWkt("COMPOUNDCURVE ((0 0, 1 0), CIRCULARSTRING (1 0, 2 1, 3 0), "
                            "LINESTRING (3 0, 4 0, 5 0))");
    EXPECT_EQ(Codes(*l[0]), (std::vector<int>{1, 0, 8, 8, 0, 0}));
    EXPECT_EQ(l[0]->Pt(5).m_dX, 5.0);
    // An arc first, and a part that repeats the enclosing dimension.
    const Lines z =
        ReadWkt("COMPOUNDCURVE Z (CIRCULARSTRING Z (0 0 1, 1 1 1, 2 0 1), (2 0 1, 3 0 2))");
    EXPECT_EQ(Codes(*z[0]), (std::vector<int>{1, 8, 8, 0}));
    EXPECT_EQ(z[0]->Pt(3).m_dZ, 2.0);
}

TEST(WktRead, PolygonsGiveTheirOuterRing) {
    const Lines p = ReadWkt("POLYGON ((0 0, 4 0, 4 4, 0 0))");
    EXPECT_EQ(Codes(*p[0]), (std::vector<int>{1, 0, 0, 0}));
    EXPECT_TRUE(p[0]->bGesloten());
    const Lines c = ReadWkt(
        "CURVEPOLYGON (COMPOUNDCURVE (CIRCULARSTRING (0 0, 2 -2, 4 0), (4 0, 4 4, 0 4, 0 0)))");
    EXPECT_EQ(Codes(*c[0]), (std::vector<int>{1, 8, 8, 0, 0, 0}));
}

TEST(WktRead, MultiFormsAndCollectionsGiveOneLinePerMember) {
    EXPECT_EQ(ReadWkt("MULTILINESTRING ((0 0, 1 1), (2 2, 3 3), EMPTY)").size(), 2u);
    EXPECT_EQ(ReadWkt("MULTIPOLYGON (((0 0, 1 0, 1 1, 0 0)), ((5 5, 6 5, 6 6, 5 5)))").size(), 2u);
    const Lines curves =
        ReadWkt("MULTICURVE ((0 0, 1 1), CIRCULARSTRING (0 0, 1 1, 2 0), COMPOUNDCURVE ((0 0, 1 "
                "0), CIRCULARSTRING (1 0, 2 1, 3 0)))");
    ASSERT_EQ(curves.size(), 3u);
    EXPECT_EQ(Codes(*curves[2]), (std::vector<int>{1, 0, 8, 8}));
    EXPECT_EQ(ReadWkt("MULTISURFACE (((0 0, 1 0, 1 1, 0 0)), CURVEPOLYGON (CIRCULARSTRING (0 0, "
                      "2 0, 0 0)))")
                  .size(),
              2u);
    EXPECT_EQ(ReadWkt("GEOMETRYCOLLECTION (LINESTRING (0 0, 1 1), GEOMETRYCOLLECTION "
                      "(POLYGON EMPTY, LINESTRING (2 2, 3 3)))")
                  .size(),
              2u);
    // Several geometries, one after the other; EMPTY ones give nothing.
    EXPECT_EQ(ReadWkt("LINESTRING (0 0, 1 1)\nLINESTRING EMPTY\nLINESTRING (2 2, 3 3)\n").size(),
              2u);
}

TEST(WktRead, ErrorsNameTheirPositionAndWhatWasExpected) {
    // "LINESTRING (0 0, 1 1" has 20 characters: the end is at 21.
    ErrorAt e = ErrorOf("LINESTRING (0 0, 1 1");
    EXPECT_EQ(e.position, 21u);
    EXPECT_EQ(e.expected, "',' or ')', found the end of the text");
    // A missing parenthesis is not repaired: '(' was expected at the '0', character 12.
    e = ErrorOf("LINESTRING 0 0, 1 1)");
    EXPECT_EQ(e.position, 12u);
    EXPECT_EQ(e.expected, "'(', found '0'");
    e = ErrorOf("LINESTRING (0 0, 1 x)");
    EXPECT_EQ(e.position, 20u);
    EXPECT_EQ(e.expected, "a finite number, found 'x'");
    e = ErrorOf("LINESTRING (0 0, 1 1e999)");
    EXPECT_EQ(e.position, 20u);
    e = ErrorOf("POINT (1 2)");
    EXPECT_EQ(e.position, 1u);
    EXPECT_NE(e.expected.find("found 'POINT'"), std::string::npos);
    e = ErrorOf("LINESTRING (0 0)");
    EXPECT_EQ(e.position, 16u); // the ')'
    EXPECT_EQ(e.expected, "at least 2 points in a line");
    e = ErrorOf("LINESTRING (0 0, 1 1) \x01");
    EXPECT_EQ(e.position, 23u);
    EXPECT_NE(e.expected.find("found byte 0x01"), std::string::npos);
    e = ErrorOf("   ");
    EXPECT_EQ(e.position, 4u);
}

TEST(WktRead, CurveAndRingErrorsPointAtTheirCause) {
    // An even count: reported at the ')' (character 25).
    ErrorAt e = ErrorOf("CIRCULARSTRING (0 0, 1 1)");
    EXPECT_EQ(e.position, 25u);
    EXPECT_EQ(e.expected, "an odd number of points, at least 3, in a circular string");
    // Three points on one line: reported at the support point (character 22).
    e = ErrorOf("CIRCULARSTRING (0 0, 1 1, 2 2)");
    EXPECT_EQ(e.position, 22u);
    e = ErrorOf("CIRCULARSTRING (0 0, 0 0, 0 0)");
    EXPECT_EQ(e.expected, "a middle point apart from the start of a whole circle");
    // A part that does not start where the one before ends: at its first point (character 29).
    e = ErrorOf("COMPOUNDCURVE ((0 0, 1 0), (2 0, 3 0))");
    EXPECT_EQ(e.position, 29u);
    EXPECT_EQ(e.expected, "the part to start where the previous one ends");
    e = ErrorOf("COMPOUNDCURVE Z ((0 0 1, 1 0 1), LINESTRING M (1 0 1, 2 0 1))");
    EXPECT_EQ(e.position, 45u); // the 'M'
    e = ErrorOf("COMPOUNDCURVE (CIRCULARSTRING (0 0, 1 0, 0 0))");
    EXPECT_EQ(e.expected, "an arc, not a whole circle, in a compound curve");
    // The ring starts at character 10; its end differs from its start.
    e = ErrorOf("POLYGON ((0 0, 1 0, 1 1, 0 1))");
    EXPECT_EQ(e.position, 10u);
    EXPECT_EQ(e.expected, "a ring that ends on its first point");
    EXPECT_EQ(ErrorOf("POLYGON ((0 0, 1 0, 0 0))").expected, "at least 4 points in a ring");
    // A hole: the ',' after the outer ring, at character 30.
    e = ErrorOf("POLYGON ((0 0, 4 0, 4 4, 0 0), (1 1, 2 1, 2 2, 1 1))");
    EXPECT_EQ(e.position, 30u);
    EXPECT_NE(e.expected.find("holes"), std::string::npos);
}

TEST(WktRead, CirclesWhoseCentreCannotBeComputedAreRefused) {
    // So close that the quarter point rounds onto the line through them.
    EXPECT_EQ(ErrorOf("CIRCULARSTRING (1 1, 1.0000000000000002 1, 1 1)").expected,
              "a whole circle whose centre can be computed");
    // So far apart that the quarter point overflows.
    EXPECT_EQ(ErrorOf("CIRCULARSTRING (-1e308 1e308, 1e308 -1e308, -1e308 1e308)").expected,
              "a whole circle whose centre can be computed");
}

TEST(WktRead, DeepNestingIsRefusedNotRecursedWithoutEnd) {
    std::string text;
    for (int i = 0; i < 40; ++i)
        text += "GEOMETRYCOLLECTION (";
    // Each opening is 20 characters; the parenthesis of the 33rd is at 32 × 20 + 20.
    const ErrorAt e = ErrorOf(text);
    EXPECT_EQ(e.position, 32u * 20u + 20u);
    EXPECT_NE(e.expected.find("at most 32 nested collections"), std::string::npos);
}

} // namespace
