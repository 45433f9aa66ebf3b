#include "persist/ArchiveX.h"
#include "foundation/VXODateTime.h"
#include "persist/RuntimeCreator.h"
#include "persist/SerObject.h"
#include "platform/Errors.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

using namespace vx;

namespace vxtest {

class CXmlItem : public CSerObject {
    VX_DECLARE_SERIAL(CXmlItem)
public:
    int32_t n = 0;
    double d = 0.0;
    float f = 0.0f;
    CVXString s;
    void SerializeX(CArchiveX &ar) override {
        ar.Serialize(u"n", n);
        ar.Serialize(u"d", d);
        ar.Serialize(u"f", f);
        ar.Serialize(u"s", s);
    }
};
VX_IMPLEMENT_SERIAL(CXmlItem, VERSIONABLE_SCHEMA | 3)

} // namespace vxtest

using vxtest::CXmlItem;

namespace {
std::string Narrow(const CVXString &s) {
    return static_cast<const char *>(s);
}
} // namespace

TEST(ArchiveX, ObjectsBecomeElementsWithTypeAttributes) {
    CArchiveX out(false);
    CXmlItem item;
    item.n = -4;
    item.d = 1e+100;
    item.f = 0.1f;
    item.s = CVXString(u"a<b");
    out.Save(u"Item", static_cast<const ISerObject *>(&item));
    out.Save(u"flag", true);
    EXPECT_EQ(Narrow(out.XML()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<VXA flag=\"-1\">\n"
              "\t<Item MFC_RUNTIME_TYPE=\"CXmlItem\" MFC_RUNTIME_TYPE_SCHEMA=\"2147483651\" "
              "n=\"-4\" d=\"1e+100\" f=\"0.1\" s=\"a&lt;b\" />\n"
              "</VXA>\n");

    CArchiveX in(true);
    in.XML(out.XML());
    ISerObject *loaded = nullptr;
    in.Load(u"Item", loaded);
    std::unique_ptr<ISerObject> owner(loaded);
    auto *back = dynamic_cast<CXmlItem *>(loaded);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->n, -4);
    EXPECT_EQ(back->d, 1e+100);
    EXPECT_EQ(back->f, 0.1f);
    EXPECT_EQ(back->s, u"a<b");
    EXPECT_EQ(static_cast<uint32_t>(in.Schema()), 0x80000003u);
    bool flag = false;
    in.Load(u"flag", flag);
    EXPECT_TRUE(flag);
}

TEST(ArchiveX, MissingNamesAndUnknownClasses) {
    CArchiveX in(true);
    in.XML(u"<VXA n=\"5\" s=\"\"><A MFC_RUNTIME_TYPE=\"NoSuchClass\"/>"
           u"<B MFC_RUNTIME_TYPE=\"CXmlItem\" n=\"9\"/></VXA>");
    ASSERT_TRUE(in.IsValid());
    double d = 1.0;
    in.Load(u"missing", d);
    EXPECT_TRUE(std::isnan(d)); // NaN, not 0 and not the old value
    EXPECT_EQ(std::bit_cast<uint64_t>(d), 0xFFF8000000000000ull);
    float f = 1.0f;
    in.Load(u"missing", f);
    EXPECT_EQ(std::bit_cast<uint32_t>(f), 0xFFF80000u);
    int32_t i = 7;
    in.Load(u"missing", i); // the conversion of an empty value
    EXPECT_EQ(i, 0);
    EXPECT_FALSE(in.AttributeExists(u"missing"));
    EXPECT_TRUE(in.AttributeExists(u"s"));
    CVXString s(u"old");
    in.Load(u"s", s);
    EXPECT_TRUE(s.IsEmpty());

    ISerObject *a = reinterpret_cast<ISerObject *>(0x1);
    in.Load(u"A", a);
    EXPECT_EQ(a, nullptr); // unknown class: null, and the loader goes on
    ISerObject *b = nullptr;
    in.Load(u"B", b);
    std::unique_ptr<ISerObject> owner(b);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(static_cast<CXmlItem *>(b)->n, 9);
    EXPECT_TRUE(std::isnan(static_cast<CXmlItem *>(b)->d));
    ISerObject *untouched = nullptr;
    in.Load(u"C", untouched);
    EXPECT_EQ(untouched, nullptr);

    CArchiveX broken(true);
    broken.XML(u"<VXA");
    EXPECT_FALSE(broken.IsValid());
}

