#include "binary/morphology_vectors.hpp"
#include "vectors/bit_lanes_sse2.hpp"

namespace orlix {

template <bool dilate, bool eight>
void Square_sse2(const MorphologyRows& rows, uint8_t* scratch) {
    SquareRows<BitLanes, dilate, eight>(rows, scratch);
}
template Kernel<SquareFn> Square_sse2<false, false>;
template Kernel<SquareFn> Square_sse2<false, true>;
template Kernel<SquareFn> Square_sse2<true, false>;
template Kernel<SquareFn> Square_sse2<true, true>;

template <bool dilate>
void RowWindow_sse2(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch) {
    RowWindows<BitLanes, dilate>(rows, window, scratch);
}
template Kernel<RowWindowFn> RowWindow_sse2<false>;
template Kernel<RowWindowFn> RowWindow_sse2<true>;

template <bool dilate>
void ColumnWindow_sse2(const MorphologyRows& rows, const MorphologyWindow& window, uint8_t* scratch) {
    ColumnWindows<BitLanes, dilate>(rows, window, scratch);
}
template Kernel<ColumnWindowFn> ColumnWindow_sse2<false>;
template Kernel<ColumnWindowFn> ColumnWindow_sse2<true>;

}  // namespace orlix
