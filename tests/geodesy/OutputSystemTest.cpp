// The projection frame: defaults, factories, keyword look-up, the choice array, the report and
// the derived measures.
#include "geodesy/Angles.h"
#include "geodesy/NationalGrid.h"
#include "geodesy/OutputSystemArray.h"
#include "geodesy/ProjNone.h"
#include "geodesy/ProjRSO.h"
#include "geodesy/ProjSwiss.h"
#include "geodesy/ProjTM.h"
#include "geometry/VXCoord.h"
#include "platform/UserPrompt.h"
#include "support/NoGridFiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>

using namespace vx;

namespace {

constexpr double dPiT = 3.141592653589793;

class OutputSystemTest : public vxtest::NoGridFiles {};

std::string Flags(const COutputSystem &p) {
    std::string s;
    for (bool b : {p.bGetEditLonOriginCM(), p.bGetEditLatOrigin(), p.bGetEditStandPar1(),
                   p.bGetEditStandPar2(), p.bGetEditProjScaleFac(), p.bGetEditFalseEasting(),
                   p.bGetEditFalseNorthing(), p.bGetEditEllipsoid()})
        s += b ? '1' : '0';
    return s;
}

} // namespace

TEST_F(OutputSystemTest, DefaultsOfEachClass) {
    struct SRow {
        std::unique_ptr<COutputSystem> p;
        CEllipsoid::EllipsoidType ell;
        ProjectionType type;
        double lon, lat, par1, par2, k, fe, fn; // degrees; -2 unused
        const char *flags;
        const char16_t *name;
        const char16_t *keyword;
    };
    const double u = -2.0;
    SRow rows[] = {
        {std::make_unique<CProjection_NONE>(), CEllipsoid::BESSEL_1841, PT_NONE, u, u, u, u, u, u,
         u, "00000001", u"None", u"NONE"},
        {std::make_unique<CProjection_RD>(), CEllipsoid::BESSEL_1841, PT_RD, 5.3876388889999998,
         52.156160556000003, u, u, 0.99990789999999996, 155000, 463000, "00000000", u"RD", u"RD"},
        {std::make_unique<CProjection_LAMBERT72Old>(), CEllipsoid::INTERNATIONAL, PT_LAMBERT72,
         4.3569397219999999, 50.799362221999999, 49.833333332999999, 51.166666667000001, u, 150000,
         5400000, "00000000", u"Lambert 72", u"LAMBERT72"},
        {std::make_unique<CProjection_LAMBERT72>(), CEllipsoid::INTERNATIONAL, PT_LAMBERT72,
         4.3674866666666663, 90, 49.8333339, 51.166667233333335, u, 150000.01300000001,
         5400088.4380000001, "00000000", u"Lambert 72", u"LAMBERT72"},
        {std::make_unique<CProjection_LAMBERT2008>(), CEllipsoid::GRS_1980, PT_LAMBERT2008,
         4.3592158333333328, 50.797815, 49.833333333333336, 51.166666666666664, u, 649328, 665262,
         "00000000", u"Lambert 2008", u"LAMBERT2008"},
        {std::make_unique<CProjection_TM_TM>(), CEllipsoid::BESSEL_1841, PT_TM, 0, 0, u, u, 1, 0, 0,
         "11001111", u"TM", u"TM"},
        {std::make_unique<CProjection_TM_GAUSS_KRUGER>(), CEllipsoid::BESSEL_1841, PT_GAUSS_KRUGER,
         0, 0, u, u, 1, 0, 0, "10000101", u"Gauss Kruger", u"GAUSS_KRUGER"},
        {std::make_unique<CProjection_TM_NORTH>(), CEllipsoid::INTERNATIONAL, PT_UTM_NORTH, 0, 0, u,
         u, 0.99960000000000004, 500000, 0, "10000001", u"UTM North", u"UTM_NORTH"},
        {std::make_unique<CProjection_TM_SOUTH>(), CEllipsoid::INTERNATIONAL, PT_UTM_SOUTH, 0, 0, u,
         u, 0.99960000000000004, 500000, 10000000, "10000001", u"UTM South", u"UTM_SOUTH"},
        {std::make_unique<CProjection_STEREOGRAPHIC>(), CEllipsoid::BESSEL_1841, PT_STEREOGRAPHIC,
         0, 0, u, u, 1, 0, 0, "11001111", u"Stereographic", u"STEREOGRAPHIC"},
        {std::make_unique<CProjection_STEREOGRAPHIC>(PT_LOCAL), CEllipsoid::BESSEL_1841, PT_LOCAL,
         0, 0, u, u, 1, 0, 0, "11001111", u"Local (stereographic)", u"LOCAL"},
        {std::make_unique<CProjection_LB_LAMBERT1>(), CEllipsoid::BESSEL_1841, PT_LAMBERT1, 0, 0, 0,
         u, 1, 0, 0, "11101111", u"Lambert1 (1 parallel)", u"LAMBERT1"},
        {std::make_unique<CProjection_LB_LAMBERT2>(), CEllipsoid::BESSEL_1841, PT_LAMBERT2, 0, 0, 0,
         0, u, 0, 0, "11110111", u"Lambert2 (2 parallels)", u"LAMBERT2"},
        {std::make_unique<CProjection_BRSO>(), CEllipsoid::TIMBALAI_EVEREST, PT_BRSO, 115, 4, u, u,
         0.99983999999999995, 2000000, 5000000, "00000110", u"Borneo RSO", u"BRSO"},
        {std::make_unique<CProjection_MRSO>(), CEllipsoid::MODIFIED_EVEREST, PT_MRSO, 102.25, 4, u,
         u, 0.99983999999999995, 804671.29980000004, 0, "00000000", u"Malaysian RSO", u"MRSO"},
        {std::make_unique<CProjection_SWISS>(), CEllipsoid::BESSEL_1841, PT_SWISS,
         7.4395833333333332, 46.952405555555558, u, u, 1, 2600000, 1200000, "00000110",
         u"Swiss 1903", u"SWISS"},
        {std::make_unique<CProjection_RD2000>(), CEllipsoid::BESSEL_1841, PT_RDNAPTRANS,
         5.3876388889999998, 52.156160556000003, u, u, 0.99990789999999996, 155000, 463000,
         "00000000", u"RD(incl. correction grid)", u"RDNAPTRANS"},
        {std::make_unique<CProjection_LAMBERT72CORR>(), CEllipsoid::INTERNATIONAL, PT_LAMBERT72CORR,
         4.3674866666666663, 90, 49.8333339, 51.166667233333335, u, 150000.01300000001,
         5400088.4380000001, "00000000", u"Lambert72(incl. correction grid)", u"LAMBERT72CORR"},
    };
    const auto ang = [](double deg) { return deg == -2.0 ? -2.0 : DegToRad(deg); };
    for (const SRow &r : rows) {
        const COutputSystem &p = *r.p;
        SCOPED_TRACE(std::string(p.szGetTrav3ProjectionName()));
        EXPECT_EQ(p.nGetEllipsoid(), r.ell);
        EXPECT_EQ(p.nGetProjection(), r.type);
        EXPECT_EQ(p.nGetTRAVProjection(), r.type);
        EXPECT_EQ(p.dGetLonOriginCM(), ang(r.lon));
        EXPECT_EQ(p.dGetLatOrigin(), ang(r.lat));
        EXPECT_EQ(p.dGetStandPar1(), ang(r.par1));
        EXPECT_EQ(p.dGetStandPar2(), ang(r.par2));
        EXPECT_EQ(p.dGetProjScaleFac(), r.k);
        EXPECT_EQ(p.dGetFalseEasting(), r.fe);
        EXPECT_EQ(p.dGetFalseNorthing(), r.fn);
        EXPECT_EQ(Flags(p), r.flags);
        EXPECT_EQ(p.szGetProjectionName(), r.name);
        EXPECT_EQ(p.szGetTrav3ProjectionName(), r.keyword);
    }
    EXPECT_EQ(CProjection_BRSO().dGetSkew(), dPiT * 53.130102221999998 / 180.0);
    EXPECT_EQ(CProjection_MRSO().dGetSkew(), dPiT * -36.869897645999998 / 180.0);
    EXPECT_EQ(CProjection_RDNAPTRANS2004().szGetTransformationName(), u"RDNAPTRANS 2004");
    EXPECT_EQ(CProjection_RDNAPTRANS2008().szGetTransformationName(), u"RDNAPTRANS 2008");
    EXPECT_EQ(CProjection_LAMBERT72CORR().szGetTransformationName(), u"ETRS89 - LB72+TAW");
    EXPECT_EQ(CProjection_LAMBERT2008().szGetTransformationName(), u"ETRS89 - Lambert 2008+TAW");
}

