// Sums of grey values and of their positions.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlix {

// An unsigned sum of up to 128 bits, for which 32-bit builds have no built-in type.
struct WideSum {
    uint64_t low = 0;
    uint64_t high = 0;
    void Add(uint64_t value) {
        low += value;
        high += low < value;
    }
    void Add(uint64_t a, uint64_t b);  // adds a * b
};

// The results; zero where note (1) or (4) of Measurer says so.
struct GrayMeasures {
    uint64_t count = 0;
    double xCentroid = 0;
    double yCentroid = 0;
    double average = 0;
    double standardDeviation = 0;  // over count, not count - 1
};

// The sums of one kernel call over n <= 65536 pixels p[i], i counted from the first of them. Integer pixels: exact
// sums.
template <class T>
struct PixelSums {
    uint64_t s = 0;      // sum of p
    uint64_t q = 0;      // sum of p^2; for 32-bit pixels the sum of the low halves of p^2
    uint64_t qHigh = 0;  // for 32-bit pixels the sum of the high halves of p^2, otherwise 0
    uint64_t w = 0;      // sum of i p
};
// Float pixels: eight partial sums each, in double; pixel i goes into sum i % 8, in order of i.
template <>
struct PixelSums<float> {
    double s[8] = {};  // p
    double q[8] = {};  // (p - origin)^2
    double w[8] = {};  // i p
};

// Gathers count, grey-weighted centroid, average and standard deviation. T is uint8_t, uint16_t, uint32_t or float.
// Notes:
//  (1) Flags: with both set, everything is gathered. Statistics alone leaves the centroid 0. Location alone gives the
//      count and zeros (the weight of the centroid, the sum of p, belongs to the statistics) and reads no pixel.
//  (2) Integer pixels: all sums are exact and the variance is (N Q - S^2) / N^2 with an exact numerator, so equal
//      pixels give a standard deviation of exactly 0. The order of the runs does not matter.
//  (3) Float pixels: sums in double in a fixed order, the same for every variant; runs may be split where a column is a
//      multiple of 512. Squares are taken about the very first pixel when that is finite, so a large common offset
//      costs no digits and equal pixels give 0.
//  (4) No pixels: all zero. The centroid is computed when S is not 0 (NaN counts as not 0). A variance that rounding
//      makes negative counts as 0.
//  (5) A NaN pixel makes the centroid, the average and the standard deviation NaN. An infinite pixel makes the centroid
//      and the standard deviation NaN and the average infinite, or NaN when both signs occur.
template <class T>
class Measurer {
public:
    Measurer(bool location, bool statistics);

    // Adds the pixels at (x, y), (x + 1, y), ...; x, y >= 0.
    void operator()(const T* pixels, size_t n, int32_t x, int32_t y);

    GrayMeasures Finish() const;

private:
    using Fn = void (*)(const T* pixels, size_t n, double origin, PixelSums<T>& sums);
    Fn sum_;
    bool location_;
    bool statistics_;
    uint64_t count_ = 0;
    WideSum s_, q_, x_, y_;
};

template <>
class Measurer<float> {
public:
    Measurer(bool location, bool statistics);
    void operator()(const float* pixels, size_t n, int32_t x, int32_t y);
    GrayMeasures Finish() const;

private:
    using Fn = void (*)(const float* pixels, size_t n, double origin, PixelSums<float>& sums);
    Fn sum_;
    bool location_;
    bool statistics_;
    uint64_t count_ = 0;
    double origin_ = 0;
    double s_[8] = {}, q_[8] = {}, x_[8] = {}, y_[8] = {};
};

extern template class Measurer<uint8_t>;
extern template class Measurer<uint16_t>;
extern template class Measurer<uint32_t>;

}  // namespace orlix
