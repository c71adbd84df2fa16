#include "geometry/outline.hpp"

#include "geometry/circle_fit.hpp"
#include "numerics/elementary.hpp"
#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

using testing::ElementsAre;

constexpr double kPi = 3.141592653589793;

// Random outlines of several kinds: coarse grids give many equal and collinear vertices.
std::vector<Point> RandomOutline(std::mt19937& random, int kind, size_t n) {
    std::vector<Point> outline;
    std::uniform_int_distribution<int> grid(0, kind == 0 ? 3 : 40);
    std::uniform_real_distribution<double> real(-1, 1);
    for (size_t i = 0; i < n; ++i) {
        const double angle = 2 * kPi * static_cast<double>(i) / static_cast<double>(n);
        if (kind < 2)
            outline.push_back({static_cast<double>(grid(random)), static_cast<double>(grid(random))});
        else if (kind == 2)
            outline.push_back({real(random), 1e6 + real(random)});
        else  // a regular polygon, whose diameters differ only by rounding
            outline.push_back({Cos(angle), Sin(angle)});
    }
    return outline;
}

template <class Check>
void ForRandomOutlines(uint32_t seed, std::initializer_list<size_t> sizes, const Check& check) {
    std::mt19937 random(seed);
    for (int kind = 0; kind < 4; ++kind)
        for (const size_t n : sizes) {
            SCOPED_TRACE(testing::Message() << "kind " << kind << ", " << n << " vertices");
            check(RandomOutline(random, kind, n));
        }
}

// A vertex is a corner unless it lies in a triangle of others, on a segment between others, or equals an earlier one.
bool IsCorner(const std::vector<Point>& points, size_t k) {
    const Point& p = points[k];
    for (size_t i = 0; i < k; ++i)
        if (points[i] == p) return false;
    // All others lie on one side of some line through p: the directions from p span less than half a turn.
    for (const Point& a : points) {
        if (a == p) continue;
        const bool first = std::all_of(points.begin(), points.end(), [&](const Point& b) {
            if (b == p) return true;
            const int turn = Turn(p, a, b);
            // On the line through a: must lie on a's side of p.
            return turn > 0 || (turn == 0 && (a.x - p.x) * (b.x - p.x) + (a.y - p.y) * (b.y - p.y) > 0);
        });
        if (first) return true;
    }
    return points.size() == 1 || std::all_of(points.begin(), points.end(), [&](const Point& b) { return b == p; });
}

// As all pairs tell; the first of equal ones.
void ExpectTheDiameter(const std::vector<Point>& points) {
    Diameter best;
    for (uint32_t i = 0; i < points.size(); ++i)
        for (uint32_t j = i + 1; j < points.size(); ++j)
            if (const double d = Distance(points[i], points[j]); d > best.length) best = {i, j, d};
    const Diameter got = DiameterOf(points);
    EXPECT_EQ(best.length, got.length);
    EXPECT_EQ((std::pair{best.i, best.j}), (std::pair{got.i, got.j}));
}

