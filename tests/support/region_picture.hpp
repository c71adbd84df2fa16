// Small pictures as processing code sees them, for tests of operations that visit a region more than once.
#pragma once

#include "fits/region_pixels.hpp"
#include "geometry/foreign_region.hpp"
#include "points/pixel_conversion.hpp"
#include "support/band.hpp"

namespace orlix {

template <class T>
class RegionPicture {
public:
    // heightAt(x, y) is converted to a pixel.
    template <class Height>
    RegionPicture(int32_t width, int32_t height, const Height& heightAt, IRegionOfInterest* region = nullptr)
        : band_{width, height}, rows_(region, width, height) {
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x) at(x, y) = ToPixel<T>(heightAt(x, y));
    }
    RegionPicture(const RegionPicture&) = delete;

    T& at(int32_t x, int32_t y) { return view_.at(x, y); }
    RegionPixels<T> region() const { return RegionPixels<T>(view_, rows_); }

private:
    Band<T> band_;
    RegionRows rows_;
    PixelView<T> view_ = band_.view();
};

template <class T>
std::vector<SurfacePoint> PointsOf(const RegionPixels<T>& region) {
    std::vector<SurfacePoint> points;
    for (int64_t i = 0; i < region.count(); ++i) points.push_back(region.At(i));
    return points;
}

inline double AverageOf(const std::vector<SurfacePoint>& points) {
    double sum = 0;
    for (const SurfacePoint& point : points) sum += point.z;
    return sum / static_cast<double>(points.size());
}

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
