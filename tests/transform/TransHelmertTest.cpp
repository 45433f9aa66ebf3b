#include "transform/TransHelmert.h"
#include "support/ArchiveTestSupport.h"

#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "platform/File.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

using namespace vx;
using vxtest::Ascii;
using vxtest::Bytes;
using vxtest::Load;
using vxtest::Narrow;
using vxtest::Store;
namespace {

CTransRecord *Record(double x, double y, double u, double v, bool bActief = true) {
    auto *r = new CTransRecord;
    r->Set(CVXCoord(x, y), true);
    r->Set(CVXCoord(u, v), false);
    r->m_bActief = bActief;
    return r;
}

// A quarter turn: X' = 100 − Y, Y' = 200 + X, by two control points and a tail record far off
// that must never count.
void QuarterTurn(CTransTabel &t) {
    t.AddTail(Record(0, 0, 100, 200));
    t.AddTail(Record(10, 0, 100, 210));
    t.AddTail(Record(1e6, -1e6, 0, 0));
}

} // namespace

TEST(TransTabel, TheLastRecordNeverCounts) {
    CTransTabel t;
    EXPECT_EQ(t.m_nType, 0);
    QuarterTurn(t);
    EXPECT_TRUE(t.bCoordsOk());
    CTrans fit;
    ASSERT_TRUE(t.bBepTransformation(&fit));
    EXPECT_EQ(fit.dMatrix00, 0.0);
    EXPECT_EQ(fit.dMatrix01, -1.0);
    EXPECT_EQ(fit.dMatrix02, 100.0);
    EXPECT_EQ(fit.dMatrix10, 1.0);
    EXPECT_EQ(fit.dMatrix12, 200.0);

    // An affine table needs three points before the tail; unknown values in the tail don't matter.
    t.m_nType = 1;
    EXPECT_FALSE(t.bCoordsOk());
    t.AddTail(new CTransRecord);
    EXPECT_TRUE(t.bCoordsOk());

    // bCoordsOk counts inactive records, the fit doesn't.
    CTransTabel u("naam");
    EXPECT_EQ(u.m_szNaam, u"naam");
    u.AddTail(Record(0, 0, 1, 1, false));
    u.AddTail(Record(5, 0, 6, 1));
    u.AddTail(Record(9, 9, 9, 9));
    EXPECT_TRUE(u.bCoordsOk());
    CTransHelmert h;
    h.m_Tabel.Copy(u);
    EXPECT_EQ(h.m_Tabel.GetCount(), 3); // Copy takes the last one too
    EXPECT_FALSE(h.bEvalueer());
    EXPECT_FALSE(u.bBepTransformation(&h)); // one point: S is 0

    // A record with an unknown coordinate before the tail spoils bCoordsOk.
    u.AddHead(Record(std::nan(""), 0, 0, 0, false));
    EXPECT_FALSE(u.bCoordsOk());

    CTransRecord r;
    EXPECT_TRUE(r.m_bActief);
    EXPECT_TRUE(std::isnan(r.m_Van.m_dX) && std::isnan(r.m_Naar.m_dY) &&
                std::isnan(r.m_Afwijking.m_dZ));
    EXPECT_FALSE(r.bTestVal());
}

