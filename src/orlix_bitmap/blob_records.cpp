#include "orlix_bitmap/blob_records.hpp"

#include <algorithm>
#include <iterator>

#include "component/failure.hpp"

namespace orlix {
namespace {

constexpr SingleMeasurement Shape(SingleMeasurementType type, uint32_t groups, double (*of)(const ShapeMeasurements&)) {
    return {type, groups, of, nullptr};
}
constexpr SingleMeasurement Gray(SingleMeasurementType type, double (*of)(const BlobGrayMeasurements&, double)) {
    return {type, 0, nullptr, of};
}

using S = const ShapeMeasurements&;
using G = const BlobGrayMeasurements&;

constexpr SingleMeasurement kSingleMeasurements[] = {
    Shape(SMT_PixelCount, SG_Size, [](S s) { return static_cast<double>(s.pixelCount); }),
    Shape(SMT_Area, SG_Size, [](S s) { return s.area; }),
    Shape(SMT_EquivalentRadius, SG_Size, [](S s) { return s.equivalentRadius; }),
    Shape(SMT_Left, SG_Size, [](S s) { return 1.0 * s.box.left; }),
    Shape(SMT_Top, SG_Size, [](S s) { return 1.0 * s.box.top; }),
    Shape(SMT_Right, SG_Size, [](S s) { return 1.0 * s.box.right; }),
    Shape(SMT_Bottom, SG_Size, [](S s) { return 1.0 * s.box.bottom; }),
    Shape(SMT_Extent, SG_Size, [](S s) { return s.extent; }),
    Shape(SMT_XCentroid, SG_Size, [](S s) { return s.centroid.x; }),
    Shape(SMT_YCentroid, SG_Size, [](S s) { return s.centroid.y; }),
    Shape(SMT_Holes, SG_Topology, [](S s) { return static_cast<double>(s.holes); }),
    Shape(SMT_EulerNumber, SG_Topology, [](S s) { return static_cast<double>(s.eulerNumber); }),
    Shape(SMT_FilledArea, SG_FilledArea, [](S s) { return s.filledArea; }),
    Shape(SMT_Perimeter, SG_Perimeter, [](S s) { return s.perimeter; }),
    Shape(SMT_Circularity, SG_Perimeter, [](S s) { return s.circularity; }),
    Shape(SMT_CroftonPerimeter, SG_CroftonPerimeter, [](S s) { return s.croftonPerimeter; }),
    Shape(SMT_HullArea, SG_Hull, [](S s) { return s.hullArea; }),
    Shape(SMT_HullPerimeter, SG_Hull, [](S s) { return s.hullPerimeter; }),
    Shape(SMT_Solidity, SG_Hull, [](S s) { return s.solidity; }),
    Shape(SMT_FeretMaximum, SG_Feret, [](S s) { return s.feretMaximum.length; }),
    Shape(SMT_FeretMaximumAngle, SG_Feret, [](S s) { return s.feretMaximum.angle; }),
    Shape(SMT_FeretMinimum, SG_Feret, [](S s) { return s.feretMinimum.length; }),
    Shape(SMT_FeretMinimumAngle, SG_Feret, [](S s) { return s.feretMinimum.angle; }),
    Shape(SMT_Roundness, SG_Feret, [](S s) { return s.roundness; }),
    Shape(SMT_Compactness, SG_Feret, [](S s) { return s.compactness; }),
    Shape(SMT_BoxLength, SG_OrientedBox, [](S s) { return s.orientedBox.length; }),
    Shape(SMT_BoxWidth, SG_OrientedBox, [](S s) { return s.orientedBox.width; }),
    Shape(SMT_BoxAngle, SG_OrientedBox, [](S s) { return s.orientedBox.angle; }),
    Shape(SMT_MajorAxis, SG_Ellipse, [](S s) { return s.ellipse.majorAxis; }),
    Shape(SMT_MinorAxis, SG_Ellipse, [](S s) { return s.ellipse.minorAxis; }),
    Shape(SMT_EllipseAngle, SG_Ellipse, [](S s) { return s.ellipse.angle; }),
    Shape(SMT_Eccentricity, SG_Ellipse, [](S s) { return s.ellipse.eccentricity; }),
    Shape(SMT_AspectRatio, SG_Ellipse, [](S s) { return s.aspectRatio; }),
    Shape(SMT_ImageBorderPixels, SG_BorderContact, [](S s) { return static_cast<double>(s.imageBorderPixels); }),
    Shape(SMT_RegionBorderPixels, SG_BorderContact, [](S s) { return static_cast<double>(s.regionBorderPixels); }),
    Shape(SMT_InscribedRadius, SG_InscribedCircle, [](S s) { return s.inscribedCircle.radius; }),
    Shape(SMT_EnclosingRadius, SG_EnclosingCircle, [](S s) { return s.enclosingCircle.radius; }),
    Shape(SMT_SkeletonLength, SG_Skeleton, [](S s) { return s.skeletonLength; }),
    Shape(SMT_MeanWidth, SG_Skeleton, [](S s) { return s.meanWidth; }),
    Gray(SMT_GrayXCentroid, [](G g, double) { return g.xCentroid; }),
    Gray(SMT_GrayYCentroid, [](G g, double) { return g.yCentroid; }),
    Gray(SMT_GrayMinimum, [](G g, double) { return g.minimum; }),
    Gray(SMT_GrayMaximum, [](G g, double) { return g.maximum; }),
    Gray(SMT_GrayAverage, [](G g, double) { return g.average; }),
    Gray(SMT_GrayStandardDeviation, [](G g, double) { return g.standardDeviation; }),
    Gray(SMT_GraySkewness, [](G g, double) { return g.skewness; }),
    Gray(SMT_GrayKurtosis, [](G g, double) { return g.kurtosis; }),
    Gray(SMT_GrayIntegrated, [](G g, double) { return g.integrated; }),
    Gray(SMT_GrayMedian, [](G g, double) { return g.median; }),
    Gray(SMT_GrayMode, [](G g, double) { return g.mode; }),
    Gray(SMT_GrayBoundaryAverage, [](G g, double) { return g.boundaryAverage; }),
    Gray(SMT_VolumeOverZero, [](G g, double pixelArea) { return g.volumeOverZero * pixelArea; }),
    Gray(SMT_VolumeOverMinimum, [](G g, double pixelArea) { return g.volumeOverMinimum * pixelArea; }),
    Gray(SMT_VolumeOverPlane, [](G g, double pixelArea) { return g.volumeOverPlane * pixelArea; }),
};

}  // namespace

const SingleMeasurement& SingleMeasurementOf(SingleMeasurementType type) {
    const auto found = std::find_if(std::begin(kSingleMeasurements), std::end(kSingleMeasurements),
                                    [&](const SingleMeasurement& row) { return row.type == type; });
    if (found == std::end(kSingleMeasurements)) throw FailedResult(E_INVALIDARG);
    return *found;
}

void FillIn(SBinaryMeasurements& record, const ShapeMeasurements& shape, uint32_t groups) {
    const auto asks = [&](uint32_t group) { return (groups & group) != 0; };
    record.m_lPixelCount = static_cast<LONG>(shape.pixelCount);
    record.m_dArea = shape.area;
    record.m_dEquivalentRadius = shape.equivalentRadius;
    record.m_lLeft = shape.box.left;
    record.m_lTop = shape.box.top;
    record.m_lRight = shape.box.right;
    record.m_lBottom = shape.box.bottom;
    record.m_dExtent = shape.extent;
    record.m_dXCentroid = shape.centroid.x;
    record.m_dYCentroid = shape.centroid.y;
    if (asks(SG_Topology)) {
        record.m_lHoles = static_cast<LONG>(shape.holes);
        record.m_lEulerNumber = static_cast<LONG>(shape.eulerNumber);
    }
    if (asks(SG_FilledArea)) record.m_dFilledArea = shape.filledArea;
    if (asks(SG_Perimeter)) {
        record.m_dPerimeter = shape.perimeter;
        record.m_dCircularity = shape.circularity;
    }
    if (asks(SG_CroftonPerimeter)) record.m_dCroftonPerimeter = shape.croftonPerimeter;
    if (asks(SG_Hull)) {
        record.m_dHullArea = shape.hullArea;
        record.m_dHullPerimeter = shape.hullPerimeter;
        record.m_dSolidity = shape.solidity;
    }
    if (asks(SG_Feret)) {
        record.m_dFeretMaximum = shape.feretMaximum.length;
        record.m_dFeretMaximumAngle = shape.feretMaximum.angle;
        record.m_dFeretMaximumX1 = shape.feretMaximum.from.x;
        record.m_dFeretMaximumY1 = shape.feretMaximum.from.y;
        record.m_dFeretMaximumX2 = shape.feretMaximum.to.x;
        record.m_dFeretMaximumY2 = shape.feretMaximum.to.y;
        record.m_dFeretMinimum = shape.feretMinimum.length;
        record.m_dFeretMinimumAngle = shape.feretMinimum.angle;
        record.m_dFeretMinimumX1 = shape.feretMinimum.from.x;
        record.m_dFeretMinimumY1 = shape.feretMinimum.from.y;
        record.m_dFeretMinimumX2 = shape.feretMinimum.to.x;
        record.m_dFeretMinimumY2 = shape.feretMinimum.to.y;
        record.m_dRoundness = shape.roundness;
        record.m_dCompactness = shape.compactness;
    }
    if (asks(SG_OrientedBox)) {
        record.m_dBoxXCenter = shape.orientedBox.centre.x;
        record.m_dBoxYCenter = shape.orientedBox.centre.y;
        record.m_dBoxLength = shape.orientedBox.length;
        record.m_dBoxWidth = shape.orientedBox.width;
        record.m_dBoxAngle = shape.orientedBox.angle;
    }
    if (asks(SG_Ellipse)) {
        record.m_dMajorAxis = shape.ellipse.majorAxis;
        record.m_dMinorAxis = shape.ellipse.minorAxis;
        record.m_dEllipseAngle = shape.ellipse.angle;
        record.m_dEccentricity = shape.ellipse.eccentricity;
        record.m_dAspectRatio = shape.aspectRatio;
    }
    if (asks(SG_Moments)) {
        std::copy(shape.rawMoments.begin(), shape.rawMoments.end(), record.m_dRawMoments);
        std::copy(shape.centralMoments.begin(), shape.centralMoments.end(), record.m_dCentralMoments);
        std::copy(shape.normalisedMoments.begin(), shape.normalisedMoments.end(), record.m_dNormalizedMoments);
        std::copy(shape.huMoments.begin(), shape.huMoments.end(), record.m_dHuMoments);
    }
    if (asks(SG_BorderContact)) {
        record.m_lImageBorderPixels = static_cast<LONG>(shape.imageBorderPixels);
        record.m_lRegionBorderPixels = static_cast<LONG>(shape.regionBorderPixels);
    }
    if (asks(SG_InscribedCircle)) {
        record.m_dInscribedXCenter = shape.inscribedCircle.centre.x;
        record.m_dInscribedYCenter = shape.inscribedCircle.centre.y;
        record.m_dInscribedRadius = shape.inscribedCircle.radius;
    }
    if (asks(SG_EnclosingCircle)) {
        record.m_dEnclosingXCenter = shape.enclosingCircle.centre.x;
        record.m_dEnclosingYCenter = shape.enclosingCircle.centre.y;
        record.m_dEnclosingRadius = shape.enclosingCircle.radius;
    }
    if (asks(SG_Skeleton)) {
        record.m_dSkeletonLength = shape.skeletonLength;
        record.m_dMeanWidth = shape.meanWidth;
    }
}

void FillIn(SBlobGrayMeasurements& record, const BlobGrayMeasurements& gray, const PixelSize& pixel) {
    record.m_dGrayXCentroid = gray.xCentroid;
    record.m_dGrayYCentroid = gray.yCentroid;
    record.m_dGrayMinimum = gray.minimum;
    record.m_dGrayMaximum = gray.maximum;
    record.m_dGrayAverage = gray.average;
    record.m_dGrayStandardDeviation = gray.standardDeviation;
    record.m_dGraySkewness = gray.skewness;
    record.m_dGrayKurtosis = gray.kurtosis;
    record.m_dGrayIntegrated = gray.integrated;
    record.m_dGrayMedian = gray.median;
    record.m_dGrayMode = gray.mode;
    record.m_dGrayBoundaryAverage = gray.boundaryAverage;
    record.m_dVolumeOverZero = gray.volumeOverZero * (pixel.x * pixel.y);
    record.m_dVolumeOverMinimum = gray.volumeOverMinimum * (pixel.x * pixel.y);
    record.m_dVolumeOverPlane = gray.volumeOverPlane * (pixel.x * pixel.y);
}

void FillIn(SLevelMeasurements& record, const LevelMeasurements& level) {
    record.m_dArea = level.area;
    record.m_dPerimeter = level.perimeter;
    record.m_dEquivalentRadius = level.equivalentRadius;
    record.m_dCircularity = level.circularity;
    record.m_dXCentroid = level.xCentroid;
    record.m_dYCentroid = level.yCentroid;
    record.m_dMajorAxis = level.majorAxis;
    record.m_dMinorAxis = level.minorAxis;
    record.m_dEllipseAngle = level.angle;
    record.m_dFeretMaximum = level.feretMaximum;
    record.m_dFeretMaximumAngle = level.feretMaximumAngle;
    record.m_dFeretMinimum = level.feretMinimum;
    record.m_dFeretMinimumAngle = level.feretMinimumAngle;
    record.m_dLevelShare = level.levelShare;
}

}  // namespace orlix
