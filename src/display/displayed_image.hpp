// One typed image with its processing frame and its display: what OrlixImage forwards to.
#pragma once

#include <memory>
#include <optional>

#include "display/display_bitmap.hpp"
#include "display/display_state.hpp"
#include "points/point_operations.hpp"
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
//  (2) Display() follows every change that goes through this class or is marked by store().SetModified(true). Whoever
//      writes pixels through a pointer says so by PutDisplayDirty().
class DisplayedImage : public TypedImage {
public:
    // Null for a type that OrlixImage does not create.
    static std::unique_ptr<DisplayedImage> Make(LONG dataType);

    void ContentReplaced() override;

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

    bool DisplayDirty() { return dirty_ || store().changes() != seen_; }
    // Either value has the levels computed anew.
    void PutDisplayDirty(bool dirty);

    OLE_COLOR GetColor(LONG entry) const;
    void PutColor(LONG entry, OLE_COLOR color);
    virtual void EqualizeColorTable() = 0;

    // The range is held in the pixel type; a double holds every value of it exactly.
    virtual void GetDisplayRange(double& lower, double& upper) const = 0;
    virtual void PutDisplayRange(double lower, double upper) = 0;
    virtual HRESULT SnapDisplayRange(double trimLeft, double trimRight, bool roundOut) = 0;

protected:
    DisplayedImage() = default;

    // EqualizeColorTable for the counts of the display levels.
    void Equalize(const uint64_t (&counts)[256]);

    // For an image that is not empty: all of three bands or more are shown in colour (the first three of them), else
    // the band that is chosen, or the first.
    bool ShowsColor();
    int32_t ShownBand() const { return state_.band == BI_AllBands ? 0 : state_.band; }
    // The component of the colour table for a channel: 0 red, 1 green, 2 blue.
    PointOperation<uint8_t> ColorsOf(int32_t channel) const;
    virtual double ShownValue(int32_t x, int32_t y) = 0;
    // Fills the bitmap; its size has been set.
    virtual void ComputeLevels(const DisplayBitmap& bitmap) = 0;

private:
    DisplayState state_;
    DisplayBitmap bitmap_;
    bool current_ = false;  // bitmap_ was computed since the display was last changed
    bool dirty_ = true;
    uint64_t seen_ = 0;  // store().changes() that dirty_ speaks of
};

}  // namespace orlix