TEST(TransHelmert, FitOnDifferencesAndResiduals) {
    CTransHelmert h;
    QuarterTurn(h.m_Tabel);
    // By hand: centroids (5, 0) and (100, 205); Sxx 50, Syy 0, A 50, B 0, C −50, D 0;
    // b = 50/50 = 1, a = −50/50 + 1 = 0.
    ASSERT_TRUE(h.bEvalueer());
    EXPECT_EQ(h.dMatrix00, 0.0);
    EXPECT_EQ(h.dMatrix11, 0.0);
    EXPECT_EQ(h.dMatrix01, -1.0);
    EXPECT_EQ(h.dMatrix10, 1.0);
    EXPECT_EQ(h.dMatrix02, 100.0);
    EXPECT_EQ(h.dMatrix12, 200.0);
    h.m_Tabel.CalcDeviations(&h);
    CTransRecord *first = h.m_Tabel.GetHead();
    EXPECT_EQ(first->m_Afwijking.m_dX, 0.0);
    EXPECT_EQ(first->m_Afwijking.m_dY, 0.0);
    EXPECT_TRUE(std::isnan(h.m_Tabel.GetTail()->m_Afwijking.m_dX)); // the tail isn't visited

    // Zero residuals: Perform is the plain similarity.
    CVXCoord p(3, 4);
    h.Perform(&p);
    EXPECT_EQ(p.m_dX, 96.0);
    EXPECT_EQ(p.m_dY, 203.0);

    // MirrorHor with a = 0, b = −1: c = −1, s = 0, so the control points are negated, and the
    // mirrored matrix X' = Y + 100, Y' = 200 − X still takes them onto their targets.
    h.MirrorHor();
    EXPECT_EQ(first->m_Van.m_dX, -0.0);
    POSITION pos = h.m_Tabel.GetHeadPosition();
    h.m_Tabel.GetNext(pos);
    EXPECT_EQ(h.m_Tabel.GetAt(pos)->m_Van.m_dX, -10.0);
    EXPECT_EQ(h.m_Tabel.GetAt(pos)->m_Afwijking.m_dX, 0.0);
    EXPECT_EQ(h.m_Tabel.GetAt(pos)->m_Afwijking.m_dY, 0.0);
    EXPECT_EQ(h.m_Tabel.GetTail()->m_Van.m_dX, 1e6);

    // Coinciding control points make the plain divisions NaN: the fit fails.
    CTransHelmert same;
    same.m_Tabel.AddTail(Record(1, 1, 2, 2));
    same.m_Tabel.AddTail(Record(1, 1, 3, 3));
    same.m_Tabel.AddTail(Record(0, 0, 0, 0));
    EXPECT_FALSE(same.bEvalueer());
}

TEST(TransHelmert, ResidualsSpreadByInverseSquaredDistance) {
    CTransHelmert h;
    h.EvalueerSpeciaal();
    h.m_Tabel.AddTail(Record(0, 0, 0, 0));
    h.m_Tabel.AddTail(Record(10, 0, 10, 0));
    h.m_Tabel.AddTail(Record(0, 0, 0, 0)); // the tail
    h.m_Tabel.GetHead()->m_Afwijking.SetXY(1, 0);
    POSITION pos = h.m_Tabel.GetHeadPosition();
    h.m_Tabel.GetNext(pos);
    h.m_Tabel.GetAt(pos)->m_Afwijking.SetXY(0, 2);
    h.m_Tabel.GetTail()->m_Afwijking.SetXY(1e9, 1e9);

    // At (2, 0): d² 4 and 64, weights 250 and 15.625 = 16 : 1; the mean residual is (16/17, 2/17).
    CVXCoord p(2, 0);
    h.Perform(&p);
    EXPECT_DOUBLE_EQ(p.m_dX, 2.0 - 16.0 / 17.0); // a few rounding steps apart
    EXPECT_DOUBLE_EQ(p.m_dY, -2.0 / 17.0);

    // On a control point: weight 1000/0.001 = 1e6 against 1000/100 = 10.
    double xy[2] = {0, 0};
    h.Perform(2, xy);
    EXPECT_DOUBLE_EQ(xy[0], -1e6 / 1000010.0);
    EXPECT_DOUBLE_EQ(xy[1], -20.0 / 1000010.0);

    // The integer forms correct the truncated point and truncate again.
    CPoint q;
    h.Perform(&q, CVXCoord(2.9, 0.5)); // (2, 0), corrected to (1.06, −0.12), truncated
    EXPECT_EQ(q, CPoint(1, 0));

    // The virtual slot reaches the correction from the sequence forms of the base.
    CVXCoord arr[1] = {CVXCoord(2, 0)};
    static_cast<const CTrans &>(h).Perform(arr, 1);
    EXPECT_DOUBLE_EQ(arr[0].m_dX, 2.0 - 16.0 / 17.0);

    // No active record: Sw is 0 and the point becomes unknown.
    CTransHelmert leeg(static_cast<const CTrans &>(h));
    EXPECT_TRUE(leeg.m_Tabel.IsEmpty());
    CVXCoord r(1, 1);
    leeg.Perform(&r);
    EXPECT_TRUE(std::isnan(r.m_dX) && std::isnan(r.m_dY));
}

