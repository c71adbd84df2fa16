// Polygon simplification within a tolerance.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

#include "geometry/outline.hpp"

namespace orlix {
namespace {

double DistanceTo(const Edge& edge, const Point& p) {
    const auto& [a, b, x, y, square, scale] = edge;
    const double along = (p.x - a.x) * x + (p.y - a.y) * y;
    if (!(along > 0)) return Distance(p, a);
    if (along >= square) return Distance(p, b);
    if (Turn(a, b, p) == 0) return 0;
    return std::fabs((p.x - a.x) * y - (p.y - a.y) * x) / Hypotenuse(x, y);
}

// Finds the vertex of a range that is farthest from an edge. Testing every vertex can take time quadratic in their
// number, since a step may separate only one vertex from the rest: once that shows, ranges are searched in boxes. The
// distance from an edge is a convex function: no point of a box is farther than its farthest corner.
class FarthestFromEdge {
public:
    explicit FarthestFromEdge(Outline outline)
        : outline_(outline), kernels_(*Choose(kOutlineKernels)), tests_(kTests * outline.size()) {}

    // The first of the farthest vertices first <= i < end that are farther than the tolerance; `end` when there is
    // none.
    uint32_t Find(uint32_t first, uint32_t end, const Edge& edge, double tolerance) {
        if (end - first > tests_) return FindInBoxes(first, end, edge, tolerance);
        tests_ -= end - first;
        return FindByTesting(first, end, edge, tolerance);
    }

private:
    static constexpr uint32_t kLeaf = 16, kBlock = 32;
    static constexpr size_t kTests = 64;  // of each vertex, about twice those of vertices at random

    struct Farthest {
        uint32_t index;
        double distance;
        void Take(uint32_t i, double d) {
            if (d > distance) *this = {i, d};
        }
    };

    // Rough squares first. Only vertices within rounding of the largest one are measured, and a single one of them only
    // if it may lie within the tolerance.
    uint32_t FindByTesting(uint32_t first, uint32_t end, const Edge& edge, double tolerance) {
        constexpr double kMore = 1 + 1e-14, kLess = 1 - 1e-14;
        double squares[kBlock], largest = 0;
        if (end - first <= kBlock) {
            largest = kernels_.roughSquares(outline_.data() + first, end - first, edge, squares);
        } else {
            blocks_.clear();
            for (uint32_t i = first; i < end; i += kBlock) {
                blocks_.push_back(kernels_.roughSquares(outline_.data() + i, std::min(kBlock, end - i), edge, squares));
                largest = std::max(largest, blocks_.back());
            }
        }
        const double square = tolerance * tolerance * edge.scale;
        const bool isRough = edge.scale > 1e-140 && largest < std::numeric_limits<double>::max();
        if (isRough && largest <= 1e-280 && tolerance > 1e-60) return end;
        if (isRough && largest > 1e-280 && largest > 1e-280 * edge.scale) {
            if (largest * kMore < square) return end;
            const double least = largest * kLess;
            const auto forCandidates = [&](const auto& visit) {
                for (uint32_t from = first; from < end; from += kBlock) {
                    const uint32_t count = std::min(kBlock, end - from);
                    if (end - first > kBlock) {
                        if (blocks_[(from - first) / kBlock] < least) continue;
                        kernels_.roughSquares(outline_.data() + from, count, edge, squares);
                    }
                    for (uint32_t i = 0; i < count; ++i) visit(from + i, squares[i] >= least);
                }
            };
            uint32_t candidates = 0, last = end;
            forCandidates([&](uint32_t i, bool isOne) {
                candidates += isOne;
                last = isOne ? i : last;
            });
            const bool isOff =
                largest > 1e-24 * edge.scale * edge.scale;  // the line, by more than the rounding of Turn()
            if (isOff && candidates == 1 && least > square) return last;
            Farthest farthest = {end, 0};
            forCandidates([&](uint32_t i, bool isOne) {
                if (isOne) farthest.Take(i, DistanceTo(edge, outline_[i]));
            });
            // Unless the roughly farthest vertices turned out to lie on the line, all others are nearer.
            if (farthest.distance * farthest.distance * edge.scale > largest * (1 - 0.8e-14))
                return farthest.distance > tolerance ? farthest.index : end;
        }
        Farthest farthest = {end, tolerance};
        for (uint32_t i = first; i < end; ++i) farthest.Take(i, DistanceTo(edge, outline_[i]));
        return farthest.index;
    }

    uint32_t FindInBoxes(uint32_t first, uint32_t end, const Edge& edge, double tolerance) {
        const Row all = {1, 0, static_cast<uint32_t>(outline_.size())};
        if (boxes_.empty()) {
            size_t leaves = 1;
            while (leaves * kLeaf < outline_.size()) leaves *= 2;
            boxes_.resize(2 * leaves);
            Build(all);
        }
        edge_ = &edge;
        first_ = first;
        end_ = end;
        farthest_ = {end, tolerance};
        // An estimate close to the largest distance, so that vertices clearly nearer need not be tested.
        atLeast_ = end - first > kLeaf ? Probe(all) : 0;
        Search(all);
        return farthest_.index;
    }

    struct Row {
        size_t node;
        uint32_t first, end;
        bool IsLeaf() const { return end - first <= kLeaf; }
        Row Half(int k) const {
            const uint32_t middle = first + (end - first) / 2;
            return k == 0 ? Row{2 * node, first, middle} : Row{2 * node + 1, middle, end};
        }
    };