// Shifting or scaling an outline shifts or scales its centroid, anywhere and at any size.
TEST(Area, AndCentroidDependOnNeitherPlaceNorSize) {
    const std::vector<Point> shape = {{0, 0}, {3, 0}, {3, 1}, {1, 1}, {1, 4}, {0, 4}};  // an L: area 6, about (1, 1.5)
    const Point centroid = {1, 1.5};
    for (const double size : {1.0, 0.125, 0x1p500, 0x1p1020, 0x1p-500, 0x1p-1060})
        for (const double place : {0.0, 1.0, -4096.0, 1e6, 0x1p48}) {
            if (std::fabs(place) * size * 8 > 0x1p1023) continue;
            SCOPED_TRACE(testing::Message() << size << ' ' << place);
            std::vector<Point> outline;
            for (const Point& p : shape) outline.push_back({(p.x + place) * size, (p.y - 2 * place) * size});
            EXPECT_EQ(6 * size * size, Area(outline));
            EXPECT_EQ((Point{(centroid.x + place) * size, (centroid.y - 2 * place) * size}), SignedCentroid(outline));
            std::reverse(outline.begin(), outline.end());
            EXPECT_EQ((Point{-(centroid.x + place) * size, -(centroid.y - 2 * place) * size}), SignedCentroid(outline));
        }
    // Three pixels of a particle far from the image's corner; thirds are not exact.
    const std::vector<Point> three = {{1000000, 1000000}, {1000001, 1000000}, {1000000, 1000001}};
    EXPECT_EQ(0.5, Area(three));
    EXPECT_EQ((Point{1000000 + 1. / 3, 1000000 + 1. / 3}), SignedCentroid(three));
    // One axis huge, the other tiny: an area of 4. Then an area of about 1e617, which overflows.
    EXPECT_EQ(4, Area(std::vector<Point>{
                     {-0x1p1000, -0x1p-1000}, {0x1p1000, -0x1p-1000}, {0x1p1000, 0x1p-1000}, {-0x1p1000, 0x1p-1000}}));
    const std::vector<Point> whole = {
        {-1.5e308, -1.5e308}, {1.5e308, -1.5e308}, {1.5e308, 1.5e308}, {-1.5e308, 1.5e308}};
    EXPECT_EQ(kInfinity, Area(whole));
    EXPECT_EQ((Point{0, 0}), SignedCentroid(whole));
    EXPECT_EQ(1, Circularity(whole));
}

// Radii 1, 3, 1 and 3: their deviation is half their mean.
TEST(Circularity, IsTheSameAtEverySize) {
    for (const double size : {1.0, 0x1p1010, 0x1p-1010}) {
        std::vector<Point> outline = {{11, 20}, {10, 23}, {9, 20}, {10, 17}};
        for (Point& p : outline) p = {p.x * size, p.y * size};
        EXPECT_EQ(0.5, Circularity(outline)) << size;
    }
}

// Products of 53-bit doubles, which long double would round.
TEST(Area, IsRoundedOnce) {
    // 2 area = (2^53 - 1) (2^53 - 1) - 2^53 (2^53 - 2) = 1
    const double most = 0x1p53 - 1;
    EXPECT_EQ(0.5, Area(std::vector<Point>{{0, 0}, {most, 0x1p53}, {0x1p53 - 2, most}}));
    EXPECT_EQ(0, Area(std::vector<Point>{{0.1, 0.1}, {0.2, 0.2}, {0.7, 0.7}}));
    EXPECT_EQ(0, Area({}));
    for (const double odd : {kNaN, kInfinity})
        EXPECT_TRUE(std::isnan(Area(std::vector<Point>{{0, 0}, {odd, 0}, {1, 1}})));
    const Point of8 = SignedCentroid(std::vector<Point>{{0, 0}, {1, 1}, {1, 0}, {0, 1}});
    EXPECT_FALSE(std::isfinite(of8.x) || std::isfinite(of8.y));
}

// Twice the area is 2^53 + 1 + 2^-50, just above the middle of two doubles, between 2^120 and -2^120.
TEST(Area, IsSummedExactlyWherePairsOfDoublesDoNotDecide) {
    const double tall = 3002399751580331, tiny = 0x1p-25, huge = 0x1p60;  // 3 tall = 2^53 + 1
    EXPECT_EQ(0x1p52 + 1, Area(std::vector<Point>{{0, 0},
                                                  {huge, 0},
                                                  {huge, huge},
                                                  {0, 0},
                                                  {3, 0},
                                                  {3, tall},
                                                  {0, 0},
                                                  {tiny, 0},
                                                  {tiny, tiny},
                                                  {0, 0},
                                                  {huge, huge},
                                                  {huge, 0}}));
}

