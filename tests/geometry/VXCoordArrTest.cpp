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

// The X of every point, for compact comparisons of lines along the X axis.
std::vector<double> Xen(const CVXCoordArr &arr) {
    std::vector<double> x;
    for (int i = 0; i < arr.GetSize(); ++i)
        x.push_back(arr.Pt(i).m_dX);
    return x;
}
} // namespace

TEST(VXCoordArrStorage, TheArrayOwnsClonesAndMarksStructuralChanges) {
    CVXCoordArr arr;
    CVXCoord p(1, 2, 3, 1);
    EXPECT_EQ(arr.Add(&p), 0);
    p.SetX(99);
    EXPECT_EQ(arr.Pt(0).m_dX, 1.0); // a clone was stored
    EXPECT_TRUE(arr.m_bGewijzigd);
    arr.SetUnChanged();
    arr.GetAt(0)->SetY(5); // a point's own change counts
    EXPECT_TRUE(arr.Gewijzigd());
    EXPECT_FALSE(arr.m_bGewijzigd);

    CVXCoord q(7, 7);
    arr.SetAt(0, &q);           // the old point is deleted (checked by the leak sanitizer)
    arr.SetAt(0, arr.GetAt(0)); // replacing a point by itself is safe
    EXPECT_EQ(arr.Pt(0).m_dX, 7.0);
    CVXCoord *pVorig = arr.GetAt(0);
    auto *pEigen = new CVXCoord(8, 8);
    arr.SetAtDir(0, pEigen); // taken over as it is; the former point is ours to delete
    EXPECT_EQ(arr.GetAt(0), pEigen);
    delete pVorig;
    arr.InsertAt(0, &p);
    arr.RemoveAt(1);
    EXPECT_EQ(Xen(arr), (std::vector<double>{99.0}));

    // Empty slots: the const reader reports and gives null, the other fills a default point.
    const CVXCoordArr leeg(3);
    EXPECT_FALSE(leeg.m_bGewijzigd);
    {
        AssertCatcher reports;
        EXPECT_EQ(leeg.GetAt(1), nullptr);
        EXPECT_TRUE(reports.Has("FALSE"));
    }
    CVXCoordArr gaten(2);
    EXPECT_EQ(gaten.GetAt(1)->nGetSectie(), 1);
    EXPECT_THROW(gaten.GetAt(2), CInvalidArgException);
    EXPECT_THROW(gaten.GetAt(-1), CInvalidArgException);
    EXPECT_NE(gaten.GetData()[0], nullptr);
}

TEST(VXCoordArrStorage, AddingAndInsertingWholeLines) {
    CVXCoordArr arr = Lijn({{0, 0, 1}, {1, 0, 0}});
    const CVXCoordArr ander = Lijn({{5, 5, 1}, {6, 6, 8}, {7, 5, 8}});
    // The point behind the seam joins straight.
    CVXCoordArr voor(arr), midden(arr), zelf(arr);
    voor.InsertAt(0, &ander);
    EXPECT_EQ(Codes(voor), (std::vector<int>{1, 8, 8, 0, 0}));
    midden.InsertAt(1, &ander);
    EXPECT_EQ(Codes(midden), (std::vector<int>{1, 0, 8, 8, 0}));
    EXPECT_EQ(midden.Pt(1).m_dX, 5.0);
    zelf.InsertAt(2, &zelf);
    EXPECT_EQ(zelf.GetSize(), 4);

    arr.Add(&ander);
    const CVXCoord a(1, 1), b(2, 2);
    const CVXCoord *const tabel[2] = {&a, &b};
    EXPECT_EQ(arr.Add(tabel, 2), 5);
    EXPECT_EQ(arr.Pt(6).m_dX, 2.0);
    AssertCatcher reports;
    const CVXCoord *const metGat[2] = {&a, nullptr};
    EXPECT_THROW(arr.Add(metGat, 2), CInvalidArgException);
    EXPECT_TRUE(reports.Has("pPunten[nI]!=NULL"));
}

