// The pictures that benchmarks work on, and the names of their results.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace orlix::bench {

// A synthetic micrograph: bright grains with soft edges on a darker, tilted background, with normal noise of 5 grey
// levels. Grey levels are 0..255 for uint8_t, 257 times that for uint16_t, and keep their fractions for float.
// Identical in every call.
template <class T>
const std::vector<T>& Picture(int size);

inline constexpr int kSizes[] = {512, 4096};
inline constexpr int kSmallSizes[] = {1, 16, 64};

// Registers each OpenCV benchmark; does nothing when OpenCV is not installed.
void RegisterOpenCv(std::span<const int> sizes);

template <class T>
constexpr const char* NameOf() {
    return std::is_same_v<T, uint8_t> ? "u8" : std::is_same_v<T, uint16_t> ? "u16" : "f32";
}

// operation/type/size/who
template <class T>
std::string Name(const std::string& operation, int size, const std::string& who) {
    return operation + "/" + NameOf<T>() + "/" + std::to_string(size) + "/" + who;
}

}  // namespace orlix::bench
