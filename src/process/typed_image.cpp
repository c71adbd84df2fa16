#include "process/typed_image.hpp"

namespace orlix {

void TypedImage::ContentReplaced() { bandToProcess_ = store().layout().bands == 1 ? 0 : LONG{BI_AllBands}; }

void TypedImage::PutBandToProcess(LONG band) {
    if (band != BI_AllBands && (band < 0 || band >= store().layout().bands))
        throw Failure("IImageProcess::put_BandToProcess: invalid band to process");
    bandToProcess_ = band;
    store().SetModified(true);
}

}  // namespace orlix
