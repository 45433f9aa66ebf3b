#include "geometry/LineArc.h"

#include "geometry/Deel.h"
#include "geometry/Tolerances.h"
#include "geometry/VXCoordArr.h"
#include "platform/Assert.h"
#include "platform/UserPrompt.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace vx {

namespace {

constexpr double d2Pi = 2.0 * std::numbers::pi;

// A new solution point: planar, section code 1.
CVXCoord *NieuwPunt(double x, double y) {
    return new CVXCoord(x, y);
}

// Whether the point lies on the start or the end of a stretch, or on neither.
int nOpEinde(const CVXCoord &pt, const CVXCoord &start, const CVXCoord &eind) {
    if (pt.dDist(start) < dPuntTol) return CVXCoord::nLijnStart;
    if (pt.dDist(eind) < dPuntTol) return CVXCoord::nLijnEind;
    return CVXCoord::nLijnBuiten;
}

// Whether v lies between the two ends, inclusive; an axis along which the ends agree is not
// looked at.
bool bTussen(double v, double a, double b) {
    if (a == b) return true;
    return a < b ? (v >= a && v <= b) : (v >= b && v <= a);
}

// The snap of the non-const point tests: a hit on an end makes the point a full copy of it.
int nSnapOpEinde(CVXCoord &pt, int nRes, const CVXCoord &start, const CVXCoord &eind) {
    if (nRes == CVXCoord::nLijnStart)
        pt.Copy(start);
    else if (nRes == CVXCoord::nLijnEind)
        pt.Copy(eind);
    return nRes;
}

// The arc test once the ends are settled: straight arcs by their two halves, curved ones by the
// side of the chord the point lies on.
int nPuntOpBoogLichaam(const CVXCoord &pt, const CVXCoord *const *arc, bool bRecht, int nRichting,
                       bool bGeenEinden) {
    if (bRecht) {
        const CVXCoord *const eerste[2] = {arc[0], arc[1]};
        const CVXCoord *const tweede[2] = {arc[1], arc[2]};
        return (pt.nPuntInLine(eerste, bGeenEinden) != CVXCoord::nLijnBuiten ||
                pt.nPuntInLine(tweede, bGeenEinden) != CVXCoord::nLijnBuiten)
                   ? CVXCoord::nLijnBinnen
                   : CVXCoord::nLijnBuiten;
    }
    const int s = CVXCoord::nBoogRichting(*arc[0], pt, *arc[2]);
    if (s == 0) return CVXCoord::nLijnBinnen;
    return s == nRichting ? CVXCoord::nLijnBinnen : CVXCoord::nLijnBuiten;
}

} // namespace

// ---- CSimpleLine, CSimpleBoog, CBoogInfo ------------------------------------------------------

CSimpleLine::CSimpleLine() : m_pPunten{&m_Punten[0], &m_Punten[1]} {}

CSimpleLine::CSimpleLine(const CVXCoord &A, const CVXCoord &B)
    : m_Punten{A, B}, m_pPunten{&m_Punten[0], &m_Punten[1]} {}

CSimpleLine::CSimpleLine(const CSimpleLine &other)
    : m_Punten{other.m_Punten[0], other.m_Punten[1]}, m_pPunten{other.m_pPunten[0],
                                                                other.m_pPunten[1]} {}

CSimpleLine &CSimpleLine::operator=(const CSimpleLine &other) {
    for (int i = 0; i < 2; ++i) {
        m_Punten[i] = other.m_Punten[i];
        m_pPunten[i] = other.m_pPunten[i];
    }
    return *this;
}

CSimpleBoog::CSimpleBoog() : m_pPunten{&m_Punten[0], &m_Punten[1], &m_Punten[2]} {}

CSimpleBoog::CSimpleBoog(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C)
    : m_Punten{A, B, C}, m_pPunten{&m_Punten[0], &m_Punten[1], &m_Punten[2]} {}

CSimpleBoog::CSimpleBoog(const CSimpleBoog &other)
    : m_Punten{other.m_Punten[0], other.m_Punten[1], other.m_Punten[2]}, m_pPunten{
                                                                             other.m_pPunten[0],
                                                                             other.m_pPunten[1],
                                                                             other.m_pPunten[2]} {}