// Random outlines, also very large and very small, with edges and squares of every kind among ordinary ones.
TEST(OutlineKernels, EveryVariantGivesWhatTheDefinitionGives) {
    const auto bits = [](double v) { return std::bit_cast<uint64_t>(v); };
    for (const auto& variant : SupportedOnThisCpu(kOutlineKernels))
        ForRandomOutlines(12, {1, 2, 3, 4, 5, 8, 9, 16, 17, 31, 257}, [&](const std::vector<Point>& unscaled) {
            SCOPED_TRACE(variant.name);
            for (const double size : {1.0, 0x1p-400, 0x1p-540, 0x1p480}) {
                std::vector<Point> outline = unscaled;
                for (Point& p : outline) p = {p.x * size, p.y * size};
                const Point first = outline[0], last = outline.back();
                for (const double odd : {first.x, last.x, 0.0, 1e-300, 1e300, kInfinity, kNaN}) {
                    outline[outline.size() / 2].x = odd;
                    const OutlineKernels &kernels = *variant.fn, &definition = kOutline_scalar;
                    const Point* const p = outline.data();
                    const size_t n = outline.size();
                    EXPECT_EQ(bits(definition.pathLength(p, n - 1, 3)), bits(kernels.pathLength(p, n - 1, 3)));
                    const Edge edge(first, last);
                    std::vector<double> expected(n), got(n);
                    const double largest = definition.roughSquares(p, n, edge, expected.data());
                    if (edge.scale > 1e-140 && std::isfinite(largest) && std::isfinite(odd)) {
                        EXPECT_EQ(largest, kernels.roughSquares(p, n, edge, got.data()));
                        EXPECT_EQ(expected, got);
                    }
                    const Squares squares = definition.squares(p, n, first), fast = kernels.squares(p, n, first);
                    EXPECT_EQ((std::tuple{squares.least, squares.most, squares.areNumbers}),
                              (std::tuple{fast.least, fast.most, fast.areNumbers}));
                    const Point &a = p[n / 3], &b = p[n > 1 ? n / 3 + 1 : 0];
                    for (const double part : {0.0, 0.1, 0.3, 1. / 3, 0.5, 0.7, 0.9}) {
                        const Point from = {a.x + part * (b.x - a.x), a.y + part * (b.y - a.y)};
                        if (!std::isfinite(from.x + from.y)) continue;
                        const Turns turns = definition.turns(p, n - 1, from), some = kernels.turns(p, n - 1, from);
                        EXPECT_EQ(turns.areFinite, some.areFinite);
                        EXPECT_EQ(std::isfinite(odd) ? turns.count : some.count, some.count);
                    }
                    const Bounds box = definition.bounds(p, n), same = kernels.bounds(p, n);
                    EXPECT_EQ((std::tuple{box.left, box.top, box.right, box.bottom}),
                              (std::tuple{same.left, same.top, same.right, same.bottom}));
                    int64_t farthest[8], others[8];
                    definition.farthest(p, n, farthest);
                    kernels.farthest(p, n, others);
                    InnerPolygon inner;
                    for (size_t k = 0; k < 8; ++k) {
                        const auto key = [&](int64_t i) {
                            if (i < 0) return kNaN;
                            const Point& q = p[static_cast<size_t>(i)];
                            const double keys[] = {q.y, q.y - q.x, -q.x, -q.x - q.y, -q.y, q.x - q.y, q.x, q.x + q.y};
                            return keys[k];
                        };
                        EXPECT_TRUE(key(farthest[k]) == key(others[k]) || (farthest[k] < 0 && others[k] < 0)) << k;
                        inner.from[k] = {0.1 * first.x, 0.1 * first.y};
                        inner.along[k] = {Cos(0.8 * static_cast<double>(k)), Sin(0.8 * static_cast<double>(k))};
                    }
                    for (const int edges : {0, 1, 8}) {
                        inner.edges = edges;
                        const size_t part = std::min<size_t>(n, 64);
                        EXPECT_EQ(definition.outside(p, part, inner), kernels.outside(p, part, inner)) << edges;
                    }
                    const CrossSums sums = kernels.crossSums(p, n - 1);
                    if (!(sums.most < 1e150 && std::fabs(odd) < 1e150)) continue;
                    DoublePair forward = -sums.forward.high, backward = -sums.backward.high;
                    for (size_t i = 0; i + 1 < n; ++i) {
                        forward += ExactProduct(p[i].x, p[i + 1].y);
                        backward += ExactProduct(p[i].y, p[i + 1].x);
                        EXPECT_GE(sums.most, std::max(std::fabs(p[i].x), std::fabs(p[i].y)));
                    }
                    const double error = 0x1p-79 * sums.most * sums.most + 1e-300;
                    EXPECT_LE(std::fabs(forward.high - sums.forward.low), error + 0x1p-52 * std::fabs(forward.high));
                    EXPECT_LE(std::fabs(backward.high - sums.backward.low), error + 0x1p-52 * std::fabs(backward.high));
                }
            }
        });
}

