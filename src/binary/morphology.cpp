#include "binary/morphology.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>
#include <vector>

#include "binary/logic.hpp"
#include "binary/logic_kernels.hpp"
#include "binary/morphology_kernels.hpp"
#include "binary/morphology_sweep.hpp"
#include "binary/plane_kernels.hpp"
#include "component/failure.hpp"

namespace orlix {
namespace {

// The erosions and dilations of an operation, in their order: true for a dilation.
struct Steps {
    std::array<bool, 2> dilate;
    size_t count;
    explicit Steps(Morphology operation)
        : dilate{operation == Morphology::Dilation || operation == Morphology::Closing,
                 operation == Morphology::Opening},
          count(operation == Morphology::Erosion || operation == Morphology::Dilation ? 1 : 2) {}
    const bool* begin() const { return dilate.data(); }
    const bool* end() const { return dilate.data() + count; }
};

// ---- In place, on bytes ----

// Works step(rows) on the rows of `to`: `steps` times, the first time from those of `from`, then in place. Unless all
// pixels of `to` may be written and `from` is its own rows or apart, the work is done on a copy.
template <class Step>
void OnRows(const BitRows& from, BitmapStore& to, const RegionRows& region, size_t steps, const Step& step) {
    if (steps == 0) return Combine(to, BitLogic::Copy, from, region);
    const bool direct = region.whole() && !Overlap(from, RowsOf(to));
    BitmapStore copy;
    if (!direct) copy.Create(to.width(), to.height(), false);
    BitmapStore& target = direct ? to : copy;
    const auto lastMask = static_cast<uint8_t>(0xff << (7 - (to.width() - 1) % 8));
    MorphologyRows rows{from.first,       from.rowBytes, target.WriteRow(0), target.rowBytes(), to.height(),
                        from.usedBytes(), lastMask};
    for (size_t i = 0; i < steps; ++i) {
        step(i, rows);
        rows.from = rows.to;
        rows.fromRow = rows.toRow;
    }
    if (!direct) return Combine(to, BitLogic::Copy, RowsOf(copy), region);
    to.MarkAllModified();
}

SquareFn SquareKernel(bool dilate, Connectivity neighbours) {
    if (neighbours == Connectivity::Eight) return dilate ? Choose(kSquare<true, true>) : Choose(kSquare<false, true>);
    return dilate ? Choose(kSquare<true, false>) : Choose(kSquare<false, false>);
}

RectangleFn RectangleKernel(bool dilate) { return dilate ? Choose(kRectangle<true>) : Choose(kRectangle<false>); }

// The window of an erosion; that of a dilation reaches as far the other way.
void ApplyWindow(const BitRows& from, Morphology operation, const MorphologyRectangle& window, BitmapStore& to,
                 const RegionRows& region) {
    const auto reflected = [](const MorphologyWindow& w) { return MorphologyWindow{w.after, w.before}; };
    const Steps steps(operation);
    std::vector<uint8_t> scratch(RectangleScratch(RowsOf(to).usedBytes(), to.height(), window));
    OnRows(from, to, region, steps.count, [&](size_t i, const MorphologyRows& rows) {
        const bool dilate = steps.dilate[i];
        RectangleKernel(dilate)(
            rows, dilate ? MorphologyRectangle{reflected(window.columns), reflected(window.rows)} : window,
            scratch.data());
    });
}

}  // namespace

BitPlane Complement(BitPlane plane) {
    const size_t words = plane.wordsPerRow();
    for (int32_t y = 0; y < plane.height(); ++y) {
        uint64_t* const row = plane.row(y);
        for (size_t i = 0; i < words; ++i) row[i] = ~row[i];
        if (words > 0) row[words - 1] &= plane.lastWordMask();
    }
    return plane;
}

namespace {

// ---- On planes ----

// Joins rows of words with moved ones; bits beyond the last pixel are left to the caller.
class RowJoin {
public:
    explicit RowJoin(size_t words) : words_(static_cast<ptrdiff_t>(words)) {}