CSimpleBoog &CSimpleBoog::operator=(const CSimpleBoog &other) {
    for (int i = 0; i < 3; ++i) {
        m_Punten[i] = other.m_Punten[i];
        m_pPunten[i] = other.m_pPunten[i];
    }
    return *this;
}

CBoogInfo::CBoogInfo(const CVXCoord *const *pts) {
    m_bGeldig = m_Middelpunt.BoogPar(m_dStraal, m_nRichting, pts);
    if (!m_bGeldig) return;
    m_dStartHoek = m_Middelpunt.dHoek(*pts[0]);
    m_dEindHoek = m_Middelpunt.dHoek(*pts[2]);
    if (pts[1]->m_nSectie == nSectieCirkel) {
        m_dSweep = d2Pi;
        return;
    }
    double a = m_dEindHoek - m_dStartHoek;
    if (a < 0.0) a += d2Pi;
    m_dSweep = m_nRichting > 0 ? d2Pi - a : a;
}

// ---- circles ----------------------------------------------------------------------------------

bool CVXCoord::bMiddelPunt(const CVXCoord *const *pts) {
    const CVXCoord &P1 = *pts[1];
    const double ax = pts[0]->m_dX - P1.m_dX;
    const double ay = pts[0]->m_dY - P1.m_dY;
    const double bx = pts[2]->m_dX - P1.m_dX;
    const double by = pts[2]->m_dY - P1.m_dY;
    const double D = 2.0 * (ax * by - ay * bx);
    const double a2 = ax * ax + ay * ay;
    const double b2 = bx * bx + by * by;
    const double ux = dDeel(by * a2 - ay * b2, D);
    const double uy = dDeel(ax * b2 - bx * a2, D);
    if (std::isnan(ux) || std::isnan(uy)) return false;
    m_dX = P1.m_dX + ux;
    m_dY = P1.m_dY + uy;
    return true;
}

bool CVXCoord::BoogPar(double &r, short &nRichting, const CVXCoord *const *pts) {
    nRichting = static_cast<short>(nBoogRichting(pts));
    if (nRichting == 0) return false;
    if (!bMiddelPunt(pts)) return false;
    r = dDist(*pts[0]);
    if (r > dMaxStraal) return false;
    SectorType type;
    const double s = Spread(*pts[0], *pts[2], *this, type);
    if (std::isnan(s)) return false;
    // Only an acute opening can be too thin to trust; obtuse and right ones pass.
    return !(type == Scherp && s < dSpreadMin);
}

// ---- line with line ---------------------------------------------------------------------------

int CVXCoord::nSnijLijn(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C,
                        const CVXCoord &D) {
    const double ux = B.m_dX - A.m_dX, uy = B.m_dY - A.m_dY;
    const double vx = D.m_dX - C.m_dX, vy = D.m_dY - C.m_dY;
    const double wx = C.m_dX - A.m_dX, wy = C.m_dY - A.m_dY;
    const double det = vx * uy - vy * ux;
    const double num = wy * vx - wx * vy;
    const double absDet = std::fabs(det), absNum = std::fabs(num);
    if (absDet < 1.0) {
        if (absDet * dParallelFactor < absNum) return nSnijGeen;
        if (absNum < dSnijTol && absDet < dSnijTol) {
            const bool bLeeg = (ux == 0.0 && uy == 0.0) || (vx == 0.0 && vy == 0.0);
            return bLeeg ? nSnijGeen : nSnijSamen;
        }
    }
    const double t = num / det;
    SetXY(A.m_dX + t * ux, A.m_dY + t * uy);
    return nSnijPunten;
}

int CVXCoord::nSnijLijn(const CVXCoord *const *line1, const CVXCoord *const *line2) {
    return nSnijLijn(*line1[0], *line1[1], *line2[0], *line2[1]);
}

// ---- line with circle -------------------------------------------------------------------------

