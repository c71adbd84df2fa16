// The component class of shape regions. The interfaces are documented in the contract.
#pragma once

#include <orlix/orlix.h>

#include <array>
#include <string>

#include "component/object.hpp"
#include "geometry/shape_region.hpp"
#include "text/wide_string.hpp"

class OrlixShapeRegionOfInterest final
    : public orlix::Object<OrlixShapeRegionOfInterest, orlix::Answers<IShapeRegionOfInterest, IRegionOfInterest>,
                           IGraphicOverlay> {
public:
    OrlixShapeRegionOfInterest() noexcept;

    // The shape behind an interface pointer, null when the pointer is not that of an object of this class in this
    // module. Valid until the next creation or release.
    static const orlix::ShapeRegion* ShapeOf(IRegionOfInterest* region) noexcept;

    STDMETHODIMP get_Width(LONG* hVal) noexcept override;
    STDMETHODIMP get_Height(LONG* hVal) noexcept override;
    STDMETHODIMP get_BoundingBox(RECT* hVal) noexcept override;
    STDMETHODIMP GetRowRuns(LONG Row, SRun** hBegin, SRun** hEnd) noexcept override;

    STDMETHODIMP CreateRectangle(LONG ImageWidth, LONG ImageHeight, LONG lLeft, LONG lTop, LONG lRight,
                                 LONG lBottom) noexcept override;
    STDMETHODIMP CreateOrientedRectangle(LONG ImageWidth, LONG ImageHeight, double RectangleWidth,
                                         double RectangleHeight, double RectangleOrientation, double RectangleXCenter,
                                         double RectangleYCenter) noexcept override;
    STDMETHODIMP CreateOrientedRectangleFromCenterLine(LONG ImageWidth, LONG ImageHeight, double X1, double Y1,
                                                       double X2, double Y2, double RectangleWidth) noexcept override;
    STDMETHODIMP CreateCircle(LONG ImageWidth, LONG ImageHeight, double XCenter, double YCenter,
                              double Radius) noexcept override;
    STDMETHODIMP get_Polarity(PolarityType* hVal) noexcept override;
    STDMETHODIMP put_Polarity(PolarityType newVal) noexcept override;

    STDMETHODIMP Render(IPictureEx* Picture, void* hdcDest) noexcept override;
    STDMETHODIMP get_Color(OLE_COLOR* hVal) noexcept override;
    STDMETHODIMP put_Color(OLE_COLOR newVal) noexcept override;
    STDMETHODIMP get_Description(BSTR* hVal) noexcept override;
    STDMETHODIMP put_Description(BSTR newVal) noexcept override;

private:
    orlix::ShapeRegion shape_;
    std::array<SRun, 2> handedOut_ = {};  // the runs of the row asked for last
    OLE_COLOR color_ = 0x0000FF00;        // 0x00BBGGRR: green
    orlix::WideString description_;
};
