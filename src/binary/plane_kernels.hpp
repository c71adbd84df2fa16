// Kernels on the words of planes (bit_plane.hpp), and their variants.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/variants.hpp"

namespace orlix {

// to[i] becomes to[i] or from[i]. The two are apart.
using OrWordsFn = void (*)(uint64_t* to, const uint64_t* from, size_t words);

Kernel<OrWordsFn> OrWords_scalar, OrWords_avx2, OrWords_avx512;

inline constexpr Variant<OrWordsFn> kOrWords[] = {
    {"avx512", Cpu::Avx512, &OrWords_avx512},
    {"avx2", Cpu::Avx2, &OrWords_avx2},
    {"scalar", Cpu::Any, &OrWords_scalar},
};

// Joins pixels moved to the right by 1 <= n <= 63: to[i] becomes to[i] or the last n pixels of from[i - 1] and the
// first 64 - n of from[i]. from[-1] is read. The two are apart.
using OrMovedFn = void (*)(uint64_t* to, const uint64_t* from, size_t words, int n);

Kernel<OrMovedFn> OrMoved_scalar, OrMoved_avx2, OrMoved_avx512;

inline constexpr Variant<OrMovedFn> kOrMoved[] = {
    {"avx512", Cpu::Avx512, &OrMoved_avx512},
    {"avx2", Cpu::Avx2, &OrMoved_avx2},
    {"scalar", Cpu::Any, &OrMoved_scalar},
};

// A step of a program on bits (neighbourhood_table.hpp): value 2 + i is, for choice i and each of its bits, the bit of
// value `set` where that of `pixel` is set, else that of value `clear`. Value 0 is all clear and 1 all set; a choice
// uses values before its own. There are at most 141 choices: of nine pixels, the first has one, the next ones double,
// up to 64 for the seventh; for the eighth and ninth 12 and 2 different ones exist.
struct TableChoice {
    uint16_t pixel;
    uint16_t clear;
    uint16_t set;
};
constexpr size_t kMostChoices = 141;
constexpr size_t kChoiceWords = 16;  // of each pixel and value
struct ChoiceWords {
    alignas(64) uint64_t pixels[9][kChoiceWords];
    alignas(64) uint64_t values[2 + kMostChoices][kChoiceWords];
};
using ChooseWordsFn = void (*)(const TableChoice* choices, size_t n, ChoiceWords& words);

Kernel<ChooseWordsFn> ChooseWords_scalar, ChooseWords_avx2, ChooseWords_avx512;

inline constexpr Variant<ChooseWordsFn> kChooseWords[] = {
    {"avx512", Cpu::Avx512, &ChooseWords_avx512},
    {"avx2", Cpu::Avx2, &ChooseWords_avx2},
    {"scalar", Cpu::Any, &ChooseWords_scalar},
};

}  // namespace orlix
