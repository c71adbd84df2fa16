#include "process/typed_image.hpp"

#include "process/frame.hpp"

namespace orlix {

std::unique_ptr<TypedImage> TypedImage::Make(LONG dataType) {
    switch (dataType) {
        case DT_BYTE:
            return std::make_unique<Frame<CImageBase<BYTE, int16_t, int32_t>>>(dataType);
        case DT_WORD:
            return std::make_unique<Frame<CImageBase<WORD, int32_t, int64_t>>>(dataType);
        case DT_DWORD:
            return std::make_unique<Frame<CImageBase<uint32_t, int64_t, double>>>(dataType);
        case DT_Float:
            return std::make_unique<Frame<CImageBase<float, float, double>>>(dataType);
        default:
            return nullptr;
    }
}

void TypedImage::ContentReplaced() { bandToProcess_ = store().layout().bands == 1 ? 0 : BI_AllBands; }

void TypedImage::PutBandToProcess(LONG band) {
    if (band != BI_AllBands && (band < 0 || band >= store().layout().bands))
        throw Failure("IImageProcess::put_BandToProcess: invalid band to process");
    bandToProcess_ = band;
    store().SetModified(true);
}

}  // namespace orlix
