// The planar solver: circle through three points, arc parameters, line-line, line-circle and
// circle-circle intersections, points on stretches and the per-stretch masks. Expected values
// are worked by hand; where rounding matters, python3 evaluated the same formulas (noted).
#include "geometry/LineArc.h"
#include "geometry/VXCoordArr.h"

#include "GeometryTestUtil.h"
#include "host/Logger.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

using namespace vx;

namespace {

constexpr double pi = std::numbers::pi;

// Owns the two result points of a solver call.
struct Uitkomst {
    CVXCoord *p1 = nullptr;
    CVXCoord *p2 = nullptr;
    ~Uitkomst() {
        delete p1;
        delete p2;
    }
};

// The unit circle's upper half, counter-clockwise (sense −1), and its lower half.
const CSimpleBoog BovenBoog(CVXCoord(1, 0), CVXCoord(0, 1), CVXCoord(-1, 0));
const CSimpleBoog OnderBoog(CVXCoord(1, 0), CVXCoord(0, -1), CVXCoord(-1, 0));

// The circle of radius r about (cx, 0), given by three of its points.
CSimpleBoog Cirkel(double cx, double r) {
    return CSimpleBoog(CVXCoord(cx + r, 0), CVXCoord(cx, r), CVXCoord(cx - r, 0));
}

} // namespace

TEST(Circle, CentreThroughThreePointsAndArcParameters) {
    CVXCoord C(5, 5, 7, 1);
    ASSERT_TRUE(C.bMiddelPunt(BovenBoog));
    EXPECT_EQ(C.m_dX, 0.0);
    EXPECT_EQ(C.m_dY, 0.0);
    EXPECT_EQ(C.m_dZ, 7.0);        // Z untouched
    EXPECT_EQ(C.nGetChFlags(), 0); // flags untouched

    const CSimpleBoog recht(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(2, 0));
    CVXCoord D(5, 5);
    EXPECT_FALSE(D.bMiddelPunt(recht));
    EXPECT_EQ(D.m_dX, 5.0);

    double r = 0;
    short n = 0;
    CVXCoord M;
    EXPECT_TRUE(M.BoogPar(r, n, BovenBoog));
    EXPECT_EQ(r, 1.0);
    EXPECT_EQ(n, -1);
    EXPECT_TRUE(M.BoogPar(r, n, OnderBoog));
    EXPECT_EQ(n, 1);

    const CSimpleBoog punt(CVXCoord(1, 1), CVXCoord(1, 1), CVXCoord(1, 1));
    EXPECT_FALSE(M.BoogPar(r, n, punt));
    EXPECT_EQ(n, 0);
    EXPECT_FALSE(M.BoogPar(r, n, recht));
}

TEST(Circle, ThinAcuteOpeningsAndHugeRadiiAreRejected) {
    // A full turn almost closed: start and end 0.0002 rad apart seen from the centre, so the
    // squared sine of the (acute) opening is about 4e-8, below 1e-7.
    const double e = 0.0001;
    const CSimpleBoog bijnaRond(CVXCoord(std::cos(e), std::sin(e)), CVXCoord(-1, 0),
                                CVXCoord(std::cos(-e), std::sin(-e)));
    double r = 0;
    short n = 0;
    CVXCoord M;
    EXPECT_FALSE(M.BoogPar(r, n, bijnaRond));
    // The radius and the sense keep their values after this late failure.
    EXPECT_NEAR(r, 1.0, 1e-9);
    EXPECT_EQ(n, -1); // over the far side and back: counter-clockwise
    // 0.002 rad apart: the squared sine is 4e-6, a valid arc.
    const CSimpleBoog ruim(CVXCoord(std::cos(0.001), std::sin(0.001)), CVXCoord(-1, 0),
                           CVXCoord(std::cos(-0.001), std::sin(-0.001)));
    EXPECT_TRUE(M.BoogPar(r, n, ruim));
    // A very flat arc: the centre lies 5e229 away, beyond the square root of the largest double.
    const CSimpleBoog plat(CVXCoord(-1e80, 0), CVXCoord(0, 1e-70), CVXCoord(1e80, 0));
    EXPECT_FALSE(M.BoogPar(r, n, plat));
    EXPECT_GT(r, 1.3407807929942596e+154);
}

