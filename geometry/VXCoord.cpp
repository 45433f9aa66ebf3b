#include "geometry/VXCoord.h"

#include "geometry/Deel.h"
#include "geometry/Tolerances.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "platform/Assert.h"
#include "platform/Resources.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <typeinfo>

namespace vx {

namespace {

constexpr signed char nChAlles = 7;
constexpr signed char nChPositie = 5;
constexpr uint16_t nHerkMasker = 0x000F;
constexpr uint16_t nFixedBit = 0x0100;

// A number in its text form, or the localised word for "unknown" when it is NaN.
CVXString szGetal(const char16_t *format, double value) {
    CVXString text;
    if (std::isnan(value))
        LoadResourceString(IDS_UNKNOWN, text);
    else
        text.Format(format, value);
    return text;
}

// Both NaN counts as equal, one NaN as different, otherwise exact equality.
bool bGelijkOfBeideOnbekend(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return a == b;
}

double dKwadraat(double v) {
    return v * v;
}

} // namespace

// ---- construction and copies ------------------------------------------------------------------

CVXCoord::CVXCoord(double x, double y) : m_dX(x), m_dY(y), m_nChFlags(nChAlles) {}

CVXCoord::CVXCoord(double x, double y, char s)
    : m_dX(x), m_dY(y), m_nSectie(static_cast<signed char>(s)), m_nChFlags(nChAlles) {}

// Kept on purpose: this form marks nothing as changed while the two- and three-argument forms
// mark everything; callers build "clean" 3D points with it.
CVXCoord::CVXCoord(double x, double y, double z, char s)
    : m_dX(x), m_dY(y), m_dZ(z), m_nSectie(static_cast<signed char>(s)) {}

CVXCoord::CVXCoord(const CVXCoord &other) : CSerObject(other) {
    Copy(other);
}

CVXCoord &CVXCoord::operator=(const CVXCoord &other) {
    Copy(other);
    return *this;
}

// Chosen: a point is written as a plain, unversioned class (schema 0); its layout has one form.
VX_IMPLEMENT_SERIAL(CVXCoord, 0)

namespace {

// The stored fields in their order; both directions of both archives walk this one list.
template <class Visit>
void VisitStoredFields(CVXCoord &p, Visit visit) {
    visit(u"m_dX", p.m_dX);
    visit(u"m_dY", p.m_dY);
    visit(u"m_dZ", p.m_dZ);
    visit(u"m_dDiepte", p.m_dDiepte);
    visit(u"m_dPX", p.m_dPX);
    visit(u"m_dPY", p.m_dPY);
    visit(u"m_dPZ", p.m_dPZ);
    visit(u"m_nHB", p.m_nHB);
}

} // namespace

void CVXCoord::SerializeB(CArchiveB &ar) {
    VisitStoredFields(*this, [&ar](const char16_t *, auto &field) {
        if (ar.IsStoring())
            ar << field;
        else
            ar >> field;
    });
}

void CVXCoord::SerializeX(CArchiveX &ar) {
    VisitStoredFields(*this,
                      [&ar](const char16_t *name, auto &field) { ar.Serialize(name, field); });
}

void CVXCoord::SerializeX(const CVXString &name, CArchiveX &ar) {
    CArchiveXMLChild child(ar, name);
    SerializeX(ar);
}

void CVXCoord::Dump(CDumpContext &dc) const {
    dc << "CVXCoord " << BareClassName(typeid(*this)) << " S=" << static_cast<int>(m_nSectie)
       << "\n";
}

void CVXCoord::CopyVelden(const CVXCoord &other, bool bZ, bool bSectie) {
    m_dX = other.m_dX;
    m_dY = other.m_dY;
    if (bZ) m_dZ = other.m_dZ;
    m_dDiepte = other.m_dDiepte;
    m_dPX = other.m_dPX;
    m_dPY = other.m_dPY;
    m_dPZ = other.m_dPZ;
    m_nHB = other.m_nHB;
    if (bSectie) m_nSectie = other.m_nSectie;
}

void CVXCoord::Copy(const CVXCoord &other) {
    CopyVelden(other, true, true);
    m_nChFlags = other.m_nChFlags;
}

void CVXCoord::CopyNoS(const CVXCoord &other) {
    CopyVelden(other, true, false);
    m_nChFlags = nChAlles;
}

void CVXCoord::CopyNoZ(const CVXCoord &other) {
    CopyVelden(other, false, true);
    m_nChFlags = nChAlles;
}

void CVXCoord::CopyNoZNoS(const CVXCoord &other) {
    CopyVelden(other, false, false);
    m_nChFlags = nChAlles;
}

void CVXCoord::Copy(const CVXCoord &other, char s) {
    Copy(other);
    m_nSectie = static_cast<signed char>(s);
    m_nHB &= static_cast<uint16_t>(~nHerkMasker);
    m_nChFlags |= nChAlles;
}

CVXCoord *CVXCoord::New() const {
    return new CVXCoord(*this);
}

// ---- readers and writers ----------------------------------------------------------------------

double CVXCoord::PrecXY() const {
    if (std::isnan(m_dPX)) return dNaN;
    return std::sqrt(m_dPX * m_dPX + m_dPY * m_dPY);
}

void CVXCoord::PositieGewijzigd() {
    m_nHB &= static_cast<uint16_t>(~nHerkMasker);
    m_nChFlags |= nChPositie;
}

void CVXCoord::SetHerk(char nHerk) {
    m_nHB = static_cast<uint16_t>((m_nHB & ~nHerkMasker) |
                                  (static_cast<unsigned char>(nHerk) & nHerkMasker));
    m_nChFlags |= nChParms;
}

void CVXCoord::SetFixed(bool bFixed) {
    if (bFixed)
        m_nHB |= nFixedBit;
    else
        m_nHB &= static_cast<uint16_t>(~nFixedBit);
    m_nChFlags |= nChParms;
}

void CVXCoord::SetX(double x) {
    m_dX = x;
    PositieGewijzigd();
}

void CVXCoord::SetY(double y) {
    m_dY = y;
    PositieGewijzigd();
}

void CVXCoord::SetZ(double z) {
    m_dZ = z;
    PositieGewijzigd();
}

void CVXCoord::SetXY(double x, double y) {
    m_dX = x;
    m_dY = y;
    PositieGewijzigd();
}

void CVXCoord::SetCCoord() {
    PositieGewijzigd();
}

void CVXCoord::Copy(double x, double y, double z) {
    m_dX = x;
    m_dY = y;
    m_dZ = z;
    PositieGewijzigd();
}

void CVXCoord::Set(double x, double y, double z, char s) {
    Copy(x, y, z);
    SetSectie(s);
}

void CVXCoord::SetSectie(char s) {
    m_nSectie = static_cast<signed char>(s);
    m_nChFlags |= nChSectie;
}

void CVXCoord::CopySectie(const CVXCoord &other) {
    SetSectie(static_cast<char>(other.m_nSectie));
}

void CVXCoord::SetDiepteD(double d) {
    m_dDiepte = d;
    m_nChFlags |= nChParms;
}

void CVXCoord::PrecDX(double d) {
    m_dPX = d;
    m_nChFlags |= nChParms;
}

void CVXCoord::PrecDY(double d) {
    m_dPY = d;
    m_nChFlags |= nChParms;
}

void CVXCoord::PrecDZ(double d) {
    m_dPZ = d;
    m_nChFlags |= nChParms;
}

// ---- comparison -------------------------------------------------------------------------------

bool CVXCoord::bEqual(const CVXCoord &other) const {
    return m_dX == other.m_dX && m_dY == other.m_dY;
}

bool CVXCoord::bEqualXYZ(const CVXCoord &other) const {
    return bGelijkOfBeideOnbekend(m_dX, other.m_dX) && bGelijkOfBeideOnbekend(m_dY, other.m_dY) &&
           bGelijkOfBeideOnbekend(m_dZ, other.m_dZ);
}

bool CVXCoord::bGelijk(const CVXCoord &other) const {
    return dDist2D3D(other) < dPuntTol;
}

bool CVXCoord::bGelijkInLijn(const CVXCoord &other) const {
    if (!bGelijk(other)) return false;
    return m_nSectie == 1 || other.m_nSectie == 1 || m_nSectie == other.m_nSectie;
}

int CVXCoord::nCompPIB(const CVXCoord &other) const {
    const bool bDit = !std::isnan(m_dPX);
    const bool bAnder = !std::isnan(other.m_dPX);
    if (!bDit && !bAnder) return 0;
    if (!bAnder) return 1;
    if (!bDit) return -1;
    const double dDit = m_dPX * m_dPX + m_dPY * m_dPY;
    const double dAnder = other.m_dPX * other.m_dPX + other.m_dPY * other.m_dPY;
    if (dDit < dAnder) return 1;
    if (dDit > dAnder) return -1;
    return 0;
}

// ---- distances --------------------------------------------------------------------------------

double CVXCoord::dDist(const CVXCoord &other) const {
    return std::hypot(other.m_dX - m_dX, other.m_dY - m_dY);
}

double CVXCoord::dDist2D3D(const CVXCoord &other) const {
    double dx, dy, dz;
    return dDist2D3D(other, dx, dy, dz);
}

double CVXCoord::dDist2D3D(const CVXCoord &other, double &dx, double &dy, double &dz) const {
    dx = other.m_dX - m_dX;
    dy = other.m_dY - m_dY;
    dz = other.m_dZ - m_dZ;
    const bool bDitZ = !std::isnan(m_dZ);
    const bool bAnderZ = !std::isnan(other.m_dZ);
    if (!bDitZ && !bAnderZ) return std::hypot(dx, dy);
    if (bDitZ != bAnderZ) return dMaxDouble;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}

double CVXCoord::dDist2D3DEx(const CVXCoord &other) const {
    double dx, dy, dz;
    return dDist2D3DEx(other, dx, dy, dz);
}

double CVXCoord::dDist2D3DEx(const CVXCoord &other, double &dx, double &dy, double &dz) const {
    if (std::isnan(m_dZ)) {
        dx = other.m_dX - m_dX;
        dy = other.m_dY - m_dY;
        dz = dNaN;
        return std::hypot(dx, dy);
    }
    return dDist2D3D(other, dx, dy, dz);
}

double CVXCoord::dLengte() const {
    return std::sqrt(m_dX * m_dX + m_dY * m_dY + m_dZ * m_dZ);
}

// ---- angles -----------------------------------------------------------------------------------

double CVXCoord::dHoek(const CVXCoord &other) const {
    const double dx = other.m_dX - m_dX;
    const double dy = other.m_dY - m_dY;
    if (dx == 0.0 && dy == 0.0) return 0.0;
    return std::atan2(dy, dx);
}

double CVXCoord::dPosHoek(const CVXCoord &other) const {
    const double h = dHoek(other);
    return h < 0.0 ? h + 2.0 * std::numbers::pi : h;
}

double CVXCoord::dHoek(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C) {
    const double a = A.dDist(B);
    const double b = A.dDist(C);
    const double c = B.dDist(C);
    double q = dDeel(a * a + c * c - b * b, 2.0 * a * c);
    if (std::isnan(q)) return 0.0;
    q = std::clamp(q, -1.0, 1.0);
    int s = nBoogRichting(A, B, C);
    if (s == 0) s = 1;
    return s * std::acos(q);
}

double CVXCoord::dPosHoek(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C) {
    const double h = dHoek(A, B, C);
    return h < 0.0 ? h + 2.0 * std::numbers::pi : h;
}

int CVXCoord::nBoogRichting(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C) {
    const double v = (B.m_dY - A.m_dY) * (C.m_dX - A.m_dX) - (B.m_dX - A.m_dX) * (C.m_dY - A.m_dY);
    if (v > dRichtingTol) return 1;
    if (v < -dRichtingTol) return -1;
    return 0;
}

int CVXCoord::nBoogRichting(const CVXCoord *const *pts) {
    return nBoogRichting(*pts[0], *pts[1], *pts[2]);
}

double CVXCoord::Spread(const CVXCoord &A, const CVXCoord &B, const CVXCoord &C, SectorType &type) {
    const double qa = dKwadraat(A.m_dX - C.m_dX) + dKwadraat(A.m_dY - C.m_dY);
    const double qb = dKwadraat(B.m_dX - C.m_dX) + dKwadraat(B.m_dY - C.m_dY);
    const double qc = dKwadraat(A.m_dX - B.m_dX) + dKwadraat(A.m_dY - B.m_dY);
    if (qa + qb > qc)
        type = Scherp;
    else if (qa + qb == qc)
        type = Recht;
    else
        type = Stomp;
    const double d = (A.m_dY - C.m_dY) * (C.m_dX - B.m_dX) - (B.m_dY - C.m_dY) * (C.m_dX - A.m_dX);
    return dDeel(d * d, qa * qb);
}

// ---- displacements and constructions ----------------------------------------------------------

void CVXCoord::Midden(const CVXCoord &A, const CVXCoord &B) {
    m_dX = (A.m_dX + B.m_dX) / 2.0;
    m_dY = (A.m_dY + B.m_dY) / 2.0;
    PositieGewijzigd();
}

void CVXCoord::Schuif(double d, double a) {
    m_dX += d * std::cos(a);
    m_dY += d * std::sin(a);
    PositieGewijzigd();
}

void CVXCoord::Schuif(const CVXCoord &base, double d, double a, bool bSectie) {
    if (bSectie)
        Copy(base);
    else
        CopyNoS(base);
    Schuif(d, a);
}

void CVXCoord::Transform(const CVXCoord &from, const CVXCoord &to, double a, double s) {
    const double dx = m_dX - from.m_dX;
    const double dy = m_dY - from.m_dY;
    const double c = std::cos(a);
    const double n = std::sin(a);
    m_dX = to.m_dX + s * (dx * c - dy * n);
    m_dY = to.m_dY + s * (dx * n + dy * c);
    PositieGewijzigd();
}

void CVXCoord::Horner(int n, double (*c)[4][2], double t) {
    double v[2];
    for (int as = 0; as < 2; ++as) {
        v[as] = c[n][3][as];
        for (int k = 2; k >= 0; --k)
            v[as] = v[as] * t + c[n][k][as];
    }
    m_dX = v[0];
    m_dY = v[1];
    PositieGewijzigd();
}

bool CVXCoord::BepaalEenheidsVector2D(CVXCoord &out, const CVXCoord &to) const {
    out.m_dX = to.m_dX - m_dX;
    out.m_dY = to.m_dY - m_dY;
    const double s = dDeel(1.0, out.m_dX * out.m_dX + out.m_dY * out.m_dY);
    if (std::isnan(s)) return false;
    const double f = std::sqrt(s);
    out.m_dX *= f;
    out.m_dY *= f;
    out.PositieGewijzigd();
    return true;
}

// The writes go to the fields directly: a helper vector carries no change marks.
bool CVXCoord::Lood3D(CVXCoord &out) const {
    if (std::isnan(m_dZ)) return false;
    out.m_dX = out.m_dY = out.m_dZ = 1.0;
    double t = dDeel(m_dX + m_dY, -m_dZ);
    if (!std::isnan(t)) {
        out.m_dZ = t;
        return true;
    }
    t = dDeel(m_dX + m_dZ, -m_dY);
    if (!std::isnan(t)) {
        out.m_dY = t;
        return true;
    }
    t = dDeel(m_dY + m_dZ, -m_dX);
    if (!std::isnan(t)) {
        // Kept on purpose: the third solution lands in Y, not X, so the result is then not
        // perpendicular; existing callers and stored constructions depend on this outcome.
        out.m_dY = t;
        return true;
    }
    out.m_dX = out.m_dY = out.m_dZ = 0.0;
    return false;
}

void CVXCoord::InterpoleerZ(const CVXCoord &A, const CVXCoord &B) {
    m_dZ = (std::isnan(A.m_dZ) || std::isnan(B.m_dZ)) ? dNaN : (A.m_dZ + B.m_dZ) / 2.0;
    PositieGewijzigd();
}

// ---- text forms -------------------------------------------------------------------------------

CVXString CVXCoord::szGetX() const {
    return szGetal(u"%12.3f", m_dX);
}
CVXString CVXCoord::szGetY() const {
    return szGetal(u"%12.3f", m_dY);
}
CVXString CVXCoord::szGetZ() const {
    return szGetal(u"%9.3f", m_dZ);
}
CVXString CVXCoord::szGetPrecX() const {
    return szGetal(u"%7.3f", m_dPX);
}
CVXString CVXCoord::szGetPrecY() const {
    return szGetal(u"%7.3f", m_dPY);
}
CVXString CVXCoord::szGetPrecZ() const {
    return szGetal(u"%7.3f", m_dPZ);
}

// ---- arithmetic -------------------------------------------------------------------------------

CVXCoord operator+(const CVXCoord &A, const CVXCoord &B) {
    if (!std::isnan(A.m_dZ) && !std::isnan(B.m_dZ))
        return CVXCoord(A.m_dX + B.m_dX, A.m_dY + B.m_dY, A.m_dZ + B.m_dZ, 1);
    return CVXCoord(A.m_dX + B.m_dX, A.m_dY + B.m_dY, 1);
}

CVXCoord operator-(const CVXCoord &A, const CVXCoord &B) {
    if (!std::isnan(A.m_dZ) && !std::isnan(B.m_dZ))
        return CVXCoord(A.m_dX - B.m_dX, A.m_dY - B.m_dY, A.m_dZ - B.m_dZ, 1);
    return CVXCoord(A.m_dX - B.m_dX, A.m_dY - B.m_dY, 1);
}

CVXCoord operator*(const CVXCoord &A, double f) {
    if (!std::isnan(A.m_dZ)) return CVXCoord(A.m_dX * f, A.m_dY * f, A.m_dZ * f, 1);
    return CVXCoord(A.m_dX * f, A.m_dY * f, 1);
}

CVXCoord operator*(double f, const CVXCoord &A) {
    return A * f;
}

CVXCoord operator*(const CVXCoord &A, const CVXCoord &B) {
    if (std::isnan(A.m_dZ) || std::isnan(B.m_dZ)) {
        VX_ASSERT_TEXT(false, "!_isnan(A.m_dZ)&&!_isnan(B.m_dZ)");
        return CVXCoord();
    }
    return CVXCoord(A.m_dY * B.m_dZ - B.m_dY * A.m_dZ, A.m_dZ * B.m_dX - A.m_dX * B.m_dZ,
                    A.m_dX * B.m_dY - A.m_dY * B.m_dX, 1);
}

double operator|(const CVXCoord &A, const CVXCoord &B) {
    return A.m_dX * B.m_dX + A.m_dY * B.m_dY;
}

// ---- C2DVector --------------------------------------------------------------------------------

C2DVector::C2DVector(double x, double y) {
    m_dX = x;
    m_dY = y;
}

C2DVector C2DVector::operator-(const C2DVector &B) const {
    return C2DVector(m_dX - B.m_dX, m_dY - B.m_dY);
}

C2DVector C2DVector::operator+(const C2DVector &B) const {
    return C2DVector(m_dX + B.m_dX, m_dY + B.m_dY);
}

C2DVector C2DVector::operator*(double f) const {
    return C2DVector(m_dX * f, m_dY * f);
}

C2DVector &C2DVector::operator=(const C2DVector &B) {
    m_dX = B.m_dX;
    m_dY = B.m_dY;
    return *this;
}

double C2DVector::operator|(const C2DVector &B) const {
    return m_dX * B.m_dX + m_dY * B.m_dY;
}

double C2DVector::dKwadraat() const {
    return m_dX * m_dX + m_dY * m_dY;
}

} // namespace vx
