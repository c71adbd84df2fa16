#include "files/platform_picture.hpp"

#include "component/failure.hpp"

namespace orlix {

FileProperties ReadPlatformPicture(std::span<const uint8_t>, PixelSink&, const ReadOptions&) {
    throw Failure("IImageVPAEx::CreateFromFile: this format is loaded on Windows only.", DISP_E_EXCEPTION);
}

}  // namespace orlix
