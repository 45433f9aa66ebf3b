// Archives under faults and hostile input: write errors, full disks, kills in the middle of a
// save, deep nesting on a small stack, loads that fail half-way, and readers side by side.
#include "persist/ArchiveB.h"
#include "persist/ArchiveFiles.h"
#include "persist/ArchiveX.h"
#include "persist/LoadedObjects.h"
#include "persist/RuntimeCreator.h"
#include "persist/SerCollections.h"
#include "platform/Errors.h"
#include "platform/File.h"
#include "support/ArchiveTestSupport.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <dirent.h>
#include <functional>
#include <pthread.h>
#include <random>
#include <initializer_list>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace vx {

// A serialisable class that counts its live objects, so that tests see what a load leaves.
class CCountedThing : public CSerObject {
    VX_DECLARE_SERIAL(CCountedThing)
public:
    CCountedThing() { ++s_nLive; }
    ~CCountedThing() override { --s_nLive; }
    CCountedThing(const CCountedThing &) = delete;
    CCountedThing &operator=(const CCountedThing &) = delete;
    void SerializeB(CArchiveB &ar) override {
        if (ar.IsStoring())
            ar << m_nValue;
        else
            ar >> m_nValue;
    }
    void SerializeX(CArchiveX &ar) override { ar.Serialize(u"m_nValue", m_nValue); }
    using CSerObject::SerializeX;

    static inline int s_nLive = 0;
    int32_t m_nValue = 0;
};

VX_IMPLEMENT_SERIAL(CCountedThing, 1)

