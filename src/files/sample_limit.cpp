#include "files/sample_limit.hpp"

#include <algorithm>

namespace orlix {

void SampleLimit::Require(int32_t width, int32_t height, int32_t bands, std::string_view method, HRESULT result) const {
    if (samples_ == 0) return;
    const auto fail = [&](uint64_t number, const char* what, int32_t limit) {
        throw LimitFailure(std::string(method) + ": the image has " + std::to_string(number) + what +
                               ", more than the limit of " + std::to_string(limit) + ".",
                           result);
    };
    const uint64_t samples =
        static_cast<uint64_t>(width) * static_cast<uint64_t>(height) * static_cast<uint64_t>(bands);
    if (samples > static_cast<uint64_t>(samples_)) fail(samples, " samples", samples_);
    const int32_t lines = std::max(width, height);
    if (lines > kMostLines) fail(static_cast<uint64_t>(lines), " rows or columns", kMostLines);
}

}  // namespace orlix
