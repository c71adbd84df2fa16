// The neighbourhood filters, one entry each; the kernel variant is chosen when the filter is applied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>

#include "filters/filter_kernels.hpp"
#include "filters/linear_filter_kernels.hpp"
#include "filters/median_kernels.hpp"
#include "filters/sobel_kernels.hpp"
#include "vectors/variants.hpp"

namespace orlix {

enum class FilterKind { Gaussian3x3, Gaussian5x5, Laplacian, SharpenLow, SharpenMedium, Sobel, Median3x3 };

template <class T>
struct FilterRow {
    FilterKind kind;
    const char* name;
    int32_t radius;  // of the neighbourhood, at most NeighbourhoodFilter::kMostRadius
    std::span<const Variant<FilterFn<T>>> kernels;
};

// In the order of the kinds. T is uint8_t, uint16_t, uint32_t or float.
template <class T>
inline constexpr FilterRow<T> kFilters[] = {
    {FilterKind::Gaussian3x3, "Gaussian 3x3", 1, kGaussian3x3<T>},
    {FilterKind::Gaussian5x5, "Gaussian 5x5", 2, kGaussian5x5<T>},
    {FilterKind::Laplacian, "Laplacian", 1, kLaplacian<T>},
    {FilterKind::SharpenLow, "low sharpening", 1, kSharpenLow<T>},
    {FilterKind::SharpenMedium, "medium sharpening", 1, kSharpenMedium<T>},
    {FilterKind::Sobel, "Sobel", 1, kSobel<T>},
    {FilterKind::Median3x3, "median", 1, kMedian3x3<T>},
};

static_assert([] {
    for (size_t i = 0; i < std::size(kFilters<uint8_t>); ++i)
        if (kFilters<uint8_t>[i].kind != static_cast<FilterKind>(i)) return false;
    return true;
}());

template <class T>
const FilterRow<T>& RowOf(FilterKind kind) {
    return kFilters<T>[static_cast<size_t>(kind)];
}

}  // namespace orlix