// Zeros of both signs at the edge of the box: the first one decides.
TEST(Bounds, KeepTheSignOfTheFirstZero) {
    for (size_t n : {2u, 5u, 40u})
        for (size_t first = 0; first < n; ++first) {
            std::vector<Point> outline(n, {0, -0.0});
            for (size_t i = 0; i < first; ++i) outline[i] = {1, -1};
            outline[first] = {-0.0, 0};
            const Bounds bounds = BoundsOf(outline);
            EXPECT_TRUE(std::signbit(bounds.left) && bounds.left == 0 && bounds.bottom == 0);
            EXPECT_FALSE(std::signbit(bounds.bottom));
        }
}

// Vertices that are equally far, exactly or within rounding, in several blocks, and squares beyond the range.
TEST(DistancesFrom, TakesTheFirstOfEquallyFarVertices) {
    std::mt19937 random(13);
    for (const double size : {1.0, 0x1p-600, 0x1p600, 0x1p-1060})
        for (const int kind : {0, 1, 3}) {
            std::vector<Point> outline = RandomOutline(random, kind, 500);
            for (Point& p : outline) p = {p.x * size, p.y * size};
            for (const Point from : {Point{0, 0}, outline[7], Point{size, 2 * size}}) {
                ExtremeDistances expected = {-1, -1, kInfinity, 0};
                for (size_t i = 0; i < outline.size(); ++i) {
                    const double d = Distance(from, outline[i]);
                    if (d < expected.nearestDistance) expected.nearest = int64_t(i), expected.nearestDistance = d;
                    if (d > expected.farthestDistance) expected.farthest = int64_t(i), expected.farthestDistance = d;
                }
                const ExtremeDistances got = DistancesFrom(from, outline);
                EXPECT_EQ((std::tuple{expected.nearest, expected.farthest}), (std::tuple{got.nearest, got.farthest}));
                EXPECT_EQ(expected.nearestDistance, got.nearestDistance);
                EXPECT_EQ(expected.farthestDistance, got.farthestDistance);
            }
        }
    const ExtremeDistances odd = DistancesFrom({0, 0}, std::vector<Point>{{1, 1}, {kNaN, 2}, {kNaN, kInfinity}});
    EXPECT_EQ((std::tuple{0, 2}), (std::tuple{odd.nearest, odd.farthest}));
}

TEST(ConvexHull, HoldsTheCornersAndOnlyThemInOneDirection) {
    ForRandomOutlines(3, {1, 2, 3, 4, 7, 30, 90}, [](const std::vector<Point>& outline) {
        const std::vector<uint32_t> hull = ConvexHull(outline);
        std::vector<uint32_t> expected, sorted = hull;
        for (uint32_t k = 0; k < outline.size(); ++k)
            if (IsCorner(outline, k)) expected.push_back(k);
        std::sort(sorted.begin(), sorted.end());
        EXPECT_EQ(expected, sorted);
        const auto corner = [&](size_t k) { return outline[hull[k % hull.size()]]; };
        for (size_t k = 0; hull.size() > 2 && k < hull.size(); ++k)
            EXPECT_EQ(-1, Turn(corner(k), corner(k + 1), corner(k + 2)));
        for (const Point& p : outline) EXPECT_TRUE(p.y < corner(0).y || (p.y == corner(0).y && p.x <= corner(0).x));
    });
}

TEST(ConvexHull, TakesManyEqualVerticesAndLeavesOutWhatIsNoNumber) {
    EXPECT_THAT(ConvexHull(std::vector<Point>(1000000, {7, -3})), ElementsAre(0));
    const std::vector<Point> odd = {{kNaN, 0},  {0, 0},           {1e308, 0}, {0, kInfinity},
                                    {0, 1e308}, {-1e308, -1e308}, {1, 1}};
    EXPECT_THAT(ConvexHull(odd), ElementsAre(4, 2, 5));
    EXPECT_TRUE(ConvexHull(std::vector<Point>{{kNaN, 1}}).empty());
}

