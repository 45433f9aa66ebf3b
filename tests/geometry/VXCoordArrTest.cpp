// The point sequence: ownership, structural operations, section queries, navigation, search,
// measures and the collections of points and lines.
#include "geometry/VXCoordArr.h"
#include "platform/Errors.h"

#include "GeometryTestUtil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

using namespace vx;
using vxtest::AssertCatcher;
using vxtest::Codes;
using vxtest::Lijn;

namespace {
constexpr double pi = std::numbers::pi;
constexpr double dMax = 1.7976931348623157e+308;
} // namespace

TEST(VXCoordArrStorage, TheArrayOwnsClonesAndMarksStructuralChanges) {
    CVXCoordArr arr;
    EXPECT_FALSE(arr.m_bGewijzigd);
    CVXCoord p(1, 2, 3, 1);
    EXPECT_EQ(arr.Add(&p), 0);
    p.SetX(99);
    EXPECT_EQ(arr.Pt(0).m_dX, 1.0); // a clone was stored
    EXPECT_TRUE(arr.m_bGewijzigd);

    arr.SetUnChanged();
    EXPECT_FALSE(arr.Gewijzigd());
    arr.GetAt(0)->SetY(5); // a point's own change counts
    EXPECT_TRUE(arr.Gewijzigd());
    EXPECT_FALSE(arr.m_bGewijzigd);
    arr.SetUnChanged();
    EXPECT_EQ(arr.Pt(0).nGetChFlags(), 0);

    CVXCoord q(7, 7);
    arr.SetAt(0, &q); // the old point is deleted (checked by the leak sanitizer)
    EXPECT_EQ(arr.Pt(0).m_dX, 7.0);
    EXPECT_TRUE(arr.m_bGewijzigd);
    arr.SetAt(0, arr.GetAt(0)); // replacing a point by itself is safe
    EXPECT_EQ(arr.Pt(0).m_dX, 7.0);

    CVXCoord *pVorig = arr.GetAt(0);
    auto *pEigen = new CVXCoord(8, 8);
    arr.SetAtDir(0, pEigen); // taken over as it is; the former point is ours to delete
    EXPECT_EQ(arr.GetAt(0), pEigen);
    EXPECT_EQ(pVorig->m_dX, 7.0); // not deleted by the array
    delete pVorig;

    arr.InsertAt(0, &p);
    EXPECT_EQ(arr.GetSize(), 2);
    EXPECT_EQ(arr.Pt(0).m_dX, 99.0);
    arr.RemoveAt(0);
    EXPECT_EQ(arr.Pt(0).m_dX, 8.0);

    const CVXCoordArr leeg(3);
    EXPECT_EQ(leeg.GetSize(), 3);
    EXPECT_FALSE(leeg.m_bGewijzigd);
    {
        AssertCatcher reports;
        EXPECT_EQ(leeg.GetAt(1), nullptr);
        EXPECT_TRUE(reports.Has("FALSE"));
    }
    CVXCoordArr gaten(2);
    EXPECT_NE(gaten.GetAt(1), nullptr); // filled with a default point
    EXPECT_EQ(gaten.GetAt(1)->nGetSectie(), 1);
    EXPECT_THROW(gaten.GetAt(2), CInvalidArgException);
    EXPECT_THROW(gaten.GetAt(-1), CInvalidArgException);
    CVXCoord **pTabel = gaten.GetData();
    EXPECT_NE(pTabel[0], nullptr);
    EXPECT_TRUE(gaten.m_bGewijzigd);
}

