// Histograms of pixels.
#pragma once

#include <orlix/orlix.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orlix {

// The layout of the histogram of a grey interval [lower, upper], as IHistogram::Create takes it.
struct HistogramShape {
    int32_t bins;
    double left;
    double right;
    friend bool operator==(const HistogramShape&, const HistogramShape&) = default;
};

// 8 bits: always {256, 0, 255}, bin i is grey level i. Others: numberOfBins over [lower, upper]. But an integer
// interval that holds at least two values and no more than numberOfBins gets one bin per value, upper - lower + 1 bins
// in all. (An interval of a single value keeps numberOfBins: a histogram of one bin maps it to location 0, one of many
// bins and no width maps all of them to the value.) numberOfBins >= 1, not used for 8 bits.
template <class T>
HistogramShape ShapeOfHistogram(T lower, T upper, int32_t numberOfBins);

// Maps pixels to bins; the value `bins` means that the pixel is excluded.
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
// uint16_t, uint32_t or float. With n bins over the interval, pixel p is counted in bin
//   8 bits           p
//   one per value    p - lower
//   others           floor((p - lower) n / (upper - lower)), p = upper in bin n - 1; integers exactly, float with the
//                    three operations in double, in this order
// Pixels outside [lower, upper] and NaN are excluded, as are all pixels when lower > upper. Counts saturate at 2^31 - 1
// for any number of pixels. Memory: 4 bytes per bin plus at most 513 KiB. Allocation failures throw std::bad_alloc from
// the constructor.
template <class T>
class Counter {
public:
    // expectedPixels, a hint, chooses between methods that differ only in speed.
    Counter(T lower, T upper, int32_t numberOfBins, uint64_t expectedPixels);

    const HistogramShape& shape() const { return shape_; }
    void operator()(const T* pixels, size_t n);

    // Writes the counts; out.size() == shape().bins. Counting may continue afterwards.
    void Histogram(std::span<LONG> out);

private:
    using Fn = void (*)(const T* pixels, size_t n, const BinRule<T>& rule, uint32_t* bins);
    void Add(const T* pixels, size_t n);
    void Settle();

    HistogramShape shape_;
    BinRule<T> rule_;
    Fn binsOf_ = nullptr;     // null: values are counted, and binned in the end
    size_t tables_ = 1;       // partial count tables; a count is their sum
    uint64_t unsettled_ = 0;  // pixels since counts were last clamped to 2^31 - 1; at most 2^31
    std::vector<uint32_t> counts_;
};

extern template class Counter<uint8_t>;
extern template class Counter<uint16_t>;
extern template class Counter<uint32_t>;
extern template class Counter<float>;

}  // namespace orlix
