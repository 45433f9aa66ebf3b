#include "platform/File.h"
#include "platform/Errors.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using namespace vx;

namespace {

// The scratch directory of the shared test helpers, with paths as CVXString.
class TempDir {
public:
    CVXString operator/(const char *name) const { return CVXString(m_dir.file(name).c_str()); }

private:
    vxtest::TempDir m_dir;
};

std::string ReadBytes(const CVXString &path) {
    const std::vector<uint8_t> bytes = vxtest::ReadBytes(static_cast<const char *>(path));
    return std::string(bytes.begin(), bytes.end());
}

void WriteBytes(const CVXString &path, const std::string &bytes) {
    vxtest::WriteBytes(static_cast<const char *>(path),
                       std::vector<uint8_t>(bytes.begin(), bytes.end()));
}

} // namespace

TEST(File, ReadWriteSeekAndLength) {
    TempDir dir;
    const CVXString path = dir / "data.bin";
    {
        CFile file(path, CFile::modeCreate | CFile::modeReadWrite);
        file.Write("hello world", 11);
        EXPECT_EQ(file.GetLength(), 11u);
        EXPECT_EQ(file.Seek(6, CFile::begin), 6u);
        char buf[16] = {};
        EXPECT_EQ(file.Read(buf, sizeof buf), 5u);
        EXPECT_STREQ(buf, "world");
        EXPECT_EQ(file.Seek(-3, CFile::end), 8u);
        file.SetLength(5);
        EXPECT_EQ(file.SeekToEnd(), 5u);
        file.Close();
        EXPECT_FALSE(file.IsOpen());
    }
    EXPECT_EQ(ReadBytes(path), "hello");

    // modeCreate truncates unless modeNoTruncate is given.
    {
        CFile file(path, CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite);
        file.SeekToEnd();
        file.Write("!", 1);
    }
    EXPECT_EQ(ReadBytes(path), "hello!");
    { CFile file(path, CFile::modeCreate | CFile::modeWrite); }
    EXPECT_EQ(ReadBytes(path), "");
}

