// The definitions of operations on the words of planes.
#include "binary/plane_kernels.hpp"

namespace orlix {

void OrWords_scalar(uint64_t* to, const uint64_t* from, size_t words) {
    for (size_t i = 0; i < words; ++i) to[i] |= from[i];
}

void OrMoved_scalar(uint64_t* to, const uint64_t* from, size_t words, int n) {
    for (size_t i = 0; i < words; ++i) to[i] |= from[i] >> n | from[static_cast<ptrdiff_t>(i) - 1] << (64 - n);
}

void ChooseWords_scalar(const TableChoice* choices, size_t n, ChoiceWords& words) {
    for (size_t i = 0; i < n; ++i)
        for (size_t k = 0; k < kChoiceWords; ++k) {
            const uint64_t pixel = words.pixels[choices[i].pixel][k];
            words.values[2 + i][k] =
                (pixel & words.values[choices[i].set][k]) | (~pixel & words.values[choices[i].clear][k]);
        }
}

}  // namespace orlix
