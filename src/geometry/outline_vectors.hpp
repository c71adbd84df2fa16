// The loops over vertices for any vector of doubles. Included by the files of one instruction set each, which say what
// Lanes are:
//
//     using Vector;                               arithmetic by operators
//     static constexpr size_t kLanes;
//     static void Split(path, x, y);              the coordinates of kLanes vertices, in any order of the lanes
//     static Vector Load(doubles), Swapped(v);    Swapped: neighbouring lanes exchanged
//     static void StoreInOrder(doubles, v);       of vertices that Split() took apart
//     static Vector All(value), Zero();
//     static Vector Min(a, b), Max(a, b);         the second operand if either is NaN
//     static Vector Root(v), Magnitude(v);
//     static Vector Less(a, b), Equal(a, b);      all bits of a lane, or none; none for NaN
//     static Vector IsNan(v);
//     static Vector And(a, b), Or(a, b);          of bits
//     static Vector AndNot(a, b);                 the bits of a that b has not
//     static Vector Select(mask, a, b);           a where the mask has all bits, b where it has none
//     static unsigned Bits(v);                    the sign bits of the lanes
//     static Vector Missing(a, b, product);       a b - product, where product is a b rounded: within 2^-105 |a b|
//
// Vectors of vertices x, y, x, y, ... have kLanes / 2 vertices.
#pragma once

#include <limits>

#include "geometry/outline_kernels.hpp"

namespace orlix {
namespace {

template <class Lanes>
struct OutlineVectors {
    using Vector = typename Lanes::Vector;
    static constexpr size_t kLanes = Lanes::kLanes, kVertices = kLanes / 2;
    static constexpr double kInfinite = std::numeric_limits<double>::infinity();
    static constexpr double kLargest = std::numeric_limits<double>::max();

    // Distance() is root + rest / (2 root), where rest is what the square of the rounded root lacks. Both this and the
    // same without the last bits of rest are within 2^-100 of the exact length, so lengths that round the same with
    // 2^-90 more and less agree.
    static double PathLength(const Point* path, size_t n, double sum) {
        const Vector tiny = Lanes::All(0x1p-700), huge = Lanes::All(0x1p900), slack = Lanes::All(0x1p-90);
        size_t i = 0;
        for (; i + kLanes <= n; i += kLanes) {
            Vector ax, ay, bx, by;
            Lanes::Split(path + i, ax, ay);
            Lanes::Split(path + i + 1, bx, by);
            const Vector x = bx - ax, y = by - ay, xx = x * x, yy = y * y, square = xx + yy;
            const Vector root = Lanes::Root(square), rooted = root * root;
            const Vector lostBySum = Lanes::Min(xx, yy) - (square - Lanes::Max(xx, yy));
            const Vector lost = lostBySum + (Lanes::Missing(x, x, xx) + Lanes::Missing(y, y, yy));
            const Vector rest = ((square - rooted) - Lanes::Missing(root, root, rooted)) + lost;
            const Vector correction = rest / (root + root), margin = root * slack;
            const Vector length = root + (correction - margin);
            const Vector certain = Lanes::And(Lanes::Equal(length, root + (correction + margin)),
                                              Lanes::And(Lanes::Less(tiny, square), Lanes::Less(square, huge)));
            double lengths[kLanes];
            Lanes::StoreInOrder(lengths, length);
            if (Lanes::Bits(certain) != (1u << kLanes) - 1) [[unlikely]]
                for (size_t k = 0; k < kLanes; ++k) lengths[k] = Distance(path[i + k], path[i + k + 1]);
            for (const double each : lengths) sum += each;
        }
        return kOutline_scalar.pathLength(path + i, n - i, sum);
    }

    // Each lane adds up to kCrossed products of at most most^2: what the rounded sums lose is added up beside them, and
    // is below 2^-36 most^2 with roundings below 2^-81 most^2 in all.
    static CrossSums Sum(const Point* path, size_t n) {
        Vector sum = Lanes::Zero(), lost = sum, most = sum;
        size_t i = 0;
        for (; i + kVertices <= n; i += kVertices) {
            const Vector a = Lanes::Load(&path[i].x), b = Lanes::Swapped(Lanes::Load(&path[i + 1].x));
            const Vector product = a * b, next = sum + product, part = next - sum;
            lost = lost + (((sum - (next - part)) + (product - part)) + Lanes::Missing(a, b, product));
            sum = next;
            most = Lanes::Max(most, Lanes::Magnitude(a));
        }
        double high[kLanes], low[kLanes], magnitudes[kLanes];
        Lanes::Store(high, sum);
        Lanes::Store(low, lost);
        Lanes::Store(magnitudes, most);
        return Together(kOutline_scalar.crossSums(path + i, n - i), high, low, magnitudes, kLanes);
    }

