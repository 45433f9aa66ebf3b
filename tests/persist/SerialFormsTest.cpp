#include "persist/VXStringArray.h"
#include "persist/VXStringList.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/RTCTree.h"
#include "persist/SerCollections.h"
#include "platform/Errors.h"
#include "platform/File.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace vx;
using Bytes = std::vector<uint8_t>;

namespace {

Bytes StoreObject(ISerObject &o) {
    CMemFile file;
    {
        CArchiveB ar(&file, CArchiveB::store);
        o.SerializeB(ar);
    }
    return Bytes(file.GetData(), file.GetData() + file.GetLength());
}

void LoadObject(const Bytes &bytes, ISerObject &o) {
    CMemFile file;
    file.Write(bytes.data(), static_cast<unsigned int>(bytes.size()));
    file.SeekToBegin();
    CArchiveB ar(&file, CArchiveB::load);
    o.SerializeB(ar);
}

std::string Xml(CArchiveX &ar) {
    return static_cast<const char *>(ar.XML());
}

} // namespace

TEST(CollectionSerialForms, BinaryBytesAndRoundTrips) {
    CSerObArray empty;
    EXPECT_EQ(StoreObject(empty), Bytes({0x00, 0x00}));

    // An array with a string array and a null slot: the null round-trips as null.
    CVXStringArray strings;
    strings.Add(CVXString(u"ab"));
    CSerObArray arr;
    arr.Add(&strings);
    arr.Add(nullptr);
    const Bytes bytes = StoreObject(arr);
    const Bytes head = {0x02, 0x00, 0xFF, 0xFF, 0x00, 0x00, 0x0E, 0x00};
    ASSERT_GE(bytes.size(), head.size());
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 8), head);
    EXPECT_EQ(std::string(bytes.begin() + 8, bytes.begin() + 22), "CVXStringArray");
    EXPECT_EQ(Bytes(bytes.begin() + 22, bytes.end()),
              Bytes({0x01, 0x00, 0xFF, 0xFE, 0xFF, 0x02, 'a', 0, 'b', 0, 0x00, 0x00}));
    CSerObArray back;
    LoadObject(bytes, back);
    ASSERT_EQ(back.GetSize(), 2);
    std::unique_ptr<CSerObject> owned(back.GetAt(0));
    auto *sa = dynamic_cast<CVXStringArray *>(back.GetAt(0));
    ASSERT_NE(sa, nullptr);
    EXPECT_EQ(sa->GetAt(0), u"ab");
    EXPECT_EQ(back.GetAt(1), nullptr);

    // Words go as one block.
    CVXWordArray words;
    words.Add(0x1234);
    words.Add(0xFFFF);
    EXPECT_EQ(StoreObject(words), Bytes({0x02, 0x00, 0x34, 0x12, 0xFF, 0xFF}));

    // A list loaded twice from the same bytes holds the elements twice: loading appends.
    CVXStringList list;
    list.AddTail(CVXString(u"x"));
    const Bytes lb = StoreObject(list);
    CVXStringList filled;
    filled.AddTail(CVXString(u"a"));
    LoadObject(lb, filled);
    LoadObject(lb, filled);
    ASSERT_EQ(filled.GetCount(), 3);
    EXPECT_EQ(filled.GetTail(), u"x");

    // A count larger than the stream could hold is refused before anything is sized.
    CVXWordArray hostile;
    EXPECT_THROW(LoadObject({0xFF, 0xFF, 0x00, 0x00, 0x00, 0x40}, hostile), CArchiveBException);
    EXPECT_EQ(hostile.GetSize(), 0);
}

TEST(CollectionSerialForms, XmlNamesAndCounts) {
    CArchiveX out(false);
    CVXStringArray strings;
    strings.Add(CVXString(u"p"));
    strings.Add(CVXString(u"q"));
    CVXWordArray words;
    words.Add(7);
    CSerObList list;
    list.AddTail(&strings);
    list.AddTail(nullptr);
    out.Save(u"S", strings);
    out.Save(u"W", words);
    out.Save(u"L", list);
    const std::string xml = Xml(out);
    EXPECT_NE(xml.find("<S m_nSize=\"2\" szS0=\"p\" szS1=\"q\" />"), std::string::npos) << xml;
    EXPECT_NE(xml.find("<W m_nSize=\"1\" W0=\"7\" />"), std::string::npos) << xml;
    EXPECT_NE(xml.find("<L m_nCount=\"2\">\n\t\t<pO MFC_RUNTIME_TYPE=\"CVXStringArray\" "
                       "MFC_RUNTIME_TYPE_SCHEMA=\"0\" m_nSize=\"2\" szS0=\"p\" szS1=\"q\" />\n"
                       "\t\t<pO />"),
              std::string::npos)
        << xml;

    CArchiveX in(true);
    in.XML(out.XML());
    CVXStringArray s2;
    in.Load(u"S", s2);
    ASSERT_EQ(s2.GetSize(), 2);
    EXPECT_EQ(s2.GetAt(1), u"q");
    CSerObList l2;
    in.Load(u"L", l2);
    ASSERT_EQ(l2.GetCount(), 2);
    std::unique_ptr<CSerObject> owned(l2.GetHead());
    EXPECT_NE(dynamic_cast<CVXStringArray *>(l2.GetHead()), nullptr);
    EXPECT_EQ(l2.GetTail(), nullptr);

    // Counts beyond what the document holds fail before anything is sized.
    CArchiveX bad(true);
    bad.XML(u"<VXA><A m_nSize=\"2000000000\"><pO/></A><B m_nSize=\"3\" szS0=\"x\"/></VXA>");
    CSerObArray a;
    EXPECT_THROW(bad.Load(u"A", a), CVXComError);
    CVXStringArray b;
    EXPECT_THROW(bad.Load(u"B", b), CVXComError);
}

TEST(CreatorRegistry, LookUpByNameWithAndWithoutTree) {
    const CRuntimeCreator *c = CRuntimeCreator::RuntimeCreator(u"CVXStringArray");
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c, CVXStringArray::RTC());
    EXPECT_EQ(c->Schema(), 0u);
    std::unique_ptr<ISerObject> made(c->CreateObject());
    auto *arr = dynamic_cast<CVXStringArray *>(made.get());
    ASSERT_NE(arr, nullptr);
    EXPECT_EQ(arr->GetSize(), 0);
    std::unique_ptr<ISerObject> list(
        CRuntimeCreator::RuntimeCreator(u"CVXStringList")->CreateObject());
    EXPECT_EQ(static_cast<CVXStringList *>(list.get())->GetBlockSize(), 10);
    EXPECT_EQ(CRuntimeCreator::RuntimeCreator(u"NoSuchClass"), nullptr);
    EXPECT_EQ(CRuntimeCreator::RuntimeCreator(u"cvxstringarray"), nullptr); // case-sensitive

    // The host's tree takes over the waiting creators, and look-ups go to it.
    static CRTCTree tree;
    SetRTCTree(&tree);
    EXPECT_GE(tree.lGetSize(), 7u);
    EXPECT_EQ(CRuntimeCreator::RuntimeCreator(u"CSerObList"), CSerObList::RTC());
    EXPECT_EQ(CRuntimeCreator::RuntimeCreator(u"NoSuchClass"), nullptr);
}
