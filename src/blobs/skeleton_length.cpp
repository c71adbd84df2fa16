#include "blobs/skeleton_length.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <optional>
#include <span>
#include <tuple>
#include <utility>

#include "binary/bit_plane.hpp"
#include "binary/thinning.hpp"

namespace orlix {
namespace {

struct Step {
    int32_t x;
    int32_t y;
};
// Straight steps are even. The opposite of step i is (i + 4) % 8.
constexpr std::array<Step, 8> kSteps = {{{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}}};

// For each 3x3 neighbourhood (256 NW + 128 N + 64 NE + 32 W + 16 C + 8 E + 4 SW + 2 S + 1 SE) the links of its middle,
// bit i for step i: to each neighbour, to a diagonal one only if no straight step leads half of the way there.
constexpr std::array<uint8_t, 512> kLinks = [] {
    std::array<uint8_t, 512> links = {};
    constexpr std::array<uint32_t, 8> kBit = {3, 0, 1, 2, 5, 8, 7, 6};
    for (uint32_t around = 0; around < 512; ++around) {
        const auto has = [&](uint32_t step) { return (around >> kBit[step % 8] & 1) != 0; };
        for (uint32_t i = 0; i < 8; ++i)
            if (has(i) && (i % 2 == 0 || (!has(i - 1) && !has(i + 1))))
                links[around] = static_cast<uint8_t>(links[around] | 1U << i);
    }
    return links;
}();

// The bits of pixels x - 1, x and x + 1, which are in the row.
uint32_t Three(const uint64_t* row, int32_t x) {
    const auto first = static_cast<size_t>(x) - 1;
    const uint64_t word = row[first / 64] << first % 64;
    return static_cast<uint32_t>((first % 64 > 61 ? word | row[first / 64 + 1] >> (64 - first % 64) : word) >> 61);
}

struct Pixel {
    int32_t x;
    int32_t y;
    friend bool operator==(const Pixel&, const Pixel&) = default;
    Pixel After(uint32_t step) const { return {x + kSteps[step].x, y + kSteps[step].y}; }
};

// The length of a chain of pixels whose positions are replaced by the mean (1 2 1) / 4 with those of their neighbours,
// four times over. The first and the last stay, each time. Positions are whole numbers: 4 times larger after each pass.
class SmoothedLength {
public:
    SmoothedLength(double sx, double sy) : sx_(sx), sy_(sy) {}

    void Add(const Pixel& pixel) { Add({pixel.x, pixel.y}, 0); }
    // After the last pixel.
    void Finish() {
        for (size_t pass = 0; pass < kPasses; ++pass)
            if (passes_[pass].count > 1) Add(passes_[pass].at.Times(4), pass + 1);
    }
    // Forgets the steps so far: what comes is counted from the last smoothed position on.
    void Restart() { length_ = 0; }
    double length() const { return length_ / 256; }

    static constexpr size_t kPasses = 4;

private:
    struct Position {
        int64_t x = 0;
        int64_t y = 0;
        Position Times(int64_t factor) const { return {x * factor, y * factor}; }
    };
    struct Pass {
        Position before, at;
        int count = 0;  // of positions so far; stops at 2
    };

    void Add(const Position& next, size_t pass) {
        if (pass == kPasses) {
            if (last_) {
                const double dx = static_cast<double>(next.x - last_->x) * sx_;
                const double dy = static_cast<double>(next.y - last_->y) * sy_;
                length_ += std::sqrt(dx * dx + dy * dy);
            }
            last_ = next;
            return;
        }
        Pass& state = passes_[pass];
        if (state.count == 0) Add(next.Times(4), pass + 1);
        if (state.count > 1)
            Add({state.before.x + 2 * state.at.x + next.x, state.before.y + 2 * state.at.y + next.y}, pass + 1);
        state.before = state.at;
        state.at = next;
        state.count = std::min(state.count + 1, 2);
    }

    double sx_, sy_;
    std::array<Pass, kPasses> passes_;
    std::optional<Position> last_;
    double length_ = 0;
};

// Components that do not touch, not even at corners, and their skeletons, in a part of the image with a ring of
// background around it.
class SkeletonPlane {
public:
    // The part begins at pixel (left, top).
    SkeletonPlane(int32_t left, int32_t top, int32_t width, int32_t height)
        : left_(left - 1), top_(top - 1), area_(width + 2, height + 2) {}

    void Add(std::span<const LabelledRun> runs) {
        for (const LabelledRun& run : runs) SetRun(area_.row(run.row - top_), {run.start - left_, run.stop - left_});
    }
    // After the last one.
    void Thin() { skeleton_ = Skeleton(area_, Connectivity::Eight); }

    // Of the component with these runs. A skeleton is connected: it is one pixel, or a ring, or all of its pixels lie
    // on branches between nodes, the pixels that are not linked to two others.
    double Length(std::span<const LabelledRun> runs, double sx, double sy) const;

private:
    struct Branch {
        size_t links;
        Pixel last;     // a node
        uint32_t back;  // the step from there
    };

