#include "geodesy/Ellipsoid.h"
#include "geodesy/OutputSystem.h"
#include "geodesy/ProjLambert.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/RuntimeCreator.h"
#include "platform/File.h"
#include "platform/UserPrompt.h"
#include "support/ArchiveTestSupport.h"
#include "support/NoGridFiles.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

using namespace vx;
using vxtest::Ascii;
using vxtest::Bytes;
using vxtest::Load;
using vxtest::Narrow;
using vxtest::Store;

namespace {

// What a double becomes after a trip through the XML archive's text, computed from the C
// library's own printing of 15 significant digits.
double Through15Digits(double d) {
    char text[64];
    std::snprintf(text, sizeof text, "%.15g", d);
    return std::strtod(text, nullptr);
}

class GeodesySerial : public vxtest::NoGridFiles {};

std::vector<double> StoredNumbers(const COutputSystem &p) {
    std::vector<double> v = {p.dGetLonOriginCM(),   p.dGetLatOrigin(),    p.dGetStandPar1(),
                             p.dGetStandPar2(),     p.dGetProjScaleFac(), p.dGetFalseEasting(),
                             p.dGetFalseNorthing(), p.dGetSemiMajAx(),    p.dGetInvFlatt()};
    if (const auto *lb = dynamic_cast<const CProjection_LB *>(&p)) {
        v.push_back(lb->dGetProjScaleFac0());
        v.push_back(lb->dGetStandPar0());
    }
    return v;
}

// Each projection type through pGetNewProjection with parameters that differ from every
// default, plus the archive-only old Lambert 72 by its creator.
std::vector<std::unique_ptr<COutputSystem>> AllProjections() {
    const CEllipsoid ell(CEllipsoid::INTERNATIONAL);
    std::vector<std::unique_ptr<COutputSystem>> all;
    for (int t = PT_NONE; t <= PT_RDNAPTRANS2004; ++t)
        all.emplace_back(pGetNewProjection(static_cast<ProjectionType>(t), 0.125, 0.75, 0.5, 0.875,
                                           0.99975, 123456.5, 654321.25, &ell));
    const CRuntimeCreator *old = CRuntimeCreator::RuntimeCreator(u"CProjection_LAMBERT72Old");
    EXPECT_NE(old, nullptr);
    if (old != nullptr) all.emplace_back(dynamic_cast<COutputSystem *>(old->CreateObject()));
    return all;
}

} // namespace

TEST_F(GeodesySerial, EllipsoidBinaryForms) {
    CEllipsoid bessel(CEllipsoid::BESSEL_1841);
    // struct.pack("<idd", 4, 6377397.1550000003, 299.15281279999999)
    EXPECT_EQ(vxtest::Hex(Store([&](CArchiveB &ar) { bessel.SerializeB(ar, 2); })),
              "04 00 00 00 1f 85 eb 49 ed 53 58 41 90 a6 d5 eb 71 b2 72 40");

    // IAG75 keeps its number in the binary archive.
    CEllipsoid iag(CEllipsoid::IAG75);
    CEllipsoid back(1.0, 2.0);
    Load(Store([&](CArchiveB &ar) { iag.SerializeB(ar, 2); }),
         [&](CArchiveB &ar) { back.SerializeB(ar, 2); });
    EXPECT_EQ(back.nGetEllipsoid(), CEllipsoid::IAG75);
    EXPECT_EQ(back.dGetSemiMajAx(), 6378140.0);

    // Schema 1: a, 1/f, e, keyword. A named type takes the table's numbers; an unknown keyword
    // stays USER with the stored ones, and e is recomputed from 1/f either way.
    const auto oldLayout = [](const char16_t *keyword) {
        return Store([&](CArchiveB &ar) { ar << 6378000.0 << 300.0 << 0.5 << CVXString(keyword); });
    };
    Load(oldLayout(u"INTERNATIONAL"), [&](CArchiveB &ar) { back.SerializeB(ar, 1); });
    EXPECT_EQ(back.nGetEllipsoid(), CEllipsoid::INTERNATIONAL);
    EXPECT_EQ(back.dGetSemiMajAx(), 6378388.0);
    EXPECT_EQ(back.dGetInvFlatt(), 297.0);
    Load(oldLayout(u"Hayford"), [&](CArchiveB &ar) { back.SerializeB(ar, 1); });
    EXPECT_EQ(back.nGetEllipsoid(), CEllipsoid::USER);
    EXPECT_EQ(back.dGetSemiMajAx(), 6378000.0);
    const double f = 1.0 / 300.0;
    EXPECT_EQ(back.dGetEccentr(), std::sqrt(2.0 * f - f * f));

    // A type number beyond the table counts as USER.
    Load(Store([](CArchiveB &ar) { ar << int32_t{99} << 6378001.0 << 301.0; }),
         [&](CArchiveB &ar) { back.SerializeB(ar, 2); });
    EXPECT_EQ(back.nGetEllipsoid(), CEllipsoid::USER);
    EXPECT_EQ(back.dGetInvFlatt(), 301.0);
}

