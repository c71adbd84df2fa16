// Polygon simplification within a tolerance.
#include <algorithm>
#include <cmath>
#include <utility>

#include "geometry/outline.hpp"

namespace orlix {
namespace {

double DistanceToEdge(const Point& p, const Point& a, const Point& b) {
    const double x = b.x - a.x, y = b.y - a.y, square = x * x + y * y;
    const double along = (p.x - a.x) * x + (p.y - a.y) * y;
    if (!(along > 0)) return Distance(p, a);
    if (along >= square) return Distance(p, b);
    if (Turn(a, b, p) == 0) return 0;
    return std::fabs((p.x - a.x) * y - (p.y - a.y) * x) / Hypotenuse(x, y);
}

// Finds the vertex of a range that is farthest from an edge. Testing every vertex could take time quadratic in their
// number, since a step may separate only one vertex from the rest. The distance from an edge is a convex function: no
// point of a box is farther than its farthest corner.
class FarthestFromEdge {
public:
    explicit FarthestFromEdge(Outline outline) : outline_(outline) {
        size_t leaves = 1;
        while (leaves * kLeaf < outline.size()) leaves *= 2;
        boxes_.resize(2 * leaves);
        Build({1, 0, static_cast<uint32_t>(outline.size())});
    }

    // The first of the farthest vertices first <= i < end that are farther than the tolerance; `end` when there is
    // none.
    uint32_t Find(uint32_t first, uint32_t end, const Point& a, const Point& b, double tolerance) {
        a_ = a;
        b_ = b;
        first_ = first;
        end_ = found_ = end;
        farthest_ = tolerance;
        const Row all = {1, 0, static_cast<uint32_t>(outline_.size())};
        // An estimate close to the largest distance, so that vertices clearly nearer need not be tested.
        atLeast_ = end - first > kLeaf ? Probe(all) : 0;
        Search(all);
        return found_;
    }

private:
    static constexpr uint32_t kLeaf = 16;

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
                most = std::max(most, DistanceToEdge({x, y}, a_, b_));
                reach = std::max(
                    {reach, std::fabs(x - a_.x), std::fabs(y - a_.y), std::fabs(x - b_.x), std::fabs(y - b_.y)});
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
            most = std::max(most, DistanceToEdge(outline_[i], a_, b_));
        return most;
    }

    void Search(const Row& row) {
        if (!Meets(row)) return;
        if (row.IsLeaf()) {
            for (uint32_t i = std::max(row.first, first_); i < std::min(row.end, end_); ++i)
                if (const double d = DistanceToEdge(outline_[i], a_, b_); d > farthest_) {
                    farthest_ = d;
                    found_ = i;
                }
            return;
        }
        if (const double bound = Bound(row); bound <= farthest_ || bound < atLeast_) return;
        Search(row.Half(0));
        Search(row.Half(1));
    }

    Outline outline_;
    std::vector<Bounds> boxes_;
    Point a_, b_;
    uint32_t first_ = 0, end_ = 0, found_ = 0;
    double farthest_ = 0, atLeast_ = 0;
};

// Coordinates in a power-of-two unit in which no product overflows and none of the larger coordinates vanishes.
std::vector<Point> Scaled(Outline outline, double& tolerance) {
    double largest = 0;
    for (const Point& p : outline) largest = std::max({largest, std::fabs(p.x), std::fabs(p.y)});
    const int exponent = largest > 0 ? std::ilogb(largest) : 0;
    std::vector<Point> scaled(outline.begin(), outline.end());
    if (exponent > -400 && exponent < 400) return scaled;
    for (Point& p : scaled) p = {std::ldexp(p.x, -exponent), std::ldexp(p.y, -exponent)};
    tolerance = std::ldexp(tolerance, -exponent);
    return scaled;
}

}  // namespace

std::vector<uint32_t> Simplify(Outline given, double tolerance) {
    const auto n = static_cast<uint32_t>(given.size());
    std::vector<uint32_t> all;
    bool finite = true;
    for (uint32_t i = 0; i < n; ++i) {
        all.push_back(i);
        finite = finite && std::isfinite(given[i].x) && std::isfinite(given[i].y);
    }
    if (n < 3 || !finite || !(tolerance >= 0)) return all;
    const std::vector<Point> outline = Scaled(given, tolerance);

    uint32_t opposite = 0;
    double most = 0;
    for (uint32_t i = 1; i < n; ++i)
        if (const double distance = Distance(outline[0], outline[i]); distance > most) {
            most = distance;
            opposite = i;
        }
    if (opposite == 0) return {0};  // all vertices coincide

    // Index n is vertex 0 again.
    const auto at = [&](uint32_t i) -> const Point& { return outline[i == n ? 0 : i]; };
    std::vector<bool> stays(n + size_t{1}, false);
    stays[0] = stays[opposite] = true;
    FarthestFromEdge farthestFromEdge(outline);
    std::vector<std::pair<uint32_t, uint32_t>> parts = {{0, opposite}, {opposite, n}};
    while (!parts.empty()) {
        const auto [first, last] = parts.back();
        parts.pop_back();
        const uint32_t farthest = farthestFromEdge.Find(first + 1, last, at(first), at(last), tolerance);
        if (farthest == last) continue;
        stays[farthest] = true;
        parts.emplace_back(first, farthest);
        parts.emplace_back(farthest, last);
    }
    std::vector<uint32_t> left;
    for (uint32_t i = 0; i < n; ++i)
        if (stays[i]) left.push_back(i);
    return left;
}

}  // namespace orlix