TEST(Circle, ArcInfoSweepFollowsTheSense) {
    const CBoogInfo boven(BovenBoog);
    ASSERT_TRUE(boven.m_bGeldig);
    EXPECT_EQ(boven.m_nRichting, -1);
    EXPECT_EQ(boven.m_dStartHoek, 0.0);
    EXPECT_EQ(boven.m_dEindHoek, pi);
    EXPECT_EQ(boven.m_dSweep, pi);
    EXPECT_EQ(boven.m_dStraal, 1.0);

    // A clockwise quarter from 12 o'clock to 3 o'clock: 2π − (0 − π/2 + 2π) = π/2.
    const CSimpleBoog kwart(CVXCoord(0, 1), CVXCoord(std::sqrt(0.5), std::sqrt(0.5)),
                            CVXCoord(1, 0));
    const CBoogInfo k(kwart);
    ASSERT_TRUE(k.m_bGeldig);
    EXPECT_EQ(k.m_nRichting, 1);
    EXPECT_NEAR(k.m_dSweep, pi / 2, 1e-15); // the centre carries rounding of order 1e-16

    CSimpleBoog rond(CVXCoord(1, 0), CVXCoord(0, 1, 7), CVXCoord(-1, 0));
    EXPECT_EQ(CBoogInfo(rond).m_dSweep, 2 * pi);

    const CBoogInfo fout(CSimpleBoog(CVXCoord(0, 0), CVXCoord(1, 1), CVXCoord(2, 2)));
    EXPECT_FALSE(fout.m_bGeldig);
    EXPECT_TRUE(std::isnan(fout.m_dSweep));
}

TEST(Circle, CopiesOfTheSmallCarriersPointAtTheirSource) {
    const CSimpleLine bron(CVXCoord(1, 2), CVXCoord(3, 4));
    const CSimpleLine kopie(bron);
    EXPECT_EQ(kopie.m_pPunten[0], bron.m_pPunten[0]);
    EXPECT_EQ(kopie.m_Punten[1].m_dY, 4.0);
    CSimpleBoog b;
    b = BovenBoog;
    EXPECT_EQ(b.m_pPunten[2], BovenBoog.m_pPunten[2]);
}

TEST(LineLine, SolvesCrossingsAndTellsParallelFromCoincident) {
    CVXCoord S(9, 9, 4, 1);
    EXPECT_EQ(S.nSnijLijn(CVXCoord(0, 0), CVXCoord(2, 2), CVXCoord(0, 2), CVXCoord(2, 0)), 1);
    EXPECT_EQ(S.m_dX, 1.0);
    EXPECT_EQ(S.m_dY, 1.0);
    EXPECT_EQ(S.m_dZ, 4.0);
    EXPECT_EQ(S.nGetChFlags(), 5);

    // det = 0, num = 1: parallel.
    CVXCoord P(9, 9);
    EXPECT_EQ(P.nSnijLijn(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(0, 1), CVXCoord(1, 1)), 0);
    // det = 0, num = 0: coincident, the point is not touched.
    EXPECT_EQ(P.nSnijLijn(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(2, 0), CVXCoord(3, 0)), 2);
    EXPECT_EQ(P.m_dX, 9.0);
    // A line of one point in coincidence gives 0.
    EXPECT_EQ(P.nSnijLijn(CVXCoord(0, 0), CVXCoord(0, 0), CVXCoord(2, 0), CVXCoord(3, 0)), 0);
    EXPECT_EQ(P.nSnijLijn(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(2, 0), CVXCoord(2, 0)), 0);

    // u = (1, −1e-9), v = (1, 0), w = (0, 1): det = −1e-9, num = 1. |det|·2^52 exceeds |num|,
    // so t = 1/−1e-9 is taken (python3: -999999999.9999999).
    CVXCoord V;
    EXPECT_EQ(V.nSnijLijn(CVXCoord(0, 0), CVXCoord(1, -1e-9), CVXCoord(0, 1), CVXCoord(1, 1)), 1);
    EXPECT_EQ(V.m_dX, -999999999.9999999);
    // det = −1e-20: |det|·2^52 is 4.5e-5, below |num|: parallel.
    CVXCoord W;
    EXPECT_EQ(W.nSnijLijn(CVXCoord(0, 0), CVXCoord(1, -1e-20), CVXCoord(0, 1), CVXCoord(1, 1)), 0);

    const CSimpleLine a(CVXCoord(0, 0), CVXCoord(2, 2)), b(CVXCoord(0, 2), CVXCoord(2, 0));
    CVXCoord T;
    EXPECT_EQ(T.nSnijLijn(a, b), 1);
    EXPECT_EQ(T.m_dY, 1.0);
}

