#include "histogram_plot.hpp"

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

using namespace tool;

namespace {

Json Measured(const std::vector<double>& thresholds, const std::vector<int>& counts) {
    constexpr const char* kLabels[] = {"Otsu", "Minimum", "Gaussian mixture", "Entropy", "Exponential"};
    Json m;
    m["type"] = "8-bit";
    m["histogram"] = {{"firstBin", 0.0}, {"binWidth", 1.0}, {"counts", counts}};
    m["luminance"] = {{"lower", 0}, {"upper", 255}};
    m["phase"] = {{"method", "minimize-variance"}, {"lower", 0.0}, {"upper", 100.0}, {"pixels", 7}};
    for (size_t i = 0; i + 2 < thresholds.size(); ++i)
        m["thresholds"].push_back({{"label", kLabels[i]}, {"chosen", i == 0}, {"threshold", thresholds[i]}});
    m["thresholds"].push_back({{"label", "Trim"},
                               {"chosen", false},
                               {"left", thresholds[thresholds.size() - 2]},
                               {"right", thresholds.back()}});
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

}  // namespace

TEST(HistogramPlot, LabelsOverlapNeitherEachOtherNorTheLinesOfOthers) {
    const std::vector<int> counts(256, 10);
    for (const std::vector<double>& thresholds : {std::vector<double>{10, 60, 110, 160, 210, 5, 250},
                                                  {128, 128, 128, 128, 128, 128, 128},
                                                  {100, 101, 102, 103, 104, 99, 105},
                                                  {250, 251, 252, 253, 254, 249, 255},
                                                  {0, 1, 2, 3, 4, 0, 255}}) {
        const std::string svg = HistogramPlot(Measured(thresholds, counts));
        const std::vector<Label> labels = Labels(svg);
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
    Json m = Measured({100, 300, 128, 128, 1e300, 0, 255}, std::vector<int>(256, 1));
    m["thresholds"][0].erase("threshold");
    m["thresholds"][0]["message"] = "none";
    m["thresholds"][2]["threshold"] = nullptr;
    EXPECT_EQ(3u, Labels(HistogramPlot(m)).size());  // Entropy and the two of the trim
}

TEST(HistogramPlot, ASinglePeakThatWouldFlattenTheRestIsCutOffAndSaysSo) {
    std::vector<int> counts(256, 10);
    EXPECT_EQ(std::string::npos, HistogramPlot(Measured({1, 2, 3, 4, 5, 6, 7}, counts)).find("cut off"));
    counts[255] = 5000;
    EXPECT_NE(std::string::npos, HistogramPlot(Measured({1, 2, 3, 4, 5, 6, 7}, counts)).find("peak of 5000 cut off"));
}

TEST(HistogramPlot, DegenerateHistogramsAreDrawnToo) {
    for (const std::vector<int>& counts : {std::vector<int>{}, {0}, {7}, {0, 0}, {2147483647, 2147483647}}) {
        const std::string svg = HistogramPlot(Measured({0, 0, 0, 0, 0, 0, 0}, counts));
        EXPECT_EQ(std::string::npos, svg.find("nan"));
        EXPECT_EQ(std::string::npos, svg.find("inf"));
        EXPECT_EQ(std::string::npos, svg.find("–"));
        EXPECT_NE(std::string::npos, svg.find("</svg>"));
    }
}
