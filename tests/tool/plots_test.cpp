// The drawings of the reports: what they show, and that no measurement spoils them.
#include "histogram_plot.hpp"
#include "profile_plot.hpp"
#include "residual_map.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <numeric>
#include <regex>

namespace tool {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN(), kInfinity = std::numeric_limits<double>::infinity();

void ExpectSoundDrawing(const std::string& svg) {
    for (const char* none : {"nan", "inf", "–"}) EXPECT_EQ(std::string::npos, svg.find(none));
    EXPECT_NE(std::string::npos, svg.find("</svg>"));
    EXPECT_LT(svg.size(), 100000u);
}

// -------------------------------------------------------------------------------------------------------
// the histogram

Json Thresholded(const std::vector<double>& thresholds, const std::vector<int>& counts) {
    constexpr const char* kLabels[] = {"Otsu", "Minimum", "Gaussian mixture", "Entropy", "Exponential"};
    Json m;
    m["type"] = "8-bit";
    m["histogram"] = {{"firstBin", 0.0}, {"binWidth", 1.0}, {"counts", counts}};
    m["luminance"] = {{"lower", 0}, {"upper", 255}};
    m["phase"] = {{"method", "minimize-variance"}, {"lower", 0.0}, {"upper", 100.0}, {"pixels", 7}};
    for (size_t i = 0; i < 5; ++i)
        m["thresholds"].push_back({{"label", kLabels[i]}, {"chosen", i == 0}, {"threshold", thresholds[i]}});
    m["thresholds"].push_back(
        {{"label", "Trim"}, {"chosen", false}, {"left", thresholds[5]}, {"right", thresholds[6]}});
    return m;
}

struct Label {
    double x, y;
    std::string text;
    double Right() const { return x + 7.3 * static_cast<double>(text.size()); }  // a wide sans-serif at this size
};

std::vector<Label> Labels(const std::string& svg) {
    const std::regex pattern("<text x='([^']+)' y='([^']+)' class='mark[^']*'>([^<]*)<");
    std::vector<Label> labels;
    for (std::sregex_iterator at(svg.begin(), svg.end(), pattern), end; at != end; ++at)
        labels.push_back({std::stod((*at)[1]), std::stod((*at)[2]), (*at)[3]});
    return labels;
}

TEST(HistogramPlot, LabelsOverlapNeitherEachOtherNorTheLinesOfOthers) {
    const std::vector<int> counts(256, 10);
    for (const std::vector<double>& thresholds : {std::vector<double>{10, 60, 110, 160, 210, 5, 250},
                                                  {128, 128, 128, 128, 128, 128, 128},
                                                  {100, 101, 102, 103, 104, 99, 105},
                                                  {250, 251, 252, 253, 254, 249, 255},
                                                  {0, 1, 2, 3, 4, 0, 255}}) {
        const std::vector<Label> labels = Labels(HistogramPlot(Thresholded(thresholds, counts)));
        ASSERT_EQ(7u, labels.size());
        for (const Label& a : labels) {
            SCOPED_TRACE(a.text);
            EXPECT_LE(a.Right(), 960) << "leaves the drawing";
            for (const Label& b : labels) {
                if (&a == &b) continue;
                const bool besides = a.Right() <= b.x || b.Right() <= a.x, above = std::abs(a.y - b.y) >= 14;
                EXPECT_TRUE(besides || above) << "overlaps " << b.text;
                // The line of b stands 5 left of its label and runs from there down.
                const double line = b.x - 5;
                EXPECT_FALSE(line > a.x && line < a.Right() && a.y > b.y) << "is crossed by the line of " << b.text;
            }
        }
    }
}

TEST(HistogramPlot, ThresholdsOutsideTheGreyLevelsOrNotFoundAreLeftOut) {
    Json m = Thresholded({100, 300, 128, 128, 1e300, 0, 255}, std::vector<int>(256, 1));
    m["thresholds"][0].erase("threshold");
    m["thresholds"][0]["message"] = "none";
    m["thresholds"][2]["threshold"] = nullptr;
    EXPECT_EQ(3u,
              Labels(HistogramPlot(m)).size());  // Entropy and the two of the trim
}

TEST(HistogramPlot, ASinglePeakThatWouldFlattenTheRestIsCutOffAndSaysSo) {
    std::vector<int> counts(256, 10);
    const auto plot = [&] { return HistogramPlot(Thresholded({1, 2, 3, 4, 5, 6, 7}, counts)); };
    EXPECT_EQ(std::string::npos, plot().find("cut off"));
    counts[255] = 5000;
    EXPECT_NE(std::string::npos, plot().find("peak of 5000 cut off"));
    for (const std::vector<int>& degenerate : {std::vector<int>{}, {0}, {7}, {0, 0}, {2147483647, 2147483647}})
        ExpectSoundDrawing(HistogramPlot(Thresholded({0, 0, 0, 0, 0, 0, 0}, degenerate)));
}

// ----------------------------------------------------------------------------------------------------------
// the profile

TEST(ProfilePlot, BreaksWhereTheRegionDoesAndNeverWritesWhatIsNoNumber) {
    const auto plot = [](const std::vector<double>& values) {
        return ProfilePlot({"x, pixels", 1, "grey level", "residual, grey levels", values, values, values});
    };
    const std::string svg = plot({1, 2, kNan, 3, 4});
    // Each of the three curves: two pieces of two points.
    const auto first = svg.find("<path d='"), end = svg.find('\'', first + 9);
    const std::string path = svg.substr(first + 9, end - first - 9);
    EXPECT_EQ(2, std::count(path.begin(), path.end(), 'M'));
    EXPECT_EQ(2, std::count(path.begin(), path.end(), 'L'));
    for (const std::vector<double>& values : {std::vector<double>{5},
                                              {5, 5},
                                              {0, 0, 0},
                                              {1e300, -1e300},
                                              {kNan, 1, kInfinity},
                                              std::vector<double>(5000, 1)})
        ExpectSoundDrawing(plot(values));
    for (const std::vector<double>& values : {std::vector<double>{}, {kNan, kNan}})
        EXPECT_THAT(plot(values), testing::HasSubstr("No pixel of the region"));
}

// ---------------------------------------------------------------------------------------------------
// the residual's map

using Colour = std::vector<int>;
const Colour kNoNumber = {150, 150, 150};

std::vector<Colour> Colours(const Picture& picture) {
    std::vector<Colour> colours;
    for (auto at = picture.samples.begin(); at != picture.samples.end(); at += 3) colours.emplace_back(at, at + 3);
    return colours;
}

TEST(ResidualMap, ColoursAreSymmetricEndAtTheLimitAndLeaveGreyToWhatIsNoNumber) {
    const auto infinity = static_cast<float>(kInfinity), nan = static_cast<float>(kNan);
    const auto c = Colours(ResidualPicture({-infinity, -9, -3, 0, 3, 9, infinity, nan}, 8, 1, 3));
    ASSERT_EQ(8u, c.size());
    EXPECT_EQ((std::vector{c[2], c[2], c[4], c[4], kNoNumber}), (std::vector{c[0], c[1], c[5], c[6], c[7]}));
    EXPECT_GT(c[2][2], c[2][0] + 50) << "blue below";
    EXPECT_GT(c[4][0], c[4][2] + 50) << "red above";
    EXPECT_GT(*std::min_element(c[3].begin(), c[3].end()), 240) << "white on the surface";
    // Rising lightness from both ends to the middle.
    std::vector<float> scale(101);
    std::iota(scale.begin(), scale.end(), -50.0f);
    std::vector<double> lightness;
    for (const Colour& colour : Colours(ResidualPicture(scale, 101, 1, 50)))
        lightness.push_back(0.299 * colour[0] + 0.587 * colour[1] + 0.114 * colour[2]);
    for (size_t i = 0; i < 50; ++i) {
        EXPECT_LT(lightness[i], lightness[i + 1]) << i;
        EXPECT_LT(lightness[100 - i], lightness[99 - i]) << i;
    }
}

TEST(ResidualMap, LimitIsARoundNumberOfUnitsThatOneInTwoHundredMayExceed) {
    std::vector<float> residual(1000, 0.7f);
    std::fill_n(residual.begin(), 5, -5000.0f);
    EXPECT_DOUBLE_EQ(0.8, ResidualLimit(residual, 1));
    EXPECT_DOUBLE_EQ(20 / 26.0, ResidualLimit(residual, 26)) << "18.2 units: up to 20";
    residual[5] = -5000;
    EXPECT_DOUBLE_EQ(5000, ResidualLimit(residual, 1));
    const auto infinity = static_cast<float>(kInfinity), nan = static_cast<float>(kNan);
    for (const std::vector<float>& none : {std::vector<float>{}, {0, 0}, {nan}, {infinity}})
        EXPECT_DOUBLE_EQ(0.5, ResidualLimit(none, 2));
}

TEST(ResidualMap, LargeImagesAreAveragedWithoutWhatIsNoNumber) {
    std::vector<float> residual(2000, 4);
    std::fill_n(residual.begin() + 1, 3, static_cast<float>(kNan));
    const Picture picture = ResidualPicture(residual, 2000, 1, 4);
    EXPECT_EQ(1000, picture.width);
    const auto colours = Colours(picture);
    EXPECT_EQ(colours[0], colours[2]);
    EXPECT_EQ(kNoNumber, colours[1]);
}

}  // namespace
}  // namespace tool
