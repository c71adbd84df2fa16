#include "orlix_image/image_core.hpp"

#include <utility>

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

void ImageCore::Attach(void* buffer, LONG width, LONG height, LONG bands, LONG dataType, bool zero) {
    if (!buffer) throw Failure("IImageVPAEx::AttachBuffer: no source buffer.", DISP_E_EXCEPTION);
    const ImageStore* const former = typed_ ? &typed_->store() : nullptr;
    CreateTyped(dataType,
                [&](ImageStore& store) { store.Attach(buffer, width, height, bands, dataType, zero, former); });
}

}  // namespace orlix
