#include "blobs/moments.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "numerics/wide_integer.hpp"

namespace orlix {
namespace {

template <class Integer>
using Sums = std::array<Integer, kMoments>;

double ToDouble(int64_t v) { return static_cast<double>(v); }
double ToDouble(const WideInteger& v) { return v.ToDouble(); }

// Sums about (left, top) of one row's pixels start <= x <= stop, in closed form. The cubes of x - left and y - top,
// times the pixels so far, are below 2^60.
void AddRun(Sums<int64_t>& sums, int64_t start, int64_t stop, int64_t y) {
    const auto upTo = [](int64_t m, int power) {
        const int64_t s = m * (m + 1) / 2;
        return power == 1 ? s : power == 2 ? s * (2 * m + 1) / 3 : s * s;
    };
    const int64_t n = stop - start + 1;
    const int64_t s1 = upTo(stop, 1) - upTo(start - 1, 1), s2 = upTo(stop, 2) - upTo(start - 1, 2),
                  s3 = upTo(stop, 3) - upTo(start - 1, 3);
    sums[M00] += n;
    sums[M10] += s1;
    sums[M01] += n * y;
    sums[M20] += s2;
    sums[M11] += s1 * y;
    sums[M02] += n * y * y;
    sums[M30] += s3;
    sums[M21] += s2 * y;
    sums[M12] += s1 * y * y;
    sums[M03] += n * y * y * y;
}

// The same sums about the point (x, y).
template <class Integer>
Sums<Integer> About(const Sums<Integer>& s, int64_t x, int64_t y) {
    const Integer dx = -x, dy = -y, two = 2, three = 3;
    Sums<Integer> t = s;  // x moved
    t[M10] = s[M10] + dx * s[M00];
    t[M11] = s[M11] + dx * s[M01];
    t[M12] = s[M12] + dx * s[M02];
    t[M20] = s[M20] + dx * (two * s[M10] + dx * s[M00]);
    t[M21] = s[M21] + dx * (two * s[M11] + dx * s[M01]);
    t[M30] = s[M30] + dx * (three * s[M20] + dx * (three * s[M10] + dx * s[M00]));
    Sums<Integer> u = t;
    u[M01] = t[M01] + dy * t[M00];
    u[M11] = t[M11] + dy * t[M10];
    u[M21] = t[M21] + dy * t[M20];
    u[M02] = t[M02] + dy * (two * t[M01] + dy * t[M00]);
    u[M12] = t[M12] + dy * (two * t[M11] + dy * t[M10]);
    u[M03] = t[M03] + dy * (three * t[M02] + dy * (three * t[M01] + dy * t[M00]));
    return u;
}

// Whether pixels times the cube of the coordinates stays below 2^60.
bool Fits(int64_t pixels, int64_t extent) {
    const double bound = static_cast<double>(extent);
    return static_cast<double>(pixels) * bound * bound * bound < 0x1p60;
}

Sums<int64_t> NarrowSums(std::span<const LabelledRun> runs, const Box& box) {
    Sums<int64_t> sums = {};
    for (const LabelledRun& run : runs)
        AddRun(sums, int64_t{run.start} - box.left, int64_t{run.stop} - box.left, int64_t{run.row} - box.top);
    return sums;
}

// About (box.left, box.top), tile by tile: a tile of 2^14 columns and 64 rows fits into 64 bits.
Sums<WideInteger> WideSums(std::span<const LabelledRun> runs, const Box& box) {
    constexpr int64_t kColumns = 1 << 14, kRows = 64;
    Sums<WideInteger> total = {};
    std::vector<Sums<int64_t>> tiles(static_cast<size_t>((int64_t{box.right} - box.left) / kColumns + 1));
    for (size_t i = 0; i < runs.size();) {
        const int64_t band = (int64_t{runs[i].row} - box.top) / kRows * kRows;
        size_t firstTile = tiles.size(), lastTile = 0;
        for (; i < runs.size() && int64_t{runs[i].row} - box.top < band + kRows; ++i) {
            const int64_t start = int64_t{runs[i].start} - box.left, stop = int64_t{runs[i].stop} - box.left;
            const auto first = static_cast<size_t>(start / kColumns), last = static_cast<size_t>(stop / kColumns);
            firstTile = std::min(firstTile, first);
            lastTile = std::max(lastTile, last);
            for (size_t tile = first; tile <= last; ++tile) {
                const int64_t left = static_cast<int64_t>(tile) * kColumns;
                AddRun(tiles[tile], std::max(start - left, int64_t{0}), std::min(stop - left, kColumns - 1),
                       int64_t{runs[i].row} - box.top - band);
            }
        }
        for (size_t tile = firstTile; tile <= lastTile; ++tile) {
            Sums<WideInteger> wide;
            std::copy(tiles[tile].begin(), tiles[tile].end(), wide.begin());
            tiles[tile] = {};
            wide = About(wide, -static_cast<int64_t>(tile) * kColumns, -band);
            for (size_t k = 0; k < kMoments; ++k) total[k] += wide[k];
        }
    }
    return total;
}

// The coordinate of the pixel next to the centroid, and how far the centroid is from it.
int64_t NextTo(int64_t sum, int64_t pixels) { return (2 * sum + pixels) / (2 * pixels); }
int64_t NextTo(const WideInteger& sum, const WideInteger& pixels) {
    return static_cast<int64_t>(std::floor(sum.ToDouble() / pixels.ToDouble() + 0.5));
}

DoublePair ToPair(int64_t v) {
    const auto high = static_cast<double>(v);
    return {high, static_cast<double>(v - static_cast<int64_t>(high))};
}
DoublePair ToPair(const WideInteger& v) {
    const double high = v.ToDouble();
    int exponent = 0;
    const double fraction = std::frexp(high, &exponent);
    WideInteger rounded = static_cast<int64_t>(std::ldexp(fraction, std::min(exponent, 62)));
    for (int i = 62; i < exponent; ++i) rounded += rounded;
    return {high, (v - rounded).ToDouble()};
}

template <class Integer>
Point Centroid(const Sums<Integer>& sums, const Box& box) {
    const int64_t x = NextTo(sums[M10], sums[M00]), y = NextTo(sums[M01], sums[M00]);
    const Integer restX = sums[M10] - sums[M00] * Integer(x), restY = sums[M01] - sums[M00] * Integer(y);
    return {static_cast<double>(box.left + x) + ToDouble(restX) / ToDouble(sums[M00]),
            static_cast<double>(box.top + y) + ToDouble(restY) / ToDouble(sums[M00])};
}

template <class Integer>
PixelMoments Evaluate(const Sums<Integer>& sums, const Box& box) {
    PixelMoments moments;
    moments.centroid = Centroid(sums, box);

    const Sums<Integer> about = About(sums, NextTo(sums[M10], sums[M00]), NextTo(sums[M01], sums[M00]));
    std::array<DoublePair, kMoments> s;
    for (size_t k = 0; k < kMoments; ++k) s[k] = ToPair(about[k]);
    const double n = s[M00].high;
    const DoublePair x = s[M10] / n, y = s[M01] / n;  // at most 1/2
    const std::array<DoublePair, kMoments> central = {s[M00],
                                                      {},
                                                      {},
                                                      s[M20] - x * s[M10],
                                                      s[M11] - x * s[M01],
                                                      s[M02] - y * s[M01],
                                                      s[M30] - x * (s[M20] * 3.0 - x * s[M10] * 2.0),
                                                      s[M21] - x * (s[M11] - x * s[M01]) * 2.0 - y * s[M20],
                                                      s[M12] - y * (s[M11] - y * s[M10]) * 2.0 - x * s[M02],
                                                      s[M03] - y * (s[M02] * 3.0 - y * s[M01] * 2.0)};
    for (size_t k = 0; k < kMoments; ++k) moments.central[k] = central[k].high;
    moments.covarianceX = central[M20] / n;
    moments.covarianceXy = central[M11] / n;
    moments.covarianceY = central[M02] / n;
    return moments;
}

}  // namespace

Point CentroidOf(std::span<const LabelledRun> runs, const Box& box, int64_t pixels) {
    const int64_t extent = std::max(int64_t{box.right} - box.left, int64_t{box.bottom} - box.top) + 1;
    if (static_cast<double>(pixels) * static_cast<double>(extent) >= 0x1p60) return Centroid(WideSums(runs, box), box);
    Sums<int64_t> sums = {};
    sums[M00] = pixels;
    int64_t twice = 0;
    for (const LabelledRun& run : runs) {
        const int64_t n = run.length();
        twice += n * (int64_t{run.start} - box.left + run.stop - box.left);
        sums[M01] += n * (int64_t{run.row} - box.top);
    }
    sums[M10] = twice / 2;
    return Centroid(sums, box);
}

PixelMoments MomentsOf(std::span<const LabelledRun> runs, const Box& box, int64_t pixels) {
    const int64_t extent = std::max(int64_t{box.right} - box.left, int64_t{box.bottom} - box.top) + 1;
    const int64_t farthest = std::max(box.right, box.bottom) + int64_t{1};
    PixelMoments moments;
    Sums<WideInteger> wide;
    const bool narrow = Fits(pixels, extent);
    if (narrow) {
        const Sums<int64_t> sums = NarrowSums(runs, box);
        moments = Evaluate(sums, box);
        if (Fits(8 * pixels, farthest)) {
            const Sums<int64_t> raw = About(sums, -int64_t{box.left}, -int64_t{box.top});
            std::transform(raw.begin(), raw.end(), moments.raw.begin(), [](int64_t v) { return ToDouble(v); });
            return moments;
        }
        std::copy(sums.begin(), sums.end(), wide.begin());
    } else {
        wide = WideSums(runs, box);
        moments = Evaluate(wide, box);
    }
    const Sums<WideInteger> raw = About(wide, -int64_t{box.left}, -int64_t{box.top});
    std::transform(raw.begin(), raw.end(), moments.raw.begin(), [](const WideInteger& v) { return v.ToDouble(); });
    return moments;
}

}  // namespace orlix
