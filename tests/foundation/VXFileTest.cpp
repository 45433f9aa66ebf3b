#include "foundation/VXFile.h"
#include "persist/VXStringList.h"
#include "platform/Resources.h"
#include "platform/UserPrompt.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace vx;

namespace {
std::u16string U(const CVXString &s) {
    return std::u16string(static_cast<const char16_t *>(s), s.GetLength());
}

CVXString P(const std::string &path) {
    return CVXString(path.c_str());
}

// Answers Retry a given number of times, then Cancel, and records what it was asked.
class ScriptedPrompt : public IUserPrompt {
public:
    explicit ScriptedPrompt(int retries) : m_retries(retries) {}
    int AskRetryCancel(const CVXString &text) override {
        asked.push_back(U(text));
        return m_retries-- > 0 ? IDRETRY : IDCANCEL;
    }
    void ShowMessage(const CVXString &, int) override {}
    bool BreakRequested() override { return false; }
    std::vector<std::u16string> asked;

private:
    int m_retries;
};
} // namespace

TEST(PathText, HelpersKeepTheirRulesToTheLetter) {
    CVXString a(u"a.b\\c");
    RemoveExtension(a);
    EXPECT_EQ(U(a), u"a.b\\c");
    CVXString b(u"a.b\\c.d");
    RemoveExtension(b);
    EXPECT_EQ(U(b), u"a.b\\c");

    CVXString out;
    MaakFileNaam(out, CVXString(u"c:\\"), CVXString(u"x"));
    EXPECT_EQ(U(out), u"c:\\x");
    MaakFileNaam(out, CVXString(u"c:\\d"), CVXString(u"x"));
    EXPECT_EQ(U(out), u"c:\\d\\x");
    MaakFileNaam(out, CVXString(), CVXString(u"x"));
    EXPECT_EQ(U(out), u"\\x");
    MaakFileNaam(out, CVXString(u"dir/"), CVXString(u"x")); // the slash is not recognised
    EXPECT_EQ(U(out), u"dir/\\x");

    CVXString s(u"dir\\\\");
    StripBackslash(s);
    EXPECT_EQ(U(s), u"dir\\");
    CVXString t(u"dir/");
    StripBackslash(t);
    EXPECT_EQ(U(t), u"dir");

    CVXString tif(u"a.tif");
    TIFF2TFW(tif);
    EXPECT_EQ(U(tif), u"a.tfw");
    TFW2TIFF(tif);
    EXPECT_EQ(U(tif), u"a.tif");
    CVXString other(u"name.xyz"); // nothing looks at what stood there
    TIFF2TFW(other);
    EXPECT_EQ(U(other), u"name.xfw");

    GetFileName(out, CVXString(u"c:\\dir\\f.txt"));
    EXPECT_EQ(U(out), u"f.txt");
    GetLastDir(out, CVXString(u"/a/b/c/"));
    EXPECT_EQ(U(out), u"c");
    EXPECT_EQ(nCompareDir(CVXString(u"/a/b/"), CVXString(u"/a/b")), 0);
    EXPECT_NE(nCompareDir(CVXString(u"/a/b"), CVXString(u"/a/c")), 0);
}

TEST(FileSystem, ExistsCreateDeleteAndTemporaryNames) {
    vxtest::TempDir dir;
    vxtest::ScopedEnv tmp("TMPDIR", dir.path().c_str());
    EXPECT_FALSE(bCreateDir(P(dir.file("missing/child"))));
    EXPECT_TRUE(bCreateDir(P(dir.file("sub"))));
    EXPECT_FALSE(bCreateDir(P(dir.file("sub")))); // an existing folder is a failure
    EXPECT_TRUE(bExists(P(dir.file("sub")), 0));

    const CVXString file = P(dir.file("probe.dat"));
    EXPECT_TRUE(CVXFile::bIsCreatable(file));
    EXPECT_FALSE(bExists(file, 0)); // leaves no file behind
    EXPECT_FALSE(CVXFile::bIsReadable(file));
    vxtest::WriteBytes(dir.file("probe.dat"), {1, 2, 3});
    EXPECT_TRUE(CVXFile::bIsReadable(file));
    EXPECT_TRUE(CVXFile::bIsCreatable(file));
    EXPECT_TRUE(bExists(file, 0));
    CVXFile::RemoveIfExists(file);
    EXPECT_FALSE(bExists(file, 0));
    EXPECT_FALSE(bDelete(file));

    CVXString temp;
    CreateTempNaam(temp);
    const std::string name = static_cast<const char *>(temp);
    EXPECT_EQ(name.rfind(dir.path() + "/~kv", 0), 0u) << name;
    EXPECT_TRUE(bExists(temp, 0));

    CVXFile f;
    CVXString tempName;
    ASSERT_TRUE(f.OpenTemp(tempName));
    f.Write("abc", 3);
    EXPECT_EQ(f.GetLength(), 3u);
    f.Close();
    EXPECT_TRUE(bExists(tempName, 0));
}

