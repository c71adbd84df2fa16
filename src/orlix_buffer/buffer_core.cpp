#include "orlix_buffer/buffer_core.hpp"

#include <limits>
#include <utility>

#include "platform/memory_probe.hpp"

namespace orlix {

std::shared_ptr<DibPicture> BufferCore::Bitmap() const {
    if (!bitmap_) throw NoImage();
    return bitmap_;
}

void BufferCore::Take(DibMemory dib) {
    bitmap_ = std::make_shared<DibPicture>(std::move(dib));
    zoom.SetImageSize(bitmap_->dib().layout().width, bitmap_->dib().layout().height);
    coordinates = kIdentityMap;
}

bool BufferCore::IsUsable(const void* memory, uint64_t size) const {
    if (size > std::numeric_limits<size_t>::max()) return false;
    const auto bytes = static_cast<size_t>(size);
    return !(bitmap_ && bitmap_->dib().Overlaps(memory, bytes)) && IsReadable(memory, bytes) &&
           IsWritable(memory, bytes);
}

void BufferCore::AttachPicture(void* buffer, LONG width, LONG height, LONG bitsPerPixel) {
    if (!buffer) throw Failure("IImageVPAEx::AttachBuffer: no source buffer.", DISP_E_EXCEPTION);
    if (width <= 0) throw Failure("IImageVPAEx::AttachBuffer: Width must be positive.", DISP_E_EXCEPTION);
    if (height <= 0) throw Failure("IImageVPAEx::AttachBuffer: Height must be positive.", DISP_E_EXCEPTION);
    const DibLayout layout = PlainDibLayout(width, height, true, static_cast<uint32_t>(bitsPerPixel));
    if (!DibMemory::HoldsPixels(layout)) throw FailedResult(E_FAIL);
    const auto size = layout.stride * static_cast<uint64_t>(height);
    if (!IsUsable(buffer, size)) {
        if (size <= std::numeric_limits<size_t>::max() && IsReadable(buffer, static_cast<size_t>(size)) &&
            !IsWritable(buffer, static_cast<size_t>(size)))
            throw Failure(
                "IImageVPAEx::AttachBuffer: the operator system indicated that buffer has as bad address for "
                "writing.");
        throw Failure(
            "IImageVPAEx::AttachBuffer: the operator system indicated that buffer has as bad address for "
            "reading.");
    }
    Take(DibMemory(layout, GreyDibEntries(layout.bits), static_cast<uint8_t*>(buffer)));
}

}  // namespace orlix
