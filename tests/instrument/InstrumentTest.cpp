#include "instrument/Instrument.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/RuntimeCreator.h"
#include "support/ArchiveTestSupport.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace vx;
using vxtest::Load;
using vxtest::Narrow;
using vxtest::Store;

namespace {

// 0.001 gon in radians as stored: π · 5e-06 = 0x1.07893043048cfp-16 (Python: math.pi * 5e-06).
constexpr double kMilliGon = 0x1.07893043048cfp-16;

// What a double becomes after the XML archive's "%.15g" text.
double Through15Digits(double d) {
    char text[64];
    std::snprintf(text, sizeof text, "%.15g", d);
    return std::strtod(text, nullptr);
}

// The in-memory XML archive's text after saving the object by pointer as the element "I".
CVXString SavedXml(const ISerObject &object) {
    CArchiveX out(false);
    out.Save(u"I", &object);
    return out.XML();
}

CInstrumentTachy SampleTachy() {
    CInstrumentTachy t(0x0102);
    t.m_szOms = u"AB";
    t.m_dRelD = 0.5;
    t.m_dRelV = -2.25;
    t.m_szProgID = u"Vx.Driver.1";
    return t;
}

} // namespace

TEST(Instrument, DefaultsAndResetKeepTheNumber) {
    CInstrumentTachy t(42);
    EXPECT_EQ(t.m_nNummer, 42);
    EXPECT_EQ(t.m_dAbsD, 0.01);
    EXPECT_EQ(t.m_dAbsH, kMilliGon);
    EXPECT_EQ(t.m_dAbsV, kMilliGon);
    EXPECT_EQ(t.m_dRelD + t.m_dRelH + t.m_dRelV, 0.0);
    EXPECT_TRUE(t.m_szOms.IsEmpty());

    t = SampleTachy();
    t.m_dAbsH = 7.0;
    t.Reset();
    EXPECT_EQ(t.m_nNummer, 0x0102);
    EXPECT_TRUE(t.m_szOms.IsEmpty());
    EXPECT_TRUE(t.m_szProgID.IsEmpty());
    EXPECT_EQ(t.m_dAbsH, kMilliGon);
    EXPECT_EQ(t.m_dRelD, 0.0);
    EXPECT_EQ(t.m_dRelV, 0.0);

    CInstrumentGPS g;
    EXPECT_EQ(g.m_nNummer, 0);
    EXPECT_EQ(g.m_dAbs, 0.01);
    EXPECT_EQ(g.m_dPPM, 1.0);
    g.m_nNummer = 9;
    g.m_szOms = u"rover";
    g.m_dPPM = 2.0;
    CInstrumentBase &base = g;
    base.Reset(); // virtual: the GPS defaults come back too
    EXPECT_EQ(g.m_nNummer, 9);
    EXPECT_TRUE(g.m_szOms.IsEmpty());
    EXPECT_EQ(g.m_dPPM, 1.0);
}

TEST(Instrument, CopyThroughTheBaseKeepsClassAndFields) {
    const CInstrumentTachy t = SampleTachy();
    const CInstrumentBase &base = t;
    std::unique_ptr<CInstrumentBase> copy(base.pCopy());
    auto *tc = dynamic_cast<CInstrumentTachy *>(copy.get());
    ASSERT_NE(tc, nullptr);
    EXPECT_NE(tc, &t);
    EXPECT_EQ(tc->m_nNummer, 0x0102);
    EXPECT_EQ(tc->m_szOms, CVXString(u"AB"));
    EXPECT_EQ(tc->m_dRelV, -2.25);
    EXPECT_EQ(tc->m_szProgID, CVXString(u"Vx.Driver.1"));
    EXPECT_EQ(tc->RuntimeCreator(), CInstrumentTachy::RTC());

    CInstrumentGPS g(3);
    g.m_dAbs = 0.02;
    std::unique_ptr<CInstrumentBase> gc(static_cast<const CInstrumentBase &>(g).pCopy());
    ASSERT_NE(dynamic_cast<CInstrumentGPS *>(gc.get()), nullptr);
    EXPECT_EQ(static_cast<CInstrumentGPS *>(gc.get())->m_dAbs, 0.02);
}

