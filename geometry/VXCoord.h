// CVXCoord: the planar point every geometric routine works on, with an optional height, depth
// and precisions, a parameter word, a section code and dirty flags; C2DVector: the same used as a
// vector in the plane.
//
// Method: plain double arithmetic. Every quotient that can degenerate goes through dDeel, so a
// degenerate configuration yields NaN (the unknown value) instead of an infinity; routines fail
// by value (NaN, 0, false, the largest double), never by exception. Equality of points is
// decided by the fixed tolerances of geometry/Tolerances.h.
//
// Lines and arcs are passed as tables of two or three point pointers (`const CVXCoord *const *`);
// result points handed back through `CVXCoord **` are heap objects that the caller deletes.
#pragma once

#include "platform/VXExport.h"

#include "persist/RuntimeCreator.h"
#include "persist/SerObject.h"
#include "platform/VXString.h"
#include "platform/VXTypes.h"

#include <cstdint>

namespace vx VX_API {

class CVXCoordArr;

// The section codes of m_nSectie: how a point joins its predecessor in a line (CVXCoordArr).
enum SectieCode : int {
    nSectieRecht = 0,  // straight from the previous point
    nSectieStart = 1,  // start of a line; also the code of a new point
    nSectieRecht2 = 2, // straight, of the second kind; counts as straight everywhere
    nSectieSpline = 6, // on a spline through a run of such points
    nSectieCirkel = 7, // the whole line is one circle
    nSectieBoog = 8,   // support or end point of an arc
    nSectieDwang = 9   // forced point: a passing state that no valid line holds
};

class CVXCoord : public CSerObject {
    VX_DECLARE_SERIAL(CVXCoord)
public:
    // The kind of angle at the vertex, as Spread classifies it.
    enum SectorType { Scherp = 0, Stomp = 1, Recht = 2 };

    // The dirty flags of m_nChFlags.
    enum : signed char { nChCoord = 1, nChSectie = 2, nChParms = 4 };

    double m_dX = 0.0;
    double m_dY = 0.0;
    double m_dZ = dNaN;
    double m_dDiepte = dNaN;
    double m_dPX = dNaN;
    double m_dPY = dNaN;
    double m_dPZ = dNaN;
    uint16_t m_nHB = 0;
    signed char m_nSectie = 1;
    signed char m_nChFlags = 0;

    CVXCoord() = default;
    CVXCoord(double x, double y);
    CVXCoord(double x, double y, char s);
    CVXCoord(double x, double y, double z, char s);
    CVXCoord(const CVXCoord &other);
    CVXCoord &operator=(const CVXCoord &other);
    ~CVXCoord() override = default;

    // Both serial forms hold the seven doubles and the parameter word; the section code and
    // the dirty flags are in neither, so a loaded point keeps the values it had before.
    void SerializeX(CArchiveX &ar) override;
    void SerializeB(CArchiveB &ar) override;
    // The point as the child element `name`: the fields above inside it.
    void SerializeX(const CVXString &name, CArchiveX &ar);
    // "CVXCoord", the run-time class name and the section code after " S=".
    void Dump(CDumpContext &dc) const override;

    // Readers.
    double dGetX() const { return m_dX; }
    double dGetY() const { return m_dY; }
    double dGetZ() const { return m_dZ; }
    double dGetDiepte() const { return m_dDiepte; }
    double PrecX() const { return m_dPX; }
    double PrecY() const { return m_dPY; }
    double PrecZ() const { return m_dPZ; }
    double PrecXY() const;
    int nGetSectie() const { return m_nSectie; }

    // The parameter word: origin code in bits 0-3, fixed flag in bit 8.
    int nGetHerk() const { return m_nHB & 0x0F; }
    void SetHerk(char nHerk);
    bool bGetFixed() const { return (m_nHB & 0x100) != 0; }
    void SetFixed(bool bFixed);
    unsigned short Parameters() const { return m_nHB; }
    void Parameters(unsigned short nHB) { m_nHB = nHB; }

    // Dirty flags.
    bool bCoordChanged() const { return (m_nChFlags & nChCoord) != 0; }
    bool bSecSnapChanged() const { return (m_nChFlags & nChSectie) != 0; }
    bool bParmsChanged() const { return (m_nChFlags & nChParms) != 0; }
    bool bChanged() const { return m_nChFlags != 0; }
    bool bOnlySecSnapChanged() const { return m_nChFlags == nChSectie; }
    int nGetChFlags() const { return m_nChFlags; }
    void SetCSecSnap() { m_nChFlags |= nChSectie; }
    void SetCParms() { m_nChFlags |= nChParms; }
    virtual bool Gewijzigd() const { return m_nChFlags != 0; }
    virtual void SetUnChanged() { m_nChFlags = 0; }