bool CVXCoord::bLijnBoogSnij(CVXCoord **p1, CVXCoord **p2, const CVXCoord *const *line,
                             const CVXCoord *const *arc) {
    *p1 = *p2 = nullptr;
    CVXCoord C;
    double r = 0.0;
    short nRichting = 0;
    if (!C.BoogPar(r, nRichting, arc)) {
        // A bad arc counts as its chord.
        auto *pS = new CVXCoord();
        if (pS->nSnijLijn(*line[0], *line[1], *arc[0], *arc[2]) == nSnijPunten) {
            *p1 = pS;
            return true;
        }
        delete pS;
        return false;
    }
    const CVXCoord &L0 = *line[0];
    const CVXCoord &L1 = *line[1];
    if (L0.bEqual(L1)) return false;
    const double dx = L1.m_dX - L0.m_dX, dy = L1.m_dY - L0.m_dY;
    const double a = L0.m_dX - C.m_dX, b = L0.m_dY - C.m_dY;
    // Parametrise over the dominant axis: the unknown u runs along it.
    const bool bOverY = std::fabs(dy) >= std::fabs(dx);
    const double m = bOverY ? dx / dy : dy / dx;
    const double c = bOverY ? a - m * b : b - m * a;
    const double A = m * m + 1.0;
    const double B = 2.0 * m * c;
    const double delta = B * B - 4.0 * A * (c * c - r * r);
    if (delta < 0.0) return false;
    const auto oplossing = [&](double u) {
        const double v = m * u + c;
        return bOverY ? NieuwPunt(v + C.m_dX, u + C.m_dY) : NieuwPunt(u + C.m_dX, v + C.m_dY);
    };
    const double wortel = std::sqrt(delta);
    *p1 = oplossing((-B - wortel) / (2.0 * A));
    // No tolerance: only an exactly zero discriminant is a tangent with one point.
    if (delta > 0.0) *p2 = oplossing((wortel - B) / (2.0 * A));
    return true;
}

bool CVXCoord::bLijnBoog2Snij(CVXCoord **p1, CVXCoord **p2, const CVXCoord *const *line,
                              const CVXCoord *const *arc) {
    if (bLijnBoogSnij(p1, p2, line, arc) && *p2 != nullptr) return true;
    // Kept on purpose: the single solution is deleted but *p1 is not cleared; a false result
    // means "no points" and callers never touch the pointers then.
    delete *p1;
    return false;
}

// ---- circle with circle -----------------------------------------------------------------------

int CVXCoord::nBoogBoogSnij(CVXCoord **p1, CVXCoord **p2, const CVXCoord *const *arc1,
                            const CVXCoord *const *arc2) {
    C2DVector C1, C2;
    double r1 = 0.0, r2 = 0.0;
    short n1 = 0, n2 = 0;
    const bool bGeldig1 = C1.BoogPar(r1, n1, arc1);
    const bool bGeldig2 = C2.BoogPar(r2, n2, arc2);
    // A bad arc counts as its chord.
    if (!bGeldig1) {
        const CVXCoord *const koorde[2] = {arc1[0], arc1[2]};
        return bLijnBoogSnij(p1, p2, koorde, arc2) ? nSnijPunten : nSnijGeen;
    }
    if (!bGeldig2) {
        const CVXCoord *const koorde[2] = {arc2[0], arc2[2]};
        return bLijnBoogSnij(p1, p2, koorde, arc1) ? nSnijPunten : nSnijGeen;
    }
    *p1 = *p2 = nullptr;
    const C2DVector V = C2 - C1;
    const double d2 = V.dKwadraat();
    const double somR2 = (r1 + r2) * (r1 + r2);
    const double verschilR2 = (r1 - r2) * (r1 - r2);
    if (d2 > somR2 || d2 < verschilR2) return nSnijGeen;
    if (std::fabs(d2 - somR2) < dRaakTol) {
        *p1 = NieuwPunt(C1.m_dX + V.m_dX * r1 / (r1 + r2), C1.m_dY + V.m_dY * r1 / (r1 + r2));
        return nSnijPunten;
    }
    if (std::fabs(d2 - verschilR2) < dRaakTol) {
        if (verschilR2 < dRaakTol) return nSnijSamen;
        *p1 = NieuwPunt(C1.m_dX + V.m_dX * r1 / (r1 - r2), C1.m_dY + V.m_dY * r1 / (r1 - r2));
        return nSnijPunten;
    }
    const double d = std::sqrt(d2);
    const double ex = V.m_dX / d, ey = V.m_dY / d;
    const double a = 0.5 * (d + (r1 * r1 - r2 * r2) / d);
    if (a > r1) {
        CVXString text;
        text.Format(u"Nauwkeurigheids probleem bij het berekenen van de snijpunten van 2 bogen: "
                    u"%8.3f,%8.3f en %8.3f,%8.3f",
                    arc1[0]->m_dX, arc1[0]->m_dY, arc2[0]->m_dX, arc2[0]->m_dY);
        LogToHost(kLogInfo, text);
        return nSnijGeen;
    }
    const double h = std::sqrt(r1 * r1 - a * a);
    *p1 = NieuwPunt(C1.m_dX + (a * ex - h * ey), C1.m_dY + (a * ey + h * ex));
    *p2 = NieuwPunt(C1.m_dX + (a * ex + h * ey), C1.m_dY + (a * ey - h * ex));
    return nSnijPunten;
}

