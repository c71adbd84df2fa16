#include "blobs/inscribed_circle.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>

namespace orlix {
namespace {

// Distances are taken on a grid of half pixels, where pixel (x, y) has its centre at (2 x, 2 y) and its square covers
// the 3 x 3 points around it. The point of a square that is nearest to a point of the grid belongs to the grid, so the
// distance to the squares of other pixels is that to the grid points that they cover; and in a row of the grid, between
// two such points, only those above and below in the same columns matter besides the two.
//
// For each pixel: how many rows up and down to the first pixel that is not of the component.
class Heights {
public:
    Heights(const BlobRows& rows, int64_t pixels, std::vector<uint32_t>& memory) : rows_(rows), values_(memory) {
        if (static_cast<uint64_t>(pixels) > std::numeric_limits<size_t>::max() / 16) throw std::bad_alloc();
        values_.assign(2 * static_cast<size_t>(pixels), 1);
        starts_.reserve(rows.runs().size());
        size_t start = 0;
        for (const LabelledRun& run : rows.runs()) {
            starts_.push_back(start);
            start += static_cast<size_t>(run.length());
        }
        down_ = values_.data() + pixels;
        for (size_t i = 1; i < rows.count(); ++i) Continue(i - 1, i, values_.data());
        for (size_t i = rows.count() - 1; i > 0; --i) Continue(i, i - 1, down_);
    }

    // Of the first pixel of a run; those of the others follow.
    const uint32_t* Up(const LabelledRun& run) const { return values_.data() + StartOf(run); }
    const uint32_t* Down(const LabelledRun& run) const { return down_ + StartOf(run); }

private:
    size_t StartOf(const LabelledRun& run) const { return starts_[static_cast<size_t>(&run - rows_.runs().data())]; }

    void Continue(size_t from, size_t to, uint32_t* values) {
        ForEachOverlap(rows_[from], rows_[to], 0, 0, [&](const LabelledRun& a, const LabelledRun& b) {
            const int32_t start = std::max(a.start, b.start), stop = std::min(a.stop, b.stop);
            const uint32_t* source = values + StartOf(a) + (start - a.start);
            uint32_t* target = values + StartOf(b) + (start - b.start);
            for (int32_t x = start; x <= stop; ++x) *target++ = *source++ + 1;
        });
    }

    const BlobRows& rows_;
    std::vector<uint32_t>& values_;
    uint32_t* down_;
    std::vector<size_t> starts_;
};

// Points of a row of the grid that the component covers all around: those from 2 start to 2 stop in row y.
struct Stretch {
    int32_t start, stop;
    int64_t y;                         // on the grid, from that of the component's first row
    const LabelledRun *above, *below;  // the same run in rows of pixels
    double bound;                      // no circle about its points has a larger radius
};

}  // namespace

InscribedCircle FindInscribedCircle(const BlobRows& rows, int64_t pixels, double ratio, std::vector<uint32_t>& memory) {
    const Heights heights(rows, pixels, memory);
    // Rows on the grid from a point, at a pixel column, to the first point that is covered from outside.
    const auto heightAt = [&](const Stretch& s, int32_t x) {
        const uint32_t up = heights.Up(*s.above)[x - s.above->start], down = heights.Down(*s.below)[x - s.below->start];
        return 2 * int64_t{std::min(up, down)} - (s.above == s.below ? 1 : 0);
    };

    std::vector<Stretch> stretches;
    const auto add = [&](const LabelledRun& a, const LabelledRun& b, int64_t y) {
        Stretch s = {std::max(a.start, b.start), std::min(a.stop, b.stop), y, &a, &b, 0};
        int64_t highest = 0;
        for (int32_t x = s.start; x <= s.stop; ++x) highest = std::max(highest, heightAt(s, x));
        s.bound = std::min(static_cast<double>(int64_t{s.stop} - s.start) + 1, ratio * static_cast<double>(highest));
        stretches.push_back(s);
    };
    for (size_t i = 0; i < rows.count(); ++i) {
        const auto y = 2 * static_cast<int64_t>(i);
        for (const LabelledRun& run : rows[i]) add(run, run, y);
        if (i + 1 < rows.count())
            ForEachOverlap(rows[i], rows[i + 1], 0, 0,
                           [&](const LabelledRun& a, const LabelledRun& b) { add(a, b, y + 1); });
    }
    std::stable_sort(stretches.begin(), stretches.end(),
                     [](const Stretch& a, const Stretch& b) { return a.bound > b.bound; });

    double best = -1;  // square of the radius
    int64_t bestX = 0;
    int64_t bestY = 0;
    // The parabolas (x - column)^2 + square that are lowest somewhere, from left to right
    // (P. F. Felzenszwalb and D. P. Huttenlocher, 2012).
    struct Parabola {
        double column, square;
        double from;  // where it becomes the lowest
    };
    std::vector<Parabola> lowest;
    for (const Stretch& s : stretches) {
        if (!(s.bound * s.bound >= best)) break;
        lowest.clear();
        const auto lower = [&](double column, double square) {
            double from = -std::numeric_limits<double>::infinity();
            while (!lowest.empty()) {
                const Parabola& p = lowest.back();
                from = ((square + column * column) - (p.square + p.column * p.column)) / (2 * (column - p.column));
                if (from > p.from) break;
                lowest.pop_back();
            }
            if (lowest.empty()) from = -std::numeric_limits<double>::infinity();
            lowest.push_back({column, square, from});
        };
        // Columns count from the point left of the stretch, which is covered from outside, as that on the right is.
        const int64_t points = 2 * (int64_t{s.stop} - s.start) + 1;
        lower(0, 0);
        int64_t last = 0;
        for (int64_t i = 1; i <= points; ++i) {
            // Between two columns of pixels the nearer of their ends counts.
            const int64_t here = i % 2 != 0 ? heightAt(s, static_cast<int32_t>(s.start + i / 2)) : 0;
            const int64_t height =
                i % 2 != 0 ? here : std::min(last, heightAt(s, static_cast<int32_t>(s.start + i / 2)));
            if (i % 2 != 0) last = here;
            lower(static_cast<double>(i), ratio * static_cast<double>(height) * (ratio * static_cast<double>(height)));
        }
        lower(static_cast<double>(points + 1), 0);
        size_t k = 0;
        for (int64_t i = 1; i <= points; ++i) {
            const auto x = static_cast<double>(i);
            while (k + 1 < lowest.size() && lowest[k + 1].from <= x) ++k;
            const double square = (x - lowest[k].column) * (x - lowest[k].column) + lowest[k].square;
            const int64_t column = 2 * int64_t{s.start} - 1 + i;
            if (square > best || (square == best && (s.y < bestY || (s.y == bestY && column < bestX)))) {
                best = square;
                bestX = column;
                bestY = s.y;
            }
        }
    }
    return {{static_cast<double>(bestX) / 2, rows.top() + static_cast<double>(bestY) / 2},
            std::sqrt(std::max(best, 0.0)) / 2};
}

}  // namespace orlix
