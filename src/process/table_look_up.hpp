// The look-up table of images that are not 8-bit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "process/counting.hpp"
#include "process/pixel_conversion.hpp"

namespace orlix {

// The bin of a histogram of the given shape over [lower, upper] in which pixel p is counted, by the rule of Counter.
// lower <= p <= upper.
template <class Pixel>
size_t BinOfPixel(Pixel p, Pixel lower, Pixel upper, int32_t bins) {
    if constexpr (kIsFloat<Pixel>) {
        const double bin = (static_cast<double>(p) - lower) * bins / (static_cast<double>(upper) - lower);
        return bin >= 0 && bin < bins ? static_cast<size_t>(bin) : static_cast<size_t>(bins) - 1;
    } else {
        const uint64_t offset = static_cast<uint64_t>(p - lower);
        const uint64_t width = static_cast<uint64_t>(upper - lower);
        const uint64_t n = static_cast<uint64_t>(bins);
        if (width > 0 && width < n) return static_cast<size_t>(offset);
        return static_cast<size_t>(p == upper ? n - 1 : offset * n / width);
    }
}

// A pixel within [lower, upper] becomes the entry of its bin; others, NaN and pixels of a bin without an entry stay.
// Applied in place to any number of runs.
template <class Pixel>
class TableLookUp {
public:
    TableLookUp(Pixel lower, Pixel upper, int32_t bins, std::span<const Pixel> table)
        : lower_(lower), upper_(upper), bins_(bins), table_(table) {
        if constexpr (sizeof(Pixel) == 2) {  // few values: one load for each pixel
            values_.resize(size_t{kTypeMaximum<Pixel>} + 1);
            for (size_t value = 0; value < values_.size(); ++value) values_[value] = Of(static_cast<Pixel>(value));
        }
    }

    void operator()(Pixel* pixels, size_t n) const {
        for (size_t i = 0; i < n; ++i) {
            if constexpr (sizeof(Pixel) == 2)
                pixels[i] = values_[pixels[i]];
            else
                pixels[i] = Of(pixels[i]);
        }
    }

private:
    Pixel Of(Pixel p) const {
        if (!(p >= lower_ && p <= upper_)) return p;
        const size_t bin = BinOfPixel(p, lower_, upper_, bins_);
        return bin < table_.size() ? table_[bin] : p;
    }

    Pixel lower_;
    Pixel upper_;
    int32_t bins_;
    std::span<const Pixel> table_;
    std::vector<Pixel> values_;
};

}  // namespace orlix
