// The macros of the kernels.
#pragma once

// Functions that must be inlined. A call would keep vectors of 256 bits and more in memory, and the linker may keep a
// suffixed file's copy of an ordinary inline function for all CPUs.
#define ORLIX_INLINE [[gnu::always_inline]] inline

// The same for large parts of kernels, members of unnamed namespaces. With sanitizers they are called: compilers take
// a minute for a function that is made of many parts with checks.
#define ORLIX_INLINE_PART ORLIX_INLINE
#ifdef __has_feature
#if __has_feature(address_sanitizer)
#undef ORLIX_INLINE_PART
#define ORLIX_INLINE_PART [[gnu::noinline]]
#endif
#endif
