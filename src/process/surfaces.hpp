// Surface fits to the pixels of a selection, and corrections that subtract the surfaces.
#pragma once

#include <orlix/orlix.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "component/failure.hpp"
#include "fits/angled_hemisphere_fit.hpp"
#include "fits/correction.hpp"
#include "fits/hemisphere.hpp"
#include "fits/hemisphere_fit.hpp"
#include "fits/region_pixels.hpp"
#include "fits/robust_fit.hpp"
#include "fits/surface_fit.hpp"
#include "fits/surface_polynomial.hpp"
#include "measure/measuring.hpp"
#include "process/selection.hpp"

namespace orlix {

// Fits the first band. S_FALSE for a selection without pixels; the surface is then unchanged.
template <class Pixel>
HRESULT PolynomialOf(const Selection<Pixel>& at, int degree, const char* notFinite, SurfacePolynomial& surface) {
    const PixelBounds bounds = BoundsOf(at.rows());
    if (bounds.empty()) return S_FALSE;
    SurfaceFitter<Pixel> fitter(degree, at.rows(), bounds);
    at.ForEachRun([&](const Pixel* pixels, size_t n, int32_t x, int32_t y) { fitter(pixels, n, x, y); });
    if (!fitter.Finish(surface)) throw Failure(notFinite);
    return S_OK;
}

template <class Pixel>
void SubtractPolynomial(const Selection<Pixel>& at, const SurfacePolynomial& surface) {
    const Corrector<Pixel> corrector(at.settings().lower(), at.settings().upper());
    at.ForEachRun([&](Pixel* pixels, size_t n, int32_t x, int32_t y) { corrector.Apply(pixels, n, x, y, surface); });
}

// Fits the first band. S_FALSE where the pixels determine no hemisphere; the surface is then unchanged.
template <class Pixel>
HRESULT HemisphereOf(const Selection<Pixel>& at, bool angled, const char* notFinite, AveragedHemisphere& surface) {
    const RegionPixels<Pixel> pixels(at.view(0), at.rows());
    if (pixels.count() == 0) return S_FALSE;
    Measurer<Pixel> measurer(false, true);
    pixels.ForEachRun([&](const Pixel* run, size_t n, int32_t x, int32_t y) { measurer(run, n, x, y); });
    const double average = measurer.Finish().average;
    if (!std::isfinite(average)) throw Failure(notFinite);
    const auto hemisphere = angled ? FitAngledHemisphere(pixels, average) : FitHemisphere(pixels, average);
    if (!hemisphere) return S_FALSE;
    surface = {*hemisphere, average};
    return S_OK;
}

template <class Pixel>
void SubtractHemisphere(const Selection<Pixel>& at, const HemisphereSurface& heights, double average) {
    const Corrector<Pixel> corrector(at.settings().lower(), at.settings().upper());
    at.ForEachRun([&](Pixel* pixels, size_t n, int32_t x, int32_t y) {
        constexpr size_t kPiece = 512;  // the shifts stay in the L1 cache
        double shifts[kPiece];
        for (size_t done = 0; done < n; done += kPiece) {
            const size_t part = std::min(n - done, kPiece);
            heights.Values(x + static_cast<int32_t>(done), y, part, shifts);
            for (size_t i = 0; i < part; ++i) shifts[i] = average - shifts[i];
            corrector.Apply(pixels + done, shifts, part);
        }
    });
}

// The robust fits of degree 1, 2 or 3, or of a hemisphere, tilted or not, to the first band. S_FALSE when there are too
// few pixels or no surface was found through any of them; the surface is then unchanged.
template <class Pixel>
HRESULT RobustSurfaceOf(const Selection<Pixel>& at, int degree, double probability, SurfacePolynomial& surface) {
    const auto fit = RobustPolynomial(RegionPixels<Pixel>(at.view(0), at.rows()), degree, probability);
    if (!fit) return S_FALSE;
    surface = *fit;
    return S_OK;
}
template <class Pixel>
HRESULT RobustSurfaceOf(const Selection<Pixel>& at, bool angled, double probability, AveragedHemisphere& surface) {
    const auto fit = RobustHemisphere(RegionPixels<Pixel>(at.view(0), at.rows()), angled, probability);
    if (!fit) return S_FALSE;
    surface = *fit;
    return S_OK;
}

}  // namespace orlix
