// bSnijPoly against GEOS as the independent peer, on seeded random simple polygons whose
// boundaries cross, in all four combinations of turning sense. The inside rings must add up to
// GEOS's intersection area and the outside rings to GEOS's difference A - B, every piece closed
// and validly coded.
//
// Tolerances. Straight polygons: both sides compute the same crossings in doubles, so the areas
// agree to rounding; 1e-7 of the larger input area leaves room for that and nothing else.
// Arcs: GEOS sees a copy whose arcs are chords of at most 1/500 rad; that copy lacks exactly the
// flattening loss dVerlies (summed per arc), and the intersection or difference can differ from
// the exact one by at most that loss. Ours is measured exactly (arcs by centre angle).
//
// Known limitation of the walk, tolerated only where detected: a vertex of A or B closer than
// twice the insertion tolerance (0.001) to the other outline (a crossing at a vertex, or a touch
// that the clip list takes for a crossing), or two crossings as close together. There the clip
// list snaps the working copies on to the crossing and merges neighbours, so the result differs
// from the exact one by up to the tolerance times a stretch length, or the walk may pair pieces
// differently. Such pairs are counted and printed; all others must match.
//
// VX_CLIP_PAREN sets the number of random pairs (the soak run uses 100,000).
#ifdef VX_HAVE_GEOS

#include "geometry/ClipList.h"
#include "geometry/ClipTestUtil.h"
#include "geometry/GeometryTestUtil.h"
#include "geometry/GeosPeer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <random>
#include <string>

using vx::ClipField;
using vx::CVXCoordArr;
using vx::CVXCoordArrList;

