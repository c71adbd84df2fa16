// Mapping of pixels to display levels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "points/point_operations.hpp"

namespace orlix {

// The pixel range that the levels 0 to 255 are spread over. A pixel outside counts as the nearer end. least < most, or
// both are equal, in which case every pixel has level 0.
template <class T>
struct LevelRange {
    T least = 0;
    T most = 0;
    bool falling = false;  // most has level 0, least 255
};

// Maps pixels to the levels of a display range, by the rules of IDisplayProcess; prepared once, then applied to any
// number of runs. T is uint8_t, uint16_t, uint32_t or float. All variants give the same bits. Bounds that are not
// finite give level 0 for every pixel; infinite pixels count as the largest finite ones.
template <class T>
class LevelMapping {
public:
    LevelMapping(T lower, T upper);

    // levels and pixels do not overlap.
    void operator()(const T* pixels, size_t n, uint8_t* levels) const;

private:
    using Fn = void (*)(const T* pixels, size_t n, const LevelRange<T>& range, uint8_t* levels);
    Fn map_;
    LevelRange<T> range_;
};

// 8 bits: a table of the levels of the 256 pixel values, or a plain copy where each pixel is its own level.
template <>
class LevelMapping<uint8_t> {
public:
    LevelMapping(uint8_t lower, uint8_t upper);
    // Each pixel is its own level.
    bool copies() const { return copies_; }
    void operator()(const uint8_t* pixels, size_t n, uint8_t* levels) const;

private:
    bool copies_;
    PointOperation<uint8_t> lookUp_;
};

extern template class LevelMapping<uint16_t>;
extern template class LevelMapping<uint32_t>;
extern template class LevelMapping<float>;

}  // namespace orlix
