// The image object, composed of one part per group of interfaces. To add an interface, write its part in files of its
// own and add an entry below.
#pragma once

#include <orlix/orlix.h>

#include "component/object.hpp"
#include "orlix_image/image_core.hpp"
#include "orlix_image/image_display.hpp"
#include "orlix_image/image_entries.hpp"
#include "orlix_image/image_files.hpp"
#include "orlix_image/image_frames.hpp"
#include "orlix_image/image_module.hpp"
#include "orlix_image/image_pixels.hpp"
#include "orlix_image/image_streams.hpp"
#include "orlix_image/image_surfaces.hpp"
#include "pictures/memory_picture.hpp"
#include "pictures/picture_events.hpp"
#include "pictures/zoom_picture.hpp"

class OrlixImage final
    : public orlix::Object<OrlixImage,  //
                           orlix::Part<orlix::ImagePixels, IImageVPAExPlus, IImageVPAEx, IImageVPA>,
                           orlix::Part<orlix::ImageFiles, IImageFile>,       //
                           orlix::Part<orlix::ImageEntries, IImageEntries>,  //
                           orlix::Part<orlix::ImageFrames, IImageFrames>,    //
                           orlix::Part<orlix::ImageStreams, IPersistStreamInitEx, IPersistStreamInit, IPersist>,
                           orlix::Part<orlix::ImageSurfaces, IOrlixImageProcess, IImageProcess, IImageProcessBase>,
                           orlix::Part<orlix::ImageDisplay, IDisplayProcess>,  //
                           orlix::Part<orlix::ZoomPicture, IPictureExZoom, IPictureEx>,
                           orlix::Part<orlix::MemoryPicture, IPictureMemory>,
                           orlix::Part<orlix::PictureEvents, IConnectionPointContainer>,
                           orlix::Part<orlix::ImageModule, IModuleInformation>,  //
                           orlix::Part<orlix::ImageAccess, IPixelAccess>> {
public:
    // Called by Object.
    void LetGo() noexcept {
        core_.events.Close();
        core_.Take(nullptr);
    }

private:
    orlix::ImageCore& core() noexcept override { return core_; }
    orlix::PictureCore& picture() noexcept override { return core_; }

    orlix::ImageCore core_{life(), *this};
};