TEST_F(OutputSystemTest, KeywordLookup) {
    ProjectionType t = PT_NONE;
    EXPECT_TRUE(bGetProjectionType(u"RD", t));
    EXPECT_EQ(t, PT_RD);
    EXPECT_TRUE(bGetProjectionType(u"RDNAPTRANS", t));
    EXPECT_EQ(t, PT_RDNAPTRANS);
    EXPECT_TRUE(bGetProjectionType(u"RDNAPTRANS2004", t));
    EXPECT_EQ(t, PT_RDNAPTRANS2004);
    t = PT_SWISS;
    EXPECT_FALSE(bGetProjectionType(u"RD2000", t));
    EXPECT_FALSE(bGetProjectionType(u"Gauss Kruger", t));
    EXPECT_EQ(t, PT_SWISS);
}

TEST_F(OutputSystemTest, FactoryUsesTheParametersOfEachType) {
    const CEllipsoid clarke(CEllipsoid::CLARKE_1866);
    EXPECT_EQ(pGetNewProjection(PT_TM, 0, 0, 0, 0, 1, 0, 0, nullptr), nullptr);
    EXPECT_EQ(pGetNewProjection(PT_NONE, 0, 0, 0, 0, 1, 0, 0, nullptr), nullptr);
    EXPECT_EQ(pGetNewProjection(static_cast<ProjectionType>(19), 0, 0, 0, 0, 1, 0, 0, &clarke),
              nullptr);
    // The plain projections (0 and 3 to 10) take the caller's ellipsoid; the rest bring theirs
    // and are made without one.
    for (int t = PT_NONE; t <= PT_RDNAPTRANS2004; ++t) {
        const auto type = static_cast<ProjectionType>(t);
        const bool plain = t == 0 || (t >= 3 && t <= 10);
        EXPECT_EQ(bProjectionNeedsEllipsoid(type), plain) << t;
        const std::unique_ptr<COutputSystem> p(
            pGetNewProjection(type, 0, 0, 0, 0, 1, 0, 0, plain ? &clarke : nullptr));
        ASSERT_NE(p, nullptr) << t;
        EXPECT_EQ(p->nGetProjection(), t);
    }
    EXPECT_FALSE(bProjectionNeedsEllipsoid(static_cast<ProjectionType>(-1)));
    for (int type : {1, 2, 11, 12, 13, 14, 15, 16, 17, 18}) {
        const std::unique_ptr<COutputSystem> p(pGetNewProjection(
            static_cast<ProjectionType>(type), 0.1, 0.2, 0.3, 0.4, 0.5, 6.0, 7.0, nullptr));
        ASSERT_NE(p, nullptr) << type;
        EXPECT_EQ(p->nGetProjection(), type);
    }
    const std::unique_ptr<COutputSystem> gk(
        pGetNewProjection(PT_GAUSS_KRUGER, 0.1, 0.2, 0.3, 0.4, 0.5, 6.0, 7.0, &clarke));
    EXPECT_EQ(gk->dGetLonOriginCM(), 0.1);
    EXPECT_EQ(gk->dGetFalseEasting(), 6.0);
    EXPECT_EQ(gk->dGetLatOrigin(), 0.0);
    EXPECT_EQ(gk->dGetProjScaleFac(), 1.0);
    EXPECT_EQ(gk->dGetFalseNorthing(), 0.0);
    EXPECT_EQ(gk->nGetEllipsoid(), CEllipsoid::CLARKE_1866);

    const std::unique_ptr<COutputSystem> utm(
        pGetNewProjection(PT_UTM_SOUTH, 0.1, 0.2, 0.3, 0.4, 0.5, 6.0, 7.0, &clarke));
    EXPECT_EQ(utm->dGetLonOriginCM(), 0.1);
    EXPECT_EQ(utm->dGetFalseNorthing(), 10000000.0);

    const std::unique_ptr<COutputSystem> lb1(
        pGetNewProjection(PT_LAMBERT1, 0.1, 0.2, 0.3, 0.4, 0.5, 6.0, 7.0, &clarke));
    EXPECT_EQ(lb1->dGetStandPar1(), 0.3);
    EXPECT_EQ(lb1->dGetStandPar2(), -2.0);
    EXPECT_EQ(lb1->dGetProjScaleFac(), 0.5);
    const std::unique_ptr<COutputSystem> lb2(
        pGetNewProjection(PT_LAMBERT2, 0.1, 0.2, 0.3, 0.4, 0.5, 6.0, 7.0, &clarke));
    EXPECT_EQ(lb2->dGetStandPar2(), 0.4);
    EXPECT_EQ(lb2->dGetProjScaleFac(), -2.0);
    EXPECT_EQ(lb2->dGetFalseNorthing(), 7.0);

    const std::unique_ptr<COutputSystem> local(
        pGetNewProjection(PT_LOCAL, 0.1, 0.2, 0.3, 0.4, 0.5, 6.0, 7.0, &clarke));
    EXPECT_EQ(local->nGetProjection(), PT_LOCAL);
    EXPECT_EQ(local->dGetProjScaleFac(), 0.5);

    const std::unique_ptr<COutputSystem> brso(
        pGetNewProjection(PT_BRSO, 0.1, 0.2, 0.3, 0.4, 0.5, 6.0, 7.0, nullptr));
    EXPECT_EQ(brso->dGetFalseEasting(), 6.0);
    EXPECT_EQ(brso->dGetLonOriginCM(), DegToRad(115.0));

    const std::unique_ptr<COutputSystem> byName(
        pGetNewProjection(u"TM", 0.1, 0.2, 0, 0, 0.9, 10.0, 20.0, u"USER", 6400000.0, 300.0));
    EXPECT_EQ(byName->nGetProjection(), PT_TM);
    EXPECT_EQ(byName->dGetSemiMajAx(), 6400000.0);
    EXPECT_EQ(pGetNewProjection(u"TM", 0, 0, 0, 0, 1, 0, 0, u"NOSUCH", 0, 0), nullptr);
    EXPECT_EQ(pGetNewProjection(u"NOSUCH", 0, 0, 0, 0, 1, 0, 0, u"WGS84", 0, 0), nullptr);
}