TEST(ArchiveX, RunsOfSiblingsWithACursor) {
    CArchiveX in(true);
    in.XML(u"<VXA><L m_nSize=\"4\"><pO MFC_RUNTIME_TYPE=\"CXmlItem\" n=\"1\"/><x/>"
           u"<pO MFC_RUNTIME_TYPE=\"CXmlItem\" n=\"2\"/><pO MFC_RUNTIME_TYPE=\"CXmlItem\" "
           u"n=\"3\"/></L></VXA>");
    CArchiveXMLChild child(in, u"L");
    int32_t count = 0;
    in.Load(u"m_nSize", count);
    EXPECT_EQ(count, 4);
    CVXComWrap<IDomElement> cursor;
    for (int k = 1; k <= 3; ++k) {
        ISerObject *o = nullptr;
        in.Load(u"pO", o, cursor);
        std::unique_ptr<ISerObject> owner(o);
        ASSERT_NE(o, nullptr);
        EXPECT_EQ(static_cast<CXmlItem *>(o)->n, k);
    }
    ISerObject *fourth = nullptr;
    try {
        in.Load(u"pO", fourth, cursor);
        FAIL() << "walking off the end must raise";
    } catch (const CVXComError &e) {
        EXPECT_EQ(e.Description(), u"Interface pointer is NULL");
        EXPECT_EQ(e.Source(), u"VXCOM");
        EXPECT_EQ(static_cast<uint32_t>(e.Error()), 0x80004003u);
    }
}

TEST(ArchiveX, VariantsOldTypeNumbersAndDates) {
    CArchiveX out(false);
    out.Save(u"v", VXVariant(int32_t{42}));
    out.Save(u"w", VXVariant(2.5));
    CVXODateTime when;
    SYSTEMTIME st{};
    st.wYear = 2024;
    st.wMonth = 2;
    st.wDay = 29;
    st.wHour = 13;
    st.wMinute = 14;
    st.wSecond = 15;
    st.wMilliseconds = 500;
    ASSERT_TRUE(when.FromSystemTime(st));
    out.Save(u"when", VXVariant::FromDate(when.m_dt));
    out.Save(u"date", when);
    const std::string xml = Narrow(out.XML());
    EXPECT_NE(xml.find("v_VXType=\"adInteger\" v=\"42\""), std::string::npos) << xml;
    EXPECT_NE(xml.find("<date Day=\"29\" Month=\"2\" Year=\"2024\" Hour=\"13\" Minute=\"14\" "
                       "Second=\"15\" Milliseconds=\"500\" />"),
              std::string::npos)
        << xml;

    CArchiveX in(true);
    in.XML(out.XML());
    VXVariant v, w, date;
    in.Load(u"v", v);
    in.Load(u"w", w);
    in.Load(u"when", date);
    EXPECT_EQ(v.Type(), adInteger);
    EXPECT_EQ(v.ToInt32(), 42);
    EXPECT_EQ(w.Type(), adDouble);
    EXPECT_EQ(w.ToDouble(), 2.5);
    EXPECT_EQ(date.Type(), adDate);
    EXPECT_EQ(date.ToDate(), when.m_dt);
    CVXODateTime back;
    in.Load(u"date", back);
    EXPECT_EQ(back.m_dt, when.m_dt);

    // Files from before the type names carry the number under "_Type".
    CArchiveX old(true);
    old.XML(u"<VXA x_Type=\"5\" x=\"0.25\" y=\"3\"/>");
    VXVariant x, y(int32_t{8});
    old.Load(u"x", x);
    EXPECT_EQ(x.Type(), adDouble);
    EXPECT_EQ(x.ToDouble(), 0.25);
    old.Load(u"y", y); // no type at all: the value stays
    EXPECT_EQ(y.ToInt32(), 8);
}

TEST(ArchiveX, FileArchivesAndUpdateMode) {
    vxtest::TempDir dir;
    const CVXString path(dir.file("doc.xml").c_str());
    {
        CArchiveX update(path); // a missing file: a new document, written at destruction
        update.Save(u"count", int32_t{3});
    }
    const std::vector<uint8_t> bytes = vxtest::ReadBytes(dir.file("doc.xml"));
    const std::string text(bytes.begin(), bytes.end());
    EXPECT_NE(text.find("<VXXMLArchive count=\"3\" />"), std::string::npos) << text;
    {
        CArchiveX update(path); // an existing file is loaded and written back
        int32_t count = 0;
        update.Load(u"count", count);
        EXPECT_EQ(count, 3);
        update.Save(u"more", CVXString(u"\u00E9"));
    }
    CArchiveX in(path, true);
    CVXString more;
    in.Load(u"more", more);
    EXPECT_EQ(more, u"\u00E9");
    EXPECT_EQ(CArchiveX::ToName(u"szS", 12), u"szS12");
}
