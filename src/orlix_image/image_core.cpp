#include "orlix_image/image_core.hpp"

#include <utility>

#include "orlix_image/settings.hpp"

namespace orlix {

std::shared_ptr<DisplayedImage> ImageCore::Typed() const {
    if (!typed_) throw NoImage();
    return typed_;
}

void ImageCore::Take(std::shared_ptr<DisplayedImage> typed) {
    const ImageLayout layout = typed ? typed->store().layout() : ImageLayout();
    zoom.SetImageSize(layout.width, layout.height);
    typed_.swap(typed);
}

void ImageCore::CreateTyped(LONG dataType, const std::function<void(ImageStore&)>& creation) {
    std::shared_ptr<DisplayedImage> target = typed_;
    if (!target || target->store().dataType() != dataType) {
        target = DisplayedImage::Make(dataType, changes);
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
    Take(target);
}

std::shared_ptr<DisplayedImage> ImageCore::Adopt(LONG dataType, ImageContent&& content, const ImageSettings* settings) {
    std::shared_ptr<DisplayedImage> former = typed_, target = typed_;
    if (!target || target->store().dataType() != dataType) target = DisplayedImage::Make(dataType, changes);
    target->store().Replace(std::move(content));
    target->ContentReplaced();
    if (settings) PutSettings(*settings, *target);
    Take(std::move(target));
    return former;
}

void ImageCore::LoadFile(WideStringView fileName, ReadOptions options) {
    options.limit = SampleLimit(sampleLimit);
    Adopt(LoadImage(fileName, options));
}

void ImageCore::LoadBytes(std::span<const uint8_t> bytes, ReadOptions options) {
    options.limit = SampleLimit(sampleLimit);
    Adopt(LoadImage(bytes, options));
}

void ImageCore::Adopt(LoadedImage&& loaded) {
    const auto former =
        Adopt(loaded.dataType, std::move(loaded.content), loaded.settings ? &*loaded.settings : nullptr);
}

void ImageCore::Attach(void* buffer, LONG width, LONG height, LONG bands, LONG dataType, bool zero) {
    if (!buffer) throw Failure("IImageVPAEx::AttachBuffer: no source buffer.", DISP_E_EXCEPTION);
    const ImageStore* const former = typed_ ? &typed_->store() : nullptr;
    CreateTyped(dataType,
                [&](ImageStore& store) { store.Attach(buffer, width, height, bands, dataType, zero, former); });
}

}  // namespace orlix