TEST_F(OutputSystemTest, CopiesAreIndependentOnlyThroughPCopy) {
    const CEllipsoid hayford(CEllipsoid::INTERNATIONAL);
    auto tm = std::make_unique<CProjection_TM_TM>(0.1, 0.2, 0.9, 1.0, 2.0, hayford);
    double x0 = 0.0;
    double y0 = 0.0;
    tm->LatLonToXY(0.3, 0.15, &x0, &y0);
    const std::unique_ptr<COutputSystem> copy(tm->pCopy());
    // The copy owns its own ellipsoid: it works on after the original is gone (the sanitizer
    // build would report a use after free otherwise).
    tm.reset();
    EXPECT_EQ(copy->dGetLatOrigin(), 0.2);
    EXPECT_EQ(copy->nGetEllipsoid(), CEllipsoid::INTERNATIONAL);
    double x1 = 0.0;
    double y1 = 0.0;
    copy->LatLonToXY(0.3, 0.15, &x1, &y1);
    EXPECT_EQ(x1, x0);
    EXPECT_EQ(y1, y0);
    const std::unique_ptr<CEllipsoid> e(copy->pGetNewEllipsoid());
    EXPECT_EQ(e->dGetSemiMajAx(), 6378388.0);

    // Fixed classes copy as new defaults; BRSO and SWISS keep their false origin.
    CProjection_SWISS ch(10.0, 20.0);
    const std::unique_ptr<COutputSystem> chCopy(ch.pCopy());
    EXPECT_EQ(chCopy->dGetFalseEasting(), 10.0);
    EXPECT_EQ(chCopy->dGetFalseNorthing(), 20.0);
    CProjection_BRSO brso(30.0, 40.0);
    const std::unique_ptr<COutputSystem> brsoCopy(brso.pCopy());
    EXPECT_EQ(brsoCopy->dGetFalseNorthing(), 40.0);
}

