#include "persist/ArchiveFiles.h"

#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/RuntimeCreator.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace vx {

// A small graph for the file tests: two numbers and an owned child of the same class.
class CArchiveToolSample : public CSerObject {
    VX_DECLARE_SERIAL(CArchiveToolSample)
public:
    ~CArchiveToolSample() override { delete m_pChild; }
    void SerializeB(CArchiveB &ar) override {
        if (ar.IsStoring()) {
            ar << m_dX << m_nCount;
            ar.WriteObject(m_pChild);
        } else {
            ar >> m_dX >> m_nCount;
            m_pChild = static_cast<CArchiveToolSample *>(ar.ReadObject(RTC()));
        }
    }
    void SerializeX(CArchiveX &ar) override {
        ar.Serialize(u"m_dX", m_dX);
        ar.Serialize(u"m_nCount", m_nCount);
        if (ar.IsStoring()) {
            if (m_pChild) ar.Save(u"Child", m_pChild);
            return;
        }
        ISerObject *child = nullptr;
        ar.Load(u"Child", child);
        m_pChild = dynamic_cast<CArchiveToolSample *>(child);
        if (!m_pChild) delete child;
    }
    using CSerObject::SerializeX;

    double m_dX = 0;
    int32_t m_nCount = 0;
    CArchiveToolSample *m_pChild = nullptr;
};

VX_IMPLEMENT_SERIAL(CArchiveToolSample, 3)

namespace {

using vxtest::ReadBytes;
using vxtest::TempDir;
using vxtest::WriteBytes;

ArchiveFormat Detect(const std::string &bytes) {
    return DetectArchiveFormat(reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size());
}

CVXString Path(const std::string &path) {
    return CVXString(path.c_str());
}

std::unique_ptr<CArchiveToolSample> Sample() {
    auto root = std::make_unique<CArchiveToolSample>();
    root->m_dX = 1.5;
    root->m_nCount = 7;
    root->m_pChild = new CArchiveToolSample;
    root->m_pChild->m_dX = -2.25;
    root->m_pChild->m_nCount = -1;
    return root;
}

void ExpectSample(const ISerObject *object) {
    const auto *root = dynamic_cast<const CArchiveToolSample *>(object);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->m_dX, 1.5);
    EXPECT_EQ(root->m_nCount, 7);
    ASSERT_NE(root->m_pChild, nullptr);
    EXPECT_EQ(root->m_pChild->m_dX, -2.25);
    EXPECT_EQ(root->m_pChild->m_nCount, -1);
    EXPECT_EQ(root->m_pChild->m_pChild, nullptr);
}

// The message of the error the call raises, empty when it raises none.
template <class F>
std::string ErrorOf(F call) {
    try {
        call();
    } catch (const CArchiveFileError &e) {
        return e.what();
    }
    return std::string();
}

} // namespace

TEST(ArchiveFiles, FormatDetection) {
    EXPECT_EQ(Detect("<VXXMLArchive/>"), ArchiveFormat::xml);
    EXPECT_EQ(Detect("\xEF\xBB\xBF \r\n\t<a/>"), ArchiveFormat::xml);
    EXPECT_EQ(Detect(std::string("\xFF\xFE\x20\x00<\x00", 6)), ArchiveFormat::xml);
    EXPECT_EQ(Detect(std::string("\xFE\xFF\x00<", 4)), ArchiveFormat::xml);
    EXPECT_EQ(Detect(std::string("\xFF\xFF\x03\x00", 4)), ArchiveFormat::binary);
    EXPECT_EQ(Detect(" x<"), ArchiveFormat::binary);
    EXPECT_EQ(Detect(""), ArchiveFormat::binary);

    EXPECT_EQ(ArchiveFormatForPath(u"/tmp/a.XML"), ArchiveFormat::xml);
    EXPECT_EQ(ArchiveFormatForPath(u"a.xml"), ArchiveFormat::xml);
    EXPECT_EQ(ArchiveFormatForPath(u"a.xml.bin"), ArchiveFormat::binary);
    EXPECT_EQ(ArchiveFormatForPath(u"xml"), ArchiveFormat::binary);
}

