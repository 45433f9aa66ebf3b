// The stored formats do not move: a fixed object graph with every stored type is written by both
// archives and compared byte for byte with files kept in tests/persist/data/. The files were
// written once by the archives as they stood before their speed work (see data/README.md); any
// change to how the archives buffer, index or parse must leave these bytes alone. The files are
// also loaded and written again, which must give the same bytes.
#include "foundation/VXODateTime.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/LoadedObjects.h"
#include "persist/SerCollections.h"
#include "persist/VXStringArray.h"
#include "persist/VXStringList.h"
#include "platform/CodePage.h"
#include "platform/File.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <vector>

using namespace vx;

namespace vxtest {

// One field of every kind either archive stores, and a link to another object.
class CGoldenAll : public CSerObject {
    VX_DECLARE_SERIAL(CGoldenAll)
public:
    char c = 0;
    signed char sc = 0;
    unsigned char uc = 0;
    bool b = false;
    int16_t i16 = 0;
    uint16_t u16 = 0;
    char16_t ch = 0;
    int32_t i32 = 0;
    uint32_t u32 = 0;
    int64_t i64 = 0;
    uint64_t u64 = 0;
    float f = 0;
    double d = 0;
    double unknown = 0;
    CVXString text, empty, longText, line;
    GUID guid;
    CRGB15Base colour;
    CVXODateTime date;
    VXVariant vNumber, vText, vDate;
    ISerObject *link = nullptr;

    void SerializeB(CArchiveB &ar) override {
        if (ar.IsStoring()) {
            ar << c << sc << uc << b << i16 << u16 << ch << i32 << u32 << i64 << u64 << f << d
               << unknown << text << empty << longText;
            ar.WriteString(line);
            ar.WriteObject(link);
            return;
        }
        ar >> c >> sc >> uc >> b >> i16 >> u16 >> ch >> i32 >> u32 >> i64 >> u64 >> f >> d >>
            unknown >> text >> empty >> longText;
        ar.ReadString(line);
        line += u"\n"; // the reader drops the line end the writer put there
        link = ar.ReadObject(nullptr);
    }
    void SerializeX(CArchiveX &ar) override {
        ar.Serialize(u"b", b);
        ar.Serialize(u"uc", uc);
        ar.Serialize(u"i16", i16);
        ar.Serialize(u"u16", u16);
        ar.Serialize(u"ch", ch);
        ar.Serialize(u"i32", i32);
        ar.Serialize(u"u32", u32);
        ar.Serialize(u"i64", i64);
        ar.Serialize(u"f", f);
        ar.Serialize(u"d", d);
        ar.Serialize(u"unknown", unknown);
        ar.Serialize(u"text", text);
        ar.Serialize(u"empty", empty);
        ar.Serialize(u"longText", longText);
        ar.Serialize(u"guid", guid);
        ar.Serialize(u"colour", colour);
        ar.Serialize(u"date", date);
        ar.Serialize(u"vNumber", vNumber);
        ar.Serialize(u"vText", vText);
        ar.Serialize(u"vDate", vDate);
        if (ar.IsStoring() && link) ar.Save(u"link", static_cast<const ISerObject *>(link));
        if (ar.IsLoading()) ar.Load(u"link", link);
    }
};
VX_IMPLEMENT_SERIAL(CGoldenAll, VERSIONABLE_SCHEMA | 2)

// No fields: it only takes an index, to push the numbering past the short tags.
class CGoldenFiller : public CSerObject {
    VX_DECLARE_SERIAL(CGoldenFiller)
};
VX_IMPLEMENT_SERIAL(CGoldenFiller, 0)

} // namespace vxtest

using vxtest::CGoldenAll;
using vxtest::CGoldenFiller;

namespace {

// Indices run to 0x7FFF and beyond after this many fillers, so that later classes and objects
// take the big tags.
constexpr int kFillers = 0x7FFF;

std::filesystem::path DataDir() {
    return std::filesystem::path(__FILE__).parent_path() / "data";
}

// The graph owns every object it made; the arrays and lists only point.
struct Graph {
    std::vector<std::unique_ptr<ISerObject>> owned;
    CSerObArray *root = nullptr;

