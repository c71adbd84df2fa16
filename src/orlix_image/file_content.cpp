#include "orlix_image/file_content.hpp"

#include <cstring>
#include <utility>

namespace orlix {

namespace {

// Collects the content of a file in an image whose type the file determines.
class ContentSink final : public PixelSink {
public:
    void Begin(const FileProperties& file) override {
        type_ = file.bits == 16 ? DT_WORD : DT_BYTE;
        content_ = MakeContent(type_, file.width, file.height, file.bands, Samples::Unset);
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
    // The rows are uninitialised, so their padding is set to 0 here.
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

LoadedImage LoadImage(WideStringView fileName, const SampleLimit& limit) {
    ContentSink sink;
    LoadImageFile(fileName, sink, limit);
    return {sink.type(), std::move(sink.content())};
}

void SaveImage(WideStringView fileName, ImageFileFormat format, const ImageStore& image) {
    const ImageProperties& properties = image.properties();
    FileProperties file;
    file.width = image.layout().width;
    file.height = image.layout().height;
    file.bands = image.layout().bands;
    file.bits = BitsOf(image.dataType());
    file.micronsX = properties.micronsX;
    file.micronsY = properties.micronsY;
    if (properties.hasDescription) file.texts.push_back({WideString(kDescriptionKeyword), properties.description});
    for (const TextEntry& entry : properties.texts) file.texts.push_back({entry.keyword, entry.text});
    StoreSource source(image);
    SaveImageFile(fileName, format, file, source);
}

}  // namespace orlix
