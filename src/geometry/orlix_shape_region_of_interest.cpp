#include "geometry/orlix_shape_region_of_interest.hpp"

#include <atomic>
#include <cstring>

#include "component/strings.hpp"
#include "numerics/elementary.hpp"

using namespace orlix;

namespace {

// An interface pointer begins with the address of its function table, which all objects of a class share and no other
// class nor another copy of the library has.
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

STDMETHODIMP OrlixShapeRegionOfInterest::get_Width(LONG* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = shape_.width();
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::get_Height(LONG* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = shape_.height();
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::get_BoundingBox(RECT* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        const Box box = shape_.BoundingBox();
        *hVal = {box.left, box.top, box.right, box.bottom};
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::GetRowRuns(LONG Row, SRun** hBegin, SRun** hEnd) noexcept {
    return Guarded([&] {
        Require(hBegin);
        Require(hEnd);
        *hBegin = nullptr;
        *hEnd = nullptr;
        if (Row < 0 || Row >= shape_.height()) return S_FALSE;
        const ShapeRegion::RowRuns runs = shape_.Row(Row);
        if (runs.count == 0) return S_OK;
        for (size_t i = 0; i < static_cast<size_t>(runs.count); ++i) {
            handedOut_[i] = {};
            handedOut_[i].m_lStart = runs.runs[i].start;
            handedOut_[i].m_lStop = runs.runs[i].stop;
        }
        *hBegin = handedOut_.data();
        *hEnd = handedOut_.data() + runs.count;
        return S_OK;
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::CreateRectangle(LONG ImageWidth, LONG ImageHeight, LONG lLeft, LONG lTop,
                                                         LONG lRight, LONG lBottom) noexcept {
    return Guarded([&] { shape_.CreateRectangle(ImageWidth, ImageHeight, lLeft, lTop, lRight, lBottom); });
}

STDMETHODIMP OrlixShapeRegionOfInterest::CreateOrientedRectangle(LONG ImageWidth, LONG ImageHeight,
                                                                 double RectangleWidth, double RectangleHeight,
                                                                 double RectangleOrientation, double RectangleXCenter,
                                                                 double RectangleYCenter) noexcept {
    return Guarded([&] {
        const double radians = RectangleOrientation * 0.017453292519943295;  // pi / 180
        const double c = Cos(radians);
        const double s = Sin(radians);
        const double half = RectangleWidth * 0.5;
        return CreateOrientedRectangleFromCenterLine(ImageWidth, ImageHeight, RectangleXCenter + half * c,
                                                     RectangleYCenter + half * s, RectangleXCenter - half * c,
                                                     RectangleYCenter - half * s, RectangleHeight);
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::CreateOrientedRectangleFromCenterLine(LONG ImageWidth, LONG ImageHeight,
                                                                               double X1, double Y1, double X2,
                                                                               double Y2,
                                                                               double RectangleWidth) noexcept {
    return Guarded([&] { shape_.CreateOrientedRectangle(ImageWidth, ImageHeight, X1, Y1, X2, Y2, RectangleWidth); });
}

STDMETHODIMP OrlixShapeRegionOfInterest::CreateCircle(LONG ImageWidth, LONG ImageHeight, double XCenter, double YCenter,
                                                      double Radius) noexcept {
    return Guarded([&] { shape_.CreateCircle(ImageWidth, ImageHeight, XCenter, YCenter, Radius); });
}

STDMETHODIMP OrlixShapeRegionOfInterest::get_Polarity(PolarityType* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = shape_.polarity();
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::put_Polarity(PolarityType newVal) noexcept {
    return Guarded([&] { shape_.set_polarity(newVal); });
}

STDMETHODIMP OrlixShapeRegionOfInterest::get_Color(OLE_COLOR* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = color_;
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::put_Color(OLE_COLOR newVal) noexcept {
    return Guarded([&] { color_ = newVal; });
}

STDMETHODIMP OrlixShapeRegionOfInterest::get_Description(BSTR* hVal) noexcept {
    return Guarded([&] {
        Require(hVal);
        *hVal = nullptr;
        if (!description_.empty()) *hVal = CopyToBstr(description_);
    });
}

STDMETHODIMP OrlixShapeRegionOfInterest::put_Description(BSTR newVal) noexcept {
    return Guarded([&] { description_ = ToView(newVal); });
}
