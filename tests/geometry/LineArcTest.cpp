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
using vxtest::Lijn;

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
// Three collinear points: no centre.
const CSimpleBoog RechteBoog(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(2, 0));

// bLijnBoogSnij of the line from a to b with an arc, the solutions into u.
bool bLijnBoog(Uitkomst &u, const CVXCoord &a, const CVXCoord &b,
               const CSimpleBoog &boog = BovenBoog) {
    return CVXCoord::bLijnBoogSnij(&u.p1, &u.p2, CSimpleLine(a, b), boog);
}

// nSnijInLijnDeel of stretch 0 of both lines, with ends, the solutions into u.
int nMasker(Uitkomst &u, const CVXCoordArr &hier, const CVXCoordArr &daar, bool bBeide = true) {
    return hier.nSnijInLijnDeel(&u.p1, &u.p2, daar, 0, 0, bBeide);
}

// The circle of radius r about (cx, 0), given by three of its points.
CSimpleBoog Cirkel(double cx, double r) {
    return CSimpleBoog(CVXCoord(cx + r, 0), CVXCoord(cx, r), CVXCoord(cx - r, 0));
}

// An almost closed turn: start and end 2e rad apart seen from the centre, over (−1, 0).
CSimpleBoog BijnaRond(double e) {
    return CSimpleBoog(CVXCoord(std::cos(e), std::sin(e)), CVXCoord(-1, 0),
                       CVXCoord(std::cos(-e), std::sin(-e)));
}

} // namespace

TEST(Circle, CentreThroughThreePointsAndArcParameters) {
    // The centre is written as X and Y only: Z and flags stay; a failure writes nothing.
    CVXCoord C(5, 5, 7, 1);
    ASSERT_TRUE(C.bMiddelPunt(BovenBoog));
    EXPECT_TRUE(C.bEqualXYZ(CVXCoord(0, 0, 7, 1)));
    EXPECT_EQ(C.nGetChFlags(), 0);
    EXPECT_FALSE(C.bMiddelPunt(RechteBoog));
    EXPECT_EQ(C.m_dX, 0.0);

    double r = 0;
    short n = 0;
    CVXCoord M;
    EXPECT_TRUE(M.BoogPar(r, n, BovenBoog));
    EXPECT_EQ(r, 1.0);
    EXPECT_EQ(n, -1);
    EXPECT_TRUE(M.BoogPar(r, n, OnderBoog));
    EXPECT_EQ(n, 1);
    EXPECT_FALSE(M.BoogPar(r, n, CSimpleBoog(CVXCoord(1, 1), CVXCoord(1, 1), CVXCoord(1, 1))));
    EXPECT_EQ(n, 0);
}

TEST(Circle, ThinAcuteOpeningsAndHugeRadiiAreRejected) {
    // 0.0002 rad apart: the squared sine of the (acute) opening is about 4e-8, below 1e-7. The
    // radius and the sense keep their values after this late failure.
    double r = 0;
    short n = 0;
    CVXCoord M;
    EXPECT_FALSE(M.BoogPar(r, n, BijnaRond(0.0001)));
    EXPECT_NEAR(r, 1.0, 1e-9);
    EXPECT_EQ(n, -1); // over the far side and back: counter-clockwise
    // 0.002 rad apart: the squared sine is 4e-6, a valid arc.
    EXPECT_TRUE(M.BoogPar(r, n, BijnaRond(0.001)));
    // A very flat arc: the centre lies 5e229 away, beyond the square root of the largest double.
    const CSimpleBoog plat(CVXCoord(-1e80, 0), CVXCoord(0, 1e-70), CVXCoord(1e80, 0));
    EXPECT_FALSE(M.BoogPar(r, n, plat));
    EXPECT_GT(r, 1.3407807929942596e+154);
}

TEST(Circle, ArcInfoSweepFollowsTheSense) {
    const CBoogInfo boven(BovenBoog);
    ASSERT_TRUE(boven.m_bGeldig);
    EXPECT_EQ(boven.m_dEindHoek, pi);
    EXPECT_EQ(boven.m_dSweep, pi);
    // A clockwise quarter from 12 o'clock to 3 o'clock: 2π − (0 − π/2 + 2π) = π/2.
    const CBoogInfo k(
        CSimpleBoog(CVXCoord(0, 1), CVXCoord(std::sqrt(0.5), std::sqrt(0.5)), CVXCoord(1, 0)));
    EXPECT_EQ(k.m_nRichting, 1);
    EXPECT_NEAR(k.m_dSweep, pi / 2, 1e-15); // the centre carries rounding of order 1e-16
    // A support point with a height makes the sweep a full turn.
    EXPECT_EQ(CBoogInfo(CSimpleBoog(CVXCoord(1, 0), CVXCoord(0, 1, 7), CVXCoord(-1, 0))).m_dSweep,
              2 * pi);
    const CBoogInfo fout(RechteBoog);
    EXPECT_FALSE(fout.m_bGeldig);
    EXPECT_TRUE(std::isnan(fout.m_dSweep));
    // Copies of the small carriers point at their source.
    CSimpleBoog b;
    b = BovenBoog;
    EXPECT_EQ(b.m_pPunten[2], BovenBoog.m_pPunten[2]);
}

