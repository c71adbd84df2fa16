#include "blobs/gray_measurements.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <vector>

#include "image/image_layout.hpp"

namespace orlix {
namespace {

template <class Pixel>
struct GreyPicture {
    int32_t width, height;
    std::vector<Pixel> pixels;
    std::vector<VPAEntry> table;

    GreyPicture(int32_t w, int32_t h) : width(w), height(h), pixels(static_cast<size_t>(w * h)), table(1000) {
        for (int32_t i = 0; i < 600; ++i) table[static_cast<size_t>(200 + i)] = {i, i * w};
    }
    Pixel& at(int32_t x, int32_t y) { return pixels[static_cast<size_t>(y * width + x)]; }
    PixelView<const Pixel> view() const { return {pixels.data(), table.data() + 200, width, height}; }
};

// The components of pixels drawn at random.
Components ScatteredBlobs(int32_t width, int32_t height, uint32_t seed) {
    std::mt19937 random(seed);
    BitPlane plane(width, height);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) plane.setBit(x, y, random() % 100 < 45);
    return Connected(RunsOf(plane), Connectivity::Eight);
}

template <class Pixel>
class GreyMeasuring : public testing::Test {};
using GreyPixels = testing::Types<uint8_t, uint16_t, uint32_t, float>;
TYPED_TEST_SUITE(GreyMeasuring, GreyPixels);

// Every field by its definition, from a list of the pixels.
TYPED_TEST(GreyMeasuring, FollowsTheDefinitions) {
    using Pixel = TypeParam;
    GreyPicture<Pixel> picture(41, 29);
    std::mt19937 random(3);
    for (Pixel& pixel : picture.pixels) pixel = static_cast<Pixel>(random() % 200 * (sizeof(Pixel) > 1 ? 300 : 1));
    const Components found = ScatteredBlobs(41, 29, 4);
    GrayMeasurer<Pixel> measurer(found, picture.view(), GG_All);
    int planes = 0;
    for (uint32_t label = 0; label < found.count(); ++label) {
        SCOPED_TRACE(label);
        std::vector<double> values, boundary;
        double x = 0, y = 0, sum = 0;
        std::vector<std::array<double, 3>> around;
        const auto in = [&](int32_t column, int32_t row) { return found.LabelAt(column, row) == label; };
        for (int32_t row = 0; row < 29; ++row)
            for (int32_t column = 0; column < 41; ++column) {
                const auto g = static_cast<double>(picture.at(column, row));
                if (in(column, row)) {
                    values.push_back(g);
                    x += column * g, y += row * g, sum += g;
                    if (!in(column - 1, row) || !in(column + 1, row) || !in(column, row - 1) || !in(column, row + 1))
                        boundary.push_back(g);
                }
                bool beside = false;
                for (int32_t i = -2; i <= 2; ++i)
                    for (int32_t k = -2; k <= 2; ++k) beside |= in(column + i, row + k);
                if (beside && found.LabelAt(column, row) == kNoLabel)
                    around.push_back({static_cast<double>(column), static_cast<double>(row), g});
            }
        const BlobGrayMeasurements measured = measurer.Measure(label);
        const auto n = static_cast<double>(values.size());
        std::sort(values.begin(), values.end());
        EXPECT_EQ(sum, measured.integrated);
        EXPECT_EQ(values.front(), measured.minimum);
        EXPECT_EQ(values.back(), measured.maximum);
        EXPECT_EQ((values[(values.size() - 1) / 2] + values[values.size() / 2]) / 2, measured.median);
        std::map<double, int> counts;
        for (const double g : values) ++counts[g];
        EXPECT_EQ(std::max_element(counts.begin(), counts.end(),
                                   [](const auto& a, const auto& b) { return a.second < b.second; })
                      ->first,
                  measured.mode);
        if (sum > 0) {
            EXPECT_NEAR(x / sum, measured.xCentroid, 1e-9);
            EXPECT_NEAR(y / sum, measured.yCentroid, 1e-9);
        }
        double m2 = 0, m3 = 0, m4 = 0, edge = 0;
        for (const double g : values) {
            const double z = g - sum / n;
            m2 += z * z / n, m3 += z * z * z / n, m4 += z * z * z * z / n;
        }
        for (const double g : boundary) edge += g;
        EXPECT_NEAR(std::sqrt(m2), measured.standardDeviation, 1e-9 * (1 + m2));
        if (values.front() < values.back()) {
            EXPECT_NEAR(m3 / std::pow(m2, 1.5), measured.skewness, 1e-9);
            EXPECT_NEAR(m4 / (m2 * m2), measured.kurtosis, 1e-9 * measured.kurtosis);
        }
        EXPECT_NEAR(edge / static_cast<double>(boundary.size()), measured.boundaryAverage, 1e-9 * (1 + edge));
        EXPECT_EQ(sum, measured.volumeOverZero);
        EXPECT_NEAR(sum - n * values.front(), measured.volumeOverMinimum, 1e-6);

        // The plane leaves residuals that are orthogonal to 1, x and y: solved here by orthogonalisation.
        if (around.size() < 3) {
            EXPECT_TRUE(std::isnan(measured.volumeOverPlane));
            continue;
        }
        const auto count = static_cast<double>(around.size());
        double mx = 0, my = 0, mg = 0;
        for (const auto& p : around) mx += p[0] / count, my += p[1] / count, mg += p[2] / count;
        double xx = 0, xy = 0;
        for (const auto& p : around) xx += (p[0] - mx) * (p[0] - mx), xy += (p[0] - mx) * (p[1] - my);
        double yy = 0, xg = 0, yg = 0;
        for (const auto& p : around) {
            const double v = p[1] - my - xy / xx * (p[0] - mx);
            yy += v * v, yg += v * p[2], xg += (p[0] - mx) * p[2];
        }
        if (!(xx > 0 && yy > 1e-6)) continue;
        ++planes;
        double above = 0;
        for (int32_t row = 0; row < 29; ++row)
            for (int32_t column = 0; column < 41; ++column)
                if (in(column, row))
                    above += static_cast<double>(picture.at(column, row)) - mg - xg / xx * (column - mx) -
                             yg / yy * (row - my - xy / xx * (column - mx));
        EXPECT_NEAR(above, measured.volumeOverPlane, 1e-8 * (1 + sum));
    }
    EXPECT_GT(planes, 10);
}

// 40,000 columns of the largest value: sums that 64 bits could not hold with the columns' numbers.
TEST(GreyMeasurements, AreExactForWideRunsOfLargeValues) {
    constexpr int32_t kWidth = 40001;
    std::vector<uint32_t> pixels(kWidth, std::numeric_limits<uint32_t>::max());
    std::vector<VPAEntry> table(kWidth + 400);
    for (int32_t i = 0; i < kWidth; ++i) table[static_cast<size_t>(200 + i)] = {i, 0};
    BitPlane plane(kWidth, 1);
    for (int32_t x = 0; x < kWidth; ++x) plane.setBit(x, 0, true);
    const Components found = Connected(RunsOf(plane), Connectivity::Four);
    GrayMeasurer<uint32_t> measurer(found, {pixels.data(), table.data() + 200, kWidth, 1}, GG_All);
    const BlobGrayMeasurements measured = measurer.Measure(0);
    EXPECT_EQ(20000, measured.xCentroid);
    EXPECT_EQ(40001.0 * 4294967295.0, measured.integrated);
    EXPECT_EQ(0, measured.standardDeviation);
    EXPECT_TRUE(std::isnan(measured.skewness));
    EXPECT_EQ(0, measured.volumeOverMinimum);
    EXPECT_TRUE(std::isnan(measured.volumeOverPlane));
}

TEST(GreyMeasurements, SayWhereThereIsNoNumber) {
    GreyPicture<float> picture(8, 3);
    picture.at(1, 1) = std::numeric_limits<float>::quiet_NaN();
    picture.at(5, 1) = 1, picture.at(6, 1) = -1;
    BitPlane plane(8, 3);
    for (const int32_t x : {1, 2, 5, 6}) plane.setBit(x, 1, true);
    const Components found = Connected(RunsOf(plane), Connectivity::Four);
    GrayMeasurer<float> measurer(found, picture.view(), GG_All);
    EXPECT_TRUE(std::isnan(measurer.Measure(0).average));
    EXPECT_TRUE(std::isnan(measurer.Measure(0).maximum));
    EXPECT_EQ(0, measurer.Measure(1).average);
    EXPECT_TRUE(std::isnan(measurer.Measure(1).xCentroid));
    EXPECT_EQ(0, measurer.Measure(1).volumeOverPlane);
}

}  // namespace
}  // namespace orlix
