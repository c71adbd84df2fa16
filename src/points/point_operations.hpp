// Operations that replace each pixel by a function of itself.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlix {

// The parameters of the point kernels (point_kernels.hpp); each kernel uses some of them.
template <class T>
struct PointParameters {
    double value = 0;                   // summand or divisor
    bool falling = false;               // value - p, offset - p instead of value + p, offset + p
    T lower = 0, upper = 0;             // clamp of the result
    T first = 0, last = 0, offset = 0;  // clamp of the pixel, first <= last, then the offset, modulo 2^bits
    unsigned shift = 0;                 // below 32
    T table[256] = {};
};

// A point operation ready to run: parameters checked and the processor variant chosen once, then applied in place to
// any number of runs. T is uint8_t, uint16_t, uint32_t or float. Notes:
//  (1) A clamp to [lower, upper] tests lower first, also when lower > upper: v < lower gives lower, else v > upper
//      gives upper. NaN passes a clamp unchanged.
//  (2) All variants give the same bits.
//  (3) An operation may be copied, and used from several threads.
template <class T>
class PointOperation {
public:
    // upper - p + lower without overflow, clamped to [lower, upper]. float: lower + upper is summed first, in double,
    // so the full range of float inverts to -p; one rounding to float at the end.
    static PointOperation Invert(T lower, T upper);

    // s = p + value in double, clamped to [lower, upper], else floor(s + 0.5) (float: rounded to float). A NaN value
    // gives lower for every pixel; infinities give lower or upper (float: infinity of the other sign gives NaN).
    static PointOperation Add(double value, T lower, T upper);

    // Integers, value = 2^k exactly: p >> k (0 from k = 32 on); for negative k, p >> (k modulo 32). Whether value is
    // such a power is decided on its bits; a quotient of logarithms in floating point would miss some powers and accept
    // neighbours of others. Every other value, and float: q = p / value in double, clamped to the type's range, then
    // floor(q + 0.5) (float: rounded to float, the range being all finite floats). An integer result of NaN (value NaN,
    // or 0 / 0) is 0.
    static PointOperation Divide(double value);

    // Every pixel becomes value.
    static PointOperation Fill(T value);

    // table[p]; 8 bits only.
    static PointOperation LookUp(const T (&table)[256]);  // T is uint8_t

    void operator()(T* pixels, size_t n) const { apply_(pixels, n, parameters_); }

private:
    using Fn = void (*)(T* pixels, size_t n, const PointParameters<T>& parameters);
    PointOperation(Fn apply, const PointParameters<T>& parameters) : apply_(apply), parameters_(parameters) {}
    static PointOperation Sum(const PointParameters<T>& parameters);
    static PointOperation Tabulated(Fn definition, PointParameters<T> parameters);

    Fn apply_;
    PointParameters<T> parameters_;
};

template <>
PointOperation<uint8_t> PointOperation<uint8_t>::LookUp(const uint8_t (&table)[256]);
extern template class PointOperation<uint8_t>;
extern template class PointOperation<uint16_t>;
extern template class PointOperation<uint32_t>;
extern template class PointOperation<float>;

}  // namespace orlix
