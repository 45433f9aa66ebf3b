#include "geodesy/NationalGrid.h"

#include "foundation/VXFile.h"

#include "geodesy/Angles.h"
#include "geodesy/GeodesyResources.h"
#include "geodesy/Geoid.h"
#include "geometry/VXCoord.h"
#include "platform/UserPrompt.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace vx {

namespace {

// Geoid model numbers of the host's geoid component.
constexpr int nGeoidRD2004 = 7;
constexpr int nGeoidRD2008 = 18;
constexpr int nGeoidBelgium = 9;

// ---- the grid files ----

constexpr const char16_t *szRDGridX = u"X2c.grd";
constexpr const char16_t *szRDGridY = u"Y2c.grd";
constexpr const char16_t *szLb72GridX = u"x_grid_Lb72.grd";
constexpr const char16_t *szLb72GridY = u"y_grid_Lb72.grd";

// Both grid formats start with a 56-byte header, 14 float-sized slots.
constexpr int nHeaderSlots = 14;
constexpr unsigned int nHeaderBytes = 56;

// The Dutch grid: 310 values a row from south to north, the first node at (-8000, 288000), 1 km
// apart; values above 1e38 mark no data.
constexpr int nRDRowLength = 310;
constexpr double dRDX0 = -8000.0;
constexpr double dRDY0 = 288000.0;
constexpr double dRDSpacing = 1000.0;
constexpr double dRDXLow = -7000.0;
constexpr double dRDXHigh = 300000.0;
constexpr double dRDYLow = 289000.0;
constexpr double dRDYHigh = 629000.0;
constexpr double dRDNoData = 1e+38;

// The Belgian grid's no-data threshold (the Surfer blanking value lies above it).
constexpr double dLb72NoData = 1e+38;

// The directory of the grid files: VXCOMMON_DATA when set, else the directory of the library
// binary.

// The message for a grid file that cannot serve: "<path> not found\n<not applied>".
CVXString GridFailMessage(const CVXString &path) {
    EnsureGeodesyResources();
    CVXString notFound;
    CVXString notApplied;
    notFound.LoadString(IDS_GRID_NOT_FOUND);
    notApplied.LoadString(IDS_GRID_NOT_APPLIED);
    CVXString message;
    message.Format(u"%s %s\n%s", path, notFound, notApplied);
    return message;
}

// Opens both files of a grid pair for shared reading. On failure prepares the message for the
// user from the first path that failed.
void OpenGridPair(CFile &fx, CFile &fy, const char16_t *nameX, const char16_t *nameY,
                  CVXString &message) {
    const CVXString dir = DLLPath();
    const CVXString pathX = dir + u'/' + nameX;
    const CVXString pathY = dir + u'/' + nameY;
    const unsigned int flags = CFile::modeRead | CFile::shareDenyNone;
    const bool bX = fx.Open(pathX, flags);
    const bool bY = fy.Open(pathY, flags);
    if (!bX || !bY) message = GridFailMessage(bX ? pathY : pathX);
}

// Shows the prepared message the first time only.
void WarnOnce(bool &bWarn, const CVXString &message) {
    if (!bWarn) return;
    bWarn = false;
    GetUserPrompt().ShowMessage(message, IUserPrompt::IconWarning);
}

uint64_t LittleEndian(const unsigned char *p, int n) {
    uint64_t v = 0;
    for (int i = n - 1; i >= 0; --i)
        v = (v << 8) | p[i];
    return v;
}

// Reads `n` bytes at `offset`; false when the file ends first or refuses to seek.
bool ReadAt(CFile &file, uint64_t offset, unsigned char *buffer, unsigned int n) {
    try {
        file.Seek(static_cast<int64_t>(offset), CFile::begin);
        unsigned int got = 0;
        while (got < n) {
            const unsigned int r = file.Read(buffer + got, n - got);
            if (r == 0) return false;
            got += r;
        }
        return true;
    } catch (const CFileException &) {
        return false;
    }
}

// The 32-bit little-endian float at value index `index` (header slots included). A value that
// cannot be read counts as no data.
double GridValue(CFile &file, int64_t index) {
    unsigned char b[4];
    if (index < 0 || !ReadAt(file, static_cast<uint64_t>(index) * 4, b, 4)) return HUGE_VAL;
    const uint32_t bits = static_cast<uint32_t>(LittleEndian(b, 4));
    float f = 0.0f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

double Frac(double v) {
    return v - std::floor(v);
}

// The cubic convolution weights of a parameter s, for the nodes -1, 0, 1, 2.
void CubicWeights(double s, double w[4]) {
    const double s2 = s * s;
    const double s3 = s2 * s;
    w[0] = s2 - 0.5 * s - 0.5 * s3;
    w[1] = 1.0 - 2.5 * s2 + 1.5 * s3;
    w[2] = 2.0 * s2 + 0.5 * s - 1.5 * s3;
    w[3] = 0.5 * s3 - 0.5 * s2;
}

// ---- the datum shifts ----

// ETRS89 to Bessel, the linearised form of RDNAPTRANS 2004.
void Shift2004ToBessel(double &X, double &Y, double &Z) {
    const double X1 = X - 3904046.1779;
    const double Y1 = Y - 368161.3173;
    const double Z1 = Z - 5013449.0585;
    const double Xn = X - 593.0297 - 4.0812e-06 * X1 - 9.0677e-06 * Y1 - 1.7004e-06 * Z1;
    const double Yn = Y - 26.0038 + 9.0677e-06 * X1 - 4.0812e-06 * Y1 - 1.9725e-06 * Z1;
    const double Zn = Z - 478.7534 + 1.7004e-06 * X1 + 1.9725e-06 * Y1 - 4.0812e-06 * Z1;
    X = Xn;
    Y = Yn;
    Z = Zn;
}

// Bessel to ETRS89, 2004.
void Shift2004ToEtrs(double &X, double &Y, double &Z) {
    const double X1 = X - 3903453.1482000002;
    const double Y1 = Y - 368135.31339999998;
    const double Z1 = Z - 5012970.3051000005;
    const double Xn = X + 593.0297 + 4.0812e-06 * X1 + 9.0677e-06 * Y1 + 1.7004e-06 * Z1;
    const double Yn = Y + 26.0038 - 9.0677e-06 * X1 + 4.0812e-06 * Y1 + 1.9725e-06 * Z1;
    const double Zn = Z + 478.7534 - 1.7004e-06 * X1 - 1.9725e-06 * Y1 + 4.0812e-06 * Z1;
    X = Xn;
    Y = Yn;
    Z = Zn;
}

// One direction of a similarity transformation with its parameters.
struct SSimParams {
    double tx, ty, tz, alpha, beta, gamma, delta, x0, y0, z0;
};

void ApplySim(const SSimParams &s, double &X, double &Y, double &Z) {
    CProjection_RDNAPTRANS2008::sim_trans(X, Y, Z, s.tx, s.ty, s.tz, s.alpha, s.beta, s.gamma,
                                          s.delta, s.x0, s.y0, s.z0, X, Y, Z);
}

constexpr SSimParams s_Sim2008ToBessel{-593.0248,          -25.9984,    -478.7459,   -1.9342e-06,
                                       1.6677e-06,         -9.1019e-06, -4.0725e-06, 3904046.173,
                                       368161.31180000002, 5013449.051};
constexpr SSimParams s_Sim2008ToEtrs{
    593.0248,   25.9984,    478.7459,           1.9342e-06,         -1.6677e-06,
    9.1019e-06, 4.0725e-06, 3903453.1482000002, 368135.31339999998, 5012970.3051000005};

void Shift2008ToBessel(double &X, double &Y, double &Z) {
    ApplySim(s_Sim2008ToBessel, X, Y, Z);
}
void Shift2008ToEtrs(double &X, double &Y, double &Z) {
    ApplySim(s_Sim2008ToEtrs, X, Y, Z);
}

// ETRS89 to and from the Belgian datum (International 1924): rotations given in degrees, about
// the geocentre. The digits of the two directions differ as published; they are not made equal.
double Deg(double a) {
    return a * dPi / 180.0;
}

void ShiftToBD72(double &X, double &Y, double &Z) {
    const SSimParams s{106.868628,
                       -52.297783,
                       103.723893,
                       Deg(9.349166666666666e-05),
                       Deg(-0.00012693194444444444),
                       Deg(0.0005117174999999999),
                       1.2746999999979636e-06,
                       0.0,
                       0.0,
                       0.0};
    ApplySim(s, X, Y, Z);
}

void ShiftFromBD72(double &X, double &Y, double &Z) {
    const SSimParams s{-106.8687,
                       52.2969,
                       -103.7239,
                       Deg(-9.349166666666666e-05),
                       Deg(0.00012693194444444444),
                       Deg(-0.0005117174999999999),
                       -1.2746999999979636e-06,
                       0.0,
                       0.0,
                       0.0};
    ApplySim(s, X, Y, Z);
}

double GeoidAt(int nModel, double lat, double lon) {
    return dGetGeoidHeight(nModel, RadToDeg(lat), RadToDeg(lon));
}

// The height minus (forward) or plus (backward) the geoid; without a geoid value the height
// stays uncorrected.
double MinusGeoid(double h, double N) {
    return N == dNoGeoidHeight ? h : h - N;
}
double PlusGeoid(double h, double N) {
    return N == dNoGeoidHeight ? h : h + N;
}

// ETRS89 geographic, through a geocentric shift, to geographic on the local ellipsoid.
CEllCoord EtrsToLocalEll(const CEllCoord &ell, CEllipsoid::EllipsoidType local,
                         void (*shift)(double &, double &, double &)) {
    double X = 0.0;
    double Y = 0.0;
    double Z = 0.0;
    CEllipsoid(CEllipsoid::GRS_1980).EllToXYZ(ell.dGetLat(), ell.dGetLon(), ell.dGetHgt(), X, Y, Z);
    shift(X, Y, Z);
    double lat = 0.0;
    double lon = 0.0;
    double h = 0.0;
    CEllipsoid(local).XYZToEll(X, Y, Z, lat, lon, h);
    return CEllCoord(lat, lon, h);
}

// The reverse: local geographic (a NaN height counts as 0) to ETRS89 geographic.
CEllCoord LocalEllToEtrs(const CEllCoord &ell, CEllipsoid::EllipsoidType local,
                         void (*shift)(double &, double &, double &)) {
    const double h0 = std::isnan(ell.dGetHgt()) ? 0.0 : ell.dGetHgt();
    double X = 0.0;
    double Y = 0.0;
    double Z = 0.0;
    CEllipsoid(local).EllToXYZ(ell.dGetLat(), ell.dGetLon(), h0, X, Y, Z);
    shift(X, Y, Z);
    double lat = 0.0;
    double lon = 0.0;
    double h = 0.0;
    CEllipsoid(CEllipsoid::GRS_1980).XYZToEll(X, Y, Z, lat, lon, h);
    return CEllCoord(lat, lon, h);
}

} // namespace

// ---- CProjection_RD and CProjection_LAMBERT72: the back road through a temporary object ----

void CProjection_RD::LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) {
    CProjection_RDNAPTRANS2008 full;
    full.RDNAP2WGS(ell, xy);
}

