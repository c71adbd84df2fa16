// State and helpers shared by the parts of an object that is a picture: an image, a buffer.
#pragma once

#include <orlix/orlix.h>

#include <memory>

#include "component/connection_point.hpp"
#include "component/object.hpp"
#include "display/graphics_use.hpp"
#include "display/picture_source.hpp"
#include "display/view_geometry.hpp"
#include "display/zoom_state.hpp"

namespace orlix {

class PictureCore {
public:
    // clsid: the class of the object, a constant.
    PictureCore(ObjectLife& life, const CLSID& clsid, IConnectionPointContainer& container) noexcept
        : events(container, __uuidof(IPictureExEvents)), life_(life), clsid_(clsid) {}

    // Object::Guarded, made available to the parts.
    template <class I, class Body>
    HRESULT Guarded(Body& body, const char* method) noexcept {
        return life_.Guarded<I>(clsid_, body, method);
    }

    // What the picture shows; null when there is nothing. Shared: a client that draws over the picture may call back
    // and make this object take something else while it is in use.
    virtual std::shared_ptr<PictureSource> Source() const = 0;

    // IPictureEx::AttachBuffer; bitsPerPixel is 8 or 16.
    virtual void AttachPicture(void* buffer, LONG width, LONG height, LONG bitsPerPixel) = 0;

    ZoomState zoom;
    View view;  // of the last rendering
    OLE_COLOR surround = 0;
    ConnectionPoint events;

protected:
    ~PictureCore() = default;

private:
    ObjectLife& life_;
    const CLSID& clsid_;
    GraphicsShare graphics_;
};

// A part of the object: the methods of one interface, or those that one interface adds to the part it derives from.
template <class I>
class PicturePart : public I {
protected:
    ~PicturePart() = default;

    virtual PictureCore& picture() noexcept = 0;

    // See Object::Guarded.
    template <class Named = void, class Body>
    HRESULT Guarded(Body&& body, const char* method = __builtin_FUNCTION()) noexcept {
        return picture().template Guarded<Named>(body, method);
    }
};

}  // namespace orlix
