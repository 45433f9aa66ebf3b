#include "geometry/Extents.h"
#include "geometry/VXCoord.h"
#include "geometry/VXCoordArr.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/RuntimeCreator.h"
#include "platform/File.h"
#include "support/ArchiveTestSupport.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

using namespace vx;
using vxtest::Ascii;
using vxtest::Bytes;
using vxtest::Load;
using vxtest::Narrow;
using vxtest::Store;

namespace {

// x 1.5, y -2.25, depth 0.5, PY 0.02, PZ 0.03, parameter word 258; Z and PX unknown.
CVXCoord SamplePoint() {
    CVXCoord p(1.5, -2.25, dNaN, 8);
    p.m_dDiepte = 0.5;
    p.m_dPY = 0.02;
    p.m_dPZ = 0.03;
    p.m_nHB = 258;
    return p;
}

// The same fields, little-endian, computed with Python's struct.pack("<7dH", ...); the unknown
// value is the NaN 0xFFF8000000000000.
const char *const kSampleFields =
    "00 00 00 00 00 00 f8 3f 00 00 00 00 00 00 02 c0 00 00 00 00 00 00 f8 ff "
    "00 00 00 00 00 00 e0 3f 00 00 00 00 00 00 f8 ff 7b 14 ae 47 e1 7a 94 3f "
    "b8 1e 85 eb 51 b8 9e 3f 02 01";

void ExpectSameStoredFields(const CVXCoord &a, const CVXCoord &b) {
    const double da[] = {a.m_dX, a.m_dY, a.m_dZ, a.m_dDiepte, a.m_dPX, a.m_dPY, a.m_dPZ};
    const double db[] = {b.m_dX, b.m_dY, b.m_dZ, b.m_dDiepte, b.m_dPX, b.m_dPY, b.m_dPZ};
    for (int i = 0; i < 7; ++i) {
        if (std::isnan(da[i]))
            EXPECT_TRUE(std::isnan(db[i])) << i;
        else
            EXPECT_EQ(da[i], db[i]) << i;
    }
    EXPECT_EQ(a.m_nHB, b.m_nHB);
}

} // namespace

TEST(GeometrySerial, CoordBinaryBytesAndRoundTrip) {
    CVXCoord p = SamplePoint();
    const Bytes plain = Store([&](CArchiveB &ar) { p.SerializeB(ar); });
    EXPECT_EQ(vxtest::Hex(plain), kSampleFields);

    // By pointer: a new class's tag FF FF, schema 0, name length 8, "CVXCoord", then the fields.
    const Bytes tagged = Store([&](CArchiveB &ar) { ar.WriteObject(&p); });
    EXPECT_EQ(vxtest::Hex(tagged),
              std::string("ff ff 00 00 08 00 43 56 58 43 6f 6f 72 64 ") + kSampleFields);

    // The section code and the flags are in no serial form: a new point keeps 1 and 0.
    p.SetCParms();
    std::unique_ptr<ISerObject> loaded;
    Load(tagged, [&](CArchiveB &ar) { loaded.reset(ar.ReadObject(CVXCoord::RTC())); });
    auto *q = dynamic_cast<CVXCoord *>(loaded.get());
    ASSERT_NE(q, nullptr);
    ExpectSameStoredFields(p, *q);
    EXPECT_EQ(q->nGetSectie(), 1);
    EXPECT_EQ(q->nGetChFlags(), 0);

    // Loading into an existing point leaves its own section code.
    CVXCoord r(0.0, 0.0, 7);
    Load(plain, [&](CArchiveB &ar) { r.SerializeB(ar); });
    EXPECT_EQ(r.nGetSectie(), 7);
    EXPECT_EQ(r.m_dX, 1.5);
}

