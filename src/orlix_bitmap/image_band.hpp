// The pixels of a client's image, for operations of a bitmap and its blobs.
#pragma once

#include <orlix/orlix.h>

#include "component/failure.hpp"
#include "component/guard.hpp"
#include "image/source_image.hpp"

namespace orlix {

// The band of a client's image that is wanted, and the size that the image must have.
struct ImageBand {
    IImageVPA* image;
    LONG band;  // BI_AllBands stands for the only one
    LONG width, height;
    MethodFailure severalBands;  // for BI_AllBands
};

// Calls operation(view) with the pixels of the band. All clients are asked before, none is called by the operation.
template <class Operation>
void WithPixels(const ImageBand& wanted, const Operation& operation) {
    Require(wanted.image);
    const SourceImage source(wanted.image);
    if (wanted.band == BI_AllBands && source.bands() > 1) throw wanted.severalBands;
    const LONG band = wanted.band == BI_AllBands ? 0 : wanted.band;
    if (source.width() != wanted.width || source.height() != wanted.height)
        throw MethodFailure("the image has another size.");
    const auto apply = [&]<class Pixel>(Pixel) { operation(source.views<Pixel>({band, band})[0]); };
    switch (source.type()) {
        case DT_BYTE:
            return apply(BYTE{});
        case DT_WORD:
            return apply(WORD{});
        case DT_DWORD:
            return apply(uint32_t{});
        case DT_Float:
            return apply(0.0f);
        default:
            throw MethodFailure("data type mismatch.");
    }
}

}  // namespace orlix