TEST(LineCircle, TwoPointsOneTangentPointOrNone) {
    Uitkomst u;
    const CSimpleLine horizontaal(CVXCoord(-2, 0), CVXCoord(2, 0));
    ASSERT_TRUE(CVXCoord::bLijnBoogSnij(&u.p1, &u.p2, horizontaal, BovenBoog));
    ASSERT_TRUE(u.p1 && u.p2);
    EXPECT_EQ(u.p1->m_dX, -1.0);
    EXPECT_EQ(u.p1->m_dY, 0.0);
    EXPECT_EQ(u.p2->m_dX, 1.0);
    EXPECT_TRUE(std::isnan(u.p1->m_dZ));
    EXPECT_EQ(u.p1->nGetSectie(), 1);
    EXPECT_EQ(u.p1->nGetChFlags(), 7);

    // Parametrised over Y for a vertical line. python3: (0.6, −0.8) and (0.6, 0.8).
    Uitkomst v;
    const CSimpleLine verticaal(CVXCoord(0.6, -2), CVXCoord(0.6, 2));
    ASSERT_TRUE(CVXCoord::bLijnBoogSnij(&v.p1, &v.p2, verticaal, BovenBoog));
    EXPECT_EQ(v.p1->m_dX, 0.6);
    EXPECT_EQ(v.p1->m_dY, -0.8);
    EXPECT_EQ(v.p2->m_dY, 0.8);

    // A tangent with a discriminant of exactly 0 gives one point.
    Uitkomst t;
    const CSimpleLine raak(CVXCoord(-2, 1), CVXCoord(2, 1));
    ASSERT_TRUE(CVXCoord::bLijnBoogSnij(&t.p1, &t.p2, raak, BovenBoog));
    EXPECT_EQ(t.p1->m_dX, 0.0);
    EXPECT_EQ(t.p1->m_dY, 1.0);
    EXPECT_EQ(t.p2, nullptr);

    // The carrier is the whole circle: a line below the upper arc still meets it twice.
    Uitkomst o;
    const CSimpleLine onder(CVXCoord(-2, -0.5), CVXCoord(2, -0.5));
    ASSERT_TRUE(CVXCoord::bLijnBoogSnij(&o.p1, &o.p2, onder, BovenBoog));
    EXPECT_EQ(o.p1->m_dX, -0.8660254037844386); // python3: -sqrt(1 - 0.25) by the formula
    EXPECT_EQ(o.p2->m_dX, 0.8660254037844386);

    Uitkomst m;
    const CSimpleLine mis(CVXCoord(-2, 2), CVXCoord(2, 2));
    EXPECT_FALSE(CVXCoord::bLijnBoogSnij(&m.p1, &m.p2, mis, BovenBoog));
    EXPECT_EQ(m.p1, nullptr);
    EXPECT_EQ(m.p2, nullptr);

    Uitkomst g;
    const CSimpleLine punt(CVXCoord(0.5, 0.5), CVXCoord(0.5, 0.5));
    EXPECT_FALSE(CVXCoord::bLijnBoogSnij(&g.p1, &g.p2, punt, BovenBoog));
}

