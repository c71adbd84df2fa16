#include "binary/morphology_vectors.hpp"
#include "vectors/bit_lanes_avx512.hpp"

namespace orlix {

template <bool dilate, bool eight>
void Square_avx512(const MorphologyRows& rows, uint8_t* scratch) {
    Squares<BitLanes, dilate, eight>(rows, scratch);
}
template Kernel<SquareFn> Square_avx512<false, false>;
template Kernel<SquareFn> Square_avx512<false, true>;
template Kernel<SquareFn> Square_avx512<true, false>;
template Kernel<SquareFn> Square_avx512<true, true>;

template <bool dilate>
void Rectangle_avx512(const MorphologyRows& rows, const MorphologyRectangle& window, uint8_t* scratch) {
    Rectangles<BitLanes, dilate>(rows, window, scratch);
}
template Kernel<RectangleFn> Rectangle_avx512<false>;
template Kernel<RectangleFn> Rectangle_avx512<true>;

}  // namespace orlix