TEST(LineLine, SolvesCrossingsAndTellsParallelFromCoincident) {
    CVXCoord S(9, 9, 4, 1);
    EXPECT_EQ(S.nSnijLijn(CVXCoord(0, 0), CVXCoord(2, 2), CVXCoord(0, 2), CVXCoord(2, 0)), 1);
    EXPECT_TRUE(S.bEqualXYZ(CVXCoord(1, 1, 4, 1)));
    EXPECT_EQ(S.nGetChFlags(), 5);
    // det = 0, num = 1: parallel. det = 0, num = 0: coincident, the point is not touched. A
    // line of one point in coincidence gives 0.
    CVXCoord P(9, 9);
    EXPECT_EQ(P.nSnijLijn(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(0, 1), CVXCoord(1, 1)), 0);
    EXPECT_EQ(P.nSnijLijn(CVXCoord(0, 0), CVXCoord(1, 0), CVXCoord(2, 0), CVXCoord(3, 0)), 2);
    EXPECT_EQ(P.m_dX, 9.0);
    EXPECT_EQ(P.nSnijLijn(CVXCoord(0, 0), CVXCoord(0, 0), CVXCoord(2, 0), CVXCoord(3, 0)), 0);
    // u = (1, −1e-9), v = (1, 0), w = (0, 1): det = −1e-9, num = 1. |det|·2^52 exceeds |num|,
    // so t = 1/−1e-9 is taken (python3: -999999999.9999999). With det = −1e-20, |det|·2^52 is
    // 4.5e-5, below |num|: parallel.
    EXPECT_EQ(P.nSnijLijn(CVXCoord(0, 0), CVXCoord(1, -1e-9), CVXCoord(0, 1), CVXCoord(1, 1)), 1);
    EXPECT_EQ(P.m_dX, -999999999.9999999);
    EXPECT_EQ(P.nSnijLijn(CVXCoord(0, 0), CVXCoord(1, -1e-20), CVXCoord(0, 1), CVXCoord(1, 1)), 0);
}

TEST(LineCircle, TwoPointsOneTangentPointOrNone) {
    Uitkomst u;
    ASSERT_TRUE(bLijnBoog(u, CVXCoord(-2, 0), CVXCoord(2, 0)));
    ASSERT_TRUE(u.p1 && u.p2);
    EXPECT_TRUE(u.p1->bEqualXYZ(CVXCoord(-1, 0)));
    EXPECT_EQ(u.p2->m_dX, 1.0);
    EXPECT_EQ(u.p1->nGetChFlags(), 7);

    // Parametrised over Y for a vertical line. python3: (0.6, −0.8) and (0.6, 0.8).
    Uitkomst v;
    ASSERT_TRUE(bLijnBoog(v, CVXCoord(0.6, -2), CVXCoord(0.6, 2)));
    EXPECT_TRUE(v.p1->bEqualXYZ(CVXCoord(0.6, -0.8)));
    EXPECT_EQ(v.p2->m_dY, 0.8);

    // A tangent with a discriminant of exactly 0 gives one point.
    Uitkomst t;
    ASSERT_TRUE(bLijnBoog(t, CVXCoord(-2, 1), CVXCoord(2, 1)));
    EXPECT_TRUE(t.p1->bEqualXYZ(CVXCoord(0, 1)));
    EXPECT_EQ(t.p2, nullptr);

    // The carrier is the whole circle: a line below the upper arc still meets it twice.
    Uitkomst o;
    ASSERT_TRUE(bLijnBoog(o, CVXCoord(-2, -0.5), CVXCoord(2, -0.5)));
    EXPECT_EQ(o.p1->m_dX, -0.8660254037844386); // python3: -sqrt(1 - 0.25) by the formula

    Uitkomst m, g;
    EXPECT_FALSE(bLijnBoog(m, CVXCoord(-2, 2), CVXCoord(2, 2)));
    EXPECT_EQ(m.p1, nullptr);
    EXPECT_FALSE(bLijnBoog(g, CVXCoord(0.5, 0.5), CVXCoord(0.5, 0.5)));

    // A bad arc counts as its chord.
    Uitkomst k, e;
    ASSERT_TRUE(bLijnBoog(k, CVXCoord(1.5, -1), CVXCoord(1.5, 1), RechteBoog));
    EXPECT_TRUE(k.p1->bEqualXYZ(CVXCoord(1.5, 0)));
    EXPECT_EQ(k.p2, nullptr);
    EXPECT_FALSE(bLijnBoog(e, CVXCoord(0, 1), CVXCoord(2, 1), RechteBoog));

    // The two-solution form: one tangent point is deleted and false comes back.
    Uitkomst twee;
    EXPECT_TRUE(CVXCoord::bLijnBoog2Snij(&twee.p1, &twee.p2,
                                         CSimpleLine(CVXCoord(-2, 0), CVXCoord(2, 0)), BovenBoog));
    CVXCoord *p1 = nullptr, *p2 = nullptr;
    EXPECT_FALSE(CVXCoord::bLijnBoog2Snij(&p1, &p2, CSimpleLine(CVXCoord(-2, 1), CVXCoord(2, 1)),
                                          BovenBoog));
    EXPECT_EQ(p2, nullptr);
}