namespace {

constexpr unsigned nSeed = 20261125;
constexpr int nStandaardParen = 3000;
constexpr double dRelTol = 1e-7;
// Vertices this close to the other outline, and crossings this close to each other, are the
// tolerated limitation.
constexpr double dKlem = 0.002;
// Chord angle of the flattened copies GEOS sees.
constexpr double dAfvlakStap = 1.0 / 500.0;

int nParen() {
    const char *s = std::getenv("VX_CLIP_PAREN");
    const int n = s != nullptr ? std::atoi(s) : 0;
    return n > 0 ? n : nStandaardParen;
}

struct Resultaat {
    bool bGeknipt = false;
    double dBinnen = 0.0, dBuiten = 0.0;
    double dBinnenOpp = 0.0, dBuitenOpp = 0.0; // the sums of bOppervlak
    bool bGoed = true;                         // every piece closed and validly coded
};

Resultaat Knip(const CVXCoordArr &A, const CVXCoordArr &B) {
    CVXCoordArrList binnen, buiten;
    Resultaat r;
    r.bGeknipt = A.bSnijPoly(binnen, buiten, B, ClipField(true, true, false), true);
    // Signed: the holes of a union (below) run against its outer ring.
    auto som = [&r](const CVXCoordArrList &lijst, double &dOpp) {
        double d = 0.0;
        for (vx::POSITION pos = lijst.GetHeadPosition(); pos != nullptr;) {
            const CVXCoordArr &stuk = *lijst.GetNext(pos);
            r.bGoed = r.bGoed && stuk.bGesloten() && stuk.nSectieOnlyTest2() == -1;
            d += vxtest::dExactOppTeken(stuk);
            double dStuk = 0.0;
            stuk.bOppervlak(&dStuk);
            dOpp += dStuk;
        }
        return std::fabs(d);
    };
    r.dBinnen = som(binnen, r.dBinnenOpp);
    r.dBuiten = som(buiten, r.dBuitenOpp);
    return r;
}

struct GeosMaat {
    double dDoorsnede = 0.0, dVerschil = 0.0, dVerschilBA = 0.0, dVereniging = 0.0;
    vxtest::XYLijst snijpunten;
};

GeosMaat Meet(const vxtest::GeosContext &geos, const CVXCoordArr &A, const CVXCoordArr &B) {
    const vxtest::GeosGeom gA = vxtest::GeosPolygoon(geos, A), gB = vxtest::GeosPolygoon(geos, B);
    GeosMaat m;
    const vxtest::GeosGeom d(GEOSIntersection_r(geos.Get(), gA.get(), gB.get()),
                             vxtest::GeosDeleter{geos.Get()});
    const vxtest::GeosGeom v(GEOSDifference_r(geos.Get(), gA.get(), gB.get()),
                             vxtest::GeosDeleter{geos.Get()});
    const vxtest::GeosGeom vBA(GEOSDifference_r(geos.Get(), gB.get(), gA.get()),
                               vxtest::GeosDeleter{geos.Get()});
    const vxtest::GeosGeom u(GEOSUnion_r(geos.Get(), gA.get(), gB.get()),
                             vxtest::GeosDeleter{geos.Get()});
    GEOSArea_r(geos.Get(), d.get(), &m.dDoorsnede);
    GEOSArea_r(geos.Get(), v.get(), &m.dVerschil);
    GEOSArea_r(geos.Get(), vBA.get(), &m.dVerschilBA);
    GEOSArea_r(geos.Get(), u.get(), &m.dVereniging);
    m.snijpunten = vxtest::GeosSnijpunten(geos, gA.get(), gB.get());
    return m;
}

// The distance from p to the segment a-b.
double dTotStuk(const vx::CVXCoord &p, const vx::CVXCoord &a, const vx::CVXCoord &b) {
    const double dx = b.m_dX - a.m_dX, dy = b.m_dY - a.m_dY;
    const double l2 = dx * dx + dy * dy;
    double t = l2 > 0.0 ? ((p.m_dX - a.m_dX) * dx + (p.m_dY - a.m_dY) * dy) / l2 : 0.0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(a.m_dX + t * dx - p.m_dX, a.m_dY + t * dy - p.m_dY);
}

// Whether a vertex of punten lies within dKlem of the straight outline rand.
bool bHoekBijRand(const CVXCoordArr &punten, const CVXCoordArr &rand) {
    for (int k = 0; k < punten.GetSize(); ++k)
        for (int i = 0; i + 1 < rand.GetSize(); ++i)
            if (dTotStuk(punten.Pt(k), rand.Pt(i), rand.Pt(i + 1)) < dKlem) return true;
    return false;
}

// The tolerated class: a vertex of one outline within dKlem of the other (a crossing at or near
// a vertex, or a touch), or two crossings within dKlem of each other.
bool bGrensgeval(const vxtest::XYLijst &snij, const CVXCoordArr &A, const CVXCoordArr &vlakA,
                 const CVXCoordArr &B, const CVXCoordArr &vlakB) {
    for (size_t i = 0; i < snij.size(); ++i)
        for (size_t j = i + 1; j < snij.size(); ++j)
            if (std::hypot(snij[i].first - snij[j].first, snij[i].second - snij[j].second) < dKlem)
                return true;
    return bHoekBijRand(A, vlakB) || bHoekBijRand(B, vlakA);
}

std::string Wkt(const CVXCoordArr &arr) {
    std::string s = "POLYGON((";
    char buf[64];
    for (int i = 0; i < arr.GetSize(); ++i) {
        std::snprintf(buf, sizeof buf, "%s%.17g %.17g", i ? ", " : "", arr.Pt(i).m_dX,
                      arr.Pt(i).m_dY);
        s += buf;
    }
    return s + "))";
}

// Counts and the first example of the tolerated class.
struct Telling {
    int nParen = 0, nTegen = 0, nGrens = 0, nGrensAfwijkend = 0;
    std::string voorbeeld, tegenVoorbeeld; // the shortest of each class
    static void Kort(std::string &doel, const std::string &paar) {
        if (doel.empty() || paar.size() < doel.size()) doel = paar;
    }
    void Druk(const char *wat) const {
        std::printf(
            "%s: %d pairs (%d of opposite sense), %d with a vertex near the other outline or "
            "two crossings close together, %d of those off the peer\n",
            wat, nParen, nTegen, nGrens, nGrensAfwijkend);
        if (!tegenVoorbeeld.empty())
            std::printf("  opposite sense, e.g.: %s\n", tegenVoorbeeld.c_str());
        if (!voorbeeld.empty()) std::printf("  off the peer, e.g.: %s\n", voorbeeld.c_str());
    }
};

// One pair: compares with the peer; a difference is allowed only in the detected class.
// The walk follows B forward for the inside and backward for the outside whatever the turning
// senses: with A and B of opposite sense, the inside rings enclose B - A and the outside rings
// A u B, and that is what is expected of them.
// vlakA and vlakB are straight copies of A and B (the same when straight); dVerlies is the area
// their flattening lost.
void Vergelijk(const vxtest::GeosContext &geos, const CVXCoordArr &A, const CVXCoordArr &B,
               const CVXCoordArr &vlakA, const CVXCoordArr &vlakB, double dVerlies,
               Telling &telling) {
    const GeosMaat m = Meet(geos, vlakA, vlakB);
    if (m.snijpunten.empty()) return; // the generator wants crossing boundaries
    ++telling.nParen;
    const double dTekenA = vxtest::dExactOppTeken(vlakA), dTekenB = vxtest::dExactOppTeken(vlakB);
    const bool bTegen = (dTekenA > 0.0) != (dTekenB > 0.0);
    telling.nTegen += bTegen ? 1 : 0;
    const double dBinnen = bTegen ? m.dVerschilBA : m.dDoorsnede;
    const double dBuiten = bTegen ? m.dVereniging : m.dVerschil;
    const Resultaat r = Knip(A, B);
    const double dTol = dRelTol * std::max(std::fabs(dTekenA), std::fabs(dTekenB)) + dVerlies;
    const bool bKlopt = r.bGeknipt && r.bGoed && std::fabs(r.dBinnen - dBinnen) <= dTol &&
                        std::fabs(r.dBuiten - dBuiten) <= dTol;
    const std::string paar = Wkt(A) + " / " + Wkt(B);
    if (bTegen) Telling::Kort(telling.tegenVoorbeeld, paar);
    if (bGrensgeval(m.snijpunten, A, vlakA, B, vlakB)) {
        ++telling.nGrens;
        if (!bKlopt) {
            ++telling.nGrensAfwijkend;
            Telling::Kort(telling.voorbeeld, paar);
        }
        EXPECT_TRUE(r.bGoed) << paar;
        return;
    }
    EXPECT_TRUE(r.bGeknipt) << paar;
    EXPECT_TRUE(r.bGoed) << paar;
    EXPECT_NEAR(r.dBinnen, dBinnen, dTol) << paar;
    EXPECT_NEAR(r.dBuiten, dBuiten, dTol) << paar;
    if (!bTegen && dVerlies == 0.0) {
        // Straight pieces without holes: the library's own area gives the same sums.
        EXPECT_NEAR(r.dBinnenOpp, dBinnen, dTol) << paar;
        EXPECT_NEAR(r.dBuitenOpp, dBuiten, dTol) << paar;
    }
}

CVXCoordArr Omgekeerd(CVXCoordArr arr, bool bOm) {
    if (bOm) arr.DraaiRichting();
    return arr;
}

// A circle through three points, closed on the first.
CVXCoordArr Cirkel(double cx, double cy, double r) {
    return vxtest::Lijn({{cx + r, cy, 1}, {cx, cy + r, 7}, {cx - r, cy, 7}, {cx + r, cy, 7}});
}

// A rectangle with corners rounded by quarter arcs of radius r, counter-clockwise.
CVXCoordArr Afgerond(double x0, double y0, double x1, double y1, double r) {
    const double k = r * (1.0 - std::numbers::sqrt2 / 2.0); // corner to the arc's middle
    return vxtest::Lijn({{x0 + r, y0, 1},
                         {x1 - r, y0, 0},
                         {x1 - k, y0 + k, 8},
                         {x1, y0 + r, 8},
                         {x1, y1 - r, 0},
                         {x1 - k, y1 - k, 8},
                         {x1 - r, y1, 8},
                         {x0 + r, y1, 0},
                         {x0 + k, y1 - k, 8},
                         {x0, y1 - r, 8},
                         {x0, y0 + r, 0},
                         {x0 + k, y0 + k, 8},
                         {x0 + r, y0, 8}});
}

} // namespace

