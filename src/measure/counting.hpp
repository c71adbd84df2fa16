// Histograms of pixels.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orlix {

// How the histogram of a grey interval [lower, upper] is laid out: what IHistogram::Create takes.
struct HistogramShape {
    int32_t bins;
    double left;
    double right;
    friend bool operator==(const HistogramShape&, const HistogramShape&) = default;
};

// 8 bits: always {256, 0, 255}: bin i is grey level i. Others: numberOfBins over [lower, upper], but one bin per value,
// upper - lower + 1 of them, when an integer interval holds at least two values and no more than numberOfBins. (An
// interval of a single value keeps numberOfBins: a histogram of one bin maps it to location 0, one of many bins and no
// width maps all of them to the value.) numberOfBins >= 1, not used for 8 bits.
template <class T>
HistogramShape ShapeOfHistogram(T lower, T upper, int32_t numberOfBins);

// Which bin a pixel belongs to; bins itself stands for "left out".
template <class T>
struct BinRule {
    T lower;
    T upper;
    uint32_t bins;
    bool onePerValue;  // integers: bin p - lower
};

// The rule of ShapeOfHistogram(lower, upper, numberOfBins).
template <class T>
BinRule<T> RuleOfHistogram(T lower, T upper, const HistogramShape& shape);

// Counts the pixels of any number of runs into the bins of ShapeOfHistogram(lower, upper, numberOfBins). T is uint8_t,
// uint16_t, uint32_t or float. With n bins over the interval the pixel p is counted in bin
//   8 bits           p
//   one per value    p - lower
//   others           floor((p - lower) n / (upper - lower)), p = upper in bin n - 1; integers exactly, float with the
//                    three operations in double, in this order
// Pixels outside [lower, upper] and NaN are left out; all when lower > upper. Counts saturate at 2^31 - 1, however many
// pixels come. Memory: 4 bytes a bin, and up to 513 KiB. Allocation failures throw std::bad_alloc from the constructor.
template <class T>
class Counter {
public:
    // expectedPixels, a hint, chooses between ways that differ in speed only.
    Counter(T lower, T upper, int32_t numberOfBins, uint64_t expectedPixels);

    const HistogramShape& shape() const { return shape_; }
    void operator()(const T* pixels, size_t n);

    // Writes the counts; out.size() == shape().bins. Counting may go on afterwards.
    void Histogram(std::span<LONG> out);

private:
    using Fn = void (*)(const T* pixels, size_t n, const BinRule<T>& rule, uint32_t* bins);
    void Add(const T* pixels, size_t n);
    void Settle();

    HistogramShape shape_;
    BinRule<T> rule_;
    Fn binsOf_ = nullptr;
    size_t tables_ = 1;       // tables of counts side by side, the sum of which is meant
    uint64_t unsettled_ = 0;  // pixels since counts were last clamped to 2^31 - 1; at most 2^31
    std::vector<uint32_t> counts_;
};

extern template class Counter<uint8_t>;
extern template class Counter<uint16_t>;
extern template class Counter<uint32_t>;
extern template class Counter<float>;

}  // namespace orlix