TEST(CircleCircle, CrossingTangentCoincidentAndApart) {
    Uitkomst u;
    // Unit circles about (0,0) and (1,0): a = 0.5, h = sqrt(0.75).
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&u.p1, &u.p2, BovenBoog, Cirkel(1, 1)), 1);
    ASSERT_TRUE(u.p1 && u.p2);
    EXPECT_TRUE(u.p1->bEqualXYZ(CVXCoord(0.5, 0.8660254037844386))); // python3: math.sqrt(0.75)
    EXPECT_TRUE(u.p2->bEqualXYZ(CVXCoord(0.5, -0.8660254037844386)));

    // Touching outside and inside: one point on the line of the centres.
    Uitkomst buiten, binnen;
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&buiten.p1, &buiten.p2, BovenBoog, Cirkel(2, 1)), 1);
    EXPECT_TRUE(buiten.p1->bEqualXYZ(CVXCoord(1, 0)));
    EXPECT_EQ(buiten.p2, nullptr);
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&binnen.p1, &binnen.p2, Cirkel(0, 2), Cirkel(1, 1)), 1);
    EXPECT_TRUE(binnen.p1->bEqualXYZ(CVXCoord(2, 0)));

    Uitkomst gelijk, ver, erin;
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&gelijk.p1, &gelijk.p2, BovenBoog, OnderBoog), 2);
    EXPECT_EQ(gelijk.p1, nullptr);
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&ver.p1, &ver.p2, BovenBoog, Cirkel(5, 1)), 0);
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&erin.p1, &erin.p2, Cirkel(0, 2), Cirkel(0.1, 0.5)), 0);

    // The two-solution form reads the code backwards; the solutions stay with the caller.
    Uitkomst w;
    EXPECT_FALSE(CVXCoord::bBoogBoog2Snij(&w.p1, &w.p2, BovenBoog, Cirkel(1, 1)));
    EXPECT_NE(w.p2, nullptr);
}

TEST(CircleCircle, BadArcsBecomeChordsAndRoundingIsReported) {
    const CSimpleBoog recht(CVXCoord(-2, 0.5), CVXCoord(0, 0.5), CVXCoord(2, 0.5));
    Uitkomst u, v;
    EXPECT_EQ(CVXCoord::nBoogBoogSnij(&u.p1, &u.p2, recht, BovenBoog), 1);
    EXPECT_EQ(u.p1->m_dX, -0.8660254037844386);
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
    EXPECT_FALSE(CVXCoord::bRaaklijn(pp, RechteBoog, 2.0));
}

