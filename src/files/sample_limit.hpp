// How large an image a file or a stream may bring: both may compress it to a thousandth of its size and less.
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
    static constexpr int32_t kMostLines = 1 << 24;  // a row and a column take memory too, 12 bytes together

    SampleLimit() = default;
    // Samples of all bands, 0: no limit.
    explicit SampleLimit(int32_t samples) : samples_(samples) {}

    // The geometry is positive, and its product below 2^64. Failures of the given result, whose texts begin with the
    // method:
    //   "<Method>: the image has 400000000 samples, more than the limit of 268435456."
    //   "<Method>: the image has 20000000 rows or columns, more than the limit of 16777216."
    void Require(int32_t width, int32_t height, int32_t bands, std::string_view method, HRESULT result) const;

private:
    int32_t samples_ = kInitially;
};

// Its text is not a literal.
class LimitFailure final : public Failure {
public:
    LimitFailure(std::string text, HRESULT result) : Failure("", result), text_(std::move(text)) {}
    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};

}  // namespace orlix
