// CTextFile: the four encodings, written byte for byte and read back.
#include "text/TextFile.h"

#include "platform/CodePage.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace vx;
using vxtest::ReadBytes;
using vxtest::TempDir;
using vxtest::WriteBytes;
using Bytes = std::vector<uint8_t>;

namespace {

std::string Text(const CVXString &s) {
    return static_cast<const char *>(s);
}
CVXString Path(const std::string &p) {
    return CVXString(p.c_str());
}

// "Aé€" and a line feed.
const char16_t *const kSample = u"A\u00e9\u20ac\n";

} // namespace

TEST(TextFile, ModeTextOfTheEncodings) {
    EXPECT_EQ(Text(CTextFile::BuildMode(u"r", 2)), "r, ccs=UTF-8");
    EXPECT_EQ(Text(CTextFile::BuildMode(u"w+t", 1)), "w+t, ccs=UNICODE");
    EXPECT_EQ(Text(CTextFile::BuildMode(u"a", 3)), "a, ccs=UTF-16LE");
    EXPECT_EQ(Text(CTextFile::BuildMode(u"r", 0)), "r");
    EXPECT_TRUE(CTextFile::BuildMode(u"r", 7).IsEmpty());
    EXPECT_TRUE(CTextFile::BuildMode(u"r", -1).IsEmpty());

    TempDir dir;
    WriteBytes(dir.file("a.txt"), {'x'});
    CTextFile file;
    EXPECT_FALSE(file.Open(Path(dir.file("a.txt")), u"r", 7, 0x40));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(file.Open(Path(dir.file("a.txt")), u"q", 0, 0x40));
    EXPECT_FALSE(file.Open(Path(dir.file("a.txt")), u"rz", 0, 0x40));
    EXPECT_FALSE(file.Open(Path(dir.file("missing.txt")), u"r", 0, 0x40));
    EXPECT_TRUE(file.Open(Path(dir.file("a.txt")), u"rt", 0, 0x40));
}

TEST(TextFile, WritesEachEncodingWithItsByteOrderMark) {
    TempDir dir;
    struct Case {
        int encoding;
        Bytes bytes;
    } const cases[] = {
        {CTextFile::encNone, {'A', 0xE9, 0x80, '\n'}}, // Windows-1252
        {CTextFile::encUTF8, {0xEF, 0xBB, 0xBF, 'A', 0xC3, 0xA9, 0xE2, 0x82, 0xAC, '\n'}},
        {CTextFile::encUTF16LE, {0xFF, 0xFE, 'A', 0, 0xE9, 0, 0xAC, 0x20, '\n', 0}},
        {CTextFile::encUnicode, {0xFF, 0xFE, 'A', 0, 0xE9, 0, 0xAC, 0x20, '\n', 0}},
    };
    for (const Case &c : cases) {
        // Built by appending: g++ 12 warns falsely on "e" + std::to_string(...).
        std::string name(1, 'e');
        name += std::to_string(c.encoding);
        name += ".txt";
        const std::string path = dir.file(name);
        CTextFile file;
        ASSERT_TRUE(file.Open(Path(path), u"w", c.encoding, 0x20));
        file.WriteString(kSample);
        file.Close();
        EXPECT_FALSE(file.IsOpen());
        EXPECT_EQ(ReadBytes(path), c.bytes) << c.encoding;

        ASSERT_TRUE(file.Open(Path(path), u"r", c.encoding, 0x40));
        CVXString line;
        EXPECT_TRUE(file.ReadString(line));
        EXPECT_EQ(line, u"A\u00e9\u20ac") << c.encoding;
        EXPECT_FALSE(file.ReadString(line));
        EXPECT_TRUE(line.IsEmpty());
    }
}

