#include "instrument/TachyWrn.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <numbers>

using namespace vx;

namespace {
constexpr double kPi = std::numbers::pi;
} // namespace

TEST(TachyWrn, LandFormsCountClockwiseFromNorth) {
    CTachyWrnBase w;
    EXPECT_EQ(w.HinMathRad(), 0.0);
    // H = 0 (along X, east): 100 gon, π/2 land radians; (0 − π/2)·−200/π is exactly 100.
    EXPECT_EQ(w.HinGons(), 100.0);
    EXPECT_EQ(w.HinLandRad(), kPi / 2);

    w.HinMathRad(kPi / 2); // north
    EXPECT_EQ(w.HinGons(), 0.0);
    EXPECT_EQ(w.HinLandRad(), 0.0);

    // V = π (along −X, west): −100 gon brought up by one circle to 300, and 3π/2 land radians.
    w.VinMathRad(kPi);
    EXPECT_EQ(w.VinGons(), 300.0);
    EXPECT_EQ(w.VinLandRad(), 0x1.2d97c7f3321d2p+2);
    EXPECT_EQ(w.VinMathRad(), kPi);
    EXPECT_EQ(w.HinMathRad(), kPi / 2); // H and V are separate
}

TEST(TachyWrn, RangeIsReachedByRepeatedWholeCircles) {
    CTachyWrnBase w;
    // H = −100: land = 100 + π/2 = 101.5707963267949, brought into [0, 2π) by sixteen
    // subtractions of 2π, each rounded (Python loop: 0x1.0a3264338e660p+0). A remainder
    // (fmod) gives 0x1.0a3264338e700p+0: the last bits show which way was taken.
    w.HinMathRad(-100.0);
    EXPECT_EQ(w.HinLandRad(), 0x1.0a3264338e660p+0);
    EXPECT_NE(w.HinLandRad(), std::fmod(100.0 + kPi / 2, 2 * kPi));
    // (−100 − π/2)·−200/π = 6466.197723675814, less sixteen times 400 = 66.1977236758139.
    EXPECT_EQ(w.HinGons(), 66.1977236758139);

    // Values far beyond any angle end in range instead of looping for ever.
    w.HinMathRad(1e300);
    EXPECT_GE(w.HinLandRad(), 0.0);
    EXPECT_LT(w.HinLandRad(), 2 * kPi);
    w.VinMathRad(-INFINITY);
    EXPECT_TRUE(std::isnan(w.VinGons()));
}

TEST(TachyWrn, UnknownAnglesPassThrough) {
    CTachyWrnBase w;
    EXPECT_TRUE(w.HIsKnown());
    EXPECT_TRUE(w.VIsKnown());
    w.HUnknown();
    EXPECT_FALSE(w.HIsKnown());
    EXPECT_TRUE(w.VIsKnown());
    EXPECT_EQ(std::bit_cast<uint64_t>(w.HinMathRad()), 0xFFF8000000000000ull);
    EXPECT_TRUE(std::isnan(w.HinGons()));
    EXPECT_TRUE(std::isnan(w.HinLandRad()));
    w.VUnknown();
    EXPECT_FALSE(w.VIsKnown());
    EXPECT_TRUE(std::isnan(w.VinLandRad()));
}

TEST(TachyWrn, CopiesKeepTheIdentifierNewObjectsDrawAFreshOne) {
    CTachyTravWrn a;
    a.m_szTekst1 = u"ST1";
    a.m_dWaarde5 = 12.5;
    a.HinMathRad(1.0);
    const CTachyTravWrn b(a);
    const CTachyTravWrn c;
    EXPECT_EQ(b.m_Guid, a.m_Guid);
    EXPECT_EQ(b.m_szTekst1, CVXString(u"ST1"));
    EXPECT_EQ(b.m_dWaarde5, 12.5);
    EXPECT_EQ(b.HinMathRad(), 1.0);
    EXPECT_NE(c.m_Guid, a.m_Guid);
    EXPECT_NE(c.m_Guid, GUID());
    // A drawn identifier is a random one: version 4, variant 1.
    EXPECT_EQ(c.m_Guid.Data3 >> 12, 4);
    EXPECT_EQ(c.m_Guid.Data4[0] >> 6, 2);

    // The other fields start empty or 0.
    EXPECT_EQ(c.m_dWaarde1 + c.m_dWaarde2 + c.m_dWaarde3 + c.m_dWaarde4 + c.m_dWaarde5, 0.0);
    EXPECT_EQ(c.m_nWoord + c.m_nWoord2 + c.m_lWoord, 0u);
    EXPECT_TRUE(c.m_szTekst1.IsEmpty() && c.m_szTekst2.IsEmpty() && c.m_szTekst3.IsEmpty());
    EXPECT_EQ(c.VinMathRad(), 0.0);
}

TEST(TachyWrn, AdjustmentParametersStartAtTheirDefaults) {
    const CTrav3Par p;
    const int16_t shorts[] = {p.m_nPar1,  p.m_nPar2,  p.m_nPar3,  p.m_nPar4,  p.m_nPar13,
                              p.m_nPar14, p.m_nPar15, p.m_nPar16, p.m_nPar17, p.m_nPar18,
                              p.m_nPar19, p.m_nPar20, p.m_nPar21, p.m_nPar22, p.m_nPar23,
                              p.m_nPar24, p.m_nPar25};
    const int16_t want[] = {0, 2, 9, 2, 0, 1, 0, 1, 1, 0, 0, 1, 1, 1, 1, 1, 1};
    for (size_t i = 0; i < std::size(want); ++i)
        EXPECT_EQ(shorts[i], want[i]) << i;
    EXPECT_EQ(p.m_lPar5, 0);
    const double doubles[] = {p.m_dPar6,  p.m_dPar7,  p.m_dPar8, p.m_dPar9,
                              p.m_dPar10, p.m_dPar11, p.m_dPar12};
    const double wantD[] = {0.0001, 0.001, 0.8, 0.0, 1.0, 0.003, 0.005};
    for (size_t i = 0; i < std::size(wantD); ++i)
        EXPECT_EQ(doubles[i], wantD[i]) << i;

    CTopoTravPunt t;
    t.m_szTekst1 = u"P1";
    const CTopoTravPunt u(t);
    EXPECT_EQ(u.m_szTekst1, CVXString(u"P1"));
    EXPECT_TRUE(u.m_szTekst2.IsEmpty());
}
