// CVXCoordArr: the library's one model of a line, an ordered array of heap points that it owns,
// in which straight stretches, arcs, whole circles and splines are coded point by point through
// the section code of each point; and the lists and arrays of points and lines.
//
// The section code of point i says how the stretch from point i−1 to point i is drawn: 0 or 2
// straight, 1 start of a line, 6 spline, 7 whole circle, 8 arc (support and end point), 9 forced
// point. Centres, radii and spline coefficients are never stored nor cached: every routine that
// needs them computes them from the points (BoogPar, nCubSplin).
//
// Ownership: everything that takes a `const CVXCoord *` stores a clone made by the element's
// virtual New; what replaces or removes a point deletes the old one.
#pragma once

#include "platform/VXExport.h"

#include "geometry/VXCoord.h"
#include "persist/SerCollections.h"

#include <cstdint>

namespace vx VX_API {

class CExtents;
class CGridDef;
struct PuntInPolyRes;
enum KlokRichting : int32_t;
class CClipsnijpuntList;
class CClipsnijpunt;
class CVXCoordArrList;
struct ClipField;
enum SnijMode : int;

class CVXCoordArr : public CTypedPtrArray<CSerObArray, CVXCoord *> {
    using Base = CTypedPtrArray<CSerObArray, CVXCoord *>;

public:
    // How bPuntInLijnDeel counts the end points of a stretch.
    enum LijnTestModus {
        nMetEinden = 0,    // the ends belong to the stretch
        nZonderEinden = 1, // points on the ends do not
        nGeenEinden = 2    // ends are not looked at: a point on an end counts as inside
    };

    // The array itself changed; set by every structural operation.
    bool m_bGewijzigd = false;

    CVXCoordArr() = default;
    explicit CVXCoordArr(int n);
    CVXCoordArr(const CVXCoordArr &other);
    CVXCoordArr &operator=(const CVXCoordArr &other);
    ~CVXCoordArr() override;
    void Copy(const CVXCoordArr &other);

    // ---- storage ------------------------------------------------------------------------------
    virtual void SetAt(int i, const CVXCoord *p);
    virtual void InsertAt(int i, const CVXCoordArr *other);
    virtual void InsertAt(int i, const CVXCoord *p);
    virtual int Add(const CVXCoord *p);
    int Add(const CVXCoord *const *pPunten, int n);
    int Add(const CVXCoordArr *other);
    // Stores the pointer itself: the array takes it over, and the former point is not deleted.
    void SetAtDir(int i, CVXCoord *p);
    void RemoveAt(int i);
    void SetSize(int n);
    void RemoveAll();
    void Move(int nDst, int nSrc, int n);
    // Takes the points over from other, which is left empty.
    void SetCopy(CVXCoordArr &other);
    // A null slot is first filled with a default point.
    CVXCoord *GetAt(int i);
    // A null slot raises the assertion report and yields null.
    const CVXCoord *GetAt(int i) const;
    CVXCoord *operator[](int i) { return GetAt(i); }
    const CVXCoord *operator[](int i) const { return GetAt(i); }
    CVXCoord **GetData();
    const CVXCoord *const *GetData() const;

    virtual bool Gewijzigd() const;
    virtual void SetUnChanged();

    // The stored form of CSerObArray, checked when loading: the points held before are deleted
    // first, and every slot ends up with a point of its own or null (see the source).
    using Base::SerializeX;
    void SerializeB(CArchiveB &ar) override;
    void SerializeX(CArchiveX &ar) override;

    // ---- section queries; i is the index of the point that starts the stretch ------------------
    bool bRechte(int i) const;
    bool bBoog(int i) const;
    bool bSpline(int i) const;
    bool bCirkel() const;
    bool bCirkelKromme(int i) const;
    bool bAlleSectiesLijn() const;
    bool bGesloten() const;
    bool bIInLine(int i) const;
    bool bVoorSteun(const CVXCoord &pt, int i) const;

    // ---- navigation ---------------------------------------------------------------------------
    int nNextLinePart(int i) const;
    int nPrevLinePart(int i) const;
    int nStartDeel(int i) const;
    int nTelSplinePunten(int i) const;

    // ---- search and comparison ----------------------------------------------------------------
    int nZoekPunt2(const CVXCoord &pt) const;
    unsigned short ZoekPuntMetAfstand(const CVXCoord &pt, double d) const;
    bool Gelijk(CVXCoordArr &other);
    bool bLineInTol(int i, const CVXCoord &pt) const;
    int CopyIfInTol(const CVXCoord &pt, int nStart, int n, bool bCopy);
    void VerschillenXY(const CVXCoordArr &other, double *pGem, double *pMax) const;

