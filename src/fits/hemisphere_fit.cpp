#include "fits/hemisphere_fit.hpp"

#include <array>
#include <cmath>

#include "fits/hemisphere_sums.hpp"
#include "numerics/linear_system.hpp"

namespace orlix {
namespace {

// The regression on u = x - xMiddle, v = y - yMiddle, t = z - zMiddle and 1, in this order.
using Four = std::array<double, 4>;

// Squares and products of the regressors, summed run by run, so that the rounding error does not grow with the image.
struct Moments {
    double n = 0, u = 0, v = 0, t = 0, uu = 0, uv = 0, ut = 0, vv = 0, vt = 0, tt = 0;
    void operator+=(const Moments& m) {
        n += m.n, u += m.u, v += m.v, t += m.t;
        uu += m.uu, uv += m.uv, ut += m.ut, vv += m.vv, vt += m.vt, tt += m.tt;
    }
};

// A regressed quantity: its products with the regressors, and its square.
struct Regressed {
    double u = 0, v = 0, t = 0, one = 0, square = 0;
    void operator+=(const Regressed& r) { u += r.u, v += r.v, t += r.t, one += r.one, square += r.square; }
};

// Normal equations of the regressors minus their means.
class Regression {
public:
    explicit Regression(const Moments& m) : m_(m), lu_(Centred(m), 3) {
        const Matrix a = Centred(m);
        const double uu = a[0], uv = a[1], ut = a[2], vv = a[4], vt = a[5], tt = a[8];
        const double vvRest = vv - uv * uv / uu, vtRest = vt - uv * ut / uu;
        const double ttRest = tt - ut * ut / uu - vtRest * vtRest / vvRest;
        // (1e-6)^2: the remainder of a regressor that depends on the others apart from single-precision rounding.
        constexpr double kLeast = 1e-12;
        determined_ = uu > 0 && vvRest > kLeast * vv && ttRest > kLeast * tt;
    }
    // False when a regressor depends on the others, and for NaN.
    bool determined() const { return determined_; }

    Four Solve(const Regressed& r) const {
        std::array<double, 3> x = {r.u - m_.u * r.one / m_.n, r.v - m_.v * r.one / m_.n, r.t - m_.t * r.one / m_.n};
        lu_.Solve(x, x);
        return {x[0], x[1], x[2], (r.one - m_.u * x[0] - m_.v * x[1] - m_.t * x[2]) / m_.n};
    }

private:
    using Matrix = std::array<double, 9>;
    static Matrix Centred(const Moments& m) {
        const double uv = m.uv - m.u * m.v / m.n, ut = m.ut - m.u * m.t / m.n, vt = m.vt - m.v * m.t / m.n;
        return {m.uu - m.u * m.u / m.n, uv, ut, uv, m.vv - m.v * m.v / m.n, vt, ut, vt, m.tt - m.t * m.t / m.n};
    }

