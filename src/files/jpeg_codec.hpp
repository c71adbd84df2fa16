// The compression of JPEG files alone: libjpeg-turbo natively, GDI+ on Windows, where it is part of the system.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace orlix {

struct JpegSize {
    int32_t width = 0, height = 0;
    int32_t bands = 0;  // 1: grey; 3: red, green, blue
};

// Decodes a file of this size and these components, and calls use(row) for the rows from the top: width * bands bytes,
// pixel by pixel. Stops when `use` returns false. Returns false if the file is damaged or there is no codec; `use` may
// have been called by then.
bool DecodeJpeg(std::span<const uint8_t> bytes, const JpegSize& size, const std::function<bool(const uint8_t*)>& use);

// Encodes rows that fill(y, row) provides in that form. Quality: 1 to 100. Empty on failure.
std::vector<uint8_t> EncodeJpeg(const JpegSize& size, int32_t quality,
                                const std::function<void(int32_t, uint8_t*)>& fill);

}  // namespace orlix