    // ---- measures -----------------------------------------------------------------------------
    double dLijnLengte(int i) const;
    double dLengte() const;
    double dLengteInLijn(int i, const CVXCoord &pt) const;
    void LijnHoek(int i, double &dSom, const CVXCoord &pt) const;
    bool bOppervlakNoAbs(double *pOpp) const;
    bool bOppervlak(double *pOpp) const;
    double Volume(double dBasis) const;
    void ZwaartePunt(CVXCoord &punt) const;
    void ZwaartePunt3D(CVXCoord &punt) const;
    void Extents(CExtents &ext, bool bPunten) const;
    double Dist(const CVXCoord &pt) const;
    void DraaiRichting();

    // ---- intersection per stretch (geometry/LineArc.cpp) ---------------------------------------
    // The mask of nSnijInLijnDeel: which solution lies on which stretch. Solution 1 and 2 on
    // this line's stretch, then on the other's; a common point of both stretches has its two
    // bits together. nMaskerOverlap is two common points (in coincidence: the overlap runs
    // between them), nMaskerRaak one touching point on both.
    enum SnijMasker : int {
        nMaskerGeen = 0,
        nMasker1Hier = 1,
        nMasker2Hier = 2,
        nMasker1Daar = 4,
        nMasker2Daar = 8,
        nMaskerEerste = nMasker1Hier | nMasker1Daar,
        nMaskerTweede = nMasker2Hier | nMasker2Daar,
        nMaskerRaak = nMaskerEerste,
        nMaskerOverlap = nMaskerEerste | nMaskerTweede
    };

    bool bPuntInLijnDeel(const CVXCoord &pt, int i, LijnTestModus modus = nMetEinden) const;
    int nSnij(CVXCoord **p1, CVXCoord **p2, const CVXCoordArr &other, int i, int j) const;
    int nSnijInLijnDeel(CVXCoord **p1, CVXCoord **p2, const CVXCoordArr &other, int i, int j,
                        bool bBeide, LijnTestModus modus) const;
    int nSnijInLijnDeel(CVXCoord **p1, CVXCoord **p2, const CVXCoordArr &other, int i, int j,
                        bool bBeide) const;

    // ---- projection and interpolation ---------------------------------------------------------
    void Projecteer(CVXCoord &punt, int i, const CVXCoord &q) const;
    void InterpoleerZ(CVXCoord &punt, int i, double dZ) const;
    void BerekenZ(CVXCoord &punt, int i, double dZ, double dZ2) const;
    bool bHalveSteunPunten(int i, CVXCoord &a, CVXCoord &b) const;
    double dHoekInLijn(const CVXCoord &pt, int i) const;

    // ---- point and line in polygon (geometry/PuntInPoly.cpp) ---------------------------------
    PuntInPolyRes PuntInPolygoon(const CVXCoord &Punt) const;
    bool bPuntInPuntArr(const CVXCoord &Punt) const;
    short nPuntInPuntArr(const CVXCoord &Punt) const;
    PuntInPolyRes LijnInPolygoon(const CVXCoordArr &Lijn, bool bVolledig) const;
    short nPuntArrBinnenPuntArr(const CVXCoordArr &Poly) const;
    // The turning sense, from the raw points (arc middles count as vertices); a sequence that
    // crosses itself goes by its signed area and writes "NonSimple polygon" to the trace.
    KlokRichting Draairichting() const;

    // ---- section and line checks (geometry/SectieCheck.cpp) -----------------------------------
    // -1 (0xffffffff unsigned) when the section codes follow the grammar, otherwise the index of
    // the first point at which it breaks. The line must have a point.
    int nSectieOnlyTest2() const;
    // As nSectieOnlyTest2; with valid codes also the first of two bGelijk neighbours.
    int nSectieTest2() const;
    // Whether the stretches from nI on form a plausible chain of arcs and short chords; nI is left
    // at the stretch that fails, or past the last one.
    bool bCheckLinesArcs(int &nI, double dMaxKoorde, double dGrens, double dMaxR,
                         double dMinVerhouding, double dMaxLengte, int nMaxRechten) const;
    // Whether a straight stretch or an arc occurs twice, forward or backward.
    bool BevatIdentiekeLijndelen() const;