TEST(PointOnStretch, LineSplineAndArcCodes) {
    // Codes: 0 outside, 1 inside, 2 on the start, 3 on the end (within 0.0005).
    const CSimpleLine lijn(CVXCoord(0, 0, 1, 1), CVXCoord(10, 0, 2, 8));
    const CVXCoord bijStart(0.0004, 0);
    EXPECT_EQ(CVXCoord(5, 0).nPuntInLine(lijn, false), 1);
    EXPECT_EQ(bijStart.nPuntInLine(lijn, false), 2);
    EXPECT_EQ(CVXCoord(9.9996, 0).nPuntInLine(lijn, false), 3);
    EXPECT_EQ(bijStart.nPuntInLine(lijn, true), 1);
    EXPECT_EQ(CVXCoord(11, 0).nPuntInLine(lijn, false), 0);
    // No collinearity test: off the line, within the box.
    EXPECT_EQ(CVXCoord(5, 3).nPuntInLine(lijn, false), 1);
    // The non-const form snaps on to the end it hits, taking all of it.
    CVXCoord snap(9.9996, 0);
    EXPECT_EQ(snap.nPuntInLine(lijn, false), 3);
    EXPECT_TRUE(snap.bEqualXYZ(CVXCoord(10, 0, 2, 8)));
    EXPECT_EQ(snap.nGetSectie(), 8);
    // A spline claims every point that is not an end.
    EXPECT_EQ(CVXCoord(50, 50).nPuntInSpline(lijn, false), 1);
    CVXCoord snapSpline(0.0001, 0);
    EXPECT_EQ(snapSpline.nPuntInSpline(lijn, false), 2);
    EXPECT_EQ(snapSpline.m_dZ, 1.0);

    EXPECT_EQ(CVXCoord(0, 1).nPuntInBoog(BovenBoog, false), 1);
    EXPECT_EQ(CVXCoord(0, -1).nPuntInBoog(BovenBoog, false), 0);
    EXPECT_EQ(CVXCoord(0.5, 0).nPuntInBoog(BovenBoog, false), 1); // on the chord: sense 0
    EXPECT_EQ(CVXCoord(1.0003, 0).nPuntInBoog(BovenBoog, false), 2);
    CVXCoord snapBoog(-1, 0.0001);
    EXPECT_EQ(snapBoog.nPuntInBoog(BovenBoog, false), 3);
    EXPECT_EQ(snapBoog.m_dY, 0.0);
    EXPECT_EQ(CVXCoord(1.5, 0).nPuntInBoog(RechteBoog, true), 1);
    EXPECT_EQ(CVXCoord(3, 0).nPuntInBoog(RechteBoog, true), 0);
    // An almost closed turn: BoogPar rejects it, its sense is −1. The const form takes it as
    // two straight halves (start–support, support–end), the other by its sense.
    const CVXCoord bovenop(0, 1);
    EXPECT_EQ(bovenop.nPuntInBoog(BijnaRond(0.0001), false), 0);
    CVXCoord bovenop2(0, 1);
    EXPECT_EQ(bovenop2.nPuntInBoog(BijnaRond(0.0001), false), 1);
}

TEST(PointOnStretch, ModesDecideAboutTheEnds) {
    const CVXCoordArr lijn = Lijn({{0, 0, 1}, {10, 0, 0}});
    const CVXCoord eind(10, 0);
    EXPECT_TRUE(lijn.bPuntInLijnDeel(eind, 0, CVXCoordArr::nMetEinden));
    EXPECT_FALSE(lijn.bPuntInLijnDeel(eind, 0, CVXCoordArr::nZonderEinden));
    EXPECT_TRUE(lijn.bPuntInLijnDeel(eind, 0, CVXCoordArr::nGeenEinden));
    EXPECT_TRUE(lijn.bPuntInLijnDeel(CVXCoord(5, 0), 0, CVXCoordArr::nZonderEinden));
    EXPECT_FALSE(lijn.bPuntInLijnDeel(CVXCoord(12, 0), 0));
    // A circle holds every point; an arc only its own side.
    const CVXCoordArr cirkel = Lijn({{1, 0, 1}, {0, 1, 7}, {-1, 0, 7}, {1, 0, 7}});
    EXPECT_TRUE(cirkel.bPuntInLijnDeel(CVXCoord(100, 100), 0, CVXCoordArr::nZonderEinden));
    const CVXCoordArr boog = Lijn({{1, 0, 1}, {0, 1, 8}, {-1, 0, 8}});
    EXPECT_TRUE(boog.bPuntInLijnDeel(CVXCoord(0, 1), 0));
    EXPECT_FALSE(boog.bPuntInLijnDeel(CVXCoord(0, -1), 0));
    EXPECT_FALSE(boog.bPuntInLijnDeel(CVXCoord(-1, 0), 0, CVXCoordArr::nZonderEinden));
}