TEST(LineCircle, ABadArcCountsAsItsChord) {
    const CSimpleBoog recht(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(2, 0));
    Uitkomst u;
    const CSimpleLine kruis(CVXCoord(1.5, -1), CVXCoord(1.5, 1));
    ASSERT_TRUE(CVXCoord::bLijnBoogSnij(&u.p1, &u.p2, kruis, recht));
    EXPECT_EQ(u.p1->m_dX, 1.5);
    EXPECT_EQ(u.p1->m_dY, 0.0);
    EXPECT_EQ(u.p2, nullptr);
    Uitkomst v;
    const CSimpleLine evenwijdig(CVXCoord(0, 1), CVXCoord(2, 1));
    EXPECT_FALSE(CVXCoord::bLijnBoogSnij(&v.p1, &v.p2, evenwijdig, recht));
    EXPECT_EQ(v.p1, nullptr);
}

TEST(LineCircle, TheTwoSolutionFormWantsTwoPoints) {
    Uitkomst u;
    const CSimpleLine horizontaal(CVXCoord(-2, 0), CVXCoord(2, 0));
    EXPECT_TRUE(CVXCoord::bLijnBoog2Snij(&u.p1, &u.p2, horizontaal, BovenBoog));
    ASSERT_NE(u.p2, nullptr);

    // One tangent point: it is deleted and false comes back; the pointers are not to be used.
    CVXCoord *p1 = nullptr, *p2 = nullptr;
    const CSimpleLine raak(CVXCoord(-2, 1), CVXCoord(2, 1));
    EXPECT_FALSE(CVXCoord::bLijnBoog2Snij(&p1, &p2, raak, BovenBoog));
    EXPECT_EQ(p2, nullptr);
}

TEST(CircleCircle, CrossingTangentCoincidentAndApart) {
    Uitkomst u;
    // Unit circles about (0,0) and (1,0): a = 0.5, h = sqrt(0.75).
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&u.p1, &u.p2, BovenBoog, Cirkel(1, 1)), 1);
    ASSERT_TRUE(u.p1 && u.p2);
    EXPECT_EQ(u.p1->m_dX, 0.5);
    EXPECT_EQ(u.p1->m_dY, 0.8660254037844386); // python3: math.sqrt(0.75)
    EXPECT_EQ(u.p2->m_dX, 0.5);
    EXPECT_EQ(u.p2->m_dY, -0.8660254037844386);

    Uitkomst buiten;
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&buiten.p1, &buiten.p2, BovenBoog, Cirkel(2, 1)), 1);
    EXPECT_EQ(buiten.p1->m_dX, 1.0); // on the line of the centres
    EXPECT_EQ(buiten.p1->m_dY, 0.0);
    EXPECT_EQ(buiten.p2, nullptr);

    Uitkomst binnen;
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&binnen.p1, &binnen.p2, Cirkel(0, 2), Cirkel(1, 1)), 1);
    EXPECT_EQ(binnen.p1->m_dX, 2.0);
    EXPECT_EQ(binnen.p1->m_dY, 0.0);
    EXPECT_EQ(binnen.p2, nullptr);

    Uitkomst gelijk;
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&gelijk.p1, &gelijk.p2, BovenBoog, OnderBoog), 2);
    EXPECT_EQ(gelijk.p1, nullptr);
    EXPECT_EQ(gelijk.p2, nullptr);

    Uitkomst ver, erin;
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&ver.p1, &ver.p2, BovenBoog, Cirkel(5, 1)), 0);
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&erin.p1, &erin.p2, Cirkel(0, 2), Cirkel(0.1, 0.5)), 0);
    EXPECT_EQ(ver.p1, nullptr);
}

