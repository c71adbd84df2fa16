// What the parts of the image object share.
#pragma once

#include <orlix/orlix.h>

#include <functional>
#include <memory>

#include "component/connection_point.hpp"
#include "component/object.hpp"
#include "display/displayed_image.hpp"
#include "display/graphics_use.hpp"
#include "display/view_geometry.hpp"
#include "display/zoom_state.hpp"
#include "files/sample_limit.hpp"
#include "image/changes.hpp"
#include "process/frame.hpp"

namespace orlix {

class ImageCore {
public:
    ImageCore(ObjectLife& life, IConnectionPointContainer& container) noexcept
        : events(container, __uuidof(IPictureExEvents)), life_(life) {}

    // Object::Guarded, for the parts.
    template <class I, class Body>
    HRESULT Guarded(Body& body, const char* method) noexcept {
        return life_.Guarded<I>(__uuidof(OrlixImage), body, method);
    }

    // The typed image, or NoImage. Shared: a client's region or source may call back and make this object take another
    // typed image while the one it had is at work.
    std::shared_ptr<DisplayedImage> Typed() const;
    // The same, or null.
    const std::shared_ptr<DisplayedImage>& typed() const { return typed_; }

    // The typed image from now on, whose size is the picture's. May be null. The former one goes last: its region may
    // be given back with it, and call.
    void Take(std::shared_ptr<DisplayedImage> typed);

    // Runs a creation of an image of the type. Where the type changes, the creation is tried on a new typed image. A
    // failure with a text (a refused argument) then leaves that one, empty, in the place of the old image; one without
    // (no memory) leaves the old image.
    void CreateTyped(LONG dataType, const std::function<void(ImageStore&)>& creation);

    // IImageVPAEx::AttachBuffer, which pictures have too.
    void Attach(void* buffer, LONG width, LONG height, LONG bands, LONG dataType, bool zero);

    Changes changes;
    Changes saved;  // the changes that a stream was loaded or saved with
    ZoomState zoom;
    View view;  // of the last rendering
    OLE_COLOR surround = 0;
    ConnectionPoint events;
    LONG sampleLimit = SampleLimit::kInitially;  // of what is loaded, see files/sample_limit.hpp

private:
    ObjectLife& life_;
    GraphicsShare graphics_;
    std::shared_ptr<DisplayedImage> typed_;
};

// A part of the image object: the methods of one interface, or of one interface more than the part that it derives
// from. OrlixImage is composed of its parts.
template <class I>
class ImagePart : public I {
protected:
    ~ImagePart() = default;

    virtual ImageCore& core() noexcept = 0;

    // As Object::Guarded.
    template <class Named = void, class Body>
    HRESULT Guarded(Body&& body, const char* method = __builtin_FUNCTION()) noexcept {
        return core().template Guarded<Named>(body, method);
    }

    std::shared_ptr<DisplayedImage> Typed() { return core().Typed(); }

    // use(frame), the frame being that of the pixel type; NoImage.
    template <class Use>
    decltype(auto) WithFrame(Use&& use) {
        const std::shared_ptr<DisplayedImage> typed = Typed();  // a client may replace it while it is at work
        return orlix::WithFrame(typed->typed(), use);
    }

    // operation(selection) writes pixels.
    template <class Operation>
    void Change(const Operation& operation) {
        WithFrame([&](auto& frame) { frame.Change(operation); });
    }
};

}  // namespace orlix