    // Writers. A position change clears the origin code and marks position and parameters.
    void SetX(double x);
    void SetY(double y);
    void SetZ(double z);
    void SetXY(double x, double y);
    void SetCCoord();
    void Copy(double x, double y, double z);
    void Set(double x, double y, double z, char s);
    void SetSectie(char s);
    void CopySectie(const CVXCoord &other);
    void SetDiepteD(double d);
    void PrecDX(double d);
    void PrecDY(double d);
    void PrecDZ(double d);

    // Copies.
    void Copy(const CVXCoord &other);
    void CopyNoS(const CVXCoord &other);
    void CopyNoZ(const CVXCoord &other);
    void CopyNoZNoS(const CVXCoord &other);
    void Copy(const CVXCoord &other, char s);
    // A fresh heap copy of the most derived type: the one way containers clone points.
    virtual CVXCoord *New() const;

    // Comparison.
    bool bEqual(const CVXCoord &other) const;
    bool bEqualXYZ(const CVXCoord &other) const;
    virtual bool bGelijk(const CVXCoord &other) const;
    bool bGelijkInLijn(const CVXCoord &other) const;
    int nCompPIB(const CVXCoord &other) const;

    // Distances and lengths. The three-reference forms also hand back the differences
    // other − this in X, Y and Z.
    double dDist(const CVXCoord &other) const;
    double dDist2D3D(const CVXCoord &other) const;
    double dDist2D3D(const CVXCoord &other, double &dx, double &dy, double &dz) const;
    double dDist2D3DEx(const CVXCoord &other) const;
    double dDist2D3DEx(const CVXCoord &other, double &dx, double &dy, double &dz) const;
    double dLengte() const;

    // Angles, in radians from the positive X axis towards the positive Y axis.
    double dHoek(const CVXCoord &other) const;
    double dPosHoek(const CVXCoord &other) const;
    static double dHoek(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C);
    static double dPosHoek(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C);
    // 1 for a clockwise turn from A over B to C, −1 for counter-clockwise, 0 when collinear.
    static int nBoogRichting(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C);
    static int nBoogRichting(const CVXCoord *const *pts);
    // The squared sine of the angle at C, and whether that angle is acute, obtuse or right.
    static double Spread(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C, SectorType &type);

    // Displacements and constructions.
    void Midden(const CVXCoord &A, const CVXCoord &B);
    void Schuif(double d, double a);
    void Schuif(const CVXCoord &base, double d, double a, bool bSectie);
    void Transform(const CVXCoord &from, const CVXCoord &to, double a, double s);
    void Horner(int n, double (*c)[4][2], double t);
    bool BepaalEenheidsVector2D(CVXCoord &out, const CVXCoord &to) const;
    bool Lood3D(CVXCoord &out) const;
    void InterpoleerZ(const CVXCoord &A, const CVXCoord &B);

    // Text forms; NaN gives the localised word for "unknown".
    CVXString szGetX() const;
    CVXString szGetY() const;
    CVXString szGetZ() const;
    CVXString szGetPrecX() const;
    CVXString szGetPrecY() const;
    CVXString szGetPrecZ() const;