TEST(GeometrySerial, CreatorPointersReadAsUsersWriteThem) {
    // The forms users write: RTC() is the same pointer as the virtual RuntimeCreator(), passed
    // straight to ReadObject and IsKindOf.
    CVXCoordArr line;
    const CVXCoord punt(1.0, 2.0);
    line.Add(&punt); // Add stores a clone
    const Bytes bytes = Store([&](CArchiveB &ar) { ar.WriteObject(&line); });
    std::unique_ptr<ISerObject> loaded;
    Load(bytes, [&](CArchiveB &ar) { loaded.reset(ar.ReadObject(CVXCoordArr::RTC())); });
    ASSERT_NE(loaded, nullptr);
    EXPECT_EQ(loaded->RuntimeCreator(), CVXCoordArr::RTC());
    EXPECT_TRUE(loaded->IsKindOf(CVXCoordArr::RTC()));
    EXPECT_FALSE(loaded->IsKindOf(CExtents::RTC()));
    // The array does not own what a generic load put in it: free the point by hand.
    auto *arr = static_cast<CSerObArray *>(loaded.get());
    ASSERT_EQ(arr->GetSize(), 1);
    delete arr->GetAt(0);

    const CExtents box;
    const Bytes boxBytes = Store([&](CArchiveB &ar) { ar.WriteObject(&box); });
    Load(boxBytes, [&](CArchiveB &ar) { loaded.reset(ar.ReadObject(CExtents::RTC())); });
    ASSERT_NE(loaded, nullptr);
    EXPECT_TRUE(loaded->IsKindOf(CExtents::RTC()));
    EXPECT_EQ(box.RuntimeCreator(), CExtents::RTC());
}

