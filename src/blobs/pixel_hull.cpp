#include "blobs/pixel_hull.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace orlix {
namespace {

int64_t Cross(const HullCorner& a, const HullCorner& b) { return a.x * b.y - a.y * b.x; }
HullCorner Minus(const HullCorner& a, const HullCorner& b) { return {a.x - b.x, a.y - b.y}; }

size_t After(const Hull& hull, size_t i) { return i + 1 == hull.size() ? 0 : i + 1; }
HullCorner Edge(const Hull& hull, size_t i) { return Minus(hull[After(hull, i)], hull[i]); }

// Appends a corner, and takes out those that are no corners any more.
void Extend(Hull& hull, size_t first, const HullCorner& corner) {
    while (hull.size() >= first + 2 &&
           Cross(Minus(hull.back(), hull[hull.size() - 2]), Minus(corner, hull.back())) <= 0)
        hull.pop_back();
    hull.push_back(corner);
}

// A vector in the plane.
struct Vector {
    double x, y;
    Vector(const HullCorner& c, double ratio) : x(static_cast<double>(c.x)), y(ratio * static_cast<double>(c.y)) {}
    Vector(double xValue, double yValue) : x(xValue), y(yValue) {}
    double Square() const { return x * x + y * y; }
};
double Dot(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y; }
Point Of(const HullCorner& c) { return {static_cast<double>(c.x), static_cast<double>(c.y)}; }

// Calls visit(i, j) for each edge i, from corner i, and the corner j farthest from its line; of two it is the first.
template <class Visit>
void ForEachAntipode(const Hull& hull, const Visit& visit) {
    for (size_t i = 0, j = 1; i < hull.size(); ++i) {
        const HullCorner edge = Edge(hull, i);
        if (j == i) j = After(hull, j);
        while (Cross(edge, Edge(hull, j)) > 0) j = After(hull, j);
        visit(i, j);
    }
}

}  // namespace

void FindHull(const BlobRows& rows, const Box& box, Hull& hull) {
    hull.clear();
    const auto height = static_cast<int64_t>(rows.count());
    const auto first = [&](int64_t y) { return int64_t{rows[static_cast<size_t>(y)].front().start} - box.left; };
    const auto last = [&](int64_t y) { return int64_t{rows[static_cast<size_t>(y)].back().stop} - box.left + 1; };
    // Down the right side, then up the left one.
    for (int64_t y = 0; y <= height; ++y)
        Extend(hull, 0, {std::max(y < height ? last(y) : 0, y > 0 ? last(y - 1) : 0), y});
    const size_t bottom = hull.size();
    for (int64_t y = height; y >= 0; --y) {
        const int64_t x = y == height ? first(y - 1) : y == 0 ? first(y) : std::min(first(y), first(y - 1));
        Extend(hull, bottom, {x, y});
    }
    std::rotate(hull.begin(), hull.end() - 1, hull.end());
}

int64_t TwiceHullArea(const Hull& hull) {
    int64_t sum = 0;
    for (size_t i = 2; i < hull.size(); ++i) sum += Cross(Minus(hull[i - 1], hull[0]), Minus(hull[i], hull[0]));
    return sum;
}

double HullPerimeter(const Hull& hull, double ratio) {
    double sum = 0;
    for (size_t i = 0; i < hull.size(); ++i) sum += std::sqrt(Vector(Edge(hull, i), ratio).Square());
    return sum;
}

Strip LongestChord(const Hull& hull, double ratio) {
    double best = -1;
    size_t from = 0, to = 0;
    const auto tryPair = [&](size_t i, size_t j) {
        const double square = Vector(Minus(hull[j], hull[i]), ratio).Square();
        if (!(square > best)) return;
        best = square;
        from = i;
        to = j;
    };
    ForEachAntipode(hull, [&](size_t i, size_t j) {
        tryPair(i, j);
        tryPair(After(hull, i), j);
        if (Cross(Edge(hull, i), Edge(hull, j)) == 0) tryPair(i, After(hull, j));
    });
    return {std::sqrt(best), Of(hull[from]), Of(hull[to])};
}

Strip NarrowestStrip(const Hull& hull, double ratio) {
    Strip best;
    bool found = false;
    ForEachAntipode(hull, [&](size_t i, size_t j) {
        const Vector edge(Edge(hull, i), ratio);
        const HullCorner across = Minus(hull[j], hull[i]);
        const double square = edge.Square();
        const double width = ratio * static_cast<double>(Cross(Edge(hull, i), across)) / std::sqrt(square);
        if (found && !(width < best.width)) return;
        found = true;
        const double along = Dot(edge, Vector(across, ratio)) / square;
        const Point corner = Of(hull[i]), step = Of(Edge(hull, i));
        best = {width, {corner.x + along * step.x, corner.y + along * step.y}, Of(hull[j])};
    });
    return best;
}

