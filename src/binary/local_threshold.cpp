#include "binary/local_threshold.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace orlix {
namespace {

// The identities of minimum and maximum.
template <class T>
constexpr T kNoLow = std::numeric_limits<T>::has_infinity ? std::numeric_limits<T>::infinity()
                                                          : std::numeric_limits<T>::max();
template <class T>
constexpr T kNoHigh = std::numeric_limits<T>::has_infinity ? -std::numeric_limits<T>::infinity()
                                                           : std::numeric_limits<T>::lowest();

// The smallest and largest values at each of n places.
template <class T>
struct Ranges {
    std::vector<T> low, high;

    explicit Ranges(size_t n) : low(n, kNoLow<T>), high(n, kNoHigh<T>) {}
    void Clear() {
        std::ranges::fill(low, kNoLow<T>);
        std::ranges::fill(high, kNoHigh<T>);
    }
};

// The smaller and larger ones of n values; where a value is NaN, that of `sofar`. `to` is no operand, so that the
// compiler makes vectors of the loop.
template <class T>
void Smaller(const T* __restrict value, const T* __restrict sofar, T* __restrict to, size_t n) {
    for (size_t i = 0; i < n; ++i) to[i] = value[i] < sofar[i] ? value[i] : sofar[i];
}
template <class T>
void Larger(const T* __restrict value, const T* __restrict sofar, T* __restrict to, size_t n) {
    for (size_t i = 0; i < n; ++i) to[i] = value[i] > sofar[i] ? value[i] : sofar[i];
}

// The extremes of the squares around the pixels of a row, from the first row to the last.
template <class T>
class SquareRanges {
public:
    SquareRanges(const PixelView<const T>& image, int32_t radius)
        : image_(image),
          adjacent_(image.AdjacentColumns() == image.width()),
          columns_(static_cast<size_t>(image.width())),
          right_(static_cast<size_t>(std::min(radius, image.width() - 1))),
          down_(std::min(radius, image.height() - 1)),
          side_(2 * int64_t{down_} + 1),
          suffixes_(static_cast<size_t>(std::min<int64_t>(side_, image.height())), Ranges<T>(columns_)),
          prefix_(columns_),
          next_(columns_),
          spare_(columns_),
          row_(columns_ + 2 * right_),
          wider_(columns_ + 2 * right_),
          gathered_(adjacent_ && !kFloat ? 0 : columns_) {}

    // The row's pixels, NaN in the place of values that are not finite. Valid until the next call.
    const T* Pixels(int32_t y) {
        if (adjacent_ && !kFloat) return image_.row(y);
        for (int32_t x = 0; x < image_.width(); ++x) {
            T& pixel = gathered_[static_cast<size_t>(x)];
            pixel = image_.at(x, y);
            if constexpr (kFloat)
                if (!std::isfinite(pixel)) pixel = std::numeric_limits<T>::quiet_NaN();
        }
        return gathered_.data();
    }

    // To be called for the rows in order. Columns of the result are those of the image.
    const Ranges<T>& Row(int32_t y) {
        FindColumns(y);
        const size_t side = 2 * right_ + 1;
        size_t width = 1, n = row_.low.size();
        while (width < side) {
            const size_t step = std::min(width, side - width);
            n -= step;
            Smaller(row_.low.data() + step, row_.low.data(), wider_.low.data(), n);
            Larger(row_.high.data() + step, row_.high.data(), wider_.high.data(), n);
            std::swap(row_, wider_);
            width += step;
        }
        return row_;
    }

private:
    void Extend(const T* pixels, const Ranges<T>& from, Ranges<T>& to) {
        Smaller(pixels, from.low.data(), to.low.data(), columns_);
        Larger(pixels, from.high.data(), to.high.data(), columns_);
    }