TEST(CircleCircle, BadArcsBecomeChordsAndRoundingIsReported) {
    const CSimpleBoog recht(CVXCoord(-2, 0.5), CVXCoord(0, 0.5), CVXCoord(2, 0.5));
    Uitkomst u;
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&u.p1, &u.p2, recht, BovenBoog), 1);
    EXPECT_EQ(u.p1->m_dX, -0.8660254037844386);
    Uitkomst v;
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&v.p1, &v.p2, BovenBoog, recht), 1);
    EXPECT_EQ(v.p2->m_dX, 0.8660254037844386);

    // Found by a python3 search replaying the same arithmetic: circles of radius 3.156 and
    // 0.139 whose centres lie r1 + r2 apart compute a > r1 by rounding. The message goes to
    // the log at level 3 (Info).
    vxtest::TempDir dir;
    NLogger::Initialize(CVXString(dir.path().c_str()));
    ASSERT_FALSE(NLogger::GetLogPath().IsEmpty());
    NLogger::Verbosity(NLogger::Info);
    Uitkomst w;
    const int nRes =
        CVXCoord::nBoogBoogSnij(&w.p1, &w.p2, Cirkel(0, 3.156), Cirkel(3.156 + 0.139, 0.139));
    NLogger::Verbosity(NLogger::Error);
    EXPECT_EQ(nRes, 0);
    EXPECT_EQ(w.p1, nullptr);
    const std::string pad(static_cast<const char *>(NLogger::GetLogPath()));
    NLogger::Initialize(
        CVXString(dir.path().c_str())); // the next file of the ring: the first is complete
    const std::vector<uint8_t> bytes = vxtest::ReadBytes(pad);
    const std::string log(bytes.begin(), bytes.end());
    EXPECT_NE(log.find(" Nauwkeurigheids probleem bij het berekenen van de snijpunten van 2 "
                       "bogen:    3.156,   0.000 en    3.434,   0.000\n"),
              std::string::npos)
        << log;
    SetAssertSink(nullptr);
}

TEST(CircleCircle, TheTwoSolutionFormReadsTheCodeBackwards) {
    Uitkomst u;
    EXPECT_FALSE(CVXCoord::bBoogBoog2Snij(&u.p1, &u.p2, BovenBoog, Cirkel(1, 1)));
    EXPECT_NE(u.p2, nullptr); // the solutions stay with the caller
    Uitkomst v;
    EXPECT_FALSE(CVXCoord::bBoogBoog2Snij(&v.p1, &v.p2, BovenBoog, Cirkel(5, 1)));
}

TEST(CircleCircle, CrossingOfTwoCirclesByRadiiAndTangents) {
    CVXCoord P;
    // rA = rB = 2, D = 2: the cosine at A is 0.5, the crossing lies 60° off the centre line.
    ASSERT_TRUE(P.bBogenSnijpunt(CVXCoord(0, 0), CVXCoord(2, 0), 2, 2, true));
    EXPECT_NEAR(P.m_dX, 1.0, 1e-15);
    EXPECT_NEAR(P.m_dY, -std::sqrt(3.0), 1e-15);
    ASSERT_TRUE(P.bBogenSnijpunt(CVXCoord(0, 0), CVXCoord(2, 0), 2, 2, false));
    EXPECT_NEAR(P.m_dY, std::sqrt(3.0), 1e-15);
    EXPECT_FALSE(P.bBogenSnijpunt(CVXCoord(0, 0), CVXCoord(2, 0), 0.5, 0.5, true));
    EXPECT_FALSE(P.bBogenSnijpunt(CVXCoord(0, 0), CVXCoord(0, 0), 1, 1, true));

    // A tangent of length 2 at (1, 0) on the counter-clockwise upper arc: s = −1, the angle to
    // the centre is π, so the stretch runs −2 at 3π/2, i.e. up to (1, 2).
    CVXCoord gegeven(1, 0), uit;
    CVXCoord *pp[2] = {&gegeven, &uit};
    ASSERT_TRUE(CVXCoord::bRaaklijn(pp, BovenBoog, 2.0));
    EXPECT_NEAR(uit.m_dX, 1.0, 1e-15);
    EXPECT_NEAR(uit.m_dY, 2.0, 1e-15);
    const CSimpleBoog recht(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(2, 0));
    EXPECT_FALSE(CVXCoord::bRaaklijn(pp, recht, 2.0));
}

