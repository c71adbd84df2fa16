#include "geometry/orlix_shape_region_of_interest.hpp"

#include <atomic>
#include <cstring>

#include "component/strings.hpp"

using namespace orlix;

namespace {

// The first word at an interface pointer is the address of its function table. All objects of a class share this table;
// no other class and no other copy of the library does.
const void* FunctionTable(IRegionOfInterest* region) noexcept {
    const void* table;
    std::memcpy(&table, static_cast<const void*>(region), sizeof table);
    return table;
}

std::atomic<const void*> ownFunctionTable = nullptr;  // null until the first object exists

}  // namespace

OrlixShapeRegionOfInterest::OrlixShapeRegionOfInterest() noexcept {
    ownFunctionTable.store(FunctionTable(this), std::memory_order_relaxed);
}

const ShapeRegion* OrlixShapeRegionOfInterest::ShapeOf(IRegionOfInterest* region) noexcept {
    if (!region || FunctionTable(region) != ownFunctionTable.load(std::memory_order_relaxed)) return nullptr;
    return &static_cast<OrlixShapeRegionOfInterest*>(static_cast<IShapeRegionOfInterest*>(region))->shape_;
}

STDMETHODIMP OrlixShapeRegionOfInterest::get_Width(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = shape_.width();
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::get_Height(LONG* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = shape_.height();
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::get_BoundingBox(RECT* value) noexcept {
    return Guarded([&] {
        Require(value);
        const Box box = shape_.BoundingBox();
        *value = {box.left, box.top, box.right, box.bottom};
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::GetRowRuns(LONG row, SRun** begin, SRun** end) noexcept {
    return Guarded([&] {
        Require(begin);
        Require(end);
        *begin = nullptr;
        *end = nullptr;
        if (row < 0 || row >= shape_.height()) return S_FALSE;
        const ShapeRegion::RowRuns runs = shape_.Row(row);
        if (runs.count == 0) return S_OK;
        for (size_t i = 0; i < static_cast<size_t>(runs.count); ++i) {
            handedOut_[i] = {};
            handedOut_[i].m_lStart = runs.runs[i].start;
            handedOut_[i].m_lStop = runs.runs[i].stop;
        }
        *begin = handedOut_.data();
        *end = handedOut_.data() + runs.count;
        return S_OK;
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::CreateRectangle(LONG imageWidth, LONG imageHeight, LONG left, LONG top,
                                                         LONG right, LONG bottom) noexcept {
    return Guarded([&] { shape_.CreateRectangle(imageWidth, imageHeight, left, top, right, bottom); });
}

STDMETHODIMP OrlixShapeRegionOfInterest::CreateOrientedRectangle(LONG imageWidth, LONG imageHeight,
                                                                 double rectangleWidth, double rectangleHeight,
                                                                 double rectangleOrientation, double rectangleXCenter,
                                                                 double rectangleYCenter) noexcept {
    return Guarded([&] {
        shape_.CreateOrientedRectangleAround(imageWidth, imageHeight, rectangleXCenter, rectangleYCenter,
                                             rectangleWidth, rectangleHeight, rectangleOrientation);
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::CreateOrientedRectangleFromCenterLine(LONG imageWidth, LONG imageHeight,
                                                                               double x1, double y1, double x2,
                                                                               double y2,
                                                                               double rectangleWidth) noexcept {
    return Guarded([&] { shape_.CreateOrientedRectangle(imageWidth, imageHeight, x1, y1, x2, y2, rectangleWidth); });
}

STDMETHODIMP OrlixShapeRegionOfInterest::CreateCircle(LONG imageWidth, LONG imageHeight, double xCenter, double yCenter,
                                                      double radius) noexcept {
    return Guarded([&] { shape_.CreateCircle(imageWidth, imageHeight, xCenter, yCenter, radius); });
}

STDMETHODIMP OrlixShapeRegionOfInterest::get_Polarity(PolarityType* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = shape_.polarity();
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::put_Polarity(PolarityType value) noexcept {
    return Guarded([&] { shape_.set_polarity(value); });
}

STDMETHODIMP OrlixShapeRegionOfInterest::get_Color(OLE_COLOR* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = color_;
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::put_Color(OLE_COLOR value) noexcept {
    return Guarded([&] { color_ = value; });
}

STDMETHODIMP OrlixShapeRegionOfInterest::get_Description(BSTR* value) noexcept {
    return Guarded([&] {
        Require(value);
        *value = nullptr;
        if (!description_.empty()) *value = CopyToBstr(description_);
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::put_Description(BSTR value) noexcept {
    return Guarded([&] { description_ = ToView(value); });
}