TEST(ClipGeos, RandomPolygonPairsMatchGeosIntersectionAndDifference) {
    vxtest::GeosContext geos;
    std::mt19937 rng(nSeed);
    std::uniform_int_distribution<int> hoeken(3, 25);
    std::uniform_real_distribution<double> schuif(-90.0, 90.0);
    Telling telling;
    const int n = nParen();
    for (int k = 0; k < n; ++k) {
        const CVXCoordArr A0 = vxtest::SterVeelhoek(rng, hoeken(rng), 0.0, 0.0, 20.0, 100.0);
        const CVXCoordArr B0 =
            vxtest::SterVeelhoek(rng, hoeken(rng), schuif(rng), schuif(rng), 20.0, 100.0);
        // All four combinations of turning sense.
        const CVXCoordArr A = Omgekeerd(A0, (k & 1) != 0), B = Omgekeerd(B0, (k & 2) != 0);
        Vergelijk(geos, A, B, A, B, 0.0, telling);
        if (HasFailure()) break;
    }
    telling.Druk("straight pairs");
    EXPECT_GT(telling.nParen, n / 2);
}

TEST(ClipGeos, CirclesAndRoundedRectanglesMatchGeosOnFlattenedCopies) {
    vxtest::GeosContext geos;
    std::mt19937 rng(nSeed + 1);
    std::uniform_int_distribution<int> hoeken(3, 25);
    std::uniform_real_distribution<double> plaats(-60.0, 60.0), maat(20.0, 80.0);
    Telling telling;
    const int n = std::max(1, nParen() / 20);
    for (int k = 0; k < n; ++k) {
        const CVXCoordArr B0 =
            vxtest::SterVeelhoek(rng, hoeken(rng), plaats(rng), plaats(rng), 20.0, 100.0);
        const double w = maat(rng), h = maat(rng);
        const double r = std::min(w, h) * 0.3;
        const CVXCoordArr A0 =
            k % 2 == 0 ? Cirkel(plaats(rng), plaats(rng), maat(rng)) : Afgerond(-w, -h, w, h, r);
        const CVXCoordArr krom = Omgekeerd(A0, (k & 2) != 0 && k % 2 != 0);
        const CVXCoordArr recht = Omgekeerd(B0, (k & 4) != 0);
        // Every other pair the other way round: then B is the curved one and the outside walk
        // follows its arcs backward.
        const bool bKromIsA = (k & 8) == 0 || krom.bCirkel();
        const CVXCoordArr &A = bKromIsA ? krom : recht, &B = bKromIsA ? recht : krom;
        double dVerliesA = 0.0, dVerliesB = 0.0;
        const CVXCoordArr vlakA = vxtest::Afvlakken(A, dAfvlakStap, dVerliesA);
        const CVXCoordArr vlakB = vxtest::Afvlakken(B, dAfvlakStap, dVerliesB);
        Vergelijk(geos, A, B, vlakA, vlakB, dVerliesA + dVerliesB, telling);
        if (HasFailure()) break;
    }
    telling.Druk("arc pairs");
    EXPECT_GT(telling.nParen, n / 2);
}

#endif