TEST(ArchiveFiles, BinaryAndXmlRoundTrips) {
    TempDir dir;
    const std::string bin = dir.file("graph.bin"), xml = dir.file("graph.xml");
    SaveArchiveRoot(Path(bin), *Sample(), ArchiveFormat::binary);

    // Class definition (tag 0xFFFF, schema, name length, name), the root's fields, then the child
    // as a new object of class index 1 (tag 0x8001) and its null child.
    std::vector<uint8_t> expected = {0xFF, 0xFF, 0x03, 0x00, 18, 0x00};
    for (char c : std::string("CArchiveToolSample"))
        expected.push_back(static_cast<uint8_t>(c));
    const std::vector<uint8_t> rest = {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF8, 0x3F, // 1.5
                                       0x07, 0x00, 0x00, 0x00,                         // 7
                                       0x01, 0x80, // new object of class 1
                                       0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02, 0xC0, // -2.25
                                       0xFF, 0xFF, 0xFF, 0xFF,                         // -1
                                       0x00, 0x00};                                    // null
    expected.insert(expected.end(), rest.begin(), rest.end());
    EXPECT_EQ(ReadBytes(bin), expected);

    const auto fromBinary = LoadArchiveRoot(Path(bin));
    ExpectSample(&fromBinary.Root());

    SaveArchiveRoot(Path(xml), fromBinary.Root(), ArchiveFormat::xml);
    EXPECT_EQ(DetectArchiveFormat(Path(xml)), ArchiveFormat::xml);
    const auto fromXml = LoadArchiveRoot(Path(xml));
    ExpectSample(&fromXml.Root());

    // Back to binary: the same bytes as the first save.
    SaveArchiveRoot(Path(dir.file("again.bin")), fromXml.Root(), ArchiveFormat::binary);
    EXPECT_EQ(ReadBytes(dir.file("again.bin")), expected);

    // Both listings name the root's class and schema and show the same fields.
    for (const std::string &path : {bin, xml}) {
        const std::string text = DumpArchive(Path(path));
        SCOPED_TRACE(text);
        EXPECT_NE(text.find("root: CArchiveToolSample (schema 3)\n"), std::string::npos);
        EXPECT_NE(text.find("m_nCount=\"7\""), std::string::npos);
        EXPECT_NE(text.find("m_nCount=\"-1\""), std::string::npos);
        EXPECT_NE(text.find("<Child"), std::string::npos);
    }
    EXPECT_NE(DumpArchive(Path(bin)).find("format: binary\n"), std::string::npos);
    EXPECT_NE(DumpArchive(Path(xml)).find("format: XML\n"), std::string::npos);
}

TEST(ArchiveFiles, BadFilesGiveClearErrors) {
    TempDir dir;
    const auto write = [&](const std::string &name, const std::string &bytes) {
        WriteBytes(dir.file(name), std::vector<uint8_t>(bytes.begin(), bytes.end()));
        return Path(dir.file(name));
    };
    const CVXString missing = Path(dir.file("missing.bin"));
    const CVXString empty = write("empty.bin", "");
    const CVXString garbage = write("garbage.bin", std::string("\xFF\xFF\x03\x00\x30\x00"
                                                               "ab",
                                                               8));
    const CVXString unknownClass =
        write("unknown.bin", std::string("\xFF\xFF\x01\x00\x02\x00Qz", 8));
    const CVXString nullRoot = write("null.bin", std::string("\x00\x00", 2));
    const CVXString broken = write("broken.xml", "<VXXMLArchive><Root");
    const CVXString noRoot = write("noroot.xml", "<VXXMLArchive><Other/></VXXMLArchive>");
    const CVXString foreign =
        write("foreign.xml", "<VXXMLArchive><Root MFC_RUNTIME_TYPE=\"CNoSuchClass\" "
                             "MFC_RUNTIME_TYPE_SCHEMA=\"2\"/></VXXMLArchive>");

    const struct {
        CVXString path;
        const char *problem;
    } cases[] = {{missing, "cannot read the file"},   {empty, "the file is empty"},
                 {garbage, "bad binary archive"},     {unknownClass, "bad binary archive"},
                 {nullRoot, "holds no root object"},  {broken, "not a well-formed XML archive"},
                 {noRoot, "has no element \"Root\""}, {foreign, "unknown class \"CNoSuchClass\""}};
    for (const auto &c : cases) {
        const std::string message = ErrorOf([&] { LoadArchiveRoot(c.path); });
        SCOPED_TRACE(message);
        EXPECT_NE(message.find(c.problem), std::string::npos);
        const std::string file = static_cast<const char *>(c.path);
        EXPECT_EQ(message.substr(message.size() - file.size()), file);
    }
    // A root of an unknown class is still listed, by the name its element gives.
    EXPECT_NE(DumpArchive(foreign).find("root: CNoSuchClass (schema 2)\n"), std::string::npos);
    EXPECT_NE(ErrorOf([&] { DumpArchive(noRoot); }).find("no element"), std::string::npos);
    EXPECT_NE(ErrorOf([&] {
                  SaveArchiveRoot(Path(dir.file("no/such/dir.xml")), *Sample(), ArchiveFormat::xml);
              }).find("cannot write the archive"),
              std::string::npos);
}

} // namespace vx