HullBox SmallestBox(const Hull& hull, double ratio) {
    HullBox best;
    bool found = false;
    size_t front = 1, back = 1;  // corners farthest ahead and behind
    ForEachAntipode(hull, [&](size_t i, size_t j) {
        const Vector edge(Edge(hull, i), ratio);
        const auto ahead = [&](size_t k) { return Dot(edge, Vector(Edge(hull, k), ratio)); };
        if (i == 0) {
            front = 1;
            back = j;
        }
        // Each turns at most once around the hull in all, since the directions of edges do.
        for (size_t k = 0; k < hull.size() && ahead(front) > 0; ++k) front = After(hull, front);
        for (size_t k = 0; k < hull.size() && ahead(back) < 0; ++k) back = After(hull, back);
        const double square = edge.Square(), length = std::sqrt(square);
        const double along = Dot(edge, Vector(Minus(hull[front], hull[back]), ratio)) / length;
        const double across = ratio * static_cast<double>(Cross(Edge(hull, i), Minus(hull[j], hull[i]))) / length;
        if (found && !(along * across < best.along * best.across)) return;
        found = true;
        // From the corner behind: half the side along the edge, and from the edge's line half the side across.
        const double middle = Dot(edge, Vector(Minus(hull[back], hull[i]), ratio)) / length + along / 2;
        const Vector unit(edge.x / length, edge.y / length);
        const Point origin = Of(hull[i]);
        best.centre = {origin.x + middle * unit.x - across / 2 * unit.y,
                       origin.y + (middle * unit.y + across / 2 * unit.x) / ratio};
        best.along = along;
        best.across = across;
        best.direction = {edge.x, edge.y};
    });
    return best;
}

namespace {

struct Ball {
    double x = 0, y = 0, square = -1;  // of the radius
    double SquareTo(const Vector& p) const { return Vector(p.x - x, p.y - y).Square(); }
};

Ball Through(const Vector& a, const Vector& b) {
    const double x = (a.x + b.x) / 2, y = (a.y + b.y) / 2;
    return {x, y, Vector(a.x - x, a.y - y).Square()};
}

Ball Through(const Vector& a, const Vector& b, const Vector& c) {
    const Vector u(b.x - a.x, b.y - a.y), v(c.x - a.x, c.y - a.y);
    const double twice = 2 * (u.x * v.y - u.y * v.x);
    if (twice == 0) return {};
    const double uu = u.Square(), vv = v.Square();
    const double x = (v.y * uu - u.y * vv) / twice, y = (u.x * vv - v.x * uu) / twice;
    return {a.x + x, a.y + y, Vector(x, y).Square()};
}

}  // namespace

HullCircle SmallestCircle(const Hull& hull, double ratio) {
    constexpr double kSlack = 1 + 1e-12;
    std::array<Vector, 4> support = {Vector(hull[0], ratio), Vector(0, 0), Vector(0, 0), Vector(0, 0)};
    size_t count = 1;
    Ball ball{support[0].x, support[0].y, 0};
    double square = 0;  // of the distance to the farthest corner
    // A circle through two or three corners grows with each corner that it must take in, so no three occur twice.
    for (;;) {
        Vector farthest = support[0];
        square = -1;
        for (const HullCorner& corner : hull)
            if (const double d = ball.SquareTo(Vector(corner, ratio)); d > square) {
                square = d;
                farthest = Vector(corner, ratio);
            }
        if (!(square > ball.square * kSlack)) break;
        // The smallest circle around the supporting corners and the new one, which lies on it.
        Ball next;
        std::array<Vector, 4> nextSupport = support;
        size_t nextCount = 0;
        const auto consider = [&](const Ball& candidate, size_t i, size_t j) {
            if (!(candidate.square > 0) || (nextCount > 0 && !(candidate.square < next.square))) return;
            for (size_t k = 0; k < count; ++k)
                if (candidate.SquareTo(support[k]) > candidate.square * kSlack) return;
            next = candidate;
            nextSupport[0] = farthest;
            nextSupport[1] = support[i];
            nextSupport[2] = support[j];
            nextCount = i == j ? 2 : 3;
        };
        for (size_t i = 0; i < count; ++i) consider(Through(farthest, support[i]), i, i);
        for (size_t i = 0; i < count; ++i)
            for (size_t j = i + 1; j < count; ++j) consider(Through(farthest, support[i], support[j]), i, j);
        if (nextCount == 0 || !(next.square > ball.square)) break;
        ball = next;
        support = nextSupport;
        count = nextCount;
    }
    return {{ball.x, ball.y / ratio}, std::sqrt(std::max(square, 0.0))};
}

}  // namespace orlix