TEST(Diameter, IsTheFirstOfEqualPairsAsAllPairsTell) {
    ForRandomOutlines(4, {1, 2, 3, 10, 64, 300, 1000}, [](std::vector<Point> outline) {
        if (outline.size() > 2) outline[outline.size() / 2] = {kNaN, 0};
        ExpectTheDiameter(outline);
    });
}

// Rows of pixels, up and down in more stretches than are merged, and outlines too small for cells.
TEST(Diameter, AndHullOfRowsOfPixelsAreWhatAllPairsTell) {
    std::mt19937 random(14);
    for (const int teeth : {1, 3, 90})
        for (const double size : {1.0, 5e-324}) {
            std::vector<Point> outline;
            for (int k = 0; k < 4 * teeth; ++k)
                for (int step = 0; step < 4; ++step) {
                    const double y = k % 2 ? 3 - step : step, x = k + static_cast<double>(random() % 3);
                    outline.push_back({x * size, y * size});
                    outline.push_back({(x + 1) * size, y * size});
                }
            ExpectTheDiameter(outline);
            const std::vector<uint32_t> hull = ConvexHull(outline);
            for (uint32_t k = 0; size == 1 && teeth < 90 && k < outline.size(); ++k)
                EXPECT_EQ(IsCorner(outline, k), std::count(hull.begin(), hull.end(), k) == 1) << k;
        }
}

// Next to the ends lie vertices that are no corners, yet equally far apart once distances are rounded.
TEST(Diameter, LooksBesideTheCorners) {
    const double inside = std::nextafter(1e6, 0.0), tiny = 1e-11;
    std::mt19937 random(5);
    std::vector<Point> outline;
    for (const double x : {1e6, inside})
        for (const double side : {-1.0, 1.0})
            for (const double y : {0.0, tiny, -tiny, tiny / 3}) outline.push_back({side * x, y});
    for (int k = 0; k < 200; ++k) {
        std::shuffle(outline.begin(), outline.end(), random);
        ExpectTheDiameter(outline);
    }
    // Corner and vertex lie in neighbouring cells of 0.6 by 0.6.
    for (const double y : {599.9999999999, 600.0, 600.0000000001})
        ExpectTheDiameter({{-1e6, 0}, {1e6, y}, {1e6, 600}, {1e6, 600.0000000001}, {1e6, 599}, {0, 1}});
}

TEST(Diameter, IsDefinedForEverySizeOfNumbers) {
    EXPECT_EQ(0, DiameterOf(std::vector<Point>(1000000, {7, -3})).length);
    ExpectTheDiameter({{0, 0}, {1e308, 0}, {-1e308, 0}, {1.5e308, 0}});  // an infinite one
    ExpectTheDiameter({{0, 0}, {1e308, 0}, {0, 5e307}});
    ExpectTheDiameter({{0, 0}, {3e-320, 0}, {0, 1e-320}});
}

// For whole numbers: the winding number from the crossings of a ray to the right, for points off the outline.
TEST(Encloses, CountsTurns) {
    std::mt19937 random(6);
    for (int k = 0; k < 300; ++k) {
        std::vector<Point> outline = RandomOutline(random, k % 2, 9);
        const Point p = {std::floor(outline[0].x) + 0.5, std::floor(outline[1].y) + 0.25};
        int turns = 0;
        bool on = false;
        for (size_t i = 0; i < 9; ++i) {
            const Point &a = outline[i], &b = outline[(i + 1) % 9];
            const int turn = Turn(a, b, p);
            on = on || (turn == 0 && std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) &&
                        std::min(a.y, b.y) <= p.y && p.y <= std::max(a.y, b.y));
            if (a.y < p.y && b.y > p.y && turn > 0) ++turns;
            if (a.y > p.y && b.y < p.y && turn < 0) --turns;
        }
        if (!on) {
            EXPECT_EQ(turns != 0, Encloses(outline, p)) << k;
        }
    }
    const std::vector<Point> square = {{0, 0}, {2, 0}, {2, 2}, {0, 2}};
    EXPECT_TRUE(Encloses(square, {1, 1}));
    // Points on the outline follow the contract: an edge that starts at the smaller y or to the right counts as 180
    // degrees.
    EXPECT_TRUE(Encloses(square, {2, 1}) && Encloses(square, {1, 2}));
    EXPECT_FALSE(Encloses(square, {0, 1}) || Encloses(square, {1, 0}));
    EXPECT_FALSE(Encloses(std::vector<Point>{{0, 0}, {kInfinity, 0}, {0, 2}}, {1, 1}));
    EXPECT_FALSE(Encloses(square, {kNaN, 1}));
}

