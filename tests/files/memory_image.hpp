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
    MemoryImage(int32_t width, int32_t height, int32_t bands, int32_t bits) { Allocate(width, height, bands, bits); }
    template <class LevelAt>
    MemoryImage(int32_t width, int32_t height, int32_t bands, int32_t bits, const LevelAt& levelAt)
        : MemoryImage(width, height, bands, bits) {
        size_t i = 0;
        for (int32_t band = 0; band < bands; ++band)
            for (int32_t y = 0; y < height; ++y)
                for (int32_t x = 0; x < width; ++x, ++i) {
                    const uint32_t level = levelAt(band, x, y);
                    bits == 8 ? void(bytes[i] = static_cast<uint8_t>(level))
                              : void(words[i] = static_cast<uint16_t>(level));
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
        return properties.dataType == DT_BYTE ? static_cast<void*>(&bytes[index]) : static_cast<void*>(&words[index]);
    }
    // Band by band, row by row.
    std::vector<uint32_t> Levels() const {
        return properties.dataType == DT_BYTE ? std::vector<uint32_t>(bytes.begin(), bytes.end())
                                              : std::vector<uint32_t>(words.begin(), words.end());
    }
    bool SamePixels(const MemoryImage& other) const {
        return properties.width == other.properties.width && properties.height == other.properties.height &&
               properties.bands == other.properties.bands && properties.dataType == other.properties.dataType &&
               bytes == other.bytes && words == other.words;
    }

    FileProperties properties;
    bool begun = false;
    std::vector<uint8_t> bytes;   // of an 8-bit image
    std::vector<uint16_t> words;  // of a 16-bit image

private:
    void Allocate(int32_t width, int32_t height, int32_t bands, int32_t bits) {
        properties.width = width;
        properties.height = height;
        properties.bands = bands;
        properties.dataType = bits;  // the codes of unsigned types are their bits
        const size_t samples = static_cast<size_t>(width) * static_cast<size_t>(height) * static_cast<size_t>(bands);
        bits == 8 ? bytes.resize(samples) : words.resize(samples);
    }
};

// A writer must not need more of its source than the interface promises: each row is valid until the next call only.
class FleetingSource final : public PixelSource {
public:
    explicit FleetingSource(MemoryImage& image) : image_(image) {}
    const void* Row(int32_t band, int32_t y) override {
        const auto width = static_cast<size_t>(image_.properties.width);
        const size_t size = width * static_cast<size_t>(image_.properties.dataType / 8);
        const auto* row = static_cast<const uint8_t*>(image_.Row(band, y));
        row_.assign((size + 1) / 2, 0xDEAD);
        std::copy(row, row + size, reinterpret_cast<uint8_t*>(row_.data()));
        return row_.data();
    }

private:
    MemoryImage& image_;
    std::vector<uint16_t> row_;
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