TEST(VXCoordArrStorage, AddingAndInsertingWholeLines) {
    CVXCoordArr arr = Lijn({{0, 0, 1}, {1, 0, 0}});
    const CVXCoordArr ander = Lijn({{5, 5, 1}, {6, 6, 8}, {7, 5, 8}});
    CVXCoordArr voor(arr);
    voor.InsertAt(0, &ander);
    EXPECT_EQ(Codes(voor), (std::vector<int>{1, 8, 8, 0, 0}));
    CVXCoordArr midden(arr);
    midden.InsertAt(1, &ander);
    EXPECT_EQ(Codes(midden), (std::vector<int>{1, 0, 8, 8, 0}));
    EXPECT_EQ(midden.Pt(1).m_dX, 5.0);
    CVXCoordArr zelf(arr);
    zelf.InsertAt(2, &zelf);
    EXPECT_EQ(zelf.GetSize(), 4);

    arr.Add(&ander);
    EXPECT_EQ(arr.GetSize(), 5);
    const CVXCoord a(1, 1), b(2, 2);
    const CVXCoord *const tabel[2] = {&a, &b};
    EXPECT_EQ(arr.Add(tabel, 2), 5);
    EXPECT_EQ(arr.Pt(6).m_dX, 2.0);

    AssertCatcher reports;
    const CVXCoord *const metGat[2] = {&a, nullptr};
    EXPECT_THROW(arr.Add(metGat, 2), CInvalidArgException);
    EXPECT_TRUE(reports.Has("pPunten[nI]!=NULL"));
    EXPECT_THROW(arr.Add(static_cast<const CVXCoord *>(nullptr)), CInvalidArgException);
}

TEST(VXCoordArrStorage, SizeMoveCopyAndTakeOver) {
    CVXCoordArr arr = Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}});
    arr.SetSize(3);
    EXPECT_EQ(arr.GetSize(), 3);
    arr.SetSize(4);
    EXPECT_EQ(arr.GetSize(), 4);
    EXPECT_EQ(static_cast<const CVXCoordArr &>(arr).GetData()[3], nullptr);
    EXPECT_THROW(arr.SetSize(-1), CInvalidArgException);

    // Move within the array, with the tail cut first.
    CVXCoordArr m = Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}});
    m.Move(0, 2, 2);
    EXPECT_EQ(m.GetSize(), 2);
    EXPECT_EQ(m.Pt(0).m_dX, 2.0);
    EXPECT_EQ(m.Pt(1).m_dX, 3.0);
    CVXCoordArr g = Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    g.SetSize(5);
    g.Move(2, 1, 3); // descending: nothing is overwritten before it is read
    EXPECT_EQ(g.Pt(2).m_dX, 1.0);
    EXPECT_EQ(g.Pt(3).m_dX, 2.0);
    EXPECT_EQ(g.Pt(4).m_dX, 3.0);
    CVXCoordArr c = Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}});
    c.Move(1, 1, 0); // only the cut
    EXPECT_EQ(c.GetSize(), 1);

    CVXCoordArr bron = Lijn({{0, 0, 1}, {1, 0, 0}});
    bron.SetUnChanged();
    CVXCoordArr kopie(bron);
    EXPECT_FALSE(kopie.m_bGewijzigd);
    EXPECT_NE(kopie.GetAt(0), bron.GetAt(0));
    kopie = arr;
    EXPECT_EQ(kopie.GetSize(), 4);
    EXPECT_TRUE(kopie.m_bGewijzigd);

    CVXCoord *pEerste = bron.GetAt(0);
    CVXCoordArr neem;
    neem.SetUnChanged();
    neem.SetCopy(bron);
    EXPECT_EQ(bron.GetSize(), 0);
    EXPECT_EQ(neem.GetAt(0), pEerste); // taken over, not cloned
    EXPECT_TRUE(neem.m_bGewijzigd);
    neem.RemoveAll();
    EXPECT_EQ(neem.GetSize(), 0);
}

