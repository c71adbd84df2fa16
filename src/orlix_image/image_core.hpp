// State and helpers shared by the parts of the image object.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "display/displayed_image.hpp"
#include "files/file_types.hpp"
#include "image/changes.hpp"
#include "orlix_image/file_content.hpp"
#include "pictures/picture_core.hpp"
#include "process/frame.hpp"

namespace orlix {

class ImageCore final : public PictureCore {
public:
    ImageCore(ObjectLife& life, IConnectionPointContainer& container) noexcept
        : PictureCore(life, __uuidof(OrlixImage), container) {}

    // The typed image; throws NoImage when there is none. Shared: a client's region or source may call back and make
    // this object take another typed image while the current one is in use.
    std::shared_ptr<DisplayedImage> Typed() const;
    // The same, but null when there is none.
    const std::shared_ptr<DisplayedImage>& typed() const { return typed_; }

    // Replaces the typed image, and gives the picture its size. typed may be null. The former one is released last:
    // this may release its region, which may call back.
    void Take(std::shared_ptr<DisplayedImage> typed);

    // Runs a creation of an image of the given type. If the type changes, the creation is tried on a new typed image.
    // After a failure with a text (a refused argument) that image, empty, replaces the old one; after any other failure
    // (out of memory) the old image remains.
    void CreateTyped(LONG dataType, const std::function<void(ImageStore&)>& creation);

    // Takes a content that is complete, of a type that images can have, and its settings if there are any (of that
    // type, checked). Returns the former image, which the caller releases last: this may call back.
    [[nodiscard]] std::shared_ptr<DisplayedImage> Adopt(LONG dataType, ImageContent&& content,
                                                        const ImageSettings* settings);

    // Loads a file, see IImageFile::LoadFromFile.
    void LoadFile(WideStringView fileName, ReadOptions options);
    // The same from the bytes of a file.
    void LoadBytes(std::span<const uint8_t> bytes, ReadOptions options);

    // IImageVPAEx::AttachBuffer, which pictures offer too.
    void Attach(void* buffer, LONG width, LONG height, LONG bands, LONG dataType, bool zero);

    std::shared_ptr<PictureSource> Source() const override { return typed_; }
    void AttachPicture(void* buffer, LONG width, LONG height, LONG bitsPerPixel) override {
        Attach(buffer, width, height, 1, bitsPerPixel == 8 ? DT_BYTE : DT_WORD, false);
    }

    Changes changes;
    Changes saved;                               // the changes that a stream was loaded or saved with
    LONG sampleLimit = SampleLimit::kInitially;  // for loading, see files/sample_limit.hpp
    LONG quality = WriteOptions().quality;       // for saving

private:
    void Adopt(LoadedImage&& loaded);

    std::shared_ptr<DisplayedImage> typed_;
};

// A part of the image object: the methods of one interface, or those that one interface adds to the part it derives
// from. OrlixImage is composed of its parts.
template <class I>
class ImagePart : public I {
protected:
    ~ImagePart() = default;

    virtual ImageCore& core() noexcept = 0;

    // See Object::Guarded.
    template <class Named = void, class Body>
    HRESULT Guarded(Body&& body, const char* method = __builtin_FUNCTION()) noexcept {
        return core().template Guarded<Named>(body, method);
    }

    std::shared_ptr<DisplayedImage> Typed() { return core().Typed(); }

    // Calls use(frame) with the frame of the pixel type; throws NoImage.
    template <class Use>
    decltype(auto) WithFrame(Use&& use) {
        const std::shared_ptr<DisplayedImage> typed = Typed();  // a client may replace it meanwhile
        return orlix::WithFrame(typed->typed(), use);
    }

    // operation(selection) writes pixels.
    template <class Operation>
    void Change(const Operation& operation) {
        WithFrame([&](auto& frame) { frame.Change(operation); });
    }
};

}  // namespace orlix
