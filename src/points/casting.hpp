// Conversion of pixels to the type of another image.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orlix {

// The conversion, for To and From among uint8_t, uint16_t, uint32_t and float:
//   to an integer from an integer   the low-order bits
//   to an integer from float        truncated toward zero, then the low-order bits (-1.2 gives 255 in 8 bits);
//                                   NaN, infinities and |v| >= 2^63 give 0
//   to float                        the nearest float, ties to even
// `to` and `from` hold n pixels each. They may be the same pixels when To is From; otherwise they must not overlap.
template <class To, class From>
class CastOperation {
public:
    CastOperation();
    void operator()(To* to, const From* from, size_t n) const { apply_(to, from, n); }  // to = cast(from)

private:
    using Fn = void (*)(To* to, const From* from, size_t n);
    Fn apply_;
};

// to = to + cast(from) in To's own arithmetic: modulo 2^bits for integers, in float for float (the sum of two NaNs is a
// NaN, unspecified which).
template <class To, class From>
class PlusOperation {
public:
    PlusOperation();
    void operator()(To* to, const From* from, size_t n) const { apply_(to, from, n); }

private:
    using Fn = void (*)(To* to, const From* from, size_t n);
    Fn apply_;
};

}  // namespace orlix