TEST(TransHelmert, ShiftAndRasterMoveTheControlPoints) {
    CTransHelmert h;
    h.m_Tabel.AddTail(Record(0, 0, 5, 5));
    h.m_Tabel.AddTail(Record(10, 0, 15, 5));
    h.m_Tabel.AddTail(Record(50, 50, 0, 0));
    ASSERT_TRUE(h.bEvalueer()); // a pure shift by (5, 5)
    EXPECT_EQ(h.dMatrix00, 1.0);
    EXPECT_EQ(h.dMatrix02, 5.0);
    h.m_Tabel.CalcDeviations(&h);

    h.SetShift(7, 1); // the control points move by (5 − 7, 5 − 1); the residuals stay 0
    EXPECT_EQ(h.dMatrix02, 7.0);
    EXPECT_EQ(h.m_Tabel.GetHead()->m_Van.m_dX, -2.0);
    EXPECT_EQ(h.m_Tabel.GetHead()->m_Van.m_dY, 4.0);
    EXPECT_EQ(h.m_Tabel.GetHead()->m_Afwijking.m_dX, 0.0);
    EXPECT_EQ(h.m_Tabel.GetHead()->m_Afwijking.m_dY, 0.0);
    EXPECT_EQ(h.m_Tabel.GetTail()->m_Van.m_dX, 50.0);

    // X := (X − p3)/p1 and Y := (p6 − Y)/p2 on the targets: (5 − 1)/2, (9 − 5)/4.
    h.PointsGeo2Raster(2, 4, 1, 99, 99, 9, false);
    EXPECT_EQ(h.m_Tabel.GetHead()->m_Naar.m_dX, 2.0);
    EXPECT_EQ(h.m_Tabel.GetHead()->m_Naar.m_dY, 1.0);
    EXPECT_EQ(h.m_Tabel.GetTail()->m_Naar.m_dX, 0.0);

    std::unique_ptr<CTrans> copy(h.New());
    ASSERT_NE(copy->pGetTabel(), nullptr);
    EXPECT_NE(copy->pGetTabel(), h.pGetTabel());
    EXPECT_EQ(copy->pGetTabel()->GetCount(), 3);
    EXPECT_EQ(copy->pGetTabel()->GetHead()->m_Naar.m_dX, 2.0);
}

TEST(TransSerial, RecordBytesAndBinaryTable) {
    CTransRecord r;
    r.Set(CVXCoord(1, 2), true);
    // A record has no binary fields: the class definition alone.
    const Bytes one = Store([&](CArchiveB &ar) { ar.WriteObject(&r); });
    Bytes expected = {0xFF, 0xFF, 0x01, 0x00, 0x0C, 0x00};
    const Bytes name = Ascii("CTransRecord");
    expected.insert(expected.end(), name.begin(), name.end());
    EXPECT_EQ(vxtest::Hex(one), vxtest::Hex(expected));
    Load(one, [](CArchiveB &ar) {
        std::unique_ptr<ISerObject> o(ar.ReadObject(CTransRecord::RTC()));
        auto *back = dynamic_cast<CTransRecord *>(o.get());
        ASSERT_NE(back, nullptr);
        EXPECT_TRUE(back->m_bActief);
        EXPECT_TRUE(std::isnan(back->m_Van.m_dX));
    });
    EXPECT_EQ(CTransRecord::RTC()->Schema(), 1u);
    EXPECT_EQ(CTransTabel::RTC()->Schema(), 1u);

    // A table: its class, a count of 2, the record class, then a class reference (index 3).
    CTransTabel t;
    t.AddTail(Record(0, 0, 1, 1, false)); // inactive records stay in the binary form
    t.AddTail(Record(0, 0, 1, 1));
    const Bytes table = Store([&](CArchiveB &ar) { ar.WriteObject(&t); });
    Bytes want = {0xFF, 0xFF, 0x01, 0x00, 0x0B, 0x00};
    const Bytes tname = Ascii("CTransTabel");
    want.insert(want.end(), tname.begin(), tname.end());
    want.insert(want.end(), {0x02, 0x00});
    want.insert(want.end(), expected.begin(), expected.end());
    want.insert(want.end(), {0x03, 0x80});
    EXPECT_EQ(vxtest::Hex(table), vxtest::Hex(want));
    Load(table, [](CArchiveB &ar) {
        std::unique_ptr<ISerObject> o(ar.ReadObject(nullptr));
        auto *back = dynamic_cast<CTransTabel *>(o.get());
        ASSERT_NE(back, nullptr);
        EXPECT_EQ(back->GetCount(), 2);
    });

    // A foreign object in the run is a bad class, and nothing leaks.
    CSerObList vreemd;
    Bytes bad = {0xFF, 0xFF, 0x01, 0x00, 0x0B, 0x00};
    bad.insert(bad.end(), tname.begin(), tname.end());
    bad.insert(bad.end(), {0x01, 0x00});
    const Bytes foreign = Store([&](CArchiveB &ar) { ar.WriteObject(&vreemd); });
    bad.insert(bad.end(), foreign.begin(), foreign.end());
    Load(bad, [](CArchiveB &ar) {
        try {
            std::unique_ptr<ISerObject> o(ar.ReadObject(nullptr));
            ADD_FAILURE() << "a foreign element loaded";
        } catch (const CArchiveBException &e) {
            EXPECT_EQ(e.m_cause, CArchiveBException::badClass);
        }
    });
}