TEST(SubtendedAngle, MergesArcsAlsoAcrossZero) {
    const std::vector<Point> square = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    EXPECT_EQ(360, SubtendedAngle(square, {0, 0}));
    EXPECT_DOUBLE_EQ(90, SubtendedAngle(square, {-2, 0}));  // 315 to 45 degrees
    EXPECT_DOUBLE_EQ(90, SubtendedAngle(square, {2, 0}));
    EXPECT_NEAR(2 * 45, SubtendedAngle(square, {1, -1}), 1e-13);  // at a vertex: the angle between its neighbours
    EXPECT_NEAR(180, SubtendedAngle(square, {0, -1}), 1e-13);     // on an edge that counts as outside
    EXPECT_EQ(360, SubtendedAngle(square, {0, 1}));
    EXPECT_EQ(0, SubtendedAngle(std::vector<Point>{{3, 4}}, {0, 0}));
    EXPECT_NEAR(45, SubtendedAngle(std::vector<Point>{{1, 0}, {1, 1}, {1, 0.5}}, {0, 0}), 1e-13);
}

TEST(Simplify, LeavesOutWhatLiesWithinTheTolerance) {
    const std::vector<Point> straight = {{0, 0}, {1, 1. / 3}, {2, 2. / 3}, {3, 1}, {3, 2}, {3, 3}, {0, 3}, {0, 1}};
    EXPECT_THAT(Simplify(straight, 0), ElementsAre(0, 3, 5, 6));
    EXPECT_EQ(8u, Simplify(straight, -1).size());
    EXPECT_EQ(8u, Simplify(straight, kNaN).size());
    EXPECT_THAT(Simplify(straight, kInfinity), ElementsAre(0, 5));
    EXPECT_THAT(Simplify(std::vector<Point>(1000000, {1, 1}), 0), ElementsAre(0));
}

// Tests every vertex of a part in turn.
std::vector<uint32_t> PlainSimplify(const std::vector<Point>& outline, double tolerance) {
    const auto n = static_cast<uint32_t>(outline.size());
    const auto at = [&](uint32_t i) { return outline[i % n]; };
    const auto toEdge = [](const Point& p, const Point& a, const Point& b) {
        const double x = b.x - a.x, y = b.y - a.y, along = (p.x - a.x) * x + (p.y - a.y) * y;
        if (!(along > 0)) return Distance(p, a);
        if (along >= x * x + y * y) return Distance(p, b);
        return Turn(a, b, p) == 0 ? 0 : std::fabs((p.x - a.x) * y - (p.y - a.y) * x) / Hypotenuse(x, y);
    };
    uint32_t opposite = 0;
    for (uint32_t i = 1; i < n; ++i)
        if (Distance(at(0), at(i)) > Distance(at(0), at(opposite))) opposite = i;
    std::vector<bool> stays(n + 1, false);
    stays[0] = stays[opposite] = true;
    const std::function<void(uint32_t, uint32_t)> split = [&](uint32_t first, uint32_t last) {
        double most = tolerance;
        uint32_t farthest = first;
        for (uint32_t i = first + 1; i < last; ++i)
            if (const double d = toEdge(at(i), at(first), at(last)); d > most) most = d, farthest = i;
        if (farthest == first) return;
        stays[farthest] = true;
        split(first, farthest);
        split(farthest, last);
    };
    split(0, opposite);
    split(opposite, n);
    std::vector<uint32_t> kept;
    for (uint32_t i = 0; i < n; ++i)
        if (stays[i]) kept.push_back(i);
    return kept;
}

