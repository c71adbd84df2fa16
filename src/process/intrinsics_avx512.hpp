// <immintrin.h> for the AVX-512 files. GCC 12's own header leaves destinations of unmasked operations uninitialised on
// purpose and warns about it (GCC bug 105593).
#pragma once

#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop
#else
#include <immintrin.h>
#endif
