// CExtents: the axis-parallel bounding box that answers the cheap questions before any exact
// geometry; CDiffs: its four numbers used as plain differences; CExtList, CExtListX: lists of
// boxes; CGridDef: a regular grid to snap or test points against.
//
// An empty box has its low bounds at the largest double and its high bounds at minus that, so
// every growth operation works without a first-point case. All predicates use closed bounds:
// touching counts as inside or overlapping. Arcs are bounded exactly, from the quadrants their
// end angles fall in, with no trigonometry beyond those two angles.
#pragma once

#include "platform/VXExport.h"

#include "persist/RuntimeCreator.h"
#include "persist/SerCollections.h"
#include "persist/SerObject.h"
#include "platform/VXTypes.h"

namespace vx VX_API {

class CVXCoord;
class CVXCoordArr;

class CExtents : public CSerObject {
    VX_DECLARE_SERIAL(CExtents)
public:
    double m_dXlo = dMaxDouble;
    double m_dYlo = dMaxDouble;
    double m_dXrb = -dMaxDouble;
    double m_dYrb = -dMaxDouble;

    CExtents() = default;
    CExtents(double xlo, double ylo, double xrb, double yrb);
    // The square of half-width d about c.
    CExtents(const CVXCoord &c, double d);
    CExtents(const CExtents &other) = default;
    CExtents &operator=(const CExtents &other) = default;
    ~CExtents() override = default;

    // "m_dXlo", "m_dYlo", "m_dXrb", "m_dYrb"; there is no binary form.
    using CSerObject::SerializeX;
    void SerializeX(CArchiveX &ar) override;

    void Reset();
    void Reset(double xlo, double ylo, double xrb, double yrb);
    void Copy(const CExtents &other) { *this = other; }

    // Growth: each keeps what is already in the box.
    void SetX(double x);
    void SetY(double y);
    void SetMinX(double x);
    void SetMinY(double y);
    void SetMaxX(double x);
    void SetMaxY(double y);
    void SetExt(const CExtents &other);
    void Punt(const CVXCoord &pt);
    void Cirkel(const CVXCoord *const *pts);
    void Boog(const CVXCoord *const *pts);

    // Changes that are not growth.
    void Schuif(double dx, double dy);
    void Pan(const CVXCoord &a, const CVXCoord &b);
    void Vergroot(double dx, double dy);

    // Readers.
    double dGetXlo() const { return m_dXlo; }
    double dGetYlo() const { return m_dYlo; }
    double dGetXrb() const { return m_dXrb; }
    double dGetYrb() const { return m_dYrb; }
    double dGetSizeX() const { return m_dXrb - m_dXlo; }
    double dGetSizeY() const { return m_dYrb - m_dYlo; }
    void GetCenter(CVXCoord *pt) const;
    void Getlo(CVXCoord *pt) const;
    void Getlb(CVXCoord *pt) const;
    void Getrb(CVXCoord *pt) const;
    void Getro(CVXCoord *pt) const;
    void CreateBoundingBox(CVXCoordArr &arr) const;

    // Predicates, with closed bounds.
    bool bCorrect() const;
    bool bBinnen(const CVXCoord &pt) const;
    bool bBinnen(const CExtents &o) const;
    bool bOverlap(const CExtents &o) const;
    bool bMogelijkBinnen(const CExtents &o) const;
    void BinnenBuiten(bool *pBinnen, bool *pBuiten, const CExtents &o) const;
    CExtents Overlap(const CExtents &o) const;
    // Clips the carrier of line to the box: the two crossings go into pp[0] and pp[1].
    bool bSnij(CVXCoord **pp, const CVXCoord *const *line) const;
};

// The four numbers of a box used as plain differences.
class CDiffs : public CExtents {
public:
    CDiffs() = default;
    CDiffs(double xlo, double ylo, double xrb, double yrb) : CExtents(xlo, ylo, xrb, yrb) {}
    void SetXlo(double v) { m_dXlo = v; }
    void SetYlo(double v) { m_dYlo = v; }
    void SetXrb(double v) { m_dXrb = v; }
    void SetYrb(double v) { m_dYrb = v; }
};

// Lists of boxes that own them: RemoveAll deletes every box and the destructor calls it.
class CExtList : public _CVXTypedPtrList<CSerObList, CExtents *> {
public:
    using _CVXTypedPtrList::_CVXTypedPtrList;
    CExtList() = default;
    CExtList(const CExtList &) = delete;
    CExtList &operator=(const CExtList &) = delete;
    ~CExtList() override;
    void RemoveAll();
};

class CExtListX : public CVXTypedPtrList<CSerObList, CExtents *> {
public:
    using CVXTypedPtrList::CVXTypedPtrList;
    CExtListX() = default;
    CExtListX(const CExtListX &) = delete;
    CExtListX &operator=(const CExtListX &) = delete;
    ~CExtListX() override;
    void RemoveAll();
};

// A regular grid: tolerance, steps and origin per axis.
class CGridDef {
public:
    double m_dTol = 0.0;
    double m_dStapX = 0.0;
    double m_dStapY = 0.0;
    double m_dOrigX = 0.0;
    double m_dOrigY = 0.0;

    CGridDef() = default;
    CGridDef(double dTol, double dStapX, double dStapY, double dOrigX, double dOrigY)
        : m_dTol(dTol), m_dStapX(dStapX), m_dStapY(dStapY), m_dOrigX(dOrigX), m_dOrigY(dOrigY) {}

    // dN := the nearest grid number (halves away from zero); whether the coordinate lies within
    // the tolerance of that grid line.
    bool OnGrid(const CVXCoord &pt, bool bX, double &dN) const;
    // Whether the coordinate lies within the tolerance of grid line dN.
    bool OnSameGrid(const CVXCoord &pt, bool bX, double dN) const;
};

} // namespace VX_API
