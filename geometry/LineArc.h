// Small carriers of lines and arcs for the planar solver, and the digested form of an arc.
//
// The solver itself (circle through three points, arc parameters, line-line, line-circle and
// circle-circle intersection, point-in-stretch decisions) is made of members of CVXCoord and
// CVXCoordArr; see geometry/VXCoord.h. It works on the infinite carriers, the infinite line and
// the whole circle, in plain double arithmetic with the fixed tolerances of
// geometry/Tolerances.h; deciding whether a solution lies within a stretch is a separate step.
#pragma once

#include "platform/VXExport.h"

#include "geometry/VXCoord.h"
#include "platform/Object.h"

namespace vx VX_API {

// Two points by value with a table of two pointers at them, to pass a local line.
class CSimpleLine {
public:
    CVXCoord m_Punten[2];
    CVXCoord *m_pPunten[2];

    CSimpleLine();
    CSimpleLine(const CVXCoord &A, const CVXCoord &B);
    // Kept on purpose: a copy takes the pointer table as it is, so it points at the source's
    // points and is usable only while the source lives; callers pass copies on within a scope.
    CSimpleLine(const CSimpleLine &other);
    CSimpleLine &operator=(const CSimpleLine &other);

    operator const CVXCoord * const *() const { return m_pPunten; }
};

// Three points by value (start, support, end) with a table of three pointers at them.
class CSimpleBoog {
public:
    CVXCoord m_Punten[3];
    CVXCoord *m_pPunten[3];

    CSimpleBoog();
    CSimpleBoog(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C);
    // Kept on purpose, as for CSimpleLine: the copy's table points at the source's points.
    CSimpleBoog(const CSimpleBoog &other);
    CSimpleBoog &operator=(const CSimpleBoog &other);

    operator const CVXCoord * const *() const { return m_pPunten; }
};

// An arc digested: centre, end angles, opening, radius and sense, computed once by BoogPar.
class CBoogInfo : public CObject {
public:
    explicit CBoogInfo(const CVXCoord *const *pts);
    ~CBoogInfo() override = default;

    CVXCoord m_Middelpunt;
    double m_dStartHoek = dNaN;
    double m_dEindHoek = dNaN;
    double m_dSweep = dNaN; // the opening, always positive
    double m_dStraal = dNaN;
    short m_nRichting = 0;
    bool m_bGeldig = false; // when false, the angles and the opening are NaN
};

} // namespace VX_API