void CProjection_LAMBERT72::LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) {
    CProjection_LAMBERT72CORR full;
    full.LOCAL2ETRS(ell, xy);
}

// ---- CProjection_RDNAPTRANS2004 ----

CProjection_RDNAPTRANS2004::CProjection_RDNAPTRANS2004()
    : CProjection_RDNAPTRANS2004(PT_RDNAPTRANS2004, u"RDNAPTRANS 2004") {}

CProjection_RDNAPTRANS2004::CProjection_RDNAPTRANS2004(ProjectionType type,
                                                       const char16_t *szTransformationName)
    : CProjection_RD(type) {
    m_szTransformationName = szTransformationName;
    OpenGridPair(m_FileX, m_FileY, szRDGridX, szRDGridY, m_szFailMessage);
}

COutputSystem *CProjection_RDNAPTRANS2004::pCopy() const {
    return new CProjection_RDNAPTRANS2004();
}

void CProjection_RDNAPTRANS2004::RD2000Correction(CVXCoord p, double &dx, double &dy) {
    dx = 0.0;
    dy = 0.0;
    if (!m_FileX.IsOpen() || !m_FileY.IsOpen()) {
        WarnOnce(m_bWarnOnce, m_szFailMessage);
        return;
    }
    const double x = p.dGetX();
    const double y = p.dGetY();
    // Written as "inside" so that a NaN position also gets no correction.
    if (!(x > dRDXLow && x < dRDXHigh && y > dRDYLow && y < dRDYHigh)) return;
    const double t = Frac((x - dRDX0) / dRDSpacing);
    const double u = 1.0 - Frac(y / dRDSpacing);
    const auto r = static_cast<int64_t>(std::floor((y - dRDY0) / dRDSpacing));
    const auto c = static_cast<int64_t>(std::floor((x - dRDX0) / dRDSpacing));
    const int64_t k = nHeaderSlots + nRDRowLength * r + c;
    double colW[4];
    double rowW[4];
    CubicWeights(t, colW);
    CubicWeights(u, rowW);
    double sx = 0.0;
    double sy = 0.0;
    for (int i = -1; i <= 2; ++i) {
        // Rows run from south to north while u counts from the north: rows take w3 .. w0.
        const double wr = rowW[2 - i];
        for (int j = -1; j <= 2; ++j) {
            const int64_t idx = k + nRDRowLength * i + j;
            const double vx = GridValue(m_FileX, idx);
            const double vy = GridValue(m_FileY, idx);
            if (vx > dRDNoData || vy > dRDNoData) return;
            sx += vx * wr * colW[j + 1];
            sy += vy * wr * colW[j + 1];
        }
    }
    dx = sx;
    dy = sy;
}

