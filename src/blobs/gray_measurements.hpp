// Measurements of an image's grey values inside components.
#pragma once

#include <cstdint>
#include <limits>
#include <vector>

#include "blobs/labelling.hpp"
#include "image/pixel_view.hpp"

namespace orlix {

// What to measure: the sum of the groups wanted. The comments of BlobGrayMeasurements say what each group fills in.
enum GrayGroup : uint32_t {
    GG_Location = 1,
    GG_Statistics = 2,
    GG_Rank = 4,
    GG_Boundary = 8,
    GG_Volume = 16,
    GG_All = 31,
};

// Of the N pixels of a component, with the grey values g. Fields of groups that were not asked for are NaN, and so are
// all fields if a pixel is NaN.
struct BlobGrayMeasurements {
    static constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

    // GG_Location: sum(x g) / sum(g), and y likewise; NaN where the sum of g is 0.
    double xCentroid = kNone, yCentroid = kNone;

    // GG_Statistics: the moments are those over N; skewness and kurtosis (3 for a normal distribution) are NaN where
    // the standard deviation is 0.
    double minimum = kNone, maximum = kNone;
    double integrated = kNone;  // sum(g): exact, rounded once, for integer pixels
    double average = kNone;
    double standardDeviation = kNone, skewness = kNone, kurtosis = kNone;

    // GG_Rank: the median is the mean of the two middle values for an even N, the mode the smallest of the most
    // frequent.
    double median = kNone, mode = kNone;

    // GG_Boundary: the average over the pixels of which a neighbour (left, right, above or below) is not in the
    // component. The outside of the image is not.
    double boundaryAverage = kNone;

    // GG_Volume, for pixels of area 1: the sums of g, of g - minimum, and of g - plane, with the plane fitted by least
    // squares to the surroundings: the pixels at most kSurroundings columns and rows from one of the component that are
    // in no component. NaN where they do not determine a plane.
    double volumeOverZero = kNone, volumeOverMinimum = kNone, volumeOverPlane = kNone;
};

inline constexpr int32_t kSurroundings = 2;

// Measures components one after the other in an image of their size; memory is used again. Each measurement reads the
// pixels of the component (once for its values, once for their moments), and its surroundings if they are asked for.
// The same bits on every platform. Rank takes memory for the values of the largest component, unless pixels have at
// most 16 bits.
template <class Pixel>
class GrayMeasurer {
public:
    // Refers to the components and the pixels.
    GrayMeasurer(const Components& components, PixelView<const Pixel> image, uint32_t groups);

    BlobGrayMeasurements Measure(uint32_t label);

private:
    struct Sums;
    struct Plane;

    template <class Visit>
    void ForEachPixel(std::span<const LabelledRun> runs, const Visit& visit) const;
    void MeasureStatistics(std::span<const LabelledRun> runs, const Sums& sums, BlobGrayMeasurements& out) const;
    void MeasureRank(std::span<const LabelledRun> runs, BlobGrayMeasurements& out);
    void MeasureBoundary(std::span<const LabelledRun> runs, BlobGrayMeasurements& out);
    double OverPlane(std::span<const LabelledRun> runs, const Sums& sums);

    const Components& components_;
    PixelView<const Pixel> image_;
    uint32_t groups_;
    std::vector<uint32_t> rows_;
    std::vector<uint32_t> counts_;  // of the values of 8- and 16-bit pixels; 0 between measurements
    std::vector<Pixel> values_;
    std::vector<Run> around_, found_;
};

}  // namespace orlix
