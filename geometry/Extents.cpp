#include "geometry/Extents.h"

#include "geometry/LineArc.h"
#include "geometry/VXCoord.h"
#include "geometry/VXCoordArr.h"
#include "persist/ArchiveX.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vx {

namespace {

// The directions at which a circle reaches an extreme, as bits of the arc mask.
enum : int { nMaxX = 1, nMinX = 2, nMaxY = 4, nMinY = 8, nAlle = 15 };

// The quadrant of an angle from atan2: 0 from 0 up to π/2, 1 up to π, 2 for π itself and from
// −π up to −π/2, 3 from −π/2 up to 0.
int nKwadrant(double h) {
    constexpr double pi = std::numbers::pi;
    if (h >= 0.0 && h < pi / 2.0) return 0;
    if (h >= pi / 2.0 && h < pi) return 1;
    if (h == pi || (h >= -pi && h < -pi / 2.0)) return 2;
    return 3;
}

// The direction on the lower edge of each quadrant: the one crossed when walking clockwise
// out of it.
constexpr int nOndergrens[4] = {nMaxX, nMaxY, nMinX, nMinY};

// The extremes an arc passes, walking from the start's quadrant to the end's.
int nBoogMasker(const CBoogInfo &info) {
    const int qs = nKwadrant(info.m_dStartHoek);
    const int qe = nKwadrant(info.m_dEindHoek);
    if (qs == qe) return info.m_dSweep >= std::numbers::pi / 2.0 ? nAlle : 0;
    int nMasker = 0;
    for (int q = qs; q != qe; q = (q + 3) % 4)
        nMasker |= nOndergrens[q];
    // The other sense walks the other way round and meets the other directions.
    return info.m_nRichting == -1 ? (~nMasker & nAlle) : nMasker;
}

// The crossing of the carrier of line with the edge from a to b; false when there is none.
bool bSnijRand(CVXCoord &p, const CVXCoord *const *line, const CVXCoord &a, const CVXCoord &b) {
    return p.nSnijLijn(*line[0], *line[1], a, b) == 1;
}

} // namespace

CExtents::CExtents(double xlo, double ylo, double xrb, double yrb)
    : m_dXlo(xlo), m_dYlo(ylo), m_dXrb(xrb), m_dYrb(yrb) {}

CExtents::CExtents(const CVXCoord &c, double d)
    : m_dXlo(c.m_dX - d), m_dYlo(c.m_dY - d), m_dXrb(c.m_dX + d), m_dYrb(c.m_dY + d) {}

VX_IMPLEMENT_SERIAL(CExtents, 1)

void CExtents::SerializeX(CArchiveX &ar) {
    ar.Serialize(u"m_dXlo", m_dXlo);
    ar.Serialize(u"m_dYlo", m_dYlo);
    ar.Serialize(u"m_dXrb", m_dXrb);
    ar.Serialize(u"m_dYrb", m_dYrb);
}

void CExtents::Reset() {
    *this = CExtents();
}

void CExtents::Reset(double xlo, double ylo, double xrb, double yrb) {
    *this = CExtents(xlo, ylo, xrb, yrb);
}

// ---- growth -----------------------------------------------------------------------------------

void CExtents::SetX(double x) {
    SetMinX(x);
    SetMaxX(x);
}

void CExtents::SetY(double y) {
    SetMinY(y);
    SetMaxY(y);
}

void CExtents::SetMinX(double x) {
    if (x < m_dXlo) m_dXlo = x;
}

void CExtents::SetMinY(double y) {
    if (y < m_dYlo) m_dYlo = y;
}

void CExtents::SetMaxX(double x) {
    if (x > m_dXrb) m_dXrb = x;
}

void CExtents::SetMaxY(double y) {
    if (y > m_dYrb) m_dYrb = y;
}

void CExtents::SetExt(const CExtents &other) {
    SetMinX(other.m_dXlo);
    SetMinY(other.m_dYlo);
    SetMaxX(other.m_dXrb);
    SetMaxY(other.m_dYrb);
}

