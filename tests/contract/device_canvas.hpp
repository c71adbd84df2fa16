// A device context of a bitmap in memory.
#pragma once
#ifdef _WIN32

#include <windows.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace orlix::testing {

// A bitmap in memory of 8 (a grey ramp) or 32 bits, selected into a context. Grey 0x11 at first.
class DeviceCanvas {
public:
    DeviceCanvas(LONG width, LONG height, WORD bits = 32)
        : context(CreateCompatibleDC(nullptr)), width_(width), height_(height), bits_(bits) {
        struct {
            BITMAPINFOHEADER header;
            RGBQUAD colors[256];
        } info = {};
        info.header.biSize = sizeof info.header;
        info.header.biWidth = width;
        info.header.biHeight = -height;
        info.header.biPlanes = 1;
        info.header.biBitCount = bits;
        for (int i = 0; i < 256; ++i) {
            const auto grey = static_cast<BYTE>(i);
            info.colors[i] = {grey, grey, grey, 0};
        }
        void* memory = nullptr;
        bitmap_ = CreateDIBSection(context, reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS, &memory, nullptr, 0);
        pixels_ = static_cast<uint8_t*>(memory);
        stride_ = (width * bits / 8 + 3) / 4 * 4;
        std::memset(pixels_, 0x11, static_cast<size_t>(stride_ * height));
        former_ = SelectObject(context, bitmap_);
    }
    ~DeviceCanvas() {
        SelectObject(context, former_);
        DeleteDC(context);
        DeleteObject(bitmap_);
    }
    DeviceCanvas(const DeviceCanvas&) = delete;
    DeviceCanvas& operator=(const DeviceCanvas&) = delete;

    // The pixel 0xRRGGBB, or the level.
    uint32_t at(LONG x, LONG y) const {
        GdiFlush();
        const uint8_t* const pixel = pixels_ + y * stride_ + x * bits_ / 8;
        return bits_ == 8 ? *pixel : static_cast<uint32_t>(pixel[2] << 16 | pixel[1] << 8 | pixel[0]);
    }
    // One character a pixel: the low byte, which is the blue one, divided by 16.
    std::string Row(LONG y) const {
        std::string row;
        for (LONG x = 0; x < width_; ++x) row += "0123456789abcdef"[at(x, y) >> 4 & 15];
        return row;
    }
    std::vector<std::string> Rows() const {
        std::vector<std::string> rows;
        for (LONG y = 0; y < height_; ++y) rows.push_back(Row(y));
        return rows;
    }

    const HDC context;

private:
    LONG width_, height_, stride_;
    WORD bits_;
    HBITMAP bitmap_;
    HGDIOBJ former_;
    uint8_t* pixels_;
};

}  // namespace orlix::testing

#endif