void CProjection_RDNAPTRANS2004::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    CProjection_RD::EllToProjection(xy, ell);
    double dx = 0.0;
    double dy = 0.0;
    RD2000Correction(xy, dx, dy);
    xy.SetXY(xy.dGetX() - dx, xy.dGetY() - dy);
}

void CProjection_RDNAPTRANS2004::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    double dx = 0.0;
    double dy = 0.0;
    RD2000Correction(xy, dx, dy);
    xy.SetXY(xy.dGetX() + dx, xy.dGetY() + dy);
    CProjection_RD::ProjectionToEll(ell, xy);
}

void CProjection_RDNAPTRANS2004::EtrsToRD(CVXCoord &xy, CEllCoord ell, int nGeoidModel,
                                          DatumShift shift) {
    const double N = GeoidAt(nGeoidModel, ell.dGetLat(), ell.dGetLon());
    EllToProjection(xy, EtrsToLocalEll(ell, CEllipsoid::BESSEL_1841, shift));
    xy.SetZ(MinusGeoid(ell.dGetHgt(), N));
}

void CProjection_RDNAPTRANS2004::RDToEtrs(CEllCoord &ell, const CVXCoord &xy, int nGeoidModel,
                                          DatumShift shift) {
    CEllCoord local;
    ProjectionToEll(local, xy);
    ell = LocalEllToEtrs(local, CEllipsoid::BESSEL_1841, shift);
    ell.SetHgt(PlusGeoid(ell.dGetHgt(), GeoidAt(nGeoidModel, ell.dGetLat(), ell.dGetLon())));
}