    static double RoughSquares(const Point* vertices, size_t n, const Edge& edge, double* squares) {
        if (n < kLanes) return kOutline_scalar.roughSquares(vertices, n, edge, squares);
        const Vector firstX = Lanes::All(edge.a.x), firstY = Lanes::All(edge.a.y);
        const Vector lastX = Lanes::All(edge.b.x), lastY = Lanes::All(edge.b.y);
        const Vector edgeX = Lanes::All(edge.x), edgeY = Lanes::All(edge.y);
        const Vector square = Lanes::All(edge.square), scale = Lanes::All(edge.scale);
        Vector largest = Lanes::Zero();
        const auto take = [&](size_t i) {
            Vector x, y;
            Lanes::Split(vertices + i, x, y);
            const Vector ax = x - firstX, ay = y - firstY, bx = x - lastX, by = y - lastY;
            const Vector along = ax * edgeX + ay * edgeY, cross = ax * edgeY - ay * edgeX;
            const Vector afterFirst = Lanes::Less(Lanes::Zero(), along);
            const Vector inside = Lanes::And(afterFirst, Lanes::Less(along, square));
            const Vector fromFirst = ax * ax + ay * ay, fromLast = bx * bx + by * by;
            const Vector fromEnd = Lanes::Select(afterFirst, fromLast, fromFirst);
            const Vector rough = Lanes::Select(inside, cross * cross, fromEnd * scale);
            Lanes::StoreInOrder(squares + i, rough);
            largest = Lanes::Max(rough, largest);
        };
        for (size_t i = 0; i + kLanes <= n; i += kLanes) take(i);
        take(n - kLanes);
        return Largest(largest);
    }

    static Squares SquaresFrom(const Point* vertices, size_t n, const Point& from) {
        if (n < kLanes) return kOutline_scalar.squares(vertices, n, from);
        const Vector fromX = Lanes::All(from.x), fromY = Lanes::All(from.y);
        Vector least = Lanes::All(kInfinite), most = Lanes::Zero(), odd = Lanes::Zero();
        const auto take = [&](const Point* p) {
            Vector x, y;
            Lanes::Split(p, x, y);
            x = x - fromX;
            y = y - fromY;
            const Vector square = x * x + y * y;
            least = Lanes::Min(square, least);
            most = Lanes::Max(square, most);
            odd = Lanes::Or(odd, Lanes::IsNan(square));
        };
        for (size_t i = 0; i + kLanes <= n; i += kLanes) take(vertices + i);
        take(vertices + n - kLanes);
        return {-Largest(Lanes::Zero() - least), Largest(most), Lanes::Bits(odd) == 0};
    }

    // Turn() as it decides first, see there; edges that it leaves open are looked at one by one.
    static Turns CountTurns(const Point* path, size_t n, const Point& from) {
        const Vector fromX = Lanes::All(from.x), fromY = Lanes::All(from.y), zero = Lanes::Zero();
        const Vector rounding = Lanes::All(3.4e-16), tiny = Lanes::All(1e-280);
        Vector odd = zero;
        int64_t count = 0;
        size_t i = 0;
        for (; i + kLanes <= n; i += kLanes) {
            Vector ax, ay, bx, by;
            Lanes::Split(path + i, ax, ay);
            Lanes::Split(path + i + 1, bx, by);
            odd = Lanes::Or(odd, Lanes::Or(ax - ax, ay - ay));
            ax = ax - fromX;
            ay = ay - fromY;
            bx = bx - fromX;
            by = by - fromY;
            const Vector aPositive = Positive(ax, ay), bPositive = Positive(bx, by);
            const Vector down = Lanes::And(Lanes::Less(ay, zero), bPositive);
            const Vector up = Lanes::And(aPositive, Lanes::Less(by, zero));
            const Vector left = ax * by, right = ay * bx, turn = left - right;
            const Vector size = Lanes::Magnitude(left) + Lanes::Magnitude(right);
            const Vector certain = Lanes::Less(rounding * size + tiny, Lanes::Magnitude(turn));
            if (Lanes::Bits(Lanes::AndNot(Lanes::Or(down, up), certain)) != 0) [[unlikely]] {
                for (size_t k = i; k < i + kLanes; ++k) count += TurnOf(path[k], path[k + 1], from);
                continue;
            }
            count += __builtin_popcount(Lanes::Bits(Lanes::And(up, Lanes::Less(zero, turn))));
            count -= __builtin_popcount(Lanes::Bits(Lanes::And(down, Lanes::Less(turn, zero))));
        }
        const Turns rest = kOutline_scalar.turns(path + i, n - i, from);
        return {count + rest.count, Lanes::Bits(Lanes::IsNan(odd)) == 0 && rest.areFinite};
    }