TEST(VXCoordArrStorage, SizeMoveCopyAndTakeOver) {
    CVXCoordArr arr = Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}});
    arr.SetSize(3);
    arr.SetSize(4);
    EXPECT_EQ(static_cast<const CVXCoordArr &>(arr).GetData()[3], nullptr);
    EXPECT_THROW(arr.SetSize(-1), CInvalidArgException);

    // Move cuts the tail first; towards the back it copies descending.
    CVXCoordArr m = Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}});
    m.Move(0, 2, 2);
    EXPECT_EQ(Xen(m), (std::vector<double>{2, 3}));
    CVXCoordArr g = Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    g.SetSize(5);
    g.Move(2, 1, 3);
    EXPECT_EQ(Xen(g), (std::vector<double>{0, 1, 1, 2, 3}));
    CVXCoordArr c = Lijn({{0, 0, 1}, {1, 0, 0}, {2, 0, 0}});
    c.Move(1, 1, 0); // only the cut
    EXPECT_EQ(c.GetSize(), 1);

    // A copy is deep and takes the change mark over; SetCopy takes the points themselves.
    CVXCoordArr bron = Lijn({{0, 0, 1}, {1, 0, 0}});
    bron.SetUnChanged();
    CVXCoordArr kopie(bron);
    EXPECT_FALSE(kopie.m_bGewijzigd);
    EXPECT_NE(kopie.GetAt(0), bron.GetAt(0));
    CVXCoord *pEerste = bron.GetAt(0);
    CVXCoordArr neem;
    neem.SetCopy(bron);
    EXPECT_EQ(bron.GetSize(), 0);
    EXPECT_EQ(neem.GetAt(0), pEerste);
}

TEST(VXCoordArrSections, QueriesAtTheEdges) {
    const CVXCoordArr lijn =
        Lijn({{0, 0, 1}, {1, 0, 0}, {2, 1, 8}, {3, 0, 8}, {4, 1, 6}, {5, 0, 6}});
    // The guards against −1 and −2, and a negative index passing bIInLine as it stands.
    EXPECT_FALSE(lijn.bBoog(-2));
    EXPECT_FALSE(lijn.bRechte(-1));
    EXPECT_FALSE(lijn.bSpline(-1));
    EXPECT_TRUE(lijn.bIInLine(-5));
    EXPECT_FALSE(lijn.bIInLine(0));
    EXPECT_FALSE(lijn.bIInLine(6));
    EXPECT_TRUE(lijn.bRechte(0));
    EXPECT_TRUE(lijn.bBoog(1));
    EXPECT_FALSE(lijn.bBoog(4)); // no point i+2
    EXPECT_TRUE(lijn.bSpline(4));
    EXPECT_FALSE(lijn.bSpline(5));
    EXPECT_FALSE(lijn.bAlleSectiesLijn());
    EXPECT_TRUE(Lijn({{0, 0, 1}, {1, 0, 2}, {0, 0, 0}}).bAlleSectiesLijn());
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
    // Arcs in steps of two, a spline point by point; the 8s pair up by parity.
    const std::vector<std::vector<int>> verwacht = {// i, nNextLinePart, nPrevLinePart, nStartDeel
                                                    {0, 1, -1, 0}, {1, 3, 0, 0}, {3, 5, 1, 1},
                                                    {4, 6, 2, 3},  {5, 6, 3, 3}, {7, 8, 6, 5},
                                                    {8, 9, 7, 7}};
    for (const auto &r : verwacht) {
        EXPECT_EQ(lijn.nNextLinePart(r[0]), r[1]) << r[0];
        EXPECT_EQ(lijn.nPrevLinePart(r[0]), r[2]) << r[0];
        EXPECT_EQ(lijn.nStartDeel(r[0]), r[3]) << r[0];
    }
    EXPECT_EQ(lijn.nTelSplinePunten(5), 2);

    const CVXCoordArr cirkel = Lijn({{1, 0, 1}, {0, 1, 7}, {-1, 0, 7}, {1, 0, 7}});
    EXPECT_EQ(cirkel.nNextLinePart(0), 4); // past the end: every walk stops
    EXPECT_EQ(cirkel.nPrevLinePart(2), 0);
    EXPECT_EQ(cirkel.nStartDeel(2), 0);

    AssertCatcher reports;
    EXPECT_EQ(Lijn({{0, 0, 1}, {1, 0, 9}}).nStartDeel(1), 0);
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
    EXPECT_EQ(lijn.CopyIfInTol(nieuw, 2, 2, true), -1);
    EXPECT_EQ(lijn.CopyIfInTol(CVXCoord(10.0009, 0.0001, 4, 6), 0, 2, false), -1); // 2D vs 3D
    EXPECT_EQ(lijn.Pt(1).m_dX, 10.0);

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

    CVXCoordArr anders = Lijn({{20, 0, 1}, {10, 0, 0}, {5, 5, 8}, {0, 1, 8}});
    CVXCoordArr origineel = Lijn({{0, 0, 1}, {5, 5, 8}, {10, 0, 8}, {20, 0, 0}});
    EXPECT_FALSE(origineel.Gelijk(anders)); // reversed, then a difference: reversed back
    EXPECT_EQ(origineel.Pt(0).m_dX, 0.0);
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

    EXPECT_EQ(Lijn({{-1, 0, 1}, {0, 1, 8}, {1, 0, 8}}).dLijnLengte(0), pi); // clockwise: 2π − π
    EXPECT_EQ(Lijn({{0, 0, 1}, {1, 0, 8}, {3, 0, 8}}).dLijnLengte(0), 3.0); // no centre: chord
    EXPECT_EQ(Lijn({{2, 0, 1}, {0, 2, 7}, {-2, 0, 7}, {2, 0, 7}}).dLengte(), 4 * pi);
    EXPECT_EQ(Lijn({{0, 0, 1}, {3, 4, 6}, {6, 0, 6}}).dLengte(), 10.0); // spline by chords
    EXPECT_EQ(Lijn({{0, 0, 1}}).dLengte(), 0.0);

    // The inscribed angle over a half circle, seen from the circle itself, is π/2 in size.
    double dSom = 0;
    lijn.LijnHoek(1, dSom, CVXCoord(0, -1));
    EXPECT_NEAR(std::fabs(dSom), pi / 2, 1e-15);
}

