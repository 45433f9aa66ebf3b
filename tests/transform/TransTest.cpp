#include "transform/Trans.h"

#include "geometry/Extents.h"
#include "geometry/VXCoord.h"
#include "persist/ArchiveX.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <numbers>

using namespace vx;

namespace {

CTrans Matrix(double a, double b, double c, double d, double e, double f) {
    CTrans t;
    t.Evalueer(a, b, c, d, e, f);
    return t;
}

void ExpectMatrix(const CTrans &t, double a, double b, double c, double d, double e, double f) {
    EXPECT_EQ(t.dMatrix00, a);
    EXPECT_EQ(t.dMatrix01, b);
    EXPECT_EQ(t.dMatrix02, c);
    EXPECT_EQ(t.dMatrix10, d);
    EXPECT_EQ(t.dMatrix11, e);
    EXPECT_EQ(t.dMatrix12, f);
}

// Four points with integer coordinates and the centroid (4, 3): every sum of a fit is an exact
// integer, so a fit that recovers integer parameters recovers them exactly.
const CVXCoord kVan[4] = {CVXCoord(0, 0), CVXCoord(10, 0), CVXCoord(0, 10), CVXCoord(6, 2)};

struct Paren {
    CVXCoord naar[4];
    const CVXCoord *from[4] = {&kVan[0], &kVan[1], &kVan[2], &kVan[3]};
    const CVXCoord *to[4] = {&naar[0], &naar[1], &naar[2], &naar[3]};
    explicit Paren(const CTrans &t) {
        for (int i = 0; i < 4; ++i)
            naar[i] =
                CVXCoord(t.dMatrix00 * kVan[i].m_dX + t.dMatrix01 * kVan[i].m_dY + t.dMatrix02,
                         t.dMatrix10 * kVan[i].m_dX + t.dMatrix11 * kVan[i].m_dY + t.dMatrix12);
    }
};

} // namespace

TEST(Trans, ExplicitFormsAndTheHeightShift) {
    CTrans t;
    EXPECT_TRUE(t.bIdentity());
    EXPECT_TRUE(std::isnan(t.m_dZShift));

    t.m_dZShift = 4.0;
    t.Evalueer(CVXCoord(10, 20), CVXCoord(100, 200), 0.0, 2.0, 3.0);
    ExpectMatrix(t, 2, -0.0, 80, 0, 3, 140); // 100 − 2·10, 200 − 3·20
    EXPECT_EQ(t.m_dZShift, 4.0);             // the forms with scales keep it
    EXPECT_EQ(t.dGetValue(0, 2), 80.0);
    EXPECT_EQ(t.dGetValue(1, 1), 3.0);
    EXPECT_TRUE(std::isnan(t.dGetValue(2, 0)));

    t.EvalueerSpeciaal(CVXCoord(5, 6, 7, 1), 0.5, 3.0);
    EXPECT_NEAR(t.dGetRotatie(), 0.5, 1e-15); // atan2 of cos and sin: rounding only
    EXPECT_NEAR(t.dGetXSchaal(), 3.0, 1e-15);
    EXPECT_NEAR(t.dGetXYAngle(), std::numbers::pi / 2, 1e-12); // acos near 0: 1e-12 rounding
    EXPECT_EQ(t.dMatrix02, 5.0);
    EXPECT_EQ(t.dMatrix12, 6.0);

    t.EvalueerSpeciaal(CVXCoord(5, 6, 7, 1), true);
    ExpectMatrix(t, 1, 0, 5, 0, 1, 6);
    EXPECT_EQ(t.m_dZShift, 7.0);
    t.EvalueerSpeciaal();
    EXPECT_TRUE(t.bIdentity());
    EXPECT_TRUE(std::isnan(t.m_dZShift));

    // Scaling multiplies whole rows, shifts included; mirroring negates the cross terms only.
    CTrans s = Matrix(1, 2, 3, 4, 5, 6);
    s.VerschaalXY(2, 10);
    ExpectMatrix(s, 2, 4, 6, 40, 50, 60);
    s.MirrorHor();
    ExpectMatrix(s, 2, -4, 6, -40, 50, 60);
    s.SetShift(-1, -2);
    ExpectMatrix(s, 2, -4, -1, -40, 50, -2);

    // A first, B second: (x, y) → (x + 1, y + 2) → (2x + 2, 3y + 6) + (0, 1).
    CTrans a = Matrix(1, 0, 1, 0, 1, 2);
    a *= Matrix(2, 0, 0, 0, 3, 1);
    ExpectMatrix(a, 2, 0, 2, 0, 3, 7);
}