TEST(VXCoordArrSections, QueriesAtTheEdges) {
    const CVXCoordArr lijn =
        Lijn({{0, 0, 1}, {1, 0, 0}, {2, 1, 8}, {3, 0, 8}, {4, 1, 6}, {5, 0, 6}});
    EXPECT_FALSE(lijn.bBoog(-2));
    EXPECT_FALSE(lijn.bRechte(-1));
    EXPECT_FALSE(lijn.bSpline(-1));
    EXPECT_TRUE(lijn.bIInLine(-5));
    EXPECT_FALSE(lijn.bIInLine(0));
    EXPECT_TRUE(lijn.bIInLine(5));
    EXPECT_FALSE(lijn.bIInLine(6));
    EXPECT_TRUE(lijn.bRechte(0));
    EXPECT_FALSE(lijn.bRechte(1));
    EXPECT_TRUE(lijn.bBoog(1));
    EXPECT_FALSE(lijn.bBoog(4)); // no point i+2
    EXPECT_TRUE(lijn.bCirkelKromme(1));
    EXPECT_TRUE(lijn.bSpline(3));
    EXPECT_TRUE(lijn.bSpline(4));
    EXPECT_FALSE(lijn.bSpline(5));
    EXPECT_FALSE(lijn.bCirkel());
    EXPECT_FALSE(lijn.bAlleSectiesLijn());
    EXPECT_FALSE(lijn.bGesloten());

    EXPECT_TRUE(Lijn({{0, 0, 1}, {1, 0, 2}, {0, 0, 0}}).bAlleSectiesLijn());
    EXPECT_TRUE(CVXCoordArr().bAlleSectiesLijn());
    EXPECT_TRUE(Lijn({{0, 0, 1}}).bGesloten());
    EXPECT_FALSE(CVXCoordArr().bGesloten());

    const CVXCoordArr cirkel = Lijn({{1, 0, 1}, {0, 1, 7}, {-1, 0, 7}});
    EXPECT_TRUE(cirkel.bCirkel());
    EXPECT_TRUE(cirkel.bCirkelKromme(0));
    EXPECT_FALSE(cirkel.bBoog(0));

    // Before the support point of the upper arc, seen along its chord.
    const CVXCoordArr boog = Lijn({{1, 0, 1}, {0, 1, 8}, {-1, 0, 8}});
    EXPECT_TRUE(boog.bVoorSteun(CVXCoord(0.7, 0.7), 0));
    EXPECT_FALSE(boog.bVoorSteun(CVXCoord(-0.7, 0.7), 0));
}

TEST(VXCoordArrSections, NavigationOverStretches) {
    const CVXCoordArr lijn = Lijn({{0, 0, 1},
                                   {1, 0, 0},
                                   {2, 1, 8},
                                   {3, 0, 8},
                                   {4, 1, 8},
                                   {5, 0, 8},
                                   {6, 1, 6},
                                   {7, 0, 6},
                                   {8, 0, 2}});
    EXPECT_EQ(lijn.nNextLinePart(0), 1);
    EXPECT_EQ(lijn.nNextLinePart(1), 3);
    EXPECT_EQ(lijn.nNextLinePart(3), 5);
    EXPECT_EQ(lijn.nNextLinePart(5), 6); // a spline point by point
    EXPECT_EQ(lijn.nPrevLinePart(0), -1);
    EXPECT_EQ(lijn.nPrevLinePart(5), 3);
    EXPECT_EQ(lijn.nPrevLinePart(3), 1);
    EXPECT_EQ(lijn.nPrevLinePart(7), 6);
    EXPECT_EQ(lijn.nStartDeel(1), 0);
    EXPECT_EQ(lijn.nStartDeel(2), 1);
    EXPECT_EQ(lijn.nStartDeel(3), 1);
    EXPECT_EQ(lijn.nStartDeel(4), 3);
    EXPECT_EQ(lijn.nStartDeel(5), 3);
    EXPECT_EQ(lijn.nStartDeel(7), 5);
    EXPECT_EQ(lijn.nStartDeel(8), 7);
    EXPECT_EQ(lijn.nStartDeel(0), 0);
    EXPECT_EQ(lijn.nTelSplinePunten(5), 2);
    EXPECT_EQ(lijn.nTelSplinePunten(0), 0);

    const CVXCoordArr cirkel = Lijn({{1, 0, 1}, {0, 1, 7}, {-1, 0, 7}, {1, 0, 7}});
    EXPECT_EQ(cirkel.nNextLinePart(0), 4); // past the end: every walk stops
    EXPECT_EQ(cirkel.nPrevLinePart(2), 0);
    EXPECT_EQ(cirkel.nStartDeel(2), 0);

    AssertCatcher reports;
    const CVXCoordArr dwang = Lijn({{0, 0, 1}, {1, 0, 9}});
    EXPECT_EQ(dwang.nStartDeel(1), 0);
    EXPECT_TRUE(reports.Has("false"));
}

