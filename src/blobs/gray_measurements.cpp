#include "blobs/gray_measurements.hpp"

#include <algorithm>
#include <cmath>
#include <span>
#include <type_traits>

#include "blobs/blob_rows.hpp"
#include "numerics/compensated_sum.hpp"
#include "numerics/double_pair.hpp"

namespace orlix {

// Positions are counted from a pixel of the component, which keeps the products of the sums small.
template <class Pixel>
struct GrayMeasurer<Pixel>::Sums {
    int64_t n = 0;
    Pixel minimum = 0, maximum = 0;
    DoublePair grey, xGrey, yGrey;  // 106 bits: exact for integers
    DoublePair x, y;
    int32_t left = 0, top = 0;  // the pixel

    explicit Sums(std::span<const LabelledRun> runs) : left(runs[0].start), top(runs[0].row) {}
};

template <class Pixel>
GrayMeasurer<Pixel>::GrayMeasurer(const Components& components, PixelView<const Pixel> image, uint32_t groups)
    : components_(components), image_(image), groups_(groups) {
    if (sizeof(Pixel) <= 2 && (groups & GG_Rank)) counts_.resize(size_t{1} << 8 * sizeof(Pixel));
}

template <class Pixel>
template <class Visit>
void GrayMeasurer<Pixel>::ForEachPixel(std::span<const LabelledRun> runs, const Visit& visit) const {
    for (const LabelledRun& run : runs)
        for (int32_t x = run.start; x <= run.stop; ++x) visit(image_.at(x, run.row));
}

template <class Pixel>
BlobGrayMeasurements GrayMeasurer<Pixel>::Measure(uint32_t label) {
    const std::span<const LabelledRun> runs = components_.runs(label);
    BlobGrayMeasurements out;
    Sums sums(runs);
    sums.minimum = sums.maximum = image_.at(runs[0].start, runs[0].row);
    bool numbers = true;
    for (const LabelledRun& run : runs) {
        // In parts, so that the sums of integers are exact: g < 2^32, and k < 2^15 within a part.
        constexpr int32_t kPart = 1 << 15;
        for (int64_t start = run.start; start <= run.stop; start += kPart) {
            const auto n = static_cast<int32_t>(std::min<int64_t>(kPart, run.stop - start + 1));
            using Sum = std::conditional_t<std::is_floating_point_v<Pixel>, double, uint64_t>;
            Sum grey = 0, moment = 0;
            for (int32_t k = 0; k < n; ++k) {
                const Pixel g = image_.at(static_cast<int32_t>(start) + k, run.row);
                if constexpr (std::is_floating_point_v<Pixel>) numbers &= !std::isnan(g);
                sums.minimum = std::min(sums.minimum, g);
                sums.maximum = std::max(sums.maximum, g);
                grey += static_cast<Sum>(g);
                moment += static_cast<Sum>(k) * static_cast<Sum>(g);
            }
            const auto pairOf = [](Sum sum) {
                if constexpr (std::is_floating_point_v<Pixel>) return DoublePair(sum);
                // 2^32 times the upper half is exact, and so is the lower half.
                else
                    return ExactSum(static_cast<double>(sum >> 32) * 4294967296.0,
                                    static_cast<double>(static_cast<uint32_t>(sum)));
            };
            const DoublePair part = pairOf(grey);
            const double column = static_cast<double>(start - sums.left), row = run.row - sums.top;
            sums.n += n;
            sums.grey = sums.grey + part;
            sums.xGrey = sums.xGrey + pairOf(moment) + part * column;
            sums.yGrey = sums.yGrey + part * row;
            sums.x = sums.x + DoublePair(n) * column + DoublePair(n) * ((n - 1) / 2.0);
            sums.y = sums.y + DoublePair(n) * row;
        }
    }
    if (!numbers) return out;
    if (groups_ & GG_Location) {
        const double total = sums.grey.high;
        if (total != 0) {
            out.xCentroid = sums.left + sums.xGrey.high / total;
            out.yCentroid = sums.top + sums.yGrey.high / total;
        }
    }
    if (groups_ & GG_Statistics) MeasureStatistics(runs, sums, out);
    if (groups_ & GG_Rank) MeasureRank(runs, out);
    if (groups_ & GG_Boundary) MeasureBoundary(runs, out);
    if (groups_ & GG_Volume) {
        out.volumeOverZero = sums.grey.high;
        out.volumeOverMinimum =
            (sums.grey - DoublePair(static_cast<double>(sums.n)) * static_cast<double>(sums.minimum)).high;
        out.volumeOverPlane = OverPlane(runs, sums);
    }
    return out;
}

template <class Pixel>
void GrayMeasurer<Pixel>::MeasureStatistics(std::span<const LabelledRun> runs, const Sums& sums,
                                            BlobGrayMeasurements& out) const {
    const auto n = static_cast<double>(sums.n);
    out.minimum = static_cast<double>(sums.minimum);
    out.maximum = static_cast<double>(sums.maximum);
    out.integrated = sums.grey.high;
    out.average = sums.grey.high / n;
    if (sums.minimum == sums.maximum) {  // rounding of the average would leave a deviation
        out.standardDeviation = 0;
        return;
    }
    CompensatedSum squares, cubes, fourths;
    ForEachPixel(runs, [&](Pixel g) {
        const double z = static_cast<double>(g) - out.average, square = z * z;
        squares.Add(square);
        cubes.Add(square * z);
        fourths.Add(square * square);
    });
    const double variance = squares.Value() / n;
    out.standardDeviation = std::sqrt(variance);
    out.skewness = cubes.Value() / n / (variance * out.standardDeviation);
    out.kurtosis = fourths.Value() / n / (variance * variance);
}

template <class Pixel>
void GrayMeasurer<Pixel>::MeasureRank(std::span<const LabelledRun> runs, BlobGrayMeasurements& out) {
    int64_t n = 0;
    for (const LabelledRun& run : runs) n += run.length();
    const int64_t lower = (n - 1) / 2, upper = n / 2;
    if constexpr (sizeof(Pixel) <= 2) {
        Pixel least = std::numeric_limits<Pixel>::max(), greatest = 0;
        ForEachPixel(runs, [&](Pixel g) {
            ++counts_[g];
            least = std::min(least, g);
            greatest = std::max(greatest, g);
        });
        int64_t before = 0;
        uint32_t most = 0;
        double low = 0;
        for (uint32_t g = least; g <= greatest; ++g) {
            const uint32_t count = counts_[g];
            counts_[g] = 0;
            if (before <= lower && lower < before + count) low = g;
            if (before <= upper && upper < before + count) out.median = (low + g) / 2;
            before += count;
            if (count > most) {
                most = count;
                out.mode = g;
            }
        }
    } else {
        values_.clear();
        values_.reserve(static_cast<size_t>(n));
        ForEachPixel(runs, [&](Pixel g) { values_.push_back(g); });
        std::sort(values_.begin(), values_.end());
        const auto at = [&](int64_t i) { return static_cast<double>(values_[static_cast<size_t>(i)]); };
        out.median = lower == upper ? at(lower) : at(lower) / 2 + at(upper) / 2;
        int64_t most = 0;
        for (int64_t i = 0; i < n;) {
            int64_t end = i + 1;
            while (end < n && at(end) == at(i)) ++end;
            if (end - i > most) {
                most = end - i;
                out.mode = at(i);
            }
            i = end;
        }
    }
}

template <class Pixel>
void GrayMeasurer<Pixel>::MeasureBoundary(std::span<const LabelledRun> runs, BlobGrayMeasurements& out) {
    const BlobRows rows(runs, rows_);
    CompensatedSum sum;
    int64_t n = 0;
    for (size_t i = 0; i < rows.count(); ++i) {
        const std::span<const LabelledRun> none;
        const auto above = i > 0 ? rows[i - 1] : none, below = i + 1 < rows.count() ? rows[i + 1] : none;
        size_t a = 0, b = 0;
        for (const LabelledRun& run : rows[i]) {
            const auto covered = [](std::span<const LabelledRun> row, size_t& k, int32_t x) {
                while (k < row.size() && row[k].stop < x) ++k;
                return k < row.size() && row[k].start <= x;
            };
            for (int32_t x = run.start; x <= run.stop; ++x) {
                const bool up = covered(above, a, x), down = covered(below, b, x);
                if (up && down && x > run.start && x < run.stop) continue;
                sum.Add(static_cast<double>(image_.at(x, run.row)));
                ++n;
            }
        }
    }
    out.boundaryAverage = sum.Value() / static_cast<double>(n);
}

// The sum of the plane over the component is its value at the mean of the pixels, N times.
template <class Pixel>
double GrayMeasurer<Pixel>::OverPlane(std::span<const LabelledRun> runs, const Sums& sums) {
    const BlobRows rows(runs, rows_);
    const auto rowCount = static_cast<int64_t>(rows.count());
    double n = 0;
    CompensatedSum x, y, g, xx, xy, yy, xg, yg;
    bool numbers = true;
    for (int64_t i = -kSurroundings; i < rowCount + kSurroundings; ++i) {
        const int64_t row = rows.top() + i;
        if (row < 0 || row >= image_.height()) continue;
        around_.clear();
        for (int64_t k = std::max<int64_t>(0, i - kSurroundings); k <= std::min(rowCount - 1, i + kSurroundings); ++k)
            for (const LabelledRun& run : rows[static_cast<size_t>(k)])
                around_.push_back(
                    {std::max(0, run.start - kSurroundings),
                     static_cast<int32_t>(std::min<int64_t>(image_.width() - 1, int64_t{run.stop} + kSurroundings))});
        std::sort(around_.begin(), around_.end(), [](const Run& a, const Run& b) { return a.start < b.start; });
        const std::span<const uint32_t> taken = components_.row(static_cast<int32_t>(row));
        // All runs of the row lie in order, and so do the columns visited.
        auto next = std::partition_point(taken.begin(), taken.end(), [&](uint32_t k) {
            return components_.runs()[k].stop < (around_.empty() ? 0 : around_.front().start);
        });
        int32_t column = 0;
        for (const Run& part : around_)
            for (column = std::max(column, part.start); column <= part.stop; ++column) {
                while (next != taken.end() && components_.runs()[*next].stop < column) ++next;
                if (next != taken.end() && components_.runs()[*next].start <= column) {
                    column = components_.runs()[*next].stop;
                    continue;
                }
                const double dx = column - sums.left, dy = static_cast<double>(row) - sums.top;
                const auto grey = static_cast<double>(image_.at(column, static_cast<int32_t>(row)));
                numbers &= std::isfinite(grey);
                ++n;
                x.Add(dx), y.Add(dy), g.Add(grey);
                xx.Add(dx * dx), xy.Add(dx * dy), yy.Add(dy * dy);
                xg.Add(dx * grey), yg.Add(dy * grey);
            }
    }
    if (n < 3 || !numbers) return BlobGrayMeasurements::kNone;
    const double mx = x.Value() / n, my = y.Value() / n, mg = g.Value() / n;
    const double sxx = xx.Value() / n - mx * mx, sxy = xy.Value() / n - mx * my, syy = yy.Value() / n - my * my;
    const double sxg = xg.Value() / n - mx * mg, syg = yg.Value() / n - my * mg;
    const double determinant = sxx * syy - sxy * sxy;
    if (!(determinant > 1e-9 * sxx * syy)) return BlobGrayMeasurements::kNone;  // on one line
    const double alpha = (sxg * syy - syg * sxy) / determinant, beta = (syg * sxx - sxg * sxy) / determinant;
    const auto count = static_cast<double>(sums.n);
    const double plane = mg + alpha * (sums.x.high / count - mx) + beta * (sums.y.high / count - my);
    return (sums.grey - ExactProduct(count, plane)).high;
}

template class GrayMeasurer<uint8_t>;
template class GrayMeasurer<uint16_t>;
template class GrayMeasurer<uint32_t>;
template class GrayMeasurer<float>;

}  // namespace orlix