namespace {
// The plain-number form of the Dutch chain: one point through RDNAPTRANS of either edition.
template <class Projection>
CVXCoord ProjectedBy(Projection &proj, double lat, double lon, double h) {
    CVXCoord p;
    proj.RDNAPTRANS(p, CEllCoord(lat, lon, h));
    return p;
}

} // namespace

void CProjection_RDNAPTRANS2004::RDNAPTRANS(CVXCoord &xy, CEllCoord ell) {
    EtrsToRD(xy, ell, nGeoidRD2004, Shift2004ToBessel);
}

void CProjection_RDNAPTRANS2004::RDNAPTRANS(double lat, double lon, double h, double *x, double *y,
                                            double *z) {
    const CVXCoord p = ProjectedBy(*this, lat, lon, h);
    *x = p.dGetX();
    *y = p.dGetY();
    *z = p.dGetZ();
}

void CProjection_RDNAPTRANS2004::RDNAP2WGS(CEllCoord &ell, const CVXCoord &xy) {
    RDToEtrs(ell, xy, nGeoidRD2004, Shift2004ToEtrs);
}

void CProjection_RDNAPTRANS2004::ETRS2LOCAL(CVXCoord &xy, CEllCoord ell) {
    RDNAPTRANS(xy, ell);
}

void CProjection_RDNAPTRANS2004::LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) {
    RDNAP2WGS(ell, xy);
}

