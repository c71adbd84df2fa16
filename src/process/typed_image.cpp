#include "process/typed_image.hpp"

#include "process/frame.hpp"

namespace orlix {

std::unique_ptr<TypedImage> TypedImage::Make(LONG dataType, Changes& changes) {
    switch (dataType) {
        case DT_BYTE:
            return std::make_unique<Frame<BYTE>>(dataType, changes);
        case DT_WORD:
            return std::make_unique<Frame<WORD>>(dataType, changes);
        case DT_DWORD:
            return std::make_unique<Frame<uint32_t>>(dataType, changes);
        case DT_Float:
            return std::make_unique<Frame<float>>(dataType, changes);
        default:
            return nullptr;
    }
}

void TypedImage::ContentReplaced() { bandToProcess_ = store().layout().bands == 1 ? 0 : LONG{BI_AllBands}; }

void TypedImage::PutBandToProcess(LONG band) {
    if (band != BI_AllBands && (band < 0 || band >= store().layout().bands))
        throw Failure("IImageProcess::put_BandToProcess: invalid band to process");
    bandToProcess_ = band;
    ++store().changes().pixels;
}

}  // namespace orlix