void CExtents::Punt(const CVXCoord &pt) {
    SetX(pt.m_dX);
    SetY(pt.m_dY);
}

void CExtents::Cirkel(const CVXCoord *const *pts) {
    CVXCoord C;
    if (CVXCoord::nBoogRichting(pts) == 0 || !C.bMiddelPunt(pts)) {
        for (int i = 0; i < 3; ++i)
            Punt(*pts[i]);
        return;
    }
    const double r = C.dDist(*pts[0]);
    SetX(C.m_dX - r);
    SetX(C.m_dX + r);
    SetY(C.m_dY - r);
    SetY(C.m_dY + r);
}

void CExtents::Boog(const CVXCoord *const *pts) {
    const CBoogInfo info(pts);
    if (!info.m_bGeldig) {
        for (int i = 0; i < 3; ++i)
            Punt(*pts[i]);
        return;
    }
    const int nMasker = nBoogMasker(info);
    if (nMasker == nAlle) {
        Cirkel(pts);
        return;
    }
    // The support point lies on the arc and needs no place of its own.
    Punt(*pts[0]);
    Punt(*pts[2]);
    const CVXCoord &C = info.m_Middelpunt;
    const double r = info.m_dStraal;
    if (nMasker & nMaxY) SetMaxY(C.m_dY + r);
    if (nMasker & nMinX) SetMinX(C.m_dX - r);
    if (nMasker & nMinY) SetMinY(C.m_dY - r);
    if (nMasker & nMaxX) SetMaxX(C.m_dX + r);
}

// ---- changes that are not growth --------------------------------------------------------------

void CExtents::Schuif(double dx, double dy) {
    m_dXlo += dx;
    m_dXrb += dx;
    m_dYlo += dy;
    m_dYrb += dy;
}

void CExtents::Pan(const CVXCoord &a, const CVXCoord &b) {
    Schuif(a.m_dX - b.m_dX, a.m_dY - b.m_dY);
}

void CExtents::Vergroot(double dx, double dy) {
    m_dXlo -= dx;
    m_dXrb += dx;
    m_dYlo -= dy;
    m_dYrb += dy;
}

// ---- readers ----------------------------------------------------------------------------------

void CExtents::GetCenter(CVXCoord *pt) const {
    pt->SetXY(m_dXlo + (m_dXrb - m_dXlo) * 0.5, m_dYlo + (m_dYrb - m_dYlo) * 0.5);
}

void CExtents::Getlo(CVXCoord *pt) const {
    pt->SetXY(m_dXlo, m_dYlo);
}
void CExtents::Getlb(CVXCoord *pt) const {
    pt->SetXY(m_dXlo, m_dYrb);
}
void CExtents::Getrb(CVXCoord *pt) const {
    pt->SetXY(m_dXrb, m_dYrb);
}
void CExtents::Getro(CVXCoord *pt) const {
    pt->SetXY(m_dXrb, m_dYlo);
}

// Kept on purpose: no section codes are written, so all five corners keep code 1; hosts mark
// the stretches themselves when they need a proper line.
void CExtents::CreateBoundingBox(CVXCoordArr &arr) const {
    CVXCoord p;
    Getlo(&p);
    arr.Add(&p);
    Getro(&p);
    arr.Add(&p);
    Getrb(&p);
    arr.Add(&p);
    Getlb(&p);
    arr.Add(&p);
    Getlo(&p);
    arr.Add(&p);
}

// ---- predicates -------------------------------------------------------------------------------

bool CExtents::bCorrect() const {
    return !(m_dXrb < m_dXlo) && !(m_dYrb < m_dYlo);
}

bool CExtents::bBinnen(const CVXCoord &pt) const {
    return pt.m_dX >= m_dXlo && pt.m_dX <= m_dXrb && pt.m_dY >= m_dYlo && pt.m_dY <= m_dYrb;
}

