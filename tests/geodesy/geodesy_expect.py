#!/usr/bin/env python3
"""Independent expectations for tests/geodesy/NationalGridTest.cpp.

Takes ETRS89 points through the published datum shifts to the local ellipsoid, with its own
geocentric conversions (closed form forward; backward by Bowring's start and Newton-free
iteration to 1e-15 rad), and prints the local latitude, longitude (degrees) and height as C++
initialisers. The test projects them with the plain projection (itself checked against PROJ)
and compares with the library's whole chain.
"""
import math

GRS80 = (6378137.0, 298.25722210100002)
BESSEL = (6377397.1550000003, 299.15281279999999)
INTL = (6378388.0, 297.0)


def e2_of(ell):
    f = 1.0 / ell[1]
    return 2 * f - f * f


def to_xyz(ell, lat, lon, h):
    a, e2 = ell[0], e2_of(ell)
    n = a / math.sqrt(1 - e2 * math.sin(lat) ** 2)
    return ((n + h) * math.cos(lat) * math.cos(lon), (n + h) * math.cos(lat) * math.sin(lon),
            (n * (1 - e2) + h) * math.sin(lat))


def to_ell(ell, x, y, z):
    a, e2 = ell[0], e2_of(ell)
    p = math.hypot(x, y)
    lat = math.atan2(z, p * (1 - e2))
    for _ in range(50):
        n = a / math.sqrt(1 - e2 * math.sin(lat) ** 2)
        nxt = math.atan2(z + e2 * n * math.sin(lat), p)
        if abs(nxt - lat) < 1e-15:
            lat = nxt
            break
        lat = nxt
    n = a / math.sqrt(1 - e2 * math.sin(lat) ** 2)
    h = p / math.cos(lat) - n
    return lat, math.atan2(y, x), h


def shift_2004(x, y, z):
    x1, y1, z1 = x - 3904046.1779, y - 368161.3173, z - 5013449.0585
    return (x - 593.0297 - 4.0812e-06 * x1 - 9.0677e-06 * y1 - 1.7004e-06 * z1,
            y - 26.0038 + 9.0677e-06 * x1 - 4.0812e-06 * y1 - 1.9725e-06 * z1,
            z - 478.7534 + 1.7004e-06 * x1 + 1.9725e-06 * y1 - 4.0812e-06 * z1)


def rotation(alpha, beta, gamma):
    """Rows of R = Rz(gamma) Ry(beta) Rx(alpha) acting on frame coordinates (coordinate-frame
    convention: small angles give [[1, g, -b], [-g, 1, a], [b, -a, 1]])."""
    ca, sa, cb, sb, cg, sg = (math.cos(alpha), math.sin(alpha), math.cos(beta), math.sin(beta),
                              math.cos(gamma), math.sin(gamma))
    rx = [[1, 0, 0], [0, ca, sa], [0, -sa, ca]]
    ry = [[cb, 0, -sb], [0, 1, 0], [sb, 0, cb]]
    rz = [[cg, sg, 0], [-sg, cg, 0], [0, 0, 1]]

    def mul(m, n):
        return [[sum(m[i][k] * n[k][j] for k in range(3)) for j in range(3)] for i in range(3)]

    return mul(rz, mul(ry, rx))


def sim(p, t, angles, delta, origin):
    r = rotation(*angles)
    d = [p[i] - origin[i] for i in range(3)]
    return tuple(sum(r[i][k] * d[k] for k in range(3)) * (1 + delta) + t[i] + origin[i]
                 for i in range(3))


def shift_2008(x, y, z):
    return sim((x, y, z), (-593.0248, -25.9984, -478.7459), (-1.9342e-06, 1.6677e-06, -9.1019e-06),
               -4.0725e-06, (3904046.173, 368161.3118, 5013449.051))


def shift_bd72(x, y, z):
    rad = [v * math.pi / 180 for v in (9.3491666666666658e-05, -0.00012693194444444444,
                                       0.00051171749999999992)]
    return sim((x, y, z), (106.868628, -52.297783, 103.723893), rad, 1.2746999999979636e-06,
               (0.0, 0.0, 0.0))


def chain(points, shift, local):
    for lat, lon, h in points:
        x, y, z = to_xyz(GRS80, math.radians(lat), math.radians(lon), h)
        la, lo, hh = to_ell(local, *shift(x, y, z))
        print("    {%r, %r, %r, %r, %r, %r}," % (lat, lon, h, math.degrees(la), math.degrees(lo),
                                                 hh))


NL = [(52.0, 5.0, 50.0), (53.2, 6.5, 10.0), (51.3, 3.8, 0.0)]
BE = [(50.8, 4.35, 100.0), (51.0, 3.2, 0.0)]
print("// RDNAPTRANS 2004: ETRS89 lat, lon, h -> Bessel lat, lon, h")
chain(NL, shift_2004, BESSEL)
print("// RDNAPTRANS 2008")
chain(NL, shift_2008, BESSEL)
print("// ETRS89 -> BD72 (International 1924)")
chain(BE, shift_bd72, INTL)
print("// sim_trans of (3900000, 300000, 5000000) with the 2008 ETRS89 -> Bessel parameters")
print("    {%r, %r, %r}," % shift_2008(3900000.0, 300000.0, 5000000.0))
