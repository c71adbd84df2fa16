#include <cmath>
#include <cstring>

#include "component/strings.hpp"
#include "files/image_file.hpp"
#include "orlix_image/orlix_image.hpp"

using namespace orlix;

namespace {

// Collects what a file holds, as the content of an image of the type that the file decides.
class ContentSink final : public PixelSink {
public:
    void Begin(const FileProperties& file) override {
        type_ = file.bits == 16 ? DT_WORD : DT_BYTE;
        content_ = ImageStore(type_).MakeContent(file.width, file.height, file.bands, ImageStore::Bytes::Unset);
        ImageProperties& properties = content_.properties;
        properties.micronsX = file.micronsX;
        properties.micronsY = file.micronsY;
        for (const FileText& entry : file.texts) {
            if (entry.keyword != kDescriptionKeyword || properties.hasDescription) {
                properties.texts.push_back({entry.keyword, entry.text});
            } else {
                properties.description = entry.text;
                properties.hasDescription = true;
            }
        }
    }
    // Nothing of the row was written before: its padding becomes 0 here.
    void* Row(int32_t band, int32_t y) override {
        const ImageLayout& layout = content_.layout;
        uint8_t* const row = content_.data + static_cast<size_t>(band) * layout.bandSize +
                             static_cast<size_t>(y) * static_cast<size_t>(layout.rowStride);
        const auto used = static_cast<size_t>(layout.width) * static_cast<size_t>(layout.bytesPerSample);
        std::memset(row + used, 0, static_cast<size_t>(layout.rowStride) - used);
        return row;
    }

    LONG type() const { return type_; }
    ImageContent& content() { return content_; }

private:
    LONG type_ = DT_BYTE;
    ImageContent content_;
};

class StoreSource final : public PixelSource {
public:
    explicit StoreSource(const ImageStore& store) : store_(store) {}
    const void* Row(int32_t band, int32_t y) override {
        return store_.base(band) + static_cast<size_t>(y) * static_cast<size_t>(store_.layout().rowStride);
    }

private:
    const ImageStore& store_;
};

int32_t BitsOf(LONG type) { return type == DT_BYTE ? 8 : type == DT_WORD ? 16 : 32; }

}  // namespace

STDMETHODIMP OrlixImage::CreateFromFile(BSTR fileName) noexcept {
    return Guarded([&] {
        ContentSink sink;
        LoadImageFile(ToView(fileName), sink, SampleLimit(sampleLimit_));
        CreateTyped(sink.type(), [&](ImageStore& store) { store.Replace(std::move(sink.content())); });
    });
}

STDMETHODIMP OrlixImage::get_SampleLimit(LONG* limit) noexcept {
    return Guarded([&] {
        Require(limit);
        *limit = sampleLimit_;
    });
}

STDMETHODIMP OrlixImage::put_SampleLimit(LONG limit) noexcept {
    return Guarded([&] {
        if (limit < 0) throw Failure("IImageFile::put_SampleLimit: the limit must not be negative.");
        sampleLimit_ = limit;
    });
}

STDMETHODIMP OrlixImage::SaveToFile(BSTR fileName, ImageFileFormat format) noexcept {
    return Guarded<IImageFile>([&] {
        if (!typed_ || typed_->store().empty()) throw Failure("IImageFile::SaveToFile: no image.");
        ImageStore& store = typed_->store();
        if (store.refused()) throw NoImage();
        const ImageProperties& properties = store.properties();
        FileProperties file;
        file.width = store.layout().width;
        file.height = store.layout().height;
        file.bands = store.layout().bands;
        file.bits = BitsOf(store.dataType());
        file.micronsX = properties.micronsX;
        file.micronsY = properties.micronsY;
        if (properties.hasDescription) file.texts.push_back({WideString(kDescriptionKeyword), properties.description});
        for (const TextEntry& entry : properties.texts) file.texts.push_back({entry.keyword, entry.text});
        StoreSource source(store);
        SaveImageFile(ToView(fileName), format, file, source);
    });
}

STDMETHODIMP OrlixImage::GetMicronsPerPixel(double* x, double* y) noexcept {
    return Guarded<IImageFile>([&] {
        Require(x), Require(y);
        const ImageProperties& properties = Typed()->store().properties();
        *x = properties.micronsX;
        *y = properties.micronsY;
        return properties.micronsX > 0 ? S_OK : S_FALSE;
    });
}

STDMETHODIMP OrlixImage::PutMicronsPerPixel(double x, double y) noexcept {
    return Guarded<IImageFile>([&] {
        ImageProperties& properties = Typed()->store().properties();
        const bool unknown = x == 0 && y == 0;
        if (!unknown && !(x > 0 && y > 0 && std::isfinite(x) && std::isfinite(y)))
            throw Failure("IImageFile::PutMicronsPerPixel: the pixel size must be positive.");
        properties.micronsX = unknown ? 0 : x;
        properties.micronsY = unknown ? 0 : y;
        modified_ = true;
    });
}
