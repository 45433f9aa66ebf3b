// CVXCoordArr::nInsertInLine: a point goes into a stretch of any kind and the section coding stays
// valid. An arc is halved into two arcs, each with a new support point in the middle of its half;
// an arc that cannot be halved falls back to straight stretches; a circle becomes two arcs; a
// spline keeps the point in the spline. A vertex of the stretch within the insertion tolerance
// dKopieTol (0.001, wider than the clipper's 0.0005) is taken instead of a new point.
#include "geometry/Tolerances.h"
#include "geometry/VXCoordArr.h"
#include "platform/Assert.h"

namespace vx {

namespace {

constexpr int nPuntenBoog = 3;  // start, support, end
constexpr int nPuntenRecht = 2; // start, end

// The three-point arc start, Q, end, with its halves' support points in M1, M2.
bool bHalveer(const CVXCoord &start, const CVXCoord &Q, const CVXCoord &eind, CVXCoord &M1,
              CVXCoord &M2) {
    CVXCoordArr boog;
    boog.Add(&start);
    boog.Add(&Q);
    boog.Add(&eind);
    boog.GetAt(1)->SetSectie(nSectieBoog);
    boog.GetAt(2)->SetSectie(nSectieBoog);
    return boog.bHalveSteunPunten(0, M1, M2);
}

} // namespace

int CVXCoordArr::nInsertInLine(const CVXCoord &Punt, int nI, bool bCopy) {
    CVXCoord Q(Punt);
    if (bBoog(nI)) {
        VX_ASSERT_TEXT(nI + 2 < GetSize(), "(nI+2)<GetSize()");
        const int nBestaand = CopyIfInTol(Punt, nI, nPuntenBoog, bCopy);
        if (nBestaand != -1) return nBestaand;
        Q.SetSectie(nSectieBoog);
        CVXCoord M1, M2;
        if (bVoorSteun(Punt, nI)) {
            // Before the support point: the old support point serves the second arc.
            if (bHalveer(Pt(nI), Q, Pt(nI + 1), M1, M2)) {
                M1.SetSectie(nSectieBoog);
                InsertAt(nI + 1, &M1);
                InsertAt(nI + 2, &Q);
                return nI + 2;
            }
        } else if (bHalveer(Pt(nI), Q, Pt(nI + 2), M1, M2)) {
            // Behind it: the old support point serves the first arc.
            M2.SetSectie(nSectieBoog);
            InsertAt(nI + 2, &Q);
            InsertAt(nI + 3, &M2);
            return nI + 2;
        }
        // The arc cannot be halved: it falls back to straight stretches.
        GetAt(nI + 1)->SetSectie(nSectieRecht);
        GetAt(nI + 2)->SetSectie(nSectieRecht);
        Q.SetSectie(nSectieRecht);
        const int nDoel = Q.dDist(Pt(nI)) < Pt(nI + 1).dDist(Pt(nI)) ? nI + 1 : nI + 2;
        InsertAt(nDoel, &Q);
        return nDoel;
    }
    if (bCirkel()) {
        VX_ASSERT_TEXT(nI == 0, "nI==0");
        const int nBestaand = CopyIfInTol(Punt, 0, nPuntenBoog, bCopy);
        if (nBestaand != -1) return nBestaand;
        CVXCoordArr kopie(*this);
        if (kopie.GetSize() == nPuntenBoog) kopie.Add(&kopie.Pt(0)); // closed on its first point
        // Q goes before the old point 1, between 1 and 2, or between 2 and the closing point.
        int nDoel = 3;
        if (kopie.bVoorSteun(Q, 0))
            nDoel = 1;
        else if (kopie.bVoorSteun(Q, 1))
            nDoel = 2;
        kopie.SetSize(4);
        kopie.InsertAt(nDoel, &Q);
        for (int i = 1; i <= 4; ++i)
            kopie.GetAt(i)->SetSectie(nSectieBoog);
        Copy(kopie);
        m_bGewijzigd = true;
        return nDoel;
    }
    if (nI + 1 < GetSize()) {
        const int nBestaand = CopyIfInTol(Punt, nI, nPuntenRecht, bCopy);
        if (nBestaand != -1) return nBestaand;
        // A spline stretch gains a point that stays in the spline.
        Q.SetSectie(static_cast<char>(Pt(nI + 1).m_nSectie));
        InsertAt(nI + 1, &Q);
        return nI + 1;
    }
    const int nBestaand = CopyIfInTol(Punt, nI, 1, bCopy);
    if (nBestaand != -1) return nBestaand;
    Q.SetSectie(nSectieRecht);
    Add(&Q);
    return nI + 1;
}

} // namespace vx
