#include "blobs/gray_measurements.hpp"

#include "binary/binary_pictures.hpp"
#include "numerics/linear_system.hpp"
#include "support/band.hpp"

namespace orlix {
namespace {

template <class Pixel>
class GreyMeasuring : public testing::Test {};
TYPED_TEST_SUITE(GreyMeasuring, PixelTypes, );

// Every field by its definition, from a list of the pixels.
TYPED_TEST(GreyMeasuring, FollowsTheDefinitions) {
    using Pixel = TypeParam;
    Band<Pixel> picture{41, 29};
    std::mt19937 random(3);
    for (Pixel& pixel : picture.samples) pixel = static_cast<Pixel>(random() % 200 * (sizeof(Pixel) > 1 ? 300 : 1));
    const Components found = Connected(RunsOf(NoisePlane(41, 29, 0.45, 4)), Connectivity::Eight);
    GrayMeasurer<Pixel> measurer(found, picture.source(), GG_All);
    int planes = 0;
    for (uint32_t label = 0; label < found.count(); ++label) {
        SCOPED_TRACE(label);
        std::vector<double> values, boundary;
        double x = 0, y = 0, sum = 0;
        std::vector<std::array<double, 3>> around;
        const auto in = [&](int32_t column, int32_t row) { return found.LabelAt(column, row) == label; };
        for (int32_t row = 0; row < 29; ++row)
            for (int32_t column = 0; column < 41; ++column) {
                const auto g = static_cast<double>(picture.source().at(column, row));
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
        EXPECT_EQ(std::ranges::max_element(counts, {}, &std::pair<const double, int>::second)->first, measured.mode);
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

        // The plane by the normal equations of its pixels.
        if (around.size() < 3) {
            EXPECT_TRUE(std::isnan(measured.volumeOverPlane));
            continue;
        }
        std::vector<double> matrix(9), right(3), plane(3);
        for (const auto& [u, v, g] : around) {
            const double terms[] = {1, u - around[0][0], v - around[0][1]};
            for (size_t i = 0; i < 3; ++i) {
                right[i] += terms[i] * g;
                for (size_t k = 0; k < 3; ++k) matrix[3 * i + k] += terms[i] * terms[k];
            }
        }
        const SingularValueDecomposition decomposition(matrix, 3, 3);
        if (decomposition.Rank() < 3) continue;
        decomposition.Solve(right, plane);
        ++planes;
        double above = 0;
        for (int32_t row = 0; row < 29; ++row)
            for (int32_t column = 0; column < 41; ++column)
                if (in(column, row))
                    above += static_cast<double>(picture.source().at(column, row)) - plane[0] -
                             plane[1] * (column - around[0][0]) - plane[2] * (row - around[0][1]);
        EXPECT_NEAR(above, measured.volumeOverPlane, 1e-8 * (1 + sum));
    }
    EXPECT_GT(planes, 10);
}

// 40,000 columns of the largest value: sums that 64 bits could not hold with the columns' numbers.
TEST(GreyMeasurements, AreExactForWideRunsOfLargeValues) {
    constexpr int32_t kWidth = 40001;
    Band<uint32_t> picture{kWidth, 1};
    std::ranges::fill(picture.samples, std::numeric_limits<uint32_t>::max());
    const Components found = Connected(RunsOf(Opposite(BitPlane(kWidth, 1))), Connectivity::Four);
    GrayMeasurer<uint32_t> measurer(found, picture.source(), GG_All);
    const BlobGrayMeasurements measured = measurer.Measure(0);
    EXPECT_EQ(20000, measured.xCentroid);
    EXPECT_EQ(40001.0 * 4294967295.0, measured.integrated);
    EXPECT_EQ(0, measured.standardDeviation);
    EXPECT_TRUE(std::isnan(measured.skewness));
    EXPECT_EQ(0, measured.volumeOverMinimum);
    EXPECT_TRUE(std::isnan(measured.volumeOverPlane));
}

TEST(GreyMeasurements, SayWhereThereIsNoNumber) {
    Band<float> picture{8, 3};
    std::ranges::fill(picture.samples, 0.0f);
    picture.view().at(1, 1) = kFloatNan;
    picture.view().at(5, 1) = 1, picture.view().at(6, 1) = -1;
    const Components found = Connected(RunsOf(PlaneOf("........|.##..##.|........")), Connectivity::Four);
    GrayMeasurer<float> measurer(found, picture.source(), GG_All);
    EXPECT_TRUE(std::isnan(measurer.Measure(0).average));
    EXPECT_TRUE(std::isnan(measurer.Measure(0).maximum));
    EXPECT_EQ(0, measurer.Measure(1).average);
    EXPECT_TRUE(std::isnan(measurer.Measure(1).xCentroid));
    EXPECT_EQ(0, measurer.Measure(1).volumeOverPlane);
}

}  // namespace
}  // namespace orlix
