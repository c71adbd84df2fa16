#include "blobs/shape_measurements.hpp"

#include <algorithm>
#include <cmath>

#include "blobs/blob_rows.hpp"
#include "blobs/inscribed_circle.hpp"
#include "blobs/moments.hpp"
#include "blobs/perimeter.hpp"
#include "blobs/pixel_hull.hpp"
#include "numerics/elementary.hpp"

namespace orlix {
namespace {

constexpr double kPi = 3.14159265358979323846;

// In degrees, >= 0 and < 180.
double AxisAngle(double x, double y) {
    double angle = ArcTangent(y, x) * (180 / kPi);
    if (angle < 0) angle += 180;
    return angle >= 180 ? angle - 180 : angle;
}

// The point of the image at a point of the hull's coordinates.
Point InImage(const Point& p, const Box& box) { return {p.x + (box.left - 0.5), p.y + (box.top - 0.5)}; }

Caliper CaliperOf(const Strip& strip, const Box& box, const PixelSize& pixel) {
    const double ratio = pixel.y / pixel.x;
    return {strip.width * pixel.x, AxisAngle(strip.to.x - strip.from.x, ratio * (strip.to.y - strip.from.y)),
            InImage(strip.from, box), InImage(strip.to, box)};
}

int64_t Contacts(const BlobRows& rows, Connectivity connectivity) {
    int64_t contacts = 0;
    for (size_t i = 0; i + 1 < rows.count(); ++i)
        ForEachOverlap(rows[i], rows[i + 1], 0, connectivity == Connectivity::Eight ? 1 : 0,
                       [&](const LabelledRun&, const LabelledRun&) { ++contacts; });
    return contacts;
}

int64_t PixelsAtEdge(std::span<const LabelledRun> runs, int32_t width, int32_t height) {
    int64_t pixels = 0;
    for (const LabelledRun& run : runs) {
        const bool left = run.start == 0, right = run.stop == width - 1;
        if (run.row == 0 || run.row == height - 1 || run.length() == 1)
            pixels += run.row == 0 || run.row == height - 1 || left || right ? run.length() : 0;
        else
            pixels += (left ? 1 : 0) + (right ? 1 : 0);
    }
    return pixels;
}

void SetEllipse(const PixelMoments& moments, const PixelSize& pixel, ShapeMeasurements& shape) {
    // Covariances of the area. Along a diagonal line two nearly equal numbers cancel in the determinant, hence pairs.
    const double sx = pixel.x, sy = pixel.y;
    const DoublePair own = DoublePair(1) / 12;
    const DoublePair a = (moments.covarianceX + own) * (sx * sx), b = moments.covarianceXy * (sx * sy),
                     c = (moments.covarianceY + own) * (sy * sy);
    const double determinant = (a * c - b * b).high;
    const double xx = a.high, yy = c.high, twiceXy = 2 * b.high, difference = (a - c).high;
    const double root = std::sqrt(difference * difference + twiceXy * twiceXy);
    const double major = (xx + yy + root) / 2;
    const double minor = std::min(major, determinant / major);
    shape.ellipse.majorAxis = 4 * std::sqrt(major);
    shape.ellipse.minorAxis = 4 * std::sqrt(minor);
    // The direction (cos 2t, sin 2t) is that of (difference, twiceXy).
    double angle = ArcTangent(twiceXy, difference) * (90 / kPi);
    if (angle < 0) angle += 180;
    shape.ellipse.angle = root > 0 && angle < 180 ? angle : 0;
    shape.ellipse.eccentricity = std::sqrt(std::min(1.0, root / major));
    shape.aspectRatio = shape.ellipse.majorAxis / shape.ellipse.minorAxis;
}

void SetMoments(const PixelMoments& moments, const PixelSize& pixel, ShapeMeasurements& shape) {
    static constexpr std::array<int, kMoments> kX = {0, 1, 0, 2, 1, 0, 3, 2, 1, 0}, kY = {0, 0, 1, 0, 1, 2, 0, 1, 2, 3};
    const auto scaled = [&](double moment, size_t k) {
        double scale = pixel.x * pixel.y;
        for (int i = 0; i < kX[k]; ++i) scale *= pixel.x;
        for (int i = 0; i < kY[k]; ++i) scale *= pixel.y;
        return moment * scale;
    };
    for (size_t k = 0; k < kMoments; ++k) shape.rawMoments[k] = scaled(moments.raw[k], k);
    for (size_t k = M20; k < kMoments; ++k) {
        const double central = scaled(moments.central[k], k);
        const double square = shape.area * shape.area;
        shape.centralMoments[k - M20] = central;
        shape.normalisedMoments[k - M20] = central / (k < M30 ? square : square * std::sqrt(shape.area));
    }
    const auto [n20, n11, n02, n30, n21, n12, n03] = shape.normalisedMoments;
    const double p = n30 + n12, q = n21 + n03, r = n30 - 3 * n12, s = 3 * n21 - n03;
    const double u = p * (p * p - 3 * q * q), v = q * (3 * p * p - q * q);
    shape.huMoments = {n20 + n02,     (n20 - n02) * (n20 - n02) + 4 * n11 * n11,       r * r + s * s, p * p + q * q,
                       r * u + s * v, (n20 - n02) * (p * p - q * q) + 4 * n11 * p * q, s * u - r * v};
}

}  // namespace

ShapeMeasurer::ShapeMeasurer(const Labelling& labelling, uint32_t groups, PixelSize pixel)
    : labelling_(labelling), groups_(groups), pixel_(pixel), skeleton_(labelling.blobs, pixel.x, pixel.y) {}

void ShapeMeasurer::Measure(uint32_t label, ShapeMeasurements& shape) {
    const Components& blobs = labelling_.blobs;
    const std::span<const LabelledRun> runs = blobs.runs(label);
    const double sx = pixel_.x, sy = pixel_.y, ratio = sy / sx;

    Box box = {runs.front().start, runs.front().row, runs.front().stop, runs.back().row};
    int64_t pixels = 0;
    for (const LabelledRun& run : runs) {
        box.left = std::min(box.left, run.start);
        box.right = std::max(box.right, run.stop);
        pixels += run.length();
    }
    shape.pixelCount = pixels;
    shape.area = static_cast<double>(pixels) * (sx * sy);
    shape.equivalentRadius = std::sqrt(shape.area / kPi);
    shape.box = box;
    shape.extent = static_cast<double>(pixels) /
                   ((static_cast<double>(box.right) - box.left + 1) * (static_cast<double>(box.bottom) - box.top + 1));
    if (groups_ & (SG_Ellipse | SG_Moments)) {
        const PixelMoments moments = MomentsOf(runs, box, pixels);
        shape.centroid = moments.centroid;
        if (groups_ & SG_Ellipse) SetEllipse(moments, pixel_, shape);
        if (groups_ & SG_Moments) SetMoments(moments, pixel_, shape);
    } else {
        shape.centroid = CentroidOf(runs, box, pixels);
    }

    if (groups_ & SG_BorderContact) {
        shape.imageBorderPixels = PixelsAtEdge(runs, blobs.width(), blobs.height());
        shape.regionBorderPixels = labelling_.regionContacts.empty() ? 0 : labelling_.regionContacts[label];
    }
    if (groups_ & (SG_FilledArea | SG_Perimeter)) {
        paths_.Trace(runs, blobs.connectivity());
        if (groups_ & SG_FilledArea) shape.filledArea = static_cast<double>(SignedArea(paths_.path(0))) * (sx * sy);
    }
    if (groups_ & SG_Skeleton) {
        shape.skeletonLength = skeleton_.Length(label);
        shape.meanWidth = shape.area / shape.skeletonLength;
    }

    constexpr uint32_t kByRows = SG_Topology | SG_Perimeter | SG_CroftonPerimeter | SG_Hull | SG_Feret |
                                 SG_OrientedBox | SG_InscribedCircle | SG_EnclosingCircle;
    if (!(groups_ & kByRows)) return;
    const BlobRows rows(runs, rows_);
    if (groups_ & SG_Topology) {
        // Runs and their contacts are the nodes and the edges of a plane graph, whose faces are the holes.
        shape.eulerNumber = static_cast<int64_t>(runs.size()) - Contacts(rows, blobs.connectivity());
        shape.holes = 1 - shape.eulerNumber;
    }
    const bool square = std::fabs(sx - sy) <= 0.01 * std::min(sx, sy);
    if (groups_ & SG_CroftonPerimeter) shape.croftonPerimeter = CroftonPerimeter(rows, pixels, sx, sy);
    if (groups_ & SG_Perimeter) {
        shape.perimeter =
            square ? TracedPerimeter(paths_) * std::sqrt(sx * sy) : std::numeric_limits<double>::quiet_NaN();
        const double length = square ? shape.perimeter : CroftonPerimeter(rows, pixels, sx, sy);
        shape.circularity = 4 * kPi * shape.area / (length * length);
    }
    if (groups_ & (SG_Hull | SG_Feret | SG_OrientedBox | SG_EnclosingCircle)) {
        FindHull(rows, box, hull_);
        if (groups_ & SG_Hull) {
            const auto twice = static_cast<double>(TwiceHullArea(hull_));
            shape.hullArea = twice / 2 * (sx * sy);
            shape.hullPerimeter = HullPerimeter(hull_, ratio) * sx;
            shape.solidity = static_cast<double>(pixels) / (twice / 2);
        }
        if (groups_ & SG_Feret) {
            shape.feretMaximum = CaliperOf(LongestChord(hull_, ratio), box, pixel_);
            shape.feretMinimum = CaliperOf(NarrowestStrip(hull_, ratio), box, pixel_);
            const double length = shape.feretMaximum.length;
            shape.roundness = 4 * shape.area / (kPi * length * length);
            shape.compactness = std::sqrt(shape.roundness);
        }
        if (groups_ & SG_OrientedBox) {
            const HullBox found = SmallestBox(hull_, ratio);
            const bool along = found.along >= found.across;
            shape.orientedBox.centre = InImage(found.centre, box);
            shape.orientedBox.length = std::max(found.along, found.across) * sx;
            shape.orientedBox.width = std::min(found.along, found.across) * sx;
            shape.orientedBox.angle = along ? AxisAngle(found.direction.x, found.direction.y)
                                            : AxisAngle(-found.direction.y, found.direction.x);
        }
        if (groups_ & SG_EnclosingCircle) {
            const HullCircle circle = SmallestCircle(hull_, ratio);
            shape.enclosingCircle = {InImage(circle.centre, box), circle.radius * sx};
        }
    }
    if (groups_ & SG_InscribedCircle) {
        const InscribedCircle circle = FindInscribedCircle(rows, pixels, ratio, distances_);
        shape.inscribedCircle = {circle.centre, circle.radius * sx};
    }
}

}  // namespace orlix