TEST(VXCoordArrSearch, FindCompareAndTolerances) {
    CVXCoordArr lijn = Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 8}, {0, 10, 8}});
    EXPECT_EQ(lijn.nZoekPunt2(CVXCoord(10.0004, 0)), 1);
    EXPECT_EQ(lijn.nZoekPunt2(CVXCoord(5, 5)), -1);
    // Distances from (5, 0): 5, 5, 11.18, 11.18. Closest to 5 is a tie: the lowest index.
    EXPECT_EQ(lijn.ZoekPuntMetAfstand(CVXCoord(5, 0), 5.0), 0);
    EXPECT_EQ(lijn.ZoekPuntMetAfstand(CVXCoord(5, 0), 12.0), 2);
    EXPECT_THROW(CVXCoordArr().ZoekPuntMetAfstand(CVXCoord(), 1.0), CInvalidArgException);

    EXPECT_TRUE(lijn.bLineInTol(0, CVXCoord(5, 0.0004)));
    EXPECT_FALSE(lijn.bLineInTol(0, CVXCoord(5, 0.0005)));
    EXPECT_FALSE(lijn.bLineInTol(0, CVXCoord(10.1, 0)));

    const CVXCoord nieuw(10.0009, 0.0001, 6);
    EXPECT_EQ(lijn.CopyIfInTol(nieuw, 0, 2, false), 1);
    EXPECT_EQ(lijn.Pt(1).m_dX, 10.0);
    EXPECT_EQ(lijn.CopyIfInTol(nieuw, 2, 2, true), -1);
    EXPECT_EQ(lijn.CopyIfInTol(CVXCoord(10.0009, 0.0001, 4, 6), 0, 2, false), -1); // 2D vs 3D
    CVXCoordArr plat = Lijn({{0, 0, 1}, {10, 0, 0}});
    EXPECT_EQ(plat.CopyIfInTol(CVXCoord(10.0009, 0.0001), 0, 2, true), 1);
    EXPECT_EQ(plat.Pt(1).m_dX, 10.0009);
    EXPECT_EQ(plat.Pt(1).nGetSectie(), 0); // keeps its own code

    const CVXCoordArr a = Lijn({{0, 0, 1}, {3, 4, 0}, {6, 0, 0}, {0, 0, 0}});
    const CVXCoordArr b = Lijn({{0, 1, 1}, {3, 4, 0}, {6, 3, 0}, {9, 9, 0}});
    double dGem = 0, dMaxV = 0;
    a.VerschillenXY(b, &dGem, &dMaxV);
    EXPECT_EQ(dMaxV, 3.0);
    EXPECT_EQ(dGem, 4.0 / 3.0); // (1 + 0 + 3)/3; the last point takes no part
}

TEST(VXCoordArrSearch, EqualityMayReverseTheLine) {
    CVXCoordArr heen = Lijn({{0, 0, 1}, {5, 5, 8}, {10, 0, 8}, {20, 0, 0}});
    CVXCoordArr terug(heen);
    terug.DraaiRichting();
    EXPECT_EQ(Codes(terug), (std::vector<int>{1, 0, 8, 8}));
    EXPECT_EQ(terug.Pt(0).m_dX, 20.0);
    EXPECT_TRUE(terug.Pt(0).bSecSnapChanged());

    EXPECT_TRUE(heen.Gelijk(terug));
    EXPECT_EQ(heen.Pt(0).m_dX, 20.0); // left reversed
    EXPECT_TRUE(heen.Gelijk(terug));

    CVXCoordArr anders = Lijn({{20, 0, 1}, {10, 0, 0}, {5, 5, 8}, {0, 1, 8}});
    CVXCoordArr kopie(anders);
    CVXCoordArr origineel = Lijn({{0, 0, 1}, {5, 5, 8}, {10, 0, 8}, {20, 0, 0}});
    EXPECT_FALSE(origineel.Gelijk(anders)); // reversed, then a difference: reversed back
    EXPECT_EQ(origineel.Pt(0).m_dX, 0.0);
    EXPECT_FALSE(origineel.Gelijk(kopie));
    CVXCoordArr kort = Lijn({{0, 0, 1}});
    EXPECT_FALSE(origineel.Gelijk(kort));
}

