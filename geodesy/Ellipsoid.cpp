#include "geodesy/Ellipsoid.h"

#include "geodesy/GeodesyResources.h"
#include "geometry/VXCoord.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "platform/VXTypes.h"

#include <cmath>

namespace vx {

namespace {

struct SEllipsoidRow {
    const char16_t *szKeyword;
    double dSemiMajAx;
    double dInvFlatt;
    unsigned int nNameId;
};

// The named ellipsoids: the doubles as stored, so that results agree to the bit with data made
// earlier. Row 0 (USER) takes its numbers from the caller; its row simply equals WGS 84.
constexpr SEllipsoidRow s_Ellipsoids[] = {
    {u"USER", 6378137.0, 298.257223563, 22},
    {u"AIRY", 6377563.3959999997, 299.3249646, 1},
    {u"MODIFIED_AIRY", 6377340.1890000002, 299.3249646, 2},
    {u"AUSTRALIAN_NATIONAL", 6378160.0, 298.25, 3},
    {u"BESSEL_1841", 6377397.1550000003, 299.1528128, 4},
    {u"MODIFIED_BESSEL", 6377492.0175999999, 299.1528128, 5},
    {u"CLARKE_1866", 6378206.4000000004, 294.9786982, 6},
    {u"CLARKE_1880", 6378249.1449999996, 293.465, 7},
    {u"EVEREST", 6377276.3449999997, 300.8017, 8},
    {u"MODIFIED_EVEREST", 6377304.0630000001, 300.8017, 9},
    {u"FISHER_1960", 6378166.0, 298.3, 10},
    {u"MODIFIED_FISHER_1960", 6378155.0, 298.3, 11},
    {u"FISHER_1968", 6378150.0, 298.3, 12},
    {u"GRS_1967", 6378160.0, 298.247167427, 13},
    {u"GRS_1980", 6378137.0, 298.257222101, 14},
    {u"HELMERT_1906", 6378200.0, 298.3, 15},
    {u"HOUGH", 6378270.0, 297.0, 16},
    {u"INTERNATIONAL", 6378388.0, 297.0, 17},
    {u"KRASSOVSKY_1940", 6378245.0, 298.3, 18},
    {u"SOUTH_AMERICAN_1969", 6378160.0, 298.25, 19},
    {u"WGS72", 6378135.0, 298.26, 20},
    {u"WGS84", 6378137.0, 298.257223563, 21},
    {u"TIMBALAI_EVEREST", 6377298.5609999998, 300.8017, 47},
    {u"IAG75", 6378140.0, 298.257222, 64},
    {u"IUGG75", 6378140.0, 298.257, 65},
    {u"", 0.0, 0.0, 0},
};

// The XML archive's keyword table: rows 0 to 22 only. IAG75 and IUGG75 are left out on purpose:
// files written with this table carry them as USER with their numbers, and readers rely on that.
constexpr SEnumConvTmpl<CEllipsoid::EllipsoidType> s_EllipsoidTypeConv[] = {
    {u"USER", CEllipsoid::USER},
    {u"AIRY", CEllipsoid::AIRY},
    {u"MODIFIED_AIRY", CEllipsoid::MODIFIED_AIRY},
    {u"AUSTRALIAN_NATIONAL", CEllipsoid::AUSTRALIAN_NATIONAL},
    {u"BESSEL_1841", CEllipsoid::BESSEL_1841},
    {u"MODIFIED_BESSEL", CEllipsoid::MODIFIED_BESSEL},
    {u"CLARKE_1866", CEllipsoid::CLARKE_1866},
    {u"CLARKE_1880", CEllipsoid::CLARKE_1880},
    {u"EVEREST", CEllipsoid::EVEREST},
    {u"MODIFIED_EVEREST", CEllipsoid::MODIFIED_EVEREST},
    {u"FISHER_1960", CEllipsoid::FISHER_1960},
    {u"MODIFIED_FISHER_1960", CEllipsoid::MODIFIED_FISHER_1960},
    {u"FISHER_1968", CEllipsoid::FISHER_1968},
    {u"GRS_1967", CEllipsoid::GRS_1967},
    {u"GRS_1980", CEllipsoid::GRS_1980},
    {u"HELMERT_1906", CEllipsoid::HELMERT_1906},
    {u"HOUGH", CEllipsoid::HOUGH},
    {u"INTERNATIONAL", CEllipsoid::INTERNATIONAL},
    {u"KRASSOVSKY_1940", CEllipsoid::KRASSOVSKY_1940},
    {u"SOUTH_AMERICAN_1969", CEllipsoid::SOUTH_AMERICAN_1969},
    {u"WGS72", CEllipsoid::WGS72},
    {u"WGS84", CEllipsoid::WGS84},
    {u"TIMBALAI_EVEREST", CEllipsoid::TIMBALAI_EVEREST},
    {nullptr, CEllipsoid::USER},
};

// The smallest normal float: keeps 1/f and the geocentric radius away from zero.
constexpr double dFloatMin = 1.1754943508222875e-38;
// XYZToEll stops when the latitude changes by less than this (the literal 1e-12) ...
constexpr double dLatTol = 1e-12;
// ... or after this many rounds, silently.
constexpr int nMaxXYZRounds = 11;

constexpr double dTwoPi = 6.283185307179586;

unsigned int CountRows() {
    unsigned int n = 0;
    while (s_Ellipsoids[n].szKeyword[0] != u'\0')
        ++n;
    return n;
}

const unsigned int g_nEllipsoids = CountRows();

} // namespace

void CEllCoord::CopyNoHgt(const CEllCoord &other) {
    m_dLat = other.m_dLat;
    m_dLon = other.m_dLon;
    m_dHgt = dNaN;
}

CEllipsoid::CEllipsoid(EllipsoidType type) {
    Initialize(type, 0.0, 0.0);
}

CEllipsoid::CEllipsoid(EllipsoidType type, double a, double invFlatt) {
    Initialize(type, a, invFlatt);
}

CEllipsoid::CEllipsoid(double a, double invFlatt) {
    Initialize(USER, a, invFlatt);
}

void CEllipsoid::Initialize(EllipsoidType type, double a, double invFlatt) {
    // A number beyond the table (from a damaged archive) counts as USER rather than reading past
    // the table's end.
    if (type < USER || static_cast<unsigned int>(type) >= g_nEllipsoids) type = USER;
    m_nType = type;
    const SEllipsoidRow &row = s_Ellipsoids[type];
    if (type != USER) {
        a = row.dSemiMajAx;
        invFlatt = row.dInvFlatt;
    }
    m_dSemiMajAx = a;
    m_dInvFlatt = invFlatt;
    m_szTrav3Name = row.szKeyword;
    EnsureGeodesyResources();
    m_szName.LoadString(row.nNameId);
    // The guard only prevents a division by zero; a 1/f of 0 gives a NaN eccentricity.
    const double d = invFlatt < dFloatMin ? dFloatMin : invFlatt;
    const double f = 1.0 / d;
    m_dEccentr = std::sqrt(2.0 * f - f * f);
}

void CEllipsoid::SerializeB(CArchiveB &ar, int schema) {
    if (ar.IsStoring()) {
        ar << static_cast<int32_t>(m_nType) << m_dSemiMajAx << m_dInvFlatt;
        return;
    }
    int32_t type = USER;
    double a = 0.0;
    double invFlatt = 0.0;
    if (schema == 1) {
        // The old layout: numbers first, then the keyword; an unknown keyword stays USER.
        double eccentr = 0.0;
        CVXString keyword;
        ar >> a >> invFlatt >> eccentr >> keyword;
        for (unsigned int i = 0; i < g_nEllipsoids; ++i)
            if (keyword.Compare(s_Ellipsoids[i].szKeyword) == 0) type = static_cast<int32_t>(i);
    } else {
        ar >> type >> a >> invFlatt;
    }
    Initialize(static_cast<EllipsoidType>(type), a, invFlatt);
}

void CEllipsoid::SerializeX(CArchiveX &ar) {
    EllipsoidType type = m_nType;
    if (ar.IsStoring())
        SaveEllipsoidType(ar, type);
    else
        LoadEllipsoidType(ar, type);
    ar.Serialize(u"m_dSemiMajAx", m_dSemiMajAx);
    ar.Serialize(u"m_dInvFlatt", m_dInvFlatt);
    if (ar.IsLoading()) Initialize(type, m_dSemiMajAx, m_dInvFlatt);
}

double CEllipsoid::dNRadCurv(double lat) const {
    const double s = std::sin(lat);
    return m_dSemiMajAx / std::sqrt(1.0 - m_dEccentr * m_dEccentr * s * s);
}

double CEllipsoid::dMRadCurv(double lat) const {
    const double s = std::sin(lat);
    const double e2 = m_dEccentr * m_dEccentr;
    return m_dSemiMajAx * (1.0 - e2) / std::pow(1.0 - e2 * s * s, 1.5);
}

void CEllipsoid::EllToXYZ(double lat, double lon, double h, double &X, double &Y, double &Z) const {
    const double N = dNRadCurv(lat);
    X = (N + h) * std::cos(lat) * std::cos(lon);
    Y = (N + h) * std::cos(lat) * std::sin(lon);
    Z = (N * (1.0 - m_dEccentr * m_dEccentr) + h) * std::sin(lat);
}

void CEllipsoid::EllToXYZ(CVXCoord &xyz, const CEllCoord &ell) const {
    double X = 0.0;
    double Y = 0.0;
    double Z = 0.0;
    EllToXYZ(ell.dGetLat(), ell.dGetLon(), ell.dGetHgt(), X, Y, Z);
    xyz.SetXY(X, Y);
    xyz.SetZ(Z);
}

void CEllipsoid::XYZToEll(double X, double Y, double Z, double &lat, double &lon, double &h) const {
    const double e2 = m_dEccentr * m_dEccentr;
    const double p2 = X * X + Y * Y;
    double W = Z;
    double r = 0.0;
    double N = 0.0;
    lat = 0.0;
    for (int nRound = 0; nRound < nMaxXYZRounds; ++nRound) {
        const double prev = lat;
        r = std::sqrt(W * W + p2);
        if (r < dFloatMin) r = dFloatMin;
        const double q = W / r;
        lat = std::asin(q);
        N = dNRadCurv(lat);
        W = e2 * N * q + Z;
        if (std::fabs(lat - prev) < dLatTol) break;
    }
    double p = std::sqrt(p2);
    if (p < dFloatMin) p = dFloatMin;
    lon = std::acos(X / p);
    // Longitudes come out in [0, 2*pi): west of Greenwich lies near 2*pi. The projections wrap
    // their longitude differences, so they live with it.
    if (Y < 0.0) lon = dTwoPi - lon;
    h = r - N;
}

void CEllipsoid::XYZToEll(CEllCoord &ell, const CVXCoord &xyz) const {
    double lat = 0.0;
    double lon = 0.0;
    double h = 0.0;
    XYZToEll(xyz.dGetX(), xyz.dGetY(), xyz.dGetZ(), lat, lon, h);
    ell.SetLatLon(lat, lon);
    ell.SetHgt(h);
}

const SEnumConvTmpl<CEllipsoid::EllipsoidType> *CEllipsoid::EllipsoidTypeConv() {
    return s_EllipsoidTypeConv;
}

CVXString CEllipsoid::FromEllipsoidType(EllipsoidType &type) {
    for (const auto *p = s_EllipsoidTypeConv; p->szKeyword != nullptr; ++p)
        if (p->value == type) return CVXString(p->szKeyword);
    return CVXString();
}

CEllipsoid::EllipsoidType CEllipsoid::ToEllipsoidType(const CVXString &keyword) {
    const auto *p = s_EllipsoidTypeConv;
    for (; p->szKeyword != nullptr; ++p)
        if (keyword.Compare(p->szKeyword) == 0) break;
    return p->value;
}

void CEllipsoid::SaveIt(CArchiveX &ar, const CVXString &key, EllipsoidType type) {
    ar.Save(key, FromEllipsoidType(type));
}

void CEllipsoid::LoadIt(CArchiveX &ar, const CVXString &key, EllipsoidType &type) {
    CVXString keyword;
    ar.Load(key, keyword);
    type = ToEllipsoidType(keyword);
}

void CEllipsoid::SaveEllipsoidType(CArchiveX &ar, EllipsoidType type) {
    SaveIt(ar, u"EllipsoidType", type);
}

void CEllipsoid::LoadEllipsoidType(CArchiveX &ar, EllipsoidType &type) {
    LoadIt(ar, u"EllipsoidType", type);
}

unsigned int GetNELLIPSOIDS() {
    return g_nEllipsoids;
}

bool bGetEllipsoidType(const CVXString &keyword, CEllipsoid::EllipsoidType &type) {
    for (unsigned int i = 0; i < g_nEllipsoids; ++i) {
        if (keyword.Compare(s_Ellipsoids[i].szKeyword) == 0) {
            type = static_cast<CEllipsoid::EllipsoidType>(i);
            return true;
        }
    }
    return false;
}

CEllipsoid *pGetNewEllipsoid(const CVXString &keyword, double a, double invFlatt) {
    CEllipsoid::EllipsoidType type = CEllipsoid::USER;
    if (!bGetEllipsoidType(keyword, type)) return nullptr;
    if (type == CEllipsoid::USER) return new CEllipsoid(a, invFlatt);
    return new CEllipsoid(type);
}

double dGetInvFlattFromEcc(double e) {
    return 1.0 / (1.0 - std::sqrt(1.0 - e * e));
}

void Levallois(double X, double Y, double Z, double *lat, double *lon, double *h, double a,
               double e) {
    const CEllipsoid ell(a, dGetInvFlattFromEcc(e));
    ell.XYZToEll(X, Y, Z, *lat, *lon, *h);
}

void EllToXYZ(double lat, double lon, double h, double *X, double *Y, double *Z, double a,
              double e) {
    const CEllipsoid ell(a, dGetInvFlattFromEcc(e));
    ell.EllToXYZ(lat, lon, h, *X, *Y, *Z);
}

} // namespace vx