    Moments m_;
    LuDecomposition lu_;
    bool determined_;
};

}  // namespace

template <class Source>
std::optional<AlgebraicFit> AlgebraicHemisphere(const Source& source, double average) {
    using T = typename Source::Pixel;
    if (source.count() < 5) return std::nullopt;

    double n = 0, xSum = 0, ySum = 0;
    source.ForEachRun([&](const T*, size_t length, int32_t x, int32_t y) {
        const auto l = static_cast<double>(length);
        n += l;
        xSum += l * x + l * (l - 1) / 2;
        ySum += l * y;
    });
    const double xMiddle = std::floor(xSum / n), yMiddle = std::floor(ySum / n), zMiddle = average;

    Moments moments;
    Regressed ofW, ofQ;
    const AlgebraicSumsFn addTerms = Choose(kAlgebraicSums);
    source.ForEachRun([&](const T* run, size_t length, int32_t x, int32_t y) {
        const double v = y - yMiddle;
        const auto sums = SumsOfRun(addTerms, AlgebraicRow{v * v, zMiddle}, run, length, x - xMiddle, 1.0);
        // The columns have closed forms, about the middle of the run; w at the middle is `level`.
        const auto l = static_cast<double>(length);
        const double u = (x - xMiddle) + (l - 1) / 2, uu = u * u, level = uu + v * v;
        const SpreadOfColumns spread(length, 1.0);
        Moments m;
        m.n = l, m.u = l * u, m.v = v * l, m.t = sums[AlgebraicRow::kT];
        m.uu = l * uu + spread.squares, m.uv = v * m.u, m.ut = sums[AlgebraicRow::kUT];
        m.vv = v * m.v, m.vt = v * m.t, m.tt = sums[AlgebraicRow::kQ];
        Regressed w, q;
        w.one = l * level + spread.squares;
        w.u = l * (level * u) + 3 * u * spread.squares;
        w.v = w.one * v;
        w.t = sums[AlgebraicRow::kWT];
        w.square = l * (level * level) + (4 * uu + 2 * level) * spread.squares + spread.fourths;
        q.u = sums[AlgebraicRow::kQU], q.v = sums[AlgebraicRow::kQ] * v, q.t = sums[AlgebraicRow::kQT],
        q.one = sums[AlgebraicRow::kQ], q.square = sums[AlgebraicRow::kQQ];
        moments += m, ofW += w, ofQ += q;
    });
    const Regression regression(moments);
    if (!regression.determined()) return std::nullopt;
    Four wOn = regression.Solve(ofW), qOn = regression.Solve(ofQ);

    Regressed wRest, qRest;
    const RestSumsFn addRests = Choose(kRestSums);
    source.ForEachRun([&](const T* run, size_t length, int32_t x, int32_t y) {
        const double v = y - yMiddle;
        const RestRow row{v * v, zMiddle, wOn[0], wOn[1] * v, wOn[2], wOn[3], qOn[0], qOn[1] * v, qOn[2], qOn[3]};
        const auto sums = SumsOfRun(addRests, row, run, length, x - xMiddle, 1.0);
        wRest += {sums[RestRow::kWU], sums[RestRow::kW] * v, sums[RestRow::kWT], sums[RestRow::kW], sums[RestRow::kWW]};
        qRest += {sums[RestRow::kQU], sums[RestRow::kQ] * v, sums[RestRow::kQT], sums[RestRow::kQ], sums[RestRow::kQQ]};
    });
    const auto correct = [&](Four& on, const Regressed& rest) {
        const Four more = regression.Solve(rest);
        for (size_t i = 0; i < 4; ++i) on[i] += more[i];
        return rest.square - (more[0] * rest.u + more[1] * rest.v + more[2] * rest.t + more[3] * rest.one);
    };
    const double a = correct(wOn, wRest), d = correct(qOn, qRest);
    // Residuals on the order of rounding: 1e-14 of the regressed quantity.
    constexpr double kLeast = 1e-28;
    if (!(a > kLeast * ofW.square && d > kLeast * ofQ.square)) return std::nullopt;

    const double ratio = std::sqrt(a / d);  // a1 / a0
    Four on;
    for (size_t i = 0; i < 4; ++i) on[i] = wOn[i] + ratio * qOn[i];
    const double xOff = on[0] / 2, yOff = on[1] / 2, zOff = on[2] / (2 * ratio);
    Hemisphere hemisphere;
    hemisphere.xCenter = xMiddle + xOff;
    hemisphere.yCenter = yMiddle + yOff;
    hemisphere.zCenter = zMiddle + zOff;
    const double above = average - hemisphere.zCenter;
    const double side = above > 0 ? 1 : above < 0 ? -1 : 0;
    hemisphere.zScale = std::sqrt(ratio) * side;
    double square = xOff * xOff + yOff * yOff + ratio * zOff * zOff + on[3];
    // The radius refers to the square of zScale, which is 0 instead of the ratio when there is no side.
    if (side == 0) square -= ratio * hemisphere.zCenter * hemisphere.zCenter;
    hemisphere.radius = std::sqrt(square);
    return AlgebraicFit{hemisphere, moments.tt};
}

template <class Source>
std::optional<Hemisphere> FitHemisphere(const Source& source, double average) {
    const std::optional<AlgebraicFit> fit = AlgebraicHemisphere(source, average);
    if (!fit) return std::nullopt;
    const Hemisphere& h = fit->hemisphere;
    if (!std::isfinite(h.xCenter + h.yCenter + h.zCenter + h.zScale + h.radius)) return std::nullopt;
    return h;
}

template std::optional<Hemisphere> FitHemisphere(const RegionPixels<uint8_t>&, double);
template std::optional<AlgebraicFit> AlgebraicHemisphere(const RegionPixels<uint8_t>&, double);
template std::optional<Hemisphere> FitHemisphere(const RegionPixels<uint16_t>&, double);
template std::optional<AlgebraicFit> AlgebraicHemisphere(const RegionPixels<uint16_t>&, double);
template std::optional<Hemisphere> FitHemisphere(const RegionPixels<uint32_t>&, double);
template std::optional<AlgebraicFit> AlgebraicHemisphere(const RegionPixels<uint32_t>&, double);
template std::optional<Hemisphere> FitHemisphere(const RegionPixels<float>&, double);
template std::optional<AlgebraicFit> AlgebraicHemisphere(const RegionPixels<float>&, double);
template std::optional<Hemisphere> FitHemisphere(const PointRuns&, double);
template std::optional<AlgebraicFit> AlgebraicHemisphere(const PointRuns&, double);

}  // namespace orlix