    static Bounds BoundsOf(const Point* vertices, size_t n) {
        constexpr size_t kStep = 2 * kVertices;
        if (n < kStep) return kOutline_scalar.bounds(vertices, n);
        Vector low = Lanes::All(kLargest), low2 = low, high = Lanes::All(-kLargest), high2 = high;
        const auto take = [&](const Point* p) {
            const Vector a = Lanes::Load(&p->x), b = Lanes::Load(&p[kVertices].x);
            low = Lanes::Min(a, low);
            low2 = Lanes::Min(b, low2);
            high = Lanes::Max(a, high);
            high2 = Lanes::Max(b, high2);
        };
        for (size_t i = 0; i + kStep <= n; i += kStep) take(vertices + i);
        take(vertices + n - kStep);
        double lows[kLanes], highs[kLanes];
        Lanes::Store(lows, Lanes::Min(low, low2));
        Lanes::Store(highs, Lanes::Max(high, high2));
        Bounds bounds = {lows[0], lows[1], highs[0], highs[1]};
        for (size_t k = 2; k < kLanes; k += 2)
            bounds = {lows[k] < bounds.left ? lows[k] : bounds.left,
                      lows[k + 1] < bounds.top ? lows[k + 1] : bounds.top,
                      highs[k] > bounds.right ? highs[k] : bounds.right,
                      highs[k + 1] > bounds.bottom ? highs[k + 1] : bounds.bottom};
        return bounds;
    }

    static void Farthest(const Point* vertices, size_t n, int64_t (&indices)[8]) {
        if (n < kLanes) return kOutline_scalar.farthest(vertices, n, indices);
        Vector largest[8], places[8];  // places: the step, which is a small whole number
        for (int k = 0; k < 8; ++k) {
            largest[k] = Lanes::All(-kInfinite);
            places[k] = Lanes::All(-1);
        }
        const Vector one = Lanes::All(1), zero = Lanes::Zero();
        Vector step = zero;
        const auto take = [&](const Point* p) {
            Vector x, y;
            Lanes::Split(p, x, y);
            const Vector odd = (x - x) + (y - y);  // NaN unless the vertex is finite
            x = x + odd;
            y = y + odd;
            const Vector sum = x + y, difference = x - y;
            const Vector keys[] = {y, zero - difference, zero - x, zero - sum, zero - y, difference, x, sum};
            for (int k = 0; k < 8; ++k) {
                places[k] = Lanes::Select(Lanes::Less(largest[k], keys[k]), step, places[k]);
                largest[k] = Lanes::Max(keys[k], largest[k]);
            }
            step = step + one;
        };
        size_t steps = 0;
        for (; (steps + 1) * kLanes <= n; ++steps) take(vertices + steps * kLanes);
        take(vertices + n - kLanes);
        for (int k = 0; k < 8; ++k) {
            double keys[kLanes], found[kLanes];
            Lanes::StoreInOrder(keys, largest[k]);
            Lanes::StoreInOrder(found, places[k]);
            size_t lane = 0;
            for (size_t i = 1; i < kLanes; ++i) lane = keys[i] > keys[lane] ? i : lane;
            const auto at = static_cast<int64_t>(found[lane]);
            const auto last = static_cast<int64_t>(steps), first = static_cast<int64_t>(at == last ? n - kLanes : 0);
            indices[k] =
                at < 0 ? -1 : first + (at == last ? 0 : at * static_cast<int64_t>(kLanes)) + static_cast<int64_t>(lane);
        }
    }

    static uint64_t Outside(const Point* vertices, size_t n, const InnerPolygon& polygon) {
        if (n < kLanes) return kOutline_scalar.outside(vertices, n, polygon);
        const Vector zero = Lanes::Zero(), margin = zero - Lanes::All(polygon.margin);
        uint64_t bits = 0;
        const auto take = [&](size_t i) {
            Vector x, y;
            Lanes::Split(vertices + i, x, y);
            const Vector isFinite = Lanes::Equal((x - x) + (y - y), zero);
            Vector outside = polygon.edges == 0 ? isFinite : zero;
            for (int k = 0; k < polygon.edges; ++k) {
                const Point &from = polygon.from[k], &along = polygon.along[k];
                const Vector cross =
                    Lanes::All(along.y) * (x - Lanes::All(from.x)) - Lanes::All(along.x) * (y - Lanes::All(from.y));
                outside = Lanes::Or(outside, Lanes::AndNot(isFinite, Lanes::Less(cross, margin)));
            }
            double lanes[kLanes];
            Lanes::StoreInOrder(lanes, outside);
            bits |= uint64_t{Lanes::Bits(Lanes::Load(lanes))} << i;
        };
        for (size_t i = 0; i + kLanes <= n; i += kLanes) take(i);
        take(n - kLanes);
        return bits;
    }

    static constexpr OutlineKernels kAll = {&PathLength, &Sum,      &RoughSquares, &SquaresFrom,
                                            &CountTurns, &BoundsOf, &Farthest,     &Outside};

private:
    ORLIX_INLINE static double Largest(const Vector& v) {
        double lanes[kLanes];
        Lanes::Store(lanes, v);
        double largest = lanes[0];
        for (size_t k = 1; k < kLanes; ++k) largest = lanes[k] > largest ? lanes[k] : largest;
        return largest;
    }
    // See HasPositiveAngle().
    ORLIX_INLINE static Vector Positive(const Vector& x, const Vector& y) {
        const Vector zero = Lanes::Zero();
        return Lanes::Or(Lanes::Less(zero, y), Lanes::And(Lanes::Equal(y, zero), Lanes::Less(x, zero)));
    }
};

}  // namespace
}  // namespace orlix
