// The array forms of COutputSystem give the very bits of the point forms, for every projection
// type (the plain ones run their own loop, the grid-corrected ones and a host's class the base
// form), with the awkward points among ordinary ones: NaN, the poles, the central meridian, the
// origin, west of Greenwich.
#include "geodesy/Angles.h"
#include "geodesy/OutputSystem.h"
#include "geodesy/ProjTM.h"
#include "geometry/VXCoord.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

using namespace vx;

namespace {

bool Same(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// Points around (lat0, lon0) in degrees, with the awkward ones added.
std::vector<CEllCoord> Points(double lat0, double lon0) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<CEllCoord> v;
    for (int i = -6; i <= 6; ++i)
        for (int j = -6; j <= 6; ++j)
            v.emplace_back(DegToRad(lat0 + 0.5 * i), DegToRad(lon0 + 0.7 * j), 10.0 * i);
    v.emplace_back(DegToRad(lat0), DegToRad(lon0), 0.0);
    v.emplace_back(DegToRad(90.0), DegToRad(lon0 + 1.0), 0.0);
    v.emplace_back(DegToRad(-90.0), DegToRad(lon0), 0.0);
    v.emplace_back(nan, DegToRad(lon0), 0.0);
    v.emplace_back(DegToRad(lat0), nan, nan);
    v.emplace_back(DegToRad(lat0), DegToRad(lon0) - 6.283185307179586, 1.0);
    return v;
}

// The number of points whose array result differs from the point result in any bit.
int CountDifferences(COutputSystem &p, const std::vector<CEllCoord> &in) {
    int nDiff = 0;
    std::vector<CVXCoord> xyArray(in.size());
    p.EllToProjectionArray(in.data(), xyArray.data(), in.size());
    std::vector<CVXCoord> xyIn;
    for (size_t i = 0; i < in.size(); ++i) {
        CVXCoord xy;
        p.EllToProjection(xy, in[i]);
        nDiff += !Same(xy.dGetX(), xyArray[i].dGetX()) || !Same(xy.dGetY(), xyArray[i].dGetY()) ||
                 !Same(xy.dGetZ(), xyArray[i].dGetZ());
        // Back from the plane point, and from some off the map.
        xyIn.emplace_back(xy.dGetX(), xy.dGetY(), xy.dGetZ(), 1);
    }
    xyIn.emplace_back(p.dGetFalseEasting(), p.dGetFalseNorthing(), 0.0, 1);
    xyIn.emplace_back(1e12, -1e12, 0.0, 1);
    std::vector<CEllCoord> ellArray(xyIn.size());
    p.ProjectionToEllArray(xyIn.data(), ellArray.data(), xyIn.size());
    for (size_t i = 0; i < xyIn.size(); ++i) {
        CEllCoord ell;
        p.ProjectionToEll(ell, xyIn[i]);
        nDiff += !Same(ell.dGetLat(), ellArray[i].dGetLat()) ||
                 !Same(ell.dGetLon(), ellArray[i].dGetLon()) ||
                 !Same(ell.dGetHgt(), ellArray[i].dGetHgt());
    }
    return nDiff;
}

// A host's class that changes the point forms: the array forms must follow them.
class CShiftedTM : public CProjection_TM_TM {
public:
    CShiftedTM() : CProjection_TM_TM(0.1, 0.8, 1.0, 0.0, 0.0, CEllipsoid(CEllipsoid::WGS84)) {}
    void EllToProjection(CVXCoord &xy, CEllCoord ell) override {
        CProjection_TM_TM::EllToProjection(xy, ell);
        xy.SetXY(xy.dGetX() + 1.0, xy.dGetY());
    }
};

} // namespace

TEST(ProjectionArrays, SameBitsAsThePointForms) {
    const CEllipsoid wgs(CEllipsoid::WGS84);
    for (int type = PT_NONE; type <= PT_RDNAPTRANS2004; ++type) {
        std::unique_ptr<COutputSystem> p(
            pGetNewProjection(static_cast<ProjectionType>(type), DegToRad(5.0), DegToRad(50.0),
                              DegToRad(49.0), DegToRad(51.0), 0.9996, 1000.0, 2000.0, &wgs));
        ASSERT_TRUE(p) << type;
        const double lat0 = type == PT_BRSO || type == PT_MRSO ? 4.0 : 50.0;
        EXPECT_EQ(CountDifferences(*p, Points(lat0, RadToDeg(p->dGetLonOriginCM()))), 0) << type;
    }
    CShiftedTM shifted;
    EXPECT_EQ(CountDifferences(shifted, Points(45.0, 6.0)), 0);
    CVXCoord a, b;
    const CEllCoord in(0.8, 0.1, 0.0);
    shifted.EllToProjectionArray(&in, &a, 1);
    CProjection_TM_TM(0.1, 0.8, 1.0, 0.0, 0.0, CEllipsoid(CEllipsoid::WGS84))
        .EllToProjection(b, in);
    EXPECT_EQ(a.dGetX(), b.dGetX() + 1.0); // the origin itself: x = 0, shifted by 1 m
}
