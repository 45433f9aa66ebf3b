// Lines in files: sniffing, archives that keep the section codes, archives as hosts write them,
// atomic text files, and the shipped parcels cut by the clipper.
#include "LineFiles.h"
#include "Wkt.h"

#include "support/TestSupport.h"

#include "geometry/ClipList.h"
#include "persist/ArchiveFiles.h"
#include "persist/SerCollections.h"
#include "platform/VXString.h"

#include "InterchangeTest.h"

#include <gtest/gtest.h>

#include <cmath>
#include <dirent.h>
#include <numbers>
#include <string>
#include <vector>

namespace {

using vxinterchange::InputKind;
using vxinterchange::Lines;
using vxinterchange::ReadLinesFile;
using vxinterchange::ReadWkt;

using vxinterchangetest::Codes;

InputKind Sniff(const std::string &text) {
    return vxinterchange::SniffInput(reinterpret_cast<const unsigned char *>(text.data()),
                                     text.size());
}

void WriteText(const std::string &path, const std::string &text) {
    vxtest::WriteBytes(path, std::vector<uint8_t>(text.begin(), text.end()));
}

std::vector<std::string> Names(const std::string &dir) {
    std::vector<std::string> names;
    DIR *d = opendir(dir.c_str());
    while (const dirent *e = readdir(d))
        if (e->d_name[0] != '.' || std::string(e->d_name).size() > 2) names.push_back(e->d_name);
    closedir(d);
    return names;
}

TEST(LineFiles, TheKindOfAFileIsToldByItsFirstCharacter) {
    EXPECT_EQ(Sniff("LINESTRING (0 0, 1 1)"), InputKind::wkt);
    EXPECT_EQ(Sniff("\xEF\xBB\xBF \n curvepolygon EMPTY"), InputKind::wkt);
    EXPECT_EQ(Sniff("  <VXXMLArchive/>"), InputKind::xmlArchive);
    EXPECT_EQ(Sniff(std::string("\xFF\xFF\x00\x00", 4)), InputKind::binaryArchive);
    EXPECT_EQ(Sniff(""), InputKind::binaryArchive);
}

TEST(LineFiles, ArchivesWrittenHereKeepEverySectionCode) {
    const vxtest::TempDir dir;
    const Lines lines = ReadWkt(
        "CURVEPOLYGON Z (COMPOUNDCURVE Z ((0 0 1, 4 0 1), CIRCULARSTRING Z (4 0 1, 5 2 1.5, 4 4 "
        "2), (4 4 2, 0 0 1))) CIRCULARSTRING (0 0, 2 0, 0 0) LINESTRING (0.1 0.2, 0.3 0.4)");
    for (const char *name : {"lines.xml", "lines.vxb"}) {
        vxinterchange::SaveLinesArchive(dir.file(name), lines);
        const Lines back = ReadLinesFile(dir.file(name));
        ASSERT_EQ(back.size(), 3u) << name;
        EXPECT_EQ(Codes(*back[0]), (std::vector<int>{1, 0, 8, 8, 0})) << name;
        EXPECT_EQ(Codes(*back[1]), (std::vector<int>{1, 7, 7, 7})) << name;
        EXPECT_EQ(Codes(*back[2]), (std::vector<int>{1, 0})) << name;
        EXPECT_EQ(back[0]->Pt(2).m_dZ, 1.5) << name;
        EXPECT_EQ(back[2]->Pt(1).m_dY, 0.4) << name;
        EXPECT_EQ(vxinterchange::WriteWkt(back), vxinterchange::WriteWkt(lines)) << name;
    }
}

TEST(LineFiles, ArchivesAsHostsWriteThemGiveStraightLines) {
    const vxtest::TempDir dir;
    const Lines lines = ReadWkt("CIRCULARSTRING (0 0, 1 1, 2 0) LINESTRING (5 5, 6 6, 7 5)");
    // One line as the root: its arc comes back as straight stretches (the codes are not stored).
    vx::SaveArchiveRoot(vx::CVXString(dir.file("one.xml").c_str()), *lines[0],
                        vx::ArchiveFormat::xml);
    const Lines one = ReadLinesFile(dir.file("one.xml"));
    ASSERT_EQ(one.size(), 1u);
    EXPECT_EQ(Codes(*one[0]), (std::vector<int>{1, 0, 0}));
    // A list of lines, in a binary archive.
    vx::CSerObList list;
    list.AddTail(lines[0].get());
    list.AddTail(lines[1].get());
    vx::SaveArchiveRoot(vx::CVXString(dir.file("list.bin").c_str()), list,
                        vx::ArchiveFormat::binary);
    const Lines two = ReadLinesFile(dir.file("list.bin"));
    ASSERT_EQ(two.size(), 2u);
    EXPECT_EQ(two[1]->Pt(2).m_dX, 7.0);
}

TEST(LineFiles, StoredCodesThatDoNotFitTheirLineAreRefused) {
    const vxtest::TempDir dir;
    const Lines lines = ReadWkt("LINESTRING (0 0, 1 1, 2 0)");
    vx::CVXWordArray codes;
    vx::CSerObArray root;
    root.Add(lines[0].get());
    root.Add(&codes);
    const vx::CVXString path(dir.file("bad.xml").c_str());
    const auto messageOf = [&](std::initializer_list<uint16_t> values) {
        codes.RemoveAll();
        for (const uint16_t v : values)
            codes.Add(v);
        vx::SaveArchiveRoot(path, root, vx::ArchiveFormat::xml);
        try {
            ReadLinesFile(dir.file("bad.xml"));
        } catch (const std::runtime_error &e) {
            return std::string(e.what());
        }
        return std::string("read");
    };
    EXPECT_EQ(messageOf({1, 0}), "the section codes stored with line 1 do not match its points");
    EXPECT_EQ(messageOf({1, 0, 12}),
              "the section codes stored with line 1 hold an unknown code 12");
    // A line may not end between the two points of an arc: the grammar breaks at point 2.
    EXPECT_EQ(messageOf({1, 0, 8}),
              "the section codes stored with line 1 are not a valid line at point 2");
    EXPECT_EQ(messageOf({1, 8, 8}), "read");
}

TEST(LineFiles, WktErrorsNameTheFileAndThePosition) {
    const vxtest::TempDir dir;
    WriteText(dir.file("bad.wkt"), "LINESTRING (0 0, 1 1");
    try {
        ReadLinesFile(dir.file("bad.wkt"));
        FAIL() << "read";
    } catch (const std::runtime_error &e) {
        EXPECT_EQ(std::string(e.what()), dir.file("bad.wkt") +
                                             ": at character 21: expected ',' or ')', found the "
                                             "end of the text");
    }
    WriteText(dir.file("empty.wkt"), "");
    EXPECT_THROW(ReadLinesFile(dir.file("empty.wkt")), std::runtime_error);
    EXPECT_THROW(ReadLinesFile(dir.file("missing.wkt")), std::runtime_error);
}

TEST(LineFiles, TextFilesReplaceTheirTargetOnlyWhenComplete) {
    const vxtest::TempDir dir;
    const std::string target = dir.file("out.svg");
    WriteText(target, "old");
    vxinterchange::WriteTextFile(target, "new text");
    const std::vector<uint8_t> bytes = vxtest::ReadBytes(target);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "new text");
    EXPECT_EQ(Names(dir.path()), std::vector<std::string>{"out.svg"}); // no temporary left
    try {
        vxinterchange::WriteTextFile(dir.file("no/such/dir/out.svg"), "x");
        FAIL() << "written";
    } catch (const std::runtime_error &e) {
        EXPECT_NE(std::string(e.what()).find("no/such/dir/out.svg: cannot write the file"),
                  std::string::npos);
    }
}

