// Least trimmed squares: which of two surfaces fits the better part of a region more closely.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <vector>

#include "fits/correction_blocks.hpp"
#include "fits/quick_sums_kernels.hpp"
#include "fits/region_pixels.hpp"
#include "fits/trimming_kernels.hpp"
#include "numerics/exact_accumulator.hpp"

namespace orlix {

// Compares surfaces one after the other and keeps the best. The score of a surface f is the sum of the K smallest
// squares of its residuals f(x, y) - p over the n pixels of a region (Rousseeuw 1984). Notes:
//  (1) Residuals and squares are computed in double; their sum counts as exact, so its order does not matter and scores
//      compare the same on every build. NaN counts as larger than every square.
//  (2) A surface improves on the best one when its score is smaller. A score that is not below the largest double (some
//      of the K squares are infinite or NaN) never does.
//  (3) A surface that does not win usually costs at most one pass. For every limit T
//          score >= sum of min(r^2, T) - (n - K) T,
//      with equality when T is the K-th smallest square. T is estimated from a small fixed sample of pixels, and the
//      pass ends as soon as the partial sum exceeds what the best score allows.
//      For polynomials the sum is first bounded from below in single precision, which takes a third of the time and
//      mostly suffices.
//  (4) Other surfaces take one more pass: squares below an interval that very likely contains the K-th smallest one are
//      summed immediately, and only those inside it are kept and selected from. The two sums are rounded; only when
//      they are too close to tell which is smaller are both summed exactly.
//
// Surface: copyable, with Values(x, y, n, values), which writes f(x, y), f(x + 1, y), ... and gives the same bits on
// every build. A polynomial also has Row(y), the RowPolynomial of Values (correction_kernels.hpp).
template <class T, class Surface>
class TrimmedScore {
public:
    // 0 <= good <= pixels.count(). Borrows the pixels.
    TrimmedScore(const RegionPixels<T>& pixels, int64_t good)
        : pixels_(pixels),
          good_(good),
          error_((static_cast<double>(pixels.count()) + 16) * 0x1p-52),
          clip_(Choose(kClippedSquares<T>)),
          divide_(Choose(kDivideSquares<T>)) {
        if constexpr (!std::is_same_v<T, uint32_t>) quick_ = Choose(kQuickSums<T>);
        // The golden section spreads the sample evenly over any shape, with no step that could resonate with the rows.
        const int64_t n = pixels.count();
        const int64_t size = std::min<int64_t>(n / 64, kLargeSample);
        for (int64_t i = 0; i < size; ++i) {
            const double at = static_cast<double>(i) * 0.6180339887498949;
            sample_.push_back(pixels.At(static_cast<int64_t>((at - std::floor(at)) * static_cast<double>(n))));
        }
    }

    // Whether the surface improves on the best one so far; it then becomes the best.
    bool Improves(const Surface& surface) {
        if (good_ == 0) {
            if (best_) return false;
            best_ = surface;
            return true;
        }
        if (best_ && CannotWin(surface, Estimate(surface, kSmallSample).middle)) return false;
        const std::optional<Score> score = Measure(surface, Estimate(surface, kLargeSample));
        if (!score || (best_ && !Less(*score, surface))) return false;
        best_ = surface;
        bestScore_ = *score;
        bestExact_ = thisExact_;
        return true;
    }

    const std::optional<Surface>& best() const { return best_; }
    // Residuals computed so far, excluding samples.
    int64_t visits() const { return visits_; }
    // Whether the best score is 0, on which no surface improves.
    bool Perfect() const { return best_ && bestScore_.sum == 0; }

private:
    struct Score {
        double sum = 0;    // within a relative error_ of the exact sum
        double limit = 0;  // the K-th smallest square
    };
    // Where the K-th smallest square is expected.
    struct Interval {
        double low, middle, high;
    };

    // About a tenth and a fiftieth of the pixels lie in an interval estimated from samples of these sizes.
    static constexpr size_t kSmallSample = 1024, kLargeSample = 32768;
    static constexpr double kInfinity = std::numeric_limits<double>::infinity();

