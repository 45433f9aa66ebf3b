// The text side of vx convert: angles, fields, columns, fixed numbers and the command line.
#include "convert/ConvertOptions.h"
#include "convert/LineParser.h"
#include "convert/NumberFormat.h"

#include <gtest/gtest.h>

#include <string>

using namespace vxtool::convert;

namespace {

double Angle(const std::string &text, AngleAxis axis = AngleAxis::latitude) {
    double v = -999.0;
    std::string error;
    EXPECT_EQ(ParseAngle(text, axis, v, error), NumberState::ok) << text << ": " << error;
    return v;
}

NumberState AngleState(const std::string &text, AngleAxis axis, std::string &error) {
    double v = 0.0;
    return ParseAngle(text, axis, v, error);
}

std::string Fixed(double v, int decimals) {
    char buf[kMaxFixedChars];
    return std::string(buf, WriteFixed(buf, v, decimals));
}

std::vector<std::string> Fields(const std::string &line, char delimiter) {
    std::vector<SField> fields;
    SplitFields(line, delimiter, fields);
    std::vector<std::string> out;
    for (const SField &f : fields)
        out.push_back(line.substr(f.begin, f.end - f.begin));
    return out;
}

} // namespace

TEST(ConvertAngles, DegreesMinutesSecondsAndHemispheres) {
    // 52d09'18.6" = 52 + 9/60 + 18.6/3600 = 52 + 0.15 + 0.0051666... = 52.1551666...
    EXPECT_NEAR(Angle("52d09'18.6\"N"), 52.155166666666667, 1e-12);
    EXPECT_NEAR(Angle("52\xC2\xB0"
                      "9'18.6\""),
                52.155166666666667, 1e-12);
    // 4d30' west = -(4 + 30/60) = -4.5, exactly.
    EXPECT_EQ(Angle("4d30'W", AngleAxis::longitude), -4.5);
    EXPECT_EQ(Angle("-4d30'", AngleAxis::longitude), -4.5);
    EXPECT_EQ(Angle("33d52'S"), -(33.0 + 52.0 / 60.0));
    EXPECT_EQ(Angle("5.25E", AngleAxis::longitude), 5.25);
    EXPECT_EQ(Angle("+5"), 5.0);
    EXPECT_EQ(Angle("52d"), 52.0);
    EXPECT_EQ(Angle("-0.5"), -0.5);
}

TEST(ConvertAngles, RefusesWhatIsNoAngle) {
    std::string error;
    EXPECT_EQ(AngleState("52d09'18.6\"E", AngleAxis::latitude, error), NumberState::notANumber);
    EXPECT_NE(error.find("N or S"), std::string::npos);
    EXPECT_EQ(AngleState("5d23'N", AngleAxis::longitude, error), NumberState::notANumber);
    EXPECT_EQ(AngleState("-52N", AngleAxis::latitude, error), NumberState::notANumber);
    EXPECT_NE(error.find("ambiguous"), std::string::npos);
    EXPECT_EQ(AngleState("52d60'", AngleAxis::latitude, error), NumberState::notANumber);
    EXPECT_NE(error.find("below 60"), std::string::npos);
    EXPECT_EQ(AngleState("52d9'60\"", AngleAxis::latitude, error), NumberState::notANumber);
    // Fractional minutes followed by seconds, and degrees without their mark.
    EXPECT_EQ(AngleState("52d9.5'18\"", AngleAxis::latitude, error), NumberState::notANumber);
    EXPECT_EQ(AngleState("52 9", AngleAxis::latitude, error), NumberState::notANumber);
    for (const char *bad : {"", "abc", "+-5", "--5", "5x", "d", "N", "1,5", "0x10"})
        EXPECT_EQ(AngleState(bad, AngleAxis::latitude, error), NumberState::notANumber) << bad;
    for (const char *notFinite : {"nan", "inf", "-inf", "1e999"})
        EXPECT_EQ(AngleState(notFinite, AngleAxis::latitude, error), NumberState::notFinite)
            << notFinite;
}