TEST(StretchIntersection, MasksTellWhichStretchHoldsWhichSolution) {
    // Mask bits: 1 and 2 for solutions on this stretch, 4 and 8 on the other.
    const CVXCoordArr a = Lijn({{0, 0, 1}, {10, 0, 0}});
    const CVXCoordArr kruis = Lijn({{5, -5, 1}, {5, 5, 0}});
    const CVXCoordArr verweg = Lijn({{20, -5, 1}, {20, 5, 0}});
    Uitkomst u, v, w, x;
    EXPECT_EQ(nMasker(u, a, kruis), 5);
    EXPECT_EQ(u.p1->m_dX, 5.0);
    EXPECT_EQ(nMasker(v, a, kruis, false), 1);
    // The carriers cross outside this stretch: the point stays with the caller.
    EXPECT_EQ(nMasker(w, a, verweg), 4);
    ASSERT_NE(w.p1, nullptr);
    EXPECT_EQ(w.p1->m_dX, 20.0);
    EXPECT_EQ(nMasker(x, a, verweg, false), 0);
    EXPECT_NE(x.p1, nullptr);

    // A stretch shorter than the point tolerance is not intersected at all.
    Uitkomst k;
    EXPECT_EQ(a.nSnij(&k.p1, &k.p2, Lijn({{5, 0, 1}, {5, 0.0004, 0}}), 0, 0), 0);
    EXPECT_EQ(k.p1, nullptr);

    // Line and arc: y = 0.5 meets the upper arc twice inside both, the lower arc not at all.
    const CVXCoordArr lijn = Lijn({{-2, 0.5, 1}, {2, 0.5, 0}});
    const CVXCoordArr boven = Lijn({{1, 0, 1}, {0, 1, 8}, {-1, 0, 8}});
    const CVXCoordArr onder = Lijn({{1, 0, 1}, {0, -1, 8}, {-1, 0, 8}});
    Uitkomst l1, l2, l3, b;
    EXPECT_EQ(nMasker(l1, lijn, boven), 15);
    EXPECT_EQ(nMasker(l2, lijn, onder), 3);
    EXPECT_EQ(nMasker(l3, boven, lijn), 15);
    // Two arcs of crossing circles.
    const CVXCoordArr rechts = Lijn({{2, 0, 1}, {1, 1, 8}, {0, 0, 8}});
    EXPECT_EQ(nMasker(b, boven, rechts), 1 | 4);
    EXPECT_EQ(b.p1->m_dX, 0.5);
}

TEST(StretchIntersection, CoincidentCarriersGiveTheirOverlap) {
    const CVXCoordArr a = Lijn({{0, 0, 1}, {10, 0, 0}});
    Uitkomst u, t, d, n;
    EXPECT_EQ(nMasker(u, a, Lijn({{5, 0, 1}, {15, 0, 0}})), 15);
    EXPECT_EQ(u.p1->m_dX, 5.0);
    EXPECT_EQ(u.p2->m_dX, 10.0);
    // One touching point: without ends only the other's start lies inside.
    EXPECT_EQ(a.nSnijInLijnDeel(&t.p1, &t.p2, Lijn({{5, 0, 1}, {10, 0, 0}}), 0, 0, true,
                                CVXCoordArr::nZonderEinden),
              5);
    EXPECT_EQ(t.p1->m_dX, 5.0);
    EXPECT_EQ(t.p2, nullptr);
    // This start is not taken twice: it is already the first point.
    EXPECT_EQ(nMasker(d, a, Lijn({{0, 0, 1}, {-5, 0, 0}})), 5);
    EXPECT_EQ(d.p1->m_dX, 0.0);
    EXPECT_EQ(d.p2, nullptr);
    EXPECT_EQ(nMasker(n, a, Lijn({{20, 0, 1}, {30, 0, 0}})), 0);
    EXPECT_EQ(n.p1, nullptr);

    // Circle and an arc of the same circle: the arc's ends, either way round.
    const CVXCoordArr cirkel = Lijn({{1, 0, 1}, {0, 1, 7}, {-1, 0, 7}, {1, 0, 7}});
    const CVXCoordArr boog = Lijn({{0, -1, 1}, {1, 0, 8}, {0, 1, 8}});
    Uitkomst c, c2, cc;
    EXPECT_EQ(nMasker(c, cirkel, boog), 15);
    EXPECT_EQ(c.p1->m_dY, -1.0);
    EXPECT_EQ(c.p2->m_dY, 1.0);
    EXPECT_EQ(nMasker(c2, boog, cirkel), 15);
    EXPECT_EQ(c2.p1->m_dY, -1.0);
    EXPECT_EQ(cirkel.nSnij(&cc.p1, &cc.p2, cirkel, 0, 0), 2);
    EXPECT_EQ(nMasker(cc, cirkel, cirkel), 0);
    EXPECT_EQ(cc.p1, nullptr);
}
