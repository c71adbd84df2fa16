#include "image/source_image.hpp"

#include <cstring>
#include <vector>

namespace orlix {
namespace {

// Pixel is an unsigned integer of the sample's size: a copy moves bits, whatever they represent.
template <class Pixel>
void CopyBand(PixelView<const Pixel> from, int32_t left, int32_t top, PixelView<Pixel> to) {
    bool adjacent = true;
    const VPAEntry* const columns = from.table() + left;
    for (int32_t x = 1; x < to.width() && adjacent; ++x) adjacent = columns[x].XEntry == int64_t{columns[0].XEntry} + x;
    for (int32_t y = 0; y < to.height(); ++y) {
        Pixel* const row = to.row(y);
        if (adjacent)
            std::memcpy(row, &from.at(left, top + y), static_cast<size_t>(to.width()) * sizeof(Pixel));
        else
            for (int32_t x = 0; x < to.width(); ++x) row[x] = from.at(left + x, top + y);
    }
}

// The last bytes of a row belong to no sample, and are 0.
void ClearPadding(uint8_t* band, const ImageLayout& layout) {
    const size_t used = static_cast<size_t>(layout.width) * static_cast<size_t>(layout.bytesPerSample);
    const auto stride = static_cast<size_t>(layout.rowStride);
    if (used == stride) return;
    for (int32_t y = 0; y < layout.height; ++y)
        std::memset(band + static_cast<size_t>(y) * stride + used, 0, stride - used);
}

// `table` is that of an image of the layout.
template <class Pixel>
void CopyBands(const std::vector<PixelView<const Pixel>>& views, int32_t left, int32_t top, uint8_t* to,
               const VPAEntry* table, const ImageLayout& layout) {
    for (const PixelView<const Pixel>& view : views) {
        CopyBand(view, left, top, PixelView<Pixel>(reinterpret_cast<Pixel*>(to), table, layout.width, layout.height));
        ClearPadding(to, layout);
        to += layout.bandSize;
    }
}

// Calls use(Pixel) with the unsigned integer of the sample's size.
template <class Use>
auto WithSample(int32_t bytes, const Use& use) {
    switch (bytes) {
        case 1:
            return use(uint8_t{});
        case 2:
            return use(uint16_t{});
        case 4:
            return use(uint32_t{});
        default:
            throw FailedResult(E_FAIL);
    }
}

}  // namespace

BandRange BandsOf(LONG band, int32_t bands) {
    if (band == BI_AllBands) return {0, bands - 1};
    return {static_cast<int32_t>(band), static_cast<int32_t>(band)};
}

SourceImage::SourceImage(IImageVPA* image) : image_(image), access_(image_.As<IPixelAccess>()) {
    Demand(image_->Dimensions(&bands_, &width_, &height_));
    if (bands_ < 1 || width_ < 1 || height_ < 1) throw NoSourceImage();
    Demand(image_->DataType(0, &type_));
}

TCoordinateMap SourceImage::Coordinates() const {
    TCoordinateMap map = kIdentityMap;
    Demand(image_->GetCoords(&map));
    return map;
}

ImageProperties SourceImage::Kept() const {
    ImageProperties kept;
    double x = 0, y = 0;
    const ComPtr<IImageFile> file = image_.As<IImageFile>();
    if (!file) {
        const ComPtr<IDIBImage> bitmap = image_.As<IDIBImage>();
        if (bitmap && bitmap->GetMicronsPerPixel(&x, &y) == S_OK && IsPixelSize(x, y))
            kept.PutMicrons(x, y, "source image");
        return kept;
    }
    if (file->GetMicronsPerPixel(&x, &y) == S_OK && IsPixelSize(x, y)) kept.PutMicrons(x, y, "source image");
    LONG bits = 0;
    if (file->get_SignificantBits(&bits) == S_OK && CanBeSignificant(bits, type_)) kept.significantBits = bits;
    return kept;
}

SourceImage::Address SourceImage::Locate(int32_t band) const {
    void* base = nullptr;
    VPAEntry* table = nullptr;
    Demand(image_->VPA(band, &base, &table));
    if (!base || !table || reinterpret_cast<uintptr_t>(table) % alignof(VPAEntry) != 0) throw FailedResult(E_FAIL);
    if (band < 0 || band >= bands_) throw FailedResult(E_FAIL);
    if (access_ && access_->Accessible() != S_OK) throw NoSourceImage();
    LONG bands = 0;
    LONG width = 0;
    LONG height = 0;
    Demand(image_->Dimensions(&bands, &width, &height));
    LONG type = 0;
    Demand(image_->DataType(0, &type));
    if (width != width_ || height != height_ || bands != bands_ || type != type_) throw FailedResult(E_FAIL);
    return {base, table};
}

void CopySamples(const SourceImage& source, BandRange bands, int32_t left, int32_t top, ImageContent& destination) {
    const ImageLayout& layout = destination.layout;
    WithSample(layout.bytesPerSample, [&]<class Pixel>(Pixel) {
        CopyBands(source.views<Pixel>(bands), left, top, destination.data, destination.table.data() + kTableMargin,
                  layout);
    });
}

bool OverwriteSamples(const SourceImage& source, BandRange bands, int32_t left, int32_t top, const ImageLayout& layout,
                      const std::vector<VPAEntry>& table, ImageStore& destination) {
    return WithSample(layout.bytesPerSample, [&]<class Pixel>(Pixel) {
        const std::vector<PixelView<const Pixel>> views = source.views<Pixel>(bands);
        if (!destination.Owns(layout)) return false;
        uint8_t* const to = destination.base(0);
        for (const PixelView<const Pixel>& view : views)
            if (SharesMemory(view, to, to + layout.totalSize)) return false;
        CopyBands(views, left, top, to, table.data() + kTableMargin, layout);
        return true;
    });
}

}  // namespace orlix
