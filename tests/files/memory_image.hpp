// A picture in memory that readers fill and writers take from.
#pragma once

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "component/failure.hpp"
#include "files/image_file.hpp"

namespace orlix::test {

class MemoryImage final : public PixelSink {
public:
    MemoryImage() = default;
    MemoryImage(int32_t width, int32_t height, int32_t bands, LONG type) { Allocate(width, height, bands, type); }
    template <class LevelAt>
    MemoryImage(int32_t width, int32_t height, int32_t bands, LONG type, const LevelAt& levelAt)
        : MemoryImage(width, height, bands, type) {
        size_t i = 0;
        for (int32_t band = 0; band < bands; ++band)
            for (int32_t y = 0; y < height; ++y)
                for (int32_t x = 0; x < width; ++x, ++i) {
                    const uint32_t level = levelAt(band, x, y);
                    type == DT_BYTE   ? void(bytes[i] = static_cast<uint8_t>(level))
                    : type == DT_WORD ? void(words[i] = static_cast<uint16_t>(level))
                                      : void(dwords[i] = level);
                }
    }

    void Begin(const FileProperties& given) override {
        if (begun) throw std::logic_error("begun twice");
        begun = true;
        Allocate(given.width, given.height, given.bands, given.dataType);
        properties = given;
    }
    void* Row(int32_t band, int32_t y) override {
        if (band < 0 || band >= properties.bands || y < 0 || y >= properties.height)
            throw std::logic_error("row outside the image");
        const size_t index =
            (static_cast<size_t>(band) * static_cast<size_t>(properties.height) + static_cast<size_t>(y)) *
            static_cast<size_t>(properties.width);
        return properties.dataType == DT_BYTE   ? static_cast<void*>(&bytes[index])
               : properties.dataType == DT_WORD ? static_cast<void*>(&words[index])
                                                : static_cast<void*>(&dwords[index]);
    }
    // Band by band, row by row; the bits of floating-point samples.
    std::vector<uint32_t> Levels() const {
        return properties.dataType == DT_BYTE   ? std::vector<uint32_t>(bytes.begin(), bytes.end())
               : properties.dataType == DT_WORD ? std::vector<uint32_t>(words.begin(), words.end())
                                                : dwords;
    }
    bool SamePixels(const MemoryImage& other) const {
        return properties.width == other.properties.width && properties.height == other.properties.height &&
               properties.bands == other.properties.bands && properties.dataType == other.properties.dataType &&
               bytes == other.bytes && words == other.words && dwords == other.dwords;
    }

    FileProperties properties;
    bool begun = false;
    std::vector<uint8_t> bytes;    // of an 8-bit image
    std::vector<uint16_t> words;   // of a 16-bit image
    std::vector<uint32_t> dwords;  // of other images: the bits of the samples

    size_t SampleSize() const { return properties.dataType == DT_BYTE ? 1 : properties.dataType == DT_WORD ? 2 : 4; }

private:
    void Allocate(int32_t width, int32_t height, int32_t bands, LONG type) {
        properties.width = width;
        properties.height = height;
        properties.bands = bands;
        properties.dataType = type;
        const size_t samples = static_cast<size_t>(width) * static_cast<size_t>(height) * static_cast<size_t>(bands);
        type == DT_BYTE ? bytes.resize(samples) : type == DT_WORD ? words.resize(samples) : dwords.resize(samples);
    }
};

// A writer must not need more of its source than the interface promises: each row is valid until the next call only.
class FleetingSource final : public PixelSource {
public:
    explicit FleetingSource(MemoryImage& image) : image_(image) {}
    const void* Row(int32_t band, int32_t y) override {
        const auto width = static_cast<size_t>(image_.properties.width);
        const size_t size = width * image_.SampleSize();
        const auto* row = static_cast<const uint8_t*>(image_.Row(band, y));
        row_.assign((size + 3) / 4, 0xDEADBEEF);
        std::copy(row, row + size, reinterpret_cast<uint8_t*>(row_.data()));
        return row_.data();
    }

private:
    MemoryImage& image_;
    std::vector<uint32_t> row_;
};

inline std::vector<uint8_t> Written(ImageFileFormat format, MemoryImage& image) {
    FleetingSource source(image);
    return WriteImageFile(format, image.properties, source);
}

// The text of the failure that reading these bytes gives, "" when they can be read.
inline std::string FailureOfReading(std::span<const uint8_t> bytes, MemoryImage& image, const SampleLimit& limit = {},
                                    bool anyBitmap = false) {
    try {
        ReadOptions options;
        options.limit = limit;
        options.anyBitmap = anyBitmap;
        image.properties = ReadImageFile(bytes, image, options);
        return "";
    } catch (const Failure& failure) {
        if (failure.result() != DISP_E_EXCEPTION) return std::string("wrong result: ") + failure.what();
        return failure.what();
    }
}

}  // namespace orlix::test
