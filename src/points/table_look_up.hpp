// The look-up table for images that are not 8-bit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "measure/counting.hpp"

namespace orlix {

// A pixel within [lower, upper] is replaced by the table entry of the bin in which Counter counts it, for a histogram
// of the given shape. Other pixels, NaN and pixels of a bin without an entry stay. T is uint16_t, uint32_t or float.
// Applied in place to any number of runs; the table must outlive the operation.
template <class T>
class TableLookUp {
public:
    // expectedPixels, a hint, chooses between methods that differ only in speed.
    TableLookUp(T lower, T upper, const HistogramShape& shape, std::span<const T> table, int64_t expectedPixels);

    void operator()(T* pixels, size_t n) const;

private:
    using Fn = void (*)(const T* pixels, size_t n, const BinRule<T>& rule, uint32_t* bins);
    void ThroughBins(T* pixels, size_t n) const;

    Fn binsOf_;
    BinRule<T> rule_;
    std::span<const T> table_;
    std::vector<T> values_;  // 16 bits and many pixels: the result for each value
};

extern template class TableLookUp<uint16_t>;
extern template class TableLookUp<uint32_t>;
extern template class TableLookUp<float>;

}  // namespace orlix
