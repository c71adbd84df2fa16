#include "orlix_buffer/buffer_pixels.hpp"

#include "image/image_store.hpp"

namespace orlix {

DibPicture& BufferPixels::Grey() {
    if (!core().bitmap() || !core().bitmap()->IsGrey())
        throw Failure("IImageVPA: the bitmap does not have 8 bits and a grey palette.");
    return *core().bitmap();
}

STDMETHODIMP BufferPixels::Dimensions(LONG* bands, LONG* width, LONG* height) noexcept {
    return Guarded([&] {
        Require(bands), Require(width), Require(height);
        const DibLayout& layout = Grey().dib().layout();
        *bands = 1;
        *width = layout.width;
        *height = layout.height;
    });
}

STDMETHODIMP BufferPixels::DataType(LONG, LONG* dataType) noexcept {
    return Guarded([&] {
        Require(dataType);
        Grey();
        *dataType = DT_BYTE;
    });
}

STDMETHODIMP BufferPixels::VPA(LONG bandIndex, void** base, VPAEntry** table) noexcept {
    return Guarded([&] {
        Require(base), Require(table);
        *base = nullptr;
        *table = nullptr;
        DibPicture& bitmap = Grey();
        if (bandIndex != 0) throw Failure(kBandOutOfRange, DISP_E_EXCEPTION);
        *table = bitmap.OffsetTable();
        *base = bitmap.dib().pixels();
    });
}

STDMETHODIMP BufferPixels::GetCoords(TCoordinateMap* coordinateMap) noexcept {
    return Guarded([&] {
        Require(coordinateMap);
        Grey();
        *coordinateMap = core().coordinates;
    });
}

STDMETHODIMP BufferPixels::SetCoords(TCoordinateMap coordinateMap) noexcept {
    return Guarded([&] {
        Grey();
        core().coordinates = coordinateMap;
    });
}

}  // namespace orlix
