#include "module/class_table.hpp"

#include "geometry/orlix_polygon.hpp"
#include "geometry/orlix_shape_region_of_interest.hpp"
#include "geometry/orlix_structuring_element.hpp"
#include "histogram/orlix_histogram.hpp"
#include "orlix_bitmap/orlix_bitmap.hpp"
#include "orlix_buffer/orlix_buffer.hpp"
#include "orlix_image/orlix_image.hpp"
#include "orlix_vb_helper/orlix_vb_helper.hpp"

namespace orlix {
namespace {

constexpr ClassRow kClasses[kNumberOfClasses] = {
    {&__uuidof(OrlixPolygon), 101, &OrlixPolygon::CreateInstance},
    {&__uuidof(OrlixHistogram), 102, &OrlixHistogram::CreateInstance},
    {&__uuidof(OrlixBitmap), 103, &OrlixBitmap::CreateInstance},
    {&__uuidof(OrlixImage), 104, &OrlixImage::CreateInstance},
    {&__uuidof(OrlixStructuringElement), 105, &OrlixStructuringElement::CreateInstance},
    {&__uuidof(OrlixLineGraphicOverlay), 106, nullptr},
    {&__uuidof(OrlixCircleGraphicOverlay), 109, nullptr},
    {&__uuidof(OrlixBuffer), 110, &OrlixBuffer::CreateInstance},
    {&__uuidof(OrlixSplineImage), 111, nullptr},
    {&__uuidof(OrlixShapeRegionOfInterest), 113, &OrlixShapeRegionOfInterest::CreateInstance},
    {&__uuidof(OrlixVBHelper), 114, &OrlixVBHelper::CreateInstance},
    {&__uuidof(OrlixImageView), 116, nullptr},
    {&__uuidof(OrlixTextGraphicOverlay), 117, nullptr},
    {&__uuidof(OrlixHistogramDialog), 120, nullptr},
};

}  // namespace

std::span<const ClassRow, kNumberOfClasses> ClassTable() noexcept { return kClasses; }

}  // namespace orlix
