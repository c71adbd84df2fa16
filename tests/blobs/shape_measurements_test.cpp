#include "blobs/shape_measurements.hpp"

#include "binary/binary_pictures.hpp"
#include "geometry/outline.hpp"
#include "support/special_numbers.hpp"

namespace orlix {
namespace {

constexpr double kPi = 3.14159265358979323846;

ShapeMeasurements Measured(const Labelling& labelling, uint32_t label, PixelSize pixel = {}, uint32_t groups = SG_All) {
    ShapeMeasurements shape;
    ShapeMeasurer(labelling, groups, pixel).Measure(label, shape);
    return shape;
}

ShapeMeasurements Measured(const BitPlane& image, PixelSize pixel = {}) {
    return Measured(Label(RunsOf(image), Connectivity::Eight), 0, pixel);
}

// Slow definitions, from the pixels of one component.
class Slow {
public:
    Slow(const BitPlane& blob, PixelSize pixel) : blob_(blob), pixel_(pixel) {
        for (int32_t y = 0; y < blob.height(); ++y)
            for (int32_t x = 0; x < blob.width(); ++x)
                if (blob.bit(x, y)) {
                    pixels_.push_back({static_cast<double>(x), static_cast<double>(y)});
                    for (int i = 0; i < 4; ++i)
                        corners_.push_back({(x - 0.5 + i % 2) * pixel.x, (y - 0.5 + i / 2) * pixel.y});
                }
        for (const uint32_t i : ConvexHull(corners_)) hull_.push_back(corners_[i]);
    }

    double Count() const { return static_cast<double>(pixels_.size()); }
    const std::vector<Point>& hull() const { return hull_; }

