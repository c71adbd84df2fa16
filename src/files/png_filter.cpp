#include "files/png_filter.hpp"

#include <algorithm>

namespace orlix::png {
namespace {

constexpr auto PredictNone = [](int, int, int) { return uint8_t{0}; };
constexpr auto PredictSub = [](int a, int, int) { return static_cast<uint8_t>(a); };
constexpr auto PredictUp = [](int, int b, int) { return static_cast<uint8_t>(b); };
constexpr auto PredictAverage = [](int a, int b, int) { return static_cast<uint8_t>((a + b) >> 1); };
constexpr auto PredictPaeth = [](int a, int b, int c) { return Paeth(a, b, c); };

void UndoUp(uint8_t* row, const uint8_t* above, size_t size) {
    for (size_t i = 0; i < size; ++i) row[i] = static_cast<uint8_t>(row[i] + above[i]);
}

// Undoes a filter whose prediction needs the byte on the left. With kPixel as a constant the neighbours stay in
// registers. Prediction: (left, above, aboveLeft) -> byte.
template <size_t kPixel, class Prediction>
void UndoChain(uint8_t* row, const uint8_t* above, size_t size, Prediction prediction) {
    uint8_t left[kPixel] = {}, aboveLeft[kPixel] = {};
    for (size_t i = 0; i + kPixel <= size; i += kPixel)
        for (size_t k = 0; k < kPixel; ++k) {
            const uint8_t up = above[i + k];
            left[k] = static_cast<uint8_t>(row[i + k] + prediction(left[k], up, aboveLeft[k]));
            row[i + k] = left[k];
            aboveLeft[k] = up;
        }
}

template <class Prediction>
void Undo(uint8_t* row, const uint8_t* above, size_t size, size_t pixel, Prediction prediction) {
    switch (pixel) {
        case 1:
            return UndoChain<1>(row, above, size, prediction);
        case 2:
            return UndoChain<2>(row, above, size, prediction);
        case 3:
            return UndoChain<3>(row, above, size, prediction);
        case 4:
            return UndoChain<4>(row, above, size, prediction);
        case 6:
            return UndoChain<6>(row, above, size, prediction);
        default:
            return UndoChain<8>(row, above, size, prediction);
    }
}

// The difference of a byte from its prediction. Adds its absolute value to the sum.
uint8_t Difference(uint8_t byte, uint8_t prediction, uint64_t& sum) {
    const auto difference = static_cast<uint8_t>(byte - prediction);
    sum += difference < 128 ? difference : 256u - difference;
    return difference;
}

template <class Prediction>
uint64_t Apply(const uint8_t* row, const uint8_t* above, size_t size, size_t pixel, uint8_t* filtered,
               Prediction prediction) {
    uint64_t sum = 0;
    const size_t first = std::min(pixel, size);
    for (size_t i = 0; i < first; ++i) filtered[i] = Difference(row[i], prediction(0, above[i], 0), sum);
    for (size_t i = first; i < size; ++i)
        filtered[i] = Difference(row[i], prediction(row[i - pixel], above[i], above[i - pixel]), sum);
    return sum;
}

}  // namespace

bool Unfilter(uint8_t filter, uint8_t* row, const uint8_t* above, size_t size, size_t pixel) {
    switch (filter) {
        case kNone:
            return true;
        case kSub:
            Undo(row, above, size, pixel, PredictSub);
            return true;
        case kUp:
            UndoUp(row, above, size);
            return true;
        case kAverage:
            Undo(row, above, size, pixel, PredictAverage);
            return true;
        case kPaeth:
            Undo(row, above, size, pixel, PredictPaeth);
            return true;
        default:
            return false;
    }
}

uint64_t ApplyFilter(Filter filter, const uint8_t* row, const uint8_t* above, size_t size, size_t pixel,
                     uint8_t* filtered) {
    switch (filter) {
        case kSub:
            return Apply(row, above, size, pixel, filtered, PredictSub);
        case kUp:
            return Apply(row, above, size, pixel, filtered, PredictUp);
        case kAverage:
            return Apply(row, above, size, pixel, filtered, PredictAverage);
        case kPaeth:
            return Apply(row, above, size, pixel, filtered, PredictPaeth);
        default:
            return Apply(row, above, size, pixel, filtered, PredictNone);
    }
}

}  // namespace orlix::png
