// Reference ellipsoids and geographic coordinates.
//
// CEllipsoid holds a, 1/f and the first eccentricity e of one of the 25 named ellipsoids of the
// fixed table (or of a user ellipsoid), with the radii of curvature and the conversions between
// geographic and geocentric coordinates. EllToXYZ is the closed formula; XYZToEll is a fixed-point
// iteration on the latitude (at most 11 rounds, stopping at a change below 1e-12 rad, which is
// reached in 3 to 5 rounds near the earth's surface, giving sub-millimetre heights). Longitudes
// out of XYZToEll lie in [0, 2*pi).
#pragma once

#include "platform/VXExport.h"

#include "platform/Object.h"
#include "platform/VXString.h"

namespace vx VX_API {

class CArchiveB;
class CArchiveX;
class CVXCoord;

// Latitude and longitude in radians, ellipsoidal height in metres.
class CEllCoord : public CObject {
public:
    CEllCoord() = default;
    CEllCoord(double lat, double lon, double hgt) : m_dLat(lat), m_dLon(lon), m_dHgt(hgt) {}
    CEllCoord(const CEllCoord &) = default;
    CEllCoord &operator=(const CEllCoord &) = default;

    double dGetLat() const { return m_dLat; }
    double dGetLon() const { return m_dLon; }
    double dGetHgt() const { return m_dHgt; }
    void SetLat(double lat) { m_dLat = lat; }
    void SetLon(double lon) { m_dLon = lon; }
    void SetHgt(double hgt) { m_dHgt = hgt; }
    void SetLatLon(double lat, double lon) {
        m_dLat = lat;
        m_dLon = lon;
    }
    void Copy(const CEllCoord &other) { *this = other; }
    // Latitude and longitude of `other`; the height becomes unknown.
    void CopyNoHgt(const CEllCoord &other);

private:
    double m_dLat = 0.0;
    double m_dLon = 0.0;
    double m_dHgt = 0.0;
};

// One (keyword, value) pair of an enumeration's text form in the XML archive; a null keyword
// closes a table.
template <class E>
struct SEnumConvTmpl {
    const char16_t *szKeyword;
    E value;
};

// Final: the destructor is not virtual (the stored layout has no slot for it), so nothing may
// derive from it.
class CEllipsoid final {
public:
    // The rows of the ellipsoid table, in table order.
    enum EllipsoidType : int32_t {
        USER = 0,
        AIRY,
        MODIFIED_AIRY,
        AUSTRALIAN_NATIONAL,
        BESSEL_1841,
        MODIFIED_BESSEL,
        CLARKE_1866,
        CLARKE_1880,
        EVEREST,
        MODIFIED_EVEREST,
        FISHER_1960,
        MODIFIED_FISHER_1960,
        FISHER_1968,
        GRS_1967,
        GRS_1980,
        HELMERT_1906,
        HOUGH,
        INTERNATIONAL,
        KRASSOVSKY_1940,
        SOUTH_AMERICAN_1969,
        WGS72,
        WGS84,
        TIMBALAI_EVEREST,
        IAG75,
        IUGG75
    };

    explicit CEllipsoid(EllipsoidType type);
    // The numbers count only for USER; a named type takes its table values.
    CEllipsoid(EllipsoidType type, double a, double invFlatt);
    CEllipsoid(double a, double invFlatt);
    CEllipsoid(const CEllipsoid &other) = default;
    CEllipsoid &operator=(const CEllipsoid &other) = default;
    ~CEllipsoid() = default;

    // Binary: type (int32), a, 1/f; loading schema 1 (the old layout) reads a, 1/f, e and the
    // keyword instead. XML: "EllipsoidType", "m_dSemiMajAx", "m_dInvFlatt". Loading ends in
    // Initialize, so a named type takes its table values and e is recomputed.
    virtual void SerializeB(CArchiveB &ar, int schema);
    virtual void SerializeX(CArchiveX &ar);

    // Copies every field, the eccentricity included, without recomputing.
    void Copy(const CEllipsoid &other) { *this = other; }
    // A new heap copy that the caller owns.
    CEllipsoid *Copy() const { return new CEllipsoid(*this); }

    EllipsoidType nGetEllipsoid() const { return m_nType; }
    double dGetSemiMajAx() const { return m_dSemiMajAx; }
    double dGetInvFlatt() const { return m_dInvFlatt; }
    double dGetEccentr() const { return m_dEccentr; }
    const CVXString &szGetTrav3Name() const { return m_szTrav3Name; }
    const CVXString &szGetName() const { return m_szName; }

    // Radius of curvature in the prime vertical (N) and in the meridian (M).
    double dNRadCurv(double lat) const;
    double dMRadCurv(double lat) const;

    void EllToXYZ(double lat, double lon, double h, double &X, double &Y, double &Z) const;
    void EllToXYZ(CVXCoord &xyz, const CEllCoord &ell) const;
    void XYZToEll(double X, double Y, double Z, double &lat, double &lon, double &h) const;
    void XYZToEll(CEllCoord &ell, const CVXCoord &xyz) const;

    // The keyword table of the XML archive: rows 0 to 22, closed by a null keyword and 0.
    // IAG75 and IUGG75 are absent on purpose: they travel through XML as USER.
    static const SEnumConvTmpl<EllipsoidType> *EllipsoidTypeConv();
    // The conversion-table keyword of `type`; empty when the table has none.
    static CVXString FromEllipsoidType(EllipsoidType &type);
    // The conversion-table value of `keyword`; the terminator's USER when unknown.
    static EllipsoidType ToEllipsoidType(const CVXString &keyword);
    // The type as its conversion-table keyword under `key`, and back.
    static void SaveIt(CArchiveX &ar, const CVXString &key, EllipsoidType type);
    static void LoadIt(CArchiveX &ar, const CVXString &key, EllipsoidType &type);
    // The same under the key "EllipsoidType".
    static void SaveEllipsoidType(CArchiveX &ar, EllipsoidType type);
    static void LoadEllipsoidType(CArchiveX &ar, EllipsoidType &type);

private:
    void Initialize(EllipsoidType type, double a, double invFlatt);

    EllipsoidType m_nType = USER;
    double m_dSemiMajAx = 0.0;
    double m_dInvFlatt = 0.0;
    double m_dEccentr = 0.0;
    CVXString m_szTrav3Name;
    CVXString m_szName;
};

// The number of rows of the ellipsoid table (25).
unsigned int GetNELLIPSOIDS();
// Finds the row whose keyword (never the display name) equals `keyword`; `type` is untouched
// when there is none.
bool bGetEllipsoidType(const CVXString &keyword, CEllipsoid::EllipsoidType &type);
// A new ellipsoid for `keyword` (a and invFlatt count for "USER" only); null when unknown.
CEllipsoid *pGetNewEllipsoid(const CVXString &keyword, double a, double invFlatt);

double dGetInvFlattFromEcc(double e);
// Geocentric to geographic on the ellipsoid (a, e); e is the eccentricity, not the flattening.
void Levallois(double X, double Y, double Z, double *lat, double *lon, double *h, double a,
               double e);
void EllToXYZ(double lat, double lon, double h, double *X, double *Y, double *Z, double a,
              double e);

} // namespace VX_API