    Point Centroid() const {
        Point sum;
        for (const Point& p : pixels_) sum = {sum.x + p.x, sum.y + p.y};
        return {sum.x / Count(), sum.y / Count()};
    }
    double Moment(int p, int q, Point about) const {
        double sum = 0;
        for (const Point& point : pixels_)
            sum += std::pow((point.x - about.x) * pixel_.x, p) * std::pow((point.y - about.y) * pixel_.y, q);
        return sum * pixel_.x * pixel_.y;
    }
    double FeretMaximum() const {
        double most = 0;
        for (const Point& a : hull_)
            for (const Point& b : hull_) most = std::max(most, Distance(a, b));
        return most;
    }
    // The extents along and across the direction of each side of the hull.
    std::vector<std::pair<double, double>> Boxes() const {
        std::vector<std::pair<double, double>> boxes;
        for (size_t i = 0; i < hull_.size(); ++i) {
            const Point &a = hull_[i], &b = hull_[(i + 1) % hull_.size()];
            const double length = Distance(a, b), ux = (b.x - a.x) / length, uy = (b.y - a.y) / length;
            std::array<double, 4> ends = {1e300, -1e300, 1e300, -1e300};
            for (const Point& p : hull_) {
                const double along = p.x * ux + p.y * uy, across = p.y * ux - p.x * uy;
                ends = {std::min(ends[0], along), std::max(ends[1], along), std::min(ends[2], across),
                        std::max(ends[3], across)};
            }
            boxes.push_back({ends[1] - ends[0], ends[3] - ends[2]});
        }
        return boxes;
    }
    double EnclosingRadius() const {
        double best = 1e300;
        const auto consider = [&](Point c, double radius) {
            for (const Point& p : hull_)
                if (Distance(p, c) > radius * (1 + 1e-12)) return;
            best = std::min(best, radius);
        };
        for (const Point& a : hull_)
            for (const Point& b : hull_) {
                consider({(a.x + b.x) / 2, (a.y + b.y) / 2}, Distance(a, b) / 2);
                for (const Point& c : hull_) {
                    const double bx = b.x - a.x, by = b.y - a.y, cx = c.x - a.x, cy = c.y - a.y;
                    const double d = 2 * (bx * cy - by * cx);
                    if (std::fabs(d) < 1e-9) continue;
                    const double x = (cy * (bx * bx + by * by) - by * (cx * cx + cy * cy)) / d,
                                 y = (bx * (cx * cx + cy * cy) - cx * (bx * bx + by * by)) / d;
                    consider({a.x + x, a.y + y}, Hypotenuse(x, y));
                }
            }
        return best;
    }
    Circle Inscribed() const {
        Circle best;
        for (int32_t v = -1; v <= 2 * blob_.height(); ++v)
            for (int32_t u = -1; u <= 2 * blob_.width(); ++u) {
                const double x = u / 2.0, y = v / 2.0;
                double least = 1e300;
                for (int32_t q = -1; q <= blob_.height(); ++q)
                    for (int32_t p = -1; p <= blob_.width(); ++p)
                        if (!IsSet(blob_, p, q))
                            least = std::min(least, Hypotenuse(std::max(std::fabs(x - p) - 0.5, 0.0) * pixel_.x,
                                                               std::max(std::fabs(y - q) - 0.5, 0.0) * pixel_.y));
                if (least > best.radius * (1 + 1e-12)) best = {{x, y}, least};
            }
        return best;
    }
    // Crossings counted line by line, with the shares of directions found by trying 3600 of them.
    double Crofton() const {
        static constexpr int kX[] = {1, 0, 1, -1, 2, -2, 1, -1}, kY[] = {0, 1, 1, 1, 1, 1, 2, 2};
        std::array<double, 8> share = {};
        for (int i = 0; i < 3600; ++i) {
            const double t = (i + 0.5) * kPi / 3600;
            size_t nearest = 0;
            double most = -1;
            for (size_t k = 0; k < 8; ++k) {
                const double x = kX[k] * pixel_.x, y = kY[k] * pixel_.y;
                const double cosine = std::fabs(x * std::cos(t) + y * std::sin(t)) / std::hypot(x, y);
                if (cosine > most) {
                    most = cosine;
                    nearest = k;
                }
            }
            share[nearest] += 1 / 3600.0;
        }
        double sum = 0;
        for (size_t k = 0; k < 8; ++k) {
            int64_t leaving = 0;
            for (const Point& p : pixels_)
                leaving += !IsSet(blob_, static_cast<int32_t>(p.x) + kX[k], static_cast<int32_t>(p.y) + kY[k]);
            sum += share[k] * static_cast<double>(leaving) / std::hypot(kX[k] * pixel_.x, kY[k] * pixel_.y);
        }
        return kPi * pixel_.x * pixel_.y * sum;
    }

private:
    BitPlane blob_;
    PixelSize pixel_;
    std::vector<Point> pixels_, corners_, hull_;
};

void ExpectAsDefined(const BitPlane& blob, const ShapeMeasurements& shape, PixelSize pixel, size_t holes) {
    const Slow slow(blob, pixel);
    const auto same = [](double expected, double value) {
        return std::fabs(expected - value) <= 1e-12 * std::max(1.0, std::fabs(expected));
    };
    SCOPED_TRACE(testing::PrintToString(blob));
    ASSERT_EQ(slow.Count(), static_cast<double>(shape.pixelCount));
    ASSERT_TRUE(same(slow.Count() * pixel.x * pixel.y, shape.area));
    ASSERT_TRUE(same(shape.area, kPi * shape.equivalentRadius * shape.equivalentRadius));
    const Point centroid = slow.Centroid();
    ASSERT_TRUE(same(centroid.x, shape.centroid.x) && same(centroid.y, shape.centroid.y));
    ASSERT_EQ(static_cast<int64_t>(holes), shape.holes);
    ASSERT_EQ(1 - shape.holes, shape.eulerNumber);

    ASSERT_TRUE(same(std::fabs(Area(slow.hull())), shape.hullArea));
    ASSERT_TRUE(same(Perimeter(slow.hull()), shape.hullPerimeter));
    ASSERT_TRUE(same(shape.area / shape.hullArea, shape.solidity));
    ASSERT_TRUE(same(slow.FeretMaximum(), shape.feretMaximum.length));
    double narrowest = 1e300, smallest = 1e300;
    for (const auto& [along, across] : slow.Boxes()) {
        narrowest = std::min(narrowest, across);
        smallest = std::min(smallest, along * across);
    }
    ASSERT_TRUE(same(narrowest, shape.feretMinimum.length)) << narrowest << ' ' << shape.feretMinimum.length;
    ASSERT_TRUE(same(smallest, shape.orientedBox.length * shape.orientedBox.width));
    ASSERT_GE(shape.orientedBox.length, shape.orientedBox.width);
    for (const Caliper& caliper : {shape.feretMaximum, shape.feretMinimum}) {
        const double x = (caliper.to.x - caliper.from.x) * pixel.x, y = (caliper.to.y - caliper.from.y) * pixel.y;
        ASSERT_TRUE(same(caliper.length, std::hypot(x, y)));
        ASSERT_TRUE(caliper.angle >= 0 && caliper.angle < 180);
        const double t = caliper.angle * kPi / 180;
        ASSERT_NEAR(0, x * std::sin(t) - y * std::cos(t), 1e-12 * caliper.length);
    }
    // The box at its place takes in all corners.
    const double t = shape.orientedBox.angle * kPi / 180;
    for (const Point& p : slow.hull()) {
        const double x = p.x - shape.orientedBox.centre.x * pixel.x, y = p.y - shape.orientedBox.centre.y * pixel.y;
        ASSERT_LE(std::fabs(x * std::cos(t) + y * std::sin(t)), shape.orientedBox.length / 2 + 1e-11);
        ASSERT_LE(std::fabs(y * std::cos(t) - x * std::sin(t)), shape.orientedBox.width / 2 + 1e-11);
        const double cx = p.x - shape.enclosingCircle.centre.x * pixel.x,
                     cy = p.y - shape.enclosingCircle.centre.y * pixel.y;
        ASSERT_LE(std::hypot(cx, cy), shape.enclosingCircle.radius * (1 + 1e-14));
    }
    ASSERT_TRUE(same(slow.EnclosingRadius(), shape.enclosingCircle.radius));
    const Circle inscribed = slow.Inscribed();
    ASSERT_TRUE(same(inscribed.radius, shape.inscribedCircle.radius));
    ASSERT_EQ(inscribed.centre, shape.inscribedCircle.centre);
    ASSERT_NEAR(slow.Crofton(), shape.croftonPerimeter, 1e-3 * shape.croftonPerimeter);

    static constexpr int kP[] = {0, 1, 0, 2, 1, 0, 3, 2, 1, 0}, kQ[] = {0, 0, 1, 0, 1, 2, 0, 1, 2, 3};
    for (size_t k = 0; k < 10; ++k) {
        ASSERT_TRUE(same(slow.Moment(kP[k], kQ[k], {}), shape.rawMoments[k]));
        if (k >= 3) {
            ASSERT_NEAR(slow.Moment(kP[k], kQ[k], centroid), shape.centralMoments[k - 3],
                        1e-11 * slow.Moment(2, 0, {}) + 1e-11 * slow.Moment(0, 2, {}) + 1e-11);
        }
    }
    // The ellipse has the moments from which it was made.
    const double major = shape.ellipse.majorAxis / 4, minor = shape.ellipse.minorAxis / 4,
                 e = shape.ellipse.angle * kPi / 180;
    const double xx = major * major * std::cos(e) * std::cos(e) + minor * minor * std::sin(e) * std::sin(e),
                 yy = major * major * std::sin(e) * std::sin(e) + minor * minor * std::cos(e) * std::cos(e),
                 xy = (major * major - minor * minor) * std::sin(e) * std::cos(e);
    ASSERT_NEAR(slow.Moment(2, 0, centroid) / shape.area + pixel.x * pixel.x / 12, xx, 1e-11 * xx);
    ASSERT_NEAR(slow.Moment(0, 2, centroid) / shape.area + pixel.y * pixel.y / 12, yy, 1e-11 * yy);
    ASSERT_NEAR(slow.Moment(1, 1, centroid) / shape.area, xy, 1e-11 * (xx + yy));
    ASSERT_NEAR(shape.ellipse.eccentricity, std::sqrt(std::max(0.0, 1 - minor * minor / (major * major))), 1e-7);

    int64_t atEdge = 0;
    for (int32_t y = 0; y < blob.height(); ++y)
        for (int32_t x = 0; x < blob.width(); ++x) atEdge += blob.bit(x, y) && TouchesEdge(blob, {{x, y}});
    ASSERT_EQ(atEdge, shape.imageBorderPixels);
}

TEST(ShapeMeasurements, EqualTheirDefinitionsOnNoise) {
    std::mt19937 random(13);
    for (int round = 0; round < 16; ++round) {
        const BitPlane noise = NoisePlane(1 + static_cast<int32_t>(random() % 14),
                                          1 + static_cast<int32_t>(random() % 11), 0.5 + 0.03 * round, 13);
        for (const Connectivity connectivity : kConnectivities) {
            const Labelling labelling = Label(RunsOf(noise), connectivity);
            const Holes tree = HolesOf(labelling.blobs);
            for (uint32_t label = 0; label < labelling.blobs.count(); ++label) {
                const BitPlane blob = Alone(labelling.blobs, label);
                const auto holes = static_cast<size_t>(std::ranges::count(tree.blobOfHole, label));
                for (const PixelSize pixel : {PixelSize{1, 1}, PixelSize{0.3, 0.7}, PixelSize{2.5, 1}}) {
                    const ShapeMeasurements shape = Measured(labelling, label, pixel);
                    ASSERT_NO_FATAL_FAILURE(ExpectAsDefined(blob, shape, pixel, holes));
                    // The area around which the outer path runs has no holes left.
                    const auto outer =
                        OutlinesOf(labelling.blobs.runs(label), connectivity, OutlineKind::PixelEdges).outer;
                    ASSERT_NEAR(Area(outer) * pixel.x * pixel.y, shape.filledArea, 1e-9);
                }
            }
        }
    }
}

// What the slow definitions leave open: corrected chains, ends of calipers, and what is exact.
TEST(ShapeMeasurements, KnownShapes) {
    const double root2 = std::sqrt(2.0);
    ShapeMeasurements s = Measured(PlaneOf("...|.#.|..."));
    EXPECT_EQ(2 * root2, s.perimeter);
    EXPECT_EQ(1, s.solidity);
    EXPECT_EQ(1, s.extent);
    EXPECT_EQ(45, s.feretMaximum.angle);
    EXPECT_EQ((Point{0.5, 0.5}), s.feretMaximum.from);
    EXPECT_EQ((Point{1.5, 1.5}), s.feretMaximum.to);
    EXPECT_EQ(s.ellipse.majorAxis, s.ellipse.minorAxis);
    EXPECT_EQ(0, s.ellipse.eccentricity);

    // 4 x 2: the chain has 6 steps right, left; 2 up, down; and 4 corners.
    s = Measured(PlaneOf("####|####"));
    EXPECT_DOUBLE_EQ(0.980 * 8 - 0.091 * 4 + 2 * root2, s.perimeter);
    EXPECT_EQ(0, s.orientedBox.angle);
    EXPECT_EQ((Point{1.5, 0.5}), s.orientedBox.centre);
    EXPECT_EQ(4, s.skeletonLength);
    EXPECT_EQ(2, s.meanWidth);
    EXPECT_DOUBLE_EQ(2, s.aspectRatio);  // of a rectangle, with the pixels' own moments, exactly
    EXPECT_EQ(0, s.centralMoments[3]);   // symmetric: third moments vanish without rounding
    EXPECT_EQ(8 * (16 - 1) / 12.0, s.centralMoments[0]);

    // A ring of 8 pixels: outside 8 steps and 4 corners, around the hole 4 diagonal steps.
    s = Measured(PlaneOf("###|#.#|###"));
    EXPECT_DOUBLE_EQ(0.980 * 8 - 0.091 * 4 + 1.406 * 4 - 0.091 * 4, s.perimeter);

    // Lengths along a diagonal, in pixels of 3 x 4.
    s = Measured(PlaneOf("#..|.#.|..#"), {3, 4});
    EXPECT_EQ(15, s.feretMaximum.length);
    EXPECT_NEAR(53.13010235415598, s.feretMaximum.angle, 1e-12);
    EXPECT_TRUE(std::isnan(s.perimeter));
    EXPECT_TRUE(std::isfinite(s.circularity));
}

TEST(ShapeMeasurements, CalibratedOnesAreScaled) {
    const Labelling labelling = Label(RunsOf(NoisePlane(30, 30, 0.6, 2)), Connectivity::Four);
    for (uint32_t label = 0; label < labelling.blobs.count(); ++label) {
        const ShapeMeasurements one = Measured(labelling, label), four = Measured(labelling, label, {4, 4});
        EXPECT_EQ(16 * one.area, four.area);
        EXPECT_EQ(4 * one.perimeter, four.perimeter);
        EXPECT_EQ(one.feretMaximum.angle, four.feretMaximum.angle);
        EXPECT_EQ(64 * 16 * one.centralMoments[3], four.centralMoments[3]);
        EXPECT_EQ(one.normalisedMoments, four.normalisedMoments);
        EXPECT_EQ(one.huMoments, four.huMoments);
        EXPECT_EQ(one.circularity, four.circularity);
        EXPECT_EQ(one.solidity, four.solidity);
    }
}

TEST(ShapeMeasurements, HuMomentsDoNotChangeWhenTurned) {
    const BitPlane shape = PlaneOf("####..|.#####|..##..|..#...|###...");
    const auto turned = EachPixel<BitPlane>(5, 6, [&](int32_t x, int32_t y) { return shape.bit(y, 4 - x); });
    const auto mirrored = EachPixel<BitPlane>(6, 5, [&](int32_t x, int32_t y) { return shape.bit(5 - x, y); });
    const auto hu = Measured(shape).huMoments, other = Measured(turned).huMoments,
               mirror = Measured(mirrored).huMoments;
    for (size_t k = 0; k < 7; ++k) {
        EXPECT_GT(std::fabs(hu[k]), 1e-12);
        EXPECT_NEAR(hu[k], other[k], 1e-13 * std::fabs(hu[0]));
        EXPECT_NEAR(k == 6 ? -hu[k] : hu[k], mirror[k], 1e-13 * std::fabs(hu[0]));
    }
}

// A rectangle of w x h pixels at (left, top) has the second moments N (w^2 - 1) / 12, N (h^2 - 1) / 12.
TEST(ShapeMeasurements, SumsOfTheLargestRectanglesAreExact) {
    for (const auto& [width, height] :
         {std::pair{46341, 46341}, {kMost, 1}, {kMost - 5, 9}, {20000, 70000}, {5, 100000}}) {
        RunTable table;
        table.width = kMost;
        table.height = height;
        for (int32_t y = 0; y < height; ++y) {
            table.runs.push_back({kMost - width, kMost - 1});
            table.ends.push_back(static_cast<uint32_t>(table.runs.size()));
        }
        const ShapeMeasurements s = Measured(Label(table, Connectivity::Eight), 0, {},
                                             SG_All & ~static_cast<uint32_t>(SG_InscribedCircle | SG_Skeleton));
        const double n = static_cast<double>(width) * height, w = width, h = height;
        EXPECT_EQ(int64_t{width} * height, s.pixelCount);
        EXPECT_EQ((Point{kMost - (w + 1) / 2, (h - 1) / 2}), s.centroid);
        EXPECT_DOUBLE_EQ(n * (w * w - 1) / 12, s.centralMoments[0]);
        EXPECT_EQ(0, s.centralMoments[1]);
        EXPECT_DOUBLE_EQ(n * (h * h - 1) / 12, s.centralMoments[2]);
        for (size_t k = 3; k < 7; ++k) EXPECT_EQ(0, s.centralMoments[k]);
        EXPECT_DOUBLE_EQ(n * s.centroid.x, s.rawMoments[1]);
        EXPECT_DOUBLE_EQ(4 / std::sqrt(12.0) * std::max(w, h), s.ellipse.majorAxis);
        EXPECT_DOUBLE_EQ(4 / std::sqrt(12.0) * std::min(w, h), s.ellipse.minorAxis);
        EXPECT_EQ(n, s.hullArea);
        EXPECT_EQ(n, s.filledArea);
        EXPECT_EQ(std::min(w, h), s.feretMinimum.length);
        EXPECT_DOUBLE_EQ(std::hypot(w, h) / 2, s.enclosingCircle.radius);
    }
}

// One pixel wide and long: the minor axis is that of the pixels' own moments.
TEST(ShapeMeasurements, DiagonalLinesAreThin) {
    RunTable table;
    table.width = table.height = 30000;
    for (int32_t y = 0; y < 30000; ++y) {
        table.runs.push_back({y, y});
        table.ends.push_back(static_cast<uint32_t>(table.runs.size()));
    }
    const ShapeMeasurements s = Measured(Label(table, Connectivity::Eight), 0);
    EXPECT_NEAR(4 * std::sqrt(1 / 12.0), s.ellipse.minorAxis, 1e-14);
    EXPECT_EQ(45, s.ellipse.angle);
    EXPECT_DOUBLE_EQ(std::sqrt(2.0), s.feretMinimum.length);
    EXPECT_EQ(0.5, s.inscribedCircle.radius);
    EXPECT_NEAR(30000 * std::sqrt(2.0), s.skeletonLength, 1e-7);
}

TEST(ShapeMeasurements, OnlyTheGroupsAskedForAreFilledIn) {
    const Labelling labelling = Label(RunsOf(PlaneOf("##.|###")), Connectivity::Eight);
    ShapeMeasurements shape;
    ShapeMeasurer(labelling, SG_Feret).Measure(0, shape);
    EXPECT_EQ(5, shape.pixelCount);
    EXPECT_GT(shape.feretMaximum.length, 0);
    EXPECT_EQ(0, shape.hullArea + shape.perimeter + shape.croftonPerimeter + shape.filledArea + shape.rawMoments[0] +
                     shape.ellipse.majorAxis + shape.enclosingCircle.radius + shape.inscribedCircle.radius +
                     shape.orientedBox.length + shape.skeletonLength);
}

}  // namespace
}  // namespace orlix