bool CVXCoord::bBoogBoog2Snij(CVXCoord **p1, CVXCoord **p2, const CVXCoord *const *arc1,
                              const CVXCoord *const *arc2) {
    // Kept on purpose: the code is read the other way round from bLijnBoog2Snij, so a found
    // solution gives false (the points stay with the caller) and the answer is practically
    // always false. Exported as it has always behaved.
    if (nBoogBoogSnij(p1, p2, arc1, arc2) != nSnijGeen) return false;
    return *p2 != nullptr;
}

bool CVXCoord::bBogenSnijpunt(const CVXCoord &A, const CVXCoord &B, double rA, double rB,
                              bool bMin) {
    const double D = A.dDist(B);
    const double q = dDeel(rA * rA + D * D - rB * rB, 2.0 * rA * D);
    if (std::isnan(q) || q > 1.0 || q < -1.0) return false;
    const double a = std::acos(q);
    const double h = A.dHoek(B);
    Schuif(A, rA, bMin ? h - a : h + a, false);
    return true;
}

bool CVXCoord::bRaaklijn(CVXCoord **pp, const CVXCoord *const *pts, double d) {
    CVXCoord &result = *pp[1];
    if (!result.bMiddelPunt(pts)) return false;
    const CVXCoord &punt = *pp[0];
    const double h = punt.dHoek(result);
    const int s = nBoogRichting(pts);
    result.Schuif(punt, s * d, h + std::numbers::pi / 2.0, false);
    return true;
}

// ---- a point on a stretch ---------------------------------------------------------------------

int CVXCoord::nPuntInLine(const CVXCoord *const *line, bool bGeenEinden) const {
    const CVXCoord &A = *line[0];
    const CVXCoord &B = *line[1];
    if (!bGeenEinden) {
        const int nEinde = nOpEinde(*this, A, B);
        if (nEinde != nLijnBuiten) return nEinde;
    }
    // No collinearity test: the point is known to lie on the carrier.
    if (!bTussen(m_dX, A.m_dX, B.m_dX) || !bTussen(m_dY, A.m_dY, B.m_dY)) return nLijnBuiten;
    return nLijnBinnen;
}

int CVXCoord::nPuntInLine(const CVXCoord *const *line, bool bGeenEinden) {
    return nSnapOpEinde(*this, std::as_const(*this).nPuntInLine(line, bGeenEinden), *line[0],
                        *line[1]);
}

int CVXCoord::nPuntInSpline(const CVXCoord *const *line, bool bGeenEinden) const {
    if (!bGeenEinden) {
        const int nEinde = nOpEinde(*this, *line[0], *line[1]);
        if (nEinde != nLijnBuiten) return nEinde;
    }
    // Without a notion of the curve, every other point is taken to lie on it.
    return nLijnBinnen;
}

