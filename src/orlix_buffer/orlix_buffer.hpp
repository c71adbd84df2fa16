// The buffer object: a device-independent bitmap, as a picture and as an image.
#pragma once

#include <orlix/orlix.h>

#include "component/object.hpp"
#include "orlix_buffer/buffer_bitmap.hpp"
#include "orlix_buffer/buffer_core.hpp"
#include "orlix_buffer/buffer_pixels.hpp"
#include "pictures/memory_picture.hpp"
#include "pictures/picture_events.hpp"
#include "pictures/zoom_picture.hpp"

class OrlixBuffer final
    : public orlix::Object<OrlixBuffer,  //
                           orlix::Part<orlix::BufferBitmap, IDIBImage>, orlix::Part<orlix::BufferPixels, IImageVPA>,
                           orlix::Part<orlix::ZoomPicture, IPictureExZoom, IPictureEx>,
                           orlix::Part<orlix::MemoryPicture, IPictureMemory>,
                           orlix::Part<orlix::PictureEvents, IConnectionPointContainer>> {
public:
    // Called by Object.
    void LetGo() noexcept { core_.events.Close(); }

private:
    orlix::BufferCore& core() noexcept override { return core_; }
    orlix::PictureCore& picture() noexcept override { return core_; }

    orlix::BufferCore core_{life(), *this};
};
