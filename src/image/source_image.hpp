// An image passed in by a client: any implementation of IImageVPA, trusted only as far as it can be checked.
#pragma once

#include <orlix/orlix.h>

#include <vector>

#include <orlix/com_ptr.hpp>

#include "image/image_store.hpp"
#include "image/pixel_view.hpp"

// An internal interface of this library's images: whether the pixels may be touched. An image attached to a refused
// buffer still hands out its address.
MIDL_INTERFACE("31FEAD5E-80E9-4076-8AAC-F1556E2DE0C2")
IPixelAccess : public IUnknown {
    // S_OK, or S_FALSE when the operating system would not let us read and write the buffer.
    virtual HRESULT STDMETHODCALLTYPE Accessible() = 0;
};
__CRT_UUID_DECL(IPixelAccess, 0x31fead5e, 0x80e9, 0x4076, 0x8a, 0xac, 0xf1, 0x55, 0x6e, 0x2d, 0xe0, 0xc2)

namespace orlix {

// Bands first..last, both included.
struct BandRange {
    int32_t first;
    int32_t last;
    int32_t count() const { return last - first + 1; }
};

// BI_AllBands gives all bands. Any other value gives just that band, unchecked: it may not exist.
BandRange BandsOf(LONG band, int32_t bands);

// Notes:
//  (1) Failing calls and null or misaligned pointers are E_FAIL. An image without pixels (sizes below 1) or with a
//      refused buffer is NoSourceImage.
//  (2) Size and type are read again after the pointers were handed out; if they have changed, it is E_FAIL.
//  (3) Pixels are read in the type that the caller found in type().
//  (4) The image is kept alive, and any call to it may call back into anything: a caller that writes to a destination
//      gets all views first and looks up the destination afterwards.
class SourceImage {
public:
    // image is not null.
    explicit SourceImage(IImageVPA* image);

    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    int32_t bands() const { return bands_; }
    LONG type() const { return type_; }
    TCoordinateMap Coordinates() const;
    // What a copy keeps, when the image implements IImageFile: the pixel size and the number of significant bits.
    ImageProperties Kept() const;

    // For a band that does not exist, fails as the image itself reports it, with E_FAIL if the image reports nothing.
    void RequireBand(int32_t band) const { Locate(band); }
    template <class Pixel>
    std::vector<PixelView<const Pixel>> views(BandRange bands) const {
        std::vector<PixelView<const Pixel>> views;
        for (int32_t i = 0; i < bands.count(); ++i) {
            const Address address = Locate(bands.first + i);
            if (reinterpret_cast<uintptr_t>(address.base) % alignof(Pixel) != 0) throw FailedResult(E_FAIL);
            views.emplace_back(static_cast<const Pixel*>(address.base), address.table, width_, height_);
        }
        return views;
    }

private:
    struct Address {
        const void* base;
        const VPAEntry* table;
    };
    Address Locate(int32_t band) const;

    ComPtr<IImageVPA> image_;
    ComPtr<IPixelAccess> access_;  // null for images of other components
    LONG width_ = 0;
    LONG height_ = 0;
    LONG bands_ = 0;
    LONG type_ = 0;
};

// Copies the rectangle of destination.width x destination.height whose top left corner is (left, top) of the source. It
// must not extend beyond the source by more than the table's margin.
void CopySamples(const SourceImage& source, BandRange bands, int32_t left, int32_t top, ImageContent& destination);

// The same over the samples of an image that owns some of this layout: no memory is taken from the system, which takes
// longer than the copy. False, having copied nothing, for an image that does not own such samples once the source has
// handed out its pixels, or that holds some of these. `table` is that of an image of the layout.
bool OverwriteSamples(const SourceImage& source, BandRange bands, int32_t left, int32_t top, const ImageLayout& layout,
                      const std::vector<VPAEntry>& table, ImageStore& destination);

}  // namespace orlix
