// Small pictures as processing code sees them, for tests of operations that visit a region more than once.
#pragma once

#include <algorithm>
#include <cmath>
#include <optional>
#include <random>
#include <type_traits>
#include <vector>

#include "fits/region_pixels.hpp"
#include "geometry/foreign_region.hpp"
#include "points/pixel_conversion.hpp"

namespace orlix {

template <class T>
class RegionPicture {
public:
    // heightAt(x, y) is converted to a pixel.
    template <class Height>
    RegionPicture(int32_t width, int32_t height, const Height& heightAt, IRegionOfInterest* region = nullptr)
        : pixels_(static_cast<size_t>(width) * static_cast<size_t>(height)),
          table_(static_cast<size_t>(400 + std::max(width, height))),
          rows_(region, width, height),
          view_(pixels_.data(), table_.data() + 200, width, height) {
        for (int32_t i = 0; i < std::max(width, height); ++i) table_[static_cast<size_t>(200 + i)] = {i, i * width};
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x) view_.at(x, y) = ToPixel<T>(heightAt(x, y));
    }
    RegionPicture(const RegionPicture&) = delete;

    T& at(int32_t x, int32_t y) { return view_.at(x, y); }
    RegionPixels<T> region() const { return RegionPixels<T>(view_, rows_); }
    double Average() const {
        double sum = 0, n = 0;
        region().ForEachRun([&](const T* run, size_t length, auto...) {
            for (size_t i = 0; i < length; ++i) sum += static_cast<double>(run[i]);
            n += static_cast<double>(length);
        });
        return sum / n;
    }

private:
    std::vector<T> pixels_;
    std::vector<VPAEntry> table_;
    RegionRows rows_;
    PixelView<T> view_;
};

// Normal deviates that do not depend on the standard library (polar method, Marsaglia 1964).
class NormalNoise {
public:
    explicit NormalNoise(uint32_t seed) : random_(seed) {}
    double operator()() {
        for (;;) {
            const double u = 2 * Uniform() - 1, v = 2 * Uniform() - 1, s = u * u + v * v;
            if (s > 0 && s < 1) return u * std::sqrt(-2 * std::log(s) / s);
        }
    }
    double Uniform() { return (static_cast<double>(random_()) + 0.5) / 4294967296.0; }

private:
    std::mt19937 random_;
};

}  // namespace orlix
