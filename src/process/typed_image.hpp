// An image of one pixel type with the client's settings for its processing.
#pragma once

#include <orlix/orlix.h>

#include <memory>

#include <orlix/com_ptr.hpp>

#include "image/image_store.hpp"

namespace orlix {

// The state that does not depend on the pixel type; the rest is the Frame of that type (frame.hpp), which WithFrame()
// gives. Client settings (region, luminance range, number of bins, table) survive until the pixel type changes. Only
// the band to process is set anew by every creation.
class TypedImage {
public:
    // Null for a type that images cannot have. changes: the record of the image object, which outlives this object.
    static std::unique_ptr<TypedImage> Make(LONG dataType, Changes& changes);

    virtual ~TypedImage() = default;
    TypedImage(const TypedImage&) = delete;
    TypedImage& operator=(const TypedImage&) = delete;

    virtual ImageStore& store() = 0;

    // To be called after every creation: the band to process becomes 0 for an image of one band, all bands otherwise.
    void ContentReplaced();

    LONG bandToProcess() const { return bandToProcess_; }
    void PutBandToProcess(LONG band);
    const ComPtr<IRegionOfInterest>& region() const { return region_; }
    // The new region is in place before the old one is released, since the release may call anything.
    void PutRegion(IRegionOfInterest* region) { region_ = ComPtr<IRegionOfInterest>(region); }

protected:
    TypedImage() = default;

private:
    LONG bandToProcess_ = 0;
    ComPtr<IRegionOfInterest> region_;
};

}  // namespace orlix