    // Circles and intersections (geometry/LineArc.cpp).
    bool bMiddelPunt(const CVXCoord *const *pts);
    bool BoogPar(double &r, short &nRichting, const CVXCoord *const *pts);
    // The answers of the intersections of carriers (nSnijLijn, nBoogBoogSnij, nSnij): no
    // solution, solutions found, or the carriers coincide.
    enum SnijRes : int { nSnijGeen = 0, nSnijPunten = 1, nSnijSamen = 2 };
    int nSnijLijn(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C, const CVXCoord &D);
    int nSnijLijn(const CVXCoord *const *line1, const CVXCoord *const *line2);
    static bool bLijnBoogSnij(CVXCoord **p1, CVXCoord **p2, const CVXCoord *const *line,
                              const CVXCoord *const *arc);
    static bool bLijnBoog2Snij(CVXCoord **p1, CVXCoord **p2, const CVXCoord *const *line,
                               const CVXCoord *const *arc);
    static int nBoogBoogSnij(CVXCoord **p1, CVXCoord **p2, const CVXCoord *const *arc1,
                             const CVXCoord *const *arc2);
    static bool bBoogBoog2Snij(CVXCoord **p1, CVXCoord **p2, const CVXCoord *const *arc1,
                               const CVXCoord *const *arc2);
    bool bBogenSnijpunt(const CVXCoord &A, const CVXCoord &B, double rA, double rB, bool bMin);
    static bool bRaaklijn(CVXCoord **pp, const CVXCoord *const *pts, double d);
    // Where a point known to lie on the carrier falls (PuntInLijn): outside, inside, on the
    // start, on the end. The non-const forms snap this point on to the end it hits.
    enum PuntInLijn : int { nLijnBuiten = 0, nLijnBinnen = 1, nLijnStart = 2, nLijnEind = 3 };
    int nPuntInLine(const CVXCoord *const *line, bool bGeenEinden) const;
    int nPuntInLine(const CVXCoord *const *line, bool bGeenEinden);
    int nPuntInSpline(const CVXCoord *const *line, bool bGeenEinden) const;
    int nPuntInSpline(const CVXCoord *const *line, bool bGeenEinden);
    int nPuntInBoog(const CVXCoord *const *arc, bool bGeenEinden) const;
    int nPuntInBoog(const CVXCoord *const *arc, bool bGeenEinden);

    // Projection and interpolation (geometry/Projecteer.cpp).
    void Projecteer(const CVXCoord *const *line, const CVXCoord &q);
    bool bProjecteerLijn(const CVXCoord &pt, const CVXCoord *const *line);
    bool bProjecteerLijn(const CVXCoord *const *line, double dTol);
    bool bProjecteerCirkel(const CVXCoord &pt, const CVXCoord *const *arc);
    bool bProjecteerCirkel(const CVXCoord *const *arc, double dTol);
    bool bProjecteerBoog(const CVXCoord &pt, const CVXCoord *const *arc);
    bool bProjecteerBoog(const CVXCoord *const *arc, double dTol);
    bool bProjecteer(const CVXCoord &pt, const CVXCoordArr &lijn, int *pnIndex);
    double Dist2D3D(const CVXCoord *const *line) const;
    double ZwaartePunt(const CVXCoord *const *pts);
    void DraaiOverBoog(const CVXCoord *const *arc, double d);
    void SchuifOverLijnDeel(const CVXCoordArr &lijn, int i, double d);
    int nSchuifOverLijn(const CVXCoordArr &lijn, double d);
    bool bInterpoleerZ(const CVXCoordArr *lijn, int i);
    bool ZUitDriehoek(const CVXCoord *const *pts);
    bool BoogSteun3D(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C, double r, bool bKant);

protected:
    // This point := ((B − A) × (C − A)) × (B − A), scaled to the length of AB.
    bool HulpAs(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C);
    // This point := the middle of the arc of radius dR over the unit chord (0,0)-(1,0).
    bool LokaalSteun(double dR, bool bKant);
    // This point := the unit normal (B − A) × (C − A) of the plane through three points.
    bool Normaal(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C);

private:
    void PositieGewijzigd();
    void CopyVelden(const CVXCoord &other, bool bZ, bool bSectie);
};

// Point arithmetic. A result has a Z only when every input has one; its section code is 1.
CVXCoord operator+(const CVXCoord &A, const CVXCoord &B);
CVXCoord operator-(const CVXCoord &A, const CVXCoord &B);
CVXCoord operator*(const CVXCoord &A, double f);
CVXCoord operator*(double f, const CVXCoord &A);
// The cross product in three dimensions; both points need a Z.
CVXCoord operator*(const CVXCoord &A, const CVXCoord &B);
// The dot product of X and Y only.
double operator|(const CVXCoord &A, const CVXCoord &B);

// A point used as a vector in the plane. Every result is a default-constructed vector whose X
// and Y are set, so its flags are 0 and its Z is NaN.
class C2DVector : public CVXCoord {
public:
    C2DVector() = default;
    C2DVector(double x, double y);
    C2DVector(const C2DVector &) = default;
    ~C2DVector() override = default;

    C2DVector operator-(const C2DVector &B) const;
    C2DVector operator+(const C2DVector &B) const;
    C2DVector operator*(double f) const;
    C2DVector &operator=(const C2DVector &B);
    double operator|(const C2DVector &B) const;
    double dKwadraat() const;
};

} // namespace VX_API
