#include "files/png_filter.hpp"

#include <algorithm>

namespace orlix::png {
namespace {

// Constants, so that each filter has loops of its own.
template <Filter kFilter>
constexpr auto kPredict = [](int a, int b, int c) { return Predict(kFilter, a, b, c); };

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

void Unfilter_scalar(uint8_t* rows, size_t count, const uint8_t* above, size_t size, size_t pixel) {
    for (; count > 0; --count, rows += 1 + size) {
        uint8_t* const row = rows + 1;
        switch (rows[0]) {
            case kSub:
                Undo(row, above, size, pixel, kPredict<kSub>);
                break;
            case kUp:
                UndoUp(row, above, size);
                break;
            case kAverage:
                Undo(row, above, size, pixel, kPredict<kAverage>);
                break;
            case kPaeth:
                Undo(row, above, size, pixel, kPredict<kPaeth>);
                break;
            default:
                break;
        }
        above = row;
    }
}

uint64_t ApplyFilter_scalar(Filter filter, const uint8_t* row, const uint8_t* above, size_t size, size_t pixel,
                            uint8_t* filtered) {
    switch (filter) {
        case kSub:
            return Apply(row, above, size, pixel, filtered, kPredict<kSub>);
        case kUp:
            return Apply(row, above, size, pixel, filtered, kPredict<kUp>);
        case kAverage:
            return Apply(row, above, size, pixel, filtered, kPredict<kAverage>);
        case kPaeth:
            return Apply(row, above, size, pixel, filtered, kPredict<kPaeth>);
        default:
            return Apply(row, above, size, pixel, filtered, kPredict<kNone>);
    }
}

}  // namespace orlix::png
