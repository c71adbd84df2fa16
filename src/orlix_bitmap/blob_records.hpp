// Measurements of blobs as the contract's records, and as single numbers.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>

#include "blobs/gray_measurements.hpp"
#include "blobs/level_outline.hpp"
#include "blobs/shape_measurements.hpp"

namespace orlix {

// Writes the fields of the groups.
void FillIn(SBinaryMeasurements& record, const ShapeMeasurements& shape, uint32_t groups);
void FillIn(SBlobGrayMeasurements& record, const BlobGrayMeasurements& gray, const PixelSize& pixel);
void FillIn(SLevelMeasurements& record, const LevelMeasurements& level);

// How a single measurement is made: of the shape, from the groups named, or of the grey values.
struct SingleMeasurement {
    SingleMeasurementType type;
    uint32_t groups;
    double (*ofShape)(const ShapeMeasurements&);                      // null for grey values
    double (*ofGray)(const BlobGrayMeasurements&, double pixelArea);  // null for shapes
};
// FailedResult(E_INVALIDARG) for a type that does not exist, or SMT_Label, which is no measurement.
const SingleMeasurement& SingleMeasurementOf(SingleMeasurementType type);

}  // namespace orlix