TEST_F(GeodesySerial, EllipsoidXmlAndTheLostIdentityOfIag75) {
    CArchiveX out(false);
    {
        CArchiveXMLChild child(out, u"E");
        CEllipsoid(CEllipsoid::BESSEL_1841).SerializeX(out);
    }
    {
        CArchiveXMLChild child(out, u"G");
        CEllipsoid(CEllipsoid::IUGG75).SerializeX(out);
    }
    CEllipsoid::SaveIt(out, u"Ell", CEllipsoid::WGS84);
    CEllipsoid::SaveEllipsoidType(out, CEllipsoid::IAG75);
    EXPECT_EQ(Narrow(out.XML()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<VXA Ell=\"WGS84\" EllipsoidType=\"\">\n"
              "\t<E EllipsoidType=\"BESSEL_1841\" m_dSemiMajAx=\"6377397.155\" "
              "m_dInvFlatt=\"299.1528128\" />\n"
              "\t<G EllipsoidType=\"\" m_dSemiMajAx=\"6378140\" m_dInvFlatt=\"298.257\" />\n"
              "</VXA>\n");

    CArchiveX in(true);
    in.XML(out.XML());
    CEllipsoid e(CEllipsoid::USER, 1.0, 1.0);
    {
        CArchiveXMLChild child(in, u"E");
        e.SerializeX(in);
    }
    EXPECT_EQ(e.nGetEllipsoid(), CEllipsoid::BESSEL_1841);
    EXPECT_EQ(e.dGetSemiMajAx(), 6377397.1550000003);
    {
        CArchiveXMLChild child(in, u"G");
        e.SerializeX(in);
    }
    // IUGG75 has no keyword in the XML table: it comes back as USER with its numbers.
    EXPECT_EQ(e.nGetEllipsoid(), CEllipsoid::USER);
    EXPECT_EQ(e.dGetSemiMajAx(), 6378140.0);
    EXPECT_EQ(e.dGetInvFlatt(), 298.257);
    EXPECT_EQ(e.szGetName(), CEllipsoid(6378140.0, 298.257).szGetName());
    EXPECT_EQ(e.szGetTrav3Name(), CVXString(u"USER"));

    CEllipsoid::EllipsoidType t = CEllipsoid::AIRY;
    CEllipsoid::LoadIt(in, u"Ell", t);
    EXPECT_EQ(t, CEllipsoid::WGS84);
    CEllipsoid::LoadEllipsoidType(in, t);
    EXPECT_EQ(t, CEllipsoid::USER);
    t = CEllipsoid::AIRY;
    CEllipsoid::LoadIt(in, u"Missing", t);
    EXPECT_EQ(t, CEllipsoid::USER);
}

TEST_F(GeodesySerial, ProjectionXmlText) {
    const CEllipsoid ell(CEllipsoid::INTERNATIONAL);
    std::unique_ptr<COutputSystem> p(pGetNewProjection(PT_UTM_NORTH, 0.5, 0, 0, 0, 0, 0, 0, &ell));
    ASSERT_NE(p, nullptr);
    CArchiveX out(false);
    out.Save(u"P", static_cast<const ISerObject *>(p.get()));
    EXPECT_EQ(Narrow(out.XML()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<VXA>\n"
              "\t<P MFC_RUNTIME_TYPE=\"CProjection_TM_NORTH\" "
              "MFC_RUNTIME_TYPE_SCHEMA=\"2147483650\" m_dLonOriginCM=\"0.5\" "
              "m_dLatOrigin=\"0\" m_dStandPar1=\"-2\" m_dStandPar2=\"-2\" "
              "m_dProjScaleFac=\"0.9996\" m_dFalseEasting=\"500000\" m_dFalseNorthing=\"0\" "
              "m_szProjectionName=\"UTM North\" m_szTrav3ProjectionName=\"UTM_NORTH\" "
              "EllipsoidType=\"INTERNATIONAL\" m_dSemiMajAx=\"6378388\" m_dInvFlatt=\"297\" />\n"
              "</VXA>\n");
}

TEST_F(GeodesySerial, EveryProjectionRoundTripsThroughBothArchives) {
    const auto all = AllProjections();
    ASSERT_EQ(all.size(), 20u);
    for (const auto &p : all) {
        ASSERT_NE(p, nullptr);
        const CRuntimeCreator *rtc = p->RuntimeCreator();
        ASSERT_NE(rtc, nullptr);
        SCOPED_TRACE(Narrow(rtc->ClassName()));
        EXPECT_EQ(rtc->Schema(), 0x80000002u);
        EXPECT_EQ(CRuntimeCreator::RuntimeCreator(rtc->ClassName()), rtc);

        std::unique_ptr<ISerObject> b;
        Load(Store([&](CArchiveB &ar) { ar.WriteObject(p.get()); }),
             [&](CArchiveB &ar) { b.reset(ar.ReadObject(nullptr)); });

        CArchiveX out(false);
        out.Save(u"P", static_cast<const ISerObject *>(p.get()));
        CArchiveX in(true);
        in.XML(out.XML());
        ISerObject *loaded = nullptr;
        in.Load(u"P", loaded);
        std::unique_ptr<ISerObject> x(loaded);

        const std::vector<double> want = StoredNumbers(*p);
        for (const ISerObject *o : {b.get(), x.get()}) {
            const auto *q = dynamic_cast<const COutputSystem *>(o);
            ASSERT_NE(q, nullptr);
            EXPECT_EQ(q->RuntimeCreator(), rtc);
            // The type is not stored but supplied by the created class: a LOCAL stereographic
            // returns as STEREOGRAPHIC, keeping its stored names.
            EXPECT_EQ(q->nGetProjection(),
                      p->nGetProjection() == PT_LOCAL ? PT_STEREOGRAPHIC : p->nGetProjection());
            EXPECT_EQ(q->nGetEllipsoid(), p->nGetEllipsoid());
            EXPECT_EQ(q->szGetProjectionName(), p->szGetProjectionName());
            EXPECT_EQ(q->szGetTrav3ProjectionName(), p->szGetTrav3ProjectionName());
            const std::vector<double> got = StoredNumbers(*q);
            ASSERT_EQ(got.size(), want.size());
            for (size_t i = 0; i < want.size(); ++i)
                EXPECT_EQ(got[i], o == b.get() ? want[i] : Through15Digits(want[i])) << i;
        }
    }
}

TEST_F(GeodesySerial, ProjectionOfSchemaOneReadsTheOldEllipsoid) {
    // A stream written by format 1: the class, the seven doubles, the names, then the
    // ellipsoid as a, 1/f, e and keyword.
    const char name[] = "CProjection_TM_TM";
    const Bytes bytes = Store([&](CArchiveB &ar) {
        ar << uint16_t{0xFFFF} << uint16_t{1} << static_cast<uint16_t>(std::strlen(name));
        ar.Write(name, static_cast<unsigned int>(std::strlen(name)));
        for (double d : {0.25, 0.5, -2.0, -2.0, 0.999, 1000.0, 2000.0})
            ar << d;
        ar << CVXString(u"TM") << CVXString(u"TM");
        ar << 1.0 << 2.0 << 3.0 << CVXString(u"GRS_1980");
    });
    std::unique_ptr<ISerObject> o;
    Load(bytes, [&](CArchiveB &ar) { o.reset(ar.ReadObject(nullptr)); });
    const auto *p = dynamic_cast<const COutputSystem *>(o.get());
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->nGetProjection(), PT_TM);
    EXPECT_EQ(p->dGetLatOrigin(), 0.5);
    EXPECT_EQ(p->dGetFalseNorthing(), 2000.0);
    EXPECT_EQ(p->nGetEllipsoid(), CEllipsoid::GRS_1980);
    EXPECT_EQ(p->dGetInvFlatt(), 298.25722210100002);
}
