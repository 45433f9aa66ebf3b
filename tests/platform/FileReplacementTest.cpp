#include "platform/FileReplacement.h"
#include "platform/Errors.h"
#include "platform/File.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <string>
#include <sys/stat.h>

using namespace vx;

namespace {

int EntriesIn(const std::string &dir) {
    int n = 0;
    DIR *d = ::opendir(dir.c_str());
    while (const dirent *e = ::readdir(d))
        n += std::string(e->d_name) != "." && std::string(e->d_name) != "..";
    ::closedir(d);
    return n;
}

} // namespace

TEST(FileReplacement, ReplacesWholeKeepsModeAndLeavesNoTemporary) {
    vxtest::TempDir dir;
    const std::string target = dir.file("report.txt");
    vxtest::WriteBytes(target, {'o', 'l', 'd'});
    ASSERT_EQ(::chmod(target.c_str(), 0640), 0);
    WriteFileReplacing(CVXString(target.c_str()), "new text", 8);
    const std::vector<uint8_t> bytes = vxtest::ReadBytes(target);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "new text");
    struct stat st {};
    ASSERT_EQ(::stat(target.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
    EXPECT_EQ(EntriesIn(dir.path()), 1);

    // An uncommitted replacement is removed and the target keeps its contents.
    {
        CFileReplacement abandoned(CVXString(target.c_str()));
        EXPECT_EQ(EntriesIn(dir.path()), 2);
    }
    EXPECT_EQ(EntriesIn(dir.path()), 1);
    EXPECT_EQ(vxtest::ReadBytes(target).size(), 8u);

    // A directory that does not exist: the error names the file, nothing is created.
    try {
        WriteFileReplacing(CVXString((dir.path() + "/missing/x.txt").c_str()), "x", 1);
        FAIL() << "no exception";
    } catch (const CFileException &e) {
        EXPECT_EQ(e.m_cause, CFileException::fileNotFound); // ENOENT on the directory
        EXPECT_NE(std::string(static_cast<const char *>(e.m_strFileName)).find("missing"),
                  std::string::npos);
    }
    EXPECT_EQ(EntriesIn(dir.path()), 1);
}
