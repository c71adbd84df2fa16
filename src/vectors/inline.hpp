// The only macro of the kernels: functions that must be inlined. A call would keep vectors of 256 bits and more in
// memory, and the linker may keep a suffixed file's copy of an ordinary inline function for all CPUs.
#pragma once

#define ORLIX_INLINE [[gnu::always_inline]] inline