TEST(GeometrySerial, CoordXmlNamedFormAndDump) {
    CVXCoord p = SamplePoint();
    p.m_dZ = 3.0;
    p.m_dPX = 0.01;
    CArchiveX out(false);
    p.SerializeX(u"P", out);
    EXPECT_EQ(Narrow(out.XML()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<VXA>\n"
              "\t<P m_dX=\"1.5\" m_dY=\"-2.25\" m_dZ=\"3\" m_dDiepte=\"0.5\" m_dPX=\"0.01\" "
              "m_dPY=\"0.02\" m_dPZ=\"0.03\" m_nHB=\"258\" />\n"
              "</VXA>\n");

    CArchiveX in(true);
    in.XML(out.XML());
    CVXCoord q;
    q.SerializeX(u"P", in);
    ExpectSameStoredFields(p, q);
    EXPECT_EQ(q.nGetSectie(), 1);

    std::ostringstream text;
    CDumpContext dc(text);
    C2DVector v(1.0, 2.0);
    v.SetSectie(6);
    v.Dump(dc);
    EXPECT_EQ(text.str(), "CVXCoord C2DVector S=6\n");
    EXPECT_EQ(v.RTC(), CRuntimeCreator::RuntimeCreator(u"CVXCoord"));
}

TEST(GeometrySerial, CoordArrXmlTextAndRoundTrips) {
    CVXCoordArr line;
    CVXCoord p = SamplePoint();
    p.m_dZ = 3.0;
    p.m_dPX = 0.01;
    line.Add(&p);

    CArchiveX out(false);
    out.Save(u"Line", static_cast<ISerObject &>(line));
    EXPECT_EQ(Narrow(out.XML()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<VXA>\n"
              "\t<Line m_nSize=\"1\">\n"
              "\t\t<pO MFC_RUNTIME_TYPE=\"CVXCoord\" MFC_RUNTIME_TYPE_SCHEMA=\"0\" m_dX=\"1.5\" "
              "m_dY=\"-2.25\" m_dZ=\"3\" m_dDiepte=\"0.5\" m_dPX=\"0.01\" m_dPY=\"0.02\" "
              "m_dPZ=\"0.03\" m_nHB=\"258\" />\n"
              "\t</Line>\n"
              "</VXA>\n");

    // Both archives lose the section coding: every loaded point has code 1.
    CVXCoordArr arc;
    arc.Add(&p);
    CVXCoord support(2.0, 3.0, 8);
    arc.Add(&support);
    CVXCoordArr fromXml;
    CArchiveX in(true);
    CArchiveX arcOut(false);
    arcOut.Save(u"Arc", static_cast<ISerObject &>(arc));
    in.XML(arcOut.XML());
    in.Load(u"Arc", static_cast<ISerObject &>(fromXml));
    CVXCoordArr fromBinary;
    Load(Store([&](CArchiveB &ar) { arc.SerializeB(ar); }),
         [&](CArchiveB &ar) { fromBinary.SerializeB(ar); });
    for (const CVXCoordArr *loaded : {&fromXml, &fromBinary}) {
        ASSERT_EQ(loaded->GetSize(), 2);
        for (int i = 0; i < 2; ++i) {
            ExpectSameStoredFields(*arc.GetAt(i), *loaded->GetAt(i));
            EXPECT_EQ(loaded->GetAt(i)->nGetSectie(), 1);
        }
    }
}

TEST(GeometrySerial, ExtentsXml) {
    CExtents e(-1.5, 2.0, 1e+100, 0.125);
    CArchiveX out(false);
    out.Save(u"E", static_cast<const ISerObject *>(&e));
    EXPECT_EQ(Narrow(out.XML()),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<VXA>\n"
              "\t<E MFC_RUNTIME_TYPE=\"CExtents\" MFC_RUNTIME_TYPE_SCHEMA=\"1\" m_dXlo=\"-1.5\" "
              "m_dYlo=\"2\" m_dXrb=\"1e+100\" m_dYrb=\"0.125\" />\n"
              "</VXA>\n");

    CArchiveX in(true);
    in.XML(out.XML());
    ISerObject *o = nullptr;
    in.Load(u"E", o);
    std::unique_ptr<ISerObject> owner(o);
    auto *f = dynamic_cast<CExtents *>(o);
    ASSERT_NE(f, nullptr);
    EXPECT_EQ(f->m_dXlo, -1.5);
    EXPECT_EQ(f->m_dYlo, 2.0);
    EXPECT_EQ(f->m_dXrb, 1e+100);
    EXPECT_EQ(f->m_dYrb, 0.125);
}

TEST(GeometrySerial, CoordArrLoadKeepsOwnershipOnHostileInput) {
    CVXCoord p = SamplePoint();
    CExtents e(0.0, 0.0, 1.0, 1.0);

    // The same point twice (the second a back-reference): each slot gets a point of its own.
    CVXCoordArr twice;
    twice.Add(&p);
    Load(Store([&](CArchiveB &ar) {
             ar.WriteCount(2);
             ar.WriteObject(&p);
             ar.WriteObject(&p);
         }),
         [&](CArchiveB &ar) { twice.SerializeB(ar); });
    ASSERT_EQ(twice.GetSize(), 2);
    EXPECT_NE(twice.GetAt(0), twice.GetAt(1));
    ExpectSameStoredFields(*twice.GetAt(0), *twice.GetAt(1));

    // Another class in the run: badClass in the binary archive, a null slot in XML.
    CVXCoordArr foreign;
    try {
        Load(Store([&](CArchiveB &ar) {
                 ar.WriteCount(2);
                 ar.WriteObject(&p);
                 ar.WriteObject(&e);
             }),
             [&](CArchiveB &ar) { foreign.SerializeB(ar); });
        ADD_FAILURE() << "no exception";
    } catch (const CArchiveBException &x) {
        EXPECT_EQ(x.m_cause, CArchiveBException::badClass);
    }
    ASSERT_EQ(foreign.GetSize(), 2);
    EXPECT_EQ(static_cast<const CSerObArray &>(foreign).GetAt(1), nullptr);

    CArchiveX in(true);
    in.XML(u"<VXA><L m_nSize=\"2\"><pO MFC_RUNTIME_TYPE=\"CExtents\" m_dXlo=\"1\"/>"
           u"<pO MFC_RUNTIME_TYPE=\"CVXCoord\" m_dX=\"4\"/></L></VXA>");
    CVXCoordArr fromXml;
    in.Load(u"L", static_cast<ISerObject &>(fromXml));
    ASSERT_EQ(fromXml.GetSize(), 2);
    EXPECT_EQ(static_cast<const CSerObArray &>(fromXml).GetAt(0), nullptr);
    EXPECT_EQ(fromXml.GetAt(1)->m_dX, 4.0);
}