TEST(PointOnStretch, LineSplineAndArcCodes) {
    const CSimpleLine lijn(CVXCoord(0, 0, 1, 1), CVXCoord(10, 0, 2, 8));
    const CVXCoord midden(5, 0);
    EXPECT_EQ(midden.nPuntInLine(lijn, false), 1);
    const CVXCoord bijStart(0.0004, 0), bijEind(9.9996, 0);
    EXPECT_EQ(bijStart.nPuntInLine(lijn, false), 2);
    EXPECT_EQ(bijEind.nPuntInLine(lijn, false), 3);
    EXPECT_EQ(bijStart.nPuntInLine(lijn, true), 1);
    EXPECT_EQ(CVXCoord(11, 0).nPuntInLine(lijn, false) + 0, 0);
    // No collinearity test: off the line, within the box (here: the Y ends agree).
    const CVXCoord ernaast(5, 3);
    EXPECT_EQ(ernaast.nPuntInLine(lijn, false), 1);
    const CSimpleLine schuin(CVXCoord(0, 0), CVXCoord(10, 10));
    const CVXCoord inDoos(9, 1);
    EXPECT_EQ(inDoos.nPuntInLine(schuin, false), 1);

    // The non-const form snaps on to the end it hits.
    CVXCoord snap(9.9996, 0);
    EXPECT_EQ(snap.nPuntInLine(lijn, false), 3);
    EXPECT_EQ(snap.m_dX, 10.0);
    EXPECT_EQ(snap.m_dZ, 2.0);
    EXPECT_EQ(snap.nGetSectie(), 8);

    const CVXCoord ver(50, 50);
    EXPECT_EQ(ver.nPuntInSpline(lijn, false), 1);
    EXPECT_EQ(bijStart.nPuntInSpline(lijn, false), 2);
    CVXCoord snapSpline(0.0001, 0);
    EXPECT_EQ(snapSpline.nPuntInSpline(lijn, false), 2);
    EXPECT_EQ(snapSpline.m_dZ, 1.0);
}

TEST(PointOnStretch, ArcSidesStraightArcsAndTheTwoForms) {
    const CVXCoord top(0, 1), bodem(0, -1), koorde(0.5, 0);
    EXPECT_EQ(top.nPuntInBoog(BovenBoog, false), 1);
    EXPECT_EQ(bodem.nPuntInBoog(BovenBoog, false), 0);
    EXPECT_EQ(koorde.nPuntInBoog(BovenBoog, false), 1); // on the chord: sense 0
    EXPECT_EQ(CVXCoord(1.0003, 0).nPuntInBoog(BovenBoog, false), 2);
    EXPECT_EQ(CVXCoord(-1, 0.0001).nPuntInBoog(BovenBoog, false), 3);
    CVXCoord snap(-1, 0.0001);
    EXPECT_EQ(snap.nPuntInBoog(BovenBoog, false), 3);
    EXPECT_EQ(snap.m_dY, 0.0);

    const CSimpleBoog recht(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(2, 0));
    EXPECT_EQ(CVXCoord(1.5, 0).nPuntInBoog(recht, true), 1);
    EXPECT_EQ(CVXCoord(3, 0).nPuntInBoog(recht, true), 0);

    // An almost closed turn: BoogPar rejects it, its sense is −1. The const form takes it as
    // two straight halves (start–support, support–end), the other by its sense.
    const double e = 0.0001;
    const CSimpleBoog bijnaRond(CVXCoord(std::cos(e), std::sin(e)), CVXCoord(-1, 0),
                                CVXCoord(std::cos(-e), std::sin(-e)));
    const CVXCoord bovenop(0, 1);
    EXPECT_EQ(bovenop.nPuntInBoog(bijnaRond, false), 0);
    CVXCoord bovenop2(0, 1);
    EXPECT_EQ(bovenop2.nPuntInBoog(bijnaRond, false), 1);
}