    uint32_t Links(const Pixel& p) const {
        const auto row = [&](int32_t y) { return Three(skeleton_.row(y), p.x); };
        return kLinks[row(p.y - 1) << 6 | row(p.y) << 3 | row(p.y + 1)];
    }
    // The step that leads on from a pixel with two links, after `step`.
    static uint32_t Onward(uint32_t links, uint32_t step) {
        return static_cast<uint32_t>(std::countr_zero(links & ~(1U << (step + 4) % 8)));
    }
    Branch Walk(Pixel node, uint32_t step) const;
    double Length(Pixel node, uint32_t step, size_t links, double sx, double sy) const;
    double Ring(const Pixel& first, double sx, double sy) const;
    double Chords(const Pixel& pixel, double sx, double sy) const;
    double Extension(const Pixel& end, double sx, double sy) const;

    int32_t left_, top_;
    BitPlane area_, skeleton_;
};

double SkeletonPlane::Length(std::span<const LabelledRun> runs, double sx, double sy) const {
    double length = 0;
    std::optional<Pixel> first, node;
    for (const LabelledRun& run : runs) {
        const int32_t y = run.row - top_;
        const uint64_t* row = skeleton_.row(y);
        const auto begin = static_cast<size_t>(run.start - left_), end = static_cast<size_t>(run.stop - left_) + 1;
        for (size_t word = begin / 64; word <= (end - 1) / 64; ++word) {
            uint64_t pixels = row[word];
            if (word == begin / 64) pixels &= ~uint64_t{0} >> begin % 64;
            if (word == (end - 1) / 64) pixels &= ~uint64_t{0} << (63 - (end - 1) % 64);
            for (; pixels != 0; pixels &= ~(uint64_t{1} << (63 - std::countl_zero(pixels)))) {
                const Pixel pixel = {static_cast<int32_t>(64 * word) + std::countl_zero(pixels), y};
                if (!first) first = pixel;
                const uint32_t links = Links(pixel);
                if (links == 0) return Chords(pixel, sx, sy);
                if (std::popcount(links) == 2) continue;
                const bool isEnd = std::popcount(links) == 1;
                if (isEnd) length += Extension(pixel, sx, sy);
                for (uint32_t step = 0; step < 8; ++step) {
                    if ((links >> step & 1) == 0) continue;
                    const Branch branch = Walk(pixel, step);
                    // Each branch is found from either end, and counted once.
                    const auto order = [](const Pixel& p, uint32_t s) { return std::tuple(p.y, p.x, s); };
                    if (order(pixel, step) < order(branch.last, branch.back))
                        length += Length(pixel, step, branch.links, sx, sy);
                    // A line is all of its skeleton.
                    if (isEnd && std::popcount(Links(branch.last)) == 1) return length + Extension(branch.last, sx, sy);
                }
                node = pixel;
            }
        }
    }
    return node ? length : Ring(*first, sx, sy);
}

SkeletonPlane::Branch SkeletonPlane::Walk(Pixel node, uint32_t step) const {
    for (size_t walked = 1;; ++walked) {
        node = node.After(step);
        const uint32_t links = Links(node);
        if (std::popcount(links) != 2) return {walked, node, (step + 4) % 8};
        step = Onward(links, step);
    }
}

double SkeletonPlane::Length(Pixel node, uint32_t step, size_t links, double sx, double sy) const {
    SmoothedLength length(sx, sy);
    length.Add(node);
    for (; links > 1; --links) {
        node = node.After(step);
        step = Onward(Links(node), step);
        length.Add(node);
    }
    length.Add(node.After(step));
    length.Finish();
    return length.length();
}

// Smoothing has no ends here: positions count from the one on that no longer depends on where the walk began, once
// around.
double SkeletonPlane::Ring(const Pixel& first, double sx, double sy) const {
    SmoothedLength length(sx, sy);
    auto step = static_cast<uint32_t>(std::countr_zero(Links(first)));
    Pixel pixel = first;
    length.Add(pixel);
    const auto go = [&] {
        pixel = pixel.After(step);
        step = Onward(Links(pixel), step);
        length.Add(pixel);
    };
    size_t around = 0;
    do {
        go();
        if (++around == 2 * SmoothedLength::kPasses) length.Restart();
    } while (pixel != first);
    for (size_t i = 0; i < 2 * SmoothedLength::kPasses; ++i) {
        go();
        if (++around == 2 * SmoothedLength::kPasses) length.Restart();
    }
    return length.length();
}

// The mean of the horizontal and the vertical chord through a pixel.
double SkeletonPlane::Chords(const Pixel& pixel, double sx, double sy) const {
    const auto along = [&](uint32_t step) {
        int32_t pixels = 0;
        for (Pixel p = pixel; area_.bit(p.x, p.y); p = p.After(step)) ++pixels;
        return pixels;
    };
    return ((along(0) + along(4) - 1) * sx + (along(2) + along(6) - 1) * sy) / 2;
}

// From the centre of an end to the edge of the area, on the straight line to it from the pixel four links back.
double SkeletonPlane::Extension(const Pixel& end, double sx, double sy) const {
    Pixel back = end;
    uint32_t links = Links(end);
    uint32_t step = static_cast<uint32_t>(std::countr_zero(links));
    for (int i = 0; i < 4; ++i) {
        back = back.After(step);
        links = Links(back);
        if (std::popcount(links) != 2) break;
        step = Onward(links, step);
    }
    const int64_t dx = int64_t{end.x} - back.x, dy = int64_t{end.y} - back.y;
    const int64_t ax = std::abs(dx), ay = std::abs(dy);
    // In units of the way from `back` to the end, the line leaves the column of pixels that is k columns ahead of the
    // end at (2 k + 1) / (2 ax); rows alike. Through a corner it enters the pixel opposite.
    int64_t column = 1, row = 1;  // 2 k + 1
    for (Pixel p = end;;) {
        const int64_t x = column * ay, y = row * ax;
        const double share = x <= y ? static_cast<double>(column) / static_cast<double>(2 * ax)
                                    : static_cast<double>(row) / static_cast<double>(2 * ay);
        if (x <= y) p.x += dx > 0 ? 1 : -1, column += 2;
        if (y <= x) p.y += dy > 0 ? 1 : -1, row += 2;
        if (area_.bit(p.x, p.y)) continue;
        const double lx = static_cast<double>(dx) * sx, ly = static_cast<double>(dy) * sy;
        return share * std::sqrt(lx * lx + ly * ly);
    }
}

// Classes of components of which no two touch at a corner (and so none at all).
std::vector<uint32_t> Classes(const Components& components) {
    std::vector<uint32_t> classes(components.count());
    if (components.connectivity() == Connectivity::Eight) return classes;
    // Pairs of a component and an earlier one.
    std::vector<std::pair<uint32_t, uint32_t>> touching;
    for (int32_t y = 0; y + 1 < components.height(); ++y) {
        const std::span<const uint32_t> above = components.row(y), below = components.row(y + 1);
        for (size_t i = 0, j = 0; i < above.size() && j < below.size();) {
            const LabelledRun &a = components.runs()[above[i]], &b = components.runs()[below[j]];
            if (a.label != b.label && (a.stop + 1 == b.start || b.stop + 1 == a.start))
                touching.emplace_back(std::max(a.label, b.label), std::min(a.label, b.label));
            if (a.stop < b.stop)
                ++i;
            else
                ++j;
        }
    }
    std::sort(touching.begin(), touching.end());
    std::vector<uint32_t> taken;
    for (size_t i = 0; i < touching.size();) {
        const uint32_t label = touching[i].first;
        taken.clear();
        for (; i < touching.size() && touching[i].first == label; ++i) taken.push_back(classes[touching[i].second]);
        std::sort(taken.begin(), taken.end());
        for (const uint32_t other : taken)
            if (other == classes[label]) ++classes[label];
    }
    return classes;
}

}  // namespace

double SkeletonRuler::Length(uint32_t label) {
    if (!all_.empty()) return all_[label];
    const std::span<const LabelledRun> runs = components_.runs(label);
    int32_t left = runs[0].start, right = runs[0].stop;
    for (const LabelledRun& run : runs) {
        left = std::min(left, run.start);
        right = std::max(right, run.stop);
    }
    const int32_t top = runs.front().row;
    if (std::max(components_.width(), components_.height()) > INT32_MAX - 2) throw std::bad_alloc();
    const int32_t width = right - left + 1, height = runs.back().row - top + 1;
    const auto cells = [](int32_t columns, int32_t rows) {
        return static_cast<uint64_t>(columns) * static_cast<uint64_t>(rows);
    };
    const uint64_t all = cells(components_.width(), components_.height());
    cells_ += cells(width, height);
    if (cells_ <= all && cells(width, height) <= all / 4) {
        SkeletonPlane plane(left, top, width, height);
        plane.Add(runs);
        plane.Thin();
        return plane.Length(runs, sx_, sy_);
    }
    const std::vector<uint32_t> classes = Classes(components_);
    std::vector<double> lengths(components_.count());
    const uint32_t last = *std::max_element(classes.begin(), classes.end());
    for (uint32_t c = 0; c <= last; ++c) {
        SkeletonPlane plane(0, 0, components_.width(), components_.height());
        for (uint32_t i = 0; i < components_.count(); ++i)
            if (classes[i] == c) plane.Add(components_.runs(i));
        plane.Thin();
        for (uint32_t i = 0; i < components_.count(); ++i)
            if (classes[i] == c) lengths[i] = plane.Length(components_.runs(i), sx_, sy_);
    }
    all_ = std::move(lengths);
    return all_[label];
}

}  // namespace orlix