TEST(VXCoordArrMeasure, AreaVolumeAndCentre) {
    const CVXCoordArr links = Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}, {0, 0, 0}});
    double opp = 0;
    CVXCoordArr rechts(links);
    rechts.DraaiRichting();
    EXPECT_TRUE(rechts.bOppervlakNoAbs(&opp));
    EXPECT_EQ(opp, -100.0);
    EXPECT_TRUE(rechts.bOppervlak(&opp));
    EXPECT_EQ(opp, 100.0);

    EXPECT_TRUE(Lijn({{2, 0, 1}, {0, 2, 7}, {-2, 0, 7}, {2, 0, 7}}).bOppervlakNoAbs(&opp));
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
    EXPECT_TRUE(m.bEqualXYZ(CVXCoord(5, 5, 7, 1)));
    Lijn({{0, 0, 1}, {3, 0, 0}, {3, 3, 0}}).ZwaartePunt(m);
    EXPECT_TRUE(m.bEqualXYZ(CVXCoord(2, 1, 7, 1)));
    CVXCoordArr().ZwaartePunt(m);
    EXPECT_TRUE(std::isnan(m.m_dX));
    Lijn({{0, 0, 1, 1}, {3, 0, 0, 2}, {3, 3, 0, 6}}).ZwaartePunt3D(m);
    EXPECT_EQ(m.m_dZ, 3.0);
    Lijn({{0, 0, 1, 1}, {3, 0, 0}, {3, 3, 0, 6}}).ZwaartePunt3D(m);
    EXPECT_TRUE(std::isnan(m.m_dZ));
}

TEST(VXCoordArrMeasure, DistanceToTheNearestFoot) {
    const CVXCoordArr lijn = Lijn({{0, 0, 1}, {10, 0, 0}, {10, 10, 0}});
    EXPECT_EQ(lijn.Dist(CVXCoord(5, 3)), 3.0);
    EXPECT_EQ(lijn.Dist(CVXCoord(13, 5)), 3.0);
    EXPECT_EQ(lijn.Dist(CVXCoord(-5, -5)), dMax); // no foot inside any stretch
    EXPECT_EQ(Lijn({{1, 0, 1}, {0, 1, 8}, {-1, 0, 8}}).Dist(CVXCoord(0, 3)), 2.0);
}

TEST(VXCoordCollections, ListsAndArraysOfPointsAndLines) {
    {
        CVXCoordList lijst;
        lijst.AddTail(new CVXCoord(1, 1));
        CVXCoordList kopie(lijst); // shares the points
        EXPECT_EQ(kopie.GetHead(), lijst.GetHead());
        lijst.RemoveAll(); // deletes the points: the copy now dangles and is only dropped
        EXPECT_EQ(kopie.GetCount(), 1);
    }
    {
        CVXCoordArrList lijnen;
        lijnen.AddTail(new CVXCoordArr(Lijn({{0, 0, 1}, {1, 1, 0}})));
    } // the destructor deletes the lines (checked by the leak sanitizer)
    CVXCoordArrArr arr;
    arr.Add(new CVXCoordArr(Lijn({{0, 0, 1}, {1, 1, 0}})));
    arr.Add(new CVXCoordArr(Lijn({{5, 5, 1}})));
    arr.Add(new CVXCoordArr(Lijn({{7, 7, 1}})));
    CVXCoordArrArr diep(arr);
    EXPECT_NE(diep.GetAt(0), arr.GetAt(0));
    diep.RemoveAt(static_cast<unsigned short>(1));
    EXPECT_EQ(diep.GetAt(1)->Pt(0).m_dX, 7.0);
    diep = arr;
    EXPECT_EQ(diep.GetSize(), 3);
}
