// State and helpers shared by the parts of the buffer object.
#pragma once

#include <orlix/orlix.h>

#include <memory>

#include "image/coordinate_map.hpp"
#include "orlix_buffer/dib_picture.hpp"
#include "pictures/picture_core.hpp"

namespace orlix {

class BufferCore final : public PictureCore {
public:
    BufferCore(ObjectLife& life, IConnectionPointContainer& container) noexcept
        : PictureCore(life, __uuidof(OrlixBuffer), container) {}

    // Throws NoImage when there is none. Shared: a client may replace it meanwhile.
    std::shared_ptr<DibPicture> Bitmap() const;
    // The same, but null when there is none.
    const std::shared_ptr<DibPicture>& bitmap() const { return bitmap_; }

    // Replaces the bitmap.
    void Take(DibMemory dib);

    // Whether the system lets this memory of a client be read and written, and it outlives the next creation.
    bool IsUsable(const void* memory, uint64_t size) const;

    std::shared_ptr<PictureSource> Source() const override { return bitmap_; }
    void AttachPicture(void* buffer, LONG width, LONG height, LONG bitsPerPixel) override;

    TCoordinateMap coordinates = kIdentityMap;  // of the bitmap as an image

private:
    std::shared_ptr<DibPicture> bitmap_;
};

// A part of the buffer object, see PicturePart.
template <class I>
class BufferPart : public I {
protected:
    ~BufferPart() = default;

    virtual BufferCore& core() noexcept = 0;

    // See Object::Guarded.
    template <class Named = void, class Body>
    HRESULT Guarded(Body&& body, const char* method = __builtin_FUNCTION()) noexcept {
        return core().template Guarded<Named>(body, method);
    }
};

}  // namespace orlix
