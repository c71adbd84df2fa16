// A typed image and its display: the object to which the image object forwards.
#pragma once

#include <orlix/orlix.h>

#include <memory>
#include <optional>

#include "display/display_bitmap.hpp"
#include "display/display_state.hpp"
#include "display/picture_source.hpp"
#include "display/stale_tiles.hpp"
#include "image/changes.hpp"
#include "process/typed_image.hpp"

namespace orlix {

// The operations are those of IDisplayProcess, which documents them. Notes:
//  (1) The display range and the colour table survive until the pixel type changes; every creation sets the band to
//      display anew, like the band to process.
//  (2) The bitmap follows every change that is counted in the image's record (image/changes.hpp). Code that writes
//      pixels through a pointer must report it by PutDisplayDirty(); until then the parts that were shown stay as they
//      were, and other parts may be computed from the old pixels or the new ones.
class DisplayedImage final : public PictureSource {
public:
    // Null for a type that images cannot have. changes: the record of the image object, which outlives this object.
    static std::unique_ptr<DisplayedImage> Make(LONG dataType, Changes& changes);

    TypedImage& typed() { return *typed_; }
    ImageStore& store() { return typed_->store(); }

    // To be called after every creation.
    void ContentReplaced();

    bool Refused() const override { return typed_->store().refused(); }
    const DisplayBitmap& Bitmap() override;
    void Show(const Rectangle& part) override;
    const ColorTable& Colors() const override { return state_.colors; }
    // The pixel of the band shown, or of band 0 where three bands are shown.
    std::optional<ShownPixel> Shown(int32_t x, int32_t y) override;

    // For streams. band is BI_AllBands or below the number of bands.
    const DisplayState& displayState() const { return state_; }
    void PutDisplayState(const DisplayState& state);

    LONG bandToDisplay() const { return state_.band; }
    void PutBandToDisplay(LONG band);

    bool DisplayDirty() { return !store().changes().ShownAs(shown_); }
    // Either value causes the levels to be recomputed.
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

    // For an image that is not empty: whether all of its bands are shown and there are at least three. The first three
    // are then shown in colour; otherwise the selected band is shown, or the first.
    bool ShowsColor();
    int32_t ShownBand() const { return state_.band == BI_AllBands ? 0 : state_.band; }

    std::unique_ptr<TypedImage> typed_;
    DisplayState state_;
    DisplayBitmap bitmap_;
    StaleTiles stale_;      // of bitmap_
    bool current_ = false;  // bitmap_ and stale_ stand for the state in shown_
    Changes shown_;
};

}  // namespace orlix