TEST(VXCoordArrMeasure, LengthsOfStraightArcAndCircleStretches) {
    const CVXCoordArr lijn = Lijn({{1, -2, 1}, {1, 0, 0}, {0, 1, 8}, {-1, 0, 8}, {-1, -3, 0}});
    EXPECT_EQ(lijn.dLijnLengte(0), 2.0);
    EXPECT_EQ(lijn.dLijnLengte(1), pi);           // the upper half circle, counter-clockwise
    EXPECT_EQ(lijn.dLengte(), 8.141592653589793); // python3: ((0 + 2) + pi) + 3
    EXPECT_EQ(lijn.dLengteInLijn(1, CVXCoord(0, 1)), pi / 2);
    EXPECT_EQ(lijn.dLengteInLijn(1, CVXCoord(1.0003, 0)), 0.00029999999999996696); // python3
    EXPECT_EQ(lijn.dLengteInLijn(0, CVXCoord(1, -1)), 1.0);

    const CVXCoordArr rechtsom = Lijn({{-1, 0, 1}, {0, 1, 8}, {1, 0, 8}});
    EXPECT_EQ(rechtsom.dLijnLengte(0), pi); // clockwise: 2π − π
    const CVXCoordArr recht = Lijn({{0, 0, 1}, {1, 0, 8}, {3, 0, 8}});
    EXPECT_EQ(recht.dLijnLengte(0), 3.0); // no centre: the chord of the ends

    const CVXCoordArr cirkel = Lijn({{2, 0, 1}, {0, 2, 7}, {-2, 0, 7}, {2, 0, 7}});
    EXPECT_EQ(cirkel.dLijnLengte(0), 4 * pi);
    EXPECT_EQ(cirkel.dLengte(), 4 * pi);
    const CVXCoordArr spline = Lijn({{0, 0, 1}, {3, 4, 6}, {6, 0, 6}});
    EXPECT_EQ(spline.dLengte(), 10.0); // chords
    EXPECT_EQ(CVXCoordArr().dLengte(), 0.0);
    EXPECT_EQ(Lijn({{0, 0, 1}}).dLengte(), 0.0);

    // The inscribed angle over a half circle, seen from the circle itself, is π/2 in size.
    double dSom = 0;
    lijn.LijnHoek(1, dSom, CVXCoord(0, -1));
    EXPECT_NEAR(std::fabs(dSom), pi / 2, 1e-15);
}

TEST(VXCoordArrMeasure, AreaVolumeAndCentre) {
    const CVXCoordArr links = Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}});
    double opp = 0;
    EXPECT_TRUE(links.bOppervlakNoAbs(&opp));
    EXPECT_EQ(opp, 100.0);
    CVXCoordArr rechts(links);
    rechts.DraaiRichting();
    EXPECT_TRUE(rechts.bOppervlakNoAbs(&opp));
    EXPECT_EQ(opp, -100.0);
    EXPECT_TRUE(rechts.bOppervlak(&opp));
    EXPECT_EQ(opp, 100.0);

    const CVXCoordArr cirkel = Lijn({{2, 0, 1}, {0, 2, 7}, {-2, 0, 7}, {2, 0, 7}});
    EXPECT_TRUE(cirkel.bOppervlakNoAbs(&opp));
    EXPECT_EQ(opp, pi * 2 * 2);
    EXPECT_FALSE(Lijn({{0, 0, 1}, {1, 0, 7}, {2, 0, 7}}).bOppervlak(&opp));
    EXPECT_FALSE(Lijn({{0, 0, 1}, {1, 0, 0}, {1, 1, 0}}).bOppervlak(&opp));
    EXPECT_EQ(opp, 0.0);
    // A single point is closed, and its area reads past the end of its copy.
    EXPECT_THROW(Lijn({{0, 0, 1}}).bOppervlak(&opp), CInvalidArgException);

    // A closed half disc: the arc is replaced by 99 chords within 0.0005 of it.
    // python3: n = int((2*pi/acos(0.9995) + 1) * 0.5) = 99, area = 0.5*n*sin(pi/n).
    const CVXCoordArr halfrond = Lijn({{1, 0, 1}, {0, 1, 8}, {-1, 0, 8}, {1, 0, 0}});
    EXPECT_TRUE(halfrond.bOppervlakNoAbs(&opp));
    EXPECT_NEAR(opp, 1.5705327081543488, 1e-13); // sums of 100 terms: a few ulps apart

    const CVXCoordArr prisma = Lijn({{0, 0, 1, 1}, {1, 0, 0, 2}, {0, 1, 0, 3}});
    EXPECT_EQ(prisma.Volume(0.0), 1.0);
    EXPECT_EQ(prisma.Volume(1.0), 0.5);
    EXPECT_TRUE(std::isnan(Lijn({{0, 0, 1}, {1, 0, 0}}).Volume(0.0)));

    CVXCoord m(0, 0, 7, 1);
    links.ZwaartePunt(m);
    EXPECT_EQ(m.m_dX, 5.0);
    EXPECT_EQ(m.m_dY, 5.0);
    EXPECT_EQ(m.m_dZ, 7.0);
    const CVXCoordArr open = Lijn({{0, 0, 1}, {3, 0, 0}, {3, 3, 0}});
    open.ZwaartePunt(m);
    EXPECT_EQ(m.m_dX, 2.0);
    EXPECT_EQ(m.m_dY, 1.0);
    CVXCoordArr().ZwaartePunt(m);
    EXPECT_TRUE(std::isnan(m.m_dX));

    const CVXCoordArr hoogte = Lijn({{0, 0, 1, 1}, {3, 0, 0, 2}, {3, 3, 0, 6}});
    hoogte.ZwaartePunt3D(m);
    EXPECT_EQ(m.m_dZ, 3.0);
    Lijn({{0, 0, 1, 1}, {3, 0, 0}, {3, 3, 0, 6}}).ZwaartePunt3D(m);
    EXPECT_TRUE(std::isnan(m.m_dZ));
}

