// Limits the size of an image that is loaded: a file or stream may have compressed it to a thousandth or less.
#pragma once

#include <orlix/orlix.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "component/failure.hpp"

namespace orlix {

class SampleLimit {
public:
    static constexpr int32_t kInitially = 1 << 28;  // 16384 x 16384; 1 GiB of the largest samples
    static constexpr int32_t kMostLines = 1 << 24;  // rows and columns take memory too, 12 bytes for one of each

    SampleLimit() = default;
    // Samples of all bands; 0 for no limit.
    explicit SampleLimit(int32_t samples) : samples_(samples) {}

    // The geometry must be positive and its product below 2^64. Fails with the given result and a text that begins with
    // the method:
    //   "<Method>: the image has 400000000 samples, more than the limit of 268435456."
    //   "<Method>: the image has 20000000 rows or columns, more than the limit of 16777216."
    void Require(int32_t width, int32_t height, int32_t bands, std::string_view method, HRESULT result) const;

private:
    int32_t samples_ = kInitially;
};

// A failure whose text is not a literal.
class LimitFailure final : public Failure {
public:
    LimitFailure(std::string text, HRESULT result) : Failure("", result), text_(std::move(text)) {}
    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};

}  // namespace orlix
