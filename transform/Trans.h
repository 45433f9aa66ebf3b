// CTrans: the planar transformation of the library, a 2x3 matrix and one height shift.
//
//   X' = dMatrix00·X + dMatrix01·Y + dMatrix02
//   Y' = dMatrix10·X + dMatrix11·Y + dMatrix12
//   Z' = Z + m_dZShift (when neither is NaN)
//
// It moves coordinates between two survey systems and maps world coordinates to integer device
// points. The matrix is filled from explicit parameters (Evalueer...) or fitted by least squares
// to pairs of points (bEvalueer): a similarity in modes 0 and 2, an affine map in mode 1. Fits
// work on differences from the centroids and divide through dDeel, so a degenerate set of points
// gives false instead of infinities.
//
// Integer forms: a world coordinate is truncated towards zero, a device point is rounded to the
// nearest integer with halves away from zero. A value outside the 32-bit range (NaN included)
// becomes INT32_MIN, the "indefinite" integer of the x86 conversion.
#pragma once

#include "platform/VXExport.h"

#include "platform/Geometry2D.h"
#include "platform/VXTypes.h"

#include <cstdint>

namespace vx VX_API {

class CArchiveX;
class CExtents;
class CTransTabel;
class CVXCoord;
class CVXCoordArr;
class CVXString;

class CTrans {
public:
    double dMatrix00 = 1.0;
    double dMatrix01 = 0.0;
    double dMatrix02 = 0.0;
    double dMatrix10 = 0.0;
    double dMatrix11 = 1.0;
    double dMatrix12 = 0.0;
    double m_dZShift = dNaN;

    // Chosen: a new matrix is the identity with no height shift, not seven unset values.
    CTrans() = default;
    CTrans(const CTrans &) = default;
    CTrans &operator=(const CTrans &) = default;
    virtual ~CTrans() = default;

    // The matrix by row (0, 1) and column (0, 1, 2); NaN outside it.
    double dGetValue(int row, int column) const;

    // Setting from explicit values.
    void Evalueer(double a, double b, double c, double d, double e, double f);
    void Evalueer(const CVXCoord &from, const CVXCoord &to, double rotation, double scaleX,
                  double scaleY);
    void Evalueer(const CVXCoord &from, const CVXCoord &to, double rotation, double scale);
    void EvalueerSpeciaal(const CVXCoord &shift, double rotation, double scaleX, double scaleY);
    void EvalueerSpeciaal(const CVXCoord &shift, double rotation, double scale);
    void EvalueerSpeciaal(const CVXCoord &shift, bool bZ);
    void EvalueerSpeciaal();

    // Changing it.
    void VerschaalXY(double sx, double sy);
    bool Invert();
    // B∘A: this matrix acts first, B second. m_dZShift is kept.
    CTrans &operator*=(const CTrans &B);

    // Reading it.
    double dGetXSchaal() const;
    double dGetYSchaal() const;
    double dGetRotatie() const;
    double dGetXYAngle() const;
    bool bIdentity() const;

    // Least-squares fits. Mode 0 and 2: similarity; mode 1: affine; other modes keep the matrix.
    bool bEvalueer(short n, const CVXCoord *const *from, const CVXCoord *const *to, int mode);
    // The world box fitted into the device rectangle with one scale, turned by `rotation`.
    bool bEvalueer(const CExtents *world, const CRect &view, double rotation);
    // The world box fitted into the device rectangle with its Y extent scaled by f.
    bool bEvalueerAffien(const CExtents *world, const CRect &view, double f);

    // The virtual operations.
    virtual bool bEvalueer();
    virtual void PointsGeo2Raster(double p1, double p2, double p3, double p4, double p5, double p6,
                                  bool bVan);
    virtual void MirrorHor();
    virtual void Perform(CPoint *out, const CVXCoord &in) const;
    virtual void Perform(int n, CVXCoord **p) const;
    virtual void Perform(int n, CPoint *out, const double *xy) const;
    virtual void Perform(int n, double *xy) const;
    virtual void Perform(CVXCoord *out, const CVXCoord &in) const;
    virtual void Perform(CVXCoord *p) const;
    virtual void Perform(CVXCoord *p, int n) const;
    virtual void SetShift(double x, double y);
    virtual void SerializeX(const CVXString &name, CArchiveX &ar);
    virtual CTrans *New() const;
    virtual CTransTabel *pGetTabel();

    // Non-virtual forms built on the virtual ones.
    void Perform(CPoint *p) const;
    void Perform(CVXCoord *out, const CPoint &in) const;
    void Perform(CPoint *out, const CVXCoordArr &in) const;
    void Perform(CVXCoordArr *a) const;
    void Perform(CVXCoordArr *out, const CVXCoordArr &in) const;
    void Perform(CExtents *out, const CExtents &in) const;
    void Perform(CExtents *out, const CRect &in) const;

protected:
    double dMatrixX(double x, double y) const { return dMatrix00 * x + dMatrix01 * y + dMatrix02; }
    double dMatrixY(double x, double y) const { return dMatrix10 * x + dMatrix11 * y + dMatrix12; }
    // A double truncated towards zero into 32 bits; INT32_MIN when it does not fit.
    static int32_t nTrunc(double v);
};

} // namespace VX_API