// ---- CProjection_RDNAPTRANS2008 and CProjection_RD2000 ----

CProjection_RDNAPTRANS2008::CProjection_RDNAPTRANS2008()
    : CProjection_RDNAPTRANS2008(PT_RDNAPTRANS2008, u"RDNAPTRANS 2008") {}

CProjection_RDNAPTRANS2008::CProjection_RDNAPTRANS2008(ProjectionType type,
                                                       const char16_t *szTransformationName)
    : CProjection_RDNAPTRANS2004(type, szTransformationName) {}

COutputSystem *CProjection_RDNAPTRANS2008::pCopy() const {
    return new CProjection_RDNAPTRANS2008();
}

void CProjection_RDNAPTRANS2008::sim_trans(double X, double Y, double Z, double tx, double ty,
                                           double tz, double alpha, double beta, double gamma,
                                           double delta, double x0, double y0, double z0,
                                           double &Xout, double &Yout, double &Zout) {
    const double ca = std::cos(alpha);
    const double sa = std::sin(alpha);
    const double cb = std::cos(beta);
    const double sb = std::sin(beta);
    const double cg = std::cos(gamma);
    const double sg = std::sin(gamma);
    const double U = X - x0;
    const double V = Y - y0;
    const double W = Z - z0;
    const double Xn = (cb * cg * U + (sa * cg * sb + sg * ca) * V + (sg * sa - cg * sb * ca) * W) *
                          (1.0 + delta) +
                      tx + x0;
    const double Yn = (-sg * cb * U + (ca * cg - sg * sb * sa) * V + (sg * sb * ca + sa * cg) * W) *
                          (1.0 + delta) +
                      ty + y0;
    const double Zn = (sb * U - sa * cb * V + ca * cb * W) * (1.0 + delta) + tz + z0;
    Xout = Xn;
    Yout = Yn;
    Zout = Zn;
}

void CProjection_RDNAPTRANS2008::RDNAPTRANS(CVXCoord &xy, CEllCoord ell) {
    EtrsToRD(xy, ell, nGeoidRD2008, Shift2008ToBessel);
}

void CProjection_RDNAPTRANS2008::RDNAPTRANS(double lat, double lon, double h, double *x, double *y,
                                            double *z) {
    const CVXCoord p = ProjectedBy(*this, lat, lon, h);
    *x = p.dGetX();
    *y = p.dGetY();
    *z = p.dGetZ();
}

