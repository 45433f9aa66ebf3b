// A test-only copy of the literal projection formulas, as the library computed them before it
// took faster forms of the same mathematics: the reference of the exactness tests. Written once
// over the floating type, so that the same text evaluated in long double (with the iterations
// run to convergence) is the extended-precision reference. Keep this as it stands: it is the
// yardstick, not code to be improved.
#pragma once

#include <cmath>
#include <numbers>

namespace vx::literal {

// The library's pi in double; the true pi in extended precision.
template <class F>
constexpr F Pi() {
    if constexpr (sizeof(F) == sizeof(double))
        return 3.141592653589793;
    else
        return std::numbers::pi_v<F>;
}

// The latitude iterations: 1e-12 and 10 rounds in double as in the library; in extended
// precision until nothing changes.
template <class F>
struct SIter {
    static constexpr bool bExt = sizeof(F) != sizeof(double);
    static constexpr F tol = bExt ? F(0) : F(1e-12);
    static constexpr int nRounds = bExt ? 60 : 10;
};

template <class F, class STEP>
F Iterate(F p, STEP step) {
    for (int i = 0; i < SIter<F>::nRounds; ++i) {
        const F next = step(p);
        const F change = std::fabs(next - p);
        p = next;
        if (change <= SIter<F>::tol) break;
    }
    return p;
}

template <class F>
F Iso(F p, F e) {
    const F es = e * std::sin(p);
    return std::log(std::tan(p / 2 + Pi<F>() / 4)) - (e / 2) * std::log((1 + es) / (1 - es));
}

// ---- the oblique stereographic double projection ----

template <class F>
struct SSphere {
    F n, B0, R, K, sinB0, cosB0;
};

template <class F>
SSphere<F> FixedSphere(F n, F B0, F R, F K) {
    return {n, B0, R, K, std::sin(B0), std::cos(B0)};
}

template <class F>
SSphere<F> SphereAt(F a, F e, F lat0) {
    const F E = e * e / (1 - e * e);
    const F c0 = std::cos(lat0);
    const F s0 = std::sin(lat0);
    const F w = 1 - e * e * s0 * s0;
    const F M = a * (1 - e * e) / std::pow(w, F(1.5));
    const F N = a / std::sqrt(w);
    const F n = std::sqrt(1 + E * c0 * c0 * c0 * c0);
    const F B0 = std::asin(s0 / n);
    const F K = std::log(std::tan(Pi<F>() / 4 + B0 / 2)) - Iso(lat0, e) * n;
    return FixedSphere(n, B0, std::sqrt(M * N), K);
}

template <class F>
void StereoForward(const SSphere<F> &s, F k, F FE, F FN, F e, F lat, F dLon, F &x, F &y) {
    const F B = 2 * std::atan(std::exp(Iso(lat, e) * s.n + s.K)) - Pi<F>() / 2;
    const F A = dLon * s.n;
    const F sb = std::sin((B - s.B0) / 2);
    const F sa = std::sin(A / 2);
    const F s2 = sb * sb + sa * sa * std::cos(B) * s.cosB0;
    const F sq = std::sqrt(s2);
    const F c = std::sqrt(1 - sq * sq);
    const F d = 2 * sq * c;
    const F r = 2 * k * s.R * sq / c;
    x = (std::sin(A) * std::cos(B) / d) * r + FE;
    y = ((std::sin(B) - s.sinB0 * (1 - 2 * sq * sq)) / (s.cosB0 * d)) * r + FN;
}

template <class F>
void StereoInverse(const SSphere<F> &s, F k, F FE, F FN, F e, F x, F y, F &lat, F &dLon) {
    const F dx = x - FE;
    const F dy = y - FN;
    const F r = std::sqrt(dx * dx + dy * dy);
    const F psi = 2 * std::atan(r / (2 * k * s.R));
    const F sinB = s.cosB0 * (dy / r) * std::sin(psi) + s.sinB0 * std::cos(psi);
    const F B = std::asin(sinB);
    dLon = std::asin(std::sin(psi) * (dx / r) / std::cos(B)) / s.n;
    const F w = (std::log(std::tan(B / 2 + Pi<F>() / 4)) - s.K) / s.n;
    lat = Iterate(std::asin(std::tanh(w)), [&](F p) {
        const F es = e * std::sin(p);
        return std::asin(std::tanh(w + (e / 2) * std::log((1 + es) / (1 - es))));
    });
}

// ---- Lambert conformal conic, one-parallel form ----

template <class F>
F IsoLB(F p, F e) {
    const F es = e * std::sin(p);
    return std::log(std::tan(p / 2 + Pi<F>() / 4) * std::pow((1 - es) / (1 + es), e / 2));
}

template <class F>
struct SCone {
    F e, s0, T, I0, g0;
};

template <class F>
SCone<F> ConeOf(F a, F e, F p0, F k0, F lat0) {
    SCone<F> c{};
    c.e = e;
    c.s0 = std::sin(p0);
    c.T = a / std::sqrt(1 - e * e * c.s0 * c.s0) * k0 / std::tan(p0);
    c.I0 = IsoLB(p0, e);
    c.g0 = std::exp(-c.s0 * (IsoLB(lat0, e) - c.I0));
    return c;
}

template <class F>
void LBForward(const SCone<F> &c, F FE, F FN, F lat, F dLon, F &x, F &y) {
    const F g = std::exp(-c.s0 * (IsoLB(lat, c.e) - c.I0));
    const F th = c.s0 * dLon;
    x = c.T * g * std::sin(th) + FE;
    y = c.T * (1 - g * std::cos(th)) + FN - c.T * (1 - c.g0);
}

template <class F>
void LBInverse(const SCone<F> &c, F FE, F FN, F x, F y, F &lat, F &dLon) {
    const F e = c.e;
    const F Y = c.T - (c.T * (1 - c.g0) + y - FN);
    const F th = std::atan((x - FE) / Y);
    dLon = th / c.s0;
    const F rho = Y / std::cos(th);
    const F u = -std::log(rho / c.T) / c.s0 + c.I0;
    lat = Iterate(u, [&](F p) {
        const F es = e * std::sin(p);
        return 2 * std::atan(std::pow((1 + es) / (1 - es), e / 2) * std::exp(u)) - Pi<F>() / 2;
    });
}

} // namespace vx::literal