TEST(File, FailuresCarryCauseErrorAndPath) {
    TempDir dir;
    const CVXString missing = dir / "missing.txt";
    CFile file;
    CFileException error;
    EXPECT_FALSE(file.Open(missing, CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, 2); // fileNotFound
    EXPECT_EQ(error.m_lOsError, ENOENT);
    EXPECT_EQ(error.m_strFileName, missing);
    EXPECT_NE(std::string(error.what()).find("missing.txt"), std::string::npos);

    const CVXString plain = dir / "plain";
    WriteBytes(plain, "x");
    const CVXString below = dir / "plain/child";
    EXPECT_FALSE(file.Open(below, CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, 3); // badPath: a file used as a directory
    EXPECT_EQ(error.m_lOsError, ENOTDIR);

    EXPECT_FALSE(file.Open(dir / "", CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, 5); // accessDenied: a directory is no file

    ASSERT_TRUE(file.Open(plain, CFile::modeRead));
    try {
        file.Seek(-1, CFile::begin);
        FAIL() << "no exception";
    } catch (const CFileException &e) {
        EXPECT_EQ(e.m_cause, 9); // badSeek
    }
    file.Close();

    EXPECT_EQ(CFileException::OsErrorToException(ENOSPC), 13);
}

TEST(File, SharingModesConflictThroughLocks) {
    TempDir dir;
    const CVXString path = dir / "shared.txt";
    WriteBytes(path, "contents");
    CFileException error;
    {
        CFile owner(path, CFile::modeReadWrite | CFile::shareExclusive);
        CFile second;
        EXPECT_FALSE(second.Open(path, CFile::modeRead | CFile::shareDenyWrite, &error));
        EXPECT_EQ(error.m_cause, 11); // sharingViolation
        // A conflicting open with modeCreate fails before it can truncate.
        EXPECT_FALSE(
            second.Open(path, CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive));
        // No share mode at all is exclusive too.
        EXPECT_FALSE(second.Open(path, CFile::modeRead));
        // shareDenyNone takes no lock, so it is not held back.
        EXPECT_TRUE(second.Open(path, CFile::modeRead | CFile::shareDenyNone));
    }
    {
        CFile reader(path, CFile::modeRead | CFile::shareDenyWrite);
        CFile other;
    }
    // After the owners closed, the file opens exclusively again.
    CFile again(path, CFile::modeRead | CFile::shareExclusive);
    EXPECT_EQ(again.GetLength(), 8u);
}

TEST(File, RemoveAndRename) {
    TempDir dir;
    const CVXString from = dir / "a.txt";
    const CVXString to = dir / "b.txt";
    WriteBytes(from, "abc");
    CFile::Rename(from, to);
    EXPECT_EQ(ReadBytes(to), "abc");
    CFile::Remove(to);
    try {
        CFile::Remove(to);
        FAIL() << "no exception";
    } catch (const CFileException &e) {
        EXPECT_EQ(e.m_cause, CFileException::fileNotFound);
        EXPECT_EQ(e.m_strFileName, to);
    }
}

TEST(StdioFile, TextModeLinesAndCodePage) {
    TempDir dir;
    const CVXString path = dir / "lines.txt";
    {
        CStdioFile file(path, CFile::modeCreate | CFile::modeWrite | CFile::typeText);
        file.WriteString(u"caf\u00e9\n");
        file.WriteString(u"second\n");
        file.WriteString(u"last");
        EXPECT_EQ(file.GetPosition(), 18u);
    }
    // Windows-1252 é is 0xE9; "\n" became "\r\n".
    EXPECT_EQ(ReadBytes(path), "caf\xE9\r\nsecond\r\nlast");

    CStdioFile file(path, CFile::modeRead | CFile::typeText);
    CVXString line;
    ASSERT_TRUE(file.ReadString(line));
    EXPECT_EQ(line, CVXString(u"caf\u00e9"));
    file.Close();

    // Without typeText the bytes pass unchanged: the "\r" stays part of the line.
    CStdioFile binary(path, CFile::modeRead);
    ASSERT_TRUE(binary.ReadString(line));
    EXPECT_EQ(line, CVXString(u"caf\u00e9\r"));
}

TEST(StdioFile, EmptyLinesAndMixedAccess) {
    TempDir dir;
    const CVXString path = dir / "mixed.txt";
    WriteBytes(path, "\n\nx\n");
    CStdioFile file(path, CFile::modeReadWrite);
    CVXString line(u"old");
    ASSERT_TRUE(file.ReadString(line));
    EXPECT_TRUE(line.IsEmpty());
    // Writing after a read continues at the logical position, not behind the read-ahead.
    file.Write("y", 1);
    file.Flush();
    EXPECT_EQ(file.GetLength(), 4u);
    file.Close();
    EXPECT_EQ(ReadBytes(path), "\nyx\n");
}

TEST(MemFile, ReadWriteSeekAndLength) {
    CMemFile file(16);
    file.Write("0123456789", 10);
    EXPECT_EQ(file.GetLength(), 10u);
    EXPECT_EQ(file.Seek(4, CFile::begin), 4u);
    char buf[8] = {};
    EXPECT_EQ(file.Read(buf, 3), 3u);
    EXPECT_EQ(std::string(buf, 3), "456");
    // A write past the end leaves a gap of zeros.
    file.Seek(12, CFile::begin);
    file.Write("ab", 2);
    EXPECT_EQ(file.GetLength(), 14u);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(file.GetData()), 14),
              std::string("0123456789\0\0ab", 14));
    file.SetLength(3);
    // Growth beyond the first steps: a large write lands whole.
    const std::string big(1000, 'z');
    file.Write(big.data(), static_cast<unsigned int>(big.size()));
    EXPECT_EQ(file.GetLength(), 1003u);
    EXPECT_FALSE(file.Open(CVXString(u"x"), CFile::modeRead));
}

TEST(MemFile, DirectBuffer) {
    CMemFile file(8);
    void *start = nullptr;
    void *max = nullptr;
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferWrite, 5, &start, &max), 5u);
    ASSERT_NE(start, nullptr);
    std::memcpy(start, "abcde", 5);
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferCommit, 5), 0u);
    EXPECT_EQ(file.GetLength(), 5u);

    file.SeekToBegin();
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferRead, 3, &start, &max), 3u);
    EXPECT_EQ(std::string(static_cast<char *>(start), 3), "abc");
    EXPECT_EQ(file.GetBufferPtr(CFile::bufferRead, 100, &start, &max), 2u);
    EXPECT_EQ(std::string(static_cast<char *>(start), 2), "de");
    EXPECT_THROW(file.GetBufferPtr(CFile::bufferCommit, 100), CInvalidArgException);

    // A plain file has no direct buffer.
    CFile plain;
}

TEST(MemFile, AttachedBuffers) {
    unsigned char fixed[8] = {'f', 'i', 'x', 'e', 'd', '!', '!', '!'};
    CMemFile file(fixed, sizeof fixed);
    char buf[5] = {};
    EXPECT_EQ(file.Read(buf, 5), 5u);
    EXPECT_EQ(std::string(buf, 5), "fixed");
    file.Seek(6, CFile::begin);
    try {
        file.Write("xyz", 3);
        FAIL() << "no exception";
    } catch (const CFileException &e) {
        EXPECT_EQ(e.m_cause, 13); // diskFull
    }
    EXPECT_EQ(file.Detach(), fixed);

    unsigned char small[4] = {};
    file.Attach(small, sizeof small, 4);
    file.Write("ab", 2);
    file.Write("cdefg", 5); // outgrows the caller's buffer: moves to its own
    EXPECT_NE(file.GetData(), small);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(file.GetData()), 7), "abcdefg");
    unsigned char *own = file.Detach();
    EXPECT_EQ(std::string(reinterpret_cast<char *>(own), 7), "abcdefg");
    std::free(own);
}
