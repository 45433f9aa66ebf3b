#include "geometry/PuntInPoly.h"

#include "geometry/LineArc.h"
#include "geometry/Tolerances.h"
#include "platform/Assert.h"
#include "platform/UserPrompt.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vx {

static_assert(sizeof(PuntInPolyRes) == 1, "the three flags share one byte");

namespace {

constexpr double d2Pi = 2.0 * std::numbers::pi;
// Angle sums within this margin of 0 or of a full turn are decided; the wide band between them
// counts as lying on the boundary.
constexpr double dHoekMarge = 0.1;

PuntInPolyRes Res(bool bBinnen, bool bOp, bool bBuiten) {
    PuntInPolyRes r;
    r.bBinnen = bBinnen;
    r.bOp = bOp;
    r.bBuiten = bBuiten;
    return r;
}

const PuntInPolyRes resOp = Res(false, true, false);

bool bBij(const CVXCoord &a, const CVXCoord &b) {
    return a.dDist(b) < dPuntTol;
}

// One step of the winding walk: either the answer is settled (on the boundary) or the stretch
// added its angles and nVolgende says where the walk goes on.
struct Stap {
    bool bOp = false;
    int nVolgende = 0;
};

// Circle form: the distance to the centre against the radius.
PuntInPolyRes CirkelRes(const CVXCoordArr &arr, const CVXCoord &punt) {
    const CVXCoord *const boog[3] = {&arr.Pt(0), &arr.Pt(1), &arr.Pt(2)};
    CVXCoord C;
    if (!C.bMiddelPunt(boog)) return PuntInPolyRes{};
    const double R = C.dDist(arr.Pt(0));
    const double d = C.dDist(punt);
    if (std::fabs(d - R) < dPuntTol) return resOp;
    return d >= R ? Res(false, false, true) : Res(true, false, false);
}

// The arc from point i over i + 1 to i + 2, when the point lies within its circle and wedge:
// the angles go over the foot Q of the point on the arc, and over the arc's middle M when the
// arc opens to half a circle or more, so that no single term reaches π.
bool bBoogInWig(const CVXCoordArr &arr, int i, const CVXCoord &punt, const CBoogInfo &info,
                double h, double a, double &dSom) {
    CVXCoord Q(info.m_Middelpunt);
    Q.Schuif(info.m_dStraal, h);
    if (bBij(punt, Q)) return true;
    const CVXCoord &A = arr.Pt(i);
    const CVXCoord &E = arr.Pt(i + 2);
    if (info.m_dSweep < std::numbers::pi) {
        dSom += CVXCoord::dHoek(A, punt, Q) + CVXCoord::dHoek(Q, punt, E);
        return false;
    }
    CVXCoord M(A);
    M.Transform(info.m_Middelpunt, info.m_Middelpunt, -info.m_nRichting * info.m_dSweep / 2.0, 1.0);
    if (a > info.m_dSweep / 2.0)
        dSom +=
            CVXCoord::dHoek(A, punt, M) + CVXCoord::dHoek(M, punt, Q) + CVXCoord::dHoek(Q, punt, E);
    else
        dSom +=
            CVXCoord::dHoek(A, punt, Q) + CVXCoord::dHoek(Q, punt, M) + CVXCoord::dHoek(M, punt, E);
    return false;
}

// The arc stretch from point i: true when the point lies on it.
bool bBoogStap(const CVXCoordArr &arr, int i, const CVXCoord &punt, double &dSom) {
    if (bBij(punt, arr.Pt(i + 1)) || bBij(punt, arr.Pt(i + 2))) return true;
    const CVXCoord *const boog[3] = {&arr.Pt(i), &arr.Pt(i + 1), &arr.Pt(i + 2)};
    const CBoogInfo info(boog);
    if (!info.m_bGeldig) {
        if (arr.bLineInTol(i, punt) || arr.bLineInTol(i + 1, punt)) return true;
        arr.LijnHoek(i, dSom, punt);
        return false;
    }
    if (info.m_Middelpunt.dDist(punt) >= info.m_dStraal) { // outside the arc's circle
        arr.LijnHoek(i, dSom, punt);
        return false;
    }
    const double h = info.m_Middelpunt.dHoek(punt);
    double a = h - info.m_dStartHoek;
    if (a < 0.0) a += d2Pi;
    if (info.m_nRichting > 0) a = d2Pi - a;
    if (a >= info.m_dSweep) { // outside the arc's wedge
        arr.LijnHoek(i, dSom, punt);
        return false;
    }
    return bBoogInWig(arr, i, punt, info, h, a, dSom);
}

// Any other stretch, splines included, counts as the straight stretch from point i to i + 1.
bool bRechteStap(const CVXCoordArr &arr, int i, const CVXCoord &punt, double &dSom) {
    const CVXCoord &A = arr.Pt(i);
    const CVXCoord &B = arr.Pt(i + 1);
    if (bBij(punt, B)) return true;
    const CVXCoord *const line[2] = {&A, &B};
    CVXCoord voet;
    voet.Projecteer(line, punt);
    // The non-const form: a foot near an end snaps on to it before the distance is taken.
    if (voet.nPuntInLine(line, false) != 0 && bBij(voet, punt)) return true;
    dSom += CVXCoord::dHoek(A, punt, B);
    return false;
}

Stap VolgendeStap(const CVXCoordArr &arr, int i, const CVXCoord &punt, double &dSom) {
    if (i + 2 < arr.GetSize() && arr.Pt(i + 1).m_nSectie == nSectieBoog)
        return {bBoogStap(arr, i, punt, dSom), i + 2};
    return {bRechteStap(arr, i, punt, dSom), i + 1};
}

// The quick answer for a closed straight sequence and a point well away from it. The winding
// walk sums angles that, away from the boundary, add up to 2π times the winding number to far
// better than the margin, so that number decides alone: non-zero is inside, zero outside. It is
// counted here with exact comparisons and cross products whose sign is trusted only beyond their
// rounding bound. Every case that is not clearly decided (a point within twice the point
// tolerance of a stretch, an arc, an open sequence, a doubtful sign) answers false and the walk
// runs, so the answer is always the one the walk gives.
constexpr double dVerRand = 2.0 * dPuntTol;
// A bound on the rounding of a cross product of differences, relative to the sum of the
// magnitudes of its two products (a few units in the last place, with room to spare).
constexpr double dKruisFout = 1e-12;

struct Snel {
    bool bBeslist = false;
    bool bBinnen = false;
};

// The winding contribution of the straight stretch a-b for the ray from p to the right, or false
// when the side of p cannot be told with certainty.
bool bWindingStap(const CVXCoord &a, const CVXCoord &b, const CVXCoord &p, int &nWinding) {
    const bool bOp = a.m_dY <= p.m_dY && b.m_dY > p.m_dY;
    const bool bNeer = a.m_dY > p.m_dY && b.m_dY <= p.m_dY;
    if (!bOp && !bNeer) return true;
    const double t1 = (b.m_dX - a.m_dX) * (p.m_dY - a.m_dY);
    const double t2 = (b.m_dY - a.m_dY) * (p.m_dX - a.m_dX);
    const double dKruis = t1 - t2;
    if (!(std::fabs(dKruis) > dKruisFout * (std::fabs(t1) + std::fabs(t2)) + dKruisFout))
        return false;
    if (bOp && dKruis > 0.0) ++nWinding;
    if (bNeer && dKruis < 0.0) --nWinding;
    return true;
}

// Whether p lies at least dVerRand from the straight stretch a-b (squared distances; a NaN
// anywhere gives false). Outside the stretch's box grown by dVerRand it does at once.
bool bVerVanStuk(const CVXCoord &a, const CVXCoord &b, const CVXCoord &p) {
    if (p.m_dX + dVerRand < std::min(a.m_dX, b.m_dX) ||
        p.m_dX - dVerRand > std::max(a.m_dX, b.m_dX) ||
        p.m_dY + dVerRand < std::min(a.m_dY, b.m_dY) ||
        p.m_dY - dVerRand > std::max(a.m_dY, b.m_dY))
        return true;
    const double dx = b.m_dX - a.m_dX, dy = b.m_dY - a.m_dY;
    const double px = p.m_dX - a.m_dX, py = p.m_dY - a.m_dY;
    const double l2 = dx * dx + dy * dy;
    double t = l2 > 0.0 ? (px * dx + py * dy) / l2 : 0.0;
    t = t < 0.0 ? 0.0 : (t > 1.0 ? 1.0 : t);
    const double ex = px - t * dx, ey = py - t * dy;
    return ex * ex + ey * ey > dVerRand * dVerRand;
}

Snel SnelAntwoord(const CVXCoordArr &arr, const CVXCoord &p) {
    const int n = arr.GetSize();
    // The table itself: this loop runs for every point of every containment question.
    const CVXCoord *const *pts = arr.GetData();
    if (n < 4 || pts[0] == nullptr || pts[n - 1] == nullptr) return {};
    if (pts[0]->m_dX != pts[n - 1]->m_dX || pts[0]->m_dY != pts[n - 1]->m_dY) return {};
    int nWinding = 0;
    for (int i = 0; i + 1 < n; ++i) {
        const CVXCoord *a = pts[i], *b = pts[i + 1];
        if (b == nullptr || b->m_nSectie == nSectieBoog || b->m_nSectie == nSectieCirkel) return {};
        if (!bVerVanStuk(*a, *b, p) || !bWindingStap(*a, *b, p, nWinding)) return {};
    }
    return {true, nWinding != 0};
}

// The flags of a result as a number: on the boundary first, then outside, then inside.
short nAlsGetal(const PuntInPolyRes &r) {
    if (r.bOp) return 0;
    if (r.bBuiten) return -1;
    if (r.bBinnen) return 1;
    return 0;
}

} // namespace