    template <class Visit, class More>
    void ForEachPart(const Surface& surface, Visit&& visit, More&& more) {
        pixels_.ForEachRun(
            [&](const T* run, size_t n, int32_t x, int32_t y) {
                for (size_t done = 0; done < n; done += values_.size()) {
                    const size_t part = std::min(n - done, values_.size());
                    visits_ += static_cast<int64_t>(part);
                    surface.Values(x + static_cast<int32_t>(done), y, part, values_.data());
                    visit(run + done, part);
                }
            },
            more);
    }
    template <class Visit>
    void ForEachPart(const Surface& surface, Visit&& visit) {
        ForEachPart(surface, visit, [] { return true; });
    }

    Interval Estimate(const Surface& surface, size_t most) {
        if (sample_.empty()) return {-1, kInfinity, kInfinity};
        squares_.clear();
        for (const SurfacePoint& point : std::span(sample_).first(std::min(sample_.size(), most))) {
            double value;
            surface.Values(point.x, point.y, 1, &value);
            const double square = (value - point.z) * (value - point.z);
            squares_.push_back(std::isnan(square) ? kInfinity : square);
        }
        const auto m = static_cast<double>(squares_.size());
        const double rank = static_cast<double>(good_) / static_cast<double>(pixels_.count()) * m;
        // Three standard deviations of the rank, plus a margin for the smallest samples.
        const double width = 1.5 * std::sqrt(m) + 2;
        const auto at = [&](double r) {
            const auto nth = squares_.begin() + static_cast<ptrdiff_t>(std::clamp(r, 0.0, m - 1));
            std::nth_element(squares_.begin(), nth, squares_.end());
            return *nth;
        };
        return {rank - width < 0 ? -1 : at(rank - width), at(rank), rank + width >= m ? kInfinity : at(rank + width)};
    }

    bool CannotWin(const Surface& surface, double limit) {
        if (!(limit > 0 && limit < kInfinity)) return false;
        const double allowed =
            (bestScore_.sum + static_cast<double>(pixels_.count() - good_) * limit) * (1 + 2 * error_);
        // Larger integers are no floats.
        if constexpr (requires { surface.Row(0); } && !std::is_same_v<T, uint32_t>)
            if (QuicklyExceeds(surface, std::sqrt(limit), allowed)) return true;
        ClippedSums sums;
        double total = 0;
        ForEachPart(
            surface, [&](const T* run, size_t n) { clip_(run, values_.data(), n, limit, sums); },
            [&] {
                total = 0;
                for (const double sum : sums.lane) total += sum;
                return !(total * (1 - 2 * error_) >= allowed);
            });
        return total * (1 - 2 * error_) >= allowed;
    }

    // Whether the sum of min(|r|, most)^2 is at least `allowed`; false where single precision cannot tell. There, f is
    // off by the error of its expansion and rounded residuals by 2^-24 of themselves, so each minimum m by at most
    // `off`, and m^2 >= m'^2 - 2 off most. A lane adds up to 32 squares of a segment: less than 2^-18 of their sum.
    bool QuicklyExceeds(const Surface& surface, double most, double allowed) {
        if (!(most > 0x1p-40 && most < 0x1p40)) return false;
        int64_t visited = 0;
        double sum = 0, lost = 0;
        bool useless = false;
        const auto exceeds = [&] { return (sum * (1 - 0x1p-17) - lost) * (1 - 2 * error_) >= allowed; };
        pixels_.ForEachRun(
            [&](const T* run, size_t n, int32_t x, int32_t y) {
                if (useless) return;
                const RowPolynomial row = surface.Row(y);
                for (size_t done = 0; done < n; done += kSegment) {
                    const size_t part = std::min(n - done, kSegment);
                    const Expansion expansion(row, (x + static_cast<double>(done)) + kMiddle, kRounding);
                    const double off = expansion.error + 0x1p-22 * most;
                    if (!(off < most / 16)) {
                        useless = true;
                        return;
                    }
                    QuickRow quick = {{}, static_cast<float>(-kMiddle)};
                    for (size_t k = 0; k < 4; ++k) quick.c[k] = static_cast<float>(expansion.a[k]);
                    QuickSums sums;
                    quick_(run + done, part, quick, static_cast<float>(most), sums);
                    double total = 0;
                    for (const float lane : sums.lane) total += static_cast<double>(lane);
                    sum += total;
                    lost += static_cast<double>(part) * (2.001 * off * most);
                    visited += static_cast<int64_t>(part);
                }
            },
            [&] { return !useless && !exceeds(); });
        if (useless || !exceeds()) return false;
        visits_ += visited;
        return true;
    }

