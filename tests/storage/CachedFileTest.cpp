#include "storage/CachedFile.h"
#include "platform/Errors.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <vector>

using namespace vx;
using vxtest::ReadBytes;
using vxtest::TempDir;
using vxtest::WriteBytes;

namespace {

// i * 7 mod 251: no two neighbouring pages look alike.
std::vector<uint8_t> Pattern(size_t n) {
    std::vector<uint8_t> bytes(n);
    for (size_t i = 0; i < n; ++i)
        bytes[i] = static_cast<uint8_t>(i * 7 % 251);
    return bytes;
}

CVXString Path(const std::string &path) {
    return CVXString(path.c_str());
}

} // namespace

TEST(CachedFile, ReadsAcrossPagesInOrder) {
    TempDir dir;
    const std::string path = dir.file("data.bin");
    const std::vector<uint8_t> pattern = Pattern(100);
    WriteBytes(path, pattern);
    CCachedFile file(2);
    ASSERT_TRUE(file.Open(Path(path), CFile::modeRead, 16));
    EXPECT_EQ(file.GetLength(), 100u);
    // Bytes 10 to 49 span pages 0, 16, 32 and 48, more than the cache holds.
    std::vector<uint8_t> got(40);
    file.Seek(10);
    file.Read(got.data(), 40);
    EXPECT_EQ(got, std::vector<uint8_t>(pattern.begin() + 10, pattern.begin() + 50));
    EXPECT_EQ(file.GetPosition(), 50u);
    // Beyond the end of the file the bytes read as zero.
    uint8_t tail[8];
    file.Seek(96);
    file.Read(tail, 8);
    EXPECT_EQ(
        std::vector<uint8_t>(tail, tail + 8),
        std::vector<uint8_t>({pattern[96], pattern[97], pattern[98], pattern[99], 0, 0, 0, 0}));
    file.Close();
    EXPECT_THROW(file.Open(Path(path), CFile::modeRead, 0), CInvalidArgException);
}

TEST(CachedFile, WritesKeepTheRestOfEachPageAndGrowTheFileByWholePages) {
    TempDir dir;
    const std::string path = dir.file("data.bin");
    WriteBytes(path, Pattern(40));
    CCachedFile file(4);
    ASSERT_TRUE(file.Open(Path(path), CFile::modeReadWrite, 32));
    const uint8_t mid[3] = {0xA1, 0xA2, 0xA3};
    file.Seek(5);
    file.Write(mid, 3);
    EXPECT_EQ(file.GetLength(), 40u);
    const uint8_t end[4] = {0xE1, 0xE2, 0xE3, 0xE4};
    file.Seek(38);
    file.Write(end, 4);
    EXPECT_EQ(file.GetLength(), 42u); // the file grew first
    file.Close();

    // Expected: the pattern with bytes 5..7 and 38..41 replaced. Page 32 is written whole, so
    // the file now reaches to 64 bytes, zero from 42 on.
    std::vector<uint8_t> expected = Pattern(40);
    expected.resize(64, 0);
    std::copy(mid, mid + 3, expected.begin() + 5);
    std::copy(end, end + 4, expected.begin() + 38);
    EXPECT_EQ(ReadBytes(path), expected);

    ASSERT_TRUE(file.Open(Path(path), CFile::modeReadWrite, 32));
    EXPECT_EQ(file.GetLength(), 64u);
    file.SetLength(10);
    file.Close();
    EXPECT_EQ(ReadBytes(path), std::vector<uint8_t>(expected.begin(), expected.begin() + 10));
}

TEST(CachedFile, TemporaryFileInAFolderLeavesNoName) {
    TempDir dir;
    CCachedFile file(2);
    ASSERT_TRUE(file.OpenTemp(Path(dir.path()), 8));
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
    const char text[] = "temporary";
    file.Write(text, sizeof text);
    char back[sizeof text] = {};
    file.Seek(0);
    file.Read(back, sizeof back);
    EXPECT_STREQ(back, text);
    file.Close();
    EXPECT_FALSE(file.OpenTemp(Path(dir.file("missing")), 8));
}

TEST(CachedFile, RandomWritesSurviveCloseAndReopen) {
    // Random reads and writes against a byte vector, the file closed and reopened now and then,
    // and the bytes on disk compared with the vector at the end.
    TempDir dir;
    const std::string path = dir.file("random.bin");
    constexpr uint32_t kPage = 64;
    constexpr uint64_t kSpan = 64 * kPage;
    WriteBytes(path, {});
    std::vector<uint8_t> model;
    std::mt19937 rng(99);
    std::uniform_int_distribution<uint64_t> where(0, kSpan - 1);
    std::uniform_int_distribution<uint32_t> count(1, 3 * kPage);
    std::uniform_int_distribution<int> byte(0, 255);
    CCachedFile file(5);
    ASSERT_TRUE(file.Open(Path(path), CFile::modeReadWrite, kPage));
    for (int step = 0; step < 3000; ++step) {
        const uint64_t pos = where(rng);
        const uint32_t n = count(rng);
        std::vector<uint8_t> bytes(n);
        file.Seek(pos);
        if (step % 3 == 0) {
            file.Read(bytes.data(), n);
            std::vector<uint8_t> want(n, 0);
            for (uint32_t i = 0; i < n && pos + i < model.size(); ++i)
                want[i] = model[pos + i];
            ASSERT_EQ(bytes, want) << step;
        } else {
            for (auto &b : bytes)
                b = static_cast<uint8_t>(byte(rng));
            file.Write(bytes.data(), n);
            if (model.size() < pos + n) model.resize(pos + n, 0);
            std::copy(bytes.begin(), bytes.end(), model.begin() + static_cast<ptrdiff_t>(pos));
        }
        if (step % 500 == 499) {
            file.Close();
            ASSERT_TRUE(file.Open(Path(path), CFile::modeReadWrite, kPage));
        }
    }
    file.Close();
    std::vector<uint8_t> onDisk = ReadBytes(path);
    ASSERT_GE(onDisk.size(), model.size());
    EXPECT_EQ(std::vector<uint8_t>(onDisk.begin(), onDisk.begin() + model.size()), model);
}
