#include <cmath>
#include <limits>

#include "geometry/outline_kernels.hpp"

namespace orlix {
namespace {

double PathLength(const Point* path, size_t n, double sum) {
    for (size_t i = 0; i < n; ++i) sum += Distance(path[i], path[i + 1]);
    return sum;
}

double Larger(double a, double b) { return a > b ? a : b; }

void Add(DoublePair& sum, double high, double low) {
    const DoublePair next = ExactSum(sum.high, high);
    sum = {next.high, sum.low + (next.low + low)};
}

CrossSums Sum(const Point* path, size_t n) {
    CrossSums sums;
    for (size_t i = 0; i < n; ++i) {
        const Point &a = path[i], &b = path[i + 1];
        const DoublePair forward = ExactProduct(a.x, b.y), backward = ExactProduct(a.y, b.x);
        Add(sums.forward, forward.high, forward.low);
        Add(sums.backward, backward.high, backward.low);
        sums.most = Larger(sums.most, Larger(std::fabs(a.x), std::fabs(a.y)));
    }
    return sums;
}

double RoughSquares(const Point* vertices, size_t n, const Edge& edge, double* squares) {
    double largest = 0;
    for (size_t i = 0; i < n; ++i) {
        squares[i] = RoughSquare(edge, vertices[i]);
        if (squares[i] > largest) largest = squares[i];
    }
    return largest;
}

Squares SquaresFrom(const Point* vertices, size_t n, const Point& from) {
    Squares squares = {std::numeric_limits<double>::infinity(), 0, true};
    for (size_t i = 0; i < n; ++i) {
        const double x = vertices[i].x - from.x, y = vertices[i].y - from.y, square = x * x + y * y;
        if (square < squares.least) squares.least = square;
        if (square > squares.most) squares.most = square;
        squares.areNumbers = squares.areNumbers && !std::isnan(square);
    }
    return squares;
}

Turns CountTurns(const Point* path, size_t n, const Point& from) {
    Turns turns = {0, true};
    for (size_t i = 0; i < n; ++i) {
        turns.areFinite = turns.areFinite && std::isfinite(path[i].x) && std::isfinite(path[i].y);
        if (turns.areFinite && std::isfinite(path[i + 1].x) && std::isfinite(path[i + 1].y))
            turns.count += TurnOf(path[i], path[i + 1], from);
    }
    return turns;
}

Bounds BoundsOf(const Point* vertices, size_t n) {
    constexpr double kLargest = std::numeric_limits<double>::max();
    Bounds bounds = {kLargest, kLargest, -kLargest, -kLargest};
    for (size_t i = 0; i < n; ++i) {
        const Point& p = vertices[i];
        if (p.x < bounds.left) bounds.left = p.x;
        if (p.y < bounds.top) bounds.top = p.y;
        if (p.x > bounds.right) bounds.right = p.x;
        if (p.y > bounds.bottom) bounds.bottom = p.y;
    }
    return bounds;
}

bool IsFinite(const Point& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

void Farthest(const Point* vertices, size_t n, int64_t (&indices)[8]) {
    double largest[8];
    for (int k = 0; k < 8; ++k) {
        indices[k] = -1;
        largest[k] = -std::numeric_limits<double>::infinity();
    }
    for (size_t i = 0; i < n; ++i) {
        const Point& p = vertices[i];
        if (!IsFinite(p)) continue;
        const double keys[] = {p.y, p.y - p.x, -p.x, -p.x - p.y, -p.y, p.x - p.y, p.x, p.x + p.y};
        for (int k = 0; k < 8; ++k)
            if (keys[k] > largest[k]) {
                largest[k] = keys[k];
                indices[k] = static_cast<int64_t>(i);
            }
    }
}

uint64_t Outside(const Point* vertices, size_t n, const InnerPolygon& polygon) {
    uint64_t bits = 0;
    for (size_t i = 0; i < n; ++i)
        if (IsFinite(vertices[i]) && IsOutside(polygon, vertices[i])) bits |= uint64_t{1} << i;
    return bits;
}

}  // namespace

CrossSums Together(CrossSums sums, const double* high, const double* low, const double* most, size_t lanes) {
    for (size_t k = 0; k < lanes; ++k) {
        Add(k % 2 == 0 ? sums.forward : sums.backward, high[k], low[k]);
        sums.most = Larger(sums.most, most[k]);
    }
    return sums;
}

const OutlineKernels kOutline_scalar = {&PathLength, &Sum,      &RoughSquares, &SquaresFrom,
                                        &CountTurns, &BoundsOf, &Farthest,     &Outside};

}  // namespace orlix