    // Stores the extremes of each column over rows y - down .. y + down that exist, in the middle of row_.
    void FindColumns(int32_t y) {
        // The rows are the last ones of a block of side_ rows, from y - down on, and the first `phase` of the next.
        const int64_t phase = y % side_;
        if (phase == 0) {
            FindSuffixes(y);
        } else if (y + int64_t{down_} < image_.height()) {
            Extend(Pixels(y + down_), prefix_, next_);
            std::swap(prefix_, next_);
        }
        const Ranges<T>& suffix = suffixes_[static_cast<size_t>(phase)];
        row_.Clear();
        Smaller(suffix.low.data(), prefix_.low.data(), row_.low.data() + right_, columns_);
        Larger(suffix.high.data(), prefix_.high.data(), row_.high.data() + right_, columns_);
    }

    // Suffix j is that of rows y - down + j .. y + down. Those beyond the last are not needed.
    void FindSuffixes(int32_t y) {
        prefix_.Clear();
        next_.Clear();
        for (int64_t j = side_ - 1; j >= 0; --j) {
            const int64_t row = y - int64_t{down_} + j;
            if (row >= 0 && row < image_.height()) {
                Extend(Pixels(static_cast<int32_t>(row)), next_, spare_);
                std::swap(next_, spare_);
            }
            if (j < std::ssize(suffixes_)) suffixes_[static_cast<size_t>(j)] = next_;
        }
    }

    static constexpr bool kFloat = std::is_floating_point_v<T>;

    const PixelView<const T> image_;
    const bool adjacent_;
    const size_t columns_, right_;
    const int32_t down_;
    const int64_t side_;
    std::vector<Ranges<T>> suffixes_;
    Ranges<T> prefix_, next_, spare_;
    Ranges<T> row_, wider_;
    std::vector<T> gathered_;
};

}  // namespace

template <class T>
void ThresholdLocally(const PixelView<const T>& image, const LocalThreshold& threshold, BitPlane& plane) {
    if (image.width() == 0) return;
    using Difference = std::conditional_t<std::is_floating_point_v<T>, double, int64_t>;
    Difference contrast, offset;
    if constexpr (std::is_floating_point_v<T>) {
        contrast = threshold.contrast;
        offset = 2 * threshold.offset;
    } else {
        constexpr double kBeyond = 8589934592.0;  // all differences
        contrast = static_cast<int64_t>(std::ceil(std::min(threshold.contrast, kBeyond)));
        offset = static_cast<int64_t>(std::floor(2 * std::clamp(threshold.offset, -kBeyond, kBeyond)));
    }
    SquareRanges<T> squares(image, threshold.radius);
    for (int32_t y = 0; y < image.height(); ++y) {
        const Ranges<T>& extremes = squares.Row(y);
        const T* const pixels = squares.Pixels(y);
        uint64_t* const words = plane.row(y);
        for (int32_t x = 0; x < image.width(); x += 64) {
            uint64_t decided = 0, bright = 0;
            for (int32_t i = x; i < std::min(image.width(), x + 64); ++i) {
                const Difference low = static_cast<Difference>(extremes.low[static_cast<size_t>(i)]),
                                 high = static_cast<Difference>(extremes.high[static_cast<size_t>(i)]),
                                 g = static_cast<Difference>(pixels[i]);
                decided = decided << 1 | (high - low >= contrast && g == g);
                bright = bright << 1 | ((g - low) - (high - g) > offset);
            }
            const int32_t beyond = std::max(x + 64 - image.width(), 0);
            decided <<= beyond;
            bright <<= beyond;
            uint64_t& word = words[x / 64];
            word = (word & ~decided) | ((threshold.bright ? bright : ~bright) & decided);
        }
    }
}

template void ThresholdLocally(const PixelView<const uint8_t>&, const LocalThreshold&, BitPlane&);
template void ThresholdLocally(const PixelView<const uint16_t>&, const LocalThreshold&, BitPlane&);
template void ThresholdLocally(const PixelView<const uint32_t>&, const LocalThreshold&, BitPlane&);
template void ThresholdLocally(const PixelView<const float>&, const LocalThreshold&, BitPlane&);

}  // namespace orlix