TEST(PointOnStretch, ModesDecideAboutTheEnds) {
    const CVXCoordArr lijn = vxtest::Lijn({{0, 0, 1}, {10, 0, 0}});
    const CVXCoord eind(10, 0), midden(5, 0), buiten(12, 0);
    EXPECT_TRUE(lijn.bPuntInLijnDeel(eind, 0, CVXCoordArr::nMetEinden));
    EXPECT_FALSE(lijn.bPuntInLijnDeel(eind, 0, CVXCoordArr::nZonderEinden));
    EXPECT_TRUE(lijn.bPuntInLijnDeel(eind, 0, CVXCoordArr::nGeenEinden));
    EXPECT_TRUE(lijn.bPuntInLijnDeel(midden, 0));
    EXPECT_TRUE(lijn.bPuntInLijnDeel(midden, 0, CVXCoordArr::nZonderEinden));
    EXPECT_FALSE(lijn.bPuntInLijnDeel(buiten, 0));

    const CVXCoordArr cirkel = vxtest::Lijn({{1, 0, 1}, {0, 1, 7}, {-1, 0, 7}, {1, 0, 7}});
    EXPECT_TRUE(cirkel.bPuntInLijnDeel(CVXCoord(100, 100), 0, CVXCoordArr::nZonderEinden));

    const CVXCoordArr boog = vxtest::Lijn({{1, 0, 1}, {0, 1, 8}, {-1, 0, 8}});
    EXPECT_TRUE(boog.bPuntInLijnDeel(CVXCoord(0, 1), 0));
    EXPECT_FALSE(boog.bPuntInLijnDeel(CVXCoord(0, -1), 0));
    EXPECT_FALSE(boog.bPuntInLijnDeel(CVXCoord(-1, 0), 0, CVXCoordArr::nZonderEinden));

    const CVXCoordArr spline = vxtest::Lijn({{0, 0, 1}, {1, 1, 6}, {2, 0, 6}});
    EXPECT_TRUE(spline.bPuntInLijnDeel(CVXCoord(40, 40), 0));
}

TEST(StretchIntersection, MasksTellWhichStretchHoldsWhichSolution) {
    const CVXCoordArr a = vxtest::Lijn({{0, 0, 1}, {10, 0, 0}});
    const CVXCoordArr kruis = vxtest::Lijn({{5, -5, 1}, {5, 5, 0}});
    const CVXCoordArr verweg = vxtest::Lijn({{20, -5, 1}, {20, 5, 0}});
    Uitkomst u;
    EXPECT_EQ(a.nSnijInLijnDeel(&u.p1, &u.p2, kruis, 0, 0, true), 5);
    EXPECT_EQ(u.p1->m_dX, 5.0);
    Uitkomst v;
    EXPECT_EQ(a.nSnijInLijnDeel(&v.p1, &v.p2, kruis, 0, 0, false), 1);
    // The carriers cross outside this stretch: the point stays with the caller.
    Uitkomst w;
    EXPECT_EQ(a.nSnijInLijnDeel(&w.p1, &w.p2, verweg, 0, 0, true), 4);
    ASSERT_NE(w.p1, nullptr);
    EXPECT_EQ(w.p1->m_dX, 20.0);
    Uitkomst x;
    EXPECT_EQ(a.nSnijInLijnDeel(&x.p1, &x.p2, verweg, 0, 0, false), 0);
    EXPECT_NE(x.p1, nullptr);

    // A stretch shorter than the point tolerance is not intersected at all.
    const CVXCoordArr kort = vxtest::Lijn({{5, 0, 1}, {5, 0.0004, 0}});
    Uitkomst k;
    EXPECT_EQ(a.nSnij(&k.p1, &k.p2, kort, 0, 0), 0);
    EXPECT_EQ(k.p1, nullptr);

    // Line and arc: y = 0.5 meets the upper arc twice inside both, the lower arc not at all.
    const CVXCoordArr lijn = vxtest::Lijn({{-2, 0.5, 1}, {2, 0.5, 0}});
    const CVXCoordArr boven = vxtest::Lijn({{1, 0, 1}, {0, 1, 8}, {-1, 0, 8}});
    const CVXCoordArr onder = vxtest::Lijn({{1, 0, 1}, {0, -1, 8}, {-1, 0, 8}});
    Uitkomst l1, l2, l3;
    EXPECT_EQ(lijn.nSnijInLijnDeel(&l1.p1, &l1.p2, boven, 0, 0, true), 15);
    EXPECT_EQ(lijn.nSnijInLijnDeel(&l2.p1, &l2.p2, onder, 0, 0, true), 3);
    EXPECT_EQ(boven.nSnijInLijnDeel(&l3.p1, &l3.p2, lijn, 0, 0, true), 15);
    // Two arcs of crossing circles.
    Uitkomst b;
    const CVXCoordArr rechts = vxtest::Lijn({{2, 0, 1}, {1, 1, 8}, {0, 0, 8}});
    EXPECT_EQ(boven.nSnijInLijnDeel(&b.p1, &b.p2, rechts, 0, 0, true), 1 | 4);
    EXPECT_EQ(b.p1->m_dX, 0.5);
}

