// The measurement of an image file in one call. See SFileMeasurements.
#pragma once

#include <orlix/orlix.h>

namespace orlix {

// Failures are Error, with the text of the object that failed, and MethodFailure. m_lSize is 0.
SFileMeasurements MeasureImageFile(BSTR fileName, AutoThresholdType threshold, bool bright, LONG band);

}  // namespace orlix
