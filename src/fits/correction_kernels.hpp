// Correction kernels and their variants. All accept n = 0.
#pragma once

#include "fits/correction.hpp"
#include "vectors/variants.hpp"

namespace orlix {

// shifts[i] = the row's polynomial at x + i. x is an integer.
using ShiftsFn = void (*)(double* shifts, size_t n, double x, const RowPolynomial& row);

Kernel<ShiftsFn> Shifts_scalar, Shifts_sse2, Shifts_avx2, Shifts_avx512;

inline constexpr Variant<ShiftsFn> kShifts[] = {
    {"avx512", Cpu::Avx512, &Shifts_avx512},
    {"avx2", Cpu::Avx2, &Shifts_avx2},
    {"sse2", Cpu::Sse2, &Shifts_sse2},
    {"scalar", Cpu::Any, &Shifts_scalar},
};

// Integers: h = floor(s + half) with s + half limited to +-2^33 (NaN: -2^33), q = p + h; the result is lower if
// q < lower, else upper if q > upper, else q. Float: v = p + s in double; lower if v < lower, else upper if v > upper,
// else v rounded to float.
template <class T>
using CorrectFn = void (*)(T* pixels, const double* shifts, size_t n, const CorrectionParameters<T>& parameters);

template <class T>
void Correct_scalar(T* pixels, const double* shifts, size_t n, const CorrectionParameters<T>& parameters);

Kernel<CorrectFn<uint8_t>> Correct_sse2, Correct_avx2, Correct_avx512;
Kernel<CorrectFn<uint16_t>> Correct_sse2, Correct_avx2, Correct_avx512;
Kernel<CorrectFn<float>> Correct_sse2, Correct_avx2, Correct_avx512;

template <class T>
inline constexpr Variant<CorrectFn<T>> kCorrect[] = {
    {"avx512", Cpu::Avx512, &Correct_avx512},
    {"avx2", Cpu::Avx2, &Correct_avx2},
    {"sse2", Cpu::Sse2, &Correct_sse2},
    {"scalar", Cpu::Any, &Correct_scalar},
};
template <>
inline constexpr Variant<CorrectFn<uint32_t>> kCorrect<uint32_t>[] = {{"scalar", Cpu::Any, &Correct_scalar}};

// 8 bits, without shifts in memory: Correct with the row's polynomial at x, x + 1, ...
using CorrectRowFn = void (*)(uint8_t* pixels, size_t n, double x, const RowPolynomial& row,
                              const CorrectionParameters<uint8_t>& parameters);

Kernel<CorrectRowFn> CorrectRow_scalar, CorrectRow_sse2, CorrectRow_avx2, CorrectRow_avx512;

inline constexpr Variant<CorrectRowFn> kCorrectRow[] = {
    {"avx512", Cpu::Avx512, &CorrectRow_avx512},
    {"avx2", Cpu::Avx2, &CorrectRow_avx2},
    {"sse2", Cpu::Sse2, &CorrectRow_sse2},
    {"scalar", Cpu::Any, &CorrectRow_scalar},
};

namespace {  // used in files of every instruction set: each keeps its own copy

// The degree to which a row's polynomial must be computed for the same bits: terms of higher degree would add zeros. If
// the constant is 0 as well, their signs could show.
inline int DegreeOf(const RowPolynomial& row) { return row.c[3] != 0 || row.c[0] == 0 ? 3 : row.c[2] != 0 ? 2 : 1; }

// Corrects a row by way of shifts in memory, a piece at a time.
template <class T>
void CorrectInPieces(ShiftsFn fill, CorrectFn<T> correct, T* pixels, size_t n, double x, const RowPolynomial& row,
                     const CorrectionParameters<T>& parameters) {
    constexpr size_t kPiece = 512;
    double shifts[kPiece];
    for (size_t done = 0; done < n; done += kPiece) {
        const size_t part = n - done < kPiece ? n - done : kPiece;
        fill(shifts, part, x + static_cast<double>(done), row);
        correct(pixels + done, shifts, part, parameters);
    }
}

}  // namespace

}  // namespace orlix
