// The picture that a bitmap must show: what the slow definitions (tests/support) work on. It shares no code with the
// library.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orlix::fuzz {

class Picture {
public:
    Picture() = default;
    Picture(int32_t width, int32_t height)
        : width_(width), height_(height), pixels_(static_cast<size_t>(width) * static_cast<size_t>(height)) {}

    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    bool bit(int32_t x, int32_t y) const { return pixels_[At(x, y)] != 0; }
    void setBit(int32_t x, int32_t y, bool bit) { pixels_[At(x, y)] = bit; }
    int64_t count() const { return std::count(pixels_.begin(), pixels_.end(), 1); }
    bool sameSize(const Picture& other) const { return width_ == other.width_ && height_ == other.height_; }
    friend bool operator==(const Picture&, const Picture&) = default;

private:
    size_t At(int32_t x, int32_t y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x);
    }

    int32_t width_ = 0;
    int32_t height_ = 0;
    std::vector<uint8_t> pixels_;
};

}  // namespace orlix::fuzz