namespace {

using vxtest::Bytes;
using vxtest::ReadBytes;
using vxtest::TempDir;
using vxtest::WriteBytes;

CVXString Path(const std::string &path) {
    return CVXString(path.c_str());
}

// A word array of `n` words: large enough to cross any small file limit.
std::unique_ptr<CVXWordArray> Words(int32_t n, uint16_t seed) {
    auto words = std::make_unique<CVXWordArray>();
    words->SetSize(n);
    for (int32_t i = 0; i < n; ++i)
        words->SetAt(i, static_cast<uint16_t>(seed + i));
    return words;
}

// Exit codes of the child processes below.
enum ChildResult { kRaisedExpected = 0, kRaisedNothing = 1, kRaisedOther = 2 };

// Runs `work` in a child process whose files may not grow beyond `limit` bytes (a full disk as
// the writer sees it: writes fail with EFBIG once SIGXFSZ is ignored). Returns the child's exit
// code, or 100 + the signal that ended it.
int InChildWithFileLimit(rlim_t limit, const std::function<int()> &work) {
    const pid_t pid = fork();
    if (pid == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit r{limit, limit};
        setrlimit(RLIMIT_FSIZE, &r);
        _exit(work());
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 100 + WTERMSIG(status);
}

// The names in a directory other than "." and "..".
std::vector<std::string> Listing(const std::string &dir) {
    std::vector<std::string> names;
    if (DIR *d = opendir(dir.c_str())) {
        while (const dirent *e = readdir(d))
            if (std::strcmp(e->d_name, ".") != 0 && std::strcmp(e->d_name, "..") != 0)
                names.push_back(e->d_name);
        closedir(d);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Runs `body` on a thread with a stack of `bytes`, the size hosts often give worker threads.
void OnSmallStack(size_t bytes, const std::function<void()> &body) {
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setstacksize(&attr, bytes);
    pthread_t thread;
    auto *task = new std::function<void()>(body);
    const auto run = [](void *p) -> void * {
        const std::unique_ptr<std::function<void()>> f(static_cast<std::function<void()> *>(p));
        (*f)();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attr, run, task), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
}

constexpr size_t kSmallStack = 1u << 20;

// `depth` arrays each holding the next, the innermost empty, as an XML document.
std::string NestedArraysXml(int depth) {
    std::string xml = "<VXA>";
    const std::string open = "<pO MFC_RUNTIME_TYPE=\"CSerObArray\" MFC_RUNTIME_TYPE_SCHEMA=\"0\" "
                             "m_nSize=\"1\">";
    xml += "<Root MFC_RUNTIME_TYPE=\"CSerObArray\" MFC_RUNTIME_TYPE_SCHEMA=\"0\" m_nSize=\"1\">";
    for (int i = 1; i < depth; ++i)
        xml += open;
    xml += "<pO/>";
    for (int i = 1; i < depth; ++i)
        xml += "</pO>";
    return xml + "</Root></VXA>";
}

// The same nesting in the binary archive: the class once, then 01 80 and a count of 1 a level.
Bytes NestedArraysBinary(int depth) {
    // Byte by byte: inserting brace lists into a vector trips a false -Warray-bounds of g++ 12
    // under ThreadSanitizer.
    Bytes bytes;
    const auto put = [&bytes](std::initializer_list<unsigned> list) {
        for (unsigned b : list)
            bytes.push_back(static_cast<uint8_t>(b));
    };
    put({0xFF, 0xFF, 0x00, 0x00, 0x0B, 0x00});
    for (char c : std::string("CSerObArray"))
        bytes.push_back(static_cast<uint8_t>(c));
    put({0x01, 0x00});
    for (int i = 1; i < depth; ++i)
        put({0x01, 0x80, 0x01, 0x00});
    put({0x00, 0x00});
    return bytes;
}

// Loads the root of an XML text; the objects made go to `owner`.
void LoadXmlRoot(const std::string &xml, CLoadedObjects &owner) {
    const CLoadedObjects::CCollector collect(owner);
    CArchiveX ar(true);
    ar.XML(CVXString(xml.c_str()));
    ISerObject *root = nullptr;
    ar.Load(u"Root", root);
}

} // namespace

TEST(ArchiveRobustness, BinaryWriteErrorsRaiseTheArchiveException) {
    // A memory file of fixed size is full after 256 bytes: 40 doubles (320 bytes) must fail as
    // the archive's own exception, never as a file exception its caller does not expect.
    unsigned char buffer[256];
    CMemFile fixed(buffer, sizeof buffer);
    CArchiveB ar(&fixed, CArchiveB::store, 128);
    EXPECT_THROW(
        {
            for (int i = 0; i < 40; ++i)
                ar << 1.0;
            ar.Flush();
        },
        CArchiveBException);

    // A real file on a full disk: every write error reaches the caller.
    TempDir dir;
    const std::string path = dir.file("full.bin");
    const int rc = InChildWithFileLimit(4096, [&] {
        try {
            CFile file(Path(path), CFile::modeCreate | CFile::modeWrite);
            CArchiveB out(&file, CArchiveB::store);
            out.WriteObject(Words(100000, 1).get());
            out.Close();
        } catch (const CArchiveBException &e) {
            return e.m_cause == CArchiveBException::genericException && !e.Reason().empty()
                       ? kRaisedExpected
                       : kRaisedOther;
        } catch (...) {
            return kRaisedOther;
        }
        return kRaisedNothing;
    });
    EXPECT_EQ(rc, kRaisedExpected);
}

TEST(ArchiveRobustness, XmlWriteErrorsRaiseTheArchiveException) {
    TempDir dir;
    // A document that cannot be written at all.
    EXPECT_THROW({ CArchiveX ar(Path(dir.file("no/such/dir/a.xml")), false); }, CVXComError);
    // A document that fills the disk half-way: the error carries the system's reason.
    const std::string path = dir.file("full.xml");
    const int rc = InChildWithFileLimit(4096, [&] {
        try {
            CArchiveX ar(Path(path), false);
            ar.Save(u"Root", Words(3000, 1).get());
        } catch (const CVXComError &e) {
            const std::string text = static_cast<const char *>(e.ErrorMessage());
            return text.find(std::strerror(EFBIG)) != std::string::npos ? kRaisedExpected
                                                                        : kRaisedOther;
        } catch (...) {
            return kRaisedOther;
        }
        return kRaisedNothing;
    });
    EXPECT_EQ(rc, kRaisedExpected);
    // While the scope is left by another exception the failure is dropped, not terminate().
    EXPECT_THROW(
        {
            CArchiveX ar(Path(dir.file("no/such/dir/b.xml")), false);
            throw std::runtime_error("first");
        },
        std::runtime_error);
}

TEST(ArchiveRobustness, MemoryFileLoadsWithoutPointerArithmeticOnNull) {
    // The memory file lends its buffer only on the first read: before it the archive's buffer
    // pointers are null, and a check computed as pointer + size was undefined behaviour there.
    const Bytes bytes = {0x2A, 0x00, 0x00, 0x00};
    int32_t value = 0;
    vxtest::Load(bytes, [&](CArchiveB &ar) { ar >> value; });
    EXPECT_EQ(value, 42);
}

TEST(ArchiveRobustness, XmlNestingIsLimitedAndTheLimitFitsASmallStack) {
    // Exactly the limit loads, on a 1 MiB stack, under any sanitizer's frames; one more level,
    // and the 30,000 levels of a hostile file, are refused with the archive's exception.
    OnSmallStack(kSmallStack, [] {
        CLoadedObjects owner;
        EXPECT_NO_THROW(LoadXmlRoot(NestedArraysXml(CArchiveX::kMaxDepth), owner));
        EXPECT_EQ(owner.GetCount(), size_t(CArchiveX::kMaxDepth));
        EXPECT_THROW(LoadXmlRoot(NestedArraysXml(CArchiveX::kMaxDepth + 1), owner), CVXComError);
        EXPECT_THROW(LoadXmlRoot(NestedArraysXml(30000), owner), CVXComError);
    });
}

TEST(ArchiveRobustness, BinaryNestingLimitFitsASmallStack) {
    OnSmallStack(kSmallStack, [] {
        CLoadedObjects owner;
        const CLoadedObjects::CCollector collect(owner);
        EXPECT_NO_THROW(vxtest::Load(NestedArraysBinary(CArchiveB::kMaxDepth),
                                     [](CArchiveB &ar) { ar.ReadObject(nullptr); }));
        EXPECT_EQ(owner.GetCount(), size_t(CArchiveB::kMaxDepth));
        EXPECT_THROW(vxtest::Load(NestedArraysBinary(CArchiveB::kMaxDepth + 1),
                                  [](CArchiveB &ar) { ar.ReadObject(nullptr); }),
                     CArchiveBException);
    });
}

TEST(ArchiveRobustness, TheOwnerFreesWhatAFailedLoadMade) {
    TempDir dir;
    const std::string path = dir.file("things.bin");
    {
        CSerObArray things;
        for (int i = 0; i < 1000; ++i)
            things.Add(new CCountedThing);
        SaveArchiveRoot(Path(path), things, ArchiveFormat::binary);
        for (int i = 0; i < 1000; ++i)
            delete things.GetAt(i);
    }
    ASSERT_EQ(CCountedThing::s_nLive, 0);
    {
        const CLoadedArchive loaded = LoadArchiveRoot(Path(path));
        // The array and its 1000 elements, which the array itself does not own.
        EXPECT_EQ(loaded.Objects().GetCount(), 1001u);
        EXPECT_EQ(CCountedThing::s_nLive, 1000);
    }
    EXPECT_EQ(CCountedThing::s_nLive, 0);

    // Half the file: the load fails half-way, and nothing it made survives.
    Bytes bytes = ReadBytes(path);
    bytes.resize(bytes.size() / 2);
    WriteBytes(path, bytes);
    EXPECT_THROW(LoadArchiveRoot(Path(path)), CArchiveFileError);
    EXPECT_EQ(CCountedThing::s_nLive, 0);

    // A host that keeps one object takes it out of the owner first.
    const std::string xml = dir.file("thing.xml");
    SaveArchiveRoot(Path(xml), CCountedThing(), ArchiveFormat::xml);
    ISerObject *kept = nullptr;
    {
        const CLoadedArchive loaded = LoadArchiveRoot(Path(xml));
        kept = &loaded.Root();
        loaded.Objects().Release(kept);
    }
    EXPECT_EQ(CCountedThing::s_nLive, 1);
    delete kept;
}

TEST(ArchiveRobustness, AFullDiskLeavesTheTargetAsItWas) {
    TempDir dir;
    for (const ArchiveFormat format : {ArchiveFormat::binary, ArchiveFormat::xml}) {
        const std::string target = dir.file(format == ArchiveFormat::xml ? "t.xml" : "t.bin");
        SaveArchiveRoot(Path(target), *Words(10, 7), format);
        const Bytes before = ReadBytes(target);
        const int rc = InChildWithFileLimit(16384, [&] {
            try {
                // Well beyond the limit in either format (an XML word takes over 10 bytes).
                SaveArchiveRoot(Path(target),
                                *Words(format == ArchiveFormat::xml ? 5000 : 100000, 1), format);
            } catch (const CArchiveFileError &e) {
                // The message names the target (not the temporary file) and the cause.
                const std::string text = e.what();
                const bool good =
                    text.find(std::strerror(EFBIG)) != std::string::npos &&
                    text.size() >= target.size() &&
                    text.compare(text.size() - target.size(), target.size(), target) == 0 &&
                    text.find(".tmp") == std::string::npos;
                return good ? kRaisedExpected : kRaisedOther;
            } catch (...) {
                return kRaisedOther;
            }
            return kRaisedNothing;
        });
        EXPECT_EQ(rc, kRaisedExpected);
        EXPECT_EQ(ReadBytes(target), before);
    }
    // Nothing is left behind beside the targets.
    EXPECT_EQ(Listing(dir.path()), (std::vector<std::string>{"t.bin", "t.xml"}));
}

TEST(ArchiveRobustness, AFullTmpfsLeavesTheTargetAsItWas) {
    // A real full file system, where the machine lets the test mount one.
    TempDir dir;
    const std::string mnt = dir.file("mnt");
    ASSERT_EQ(mkdir(mnt.c_str(), 0700), 0);
    if (geteuid() != 0 || mount("tmpfs", mnt.c_str(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "no tmpfs can be mounted here; the file-size limit stands in for it";
    const std::string target = mnt + "/t.bin";
    SaveArchiveRoot(Path(target), *Words(10, 7), ArchiveFormat::binary);
    const Bytes before = ReadBytes(target);
    std::string message;
    try {
        SaveArchiveRoot(Path(target), *Words(100000, 1), ArchiveFormat::binary);
    } catch (const CArchiveFileError &e) {
        message = e.what();
    }
    EXPECT_NE(message.find(std::strerror(ENOSPC)), std::string::npos) << message;
    EXPECT_EQ(ReadBytes(target), before);
    EXPECT_EQ(Listing(mnt), std::vector<std::string>{"t.bin"});
    umount(mnt.c_str());
}

TEST(ArchiveRobustness, AKilledSaveLeavesTheOldOrTheNewFile) {
    TempDir dir;
    const std::string target = dir.file("big.bin");
    const std::string refA = dir.file("a.ref"), refB = dir.file("b.ref");
    const auto a = Words(400000, 1), b = Words(400000, 2);
    SaveArchiveRoot(Path(refA), *a, ArchiveFormat::binary);
    SaveArchiveRoot(Path(refB), *b, ArchiveFormat::binary);
    const Bytes bytesA = ReadBytes(refA), bytesB = ReadBytes(refB);
    WriteBytes(target, bytesA);

    std::mt19937 random(12345);
    std::uniform_int_distribution<int> delayUs(0, 40000);
    constexpr int kTries = 12;
    for (int attempt = 0; attempt < kTries; ++attempt) {
        const pid_t pid = fork();
        if (pid == 0) {
            // Saves the two graphs in turn until killed.
            for (int i = 0;; ++i)
                SaveArchiveRoot(Path(target), i % 2 ? *a : *b, ArchiveFormat::binary);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(delayUs(random)));
        kill(pid, SIGKILL);
        int status = 0;
        waitpid(pid, &status, 0);
        const Bytes now = ReadBytes(target);
        ASSERT_TRUE(now == bytesA || now == bytesB)
            << "attempt " << attempt << ": " << now.size() << " bytes";
    }
}

TEST(ArchiveRobustness, ReadersShareAFileAndWritersExcludeThem) {
    TempDir dir;
    const std::string path = dir.file("shared.bin");
    SaveArchiveRoot(Path(path), *Words(10, 3), ArchiveFormat::binary);
    {
        // Another reader holds the file (as a second vx archive dump would).
        const CFile reader(Path(path), CFile::modeRead | CFile::shareDenyWrite);
        EXPECT_NO_THROW(LoadArchiveRoot(Path(path)));
        EXPECT_NO_THROW(DumpArchive(Path(path)));
        EXPECT_THROW(SaveArchiveRoot(Path(path), *Words(3, 3), ArchiveFormat::binary),
                     CArchiveFileError);
    }
    EXPECT_NO_THROW(SaveArchiveRoot(Path(path), *Words(3, 3), ArchiveFormat::binary));
}

TEST(ArchiveRobustness, TheListingOfADeepDocumentGrowsLinearly) {
    // 5000 levels: with an indentation of one tab a level the listing would hold 12.5 million
    // tabs; capped at kMaxListingIndent it holds at most 32 a line.
    TempDir dir;
    const std::string path = dir.file("deep.xml");
    constexpr int kDepth = 5000;
    std::string xml = "<VXXMLArchive><Root MFC_RUNTIME_TYPE=\"X\" MFC_RUNTIME_TYPE_SCHEMA=\"1\">";
    for (int i = 0; i < kDepth; ++i)
        xml += "<a>";
    xml += "t&amp;";
    for (int i = 0; i < kDepth; ++i)
        xml += "</a>";
    xml += "</Root></VXXMLArchive>";
    WriteBytes(path, Bytes(xml.begin(), xml.end()));
    const std::string listing = DumpArchive(Path(path));
    size_t longestIndent = 0, lines = 0;
    for (size_t start = 0; start < listing.size(); ++lines) {
        const size_t end = listing.find('\n', start);
        longestIndent = std::max(longestIndent, listing.find_first_not_of('\t', start) - start);
        start = end == std::string::npos ? listing.size() : end + 1;
    }
    EXPECT_EQ(longestIndent, size_t(kMaxListingIndent));
    // Two lines an element (open and close), the text, the header lines and the document's
    // own element and Root.
    EXPECT_GE(lines, size_t(2 * kDepth + 1));
    EXPECT_LT(listing.size(), size_t(kDepth) * 2 * (kMaxListingIndent + 8) + 1000);
    EXPECT_NE(listing.find("\tt&amp;\n"), std::string::npos);
}

} // namespace vx