    template <class T>
    T *Make() {
        owned.push_back(std::make_unique<T>());
        return static_cast<T *>(owned.back().get());
    }
};

void Fill(CGoldenAll &g, int seed) {
    g.c = 'q';
    g.sc = static_cast<signed char>(-5 - seed);
    g.uc = 0xE9;
    g.b = true;
    g.i16 = static_cast<int16_t>(-12345 + seed);
    g.u16 = 0xFEDC;
    g.ch = u'\u20AC';
    g.i32 = -123456789;
    g.u32 = 0xDEADBEEFu;
    g.i64 = std::numeric_limits<int64_t>::min() + seed;
    g.u64 = 0x0123456789ABCDEFull;
    g.f = 0.1f;
    g.d = 1e+100 / (seed + 1);
    g.unknown = std::numeric_limits<double>::quiet_NaN();
    g.text = CVXString(u"a&b <c> \"d\" 'e' \u00E9\u4E2D");
    g.longText = CVXString(std::u16string(300, u'x').c_str());
    g.line = CVXString(u"one line\n");
    g.guid = GUID{0x12345678u, 0x9ABC, 0xDEF0, {1, 2, 3, 4, 5, 6, 7, 8}};
    g.colour.m_nRGB = 0x7C1F;
    g.date = CVXODateTime(45000.5);
    g.vNumber = VXVariant(2.5);
    g.vText = VXVariant(u"variant text");
    g.vDate = VXVariant::FromDate(36526.25);
}

// A root array with: two objects of one class (a new class, then its index), a back-reference,
// a null, a list holding an object that refers to the root (its parent), words, strings; with
// `fillers`, enough objects to reach the big tags, then new classes and a back-reference there.
Graph MakeGraph(bool forBinary) {
    Graph g;
    g.root = g.Make<CSerObArray>();
    auto *first = g.Make<CGoldenAll>();
    auto *second = g.Make<CGoldenAll>();
    Fill(*first, 0);
    Fill(*second, 1);
    g.root->Add(first);
    g.root->Add(second);
    if (forBinary) {
        first->link = g.root;  // the parent
        second->link = second; // itself
        g.root->Add(first);    // a back-reference
        g.root->Add(nullptr);
    } else {
        auto *child = g.Make<CGoldenAll>();
        Fill(*child, 2);
        first->link = child;
    }
    auto *list = g.Make<CSerObList>();
    auto *inList = g.Make<CGoldenAll>();
    Fill(*inList, 3);
    list->AddTail(inList);
    g.root->Add(list);
    auto *words = g.Make<CVXWordArray>();
    for (uint16_t w : {0, 1, 0x7FFF, 0xFFFF})
        words->Add(w);
    g.root->Add(words);
    if (forBinary)
        for (int i = 0; i < kFillers; ++i)
            g.root->Add(g.Make<CGoldenFiller>());
    for (int i = 0; i < 2; ++i) {
        auto *strings = g.Make<CVXStringArray>();
        strings->Add(CVXString(u"s0"));
        strings->Add(CVXString());
        auto *lines = g.Make<CVXStringList>();
        lines->AddTail(CVXString(u"l0"));
        g.root->Add(strings);
        g.root->Add(lines);
        if (forBinary) g.root->Add(lines); // past 0x7FFF: a big back-reference
    }
    return g;
}

std::vector<uint8_t> WriteToMemory(const ISerObject *root) {
    CMemFile file;
    {
        CArchiveB ar(&file, CArchiveB::store);
        ar.WriteObject(root);
    }
    return std::vector<uint8_t>(file.GetData(), file.GetData() + file.GetLength());
}

std::vector<uint8_t> WriteToFile(const ISerObject *root, const std::string &path) {
    {
        CFile file(CVXString(path.c_str()), CFile::modeCreate | CFile::modeWrite);
        CArchiveB ar(&file, CArchiveB::store);
        ar.WriteObject(root);
        ar.Close();
    }
    return vxtest::ReadBytes(path);
}

std::string XmlOf(const ISerObject *root) {
    CArchiveX ar(false);
    ar.Save(u"Root", root);
    const CVXString text = ar.XML();
    return WideToUtf8(text, static_cast<size_t>(text.GetLength()));
}

// Setting VX_WRITE_GOLDEN to a folder writes the files there instead of comparing: how the
// files in data/ were made.
const char *GoldenOutput() {
    const char *dir = std::getenv("VX_WRITE_GOLDEN");
    return dir && *dir ? dir : nullptr;
}

} // namespace

TEST(ByteIdentity, BinaryArchiveWritesAndRewritesTheKeptBytes) {
    const Graph graph = MakeGraph(true);
    const std::vector<uint8_t> memory = WriteToMemory(graph.root);
    if (const char *dir = GoldenOutput()) {
        vxtest::WriteBytes(std::string(dir) + "/graph.bin", memory);
        GTEST_SKIP() << "written to " << dir;
    }
    const std::vector<uint8_t> kept = vxtest::ReadBytes(DataDir() / "graph.bin");
    ASSERT_FALSE(kept.empty());
    EXPECT_TRUE(memory == kept) << "memory file: the bytes differ";
    vxtest::TempDir dir;
    EXPECT_TRUE(WriteToFile(graph.root, dir.file("graph.bin")) == kept) << "disk file";

    // Loaded and written again: the same bytes, also through a small read buffer that makes
    // values straddle refills.
    for (const int bufferSize : {128, 4096, 65536}) {
        CLoadedObjects owner;
        const CLoadedObjects::CCollector collect(owner);
        CFile file(CVXString((DataDir() / "graph.bin").c_str()), CFile::modeRead);
        CArchiveB ar(&file, CArchiveB::load, bufferSize);
        const ISerObject *loaded = ar.ReadObject(nullptr);
        ASSERT_NE(loaded, nullptr);
        EXPECT_TRUE(WriteToMemory(loaded) == kept) << "rewritten, buffer " << bufferSize;
    }
}

TEST(ByteIdentity, XmlArchiveSavesAndResavesTheKeptText) {
    const Graph graph = MakeGraph(false);
    const std::string xml = XmlOf(graph.root);
    if (const char *dir = GoldenOutput()) {
        const std::vector<uint8_t> bytes(xml.begin(), xml.end());
        vxtest::WriteBytes(std::string(dir) + "/graph.xml", bytes);
        GTEST_SKIP() << "written to " << dir;
    }
    const std::vector<uint8_t> keptBytes = vxtest::ReadBytes(DataDir() / "graph.xml");
    const std::string kept(keptBytes.begin(), keptBytes.end());
    ASSERT_FALSE(kept.empty());
    EXPECT_EQ(xml, kept);

    CLoadedObjects owner;
    const CLoadedObjects::CCollector collect(owner);
    CArchiveX in(true);
    in.XML(Utf8ToWide(kept.data(), kept.size()).c_str());
    ISerObject *loaded = nullptr;
    in.Load(u"Root", loaded);
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(XmlOf(loaded), kept);
}
