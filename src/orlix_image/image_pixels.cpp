#include "orlix_image/image_pixels.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "component/strings.hpp"
#include "orlix_image/file_content.hpp"

namespace orlix {

STDMETHODIMP ImagePixels::Dimensions(LONG* bands, LONG* width, LONG* height) noexcept {
    return Guarded([&] {
        Require(bands), Require(width), Require(height);
        const std::shared_ptr<DisplayedImage>& typed = core().typed();
        const ImageLayout layout = typed ? typed->store().layout() : ImageLayout();
        *bands = layout.bands;
        *width = layout.width;
        *height = layout.height;
    });
}

STDMETHODIMP ImagePixels::DataType(LONG, LONG* dataType) noexcept {
    return Guarded([&] {
        Require(dataType);
        *dataType = Typed()->store().dataType();
    });
}

STDMETHODIMP ImagePixels::VPA(LONG bandIndex, void** base, VPAEntry** table) noexcept {
    return Guarded([&]() -> HRESULT {
        Require(base), Require(table);
        *base = nullptr;
        *table = nullptr;
        ImageStore& store = Typed()->store();
        if (store.empty()) return S_FALSE;
        if (bandIndex < 0 || bandIndex >= store.layout().bands) throw Failure(kBandOutOfRange, DISP_E_EXCEPTION);
        *base = store.base(bandIndex);
        *table = store.table();
        return S_OK;
    });
}

STDMETHODIMP ImageAccess::Accessible() noexcept {
    return Guarded([&] { return Typed()->store().refused() ? S_FALSE : S_OK; });
}

STDMETHODIMP ImagePixels::GetCoords(TCoordinateMap* coordinateMap) noexcept {
    return Guarded([&] {
        Require(coordinateMap);
        *coordinateMap = Typed()->store().coordinates();
    });
}

STDMETHODIMP ImagePixels::SetCoords(TCoordinateMap coordinateMap) noexcept {
    return Guarded([&] { Typed()->store().PutCoordinates(coordinateMap); });
}

STDMETHODIMP ImagePixels::get_Description(BSTR* description) noexcept {
    return Guarded([&] {
        Require(description);
        const ImageProperties& properties = Typed()->store().properties();
        BSTR copy = properties.hasDescription ? CopyToBstr(properties.description) : nullptr;
        SysFreeString(std::exchange(*description, copy));
    });
}

STDMETHODIMP ImagePixels::put_Description(BSTR description) noexcept {
    return Guarded([&] {
        WideString text(ToView(description));
        ImageProperties& properties = Typed()->store().ChangeProperties();
        properties.description = std::move(text);
        properties.hasDescription = description != nullptr;
    });
}

STDMETHODIMP ImagePixels::Create(LONG width, LONG height, LONG bands, LONG dataType, LONG zero) noexcept {
    return Guarded([&] {
        core().CreateTyped(dataType,
                           [&](ImageStore& store) { store.Create(width, height, bands, dataType, zero != 0); });
    });
}

STDMETHODIMP ImagePixels::AttachBuffer(void* buffer, LONG width, LONG height, LONG bands, LONG dataType,
                                       LONG zero) noexcept {
    return Guarded([&] { core().Attach(buffer, width, height, bands, dataType, zero != 0); });
}

STDMETHODIMP ImagePixels::CreateFromFile(BSTR fileName) noexcept {
    return Guarded([&] {
        ReadOptions options;
        options.anyBitmap = false;
        core().LoadFile(ToView(fileName), options);
    });
}

STDMETHODIMP ImagePixels::CreateFromImage(IImageVPA* image, LONG bandIndex) noexcept {
    return Guarded([&]() -> HRESULT {
        Require(image);
        const ComPtr<IImageVPA> held(image);  // it may let go of itself when it is asked who it is
        if (AreSame(this, image)) return S_FALSE;
        Copy(image, bandIndex, nullptr);
        return S_OK;
    });
}

STDMETHODIMP ImagePixels::CreateFromSubImage(IImageVPA* image, LONG bandIndex, LONG left, LONG top, LONG right,
                                             LONG bottom) noexcept {
    return Guarded([&] {
        Require(image);
        const RECT rectangle = {left, top, right, bottom};
        Copy(image, bandIndex, &rectangle);
    });
}

void ImagePixels::Copy(IImageVPA* image, LONG bandIndex, const RECT* rectangle) {
    const SourceImage source(image);
    const BandRange bands = BandsOf(bandIndex, source.bands());
    source.RequireBand(bands.first);

    const int64_t left = rectangle ? rectangle->left : 0;
    const int64_t top = rectangle ? rectangle->top : 0;
    const int64_t width = rectangle ? rectangle->right - left + 1 : source.width();
    const int64_t height = rectangle ? rectangle->bottom - top + 1 : source.height();
    if (width > 0 && height > 0 &&
        (left < -kTableMargin || left + width > int64_t{source.width()} + kTableMargin || top < -kTableMargin ||
         top + height > int64_t{source.height()} + kTableMargin))
        throw Failure("IImageVPAEx::CreateFromSubImage: the rectangle is too far outside the image.", DISP_E_EXCEPTION);

    core().CreateTyped(source.type(), [&](ImageStore& store) {
        // A rectangle inside the source's margin is less than 2^31 + 400 wide; more than INT32_MAX is refused as too
        // large.
        if (width > INT32_MAX || height > INT32_MAX) throw FailedResult(E_FAIL);
        const auto columns = static_cast<LONG>(std::max<int64_t>(width, 0));
        const auto rows = static_cast<LONG>(std::max<int64_t>(height, 0));
        const auto map = [&] {
            TCoordinateMap coordinates = source.Coordinates();
            if (rectangle) {
                coordinates.OrgX = -static_cast<double>(left);
                coordinates.OrgY = -static_cast<double>(top);
            }
            return coordinates;
        };
        const auto x = static_cast<int32_t>(left), y = static_cast<int32_t>(top);
        if (columns > 0 && rows > 0) {
            const ImageLayout layout = MakeLayout(columns, rows, bands.count(), source.type());
            // Below, taking memory costs less than looking for what the source shares.
            constexpr size_t kOverwriteFrom = 1 << 16;
            if (layout.totalSize >= kOverwriteFrom && store.Owns(layout)) {
                std::vector<VPAEntry> table = MakeOffsetTable(layout);
                const TCoordinateMap coordinates = map();
                ImageProperties kept = source.Kept();
                if (OverwriteSamples(source, bands, x, y, layout, table, store))
                    return store.SamplesReplaced(std::move(table), coordinates, std::move(kept));
            }
        }
        ImageContent content = MakeContent(source.type(), columns, rows, bands.count());
        content.coordinates = map();
        content.properties = source.Kept();
        CopySamples(source, bands, x, y, content);
        store.Replace(std::move(content));
    });
}

}  // namespace orlix
