#include "measure/measuring.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "measure/measuring_kernels.hpp"

namespace orlix {
namespace {

constexpr size_t kMostPixels = 65536;  // per call of a kernel
constexpr size_t kFloatPart = 512;     // columns; see note (3) of Measurer

// An unsigned number of 256 bits, low limbs first.
struct Wide {
    uint32_t limb[8] = {};
};

Wide Product(const WideSum& a, const WideSum& b) {
    const auto limbs = [](const WideSum& sum, uint32_t(&out)[4]) {
        out[0] = static_cast<uint32_t>(sum.low);
        out[1] = static_cast<uint32_t>(sum.low >> 32);
        out[2] = static_cast<uint32_t>(sum.high);
        out[3] = static_cast<uint32_t>(sum.high >> 32);
    };
    uint32_t x[4], y[4];
    limbs(a, x);
    limbs(b, y);
    Wide product;
    for (size_t i = 0; i < 4; ++i) {
        uint64_t carry = 0;
        for (size_t j = 0; j < 4; ++j) {
            carry += uint64_t{x[i]} * y[j] + product.limb[i + j];
            product.limb[i + j] = static_cast<uint32_t>(carry);
            carry >>= 32;
        }
        product.limb[i + 4] = static_cast<uint32_t>(carry);
    }
    return product;
}

// a - b for a >= b.
Wide Difference(const Wide& a, const Wide& b) {
    Wide difference;
    uint64_t borrow = 0;
    for (size_t i = 0; i < 8; ++i) {
        const uint64_t d = uint64_t{a.limb[i]} - b.limb[i] - borrow;
        difference.limb[i] = static_cast<uint32_t>(d);
        borrow = d >> 63;
    }
    return difference;
}

// The nearest double, ties to even.
double ToDouble(const Wide& value) {
    int top = 7;
    while (top > 1 && value.limb[top] == 0) --top;
    // The three highest limbs hold at least 65 significant bits unless they hold all; lower limbs can only break a tie.
    const int low = std::max(top - 2, 0);
    uint32_t limbs[3] = {value.limb[low], value.limb[low + 1], value.limb[low + 2]};
    for (int i = 0; i < low; ++i)
        if (value.limb[i] != 0) limbs[0] |= 1;
    // Normalises 96 bits to the 64 that start at the highest set bit, folding the remaining bits into the lowest one;
    // then one rounding.
    uint64_t high = uint64_t{limbs[2]} << 32 | limbs[1];
    uint32_t rest = limbs[0];
    int exponent = 32 + 32 * low;
    if (high == 0) return std::ldexp(static_cast<double>(rest), 32 * low);
    while (high >> 63 == 0) {
        high = high << 1 | rest >> 31;
        rest <<= 1;
        --exponent;
    }
    if (rest != 0) high |= 1;
    const double nearest = static_cast<double>(static_cast<uint32_t>(high >> 32)) * 0x1p32 +
                           static_cast<double>(static_cast<uint32_t>(high));
    return std::ldexp(nearest, exponent);
}

double ToDouble(const WideSum& sum) { return ToDouble(Product(sum, {1, 0})); }

// a / b for b > 0 and a / b < 2^52, from exact integers: rounded once when both are doubles, otherwise exact when the
// quotient is a whole number, else within a unit in the last place.
double Quotient(const WideSum& a, const WideSum& b) {
    constexpr uint64_t kExact = uint64_t{1} << 53;
    const double estimate = ToDouble(a) / ToDouble(b);
    if (a.high == 0 && a.low <= kExact && b.high == 0 && b.low <= kExact) return estimate;
    auto whole = static_cast<uint64_t>(estimate);
    // The estimate may have been rounded up to the next whole number.
    const auto exceeds = [&](uint64_t q) {
        const Wide product = Product(b, {q, 0}), limit = Product(a, {1, 0});
        for (size_t i = 8; i-- > 0;)
            if (product.limb[i] != limit.limb[i]) return product.limb[i] > limit.limb[i];
        return false;
    };
    if (exceeds(whole)) --whole;
    const Wide rest = Difference(Product(a, {1, 0}), Product(b, {whole, 0}));
    return static_cast<double>(whole) + ToDouble(rest) / ToDouble(b);
}

}  // namespace

void WideSum::Add(uint64_t a, uint64_t b) {
    const uint64_t aLow = static_cast<uint32_t>(a), aHigh = a >> 32;
    const uint64_t bLow = static_cast<uint32_t>(b), bHigh = b >> 32;
    const uint64_t lowest = aLow * bLow;
    const uint64_t middle = aHigh * bLow + (lowest >> 32);
    const uint64_t other = aLow * bHigh + static_cast<uint32_t>(middle);
    high += aHigh * bHigh + (middle >> 32) + (other >> 32);
    Add(other << 32 | static_cast<uint32_t>(lowest));
}

template <class T>
Measurer<T>::Measurer(bool location, bool statistics)
    : sum_(Choose(kSums<T>)), location_(location), statistics_(statistics) {}

template <class T>
void Measurer<T>::operator()(const T* pixels, size_t n, int32_t x, int32_t y) {
    count_ += n;
    if (!statistics_) return;
    for (size_t done = 0; done < n;) {
        const size_t part = std::min(n - done, kMostPixels);
        PixelSums<T> sums;
        sum_(pixels + done, part, 0.0, sums);
        s_.Add(sums.s);
        q_.Add(sums.q);
        if constexpr (std::is_same_v<T, uint32_t>) q_.Add(sums.qHigh, uint64_t{1} << 32);
        x_.Add(sums.w);
        x_.Add(sums.s, static_cast<uint64_t>(x) + done);
        y_.Add(sums.s, static_cast<uint64_t>(y));
        done += part;
    }
}

template <class T>
GrayMeasures Measurer<T>::Finish() const {
    GrayMeasures measures;
    measures.count = count_;
    if (count_ == 0 || !statistics_) return measures;
    const WideSum count{count_, 0};
    if (location_ && (s_.low | s_.high) != 0) {
        measures.xCentroid = Quotient(x_, s_);
        measures.yCentroid = Quotient(y_, s_);
    }
    measures.average = Quotient(s_, count);
    measures.standardDeviation = std::sqrt(ToDouble(Difference(Product(count, q_), Product(s_, s_)))) / ToDouble(count);
    return measures;
}

Measurer<float>::Measurer(bool location, bool statistics)
    : sum_(Choose(kSums<float>)), location_(location), statistics_(statistics) {}

void Measurer<float>::operator()(const float* pixels, size_t n, int32_t x, int32_t y) {
    if (n > 0 && count_ == 0 && std::isfinite(pixels[0])) origin_ = static_cast<double>(pixels[0]);
    count_ += n;
    if (!statistics_) return;
    for (size_t done = 0; done < n;) {
        const size_t part = std::min(n - done, kFloatPart - (static_cast<size_t>(x) + done) % kFloatPart);
        PixelSums<float> sums;
        sum_(pixels + done, part, origin_, sums);
        const double left = static_cast<double>(x) + static_cast<double>(done);
        for (size_t lane = 0; lane < 8; ++lane) {
            s_[lane] += sums.s[lane];
            q_[lane] += sums.q[lane];
            x_[lane] += left * sums.s[lane] + sums.w[lane];
            y_[lane] += static_cast<double>(y) * sums.s[lane];
        }
        done += part;
    }
}

GrayMeasures Measurer<float>::Finish() const {
    GrayMeasures measures;
    measures.count = count_;
    if (count_ == 0 || !statistics_) return measures;
    const auto total = [](const double(&lanes)[8]) {
        return ((lanes[0] + lanes[1]) + (lanes[2] + lanes[3])) + ((lanes[4] + lanes[5]) + (lanes[6] + lanes[7]));
    };
    const double n = static_cast<double>(count_);
    const double s = total(s_);
    if (location_ && s != 0) {
        measures.xCentroid = total(x_) / s;
        measures.yCentroid = total(y_) / s;
    }
    measures.average = s / n;
    const double offset = measures.average - origin_;
    const double variance = total(q_) / n - offset * offset;
    if (std::isnan(variance))
        measures.standardDeviation = std::numeric_limits<double>::quiet_NaN();
    else
        measures.standardDeviation = std::sqrt(std::max(variance, 0.0));
    return measures;
}

template class Measurer<uint8_t>;
template class Measurer<uint16_t>;
template class Measurer<uint32_t>;

}  // namespace orlix
