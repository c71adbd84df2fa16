// Outlines of components, from their runs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "binary/connectivity.hpp"
#include "blobs/labelling.hpp"
#include "numerics/plane.hpp"

namespace orlix {

// The edges between the pixels of one component and all other pixels, as closed paths: the outer one first, then one
// for each hole in raster order of the holes' first pixels. Coordinates are those of pixel corners: (x, y) stands for
// the upper left corner of pixel (x, y), which is the point (x - 0.5, y - 0.5).
//
// Seen along a path the component lies on the right: with y downwards the outer path runs clockwise, those around holes
// run counter-clockwise. Where two pixels touch at a corner only, paths of an 8-connected component pass from one to
// the other; those of a 4-connected component do not. So there is one path for each hole and one more, and a path may
// touch itself at a corner, but never crosses itself.
class PixelPaths {
public:
    // The memory is used again by the next trace. Linear in the number of runs.
    void Trace(std::span<const LabelledRun> runs, Connectivity connectivity);

    struct Corner {
        int32_t x, y;
        friend bool operator==(const Corner&, const Corner&) = default;
    };
    size_t count() const { return ends_.size() - 1; }
    // The corners of path 0 <= i < count(): edges from each to the next, and from the last to the first, are vertical
    // and horizontal by turns. The first corner is the upper left one of the first pixel (of the component or the hole)
    // in raster order; from there an outer path runs to the right, the path around a hole downwards.
    std::span<const Corner> path(size_t i) const { return {corners_.data() + ends_[i], ends_[i + 1] - ends_[i]}; }

private:
    void LinkRows(std::span<const LabelledRun> runs, size_t above, size_t row, size_t end, bool eight);

    std::vector<uint32_t> next_;  // the side of a run that follows each side: 2 i left, 2 i + 1 right
    std::vector<Corner> corners_;
    std::vector<size_t> ends_;
};

// Steps between the centres of neighbouring pixels that a path passes on its right, from the pixel at its first corner
// on: 0 to the right, 2 down, 4 to the left, 6 up, odd numbers for the diagonals in between. Straight on along an edge,
// a path steps to the next pixel; at a right turn it stays with its pixel; at a left turn it steps diagonally, in
// chains of 4-connected components by way of the pixel in the corner. visit(direction, steps) is called for stretches
// of equal steps; adjacent calls may have the same direction.
template <class Visit>
void ForEachChainStep(std::span<const PixelPaths::Corner> path, Connectivity connectivity, const Visit& visit) {
    const size_t n = path.size();
    const auto direction = [&](size_t i) {
        const PixelPaths::Corner &a = path[i % n], &b = path[(i + 1) % n];
        return b.x > a.x ? 0 : b.y > a.y ? 2 : b.x < a.x ? 4 : 6;
    };
    for (size_t i = 0; i < n; ++i) {
        const PixelPaths::Corner &a = path[i], &b = path[(i + 1) % n];
        const int along = direction(i), turned = direction(i + 1);
        const int64_t length = a.y == b.y ? int64_t{b.x} - a.x : int64_t{b.y} - a.y;
        const int64_t steps = (length < 0 ? -length : length) - 1;
        if (steps > 0) visit(along, steps);
        if (turned == (along + 2) % 8) continue;
        if (connectivity == Connectivity::Eight) {
            visit((along + 7) % 8, int64_t{1});
        } else {
            visit(along, int64_t{1});
            visit(turned, int64_t{1});
        }
    }
}

// The kinds of outlines. Both run clockwise around the component and counter-clockwise around holes, with y downwards.
enum class OutlineKind {
    // Along the edges of the pixels: corners at x.5, no two edges in one line. Its area is that of the pixels.
    PixelEdges,
    // Through the centres of the pixels at the border: all pixels of the chain, in the connectivity of the component. A
    // pixel is passed as often as the border comes by: a line one pixel wide is followed there and back, and a single
    // pixel is one vertex. Around a hole the chain runs through the pixels of the component that surround it.
    PixelCentres,
};

struct Outlines {
    std::vector<Point> outer;
    std::vector<std::vector<Point>> holes;  // in raster order of their first pixels
};
Outlines OutlinesOf(std::span<const LabelledRun> runs, Connectivity connectivity, OutlineKind kind);

}  // namespace orlix