    // ---- the clip list and self-intersection (geometry/SnijLijn.cpp) --------------------------
    // Collects every point where a stretch of this line (A) meets a stretch of Punten (B), in the
    // order of discovery. bMetDozen skips pairs of stretches whose boxes, grown by the tolerance,
    // do not meet; the list comes out the same (the default); false compares every pair.
    void VerzamelClipLijst(const CVXCoordArr &Punten, CClipsnijpuntList &Lijst) const;
    void VerzamelClipLijst(const CVXCoordArr &Punten, CClipsnijpuntList &Lijst,
                           bool bMetDozen) const;
    // Stretch nI against its successor; the points are new heap objects the caller deletes.
    bool bSnijOpeenvolgende(int nI, CVXCoord **pSnij1, CVXCoord **pSnij2, SnijMode nMode) const;
    bool bSnijOpeenvolgende(int nI, SnijMode nMode) const;
    // Two non-adjacent stretches, nI of this line and nJ of Punten.
    bool bSnijdenDelen(const CVXCoordArr &Punten, int nI, int nJ, CVXCoord **pSnij1,
                       CVXCoord **pSnij2) const;
    bool bSnijdenDelen(const CVXCoordArr &Punten, int nI, int nJ) const;
    // The first stretch that meets another one of this line, or -1.
    int nSnijdZichzelf2(CVXCoord **pSnij1, CVXCoord **pSnij2, SnijMode nMode) const;
    int nSnijdZichzelf2(SnijMode nMode) const;
    // Whether any stretch of this line crosses one of Punten (common points inside both).
    bool SnijdLijn(const CVXCoordArr &Punten) const;
    // Inserts the crossings with Punten as vertices in both lines (the const form: in Punten
    // only); false when the lines do not meet.
    bool SnijLijn(CVXCoordArr &Punten, bool bCopy);
    bool SnijLijn(CVXCoordArr &Punten, bool bCopy) const;
    // Inserts the points of an open chain of the list, from its tail, with nInsertInLine.
    void InsertSnijpunten(int nMode, CClipsnijpuntList &Lijst, bool bCopy);
    // Replaces a self-crossing closed line by its largest simple loop.
    void MakeSimple();

    // ---- line editing (geometry/InsertInLine.cpp) ---------------------------------------------
    // Inserts a point in stretch nI, keeping the section coding valid; returns its index. A
    // vertex of the stretch within dKopieTol is taken instead (with bCopy it takes the point
    // over but keeps its section code).
    int nInsertInLine(const CVXCoord &Punt, int nI, bool bCopy);
    // Removes point nI; the stretch it belonged to falls back to straight stretches when it can
    // no longer be an arc, a circle or a spline.
    void RemoveFromLine(int nI);
    // Splits at point nI into Links (0..nI) and Rechts (nI..end); both are emptied first. With
    // bInKromme an arc's support point or a spline's inner point is cut keeping the curve.
    bool bSplits(CVXCoordArr &Links, CVXCoordArr &Rechts, int nI, bool bInKromme) const;

    // How bSluit finds the corner that closes an open line.
    enum SluitMode : int {
        SluitEvenwijdig = 0, // parallels to the last and the first stretch through the ends
        SluitHaaks = 1,      // perpendiculars to the first and the last stretch at the ends
        SluitVerlengd = 2    // the first and the last stretch, extended
    };
    bool bSluit(SluitMode nMode);
    // This sequence becomes stretch nI of Punten, offset to the right by dAfstand.
    void SchuifLijn(const CVXCoordArr &Punten, int nI, double dAfstand);
    // This sequence becomes Punten offset to the right by dAfstand; nDeel -1 offsets every
    // stretch, otherwise only stretch nDeel.
    bool bSchuif(const CVXCoordArr &Punten, double dAfstand, int nDeel);
    // Projects Punt on this line and makes the foot a vertex.
    bool bSnapLine(CVXCoord &Punt, double dTol, double dZ, bool &bOpLijn);
    // Snaps point nP of Lijn on this line.
    bool bSnapLine(CVXCoordArr &Lijn, double dTol, int nP, double dZ, bool bProjecteer,
                   bool &bOpLijn);
    // Moves point nI so that the line turns square in direction dHoek.
    void VerplaatsOrtho(int nI, double dHoek);
    // Removes neighbours closer than dKopieTol; true when any was removed.
    bool bRemoveDubbele();

    // ---- polygon clipping (geometry/SnijPoly.cpp) ---------------------------------------------
    // Cuts this line or polygon (A) by Punten (B): the pieces inside B are appended to Binnen,
    // those outside to Buiten, with arcs and splines kept. False when nothing was cut.
    bool bSnijPoly(CVXCoordArrList &Binnen, CVXCoordArrList &Buiten, const CVXCoordArr &Punten,
                   ClipField Velden, bool bPolygoon) const;

