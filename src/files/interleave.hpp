// Rows in the form in which PNG and raw PNM files store them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "files/file_types.hpp"
#include "image/byte_order.hpp"

namespace orlix {

inline size_t SampleBytes(const FileProperties& properties) {
    return static_cast<size_t>(BytesPerSample(properties.dataType));
}
inline size_t PixelBytes(const FileProperties& properties) {
    return static_cast<size_t>(properties.bands) * SampleBytes(properties);
}

// Writes width * PixelBytes() bytes: the samples pixel by pixel, 16-bit ones big-endian.
inline void InterleaveRow(PixelSource& source, const FileProperties& properties, int32_t y, uint8_t* out) {
    const auto width = static_cast<size_t>(properties.width);
    const size_t step = PixelBytes(properties);
    for (int32_t band = 0; band < properties.bands; ++band) {
        const void* row = source.Row(band, y);
        uint8_t* at = out + static_cast<size_t>(band) * SampleBytes(properties);
        if (properties.dataType == DT_WORD) {
            const auto* in = static_cast<const uint16_t*>(row);
            if (step == 2)  // a constant, for vectors
                for (size_t x = 0; x < width; ++x) PutBigEndian16(at + x * 2, in[x]);
            else
                for (size_t x = 0; x < width; ++x) PutBigEndian16(at + x * step, in[x]);
        } else {
            const auto* in = static_cast<const uint8_t*>(row);
            if (step == 1)
                std::memcpy(at, in, width);
            else
                for (size_t x = 0; x < width; ++x) at[x * step] = in[x];
        }
    }
}

}  // namespace orlix