int CVXCoord::nPuntInSpline(const CVXCoord *const *line, bool bGeenEinden) {
    return nSnapOpEinde(*this, std::as_const(*this).nPuntInSpline(line, bGeenEinden), *line[0],
                        *line[1]);
}

int CVXCoord::nPuntInBoog(const CVXCoord *const *arc, bool bGeenEinden) const {
    CVXCoord C;
    double r = 0.0;
    short nRichting = 0;
    // This form treats every arc that BoogPar rejects as straight.
    const bool bRecht = !C.BoogPar(r, nRichting, arc);
    if (!bGeenEinden) {
        const int nEinde = nOpEinde(*this, *arc[0], *arc[2]);
        if (nEinde != nLijnBuiten) return nEinde;
    }
    return nPuntOpBoogLichaam(*this, arc, bRecht, nRichting, bGeenEinden);
}

int CVXCoord::nPuntInBoog(const CVXCoord *const *arc, bool bGeenEinden) {
    // This form treats only an arc without a sense as straight.
    const int nRichting = nBoogRichting(arc);
    if (!bGeenEinden) {
        const int nEinde = nOpEinde(*this, *arc[0], *arc[2]);
        if (nEinde != nLijnBuiten) return nSnapOpEinde(*this, nEinde, *arc[0], *arc[2]);
    }
    return nPuntOpBoogLichaam(*this, arc, nRichting == 0, nRichting, bGeenEinden);
}

// ---- per stretch of a line --------------------------------------------------------------------

bool CVXCoordArr::bPuntInLijnDeel(const CVXCoord &pt, int i, LijnTestModus modus) const {
    if (i == 0 && bCirkel()) return true;
    const bool bGeenEinden = modus == nGeenEinden;
    int r = 0;
    if (bBoog(i)) {
        const CVXCoord *const boog[3] = {&Pt(i), &Pt(i + 1), &Pt(i + 2)};
        r = pt.nPuntInBoog(boog, bGeenEinden);
    } else {
        const CVXCoord *const line[2] = {&Pt(i), &Pt(i + 1)};
        r = bSpline(i) ? pt.nPuntInSpline(line, bGeenEinden) : pt.nPuntInLine(line, bGeenEinden);
    }
    // With ends: any hit. Without: only the inside; with ends not looked at, an end point
    // already reads as inside.
    return modus == nMetEinden ? r != CVXCoord::nLijnBuiten : r == CVXCoord::nLijnBinnen;
}

int CVXCoordArr::nSnij(CVXCoord **p1, CVXCoord **p2, const CVXCoordArr &other, int i, int j) const {
    *p1 = *p2 = nullptr;
    if (dLijnLengte(i) < dPuntTol || other.dLijnLengte(j) < dPuntTol) return CVXCoord::nSnijGeen;
    const bool bKrom1 = bCirkelKromme(i);
    const bool bKrom2 = other.bCirkelKromme(j);
    const CVXCoord *const deel1[3] = {&Pt(i), &Pt(i + 1), bKrom1 ? &Pt(i + 2) : nullptr};
    const CVXCoord *const deel2[3] = {&other.Pt(j), &other.Pt(j + 1),
                                      bKrom2 ? &other.Pt(j + 2) : nullptr};
    if (bKrom1 && bKrom2) return CVXCoord::nBoogBoogSnij(p1, p2, deel1, deel2);
    if (bKrom1)
        return CVXCoord::bLijnBoogSnij(p1, p2, deel2, deel1) ? CVXCoord::nSnijPunten
                                                             : CVXCoord::nSnijGeen;
    if (bKrom2)
        return CVXCoord::bLijnBoogSnij(p1, p2, deel1, deel2) ? CVXCoord::nSnijPunten
                                                             : CVXCoord::nSnijGeen;
    // Both straight; a spline stretch counts as its chord.
    auto *pS = new CVXCoord();
    const int nRes = pS->nSnijLijn(deel1, deel2);
    if (nRes == CVXCoord::nSnijPunten)
        *p1 = pS;
    else
        delete pS;
    return nRes;
}

