// One typed image and its display: what the image object forwards to.
#pragma once

#include <orlix/orlix.h>

#include <memory>
#include <optional>

#include "display/display_bitmap.hpp"
#include "display/display_state.hpp"
#include "image/changes.hpp"
#include "process/typed_image.hpp"

namespace orlix {

// A pixel of an image and the colour that shows it, 0x00BBGGRR.
struct ShownPixel {
    double value;
    OLE_COLOR color;
};

// The operations are those of IDisplayProcess, which documents them. Notes:
//  (1) The display range and the colour table stay while the pixel type stays; the band to display is set anew by a
//      creation, as the band to process is.
//  (2) Display() follows every change that is counted in the image's record (image/changes.hpp). Whoever writes pixels
//      through a pointer says so by PutDisplayDirty().
class DisplayedImage {
public:
    // Null for a type that images do not have. changes: the record of the image object, which outlives this.
    static std::unique_ptr<DisplayedImage> Make(LONG dataType, Changes& changes);

    TypedImage& typed() { return *typed_; }
    ImageStore& store() { return typed_->store(); }

    // To be called after every creation.
    void ContentReplaced();

    // The bitmap as it is now; computed anew only when something changed since the last call. Valid until the next call
    // and until the image is released. Raises std::bad_alloc.
    const DisplayBitmap& Display();

    // The pixel of the band that is shown, of band 0 where three are; (x, y) lies on the image. Nothing for an image
    // whose pixels may not be touched.
    std::optional<ShownPixel> Shown(int32_t x, int32_t y);

    // For streams. band is BI_AllBands or below the number of bands.
    const DisplayState& displayState() const { return state_; }
    void PutDisplayState(const DisplayState& state);

    LONG bandToDisplay() const { return state_.band; }
    void PutBandToDisplay(LONG band);

    bool DisplayDirty() { return !store().changes().ShownAs(shown_); }
    // Either value has the levels computed anew.
    void PutDisplayDirty(bool dirty);

    OLE_COLOR GetColor(LONG entry) const;
    void PutColor(LONG entry, OLE_COLOR color);
    void EqualizeColorTable();

    void GetDisplayRange(double& lower, double& upper) const {
        lower = state_.lower;
        upper = state_.upper;
    }
    void PutDisplayRange(double lower, double upper);
    HRESULT SnapDisplayRange(double trimLeft, double trimRight, bool roundOut);

private:
    explicit DisplayedImage(std::unique_ptr<TypedImage> typed);

    void Compute();
    // For an image that is not empty: all of three bands or more are shown in colour (the first three of them), else
    // the band that is chosen, or the first.
    bool ShowsColor();
    int32_t ShownBand() const { return state_.band == BI_AllBands ? 0 : state_.band; }

    std::unique_ptr<TypedImage> typed_;
    DisplayState state_;
    DisplayBitmap bitmap_;
    bool current_ = false;  // bitmap_ was computed of what shown_ tells
    Changes shown_;
};

}  // namespace orlix