TEST(LineFiles, TheShippedParcelsOverlapInAnAreaKnownInClosedForm) {
    const Lines a = ReadLinesFile(VX_TEST_DATA_DIR "/parcel_a.wkt");
    const Lines b = ReadLinesFile(VX_TEST_DATA_DIR "/parcel_b.wkt");
    vx::CVXCoordArrList inside, outside;
    ASSERT_TRUE(a[0]->bSnijPoly(inside, outside, *b[0], vx::ClipField(true, true, false), true));
    ASSERT_EQ(inside.GetCount(), 1);
    ASSERT_EQ(outside.GetCount(), 1);
    // Relative to (1000 1000): A is [0,40] x [0,30] with an arc bulging right through (50 15),
    // on the circle about (33.75 15) of radius 16.25; B is [20,70] x [10,40] with an arc on
    // top. The overlap is [20,40] x [10,30] plus the part of A's circle right of x = 40 for
    // y from 10 to 30, i.e. u = y - 15 from -5 to 15:
    //   400 + ∫ (sqrt(r² - u²) - 6.25) du,  with ∫ sqrt(r² - u²) du = (u sqrt(r² - u²) + r² asin(u
    //   / r)) / 2.
    const double r = 16.25;
    const auto F = [r](double u) {
        return (u * std::sqrt(r * r - u * u) + r * r * std::asin(u / r)) / 2;
    };
    const double expected = 400.0 + F(15.0) - F(-5.0) - 6.25 * 20.0;
    double area = 0.0;
    ASSERT_TRUE(inside.GetHead()->bOppervlak(&area));
    // bOppervlak measures the arc by chords within 0.0005: the error is below the arc's length
    // (about 26) times that.
    EXPECT_NEAR(area, expected, 26 * 0.0005);
    // The two pieces make up A: its area is 1200 plus the segment right of x = 40.
    double rest = 0.0;
    ASSERT_TRUE(outside.GetHead()->bOppervlak(&rest));
    const double aArea = 1200.0 + F(15.0) - F(-15.0) - 6.25 * 30.0;
    EXPECT_NEAR(area + rest, aArea, 2 * 26 * 0.0005);
}

} // namespace