    void operator()(uint64_t* to, const uint64_t* from) const { or_(to, from, static_cast<size_t>(words_)); }

    // The pixels of `from`, moved to the right by any distance; those that leave the row are dropped.
    void operator()(uint64_t* to, const uint64_t* from, int64_t right) const {
        const int64_t rest = (right % 64 + 64) % 64;
        const auto skipped = static_cast<ptrdiff_t>((right - rest) / 64);
        if (skipped >= words_ || skipped < -words_) return;
        // Word i takes from words i - skipped and, if pixels cross words, i - skipped - 1.
        const ptrdiff_t first = std::max<ptrdiff_t>(0, skipped), end = std::min(words_, words_ + skipped);
        if (rest == 0) {
            if (first < end) or_(to + first, from + (first - skipped), static_cast<size_t>(end - first));
            return;
        }
        const auto n = static_cast<int>(rest);
        const ptrdiff_t inner = std::max<ptrdiff_t>(0, skipped + 1);
        if (skipped >= 0) to[skipped] |= from[0] >> n;
        if (inner < end) moved_(to + inner, from + (inner - skipped), static_cast<size_t>(end - inner), n);
        if (skipped < 0) to[words_ + skipped] |= from[words_ - 1] << (64 - n);
    }

private:
    ptrdiff_t words_;
    OrWordsFn or_ = Choose(kOrWords);
    OrMovedFn moved_ = Choose(kOrMoved);
};

bool IsClear(const uint64_t* row, size_t words) {
    return std::all_of(row, row + words, [](uint64_t word) { return word == 0; });
}

// Whether the element is symmetric about (0, 0), one run a row, no run longer than one nearer to the middle.
bool IsSymmetricAndConvex(const ElementRuns& runs) {
    if (runs.size() % 2 == 0) return false;
    const auto middle = static_cast<int32_t>(runs.size() / 2);
    for (int32_t i = 0; i <= middle; ++i) {
        const ElementRun& below = runs[static_cast<size_t>(middle + i)];
        const ElementRun& above = runs[static_cast<size_t>(middle - i)];
        if (below.y != i || above != ElementRun{-i, below.start, below.stop} || below.start != -below.stop)
            return false;
        if (i > 0 && below.stop > runs[static_cast<size_t>(middle + i - 1)].stop) return false;
    }
    return true;
}

// Such an element is the union of rectangles: for each length of its rows, as high as there are rows of that length or
// more. From the longest to the shortest, the result so far is widened by what its rows are longer than the next ones
// (windows add up), and joined with the pixels under the height of the next rectangle: for a dilation
//     (((V1 + (w1 - w2)) or V2) + (w2 - w3)) or V3 ...
// where Vk is the dilation by the columns of rectangle k, whose rows have the half length wk.
//
// It is done in tiles with as much around them as the element reaches, so that they stay in the cache.
void ApplyRectangles(const BitRows& from, Morphology operation, const ElementRuns& runs, BitmapStore& to,
                     const RegionRows& region) {
    constexpr int32_t kTileBytes = 512, kTileArea = 1 << 17;
    const size_t middle = runs.size() / 2;
    const int32_t bytes = static_cast<int32_t>(RowsOf(to).usedBytes()), height = to.height();
    const int32_t above = runs.back().y, beside = (runs[middle].stop + 7) / 8;
    const int32_t across = std::min(bytes, std::max(kTileBytes, 2 * beside));
    const auto down =
        static_cast<int32_t>(std::min<int64_t>(height, std::max<int64_t>(kTileArea / across, 2 * int64_t{above})));
    const int32_t mostBytes = std::min(bytes, across + 2 * beside),
                  mostRows = static_cast<int32_t>(std::min<int64_t>(height, down + 2 * int64_t{above}));
    const ptrdiff_t stride = (mostBytes + 63) / 64 * 64;
    const size_t area = static_cast<size_t>(stride) * static_cast<size_t>(mostRows);
    std::vector<uint8_t> tiles(2 * area + 64);
    uint8_t* const wide = tiles.data() + (0 - reinterpret_cast<uintptr_t>(tiles.data())) % 64;
    uint8_t* const high = wide + area;
    std::vector<uint8_t> scratch(RectangleScratch(static_cast<size_t>(mostBytes), mostRows, {{0, 0}, {above, above}}));
    BitmapStore source;
    source.Create(to.width(), height, false);

    const Steps steps(operation);
    OnRows(from, to, region, steps.count, [&](size_t step, const MorphologyRows& rows) {
        const bool dilate = steps.dilate[step];
        const CombineFn join = dilate ? Choose(kCombine<BitLogic::Or>) : Choose(kCombine<BitLogic::And>);
        const RectangleFn rectangle = RectangleKernel(dilate);
        for (int32_t y = 0; y < height; ++y) std::memcpy(source.WriteRow(y), rows.from + y * rows.fromRow, rows.bytes);
        const auto tile = [&](int32_t left, int32_t top, int32_t right, int32_t bottom) {
            const int32_t outerLeft = std::max(0, left - beside), outerRight = std::min(bytes, right + beside);
            const int32_t outerTop = std::max(0, top - above), outerBottom = std::min(height - bottom, above) + bottom;
            MorphologyRows part{wide,
                                stride,
                                wide,
                                stride,
                                outerBottom - outerTop,
                                static_cast<size_t>(outerRight - outerLeft),
                                outerRight == bytes ? rows.lastMask : uint8_t{0xff}};
            for (int32_t y = outerTop; y < outerBottom; ++y)
                std::memcpy(wide + (y - outerTop) * stride, source.Row(y) + outerLeft, part.bytes);
            const size_t used = static_cast<size_t>(stride) * static_cast<size_t>(part.height);
            std::memcpy(high, wide, used);
            MorphologyRows tall = part;
            tall.from = tall.to = high;
            int32_t reached = 0;  // rows above and below that `tall` has seen
            for (size_t i = middle; i < runs.size(); ++i) {
                const int32_t half = runs[i].stop, next = i + 1 < runs.size() ? runs[i + 1].stop : 0;
                if (i + 1 < runs.size() && next == half) continue;
                int32_t higher = runs[i].y - reached;
                const int32_t wider = half - next;
                // Two passes of three rows take less than one of five.
                for (; higher > 0 && higher < 3; --higher) rectangle(tall, {{0, 0}, {1, 1}}, scratch.data());
                if (higher > 0) rectangle(tall, {{0, 0}, {higher, higher}}, scratch.data());
                reached = runs[i].y;
                join(wide, high, used);
                if (wider > 0) rectangle(part, {{wider, wider}, {0, 0}}, scratch.data());
            }
            for (int32_t y = top; y < bottom; ++y)
                std::memcpy(rows.to + y * rows.toRow + left, wide + (y - outerTop) * stride + (left - outerLeft),
                            static_cast<size_t>(right - left));
        };
        for (int32_t top = 0; top < height; top += std::min(down, height - top))
            for (int32_t left = 0; left < bytes; left += std::min(across, bytes - left))
                tile(left, top, std::min(bytes, left + across), std::min(height, top + down));
    });
}

// A diamond of n becomes one of n + k where the pixels k to the left, right, above and below are joined, 2 k <= n + 2:
// a pixel at a distance of more than n then lies k or more columns or rows away, so that one of the four lies between
// and inside the bitmap (a logarithmic decomposition: van den Boomgaard and van Balen 1992).
BitPlane DilatedByDiamond(BitPlane plane, int64_t radius) {
    const size_t words = plane.wordsPerRow();
    const RowJoin join(words);
    BitPlane next = plane;
    radius = std::min(radius, int64_t{plane.width()} + plane.height());
    for (int64_t done = 0; done < radius;) {
        const int64_t step = std::min((done + 2) / 2, radius - done);
        for (int32_t y = 0; y < plane.height(); ++y) {
            uint64_t* const to = next.row(y);
            const uint64_t* const from = plane.row(y);
            std::copy_n(from, words, to);
            join(to, from, step);
            join(to, from, -step);
            to[words - 1] &= plane.lastWordMask();
            if (y >= step) join(to, plane.row(static_cast<int32_t>(y - step)));
            if (y < plane.height() - step) join(to, plane.row(static_cast<int32_t>(y + step)));
        }
        std::swap(plane, next);
        done += step;
    }
    return plane;
}

// Each row of the plane is dilated once by every different run, by doubling, and joined with the rows where that run
// is.
BitPlane DilatedByRuns(const BitPlane& plane, ElementRuns runs) {
    const size_t words = plane.wordsPerRow();
    std::sort(runs.begin(), runs.end(), [](const ElementRun& a, const ElementRun& b) {
        return a.start != b.start ? a.start < b.start : a.stop != b.stop ? a.stop < b.stop : a.y < b.y;
    });
    // For each row: those that a run is joined with, and those that a new run of several pixels takes to be made.
    double rows = static_cast<double>(runs.size());
    for (size_t i = 0; i < runs.size(); ++i) {
        if (i > 0 && runs[i].start == runs[i - 1].start && runs[i].stop == runs[i - 1].stop) continue;
        const auto more = static_cast<uint32_t>(int64_t{runs[i].stop} - runs[i].start);
        if (more > 0) rows += 6 + 4 * std::bit_width(more);
    }
    if (rows * static_cast<double>(plane.height()) * static_cast<double>(words) > kMostElementWork)
        throw MethodFailure("the structuring element has too many runs for a bitmap of this size.");

    BitPlane result(plane.width(), plane.height());
    const RowJoin join(words);
    // Room for pixels to the left of the row that a run brings back.
    const size_t margin = words;
    const RowJoin joinWide(margin + words);
    std::vector<uint64_t> wide(margin + words), next(margin + words);
    for (int32_t y = 0; y < plane.height(); ++y) {
        const uint64_t* const from = plane.row(y);
        if (IsClear(from, words)) continue;
        for (size_t i = 0; i < runs.size();) {
            const int64_t start = runs[i].start, length = int64_t{runs[i].stop} - start + 1;
            const bool alone = length == 1;
            if (!alone) {
                std::fill(next.begin(), next.end(), uint64_t{0});
                std::copy_n(from, words, next.data() + margin);
                std::fill(wide.begin(), wide.end(), uint64_t{0});
                joinWide(wide.data(), next.data(), start);
                for (int64_t done = 1; done < length;) {
                    const int64_t step = std::min(done, length - done);
                    next = wide;
                    joinWide(next.data(), wide.data(), step);
                    wide.swap(next);
                    done += step;
                }
            }
            for (const size_t first = i; i < runs.size() && runs[i].start == start && runs[i].stop == runs[first].stop;
                 ++i) {
                const int64_t to = int64_t{y} + runs[i].y;
                if (to < 0 || to >= plane.height()) continue;
                if (alone)
                    join(result.row(static_cast<int32_t>(to)), from, start);
                else
                    join(result.row(static_cast<int32_t>(to)), wide.data() + margin);
            }
        }
    }
    if (words > 0)
        for (int32_t y = 0; y < plane.height(); ++y) result.row(y)[words - 1] &= plane.lastWordMask();
    return result;
}

// An element that IsSymmetricAndConvex.
void ApplyShrinkingRows(const BitRows& from, Morphology operation, const ElementRuns& runs, BitmapStore& to,
                        const RegionRows& region) {
    std::vector<int32_t> halfWidths;
    for (size_t i = runs.size() / 2; i < runs.size(); ++i) halfWidths.push_back(runs[i].stop);
    size_t rectangles = 1;
    for (size_t i = 1; i < halfWidths.size(); ++i) rectangles += halfWidths[i] != halfWidths[i - 1];
    if (rectangles <= kMostRectangles) return ApplyRectangles(from, operation, runs, to, region);
    BitPlane plane(from);
    for (const bool dilate : Steps(operation))
        plane = dilate ? DilatedByShrinkingRows(plane, halfWidths)
                       : Complement(DilatedByShrinkingRows(Complement(std::move(plane)), halfWidths));
    Store(plane, to, region);
}

void ApplyRuns(const BitRows& from, Morphology operation, const ElementRuns& runs, BitmapStore& to,
               const RegionRows& region) {
    if (to.height() == 0) return;
    if (IsSymmetricAndConvex(runs)) return ApplyShrinkingRows(from, operation, runs, to, region);
    BitPlane plane(from);
    for (const bool dilate : Steps(operation)) plane = dilate ? Dilated(plane, runs) : Eroded(plane, runs);
    Store(plane, to, region);
}

}  // namespace

BitPlane Dilated(const BitPlane& plane, const ElementRuns& runs) {
    if (plane.wordsPerRow() == 0 || runs.empty()) return BitPlane(plane.width(), plane.height());
    return DilatedByRuns(plane, runs);
}

// What is not set, dilated by the reflected element, is removed.
BitPlane Eroded(const BitPlane& plane, const ElementRuns& runs) {
    return Complement(Dilated(Complement(plane), Reflected(runs)));
}

void ApplySquare(const BitRows& from, Morphology operation, Connectivity neighbours, int32_t times, BitmapStore& to,
                 const RegionRows& region) {
    if (to.height() == 0) return;
    const auto count = static_cast<size_t>(std::max(times, 0));
    // A pass takes less than half of a rectangle, and a twentieth of a diamond.
    const int32_t mostPasses = neighbours == Connectivity::Eight ? 2 : 20;
    if (times <= mostPasses) {
        const Steps steps(operation);
        std::vector<uint8_t> scratch(3 * RowsOf(to).usedBytes());
        return OnRows(from, to, region, steps.count * count, [&](size_t i, const MorphologyRows& rows) {
            SquareKernel(steps.dilate[i / count], neighbours)(rows, scratch.data());
        });
    }
    if (neighbours == Connectivity::Eight) {
        const int32_t across = std::min(times, to.width() - 1), down = std::min(times, to.height() - 1);
        return ApplyWindow(from, operation, {{across, across}, {down, down}}, to, region);
    }
    BitPlane plane(from);
    for (const bool dilate : Steps(operation))
        plane = dilate ? DilatedByDiamond(std::move(plane), times)
                       : Complement(DilatedByDiamond(Complement(std::move(plane)), times));
    Store(plane, to, region);
}

void ApplyRectangle(const BitRows& from, Morphology operation, int32_t width, int32_t height, BitmapStore& to,
                    const RegionRows& region) {
    if (to.height() == 0) return;
    if (width == height && (width == 3 || width == 5))
        return ApplySquare(from, operation, Connectivity::Eight, width / 2, to, region);
    const auto window = [](int32_t length, int32_t size) {
        return MorphologyWindow{std::min((length - 1) / 2, size - 1), std::min(length / 2, size - 1)};
    };
    ApplyWindow(from, operation, {window(width, to.width()), window(height, to.height())}, to, region);
}

void ApplyDisk(const BitRows& from, Morphology operation, double radius, BitmapStore& to, const RegionRows& region) {
    ApplyRuns(from, operation, RunsOfDisk(radius, to.width(), to.height()), to, region);
}

void ApplyElement(const BitRows& from, Morphology operation, std::span<const SElement> elements, BitmapStore& to,
                  const RegionRows& region) {
    ApplyRuns(from, operation, RunsOf(elements, to.width(), to.height()), to, region);
}

}  // namespace orlix
