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

    // The shape behind an interface pointer; null unless the object belongs to this class in this module. Valid until
    // the shape is next created or released.
    static const orlix::ShapeRegion* ShapeOf(IRegionOfInterest* region) noexcept;

    STDMETHODIMP get_Width(LONG* value) noexcept override;
    STDMETHODIMP get_Height(LONG* value) noexcept override;
    STDMETHODIMP get_BoundingBox(RECT* value) noexcept override;
    STDMETHODIMP GetRowRuns(LONG row, SRun** begin, SRun** end) noexcept override;

    STDMETHODIMP CreateRectangle(LONG imageWidth, LONG imageHeight, LONG left, LONG top, LONG right,
                                 LONG bottom) noexcept override;
    STDMETHODIMP CreateOrientedRectangle(LONG imageWidth, LONG imageHeight, double rectangleWidth,
                                         double rectangleHeight, double rectangleOrientation, double rectangleXCenter,
                                         double rectangleYCenter) noexcept override;
    STDMETHODIMP CreateOrientedRectangleFromCenterLine(LONG imageWidth, LONG imageHeight, double x1, double y1,
                                                       double x2, double y2, double rectangleWidth) noexcept override;
    STDMETHODIMP CreateCircle(LONG imageWidth, LONG imageHeight, double xCenter, double yCenter,
                              double radius) noexcept override;
    STDMETHODIMP get_Polarity(PolarityType* value) noexcept override;
    STDMETHODIMP put_Polarity(PolarityType value) noexcept override;

    STDMETHODIMP Render(IPictureEx* picture, void* hdcDest) noexcept override;
    STDMETHODIMP get_Color(OLE_COLOR* value) noexcept override;
    STDMETHODIMP put_Color(OLE_COLOR value) noexcept override;
    STDMETHODIMP get_Description(BSTR* value) noexcept override;
    STDMETHODIMP put_Description(BSTR value) noexcept override;

private:
    orlix::ShapeRegion shape_;
    std::array<SRun, 2> handedOut_ = {};  // the runs of the row requested last
    OLE_COLOR color_ = 0x0000FF00;        // 0x00BBGGRR: green
    orlix::WideString description_;
};
