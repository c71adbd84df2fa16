#include "orlix_image/orlix_image.hpp"

#include "component/strings.hpp"
#include "image/source_image.hpp"

using namespace orlix;

std::shared_ptr<DisplayedImage> OrlixImage::Typed() {
    if (!typed_) throw NoImage();
    return typed_;
}

void OrlixImage::LetGo() noexcept {
    events_.Close();
    Take(nullptr);
}

void OrlixImage::Take(std::shared_ptr<DisplayedImage> typed) {
    const ImageLayout layout = typed ? typed->store().layout() : ImageLayout();
    zoom_.SetImageSize(layout.width, layout.height);
    typed_.swap(typed);
}

void OrlixImage::CreateTyped(LONG dataType, const std::function<void(ImageStore&)>& creation) {
    std::shared_ptr<DisplayedImage> target = typed_;
    if (!target || target->store().dataType() != dataType) {
        target = DisplayedImage::Make(dataType);
        if (!target) {
            Take(nullptr);
            throw FailedResult(E_FAIL);
        }
    }
    try {
        creation(target->store());
    } catch (const Failure&) {
        if (target != typed_) target->ContentReplaced();
        Take(target);
        throw;
    }
    target->ContentReplaced();
    modified_ = true;
    Take(target);
}

STDMETHODIMP OrlixImage::Dimensions(LONG* bands, LONG* width, LONG* height) noexcept {
    return Guarded([&] {
        Require(bands), Require(width), Require(height);
        const ImageLayout layout = typed_ ? typed_->store().layout() : ImageLayout();
        *bands = layout.bands;
        *width = layout.width;
        *height = layout.height;
    });
}

STDMETHODIMP OrlixImage::DataType(LONG, LONG* dataType) noexcept {
    return Guarded([&] {
        Require(dataType);
        *dataType = Typed()->store().dataType();
    });
}

STDMETHODIMP OrlixImage::VPA(LONG bandIndex, void** base, VPAEntry** table) noexcept {
    return Guarded([&]() -> HRESULT {
        Require(base), Require(table);
        *base = nullptr;
        *table = nullptr;
        ImageStore& store = Typed()->store();
        if (store.empty()) return S_FALSE;
        if (bandIndex < 0 || bandIndex >= store.layout().bands)
            throw Failure("IImageVPA::VPA: BandIndex is out of range", DISP_E_EXCEPTION);
        *base = store.base(bandIndex);
        *table = store.table();
        return S_OK;
    });
}

STDMETHODIMP OrlixImage::Accessible() noexcept {
    return Guarded([&] { return Typed()->store().refused() ? S_FALSE : S_OK; });
}

STDMETHODIMP OrlixImage::GetCoords(TCoordinateMap* coordinateMap) noexcept {
    return Guarded([&] {
        Require(coordinateMap);
        *coordinateMap = Typed()->store().coordinates();
    });
}

STDMETHODIMP OrlixImage::SetCoords(TCoordinateMap coordinateMap) noexcept {
    return Guarded([&] {
        Typed()->store().coordinates() = coordinateMap;
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::get_Description(BSTR* description) noexcept {
    return Guarded([&] {
        Require(description);
        const ImageProperties& properties = Typed()->store().properties();
        BSTR copy = properties.hasDescription ? CopyToBstr(properties.description) : nullptr;
        SysFreeString(std::exchange(*description, copy));
    });
}

STDMETHODIMP OrlixImage::put_Description(BSTR description) noexcept {
    return Guarded([&] {
        ImageProperties& properties = Typed()->store().properties();
        properties.description = ToView(description);
        properties.hasDescription = description != nullptr;
        modified_ = true;
    });
}

STDMETHODIMP OrlixImage::Create(LONG width, LONG height, LONG bands, LONG dataType, LONG zero) noexcept {
    return Guarded([&] {
        CreateTyped(dataType, [&](ImageStore& store) { store.Create(width, height, bands, dataType, zero != 0); });
    });
}

STDMETHODIMP OrlixImage::AttachBuffer(void* buffer, LONG width, LONG height, LONG bands, LONG dataType,
                                      LONG zero) noexcept {
    return Guarded([&] {
        if (!buffer) throw Failure("IImageVPAEx::AttachBuffer: no source buffer.", DISP_E_EXCEPTION);
        const ImageStore* const former = typed_ ? &typed_->store() : nullptr;
        CreateTyped(dataType, [&](ImageStore& store) {
            store.Attach(buffer, width, height, bands, dataType, zero != 0, former);
        });
    });
}

STDMETHODIMP OrlixImage::CreateFromImage(IImageVPA* image, LONG bandIndex) noexcept {
    return Guarded([&]() -> HRESULT {
        Require(image);
        if (IsSelf(image)) return S_FALSE;
        Copy(image, bandIndex, nullptr);
        return S_OK;
    });
}

STDMETHODIMP OrlixImage::CreateFromSubImage(IImageVPA* image, LONG bandIndex, LONG left, LONG top, LONG right,
                                            LONG bottom) noexcept {
    return Guarded([&] {
        Require(image);
        const RECT rectangle = {left, top, right, bottom};
        Copy(image, bandIndex, &rectangle);
    });
}

void OrlixImage::Copy(IImageVPA* image, LONG bandIndex, const RECT* rectangle) {
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

    CreateTyped(source.type(), [&](ImageStore& store) {
        // What lies inside the source's margin is less than 2^31 + 400 wide; what is not is refused as too large.
        if (width > INT32_MAX || height > INT32_MAX) throw FailedResult(E_FAIL);
        ImageContent content = store.MakeContent(static_cast<LONG>(std::max<int64_t>(width, 0)),
                                                 static_cast<LONG>(std::max<int64_t>(height, 0)), bands.count());
        content.coordinates = source.Coordinates();
        if (rectangle) {
            content.coordinates.OrgX = -static_cast<double>(left);
            content.coordinates.OrgY = -static_cast<double>(top);
        }
        source.GetMicronsPerPixel(content.properties.micronsX, content.properties.micronsY);
        CopySamples(source, bands, static_cast<int32_t>(left), static_cast<int32_t>(top), content);
        store.Replace(std::move(content));
    });
}