    void Build(const Row& row) {
        Bounds& box = boxes_[row.node];
        if (row.IsLeaf()) {
            box = BoundsOf(outline_.subspan(row.first, row.end - row.first));
            return;
        }
        Build(row.Half(0));
        Build(row.Half(1));
        const Bounds &one = boxes_[2 * row.node], &other = boxes_[2 * row.node + 1];
        box = {std::min(one.left, other.left), std::min(one.top, other.top), std::max(one.right, other.right),
               std::max(one.bottom, other.bottom)};
    }

    bool Meets(const Row& row) const { return row.first < end_ && row.end > first_; }

    // Upper bound for the computed distances of the range's vertices.
    double Bound(const Row& row) const {
        const Bounds& box = boxes_[row.node];
        double most = 0, reach = 0;
        for (const double x : {box.left, box.right})
            for (const double y : {box.top, box.bottom}) {
                most = std::max(most, DistanceTo(*edge_, {x, y}));
                const Point &a = edge_->a, &b = edge_->b;
                reach =
                    std::max({reach, std::fabs(x - a.x), std::fabs(y - a.y), std::fabs(x - b.x), std::fabs(y - b.y)});
            }
        // Rounding errors, of products that cancel and below the normal numbers.
        return most + 1e-14 * reach + 1e-140;
    }

    double Probe(Row row) const {
        while (!row.IsLeaf()) {
            const Row one = row.Half(0), other = row.Half(1);
            row = !Meets(other) || (Meets(one) && Bound(one) >= Bound(other)) ? one : other;
        }
        double most = 0;
        for (uint32_t i = std::max(row.first, first_); i < std::min(row.end, end_); ++i)
            most = std::max(most, DistanceTo(*edge_, outline_[i]));
        return most;
    }

    void Search(const Row& row) {
        if (!Meets(row)) return;
        if (row.IsLeaf()) {
            for (uint32_t i = std::max(row.first, first_); i < std::min(row.end, end_); ++i)
                farthest_.Take(i, DistanceTo(*edge_, outline_[i]));
            return;
        }
        if (const double bound = Bound(row); bound <= farthest_.distance || bound < atLeast_) return;
        Search(row.Half(0));
        Search(row.Half(1));
    }

    Outline outline_;
    const OutlineKernels& kernels_;
    size_t tests_;                // left before boxes are used
    std::vector<double> blocks_;  // the largest rough square of each block
    std::vector<Bounds> boxes_;
    const Edge* edge_ = nullptr;
    uint32_t first_ = 0, end_ = 0;
    Farthest farthest_ = {};
    double atLeast_ = 0;
};

// Coordinates in a power-of-two unit in which no product overflows and none of the larger coordinates vanishes; empty
// where they do so as given. largest: the largest absolute coordinate.
std::vector<Point> Scaled(Outline outline, double largest, double& tolerance) {
    const int exponent = largest > 0 ? std::ilogb(largest) : 0;
    if (exponent > -400 && exponent < 400) return {};
    std::vector<Point> scaled;
    scaled.reserve(outline.size());
    for (const Point& p : outline) scaled.push_back({std::ldexp(p.x, -exponent), std::ldexp(p.y, -exponent)});
    tolerance = std::ldexp(tolerance, -exponent);
    return scaled;
}

}  // namespace

std::vector<uint32_t> Simplify(Outline given, double tolerance) {
    const auto n = static_cast<uint32_t>(given.size());
    const Bounds bounds = BoundsOf(given);
    bool isNumber = true;
    for (const Point& p : given) isNumber &= (p.x == p.x) & (p.y == p.y);
    const double largest = std::max({-bounds.left, -bounds.top, bounds.right, bounds.bottom});
    if (n < 3 || !isNumber || !std::isfinite(largest) || !(tolerance >= 0)) {
        std::vector<uint32_t> all(n);
        std::iota(all.begin(), all.end(), 0u);
        return all;
    }
    const std::vector<Point> scaled = Scaled(given, largest, tolerance);
    const Outline outline = scaled.empty() ? given : Outline(scaled);

    const int64_t farthest = DistancesFrom(outline[0], outline).farthest;
    if (farthest < 0) return {0};  // all vertices coincide
    const auto opposite = static_cast<uint32_t>(farthest);

    // Index n is vertex 0 again.
    const auto at = [&](uint32_t i) -> const Point& { return outline[i == n ? 0 : i]; };
    std::vector<uint8_t> stays(n, 0);
    stays[0] = stays[opposite] = 1;
    size_t kept = 2;
    FarthestFromEdge farthestFromEdge(outline);
    std::vector<std::pair<uint32_t, uint32_t>> parts = {{0, opposite}, {opposite, n}};
    while (!parts.empty()) {
        const auto [first, last] = parts.back();
        parts.pop_back();
        const uint32_t split = farthestFromEdge.Find(first + 1, last, {at(first), at(last)}, tolerance);
        if (split == last) continue;
        stays[split] = 1;
        ++kept;
        if (split - first > 1) parts.emplace_back(first, split);
        if (last - split > 1) parts.emplace_back(split, last);
    }
    std::vector<uint32_t> left;
    left.reserve(kept);
    for (uint32_t i = 0; i < n; ++i)
        if (stays[i]) left.push_back(i);
    return left;
}

}  // namespace orlix