TEST(TextFile, ByteOrderMarkDecidesTheEncodingWhenReading) {
    TempDir dir;
    WriteBytes(dir.file("u16.txt"), {0xFF, 0xFE, 'o', 0, 'k', 0, '\r', 0, '\n', 0, 'z', 0});
    WriteBytes(dir.file("u8.txt"), {0xEF, 0xBB, 0xBF, 0xC3, 0xA9});
    WriteBytes(dir.file("plain16.txt"), {'h', 0, 'i', 0});
    WriteBytes(dir.file("plain8.txt"), {0xC3, 0xA9, '\r', '\n'});
    struct Case {
        const char *name;
        int requested;
        int used;
        const char16_t *first;
    } const cases[] = {
        {"u16.txt", CTextFile::encUTF8, CTextFile::encUTF16LE, u"ok"},
        {"u16.txt", CTextFile::encNone, CTextFile::encUTF16LE, u"ok"},
        {"u8.txt", CTextFile::encUTF16LE, CTextFile::encUTF8, u"\u00e9"},
        {"plain16.txt", CTextFile::encUnicode, CTextFile::encUnicode, u"hi"},
        {"plain8.txt", CTextFile::encUTF8, CTextFile::encUTF8, u"\u00e9"},
        {"plain8.txt", CTextFile::encNone, CTextFile::encNone, u"\u00c3\u00a9"},
    };
    for (const Case &c : cases) {
        CTextFile file;
        ASSERT_TRUE(file.Open(Path(dir.file(c.name)), u"r", c.requested, 0x40));
        EXPECT_EQ(file.GetEncoding(), c.used) << c.name;
        CVXString line;
        EXPECT_TRUE(file.ReadString(line));
        EXPECT_EQ(line, c.first) << c.name << " " << c.requested;
    }
    CTextFile file;
    ASSERT_TRUE(file.Open(Path(dir.file("u16.txt")), u"r", CTextFile::encNone, 0x40));
    CVXString line;
    ASSERT_TRUE(file.ReadString(line));
    EXPECT_TRUE(file.ReadString(line)); // a last line without line end
    EXPECT_EQ(line, u"z");
}

TEST(TextFile, AppendingAddsNoSecondMarkAndFormatsWide) {
    TempDir dir;
    const std::string path = dir.file("log.txt");
    CTextFile file;
    ASSERT_TRUE(file.Open(Path(path), u"a", CTextFile::encUTF8, 0x20));
    file.WriteFormat(u"%d-%s\n", 7, u"\u00e9");
    file.Close();
    ASSERT_TRUE(file.Open(Path(path), u"a+", CTextFile::encUTF8, 0x20));
    file.WriteString(u"x");
    file.Flush();
    EXPECT_EQ(ReadBytes(path), (Bytes{0xEF, 0xBB, 0xBF, '7', '-', 0xC3, 0xA9, '\n', 'x'}));
}

TEST(TextFile, CopiesShareTheStreamAndLocksFollowTheShareFlag) {
    TempDir dir;
    const std::string path = dir.file("shared.txt");
    CTextFile first;
    ASSERT_TRUE(first.Open(Path(path), u"w", CTextFile::encNone, 0x10)); // deny all
    CTextFile other;
    EXPECT_FALSE(other.Open(Path(path), u"r", CTextFile::encNone, 0x20));
    EXPECT_TRUE(other.Open(Path(path), u"r", CTextFile::encNone, 0x40)); // deny none: no lock
    {
        CTextFile second(first);
        second.WriteString(u"ab");
    } // a copy going away leaves the stream open
    EXPECT_TRUE(first.IsOpen());
    CTextFile third = first;
    third.Close(); // closes it for every copy
    EXPECT_FALSE(first.IsOpen());
    first.WriteString(u"lost"); // nothing open: ignored
    EXPECT_EQ(ReadBytes(path), (Bytes{'a', 'b'}));
    EXPECT_TRUE(other.Open(Path(path), u"r", CTextFile::encNone, 0x20));
    EXPECT_TRUE(first.Open(Path(path), u"r", CTextFile::encNone, 0x20)); // both deny write
}
