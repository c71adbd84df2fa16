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

template <class Pixel>
void CopyBands(const SourceImage& source, BandRange bands, int32_t left, int32_t top, ImageContent& destination) {
    const std::vector<PixelView<const Pixel>> views = source.views<Pixel>(bands);
    for (size_t band = 0; band < views.size(); ++band) {
        auto* const base = reinterpret_cast<Pixel*>(destination.data + band * destination.layout.bandSize);
        CopyBand(views[band], left, top,
                 PixelView<Pixel>(base, destination.table.data() + kTableMargin, destination.layout.width,
                                  destination.layout.height));
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

void SourceImage::GetMicronsPerPixel(double& x, double& y) const {
    x = y = 0;
    const ComPtr<IImageFile> file = image_.As<IImageFile>();
    if (!file) return;
    if (file->GetMicronsPerPixel(&x, &y) != S_OK || !(x > 0) || !(y > 0)) x = y = 0;
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
    switch (destination.layout.bytesPerSample) {
        case 1:
            return CopyBands<uint8_t>(source, bands, left, top, destination);
        case 2:
            return CopyBands<uint16_t>(source, bands, left, top, destination);
        case 4:
            return CopyBands<uint32_t>(source, bands, left, top, destination);
        default:
            throw FailedResult(E_FAIL);
    }
}

}  // namespace orlix
