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
//     static Vector Full(v);                      of each byte all pixels if all are set, else none
//     static Vector AllBefore(v), AllAfter(v);    pixels for which all before (after) them in their byte are set
//     struct Seam(a, b);                          what neighbours need of two vectors that follow each other
//     static Vector BytesAhead<n>(a, seam);       for each byte of a the one n after it, 1 <= n <= 7
//     static Vector BytesBehind<n>(seam, b);      for each byte of b the one n before it
//     static Vector Right(before, v, n);          the pixels of v moved to the right by 0 <= n <= 8, those of the bytes
//                                                 before moving in
//     static Vector Ordered(v);                   each byte with its pixels in the order of PixelAhead and PixelBehind;
//                                                 its own inverse
//     static Vector PixelAhead(a, seam), PixelBehind(seam, b);          for each pixel the one after (before) it
//     static Vector Words(v);                     each 64-bit word with its pixels in an order in which shifts move
//                                                 them across bytes; its own inverse
// and, for vectors of such words:
//     static Vector Next(v, after);               the words that follow those of v; `after` is the vector behind it
//     static Vector Previous(before, v);          the words before those of v
//     struct Count(n);                            0 <= n <= 63 pixels
//     static Vector Ahead(v, next, count);        for each pixel the one n after it, or n before it; next and previous
//     static Vector Behind(previous, v, count);   are Next and Previous of v
//     static Vector Ahead<n>(v, next), Behind<n>(previous, v);          the same, 1 <= n <= 63
//     static Vector Leading(v), Trailing(v);      of each word the pixels before (after) which there are only set ones,
//                                                 themselves included
//     static unsigned FullWords(v);               of each word a bit, the lowest that of the first: all pixels set
//     static Vector Expand(bits);                 words with all pixels set where the bit is, none elsewhere
#pragma once

#include <cstddef>
#include <cstdint>

#include "vectors/inline.hpp"
