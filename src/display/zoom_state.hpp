// Zoom and pan of a picture: a magnification and the image point to show in the middle.
#pragma once

#include <cstdint>

#include "display/view_geometry.hpp"

namespace orlix {

// Notes:
//  (1) Every double and every integer is a valid argument. A factor is above 0 and may be infinite; a centre is never
//      NaN.
//  (2) Points and rectangles are surface coordinates, mapped by view.toPixel of the last rendered view.
//  (3) The operations set the factor and the centre as a client does. A refused value leaves the old one, and the
//      operation continues: at the edge of the image PanLeft moves nothing.
class ZoomState {
public:
    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    double factor() const { return factor_; }
    double centerX() const { return centerX_; }
    double centerY() const { return centerY_; }

    // Resets the zoom, unless the image already has this size.
    void SetImageSize(int32_t width, int32_t height);

    // Failures:
    //   "IPictureZoom: zoom factor must be positive." (0, below, NaN)
    //   "IPictureZoom::put_ZoomCenterX: x zoom center must be on the image."
    //   "IPictureZoom::put_ZoomCenterY: y zoom center must be on the image."
    // On the image: 0 < trunc(center + 0.5) < width (height), so the first column and the first row are excluded.
    void PutFactor(double factor);
    void PutCenterX(double x);
    void PutCenterY(double y);

    // Factor 1, centre (width / 2, height / 2) in integers, even where the put methods would refuse them.
    void Reset();

    void ZoomIn();   // factor 1.25
    void ZoomOut();  // factor 0.8, but not below 1
    // Centres on the point, then zooms as above.
    void ZoomInFromPoint(const View& view, int32_t x, int32_t y);
    void ZoomOutFromPoint(const View& view, int32_t x, int32_t y);
    // Centres on the middle of the rectangle. The factor becomes the smaller of the fractions (pixels + 1) / size of
    // the image that the rectangle covers along x and y.
    void ZoomFromRectangle(const View& view, int32_t x, int32_t y, int32_t width, int32_t height);
    // Moves from the middle of the view or from the centre, whichever is further in that direction, by one surface
    // pixel but at least by one image pixel.
    void PanLeft(const View& view);
    void PanRight(const View& view);
    void ScrollUp(const View& view);
    void ScrollDown(const View& view);
    // Moves the image along with a pointer that goes from the first point to the second.
    void PanScrollFromPoints(const View& view, int32_t x1, int32_t y1, int32_t x2, int32_t y2);

private:
    bool TryFactor(double factor);
    bool TryCenterX(double x);
    bool TryCenterY(double y);
    void CenterOn(const PixelPoint& point);  // sets each coordinate that is on the image

    int32_t width_ = 0, height_ = 0;
    double factor_ = 1.0;
    double centerX_ = 0.0, centerY_ = 0.0;
};

}  // namespace orlix
