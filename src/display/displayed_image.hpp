// One typed image with its processing frame and its display: what OrlixImage forwards to.
#pragma once

#include <memory>

#include "display/display_state.hpp"
#include "process/typed_image.hpp"

namespace orlix {

// The operations are those of IDisplayProcess, which documents them. Notes:
//  (1) The display range and the colour table stay while the pixel type stays; the band to display is set anew by a creation,
//      as the band to process is.
//  (2) The display bitmap follows every change that goes through this class or is marked by store().SetModified(true). Whoever
//      writes pixels through a pointer says so by PutDisplayDirty().
class DisplayedImage : public TypedImage {
public:
    // Null for a type that OrlixImage does not create.
    static std::unique_ptr<DisplayedImage> Make(LONG dataType);

    void ContentReplaced() override;

    // For streams, which fill an image that was created before: band is BI_AllBands or below the number of bands.
    DisplayState& displayState() { return state_; }

    LONG bandToDisplay() const { return state_.band; }
    void PutBandToDisplay(LONG band);

    bool DisplayDirty() { return dirty_ || store().changes() != seen_; }
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

private:
    DisplayState state_;
    bool dirty_ = true;
    uint64_t seen_ = 0;  // store().changes() that dirty_ speaks of
};

}  // namespace orlix
