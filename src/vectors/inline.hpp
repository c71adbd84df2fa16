// The one macro of kernels: functions that must become part of their caller. A call would keep vectors of 256 bits and
// more in memory, and in a suffixed file an ordinary inline function may be the copy that the linker keeps for all.
#pragma once

#define ORLIX_INLINE [[gnu::always_inline]] inline
