// CAsciiFile and CAsciiMemFile: whole lines of any length, the line counter, 8-bit text.
#include "text/AsciiFile.h"

#include "platform/CodePage.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace vx;
using vxtest::ReadBytes;
using vxtest::TempDir;
using vxtest::WriteBytes;
using Bytes = std::vector<uint8_t>;

namespace {
CVXString Path(const std::string &p) {
    return CVXString(p.c_str());
}
} // namespace

TEST(AsciiFile, LinesOfAnyLengthAndTheLineCounter) {
    TempDir dir;
    Bytes bytes(300, 'a'); // 300 bytes without a line feed
    WriteBytes(dir.file("long.txt"), bytes);
    CAsciiFile file(Path(dir.file("long.txt")));
    EXPECT_EQ(file.lGetRegel(), 0u);
    EXPECT_TRUE(file.bLeesRegel());
    EXPECT_EQ(file.szGetRegel().GetLength(), 300);
    EXPECT_EQ(file.szGetRegel(), CVXString(u'a', 300));
    EXPECT_EQ(file.lGetRegel(), 1u);
    EXPECT_FALSE(file.bLeesRegel());
    EXPECT_EQ(file.lGetRegel(), 2u); // raised also by the read that finds the end
    EXPECT_TRUE(file.szGetRegel().IsEmpty());

    Bytes exact(128, 'b'); // exactly one read chunk, then the line feed
    exact.push_back('\n');
    exact.insert(exact.end(), {'c', '\r', '\n', '\r', '\n', 'd'});
    WriteBytes(dir.file("exact.txt"), exact);
    CAsciiFile lines(Path(dir.file("exact.txt")));
    ASSERT_TRUE(lines.bLeesRegel());
    EXPECT_EQ(lines.szGetRegel(), CVXString(u'b', 128));
    ASSERT_TRUE(lines.bLeesRegel());
    EXPECT_EQ(lines.szGetRegel(), u"c");
    ASSERT_TRUE(lines.bLeesRegel());
    EXPECT_TRUE(lines.szGetRegel().IsEmpty()); // an empty line is a line
    ASSERT_TRUE(lines.bLeesRegel());
    EXPECT_EQ(lines.szGetRegel(), u"d");
    EXPECT_EQ(lines.lGetRegel(), 4u);
    lines.SeekToBegin();
    EXPECT_EQ(lines.lGetRegel(), 0u);
    ASSERT_TRUE(lines.bLeesRegel());
    EXPECT_EQ(lines.szGetRegel().GetLength(), 128);

    WriteBytes(dir.file("empty.txt"), {});
    CAsciiFile empty(Path(dir.file("empty.txt")));
    EXPECT_FALSE(empty.bLeesRegel());
    EXPECT_EQ(empty.lGetRegel(), 1u);
}

TEST(AsciiFile, EightBitTextThroughTheCodePage) {
    TempDir dir;
    const std::string path = dir.file("out.txt");
    {
        CAsciiFile file(Path(path), CFile::modeCreate | CFile::modeWrite);
        EXPECT_EQ(file.szGetNaam(), Path(path));
        file.WriteString(u"caf\u00e9 \u20ac");
        file.WriteFormat(u"|%03d|\n", 7);
    }
    // Windows-1252 bytes; the text mode writes a line feed as CR LF.
    EXPECT_EQ(ReadBytes(path),
              (Bytes{'c', 'a', 'f', 0xE9, ' ', 0x80, '|', '0', '0', '7', '|', '\r', '\n'}));
    CAsciiFile in(Path(path));
    ASSERT_TRUE(in.bLeesRegel());
    EXPECT_EQ(in.szGetRegel(), u"caf\u00e9 \u20ac|007|");
}

TEST(AsciiFile, OpenReportsAndConstructorsRaise) {
    TempDir dir;
    const std::string missing = dir.file("missing.txt");
    CAsciiFile file;
    CFileException e;
    EXPECT_FALSE(file.Open(Path(missing), CFile::modeRead, &e));
    EXPECT_EQ(e.m_cause, CFileException::fileNotFound);
    EXPECT_EQ(file.szGetNaam(), Path(missing)); // the name is kept even when the open fails
    try {
        CAsciiFile raised(Path(missing));
        FAIL() << "no exception";
    } catch (const CFileException &ex) {
        EXPECT_EQ(ex.m_cause, CFileException::fileNotFound);
        EXPECT_EQ(ex.m_strFileName, Path(missing));
    }
    EXPECT_FALSE(file.bIsReadOnly()); // a file that does not exist

    WriteBytes(dir.file("ro.txt"), {'x'});
    chmod(dir.file("ro.txt").c_str(), 0444);
    WriteBytes(dir.file("rw.txt"), {'x'});
    chmod(dir.file("rw.txt").c_str(), 0644);
    CAsciiFile ro(Path(dir.file("ro.txt")));
    EXPECT_TRUE(ro.bIsReadOnly());
    CAsciiFile rw(Path(dir.file("rw.txt")));
    EXPECT_FALSE(rw.bIsReadOnly());
}

TEST(AsciiMemFile, WritesOneByteForEachUnit) {
    CAsciiMemFile mem;
    mem.WriteString(u"a\u00e9");
    mem.WriteFormat(u"%d;", 42);
    EXPECT_EQ(mem.GetLength(), 5u);
    const unsigned char *data = mem.GetData();
    EXPECT_EQ(Bytes(data, data + 5), (Bytes{'a', 0xE9, '4', '2', ';'}));
    mem.WriteString(CVXString());
    EXPECT_EQ(mem.GetLength(), 5u);

    // A code page with two bytes for a unit: the count of units cuts the text short.
    const std::string old = GetCodePage();
    SetCodePage("UTF-8");
    CAsciiMemFile utf8;
    utf8.WriteString(u"\u00e9!");
    SetCodePage(old.c_str());
    EXPECT_EQ(Bytes(utf8.GetData(), utf8.GetData() + utf8.GetLength()), (Bytes{0xC3, 0xA9}));
}