namespace vx::literal {

// ---- transverse Mercator, the Gauss-Krueger series ----

template <class F>
struct STM {
    F a, e, E, G, A1, A2, A3, A4, B1, B2, B3, B4;
};

template <class F>
STM<F> TMOf(F a, F e) {
    STM<F> k{};
    k.a = a;
    k.e = e;
    const F E = e * e / (1 - e * e);
    const F b = a * std::sqrt(1 - e * e);
    const F c = a / std::sqrt(1 - e * e);
    const F n = (a - b) / (a + b);
    k.E = E;
    k.G = (n * n * F(0.25) + 1) * a / (1 + n);
    k.A1 =
        ((((11025 - E * F(10828.125)) * F(0.015625) * E - 175) * F(0.25) * E + 45) * F(0.0625) * E -
         3) *
        F(0.25) * E * c;
    k.A2 = (((3675 - E * F(4331.25)) * F(0.00390625) * E - F(175) / 12) * E + 15) * F(0.03125) * E *
           E * c;
    k.A3 = (E * 735 - F(746.5)) * c * F(0.00048828125) * E * E * E;
    k.A4 = c * (315 - E * F(866.25)) * F(0.0009765625) * E * E * E * E;
    k.B1 =
        ((((E * 16384 - 11025) * F(0.015625) * E + 175) * F(0.25) * E - 45) * F(0.0625) * E + 3) *
        F(0.25) * E;
    k.B2 = (((19413 - F(170539.34166666667) * E) * F(0.125) * E - 1477) * F(0.03125) * E + 21) *
           F(0.03125) * E * E;
    k.B3 = (((E * F(169183.60714285713) - 17121) * F(0.03125) * E + 151) / 192) * E * E * E;
    k.B4 = (1097 - F(12207.914285714285) * E) * F(0.0009765625) * E * E * E * E;
    return k;
}

template <class F>
F TMArc(const STM<F> &k, F p) {
    const F C = std::cos(p) * std::cos(p);
    return k.G * p +
           std::sin(p) * std::cos(p) * (k.A1 + k.A2 * C + k.A3 * C * C + k.A4 * C * C * C);
}

template <class F>
void TMForward(const STM<F> &c, F k, F kArc0, F FE, F FN, F phi, F dLon, F &x, F &y) {
    const F sphi = std::sin(phi);
    const F N = k * c.a / std::sqrt(1 - c.e * c.e * sphi * sphi);
    const F t = std::tan(phi);
    const F t2 = t * t;
    const F t4 = t2 * t2;
    const F h = c.E * std::cos(phi) * std::cos(phi);
    const F L = dLon * std::cos(phi);
    const F L2 = L * L;
    x = N * L *
            (1 + L2 * ((1 - t2 + h) * (F(1) / 6) +
                       L2 * ((5 - 18 * t2 + t4 + (14 - 58 * t2) * h) * (F(1) / 120) +
                             (61 - 479 * t2 + 179 * t4 - t4 * t2) * (F(1) / 5040) * L2))) +
        FE;
    y = k * TMArc(c, phi) - kArc0 + FN +
        N * F(0.5) * t * L2 *
            (1 + L2 * (((4 * h + 9) * h + 5 - t2) * (F(1) / 12) +
                       ((270 - 330 * t2) * h + 61 - 58 * t2 + t4) * (F(1) / 360) * L2));
}

template <class F>
void TMInverse(const STM<F> &c, F k, F kArc0, F FE, F FN, F x, F y, F &lat, F &dLon) {
    const F m = ((y - FN) + kArc0) / (k * c.G);
    const F C = std::cos(m) * std::cos(m);
    const F f = m + std::sin(m) * std::cos(m) * (c.B1 + c.B2 * C + c.B3 * C * C + c.B4 * C * C * C);
    const F sf = std::sin(f);
    const F t = std::tan(f);
    const F t2 = t * t;
    const F t4 = t2 * t2;
    const F h = c.E * std::cos(f) * std::cos(f);
    const F Q = (x - FE) / (k * c.a / std::sqrt(1 - c.e * c.e * sf * sf));
    const F Q2 = Q * Q;
    lat = f - F(0.5) * t * (h + 1) * Q2 *
                  (1 + Q2 * (-(5 + 3 * t2 + (1 - 9 * t2) * h - 4 * h * h) * (F(1) / 12) +
                             (61 + 90 * t2 + 45 * t4 + (46 - 252 * t2 - 90 * t4) * h) *
                                 (F(1) / 360) * Q2));
    dLon = Q *
           (1 + Q2 * (-(1 + 2 * t2 + h) * (F(1) / 6) +
                      Q2 * ((5 + 28 * t2 + 24 * t4 + (6 + 8 * t2) * h) * (F(1) / 120) -
                            (61 + 662 * t2 + 1320 * t4 + 720 * t4 * t2) * (F(1) / 5040) * Q2))) /
           std::cos(f);
}

} // namespace vx::literal