TEST(Trans, PerformOnCoordinatesAndHeights) {
    CTrans t = Matrix(0, -1, 100, 1, 0, 200); // a quarter turn and a shift
    t.m_dZShift = 10.0;
    CVXCoord p(3, 4, 1.5, 1);
    p.SetHerk(5);
    p.SetUnChanged();
    t.Perform(&p);
    EXPECT_EQ(p.m_dX, 96.0);
    EXPECT_EQ(p.m_dY, 203.0);
    EXPECT_EQ(p.m_dZ, 11.5);
    EXPECT_EQ(p.nGetHerk(), 0);    // a position change clears the origin code
    EXPECT_EQ(p.nGetChFlags(), 5); // and marks position and parameters

    CVXCoord flat(3, 4); // Z unknown: it stays unknown
    t.Perform(&flat);
    EXPECT_EQ(flat.m_dX, 96.0);
    EXPECT_TRUE(std::isnan(flat.m_dZ));

    CVXCoord out(0, 0, 42.0, 1);
    t.Perform(&out, CVXCoord(3, 4)); // the input has no Z: the output's Z is untouched
    EXPECT_EQ(out.m_dY, 203.0);
    EXPECT_EQ(out.m_dZ, 42.0);

    double xy[5] = {3, 4, 0, 0, 9};
    t.Perform(5, xy); // the odd last double has no partner
    EXPECT_EQ(xy[0], 96.0);
    EXPECT_EQ(xy[1], 203.0);
    EXPECT_EQ(xy[2], 100.0);
    EXPECT_EQ(xy[3], 200.0);
    EXPECT_EQ(xy[4], 9.0);

    CExtents box;
    t.Perform(&box, CExtents(0, 0, 2, 1)); // x' = 100 − y, y' = 200 + x
    EXPECT_EQ(box.m_dXlo, 99.0);
    EXPECT_EQ(box.m_dXrb, 100.0);
    EXPECT_EQ(box.m_dYlo, 200.0);
    EXPECT_EQ(box.m_dYrb, 202.0);
}

TEST(Trans, DevicePointsAreRoundedWorldPointsTruncated) {
    const CTrans half = Matrix(0.5, 0, 0, 0, 0.5, 0);
    CPoint device(-5, 5);
    half.Perform(&device); // −2.5 and 2.5: halves away from zero
    EXPECT_EQ(device, CPoint(-3, 3));
    CPoint world;
    half.Perform(&world, CVXCoord(-5, 5)); // truncated towards zero
    EXPECT_EQ(world, CPoint(-2, 2));

    CPoint pts[2];
    const double xy[4] = {-5, 5, 7, -7};
    half.Perform(4, pts, xy);
    EXPECT_EQ(pts[0], CPoint(-2, 2));
    EXPECT_EQ(pts[1], CPoint(3, -3));

    // Outside 32 bits, NaN included: the indefinite integer.
    CPoint far;
    Matrix(1, 0, 0, 0, 1, 0).Perform(&far, CVXCoord(3e9, std::nan("")));
    EXPECT_EQ(far.x, std::numeric_limits<int32_t>::min());
    EXPECT_EQ(far.y, std::numeric_limits<int32_t>::min());
}

TEST(Trans, FitsRecoverAKnownSimilarityAndAffineMap) {
    // u = 2x − y + 1000, v = x + 2y − 500.
    const Paren sim(Matrix(2, -1, 1000, 1, 2, -500));
    CTrans t0, t2;
    t0.m_dZShift = 3.0;
    ASSERT_TRUE(t0.bEvalueer(4, sim.from, sim.to, 0));
    ExpectMatrix(t0, 2, -1, 1000, 1, 2, -500);
    EXPECT_TRUE(std::isnan(t0.m_dZShift));
    ASSERT_TRUE(t2.bEvalueer(4, sim.from, sim.to, 2));
    ExpectMatrix(t2, 2, -1, 1000, 1, 2, -500);

    // u = 2x + 3y + 5, v = −x + 4y + 7: the similarity cannot follow it, the affine fit can.
    const Paren aff(Matrix(2, 3, 5, -1, 4, 7));
    CTrans t1;
    ASSERT_TRUE(t1.bEvalueer(4, aff.from, aff.to, 1));
    ExpectMatrix(t1, 2, 3, 5, -1, 4, 7);

    // Another mode leaves the matrix.
    CTrans t9 = Matrix(1, 2, 3, 4, 5, 6);
    EXPECT_TRUE(t9.bEvalueer(4, sim.from, sim.to, 9));
    ExpectMatrix(t9, 1, 2, 3, 4, 5, 6);
}