    // ---- shape generators ---------------------------------------------------------------------
    // Turns a rough outline into a right-angled one (geometry/ShapeGen.cpp).
    void Square();
    // Removes middle points of straight runs and, with bBogen, flat arcs, closer than dTol to
    // their chord; with a grid, only points on a grid line are removed.
    void RemoveColinear(double dTol, bool bBogen, CGridDef *pGrid);
    bool bArcsToLines(double dTol);
    void Circle2Arcs();
    bool CreeerCentroide(CVXCoord &Punt) const;
    bool Overlap(const CExtents &Ext) const;
    // The natural cubic spline through the run of code 6 that follows point nI: one row of
    // coefficients per interval, in the form CVXCoord::Horner evaluates (parameter 0 to 1 per
    // interval). Returns the row count, 0 when it cannot; the caller frees pCoef with delete[].
    int nCubSplin(int nI, double (*&pCoef)[4][2]) const;

    // The point at i as a reference; a null slot (reported) reads as a default point.
    const CVXCoord &Pt(int i) const;

protected:
    // The point type of this array, and a new array of the same type (a copy or empty).
    virtual CVXCoord *Default() const;
    virtual CVXCoordArr *NewL(bool bCopy) const;

private:
    int nSectieVan(int i) const { return Pt(i).m_nSectie; }
    // Whether the points from nVan to nTot may be taken as one arc.
    bool VoldoetBoogDeel(int nVan, int nTot, double dAfstandTol, double dLengteTol,
                         double dMaxR) const;
    // The tests reach the private checks through this class of their own.
    friend class CVXCoordArrTestToegang;
    // The cheap straight-line self-crossing test: points only, arcs by their chords through the
    // support point. The last stretch is never tested (see the source).
    bool SnijdtZichzelfSimple() const;
    // Whether straight stretch nI of this line and nJ of Punten cross, by orientation alone.
    bool SnijRechten(const CVXCoordArr &Punten, int nI, int nJ) const;
    CVXCoord *Kloon(const CVXCoord *p) const;

    // ---- line editing helpers -----------------------------------------------------------------
    // The stretch that starts at nStart loses a point: an arc there, the circle, or a spline of
    // at most two points falls back to straight stretches (code 0). RemoveFromLine and
    // CheckCoords share it.
    void MaakKrommeRecht(int nStart);
    void SimpelSplits(CVXCoordArr &Links, CVXCoordArr &Rechts, int nI) const;
    void CheckCoords();
    bool bCopyToDest(int nI, const CVXCoordArr &Links, const CVXCoordArr &Rechts);
    bool bGetClosest(CVXCoord *pPunt, const CVXCoordArr &Punten) const;
    void CopySectiesZ(const CVXCoordArr &Punten);

    // ---- clipping helpers (geometry/SnijPoly.cpp) ---------------------------------------------
    void CreeerPolys(CVXCoordArrList &Lijst, const CVXCoordArr &Punten, CClipsnijpuntList &Clip,
                     bool bBinnen) const;
    void CreeerSegs(CVXCoordArrList &Lijst, const CVXCoordArr &Punten, CClipsnijpuntList &Clip,
                    bool bBinnen) const;
    void Add(const CVXCoordArr &Punten, CClipsnijpunt *pCP, short nMode, bool bGesloten);
    void AddBegin(const CVXCoordArr &Punten, CClipsnijpunt *pCP);
    void CreeerSubLoops(CVXCoordArrList &Lijst);
};

// A list of points; RemoveAll deletes the points, the destructor does not. Copies share the
// points (not the nodes): deleting them through one copy leaves the other dangling.
class CVXCoordList : public CVXTypedPtrList<CSerObList, CVXCoord *> {
public:
    using CVXTypedPtrList::CVXTypedPtrList;
    void RemoveAll();
};

// A list of lines that owns them: RemoveAll deletes them and the destructor calls it.
class CVXCoordArrList : public CVXTypedPtrList<CSerObList, CVXCoordArr *> {
public:
    using CVXTypedPtrList::CVXTypedPtrList;
    CVXCoordArrList() = default;
    // An owning list is not copied: two owners would delete the same lines.
    CVXCoordArrList(const CVXCoordArrList &) = delete;
    CVXCoordArrList &operator=(const CVXCoordArrList &) = delete;
    ~CVXCoordArrList() override;
    void RemoveAll();
};

// An array of lines that owns them.
class CVXCoordArrArr : public CTypedPtrArray<CSerObArray, CVXCoordArr *> {
public:
    CVXCoordArrArr() = default;
    CVXCoordArrArr(const CVXCoordArrArr &other);
    CVXCoordArrArr &operator=(const CVXCoordArrArr &other);
    ~CVXCoordArrArr() override;
    void RemoveAll();
    void RemoveAt(unsigned short i);
    // Deep: every line is copied.
    void Copy(const CVXCoordArrArr &other);
};

} // namespace VX_API
