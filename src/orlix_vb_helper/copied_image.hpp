// Images on their way to the clipboard and back. Failures are Error and Failure.
#pragma once

#include <orlix/orlix.h>
#include <orlix/com_ptr.hpp>

#include <cstdint>
#include <span>
#include <vector>

namespace orlix {

struct CopiedImage {
    std::vector<uint8_t> png;     // a PNG file; empty where the format does not hold the image
    std::vector<uint8_t> bitmap;  // header, colour table and bits
};

// The levels of 8-bit images with one band or three; of others the bitmap shows them from the smallest to the largest.
CopiedImage CopyOfImage(IImageVPA* image);

ComPtr<IImageVPA> ImageOfPng(std::span<const uint8_t> file);
ComPtr<IImageVPA> ImageOfBitmap(std::span<const uint8_t> packed);

}  // namespace orlix
