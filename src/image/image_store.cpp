#include "image/image_store.hpp"

#include <cstring>
#include <utility>

#include "platform/memory_probe.hpp"

namespace orlix {

void ImageProperties::Keep(TextEntry&& entry) {
    if (hasDescription || entry.keyword != kDescriptionKeyword) return texts.push_back(std::move(entry));
    description = std::move(entry.text);
    hasDescription = true;
}

std::vector<TextEntry> ImageProperties::AllTexts() const {
    std::vector<TextEntry> all;
    if (hasDescription) all.push_back({WideString(kDescriptionKeyword), description});
    all.insert(all.end(), texts.begin(), texts.end());
    return all;
}

void ImageStore::Create(LONG width, LONG height, LONG bands, LONG dataType, bool zero) {
    if (width <= 0) throw Failure("IImageVPAEx::Create: Width must be positive.", DISP_E_EXCEPTION);
    if (height <= 0) throw Failure("IImageVPAEx::Create: Height must be positive.", DISP_E_EXCEPTION);
    if (bands <= 0) throw Failure("IImageVPAEx::Create: Bands must be positive.", DISP_E_EXCEPTION);
    if ((dataType & 0x1ff) < 8)
        throw Failure("ImageVPAExPlus::Create: DataType must specify at least one byte per pixel");

    const ImageLayout layout = MakeLayout(width, height, bands, dataType);
    const bool rebuild = layout != content_.layout;
    std::vector<VPAEntry> table = rebuild ? MakeOffsetTable(layout) : std::move(content_.table);
    try {
        content_.owned.Resize(layout.totalSize);
    } catch (...) {
        if (!rebuild) content_.table = std::move(table);
        throw;
    }
    Reset(layout, std::move(table));
    content_.data = content_.owned.data();
    if (zero) std::memset(content_.data, 0, layout.totalSize);
}

void ImageStore::Attach(void* buffer, LONG width, LONG height, LONG bands, LONG dataType, bool zero,
                        const ImageStore* former) {
    if (width <= 0) throw Failure("IImageVPAEx::AttachBuffer: Width must be positive.", DISP_E_EXCEPTION);
    if (height <= 0) throw Failure("IImageVPAEx::AttachBuffer: Height must be positive.", DISP_E_EXCEPTION);
    if (bands <= 0) throw Failure("IImageVPAEx::AttachBuffer: Bands must be positive.", DISP_E_EXCEPTION);
    if ((dataType & 0x1ff) < 8)
        throw Failure("ImageVPAEx::AttachBuffer: DataType must specify at least one byte per pixel");

    // Everything that can run out of memory comes before the first change.
    const ImageLayout layout = MakeLayout(width, height, bands, dataType);
    std::vector<VPAEntry> table;
    if (layout != content_.layout) table = MakeOffsetTable(layout);
    // Sample (x, y) of a client's buffer is read as a whole pixel, so the buffer must be aligned for pixels.
    const bool readable = reinterpret_cast<uintptr_t>(buffer) % static_cast<uintptr_t>(layout.bytesPerSample) == 0 &&
                          !(former && former->content_.owned.Overlaps(buffer, layout.totalSize)) &&
                          IsReadable(buffer, layout.totalSize);
    const bool writable = readable && IsWritable(buffer, layout.totalSize);

    Reset(layout, table.empty() ? std::move(content_.table) : std::move(table));
    content_.owned = PixelBuffer();
    content_.data = static_cast<uint8_t*>(buffer);
    content_.refused = !writable;
    if (!readable)
        throw Failure(
            "IImageVPAEx::AttachBuffer: the operator system indicated that buffer has as bad address for "
            "reading.");
    if (!writable)
        throw Failure(
            "IImageVPAEx::AttachBuffer: the operator system indicated that buffer has as bad address for "
            "writing.");
    if (zero) std::memset(buffer, 0, layout.totalSize);
}

ImageContent MakeContent(LONG dataType, LONG width, LONG height, LONG bands, Samples samples) {
    if (width <= 0) throw Failure("IImageVPAEx::Create: Width must be positive.", DISP_E_EXCEPTION);
    if (height <= 0) throw Failure("IImageVPAEx::Create: Height must be positive.", DISP_E_EXCEPTION);
    if (bands <= 0) throw Failure("IImageVPAEx::Create: Bands must be positive.", DISP_E_EXCEPTION);
    ImageContent content;
    content.layout = MakeLayout(width, height, bands, dataType);
    content.table = MakeOffsetTable(content.layout);
    if (samples == Samples::Unset)
        content.owned = PixelBuffer::Unset(content.layout.totalSize);
    else
        content.owned.Resize(content.layout.totalSize);
    content.data = content.owned.data();
    return content;
}

void ImageStore::Replace(ImageContent&& content) noexcept {
    content_ = std::move(content);
    ++changes_.pixels;
}

void ImageStore::Reset(const ImageLayout& layout, std::vector<VPAEntry> table) {
    content_.layout = layout;
    content_.table = std::move(table);
    content_.refused = false;
    content_.coordinates = kIdentityMap;
    content_.properties = ImageProperties();
    ++changes_.pixels;
}

}  // namespace orlix