TEST(Simplify, KeepsWhatLookingAtEveryVertexKeeps) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> real(-1, 1);
    for (int kind = 0; kind < 9; ++kind)
        for (size_t n : {3u, 10u, 40u, 75u, 150u, 300u, 375u, 751u, 1500u}) {
            std::vector<Point> outline;
            if (kind < 4) outline = RandomOutline(random, kind, n);
            Point next;
            for (size_t i = 0; kind >= 4 && i < n; ++i) {
                const auto k = static_cast<double>(i);
                if (kind == 4)
                    next = {k, i % 2 ? k : -k};  // only one vertex splits off at a time
                else if (kind == 5)
                    next = {next.x + real(random), next.y + real(random)};
                else if (kind == 6)
                    next = {k * Cos(k / 20), k * Sin(k / 20)};
                else if (kind == 8) {  // mostly next to 0, where squares lose bits and vanish
                    const int exponent = random() % 20 ? -480 - static_cast<int>(random() % 80) : 0;
                    next = {std::ldexp(real(random), exponent), std::ldexp(real(random), exponent)};
                } else {  // on the line y = 3 x or next to it: nearer than the rounding of vertices farther along
                    next.x = std::ldexp(std::floor(real(random) * 0x1p50), -static_cast<int>(random() % 61));
                    next.y = i % 4 ? 3 * next.x : std::nextafter(3 * next.x, 0);
                }
                outline.push_back(next);
            }
            if (std::all_of(outline.begin(), outline.end(), [&](const Point& p) { return p == outline[0]; })) continue;
            for (const double tolerance : {0.0, 1e-3, 0.5, 3.0}) {
                SCOPED_TRACE(testing::Message() << kind << ' ' << n << ' ' << tolerance);
                const std::vector<uint32_t> kept = Simplify(outline, tolerance);
                EXPECT_EQ(PlainSimplify(outline, tolerance), kept);
                if (kind == 8) continue;  // would lose its smallest coordinates
                for (const double size : {0x1p900, 0x1p-900}) {
                    std::vector<Point> other;
                    for (const Point& p : outline) other.push_back({p.x * size, p.y * size});
                    EXPECT_EQ(kept, Simplify(other, tolerance * size));
                }
            }
        }
}

// Tested one by one, these would be 10^10 distances and take minutes.
TEST(Simplify, TakesNoTimeForEveryPairOfVertices) {
    std::vector<Point> outline;
    for (int i = 0; i < 100000; ++i) outline.push_back({1. * i, i % 2 ? 1. * i : -1. * i});
    EXPECT_EQ(outline.size(), Simplify(outline, 0.1).size());
}

TEST(RobustCircle, FindsTheCircleAmongThreeTenthsOfOutliers) {
    std::mt19937 random(9);
    std::normal_distribution<double> noise(0, 0.1);
    std::uniform_real_distribution<double> anywhere(0, 200);
    std::vector<Point> points;
    for (int i = 0; i < 600; ++i) {
        const double angle = 2 * kPi * i / 600, radius = 40 + noise(random);
        if (i % 10 < 3)
            points.push_back({anywhere(random), anywhere(random)});
        else
            points.push_back({100 + radius * Cos(angle), 80 + radius * Sin(angle)});
    }
    points[5] = {kNaN, 1};
    points[17] = {kInfinity, 1};
    const auto circle = RobustCircle(points, 0.68);
    ASSERT_TRUE(circle);
    EXPECT_NEAR(100, circle->center.x, 0.1);
    EXPECT_NEAR(80, circle->center.y, 0.1);
    EXPECT_NEAR(40, circle->radius, 0.1);
    EXPECT_EQ(circle->center, RobustCircle(points, 0.68)->center);

    EXPECT_FALSE(RobustCircle(std::vector<Point>{{0, 0}, {1, 1}, {2, 2}, {3, 3}}, 0.9));
    EXPECT_FALSE(RobustCircle(std::vector<Point>{{0, 0}, {1, 1}}, 0.9));
    for (const double p : {0.0, -1.0, kNaN}) EXPECT_FALSE(RobustCircle(points, p));
    const auto exact = RobustCircle(std::vector<Point>{{5, 0}, {0, 5}, {-5, 0}, {0, -5}, {3, 4}}, 7);
    ASSERT_TRUE(exact);
    EXPECT_NEAR(5, exact->radius, 1e-14);
}

}  // namespace
}  // namespace orlix
