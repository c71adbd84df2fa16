// Convex hull and diameter.
#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <utility>

#include "geometry/outline.hpp"

namespace orlix {
namespace {

// A polygon of up to eight extreme vertices: those farthest left, right, up, down and along the diagonals. A vertex
// well inside it is no corner of the hull.
InnerPolygon InnerOf(Outline outline, const OutlineKernels& kernels) {
    InnerPolygon inner;
    int64_t indices[8];
    kernels.farthest(outline.data(), outline.size(), indices);
    if (*std::min_element(indices, indices + 8) < 0) return inner;
    const auto vertex = [&](int k) -> const Point& { return outline[static_cast<size_t>(indices[k % 8])]; };
    const double size = std::max(vertex(6).x - vertex(2).x, vertex(0).y - vertex(4).y);
    // A cross product of differences has a rounding error below 1e-15 of the square.
    inner.margin = 1e-12 * size * size;
    if (!std::isnormal(inner.margin)) return inner;
    for (int k = 0; k < 8; ++k) {
        const Point &a = vertex(k), &b = vertex(k + 1);
        if (a == b) continue;
        inner.from[inner.edges] = a;
        inner.along[inner.edges++] = {b.x - a.x, b.y - a.y};
    }
    return inner;
}

struct Vertex {
    Point p;
    uint32_t index;
};

// The vertices that may be corners: all finite ones except those well inside.
std::vector<Vertex> OuterVertices(Outline outline) {
    const OutlineKernels& kernels = *Choose(kOutlineKernels);
    const InnerPolygon inner = InnerOf(outline, kernels);
    std::vector<Vertex> vertices;
    vertices.reserve(std::min<size_t>(outline.size(), 256));
    for (size_t start = 0; start < outline.size(); start += 64) {
        uint64_t outside = kernels.outside(&outline[start], std::min<size_t>(outline.size() - start, 64), inner);
        for (; outside != 0; outside &= outside - 1) {
            const size_t i = start + static_cast<size_t>(std::countr_zero(outside));
            vertices.push_back({outline[i], static_cast<uint32_t>(i)});
        }
    }
    return vertices;
}

// From bottom to top, from right to left, equal ones by their index. Outlines mostly consist of a few stretches that go
// up or down, with several vertices in a row if they follow pixels; these are merged.
void SortUpwards(std::vector<Vertex>& vertices) {
    const auto isLower = [](const Vertex& a, const Vertex& b) { return a.p.y > b.p.y; };
    const auto isHigher = [](const Vertex& a, const Vertex& b) { return a.p.y < b.p.y; };
    const auto before = [](const Vertex& a, const Vertex& b) {
        if (a.p.y != b.p.y) return a.p.y > b.p.y;
        return a.p.x != b.p.x ? a.p.x > b.p.x : a.index < b.index;
    };
    constexpr size_t kMostStretches = 64;
    std::vector<std::vector<Vertex>::iterator> ends = {vertices.begin()};
    while (ends.back() != vertices.end() && ends.size() <= kMostStretches) {
        const auto first = ends.back();
        const auto up = std::is_sorted_until(first, vertices.end(), isLower);
        const auto down = std::is_sorted_until(first, vertices.end(), isHigher);
        if (down > up) std::reverse(first, down);
        ends.push_back(std::max(up, down));
    }
    if (ends.back() != vertices.end()) return std::sort(vertices.begin(), vertices.end(), before);
    for (size_t step = 1; step + 1 < ends.size(); step *= 2)
        for (size_t k = 0; k + step < ends.size() - 1; k += 2 * step)
            std::inplace_merge(ends[k], ends[k + step], ends[std::min(k + 2 * step, ends.size() - 1)], isLower);
    for (auto first = vertices.begin(); first != vertices.end();) {
        const auto end = std::find_if(first + 1, vertices.end(), [&](const Vertex& v) { return v.p.y != first->p.y; });
        if (!std::is_sorted(first, end, before)) std::sort(first, end, before);
        first = end;
    }
}

std::vector<Vertex> EachPlaceOnce(std::vector<Vertex> vertices) {
    SortUpwards(vertices);
    const auto end =
        std::unique(vertices.begin(), vertices.end(), [](const Vertex& a, const Vertex& b) { return a.p == b.p; });
    vertices.erase(end, vertices.end());
    return vertices;
}

// The corners of the hull, from the lowest one (of several the one farthest right) over the right side to the top and
// back over the left. Of several vertices in one place it is the first. (Andrew 1979)
std::vector<Vertex> CornersOf(std::vector<Vertex> all) {
    std::vector<Vertex> vertices = EachPlaceOnce(std::move(all));
    if (vertices.size() < 3) return vertices;

    std::vector<Vertex> corners;
    size_t start = 0;  // of the chain: its first corner stays
    const auto add = [&](const Vertex& next) {
        while (corners.size() > start + 1 && Turn(corners[corners.size() - 2].p, corners.back().p, next.p) >= 0)
            corners.pop_back();
        corners.push_back(next);
    };
    std::for_each(vertices.begin(), vertices.end(), add);
    start = corners.size() - 1;
    std::for_each(vertices.rbegin() + 1, vertices.rend(), add);
    corners.pop_back();  // the first one again
    return corners;
}

constexpr std::pair<int, int> kNeighbours[] = {{0, 0},   {-1, 0}, {1, 0},  {0, -1}, {0, 1},
                                               {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};

// The vertices in the cells of the corners and those around them, with one in two hundred of the others: two bits tell
// whether cells that share them are such cells. (Bloom 1970)
template <class KeyOf>
std::vector<Vertex> NearCells(const std::vector<Vertex>& vertices, const std::vector<Vertex>& corners,
                              const KeyOf& keyOf) {
    const int logarithm = std::min(static_cast<int>(std::bit_width(corners.size())) + 8, 30);
    std::vector<uint64_t> marks(size_t{1} << (logarithm - 6), 0);
    const auto forBits = [&](int64_t key, const auto& visit) {
        const uint64_t mixed = static_cast<uint64_t>(key) * 0x9e3779b97f4a7c15;
        for (const int shift : {64 - logarithm, 64 - 2 * logarithm}) {
            const uint64_t bit = mixed >> shift & ((uint64_t{1} << logarithm) - 1);
            visit(marks[static_cast<size_t>(bit / 64)], uint64_t{1} << bit % 64);
        }
    };
    for (const Vertex& corner : corners)
        for (const auto& [right, down] : kNeighbours)
            forBits(keyOf(corner.p, right, down), [](uint64_t& word, uint64_t mark) { word |= mark; });
    std::vector<Vertex> found;
    for (const Vertex& vertex : vertices) {
        bool isMarked = true;
        forBits(keyOf(vertex.p, 0, 0), [&](uint64_t& word, uint64_t mark) { isMarked &= (word & mark) != 0; });
        if (isMarked) found.push_back(vertex);
    }
    return found;
}

// Vertices that can be an end of the diameter, in hull order, each position once.
//
// Distances are rounded and the first of equal distances wins, so a pair within rounding of the largest distance M may
// win although its vertices are no corners. But each of them is close to a corner: the line from one vertex through the
// other leaves the hull at once, through an edge whose ends are both within M of the first vertex; the point where it
// leaves is less than 1.5e-7 M from one of these ends.
std::vector<Vertex> DiameterEnds(const std::vector<Vertex>& all, const std::vector<Vertex>& corners, double extent) {
    if (corners.size() == all.size()) return corners;
    if (extent < 1e-290) return EachPlaceOnce(all);  // a cell would have no size

    const double cell = 3e-7 * extent;  // M is at most 1.42 times the extent
    Point origin = corners[0].p;
    for (const Vertex& corner : corners) origin = {std::min(origin.x, corner.p.x), std::min(origin.y, corner.p.y)};
    const auto keyOf = [&](const Point& p, int right, int down) {
        const auto column = static_cast<int64_t>((p.x - origin.x) / cell) + right;
        const auto row = static_cast<int64_t>((p.y - origin.y) / cell) + down;
        return column * 0x100000000 + row;  // both are below 2^24
    };
    const std::vector<Vertex> vertices = EachPlaceOnce(NearCells(all, corners, keyOf));
    if (vertices.size() == corners.size()) return corners;

    std::unordered_map<int64_t, std::vector<Vertex>> cells;
    for (const Vertex& corner : corners) cells[keyOf(corner.p, 0, 0)];
    for (const Vertex& vertex : vertices)
        for (const auto& [right, down] : kNeighbours)
            if (const auto found = cells.find(keyOf(vertex.p, right, down)); found != cells.end()) {
                found->second.push_back(vertex);
                break;
            }
    std::vector<Vertex> ends;
    for (const Vertex& corner : corners) {
        std::vector<Vertex>& around = cells[keyOf(corner.p, 0, 0)];
        std::sort(around.begin(), around.end(), [](const Vertex& a, const Vertex& b) {
            if (a.p.x != b.p.x) return a.p.x < b.p.x;
            return a.p.y != b.p.y ? a.p.y < b.p.y : a.index < b.index;
        });
        const auto last =
            std::unique(around.begin(), around.end(), [](const Vertex& a, const Vertex& b) { return a.p == b.p; });
        ends.insert(ends.end(), around.begin(), last);
        around.clear();  // several corners may share a cell
    }
    return ends;
}

// The first of the largest distances. Splits ranges of vertices in half as long as they may hold a larger distance.
class FarthestPair {
public:
    // extent: the larger side of the vertices' box.
    FarthestPair(std::vector<Vertex> vertices, double extent)
        : vertices_(std::move(vertices)), squares_(extent > 1e-120 && extent < 1e120) {
        size_t size = 1;
        while (size * kLeaf < vertices_.size()) size *= 2;
        bulge_.resize(2 * size);
        BuildBulge(1, 0, vertices_.size());
        const Row all = {1, 0, vertices_.size()};
        Search(all, all, Bound(all, all));
    }
    const Diameter& result() const { return best_; }

private:
    static constexpr size_t kLeaf = 8;
    static constexpr double kRounding = 0x1p-44;  // relative, more than that of a few operations
    struct Row {
        size_t node, first, end;
        bool isLeaf() const { return end - first <= kLeaf; }
        size_t middle() const { return first + (end - first) / 2; }
        Row Half(int k) const { return k == 0 ? Row{2 * node, first, middle()} : Row{2 * node + 1, middle(), end}; }
    };

    // bulge_[node]: an upper bound for the distance of the range's vertices from the segment between its first and
    // last.
    void BuildBulge(size_t node, size_t first, size_t end) {
        const Point &a = vertices_[first].p, &b = vertices_[end - 1].p;
        double bulge = 0;
        if (end - first <= kLeaf) {
            for (size_t i = first; i < end; ++i) bulge = std::max(bulge, DistanceToSegment(vertices_[i].p, a, b));
        } else {
            const size_t middle = first + (end - first) / 2;
            BuildBulge(2 * node, first, middle);
            BuildBulge(2 * node + 1, middle, end);
            bulge = std::max(bulge_[2 * node] + DistanceToSegment(vertices_[middle - 1].p, a, b),
                             bulge_[2 * node + 1] + DistanceToSegment(vertices_[middle].p, a, b));
        }
        bulge_[node] = bulge;
    }

    // Upper bound for the distances between vertices of the two ranges, rounding included.
    double Bound(const Row& a, const Row& b) const {
        const Point &a1 = vertices_[a.first].p, &a2 = vertices_[a.end - 1].p;
        const Point &b1 = vertices_[b.first].p, &b2 = vertices_[b.end - 1].p;
        const auto largest = [&](const auto& distance) {
            return std::max(std::max(distance(a1, b1), distance(a1, b2)), std::max(distance(a2, b1), distance(a2, b2)));
        };
        const double ends = squares_ ? std::sqrt(largest([](const Point& p, const Point& q) { return SquareOf(p, q); }))
                                     : largest([](const Point& p, const Point& q) { return Distance(p, q); });
        return (ends + bulge_[a.node] + bulge_[b.node]) * (1 + kRounding);
    }
    static double SquareOf(const Point& a, const Point& b) {
        const double x = a.x - b.x, y = a.y - b.y;
        return x * x + y * y;
    }

    void Search(const Row& a, const Row& b, double bound) {
        if (bound < best_.length) return;
        if (a.isLeaf() && b.isLeaf()) {
            for (size_t i = a.first; i < a.end; ++i)
                for (size_t j = b.first; j < b.end; ++j) Try(vertices_[i], vertices_[j]);
        } else if (a.node == b.node) {
            for (const auto& [one, other] : {std::pair{0, 1}, {0, 0}, {1, 1}})
                Search(a.Half(one), a.Half(other), Bound(a.Half(one), a.Half(other)));
        } else if (b.isLeaf() || (!a.isLeaf() && a.end - a.first >= b.end - b.first)) {
            SearchBetter(a.Half(0), b, a.Half(1), b);
        } else {
            SearchBetter(a, b.Half(0), a, b.Half(1));
        }
    }
    // The more promising pair first.
    void SearchBetter(const Row& a, const Row& b, const Row& c, const Row& d) {
        const double first = Bound(a, b), second = Bound(c, d);
        if (first >= second) Search(a, b, first);
        Search(c, d, second);
        if (first < second) Search(a, b, first);
    }

    void Try(const Vertex& a, const Vertex& b) {
        if (squares_ && SquareOf(a.p, b.p) < best_.length * best_.length * (1 - kRounding)) return;
        const double length = Distance(a.p, b.p);
        if (length < best_.length || length == 0) return;
        const uint32_t i = std::min(a.index, b.index), j = std::max(a.index, b.index);
        if (length > best_.length || i < best_.i || (i == best_.i && j < best_.j)) best_ = {i, j, length};
    }

    double DistanceToSegment(const Point& p, const Point& a, const Point& b) const {
        const double x = b.x - a.x, y = b.y - a.y, square = x * x + y * y, px = p.x - a.x, py = p.y - a.y;
        double t = square > 0 ? (px * x + py * y) / square : 0;
        t = t > 0 ? std::min(t, 1.0) : 0.0;
        const double dx = px - t * x, dy = py - t * y;
        return squares_ ? std::sqrt(dx * dx + dy * dy) : Hypotenuse(dx, dy);
    }

    std::vector<Vertex> vertices_;
    const bool squares_;  // are neither too large nor too small for a double
    std::vector<double> bulge_;
    Diameter best_;
};

// For infinite distances: the first vertex that is infinitely far from another one, and that other one. The vertex
// farthest from a given one is always a corner.
Diameter FirstInfinite(Outline outline, const std::vector<Vertex>& corners) {
    const auto isInfinite = [](const Point& a, const Point& b) { return std::isinf(Distance(a, b)); };
    for (uint32_t i = 0; i < outline.size(); ++i) {
        if (!std::isfinite(outline[i].x) || !std::isfinite(outline[i].y)) continue;
        const bool found = std::any_of(corners.begin(), corners.end(),
                                       [&](const Vertex& corner) { return isInfinite(outline[i], corner.p); });
        if (!found) continue;
        for (uint32_t j = i + 1; j < outline.size(); ++j)
            if (isInfinite(outline[i], outline[j])) return {i, j, std::numeric_limits<double>::infinity()};
    }
    return {};
}

}  // namespace

std::vector<uint32_t> ConvexHull(Outline outline) {
    std::vector<uint32_t> indices;
    for (const Vertex& corner : CornersOf(OuterVertices(outline))) indices.push_back(corner.index);
    return indices;
}

Diameter DiameterOf(Outline outline) {
    const std::vector<Vertex> vertices = OuterVertices(outline), corners = CornersOf(vertices);
    double left = std::numeric_limits<double>::infinity(), top = left, right = -left, bottom = -left;
    for (const Vertex& corner : corners) {
        left = std::min(left, corner.p.x);
        top = std::min(top, corner.p.y);
        right = std::max(right, corner.p.x);
        bottom = std::max(bottom, corner.p.y);
    }
    const double extent = std::max(right - left, bottom - top);
    if (!(extent > 0)) return {};
    if (std::isfinite(4 * extent)) return FarthestPair(DiameterEnds(vertices, corners, extent), extent).result();

    if (const Diameter first = FirstInfinite(outline, corners); first.length > 0) return first;
    // Very large but finite: scaled by a power of two.
    std::vector<Point> scaled;
    for (const Point& p : outline) scaled.push_back({p.x * 0.0625, p.y * 0.0625});
    Diameter diameter = DiameterOf(scaled);
    diameter.length *= 16;
    return diameter;
}

}  // namespace orlix