TEST(TransSerial, XmlRecordAndTableRoundTrip) {
    CTransTabel t("Stelsel");
    t.m_nType = 1;
    t.AddTail(Record(1.5, -2, 100, 200));
    t.AddTail(Record(3, 4, 5, 6, false));
    t.AddTail(Record(7, 8, 9, 10.25, false)); // the last one is dropped as well
    t.GetHead()->m_Afwijking.SetXY(0.5, 0.5);

    CArchiveX out(false);
    out.Save(u"Tabel", static_cast<const ISerObject *>(&t));
    EXPECT_EQ(t.GetCount(), 1); // saving changed the table in memory
    const CVXString xml = out.XML();
    EXPECT_NE(xml.Find(u"MFC_RUNTIME_TYPE=\"CTransTabel\" MFC_RUNTIME_TYPE_SCHEMA=\"1\""), -1);
    EXPECT_NE(xml.Find(u"m_szNaam=\"Stelsel\" m_nType=\"1\""), -1);
    EXPECT_EQ(xml.Find(u"Afwijking"), -1);
    EXPECT_EQ(xml.Find(u"Actief"), -1);

    CArchiveX in(true);
    in.XML(xml);
    ISerObject *loaded = nullptr;
    in.Load(u"Tabel", loaded);
    std::unique_ptr<ISerObject> owner(loaded);
    auto *back = dynamic_cast<CTransTabel *>(loaded);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->m_szNaam, u"Stelsel");
    EXPECT_EQ(back->m_nType, 1);
    ASSERT_EQ(back->GetCount(), 1);
    const CTransRecord *r = back->GetHead();
    EXPECT_EQ(r->m_Van.m_dX, 1.5);
    EXPECT_EQ(r->m_Van.m_dY, -2.0);
    EXPECT_EQ(r->m_Naar.m_dX, 100.0);
    EXPECT_EQ(r->m_Naar.m_dY, 200.0);
    EXPECT_TRUE(r->m_bActief);
    EXPECT_TRUE(std::isnan(r->m_Afwijking.m_dX)); // residuals aren't stored

    // A foreign element in the run is dropped on load.
    CArchiveX odd(true);
    odd.XML(u"<VXA><T MFC_RUNTIME_TYPE=\"CTransTabel\" m_nCount=\"2\" m_nType=\"0\">"
            u"<pO MFC_RUNTIME_TYPE=\"CSerObList\" m_nCount=\"0\"/>"
            u"<pO MFC_RUNTIME_TYPE=\"CTransRecord\"><Van m_dX=\"1\" m_dY=\"2\"/></pO></T></VXA>");
    ISerObject *o = nullptr;
    odd.Load(u"T", o);
    std::unique_ptr<ISerObject> owner2(o);
    auto *t2 = dynamic_cast<CTransTabel *>(o);
    ASSERT_NE(t2, nullptr);
    ASSERT_EQ(t2->GetCount(), 1);
    EXPECT_EQ(t2->GetHead()->m_Van.m_dY, 2.0);
}