    // nullopt when the score is not below the largest double.
    std::optional<Score> Measure(const Surface& surface, const Interval& expected) {
        double low = expected.low, high = expected.high;
        const auto good = static_cast<uint64_t>(good_);
        SquareClasses classes;
        size_t kept = 0;
        for (;;) {
            classes = {};
            kept = 0;
            ForEachPart(surface, [&](const T* run, size_t n) {
                if (middle_.size() < kept + n + 8) middle_.resize(std::max(2 * middle_.size(), kept + n + 8));
                kept += divide_(run, values_.data(), n, low, high, classes, middle_.data() + kept);
            });
            if (good <= classes.fewer) {
                high = low;
                low = -1;
            } else if (good <= classes.upToHigh) {
                break;
            } else {
                if (high == kInfinity) return std::nullopt;
                low = high;
                high = kInfinity;
            }
        }

        Score score{Total(classes.below), low};
        if (good <= classes.upToLow) {
            score.sum += static_cast<double>(good - classes.fewer) * low;
        } else {
            const auto rank = static_cast<size_t>(good - classes.upToLow);
            score.sum += static_cast<double>(classes.upToLow - classes.fewer) * low;
            const auto begin = middle_.begin(), end = begin + static_cast<ptrdiff_t>(kept);
            if (rank <= kept) {
                const auto last = begin + static_cast<ptrdiff_t>(rank - 1);
                std::nth_element(begin, last, end);
                score.limit = *last;
                for (auto square = begin; square <= last; ++square) score.sum += *square;
            } else {
                score.limit = high;
                for (auto square = begin; square < end; ++square) score.sum += *square;
                score.sum += static_cast<double>(rank - kept) * high;
            }
        }
        if (!(score.sum < std::numeric_limits<double>::max())) return std::nullopt;
        return score;
    }

    bool Less(const Score& score, const Surface& surface) {
        thisExact_.reset();
        if (score.sum * (1 + 2 * error_) < bestScore_.sum * (1 - 2 * error_)) return true;
        if (score.sum * (1 - 2 * error_) > bestScore_.sum * (1 + 2 * error_)) return false;
        if (!bestExact_) bestExact_ = Exact(*best_, bestScore_.limit);
        thisExact_ = Exact(surface, score.limit);
        return *thisExact_ < *bestExact_;
    }

    ExactAccumulator Exact(const Surface& surface, double limit) {
        ExactAccumulator sum;
        auto rest = static_cast<uint64_t>(good_);
        ForEachPart(surface, [&](const T* run, size_t n) {
            for (size_t i = 0; i < n; ++i) {
                const double r = values_[i] - static_cast<double>(run[i]);
                if (r * r < limit) {
                    sum.Add(r * r);
                    --rest;
                }
            }
        });
        while (rest > 0) {
            const uint64_t times = std::min<uint64_t>(rest, 0xffffffff);
            sum.Add(limit, times);
            rest -= times;
        }
        return sum;
    }

    static double Total(const double (&sums)[8]) {
        return ((sums[0] + sums[1]) + (sums[2] + sums[3])) + ((sums[4] + sums[5]) + (sums[6] + sums[7]));
    }

    const RegionPixels<T>& pixels_;
    int64_t good_;
    double error_;  // bound of the relative error of a rounded sum over the pixels
    ClippedSquaresFn<T> clip_;
    DivideSquaresFn<T> divide_;
    QuickSumsFn<T> quick_ = nullptr;
    std::vector<SurfacePoint> sample_;
    int64_t visits_ = 0;
    std::vector<double> squares_;  // of the sample
    std::vector<double> middle_;
    std::array<double, 1024> values_;  // of the surface, for a part of a run
    std::optional<Surface> best_;
    Score bestScore_;
    std::optional<ExactAccumulator> bestExact_, thisExact_;
};

}  // namespace orlix