PuntInPolyRes CVXCoordArr::PuntInPolygoon(const CVXCoord &Punt) const {
    const int n = GetSize();
    // Not in the walk below: an empty sequence has no point 0 to compare with.
    if (n == 0) return PuntInPolyRes{};
    if (n > 2 && Pt(1).m_nSectie == nSectieCirkel) return CirkelRes(*this, Punt);
    if (bBij(Punt, Pt(0))) return resOp;
    if (const Snel snel = SnelAntwoord(*this, Punt); snel.bBeslist)
        return snel.bBinnen ? Res(true, false, false) : Res(false, false, true);
    double dSom = 0.0;
    // No closing stretch is added: an open sequence is summed as it stands.
    for (int i = 0; i < n - 1;) {
        const Stap stap = VolgendeStap(*this, i, Punt, dSom);
        if (stap.bOp) return resOp;
        i = stap.nVolgende;
    }
    const double s = std::fabs(dSom);
    if (s > dHoekMarge && s < d2Pi - dHoekMarge) return resOp;
    return s > dHoekMarge ? Res(true, false, false) : Res(false, false, true);
}

bool CVXCoordArr::bPuntInPuntArr(const CVXCoord &Punt) const {
    return PuntInPolygoon(Punt).bBinnen;
}

short CVXCoordArr::nPuntInPuntArr(const CVXCoord &Punt) const {
    return nAlsGetal(PuntInPolygoon(Punt));
}