TEST(Trans, DegenerateFitsFail) {
    const CVXCoord a(5, 5), b(1, 1), c(2, 2), d(3, 3);
    const CVXCoord *same[2] = {&a, &a};
    const CVXCoord *to[3] = {&b, &c, &d};
    CTrans t;
    EXPECT_FALSE(t.bEvalueer(2, same, to, 0)); // S is 0: NaN through dDeel
    ExpectMatrix(t, 1, 0, 0, 0, 1, 0);         // the similarity writes nothing then
    const CVXCoord *line[3] = {&b, &c, &d};
    EXPECT_FALSE(t.bEvalueer(3, line, to, 1)); // collinear: D is 0
    EXPECT_FALSE(t.bEvalueer(0, line, to, 0)); // no points: a NaN centroid
    // All targets equal: the fit itself succeeds with a zero matrix, which is refused.
    const CVXCoord *flat[2] = {&b, &b};
    EXPECT_FALSE(t.bEvalueer(2, line, flat, 0));
}

TEST(Trans, InvertRoundTripsAndRefusesASingularMatrix) {
    CTrans t = Matrix(2, 3, 5, -1, 4, 7); // determinant 11
    t.m_dZShift = 2.0;
    ASSERT_TRUE(t.Invert());
    ExpectMatrix(t, 4.0 / 11, -3.0 / 11, 1.0 / 11, 1.0 / 11, 2.0 / 11, -19.0 / 11);
    EXPECT_EQ(t.m_dZShift, 2.0);
    CVXCoord p(-7.25, 3.5);
    Matrix(2, 3, 5, -1, 4, 7).Perform(&p);
    t.Perform(&p);
    EXPECT_NEAR(p.m_dX, -7.25, 1e-13); // a few rounding steps of values near 10
    EXPECT_NEAR(p.m_dY, 3.5, 1e-13);

    CTrans s = Matrix(1, 2, 3, 2, 4, 6);
    EXPECT_FALSE(s.Invert());
    ExpectMatrix(s, 1, 2, 3, 2, 4, 6);
}

TEST(Trans, BoxFitsIntoADeviceRectangle) {
    const CExtents world(0, 0, 100, 50);
    CTrans t;
    // Aspect 1 against a box ratio of 2: the box fills the width and is centred in height.
    ASSERT_TRUE(t.bEvalueer(&world, CRect(0, 100, 100, 0), 0.0));
    CVXCoord p(0, 0);
    t.Perform(&p);
    EXPECT_NEAR(p.m_dX, 0.0, 1e-12); // fitted sums: rounding at 1e-12
    EXPECT_NEAR(p.m_dY, 25.0, 1e-12);
    EXPECT_NEAR(t.dGetXSchaal(), 1.0, 1e-15);

    // Aspect 4: the box fills the height (scale 2) and is centred in width.
    ASSERT_TRUE(t.bEvalueer(&world, CRect(0, 100, 400, 0), 0.0));
    p = CVXCoord(50, 25);
    t.Perform(&p);
    EXPECT_NEAR(p.m_dX, 200.0, 1e-12);
    EXPECT_NEAR(p.m_dY, 50.0, 1e-12);
    EXPECT_NEAR(t.dGetXSchaal(), 2.0, 1e-15);

    // Y scaled by 2 in the affine form: world (0, 50) at the top left, (100, 0) bottom right.
    ASSERT_TRUE(t.bEvalueerAffien(&world, CRect(0, 100, 100, 0), 2.0));
    CPoint q;
    t.Perform(&q, CVXCoord(100.0, 0.75)); // 1.5 truncated
    EXPECT_EQ(q, CPoint(100, 1));
    EXPECT_NEAR(t.dMatrix11, 2.0, 1e-15);

    const CExtents line(0, 0, 10, 0); // height 0: the ratio is NaN
    EXPECT_FALSE(t.bEvalueer(&line, CRect(0, 100, 100, 0), 0.0));
}

TEST(Trans, SerializesItsMatrixAsOneChildElement) {
    CTrans t = Matrix(1.5, -2, 1e6, 0.25, 3, -7);
    CArchiveX out(false);
    t.SerializeX(u"Trans", out);
    const CVXString xml = out.XML();
    EXPECT_NE(
        CVXString(xml).Find(u"<Trans dMatrix00=\"1.5\" dMatrix01=\"-2\" dMatrix02=\"1000000\" "
                            u"dMatrix10=\"0.25\" dMatrix11=\"3\" dMatrix12=\"-7\" m_dZShift="),
        -1);

    CArchiveX in(true);
    in.XML(xml);
    CTrans back = Matrix(0, 0, 0, 0, 0, 0);
    back.m_dZShift = 1.0;
    back.SerializeX(u"Trans", in);
    ExpectMatrix(back, 1.5, -2, 1e6, 0.25, 3, -7);
    EXPECT_TRUE(std::isnan(back.m_dZShift));

    std::unique_ptr<CTrans> copy(t.New());
    ExpectMatrix(*copy, 1.5, -2, 1e6, 0.25, 3, -7);
    EXPECT_EQ(copy->pGetTabel(), nullptr);
    EXPECT_FALSE(copy->bEvalueer());
}
