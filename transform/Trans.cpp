#include "transform/Trans.h"

#include "geometry/Deel.h"
#include "geometry/Extents.h"
#include "geometry/VXCoord.h"
#include "geometry/VXCoordArr.h"
#include "persist/ArchiveX.h"

#include <cmath>
#include <limits>

namespace vx {

namespace {

// The sums of a fit, on differences from the two centroids.
struct CFitSommen {
    double x0 = 0.0, y0 = 0.0, u0 = 0.0, v0 = 0.0;
    double Sxx = 0.0, Syy = 0.0, Sxy = 0.0;
    double Sxu = 0.0, Syu = 0.0, Syv = 0.0, Sxv = 0.0;
};

// The loop counter is 16 bits wide, as the point count is.
CFitSommen BepaalSommen(short n, const CVXCoord *const *from, const CVXCoord *const *to) {
    CFitSommen s;
    for (short i = 0; i < n; ++i) {
        s.x0 += from[i]->m_dX;
        s.y0 += from[i]->m_dY;
        s.u0 += to[i]->m_dX;
        s.v0 += to[i]->m_dY;
    }
    // A plain division: n of 0 makes the centroid NaN and the fit fails further on.
    s.x0 /= n;
    s.y0 /= n;
    s.u0 /= n;
    s.v0 /= n;
    for (short i = 0; i < n; ++i) {
        const double dx = from[i]->m_dX - s.x0, dy = from[i]->m_dY - s.y0;
        const double du = to[i]->m_dX - s.u0, dv = to[i]->m_dY - s.v0;
        s.Sxx += dx * dx;
        s.Syy += dy * dy;
        s.Sxy += dx * dy;
        s.Sxu += du * dx;
        s.Syu += dy * du;
        s.Syv += dv * dy;
        s.Sxv += dv * dx;
    }
    return s;
}

bool bNaN(double v) {
    return std::isnan(v);
}

} // namespace

double CTrans::dGetValue(int row, int column) const {
    const double rows[2][3] = {{dMatrix00, dMatrix01, dMatrix02},
                               {dMatrix10, dMatrix11, dMatrix12}};
    // Chosen: a cell outside the matrix reads as the unknown value rather than as memory.
    if (row < 0 || row > 1 || column < 0 || column > 2) return dNaN;
    return rows[row][column];
}

// ---- setting --------------------------------------------------------------------------------

void CTrans::Evalueer(double a, double b, double c, double d, double e, double f) {
    dMatrix00 = a;
    dMatrix01 = b;
    dMatrix02 = c;
    dMatrix10 = d;
    dMatrix11 = e;
    dMatrix12 = f;
}

void CTrans::Evalueer(const CVXCoord &from, const CVXCoord &to, double rotation, double scaleX,
                      double scaleY) {
    EvalueerSpeciaal(CVXCoord(0.0, 0.0), rotation, scaleX, scaleY);
    dMatrix02 = to.m_dX - dMatrixX(from.m_dX, from.m_dY);
    dMatrix12 = to.m_dY - dMatrixY(from.m_dX, from.m_dY);
}

void CTrans::Evalueer(const CVXCoord &from, const CVXCoord &to, double rotation, double scale) {
    Evalueer(from, to, rotation, scale, scale);
}

void CTrans::EvalueerSpeciaal(const CVXCoord &shift, double rotation, double scaleX,
                              double scaleY) {
    const double c = std::cos(rotation), s = std::sin(rotation);
    dMatrix00 = c * scaleX;
    dMatrix01 = -s * scaleY;
    dMatrix10 = s * scaleX;
    dMatrix11 = c * scaleY;
    dMatrix02 = shift.m_dX;
    dMatrix12 = shift.m_dY;
}

void CTrans::EvalueerSpeciaal(const CVXCoord &shift, double rotation, double scale) {
    EvalueerSpeciaal(shift, rotation, scale, scale);
}

void CTrans::EvalueerSpeciaal(const CVXCoord &shift, bool bZ) {
    Evalueer(1.0, 0.0, shift.m_dX, 0.0, 1.0, shift.m_dY);
    m_dZShift = bZ ? shift.m_dZ : dNaN;
}

void CTrans::EvalueerSpeciaal() {
    Evalueer(1.0, 0.0, 0.0, 0.0, 1.0, 0.0);
    m_dZShift = dNaN;
}

// ---- changing -------------------------------------------------------------------------------

void CTrans::VerschaalXY(double sx, double sy) {
    dMatrix00 *= sx;
    dMatrix01 *= sx;
    dMatrix02 *= sx;
    dMatrix10 *= sy;
    dMatrix11 *= sy;
    dMatrix12 *= sy;
}

void CTrans::SetShift(double x, double y) {
    dMatrix02 = x;
    dMatrix12 = y;
}

void CTrans::MirrorHor() {
    dMatrix01 = -dMatrix01;
    dMatrix10 = -dMatrix10;
}

bool CTrans::Invert() {
    const double D = dMatrix00 * dMatrix11 - dMatrix10 * dMatrix01;
    const double n[6] = {dDeel(dMatrix11, D),
                         dDeel(-dMatrix10, D),
                         dDeel(-dMatrix01, D),
                         dDeel(dMatrix00, D),
                         dDeel(dMatrix12 * dMatrix01 - dMatrix02 * dMatrix11, D),
                         dDeel(dMatrix10 * dMatrix02 - dMatrix12 * dMatrix00, D)};
    for (double v : n)
        if (bNaN(v)) return false;
    dMatrix00 = n[0];
    dMatrix10 = n[1];
    dMatrix01 = n[2];
    dMatrix11 = n[3];
    dMatrix02 = n[4];
    dMatrix12 = n[5];
    return true;
}

CTrans &CTrans::operator*=(const CTrans &B) {
    const CTrans A(*this);
    dMatrix00 = B.dMatrix00 * A.dMatrix00 + B.dMatrix01 * A.dMatrix10;
    dMatrix01 = B.dMatrix00 * A.dMatrix01 + B.dMatrix01 * A.dMatrix11;
    dMatrix02 = B.dMatrixX(A.dMatrix02, A.dMatrix12);
    dMatrix10 = B.dMatrix10 * A.dMatrix00 + B.dMatrix11 * A.dMatrix10;
    dMatrix11 = B.dMatrix10 * A.dMatrix01 + B.dMatrix11 * A.dMatrix11;
    dMatrix12 = B.dMatrixY(A.dMatrix02, A.dMatrix12);
    return *this;
}

// ---- reading --------------------------------------------------------------------------------

double CTrans::dGetXSchaal() const {
    return std::hypot(dMatrix00, dMatrix10);
}

double CTrans::dGetYSchaal() const {
    return std::hypot(dMatrix01, dMatrix11);
}

double CTrans::dGetRotatie() const {
    const double s = dGetXSchaal();
    return std::atan2(dMatrix10 / s, dMatrix00 / s);
}

double CTrans::dGetXYAngle() const {
    return CVXCoord::dHoek(CVXCoord(dMatrix00, dMatrix10), CVXCoord(0.0, 0.0),
                           CVXCoord(dMatrix01, dMatrix11));
}

bool CTrans::bIdentity() const {
    return dMatrix00 == 1.0 && dMatrix01 == 0.0 && dMatrix02 == 0.0 && dMatrix10 == 0.0 &&
           dMatrix11 == 1.0 && dMatrix12 == 0.0;
}

// ---- fitting --------------------------------------------------------------------------------

bool CTrans::bEvalueer(short n, const CVXCoord *const *from, const CVXCoord *const *to, int mode) {
    m_dZShift = dNaN;
    const CFitSommen s = BepaalSommen(n, from, to);
    if (mode == 0 || mode == 2) {
        const double S = s.Sxx + s.Syy;
        const double a = dDeel(s.Sxu + s.Syv, S);
        const double b = dDeel(s.Sxv - s.Syu, S);
        if (bNaN(a) || bNaN(b)) return false;
        dMatrix00 = dMatrix11 = a;
        dMatrix10 = b;
        dMatrix01 = -b;
        dMatrix02 = s.u0 + b * s.y0 - a * s.x0;
        dMatrix12 = s.v0 - (s.y0 * a + s.x0 * b);
    } else if (mode == 1) {
        const double D = s.Sxx * s.Syy - s.Sxy * s.Sxy;
        // All four are written before any is tested: a failed fit may leave partial values.
        dMatrix00 = dDeel(s.Syy * s.Sxu - s.Syu * s.Sxy, D);
        dMatrix01 = dDeel(s.Syu * s.Sxx - s.Sxu * s.Sxy, D);
        dMatrix10 = dDeel(s.Sxv * s.Syy - s.Syv * s.Sxy, D);
        dMatrix11 = dDeel(s.Syv * s.Sxx - s.Sxv * s.Sxy, D);
        if (bNaN(dMatrix00) || bNaN(dMatrix01) || bNaN(dMatrix10) || bNaN(dMatrix11)) return false;
        dMatrix02 = s.u0 - (s.x0 * dMatrix00 + dMatrix01 * s.y0);
        dMatrix12 = s.v0 - (s.y0 * dMatrix11 + dMatrix10 * s.x0);
    }
    return dGetXSchaal() != 0.0 && dGetYSchaal() != 0.0;
}

bool CTrans::bEvalueer(const CExtents *world, const CRect &view, double rotation) {
    const double aspect =
        double(view.right - int64_t(view.left)) / double(view.top - int64_t(view.bottom));
    const double dX = world->dGetSizeX(), dY = world->dGetSizeY();
    const double ratio = dDeel(dX, dY);
    m_dZShift = dNaN;
    if (bNaN(ratio)) return false;

    CVXCoord lo, hi;
    if (aspect <= ratio) {
        const double cy = (world->m_dYlo + world->m_dYrb) * 0.5, h = (1.0 / aspect) * dX * 0.5;
        lo = CVXCoord(world->m_dXlo, cy - h);
        hi = CVXCoord(world->m_dXrb, cy + h);
    } else {
        const double cx = (world->m_dXlo + world->m_dXrb) * 0.5, h = dY * aspect * 0.5;
        lo = CVXCoord(cx - h, world->m_dYlo);
        hi = CVXCoord(cx + h, world->m_dYrb);
    }
    CVXCoord *corners[2] = {&lo, &hi};
    if (rotation != 0.0) {
        CVXCoord mid;
        mid.Midden(lo, hi);
        CTrans draai;
        draai.Evalueer(mid, mid, rotation, 1.0);
        draai.CTrans::Perform(2, corners);
    }
    const CVXCoord devLo(view.left, view.bottom), devHi(view.right, view.top);
    const CVXCoord *device[2] = {&devLo, &devHi};
    return bEvalueer(2, corners, device, 0);
}

bool CTrans::bEvalueerAffien(const CExtents *world, const CRect &view, double f) {
    const double aspect =
        double(view.right - int64_t(view.left)) / double(view.top - int64_t(view.bottom));
    const double dX = world->dGetSizeX(), dY = world->dGetSizeY() * f;
    const double ratio = dDeel(dX, dY);
    m_dZShift = dNaN;
    if (bNaN(ratio)) return false;

    CVXCoord w[3];
    if (aspect <= ratio) {
        const double cy = (world->m_dYlo + world->m_dYrb) * 0.5;
        const double h = (dX / f) * (1.0 / aspect) * 0.5;
        w[0] = CVXCoord(world->m_dXlo, cy + h);
        w[1] = CVXCoord(world->m_dXlo, cy - h);
        w[2] = CVXCoord(world->m_dXrb, cy - h);
    } else {
        const double cx = (world->m_dXlo + world->m_dXrb) * 0.5, h = 0.5 * aspect * dY;
        w[0] = CVXCoord(cx - h, world->m_dYrb);
        w[1] = CVXCoord(cx - h, world->m_dYlo);
        w[2] = CVXCoord(cx + h, world->m_dYlo);
    }
    const CVXCoord d[3] = {CVXCoord(view.left, view.top), CVXCoord(view.left, view.bottom),
                           CVXCoord(view.right, view.bottom)};
    const CVXCoord *world3[3] = {&w[0], &w[1], &w[2]};
    const CVXCoord *device3[3] = {&d[0], &d[1], &d[2]};
    return bEvalueer(3, world3, device3, 1);
}

bool CTrans::bEvalueer() {
    return false;
}

void CTrans::PointsGeo2Raster(double, double, double, double, double, double, bool) {}

// ---- applying -------------------------------------------------------------------------------

int32_t CTrans::nTrunc(double v) {
    // Outside the range (NaN included) the x86 conversion gives its "indefinite" integer.
    if (!(v > -2147483649.0 && v < 2147483648.0)) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(v);
}

void CTrans::Perform(CVXCoord *p) const {
    p->SetXY(dMatrixX(p->m_dX, p->m_dY), dMatrixY(p->m_dX, p->m_dY));
    if (!bNaN(m_dZShift) && !bNaN(p->m_dZ)) p->SetZ(p->m_dZ + m_dZShift);
}

void CTrans::Perform(CVXCoord *out, const CVXCoord &in) const {
    const double z = in.m_dZ;
    out->SetXY(dMatrixX(in.m_dX, in.m_dY), dMatrixY(in.m_dX, in.m_dY));
    if (!bNaN(m_dZShift) && !bNaN(z)) out->SetZ(z + m_dZShift);
}

void CTrans::Perform(CVXCoord *p, int n) const {
    for (int i = 0; i < n; ++i)
        Perform(&p[i]);
}

void CTrans::Perform(int n, CVXCoord **p) const {
    // The plain matrix: a derived class that corrects points adds its own step to this form.
    for (int i = 0; i < n; ++i)
        CTrans::Perform(p[i]);
}

void CTrans::Perform(int n, double *xy) const {
    // Chosen: an odd last double has no partner and stays as it is.
    for (int i = 0; i + 1 < n; i += 2) {
        const double x = xy[i], y = xy[i + 1];
        xy[i] = dMatrixX(x, y);
        xy[i + 1] = dMatrixY(x, y);
    }
}

void CTrans::Perform(CPoint *out, const CVXCoord &in) const {
    out->x = nTrunc(dMatrixX(in.m_dX, in.m_dY));
    out->y = nTrunc(dMatrixY(in.m_dX, in.m_dY));
}

void CTrans::Perform(int n, CPoint *out, const double *xy) const {
    for (int i = 0; i + 1 < n; i += 2) {
        out[i / 2].x = nTrunc(dMatrixX(xy[i], xy[i + 1]));
        out[i / 2].y = nTrunc(dMatrixY(xy[i], xy[i + 1]));
    }
}

void CTrans::Perform(CPoint *p) const {
    // Kept on purpose: a device point is rounded, while a world coordinate is truncated.
    const double x = p->x, y = p->y;
    p->x = nTrunc(std::round(dMatrixX(x, y)));
    p->y = nTrunc(std::round(dMatrixY(x, y)));
}

void CTrans::Perform(CVXCoord *out, const CPoint &in) const {
    Perform(out, CVXCoord(in.x, in.y));
}

void CTrans::Perform(CPoint *out, const CVXCoordArr &in) const {
    for (int i = 0; i < in.GetSize(); ++i)
        Perform(&out[i], *in.GetAt(i));
}

void CTrans::Perform(CVXCoordArr *a) const {
    for (int i = 0; i < a->GetSize(); ++i)
        Perform(a->GetAt(i));
}

void CTrans::Perform(CVXCoordArr *out, const CVXCoordArr &in) const {
    // Chosen: `out` becomes a copy of `in`, whose points are then transformed.
    if (out != &in) out->Copy(in);
    Perform(out);
}

void CTrans::Perform(CExtents *out, const CExtents &in) const {
    const CVXCoord corners[4] = {CVXCoord(in.m_dXlo, in.m_dYlo), CVXCoord(in.m_dXlo, in.m_dYrb),
                                 CVXCoord(in.m_dXrb, in.m_dYrb), CVXCoord(in.m_dXrb, in.m_dYlo)};
    CExtents box;
    for (const CVXCoord &c : corners) {
        CVXCoord t;
        Perform(&t, c);
        box.Punt(t);
    }
    *out = box;
}

void CTrans::Perform(CExtents *out, const CRect &in) const {
    Perform(out, CExtents(in.left, in.top, in.right, in.bottom));
}

// ---- persistence and copies -----------------------------------------------------------------

void CTrans::SerializeX(const CVXString &name, CArchiveX &ar) {
    CArchiveXMLChild child(ar, name);
    ar.Serialize(u"dMatrix00", dMatrix00);
    ar.Serialize(u"dMatrix01", dMatrix01);
    ar.Serialize(u"dMatrix02", dMatrix02);
    ar.Serialize(u"dMatrix10", dMatrix10);
    ar.Serialize(u"dMatrix11", dMatrix11);
    ar.Serialize(u"dMatrix12", dMatrix12);
    ar.Serialize(u"m_dZShift", m_dZShift);
}

CTrans *CTrans::New() const {
    return new CTrans(*this);
}

CTransTabel *CTrans::pGetTabel() {
    return nullptr;
}

} // namespace vx