TEST(Instrument, TachyBinaryFormLeavesTheDriverOut) {
    CInstrumentTachy t = SampleTachy();
    // u16 number, the string (wide mark FF FE FF, length, UTF-16LE), then six little-endian
    // doubles: 0.01, 0.5, π·5e-06, 0, π·5e-06, -2.25 (Python struct.pack("<d", ...)).
    EXPECT_EQ(vxtest::Hex(Store([&](CArchiveB &ar) { t.SerializeB(ar); })),
              "02 01 ff fe ff 02 41 00 42 00 "
              "7b 14 ae 47 e1 7a 84 3f 00 00 00 00 00 00 e0 3f "
              "cf 48 30 04 93 78 f0 3e 00 00 00 00 00 00 00 00 "
              "cf 48 30 04 93 78 f0 3e 00 00 00 00 00 00 02 c0");

    CInstrumentTachy back(7);
    back.m_szProgID = u"kept";
    Load(Store([&](CArchiveB &ar) { t.SerializeB(ar); }),
         [&](CArchiveB &ar) { back.SerializeB(ar); });
    EXPECT_EQ(back.m_nNummer, 0x0102);
    EXPECT_EQ(back.m_szOms, CVXString(u"AB"));
    EXPECT_EQ(back.m_dRelD, 0.5);
    EXPECT_EQ(back.m_dAbsV, kMilliGon);
    EXPECT_EQ(back.m_dRelV, -2.25);
    EXPECT_EQ(back.m_szProgID, CVXString(u"kept"));
}

TEST(Instrument, GpsBinaryFormAndCreatorsByName) {
    CInstrumentGPS g(5);
    g.m_dAbs = 0.5;
    EXPECT_EQ(vxtest::Hex(Store([&](CArchiveB &ar) { g.SerializeB(ar); })),
              "05 00 ff fe ff 00 00 00 00 00 00 00 e0 3f 00 00 00 00 00 00 f0 3f");

    for (const CRuntimeCreator *rtc : {CInstrumentTachy::RTC(), CInstrumentGPS::RTC()}) {
        EXPECT_EQ(rtc->Schema(), 0x80000001u);
        EXPECT_EQ(CRuntimeCreator::RuntimeCreator(rtc->ClassName()), rtc);
    }
    EXPECT_EQ(Narrow(CInstrumentGPS::RTC()->ClassName()), "CInstrumentGPS");

    // A whole object by pointer: the class comes back from its stored name.
    std::unique_ptr<ISerObject> read;
    Load(Store([&](CArchiveB &ar) { ar.WriteObject(&g); }),
         [&](CArchiveB &ar) { read.reset(ar.ReadObject(nullptr)); });
    auto *rg = dynamic_cast<CInstrumentGPS *>(read.get());
    ASSERT_NE(rg, nullptr);
    EXPECT_EQ(rg->m_nNummer, 5);
    EXPECT_EQ(rg->m_dAbs, 0.5);
    EXPECT_EQ(rg->m_dPPM, 1.0);
}

TEST(Instrument, XmlFormKeepsTheDriver) {
    CInstrumentTachy t = SampleTachy();
    const CVXString xml = SavedXml(t);
    EXPECT_EQ(Narrow(xml),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<VXA>\n"
              "\t<I MFC_RUNTIME_TYPE=\"CInstrumentTachy\" MFC_RUNTIME_TYPE_SCHEMA=\"2147483649\" "
              "m_nNummer=\"258\" m_szOms=\"AB\" m_dAbsD=\"0.01\" m_dRelD=\"0.5\" "
              "m_dAbsH=\"1.5707963267949e-05\" m_dRelH=\"0\" m_dAbsV=\"1.5707963267949e-05\" "
              "m_dRelV=\"-2.25\" m_szProgID=\"Vx.Driver.1\" />\n"
              "</VXA>\n");

    CArchiveX in(true);
    in.XML(xml);
    ISerObject *loaded = nullptr;
    in.Load(u"I", loaded);
    std::unique_ptr<ISerObject> owner(loaded);
    auto *back = dynamic_cast<CInstrumentTachy *>(loaded);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->m_nNummer, 0x0102);
    EXPECT_EQ(back->m_szProgID, CVXString(u"Vx.Driver.1"));
    EXPECT_EQ(back->m_dAbsH, Through15Digits(kMilliGon));
    EXPECT_EQ(back->m_dRelV, -2.25);

    EXPECT_EQ(Narrow(SavedXml(CInstrumentGPS(1))),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<VXA>\n"
              "\t<I MFC_RUNTIME_TYPE=\"CInstrumentGPS\" MFC_RUNTIME_TYPE_SCHEMA=\"2147483649\" "
              "m_nNummer=\"1\" m_szOms=\"\" m_dAbs=\"0.01\" m_dPPM=\"1\" />\n"
              "</VXA>\n");
}