namespace {

// Copies of the two ends of arc k of a line, as the overlap of a circle with that arc.
int nBoogAlsOverlap(CVXCoord **p1, CVXCoord **p2, const CVXCoordArr &lijn, int k) {
    *p1 = new CVXCoord(lijn.Pt(k));
    *p2 = new CVXCoord(lijn.Pt(k + 2));
    return CVXCoordArr::nMaskerOverlap;
}

} // namespace

int CVXCoordArr::nSnijInLijnDeel(CVXCoord **p1, CVXCoord **p2, const CVXCoordArr &other, int i,
                                 int j, bool bBeide, LijnTestModus modus) const {
    const int nRes = nSnij(p1, p2, other, i, j);
    if (nRes == CVXCoord::nSnijPunten) {
        int nMasker = 0;
        if (*p1 && bPuntInLijnDeel(**p1, i, modus)) nMasker |= nMasker1Hier;
        if (*p2 && bPuntInLijnDeel(**p2, i, modus)) nMasker |= nMasker2Hier;
        if (bBeide) {
            if (*p1 && other.bPuntInLijnDeel(**p1, j, modus)) nMasker |= nMasker1Daar;
            if (*p2 && other.bPuntInLijnDeel(**p2, j, modus)) nMasker |= nMasker2Daar;
        }
        // The points stay with the caller, also with a mask of 0.
        return nMasker;
    }
    if (nRes != CVXCoord::nSnijSamen) {
        delete *p1;
        delete *p2;
        *p1 = *p2 = nullptr;
        return nMaskerGeen;
    }
    // The carriers coincide: the overlap of the two stretches.
    const bool bCirkel1 = bCirkel(), bCirkel2 = other.bCirkel();
    if (bCirkel1 && bCirkel2) return nMaskerGeen;
    if (bCirkel1) {
        VX_ASSERT_TEXT(other.bBoog(j), "Punten.bBoog(nJ)");
        return nBoogAlsOverlap(p1, p2, other, j);
    }
    if (bCirkel2) {
        VX_ASSERT_TEXT(bBoog(i), "bBoog(nI)");
        return nBoogAlsOverlap(p1, p2, *this, i);
    }
    VX_ASSERT_TEXT(bBoog(i) == other.bBoog(j), "bBoog(nI)==Punten.bBoog(nJ)");
    const CVXCoord &q1 = other.Pt(j);
    const CVXCoord &q2 = other.Pt(other.nNextLinePart(j));
    const CVXCoord &q3 = Pt(i);
    const CVXCoord &q4 = Pt(nNextLinePart(i));
    const bool b[4] = {bPuntInLijnDeel(q1, i, modus), bPuntInLijnDeel(q2, i, modus),
                       other.bPuntInLijnDeel(q3, j, modus), other.bPuntInLijnDeel(q4, j, modus)};
    if (!b[0] && !b[1] && !b[2] && !b[3]) return nMaskerGeen;
    *p1 = new CVXCoord();
    *p2 = new CVXCoord();
    const CVXCoord *const q[4] = {&q1, &q2, &q3, &q4};
    constexpr int kStartHier = 2; // q3, the start of this line's stretch
    bool bEerste = true;
    for (int k = 0; k < 4; ++k) {
        if (!b[k]) continue;
        // The start of this stretch is not taken twice when it is already the first point.
        if (k == kStartHier && !bEerste && (*p1)->dDist(*q[k]) < dPuntTol) continue;
        if (bEerste) {
            (*p1)->Copy(*q[k]);
            bEerste = false;
        } else {
            (*p2)->Copy(*q[k]);
            return nMaskerOverlap;
        }
    }
    // One touching point on both.
    delete *p2;
    *p2 = nullptr;
    return nMaskerRaak;
}

int CVXCoordArr::nSnijInLijnDeel(CVXCoord **p1, CVXCoord **p2, const CVXCoordArr &other, int i,
                                 int j, bool bBeide) const {
    return nSnijInLijnDeel(p1, p2, other, i, j, bBeide, nMetEinden);
}

} // namespace vx
