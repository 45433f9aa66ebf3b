// Control-point tables and the Helmert transformation built on them.
//
// CTransRecord: one control point, in the system of origin (m_Van) and in the target system
// (m_Naar), with its residual after a fit (m_Afwijking = transformed m_Van − m_Naar).
//
// CTransTabel: an owning list of records. Every walk that serves the calculation stops at the
// tail without visiting it, so a table's last record never counts: a table of n records is a
// table of n − 1 points. Copying, saving and emptying do reach the last record.
//
// CTransHelmert: a CTrans with a table. It fits a similarity written on differences from the
// identity (which keeps precision where both systems have large coordinates), and after the
// matrix it spreads the residuals of the control points over their neighbourhood with weights
// 1000/d² (inverse squared distance; d² of 0 counts as 0.001, so a control point is met closely
// but not exactly).
#pragma once

#include "platform/VXExport.h"

#include "geometry/VXCoord.h"
#include "persist/RuntimeCreator.h"
#include "persist/SerCollections.h"
#include "platform/VXString.h"
#include "transform/Trans.h"

#include <cstdint>

namespace vx VX_API {

class CTransRecord : public CSerObject {
    VX_DECLARE_SERIAL(CTransRecord)
public:
    CVXCoord m_Van;
    CVXCoord m_Naar;
    CVXCoord m_Afwijking;
    bool m_bActief = true;

    // The three coordinates start with X, Y and Z unknown.
    CTransRecord();
    CTransRecord(const CTransRecord &other);
    CTransRecord &operator=(const CTransRecord &other);

    void Set(const CVXCoord &p, bool bVan);
    void Copy(const CTransRecord &other);
    // True when X and Y of both m_Van and m_Naar are known.
    bool bTestVal() const;
    // The residual by the plain matrix of t, never through a virtual Perform.
    void CalcDeviation(const CTrans *t);

    // "Van" and "Naar" only: a loaded record is active with unknown residuals.
    void SerializeX(CArchiveX &ar) override;
    using CSerObject::SerializeX;
};

class CTransTabel : public CVXTypedPtrList<CSerObList, CTransRecord *> {
    VX_DECLARE_SERIAL(CTransTabel)
public:
    CVXString m_szNaam;
    // The mode handed to CTrans::bEvalueer: 0 or 2 similarity, 1 affine.
    int32_t m_nType = 0;

    CTransTabel() = default;
    explicit CTransTabel(const char *name);
    CTransTabel(const CTransTabel &) = delete;
    CTransTabel &operator=(const CTransTabel &) = delete;
    ~CTransTabel() override;

    // Deletes all records.
    void RemoveAll();
    // RemoveAll, then a heap copy of every record of other, the last one too.
    void Copy(const CTransTabel &other);

    // The records before the tail all have known coordinates (active or not), and there are at
    // least 2 of them, 3 for an affine table.
    bool bCoordsOk() const;
    // Fits t to the active records before the tail, in the mode m_nType.
    bool bBepTransformation(CTrans *t) const;
    // The residuals of the active records before the tail.
    void CalcDeviations(const CTrans *t);

    // Saving and loading first delete every inactive record: a saved table is shorter.
    void SerializeX(CArchiveX &ar) override;
    void SerializeB(CArchiveB &ar) override;
    using CSerObject::SerializeX;

    // Visits the records before the tail, in order: the walk every calculation uses.
    template <class F>
    void VoorStaart(F f) const {
        POSITION pos = GetHeadPosition();
        const POSITION tail = GetTailPosition();
        while (pos != tail)
            f(*GetNext(pos));
    }

private:
    void VerwijderInactief();
    // Deletes elements of a loaded run that are not records (a foreign class or a null). An
    // element for which bEigen(index, element) is false is not the table's to delete (a
    // back-reference to an object read before, the table itself): it is only taken out. True
    // when an element of another class was found.
    template <class F>
    bool VerwijderVreemd(F bEigen);
};

class CTransHelmert : public CTrans {
public:
    CTransTabel m_Tabel;

    CTransHelmert() = default;
    // The matrix taken over, with an empty table.
    explicit CTransHelmert(const CTrans &trans);
    CTransHelmert(const CTransHelmert &other);
    CTransHelmert &operator=(const CTransHelmert &) = delete;
    ~CTransHelmert() override = default;

    using CTrans::bEvalueer;
    using CTrans::Perform;

    bool bEvalueer() override;
    void PointsGeo2Raster(double p1, double p2, double p3, double p4, double p5, double p6,
                          bool bVan) override;
    void MirrorHor() override;
    void Perform(CPoint *out, const CVXCoord &in) const override;
    void Perform(int n, CVXCoord **p) const override;
    void Perform(int n, CPoint *out, const double *xy) const override;
    void Perform(int n, double *xy) const override;
    void Perform(CVXCoord *out, const CVXCoord &in) const override;
    void Perform(CVXCoord *p) const override;
    void SetShift(double x, double y) override;
    CTrans *New() const override;
    CTransTabel *pGetTabel() override;

private:
    // Takes the inverse-squared-distance mean of the residuals off the point.
    void CalcCorrections(CVXCoord &p) const;
};

} // namespace VX_API
