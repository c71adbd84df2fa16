#include "orlix_image/file_content.hpp"

#include <cstring>
#include <utility>

#include "orlix_image/settings.hpp"

namespace orlix {

namespace {

// Collects the content of a file in an image whose type the file determines.
class ContentSink final : public PixelSink {
public:
    void Begin(const FileProperties& file) override {
        content_ = MakeContent(file.dataType, file.width, file.height, file.bands, Samples::Unset);
    }
    // The rows are uninitialised, so their padding is set to 0 here.
    void* Row(int32_t band, int32_t y) override {
        const ImageLayout& layout = content_.layout;
        uint8_t* const row = content_.data + static_cast<size_t>(band) * layout.bandSize +
                             static_cast<size_t>(y) * static_cast<size_t>(layout.rowStride);
        const auto used = static_cast<size_t>(layout.width) * static_cast<size_t>(layout.bytesPerSample);
        std::memset(row + used, 0, static_cast<size_t>(layout.rowStride) - used);
        return row;
    }

    ImageContent& content() { return content_; }

private:
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

LoadedImage Loaded(FileProperties file, ContentSink& sink) {
    LoadedImage image{file.dataType, std::move(sink.content()), file.settings};
    image.content.properties = std::move(file.kept);
    image.content.coordinates = file.coordinates.value_or(kIdentityMap);
    return image;
}

FileProperties PropertiesOf(DisplayedImage& image) {
    const ImageStore& store = image.store();
    FileProperties file;
    file.width = store.layout().width;
    file.height = store.layout().height;
    file.bands = store.layout().bands;
    file.dataType = store.dataType();
    file.kept = store.properties();
    file.coordinates = store.coordinates();
    file.settings = SettingsOf(image);
    return file;
}

}  // namespace

LoadedImage LoadImage(WideStringView fileName, const ReadOptions& options) {
    ContentSink sink;
    return Loaded(LoadImageFile(fileName, sink, options), sink);
}

LoadedImage LoadImage(std::span<const uint8_t> bytes, const ReadOptions& options) {
    ContentSink sink;
    return Loaded(ReadImageFile(bytes, sink, options), sink);
}

std::vector<uint8_t> ImageBytes(ImageFileFormat format, DisplayedImage& image, const WriteOptions& options) {
    StoreSource source(image.store());
    return WriteImageFile(format, PropertiesOf(image), source, options);
}

void SaveImage(WideStringView fileName, ImageFileFormat format, DisplayedImage& image, const WriteOptions& options) {
    StoreSource source(image.store());
    SaveImageFile(fileName, format, PropertiesOf(image), source, options);
}

}  // namespace orlix
