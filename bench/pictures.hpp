// The pictures that benchmarks work on, and the names that results go by.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace orlix::bench {

// A synthetic micrograph: soft-edged bright grains on a darker, tilted ground, and normal noise of 5 grey levels. Grey
// levels of 0..255 for uint8_t, 257 times as much for uint16_t, and with their fractions for float. The same at every
// call.
template <class T>
const std::vector<T>& Picture(int size);

inline constexpr int kSizes[] = {512, 4096};

template <class T>
constexpr const char* NameOf() {
    return std::is_same_v<T, uint8_t> ? "u8" : std::is_same_v<T, uint16_t> ? "u16" : "f32";
}

// operation/type/size/who
template <class T>
std::string Name(const std::string& operation, int size, const std::string& who) {
    return operation + "/" + NameOf<T>() + "/" + std::to_string(size) + "/" + who;
}

// For each way of OpenCV; does nothing when it is not there.
void RegisterOpenCv();

}  // namespace orlix::bench
