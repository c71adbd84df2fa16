#include "orlix_image/image_streams.hpp"

#include "component/stream_bytes.hpp"
#include "files/image_stream.hpp"
#include "orlix_image/settings.hpp"

namespace orlix {

namespace {

class StreamSource final : public ByteSource {
public:
    explicit StreamSource(IStream* stream) : stream_(stream) {}
    size_t Read(uint8_t* bytes, size_t size) override { return ReadFrom(stream_.get(), bytes, size); }

private:
    ComPtr<IStream> stream_;
};

}  // namespace

void ImageStreams::LoadFrom(IStream* stream) {
    StreamSource source(stream);
    StreamImage image = ReadImageStream(source, SampleLimit(core().sampleLimit));
    const auto former = core().Adopt(image.dataType, std::move(image.content), &image.settings);
    core().saved = core().changes;
    initialised_ = true;
}

STDMETHODIMP ImageStreams::GetClassID(CLSID* clsid) noexcept {
    return Guarded([&] {
        Require(clsid);
        *clsid = __uuidof(OrlixImage);
    });
}

STDMETHODIMP ImageStreams::IsDirty() noexcept {
    return Guarded([&] { return core().changes.SavedAs(core().saved) ? S_FALSE : S_OK; });
}

STDMETHODIMP ImageStreams::Load(IStream* stream) noexcept {
    return Guarded([&] {
        Require(stream);
        if (initialised_) throw FailedResult(E_UNEXPECTED);
        LoadFrom(stream);
    });
}

STDMETHODIMP ImageStreams::ReLoad(IStream* stream) noexcept {
    return Guarded([&] {
        Require(stream);
        LoadFrom(stream);
    });
}

STDMETHODIMP ImageStreams::Save(IStream* stream, BOOL clearDirty) noexcept {
    return Guarded([&] {
        Require(stream);
        const std::shared_ptr<DisplayedImage> typed = core().typed();
        if (!typed || typed->store().empty()) throw Failure("IPersistStreamInit::Save: no image.");
        const ImageStore& store = typed->store();
        if (store.refused()) throw FailedResult(E_FAIL);
        // Complete before the first write: the stream may call back and change the image.
        const StreamBytes bytes = WriteImageStream(store.dataType(), store.content(), SettingsOf(*typed));
        const Changes written = core().changes;
        const ComPtr<IStream> held(stream);
        for (const std::span<const uint8_t> piece : bytes.pieces()) WriteTo(stream, piece);
        if (clearDirty && core().changes.SavedAs(written)) core().saved = written;
    });
}

STDMETHODIMP ImageStreams::GetSizeMax(ULARGE_INTEGER* size) noexcept {
    return Guarded([&] {
        Require(size);
        const std::shared_ptr<DisplayedImage>& typed = core().typed();
        if (!typed || typed->store().empty()) throw Failure("IPersistStreamInit::GetSizeMax: no image.");
        const ImageStore& store = typed->store();
        size->QuadPart = LargestImageStream(store.dataType(), store.content(), SettingsOf(*typed));
    });
}

STDMETHODIMP ImageStreams::InitNew() noexcept {
    return Guarded([&] {
        if (initialised_) throw FailedResult(E_UNEXPECTED);
        initialised_ = true;
    });
}

}  // namespace orlix