TEST(StretchIntersection, CoincidentCarriersGiveTheirOverlap) {
    const CVXCoordArr a = vxtest::Lijn({{0, 0, 1}, {10, 0, 0}});
    Uitkomst u;
    const CVXCoordArr deels = vxtest::Lijn({{5, 0, 1}, {15, 0, 0}});
    EXPECT_EQ(a.nSnijInLijnDeel(&u.p1, &u.p2, deels, 0, 0, true), 15);
    EXPECT_EQ(u.p1->m_dX, 5.0);
    EXPECT_EQ(u.p2->m_dX, 10.0);

    // One touching point: without ends only the other's start lies inside.
    Uitkomst t;
    const CVXCoordArr staart = vxtest::Lijn({{5, 0, 1}, {10, 0, 0}});
    EXPECT_EQ(a.nSnijInLijnDeel(&t.p1, &t.p2, staart, 0, 0, true, CVXCoordArr::nZonderEinden), 5);
    EXPECT_EQ(t.p1->m_dX, 5.0);
    EXPECT_EQ(t.p2, nullptr);

    // This start is not taken twice: it is already the first point.
    Uitkomst d;
    const CVXCoordArr terug = vxtest::Lijn({{0, 0, 1}, {-5, 0, 0}});
    EXPECT_EQ(a.nSnijInLijnDeel(&d.p1, &d.p2, terug, 0, 0, true), 5);
    EXPECT_EQ(d.p1->m_dX, 0.0);
    EXPECT_EQ(d.p2, nullptr);

    Uitkomst n;
    const CVXCoordArr los = vxtest::Lijn({{20, 0, 1}, {30, 0, 0}});
    EXPECT_EQ(a.nSnijInLijnDeel(&n.p1, &n.p2, los, 0, 0, true), 0);
    EXPECT_EQ(n.p1, nullptr);
    EXPECT_EQ(n.p2, nullptr);

    // Circle and an arc of the same circle: the arc's ends.
    const CVXCoordArr cirkel = vxtest::Lijn({{1, 0, 1}, {0, 1, 7}, {-1, 0, 7}, {1, 0, 7}});
    const CVXCoordArr boog = vxtest::Lijn({{0, -1, 1}, {1, 0, 8}, {0, 1, 8}});
    Uitkomst c;
    EXPECT_EQ(cirkel.nSnijInLijnDeel(&c.p1, &c.p2, boog, 0, 0, true), 15);
    EXPECT_EQ(c.p1->m_dY, -1.0);
    EXPECT_EQ(c.p2->m_dY, 1.0);
    Uitkomst c2;
    EXPECT_EQ(boog.nSnijInLijnDeel(&c2.p1, &c2.p2, cirkel, 0, 0, true), 15);
    EXPECT_EQ(c2.p1->m_dY, -1.0);
    Uitkomst cc;
    EXPECT_EQ(cirkel.nSnij(&cc.p1, &cc.p2, cirkel, 0, 0), 2);
    EXPECT_EQ(cirkel.nSnijInLijnDeel(&cc.p1, &cc.p2, cirkel, 0, 0, true), 0);
    EXPECT_EQ(cc.p1, nullptr);
}