TEST(VXCoordArrMeasure, DistanceToTheNearestFoot) {
    const CVXCoordArr lijn = Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}});
    EXPECT_EQ(lijn.Dist(CVXCoord(5, 3)), 3.0);
    EXPECT_EQ(lijn.Dist(CVXCoord(13, 5)), 3.0);
    EXPECT_EQ(lijn.Dist(CVXCoord(-5, -5)), dMax); // no foot inside any stretch
    const CVXCoordArr boog = Lijn({{1, 0, 1}, {0, 1, 8}, {-1, 0, 8}});
    EXPECT_EQ(boog.Dist(CVXCoord(0, 3)), 2.0);
}

TEST(VXCoordCollections, ListsAndArraysOfPointsAndLines) {
    {
        CVXCoordList lijst;
        lijst.AddTail(new CVXCoord(1, 1));
        lijst.AddTail(new CVXCoord(2, 2));
        CVXCoordList kopie(lijst); // shares the points
        EXPECT_EQ(kopie.GetHead(), lijst.GetHead());
        lijst.RemoveAll(); // deletes the points: the copy now dangles and is only dropped
        EXPECT_TRUE(lijst.IsEmpty());
        EXPECT_EQ(kopie.GetCount(), 2);
    }
    {
        CVXCoordArrList lijnen;
        lijnen.AddTail(new CVXCoordArr(Lijn({{0, 0, 1}, {1, 1, 0}})));
        lijnen.AddTail(new CVXCoordArr(Lijn({{0, 0, 1}})));
        EXPECT_EQ(lijnen.GetCount(), 2);
    } // the destructor deletes the lines
    CVXCoordArrArr arr;
    arr.Add(new CVXCoordArr(Lijn({{0, 0, 1}, {1, 1, 0}})));
    arr.Add(new CVXCoordArr(Lijn({{5, 5, 1}})));
    arr.Add(new CVXCoordArr(Lijn({{7, 7, 1}})));
    CVXCoordArrArr diep(arr);
    EXPECT_NE(diep.GetAt(0), arr.GetAt(0));
    EXPECT_EQ(diep.GetAt(0)->Pt(1).m_dX, 1.0);
    diep.RemoveAt(static_cast<unsigned short>(1));
    EXPECT_EQ(diep.GetSize(), 2);
    EXPECT_EQ(diep.GetAt(1)->Pt(0).m_dX, 7.0);
    diep = arr;
    EXPECT_EQ(diep.GetSize(), 3);
}
