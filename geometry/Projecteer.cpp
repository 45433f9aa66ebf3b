// Projection of a point on a line, circle or arc, walking along a stretch, and heights by
// interpolation: the members of CVXCoord that query one point against one stretch.
#include "geometry/Deel.h"
#include "geometry/Tolerances.h"
#include "geometry/VXCoord.h"
#include "geometry/VXCoordArr.h"
#include "platform/Assert.h"

#include <cmath>
#include <numbers>

namespace vx {

namespace {

bool bHeeftZ(const CVXCoord &p) {
    return !std::isnan(p.m_dZ);
}

// The third vertex of a triangle, given the indices of the other two. The diagonal is never
// asked for a proper triangle; it names another vertex so the index stays in range.
constexpr int nDerde[3][3] = {{1, 2, 1}, {2, 2, 0}, {1, 0, 0}};

// Solves P − a = t·v + s·w in the plane through dDeel; false when the arrangement degenerates.
bool bLosDriehoekOp(const CVXCoord &P, const CVXCoord &a, const CVXCoord &v, const CVXCoord &w,
                    double &t, double &s) {
    const double px = P.m_dX - a.m_dX;
    const double py = P.m_dY - a.m_dY;
    const double det = v.m_dX * w.m_dY - v.m_dY * w.m_dX;
    t = dDeel(px * w.m_dY - py * w.m_dX, det);
    s = dDeel(v.m_dX * py - v.m_dY * px, det);
    return !std::isnan(t) && !std::isnan(s);
}

} // namespace

void CVXCoord::Projecteer(const CVXCoord *const *line, const CVXCoord &q) {
    const CVXCoord &A = *line[0];
    const double ux = line[1]->m_dX - A.m_dX;
    const double uy = line[1]->m_dY - A.m_dY;
    const double t = dDeel(ux * (q.m_dX - A.m_dX) + uy * (q.m_dY - A.m_dY), ux * ux + uy * uy);
    if (std::isnan(t)) {
        Copy(A);
        return;
    }
    // A plain foot: written directly, with no change marks and the Z left alone.
    m_dX = A.m_dX + t * ux;
    m_dY = A.m_dY + t * uy;
}

bool CVXCoord::bProjecteerLijn(const CVXCoord &pt, const CVXCoord *const *line) {
    CVXCoord L;
    L.Projecteer(line, pt);
    if (L.nPuntInLine(line, false) == 0) return false;
    CopyNoS(L);
    return true;
}

bool CVXCoord::bProjecteerLijn(const CVXCoord *const *line, double dTol) {
    CVXCoord L;
    L.Projecteer(line, *this);
    if (dDist(L) > dTol) return false;
    if (L.nPuntInLine(line, false) == 0) return false;
    CopyNoS(L);
    return true;
}

bool CVXCoord::bProjecteerCirkel(const CVXCoord &pt, const CVXCoord *const *arc) {
    if (nBoogRichting(arc) == 0) return false;
    if (!bMiddelPunt(arc)) return false;
    const double r = dDist(*arc[0]);
    const double h = dHoek(pt);
    Schuif(r, h);
    return true;
}

bool CVXCoord::bProjecteerCirkel(const CVXCoord *const *arc, double dTol) {
    CVXCoord L;
    if (!L.bProjecteerCirkel(*this, arc) || dDist(L) > dTol) return false;
    Copy(L);
    return true;
}

bool CVXCoord::bProjecteerBoog(const CVXCoord &pt, const CVXCoord *const *arc) {
    if (!bProjecteerCirkel(pt, arc)) return false;
    return nPuntInBoog(arc, false) != 0;
}

bool CVXCoord::bProjecteerBoog(const CVXCoord *const *arc, double dTol) {
    CVXCoord L;
    if (!L.bProjecteerBoog(*this, arc) || dDist(L) > dTol) return false;
    Copy(L);
    return true;
}

double CVXCoord::Dist2D3D(const CVXCoord *const *line) const {
    const CVXCoord &A = *line[0];
    const CVXCoord &B = *line[1];
    if (bHeeftZ(*this) && bHeeftZ(A) && bHeeftZ(B)) {
        const CVXCoord AB = B - A;
        return dDeel((AB * (A - *this)).dLengte(), AB.dLengte());
    }
    const double dTeller =
        std::fabs((B.m_dX - A.m_dX) * (A.m_dY - m_dY) - (A.m_dX - m_dX) * (B.m_dY - A.m_dY));
    return dDeel(dTeller, A.dDist(B));
}

double CVXCoord::ZwaartePunt(const CVXCoord *const *pts) {
    Projecteer(pts, *pts[2]);
    const double h = dDist(*pts[2]);
    if (h == 0.0) return 0.0;
    const double a = dHoek(*pts[2]);
    // Halfway up the height over the middle of the base; not the triangle's centroid.
    Midden(*pts[0], *pts[1]);
    Schuif(h / 2.0, a);
    return h;
}

void CVXCoord::DraaiOverBoog(const CVXCoord *const *arc, double d) {
    CVXCoord C;
    if (!C.bMiddelPunt(arc)) {
        Schuif(*arc[0], d, arc[0]->dHoek(*arc[1]), false);
        return;
    }
    const double r = C.dDist(*arc[0]);
    const double h = C.dHoek(*arc[0]);
    const int s = nBoogRichting(arc);
    Schuif(C, r, h - s * d / r, false);
}

bool CVXCoord::ZUitDriehoek(const CVXCoord *const *pts) {
    if (nBoogRichting(pts) == 0) return false;
    int a = 0, b = 0;
    for (int i = 1; i < 3; ++i) {
        if (pts[i]->m_dX < pts[a]->m_dX) a = i;
        if (pts[i]->m_dX > pts[b]->m_dX) b = i;
    }
    VX_ASSERT(a != b);
    for (int nPoging = 0; nPoging < 3; ++nPoging) {
        const int c = nDerde[a][b];
        const CVXCoord &A = *pts[a];
        const CVXCoord v = *pts[b] - A;
        const CVXCoord w = *pts[c] - *pts[b];
        double t = 0.0, s = 0.0;
        if (bLosDriehoekOp(*this, A, v, w, t, s)) {
            SetZ(A.m_dZ + t * v.m_dZ + s * w.m_dZ);
            return true;
        }
        // Retry with the third vertex in the place of the first.
        a = c;
    }
    return false;
}

// ---- arcs in space ----------------------------------------------------------------------------

bool CVXCoord::BoogSteun3D(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C, double r,
                           bool bKant) {
    if (!bHeeftZ(A) || !bHeeftZ(B) || !bHeeftZ(C)) return false;
    const double d = A.dDist2D3D(B);
    if (2.0 * r < d) r = d / 2.0;
    const CVXCoord U = A - B;
    const CVXCoord N = C * U;
    const double k = dDeel(d, N.dLengte());
    if (std::isnan(k)) return false;
    const CVXCoord W = k * N;
    CVXCoord lokaal;
    if (!lokaal.LokaalSteun(r / d, bKant)) return false;
    // The unit chord runs from B (0, 0) to A (1, 0); W spans its perpendicular.
    *this = U * lokaal.m_dX + W * lokaal.m_dY + B;
    return true;
}

bool CVXCoord::LokaalSteun(double dR, bool bKant) {
    const CVXCoord O(0.0, 0.0, 0.0, 1);
    const CVXCoord E(1.0, 0.0, 0.0, 1);
    CVXCoord M;
    // The two candidate centres lie below (bMin) and above the chord; the middle of the shorter
    // arc lies on the other side of the chord from its centre.
    if (!M.bBogenSnijpunt(O, E, dR, dR, bKant)) return false;
    SetXY(0.5, bKant ? M.m_dY + dR : M.m_dY - dR);
    return true;
}

bool CVXCoord::HulpAs(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C) {
    if (!bHeeftZ(A) || !bHeeftZ(B) || !bHeeftZ(C)) return false;
    const CVXCoord AB = B - A;
    CVXCoord V = (AB * (C - A)) * AB;
    double k = dDeel(AB.dLengte(), V.dLengte());
    if (std::isnan(k)) {
        // C on the carrier of AB spans no plane: any perpendicular of AB serves.
        if (!AB.Lood3D(V)) return false;
        k = dDeel(AB.dLengte(), V.dLengte());
        if (std::isnan(k)) return false;
    }
    *this = V * k;
    return true;
}

bool CVXCoord::Normaal(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C) {
    if (!bHeeftZ(A) || !bHeeftZ(B) || !bHeeftZ(C)) return false;
    const CVXCoord N = (B - A) * (C - A);
    const double k = dDeel(1.0, N.dLengte());
    if (std::isnan(k)) return false;
    *this = N * k;
    return true;
}

// ---- along a line -----------------------------------------------------------------------------

bool CVXCoord::bProjecteer(const CVXCoord &pt, const CVXCoordArr &lijn, int *pnIndex) {
    VX_ASSERT_TEXT(*pnIndex < lijn.GetSize() - 1, "*pnIndex<Lijn.GetSize()-1");
    const int i = *pnIndex;
    CVXCoord L;
    bool bGelukt = false;
    if (lijn.bCirkel()) {
        *pnIndex += 2;
        const CVXCoord *const boog[3] = {&lijn.Pt(0), &lijn.Pt(1), &lijn.Pt(2)};
        bGelukt = L.bProjecteerCirkel(pt, boog);
    } else if (lijn.bBoog(i)) {
        *pnIndex += 2;
        const CVXCoord *const boog[3] = {&lijn.Pt(i), &lijn.Pt(i + 1), &lijn.Pt(i + 2)};
        bGelukt = L.bProjecteerBoog(pt, boog);
    } else {
        // A spline stretch is projected on its chord.
        *pnIndex += 1;
        const CVXCoord *const line[2] = {&lijn.Pt(i), &lijn.Pt(i + 1)};
        bGelukt = L.bProjecteerLijn(pt, line);
    }
    if (bGelukt) Copy(L);
    return bGelukt;
}

void CVXCoord::SchuifOverLijnDeel(const CVXCoordArr &lijn, int i, double d) {
    int e = i + 1;
    if (lijn.bBoog(i) || (lijn.bCirkel() && i == 0)) {
        const CVXCoord *const boog[3] = {&lijn.Pt(i), &lijn.Pt(i + 1), &lijn.Pt(i + 2)};
        DraaiOverBoog(boog, d);
        e = i + 2;
    } else {
        Schuif(lijn.Pt(i), d, lijn.Pt(i).dHoek(lijn.Pt(i + 1)), false);
    }
    const double z0 = lijn.Pt(i).m_dZ, z1 = lijn.Pt(e).m_dZ;
    if (std::isnan(z0) || std::isnan(z1)) return;
    const double L = lijn.dLijnLengte(i);
    // Kept on purpose: at d = 0 the height is the mean of the two ends, not the start's;
    // nSchuifOverLijn corrects it afterwards through bInterpoleerZ, stored data relies on this.
    if (d == 0.0 || L == 0.0)
        SetZ((z0 + z1) / 2.0);
    else
        SetZ(z0 + (z1 - z0) * d / L);
}

int CVXCoord::nSchuifOverLijn(const CVXCoordArr &lijn, double d) {
    int i = 0;
    double c = 0.0;
    bool bEinde = true;
    while (i < lijn.GetSize() - 1) {
        const double n = c + lijn.dLijnLengte(i);
        if (d <= n) {
            bEinde = false;
            break;
        }
        c = n;
        i = lijn.nNextLinePart(i);
    }
    // Kept on purpose: past the end, the overshoot is measured from the start of the last
    // stretch while c holds the whole length, so the point lands just past that start.
    if (bEinde) i = lijn.nPrevLinePart(i);
    SchuifOverLijnDeel(lijn, i, d - c);
    bInterpoleerZ(&lijn, i);
    return i;
}

bool CVXCoord::bInterpoleerZ(const CVXCoordArr *lijn, int i) {
    VX_ASSERT_TEXT(lijn->bPuntInLijnDeel(*this, i), "Lijn->bPuntInLijnDeel(*this,nI)");
    const double L = lijn->dLijnLengte(i);
    const double d = lijn->dLengteInLijn(i, *this);
    int k = i;
    if (lijn->bCirkelKromme(i) && !lijn->bVoorSteun(*this, i)) k = i + 1;
    const double z0 = lijn->Pt(k).m_dZ, z1 = lijn->Pt(k + 1).m_dZ;
    if (std::isnan(z0) || std::isnan(z1)) return false;
    // On an arc t is the fraction of the whole arc while z0 and z1 belong to the half that
    // holds the point: that mixture is how heights along arcs have always been defined.
    const double t = dDeel(d, L);
    m_dZ = std::isnan(t) ? (z0 + z1) / 2.0 : z0 + (z1 - z0) * t;
    return true;
}

// ---- CVXCoordArr ------------------------------------------------------------------------------

void CVXCoordArr::Projecteer(CVXCoord &punt, int i, const CVXCoord &q) const {
    const int s = nStartDeel(i + 1);
    if (bBoog(s)) {
        const CVXCoord *const boog[3] = {&Pt(s), &Pt(s + 1), &Pt(s + 2)};
        if (punt.bProjecteerBoog(q, boog)) return;
    }
    if (bCirkel()) {
        const CVXCoord *const boog[3] = {&Pt(0), &Pt(1), &Pt(2)};
        if (punt.bProjecteerCirkel(q, boog)) return;
    }
    const CVXCoord *const line[2] = {&Pt(s), &Pt(s + 1)};
    punt.Projecteer(line, q);
}

void CVXCoordArr::InterpoleerZ(CVXCoord &punt, int i, double dZ) const {
    if (!std::isnan(dZ)) punt.SetZ(dZ);
    int k = 0;
    if (bBoog(i)) {
        k = bVoorSteun(punt, i) ? 0 : 1;
    } else if (bCirkel()) {
        VX_ASSERT_TEXT(GetSize() == 4, "GetSize()==4");
        k = bVoorSteun(punt, i) ? 0 : (bVoorSteun(punt, i + 1) ? 1 : 2);
    }
    const CVXCoord &A = Pt(i + k), &B = Pt(i + k + 1);
    if (std::isnan(A.m_dZ) || std::isnan(B.m_dZ)) return;
    const double d0 = punt.dDist(A), d1 = punt.dDist(B);
    // A plain quotient: a point on both ends at once gives NaN.
    punt.SetZ(A.m_dZ + (B.m_dZ - A.m_dZ) * d0 / (d0 + d1));
}

void CVXCoordArr::BerekenZ(CVXCoord &punt, int i, double dZ, double dZ2) const {
    if (std::isnan(dZ2))
        InterpoleerZ(punt, i, dZ);
    else
        punt.SetZ(dZ2);
}

namespace {

// The opening from angle h0 to angle h1 around a centre, walked in the arc's sense.
double dOpening(double h0, double h1, int nRichting) {
    double a = h1 - h0;
    if (a < 0.0) a += 2.0 * std::numbers::pi;
    return nRichting > 0 ? 2.0 * std::numbers::pi - a : a;
}

} // namespace

bool CVXCoordArr::bHalveSteunPunten(int i, CVXCoord &a, CVXCoord &b) const {
    VX_ASSERT_TEXT(bCirkel() || bBoog(i), "bCirkel() || bBoog(nI)");
    const CVXCoord &S = Pt(i), &M = Pt(i + 1), &E = Pt(i + 2);
    const CVXCoord *const boog[3] = {&S, &M, &E};
    CVXCoord C;
    double r = 0.0;
    short s = 0;
    if (!C.BoogPar(r, s, boog)) return false;
    const double alfa = dOpening(C.dHoek(S), C.dHoek(M), s);
    const double beta = dOpening(C.dHoek(M), C.dHoek(E), s);
    a.CopyNoS(S);
    a.Transform(C, C, -s * alfa / 2.0, 1.0);
    b.CopyNoS(M);
    b.Transform(C, C, -s * beta / 2.0, 1.0);
    a.InterpoleerZ(S, M);
    b.InterpoleerZ(M, E);
    return true;
}

double CVXCoordArr::dHoekInLijn(const CVXCoord &pt, int i) const {
    const bool bBoogDeel = bBoog(i);
    if (bBoogDeel || bCirkel()) {
        const int k = bBoogDeel ? i : 0;
        const CVXCoord *const boog[3] = {&Pt(k), &Pt(k + 1), &Pt(k + 2)};
        CVXCoord C;
        if (C.bMiddelPunt(boog)) {
            const double h = C.dHoek(pt) + std::numbers::pi / 2.0;
            return CVXCoord::nBoogRichting(boog) > 0 ? h - std::numbers::pi : h;
        }
    }
    return Pt(i).dHoek(Pt(i + 1));
}

} // namespace vx
