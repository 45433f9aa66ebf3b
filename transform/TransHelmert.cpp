#include "transform/TransHelmert.h"

#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"

#include <cmath>
#include <limits>
#include <unordered_set>
#include <vector>

namespace vx {

namespace {

// The weight of a control point at squared distance d2 from the point being corrected. A point
// on the control point itself counts at the distance² 0.001, so its weight stays finite.
constexpr double dGewichtTeller = 1000.0;
constexpr double dNulAfstand2 = 0.001;

double dGewicht(double d2) {
    return dGewichtTeller / (d2 == 0.0 ? dNulAfstand2 : d2);
}

} // namespace

VX_IMPLEMENT_SERIAL(CTransRecord, 1)
VX_IMPLEMENT_SERIAL(CTransTabel, 1)

// ---- CTransRecord ---------------------------------------------------------------------------

CTransRecord::CTransRecord() {
    for (CVXCoord *c : {&m_Van, &m_Naar, &m_Afwijking}) {
        c->m_dX = dNaN;
        c->m_dY = dNaN;
    }
}

CTransRecord::CTransRecord(const CTransRecord &other) : CSerObject(other) {
    Copy(other);
}

CTransRecord &CTransRecord::operator=(const CTransRecord &other) {
    Copy(other);
    return *this;
}

void CTransRecord::Set(const CVXCoord &p, bool bVan) {
    (bVan ? m_Van : m_Naar).Copy(p);
}

void CTransRecord::Copy(const CTransRecord &other) {
    m_Van.Copy(other.m_Van);
    m_Naar.Copy(other.m_Naar);
    m_Afwijking.Copy(other.m_Afwijking);
    m_bActief = other.m_bActief;
}

bool CTransRecord::bTestVal() const {
    return !std::isnan(m_Van.m_dX) && !std::isnan(m_Van.m_dY) && !std::isnan(m_Naar.m_dX) &&
           !std::isnan(m_Naar.m_dY);
}

void CTransRecord::CalcDeviation(const CTrans *t) {
    const double x = m_Van.m_dX, y = m_Van.m_dY;
    m_Afwijking.m_dX = t->dMatrix00 * x + t->dMatrix01 * y + t->dMatrix02 - m_Naar.m_dX;
    m_Afwijking.m_dY = t->dMatrix10 * x + t->dMatrix11 * y + t->dMatrix12 - m_Naar.m_dY;
}

void CTransRecord::SerializeX(CArchiveX &ar) {
    m_Van.SerializeX(u"Van", ar);
    m_Naar.SerializeX(u"Naar", ar);
}

// ---- CTransTabel ----------------------------------------------------------------------------

CTransTabel::CTransTabel(const char *name) : m_szNaam(name) {}

CTransTabel::~CTransTabel() {
    RemoveAll();
}

void CTransTabel::RemoveAll() {
    // Through the base pointer: after a failed load an element need not be a record.
    POSITION pos = GetHeadPosition();
    while (pos)
        delete CSerObList::GetNext(pos);
    CSerObList::RemoveAll();
}

void CTransTabel::Copy(const CTransTabel &other) {
    RemoveAll();
    POSITION pos = other.GetHeadPosition();
    while (pos)
        TransferAddTail(new CTransRecord(*other.GetNext(pos)));
}

bool CTransTabel::bCoordsOk() const {
    int32_t n = 0;
    bool bOk = true;
    VoorStaart([&](const CTransRecord &r) {
        ++n;
        bOk = bOk && r.bTestVal();
    });
    return bOk && n >= (m_nType == 1 ? 3 : 2);
}

bool CTransTabel::bBepTransformation(CTrans *t) const {
    std::vector<const CVXCoord *> van, naar;
    VoorStaart([&](const CTransRecord &r) {
        if (!r.m_bActief) return;
        van.push_back(&r.m_Van);
        naar.push_back(&r.m_Naar);
    });
    // Chosen: the fit counts its points in 16 bits; a larger table is refused, not wrapped.
    if (van.size() > size_t(std::numeric_limits<short>::max())) return false;
    return t->bEvalueer(static_cast<short>(van.size()), van.data(), naar.data(), m_nType);
}

void CTransTabel::CalcDeviations(const CTrans *t) {
    VoorStaart([&](CTransRecord &r) {
        if (r.m_bActief) r.CalcDeviation(t);
    });
}

void CTransTabel::VerwijderInactief() {
    POSITION pos = GetHeadPosition();
    while (pos) {
        const POSITION cur = pos;
        CTransRecord *r = GetNext(pos);
        if (r->m_bActief) continue;
        CSerObList::RemoveAt(cur);
        delete r;
    }
}

template <class F>
bool CTransTabel::VerwijderVreemd(F bEigen) {
    std::unordered_set<const CSerObject *> gezien;
    bool bVreemd = false;
    int32_t index = 0;
    POSITION pos = GetHeadPosition();
    while (pos) {
        const POSITION cur = pos;
        CSerObject *o = CSerObList::GetNext(pos);
        const bool bEigenObject = o && bEigen(index++, o);
        const bool bNieuw = o && gezien.insert(o).second;
        const bool bRecord = dynamic_cast<CTransRecord *>(o) != nullptr;
        if (bNieuw && bEigenObject && bRecord) continue;
        // A null or a repeated element is dropped; an object of another class is deleted, when
        // it is the table's own.
        CSerObList::RemoveAt(cur);
        if (bNieuw && !bRecord) bVreemd = true;
        if (bNieuw && bEigenObject && !bRecord) delete o;
    }
    return bVreemd;
}

void CTransTabel::SerializeX(CArchiveX &ar) {
    // Kept on purpose: saving drops the inactive records from memory as well as from the file,
    // so that what a host sees after a save is what the file holds.
    VerwijderInactief();
    // The XML archive has no back-references: every element it reads is new.
    const auto bAlles = [](int32_t, const CSerObject *) { return true; };
    try {
        CSerObList::SerializeX(ar);
    } catch (...) {
        VerwijderVreemd(bAlles);
        throw;
    }
    VerwijderVreemd(bAlles);
    ar.Serialize(u"m_szNaam", m_szNaam);
    ar.Serialize(u"m_nType", m_nType);
}

void CTransTabel::SerializeB(CArchiveB &ar) {
    // The records held before a load stay the table's; of the loaded ones it owns only those
    // its own run created. A back-reference names an object that belongs elsewhere in the
    // graph (or the table itself, or a table that contains it), which the table must neither
    // delete nor own.
    const int32_t nVoor = GetCount();
    const uint32_t mark = ar.IsLoading() ? ar.GetLoadMark() : 0;
    const auto bEigen = [&](int32_t index, const CSerObject *o) {
        return ar.IsStoring() || index < nVoor || ar.IsLoadedSince(o, mark);
    };
    try {
        CSerObList::SerializeB(ar);
    } catch (...) {
        VerwijderVreemd(bEigen);
        throw;
    }
    if (VerwijderVreemd(bEigen))
        throw CArchiveBException(CArchiveBException::badClass, ar.GetFileName());
}

// ---- CTransHelmert --------------------------------------------------------------------------

CTransHelmert::CTransHelmert(const CTrans &trans) : CTrans(trans) {}

CTransHelmert::CTransHelmert(const CTransHelmert &other) : CTrans(other) {
    m_Tabel.Copy(other.m_Tabel);
    // Chosen: a copy of the transformation keeps the table's name and mode too.
    m_Tabel.m_szNaam = other.m_Tabel.m_szNaam;
    m_Tabel.m_nType = other.m_Tabel.m_nType;
}

bool CTransHelmert::bEvalueer() {
    int n = 0;
    double x0 = 0.0, y0 = 0.0, u0 = 0.0, v0 = 0.0;
    m_Tabel.VoorStaart([&](const CTransRecord &r) {
        if (!r.m_bActief) return;
        ++n;
        x0 += r.m_Van.m_dX;
        y0 += r.m_Van.m_dY;
        u0 += r.m_Naar.m_dX;
        v0 += r.m_Naar.m_dY;
    });
    if (n < 2) return false;
    x0 /= n;
    y0 /= n;
    u0 /= n;
    v0 /= n;

    double Sxx = 0.0, Syy = 0.0, A = 0.0, B = 0.0, C = 0.0, D = 0.0;
    m_Tabel.VoorStaart([&](const CTransRecord &r) {
        if (!r.m_bActief) return;
        const double dx = r.m_Van.m_dX - x0, dy = r.m_Van.m_dY - y0;
        const double ex = (r.m_Naar.m_dX - u0) - dx, ey = (r.m_Naar.m_dY - v0) - dy;
        Sxx += dx * dx;
        Syy += dy * dy;
        A += ey * dx;
        B += ex * dy;
        C += ex * dx;
        D += ey * dy;
    });
    const double b = (A - B) / (Sxx + Syy);
    const double a = (D + C) / (Sxx + Syy) + 1.0;
    dMatrix00 = dMatrix11 = a;
    dMatrix01 = -b;
    dMatrix10 = b;
    dMatrix02 = y0 * b + (u0 - a * x0);
    dMatrix12 = (v0 - a * y0) - x0 * b;
    // Chosen: coinciding points give NaN here (plain divisions); NaN counts as a failed fit.
    return std::hypot(a, b) > 0.0 && std::hypot(dMatrix01, dMatrix11) > 0.0;
}

void CTransHelmert::CalcCorrections(CVXCoord &p) const {
    double Sx = 0.0, Sy = 0.0, Sw = 0.0;
    m_Tabel.VoorStaart([&](const CTransRecord &r) {
        if (!r.m_bActief) return;
        const double dx = p.m_dX - r.m_Naar.m_dX, dy = p.m_dY - r.m_Naar.m_dY;
        const double w = dGewicht(dx * dx + dy * dy);
        Sx += r.m_Afwijking.m_dX * w;
        Sy += r.m_Afwijking.m_dY * w;
        Sw += w;
    });
    // With no active record Sw is 0 and the plain division makes the point unknown.
    p.SetXY(p.m_dX - Sx / Sw, p.m_dY - Sy / Sw);
}

void CTransHelmert::Perform(CVXCoord *p) const {
    CTrans::Perform(p);
    CalcCorrections(*p);
}

void CTransHelmert::Perform(CVXCoord *out, const CVXCoord &in) const {
    CTrans::Perform(out, in);
    CalcCorrections(*out);
}

void CTransHelmert::Perform(int n, CVXCoord **p) const {
    CTrans::Perform(n, p);
    for (int i = 0; i < n; ++i)
        CalcCorrections(*p[i]);
}

void CTransHelmert::Perform(int n, double *xy) const {
    CTrans::Perform(n, xy);
    for (int i = 0; i + 1 < n; i += 2) {
        CVXCoord c(xy[i], xy[i + 1]);
        CalcCorrections(c);
        xy[i] = c.m_dX;
        xy[i + 1] = c.m_dY;
    }
}

void CTransHelmert::Perform(CPoint *out, const CVXCoord &in) const {
    CTrans::Perform(out, in);
    CVXCoord c(out->x, out->y);
    CalcCorrections(c);
    out->x = nTrunc(c.m_dX);
    out->y = nTrunc(c.m_dY);
}

void CTransHelmert::Perform(int n, CPoint *out, const double *xy) const {
    CTrans::Perform(n, out, xy);
    for (int i = 0; i + 1 < n; i += 2) {
        CVXCoord c(out[i / 2].x, out[i / 2].y);
        CalcCorrections(c);
        out[i / 2].x = nTrunc(c.m_dX);
        out[i / 2].y = nTrunc(c.m_dY);
    }
}

void CTransHelmert::SetShift(double x, double y) {
    const double dx = dMatrix02 - x, dy = dMatrix12 - y;
    m_Tabel.VoorStaart([&](CTransRecord &r) {
        if (!r.m_bActief) return;
        CVXCoord &van = r.m_Van;
        van.SetXY(van.m_dX + dx, van.m_dY + dy);
    });
    CTrans::SetShift(x, y);
    m_Tabel.CalcDeviations(this);
}

void CTransHelmert::MirrorHor() {
    const double a = dMatrix00, b = dMatrix01, q = a * a + b * b;
    const double s = 2.0 * a * b / q, c = (a * a - b * b) / q;
    m_Tabel.VoorStaart([&](CTransRecord &r) {
        if (!r.m_bActief) return;
        CVXCoord &van = r.m_Van;
        const double x = van.m_dX, y = van.m_dY;
        van.SetXY(x * c + y * s, y * c - x * s);
    });
    CTrans::MirrorHor();
    m_Tabel.CalcDeviations(this);
}

void CTransHelmert::PointsGeo2Raster(double p1, double p2, double p3, double, double, double p6,
                                     bool bVan) {
    // p4 and p5 (the rotation terms of a world file) play no part: rasters are taken unrotated.
    m_Tabel.VoorStaart([&](CTransRecord &r) {
        if (!r.m_bActief) return;
        CVXCoord &c = bVan ? r.m_Van : r.m_Naar;
        c.SetXY((c.m_dX - p3) / p1, (p6 - c.m_dY) / p2);
    });
}

CTrans *CTransHelmert::New() const {
    return new CTransHelmert(*this);
}

CTransTabel *CTransHelmert::pGetTabel() {
    return &m_Tabel;
}

} // namespace vx
