// Curves turned into other curves: arcs into chords, a circle into two arcs, and the cubic
// spline through a run of spline points.
//
// nCubSplin fits a natural cubic spline (zero second derivative at both ends) through the
// points with chord-length knots, solved as a tridiagonal system; each row of the table is one
// interval rescaled to the parameter range 0 to 1, which is what CVXCoord::Horner evaluates.
#include "geometry/LineArc.h"
#include "geometry/Tolerances.h"
#include "geometry/VXCoordArr.h"
#include "platform/Assert.h"

#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

namespace vx {

namespace {

constexpr double d2Pi = 2.0 * std::numbers::pi;

// The chord count of an arc, truncated to 16 bits the way the stored drawings were made: a
// value that does not fit a 32-bit integer (a tolerance of 0, a NaN) gives 0, larger values
// keep their low 16 bits.
int nBoogDelen(const CBoogInfo &info, double dTol) {
    const double a = std::acos((info.m_dStraal - dTol) / info.m_dStraal);
    const double v = (d2Pi / a + 1.0) * (info.m_dSweep / d2Pi);
    constexpr double dInt32Grens = 0x1p31; // the first value a 32-bit integer cannot hold
    if (!(v >= 0.0 && v < dInt32Grens)) return 0;
    return static_cast<unsigned short>(static_cast<int32_t>(v));
}

// Appends the points of one arc (the start is already there): chords within dTol of the arc,
// then the end point, all with section code 0.
void VoegBoogToe(CVXCoordArr &nieuw, const CVXCoord *const *boog, const CVXCoord &eind,
                 double dTol) {
    const CBoogInfo info(boog);
    if (info.m_bGeldig && info.m_dStraal > dTol) {
        int n = nBoogDelen(info, dTol);
        if (n != 0 && n < nMinBoogDelen) n = nMinBoogDelen;
        const CVXCoord &start = *boog[0];
        const bool bZ = !std::isnan(start.m_dZ) && !std::isnan(eind.m_dZ);
        const double dStap = -info.m_nRichting * info.m_dSweep / n;
        for (int k = 1; k < n; ++k) {
            const double h = info.m_dStartHoek + k * dStap;
            const double z = bZ ? start.m_dZ + (eind.m_dZ - start.m_dZ) * k / n : dNaN;
            CVXCoord p;
            p.Copy(info.m_Middelpunt.m_dX + info.m_dStraal * std::cos(h),
                   info.m_Middelpunt.m_dY + info.m_dStraal * std::sin(h), z);
            p.SetSectie(nSectieRecht);
            nieuw.Add(&p);
        }
    }
    const int nEind = nieuw.Add(&eind);
    nieuw.GetAt(nEind)->SetSectie(nSectieRecht);
}

// Solves the natural spline's second derivatives for one axis (Thomas algorithm).
void TweedeAfgeleiden(const std::vector<double> &h, const std::vector<double> &v,
                      std::vector<double> &M) {
    const size_t m = h.size();
    M.assign(m + 1, 0.0);
    if (m < 2) return;
    std::vector<double> diag(m + 1), rhs(m + 1);
    for (size_t i = 1; i < m; ++i) {
        diag[i] = 2.0 * (h[i - 1] + h[i]);
        rhs[i] = 6.0 * ((v[i + 1] - v[i]) / h[i] - (v[i] - v[i - 1]) / h[i - 1]);
    }
    for (size_t i = 2; i < m; ++i) {
        const double f = h[i - 1] / diag[i - 1];
        diag[i] -= f * h[i - 1];
        rhs[i] -= f * rhs[i - 1];
    }
    for (size_t i = m - 1; i >= 1; --i)
        M[i] = (rhs[i] - h[i] * M[i + 1]) / diag[i];
}

} // namespace

bool CVXCoordArr::bArcsToLines(double dTol) {
    const bool bIsCirkel = bCirkel();
    int nStart = -1;
    if (bIsCirkel) {
        nStart = 0;
    } else {
        for (int i = 0; i < GetSize() - 1; i = nNextLinePart(i))
            if (bBoog(i)) {
                nStart = i;
                break;
            }
    }
    if (nStart < 0) return false;
    std::unique_ptr<CVXCoordArr> nieuw(NewL(false));
    for (int i = 0; i <= nStart; ++i)
        nieuw->Add(&Pt(i));
    for (int i = nStart; i < GetSize() - 1; i = nNextLinePart(i)) {
        if (bCirkelKromme(i)) {
            const CVXCoord *const boog[3] = {&Pt(i), &Pt(i + 1), &Pt(i + 2)};
            // A circle closes on its first point.
            VoegBoogToe(*nieuw, boog, bIsCirkel ? Pt(0) : Pt(i + 2), dTol);
        } else {
            nieuw->Add(&Pt(i + 1));
        }
    }
    SetCopy(*nieuw);
    return true;
}

void CVXCoordArr::Circle2Arcs() {
    VX_ASSERT_TEXT(bCirkel(), "bCirkel()");
    if (!bCirkel()) return;
    CVXCoord M1, M2;
    if (!bHalveSteunPunten(1, M1, M2)) return;
    InsertAt(3, &M2);
    for (int i = 1; i <= 4; ++i)
        GetAt(i)->SetSectie(nSectieBoog);
}

int CVXCoordArr::nCubSplin(int nI, double (*&pCoef)[4][2]) const {
    pCoef = nullptr;
    const int m = nTelSplinePunten(nI);
    if (nI < 0 || m < 2) return 0;
    std::vector<double> h(static_cast<size_t>(m));
    std::vector<double> v[2];
    for (int as = 0; as < 2; ++as)
        v[as].resize(static_cast<size_t>(m) + 1);
    for (int k = 0; k <= m; ++k) {
        v[0][static_cast<size_t>(k)] = Pt(nI + k).m_dX;
        v[1][static_cast<size_t>(k)] = Pt(nI + k).m_dY;
        if (k < m) {
            h[static_cast<size_t>(k)] = Pt(nI + k).dDist(Pt(nI + k + 1));
            // Coinciding neighbours give no knot interval; no spline then.
            if (!(h[static_cast<size_t>(k)] > 0.0)) return 0;
        }
    }
    auto *pTabel = new double[static_cast<size_t>(m)][4][2];
    for (int as = 0; as < 2; ++as) {
        std::vector<double> M;
        TweedeAfgeleiden(h, v[as], M);
        for (size_t i = 0; i < static_cast<size_t>(m); ++i) {
            const double hi = h[i];
            const double b = (v[as][i + 1] - v[as][i]) / hi - hi * (2.0 * M[i] + M[i + 1]) / 6.0;
            pTabel[i][0][as] = v[as][i];
            pTabel[i][1][as] = b * hi;
            pTabel[i][2][as] = M[i] * hi * hi / 2.0;
            pTabel[i][3][as] = (M[i + 1] - M[i]) * hi * hi / 6.0;
        }
    }
    pCoef = pTabel;
    return m;
}

} // namespace vx