TEST(FileSystem, OpenFailuresRaiseWithCauseAndPath) {
    vxtest::TempDir dir;
    const CVXString missing = P(dir.file("nope.txt"));
    try {
        CVXFile f(missing, CFile::modeRead);
        FAIL() << "opening a missing file must raise";
    } catch (const CFileException &e) {
        EXPECT_EQ(e.m_cause, CFileException::fileNotFound);
        EXPECT_EQ(U(e.m_strFileName), U(missing));
    }
    CVXFile g;
    EXPECT_THROW(g.Open(missing, CFile::modeRead), CFileException);
    CFileException e;
    EXPECT_FALSE(g.Open(missing, CFile::modeRead, &e));
    EXPECT_EQ(e.m_cause, CFileException::fileNotFound);
}

TEST(FileSystem, OpenShareAsksTheUserOnASharingConflict) {
    vxtest::TempDir dir;
    const CVXString path = P(dir.file("shared.dat"));
    CVXFile holder(path, CFile::modeCreate | CFile::modeWrite | CFile::shareExclusive);

    ScriptedPrompt prompt(2); // Retry twice, then Cancel
    SetUserPrompt(&prompt);
    SetResourceLanguage(LANG_DUTCH);
    CVXFile second;
    CFileException e;
    EXPECT_FALSE(second.OpenShare(path, CFile::modeRead | CFile::shareDenyWrite, &e));
    EXPECT_EQ(e.m_cause, CFileException::sharingViolation);
    ASSERT_EQ(prompt.asked.size(), 3u);
    EXPECT_EQ(
        prompt.asked[0].rfind(u"File " + U(path) + u" kan niet worden geopend,\noorzaak: ", 0), 0u);

    // Without a host the question answers Cancel at once.
    SetUserPrompt(nullptr);
    EXPECT_FALSE(second.OpenShare(path, CFile::modeRead | CFile::shareDenyWrite, &e));
    holder.Close();
    EXPECT_TRUE(second.OpenShare(path, CFile::modeRead | CFile::shareDenyWrite, &e));
    SetResourceLanguage(LANG_ENGLISH_US);
}

TEST(Folders, ListCopyDeleteAndRemoveTrees) {
    vxtest::TempDir dir;
    const std::string src = dir.file("src");
    ASSERT_TRUE(bCreateDir(P(src)));
    for (const char *name : {"b.txt", "a.txt", "c.dat", "noext"})
        vxtest::WriteBytes(src + "/" + name, {7});
    CVXStringList list;
    GetFiles(P(src), CVXString(u"*.txt"), list);
    ASSERT_EQ(list.GetCount(), 2);
    EXPECT_EQ(U(list.GetHead()), u"a.txt");
    EXPECT_EQ(U(list.GetTail()), u"b.txt");
    CVXStringList all;
    GetFiles(P(src), CVXString(u"*.*"), all, true);
    EXPECT_EQ(all.GetCount(), 4);
    EXPECT_EQ(U(all.GetHead()), U(P(src + "/a.txt")));

    const std::string dst = dir.file("dst");
    ASSERT_TRUE(bCreateDir(P(dst)));
    EXPECT_EQ(CopyFiles(P(src), P(dst), CVXString(u"*.dat")), 1);
    EXPECT_TRUE(bExists(P(dst + "/c.dat")));
    EXPECT_EQ(DeleteFiles(P(src), CVXString(u"*.txt")), 2);
    EXPECT_FALSE(bExists(P(src + "/a.txt")));

    EXPECT_TRUE(bCopyFolder(P(src), P(dir.file("copy"))));
    EXPECT_TRUE(bExists(P(dir.file("copy/noext"))));
    EXPECT_TRUE(RemoveDirectoryRecursive(P(dir.file("copy"))));
    EXPECT_FALSE(bExists(P(dir.file("copy"))));
}

TEST(DumpFile, PrintsFormattedTextInTheCodePage) {
    vxtest::TempDir dir;
    {
        CDumpFile f(P(dir.file("dump.txt")), CFile::modeCreate | CFile::modeWrite);
        f.Format(u"%d;%5.1f;%s\n", 3, 2.25, u"\u00E9");
    }
    EXPECT_EQ(vxtest::ReadBytes(dir.file("dump.txt")),
              std::vector<uint8_t>({'3', ';', ' ', ' ', '2', '.', '2', ';', 0xE9, '\n'}));
}

TEST(FileSystem, DataPathIsTheLibraryDirectoryUnlessOverridden) {
    {
        vxtest::ScopedEnv data("VXCOMMON_DATA", "/some/where");
        EXPECT_EQ(DLLPath(), u"/some/where");
    }
    vxtest::ScopedEnv none("VXCOMMON_DATA", nullptr);
    const std::string dir = static_cast<const char *>(DLLPath());
    // The library binary lies in that directory.
    EXPECT_TRUE(bExists(P(dir + "/libvxcommon.so")) || bExists(P(dir + "/libvxcommon.a")) ||
                dir == ".")
        << dir;
}