PuntInPolyRes CVXCoordArr::LijnInPolygoon(const CVXCoordArr &Lijn, bool bVolledig) const {
    PuntInPolyRes res;
    for (int i = 0; i < Lijn.GetSize(); ++i) {
        res |= PuntInPolygoon(Lijn.Pt(i));
        if (!bVolledig && (res.bBinnen || res.bBuiten)) return res;
    }
    VX_ASSERT_TEXT(!(res.bBinnen && res.bBuiten), "!(Res.bBinnen&&Res.bBuiten)");
    if (res.bBinnen || res.bBuiten) return res;
    // Every point lay on the boundary: the middles of the stretches decide.
    for (int i = 0; i < Lijn.GetSize() - 1; i = Lijn.nNextLinePart(i)) {
        CVXCoord midden;
        midden.SchuifOverLijnDeel(Lijn, i, Lijn.dLijnLengte(i) / 2.0);
        res |= PuntInPolygoon(midden);
        if (res.bBinnen || res.bBuiten) return res;
    }
    return res;
}

short CVXCoordArr::nPuntArrBinnenPuntArr(const CVXCoordArr &Poly) const {
    // Kept on purpose: bOp is read first, so a line that starts on the boundary and goes on
    // inside answers 0, not 1; callers rely on that early stop leaving both flags set.
    return nAlsGetal(Poly.LijnInPolygoon(*this, false));
}

namespace {

KlokRichting RichtingVan(double dS) {
    if (dS < 0.0) return KlokMee;
    if (dS > 0.0) return KlokTegen;
    return KlokOnbepaald;
}

// Twice the signed area of the raw points, the last taken to repeat the first.
double dRuweSom(const CVXCoordArr &arr) {
    const int n = arr.GetSize();
    double dS = arr.Pt(0).m_dX * (arr.Pt(1).m_dY - arr.Pt(n - 2).m_dY);
    for (int i = 1; i <= n - 2; ++i)
        dS += arr.Pt(i).m_dX * (arr.Pt(i + 1).m_dY - arr.Pt(i - 1).m_dY);
    return dS;
}

} // namespace

KlokRichting CVXCoordArr::Draairichting() const {
    constexpr int nMinPunten = 3;
    if (GetSize() < nMinPunten) return KlokOnbepaald;
    if (!SnijdtZichzelfSimple()) return RichtingVan(dRuweSom(*this));
    // The general trace: an information line of the process log.
    LogToHost(kLogInfo, CVXString(u"NonSimple polygon"));
    double dOpp = 0.0;
    if (!bOppervlakNoAbs(&dOpp)) return KlokOnbepaald;
    return RichtingVan(dOpp);
}

} // namespace vx
