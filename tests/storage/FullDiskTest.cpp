// A full disk, simulated with a file size limit (RLIMIT_FSIZE) in a child process: a write
// beyond the limit fails with EFBIG (SIGXFSZ is ignored there), which the file classes raise as
// diskFull. The child reports "" for success or what went wrong through a pipe.
#include "storage/CachedFile.h"
#include "storage/ULongArrayFile.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace vx;

namespace {

constexpr rlim_t kFileSizeLimit = 16 * 1024;
constexpr auto kChildTimeLimit = std::chrono::seconds(30);

void LimitFileSize() {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = kFileSizeLimit;
    setrlimit(RLIMIT_FSIZE, &limit);
}

// Runs the body in a child process and returns its report: "" when all went as expected.
std::string RunInChild(const std::function<std::string()> &body) {
    int fds[2];
    if (pipe(fds) != 0) return "pipe failed";
    const pid_t pid = fork();
    if (pid < 0) return "fork failed";
    if (pid == 0) {
        close(fds[0]);
        std::string report;
        try {
            report = body();
        } catch (const std::exception &e) {
            report = std::string("unexpected exception: ") + e.what();
        }
        const ssize_t written = write(fds[1], report.data(), report.size());
        _exit(written == static_cast<ssize_t>(report.size()) ? 0 : 1);
    }
    close(fds[1]);
    // Bounded wait: the child is killed when it takes too long.
    const auto deadline = std::chrono::steady_clock::now() + kChildTimeLimit;
    int status = 0;
    while (waitpid(pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) {
            kill(pid, SIGKILL);
            waitpid(pid, &status, 0);
            close(fds[0]);
            return "the child took too long";
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    std::string report;
    char buf[256];
    for (ssize_t n; (n = read(fds[0], buf, sizeof buf)) > 0;)
        report.append(buf, static_cast<size_t>(n));
    close(fds[0]);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return "the child failed: " + report;
    return report;
}

// Runs the call and reports "" when it raised diskFull, else what happened.
std::string ExpectDiskFull(const char *what, const std::function<void()> &call) {
    try {
        call();
    } catch (const CFileException &e) {
        if (e.m_cause == CFileException::diskFull) return "";
        return std::string(what) + ": cause " + std::to_string(e.m_cause);
    }
    return std::string(what) + ": no failure";
}

std::vector<uint8_t> Filled(size_t n, uint8_t value) {
    return std::vector<uint8_t>(n, value);
}

} // namespace

TEST(FullDisk, CachedFileRaisesWhereItWritesAndKeepsEarlierData) {
    // A 64 KiB file under a 16 KiB limit: pages below the limit can be written, a page above it
    // cannot. With room for 2 pages of 1 KiB the fifth page access evicts page 40 (at 40 KiB).
    vxtest::TempDir dir;
    const std::string path = dir.file("data.bin");
    std::vector<uint8_t> expected(64 * 1024);
    for (size_t i = 0; i < expected.size(); ++i)
        expected[i] = static_cast<uint8_t>(i % 253);
    vxtest::WriteBytes(path, expected);
    constexpr uint32_t kPage = 1024;

    const std::string report = RunInChild([&]() -> std::string {
        LimitFileSize();
        CCachedFile file(2);
        file.Open(CVXString(path.c_str()), CFile::modeReadWrite, kPage);
        auto writePage = [&](uint64_t page, uint8_t value) {
            const std::vector<uint8_t> bytes = Filled(kPage, value);
            file.Seek(page * kPage);
            file.Write(bytes.data(), kPage);
        };
        writePage(0, 0xA0);
        writePage(40, 0xB0); // beyond the limit, but inside the file: no growth needed
        writePage(1, 0xC0);
        writePage(2, 0xD0); // evicts page 0: written
        std::string failure = ExpectDiskFull("write evicting page 40", [&] { writePage(3, 0xE0); });
        // Close writes pages 2 and 1 and then fails on page 40, which stays cached.
        if (failure.empty()) failure = ExpectDiskFull("close", [&] { file.Close(); });
        if (!failure.empty()) return failure;
        if (file.GetCount() != 1) return "close left " + std::to_string(file.GetCount());
        file.bRemoveObject(40 * kPage); // give up the page that cannot be written
        writePage(3, 0xE0);
        file.Close();
        return "";
    });
    ASSERT_EQ(report, "");
    const uint8_t written[4] = {0xA0, 0xC0, 0xD0, 0xE0}; // pages 0 to 3
    for (ptrdiff_t page = 0; page < 4; ++page)
        std::fill_n(expected.begin() + page * kPage, kPage, written[page]);
    EXPECT_EQ(vxtest::ReadBytes(path), expected); // page 40 keeps its old bytes
}

TEST(FullDisk, ULongArrayFileRaisesWhereItWritesAndLosesNoValue) {
    const std::string report = RunInChild([]() -> std::string {
        CULongArrayFile array(16 * 1024); // 64 KiB, made before the limit
        LimitFileSize();
        // Elements below 4096 lie under the 16 KiB limit; element 10000 lies above it.
        for (uint32_t i = 0; i < 1000; ++i)
            array.SetAt(i, i + 1);
        array.SetAt(10000, 7);
        // Each new element evicts the oldest: 0 to 999 are written, then 10000 fails, in the
        // SetAt that made room.
        for (uint32_t i = 1000; i < 2000; ++i)
            array.SetAt(i, i + 1);
        std::string failure =
            ExpectDiskFull("SetAt evicting 10000", [&] { array.SetAt(2000, 2001); });
        if (failure.empty()) failure = ExpectDiskFull("GetAt", [&] { array.GetAt(3000); });
        if (failure.empty()) failure = ExpectDiskFull("growth", [&] { array.SetAtGrow(20000, 1); });
        if (!failure.empty()) return failure;
        if (array.lGetSize() != 16 * 1024) return "the failed growth changed the size";
        if (array.GetAt(10000) != 7) return "the unwritten value is gone from the cache";
        array.bRemoveObject(10000);
        for (uint32_t i = 0; i <= 2000; ++i)
            if (array.GetAt(i) != i + 1) return "value " + std::to_string(i) + " lost";
        return "";
    });
    EXPECT_EQ(report, "");
}