TEST_F(OutputSystemTest, ChoiceArrayHoldsSeventeenDefaults) {
    COutputSystemPtrArray arr;
    ASSERT_EQ(arr.GetSize(), 17);
    const int types[] = {0, 1, 13, 2, 15, 16, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 14};
    for (int i = 0; i < 17; ++i)
        EXPECT_EQ(arr[i]->nGetProjection(), types[i]) << i;
    EXPECT_EQ(arr.nGetPosition(PT_SWISS), 16);
    EXPECT_EQ(arr.nGetPosition(PT_RDNAPTRANS), 2);
    EXPECT_EQ(arr.nGetPosition(PT_RDNAPTRANS2008), -1);
    arr.DeleteAll();
    EXPECT_EQ(arr.GetSize(), 17);
    EXPECT_EQ(arr[5], nullptr);
}

TEST_F(OutputSystemTest, FixedWidthReport) {
    // Keys fill 20 columns, numbers 16 (python3: key.ljust(20) + value.rjust(16)).
    CProjection_RD rd;
    EXPECT_EQ(rd.szGetTRAV3Projection(), u"Projection          RD\n");
    // 5.387638889 degrees = 5 23 15.50000 (by hand: 0.387638889 * 60 = 23.25833334 min).
    EXPECT_EQ(rd.szGetTRAV3LonOriginCM(), u"LonOriginCm            5 23 15.50000\n");
    EXPECT_EQ(rd.szGetTRAV3StandPar1(), u"StandPar1 \n");
    EXPECT_EQ(rd.szGetTRAV3StandPar2(), u"StandPar2 \n");
    EXPECT_EQ(rd.szGetTRAV3ProjScaleFac(), u"ProjScaleFac             0.999907900\n");
    EXPECT_EQ(rd.szGetTRAV3FalseEasting(), u"FalseEasting             155000.0000\n");
    EXPECT_EQ(rd.szGetTRAV3FalseNorthing(), u"FalseNorthing            463000.0000\n");
    EXPECT_EQ(rd.szGetTRAV3Ellipsoid(), u"Ellipsoid           BESSEL_1841\n");
    EXPECT_EQ(rd.szGetTRAV3SemiMajAx(), u"SemiMajAx               6377397.1550\n");
    EXPECT_EQ(rd.szGetTRAV3InvFlatt(), u"InvFlatt               299.152812800\n");

    CProjection_NONE none;
    EXPECT_EQ(none.szGetTRAV3LonOriginCM(), u"LonOriginCm \n");
    EXPECT_EQ(none.szGetTRAV3LatOrigin(), u"LatOrigin \n");
    EXPECT_EQ(none.szGetTRAV3ProjScaleFac(), u"ProjScaleFac \n");
    EXPECT_EQ(none.szGetTRAV3FalseEasting(), u"FalseEasting \n");
    EXPECT_EQ(none.szGetTRAV3FalseNorthing(), u"FalseNorthing \n");
    CProjection_TM_TM west(-1.0, 0.0, 1.0, 0.0, 0.0, CEllipsoid(CEllipsoid::WGS84));
    // -1.0 rad is treated as unused as well.
    EXPECT_EQ(west.szGetTRAV3LonOriginCM(), u"LonOriginCm \n");
}

