// The neighbourhood filters of IImageProcess by name, for programs that let their users choose one.
//
//     const orlix::NamedFilter* filter = orlix::FindFilter("sobel");
//     if (filter) orlix::Check((process.get()->*filter->apply)(source.get(), BI_AllBands), process);
#ifndef ORLIX_FILTERS_HPP
#define ORLIX_FILTERS_HPP

#include <orlix/orlix.h>

#include <string_view>

namespace orlix {

struct NamedFilter {
    const char* name;     // the method: "SharpenLow"
    const char* word;     // as users type it: "sharpen-low"
    const char* formula;  // a line; E is the pixel, A B C / D . F / G H I are its neighbours
    HRESULT (STDMETHODCALLTYPE IImageProcess::*apply)(IImageVPA* source, LONG band);
};

// All filters without parameters. (IImageProcess::ExtremumSharpening has one, the size of its square.)
inline constexpr NamedFilter kNamedFilters[] = {
    {"Sobel", "sobel", "strength of edges: root of the squares of both 3x3 gradients", &IImageProcess::Sobel},
    {"Laplacian", "laplacian", "(A + C + G + I + 4 (B + D + F + H) - 20 E) / 6", &IImageProcess::Laplacian},
    {"SharpenLow", "sharpen-low", "(6 E - B - D - F - H) / 2", &IImageProcess::SharpenLow},
    {"SharpenMedium", "sharpen-medium", "5 E - B - D - F - H", &IImageProcess::SharpenMedium},
    {"Gaussian3x3", "gaussian3x3", "smoothing with the weights 1 2 1 in both directions", &IImageProcess::Gaussian3x3},
    {"Gaussian5x5", "gaussian5x5", "smoothing with the weights 1 4 6 4 1 in both directions",
     &IImageProcess::Gaussian5x5},
    {"Median3x3", "median3x3", "the fifth largest of the nine", &IImageProcess::Median3x3},
};

// By the name or the word; null where there is none.
inline const NamedFilter* FindFilter(std::string_view name) noexcept {
    for (const NamedFilter& filter : kNamedFilters)
        if (name == filter.name || name == filter.word) return &filter;
    return nullptr;
}

}  // namespace orlix

#endif
