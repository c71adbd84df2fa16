// Vectors of a bitmap's bytes, in which the first pixel is the highest bit of a byte. bit_lanes_sse2.hpp,
// bit_lanes_avx2.hpp and bit_lanes_avx512.hpp define BitLanes; a suffixed file includes the one with its suffix:
//
//     using Vector;
//     static constexpr size_t kBytes;             bytes per vector
//     static Vector Load(p), All(byte);           kBytes bytes from p on; the same byte everywhere
//     static void Store(p, v);
//     static Vector LoadSome(p, n);               n <= kBytes bytes from p on, then zeros
//     static void StoreSome(p, v, n);             the first n bytes
//     static Vector And(a, b), Or(a, b), Xor(a, b), AndNot(a, b);       AndNot: a and not b
//     static Vector And(a, b, c), Or(a, b, c);
//     static Vector Before(a, b), After(b, c);    the bytes just before and just after those of b, where a, b, c are
//                                                 adjacent vectors
//     static Vector Right<n>(before, v);          the pixels of v moved to the right by 1 <= n <= 7, those of the bytes
//     static Vector Left<n>(v, after);            before (after) moving in
//     static Vector Right(before, v, n);          the same for an n known at run time, 0 <= n <= 8
//     static Vector Full(v);                      0xff for each byte of v that is 0xff, 0 for the others
//     static Vector Leading(v), Trailing(v);      of each byte the pixels before (after) which there are only set ones,
//                                                 themselves included
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/inline.hpp"