TEST(ConvertFields, BlanksAndDelimiters) {
    EXPECT_EQ(Fields("  a\tb  c ", '\0'), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(Fields("", '\0'), std::vector<std::string>{});
    // An empty CSV field still counts, and blanks around a field are not part of it.
    EXPECT_EQ(Fields("P1, 52.1 ,,x", ','), (std::vector<std::string>{"P1", "52.1", "", "x"}));
    EXPECT_TRUE(bIsPassThroughLine("   "));
    EXPECT_TRUE(bIsPassThroughLine("  # 52 5"));
    EXPECT_FALSE(bIsPassThroughLine("52 5 # note"));
}

TEST(ConvertColumns, FoundPerLineOrGiven) {
    const auto resolve = [](const std::string &line, const SColumns &given) {
        std::vector<SField> fields;
        SplitFields(line, '\0', fields);
        return ResolveColumns(given, line, fields, true).field;
    };
    using F = std::array<std::size_t, 3>;
    // A point identifier first: the coordinates follow; a numeric third field is the height.
    EXPECT_EQ(resolve("P1 52 5 43 code", {}), (F{1, 2, 3}));
    EXPECT_EQ(resolve("52 5 code", {}), (F{0, 1, kNoField}));
    EXPECT_EQ(resolve("52d09'N 5d23'E 7", {}), (F{0, 1, 2}));
    // A numeric point number cannot be told from a latitude: --columns says it.
    EXPECT_EQ(resolve("1 52 5", {}), (F{0, 1, 2}));
    SColumns given;
    std::string error;
    ASSERT_TRUE(ParseColumns("2,3,4", given, error)) << error;
    EXPECT_EQ(resolve("1 52 5", given), (F{1, 2, 3}));
    ASSERT_TRUE(ParseColumns("3,2", given, error));
    EXPECT_EQ(given.field, (F{2, 1, kNoField}));
    for (const char *bad : {"2", "2,2", "0,1", "1,2,3,4", "a,b", "1,,2", "1001,2"})
        EXPECT_FALSE(ParseColumns(bad, given, error)) << bad;
}

TEST(ConvertFixed, DecimalsAndNoSignOnZero) {
    EXPECT_EQ(Fixed(637294.36594, 4), "637294.3659");
    EXPECT_EQ(Fixed(-1.5, 4), "-1.5000");
    EXPECT_EQ(Fixed(1234567.891, 2), "1234567.89");
    EXPECT_EQ(Fixed(52.1551744, 9), "52.155174400");
    // -0.00001 rounds to zero at 4 decimals: no sign on it.
    EXPECT_EQ(Fixed(-0.00001, 4), "0.0000");
    EXPECT_EQ(Fixed(-0.0, 2), "0.00");
    EXPECT_EQ(Fixed(-0.00006, 4), "-0.0001");
    EXPECT_EQ(Fixed(7.0, 0), "7");
}

TEST(ConvertCommandLine, OptionsPointAndFiles) {
    SConvertRequest r;
    std::string error;
    ASSERT_TRUE(ParseConvertArgs(
        {"--from", "RD", "--precision", "2", "--delimiter", ",", "a.txt", "-"}, r, error))
        << error;
    EXPECT_FALSE(r.bForward);
    EXPECT_EQ(r.keyword, "RD");
    EXPECT_EQ(r.files, (std::vector<std::string>{"a.txt", "-"}));
    EXPECT_EQ(r.stream.delimiter, ',');
    EXPECT_EQ(r.stream.nPlaneDecimals, 2);
    EXPECT_EQ(r.stream.nAngleDecimals, 7);

    SConvertRequest point;
    ASSERT_TRUE(ParseConvertArgs(
        {"--to", "UTM_NORTH", "--zone", "31", "--south", "-33.5", "5d30'E"}, point, error))
        << error;
    EXPECT_EQ(point.pointLine, "-33.5 5d30'E");
    EXPECT_EQ(point.projection.zone, 31);
    EXPECT_TRUE(point.projection.given & kOptSouth);

    const auto fails = [](std::vector<std::string> args, const std::string &text) {
        SConvertRequest x;
        std::string e;
        EXPECT_FALSE(ParseConvertArgs(args, x, e)) << text;
        EXPECT_NE(e.find(text), std::string::npos) << e;
    };
    fails({"--to", "RD", "--to", "RD"}, "once");
    fails({"--to", "RD", "--k", "1", "--k", "2"}, "given twice");
    fails({"--to", "RD", "--bogus"}, "unknown option");
    fails({"--to", "RD", "--precision", "11"}, "--precision");
    fails({"--to", "RD", "--delimiter", "."}, "--delimiter");
    fails({"--to", "TM", "--lon0", "east"}, "not an angle for --lon0");
    fails({"--to", "TM", "--fe", "inf"}, "not a finite number for --fe");
    fails({"--to"}, "needs a value");
    fails({"52", "5"}, "usage");
    fails({"--list", "--to", "RD"}, "--list takes nothing else");
}