bool CExtents::bBinnen(const CExtents &o) const {
    return o.m_dXlo >= m_dXlo && o.m_dXrb <= m_dXrb && o.m_dYlo >= m_dYlo && o.m_dYrb <= m_dYrb;
}

bool CExtents::bOverlap(const CExtents &o) const {
    return o.m_dXlo <= m_dXrb && o.m_dXrb >= m_dXlo && o.m_dYlo <= m_dYrb && o.m_dYrb >= m_dYlo;
}

bool CExtents::bMogelijkBinnen(const CExtents &o) const {
    return bOverlap(o) || bBinnen(o);
}

void CExtents::BinnenBuiten(bool *pBinnen, bool *pBuiten, const CExtents &o) const {
    *pBuiten = !bOverlap(o);
    *pBinnen = o.bBinnen(*this);
}

CExtents CExtents::Overlap(const CExtents &o) const {
    return CExtents(std::max(m_dXlo, o.m_dXlo), std::max(m_dYlo, o.m_dYlo),
                    std::min(m_dXrb, o.m_dXrb), std::min(m_dYrb, o.m_dYrb));
}

bool CExtents::bSnij(CVXCoord **pp, const CVXCoord *const *line) const {
    const double a = line[0]->dHoek(*line[1]);
    const bool bLangsX =
        std::fabs(a) <= std::numbers::pi / 4.0 || std::fabs(a) >= 3.0 * std::numbers::pi / 4.0;
    CVXCoord lo, lb, rb, ro;
    Getlo(&lo);
    Getlb(&lb);
    Getrb(&rb);
    Getro(&ro);
    // Mostly along X: the left and right edges; otherwise the lower and upper ones.
    const bool b0 = bLangsX ? bSnijRand(*pp[0], line, lo, lb) : bSnijRand(*pp[0], line, lo, ro);
    const bool b1 = bLangsX ? bSnijRand(*pp[1], line, ro, rb) : bSnijRand(*pp[1], line, lb, rb);
    if ((b0 && bBinnen(*pp[0])) || (b1 && bBinnen(*pp[1]))) return true;
    if (!b0 || !b1) return false;
    // Neither crossing is in the box: the carrier may still pass right through it.
    const double v0 = bLangsX ? pp[0]->m_dY : pp[0]->m_dX;
    const double v1 = bLangsX ? pp[1]->m_dY : pp[1]->m_dX;
    const double dLaag = bLangsX ? m_dYlo : m_dXlo;
    const double dHoog = bLangsX ? m_dYrb : m_dXrb;
    return (v0 <= dLaag && v1 >= dHoog) || (v1 <= dLaag && v0 >= dHoog);
}

// ---- lists ------------------------------------------------------------------------------------

CExtList::~CExtList() {
    RemoveAll();
}

void CExtList::RemoveAll() {
    while (!IsEmpty())
        delete RemoveHead();
}

CExtListX::~CExtListX() {
    RemoveAll();
}

void CExtListX::RemoveAll() {
    while (!IsEmpty())
        delete RemoveHead();
}

// ---- grid -------------------------------------------------------------------------------------

bool CGridDef::OnGrid(const CVXCoord &pt, bool bX, double &dN) const {
    const double r = bX ? pt.m_dX - m_dOrigX : pt.m_dY - m_dOrigY;
    double q = r / (bX ? m_dStapX : m_dStapY);
    // The nearest grid number, halves away from zero.
    q += q < 0.0 ? -0.5 : 0.5;
    dN = q >= 0.0 ? std::floor(q) : std::ceil(q);
    return OnSameGrid(pt, bX, dN);
}

bool CGridDef::OnSameGrid(const CVXCoord &pt, bool bX, double dN) const {
    const double r = bX ? pt.m_dX - m_dOrigX : pt.m_dY - m_dOrigY;
    return std::fabs(dN * (bX ? m_dStapX : m_dStapY) - r) < m_dTol;
}

} // namespace vx