void CProjection_RDNAPTRANS2008::RDNAP2WGS(CEllCoord &ell, const CVXCoord &xy) {
    RDToEtrs(ell, xy, nGeoidRD2008, Shift2008ToEtrs);
}

void CProjection_RDNAPTRANS2008::ETRS2LOCAL(CVXCoord &xy, CEllCoord ell) {
    RDNAPTRANS(xy, ell);
}

void CProjection_RDNAPTRANS2008::LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) {
    RDNAP2WGS(ell, xy);
}

CProjection_RD2000::CProjection_RD2000()
    : CProjection_RDNAPTRANS2008(PT_RDNAPTRANS, u"RDNAPTRANS 2008") {}

COutputSystem *CProjection_RD2000::pCopy() const {
    return new CProjection_RD2000();
}

// ---- CProjection_LAMBERT72CORR ----

CProjection_LAMBERT72CORR::CProjection_LAMBERT72CORR() : CProjection_LAMBERT72(PT_LAMBERT72CORR) {
    m_szTransformationName = u"ETRS89 - LB72+TAW";
    OpenGridPair(m_FileX, m_FileY, szLb72GridX, szLb72GridY, m_szFailMessage);
    // The header gives origin and spacing; a file whose header does not describe a grid counts
    // as missing.
    const auto readHeader = [](CFile &file, SGridHeader &hdr) {
        unsigned char b[nHeaderBytes];
        if (!file.IsOpen() || !ReadAt(file, 0, b, nHeaderBytes) || std::memcmp(b, "DSBB", 4) != 0)
            return false;
        const auto nx = static_cast<int16_t>(LittleEndian(b + 4, 2));
        const auto ny = static_cast<int16_t>(LittleEndian(b + 6, 2));
        double v[6];
        for (int i = 0; i < 6; ++i) {
            const uint64_t bits = LittleEndian(b + 8 + 8 * i, 8);
            std::memcpy(&v[i], &bits, sizeof(double));
        }
        if (nx < 2 || ny < 2) return false;
        hdr.nCols = nx;
        hdr.nRows = ny;
        hdr.dXMin = v[0];
        hdr.dYMin = v[2];
        hdr.dDX = (v[1] - v[0]) / (nx - 1);
        hdr.dDY = (v[3] - v[2]) / (ny - 1);
        return std::isfinite(hdr.dXMin) && std::isfinite(hdr.dYMin) && hdr.dDX > 0.0 &&
               hdr.dDY > 0.0 && std::isfinite(hdr.dDX) && std::isfinite(hdr.dDY);
    };
    const bool bX = readHeader(m_FileX, m_HeaderX);
    const bool bY = readHeader(m_FileY, m_HeaderY);
    if ((!bX || !bY) && m_FileX.IsOpen() && m_FileY.IsOpen()) {
        m_szFailMessage = GridFailMessage(bX ? m_FileY.GetFilePath() : m_FileX.GetFilePath());
        m_FileX.Abort();
        m_FileY.Abort();
    }
}

COutputSystem *CProjection_LAMBERT72CORR::pCopy() const {
    return new CProjection_LAMBERT72CORR();
}

bool CProjection_LAMBERT72CORR::bValue(CFile &file, const SGridHeader &hdr, double x, double y,
                                       double &value) {
    const double fx = (x - hdr.dXMin) / hdr.dDX;
    const double fy = (y - hdr.dYMin) / hdr.dDY;
    if (!(fx >= 0.0 && fx <= hdr.nCols - 1 && fy >= 0.0 && fy <= hdr.nRows - 1)) return false;
    int i = static_cast<int>(std::floor(fx));
    int j = static_cast<int>(std::floor(fy));
    if (i > hdr.nCols - 2) i = hdr.nCols - 2;
    if (j > hdr.nRows - 2) j = hdr.nRows - 2;
    const double tx = fx - i;
    const double ty = fy - j;
    const auto node = [&](int col, int row) {
        return GridValue(file, nHeaderSlots + static_cast<int64_t>(row) * hdr.nCols + col);
    };
    const double v00 = node(i, j);
    const double v10 = node(i + 1, j);
    const double v01 = node(i, j + 1);
    const double v11 = node(i + 1, j + 1);
    if (v00 > dLb72NoData || v10 > dLb72NoData || v01 > dLb72NoData || v11 > dLb72NoData)
        return false;
    value = ((1.0 - tx) * v00 + tx * v10) * (1.0 - ty) + ((1.0 - tx) * v01 + tx * v11) * ty;
    return true;
}

