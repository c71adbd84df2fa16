// One image of some pixel type with what a client sets for its processing.
#pragma once

#include <orlix/orlix.h>

#include <memory>

#include <orlix/com_ptr.hpp>

#include "image/image_store.hpp"

namespace orlix {

// What does not depend on the pixel type; the rest is the Frame of that type (frame.hpp), which WithFrame() gives. What
// a client sets stays while the pixel type stays: region, luminance range, number of bins, table. Only the band to
// process is set anew by a creation.
class TypedImage {
public:
    // Null for a type that images do not have. changes: the record of the image object, which outlives this.
    static std::unique_ptr<TypedImage> Make(LONG dataType, Changes& changes);

    virtual ~TypedImage() = default;
    TypedImage(const TypedImage&) = delete;
    TypedImage& operator=(const TypedImage&) = delete;

    virtual ImageStore& store() = 0;

    // To be called after every creation: the band to process is 0 for an image of one band, all bands for several.
    void ContentReplaced();

    LONG bandToProcess() const { return bandToProcess_; }
    void PutBandToProcess(LONG band);
    const ComPtr<IRegionOfInterest>& region() const { return region_; }
    // The new region is in its place when the old one is given back: that may call anything.
    void PutRegion(IRegionOfInterest* region) { region_ = ComPtr<IRegionOfInterest>(region); }

protected:
    TypedImage() = default;

private:
    LONG bandToProcess_ = 0;
    ComPtr<IRegionOfInterest> region_;
};

}  // namespace orlix
