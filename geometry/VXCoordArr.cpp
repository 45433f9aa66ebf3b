#include "geometry/VXCoordArr.h"

#include "geometry/Extents.h"
#include "geometry/LineArc.h"
#include "geometry/Tolerances.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "platform/Assert.h"
#include "platform/Errors.h"

#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <unordered_set>
#include <utility>
#include <vector>

namespace vx {

namespace {

constexpr double d2Pi = 2.0 * std::numbers::pi;

bool bRecht(int nCode) {
    return nCode == nSectieRecht || nCode == nSectieRecht2;
}

// Stands in for a null slot read through the const accessors, so that a broken line yields
// wrong numbers (after the assertion report) instead of a crash.
const CVXCoord &LeegPunt() {
    static const CVXCoord leeg;
    return leeg;
}

// The length of an arc from its start to the point at angle hEind, given centre and sense.
double dBoogLengte(const CVXCoord &C, const CVXCoord &start, double hEind, int nRichting) {
    double a = hEind - C.dHoek(start);
    if (a < 0.0) a += d2Pi;
    const double r = C.dDist(start);
    return nRichting == 1 ? (d2Pi - a) * r : a * r;
}

} // namespace

// ---- construction and ownership ---------------------------------------------------------------

CVXCoordArr::CVXCoordArr(int n) {
    Base::SetSize(n);
    m_bGewijzigd = false;
}

CVXCoordArr::CVXCoordArr(const CVXCoordArr &other) : Base() {
    Copy(other);
}

CVXCoordArr &CVXCoordArr::operator=(const CVXCoordArr &other) {
    Copy(other);
    return *this;
}

CVXCoordArr::~CVXCoordArr() {
    for (int i = 0; i < GetSize(); ++i)
        delete Base::GetAt(i);
}

void CVXCoordArr::Copy(const CVXCoordArr &other) {
    if (this == &other) return;
    RemoveAll();
    SetSize(other.GetSize());
    for (int i = 0; i < other.GetSize(); ++i) {
        // A null slot of the source stays a null slot.
        if (const CVXCoord *p = other.Base::GetAt(i)) SetAt(i, p);
    }
    m_bGewijzigd = other.m_bGewijzigd;
}

CVXCoord *CVXCoordArr::Kloon(const CVXCoord *p) const {
    if (!p) throw CInvalidArgException("CVXCoordArr: a null point cannot be cloned");
    return p->New();
}

CVXCoord *CVXCoordArr::Default() const {
    return new CVXCoord();
}

CVXCoordArr *CVXCoordArr::NewL(bool bCopy) const {
    return bCopy ? new CVXCoordArr(*this) : new CVXCoordArr();
}

void CVXCoordArr::SetAt(int i, const CVXCoord *p) {
    CVXCoord *pOud = Base::GetAt(i);
    // Clone before deleting: p may be the very point in this slot.
    Base::SetAt(i, Kloon(p));
    delete pOud;
    m_bGewijzigd = true;
}

void CVXCoordArr::SetAtDir(int i, CVXCoord *p) {
    Base::SetAt(i, p);
    m_bGewijzigd = true;
}

void CVXCoordArr::InsertAt(int i, const CVXCoord *p) {
    CVXCoord *pNieuw = Kloon(p);
    try {
        Base::InsertAt(i, pNieuw);
    } catch (...) {
        delete pNieuw;
        throw;
    }
    m_bGewijzigd = true;
}

void CVXCoordArr::InsertAt(int i, const CVXCoordArr *other) {
    if (other == this) {
        const CVXCoordArr kopie(*this);
        InsertAt(i, &kopie);
        return;
    }
    const int n = other->GetSize();
    // The point behind the seam joins straight, so the line stays one line.
    if (i == 0 && GetSize() > 0 && n > 0) GetAt(0)->SetSectie(nSectieRecht);
    for (int k = 0; k < n; ++k)
        InsertAt(i + k, &other->Pt(k));
    if (i != 0 && n > 0) GetAt(i)->SetSectie(nSectieRecht);
    m_bGewijzigd = true;
}

int CVXCoordArr::Add(const CVXCoord *p) {
    CVXCoord *pNieuw = Kloon(p);
    try {
        const int n = Base::Add(pNieuw);
        m_bGewijzigd = true;
        return n;
    } catch (...) {
        delete pNieuw;
        throw;
    }
}

int CVXCoordArr::Add(const CVXCoord *const *pPunten, int n) {
    const int nStart = GetSize();
    SetSize(nStart + n);
    for (int nI = 0; nI < n; ++nI) {
        VX_ASSERT_TEXT(pPunten[nI] != nullptr, "pPunten[nI]!=NULL");
        SetAt(nStart + nI, pPunten[nI]);
    }
    return nStart;
}

int CVXCoordArr::Add(const CVXCoordArr *other) {
    if (other == this) {
        const CVXCoordArr kopie(*this);
        return Add(&kopie);
    }
    const int nStart = GetSize();
    SetSize(nStart + other->GetSize());
    for (int k = 0; k < other->GetSize(); ++k)
        SetAt(nStart + k, &other->Pt(k));
    return nStart;
}

void CVXCoordArr::RemoveAt(int i) {
    CVXCoord *pOud = Base::GetAt(i);
    Base::RemoveAt(i);
    delete pOud;
    m_bGewijzigd = true;
}

void CVXCoordArr::SetSize(int n) {
    if (n < 0) Base::SetSize(n); // raises the invalid-argument failure
    for (int i = n; i < GetSize(); ++i) {
        delete Base::GetAt(i);
        Base::SetAt(i, nullptr);
    }
    Base::SetSize(n);
    m_bGewijzigd = true;
}

void CVXCoordArr::RemoveAll() {
    SetSize(0);
}

void CVXCoordArr::Move(int nDst, int nSrc, int n) {
    // The sources are read before the tail is cut: a move towards the front would otherwise
    // read points that the cut has just deleted.
    std::vector<std::unique_ptr<CVXCoord>> klonen;
    for (int k = 0; k < n; ++k)
        klonen.emplace_back(Kloon(&Pt(nSrc + k)));
    if (nDst + n < GetSize()) SetSize(nDst + n);
    // Ascending when moving towards the front, descending otherwise, as an overlapping copy must.
    for (int stap = 0; stap < n; ++stap) {
        const int k = nSrc > nDst ? stap : n - 1 - stap;
        CVXCoord *pOud = Base::GetAt(nDst + k);
        Base::SetAt(nDst + k, klonen[static_cast<size_t>(k)].release());
        delete pOud;
    }
    m_bGewijzigd = true;
}

void CVXCoordArr::SetCopy(CVXCoordArr &other) {
    if (&other == this) return;
    RemoveAll();
    Base::SetSize(other.GetSize());
    for (int i = 0; i < other.GetSize(); ++i)
        Base::SetAt(i, other.Base::GetAt(i));
    // The points have moved: the other array only drops its pointers.
    other.Base::RemoveAll();
    other.m_bGewijzigd = true;
    m_bGewijzigd = true;
}

CVXCoord *CVXCoordArr::GetAt(int i) {
    CVXCoord *p = Base::GetAt(i);
    if (!p) {
        p = Default();
        Base::SetAt(i, p);
    }
    return p;
}

const CVXCoord *CVXCoordArr::GetAt(int i) const {
    const CVXCoord *p = Base::GetAt(i);
    VX_ASSERT_TEXT(p != nullptr, "FALSE");
    return p;
}

const CVXCoord &CVXCoordArr::Pt(int i) const {
    const CVXCoord *p = GetAt(i);
    return p ? *p : LeegPunt();
}

CVXCoord **CVXCoordArr::GetData() {
    for (int i = 0; i < GetSize(); ++i)
        GetAt(i);
    m_bGewijzigd = true;
    // The table holds CVXCoord objects only, stored through their (first and only) base.
    return reinterpret_cast<CVXCoord **>(Base::GetData());
}

const CVXCoord *const *CVXCoordArr::GetData() const {
    return reinterpret_cast<const CVXCoord *const *>(Base::GetData());
}

bool CVXCoordArr::Gewijzigd() const {
    if (m_bGewijzigd) return true;
    for (int i = 0; i < GetSize(); ++i) {
        const CVXCoord *p = Base::GetAt(i);
        if (p && p->Gewijzigd()) return true;
    }
    return false;
}

void CVXCoordArr::SetUnChanged() {
    m_bGewijzigd = false;
    for (int i = 0; i < GetSize(); ++i)
        if (CVXCoord *p = Base::GetAt(i)) p->SetUnChanged();
}

// ---- section queries --------------------------------------------------------------------------

bool CVXCoordArr::bRechte(int i) const {
    return i + 1 < GetSize() && i != -1 && bRecht(nSectieVan(i + 1));
}

bool CVXCoordArr::bBoog(int i) const {
    return i + 2 < GetSize() && i != -2 && nSectieVan(i + 1) == nSectieBoog;
}

bool CVXCoordArr::bSpline(int i) const {
    return i + 1 < GetSize() && i != -1 && nSectieVan(i + 1) == nSectieSpline;
}

bool CVXCoordArr::bCirkel() const {
    return GetSize() >= 3 && nSectieVan(1) == nSectieCirkel;
}

bool CVXCoordArr::bCirkelKromme(int i) const {
    if (i + 2 >= GetSize()) return false;
    const int nCode = nSectieVan(i + 1);
    return nCode == nSectieBoog || nCode == nSectieCirkel;
}

bool CVXCoordArr::bAlleSectiesLijn() const {
    for (int i = 0; i < GetSize(); ++i)
        if (nSectieVan(i) > nSectieRecht2) return false;
    return true;
}

bool CVXCoordArr::bGesloten() const {
    return GetSize() >= 1 && Pt(0).bGelijk(Pt(GetSize() - 1));
}

// Kept on purpose: a negative index passes as "in the line"; callers use it as a marker.
bool CVXCoordArr::bIInLine(int i) const {
    return i < GetSize() && i != 0;
}

bool CVXCoordArr::bVoorSteun(const CVXCoord &pt, int i) const {
    return CVXCoord::nBoogRichting(Pt(i), Pt(i + 1), pt) !=
           CVXCoord::nBoogRichting(Pt(i), Pt(i + 1), Pt(i + 2));
}

// ---- navigation -------------------------------------------------------------------------------

int CVXCoordArr::nNextLinePart(int i) const {
    if (bBoog(i)) return i + 2;
    if (bCirkel()) return i + 4;
    return i + 1;
}

int CVXCoordArr::nPrevLinePart(int i) const {
    if (i == 0) return -1;
    if (i + 1 < GetSize() && i + 1 != 0 && nSectieVan(i) == nSectieBoog) return i - 2;
    if (bCirkel()) return 0;
    return i - 1;
}

int CVXCoordArr::nStartDeel(int i) const {
    const int nCode = nSectieVan(i);
    switch (nCode) {
    case nSectieRecht:
    case nSectieRecht2:
        return i - 1;
    case nSectieStart:
    case nSectieCirkel:
        return 0;
    case nSectieSpline: {
        int j = i;
        while (j >= 0 && nSectieVan(j) == nSectieSpline)
            --j;
        return j;
    }
    case nSectieBoog: {
        int j = i;
        while (j >= 0 && nSectieVan(j) == nSectieBoog)
            --j;
        // The 8s pair up by parity from the start of their run.
        return (i - j) % 2 == 0 ? i - 2 : i - 1;
    }
    default:
        VX_ASSERT_TEXT(false, "false");
        return 0;
    }
}

int CVXCoordArr::nTelSplinePunten(int i) const {
    int n = 0;
    for (int k = i + 1; k < GetSize() && nSectieVan(k) == nSectieSpline; ++k)
        ++n;
    return n;
}

// ---- search and comparison --------------------------------------------------------------------

int CVXCoordArr::nZoekPunt2(const CVXCoord &pt) const {
    for (int i = 0; i < GetSize(); ++i)
        if (pt.bGelijk(Pt(i))) return i;
    return -1;
}

unsigned short CVXCoordArr::ZoekPuntMetAfstand(const CVXCoord &pt, double d) const {
    if (GetSize() == 0) throw CInvalidArgException("ZoekPuntMetAfstand: the line is empty");
    int nBeste = 0;
    double dBeste = std::numeric_limits<double>::infinity();
    for (int i = 0; i < GetSize(); ++i) {
        const double dVerschil = std::fabs(pt.dDist(Pt(i)) - d);
        if (dVerschil < dBeste) {
            dBeste = dVerschil;
            nBeste = i;
        }
    }
    return static_cast<unsigned short>(nBeste);
}

bool CVXCoordArr::Gelijk(CVXCoordArr &other) {
    if (GetSize() != other.GetSize()) return false;
    if (GetSize() == 0) return true;
    if (!Pt(0).bGelijkInLijn(other.Pt(0))) {
        DraaiRichting();
        for (int i = 0; i < GetSize(); ++i) {
            if (!Pt(i).bGelijkInLijn(other.Pt(i))) {
                DraaiRichting();
                return false;
            }
        }
        // A line that matched reversed stays reversed.
        return true;
    }
    for (int i = 1; i < GetSize(); ++i)
        if (!Pt(i).bGelijkInLijn(other.Pt(i))) return false;
    return true;
}

bool CVXCoordArr::bLineInTol(int i, const CVXCoord &pt) const {
    const CVXCoord *const line[2] = {&Pt(i), &Pt(i + 1)};
    CVXCoord voet;
    voet.Projecteer(line, pt);
    return std::as_const(voet).nPuntInLine(line, false) != 0 && voet.dDist(pt) < dPuntTol;
}

int CVXCoordArr::CopyIfInTol(const CVXCoord &pt, int nStart, int n, bool bCopy) {
    for (int i = nStart; i < nStart + n; ++i) {
        if (Pt(i).dDist2D3D(pt) < dKopieTol) {
            if (bCopy) {
                CVXCoord *p = GetAt(i);
                const signed char nSectie = p->m_nSectie;
                p->Copy(pt);
                p->m_nSectie = nSectie;
            }
            return i;
        }
    }
    return -1;
}

void CVXCoordArr::VerschillenXY(const CVXCoordArr &other, double *pGem, double *pMax) const {
    // The last point repeats the first in closed lines and takes no part.
    const int n = GetSize() - 1;
    double dSom = 0.0, dMax = 0.0;
    for (int i = 0; i < n; ++i) {
        const double d = Pt(i).dDist(other.Pt(i));
        dSom += d;
        if (d > dMax) dMax = d;
    }
    *pMax = dMax;
    *pGem = dSom / n;
}

// ---- measures ---------------------------------------------------------------------------------

double CVXCoordArr::dLijnLengte(int i) const {
    if (!bCirkelKromme(i)) return Pt(i).dDist(Pt(i + 1));
    const CVXCoord *const boog[3] = {&Pt(i), &Pt(i + 1), &Pt(i + 2)};
    CVXCoord C;
    if (!C.bMiddelPunt(boog)) return Pt(i).dDist(Pt(i + 2));
    if (!bBoog(i)) return d2Pi * C.dDist(Pt(i));
    return dBoogLengte(C, Pt(i), C.dHoek(Pt(i + 2)), CVXCoord::nBoogRichting(boog));
}

double CVXCoordArr::dLengte() const {
    double dSom = 0.0;
    int i = 0;
    while (i < GetSize() - 1) {
        dSom += dLijnLengte(i);
        const int nCode = nSectieVan(i + 1);
        if (nCode == nSectieCirkel) break;
        i += nCode == nSectieBoog ? 2 : 1;
    }
    return dSom;
}

double CVXCoordArr::dLengteInLijn(int i, const CVXCoord &pt) const {
    const double d = Pt(i).dDist(pt);
    if (d < dPuntTol || !bCirkelKromme(i)) return d;
    const CVXCoord *const boog[3] = {&Pt(i), &Pt(i + 1), &Pt(i + 2)};
    CVXCoord C;
    if (!C.bMiddelPunt(boog)) return d;
    return dBoogLengte(C, Pt(i), C.dHoek(pt), CVXCoord::nBoogRichting(boog));
}

void CVXCoordArr::LijnHoek(int i, double &dSom, const CVXCoord &pt) const {
    dSom += CVXCoord::dHoek(Pt(i), pt, Pt(i + 1));
    dSom += CVXCoord::dHoek(Pt(i + 1), pt, Pt(i + 2));
}

bool CVXCoordArr::bOppervlakNoAbs(double *pOpp) const {
    *pOpp = 0.0;
    if (bCirkel()) {
        const CVXCoord *const boog[3] = {&Pt(0), &Pt(1), &Pt(2)};
        CVXCoord C;
        if (CVXCoord::nBoogRichting(boog) == 0 || !C.bMiddelPunt(boog)) return false;
        const double r = C.dDist(Pt(0));
        *pOpp = std::numbers::pi * r * r;
        return true;
    }
    if (!bGesloten()) return false;
    CVXCoordArr kopie(*this);
    // Whether any arc was replaced does not matter: a line without arcs is taken as it is.
    kopie.bArcsToLines(dPuntTol);
    const int n = kopie.GetSize();
    double dSom = kopie.Pt(0).m_dX * (kopie.Pt(1).m_dY - kopie.Pt(n - 2).m_dY);
    for (int i = 1; i <= n - 2; ++i)
        dSom += kopie.Pt(i).m_dX * (kopie.Pt(i + 1).m_dY - kopie.Pt(i - 1).m_dY);
    *pOpp = dSom / 2.0;
    return true;
}

bool CVXCoordArr::bOppervlak(double *pOpp) const {
    const bool bRes = bOppervlakNoAbs(pOpp);
    *pOpp = std::fabs(*pOpp);
    return bRes;
}

double CVXCoordArr::Volume(double dBasis) const {
    if (GetSize() < 3) return dNaN;
    const CVXCoord &P0 = Pt(0), &P1 = Pt(1), &P2 = Pt(2);
    const double t = std::fabs((P1.m_dY - P2.m_dY) * P0.m_dX + (P2.m_dY - P0.m_dY) * P1.m_dX +
                               (P0.m_dY - P1.m_dY) * P2.m_dX);
    return t * (P0.m_dZ + P1.m_dZ + P2.m_dZ - 3.0 * dBasis) / 6.0;
}

void CVXCoordArr::ZwaartePunt(CVXCoord &punt) const {
    const int n = GetSize() - (bGesloten() ? 1 : 0);
    double dX = 0.0, dY = 0.0;
    for (int i = 0; i < n; ++i) {
        dX += Pt(i).m_dX;
        dY += Pt(i).m_dY;
    }
    // No points to count gives 0/0: the unknown value.
    punt.SetXY(dX / n, dY / n);
}

void CVXCoordArr::ZwaartePunt3D(CVXCoord &punt) const {
    const int n = GetSize() - (bGesloten() ? 1 : 0);
    double dX = 0.0, dY = 0.0, dZ = 0.0;
    for (int i = 0; i < n; ++i) {
        dX += Pt(i).m_dX;
        dY += Pt(i).m_dY;
        dZ += Pt(i).m_dZ; // one NaN makes the sum NaN
    }
    punt.Copy(dX / n, dY / n, dZ / n);
}

void CVXCoordArr::Extents(CExtents &ext, bool bPunten) const {
    if (bPunten) {
        for (int i = 0; i < GetSize(); ++i)
            ext.Punt(Pt(i));
        return;
    }
    if (GetSize() == 0) return;
    if (bCirkel()) {
        const CVXCoord *const boog[3] = {&Pt(0), &Pt(1), &Pt(2)};
        ext.Cirkel(boog);
        return;
    }
    ext.Punt(Pt(0));
    for (int i = 0; i < GetSize() - 1; i = nNextLinePart(i)) {
        if (bBoog(i)) {
            const CVXCoord *const boog[3] = {&Pt(i), &Pt(i + 1), &Pt(i + 2)};
            ext.Boog(boog);
        } else {
            ext.Punt(Pt(i + 1));
        }
    }
}

double CVXCoordArr::Dist(const CVXCoord &pt) const {
    double dMin = dMaxDouble;
    int i = 0;
    while (i < GetSize() - 1) {
        CVXCoord voet;
        if (voet.bProjecteer(pt, *this, &i)) {
            const double d = voet.dDist(pt);
            if (d < dMin) dMin = d;
        }
    }
    return dMin;
}

void CVXCoordArr::DraaiRichting() {
    const int n = GetSize();
    if (n == 0) return;
    for (int i = 0; i < n - 1; ++i)
        GetAt(i)->SetSectie(static_cast<char>(nSectieVan(i + 1)));
    GetAt(n - 1)->SetSectie(nSectieStart);
    for (int i = 0, j = n - 1; i < j; ++i, --j) {
        CVXCoord *p = Base::GetAt(i);
        Base::SetAt(i, Base::GetAt(j));
        Base::SetAt(j, p);
    }
    m_bGewijzigd = true;
}

// ---- collections ------------------------------------------------------------------------------

void CVXCoordList::RemoveAll() {
    while (!IsEmpty())
        delete RemoveHead();
}

CVXCoordArrList::~CVXCoordArrList() {
    RemoveAll();
}

void CVXCoordArrList::RemoveAll() {
    while (!IsEmpty())
        delete RemoveHead();
}

CVXCoordArrArr::CVXCoordArrArr(const CVXCoordArrArr &other) : CTypedPtrArray() {
    Copy(other);
}

CVXCoordArrArr &CVXCoordArrArr::operator=(const CVXCoordArrArr &other) {
    Copy(other);
    return *this;
}

CVXCoordArrArr::~CVXCoordArrArr() {
    RemoveAll();
}

void CVXCoordArrArr::RemoveAll() {
    for (int i = 0; i < GetSize(); ++i)
        delete GetAt(i);
    CTypedPtrArray::RemoveAll();
}

void CVXCoordArrArr::RemoveAt(unsigned short i) {
    delete GetAt(i);
    CTypedPtrArray::RemoveAt(i);
}

void CVXCoordArrArr::Copy(const CVXCoordArrArr &other) {
    if (this == &other) return;
    RemoveAll();
    for (unsigned short i = 0; i < other.GetSize(); ++i) {
        auto *pLijn = new CVXCoordArr(*other.GetAt(i));
        try {
            Add(pLijn);
        } catch (...) {
            delete pLijn;
            throw;
        }
    }
}

namespace {

// After a load the array must own each of its points alone. A hostile archive can name one
// object twice (a back-reference) or put another class in the run: a repeated point, or one the
// array did not read itself (bEigen false: it belongs elsewhere in the graph), is replaced by a
// copy, and an element that is not a point is deleted and its slot made null; one the array did
// not read itself (the array, or an array that holds it) is not deleted. False when such an
// element was found.
template <class F>
bool bKeepOwnPoints(CSerObArray &a, F bEigen) {
    std::unordered_set<const CSerObject *> points;
    std::unordered_set<const CSerObject *> dropped;
    for (int32_t i = 0; i < a.GetSize(); ++i) {
        CSerObject *o = a.GetAt(i);
        if (o == nullptr) continue;
        const bool bPoint = dynamic_cast<CVXCoord *>(o) != nullptr;
        if (dropped.count(o) != 0) {
            a.SetAt(i, nullptr);
        } else if (bPoint && (points.count(o) != 0 || !bEigen(o))) {
            a.SetAt(i, static_cast<CVXCoord *>(o)->New());
        } else if (bPoint) {
            points.insert(o);
        } else {
            dropped.insert(o);
            if (bEigen(o)) delete o;
            a.SetAt(i, nullptr);
        }
    }
    return dropped.empty();
}

} // namespace

void CVXCoordArr::SerializeB(CArchiveB &ar) {
    if (ar.IsStoring()) {
        Base::SerializeB(ar);
        return;
    }
    const bool bGewijzigd = m_bGewijzigd;
    RemoveAll();
    m_bGewijzigd = bGewijzigd;
    const uint32_t mark = ar.GetLoadMark();
    const auto bEigen = [&](const CSerObject *o) { return ar.IsLoadedSince(o, mark); };
    bool bOwn = false;
    try {
        Base::SerializeB(ar);
        bOwn = bKeepOwnPoints(*this, bEigen);
    } catch (...) {
        bKeepOwnPoints(*this, bEigen);
        throw;
    }
    if (!bOwn) throw CArchiveBException(CArchiveBException::badClass, ar.GetFileName());
}

void CVXCoordArr::SerializeX(CArchiveX &ar) {
    if (ar.IsStoring()) {
        Base::SerializeX(ar);
        return;
    }
    const bool bGewijzigd = m_bGewijzigd;
    RemoveAll();
    m_bGewijzigd = bGewijzigd;
    // The XML archive has no back-references: every element it reads is new.
    const auto bAlles = [](const CSerObject *) { return true; };
    try {
        Base::SerializeX(ar);
    } catch (...) {
        bKeepOwnPoints(*this, bAlles);
        throw;
    }
    // In the XML archive an element of another class loads as null, as one of another root does.
    bKeepOwnPoints(*this, bAlles);
}

} // namespace vx