TEST_F(OutputSystemTest, ConvergenceAndScale) {
    // On the central meridian of a TM the grid north is true north; the point scale is k.
    CProjection_TM_NORTH utm(DegToRad(3.0), CEllipsoid(CEllipsoid::WGS84));
    double x = 0.0;
    double y = 0.0;
    utm.LatLonToXY(DegToRad(52.0), DegToRad(3.0), &x, &y);
    EXPECT_NEAR(x, 500000.0, 1e-9);
    EXPECT_NEAR(utm.dMeridianConvergence(x, y), 0.0, 1e-9);
    // The chord of 1 m and the arc differ by far less than 1e-9.
    EXPECT_NEAR(utm.dScalefactorAtPoint(x, y), 0.9996, 2e-9);
    // Off the meridian: convergence = dlon * sin(lat) to first order (the next term is 2e-4 of
    // it at 2 degrees off); east of the central meridian true north leans towards it, so the
    // angle is positive.
    utm.LatLonToXY(DegToRad(52.0), DegToRad(5.0), &x, &y);
    const double gamma = utm.dMeridianConvergence(x, y);
    EXPECT_NEAR(gamma, DegToRad(2.0) * std::sin(DegToRad(52.0)), 2e-4);
    double lat = 0.0;
    double lon = 0.0;
    utm.XYToLatLon(&lat, &lon, x, y);
    EXPECT_NEAR(lat, DegToRad(52.0), 1e-11);
    EXPECT_NEAR(lon, DegToRad(5.0), 1e-11);
    // The Bowring ratio of two points near the central meridian is the point scale.
    const CVXCoord p1(500000.0, 5700000.0, 0.0, 1);
    const CVXCoord p2(500300.0, 5700400.0, 0.0, 1);
    EXPECT_NEAR(utm.ScaleFacEllDistToProj(p1, p2), 0.9996, 2e-8);
    // NONE carries latitude in x: a step north is a step along x, a quarter turn.
    CProjection_NONE none;
    EXPECT_EQ(none.dMeridianConvergence(0.3, 0.1), -dPiT / 2.0);
}