void CProjection_LAMBERT72CORR::Correction(CVXCoord p, double &dx, double &dy) {
    dx = 0.0;
    dy = 0.0;
    if (!m_FileX.IsOpen() || !m_FileY.IsOpen()) {
        WarnOnce(m_bWarnOnce, m_szFailMessage);
        return;
    }
    double vx = 0.0;
    double vy = 0.0;
    if (!bValue(m_FileX, m_HeaderX, p.dGetX(), p.dGetY(), vx) ||
        !bValue(m_FileY, m_HeaderY, p.dGetX(), p.dGetY(), vy))
        return;
    dx = vx;
    dy = vy;
}

void CProjection_LAMBERT72CORR::EllToProjection(CVXCoord &xy, CEllCoord ell) {
    CProjection_LB::EllToProjection(xy, ell);
    double dx = 0.0;
    double dy = 0.0;
    Correction(xy, dx, dy);
    xy.SetXY(xy.dGetX() + dx, xy.dGetY() + dy);
}

void CProjection_LAMBERT72CORR::ProjectionToEll(CEllCoord &ell, CVXCoord xy) {
    double dx = 0.0;
    double dy = 0.0;
    Correction(xy, dx, dy);
    xy.SetXY(xy.dGetX() - dx, xy.dGetY() - dy);
    CProjection_LB::ProjectionToEll(ell, xy);
}

void CProjection_LAMBERT72CORR::ETRS2LOCAL(CVXCoord &xy, CEllCoord ell) {
    const double N = GeoidAt(nGeoidBelgium, ell.dGetLat(), ell.dGetLon());
    EllToProjection(xy, EtrsToLocalEll(ell, CEllipsoid::INTERNATIONAL, ShiftToBD72));
    xy.SetZ(MinusGeoid(ell.dGetHgt(), N));
}

void CProjection_LAMBERT72CORR::LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) {
    CEllCoord local;
    ProjectionToEll(local, xy);
    ell = LocalEllToEtrs(local, CEllipsoid::INTERNATIONAL, ShiftFromBD72);
    ell.SetHgt(PlusGeoid(ell.dGetHgt(), GeoidAt(nGeoidBelgium, ell.dGetLat(), ell.dGetLon())));
}

// ---- CProjection_LAMBERT2008: ETRS89 is its datum ----

void CProjection_LAMBERT2008::ETRS2LOCAL(CVXCoord &xy, CEllCoord ell) {
    EllToProjection(xy, ell);
    xy.SetZ(MinusGeoid(ell.dGetHgt(), GeoidAt(nGeoidBelgium, ell.dGetLat(), ell.dGetLon())));
}

void CProjection_LAMBERT2008::LOCAL2ETRS(CEllCoord &ell, const CVXCoord &xy) {
    ProjectionToEll(ell, xy);
    const double h = std::isnan(ell.dGetHgt()) ? 0.0 : ell.dGetHgt();
    ell.SetHgt(PlusGeoid(h, GeoidAt(nGeoidBelgium, ell.dGetLat(), ell.dGetLon())));
}

VX_IMPLEMENT_SERIAL(CProjection_RDNAPTRANS2004, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_RDNAPTRANS2008, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_RD2000, nProjectionSchema)
VX_IMPLEMENT_SERIAL(CProjection_LAMBERT72CORR, nProjectionSchema)

} // namespace vx
