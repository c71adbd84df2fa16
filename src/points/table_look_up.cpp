#include "points/table_look_up.hpp"

#include <algorithm>
#include <numeric>

#include "measure/counting_kernels.hpp"

namespace orlix {

template <class T>
TableLookUp<T>::TableLookUp(T lower, T upper, const HistogramShape& shape, std::span<const T> table,
                            [[maybe_unused]] int64_t expectedPixels)
    : binsOf_(Choose(kBins<T>)), rule_(RuleOfHistogram(lower, upper, shape)), table_(table) {
    if constexpr (sizeof(T) == 2) {
        constexpr size_t kValues = 65536;
        if (expectedPixels < int64_t{kValues}) return;
        values_.resize(kValues);  // then one load per pixel
        std::iota(values_.begin(), values_.end(), T{0});
        ThroughBins(values_.data(), values_.size());
    }
}

template <class T>
void TableLookUp<T>::operator()(T* pixels, size_t n) const {
    if (values_.empty()) return ThroughBins(pixels, n);
    if constexpr (sizeof(T) == 2) {
        const T* const values = values_.data();
        // Several at a time: each store may alias the next load, which would have to wait for it.
        constexpr size_t kTogether = 8;
        size_t i = 0;
        for (; i + kTogether <= n; i += kTogether) {
            T found[kTogether];
            for (size_t k = 0; k < kTogether; ++k) found[k] = values[pixels[i + k]];
            std::copy_n(found, kTogether, pixels + i);
        }
        for (; i < n; ++i) pixels[i] = values[pixels[i]];
    }
}

template <class T>
void TableLookUp<T>::ThroughBins(T* pixels, size_t n) const {
    constexpr size_t kBlock = 256;
    uint32_t bins[kBlock];
    const size_t entries = std::min<size_t>(table_.size(), rule_.bins);
    for (size_t done = 0; done < n; done += kBlock) {
        const size_t part = std::min(n - done, kBlock);
        binsOf_(pixels + done, part, rule_, bins);
        for (size_t i = 0; i < part; ++i)
            if (bins[i] < entries) pixels[done + i] = table_[bins[i]];
    }
}

template class TableLookUp<uint16_t>;
template class TableLookUp<uint32_t>;
template class TableLookUp<float>;

}  // namespace orlix
