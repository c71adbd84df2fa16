#include "binary/distance.hpp"

#include "binary/binary_pictures.hpp"
#include "binary/watershed.hpp"
#include "support/slow_distance.hpp"
#include "support/special_numbers.hpp"
#include "support/testing.hpp"

namespace orlix {
namespace {

void ExpectDistances(const BitPlane& image) {
    const std::vector<int64_t> expected = SlowDistances(image);
    ASSERT_EQ(expected, SquaredDistances<int64_t>(image)) << testing::PrintToString(image);
    const std::vector<int32_t> narrow = SquaredDistances<int32_t>(image);
    ASSERT_EQ(expected.size(), narrow.size());
    for (size_t i = 0; i < narrow.size(); ++i)
        ASSERT_EQ(expected[i], narrow[i] == kInfiniteDistance<int32_t> ? kInfiniteDistance<int64_t> : narrow[i]);
}

TEST(Distances, AreTheSmallestOfAll) {
    ForEachPlaneOfSize(3, 4, ExpectDistances);
    ForEachPlaneOfAnyWidth(ExpectDistances);
    // A single background pixel; none is tried with the small sizes.
    for (const auto& [x, y] : {std::pair{0, 0}, std::pair{39, 0}, std::pair{17, 8}, std::pair{39, 22}}) {
        BitPlane image = Opposite(BitPlane(40, 23));
        image.setBit(x, y, false);
        ExpectDistances(image);
    }
}

TEST(Distances, BeyondInt32AreExact) {
    EXPECT_TRUE(DistancesFitInt32(46341, 1));
    EXPECT_FALSE(DistancesFitInt32(46342, 1));
    EXPECT_TRUE(DistancesFitInt32(32768, 32768));
    EXPECT_FALSE(DistancesFitInt32(1, 46342));
    EXPECT_FALSE(DistancesFitInt32(INT32_MAX, INT32_MAX));
    for (const bool across : {false, true}) {
        constexpr int32_t kLength = 100000;
        BitPlane image = Opposite(BitPlane(across ? kLength : 1, across ? 1 : kLength));
        image.setBit(0, 0, false);
        const std::vector<int64_t> distances = SquaredDistances<int64_t>(image);
        for (int64_t i = 0; i < kLength; ++i) ASSERT_EQ(i * i, distances[static_cast<size_t>(i)]);
        BitPlane end(image.width(), image.height());
        end.setBit(image.width() - 1, image.height() - 1, true);
        EXPECT_EQ(end, UltimatePoints(image, Connectivity::Four));
        EXPECT_EQ(image, WatershedSplit(image, Connectivity::Four, {}));
    }
}

constexpr SplitDepth kDepths[] = {{0, 0}, {0.5, 0}, {0.25, 0.2}, {0, 1}};

void ExpectMaximaAndSplit(const BitPlane& image, const SplitDepth& depth) {
    for (const Connectivity connectivity : kConnectivities) {
        ASSERT_EQ(SlowUltimatePoints(image, SquaredDistances<int64_t>(image), connectivity),
                  UltimatePoints(image, connectivity));
        ASSERT_EQ(SlowSplit(image, SquaredDistances<int64_t>(image), connectivity, depth.pixels, depth.share),
                  WatershedSplit(image, connectivity, depth))
            << depth.pixels << " " << depth.share << testing::PrintToString(image);
    }
}

TEST(Watershed, MaximaAndSplitEqualTheirSlowDefinitions) {
    ForEachPlaneOfSize(3, 3, [](const BitPlane& image) { ExpectMaximaAndSplit(image, {}); });
    for (int32_t width = 1; width <= 70; ++width) {
        const auto seed = static_cast<uint32_t>(width);
        ExpectMaximaAndSplit(NoisePlane(width, 5, 0.85, seed), kDepths[seed % 2]);
        ExpectMaximaAndSplit(DiskPlane(width, 13, 1 + width / 4, 6, seed), kDepths[seed % 4]);
    }
    ExpectMaximaAndSplit(BitPlane(), {});
    // Thin components in one another, which share a grid, with compact ones between them.
    const BitPlane disks = DiskPlane(60, 60, 40, 4, 1);
    const auto rings = EachPixel<BitPlane>(60, 60, [&](int32_t x, int32_t y) {
        const int32_t ring = std::min({x, y, 59 - x, 59 - y});
        return ring % 10 < 4 ? ring % 10 == 1 || (ring % 20 == 2 && x > 30) : disks.bit(x, y);
    });
    ExpectMaximaAndSplit(DiskPlane(200, 130, 60, 20, 3), {1, 0});
    for (const SplitDepth& depth : kDepths) {
        ExpectMaximaAndSplit(rings, depth);
        ExpectMaximaAndSplit(DiskPlane(50, 50, 30, 9, 1), depth);
    }
}

size_t PartsOf(const BitPlane& image, const SplitDepth& depth) {
    return SlowComponents(WatershedSplit(image, Connectivity::Eight, depth), Connectivity::Eight).pixels.size();
}

// Two disks of radius 20 whose centres are 34 apart: the neck is 10 or 11 from the middle to either side.
TEST(Watershed, SplitsWhereTheNeckIsNarrowEnough) {
    const auto image = EachPixel<BitPlane>(90, 50, [](int32_t x, int32_t y) {
        const int32_t dx = std::min(std::abs(x - 27), std::abs(x - 61));
        return dx * dx + (y - 25) * (y - 25) <= 400;
    });
    for (const SplitDepth& depth : {SplitDepth{2, 0}, {9, 0}, {0, 0.4}}) EXPECT_EQ(2u, PartsOf(image, depth));
    for (const SplitDepth& depth : {SplitDepth{11, 0}, {0, 0.6}}) EXPECT_EQ(1u, PartsOf(image, depth));
    const auto line = EachPixel<BitPlane>(90, 50, [&](int32_t x, int32_t y) { return image.bit(x, y) && x != 44; });
    EXPECT_EQ(line, WatershedSplit(image, Connectivity::Eight, {2, 0}));
    for (const SplitDepth& depth : {SplitDepth{kInfinity, 0}, {kInfinity, kInfinity}})
        EXPECT_EQ(image, WatershedSplit(image, Connectivity::Eight, depth));
    for (const SplitDepth& depth : {SplitDepth{kNaN, -1}, {-kInfinity, kNaN}})
        EXPECT_EQ(WatershedSplit(image, Connectivity::Eight, {}), WatershedSplit(image, Connectivity::Eight, depth));
}

// Whether a pixel lies in an ellipse of the given half axes, turned by 30 degrees.
bool InEllipse(double x, double y, double a, double b) {
    const double along = 0.75 * x + 0.66 * y, across = 0.75 * y - 0.66 * x;
    return along * along / (a * a) + across * across / (b * b) <= 1;
}

TEST(Watershed, TheUsualDepthSplitsNoSmoothParticleAndFindsNecks) {
    std::mt19937 random(1);
    const auto part = [&] { return static_cast<double>(random() % 1000) / 1000; };
    for (const double radius : {4.0, 6.0, 9.0, 14.0, 22.0, 40.0})
        for (int i = 0; i < 12; ++i) {
            const double x = part(), y = part(), longer = 1 + 0.1 * i;
            const auto size = static_cast<int32_t>(5 * radius) + 10;
            const double middle = size / 2.0, apart = 0.9 * radius;
            BitPlane single(size, size), pair(size, size);
            for (int32_t v = 0; v < size; ++v)
                for (int32_t u = 0; u < size; ++u) {
                    const double dx = u - middle - x, dy = v - middle - y;
                    single.setBit(u, v, InEllipse(dx, dy, longer * radius, radius / longer));
                    // The neck is the root of 1 - 0.9^2, 0.44 of the radius.
                    pair.setBit(u, v,
                                InEllipse(dx - apart, dy, radius, radius) || InEllipse(dx + apart, dy, radius, radius));
                }
            EXPECT_EQ(1u, PartsOf(single, kUsualSplitDepth)) << radius << " " << longer;
            EXPECT_EQ(2u, PartsOf(pair, kUsualSplitDepth)) << radius;
        }
}

}  // namespace
}  // namespace orlix
