// The log: the ring of files, the filter, the two line forms and the routed reports.
#include "host/Logger.h"

#include "platform/Assert.h"
#include "platform/UserPrompt.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cctype>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using namespace vx;
using vxtest::ReadBytes;
using vxtest::TempDir;
using vxtest::WriteBytes;

namespace {

std::string Host() {
    char name[256] = {};
    gethostname(name, sizeof name - 1);
    return name[0] ? name : "Localhost";
}

std::string Contents(const std::string &path) {
    const std::vector<uint8_t> bytes = ReadBytes(path);
    return std::string(bytes.begin(), bytes.end());
}

// Writes a file and gives it a write time, in whole seconds since 1970.
void Touch(const std::string &path, time_t when, const std::vector<uint8_t> &bytes = {}) {
    WriteBytes(path, bytes);
    const timespec times[2] = {{when, 0}, {when, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
}

std::string Path(const CVXString &s) {
    return static_cast<const char *>(s);
}

// Restores the verbosity a test changed.
struct VerbosityGuard {
    int m_nOld = NLogger::Verbosity();
    ~VerbosityGuard() { NLogger::Verbosity(m_nOld); }
};

const std::string kBom = "\xEF\xBB\xBF";

// The log text with each date and time ("YYYY-MM-DD hh:mm:ss") replaced by "<T>".
std::string MaskStamps(const std::string &text) {
    const std::string form = "dddd-dd-dd dd:dd:dd";
    auto isStamp = [&](size_t at) {
        for (size_t k = 0; k < form.size(); ++k) {
            const char ch = text[at + k];
            if (form[k] == 'd' ? !std::isdigit(static_cast<unsigned char>(ch)) : ch != form[k])
                return false;
        }
        return true;
    };
    std::string out;
    for (size_t i = 0; i < text.size();) {
        if (i + form.size() <= text.size() && isStamp(i)) {
            out += "<T>";
            i += form.size();
        } else {
            out += text[i++];
        }
    }
    return out;
}

// Initializes the log in the directory; the name of the file it opened.
std::string OpenIn(const TempDir &dir) {
    NLogger::Initialize(CVXString(dir.path().c_str()));
    const std::string path = Path(NLogger::GetLogPath());
    return path.substr(0, dir.path().size() + 1) == dir.path() + "/"
               ? path.substr(dir.path().size() + 1)
               : "(" + path + ")";
}

} // namespace

TEST(Logger, TheRingTurnsByTheNewestFile) {
    const std::string host = Host();
    TempDir dir, ring, odd, single;
    EXPECT_EQ(OpenIn(dir), host + "0.log"); // no file yet
    EXPECT_EQ(OpenIn(dir), host + "1.log"); // one file, whatever it is called

    Touch(ring.file(host + "3.log"), 1000);
    Touch(ring.file(host + "9.log"), 3000);
    Touch(ring.file(host + "5.log"), 2000);
    Touch(ring.file("other9.log"), 4000);    // another machine's file
    EXPECT_EQ(OpenIn(ring), host + "0.log"); // after 9 comes 0
    Touch(ring.file(host + "0.log"), 1500);  // older than 9: 9 stays the newest
    EXPECT_EQ(OpenIn(ring), host + "0.log");
    Touch(ring.file(host + "4.log"), 4000000000); // newer than the file just opened
    EXPECT_EQ(OpenIn(ring), host + "5.log");

    Touch(odd.file(host + "x.log"), 2000);
    Touch(odd.file(host + "7.log"), 1000);
    EXPECT_EQ(OpenIn(odd), host + "0.log"); // the newest has no digit
    Touch(single.file(host + "Q.txt"), 1000);
    EXPECT_EQ(OpenIn(single), host + "1.log");
}

TEST(Logger, AnOpenFileStartsEmptyInUtf8) {
    TempDir dir;
    const std::string host = Host();
    Touch(dir.file(host + "0.log"), 1000, {'o', 'l', 'd'});
    Touch(dir.file(host + "9.log"), 2000);
    ASSERT_EQ(OpenIn(dir), host + "0.log");
    NLogger::LogMessage(NLogger::Error, u"gr\u00fc\u00df \u20ac");
    EXPECT_EQ(Contents(dir.file(host + "0.log")), kBom + " gr\xC3\xBC\xC3\x9F \xE2\x82\xAC\n");
    EXPECT_EQ(OpenIn(dir), host + "1.log"); // the file just written is the newest
}

TEST(Logger, TheDefaultDirectoryIsTmpdir) {
    TempDir dir;
    vxtest::ScopedEnv env("TMPDIR", dir.path().c_str());
    NLogger::Initialize(CVXString());
    EXPECT_EQ(Path(NLogger::GetLogPath()), dir.file(Host() + "0.log"));
}

TEST(Logger, FilterAndFlush) {
    VerbosityGuard guard;
    TempDir dir;
    const std::string path = dir.file(OpenIn(dir));
    NLogger::Verbosity(1);
    EXPECT_EQ(NLogger::Verbosity(), 1);
    NLogger::LogMessage(NLogger::Warning, u"not written");
    NLogger::Verbosity(3);
    NLogger::LogMessage(NLogger::Info, u"info");
    EXPECT_EQ(Contents(path), ""); // written but not flushed, byte-order mark included
    NLogger::LogMessage(NLogger::Critical, u"critical");
    EXPECT_EQ(Contents(path), kBom + " info\n critical\n");
    NLogger::Verbosity(0);
    NLogger::LogMessage(NLogger::Error, u"filtered");
    NLogger::LogMessage(NLogger::Critical, u"kept");
    EXPECT_EQ(Contents(path), kBom + " info\n critical\n kept\n");
}

TEST(Logger, LineForms) {
    VerbosityGuard guard;
    TempDir dir;
    const std::string path = dir.file(OpenIn(dir));
    NLogger::Verbosity(3);
    NLogger::LogMessage(u"Reader", NLogger::Warning, u"line 3");
    NLogger::LogMessageNoNL(NLogger::Info, u"part");
    NLogger::LogMessageNoNL(u"Src", NLogger::Info, u"tail");
    NLogger::FormatMessage(NLogger::Info, u"%d of %s", 2, u"three");
    NLogger::FormatMessage(u"Fmt", NLogger::Critical, u"%5.2f|", 3.14159);
    NLogger::FormatMessageNoNL(NLogger::Error, u"[%c]", u'x');
    NLogger::FormatMessageNoNL(u"End", NLogger::Error, u"%s", u"done");
    EXPECT_EQ(MaskStamps(Contents(path)),
              kBom + "<T> Reader Warning line 3\n part<T> Src Info tail 2 of three\n"
                     "<T> Fmt Critical  3.14|\n [x]<T> End Error done");
    EXPECT_EQ(std::u16string(NLogger::SeverityWord(NLogger::Warning)), u"Warning");
}

TEST(Logger, ReportsOfAssertionsAndPromptsGoToTheLog) {
    TempDir dir;
    const std::string path = dir.file(OpenIn(dir));
    AssertReport("n > 0", "geometry/Snij.cpp", 42);
    SetUserPrompt(nullptr);
    GetUserPrompt().ShowMessage(u"disk full", IUserPrompt::IconError);
    EXPECT_EQ(MaskStamps(Contents(path)),
              kBom + "<T> Assertion failure Critical n > 0 geometry/Snij.cpp 42\n"
                     "<T> Message Error disk full\n");
}

TEST(Logger, ADirectoryThatCannotBeWrittenLeavesTheLogSilent) {
    TempDir dir;
    NLogger::Initialize(CVXString(dir.file("missing/deeper").c_str()));
    EXPECT_TRUE(NLogger::GetLogPath().IsEmpty());
    NLogger::LogMessage(NLogger::Critical, u"nowhere"); // silent, no crash
    NLogger::FormatMessage(u"src", NLogger::Critical, u"%d", 1);

    // A directory with no write permission (root may write anyway: then a file appears).
    TempDir locked;
    chmod(locked.path().c_str(), 0500);
    NLogger::Initialize(CVXString(locked.path().c_str()));
    const bool opened = !NLogger::GetLogPath().IsEmpty();
    EXPECT_EQ(opened, access(locked.path().c_str(), W_OK) == 0);
    chmod(locked.path().c_str(), 0700);
}
